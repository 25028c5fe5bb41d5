// The dispatch screen's side of the office rather than of one dispatch: the courier board
// and the status list, the service table and the client lookup that fill the form, the
// caller id, and the search tab.

#include "callerid/core/bina.h"
#include "dispatch/atendecli.h"
#include "dispatch/atendimento.h"
#include "dispatch/core/board.h"
#include "dispatch/core/searches.h"
#include "dispatch/servi2.h"
#include "kit/kit.h"
#include "output/core/values.h"
#include "session/core/current.h"
#include "store/formats.h"
#include "store/store.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace text = dispatch::text;
using dispatch::Dispatch;

namespace {

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

} // namespace

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
    qint64 before = 0, after = 0;
    guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        before = store.versionOf(dispatch::col::table, dispatch::col::number, number);
        changed = dispatch::setStatus(store, number, status);
        after = store.versionOf(dispatch::col::table, dispatch::col::number, number);
        unit.commit();
    });
    // The screen's dispatch, as this station last read it, is the one just changed: Grava
    // writes over it without a question. Had another station written it meanwhile, it still
    // asks.
    if (changed && before == record.version()) record.setVersion(after);
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
        callerid::readBinaSettings(session::installation().folder()));
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

void Atendimento::showSearch(const QDate& from, const QDate& to, const QString& courier) {
    tabs->setTab(1);
    fromField->setText(formatDate(from));
    toField->setText(formatDate(to));
    if (courier.isEmpty()) {
        onPeriodSearch();
        fromField->setFocus(Qt::OtherFocusReason);
        return;
    }
    // His name stands in his box, but the list is his dispatches of the period only: the
    // box's own search (by the start of the name, of every day) waits for the next key.
    {
        const QSignalBlocker quiet(courierSearch);
        courierSearch->setText(courier);
    }
    guarded(this, [&] {
        Store& store = Store::current();
        searchGrid->setQuery(dispatch::searchCourierPeriod(store, courier, from, to));
        searchGrid->refresh();
        const qint64 found = dispatch::countCourierPeriod(store, courier, from, to);
        foundLabel->setText(QString::number(foundLabel->text().toLongLong() + found));
    });
    courierSearch->setFocus(Qt::OtherFocusReason);
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
