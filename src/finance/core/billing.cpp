#include "finance/core/billing.h"

#include "finance/core/ledger.h"
#include "store/formats.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

namespace {

// A receivable as the billing grid shows it: the courier is the bill's type.
const QList<Field<BillingRow>>& billingRowFields() {
    namespace c = billcol;
    static const QList<Field<BillingRow>> fields = {
        field<BillingRow>(c::document, &BillingRow::document),
        field<BillingRow>(c::due, &BillingRow::due),
        field<BillingRow>(c::party, &BillingRow::client),
        field<BillingRow>(c::type, &BillingRow::courier),
        field<BillingRow>(c::amount, &BillingRow::amount),
        field<BillingRow>(c::status, &BillingRow::status),
    };
    return fields;
}

} // namespace

QList<BillingRow> openReceivables(Store& store, const QDate& from, const QDate& to,
                                  const QString& client) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    QStringList columns;
    for (const Field<BillingRow>& f : billingRowFields())
        columns << f.column;
    QString sql =
        QStringLiteral("SELECT %1 FROM %2 WHERE %3 BETWEEN ? AND ? AND %4")
            .arg(columns.join(u", "_s), k.table, c::entered, store.sameText(k.table, c::status));
    QVariantList params{from, to, k.open};
    if (!client.isEmpty()) {
        sql += u" AND "_s + store.sameText(k.table, c::party);
        params << client;
    }
    sql += QStringLiteral(" ORDER BY %1, %2").arg(c::entered, c::code);
    QList<BillingRow> out;
    Recordset rs = store.open(sql, params);
    for (; !rs.eof(); rs.moveNext())
        out.append(readRecord(rs, billingRowFields()));
    return out;
}

QString writtenOffElsewhere(const QString& document) {
    return QStringLiteral("O documento %1 já foi baixado em outra estação. Atualize a lista e "
                          "baixe novamente.")
        .arg(document);
}

void writeOff(Store& store, const QList<WriteOff>& rows, const QDate& today) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    // A code the grid holds twice is settled with its last value, as writing the rows one
    // after the other would leave it; the codes compare blind to case, as the table does.
    QList<WriteOff> coded;
    QHash<QString, qsizetype> seen;
    std::optional<qint64> uncoded;
    for (const WriteOff& row : rows) {
        if (row.document.isEmpty()) {
            uncoded = row.amount;
            continue;
        }
        const QString key = row.document.toCaseFolded();
        if (const auto it = seen.constFind(key); it != seen.constEnd()) {
            coded[*it].amount = row.amount;
        } else {
            seen.insert(key, coded.size());
            coded << row;
        }
    }

    UnitOfWork unit(store);
    // Only what is still open is settled: a receivable received before (a dispatch whose value
    // grew leaves the difference open beside it) keeps what it received. The codes and their
    // values go as a list the table is joined to, so a write-off of a thousand rows is still a
    // statement or two; the rows settled come back, so that a code listed open on the grid and
    // no longer open is found without asking row by row.
    const QString stillOpen = u" AND "_s + store.sameText(k.table, c::status);
    const int per = Store::rowsPerStatement(2);
    QSet<QString> settledCodes;
    for (qsizetype from = 0; from < coded.size(); from += per) {
        const qsizetype n = std::min<qsizetype>(per, coded.size() - from);
        QVariantList params{k.settled, today};
        for (qsizetype i = from; i < from + n; ++i)
            params << coded[i].document << coded[i].amount;
        params << k.open;
        Recordset settled =
            store.open(QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = settled.column2 "
                                      "FROM (VALUES %5) AS settled WHERE %6%7 RETURNING %1.%8")
                           .arg(k.table, c::status, c::settled, c::settledAmount,
                                QStringList(n, u"(?, CAST(? AS BIGINT))"_s).join(u", "_s),
                                store.sameText(k.table, c::document, u"settled.column1"_s),
                                stillOpen, c::document),
                       params);
        for (; !settled.eof(); settled.moveNext())
            settledCodes.insert(settled.value(0).toString().toCaseFolded());
    }
    // The grid listed them open, and now they are not: another station wrote them off since.
    // Crediting them again would count the money twice, so nothing of this write-off is kept.
    QStringList notSettled;
    for (const WriteOff& row : coded)
        if (!settledCodes.contains(row.document.toCaseFolded())) notSettled << row.document;
    if (!notSettled.isEmpty()) {
        QStringList places;
        for (qsizetype i = 0; i < notSettled.size(); ++i)
            places << store.sameText(k.table, c::document);
        Recordset there = store.open(QStringLiteral("SELECT %1 FROM %2 WHERE %3")
                                         .arg(c::document, k.table, places.join(u" OR "_s)),
                                     QVariantList(notSettled.cbegin(), notSettled.cend()));
        if (!there.eof()) throw StoreError(writtenOffElsewhere(there.text(c::document)));
    }
    if (uncoded) {
        const QString whose = QStringLiteral("(%1 IS NULL OR %1 = '')").arg(c::document);
        const int settledRows =
            store.execute(QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ? WHERE ")
                                  .arg(k.table, c::status, c::settledAmount, c::settled) +
                              whose + stillOpen,
                          {k.settled, *uncoded, today, k.open});
        if (settledRows == 0 &&
            store.scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE ").arg(k.table) + whose)
                    .toLongLong() > 0)
            throw StoreError(writtenOffElsewhere(QString()));
    }

    // One credit per row of the grid; the day's totals follow by the book's own triggers.
    QList<CashMovement> credits;
    credits.reserve(rows.size());
    for (const WriteOff& row : rows) {
        CashMovement m;
        m.date = today;
        m.operation = credit;
        m.document = row.document;
        m.amount = row.amount;
        m.description = row.client;
        m.group = billingGroup;
        credits << m;
    }
    postCash(store, credits);
    unit.commit();
}

namespace {

DispatchValues& handed() {
    static DispatchValues values;
    return values;
}

} // namespace

void handDispatchValues(const DispatchValues& values) {
    handed() = values;
}

const DispatchValues& dispatchValues() {
    return handed();
}

} // namespace rtx::finance
