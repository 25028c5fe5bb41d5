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

QVariant Store::insert(const QString& name, const QVariantMap& values) {
    // The columns come from the table's description rather than from an empty read of the
    // table: a new row is one statement.
    const TableDef& t = rtx::table(name);
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
    rs.update();
    rs.moveLast();
    return rs.value(t.idColumn);
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
