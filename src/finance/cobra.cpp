#include "finance/cobra.h"
#include "kit/controls.h"

#include "finance/cobra1.h"
#include "finance/core/invoices.h"
#include "finance/core/ledger.h"
#include "kit/kit.h"
#include "registers/core/parties.h"
#include "session/modules.h"
#include "store/formats.h"
#include "store/schema.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;

RTX_REGISTER_MODULE("Cobrança", [](QWidget* parent) -> QDialog* { return new cobra(parent); });

namespace {

const QString kMark = u"Ok"_s;
const int kMarkColumn = 5;

QString dateText(const QDate& d) {
    return d.isValid() ? formatDate(d) : QString();
}

} // namespace

cobra::cobra(QWidget* parent) : QDialog(parent) {
    setObjectName(u"cobra"_s);
    setWindowTitle(u"Cobrança"_s);
    auto* outer = new QVBoxLayout(this);

    auto* top = new QGridLayout;
    clientBox_ = new QComboBox(this);
    clientBox_->setObjectName(u"A1"_s);
    clientBox_->setEditable(true);
    clientBox_->setInsertPolicy(QComboBox::NoInsert);
    fromField_ = new MaskEdBox(MaskEdBox::dateMask(), this);
    fromField_->setObjectName(u"k1"_s);
    toField_ = new MaskEdBox(MaskEdBox::dateMask(), this);
    toField_->setObjectName(u"k2"_s);
    // An empty date of the period is no date, as it always was; one that is no real date is
    // said so as it is left.
    for (MaskEdBox* m : {fromField_, toField_})
        m->setFixedWidth(110);
    auto* oneButton = pushButton(u"Command6"_s, u"..."_s, this);
    auto* allButton = pushButton(u"Command9"_s, u"..."_s, this);
    for (QPushButton* b : {oneButton, allButton}) {
        b->setToolTip(u"Busca pelo campo ao lado."_s);
        b->setFixedWidth(36);
    }
    top->addWidget(new QLabel(u"SELECIONE O CLIENTE:"_s, this), 0, 0);
    top->addWidget(clientBox_, 0, 1, 1, 3);
    top->addWidget(oneButton, 0, 4);
    top->addWidget(new QLabel(u"DATA INICIO:"_s, this), 1, 0);
    top->addWidget(fromField_, 1, 1);
    top->addWidget(new QLabel(u"DATA FINAL:"_s, this), 1, 2);
    top->addWidget(toField_, 1, 3);
    top->addWidget(allButton, 1, 4);
    top->setColumnStretch(5, 1);
    outer->addLayout(top);

    tabs_ = new SSTab(this);
    tabs_->setObjectName(u"SSTab1"_s);
    auto [billsPage, bills] =
        gridPage(u"Grid1"_s,
                 {u"Nr. Atendimento"_s, u"Data"_s, u"Cliente"_s, u"Courier (entregador)"_s,
                  u"Valor"_s, u"Ps"_s, u"Posição"_s},
                 {110, 90, 260, 170, 90, 40, 90},
                 u"PARA SELECIONAR UMA CONTA, DE UM DUPLO CLIQUE SOBRE A MESMA."_s);
    billsGrid_ = bills;
    auto [dispatchPage, dispatches] = gridPage(
        u"Grid2"_s,
        {u"Nr. Atendimento"_s, u"Data"_s, u"Cliente"_s, u"Courier (entregador)"_s,
         u"Valor Cliente"_s, u"Valor Courier"_s},
        {110, 90, 280, 180, 100, 100}, u"PARA LANÇAR O VALOR, DE UM DUPLO CLIQUE SOBRE A MESMA."_s);
    dispatchGrid_ = dispatches;
    tabs_->addTab(billsPage, u"01- Cobrança"_s);
    tabs_->addTab(dispatchPage, u"02- Lançamentos"_s);
    outer->addWidget(tabs_, 1);

    totalLabel_ = totalRow(u"TT"_s, formatMoney(0), outer, this);

    auto* actions = new QGridLayout;
    const QList<std::tuple<QString, QString, bool>> buttons{
        {u"Command3"_s, u"> Baixar contas para todos"_s, true},
        {u"Command4"_s, u"> Baixar contas selecionadas"_s, true},
        {u"Command16"_s, u"> Baixar fatura"_s, true},
        {u"Command1"_s, u"> Imprimir recibo para todos"_s, false},
        {u"Command2"_s, u"> Imprimir recibo para selecionadas"_s, false},
        {u"Command5"_s, u"> Imprimir relatório de cobrança"_s, false},
        {u"Command15"_s, u"Volta"_s, true}};
    int i = 0;
    for (const auto& [name, text, enabled] : buttons) {
        auto* b = pushButton(name, text, this);
        // This screen prints nothing: the receipt buttons stand switched off.
        b->setEnabled(enabled);
        actions->addWidget(b, i / 3, i % 3);
        ++i;
    }
    outer->addLayout(actions);

    const auto on = [this](const QString& name, auto action) {
        connect(namedControl<QAbstractButton>(this, name), &QAbstractButton::clicked, this, action);
    };
    // A period that is no period lists nothing and writes nothing off: it is said so first.
    const auto settled = [this](const QString& name, std::function<void()> action) {
        onAction(findChild<QAbstractButton*>(name), this, std::move(action));
    };
    settled(u"Command6"_s, [this] { listClient(); });
    settled(u"Command9"_s, [this] { listAll(); });
    settled(u"Command3"_s, [this] { writeOff(false); });
    settled(u"Command4"_s, [this] { writeOff(true); });
    settled(u"Command16"_s, [this] { writeOffInvoice(); });
    on(u"Command15"_s, [this] { reject(); });
    connect(billsGrid_, &MSFlexGrid::rowDoubleClicked, this, [this](int row) { toggleMark(row); });
    connect(dispatchGrid_, &MSFlexGrid::rowDoubleClicked, this,
            [this](int row) { changeValues(row); });

    setupFields(this);
    comboInteligente(clientBox_);
    keepOnEscape(this);
    resize(1000, 640);
    centreScreen(this);

    const QString today = formatDate(QDate::currentDate());
    fromField_->setText(today);
    toField_->setText(today);
    guarded(this, [&] {
        // Each name once, as the register's grouped list gave it.
        QStringList names =
            fin::partyNames(Store::current(), registers::partyTable(registers::Party::Client));
        names.removeDuplicates();
        clientBox_->addItems(names);
    });
    clientBox_->setEditText(QString());
    followRows();
}

std::optional<std::pair<QDate, QDate>> cobra::period() {
    const auto from = fromField_->settledDate();
    const auto to = from ? toField_->settledDate() : std::nullopt;
    if (!from || !to) return std::nullopt;
    return std::pair{*from, *to};
}

bool cobra::fill(const QString& client, bool withStatus) {
    const auto dates = period();
    if (!dates) return false;
    shown_ = Listing{dates->first, dates->second, client, withStatus, false};
    return showBills();
}

bool cobra::showBills() {
    const Listing& shown = *shown_;
    const bool withStatus = shown.withStatus;
    totalLabel_->setText(formatMoney(0));
    billsGrid_->setRows(1);
    listed_.clear();
    if (!guarded(this, [&] {
            listed_ = fin::openReceivables(Store::current(), shown.from, shown.to, shown.client);
        }))
        return false;
    qint64 total = 0;
    billsGrid_->setUpdatesEnabled(false);
    for (const fin::BillingRow& r : listed_) {
        billsGrid_->addItem(QStringList{r.document, dateText(r.due), r.client, r.courier,
                                        formatMoney(r.amount), QString(),
                                        withStatus ? r.status : QString()}
                                .join(u'\t'));
        total += r.amount;
    }
    billsGrid_->setUpdatesEnabled(true);
    totalLabel_->setText(formatMoney(total));
    stripeGrid(billsGrid_, QColor(0x00, 0xFF, 0xFF));
    return true;
}

void cobra::listClient() {
    const QString client = clientBox_->currentText();
    if (client.isEmpty()) {
        notice(this, u"Selecione o cliente antes."_s);
        clientBox_->setFocus();
        return;
    }
    fill(client, false);
}

void cobra::showClient(const QString& client, const QDate& from, const QDate& to) {
    tabs_->setTab(0);
    clientBox_->setEditText(client);
    fromField_->setText(formatDate(from));
    toField_->setText(formatDate(to));
    listClient();
}

void cobra::listAll() {
    if (!fill(QString(), true)) return;
    shown_->dispatches = true;
    showDispatches();
}

void cobra::showDispatches() {
    dispatchGrid_->setRows(1);
    QList<fin::BilledDispatch> rows;
    const fin::DispatchValues& values = fin::dispatchValues();
    if (values.ofPeriod &&
        !guarded(this, [&] { rows = values.ofPeriod(Store::current(), shown_->from, shown_->to); }))
        return;
    dispatchGrid_->setUpdatesEnabled(false);
    for (const fin::BilledDispatch& d : rows)
        dispatchGrid_->addItem(QStringList{d.code, dateText(d.date), d.client, d.courier,
                                           formatMoney(d.clientValue), formatMoney(d.courierValue)}
                                   .join(u'\t'));
    dispatchGrid_->setUpdatesEnabled(true);
    stripeGrid(dispatchGrid_, QColor(0x00, 0xFF, 0xFF));
}

// A dispatch's values changed (cobra1, Atendimento), a receivable posted or settled: the
// lists are read again for the period they show, the marked rows still marked.
void cobra::followRows() {
    const QString receivables = fin::kindOf(fin::Ledger::Receivables).table;
    // The dispatches are read through the billing core; their table is named here only to
    // hear of their changes.
    const QString dispatches = u"atendimentos"_s;
    refreshOn(this, {receivables, dispatches}, [this] {
        if (!shown_) return;
        QSet<QString> marked;
        for (int i = 0; i < listed_.size(); ++i)
            if (billsGrid_->textMatrix(billsGrid_->fixedRows() + i, kMarkColumn) == kMark)
                marked << listed_[i].document;
        keepingRow(billsGrid_, [this] { showBills(); });
        for (int i = 0; i < listed_.size(); ++i)
            if (marked.contains(listed_[i].document))
                billsGrid_->setTextMatrix(billsGrid_->fixedRows() + i, kMarkColumn, kMark);
        if (shown_->dispatches) keepingRow(dispatchGrid_, [this] { showDispatches(); });
    });
    const QString clients = registers::partyTable(registers::Party::Client);
    refreshOn(this, {clients}, [this, clients] {
        QStringList names = fin::partyNames(Store::current(), clients);
        names.removeDuplicates();
        refillCombo(clientBox_, names);
    });
}

void cobra::toggleMark(int row) {
    if (row < billsGrid_->fixedRows()) return;
    const bool marked = billsGrid_->textMatrix(row, kMarkColumn) == kMark;
    billsGrid_->setTextMatrix(row, kMarkColumn, marked ? QString() : kMark);
}

void cobra::writeOff(bool markedOnly) {
    if (!ask(this, u"Confirma operação?"_s)) return;
    QList<fin::WriteOff> rows;
    for (int i = 0; i < listed_.size(); ++i) {
        const int row = billsGrid_->fixedRows() + i;
        if (markedOnly && billsGrid_->textMatrix(row, kMarkColumn) != kMark) continue;
        rows.append({listed_[i].document, listed_[i].amount, listed_[i].client});
    }
    // One unit: a failure leaves every row open and the book as it was.
    if (!guarded(this, [&] { fin::writeOff(Store::current(), rows); })) return;
    listAll();
    notice(this, u"Operação realizada com sucesso."_s);
}

void cobra::writeOffInvoice() {
    const auto typed = askText(this, u"Baixar fatura"_s, u"Número da fatura paga:"_s);
    if (!typed) return;
    QString code = typed->trimmed();
    if (code.isEmpty()) {
        notice(this, u"Digite o número da fatura."_s);
        return;
    }
    // The number as printed on the invoice, or without its leading zeros.
    bool digits = false;
    const qint64 number = code.toLongLong(&digits);
    if (digits && number > 0) code = padCode(number, rtx::table(fin::invoiceTable()).codeWidth);
    std::optional<fin::Invoice> invoice;
    if (!guarded(this, [&] { invoice = fin::loadInvoice(Store::current(), code); })) return;
    if (!invoice) {
        notice(this, u"A fatura %1 não existe."_s.arg(typed->trimmed()));
        return;
    }
    if (invoice->status == fin::invoicePaid) {
        notice(this,
               u"A fatura %1 já está paga%2."_s.arg(
                   code, invoice->paid ? u" desde "_s + formatDate(*invoice->paid) : QString()));
        return;
    }
    if (!ask(this, u"Confirma a baixa da fatura %1 de %2, R$ %3?"_s.arg(
                       code, invoice->clientName, formatMoney(invoice->total))))
        return;
    // One unit: every receivable of the invoice settled with its credit, or none.
    int settled = 0;
    if (!guarded(this, [&] { settled = fin::writeOffInvoice(Store::current(), code); })) return;
    notice(this, u"Fatura %1 baixada: %2 conta(s) recebida(s)."_s.arg(code).arg(settled));
}

void cobra::changeValues(int row) {
    if (row < dispatchGrid_->fixedRows()) return;
    for (int c : {4, 5})
        if (dispatchGrid_->textMatrix(row, c).isEmpty())
            dispatchGrid_->setTextMatrix(row, c, formatMoney(0));
    auto* values =
        new cobra1(dispatchGrid_->textMatrix(row, 0), dispatchGrid_->textMatrix(row, 2),
                   dispatchGrid_->textMatrix(row, 4), dispatchGrid_->textMatrix(row, 5), this);
    values->setAttribute(Qt::WA_DeleteOnClose);
    values->open();
}

} // namespace rtx::ui
