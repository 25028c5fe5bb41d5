#include "dispatch/core/dispatch.h"

namespace rtx::dispatch {

namespace {

// Empty text is stored as empty text, never as null: the old rows held "" for a field
// left blank, and reports and searches compare with "".
QVariant text(const QString& s) {
    return s.isNull() ? QVariant(QStringLiteral("")) : QVariant(s);
}

// Every column of a dispatch but its number and billing's value of the courier.
QList<std::pair<QString, QVariant>> columnsOf(const Dispatch& d) {
    return {
        {col::attendant, text(d.attendant)},
        {col::status, text(d.status)},
        {col::date, d.date.isValid() ? QVariant(d.date) : QVariant(QMetaType(QMetaType::QDate))},
        {col::time, text(d.time)},
        {col::clientPhone, text(d.clientPhone)},
        {col::clientContact, text(d.clientContact)},
        {col::clientName, text(d.clientName)},
        {col::clientAddress, text(d.clientAddress)},
        {col::clientKind, text(d.clientKind)},
        {col::pickupAddress, text(d.pickup.address)},
        {col::pickupContact, text(d.pickup.contact)},
        {col::pickupPhone, text(d.pickup.phone)},
        {col::pickupTask, text(d.pickup.task)},
        {col::deliveryAddress, text(d.delivery.address)},
        {col::deliveryContact, text(d.delivery.contact)},
        {col::deliveryPhone, text(d.delivery.phone)},
        {col::deliveryTask, text(d.delivery.task)},
        {col::remarks, text(d.remarks)},
        {col::courier, text(d.courier)},
        {col::clientValue, d.clientValue},
        {col::payment, text(d.payment)},
        {col::service, text(d.service)},
        {col::returnTrip, text(d.returnTrip)},
        {col::courierValue, d.courierValue}};
}

} // namespace

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

Dispatch fromRow(const Recordset& row) {
    Dispatch d;
    d.number = row.text(col::number);
    d.attendant = row.text(col::attendant);
    d.date = row.date(col::date).value_or(QDate());
    d.time = row.text(col::time);
    d.clientPhone = row.text(col::clientPhone);
    d.clientContact = row.text(col::clientContact);
    d.clientName = row.text(col::clientName);
    d.clientAddress = row.text(col::clientAddress);
    d.clientKind = row.text(col::clientKind);
    d.pickup = {row.text(col::pickupAddress), row.text(col::pickupContact),
                row.text(col::pickupPhone), row.text(col::pickupTask)};
    d.delivery = {row.text(col::deliveryAddress), row.text(col::deliveryContact),
                  row.text(col::deliveryPhone), row.text(col::deliveryTask)};
    d.remarks = row.text(col::remarks);
    d.courier = row.text(col::courier);
    d.clientValue = row.cents(col::clientValue);
    d.payment = row.text(col::payment);
    d.service = row.text(col::service);
    d.returnTrip = row.text(col::returnTrip);
    d.status = row.text(col::status);
    d.courierValue = row.cents(col::courierValue);
    return d;
}

std::optional<Dispatch> load(Store& store, const QString& number) {
    const Recordset row = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(col::table, col::number), {number});
    if (row.eof()) return std::nullopt;
    return fromRow(row);
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
    dispatch.number = store.nextCode(col::table);
    // Its money, posted or not, is known by the codes kept here from now on.
    QVariantMap row{{col::number, dispatch.number},
                    {col::billedCourierValue, qint64(0)},
                    {col::postedRows, QStringLiteral("")}};
    for (const auto& [column, value] : columnsOf(dispatch))
        row.insert(column, value);
    store.insert(col::table, row);
}

bool update(Store& store, const Dispatch& dispatch) {
    QStringList sets;
    QVariantList values;
    for (const auto& [column, value] : columnsOf(dispatch)) {
        sets << column + QStringLiteral(" = ?");
        values << value;
    }
    values << dispatch.number;
    return store.execute(QStringLiteral("UPDATE %1 SET %2 WHERE %3 = ?")
                             .arg(col::table, sets.join(u", "), col::number),
                         values) > 0;
}

bool setStatus(Store& store, const QString& number, const QString& status) {
    UnitOfWork unit(store);
    const bool changed = store.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3 = ?")
                                           .arg(col::table, col::status, col::number),
                                       {status, number}) > 0;
    unit.commit();
    return changed;
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

void setPostedCodes(Store& store, const QString& number, const QStringList& codes) {
    store.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3 = ?")
                      .arg(col::table, col::postedRows, col::number),
                  {codes.isEmpty() ? QStringLiteral("") : codes.join(u' '), number});
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

} // namespace rtx::dispatch
