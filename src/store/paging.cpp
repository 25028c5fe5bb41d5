// Text comparisons by table and column, and rows read a page at a time by key.

#include "store.h"

#include <limits>

namespace rtx {

namespace {

// The column that makes an order total: the table's code, else its engine-given id.
QString keyColumn(const TableDef& t) {
    return t.codeColumn.isEmpty() ? t.idColumn : t.codeColumn;
}

// One term of an order: the expression, its direction and the values its expression binds.
struct OrderTerm {
    QString expression;
    bool descending = false;
    QVariantList params; // bound once for each time the expression appears
};

} // namespace

QString Store::sameText(const QString& table, const QString& column) const {
    Q_UNUSED(table);
    return column + QStringLiteral(" = ?");
}

QString Store::startsWith(const QString& table, const QString& column) const {
    Q_UNUSED(table);
    return prefixClause(column);
}

QVariantList Store::startParams(const QString& typed) const {
    return prefixParams(typed);
}

QString Store::sortKey(const QString& table, const QString& column) const {
    Q_UNUSED(table);
    return QStringLiteral("COALESCE(%1, '') %2")
        .arg(column, settings_.engine == Engine::SQLite ? QStringLiteral("COLLATE rtx_fold")
                                                        : QStringLiteral("COLLATE rtx_ci"));
}

namespace {

QList<OrderTerm> orderTerms(const Store& store, const TableDef& t, const PageQuery& q) {
    QList<OrderTerm> terms;
    const QString key = keyColumn(t);
    for (const SortKey& k : q.order) {
        if (k.column.compare(key, Qt::CaseInsensitive) == 0) continue;
        const Column* c = t.column(k.column);
        if (!c) throw StoreError(QStringLiteral("Coluna desconhecida: %1.").arg(k.column));
        OrderTerm term;
        term.descending = k.descending;
        switch (c->type) {
        case ColType::Text:
            term.expression = store.sortKey(t.name, c->name);
            break;
        case ColType::Date:
            // A row without a date sorts before every date.
            term.expression = QStringLiteral("COALESCE(%1, ?)").arg(c->name);
            term.params << QDate(1, 1, 1);
            break;
        case ColType::Money:
        case ColType::Int:
        case ColType::Id:
            term.expression = QStringLiteral("COALESCE(%1, ?)").arg(c->name);
            term.params << std::numeric_limits<qint64>::min();
            break;
        }
        terms << term;
    }
    // The key last, ascending: no two rows tie.
    terms << OrderTerm{key, false, {}};
    return terms;
}

} // namespace

Recordset Store::page(const PageQuery& query, const QVariantList& after, int limit) {
    const TableDef& t = rtx::table(query.table);
    const QList<OrderTerm> terms = orderTerms(*this, t, query);

    QVariantList params;
    QStringList select;
    select << (query.columns.isEmpty() ? QStringLiteral("*") : query.columns.join(u", "));
    for (int i = 0; i < terms.size(); ++i) {
        select << QStringLiteral("%1 AS rtx_k%2").arg(terms.at(i).expression).arg(i);
        params << terms.at(i).params;
    }

    QStringList where;
    QVariantList whereParams;
    if (!query.where.isEmpty()) {
        where << QStringLiteral("(%1)").arg(query.where);
        whereParams << query.params;
    }
    if (!after.isEmpty()) {
        if (after.size() != terms.size())
            throw StoreError(QStringLiteral("Posição de página inválida."));
        // (k0 > a0) OR (k0 = a0 AND k1 > a1) OR ..., each term in its own direction.
        QStringList alternatives;
        for (int i = 0; i < terms.size(); ++i) {
            QStringList parts;
            for (int j = 0; j < i; ++j) {
                parts << terms.at(j).expression + QStringLiteral(" = ?");
                whereParams << terms.at(j).params << after.at(j);
            }
            parts << terms.at(i).expression +
                         (terms.at(i).descending ? QStringLiteral(" < ?") : QStringLiteral(" > ?"));
            whereParams << terms.at(i).params << after.at(i);
            alternatives << QStringLiteral("(%1)").arg(parts.join(u" AND "));
        }
        where << QStringLiteral("(%1)").arg(alternatives.join(u" OR "));
    }
    params << whereParams;

    QStringList order;
    for (const OrderTerm& term : terms) {
        order << term.expression + (term.descending ? QStringLiteral(" DESC") : QString());
        params << term.params;
    }
    params << limit;

    const QString sql =
        QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT ?")
            .arg(select.join(u", "), t.name,
                 where.isEmpty() ? QString() : QStringLiteral(" WHERE ") + where.join(u" AND "),
                 order.join(u", "));
    Recordset rows = open(sql, params);
    rows.table_ = &t;
    rows.editable_ = false;
    return rows;
}

QVariantList Store::pageCursor(const PageQuery& query, const Recordset& rows) const {
    const TableDef& t = rtx::table(query.table);
    const qsizetype n = orderTerms(*this, t, query).size();
    QVariantList cursor;
    for (qsizetype i = 0; i < n; ++i)
        cursor << rows.value(QStringLiteral("rtx_k%1").arg(i));
    return cursor;
}

} // namespace rtx
