#include "finance/core/billing.h"

#include "finance/core/ledger.h"
#include "store/formats.h"

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
    const QString set = QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ? WHERE ")
                            .arg(k.table, c::status, c::settledAmount, c::settled);
    // Only what is still open is settled: a receivable received before (a dispatch whose value
    // grew leaves the difference open beside it) keeps what it received.
    const QString stillOpen = u" AND "_s + store.sameText(k.table, c::status);
    UnitOfWork unit(store);
    for (const WriteOff& row : rows) {
        int settledRows = 0;
        QString whose;
        if (row.document.isEmpty()) {
            whose = QStringLiteral("(%1 IS NULL OR %1 = '')").arg(c::document);
            settledRows =
                store.execute(set + whose + stillOpen, {k.settled, row.amount, today, k.open});
        } else {
            whose = store.sameText(k.table, c::document);
            settledRows = store.execute(set + whose + stillOpen,
                                        {k.settled, row.amount, today, row.document, k.open});
        }
        // The grid listed it open, and now it is not: another station wrote it off since.
        // Crediting it again would count the money twice, so nothing of this write-off is kept.
        if (settledRows == 0) {
            QVariantList params;
            if (!row.document.isEmpty()) params << row.document;
            if (store
                    .scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE ").arg(k.table) + whose,
                            params)
                    .toLongLong() > 0)
                throw StoreError(writtenOffElsewhere(row.document));
        }
        CashMovement m;
        m.date = today;
        m.operation = credit;
        m.document = row.document;
        m.amount = row.amount;
        m.description = row.client;
        m.group = billingGroup;
        postCash(store, m);
    }
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
