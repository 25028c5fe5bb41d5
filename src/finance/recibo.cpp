#include "finance/recibo.h"
#include "kit/controls.h"

#include "finance/core/ledger.h"
#include "finance/core/receipts.h"
#include "kit/kit.h"
#include "output/core/values.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "registers/core/employees.h"
#include "registers/core/parties.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;
namespace col = rtx::finance::receiptcol;

RTX_REGISTER_MODULE("Recibo", [](QWidget* parent) -> QDialog* { return new RECIBO(parent); });

namespace {} // namespace

RECIBO::RECIBO(QWidget* parent) : QDialog(parent) {
    setObjectName(u"RECIBO"_s);
    setWindowTitle(u"Recibo"_s);
    auto* outer = new QVBoxLayout(this);
    auto* menu = new QMenuBar(this);
    menu->setObjectName(u"menu"_s);
    outer->setMenuBar(menu);
    const QList<std::tuple<QString, QString, QString>> entries{
        {u"Grava"_s, u"Grava"_s, u"Command16"_s},
        {u"Novo"_s, u"Novo"_s, u"Command8"_s},
        {u"Exclui"_s, u"Exclui"_s, u"Command11"_s},
        {u"Imprime"_s, u"Imprime"_s, u"Command1"_s},
        {u"Volta"_s, u"Volta"_s, u"Command7"_s}};
    tabs_ = new SSTab(this);
    tabs_->setObjectName(u"SSTab1"_s);
    tabs_->addTab(buildFormTab(), u"01- Recibo"_s);
    tabs_->addTab(buildListTab(), u"02- Pesquisa"_s);
    outer->addWidget(tabs_, 1);
    auto* bar = new QHBoxLayout;
    for (const auto& [entry, caption, button] : entries)
        bar->addWidget(pushButton(button, caption, this));
    bar->addStretch();
    outer->addLayout(bar);
    for (const auto& [entry, caption, button] : entries)
        callsButton(menuEntry(menu, entry, caption), namedControl<QAbstractButton>(this, button));

    const auto on = [this](const QString& name, auto action) {
        connect(namedControl<QAbstractButton>(this, name), &QAbstractButton::clicked, this, action);
    };
    // What is kept, deleted or printed is the amount and the date as typed: both are read
    // first, or the action stops.
    const auto settled = [this](const QString& name, std::function<void()> action) {
        onAction(findChild<QAbstractButton*>(name), this, std::move(action));
    };
    settled(u"Command16"_s, [this] { save(); });
    on(u"Command8"_s, [this] { newReceipt(); });
    settled(u"Command11"_s, [this] { remove(); });
    settled(u"Command1"_s, [this] { print(); });
    on(u"Command7"_s, [this] { reject(); });
    // Once asked for, the list follows the receipts kept on this station, the row marked
    // kept; the receipt being typed stays.
    auto listAsked = std::make_shared<bool>(false);
    on(u"Command2"_s, [this, listAsked] {
        *listAsked = true;
        showList();
    });
    refreshOn(this, {fin::receiptTable}, [this, listAsked] {
        if (*listAsked) keepingRow(listGrid_, [this] { showList(); });
    });
    connect(listGrid_, &MSFlexGrid::rowDoubleClicked, this, [this](int row) {
        if (row < listGrid_->fixedRows()) return;
        numberField_->setText(listGrid_->textMatrix(row, 0));
        openNumber();
        tabs_->setTab(0);
    });
    for (QWidget* w : {static_cast<QWidget*>(numberField_), static_cast<QWidget*>(amountField_)})
        w->installEventFilter(this);
    payerBox_->installEventFilter(this);

    setupFields(this);
    for (QComboBox* c : {payerBox_, stateBox_, receivedByBox_})
        comboInteligente(c);
    digitsOnly(numberField_);
    keepOnEscape(this);
    resize(760, 560);
    centreScreen(this);
    report_ = new ReportControl(this);

    guarded(this, [&] {
        Store& store = Store::current();
        receivedByBox_->addItems(registers::employeeNames(store));
        payerBox_->addItems(
            fin::partyNames(store, registers::partyTable(registers::Party::Client)));
        const fin::ReceiptCompany company = fin::receiptCompany(store);
        companyFields_[0]->setText(company.name);
        companyFields_[1]->setText(company.phone);
        companyFields_[3]->setText(company.address);
        companyFields_[4]->setText(company.city);
        companyFields_[5]->setText(company.cnpj);
    });
    stateBox_->addItems(fin::receiptStates());
    payerBox_->setEditText(QString());
    stateBox_->setEditText(QString());
    receivedByBox_->setEditText(QString());
    dateField_->setText(formatDate(QDate::currentDate()));
    drawNumber();
    numberField_->setFocus();
}

QWidget* RECIBO::buildFormTab() {
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    numberField_ = lineField(u"R1"_s, page);
    numberField_->setMaxLength(5);
    numberField_->setFixedWidth(90);
    payerBox_ = comboField(u"R2"_s, page);
    payerDocumentField_ = lineField(u"R3"_s, page);
    // The CNPJs with letters are written in capitals, whatever the keyboard gives.
    connect(payerDocumentField_, &QLineEdit::textEdited, this, [this](const QString& typed) {
        if (typed == typed.toUpper()) return;
        const int caret = payerDocumentField_->cursorPosition();
        payerDocumentField_->setText(typed.toUpper());
        payerDocumentField_->setCursorPosition(caret);
    });
    dateField_ = new MaskEdBox(MaskEdBox::dateMask(), page);
    dateField_->setObjectName(u"R4"_s);
    dateField_->setFixedWidth(110);
    addressField_ = lineField(u"R5"_s, page);
    districtField_ = lineField(u"R6"_s, page);
    cityField_ = lineField(u"R7"_s, page);
    stateBox_ = comboField(u"R8"_s, page);
    stateBox_->setFixedWidth(70);
    amountField_ = new MaskEdBox(MaskEdBox::moneyMask(), page);
    amountField_->setObjectName(u"R9"_s);
    amountField_->setFixedWidth(140);
    wordsField_ = lineField(u"R10"_s, page);
    aboutField_ = lineField(u"R11"_s, page);
    chequeField_ = lineField(u"R12"_s, page);
    receivedByBox_ = comboField(u"R13"_s, page);
    int row = 0;
    const auto put = [&](const QString& caption, QWidget* field, int column = 0, int span = 3) {
        auto* l = new QLabel(caption, page);
        l->setBuddy(field);
        grid->addWidget(l, row, column);
        grid->addWidget(field, row, column + 1, 1, span);
    };
    put(u"NÚMERO:"_s, numberField_, 0, 1);
    put(u"DATA:"_s, dateField_, 2, 1);
    ++row;
    put(u"RECEBEMOS DE:"_s, payerBox_);
    ++row;
    put(u"CNPJ/CPF:"_s, payerDocumentField_);
    ++row;
    put(u"ENDEREÇO:"_s, addressField_);
    ++row;
    put(u"BAIRRO:"_s, districtField_);
    ++row;
    put(u"CIDADE:"_s, cityField_, 0, 1);
    put(u"UF:"_s, stateBox_, 2, 1);
    ++row;
    put(u"A IMPORTÂNCIA DE:"_s, amountField_, 0, 1);
    ++row;
    grid->addWidget(wordsField_, row, 1, 1, 3);
    ++row;
    put(u"REFERENTE:"_s, aboutField_);
    ++row;
    put(u"BANCO / Nº CHEQUE"_s, chequeField_);
    ++row;
    put(u"RECEBIDO POR:"_s, receivedByBox_);
    grid->setRowStretch(++row, 1);
    grid->setColumnStretch(1, 1);
    for (int i = 15; i <= 21; ++i) {
        auto* hidden = lineField(u"R%1"_s.arg(i), page);
        hidden->hide();
        companyFields_ << hidden;
    }
    return page;
}

QWidget* RECIBO::buildListTab() {
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    auto* top = new QHBoxLayout;
    top->addWidget(pushButton(u"Command2"_s, u"Mostrar"_s, page));
    top->addStretch();
    box->addLayout(top);
    listGrid_ = new MSFlexGrid(page);
    listGrid_->setObjectName(u"Grid1"_s);
    listGrid_->setHeaders({u"Número"_s, u"Data"_s, u"Valor"_s, u"Nome"_s});
    listGrid_->setColWidth(0, 80);
    listGrid_->setColWidth(1, 100);
    listGrid_->setColWidth(2, 110);
    listGrid_->setColWidth(3, 380);
    box->addWidget(listGrid_, 1);
    return page;
}

bool RECIBO::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) {
            if (watched == numberField_)
                openNumber();
            else if (watched == amountField_)
                writeWords();
            else if (watched == payerBox_)
                fillFromPayer();
        }
    }
    return QDialog::eventFilter(watched, event);
}

void RECIBO::drawNumber() {
    guarded(this, [&] { numberField_->setText(fin::nextReceiptNumber(Store::current())); });
}

void RECIBO::newReceipt() {
    drawNumber();
    for (QLineEdit* e : {payerDocumentField_, addressField_, districtField_, cityField_,
                         wordsField_, aboutField_, chequeField_})
        e->clear();
    for (QComboBox* c : {payerBox_, stateBox_, receivedByBox_})
        c->setEditText(QString());
    // The amount is left empty, not "0,00": crossing it then writes the empty words "( ' ).".
    amountField_->QLineEdit::clear();
    dateField_->setText(formatDate(QDate::currentDate()));
    numberField_->setFocus();
}

void RECIBO::openNumber() {
    const QString typed = numberField_->text();
    if (typed.isEmpty()) return;
    numberField_->setText(padCode(typed.toLongLong(), 5));
    std::optional<fin::Receipt> r;
    if (!guarded(this, [&] { r = fin::loadReceipt(Store::current(), numberField_->text()); }) || !r)
        return;
    payerBox_->setEditText(r->payer);
    payerDocumentField_->setText(r->payerDocument);
    dateField_->setText(r->date.isValid() ? formatDate(r->date) : QString());
    addressField_->setText(r->address);
    districtField_->setText(r->district);
    cityField_->setText(r->city);
    stateBox_->setEditText(r->state);
    amountField_->setText(formatMoney(r->amount));
    wordsField_->setText(r->words);
    aboutField_->setText(r->about);
    chequeField_->setText(r->cheque);
    receivedByBox_->setEditText(r->receivedBy);
}

void RECIBO::fillFromPayer() {
    const QString name = payerBox_->currentText();
    if (name.isEmpty()) return;
    std::optional<fin::Payer> client;
    guarded(this, [&] { client = fin::payerOf(Store::current(), name); });
    if (!client) return; // a payer outside the register is typed by hand
    // A CNPJ with letters is shown as the revenue service writes it; the all-digit numbers are
    // copied as the register keeps them.
    const bool letters = std::any_of(client->document.begin(), client->document.end(),
                                     [](QChar c) { return c.isLetter(); });
    payerDocumentField_->setText(letters ? output::formatTaxNumber(client->document)
                                         : client->document);
    addressField_->setText(client->address);
    districtField_->setText(client->district);
    cityField_->setText(client->city);
    stateBox_->setEditText(client->state);
}

// An amount that cannot be read writes no words: the field says so as it is left.
void RECIBO::writeWords() {
    amountField_->setStyleSheet(QString());
    const QString typed = amountField_->QLineEdit::text();
    if (typed.trimmed().isEmpty()) {
        wordsField_->setText(fin::receiptWords(std::nullopt));
        return;
    }
    if (const auto amount = parseMoney(typed)) wordsField_->setText(fin::receiptWords(*amount));
}

QWidget* RECIBO::fieldOf(const QString& column) const {
    if (column == col::payer) return payerBox_;
    if (column == col::receivedBy) return receivedByBox_;
    if (column == col::amount) return amountField_;
    return aboutField_;
}

void RECIBO::save() {
    if (amountField_->QLineEdit::text().isEmpty()) amountField_->setText(formatMoney(0));
    if (dateField_->digits().isEmpty()) dateField_->setText(formatDate(QDate::currentDate()));
    const auto date = dateField_->settledDate();
    const auto amount = amountField_->settledCents();
    if (!date || !amount) return;
    fin::Receipt r;
    r.number = numberField_->text();
    r.payer = payerBox_->currentText();
    r.payerDocument = payerDocumentField_->text();
    r.date = *date;
    r.address = addressField_->text();
    r.district = districtField_->text();
    r.city = cityField_->text();
    r.state = stateBox_->currentText();
    r.amount = *amount;
    r.words = wordsField_->text();
    r.about = aboutField_->text();
    r.cheque = chequeField_->text();
    r.receivedBy = receivedByBox_->currentText();
    r.company = {companyFields_[0]->text(), companyFields_[1]->text(), companyFields_[3]->text(),
                 companyFields_[4]->text(), companyFields_[5]->text()};
    if (const auto problem = fin::checkReceipt(r)) {
        notice(this, problem->message);
        fieldOf(problem->column)->setFocus();
        return;
    }
    bool added = false;
    if (!guarded(this, [&] {
            UnitOfWork unit(Store::current());
            added = fin::addReceipt(Store::current(), r);
            unit.commit();
        }))
        return;
    notice(this, added ? u"Inclusão realizada com sucesso."_s
                       : u"Este recibo já foi incluido, [Verifique]."_s);
}

void RECIBO::remove() {
    if (payerBox_->currentText().isEmpty()) {
        notice(this, u"Realize a consulta, para depois apagar."_s);
        return;
    }
    if (!ask(this, u"Deseja realmente apagar este recibo?"_s)) return;
    listGrid_->setRows(1);
    bool removed = false;
    if (!guarded(this,
                 [&] {
                     UnitOfWork unit(Store::current());
                     removed = fin::removeReceipt(Store::current(), numberField_->text());
                     unit.commit();
                 }) ||
        !removed)
        return;
    notice(this, u"Exclusão realizada com sucesso."_s);
    newReceipt();
}

void RECIBO::print() {
    if (payerBox_->currentText().isEmpty()) {
        notice(this, u"Recibo não localizado."_s);
        return;
    }
    showPrinterDialog(this);
    // The print comes from the table: a receipt not yet saved prints nothing.
    output::ReportDefinition& d = report_->definition();
    d.setDataSource(fin::receiptTable);
    d.setLayoutFile(u"RECI.rpt"_s);
    d.setSelection(output::Selection::byKey(col::number, numberField_->text()));
    report_->run();
}

void RECIBO::showList() {
    listGrid_->setRows(1);
    guarded(this, [&] {
        for (const fin::Receipt& r : fin::allReceipts(Store::current()))
            listGrid_->addItem(r.number + u'\t' +
                               (r.date.isValid() ? formatDate(r.date) : QString()) + u'\t' +
                               formatMoney(r.amount) + u'\t' + r.payer);
    });
    stripeGrid(listGrid_);
}

} // namespace rtx::ui
