#include "kit/hourglass.h"

#include "store/store.h"

#include <QCursor>
#include <QGuiApplication>

namespace rtx::ui {

void showHourglassOnLockWait() {
    rtx::setLockWaitHook([](bool waiting) {
        if (waiting)
            QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
        else
            QGuiApplication::restoreOverrideCursor();
    });
}

} // namespace rtx::ui
