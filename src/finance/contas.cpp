#include "finance/contas.h"

#include "finance/core/printouts.h"
#include "output/reportcontrol.h"

#include "kit/kit.h"
#include "registers/core/lists.h"
#include "registers/lists.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;
namespace col = rtx::finance::billcol;
namespace reg = rtx::registers;

RTX_REGISTER_MODULE("Contas a pagar",
                    [](QWidget* parent) -> QDialog* { return new Pagar(parent); });
RTX_REGISTER_MODULE("Contas a receber",
                    [](QWidget* parent) -> QDialog* { return new receber(parent); });

namespace {

const QString kCode = u"CODIGO"_s;
const QString kNearby = u"Busca registro pelo campo ao lado."_s;
const QString kListEdit = u"Incluir / Excluir"_s;

FormField date(const QString& name, const QString& column, const QString& caption,
               FormPlace place) {
    FormField f = FormField::masked(name, column, caption, MaskEdBox::dateMask(), place);
    f.onNew = FormField::OnNew::Set;
    f.todayWhenEmpty = true;
    return f.fixed(110);
}

FormField money(const QString& name, const QString& column, const QString& caption,
                FormPlace place) {
    return FormField::masked(name, column, caption, MaskEdBox::moneyMask(), place).fixed(130);
}

FormField kept(FormField f) {
    f.onNew = FormField::OnNew::Keep;
    return f;
}

QList<DBGrid::Column> listColumns(fin::Ledger ledger, const QString& firstColumn) {
    const QString name = ledger == fin::Ledger::Payables ? u"Fornecedor"_s : u"Nome"_s;
    return {{firstColumn, u"Vencimento"_s, 90},
            {col::amount, u"Valor"_s, 90},
            {col::party, name, 220},
            {col::description, u"Descritivo"_s, 220},
            {col::settledAmount, u"Valor Baixa"_s, 90},
            {col::code, u"Controle"_s, 70},
            {col::group, u"Grupo"_s, 160}};
}

} // namespace

FormDefinition ContasScreen::form(fin::Ledger ledger) {
    using F = FormField;
    using R = FormAction::Role;
    const bool payables = ledger == fin::Ledger::Payables;
    const fin::LedgerKind& kind = fin::kindOf(ledger);
    FormDefinition f;
    f.screen = payables ? u"Pagar"_s : u"receber"_s;
    f.title = payables ? u"Contas a pagar"_s : u"Contas a receber"_s;
    f.heading = f.title;
    f.table = kind.table;
    f.tabs = {u"01- Cadastro"_s, u"02 - Pesquisa"_s};
    F code = F::text(kCode, col::code, u"CÓDIGO..."_s, {0, 0, 0}).fixed(80);
    code.digitsOnly = true;
    F status = kept(F::combo(u"C2"_s, col::status, u"STATUS..................."_s,
                             {kind.open, kind.settled}, false, {0, 1, 0}));
    F settled = F::masked(u"C15"_s, col::settled,
                          payables ? u"DATA DO PAGAMENTO................"_s
                                   : u"DATA DO RECEBIMENTO.............."_s,
                          MaskEdBox::dateMask(), {0, 10, 0})
                    .fixed(110);
    F period1 =
        kept(F::masked(u"k1"_s, {}, u"DT.INICIO:"_s, MaskEdBox::dateMask(), {1, 0, 0}).fixed(110));
    period1.todayWhenEmpty = true;
    F period2 =
        kept(F::masked(u"k2"_s, {}, u"DT.FINAL:"_s, MaskEdBox::dateMask(), {1, 0, 1}).fixed(110));
    period2.todayWhenEmpty = true;
    f.fields = {
        code,
        date(u"C1"_s, col::entered, u"DATA DO LANÇAMENTO.............."_s, {0, 0, 1}),
        status,
        // The document's field carries its column's name, small letter and all.
        F::text(col::document, col::document, u"NÚMERO DO DOC........................"_s,
                {0, 1, 1}),
        F::combo(u"C4"_s, col::type, u"TIPO.........."_s, {}, true, {0, 2, 0}),
        date(u"C13"_s, col::due, u"DATA DE VENCIMENTO.........."_s, {0, 2, 1}),
        F::text(u"C5"_s, col::description, u"DESCRITIVO DA CONTA.............."_s, {0, 3, 0, 2}),
        F::combo(u"C6"_s, col::party,
                 payables ? u"FORNECEDOR............................."_s
                          : u"CLIENTE........................................"_s,
                 {}, true, {0, 4, 0, 2}),
        F::combo(u"C7"_s, col::group, u"GRUPO DA CONTA......................"_s, {}, true,
                 {0, 5, 0}),
        money(u"C12"_s, col::amount, u"VALOR DA CONTA........................"_s, {0, 5, 1}),
        F::text(u"C8"_s, col::branch, u"AGÊNCIA......................................."_s,
                {0, 6, 0}),
        F::text(u"C9"_s, col::account, u"CONTA..."_s, {0, 6, 1}),
        F::text(u"C10"_s, col::cheque, u"NR.CHEQUE....."_s, {0, 7, 0}),
        F::text(u"C11"_s, col::thirdParty, u"CHEQUE DE TERCEIRO.............."_s, {0, 7, 1}),
        F::memo(u"C14"_s, col::remarks, u"OBSERVAÇÕES............................."_s,
                {0, 8, 0, 2}),
        settled,
        money(u"C16"_s, col::settledAmount,
              payables ? u"VALOR PAGO....."_s : u"VALOR RECEBIDO..."_s, {0, 10, 1}),
        period1,
        period2,
        kept(F::combo(u"K3"_s, {}, u"BUSCA POR NOME:"_s, {}, true, {1, 1, 0, 2})),
        kept(F::combo(u"K4"_s, {}, u"BUSCA POR GRUPO:"_s, {}, true, {1, 2, 0, 2})),
        kept(F::option(u"Option1"_s, {}, payables ? u"A pagar"_s : u"A receber"_s, u"Frame2"_s)),
        kept(F::option(u"Option2"_s, {}, payables ? u"Pagas"_s : u"Recebidas"_s, u"Frame2"_s)),
    };
    f.groups = {{u"Frame2"_s, u"STATUS"_s, {1, 3, 0, 2}}};
    f.buttons = {
        {u"Command7"_s, {}, kListEdit, u"\u2630"_s, u"C4"_s, {}},
        {u"Command3"_s, {}, u"Recarrega os nomes"_s, u"\u21BB"_s, u"C6"_s, {}},
        {u"Command2"_s, {}, kListEdit, u"\u2630"_s, u"C7"_s, {}},
        {u"Command17"_s, {}, kNearby, u"\u2315"_s, u"k2"_s, {}},
        {u"Command1"_s, {}, kNearby, u"\u2315"_s, u"K3"_s, {}},
        {u"Command13"_s, {}, kNearby, u"\u2315"_s, u"K4"_s, {}},
    };
    const QColor blue(0x1F618D), green(0x1E8449), red(0x922B21), grey(0x5D6D7E);
    f.actions = {
        {u"Command16"_s, u"Grava"_s, u"Grava"_s, u"\u2714"_s, green, R::Save,
         QKeySequence(Qt::CTRL | Qt::Key_G)},
        {u"Command18"_s, u"Novo"_s, u"Novo"_s, u"\u271A"_s, blue, R::New,
         QKeySequence(Qt::CTRL | Qt::Key_N)},
        {u"Command19"_s, u"Exclui"_s, u"Exclui"_s, u"\u2716"_s, red, R::Delete, {}},
        {u"Command14"_s, u"Relatorio"_s, u"Relatório"_s, u"\u2630"_s, grey, R::Other, {}},
        {u"Command15"_s, u"Volta"_s, u"Volta"_s, u"\u21A9"_s, grey, R::Close, {}},
        {u"Command21"_s, {}, u"Primeiro"_s, u"\u00AB"_s, blue, R::First, {}, true},
        {u"Command22"_s, {}, u"Anterior"_s, u"\u25C0"_s, blue, R::Previous, {}},
        {u"Command23"_s, {}, u"Próximo"_s, u"\u25B6"_s, blue, R::Next, {}},
        {u"Command20"_s, {}, u"Último"_s, u"\u00BB"_s, blue, R::Last, {}},
    };
    f.bar = FormDefinition::Bar::Tools;
    f.firstField = u"C1"_s;
    f.tabOrder = {kCode,    u"C1"_s,  u"C2"_s,  col::document, u"C4"_s,  u"C5"_s,
                  u"C6"_s,  u"C7"_s,  u"C8"_s,  u"C9"_s,       u"C10"_s, u"C11"_s,
                  u"C12"_s, u"C13"_s, u"C14"_s, u"C15"_s,      u"C16"_s};
    // Exclui asks even with no bill on the screen, and then deletes nothing.
    f.searchFirst = QString();
    f.savedMessage = u"Operação realizada."_s;
    f.size = QSize(980, 680);
    return f;
}

ContasScreen::ContasScreen(fin::Ledger ledger, QWidget* parent)
    : RecordForm(form(ledger), parent), ledger_(ledger) {
    // The status is one of the two words, never typed.
    if (QComboBox* status = combo(u"C2"_s)) status->setEditable(false);
    buildSearchTab();
    buildFoot();
    connectButtons();
    report_ = new ReportControl(this);

    RecordSource s;
    s.keyColumn = col::code;
    s.load = [ledger](Store& store, const QVariant& key) -> std::optional<Row> {
        if (const auto bill = fin::loadBill(store, ledger, key.toString()))
            return toRow(*bill, fin::billFields());
        return std::nullopt;
    };
    s.check = [ledger](const Row& row) {
        return fin::checkBill(ledger, fromRow(row, fin::billFields()));
    };
    s.confirm = [this, ledger](QWidget* screen, const Row& row) {
        const fin::LedgerKind& kind = fin::kindOf(ledger);
        postToCash_ = fromRow(row, fin::billFields()).status == kind.settled &&
                      ask(screen, kind.cashQuestion);
        return true;
    };
    s.save = [this, ledger](Store& store, const Row& row, const QVariant&) -> QVariant {
        return fin::saveBill(store, ledger, fromRow(row, fin::billFields()), postToCash_);
    };
    s.remove = [ledger](Store& store, const QVariant& found, const Row&) {
        fin::removeBill(store, ledger, found.toString());
    };
    s.walk = [ledger](Store& store, Walk w, const QVariant& found) -> QVariant {
        return fin::walkBills(store, ledger, w, found.toString());
    };
    setSource(s);

    connect(this, &RecordForm::fieldLeft, this, [this](const QString& name) {
        if (name == kCode) loadTyped();
    });
    connect(this, &RecordForm::saved, this, [this](const QVariant& code) {
        setValue(kCode, code);
        setFoundKey(code);
    });
    connect(this, &RecordForm::cleared, this, [this] { guarded(this, [this] { showCount(); }); });

    start();
    const QDate today = QDate::currentDate();
    setValue(u"k1"_s, today);
    setValue(u"k2"_s, today);
    setValue(u"Option1"_s, true);
    fillLists();
    followRows();
    guarded(this, [this] {
        showNewBills();
        showCount();
    });
}

QComboBox* ContasScreen::combo(const QString& name) const {
    return qobject_cast<QComboBox*>(field(name));
}

void ContasScreen::buildSearchTab() {
    QGridLayout* grid = fieldGrid(1);
    list_ = new DBGrid(page(1));
    list_->setObjectName(u"Grid1"_s);
    list_->setColumns(listColumns(ledger_, col::due));
    // The list takes the row the form left to stretch under the fields.
    const int row = grid->rowCount() - 1;
    grid->addWidget(list_, row, 0, 1, grid->columnCount());
    grid->setRowStretch(row, 1);
    auto* line = new QHBoxLayout;
    auto* caption = new QLabel(u"TOTAL:"_s, page(1));
    caption->setObjectName(u"Label20"_s);
    total_ = new QLabel(formatMoney(0), page(1));
    total_->setObjectName(u"t1"_s);
    QFont bold = total_->font();
    bold.setBold(true);
    total_->setFont(bold);
    line->addStretch();
    line->addWidget(caption);
    line->addWidget(total_);
    grid->addLayout(line, row + 1, 0, 1, grid->columnCount());
    connect(list_, &DBGrid::recordActivated, this, [this](int r) { openListed(r); });

    // The heading over the fields of the settlement.
    QGridLayout* first = fieldGrid(0);
    auto* heading = new QLabel(ledger_ == fin::Ledger::Payables ? u"INFORMAÇÕES DO PAGAMENTO:"_s
                                                                : u"INFORMAÇÕES DO RECEBIMENTO:"_s,
                               page(0));
    heading->setObjectName(u"Label17"_s);
    heading->setFont(bold);
    first->addWidget(heading, 9, 0, 1, first->columnCount());
}

void ContasScreen::buildFoot() {
    auto* line = new QHBoxLayout;
    auto* caption = new QLabel(u"REGISTROS:"_s, this);
    caption->setObjectName(u"Label18"_s);
    count_ = new QLabel(this);
    count_->setObjectName(u"nr"_s);
    line->addStretch();
    line->addWidget(caption);
    line->addWidget(count_);
    foot()->addLayout(line);
}

void ContasScreen::connectButtons() {
    const auto on = [this](const QString& name, auto action) {
        if (QAbstractButton* b = button(name)) connect(b, &QAbstractButton::clicked, this, action);
    };
    // The searches and the report read the period as typed, or stop.
    const auto settled = [this](const QString& name, std::function<void()> action) {
        onAction(button(name), this, std::move(action));
    };
    settled(u"Command17"_s, [this] { find(fin::BillFilter::Period); });
    settled(u"Command1"_s, [this] { find(fin::BillFilter::Party); });
    settled(u"Command13"_s, [this] { find(fin::BillFilter::Group); });
    on(u"Command3"_s, [this] { reloadNames(); });
    settled(u"Command14"_s, [this] { report(); });
    on(u"Command7"_s, [this] {
        cadtipo list(this);
        list.exec();
    });
    on(u"Command2"_s, [this] {
        cadcontas list(this);
        list.exec();
    });
}

void ContasScreen::fillLists() {
    const auto fill = [this](const QString& name, const QStringList& items) {
        QComboBox* c = combo(name);
        if (!c) return;
        const QString typed = c->currentText();
        c->clear();
        c->addItems(items);
        c->setEditText(typed);
    };
    guarded(this, [&] {
        Store& store = Store::current();
        // The names at opening are the clients', on both ledgers.
        const QStringList names = fin::partyNames(store, u"clientes"_s);
        fill(u"C6"_s, names);
        fill(u"K3"_s, names);
        fill(u"C4"_s, reg::listNames(store, reg::lists::financialTypes));
        const QStringList groups = reg::listNames(store, reg::lists::accountGroups);
        fill(u"C7"_s, groups);
        fill(u"K4"_s, groups);
    });
}

// Bills saved or settled elsewhere (a dispatch posting its receivable, billing writing one
// off) show in the list with its total, and the combos follow their registers; the bill
// being typed stays.
void ContasScreen::followRows() {
    refreshOn(this, {fin::kindOf(ledger_).table}, [this] {
        if (!shown_.table.isEmpty()) {
            list_->requery();
            total_->setText(formatMoney(fin::listTotal(Store::current(), shown_)));
        }
        showCount();
    });
    refreshOn(this, {reg::lists::financialTypes}, [this] {
        refillCombo(combo(u"C4"_s), reg::listNames(Store::current(), reg::lists::financialTypes));
    });
    refreshOn(this, {reg::lists::accountGroups}, [this] {
        const QStringList groups = reg::listNames(Store::current(), reg::lists::accountGroups);
        refillCombo(combo(u"C7"_s), groups);
        refillCombo(combo(u"K4"_s), groups);
    });
    refreshOn(this, {u"clientes"_s, u"fornecedores"_s}, [this] {
        const QStringList names = fin::partyNames(Store::current(), namesFrom_);
        refillCombo(combo(u"C6"_s), names);
        refillCombo(combo(u"K3"_s), names);
    });
}

void ContasScreen::reloadNames() {
    guarded(this, [this] {
        const QStringList names =
            fin::partyNames(Store::current(), fin::kindOf(ledger_).namesTable);
        namesFrom_ = fin::kindOf(ledger_).namesTable;
        for (const QString& name : {u"C6"_s, u"K3"_s}) {
            QComboBox* c = combo(name);
            c->clear();
            c->addItems(names);
            c->setEditText(QString());
        }
    });
}

void ContasScreen::showCount() {
    count_->setText(QString::number(fin::billCount(Store::current(), ledger_)));
}

void ContasScreen::showList(const PageQuery& query) {
    list_->setQuery(query);
    list_->refresh();
    shown_ = query;
    total_->setText(formatMoney(fin::listTotal(Store::current(), query)));
}

void ContasScreen::showNewBills() {
    list_->setColumns(listColumns(ledger_, col::entered));
    showList(fin::newBills(Store::current(), ledger_));
}

void ContasScreen::find(fin::BillFilter by) {
    fin::BillQuery q;
    q.by = by;
    q.from = value(u"k1"_s).toDate();
    q.to = value(u"k2"_s).toDate();
    q.settled = value(u"Option2"_s).toBool();
    q.text = value(by == fin::BillFilter::Group ? u"K4"_s : u"K3"_s).toString();
    guarded(this, [&] {
        list_->setColumns(listColumns(ledger_, col::due));
        showList(fin::billSearch(Store::current(), ledger_, q));
    });
}

void ContasScreen::showDue(const QDate& from, const QDate& to) {
    tabs()->setTab(1);
    setValue(u"k1"_s, from);
    setValue(u"k2"_s, to);
    setValue(u"Option1"_s, true);
    find(fin::BillFilter::Period);
}

// The code typed brings its bill; one not on file leaves the fields, so that the save makes
// a new bill under it.
void ContasScreen::loadTyped() {
    const QString code = value(kCode).toString();
    setFoundKey(code.isEmpty() ? QVariant() : QVariant(code));
    if (!code.isEmpty()) load(code);
}

// A row of the list: its code goes into the first tab and is left, as if typed.
void ContasScreen::openListed(int row) {
    if (row < 0) return;
    const QString code = list_->text(row, col::code);
    tabs()->setTab(0);
    setValue(kCode, code);
    field(kCode)->setFocus(Qt::OtherFocusReason);
    loadTyped();
    focusNextChild();
}

// The list as the second tab shows it, under the ledger's heading and the period typed.
void ContasScreen::report() {
    const QDate from = value(u"k1"_s).toDate();
    const QDate to = value(u"k2"_s).toDate();
    if (!guarded(this, [&] { fin::fillBillReport(Store::current(), ledger_, from, to, shown_); }))
        return;
    output::ReportDefinition& r = report_->definition();
    r.setDataSource(fin::billReportTable);
    r.setLayoutFile(u"contas.rpt"_s);
    report_->run();
}

Pagar::Pagar(QWidget* parent) : ContasScreen(fin::Ledger::Payables, parent) {}

receber::receber(QWidget* parent) : ContasScreen(fin::Ledger::Receivables, parent) {}

} // namespace rtx::ui
