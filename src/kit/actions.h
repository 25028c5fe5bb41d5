#pragma once
// The actions of a screen (save, delete, print, search) read money and dates the user may
// still be typing in: a click on a menu entry or a shortcut moves no focus, so the field
// was never left. Every such action settles the screen's money and date fields first, as
// leaving them would, and does not run while one of them cannot be read:
//
//     rtx::ui::onAction(saveButton, this, [this] { save(); });
//
// The button's menu twin (callsButton) and its shortcut click the button, so they settle
// the same way.

#include <functional>

class QAbstractButton;
class QFocusEvent;
class QWidget;

namespace rtx::ui {

// Set on a button connected by onAction: a field left by a click on it lets the action say
// what is wrong, so the message comes once.
inline constexpr char settlesFirstProperty[] = "rtxSettlesFirst";

// A field left by a click on such a button: its action settles it, and says what is wrong.
bool leftForSettlingAction(const QFocusEvent* event);

// Every money and date field of the screen that can be typed in (shown on its tab, enabled,
// not read-only), in the order of Tab: each is settled as leaving it would. Stops at the
// first that cannot be read: its message is said, its tab shown, and it has the focus.
bool settleFields(QWidget* screen);

// Runs the handler on a click of the button once the screen's fields are settled; nothing
// runs when one of them cannot be read.
void onAction(QAbstractButton* button, QWidget* screen, std::function<void()> handler);

} // namespace rtx::ui
