#pragma once
// The office at a glance: the figures the owner asks for every evening, for a period. Every
// sum is made by the database over the dispatches' day totals (by hour and by courier, kept
// by triggers), the dispatches themselves for the clients, the cash book's day totals and
// the open receivables; this file only names the periods, reads the sums and puts them in
// order.

#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <array>
#include <optional>

namespace rtx::panel {

// What a chart shows when the period has nothing.
inline const QString nothingInPeriod = QStringLiteral("Sem movimento no período.");
// A dispatch without a courier or a client name still counts, under these words.
inline const QString noCourier = QStringLiteral("(sem entregador)");
inline const QString noClient = QStringLiteral("(sem cliente)");

// The period buttons of the screen.
enum class Span { Today, Week, Month, LastMonth };

struct Period {
    QDate from;
    QDate to;
    int days() const { return int(from.daysTo(to)) + 1; }
    bool valid() const { return from.isValid() && to.isValid() && from <= to; }
    bool operator==(const Period&) const = default;
};

// Today; the week from Monday to today; the month up to today; the whole previous month.
Period periodOf(Span span, const QDate& today);
// The days just before a period, as many as it has: what "the usual" is measured against.
// A whole month is compared with the whole previous month.
Period previousOf(const Period& period);
// Revenue is shown by month when the period is longer than two months, else by day.
bool byMonth(const Period& period);

// Money of the dispatches of one day (or month), by the way the client pays.
struct Revenue {
    QDate start;         // the day, or the first of the month
    qint64 cash = 0;     // A VISTA
    qint64 invoiced = 0; // FATURAR (and any other word)
    qint64 courierFees = 0;
    qint64 total() const { return cash + invoiced; }
    qint64 margin() const { return total() - courierFees; }
};

struct CourierFigures {
    QString name;
    int dispatches = 0;
    int delivered = 0;   // status "Entregue"
    qint64 earnings = 0; // the courier's values of his dispatches
    // The deliveries whose moment was kept, and their minutes from dispatch to "Entregue".
    int timedDeliveries = 0;
    qint64 deliveryMinutes = 0;
    // His average time to deliver, in whole minutes; none when no delivery of his was timed.
    std::optional<qint64> averageMinutes() const;
};
// An average time as the panel shows it: "45 min", "1h05".
QString durationText(qint64 minutes);

struct Amount {
    QString name;
    qint64 cents = 0;
};

// Open receivables by how long past due, on the day they are read.
enum Age { NotDue, Days1To30, Days31To60, Days61To90, Over90, AgeCount };
QString ageCaption(int age);

// The row of figures on top: always today's, whatever the period.
struct Headline {
    int dispatchesToday = 0;
    int couriersFree = 0;
    qint64 cashBalance = 0; // the book's balance at the end of today
    qint64 openReceivables = 0;
};

struct Figures {
    Period period;
    Period previous;
    QList<int> perDay;         // dispatches of each day of the period, first day first
    QList<int> previousPerDay; // of each day of the previous period
    std::array<int, 24> perHour{};
    bool revenueByMonth = false;
    QList<Revenue> revenue;         // every day (or month) of the period, with or without money
    QList<CourierFigures> couriers; // most dispatches first
    QList<Amount> topClients;       // the ten that bring most, most first
    qint64 clientsTotal = 0;        // what all clients brought: the share's whole
    std::array<qint64, AgeCount> ages{};
    QList<Amount> topDebtors; // the ten that owe most
    Headline headline;

    int dispatches() const;
    // Nothing was dispatched in the period: the period's charts say so instead of drawing.
    bool empty() const { return dispatches() == 0; }
    bool noReceivables() const;
};

// Each piece, for the screen's refresh and for the tests. Each throws StoreError.
QList<int> dispatchesPerDay(Store& store, const Period& period);
std::array<int, 24> dispatchesPerHour(Store& store, const Period& period);
QList<Revenue> revenue(Store& store, const Period& period, bool monthly);
QList<CourierFigures> couriers(Store& store, const Period& period);
QList<Amount> topClients(Store& store, const Period& period, int howMany, qint64* total);
std::array<qint64, AgeCount> receivablesByAge(Store& store, const QDate& today);
QList<Amount> topDebtors(Store& store, int howMany);
Headline headline(Store& store, const QDate& today);

// Everything the screen shows for a period.
Figures load(Store& store, const Period& period, const QDate& today = QDate::currentDate());

} // namespace rtx::panel
