#include "panel/core/figures.h"

#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace rtx::panel {

namespace col = dispatch::col;
namespace bill = finance::billcol;

namespace {

// A day as the engine gives it back from a GROUP BY: a date on PostgreSQL, the ISO text on
// SQLite.
QDate dayOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QDate) return value.toDate();
    return QDate::fromString(value.toString().left(10), Qt::ISODate);
}

// Sums arrive as numeric text from PostgreSQL (kept exact) and as integers from SQLite.
qint64 centsOf(const QVariant& value) {
    return value.isNull() ? 0 : value.toString().toLongLong();
}

// The dispatches' day totals, kept by the database as each dispatch is written: by day, hour
// and way of payment (hora -1: a time that cannot be read), and by day and courier.
namespace totals {
const QString hours = u"painel_horas"_s;
const QString couriers = u"painel_entregadores"_s;
const QString inPeriod = u"dia >= ? AND dia <= ?"_s;
} // namespace totals

// The dispatches of the period by day and way of payment: how many, what the clients pay
// and what the couriers get. One read serves the daily line and the revenue.
struct DayRow {
    QDate day;
    bool cash = false;
    int count = 0;
    qint64 value = 0;
    qint64 fees = 0;
};

QList<DayRow> dayRows(Store& store, const Period& period) {
    Recordset rs =
        store.open(u"SELECT dia, a_vista, SUM(atendimentos), SUM(valor), SUM(taxas) "
                   "FROM %1 WHERE %2 GROUP BY dia, a_vista"_s.arg(totals::hours, totals::inPeriod),
                   {period.from, period.to});
    QList<DayRow> rows;
    for (; !rs.eof(); rs.moveNext())
        rows.append({dayOf(rs.value(0)), rs.value(1).toInt() == 1, int(centsOf(rs.value(2))),
                     centsOf(rs.value(3)), centsOf(rs.value(4))});
    return rows;
}

QList<int> perDayOf(const QList<DayRow>& rows, const Period& period) {
    QList<int> days(period.valid() ? period.days() : 0, 0);
    for (const DayRow& r : rows) {
        const qint64 i = period.from.daysTo(r.day);
        if (i >= 0 && i < days.size()) days[i] += r.count;
    }
    return days;
}

QDate bucketOf(const QDate& day, bool monthly) {
    return monthly ? QDate(day.year(), day.month(), 1) : day;
}

QList<Revenue> revenueOf(const QList<DayRow>& rows, const Period& period, bool monthly) {
    QList<Revenue> buckets;
    if (!period.valid()) return buckets;
    for (QDate d = bucketOf(period.from, monthly); d <= period.to;
         d = monthly ? d.addMonths(1) : d.addDays(1))
        buckets.append({d});
    for (const DayRow& r : rows) {
        const QDate start = bucketOf(r.day, monthly);
        auto it = std::find_if(buckets.begin(), buckets.end(),
                               [&](const Revenue& b) { return b.start == start; });
        if (it == buckets.end()) continue;
        (r.cash ? it->cash : it->invoiced) += r.value;
        it->courierFees += r.fees;
    }
    return buckets;
}

QList<Amount> amounts(Recordset rs, const QString& blank) {
    QList<Amount> list;
    for (; !rs.eof(); rs.moveNext()) {
        const QString name = rs.value(0).toString().trimmed();
        list.append({name.isEmpty() ? blank : name, centsOf(rs.value(1))});
    }
    return list;
}

} // namespace

Period periodOf(Span span, const QDate& today) {
    switch (span) {
    case Span::Today:
        return {today, today};
    case Span::Week:
        return {today.addDays(1 - today.dayOfWeek()), today};
    case Span::Month:
        return {QDate(today.year(), today.month(), 1), today};
    case Span::LastMonth: {
        const QDate first = QDate(today.year(), today.month(), 1).addMonths(-1);
        return {first, first.addMonths(1).addDays(-1)};
    }
    }
    return {today, today};
}

Period previousOf(const Period& period) {
    const bool wholeMonths =
        period.from.day() == 1 &&
        period.to == period.to.addDays(1 - period.to.day()).addMonths(1).addDays(-1);
    if (wholeMonths) {
        const int months = (period.to.year() - period.from.year()) * 12 + period.to.month() -
                           period.from.month() + 1;
        return {period.from.addMonths(-months), period.from.addDays(-1)};
    }
    return {period.from.addDays(-period.days()), period.from.addDays(-1)};
}

bool byMonth(const Period& period) {
    return period.days() > 62;
}

QString ageCaption(int age) {
    switch (age) {
    case NotDue:
        return u"A vencer"_s;
    case Days1To30:
        return u"1 a 30 dias"_s;
    case Days31To60:
        return u"31 a 60 dias"_s;
    case Days61To90:
        return u"61 a 90 dias"_s;
    default:
        return u"Mais de 90 dias"_s;
    }
}

std::optional<qint64> CourierFigures::averageMinutes() const {
    if (timedDeliveries <= 0) return std::nullopt;
    return (deliveryMinutes + timedDeliveries / 2) / timedDeliveries;
}

QString durationText(qint64 minutes) {
    if (minutes < 60) return u"%1 min"_s.arg(minutes);
    return u"%1h%2"_s.arg(minutes / 60).arg(minutes % 60, 2, 10, QChar(u'0'));
}

int Figures::dispatches() const {
    int n = 0;
    for (int d : perDay)
        n += d;
    return n;
}

bool Figures::noReceivables() const {
    return std::all_of(ages.begin(), ages.end(), [](qint64 a) { return a == 0; });
}

QList<int> dispatchesPerDay(Store& store, const Period& period) {
    if (!period.valid()) return {};
    Recordset rs = store.open(u"SELECT dia, SUM(atendimentos) FROM %1 WHERE %2 GROUP BY dia"_s.arg(
                                  totals::hours, totals::inPeriod),
                              {period.from, period.to});
    QList<DayRow> rows;
    for (; !rs.eof(); rs.moveNext())
        rows.append({dayOf(rs.value(0)), false, int(centsOf(rs.value(1)))});
    return perDayOf(rows, period);
}

std::array<int, 24> dispatchesPerHour(Store& store, const Period& period) {
    std::array<int, 24> hours{};
    if (!period.valid()) return hours;
    // A time that is not "HH:MM" is left out of the hours (it counts in its day).
    Recordset rs = store.open(u"SELECT hora, SUM(atendimentos) FROM %1 WHERE %2 AND hora >= 0 "
                              "GROUP BY hora"_s.arg(totals::hours, totals::inPeriod),
                              {period.from, period.to});
    for (; !rs.eof(); rs.moveNext()) {
        const int h = rs.value(0).toInt();
        if (h >= 0 && h < 24) hours[h] += int(centsOf(rs.value(1)));
    }
    return hours;
}

QList<Revenue> revenue(Store& store, const Period& period, bool monthly) {
    if (!period.valid()) return {};
    return revenueOf(dayRows(store, period), period, monthly);
}

QList<CourierFigures> couriers(Store& store, const Period& period) {
    QList<CourierFigures> list;
    if (!period.valid()) return list;
    // A courier is one row whatever the capitals he was typed in (the key compares so).
    Recordset rs = store.open(
        u"SELECT entregador, SUM(atendimentos), SUM(entregues), SUM(taxas), SUM(cronometradas), "
        "SUM(minutos) FROM %1 WHERE %2 GROUP BY entregador HAVING SUM(atendimentos) > 0"_s.arg(
            totals::couriers, totals::inPeriod),
        {period.from, period.to});
    for (; !rs.eof(); rs.moveNext()) {
        const QString name = rs.value(0).toString().trimmed();
        list.append({name.isEmpty() ? noCourier : name, int(centsOf(rs.value(1))),
                     int(centsOf(rs.value(2))), centsOf(rs.value(3)), int(centsOf(rs.value(4))),
                     centsOf(rs.value(5))});
    }
    std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) {
        if (a.dispatches != b.dispatches) return a.dispatches > b.dispatches;
        if (a.earnings != b.earnings) return a.earnings > b.earnings;
        return a.name < b.name;
    });
    return list;
}

QList<Amount> topClients(Store& store, const Period& period, int howMany, qint64* total) {
    if (total) *total = 0;
    if (!period.valid()) return {};
    if (total)
        *total = centsOf(store.scalar(
            u"SELECT SUM(valor) FROM %1 WHERE %2"_s.arg(totals::hours, totals::inPeriod),
            {period.from, period.to}));
    return amounts(store.open(u"SELECT %3, SUM(%4) FROM %1 WHERE %2 >= ? AND %2 <= ? "
                              "GROUP BY %3 ORDER BY SUM(%4) DESC, %3 LIMIT %5"_s
                                  .arg(col::table, col::date, col::clientName, col::clientValue)
                                  .arg(howMany),
                              {period.from, period.to}),
                   noClient);
}

std::array<qint64, AgeCount> receivablesByAge(Store& store, const QDate& today) {
    const finance::LedgerKind& k = finance::kindOf(finance::Ledger::Receivables);
    // Each age is a range of due dates, summed on the index of the open bills by due date
    // without reading a bill twice: a bill due today is not late yet, one without a due
    // date has none to be late from.
    const QString sum = u"(SELECT SUM(%3) FROM %1 WHERE %2 = ? AND %4)"_s;
    auto part = [&](const QString& condition) {
        return sum.arg(k.table, bill::status, bill::amount, condition.arg(bill::due));
    };
    const QStringList parts{part(u"%1 IS NULL"_s),         part(u"%1 >= ?"_s),
                            part(u"%1 < ? AND %1 >= ?"_s), part(u"%1 < ? AND %1 >= ?"_s),
                            part(u"%1 < ? AND %1 >= ?"_s), part(u"%1 < ?"_s)};
    const QDate d30 = today.addDays(-30), d60 = today.addDays(-60), d90 = today.addDays(-90);
    Recordset rs = store.open(u"SELECT "_s + parts.join(u", "_s),
                              {k.open, k.open, today, k.open, today, d30, k.open, d30, d60, k.open,
                               d60, d90, k.open, d90});
    std::array<qint64, AgeCount> ages{};
    ages[NotDue] = centsOf(rs.value(0)) + centsOf(rs.value(1));
    for (int i = Days1To30; i < AgeCount; ++i)
        ages[i] = centsOf(rs.value(i + 1));
    return ages;
}

QList<Amount> topDebtors(Store& store, int howMany) {
    const finance::LedgerKind& k = finance::kindOf(finance::Ledger::Receivables);
    return amounts(store.open(u"SELECT %3, SUM(%4) FROM %1 WHERE %2 = ? GROUP BY %3 "
                              "ORDER BY SUM(%4) DESC, %3 LIMIT %5"_s
                                  .arg(k.table, bill::status, bill::party, bill::amount)
                                  .arg(howMany),
                              {k.open}),
                   noClient);
}

namespace {

// Today's figures but the receivables, which the panel already sums by age.
Headline todayWithoutReceivables(Store& store, const QDate& today) {
    Headline h;
    h.dispatchesToday = int(centsOf(store.scalar(
        u"SELECT SUM(atendimentos) FROM %1 WHERE dia = ?"_s.arg(totals::hours), {today})));
    for (const dispatch::CourierPosition& c : dispatch::board(store))
        if (c.position.compare(dispatch::courierFree, Qt::CaseInsensitive) == 0) ++h.couriersFree;
    h.cashBalance = store.cashTotals(finance::bookStart(), today).balance();
    return h;
}

} // namespace

Headline headline(Store& store, const QDate& today) {
    Headline h = todayWithoutReceivables(store, today);
    const finance::LedgerKind& k = finance::kindOf(finance::Ledger::Receivables);
    h.openReceivables = centsOf(store.scalar(
        u"SELECT SUM(%3) FROM %1 WHERE %2 = ?"_s.arg(k.table, bill::status, bill::amount),
        {k.open}));
    return h;
}

Figures load(Store& store, const Period& period, const QDate& today) {
    Figures f;
    f.period = period;
    f.previous = previousOf(period);
    if (period.valid()) {
        const QList<DayRow> rows = dayRows(store, period);
        f.perDay = perDayOf(rows, period);
        f.revenueByMonth = byMonth(period);
        f.revenue = revenueOf(rows, period, f.revenueByMonth);
        for (const Revenue& r : f.revenue)
            f.clientsTotal += r.total();
        f.previousPerDay = dispatchesPerDay(store, f.previous);
        f.perHour = dispatchesPerHour(store, period);
        f.couriers = couriers(store, period);
        f.topClients = topClients(store, period, 10, nullptr);
    }
    f.ages = receivablesByAge(store, today);
    f.topDebtors = topDebtors(store, 10);
    f.headline = todayWithoutReceivables(store, today);
    for (qint64 a : f.ages)
        f.headline.openReceivables += a;
    return f;
}

} // namespace rtx::panel
