// The dispatch screen's record part: the form's fields as a dispatch and back, Novo, Grava,
// Exclui, the walk, and what leaving the telephone or the courier fills in.

#include "dispatch/atendimento.h"

#include "callerid/core/bina.h"
#include "dispatch/core/board.h"
#include "dispatch/core/records.h"
#include "dispatch/core/rules.h"
#include "dispatch/core/searches.h"
#include "dispatch/core/services.h"
#include "kit/kit.h"
#include "output/reportcontrol.h"
#include "session/core/current.h"
#include "session/modules.h"
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
    buildCourierLinks();
    bindRecord();

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

// The fields of the first tab that hold the dispatch, each bound to the column it shows.
void Atendimento::bindRecord() {
    namespace col = dispatch::col;
    const QList<std::pair<QWidget*, QString>> columns{{numberLabel, col::number},
                                                      {attendantBox, col::attendant},
                                                      {dateField, col::date},
                                                      {timeField, col::time},
                                                      {phoneField, col::clientPhone},
                                                      {contactField, col::clientContact},
                                                      {clientField, col::clientName},
                                                      {addressField, col::clientAddress},
                                                      {kindField, col::clientKind},
                                                      {pickup.address, col::pickupAddress},
                                                      {pickup.contact, col::pickupContact},
                                                      {pickup.phone, col::pickupPhone},
                                                      {pickup.task, col::pickupTask},
                                                      {delivery.address, col::deliveryAddress},
                                                      {delivery.contact, col::deliveryContact},
                                                      {delivery.phone, col::deliveryPhone},
                                                      {delivery.task, col::deliveryTask},
                                                      {remarksField, col::remarks},
                                                      {courierBox, col::courier},
                                                      {clientValueField, col::clientValue},
                                                      {paymentBox, col::payment},
                                                      {serviceField, col::service},
                                                      {returnBox, col::returnTrip},
                                                      {statusBox, col::status},
                                                      {courierValueField, col::courierValue}};
    for (const auto& [control, column] : columns) {
        FormField f = FormField::text(control->objectName(), column, {});
        if (control == dateField)
            f.value = FormField::Value::Date;
        else if (control == clientValueField || control == courierValueField)
            f.value = FormField::Value::Money;
        record.add(f);
        record.bind(f.name, control);
    }
}

Dispatch Atendimento::onScreen() const {
    return fromRow(record.row(), dispatch::dispatchFields());
}

void Atendimento::showParties(const Dispatch& d) {
    namespace col = dispatch::col;
    static const QStringList parties{col::clientPhone,     col::clientContact,   col::clientName,
                                     col::clientAddress,   col::clientKind,      col::pickupAddress,
                                     col::pickupContact,   col::pickupPhone,     col::pickupTask,
                                     col::deliveryAddress, col::deliveryContact, col::deliveryPhone,
                                     col::deliveryTask};
    const Row all = toRow(d, dispatch::dispatchFields());
    Row shown;
    for (const QString& column : parties)
        shown.insert(column, all.value(column));
    record.showRow(shown);
}

void Atendimento::showRecord(const Dispatch& d) {
    // The fee of the posting (VM) stays: it is the courier's as last looked up.
    record.showRow(toRow(d, dispatch::dispatchFields()));
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
    attendantBox->setEditText(session::userName());
    fromField->setText(today());
    toField->setText(today());
    record.setValue(u"A20"_s, dispatch::invoicePayment);
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
    showToday();
    countDispatches();
    // A new dispatch of today, now, to be invoiced: everything but who answers the calls.
    Dispatch fresh;
    fresh.date = QDate::currentDate();
    fresh.time = now();
    Row shown = toRow(fresh, dispatch::dispatchFields());
    shown.remove(dispatch::col::attendant);
    record.showRow(shown);
    feeCourier.clear();
    phoneField->setFocus();
    clearHourglass();
}

// ---- Field automatisms ------------------------------------------------------------------

bool Atendimento::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        if (leftField(static_cast<QFocusEvent*>(event))) {
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
    std::optional<RowChanged::Why> conflict;
    const auto write = [&] {
        return guarded(this, [&] {
            try {
                saved = dispatch::save(Store::current(), d, choice);
            } catch (const RowChanged& e) {
                conflict = e.why();
            }
        });
    };
    if (!write()) return;
    if (conflict == RowChanged::Why::Changed) {
        if (!ask(this, changedElsewhere())) {
            // The other station's dispatch comes on the screen in place of this one's typing.
            showDispatch(d.number);
            return;
        }
        d.version = 0;
        conflict.reset();
        if (!write()) return;
    }
    if (conflict) {
        // Deleted at another station: said so; what was typed stays on the screen.
        notice(this, RowChanged(*conflict).text());
        return;
    }
    record.setVersion(d.version);
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

// The four walk buttons go by the engine's walk, from the dispatch on the screen. Previous
// and next need it saved; next, finding it gone, offers to clear it away.
void Atendimento::walk(Walk direction) {
    bool gone = false;
    const WalkFrom from = [&gone](Store& store, Walk w, const QVariant& found) -> QVariant {
        const QString number = found.toString();
        if ((w == Walk::Previous || w == Walk::Next) && !dispatch::exists(store, number)) {
            gone = true;
            return {};
        }
        return dispatch::walkNumber(store, w, number);
    };
    const auto to = walkTarget(this, from, direction, numberLabel->text());
    if (!to) return;
    if (gone && direction == Walk::Next) {
        onDelete();
        return;
    }
    if (emptyKey(*to)) {
        clearHourglass();
        return;
    }
    showDispatch(to->toString());
}

void Atendimento::onFirst() {
    walk(Walk::First);
}

void Atendimento::onPrevious() {
    walk(Walk::Previous);
}

void Atendimento::onNext() {
    walk(Walk::Next);
}

void Atendimento::onLast() {
    walk(Walk::Last);
}

} // namespace rtx::ui
