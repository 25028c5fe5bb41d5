#pragma once
// The dispatches as billing sees them: the period's dispatches with the client's and the
// courier's values, and the change of those two values. The dispatch table is this core's
// alone to write; billing, which stands below it, gets these functions handed over as the
// program starts (handToBilling).

#include "finance/core/billing.h"
#include "store/record.h"
#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace rtx::dispatch {

// Every dispatch dated in the period, whatever its client, status or payment, by code.
QList<finance::BilledDispatch> dispatchesOfPeriod(Store& store, const QDate& from, const QDate& to);

// The check of a change of the two values: neither negative nor above the largest amount.
// The problem names the column of the value refused.
std::optional<Problem> checkDispatchValues(qint64 clientValue, qint64 courierValue);

// Writes the client's and the courier's value of a dispatch in one statement; false
// when there is none of that code. Nothing else changes: neither the receivable nor the
// courier's figures.
bool changeDispatchValues(Store& store, const QString& code, qint64 clientValue,
                          qint64 courierValue);

// Hands the three above to billing.
void handToBilling();

} // namespace rtx::dispatch
