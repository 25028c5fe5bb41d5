#include "finance/caixa.h"
#include "kit/controls.h"

#include "finance/core/printouts.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "session/core/current.h"

#include "kit/kit.h"
#include "registers/core/lists.h"
#include "registers/lists.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;
namespace col = rtx::finance::cashcol;
namespace reg = rtx::registers;

RTX_REGISTER_MODULE("Caixa", [](QWidget* parent) -> QDialog* { return new CAIXA(parent); });

namespace {

const QString kPickHint = u" PARA ALTERAR OU APAGAR UM LANÇAMENTO, DE UM DUPLO CLIQUE SOBRE O "
                          u"LANÇAMENTO."_s;
const QString kDayHint = u" INICIE DIGITANDO A DATA DO LANÇAMENTO E TECLE [TAB]."_s;
const QString kNearby = u"Busca registro pelo campo ao lado."_s;
const QString kListEdit = u"Incluir / Excluir"_s;

// The search's amount shows under "Débito" or "Crédito", as its operation says.
class SideDelegate : public QStyledItemDelegate {
public:
    SideDelegate(int operationColumn, QString side, QObject* parent)
        : QStyledItemDelegate(parent), operationColumn_(operationColumn), side_(std::move(side)) {}

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.siblingAtColumn(operationColumn_).data(Qt::EditRole).toString() != side_)
            option->text.clear();
    }

private:
    int operationColumn_;
    QString side_;
};

QLabel* caption(const QString& text, const QString& name, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setObjectName(name);
    return l;
}

QLabel* figure(const QString& name, QWidget* parent) {
    auto* l = new QLabel(formatMoney(0), parent);
    l->setObjectName(name);
    QFont bold = l->font();
    bold.setBold(true);
    l->setFont(bold);
    l->setMinimumWidth(110);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    return l;
}

QComboBox* editableCombo(const QString& name, QWidget* parent) {
    auto* c = new QComboBox(parent);
    c->setObjectName(name);
    c->setEditable(true);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->setCompleter(nullptr);
    return c;
}

QToolButton* pictureButton(const QString& name, const QString& glyph, const QString& tip,
                           QWidget* parent) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setText(glyph);
    b->setToolTip(tip);
    b->setAutoRaise(true);
    b->setFocusPolicy(Qt::ClickFocus);
    return b;
}

} // namespace

CAIXA::CAIXA(QWidget* parent) : QDialog(parent) {
    setObjectName(u"CAIXA"_s);
    setWindowTitle(u"Caixa"_s);
    auto* outer = new QVBoxLayout(this);
    buildMenu(outer);
    tabs_ = new SSTab(this);
    tabs_->setObjectName(u"SSTab1"_s);
    tabs_->addTab(buildDayTab(), u"01-Caixa"_s);
    tabs_->addTab(buildSearchTab(), u"02- Pesquisa"_s);
    outer->addWidget(tabs_, 1);

    auto* bar = new QHBoxLayout;
    const QList<std::pair<QString, QString>> buttons{{u"Command1"_s, u"Iniciar"_s},
                                                     {u"Command16"_s, u"Grava"_s},
                                                     {u"Command5"_s, u"Impressão"_s},
                                                     {u"Command11"_s, u"Exclui"_s},
                                                     {u"Command2"_s, u"Volta"_s}};
    for (const auto& [name, text] : buttons)
        bar->addWidget(pushButton(name, text, this));
    bar->addStretch();
    outer->addLayout(bar);
    hintBar_ = new QLineEdit(this);
    hintBar_->setObjectName(u"BARRA"_s);
    hintBar_->setReadOnly(true);
    hintBar_->setFocusPolicy(Qt::NoFocus);
    hintBar_->setProperty("rtxSemKit", true);
    outer->addWidget(hintBar_);

    // Hidden: the range of the previous balance.
    startField_ = new QLineEdit(formatDate(fin::bookStart()), this);
    startField_->setObjectName(u"di"_s);
    startField_->hide();
    endField_ = new QLineEdit(this);
    endField_->setObjectName(u"dda"_s);
    endField_->hide();
    pickedCode_ = new QLineEdit(this);
    pickedCode_->setObjectName(u"NN"_s);
    pickedCode_->hide();

    const auto on = [this](const QString& name, auto action) {
        connect(namedControl<QAbstractButton>(this, name), &QAbstractButton::clicked, this, action);
    };
    // The actions that read the day, the amount or the period read them as typed, or stop.
    const auto settled = [this](const QString& name, std::function<void()> action) {
        onAction(findChild<QAbstractButton*>(name), this, std::move(action));
    };
    settled(u"Command1"_s, [this] { start(); });
    settled(u"Command16"_s, [this] { save(); });
    settled(u"Command5"_s, [this] { printDay(); });
    settled(u"Command11"_s, [this] { remove(); });
    on(u"Command2"_s, [this] { reject(); });
    on(u"Command7"_s, [this] {
        cadtipo list(this);
        list.exec();
    });
    on(u"Command8"_s, [this] {
        cadcontas list(this);
        list.exec();
    });
    settled(u"Command17"_s, [this] { find(fin::CashSearch::Period); });
    settled(u"Command3"_s, [this] { find(fin::CashSearch::Debits); });
    settled(u"Command9"_s, [this] { find(fin::CashSearch::Credits); });
    settled(u"Command4"_s, [this] { find(fin::CashSearch::All); });
    settled(u"Command6"_s, [this] { find(fin::CashSearch::Group); });
    settled(u"Command10"_s, [this] { printSearch(); });
    for (const auto& [entry, name] :
         QList<std::pair<QString, QString>>{{u"Grava"_s, u"Command16"_s},
                                            {u"Impressao"_s, u"Command5"_s},
                                            {u"Exclui"_s, u"Command11"_s},
                                            {u"Volta"_s, u"Command2"_s}})
        callsButton(namedControl<QAction>(this, entry), namedControl<QAbstractButton>(this, name));
    connect(dayGrid_, &MSFlexGrid::rowDoubleClicked, this, [this](int row) { pick(row); });
    connect(searchGrid_, &DBGrid::recordActivated, this, [this](int row) { openDay(row); });

    // A date left empty is today's; one that is no date is said so as it is left.
    for (MaskEdBox* date : {dayField_, fromField_, toField_})
        date->setTodayWhenEmpty();
    dayField_->installEventFilter(this);
    dayGrid_->setMouseTracking(true);
    dayGrid_->viewport()->setMouseTracking(true);
    dayGrid_->viewport()->installEventFilter(this);

    setupFields(this);
    keepOnEscape(this);
    resize(1000, 680);
    centreScreen(this);

    const QDate today = QDate::currentDate();
    dayField_->setText(formatDate(today));
    fromField_->setText(formatDate(today));
    toField_->setText(formatDate(today));
    previousUpTo_ = today.addDays(-1);
    endField_->setText(formatDate(previousUpTo_));
    amountField_->setText(formatMoney(0));
    setEntryEnabled(false);
    fillLists();
    followCashBook();
    report_ = new ReportControl(this);
}

void CAIXA::buildMenu(QLayout* outer) {
    auto* menu = new QMenuBar(this);
    menu->setObjectName(u"menu"_s);
    outer->setMenuBar(menu);
    for (const auto& [name, text] :
         QList<std::pair<QString, QString>>{{u"Grava"_s, u"Grava"_s},
                                            {u"Impressao"_s, u"Impressão"_s},
                                            {u"Exclui"_s, u"Exclui"_s},
                                            {u"Volta"_s, u"Volta"_s}}) {
        QAction* entry = menu->addAction(text);
        entry->setObjectName(name);
    }
}

QWidget* CAIXA::buildDayTab() {
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    auto* grid = new QGridLayout;
    dayField_ = new MaskEdBox(MaskEdBox::dateMask(), page);
    dayField_->setObjectName(u"A1"_s);
    dayField_->setFixedWidth(110);
    operationBox_ = new QComboBox(page);
    operationBox_->setObjectName(u"A2"_s);
    operationBox_->addItems({fin::debit, fin::credit});
    documentField_ = new QLineEdit(page);
    documentField_->setObjectName(u"a3"_s);
    typeBox_ = editableCombo(u"a4"_s, page);
    amountField_ = new MaskEdBox(MaskEdBox::moneyMask(), page);
    amountField_->setObjectName(u"A5"_s);
    amountField_->setFixedWidth(130);
    descriptionBox_ = editableCombo(u"A6"_s, page);
    groupBox_ = editableCombo(u"A7"_s, page);

    const auto withButton = [](QWidget* w, QWidget* button) {
        auto* line = new QHBoxLayout;
        line->setSpacing(3);
        line->addWidget(w, 1);
        line->addWidget(button);
        return line;
    };
    grid->addWidget(caption(u"DATA CAIXA:"_s, u"Label1"_s, page), 0, 0);
    grid->addWidget(dayField_, 0, 1);
    grid->addWidget(caption(u"OPERAÇÃO:"_s, u"Label2"_s, page), 0, 2);
    grid->addWidget(operationBox_, 0, 3);
    grid->addWidget(caption(u"NR. DOC.:"_s, u"Label3"_s, page), 0, 4);
    grid->addWidget(documentField_, 0, 5);
    grid->addWidget(caption(u"TIPO:"_s, u"Label4"_s, page), 1, 0);
    grid->addLayout(
        withButton(typeBox_, pictureButton(u"Command7"_s, u"\u2630"_s, kListEdit, page)), 1, 1, 1,
        3);
    grid->addWidget(caption(u"VALOR:"_s, u"Label5"_s, page), 1, 4);
    grid->addWidget(amountField_, 1, 5);
    grid->addWidget(caption(u"DESCRITIVO:"_s, u"Label6"_s, page), 2, 0);
    grid->addWidget(descriptionBox_, 2, 1, 1, 5);
    grid->addWidget(caption(u"GRUPO:"_s, u"Label7"_s, page), 3, 0);
    grid->addLayout(
        withButton(groupBox_, pictureButton(u"Command8"_s, u"\u2630"_s, kListEdit, page)), 3, 1, 1,
        5);
    grid->setColumnStretch(3, 1);
    grid->setColumnStretch(5, 1);
    box->addLayout(grid);

    dayGrid_ = new MSFlexGrid(page);
    dayGrid_->setObjectName(u"Grid1"_s);
    dayGrid_->setHeaders({u"Operação"_s, u"Nr.Documento"_s, u"Tipo"_s, u"Descritivo"_s, u"Grupo"_s,
                          u"Débito"_s, u"Crédito"_s, u"Controle"_s});
    const QList<int> widths{80, 100, 110, 220, 150, 90, 90, 70};
    for (int i = 0; i < widths.size(); ++i)
        dayGrid_->setColWidth(i, widths.at(i));
    box->addWidget(dayGrid_, 1);

    auto* figures = new QHBoxLayout;
    previousLabel_ = figure(u"sa"_s, page);
    debitsLabel_ = figure(u"t1"_s, page);
    creditsLabel_ = figure(u"t2"_s, page);
    balanceLabel_ = figure(u"t3"_s, page);
    figures->addWidget(caption(u"SALDO ANTERIOR:"_s, u"Label8"_s, page));
    figures->addWidget(previousLabel_);
    figures->addStretch();
    figures->addWidget(caption(u"TOTAL DÉBITOS:"_s, u"Label9"_s, page));
    figures->addWidget(debitsLabel_);
    figures->addWidget(caption(u"TOTAL CRÉDITOS:"_s, u"Label10"_s, page));
    figures->addWidget(creditsLabel_);
    figures->addWidget(caption(u"SALDO DO CAIXA:"_s, u"Label11"_s, page));
    figures->addWidget(balanceLabel_);
    box->addLayout(figures);
    box->addWidget(caption(
        u"Para apagar um lançamento de um duplo clique sobre o mesmo e depois clique em Exclui."_s,
        u"Label12"_s, page));
    return page;
}

QWidget* CAIXA::buildSearchTab() {
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    auto* line = new QHBoxLayout;
    fromField_ = new MaskEdBox(MaskEdBox::dateMask(), page);
    fromField_->setObjectName(u"k1"_s);
    fromField_->setFixedWidth(110);
    toField_ = new MaskEdBox(MaskEdBox::dateMask(), page);
    toField_->setObjectName(u"k2"_s);
    toField_->setFixedWidth(110);
    searchGroupBox_ = editableCombo(u"Combo1"_s, page);
    searchGroupBox_->setMinimumWidth(220);
    line->addWidget(caption(u"DT.INICIO:"_s, u"Label13"_s, page));
    line->addWidget(fromField_);
    line->addWidget(caption(u"DT.FINAL:"_s, u"Label14"_s, page));
    line->addWidget(toField_);
    line->addWidget(pictureButton(u"Command17"_s, u"\u2315"_s, kNearby, page));
    line->addSpacing(16);
    line->addWidget(caption(u"BUSCA POR GRUPO:"_s, u"Label15"_s, page));
    line->addWidget(searchGroupBox_, 1);
    line->addWidget(pictureButton(u"Command6"_s, u"\u2315"_s, kNearby, page));
    box->addLayout(line);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(pushButton(u"Command3"_s, u"> Ver débitos"_s, page));
    buttons->addWidget(pushButton(u"Command9"_s, u"> Ver créditos"_s, page));
    buttons->addWidget(pushButton(u"Command4"_s, u"> Ver todos"_s, page));
    buttons->addStretch();
    buttons->addWidget(pushButton(u"Command10"_s, u"Imprimir"_s, page));
    box->addLayout(buttons);

    searchGrid_ = new DBGrid(page);
    searchGrid_->setObjectName(u"Grid2"_s);
    searchGrid_->setColumns({{col::date, u"Data"_s, 85},
                             {col::operation, u"Operação"_s, 80},
                             {col::document, u"Nr.Documento"_s, 100},
                             {col::type, u"Tipo"_s, 110},
                             {col::description, u"Descritivo"_s, 200},
                             {col::group, u"Grupo"_s, 150},
                             {col::amount, u"Débito"_s, 90},
                             {col::amount, u"Crédito"_s, 90},
                             {col::code, u"Controle"_s, 70}});
    searchGrid_->setItemDelegateForColumn(6, new SideDelegate(1, fin::debit, searchGrid_));
    searchGrid_->setItemDelegateForColumn(7, new SideDelegate(1, fin::credit, searchGrid_));
    box->addWidget(searchGrid_, 1);

    auto* totals = new QHBoxLayout;
    searchDebits_ = figure(u"TT1"_s, page);
    searchCredits_ = figure(u"TT2"_s, page);
    totals->addWidget(
        caption(u"Para consultar uma movimentação de um duplo clique sobre o mesmo."_s,
                u"Label16"_s, page));
    totals->addStretch();
    totals->addWidget(caption(u"TOTAL DÉBITOS:"_s, u"Label17"_s, page));
    totals->addWidget(searchDebits_);
    totals->addWidget(caption(u"TOTAL CRÉDITOS:"_s, u"Label18"_s, page));
    totals->addWidget(searchCredits_);
    box->addLayout(totals);
    return page;
}

void CAIXA::fillLists() {
    guarded(this, [this] {
        Store& store = Store::current();
        typeBox_->addItems(reg::listNames(store, reg::lists::financialTypes));
        const QStringList groups = reg::listNames(store, reg::lists::accountGroups);
        groupBox_->addItems(groups);
        searchGroupBox_->addItems(groups);
        for (QComboBox* c : {typeBox_, groupBox_, searchGroupBox_, descriptionBox_})
            c->setCurrentIndex(-1);
    });
}

bool CAIXA::eventFilter(QObject* watched, QEvent* event) {
    if (watched == dayGrid_->viewport() && event->type() == QEvent::MouseMove) {
        hintBar_->setText(kPickHint);
    } else if (event->type() == QEvent::FocusIn && watched == dayField_) {
        hintBar_->setText(kDayHint);
    }
    return QDialog::eventFilter(watched, event);
}

void CAIXA::setEntryEnabled(bool on) {
    for (QWidget* w : {static_cast<QWidget*>(operationBox_), static_cast<QWidget*>(documentField_),
                       static_cast<QWidget*>(typeBox_), static_cast<QWidget*>(amountField_),
                       static_cast<QWidget*>(descriptionBox_), static_cast<QWidget*>(groupBox_)})
        w->setEnabled(on);
}

void CAIXA::clearEntry() {
    pickedCode_->clear();
    groupBox_->setEditText(QString());
    documentField_->clear();
    typeBox_->setEditText(QString());
    descriptionBox_->setEditText(QString());
    amountField_->setText(formatMoney(0));
    operationBox_->setFocus(Qt::OtherFocusReason);
}

void CAIXA::showFigures() {
    previousLabel_->setText(formatMoney(previous_));
    debitsLabel_->setText(formatMoney(debits_));
    creditsLabel_->setText(formatMoney(credits_));
    balanceLabel_->setText(formatMoney(credits_ - debits_ + previous_));
}

void CAIXA::addDayRow(const fin::CashMovement& m) {
    const QString amount = formatMoney(m.amount);
    dayGrid_->addItem(QStringList{m.operation, m.document, m.type, m.description, m.group,
                                  m.isDebit() ? amount : QString(),
                                  m.isCredit() ? amount : QString(), m.code}
                          .join(u'\t'));
}

void CAIXA::start() {
    const auto typed = dayField_->settledDate();
    if (!typed) return;
    const QDate day = *typed;
    setEntryEnabled(true);
    operationBox_->setFocus(Qt::OtherFocusReason);
    operationBox_->setCurrentIndex(0);
    fin::CashDay loaded;
    const QDate upTo = previousUpTo_;
    const bool ok = guarded(this, [&] { loaded = fin::loadDay(Store::current(), day, upTo); });
    // The balance before a day is up to yesterday unless a found day asked for its own.
    previousUpTo_ = QDate::currentDate().addDays(-1);
    endField_->setText(formatDate(previousUpTo_));
    if (!ok) return;
    shownDay_ = day;
    shownUpTo_ = upTo;
    showDay(loaded);
}

void CAIXA::startOn(const QDate& day) {
    tabs_->setTab(0);
    dayField_->setText(formatDate(day));
    start();
}

void CAIXA::showDay(const fin::CashDay& loaded) {
    previous_ = loaded.previous;
    debits_ = loaded.debits;
    credits_ = loaded.credits;
    dayGrid_->setRows(1);
    for (const fin::CashMovement& m : std::as_const(loaded.rows))
        addDayRow(m);
    showFigures();
    stripeGrid(dayGrid_);
}

// Movements entered anywhere on this station (a dispatch paid on Atendimento, a bill
// settled) show at once on the day loaded and in the search made, balances with them; what
// is being typed under the day stays.
void CAIXA::followCashBook() {
    refreshOn(this, {fin::cashTable}, [this] {
        Store& store = Store::current();
        if (shownDay_.isValid()) {
            const fin::CashDay loaded = fin::loadDay(store, shownDay_, shownUpTo_);
            keepingRow(dayGrid_, [&] { showDay(loaded); });
        }
        if (lastSearch_) {
            searchGrid_->requery();
            const Store::CashTotals t = fin::cashSearchTotals(store, *lastSearch_);
            searchDebits_->setText(formatMoney(t.debits));
            searchCredits_->setText(formatMoney(t.credits));
        }
    });
    refreshOn(this, {reg::lists::financialTypes}, [this] {
        refillCombo(typeBox_, reg::listNames(Store::current(), reg::lists::financialTypes));
    });
    refreshOn(this, {reg::lists::accountGroups}, [this] {
        const QStringList groups = reg::listNames(Store::current(), reg::lists::accountGroups);
        refillCombo(groupBox_, groups);
        refillCombo(searchGroupBox_, groups);
    });
}

std::optional<fin::CashMovement> CAIXA::entry() {
    const auto day = dayField_->settledDate();
    const auto amount = amountField_->settledCents();
    if (!day || !amount) return std::nullopt;
    return fromRow(Row{{col::date, *day},
                       {col::operation, operationBox_->currentText()},
                       {col::document, documentField_->text()},
                       {col::type, typeBox_->currentText()},
                       {col::amount, *amount},
                       {col::description, descriptionBox_->currentText()},
                       {col::group, groupBox_->currentText()}},
                   fin::cashFields());
}

void CAIXA::save() {
    const auto typed = entry();
    if (!typed) return;
    fin::CashMovement m = *typed;
    if (const auto problem = fin::checkCash(m)) {
        notice(this, problem->message);
        QWidget* field = operationBox_;
        if (problem->column == col::description) field = descriptionBox_;
        if (problem->column == col::amount) field = amountField_;
        field->setFocus(Qt::OtherFocusReason);
        return;
    }
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        m.code = fin::postCash(store, m);
        unit.commit();
    });
    if (!ok) return;
    pickedCode_->setText(m.code);
    if (m.isDebit()) debits_ += m.amount;
    if (m.isCredit()) credits_ += m.amount;
    if (m.isDebit() || m.isCredit()) addDayRow(m);
    showFigures();
    clearEntry();
    stripeGrid(dayGrid_);
}

void CAIXA::pick(int row) {
    if (row < 1) return;
    operationBox_->setCurrentIndex(operationBox_->findText(dayGrid_->textMatrix(row, 0)));
    documentField_->setText(dayGrid_->textMatrix(row, 1));
    typeBox_->setEditText(dayGrid_->textMatrix(row, 2));
    descriptionBox_->setEditText(dayGrid_->textMatrix(row, 3));
    groupBox_->setEditText(dayGrid_->textMatrix(row, 4));
    pickedCode_->setText(dayGrid_->textMatrix(row, 7));
    notice(this, u"Conta selecionada para excluir clique no botão exclui."_s);
}

void CAIXA::remove() {
    if (!ask(this, u"Deseja realmente apagar este lançamento?"_s)) return;
    bool removed = false;
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        removed = fin::removeCash(store, pickedCode_->text());
        unit.commit();
    });
    if (ok && removed) {
        notice(this, u"Exclusão realizada com sucesso."_s);
    }
    start();
    clearEntry();
}

void CAIXA::find(fin::CashSearch by) {
    if (by == fin::CashSearch::Group && searchGroupBox_->currentText().isEmpty()) {
        notice(this, u"Selecione o grupo antes."_s);
        searchGroupBox_->setFocus(Qt::OtherFocusReason);
        return;
    }
    const auto from = fromField_->settledDate();
    const auto to = from ? toField_->settledDate() : std::nullopt;
    if (!from || !to) return;
    fin::CashQuery q;
    q.by = by;
    q.from = *from;
    q.to = *to;
    q.group = searchGroupBox_->currentText();
    searchDebits_->setText(formatMoney(0));
    searchCredits_->setText(formatMoney(0));
    guarded(this, [&] {
        Store& store = Store::current();
        searchGrid_->setQuery(fin::cashSearch(store, q));
        searchGrid_->refresh();
        lastSearch_ = q;
        const Store::CashTotals t = fin::cashSearchTotals(store, q);
        searchDebits_->setText(formatMoney(t.debits));
        searchCredits_->setText(formatMoney(t.credits));
    });
}

void CAIXA::openDay(int row) {
    const QDate day = searchGrid_->value(row, col::date).toDate();
    const QString shown = searchGrid_->text(row, col::date);
    if (!ask(this, u"Deseja consultar o caixa do dia: "_s + shown)) return;
    if (!day.isValid()) return;
    dayField_->setText(formatDate(day));
    previousUpTo_ = day.addDays(-1);
    endField_->setText(formatDate(previousUpTo_));
    start();
    tabs_->setTab(0);
}

} // namespace rtx::ui
