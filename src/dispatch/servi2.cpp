#include "dispatch/servi2.h"

#include "dispatch/atendimento.h"
#include "session/kit/kit.h"
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

SERVI2::SERVI2(QWidget* parent) : QDialog(parent) {
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
    A1 = new QLineEdit(this);
    A1->setObjectName(u"A1"_s);
    A2 = new MaskEdBox(MaskEdBox::moneyMask(), this);
    A2->setObjectName(u"A2"_s);
    A2->setFixedWidth(120);
    form->addWidget(new QLabel(u"DESCRIÇÃO:"_s, this), 0, 0);
    form->addWidget(A1, 0, 1);
    form->addWidget(new QLabel(u"VALOR:"_s, this), 1, 0);
    form->addWidget(A2, 1, 1, Qt::AlignLeft);
    box->addLayout(form);

    for (auto [field, name] : {std::pair{&COD, u"COD"_s}, {&cd, u"cd"_s}, {&XP, u"XP"_s}}) {
        *field = new QLineEdit(this);
        (*field)->setObjectName(name);
        (*field)->hide();
    }

    box->addWidget(new QLabel(u"PARA VER UM SERVIÇO DE UM DUPLO CLIQUE SOBRE O MESMO."_s, this));
    Grid1 = new MSFlexGrid(this);
    Grid1->setObjectName(u"Grid1"_s);
    Grid1->setHeaders({u"DESCRIÇÃO DO SERVIÇO"_s, u"VALOR"_s, u"CODIGO"_s});
    Grid1->setColWidth(0, 300);
    Grid1->setColWidth(1, 100);
    Grid1->setColWidth(2, 70);
    box->addWidget(Grid1, 1);

    auto* actions = new QHBoxLayout;
    auto* save = new QPushButton(u"Grava"_s, this);
    save->setObjectName(u"Command16"_s);
    auto* remove = new QPushButton(u"Exclui"_s, this);
    remove->setObjectName(u"Command11"_s);
    auto* back = new QPushButton(u"Volta"_s, this);
    back->setObjectName(u"Command5"_s);
    actions->addStretch(1);
    for (QPushButton* b : {save, remove, back}) {
        b->setAutoDefault(false);
        actions->addWidget(b);
    }
    box->addLayout(actions);
    resize(520, 480);

    connect(save, &QPushButton::clicked, this, [this] { Command16_Click(); });
    connect(remove, &QPushButton::clicked, this, [this] { Command11_Click(); });
    connect(back, &QPushButton::clicked, this, &QDialog::close);
    callsButton(saveEntry, save);
    callsButton(deleteEntry, remove);
    callsButton(backEntry, back);
    connect(Grid1, &MSFlexGrid::rowDoubleClicked, this, [this](int r) { Grid1_DblClick(r); });

    setupFields(this);
    setTabOrder(A1, A2);
    setTabOrder(A2, Grid1);
    load();
}

void SERVI2::load() {
    centreScreen(this);
    Grid1->setRows(1);
    A2->setText(u"0,00"_s);
    guarded(this, [this] {
        Recordset rs = Store::current().open(u"SELECT * FROM servicos ORDER BY A1"_s);
        for (; !rs.eof(); rs.moveNext())
            Grid1->addItem(rs.text(u"A1"_s) + u'\t' + formatMoney(rs.cents(u"A2"_s)) + u'\t' +
                           rs.text(u"cod"_s));
    });
    stripeGrid(Grid1);
}

void SERVI2::setPicker(Atendimento* target) {
    target_ = target;
    for (const QString& name : {u"Command16"_s, u"Command11"_s})
        findChild<QWidget*>(name)->setEnabled(false);
    for (const QString& name : {u"ffdfd"_s, u"ggf"_s})
        findChild<QAction*>(name)->setEnabled(false);
    XP->setText(u"1"_s);
}

bool SERVI2::picker() const {
    return XP->text() == u"1"_s;
}

void SERVI2::Grid1_DblClick(int row) {
    if (row < Grid1->fixedRows()) return;
    const QString description = Grid1->textMatrix(row, 0);
    const QString value = Grid1->textMatrix(row, 1);
    A1->setText(description);
    A2->setText(value);
    if (target_) {
        target_->setField(u"A21"_s, description);
        target_->setField(u"A19"_s, value);
    } else {
        Atendimento::takeService(description, value);
    }
    cd->setText(Grid1->textMatrix(row, 2));
    if (picker()) {
        accept();
        return;
    }
    // The row leaves the list (not the table), to be changed or deleted.
    if (Grid1->rows() == 2)
        Grid1->setRows(1);
    else
        Grid1->removeRow(row - 1);
}

void SERVI2::Command16_Click() {
    if (A2->text().isEmpty()) A2->setText(u"0,00"_s);
    if (A1->text().isEmpty()) return;
    COD->clear();
    QString code;
    const bool saved = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        code = store.nextCode(u"servicos"_s);
        store.insert(u"servicos"_s, {{u"cod"_s, code},
                                     {u"A1"_s, A1->text()},
                                     {u"A2"_s, parseMoney(A2->text()).value_or(0)}});
        unit.commit();
    });
    if (!saved) return;
    COD->setText(code);
    // The new service goes to the end of the list; its place by name comes at the next load.
    Grid1->addItem(A1->text() + u'\t' + formatMoney(parseMoney(A2->text()).value_or(0)) + u'\t' +
                   COD->text());
    A1->clear();
    A2->setText(u"0,00"_s);
    COD->clear();
    A1->setFocus();
    stripeGrid(Grid1);
}

void SERVI2::Command11_Click() {
    if (!ask(this, u"Deseja apagar este lançamento?"_s, u"Cadastro de Serviços"_s)) return;
    const bool done = guarded(this, [this] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        store.execute(u"DELETE FROM servicos WHERE cod = ?"_s, {cd->text()});
        unit.commit();
    });
    if (!done) return;
    notice(this, u"Lançamento excluido."_s);
    cd->clear();
    A1->clear();
    A2->setText(u"0,00"_s);
}

} // namespace rtx::ui
