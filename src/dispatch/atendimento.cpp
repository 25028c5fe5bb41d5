#include "dispatch/atendimento.h"

#include "callerid/core/bina.h"
#include "dispatch/atendecli.h"
#include "dispatch/core/board.h"
#include "dispatch/core/rules.h"
#include "dispatch/core/searches.h"
#include "dispatch/core/services.h"
#include "dispatch/servi2.h"
#include "kit/kit.h"
#include "output/core/values.h"
#include "output/reportcontrol.h"
#include "session/modules.h"
#include "session/session.h"
#include "store/formats.h"
#include "store/store.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTime>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("Atendimento",
                    [](QWidget* parent) -> QDialog* { return new Atendimento(parent); });

namespace text = dispatch::text;
using dispatch::Dispatch;

namespace {

QString now() {
    return QTime::currentTime().toString(u"HH:mm"_s);
}

QString today() {
    return formatDate(QDate::currentDate());
}

// Adds items to a combo box without touching what its field shows.
void appendItems(QComboBox* combo, const QStringList& items) {
    const QString shown = combo->currentText();
    const QSignalBlocker block(combo);
    combo->addItems(items);
    if (combo->isEditable()) {
        combo->setCurrentIndex(combo->findText(shown, Qt::MatchExactly));
        combo->setEditText(shown);
    }
}

// Shows a text in a combo box: the list's item when it holds it.
void showIn(QComboBox* combo, const QString& value) {
    const int index = combo->findText(value, Qt::MatchExactly);
    combo->setCurrentIndex(value.isEmpty() ? -1 : index);
    if (combo->isEditable()) combo->setEditText(value);
}

// A typed list that completes nothing: the text stays as typed (the kit would complete it,
// and so would Qt's own completer). Focus colours and Enter as Tab are given after the kit.
void typedOnly(QComboBox* combo) {
    combo->setProperty("rtxSemKit", true);
    combo->setCompleter(nullptr);
}

} // namespace

Atendimento::Atendimento(QWidget* parent) : QDialog(parent) {
    setObjectName(u"Atendimento"_s);
    setWindowTitle(u"Atendimento"_s);
    report_ = new ReportControl(this);

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(6, 6, 6, 6);
    buildMenu(box);

    tabs = new SSTab(this);
    tabs->setObjectName(u"SSTab1"_s);
    auto* first = new QWidget;
    auto* second = new QWidget;
    tabs->addTab(first, u"01- Atendimento"_s);
    tabs->addTab(second, u"02- Pesquisa e Relatórios"_s);
    box->addWidget(tabs);
    buildFirstTab(first);
    buildSecondTab(second);

    // Only A1, ST and A18 complete from their lists.
    const QList<QComboBox*> typed{returnBox, positionBox, statusSearch};
    for (QComboBox* combo : typed)
        typedOnly(combo);
    setupFields(this);
    keepOnEscape(this);
    for (QComboBox* combo : typed) {
        enterAsTab(combo);
        focusColours(combo);
    }
    // The remarks too move on with Enter; Shift+Enter starts a new line.
    enterAsTab(remarksField);
    for (QWidget* w : {static_cast<QWidget*>(phoneField), static_cast<QWidget*>(courierBox)})
        w->installEventFilter(this);
    // A date left empty is today's; one that is no date is said so as it is left.
    for (MaskEdBox* date : {dateField, fromField, toField})
        date->setTodayWhenEmpty();

    // Under the form: the bina's line (its state, a withheld number, a device gone) and
    // the call that waits while another dispatch is being typed.
    auto* lines = new QHBoxLayout;
    statusLine = new QLabel(u"Bina desligada."_s, this);
    statusLine->setObjectName(u"StatusBina"_s);
    waitingLine = new QLabel(this);
    waitingLine->setObjectName(u"ChamadaEspera"_s);
    waitingLine->setStyleSheet(u"QLabel { color: #b00000; font-weight: bold; }"_s);
    waitingLine->hide();
    lines->addWidget(statusLine, 1);
    lines->addWidget(waitingLine);
    box->addLayout(lines);
    // Ativar Bina from the keyboard, as the operator keeps the hands on it.
    auto* arm = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_B), this);
    connect(arm, &QShortcut::activated, this, &Atendimento::onCallerId);
    auto* answer = new QShortcut(QKeySequence(Qt::Key_F9), this);
    connect(answer, &QShortcut::activated, this, &Atendimento::answerWaitingCall);

    fitToScreen();
    load();

    // A service picked in the table opened from the hub comes here while this screen
    // stands open; one picked before it opened waits for it.
    dispatch::ServicePicks& picks = dispatch::servicePicks();
    connect(&picks, &dispatch::ServicePicks::picked, this, &Atendimento::takeService);
    if (const auto waiting = picks.takeWaiting()) takeService(*waiting);
}

Atendimento::~Atendimento() = default;

void Atendimento::takeService(const dispatch::Service& service) {
    serviceField->setText(service.description);
    clientValueField->setText(formatMoney(service.value));
}

// ---- The screen and the record ------------------------------------------------------------

Dispatch Atendimento::onScreen() const {
    Dispatch d;
    d.number = numberLabel->text();
    d.attendant = attendantBox->currentText();
    if (const auto day = dateField->date()) d.date = *day;
    d.time = timeField->text();
    d.clientPhone = phoneField->text();
    d.clientContact = contactField->text();
    d.clientName = clientField->text();
    d.clientAddress = addressField->text();
    d.clientKind = kindField->text();
    for (auto [place, fields] : {std::pair{&d.pickup, &pickup}, {&d.delivery, &delivery}})
        *place = {fields->address->text(), fields->contact->text(), fields->phone->text(),
                  fields->task->text()};
    d.remarks = remarksField->toPlainText();
    d.courier = courierBox->currentText();
    if (const auto cents = clientValueField->cents()) d.clientValue = *cents;
    d.payment = paymentBox->currentText();
    d.service = serviceField->text();
    d.returnTrip = returnBox->currentText();
    d.status = statusBox->currentText();
    if (const auto cents = courierValueField->cents()) d.courierValue = *cents;
    return d;
}

void Atendimento::showParties(const Dispatch& d) {
    phoneField->setText(d.clientPhone);
    contactField->setText(d.clientContact);
    clientField->setText(d.clientName);
    addressField->setText(d.clientAddress);
    kindField->setText(d.clientKind);
    for (auto [place, fields] : {std::pair{&d.pickup, &pickup}, {&d.delivery, &delivery}}) {
        fields->address->setText(place->address);
        fields->contact->setText(place->contact);
        fields->phone->setText(place->phone);
        fields->task->setText(place->task);
    }
}

void Atendimento::showRecord(const Dispatch& d) {
    // The fee of the posting (VM) stays: it is the courier's as last looked up.
    numberLabel->setText(d.number);
    serviceField->setText(d.service);
    showIn(returnBox, d.returnTrip);
    showIn(attendantBox, d.attendant);
    dateField->setText(d.date.isValid() ? formatDate(d.date) : QString());
    timeField->setText(d.time);
    showParties(d);
    remarksField->setPlainText(d.remarks);
    showIn(courierBox, d.courier);
    clientValueField->setText(formatMoney(d.clientValue));
    showIn(paymentBox, d.payment);
    showIn(statusBox, d.status);
    courierValueField->setText(formatMoney(d.courierValue));
    feeCourier = d.courier;
}

QWidget* Atendimento::fieldOf(dispatch::Field field) const {
    switch (field) {
    case dispatch::Field::Attendant:
        return attendantBox;
    case dispatch::Field::ClientName:
        return clientField;
    case dispatch::Field::ClientValue:
        return clientValueField;
    case dispatch::Field::CourierValue:
        return courierValueField;
    case dispatch::Field::Status:
        break;
    }
    return statusBox;
}

// The amount a money field holds. A text that is no amount is said so, with the focus on
// the field, rather than stored as another amount.
bool Atendimento::readMoney(MaskEdBox* field, qint64& cents) {
    const auto amount = field->settledCents();
    if (!amount) return false;
    cents = *amount;
    return true;
}

bool Atendimento::showDispatch(const QString& number) {
    std::optional<Dispatch> found;
    if (!number.isEmpty()) guarded(this, [&] { found = dispatch::load(Store::current(), number); });
    if (!found) return false;
    showRecord(*found);
    return true;
}

// ---- Load and Novo --------------------------------------------------------------------------

void Atendimento::load() {
    centreScreen(this);
    courierValueField->setText(u"0,00"_s);
    fillStatusList();
    foundLabel->setText(u"0"_s);
    attendantBox->setEditText(userName());
    fromField->setText(today());
    toField->setText(today());
    showIn(paymentBox, dispatch::invoicePayment);
    dateField->setText(today());
    timeField->setText(now());
    clientValueField->setText(u"0,00"_s);
    onShowAll(); // the whole table at first; Novo narrows it to the day
    countDispatches();
    fillBoard();
    followRows();
    attendantBox->setFocus();
}

// Couriers moved or registered, statuses kept, dispatches saved on another screen: the
// board, the status list, the search and the count follow; the dispatch being typed stays.
void Atendimento::followRows() {
    refreshOn(this, {dispatch::courier::table},
              [this] { keepingRow(board, [this] { fillBoard(); }); });
    refreshOn(this, {dispatch::statuslist::table}, [this] { fillStatusList(); });
    refreshOn(this, {dispatch::col::table}, [this] {
        searchGrid->requery();
        countDispatches();
    });
}

void Atendimento::showToday() {
    guarded(this, [this] {
        searchGrid->setQuery(dispatch::searchDay(QDate::currentDate()));
        searchGrid->refresh();
    });
}

void Atendimento::countDispatches() {
    guarded(this,
            [this] { countLabel->setText(QString::number(dispatch::count(Store::current()))); });
}

void Atendimento::onNew() {
    feeLabel->setText(u"0,00"_s);
    courierValueField->setText(u"0,00"_s);
    showToday();
    showIn(paymentBox, dispatch::invoicePayment);
    dateField->setText(today());
    timeField->setText(now());
    clientValueField->setText(u"0,00"_s);
    countDispatches();
    // Everything of the dispatch but who answers the calls.
    for (QComboBox* combo : {returnBox, statusBox, courierBox})
        showIn(combo, QString());
    showParties(Dispatch());
    serviceField->clear();
    remarksField->clear();
    numberLabel->clear();
    feeCourier.clear();
    phoneField->setFocus();
    clearHourglass();
}

// ---- Field automatisms ------------------------------------------------------------------

bool Atendimento::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // Leaving the window or opening a list's popup is no leaving of the field.
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            if (watched == phoneField) {
                onPhoneLeft();
            } else if (watched == courierBox) {
                onCourierLeft();
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void Atendimento::onPhoneLeft() {
    const QString phone = phoneField->text();
    if (phone.isEmpty()) return;
    std::optional<dispatch::ClientCard> card;
    guarded(this, [&] { card = dispatch::clientByPhone(Store::current(), phone); });
    if (!card) return;
    Dispatch d = onScreen();
    dispatch::fillFromPhone(d, *card);
    showParties(d);
    if (const QString remarks = dispatch::remarksNotice(*card); !remarks.isEmpty())
        notice(this, remarks);
}

void Atendimento::onCourierLeft() {
    const QString courier = courierBox->currentText();
    if (courier == feeCourier) return;
    feeCourier = courier;
    feeLabel->setText(u"0,00"_s);
    if (courier.isEmpty()) return;
    std::optional<qint64> fee;
    guarded(this, [&] { fee = dispatch::courierFee(Store::current(), courier); });
    if (!fee) return;
    feeLabel->setText(formatMoney(*fee));
    courierValueField->setText(formatMoney(*fee));
}

// ---- Grava --------------------------------------------------------------------------------

bool Atendimento::askPassword(const QString& title, const QString& label) {
    return dispatch::passwordAccepted(askText(this, title, label, QString(), true));
}

void Atendimento::onSave() {
    // The date as typed (empty: today); one that is no date stops the save.
    if (!dateField->settledDate()) return;
    feeLabel->setText(courierValueField->text());
    Dispatch d = onScreen();

    bool locked = false;
    if (!guarded(this, [&] { locked = dispatch::isLocked(Store::current(), d.number); })) return;
    if (locked) {
        notice(this, text::deliveredRefusal);
        if (!askPassword(text::passwordTitle, text::passwordLabel)) return;
    } else if (dispatch::locksOnSave(d.status)) {
        notice(this, text::deliveredWarning);
    }
    if (const auto refusal = dispatch::checkSave(d)) {
        notice(this, refusal->message);
        fieldOf(refusal->field)->setFocus();
        return;
    }
    if (!readMoney(clientValueField, d.clientValue) ||
        !readMoney(courierValueField, d.courierValue))
        return;

    dispatch::SaveChoice choice;
    choice.change = d.isNew() || ask(this, text::changeQuestion);
    // A saved dispatch's money was perhaps posted and settled since: the question says what
    // a Yes would post beside it.
    QString postingQuestion;
    if (!guarded(this,
                 [&] { postingQuestion = dispatch::postingQuestionFor(Store::current(), d); }))
        return;
    choice.post = ask(this, postingQuestion);
    // The dispatch and its money are stored together or not at all; the operator is told
    // once they are.
    dispatch::Saved saved;
    if (!guarded(this, [&] { saved = dispatch::save(Store::current(), d, choice); })) return;
    numberLabel->setText(d.number);
    timeField->setText(d.time);
    if (!saved.message.isEmpty()) notice(this, saved.message);
    if (saved.posted) fillBoard();
    if (ask(this, text::printQuestion)) printSlip();
}

// ---- Exclui and the walk through the dispatches -------------------------------------------

void Atendimento::onDelete() {
    if (!askPassword(text::deletePasswordTitle, text::deletePasswordLabel)) return;
    const QString number = numberLabel->text();
    if (number.isEmpty()) {
        notice(this, text::searchFirst);
        return;
    }
    if (!ask(this, text::deleteQuestion)) return;
    if (guarded(this, [&] { dispatch::remove(Store::current(), number); })) onNew();
}

void Atendimento::onFirst() {
    QString number = numberLabel->text();
    guarded(this, [&] {
        if (const QString first = dispatch::firstNumber(Store::current()); !first.isEmpty())
            number = first;
    });
    showDispatch(number);
}

void Atendimento::onLast() {
    QString number = numberLabel->text();
    guarded(this, [&] {
        if (const QString last = dispatch::lastNumber(Store::current()); !last.isEmpty())
            number = last;
    });
    showDispatch(number);
}

void Atendimento::onPrevious() {
    const QString number = numberLabel->text();
    if (number.isEmpty()) return;
    QString previous;
    guarded(this, [&] {
        Store& store = Store::current();
        if (dispatch::exists(store, number)) previous = dispatch::previousNumber(store, number);
    });
    if (!previous.isEmpty()) showDispatch(previous);
}

void Atendimento::onNext() {
    const QString number = numberLabel->text();
    if (number.isEmpty()) return;
    bool found = false;
    QString next;
    if (!guarded(this, [&] {
            Store& store = Store::current();
            found = dispatch::exists(store, number);
            if (found) next = dispatch::nextNumber(store, number);
        }))
        return;
    if (!found) {
        // The dispatch on the screen is gone: the button offers to clear it away.
        onDelete();
        return;
    }
    if (next.isEmpty()) {
        clearHourglass();
        return;
    }
    showDispatch(next);
}

// ---- Courier board and status list ----------------------------------------------------------

void Atendimento::fillBoard() {
    board->setRows(1);
    QList<dispatch::CourierPosition> couriers;
    guarded(this, [&] { couriers = dispatch::board(Store::current()); });
    QStringList names;
    for (const dispatch::CourierPosition& c : couriers) {
        names << c.name;
        board->addItem(c.name + u'\t' + c.position);
    }
    // The courier list grows by the names of each fill: a courier who left the service
    // stays in it until the screen is opened again.
    appendItems(courierBox, names);
    stripeGrid(board);
}

void Atendimento::fillStatusList() {
    QStringList words;
    guarded(this, [&] { words = dispatch::statuses(Store::current()); });
    const QString shown = statusBox->currentText();
    const QSignalBlocker block(statusBox);
    statusBox->clear();
    statusBox->addItems(words);
    showIn(statusBox, shown);
}

void Atendimento::onBoardDoubleClick(int row) {
    board->setRow(row);
    const QString name = board->textMatrix(row, 0);
    if (!ask(this, u"Deseja mudar a posição do motoqueiro: "_s + name)) return;
    const QString position = positionBox->currentText();
    if (position.isEmpty()) {
        notice(this, u"Primeiro defina a nova posição no campo nova posição."_s);
        positionBox->setFocus();
        return;
    }
    guarded(this, [&] { dispatch::moveCourier(Store::current(), name, position); });
    fillBoard();
}

void Atendimento::onStatusRegistry() {
    const auto typed =
        askText(this, u"Cadastro de Status"_s, u"Digite o novo status e clique no botão OK "_s);
    if (!typed || typed->isEmpty()) return;
    const QString word = *typed;
    bool listed = false;
    if (!guarded(this, [&] { listed = dispatch::hasStatus(Store::current(), word); })) return;
    if (listed) {
        // The same button takes a word out of the list.
        if (!ask(this, u"Confirma exclusão: "_s + word + u'?', u"Cadastro"_s)) return;
        if (!guarded(this, [&] { dispatch::removeStatus(Store::current(), word); })) return;
        inform(this, u"Operação realizada com sucesso."_s);
    } else if (!guarded(this, [&] { dispatch::addStatus(Store::current(), word); })) {
        return;
    }
    fillStatusList();
}

void Atendimento::onStatusChange() {
    const QString status = statusBox->currentText();
    if (status.isEmpty()) {
        notice(this, text::statusFirst);
        statusBox->setFocus();
        return;
    }
    const QString number = numberLabel->text();
    bool locked = false;
    if (!guarded(this, [&] { locked = dispatch::isLocked(Store::current(), number); })) return;
    if (locked) {
        // Unlike Grava, no password opens it here.
        notice(this, text::deliveredRefusal);
        return;
    }
    if (dispatch::locksOnSave(status)) notice(this, text::deliveredWarning);
    if (!ask(this, text::changeQuestion)) return;
    bool changed = false;
    guarded(this, [&] { changed = dispatch::setStatus(Store::current(), number, status); });
    if (changed) notice(this, text::statusChanged);
}

// ---- Service table, client lookup, caller id -----------------------------------------------

void Atendimento::onServiceTable() {
    if (const auto picked = SERVI2::pick(this)) takeService(*picked);
}

void Atendimento::openClientLookup(dispatch::LookupFor line) {
    const auto card = atendecli::lookUp(this);
    if (!card) return;
    Dispatch d = onScreen();
    dispatch::fillFromLookup(d, *card, line);
    showParties(d);
}

void Atendimento::onCallerId() {
    if (callerIdService && callerIdService->armed()) {
        statusLine->setText(callerIdService->statusText());
        return;
    }
    callerIdService = std::make_unique<callerid::CallerIdService>(
        callerid::readBinaSettings(installation().folder()));
    // While arming, what goes wrong is the answer to the button: a message the operator
    // must read (nothing set, the port missing). Once the bina listens, its notices only
    // go to the status line, so that a ringing telephone never stops the typing.
    QStringList refused;
    auto collect = connect(callerIdService.get(), &callerid::CallerIdService::notice, this,
                           [&refused](const QString& text) { refused << text; });
    const bool armed = callerIdService->arm();
    disconnect(collect);
    if (!armed) {
        notice(this, refused.join(u"\n\n"_s));
        callerIdService.reset();
        statusLine->setText(u"Bina desligada."_s);
        return;
    }
    connect(callerIdService.get(), &callerid::CallerIdService::notice, statusLine,
            &QLabel::setText);
    connect(callerIdService.get(), &callerid::CallerIdService::incomingCall, this,
            &Atendimento::takeCall);
    statusLine->setText(callerIdService->statusText() +
                        (refused.isEmpty() ? QString() : u" "_s + refused.join(u' ')));
}

bool Atendimento::nothingTyped() const {
    if (!numberLabel->text().isEmpty()) return false; // a saved dispatch on the screen
    const QList<const QLineEdit*> lines{contactField,  clientField,      addressField,
                                        kindField,     pickup.address,   pickup.contact,
                                        pickup.task,   delivery.address, delivery.contact,
                                        delivery.task, serviceField};
    for (const QLineEdit* line : lines)
        if (!line->text().trimmed().isEmpty()) return false;
    for (const MaskEdBox* phone : {phoneField, pickup.phone, delivery.phone})
        if (!phone->text().trimmed().isEmpty()) return false;
    return remarksField->toPlainText().trimmed().isEmpty();
}

void Atendimento::takeCall(const callerid::Call& call) {
    // A call without a number comes with the service's notice, already in the status line.
    if (!call.hasNumber()) return;
    if (!nothingTyped()) {
        waitingCall = call;
        showWaitingCall();
        return;
    }
    waitingCall.reset();
    showWaitingCall();
    // As if the operator had typed the number and left the field.
    phoneField->setText(call.number);
    onPhoneLeft();
    statusLine->setText(u"Chamada de %1."_s.arg(output::formatPhone(call.number)));
    if (isActiveWindow()) contactField->setFocus(Qt::TabFocusReason);
}

void Atendimento::showWaitingCall() {
    if (!waitingCall) {
        waitingLine->clear();
        waitingLine->hide();
        return;
    }
    const QString who =
        waitingCall->name.isEmpty()
            ? output::formatPhone(waitingCall->number)
            : u"%1 (%2)"_s.arg(output::formatPhone(waitingCall->number), waitingCall->name);
    waitingLine->setText(u"Chamada de %1 — F9 para atender"_s.arg(who));
    waitingLine->show();
}

void Atendimento::answerWaitingCall() {
    if (!waitingCall) return;
    const callerid::Call call = *waitingCall;
    // A new dispatch takes the call. One being typed and not yet saved is not dropped
    // without the operator's word; on "Não" the call goes on waiting.
    if (numberLabel->text().isEmpty() && !nothingTyped() &&
        !ask(this, u"O atendimento em digitação ainda não foi gravado e será descartado. "
                   u"Atender a chamada assim mesmo?"_s))
        return;
    onNew();
    tabs->setTab(0);
    takeCall(call);
}

// ---- Second tab -------------------------------------------------------------------------------

void Atendimento::search(dispatch::SearchBy box, const QString& typed) {
    guarded(this, [&] {
        searchGrid->setQuery(dispatch::searchBy(Store::current(), box, typed));
        searchGrid->refresh();
    });
}

void Atendimento::onPeriodSearch() {
    const auto from = fromField->settledDate();
    const auto to = from ? toField->settledDate() : std::nullopt;
    if (!from || !to) return;
    guarded(this, [&] {
        searchGrid->setQuery(dispatch::searchPeriod(*from, *to));
        searchGrid->refresh();
        // The count goes on from the searches before: it is set to zero only on opening.
        const qint64 found = dispatch::countPeriod(Store::current(), *from, *to);
        foundLabel->setText(QString::number(foundLabel->text().toLongLong() + found));
    });
}

void Atendimento::onShowAll() {
    guarded(this, [this] {
        searchGrid->setQuery(dispatch::searchAll());
        searchGrid->refresh();
    });
}

void Atendimento::onSearchDoubleClick(int row) {
    // Where there is no row the number is the blank cell's: nothing is found, and the
    // first tab is shown as it was.
    showDispatch(searchGrid->text(row, dispatch::col::number));
    tabs->setTab(0);
}

} // namespace rtx::ui
