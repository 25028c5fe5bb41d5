#pragma once
// The counter coupon to the installation's coupon printer (rotalix.ini, section [cupom]):
// the bytes built from the screen's fields go out unchanged; when no printer is set, or it
// cannot be reached, the operator is told what to do and the screen keeps what was typed.

#include "output/core/coupon.h"

#include <QDateTime>
#include <QString>

class QWidget;

namespace rtx::ui {

// folder: the installation's folder; empty for the one the program runs on.
bool printCoupon(QWidget* parent, const output::CouponFields& fields, const QString& folder = {},
                 const QDateTime& now = QDateTime::currentDateTime());

} // namespace rtx::ui
