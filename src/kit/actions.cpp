#include "kit/actions.h"

#include "kit/maskedbox.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

namespace rtx::ui {

bool leftForSettlingAction(const QFocusEvent* event) {
    if (event->reason() != Qt::MouseFocusReason) return false;
    const QWidget* next = QApplication::focusWidget();
    return next && next->property(settlesFirstProperty).toBool();
}

bool settleFields(QWidget* screen) {
    if (!screen) return true;
    QWidget* window = screen->window();
    // The focus chain is the order of Tab; fields of another window (a dialog opened from
    // this one) are not this screen's.
    for (QWidget* w = window->nextInFocusChain(); w && w != window; w = w->nextInFocusChain()) {
        auto* box = qobject_cast<MaskEdBox*>(w);
        if (!box || box->window() != window || (box != screen && !screen->isAncestorOf(box)))
            continue;
        if (box->isHidden() || !box->isEnabled() || box->isReadOnly()) continue;
        if (!box->settle()) return false;
    }
    return true;
}

void onAction(QAbstractButton* button, QWidget* screen, std::function<void()> handler) {
    if (!button || !screen) return;
    button->setProperty(settlesFirstProperty, true);
    QObject::connect(button, &QAbstractButton::clicked, screen,
                     [screen, handler = std::move(handler)] {
                         if (settleFields(screen)) handler();
                     });
}

} // namespace rtx::ui
