#include "dispatch/core/dispatch.h"

#include "dispatch/core/records.h"

namespace rtx::dispatch {

namespace {

// Empty text is stored as empty text, never as null: the old rows held "" for a field
// left blank, and reports and searches compare with "".
template <class Access> rtx::Field<Dispatch> text(const QString& column, Access access) {
    rtx::Field<Dispatch> f = field<Dispatch>(column, access);
    f.get = [get = f.get](const Dispatch& d) {
        const QString s = get(d).toString();
        return QVariant(s.isNull() ? QStringLiteral("") : s);
    };
    return f;
}

// A column a new dispatch starts with and the screen never changes.
rtx::Field<Dispatch> startsAs(const QString& column, ValueKind kind, const QVariant& value) {
    return {column, kind, [value](const Dispatch&) { return value; },
            [](Dispatch&, const QVariant&) {}};
}

// What a saved dispatch holds of its delivery, read before its status is written.
struct Before {
    QDate date;
    QString time;
    QString status;
    QString moment;
    QVariant minutes;
};

std::optional<Before> before(Store& store, const QString& number) {
    const Recordset row =
        store.open(QStringLiteral("SELECT %3, %4, %5, %6, %7 FROM %1 WHERE %2 = ?")
                       .arg(col::table, col::number, col::date, col::time, col::status,
                            col::deliveredAt, col::deliveryMinutes),
                   {number});
    if (row.eof()) return std::nullopt;
    return Before{row.date(col::date).value_or(QDate()), row.text(col::time), row.text(col::status),
                  row.text(col::deliveredAt), row.value(col::deliveryMinutes)};
}

const QString momentFormat = QStringLiteral("yyyy-MM-ddTHH:mm:ss");

bool isDelivered(const QString& status) {
    return status.compare(delivered, Qt::CaseInsensitive) == 0;
}

std::optional<qint64> minutesTo(const QDate& date, const QString& time, const QDateTime& moment) {
    const QTime taken = QTime::fromString(time.trimmed(), QStringLiteral("HH:mm"));
    if (!date.isValid() || !taken.isValid() || !moment.isValid()) return std::nullopt;
    const qint64 seconds = QDateTime(date, taken).secsTo(moment);
    if (seconds < 0) return std::nullopt;
    return seconds / 60;
}

// After a saved dispatch's status (and maybe its date and time) was written: the moment it
// became "Entregue" is kept; one delivered before the moment was kept keeps none; one that
// is no longer delivered loses it.
void keepDelivery(Store& store, const QString& number, const Before& was, const QString& status,
                  const QDate& date, const QString& time, const QDateTime& now) {
    QString moment;
    std::optional<qint64> minutes;
    if (isDelivered(status)) {
        moment = isDelivered(was.status) ? was.moment : now.toString(momentFormat);
        if (!moment.isEmpty())
            minutes = minutesTo(date, time, QDateTime::fromString(moment, momentFormat));
    }
    const QVariant newMinutes =
        minutes ? QVariant(*minutes) : QVariant(QMetaType(QMetaType::LongLong));
    if (moment == was.moment && newMinutes.isNull() == was.minutes.isNull() &&
        (newMinutes.isNull() || newMinutes.toLongLong() == was.minutes.toLongLong()))
        return;
    store.execute(QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ? WHERE %4 = ?")
                      .arg(col::table, col::deliveredAt, col::deliveryMinutes, col::number),
                  {moment.isEmpty() ? QVariant(QMetaType(QMetaType::QString)) : QVariant(moment),
                   newMinutes, number});
}

} // namespace

const QList<rtx::Field<Dispatch>>& dispatchFields() {
    static const QList<rtx::Field<Dispatch>> fields{
        text(col::number, &Dispatch::number),
        text(col::attendant, &Dispatch::attendant),
        text(col::status, &Dispatch::status),
        field<Dispatch>(col::date, &Dispatch::date),
        text(col::time, &Dispatch::time),
        text(col::clientPhone, &Dispatch::clientPhone),
        text(col::clientContact, &Dispatch::clientContact),
        text(col::clientName, &Dispatch::clientName),
        text(col::clientAddress, &Dispatch::clientAddress),
        text(col::clientKind, &Dispatch::clientKind),
        text(
            col::pickupAddress, [](auto& d) -> auto& { return d.pickup.address; }),
        text(
            col::pickupContact, [](auto& d) -> auto& { return d.pickup.contact; }),
        text(
            col::pickupPhone, [](auto& d) -> auto& { return d.pickup.phone; }),
        text(
            col::pickupTask, [](auto& d) -> auto& { return d.pickup.task; }),
        text(
            col::deliveryAddress, [](auto& d) -> auto& { return d.delivery.address; }),
        text(
            col::deliveryContact, [](auto& d) -> auto& { return d.delivery.contact; }),
        text(
            col::deliveryPhone, [](auto& d) -> auto& { return d.delivery.phone; }),
        text(
            col::deliveryTask, [](auto& d) -> auto& { return d.delivery.task; }),
        text(col::remarks, &Dispatch::remarks),
        text(col::courier, &Dispatch::courier),
        field<Dispatch>(col::clientValue, &Dispatch::clientValue),
        text(col::payment, &Dispatch::payment),
        text(col::service, &Dispatch::service),
        text(col::returnTrip, &Dispatch::returnTrip),
        field<Dispatch>(col::courierValue, &Dispatch::courierValue),
        field<Dispatch>(versionColumn(), &Dispatch::version)};
    return fields;
}

QStringList usualStatuses() {
    return {QStringLiteral("A caminho"), delivered, QStringLiteral("N\u00e3o encontrado"),
            QStringLiteral("Cancelado"), QStringLiteral("Outros")};
}

QStringList payments() {
    return {cashPayment, invoicePayment};
}

QStringList returnTrips() {
    return {QStringLiteral("SIM"), QStringLiteral("N\u00c3O")};
}

QStringList positions() {
    return {courierFree, courierOnTheWay, courierAbsent, courierBusy};
}

std::optional<Dispatch> load(Store& store, const QString& number) {
    return loadRecord(store, col::table, col::number, number, dispatchFields());
}

bool exists(Store& store, const QString& number) {
    return store
        .scalar(QStringLiteral("SELECT 1 FROM %1 WHERE %2 = ?").arg(col::table, col::number),
                {number})
        .isValid();
}

std::optional<QString> savedStatus(Store& store, const QString& number) {
    const Recordset row = store.open(
        QStringLiteral("SELECT %3 FROM %1 WHERE %2 = ?").arg(col::table, col::number, col::status),
        {number});
    if (row.eof()) return std::nullopt;
    return row.text(col::status);
}

void add(Store& store, Dispatch& dispatch) {
    UnitOfWork unit(store);
    // Billing's value of the courier starts at zero, and the money, posted or not, is known
    // by the codes kept here from now on.
    QList<rtx::Field<Dispatch>> fields = dispatchFields();
    fields << startsAs(col::billedCourierValue, ValueKind::Money, qint64(0))
           << startsAs(col::postedRows, ValueKind::Text, QStringLiteral(""));
    QVariantMap row = storedRow(dispatch, fields);
    row.remove(col::number);
    dispatch.number = store.insertUnderNewCode(col::table, row);
    unit.commit();
}

bool update(Store& store, const Dispatch& dispatch, const QDateTime& now) {
    UnitOfWork unit(store);
    // A dispatch deleted at another station meanwhile is not brought back; one read at a
    // version is told so (RowChanged), as the save itself tells one changed since.
    const std::optional<Before> was = before(store, dispatch.number);
    if (!was) {
        if (dispatch.version > 0) throw RowChanged(RowChanged::Why::Deleted);
        return false;
    }
    saveRecord(store, col::table, col::number, dispatch.number, dispatch, dispatchFields());
    keepDelivery(store, dispatch.number, *was, dispatch.status, dispatch.date, dispatch.time, now);
    unit.commit();
    return true;
}

bool setStatus(Store& store, const QString& number, const QString& status, const QDateTime& now) {
    const std::optional<Before> was = before(store, number);
    if (!was) return false;
    UnitOfWork unit(store);
    store.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3 = ?")
                      .arg(col::table, col::status, col::number),
                  {status, number});
    keepDelivery(store, number, *was, status, was->date, was->time, now);
    unit.commit();
    return true;
}

std::optional<Delivery> delivery(Store& store, const QString& number) {
    const std::optional<Before> was = before(store, number);
    if (!was || was->moment.isEmpty()) return std::nullopt;
    Delivery d{QDateTime::fromString(was->moment, momentFormat), std::nullopt};
    if (!was->minutes.isNull()) d.minutes = was->minutes.toLongLong();
    return d;
}

void remove(Store& store, const QString& number) {
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(col::table, col::number),
                  {number});
    unit.commit();
}

qint64 count(Store& store) {
    return store.count(col::table);
}

std::optional<QStringList> postedCodes(Store& store, const QString& number) {
    const Recordset row = store.open(QStringLiteral("SELECT %3 FROM %1 WHERE %2 = ?")
                                         .arg(col::table, col::number, col::postedRows),
                                     {number});
    if (row.eof() || row.isNull(col::postedRows)) return std::nullopt;
    return row.text(col::postedRows).split(u' ', Qt::SkipEmptyParts);
}

qint64 setPostedCodes(Store& store, const QString& number, const QStringList& codes) {
    // The version is raised here as the engine's trigger raises it, so that the row the
    // statement returns already shows it (SQLite's trigger runs after RETURNING is read).
    return store
        .scalar(QStringLiteral("UPDATE %1 SET %2 = ?, %4 = %4 + 1 WHERE %3 = ? RETURNING %4")
                    .arg(col::table, col::postedRows, col::number, versionColumn()),
                {codes.isEmpty() ? QStringLiteral("") : codes.join(u' '), number})
        .toLongLong();
}

QString firstNumber(Store& store) {
    return store.firstCode(col::table);
}

QString lastNumber(Store& store) {
    return store.lastCode(col::table);
}

QString previousNumber(Store& store, const QString& number) {
    return store.previousCode(col::table, number);
}

QString nextNumber(Store& store, const QString& number) {
    return store.nextCodeAfter(col::table, number);
}

QString walkNumber(Store& store, Walk walk, const QString& from) {
    switch (walk) {
    case Walk::First:
        return firstNumber(store);
    case Walk::Last:
        return lastNumber(store);
    case Walk::Previous:
        return from.isEmpty() ? QString() : previousNumber(store, from);
    case Walk::Next:
        return from.isEmpty() ? QString() : nextNumber(store, from);
    }
    return {};
}

} // namespace rtx::dispatch
