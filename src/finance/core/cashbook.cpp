#include "finance/core/cashbook.h"

#include "store/formats.h"

namespace rtx::finance {

namespace {

const QString kNoDescription = QStringLiteral("O campo [Descritivo], não pode ficar em branco.");
const QString kNoOperation = QStringLiteral("O campo [Operação], não pode ficar em branco.");

// The condition and values of a search.
QString searchWhere(const Store& store, const CashQuery& q, QVariantList& params) {
    QStringList parts;
    if (q.by != CashSearch::All) {
        parts << QStringLiteral("%1 BETWEEN ? AND ?").arg(cashcol::date);
        params << q.from << q.to;
    }
    switch (q.by) {
    case CashSearch::Debits:
        parts << QStringLiteral("%1 = ?").arg(cashcol::operation);
        params << debit;
        break;
    case CashSearch::Credits:
        parts << QStringLiteral("%1 = ?").arg(cashcol::operation);
        params << credit;
        break;
    case CashSearch::Group:
        parts << store.sameText(cashTable, cashcol::group);
        params << q.group;
        [[fallthrough]];
    default:
        parts << QStringLiteral("(%1 = ? OR %1 = ?)").arg(cashcol::operation);
        params << debit << credit;
        break;
    }
    return parts.join(QStringLiteral(" AND "));
}

} // namespace

const QList<Field<CashMovement>>& cashFields() {
    namespace c = cashcol;
    static const QList<Field<CashMovement>> fields = {
        field<CashMovement>(c::code, &CashMovement::code),
        field<CashMovement>(c::date, &CashMovement::date),
        field<CashMovement>(c::operation, &CashMovement::operation),
        field<CashMovement>(c::document, &CashMovement::document),
        field<CashMovement>(c::type, &CashMovement::type),
        field<CashMovement>(c::amount, &CashMovement::amount),
        field<CashMovement>(c::description, &CashMovement::description),
        field<CashMovement>(c::group, &CashMovement::group),
    };
    return fields;
}

QString postCash(Store& store, const CashMovement& m) {
    // A new code is never on file: the row is added without looking for it first, which
    // keeps a write-off of many rows one insert each.
    QVariantMap row = storedRow(m, cashFields());
    row.remove(cashcol::code);
    return store.insertUnderNewCode(cashTable, row);
}

QStringList postCash(Store& store, const QList<CashMovement>& movements) {
    if (movements.isEmpty()) return {};
    const QStringList codes = store.nextCodes(cashTable, int(movements.size()));
    QStringList columns{cashcol::code};
    for (const Field<CashMovement>& f : cashFields())
        if (f.column != cashcol::code) columns << f.column;
    QList<QVariantList> rows;
    rows.reserve(movements.size());
    for (qsizetype i = 0; i < movements.size(); ++i) {
        const QVariantMap stored = storedRow(movements[i], cashFields());
        QVariantList row{codes[i]};
        for (qsizetype c = 1; c < columns.size(); ++c)
            row << stored.value(columns[c]);
        rows << row;
    }
    store.insertRows(cashTable, columns, rows);
    return codes;
}

std::optional<Problem> checkCash(const CashMovement& m) {
    if (m.description.isEmpty()) return Problem{cashcol::description, kNoDescription};
    if (m.operation.isEmpty()) return Problem{cashcol::operation, kNoOperation};
    if (auto refused = moneyRefusal(m.amount, QStringLiteral("Valor")))
        return Problem{cashcol::amount, *refused};
    return std::nullopt;
}

CashDay loadDay(Store& store, const QDate& day, const QDate& previousUpTo) {
    CashDay d;
    d.previous = store.cashTotals(bookStart(), previousUpTo).balance();
    Recordset rs = store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 = ? AND (%3 = ? OR %3 = ?) "
                                             "ORDER BY CAST(%4 AS BIGINT)")
                                  .arg(cashTable, cashcol::date, cashcol::operation, cashcol::code),
                              {day, debit, credit});
    for (; !rs.eof(); rs.moveNext()) {
        const CashMovement m = readRecord(rs, cashFields());
        if (m.isDebit())
            d.debits += m.amount;
        else if (m.isCredit())
            d.credits += m.amount;
        else
            continue;
        d.rows << m;
    }
    return d;
}

std::optional<CashMovement> loadCash(Store& store, const QString& code) {
    if (code.isEmpty()) return std::nullopt;
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(cashTable, cashcol::code), {code});
    if (rs.eof()) return std::nullopt;
    return readRecord(rs, cashFields());
}

bool updateCash(Store& store, const CashMovement& m) {
    if (!loadCash(store, m.code)) return false;
    saveRecord(store, cashTable, cashcol::code, m.code, m, cashFields());
    return true;
}

QList<CashMovement> movementsOf(Store& store, const QString& operation, const QString& document,
                                const QString& group) {
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ? AND %3 = ? AND %4 = ? "
                       "ORDER BY CAST(%5 AS BIGINT)")
            .arg(cashTable, cashcol::operation, cashcol::document, cashcol::group, cashcol::code),
        {operation, document, group});
    QList<CashMovement> out;
    for (; !rs.eof(); rs.moveNext())
        out << readRecord(rs, cashFields());
    return out;
}

bool removeCash(Store& store, const QString& code) {
    if (code.isEmpty()) return false;
    return store.execute(
               QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(cashTable, cashcol::code),
               {code}) > 0;
}

PageQuery cashSearch(const Store& store, const CashQuery& q) {
    PageQuery p;
    p.table = cashTable;
    p.columns = {cashcol::date,        cashcol::operation, cashcol::document, cashcol::type,
                 cashcol::description, cashcol::group,     cashcol::amount,   cashcol::code};
    p.where = searchWhere(store, q, p.params);
    p.order = {SortKey{q.by == CashSearch::Group ? cashcol::date : cashcol::code}};
    return p;
}

Store::CashTotals cashSearchTotals(Store& store, const CashQuery& q) {
    Store::CashTotals t;
    switch (q.by) {
    case CashSearch::Period:
    case CashSearch::Debits:
    case CashSearch::Credits:
        if (q.from > q.to) return t;
        t = store.cashTotals(q.from, q.to);
        if (q.by == CashSearch::Debits) t.credits = 0;
        if (q.by == CashSearch::Credits) t.debits = 0;
        return t;
    case CashSearch::All: {
        t = store.cashTotals(QDate(1, 1, 1), QDate(9999, 12, 31));
        // Movements without a day stand in the whole book, not in the day totals.
        Recordset rs = store.open(
            QStringLiteral("SELECT SUM(CASE WHEN %2 = ? THEN %3 ELSE 0 END), "
                           "SUM(CASE WHEN %2 = ? THEN %3 ELSE 0 END) FROM %1 WHERE %4 IS NULL")
                .arg(cashTable, cashcol::operation, cashcol::amount, cashcol::date),
            {credit, debit});
        t.credits += rs.value(0).toLongLong();
        t.debits += rs.value(1).toLongLong();
        return t;
    }
    case CashSearch::Group:
        break;
    }
    QVariantList params{credit, debit};
    const QString where = searchWhere(store, q, params);
    Recordset rs = store.open(QStringLiteral("SELECT SUM(CASE WHEN %2 = ? THEN %3 ELSE 0 END), "
                                             "SUM(CASE WHEN %2 = ? THEN %3 ELSE 0 END) FROM %1 "
                                             "WHERE %4")
                                  .arg(cashTable, cashcol::operation, cashcol::amount, where),
                              params);
    t.credits = rs.value(0).toLongLong();
    t.debits = rs.value(1).toLongLong();
    return t;
}

} // namespace rtx::finance
