#include "dispatch/core/rules.h"

#include "store/formats.h"

namespace rtx::dispatch {

bool passwordAccepted(const std::optional<QString>& answer) {
    return answer && !answer->isEmpty() && answer->toUpper() == password;
}

bool isLocked(Store& store, const QString& number) {
    if (number.isEmpty()) return false;
    return savedStatus(store, number) == delivered;
}

bool locksOnSave(const QString& status) {
    return status == delivered;
}

std::optional<Refusal> checkSave(const Dispatch& d) {
    const auto blank = [](Field field, const QString& label) {
        return Refusal{field,
                       QStringLiteral("O campo [%1], n\u00e3o pode ficar em branco.").arg(label)};
    };
    if (d.attendant.isEmpty()) return blank(Field::Attendant, QStringLiteral("ATENDIDO POR"));
    if (d.clientName.isEmpty()) return blank(Field::ClientName, QStringLiteral("CLIENTE"));
    if (d.status.isEmpty()) return blank(Field::Status, QStringLiteral("STATUS"));
    if (auto refused = moneyRefusal(d.clientValue, QStringLiteral("VLR. CLIENTE")))
        return Refusal{Field::ClientValue, *refused};
    if (auto refused = moneyRefusal(d.courierValue, QStringLiteral("VLR.ENTREGADOR")))
        return Refusal{Field::CourierValue, *refused};
    return std::nullopt;
}

Posting postingOf(const Dispatch& d, const QDate& today) {
    Posting p;
    p.number = d.number;
    p.client = d.clientName;
    p.courier = d.courier;
    p.date = d.date;
    p.courierFee = d.courierValue;
    p.clientValue = d.clientValue;
    p.payment = d.payment;
    p.today = today;
    return p;
}

QString postingQuestionFor(Store& store, const Dispatch& dispatch) {
    if (dispatch.isNew()) return text::postingQuestion;
    return postingQuestion(planPosting(store, postingOf(dispatch)));
}

Saved save(Store& store, Dispatch& dispatch, const SaveChoice& choice, const QTime& now,
           const QDate& today) {
    Saved saved;
    Dispatch d = dispatch;
    UnitOfWork unit(store);
    // A dispatch written at another station since this one read it is not written over, and
    // nothing of its money is posted: the change itself compares the version, a save that
    // changes nothing compares it first.
    if (!d.isNew() && !choice.change)
        store.requireVersion(col::table, col::number, d.number, d.version);
    if (d.isNew()) {
        d.time = now.toString(QStringLiteral("HH:mm"));
        add(store, d);
        saved.message = text::added;
    } else if (choice.change && update(store, d, QDateTime(today, now))) {
        saved.message = text::changed;
    }
    if (choice.post) {
        Posting posting = postingOf(d, today);
        posting.added = dispatch.isNew();
        saved.posting = postDispatch(store, posting);
        saved.posted = true;
    }
    // The posting's last write to the row tells its version; without one it is read.
    d.version =
        saved.posted ? saved.posting.version : store.versionOf(col::table, col::number, d.number);
    unit.commit();
    // The screen learns the number and the time only once they are stored.
    dispatch = d;
    return saved;
}

} // namespace rtx::dispatch
