#pragma once
// What a money field lets in, however the text comes: typed, pasted (Ctrl+V, Shift+Insert,
// the context menu, the mouse's middle button) or dropped. A field holds digits, thousands
// points and one comma, never a minus sign, and never more than the largest amount
// (maxMoneyCents): such a key or paste is refused, and a paste or a key past the largest
// amount is said so. Whether the digits make an amount ("12,345") is told when the field is
// left (MaskEdBox::settleMoney).
//
// MaskEdBox with the money mask and the plain fields given moneyField() use it; a screen
// never calls it by itself.

#include <QString>
#include <QValidator>

class QKeyEvent;
class QLineEdit;

namespace rtx::ui {

enum class MoneyText {
    Fits,     // money, or money being typed ("1,234" before the comma that regroups it)
    NotMoney, // a character money never holds, a second comma, a point after the comma
    TooLarge, // more than the largest amount
};
MoneyText moneyTextFits(const QString& text);

// The net under every way a text enters the field: a change that would make the text no
// money is undone. It stays silent; the keys and the pastes the field sees itself were
// already refused with their message.
class MoneyValidator final : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString& text, int& position) const override;
};

// Installs the validator on the field.
void guardMoneyText(QLineEdit* field);

// A key press in a money field: typed as the money key filter says (the selection replaced
// first, so ",50" over a selected "0,00" gives 0,50), or refused. Paste keys paste through
// pasteMoney. False for the keys the field handles as usual (arrows, Delete, Backspace...).
bool moneyKeyPress(QLineEdit* field, QKeyEvent* key);

// Pastes the clipboard's text into the field as typed keys would go in: a text that is no
// money ("-5,00", "abc") or too large is refused with its message. False when refused.
bool pasteMoney(QLineEdit* field);

} // namespace rtx::ui
