#include "dispatch/servi2.h"

#include "kit/kit.h"
#include "session/modules.h"
#include "store/formats.h"
#include "store/store.h"

#include <QAction>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("SERVI2", [](QWidget* parent) -> QDialog* { return new SERVI2(parent); });

SERVI2::SERVI2(QWidget* parent, Use use) : QDialog(parent), use_(use) {
    setObjectName(u"SERVI2"_s);
    setWindowTitle(u"Tabela"_s);
    auto* box = new QVBoxLayout(this);

    auto* bar = new QMenuBar(this);
    bar->setObjectName(u"menu"_s);
    QAction* saveEntry = menuEntry(bar, u"ffdfd"_s, u"Grava"_s);
    QAction* deleteEntry = menuEntry(bar, u"ggf"_s, u"Exclui"_s);
    QAction* backEntry = menuEntry(bar, u"fgfgf"_s, u"Volta"_s);
    box->setMenuBar(bar);

    auto* form = new QGridLayout;
    descriptionField = new QLineEdit(this);
    descriptionField->setObjectName(u"A1"_s);
    valueField = new MaskEdBox(MaskEdBox::moneyMask(), this);
    valueField->setObjectName(u"A2"_s);
    valueField->setFixedWidth(120);
    form->addWidget(new QLabel(u"DESCRIÇÃO:"_s, this), 0, 0);
    form->addWidget(descriptionField, 0, 1);
    form->addWidget(new QLabel(u"VALOR:"_s, this), 1, 0);
    form->addWidget(valueField, 1, 1, Qt::AlignLeft);
    box->addLayout(form);

    for (auto [field, name] : {std::pair{&newCode, u"COD"_s}, {&pickedCode, u"cd"_s}}) {
        *field = new QLineEdit(this);
        (*field)->setObjectName(name);
        (*field)->hide();
    }

    box->addWidget(new QLabel(u"PARA VER UM SERVIÇO DE UM DUPLO CLIQUE SOBRE O MESMO."_s, this));
    grid = new MSFlexGrid(this);
    grid->setObjectName(u"Grid1"_s);
    grid->setHeaders({u"DESCRIÇÃO DO SERVIÇO"_s, u"VALOR"_s, u"CODIGO"_s});
    grid->setColWidth(0, 300);
    grid->setColWidth(1, 100);
    grid->setColWidth(2, 70);
    box->addWidget(grid, 1);

    auto* actions = new QHBoxLayout;
    auto* saveButton = new QPushButton(u"Grava"_s, this);
    saveButton->setObjectName(u"Command16"_s);
    auto* deleteButton = new QPushButton(u"Exclui"_s, this);
    deleteButton->setObjectName(u"Command11"_s);
    auto* backButton = new QPushButton(u"Volta"_s, this);
    backButton->setObjectName(u"Command5"_s);
    actions->addStretch(1);
    for (QPushButton* b : {saveButton, deleteButton, backButton}) {
        b->setAutoDefault(false);
        actions->addWidget(b);
    }
    box->addLayout(actions);
    resize(520, 480);

    onAction(saveButton, this, [this] { onSave(); });
    onAction(deleteButton, this, [this] { onDelete(); });
    connect(backButton, &QPushButton::clicked, this, &QDialog::close);
    callsButton(saveEntry, saveButton);
    callsButton(deleteEntry, deleteButton);
    callsButton(backEntry, backButton);
    connect(grid, &MSFlexGrid::rowDoubleClicked, this, &SERVI2::onRowDoubleClick);

    setupFields(this);
    setTabOrder(descriptionField, valueField);
    setTabOrder(valueField, grid);
    if (picker()) {
        // A picker only picks; Escape closes it, as any list.
        for (QWidget* w : {saveButton, deleteButton})
            w->setEnabled(false);
        for (QAction* a : {saveEntry, deleteEntry})
            a->setEnabled(false);
    } else {
        // The table holds what the user types: Escape does not throw it away.
        keepOnEscape(this);
    }
    load();
    refreshOn(this, {dispatch::service::table}, [this] { relist(); });
}

std::optional<dispatch::Service> SERVI2::pick(QWidget* parent) {
    SERVI2 table(parent, Use::Picker);
    table.exec();
    return table.picked();
}

void SERVI2::addRow(const dispatch::Service& service) {
    listed_.insert(service.code, service);
    grid->addItem(service.description + u'\t' + formatMoney(service.value) + u'\t' + service.code);
}

void SERVI2::load() {
    centreScreen(this);
    grid->setRows(1);
    listed_.clear();
    valueField->setText(u"0,00"_s);
    QList<dispatch::Service> services;
    guarded(this, [&] { services = dispatch::services(Store::current()); });
    for (const dispatch::Service& s : services)
        addRow(s);
    stripeGrid(grid);
}

// The table changed (here or on another screen): each row keeps its place with its new
// values, a deleted one goes, a new one comes at the end as a save here puts it, and a
// row picked out of the list stays out. What is typed stays.
void SERVI2::relist() {
    QHash<QString, dispatch::Service> byCode;
    const QList<dispatch::Service> services = dispatch::services(Store::current());
    for (const dispatch::Service& s : services)
        byCode.insert(s.code, s);
    QStringList order;
    for (int row = grid->fixedRows(); row < grid->rows(); ++row)
        order << grid->textMatrix(row, 2);
    keepingRow(grid, [&] {
        grid->setRows(1);
        listed_.clear();
        for (const QString& code : std::as_const(order))
            if (byCode.contains(code)) addRow(byCode.take(code));
        for (const dispatch::Service& s : services)
            if (byCode.contains(s.code) && !takenOut_.contains(s.code)) addRow(s);
        stripeGrid(grid);
    });
}

void SERVI2::onRowDoubleClick(int row) {
    if (row < grid->fixedRows()) return;
    const QString code = grid->textMatrix(row, 2);
    const dispatch::Service service = listed_.value(code);
    descriptionField->setText(service.description);
    valueField->setText(formatMoney(service.value));
    pickedCode->setText(code);
    picked_ = service;
    emit servicePicked(service);
    if (picker()) {
        accept();
        return;
    }
    // Picked here, the service goes to the dispatch screen that stands open, or to the
    // next one opened.
    dispatch::servicePicks().offer(service);
    // The row leaves the list (not the table), to be changed or deleted.
    takenOut_ << code;
    if (grid->rows() == 2)
        grid->setRows(1);
    else
        grid->removeRow(row - 1);
}

void SERVI2::onSave() {
    if (valueField->text().isEmpty()) valueField->setText(u"0,00"_s);
    const QString description = descriptionField->text();
    if (description.isEmpty()) return;
    // An amount that cannot be read is said so, and not saved as another one.
    const auto typed = valueField->settledCents();
    if (!typed) return;
    const qint64 value = *typed;
    if (const auto refused = dispatch::checkServiceValue(value)) {
        notice(this, *refused);
        valueField->setFocus();
        return;
    }
    newCode->clear();
    dispatch::Service added;
    if (!guarded(this, [&] { added = dispatch::addService(Store::current(), description, value); }))
        return;
    newCode->setText(added.code);
    // The new service goes to the end of the list; its place by name comes at the next load.
    addRow(added);
    descriptionField->clear();
    valueField->setText(u"0,00"_s);
    newCode->clear();
    descriptionField->setFocus();
    stripeGrid(grid);
}

void SERVI2::onDelete() {
    if (!ask(this, u"Deseja apagar este lançamento?"_s, u"Cadastro de Serviços"_s)) return;
    const QString code = pickedCode->text();
    if (!guarded(this, [&] { dispatch::deleteService(Store::current(), code); })) return;
    notice(this, u"Lançamento excluido."_s);
    pickedCode->clear();
    descriptionField->clear();
    valueField->setText(u"0,00"_s);
}

} // namespace rtx::ui
