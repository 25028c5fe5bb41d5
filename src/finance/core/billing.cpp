#include "finance/core/billing.h"

#include "dispatch/core/dispatch.h"
#include "finance/core/ledger.h"
#include "store/formats.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

QList<BillingRow> openReceivables(Store& store, const QDate& from, const QDate& to,
                                  const QString& client) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    QString sql = QStringLiteral("SELECT %1, %2, %3, %4, %5, %6 FROM %7 WHERE %8 BETWEEN ? AND ? "
                                 "AND %9")
                      .arg(c::document, c::due, c::party, c::type, c::amount, c::status, k.table,
                           c::entered, store.sameText(k.table, c::status));
    QVariantList params{from, to, k.open};
    if (!client.isEmpty()) {
        sql += u" AND "_s + store.sameText(k.table, c::party);
        params << client;
    }
    sql += QStringLiteral(" ORDER BY %1, %2").arg(c::entered, c::code);
    QList<BillingRow> out;
    Recordset rs = store.open(sql, params);
    for (; !rs.eof(); rs.moveNext())
        out.append({rs.text(c::document), rs.date(c::due).value_or(QDate()), rs.text(c::party),
                    rs.text(c::type), rs.cents(c::amount), rs.text(c::status)});
    return out;
}

void writeOff(Store& store, const QList<WriteOff>& rows, const QDate& today) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    const QString set = QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ? WHERE ")
                            .arg(k.table, c::status, c::settledAmount, c::settled);
    UnitOfWork unit(store);
    for (const WriteOff& row : rows) {
        if (row.document.isEmpty())
            store.execute(set + QStringLiteral("(%1 IS NULL OR %1 = '')").arg(c::document),
                          {k.settled, row.amount, today});
        else
            store.execute(set + store.sameText(k.table, c::document),
                          {k.settled, row.amount, today, row.document});
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

QList<BilledDispatch> dispatchesOfPeriod(Store& store, const QDate& from, const QDate& to) {
    namespace d = dispatch::col;
    QList<BilledDispatch> out;
    Recordset rs = store.open(
        QStringLiteral("SELECT %1, %2, %3, %4, %5, %6 FROM %7 WHERE %2 BETWEEN ? AND ? ORDER BY %1")
            .arg(d::number, d::date, d::clientName, d::courier, d::clientValue,
                 d::billedCourierValue, dispatch::col::table),
        {from, to});
    for (; !rs.eof(); rs.moveNext())
        out.append({rs.text(d::number), rs.date(d::date).value_or(QDate()), rs.text(d::clientName),
                    rs.text(d::courier), rs.cents(d::clientValue),
                    rs.cents(d::billedCourierValue)});
    return out;
}

std::optional<Problem> checkDispatchValues(qint64 clientValue, qint64 courierValue) {
    if (auto refused = moneyRefusal(clientValue, u"Valor Cliente"_s))
        return Problem{dispatch::col::clientValue, *refused};
    if (auto refused = moneyRefusal(courierValue, u"Valor Courier"_s))
        return Problem{dispatch::col::billedCourierValue, *refused};
    return std::nullopt;
}

bool changeDispatchValues(Store& store, const QString& code, qint64 clientValue,
                          qint64 courierValue) {
    namespace d = dispatch::col;
    if (code.isEmpty()) return false;
    UnitOfWork unit(store);
    const bool found =
        store.execute(QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ? WHERE %4 = ?")
                          .arg(d::table, d::clientValue, d::billedCourierValue, d::number),
                      {clientValue, courierValue, code}) > 0;
    unit.commit();
    return found;
}

} // namespace rtx::finance
