#include "finance/recibo.h"

#include "finance/core/ledger.h"
#include "finance/core/receipts.h"
#include "kit/controls.h"
#include "kit/kit.h"
#include "output/core/values.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "registers/core/employees.h"
#include "registers/core/parties.h"
#include "session/modules.h"
#include "store/changes.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;
namespace col = rtx::finance::receiptcol;

RTX_REGISTER_MODULE("Recibo", [](QWidget* parent) -> QDialog* { return new RECIBO(parent); });

namespace {

const QString kAlreadyOnFile = u"Este recibo já foi incluido, [Verifique]."_s;

} // namespace

FormDefinition RECIBO::form() {
    using F = FormField;
    using R = FormAction::Role;
    FormDefinition f;
    f.screen = u"RECIBO"_s;
    f.title = u"Recibo"_s;
    f.table = fin::receiptTable;
    f.tabs = {u"01- Recibo"_s, u"02- Pesquisa"_s};
    F number = F::text(u"R1"_s, col::number, u"NÚMERO:"_s, {0, 0, 0}).fixed(90);
    number.maxLength = 5;
    number.digitsOnly = true;
    F date = F::masked(u"R4"_s, col::date, u"DATA:"_s, MaskEdBox::dateMask(), {0, 0, 1}).fixed(110);
    date.onNew = F::OnNew::Set;
    date.todayWhenEmpty = true;
    f.fields = {
        number,
        F::combo(u"R2"_s, col::payer, u"RECEBEMOS DE:"_s, {}, true, {0, 1, 0, 2}),
        F::text(u"R3"_s, col::payerDocument, u"CNPJ/CPF:"_s, {0, 2, 0, 2}),
        date,
        F::text(u"R5"_s, col::address, u"ENDEREÇO:"_s, {0, 3, 0, 2}),
        F::text(u"R6"_s, col::district, u"BAIRRO:"_s, {0, 4, 0, 2}),
        F::text(u"R7"_s, col::city, u"CIDADE:"_s, {0, 5, 0}),
        F::combo(u"R8"_s, col::state, u"UF:"_s, fin::receiptStates(), true, {0, 5, 1}).fixed(70),
        F::masked(u"R9"_s, col::amount, u"A IMPORTÂNCIA DE:"_s, MaskEdBox::moneyMask(), {0, 6, 0})
            .fixed(140),
        F::text(u"R10"_s, col::words, {}, {0, 7, 0, 2}),
        F::text(u"R11"_s, col::about, u"REFERENTE:"_s, {0, 8, 0, 2}),
        F::text(u"R12"_s, col::cheque, u"BANCO / Nº CHEQUE"_s, {0, 9, 0, 2}),
        F::combo(u"R13"_s, col::receivedBy, u"RECEBIDO POR:"_s, {}, true, {0, 10, 0, 2}),
        // The letterhead a receipt keeps; a new one takes the company's as it is saved.
        F::hidden(u"R15"_s, col::companyName),
        F::hidden(u"R16"_s, col::companyPhone),
        F::hidden(u"R17"_s, col::companySpare),
        F::hidden(u"R18"_s, col::companyAddress),
        F::hidden(u"R19"_s, col::companyCity),
        F::hidden(u"R20"_s, col::companyCnpj),
        F::hidden(u"R21"_s, col::companyOther),
    };
    const QColor blue(0x1565C0), green(0x2E7D32), red(0xC62828), grey(0x616161);
    f.actions = {
        {u"Command16"_s, u"Grava"_s, u"Grava"_s, u"\u2713"_s, green, R::Save, {}},
        {u"Command8"_s, u"Novo"_s, u"Novo"_s, u"+"_s, blue, R::New, {}},
        {u"Command11"_s, u"Exclui"_s, u"Exclui"_s, u"\u2717"_s, red, R::Other, {}},
        {u"Command1"_s, u"Imprime"_s, u"Imprime"_s, u"\u2399"_s, grey, R::Other, {}},
        {u"Command7"_s, u"Volta"_s, u"Volta"_s, u"\u2190"_s, grey, R::Close, {}},
    };
    f.bar = FormDefinition::Bar::Buttons;
    f.tabOrder = {u"R1"_s, u"R2"_s, u"R3"_s,  u"R4"_s,  u"R5"_s,  u"R6"_s, u"R7"_s,
                  u"R8"_s, u"R9"_s, u"R10"_s, u"R11"_s, u"R12"_s, u"R13"_s};
    f.firstField = u"R1"_s;
    f.list.tab = 1;
    f.list.headers = {u"Número"_s, u"Data"_s, u"Valor"_s, u"Nome"_s, u"Cd"_s};
    f.list.widths = {80, 100, 110, 380};
    f.savedMessage = u"Inclusão realizada com sucesso."_s;
    f.size = QSize(760, 560);
    return f;
}

RECIBO::RECIBO(QWidget* parent) : RecordForm(form(), parent) {
    // The list keeps the number it opens in a last column of its own, out of sight.
    auto* list = findChild<MSFlexGrid*>(u"Grid1"_s);
    list->setColumnHidden(4, true);
    fitList(list, 12);
    auto* top = new QHBoxLayout;
    auto* showButton = pushButton(u"Command2"_s, u"Mostrar"_s, page(1));
    top->addWidget(showButton);
    top->addStretch();
    static_cast<QVBoxLayout*>(page(1)->layout())->insertLayout(0, top);
    connect(showButton, &QPushButton::clicked, this, [this] { refreshList(); });

    // The CNPJs with letters are written in capitals, whatever the keyboard gives.
    auto* payerDocument = static_cast<QLineEdit*>(field(u"R3"_s));
    connect(payerDocument, &QLineEdit::textEdited, this, [payerDocument](const QString& typed) {
        if (typed == typed.toUpper()) return;
        const int caret = payerDocument->cursorPosition();
        payerDocument->setText(typed.toUpper());
        payerDocument->setCursorPosition(caret);
    });

    RecordSource s;
    s.keyColumn = col::number;
    s.load = [](Store& store, const QVariant& key) -> std::optional<Row> {
        if (const auto r = fin::loadReceipt(store, key.toString()))
            return toRow(*r, fin::receiptFields());
        return std::nullopt;
    };
    s.check = [](const Row& row) { return fin::checkReceipt(fromRow(row, fin::receiptFields())); };
    // A saved receipt is never written over: its number again is said so, and nothing is
    // written.
    s.confirm = [](QWidget* screen, const Row& row) {
        bool onFile = false;
        if (!guarded(screen, [&] {
                onFile = fin::loadReceipt(Store::current(), row.value(col::number).toString())
                             .has_value();
            }))
            return false;
        if (onFile) notice(screen, kAlreadyOnFile);
        return !onFile;
    };
    s.save = [](Store& store, const Row& row, const QVariant&) -> QVariant {
        fin::Receipt r = fromRow(row, fin::receiptFields());
        r.company = fin::receiptCompany(store);
        // Another station saved this number meanwhile.
        if (!fin::addReceipt(store, r)) throw StoreError(kAlreadyOnFile);
        return r.number;
    };
    s.list = [](Store& store) {
        QList<QStringList> rows;
        for (const fin::Receipt& r : fin::allReceipts(store))
            rows << QStringList{r.number, r.date.isValid() ? formatDate(r.date) : QString(),
                                formatMoney(r.amount), r.payer, r.number};
        return rows;
    };
    setSource(s);

    // What is deleted or printed is the amount and the date as typed: both are read first,
    // or the action stops.
    onAction(button(u"Command11"_s), this, [this] { deleteReceipt(); });
    onAction(button(u"Command1"_s), this, [this] { print(); });
    connect(this, &RecordForm::fieldLeft, this, [this](const QString& name) {
        if (name == u"R1"_s)
            openNumber();
        else if (name == u"R2"_s)
            fillFromPayer();
    });
    connect(this, &RecordForm::cleared, this, [this] {
        // The amount is left empty, not "0,00": crossing it then writes the empty words.
        static_cast<MaskEdBox*>(field(u"R9"_s))->QLineEdit::clear();
        drawNumber();
    });
    report_ = new ReportControl(this);

    fillLists();
    start();
    static_cast<MaskEdBox*>(field(u"R9"_s))->QLineEdit::clear();
    drawNumber();
}

void RECIBO::fillLists() {
    guarded(this, [&] {
        Store& store = Store::current();
        static_cast<QComboBox*>(field(u"R13"_s))->addItems(registers::employeeNames(store));
        static_cast<QComboBox*>(field(u"R2"_s))
            ->addItems(fin::partyNames(store, registers::partyTable(registers::Party::Client)));
    });
}

void RECIBO::drawNumber() {
    guarded(this, [&] { setValue(u"R1"_s, fin::nextReceiptNumber(Store::current())); });
}

void RECIBO::openNumber() {
    const QString typed = value(u"R1"_s).toString();
    if (typed.isEmpty()) return;
    const QString number = padCode(typed.toLongLong(), 5);
    setValue(u"R1"_s, number);
    load(number);
}

void RECIBO::fillFromPayer() {
    const QString name = value(u"R2"_s).toString();
    if (name.isEmpty()) return;
    std::optional<fin::Payer> client;
    guarded(this, [&] { client = fin::payerOf(Store::current(), name); });
    if (!client) return; // a payer outside the register is typed by hand
    // A CNPJ with letters is shown as the revenue service writes it; the all-digit numbers are
    // copied as the register keeps them.
    const bool letters = std::any_of(client->document.begin(), client->document.end(),
                                     [](QChar c) { return c.isLetter(); });
    setValue(u"R3"_s, letters ? output::formatTaxNumber(client->document) : client->document);
    setValue(u"R5"_s, client->address);
    setValue(u"R6"_s, client->district);
    setValue(u"R7"_s, client->city);
    setValue(u"R8"_s, client->state);
}

bool RECIBO::eventFilter(QObject* watched, QEvent* event) {
    // The words follow the amount as it was typed, before the field puts it in its form: an
    // amount left empty writes the empty words, not those of zero.
    if (event->type() == QEvent::FocusOut && watched == field(u"R9"_s)) {
        if (leftField(static_cast<QFocusEvent*>(event))) writeWords();
    }
    return RecordForm::eventFilter(watched, event);
}

// An amount that cannot be read writes no words: the field says so as it is left.
void RECIBO::writeWords() {
    auto* amount = static_cast<MaskEdBox*>(field(u"R9"_s));
    amount->setStyleSheet(QString());
    const QString typed = amount->QLineEdit::text();
    if (typed.trimmed().isEmpty()) {
        setValue(u"R10"_s, fin::receiptWords(std::nullopt));
        return;
    }
    if (const auto cents = parseMoney(typed)) setValue(u"R10"_s, fin::receiptWords(*cents));
}

void RECIBO::deleteReceipt() {
    if (value(u"R2"_s).toString().isEmpty()) {
        notice(this, u"Realize a consulta, para depois apagar."_s);
        return;
    }
    if (!ask(this, u"Deseja realmente apagar este recibo?"_s)) return;
    bool removed = false;
    if (!guarded(this,
                 [&] {
                     UnitOfWork unit(Store::current());
                     removed = fin::removeReceipt(Store::current(), value(u"R1"_s).toString());
                     unit.commit();
                 }) ||
        !removed)
        return;
    notice(this, u"Exclusão realizada com sucesso."_s);
    newRecord();
}

void RECIBO::print() {
    if (value(u"R2"_s).toString().isEmpty()) {
        notice(this, u"Recibo não localizado."_s);
        return;
    }
    showPrinterDialog(this);
    // The print comes from the table: a receipt not yet saved prints nothing.
    output::ReportDefinition& d = report_->definition();
    d.setDataSource(fin::receiptTable);
    d.setLayoutFile(u"RECI.rpt"_s);
    d.setSelection(output::Selection::byKey(col::number, value(u"R1"_s).toString()));
    report_->run();
}

} // namespace rtx::ui
