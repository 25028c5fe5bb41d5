#include "registers/core/lists.h"

namespace rtx::registers {

QStringList listNames(Store& store, const QString& table) {
    const QString& name = lists::nameColumn;
    QStringList names;
    for (Recordset rs =
             store.open(QStringLiteral("SELECT %1 FROM %2 ORDER BY %3")
                            .arg(name, rtx::table(table).name, store.sortKey(table, name)));
         !rs.eof(); rs.moveNext()) {
        // A name twice (written by another program) is offered once.
        const QString n = rs.text(name);
        if (!names.contains(n, Qt::CaseInsensitive)) names << n;
    }
    return names;
}

bool addListName(Store& store, const QString& table, const QString& typed) {
    const QString name = typed.trimmed();
    if (name.isEmpty()) return false;
    UnitOfWork unit(store);
    const bool known =
        store
            .scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2")
                        .arg(rtx::table(table).name, store.sameText(table, lists::nameColumn)),
                    {name})
            .toLongLong() > 0;
    if (!known) store.insert(table, {{lists::nameColumn, name.toUpper()}});
    unit.commit();
    return !known;
}

bool removeListName(Store& store, const QString& table, const QString& name) {
    UnitOfWork unit(store);
    const int removed =
        store.execute(QStringLiteral("DELETE FROM %1 WHERE %2")
                          .arg(rtx::table(table).name, store.sameText(table, lists::nameColumn)),
                      {name});
    unit.commit();
    return removed > 0;
}

} // namespace rtx::registers
