#pragma once
// Keyboard behaviours shared by every screen. The users type fast on the telephone with
// the keyboard alone: Enter moves on, a combo box completes what is typed, a field shows
// that it has the focus, money fields take only what money can hold.
//
// Most screens need one call at the end of their constructor:
//
//     rtx::ui::setupFields(this);
//
// It gives every text field, masked field, combo box and spin box under the screen the
// focus colour with select-on-entry and Enter as Tab, every editable combo box the
// autocomplete, every button a click on Enter, and lets the first field that gets the focus put
// back the normal mouse pointer. A widget with the property "rtxSemKit" set to true is left alone.
// Fields made later get the same with setupField(field). The per-behaviour calls below are for the
// fields that need only one of them.

#include <QChar>
#include <QColor>
#include <QString>
#include <optional>

class QFocusEvent;
class QWidget;
class QDialog;
class QComboBox;
class QLineEdit;
class QAction;
class QAbstractButton;

namespace rtx::ui {

// Background of the field that has the focus (pale yellow), and of the others.
inline QColor focusColour() {
    return QColor(0xFF, 0xFF, 0xC0);
}
inline QColor plainColour() {
    return QColor(0xFF, 0xFF, 0xFF);
}

void setupFields(QWidget* screen);
void setupField(QWidget* field);

// True when a focus-out is the user leaving the field: a message box or a list's popup
// taking the focus for a moment, or another window coming to the front, is no leaving.
bool leftField(const QFocusEvent* event);

// Escape does not close the screen: a screen that holds what the user typed is left by its
// own button ("Volta"). Lists and pickers without such a button still close with Escape.
void keepOnEscape(QDialog* screen);

// Enter (either key) moves the focus as Tab does, wrapping after the last control of the
// window; the field never sees the Enter, so no default button fires from a field.
void enterAsTab(QWidget* field);

// Focus colour and select-all on entry (pale yellow with the focus, white without).
void focusColours(QWidget* field);

// Autocomplete of an editable combo box (ComboInteligente): a typed character is looked
// up, with the text before the caret or before the selection, as the start of a list item,
// without regard to case. On a match the item as listed becomes the text and current
// item, with the completed tail selected so that the next key replaces it and narrows the
// search. No match: the key is typed as usual. Qt's own completer is removed.
void comboInteligente(QComboBox* combo);

// Money key filter: digits kept; point or comma become a comma, refused when the text
// already holds one; Backspace kept; everything else refused (so no minus sign).
// moneyKey gives the key to use, or a null QChar when the key is refused. The fields apply
// it to their text with the selection taken out, so a key replaces what is selected
// (moneyinput.h), and refuse what would pass the largest amount.
QChar moneyKey(const QString& text, QChar key);
// A key typed at the end of a money field, as Brazilians type amounts: "1.234,56" and
// "1234,56" both end as 1.234,56. A separator after a comma followed by three digits
// makes that comma a thousands point ("1,234" and a comma give "1.234,"); a fourth digit
// after a comma is refused. Gives the new text, or nothing when the key is refused, or
// the text with the key simply inserted when neither applies.
std::optional<QString> moneyTypedAtEnd(const QString& text, QChar key);
// The message of an amount that cannot be read ("12,345"): the field keeps the focus.
QString badMoneyMessage(const QString& text);
// The message of a typed date that is no real date ("31/02/2026", a half-typed "23/11").
QString badDateMessage(const QString& text);
// A plain field that takes money as a MaskEdBox with the money mask does: keys, pastes and
// drops through the same filter.
void moneyField(QLineEdit* field);
// Digits and Backspace only.
void digitsOnly(QLineEdit* field);

// Centres the screen on its monitor, now and again when it is first shown (when the
// layout has given it its real size).
void centreScreen(QWidget* screen);

// The hourglass a hub button sets before opening a module; the module's first field to
// get the focus puts the normal pointer back (setupFields does that for every field).
void setHourglass();
void clearHourglass();
bool hourglassShown();

// A menu entry that stands for a button: choosing it clicks the button.
void callsButton(QAction* entry, QAbstractButton* button);
// Adds an entry with its caption to a menu or a menu bar; name is its objectName.
QAction* menuEntry(QWidget* menu, const QString& name, const QString& caption);

} // namespace rtx::ui
