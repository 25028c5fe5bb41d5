// The statements of the store: reading rows, codes, adding and saving by key.
#include "store.h"

#include "formats.h"

#include <QRegularExpression>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>

namespace rtx {

StoreError::StoreError(const QString& text) : std::runtime_error(text.toStdString()), text_(text) {}

RowChanged::RowChanged(Why why)
    : StoreError(
          why == Why::Changed
              ? QStringLiteral("Este registro foi alterado em outra esta\u00e7\u00e3o depois "
                               "que foi aberto.")
              : QStringLiteral("Este registro foi exclu\u00eddo em outra esta\u00e7\u00e3o "
                               "depois que foi aberto; nada foi gravado.")),
      why_(why) {}

const QString& versionColumn() {
    static const QString column = QStringLiteral("versao");
    return column;
}

QDate requireDate(const QString& text) {
    if (auto d = normaliseDate(text)) return *d;
    throw StoreError(QStringLiteral("Data inv\u00e1lida: \"%1\".").arg(text));
}

namespace {

// The table behind "SELECT ... FROM <table>" and whether it is a plain "SELECT *".
const QRegularExpression& fromPattern() {
    static const QRegularExpression re(QStringLiteral(R"(\bfrom\s+(\w+))"),
                                       QRegularExpression::CaseInsensitiveOption);
    return re;
}
const QRegularExpression& starPattern() {
    static const QRegularExpression re(
        QStringLiteral(R"(^\s*select\s*\*\s*from\s+\w+\s*(where|order|;|$))"),
        QRegularExpression::CaseInsensitiveOption);
    return re;
}

} // namespace

Store::CashTotals Store::cashTotals(const QDate& from, const QDate& to) {
    Recordset rs = open(QStringLiteral("SELECT SUM(creditos), SUM(debitos) FROM caixa_dias WHERE "
                                       "dia BETWEEN ? AND ?"),
                        {from, to});
    CashTotals t;
    if (!rs.eof()) {
        t.credits = rs.value(0).toString().toLongLong();
        t.debits = rs.value(1).toString().toLongLong();
    }
    return t;
}

Recordset Store::open(const QString& sql, const QVariantList& params) {
    QSqlQuery q = run(sql, params);
    Recordset rs;
    rs.store_ = this;
    const QSqlRecord rec = q.record();
    for (int i = 0; i < rec.count(); ++i)
        rs.columns_ << rec.fieldName(i);
    while (q.next()) {
        QVariantList row;
        row.reserve(rec.count());
        for (int i = 0; i < rec.count(); ++i)
            row << q.value(i);
        rs.rows_ << row;
    }
    const auto m = fromPattern().match(sql);
    if (m.hasMatch()) {
        rs.table_ = findTable(m.captured(1));
        rs.editable_ = rs.table_ && starPattern().match(sql).hasMatch();
    }
    return rs;
}

Recordset Store::table(const QString& name) {
    const TableDef& t = rtx::table(name);
    const QString order = t.codeColumn.isEmpty() ? t.idColumn : t.codeColumn;
    return open(QStringLiteral("SELECT * FROM %1 ORDER BY %2").arg(t.name, order));
}

int Store::execute(const QString& sql, const QVariantList& params) {
    QSqlQuery q = run(sql, params);
    return q.numRowsAffected();
}

QVariant Store::scalar(const QString& sql, const QVariantList& params) {
    QSqlQuery q = run(sql, params);
    return q.next() ? q.value(0) : QVariant();
}

qint64 Store::count(const QString& name) {
    const TableDef& t = rtx::table(name);
    return scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(t.name)).toLongLong();
}

QString Store::peekCode(const QString& name) {
    const TableDef& t = rtx::table(name);
    if (t.codeColumn.isEmpty())
        throw StoreError(QStringLiteral("A tabela %1 n\u00e3o tem c\u00f3digo.").arg(t.name));
    const QVariant max =
        scalar(QStringLiteral("SELECT MAX(CAST(%2 AS BIGINT)) FROM %1").arg(t.name, t.codeColumn));
    const qint64 next = max.isNull() ? 1 : max.toLongLong() + 1;
    return padCode(next, t.codeWidth);
}

QString Store::nextCode(const QString& name) {
    const TableDef& t = rtx::table(name);
    // The code is drawn under the writer's lock of this unit of work, so no other station
    // can draw the same one before this unit ends.
    // When another station holds it, the wait shows the hourglass (and ends, like any lock
    // wait, after a few seconds).
    if (settings_.engine == Engine::PostgreSQL && depth_ > 0) {
        const QVariantList lock{QStringLiteral("rtx.code.") + t.name};
        if (!scalar(QStringLiteral("SELECT pg_try_advisory_xact_lock(hashtext(?))"), lock)
                 .toBool()) {
            startWaiting();
            run(QStringLiteral("SELECT pg_advisory_xact_lock(hashtext(?))"), lock);
        }
    }
    return peekCode(t.name);
}

QStringList Store::nextCodes(const QString& name, int count) {
    const TableDef& t = rtx::table(name);
    const qint64 first = nextCode(t.name).toLongLong();
    QStringList codes;
    codes.reserve(count);
    for (int i = 0; i < count; ++i)
        codes << padCode(first + i, t.codeWidth);
    return codes;
}

// One code of a table by numeric order: the first or last, or the nearest one before or
// after a given code.
QString Store::codeNear(const QString& name, const QString& comparison, bool descending,
                        const QVariantList& params) {
    const TableDef& t = rtx::table(name);
    const QString number = QStringLiteral("CAST(%1 AS BIGINT)").arg(t.codeColumn);
    const QString where =
        comparison.isEmpty()
            ? QString()
            : QStringLiteral(" WHERE %1 %2 CAST(? AS BIGINT)").arg(number, comparison);
    return scalar(QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4%5 LIMIT 1")
                      .arg(t.codeColumn, t.name, where, number,
                           descending ? QStringLiteral(" DESC") : QString()),
                  params)
        .toString();
}

QString Store::firstCode(const QString& name) {
    return codeNear(name, {}, false, {});
}

QString Store::lastCode(const QString& name) {
    return codeNear(name, {}, true, {});
}

QString Store::previousCode(const QString& name, const QString& code) {
    return codeNear(name, QStringLiteral("<"), true, {code});
}

QString Store::nextCodeAfter(const QString& name, const QString& code) {
    return codeNear(name, QStringLiteral(">"), false, {code});
}

// A new row of a table, its values set through Recordset's conversions. The columns come
// from the table's description rather than from an empty read of the table: a new row is
// one statement.
Recordset Store::newRow(const TableDef& t, const QVariantMap& values) {
    Recordset rs;
    rs.store_ = this;
    rs.table_ = &t;
    rs.editable_ = true;
    rs.columns_ << t.idColumn;
    for (const Column& c : t.columns)
        rs.columns_ << c.name;
    rs.addNew();
    for (auto it = values.begin(); it != values.end(); ++it)
        rs.setValue(it.key(), it.value());
    return rs;
}

QVariant Store::insert(const QString& name, const QVariantMap& values) {
    const TableDef& t = rtx::table(name);
    Recordset rs = newRow(t, values);
    rs.update();
    rs.moveLast();
    return rs.value(t.idColumn);
}

QList<std::pair<const Column*, QVariant>> Store::storedValues(const TableDef& t,
                                                              const QVariantMap& values) {
    const Recordset rs = newRow(t, values);
    QList<std::pair<const Column*, QVariant>> stored;
    for (qsizetype i = 0; i < t.columns.size(); ++i) // after the id column
        if (rs.touched_[i + 1]) stored.append({&t.columns[i], rs.pending_[i + 1]});
    return stored;
}

QString Store::insertUnderNewCode(const QString& name, const QVariantMap& values) {
    const TableDef& t = rtx::table(name);
    if (settings_.engine != Engine::PostgreSQL || depth_ == 0 || t.codeColumn.isEmpty()) {
        const QString code = nextCode(t.name);
        QVariantMap row = values;
        row.insert(t.codeColumn, code);
        insert(t.name, row);
        return code;
    }
    QVariantMap row = values;
    row.remove(t.codeColumn);
    // Bound values in a SELECT have no column to take their type from: each is cast to its
    // column's.
    QStringList names{t.codeColumn};
    QStringList selected;
    QVariantList params;
    const auto castTo = [](ColType type) {
        switch (type) {
        case ColType::Date:
            return QStringLiteral("DATE");
        case ColType::Money:
        case ColType::Int:
        case ColType::Id:
            return QStringLiteral("BIGINT");
        case ColType::Text:
            break;
        }
        return QStringLiteral("TEXT");
    };
    for (const auto& [column, value] : storedValues(t, row)) {
        names << column->name;
        selected << QStringLiteral("CAST(? AS %1)").arg(castTo(column->type));
        params << value;
    }
    const QString lock = QStringLiteral("rtx.code.") + t.name;
    params << lock;
    // The code is the numeric maximum plus one, drawn under the table's code lock (the one
    // nextCode takes). The statement reads the table as it was when it started, which may be
    // before the station that held the lock committed: its code is then taken, nothing is
    // added, and the next try, holding the lock, reads the table anew.
    const QString number =
        QStringLiteral("(SELECT CAST(COALESCE(MAX(CAST(%1 AS BIGINT)), 0) + 1 AS TEXT) FROM %2)")
            .arg(t.codeColumn, t.name);
    const QString sql =
        QStringLiteral("INSERT INTO %1 (%2) SELECT lpad(n, GREATEST(length(n), %3), '0')%4 "
                       "FROM %5 AS proximo(n) WHERE pg_try_advisory_xact_lock(hashtext(?)) "
                       "ON CONFLICT (%6) DO NOTHING RETURNING %6")
            .arg(t.name, names.join(u", "))
            .arg(t.codeWidth)
            .arg(selected.isEmpty() ? QString() : QStringLiteral(", ") + selected.join(u", "),
                 number, t.codeColumn);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QVariant code = scalar(sql, params);
        if (code.isValid()) return code.toString();
        // Another station holds the lock (or had just taken the code): wait for it with the
        // hourglass, then draw again.
        startWaiting();
        run(QStringLiteral("SELECT pg_advisory_xact_lock(hashtext(?))"), {lock});
    }
    throw StoreError(
        QStringLiteral("N\u00e3o foi poss\u00edvel obter um novo c\u00f3digo de %1.").arg(t.name));
}

int Store::rowsPerStatement(int width) {
    // SQLite takes up to 32766 bound values in a statement, PostgreSQL 65535.
    return std::max(1, 30000 / std::max(1, width));
}

void Store::insertRows(const QString& name, const QStringList& columns,
                       const QList<QVariantList>& rows) {
    const TableDef& t = rtx::table(name);
    const QString oneRow =
        QStringLiteral("(%1)").arg(QStringList(columns.size(), QStringLiteral("?")).join(u", "));
    const int per = rowsPerStatement(int(columns.size()));
    for (qsizetype from = 0; from < rows.size(); from += per) {
        const qsizetype n = std::min<qsizetype>(per, rows.size() - from);
        QVariantList params;
        params.reserve(n * columns.size());
        for (qsizetype r = from; r < from + n; ++r)
            params << rows[r];
        execute(QStringLiteral("INSERT INTO %1 (%2) VALUES %3")
                    .arg(t.name, columns.join(u", "), QStringList(n, oneRow).join(u", ")),
                params);
    }
}

Recordset Store::rowForSave(const QString& name, const QString& keyColumn, const QVariant& key,
                            qint64 expectedVersion) {
    const TableDef& t = rtx::table(name);
    Recordset rs =
        open(QStringLiteral("SELECT * FROM %1 WHERE %2").arg(t.name, sameText(t.name, keyColumn)),
             {key});
    if (rs.eof()) {
        // A row read on a screen and deleted at another station since is not added again.
        if (expectedVersion > 0) throw RowChanged(RowChanged::Why::Deleted);
        rs.addNew();
        rs.setValue(keyColumn, key);
    } else {
        rs.edit(expectedVersion);
    }
    return rs;
}

void Store::saveByKey(const QString& name, const QString& keyColumn, const QVariant& key,
                      const QVariantMap& values, qint64 expectedVersion) {
    const TableDef& t = rtx::table(name);
    // A row read at a version and kept under its code, which no other row shares, is written
    // by one UPDATE that compares the version itself, without reading the row first.
    if (expectedVersion > 0 && !values.isEmpty() && !t.codeColumn.isEmpty() &&
        keyColumn.compare(t.codeColumn, Qt::CaseInsensitive) == 0) {
        QStringList sets;
        QVariantList params;
        for (const auto& [column, value] : storedValues(t, values)) {
            sets << column->name + QStringLiteral(" = ?");
            params << value;
        }
        const QString where = sameText(t.name, keyColumn);
        params << key << expectedVersion;
        UnitOfWork unit(*this);
        if (execute(QStringLiteral("UPDATE %1 SET %2 WHERE %3 AND %4 = ?")
                        .arg(t.name, sets.join(u", "), where, versionColumn()),
                    params) == 0) {
            const bool there =
                scalar(QStringLiteral("SELECT 1 FROM %1 WHERE %2").arg(t.name, where), {key})
                    .isValid();
            throw RowChanged(there ? RowChanged::Why::Changed : RowChanged::Why::Deleted);
        }
        unit.commit();
        return;
    }
    UnitOfWork unit(*this);
    Recordset rs = rowForSave(name, keyColumn, key, expectedVersion);
    for (auto it = values.begin(); it != values.end(); ++it)
        rs.setValue(it.key(), it.value());
    rs.update();
    unit.commit();
}

qint64 Store::versionOf(const QString& name, const QString& keyColumn, const QVariant& key) {
    const TableDef& t = rtx::table(name);
    return scalar(QStringLiteral("SELECT %1 FROM %2 WHERE %3")
                      .arg(versionColumn(), t.name, sameText(t.name, keyColumn)),
                  {key})
        .toLongLong();
}

void Store::requireVersion(const QString& name, const QString& keyColumn, const QVariant& key,
                           qint64 expectedVersion) {
    if (expectedVersion <= 0) return;
    const qint64 now = versionOf(name, keyColumn, key);
    if (now == 0) throw RowChanged(RowChanged::Why::Deleted);
    if (now != expectedVersion) throw RowChanged(RowChanged::Why::Changed);
}

} // namespace rtx
