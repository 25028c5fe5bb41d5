#include "dispatch/core/searches.h"

#include "dispatch/core/dispatch.h"
#include "dispatch/core/lookup.h"

namespace rtx::dispatch {

namespace {

const QString& searchedColumn(SearchBy box) {
    switch (box) {
    case SearchBy::Number:
        return col::number;
    case SearchBy::Status:
        return col::status;
    case SearchBy::Courier:
        return col::courier;
    case SearchBy::Client:
        break;
    }
    return col::clientName;
}

QString inPeriod() {
    return QStringLiteral("%1 BETWEEN ? AND ?").arg(col::date);
}

} // namespace

QStringList searchColumns() {
    return {col::number,  col::date,       col::clientName, col::status,
            col::service, col::returnTrip, col::courier,    col::clientValue};
}

PageQuery searchBy(const Store& store, SearchBy box, const QString& typed) {
    const QString& column = searchedColumn(box);
    // By number the order is the table's key itself.
    QList<SortKey> order;
    if (box != SearchBy::Number) order = {{column}};
    return {col::table, searchColumns(), store.startsWith(col::table, column),
            store.startParams(typed), order};
}

PageQuery searchPeriod(const QDate& from, const QDate& to) {
    return {col::table, searchColumns(), inPeriod(), {from, to}, {{col::date}}};
}

PageQuery searchCourierPeriod(const Store& store, const QString& courier, const QDate& from,
                              const QDate& to) {
    return {col::table,
            searchColumns(),
            store.sameText(col::table, col::courier) + QStringLiteral(" AND ") + inPeriod(),
            {courier, from, to},
            {{col::date}}};
}

PageQuery searchAll() {
    return {col::table, searchColumns(), {}, {}, {}};
}

PageQuery searchDay(const QDate& day) {
    return {col::table, searchColumns(), col::date + QStringLiteral(" = ?"), {day}, {}};
}

qint64 countPeriod(Store& store, const QDate& from, const QDate& to) {
    return store
        .scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2").arg(col::table, inPeriod()),
                {from, to})
        .toLongLong();
}

qint64 countCourierPeriod(Store& store, const QString& courier, const QDate& from,
                          const QDate& to) {
    const PageQuery q = searchCourierPeriod(store, courier, from, to);
    return store
        .scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2").arg(q.table, q.where), q.params)
        .toLongLong();
}

QStringList clientColumns() {
    return {client::code, client::name};
}

PageQuery clientsByName(const Store& store, const QString& typed) {
    return {client::table,
            clientColumns(),
            store.startsWith(client::table, client::name),
            store.startParams(typed),
            {{client::name}}};
}

} // namespace rtx::dispatch
