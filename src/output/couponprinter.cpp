#include "couponprinter.h"

#include "kit/dialogs.h"
#include "output/core/couponsink.h"
#include "session/core/current.h"

namespace rtx::ui {

bool printCoupon(QWidget* parent, const output::CouponFields& fields, const QString& folder,
                 const QDateTime& now) {
    const output::CouponSettings settings =
        output::readCouponSettings(folder.isEmpty() ? session::installation().folder() : folder);
    const QByteArray bytes = output::couponBytes(fields, now, settings.codePage, settings.table);
    const QString problem = output::sendCoupon(bytes, settings);
    if (problem.isEmpty()) return true;
    showError(parent, problem);
    return false;
}

} // namespace rtx::ui
