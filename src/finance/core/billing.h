#pragma once
// Billing: the open receivables the dispatches leave, listed for one client or for all of
// a period, and written off as they come in. A write-off settles the receivables of each
// row's dispatch code and posts one credit per row into the cash book, all in one unit of
// work. The grid decides what is written off: the rows it shows, with their values.
//
// Also the dispatches of the period with the client's and the courier's values, and the
// change of those two values, both done by the dispatch side.

#include "finance/core/cashbook.h"
#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace rtx::finance {

// The group of the cash credits of billing.
inline const QString billingGroup = QStringLiteral("Receita Atendimento-Faturamento");

// An open receivable as the billing grid shows it.
struct BillingRow {
    QString document; // the dispatch's code
    QDate due;        // what the grid shows
    QString client;
    QString courier;
    qint64 amount = 0;
    QString status;
};

// The open receivables entered (c1) in a period, of one client (compared whole) or of all
// when client is empty, in the order of entry.
QList<BillingRow> openReceivables(Store& store, const QDate& from, const QDate& to,
                                  const QString& client = {});

// What a write-off takes of a grid row: the code and the value shown, and the client.
struct WriteOff {
    QString document;
    qint64 amount = 0;
    QString client;
};

// What a write-off says when another station wrote off a row of its grid first.
QString writtenOffElsewhere(const QString& document);

// Settles every open receivable of each row's code ("Recebida", the row's value, today; an
// empty code settles those without one) and posts one credit of the row's value dated
// today, also when no receivable was found. A row whose receivables are all settled already
// (another station wrote it off since the grid was read) stops the write-off with
// writtenOffElsewhere(). One unit of work: a failure leaves everything as it was and throws
// StoreError.
void writeOff(Store& store, const QList<WriteOff>& rows, const QDate& today = QDate::currentDate());

// A dispatch of the period with its two values, for the second tab.
struct BilledDispatch {
    QString code;
    QDate date;
    QString client;
    QString courier;
    qint64 clientValue = 0;
    qint64 courierValue = 0;
};

// The dispatches are kept by the dispatch side, which alone writes them: billing's second tab
// lists them and changes their two values through what that side hands over as the program
// starts. Until then the tab lists nothing.
struct DispatchValues {
    // Every dispatch dated in the period, whatever its client, status or payment, by code.
    std::function<QList<BilledDispatch>(Store&, const QDate& from, const QDate& to)> ofPeriod;
    // The check of a change: neither value negative nor above the largest amount.
    std::function<std::optional<Problem>(qint64 clientValue, qint64 courierValue)> check;
    // Writes the two values of a dispatch and nothing else; false when there is none of that
    // code.
    std::function<bool(Store&, const QString& code, qint64 clientValue, qint64 courierValue)>
        change;
    // The column a problem with the client's value names (any other is the courier's).
    QString clientValueColumn;
};
void handDispatchValues(const DispatchValues& values);
const DispatchValues& dispatchValues();

} // namespace rtx::finance
