#include "dispatch/core/billedvalues.h"

#include "dispatch/core/dispatch.h"
#include "store/formats.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::dispatch {

namespace {

const QList<rtx::Field<finance::BilledDispatch>>& billedFields() {
    using B = finance::BilledDispatch;
    static const QList<rtx::Field<B>> fields = {
        rtx::field<B>(col::number, &B::code),
        rtx::field<B>(col::date, &B::date),
        rtx::field<B>(col::clientName, &B::client),
        rtx::field<B>(col::courier, &B::courier),
        rtx::field<B>(col::clientValue, &B::clientValue),
        rtx::field<B>(col::billedCourierValue, &B::courierValue),
    };
    return fields;
}

} // namespace

QList<finance::BilledDispatch> dispatchesOfPeriod(Store& store, const QDate& from,
                                                  const QDate& to) {
    QStringList columns;
    for (const auto& f : billedFields())
        columns << f.column;
    Recordset rs =
        store.open(QStringLiteral("SELECT %1 FROM %2 WHERE %3 BETWEEN ? AND ? ORDER BY %4")
                       .arg(columns.join(u", "_s), col::table, col::date, col::number),
                   {from, to});
    QList<finance::BilledDispatch> out;
    for (; !rs.eof(); rs.moveNext())
        out << readRecord(rs, billedFields());
    return out;
}

std::optional<Problem> checkDispatchValues(qint64 clientValue, qint64 courierValue) {
    if (auto refused = moneyRefusal(clientValue, u"Valor Cliente"_s))
        return Problem{col::clientValue, *refused};
    if (auto refused = moneyRefusal(courierValue, u"Valor Courier"_s))
        return Problem{col::billedCourierValue, *refused};
    return std::nullopt;
}

bool changeDispatchValues(Store& store, const QString& code, qint64 clientValue,
                          qint64 courierValue) {
    if (code.isEmpty()) return false;
    // One statement: it finds the dispatch and writes its two values, and says whether it
    // found one.
    return store.execute(
               QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ? WHERE %4 = ?")
                   .arg(col::table, col::clientValue, col::billedCourierValue, col::number),
               {clientValue, courierValue, code}) > 0;
}

void handToBilling() {
    finance::handDispatchValues(
        {dispatchesOfPeriod, checkDispatchValues, changeDispatchValues, col::clientValue});
}

} // namespace rtx::dispatch
