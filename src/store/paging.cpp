// Text comparisons by table and column, and rows read a page at a time by key.
//
// Text equality is blind to case but not to accents; the start of a search and the order
// of a list are blind to both. On SQLite a text column that its table lists among its
// indexes has folded copies kept by the database ("C5_chave", "C5_busca", each with its
// index; see migration2.cpp); another text column is folded in the statement by the
// functions the store registers. On PostgreSQL the column's own collation is blind to case,
// and the collation rtx_busca, blind to accents as well, serves search and order (with an
// index for the columns the table lists).

#include "migrations.h"
#include "store.h"
#include "textfold.h"

namespace rtx {

namespace {

const Column& columnOf(const TableDef& t, const QString& column) {
    if (const Column* c = t.column(column)) return *c;
    if (column.compare(t.idColumn, Qt::CaseInsensitive) == 0) {
        static const Column id{QString(), ColType::Id};
        return id;
    }
    throw StoreError(QStringLiteral("Coluna desconhecida: %1.%2").arg(t.name, column));
}

bool isText(const TableDef& t, const Column& c) {
    return c.type == ColType::Text && c.name.compare(t.codeColumn, Qt::CaseInsensitive) != 0;
}

// SQLite: the text columns that have folded copies.
bool hasFoldedCopies(const TableDef& t, const Column& c) {
    return isText(t, c) && t.indexes.contains(c.name, Qt::CaseInsensitive);
}

// The form of a column that a search starts with and a list is ordered by.
QString searchForm(Engine engine, const TableDef& t, const Column& c) {
    if (!isText(t, c)) {
        if (c.type == ColType::Id) return t.idColumn;
        // Codes in the order of their numbers (an index of each coded table has them so).
        if (c.type == ColType::Text) return QStringLiteral("CAST(%1 AS BIGINT)").arg(c.name);
        return c.name;
    }
    if (engine == Engine::PostgreSQL) return QStringLiteral("(%1 COLLATE rtx_busca)").arg(c.name);
    if (hasFoldedCopies(t, c)) return migration::searchColumn(c.name);
    return QStringLiteral("rtx_busca(%1)").arg(c.name);
}

QVariantList startValues(Engine engine, const QString& typed) {
    if (engine == Engine::PostgreSQL) {
        // U+FFFF weighs more than any letter in the ICU collations: every text that starts
        // with the typed one lies below it.
        const QString lo = typed.isNull() ? QStringLiteral("") : typed;
        return {lo, lo + QChar(0xFFFF)};
    }
    // Folded texts compare byte by byte in UTF-8, where the last code point comes last.
    const QString lo = typed.isEmpty() ? QStringLiteral("") : foldSearch(typed); // never NULL
    return {lo, lo + QString::fromUcs4(U"\U0010FFFF")};
}

Engine currentEngine() {
    try {
        return Store::current().engine();
    } catch (const StoreError&) {
        return Engine::SQLite;
    }
}

} // namespace

// ---- Text comparisons ----------------------------------------------------------------

QString Store::sameText(const QString& table, const QString& column) const {
    return sameText(table, column, QStringLiteral("?"));
}

QString Store::sameText(const QString& table, const QString& column, const QString& value) const {
    const TableDef& t = rtx::table(table);
    const Column& c = columnOf(t, column);
    const QString name = c.type == ColType::Id ? t.idColumn : c.name;
    if (!isText(t, c) || settings_.engine == Engine::PostgreSQL)
        return QStringLiteral("%1 = %2").arg(name, value);
    if (hasFoldedCopies(t, c))
        return QStringLiteral("%1 = rtx_chave(%2)").arg(migration::keyColumn(c.name), value);
    return QStringLiteral("rtx_chave(%1) = rtx_chave(%2)").arg(c.name, value);
}

QString Store::startsWith(const QString& table, const QString& column) const {
    const TableDef& t = rtx::table(table);
    const Column& c = columnOf(t, column);
    // A code is searched by its digits as typed, not by its number.
    const QString form = isText(t, c) ? searchForm(settings_.engine, t, c) : c.name;
    return QStringLiteral("(%1 >= ? AND %1 < ?)").arg(form);
}

QVariantList Store::startParams(const QString& typed) const {
    return startValues(settings_.engine, typed);
}

QString Store::sortKey(const QString& table, const QString& column) const {
    const TableDef& t = rtx::table(table);
    return searchForm(settings_.engine, t, columnOf(t, column));
}

// The forms before the table-aware ones: the column is known by its name alone. Where every
// table that has a column of that name keeps its folded copies, the search uses them (the
// station's work tables are not searched by these forms).
QString Store::prefixClause(const QString& column) {
    const Engine engine = currentEngine();
    QString name = column;
    const QString plus = name.startsWith(QLatin1Char('+')) ? QStringLiteral("+") : QString();
    name.remove(0, plus.size());
    QString form;
    if (engine == Engine::PostgreSQL) {
        form = QStringLiteral("%1 COLLATE rtx_busca").arg(name);
    } else {
        bool folded = true, found = false;
        for (const TableDef& t : tables())
            if (const Column* c = t.column(name); c && !t.workTable) {
                found = true;
                folded = folded && hasFoldedCopies(t, *c);
            }
        form = found && folded ? plus + migration::searchColumn(name)
                               : QStringLiteral("rtx_busca(%1%2)").arg(plus, name);
    }
    return QStringLiteral("(%1 >= ? AND %1 < ?)").arg(form);
}

QVariantList Store::prefixParams(const QString& typed) {
    return startValues(currentEngine(), typed);
}

// ---- Pages ---------------------------------------------------------------------------

namespace {

// One term of the order of a page: its expression and direction.
struct OrderTerm {
    QString expression;
    bool descending = false;
    bool nullable = true;
};

// The order of a query made total: its terms, then the table's id, which every index of a
// table carries on SQLite and the search indexes carry on PostgreSQL, in the direction of
// the last term, so that a list in one direction is read along its index.
QList<OrderTerm> orderTerms(const Store& store, const TableDef& t, const PageQuery& q) {
    QList<OrderTerm> terms;
    for (const SortKey& k : q.order) {
        const Column& c = columnOf(t, k.column);
        if (c.type == ColType::Id) continue;
        terms << OrderTerm{store.sortKey(t.name, k.column), k.descending,
                           c.name.compare(t.codeColumn, Qt::CaseInsensitive) != 0};
    }
    terms << OrderTerm{t.idColumn, !terms.isEmpty() && terms.last().descending, false};
    return terms;
}

// A condition with its values.
struct Condition {
    QString sql;
    QVariantList params;
};

// The rows after a position, as conditions each of which an index reads in the order of
// the terms: the rows equal to the position up to a term and after it in that term, for
// each term. Rows without a value come first in an ascending order and last in a
// descending one.
QList<Condition> afterConditions(const QList<OrderTerm>& terms, const QVariantList& after) {
    QList<Condition> out;
    for (int i = int(terms.size()) - 1; i >= 0; --i) {
        Condition equal;
        QStringList parts;
        for (int j = 0; j < i; ++j) {
            if (after[j].isNull()) {
                parts << terms[j].expression + QStringLiteral(" IS NULL");
            } else {
                parts << terms[j].expression + QStringLiteral(" = ?");
                equal.params << after[j];
            }
        }
        auto add = [&](const QString& next, const QVariantList& values) {
            out << Condition{(parts + QStringList{next}).join(u" AND "), equal.params + values};
        };
        const QString& e = terms[i].expression;
        if (!terms[i].descending) {
            if (after[i].isNull())
                add(e + QStringLiteral(" IS NOT NULL"), {});
            else
                add(e + QStringLiteral(" > ?"), {after[i]});
        } else if (!after[i].isNull()) {
            add(e + QStringLiteral(" < ?"), {after[i]});
            if (terms[i].nullable) add(e + QStringLiteral(" IS NULL"), {});
        }
    }
    return out;
}

} // namespace

Recordset Store::page(const PageQuery& query, const QVariantList& after, int limit) {
    const TableDef& t = rtx::table(query.table);
    const QList<OrderTerm> terms = orderTerms(*this, t, query);
    if (!after.isEmpty() && after.size() != terms.size())
        throw StoreError(QStringLiteral("Posi\u00e7\u00e3o de p\u00e1gina inv\u00e1lida."));

    QStringList select;
    select << (query.columns.isEmpty() ? QStringLiteral("*") : query.columns.join(u", "));
    for (int i = 0; i < terms.size(); ++i)
        select << QStringLiteral("%1 AS rtx_k%2").arg(terms[i].expression).arg(i);
    // SQLite puts rows without a value first when ascending, last when descending;
    // PostgreSQL is told to do the same (its search indexes are built so).
    auto orderBy = [&](bool byAlias) {
        QStringList order;
        for (int i = 0; i < terms.size(); ++i) {
            QString o = byAlias ? QStringLiteral("rtx_k%1").arg(i) : terms[i].expression;
            if (terms[i].descending) o += QStringLiteral(" DESC");
            if (settings_.engine == Engine::PostgreSQL && terms[i].nullable)
                o += terms[i].descending ? QStringLiteral(" NULLS LAST")
                                         : QStringLiteral(" NULLS FIRST");
            order << o;
        }
        return order.join(u", ");
    };

    QString condition = query.where;
    if (settings_.engine == Engine::SQLite && !condition.isEmpty() && terms.size() > 1 &&
        !condition.contains(terms.first().expression)) {
        // SQLite does not weigh how many rows a condition matches: it reads them all by the
        // condition's index and sorts them, even when a search by one column matches half the
        // table and the list is ordered by another. When many match, walking the order's
        // index and testing each row fills a page sooner; the condition, hidden in a CASE,
        // then leaves its own index alone.
        const int many = 2000;
        const qint64 found =
            scalar(QStringLiteral("SELECT COUNT(*) FROM (SELECT 1 FROM %1 WHERE %2 LIMIT %3)")
                       .arg(t.name, condition)
                       .arg(many),
                   query.params)
                .toLongLong();
        if (found >= many)
            condition = QStringLiteral("CASE WHEN (%1) THEN 1 ELSE 0 END = 1").arg(condition);
    }

    // One read from the start; after a position, one read for each way a row can follow
    // it, the first rows of them all in order.
    const QList<Condition> parts =
        after.isEmpty() ? QList<Condition>{Condition{}} : afterConditions(terms, after);
    QStringList reads;
    QVariantList params;
    for (const Condition& part : parts) {
        QStringList where;
        if (!condition.isEmpty()) {
            where << QStringLiteral("(%1)").arg(condition);
            params << query.params;
        }
        if (!part.sql.isEmpty()) {
            where << part.sql;
            params << part.params;
        }
        reads << QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4 LIMIT ?")
                     .arg(select.join(u", "), t.name,
                          where.isEmpty() ? QString()
                                          : QStringLiteral(" WHERE ") + where.join(u" AND "),
                          orderBy(false));
        params << limit;
    }
    QString sql;
    if (reads.size() == 1) {
        sql = reads.first();
    } else {
        for (int i = 0; i < reads.size(); ++i)
            reads[i] = QStringLiteral("SELECT * FROM (%1) AS rtx_p%2").arg(reads[i]).arg(i);
        sql =
            QStringLiteral("%1 ORDER BY %2 LIMIT ?").arg(reads.join(u" UNION ALL "), orderBy(true));
        params << limit;
    }
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
