#include "dispatch/core/board.h"

namespace rtx::dispatch {

QList<CourierPosition> board(Store& store) {
    Recordset rs =
        store.open(QStringLiteral("SELECT %1, %2, %3 FROM %4 ORDER BY %5, %6")
                       .arg(courier::state, courier::name, courier::position, courier::table,
                            store.sortKey(courier::table, courier::name), courier::code));
    QList<CourierPosition> couriers;
    for (; !rs.eof(); rs.moveNext()) {
        // Exactly "ATIVO": a courier marked otherwise, in any case of letters, is out.
        if (rs.text(courier::state) != courier::active) continue;
        couriers.append({rs.text(courier::name), rs.text(courier::position)});
    }
    return couriers;
}

std::optional<qint64> courierFee(Store& store, const QString& name) {
    Recordset rs =
        store.open(QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY %4 LIMIT 1")
                       .arg(courier::fee, courier::table,
                            store.sameText(courier::table, courier::name), courier::code),
                   {name});
    if (rs.eof()) return std::nullopt;
    return rs.cents(courier::fee);
}

bool moveCourier(Store& store, const QString& name, const QString& position) {
    // The first courier of the name, found and moved by one statement.
    return store.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3 = (SELECT %3 FROM %1 "
                                        "WHERE %4 ORDER BY %3 LIMIT 1)")
                             .arg(courier::table, courier::position, courier::code,
                                  store.sameText(courier::table, courier::name)),
                         {position, name}) > 0;
}

QStringList statuses(Store& store) {
    const QString key = store.sortKey(statuslist::table, statuslist::word);
    Recordset rs = store.open(QStringLiteral("SELECT %1 FROM %2 GROUP BY %1, %3 ORDER BY %3, %1")
                                  .arg(statuslist::word, statuslist::table, key));
    QStringList words;
    for (; !rs.eof(); rs.moveNext())
        words << rs.text(statuslist::word);
    return words;
}

bool hasStatus(Store& store, const QString& word) {
    return store
        .scalar(QStringLiteral("SELECT 1 FROM %1 WHERE %2")
                    .arg(statuslist::table, store.sameText(statuslist::table, statuslist::word)),
                {word})
        .isValid();
}

void addStatus(Store& store, const QString& word) {
    UnitOfWork unit(store);
    store.insert(statuslist::table, {{statuslist::word, word}});
    unit.commit();
}

void removeStatus(Store& store, const QString& word) {
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2")
                      .arg(statuslist::table, store.sameText(statuslist::table, statuslist::word)),
                  {word});
    unit.commit();
}

} // namespace rtx::dispatch
