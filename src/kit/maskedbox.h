#pragma once
// MaskEdBox: a text field with a mask of digit places ('#') and literals.
//
//   "##/##/####"        date: a typed date that is no real date (31/02/2026, 00/00/0000, a
//                       half-typed "23/11") is said so on leaving, and the field keeps the
//                       focus; an empty one stays empty or takes the screen's date for it
//                       (today on most screens)
//   "#####-###"         postcode
//   "(##)####-####"     telephone         "##############"     CPF/CNPJ digits
//   "#########-##"      CPF               "########/####-##"   CNPJ
//   "AA.AAA.AAA/AAAA-##" CNPJ with letters: 'A' takes a digit or a letter, kept in capitals
//   "#,##0.00"          money: the money key filter, "0,00" when empty, shown as
//                       "1.234,56" once the field is left; an amount that cannot be read
//                       ("12,345") is said so on leaving, and the field keeps the focus.
//                       Pasted and dropped text passes the same filter as the keys, and
//                       nothing above the largest amount goes in (moneyinput.h)
//   ""                  no mask: a plain text field
//
// With a digit mask only digits can be typed (and letters in the 'A' places, typed lower
// case or not, shown and kept in capitals); literals appear by themselves as the digits
// fill the places ("25122020" shows "25/12/2020"). An untouched field is empty, with the
// mask shown greyed as a hint.
//
// Prompt inclusion (on by default) decides what text() gives: on, the field as shown,
// literals included ("25/12/2020"); off, the digits alone ("25122020"). setText() takes
// either form. To clear a field: clear() (or prompt inclusion off, setText(""), on).
// QLineEdit::text() always gives the field as shown.

#include <QDate>
#include <QLineEdit>
#include <QString>
#include <functional>
#include <optional>

namespace rtx::ui {

class MaskEdBox : public QLineEdit {
    Q_OBJECT
public:
    explicit MaskEdBox(QWidget* parent = nullptr);
    explicit MaskEdBox(const QString& mask, QWidget* parent = nullptr);

    static QString moneyMask() { return QStringLiteral("#,##0.00"); }
    static QString dateMask() { return QStringLiteral("##/##/####"); }

    // Changing the mask keeps the digits typed so far.
    void setMask(const QString& mask);
    QString mask() const { return mask_; }
    bool isMoney() const { return mask_ == moneyMask(); }
    bool isDate() const { return mask_ == dateMask(); }

    void setPromptInclude(bool on) { promptInclude_ = on; }

    // Hide QLineEdit's own: they follow the mask and the prompt inclusion.
    QString text() const;
    void setText(const QString& text);
    void clear();

    QString shownText() const { return QLineEdit::text(); } // literals included
    QString digits() const; // the digits alone (and the letters, under an 'A' mask)
    // The digits fit the mask's places: a complete date, CPF, postcode... (for no mask and
    // money: not empty).
    bool isComplete() const;

    // Money: the amount in cents; nothing when the text is no amount. Empty is zero.
    std::optional<qint64> cents() const;
    // Money: shows the amount in its form, or, when the text is no amount, says so and
    // takes the focus back. False in that case: the caller stops what it was doing.
    bool settleMoney();

    // Date: the date typed; a null QDate when the field is empty; nothing when the text is
    // no real date or is not complete.
    std::optional<QDate> date() const;
    // Date: the date an empty field takes when it is left or settled; without one it stays
    // empty. setTodayWhenEmpty() gives it today's.
    void setEmptyDate(std::function<QDate()> fill) { emptyDate_ = std::move(fill); }
    void setTodayWhenEmpty();
    // Date: an empty field takes its date for empty; a typed date is shown in its form; a text
    // that is no real date is said so ("Data inválida: ...") and the field takes the focus
    // back. False in that case: the caller stops what it was doing.
    bool settleDate();
    // Money or date: settleMoney() or settleDate(); any other mask: true.
    bool settle();
    // Settled, then read; nothing when the field said that it cannot be read.
    std::optional<qint64> settledCents();
    std::optional<QDate> settledDate();

    // The digit mask applied to a text's digits (extra digits dropped); for tests and
    // for formatting values the same way a field would.
    static QString applyMask(const QString& mask, const QString& digits);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QString mask_;
    bool promptInclude_ = true;
    bool reformatting_ = false;
    std::function<QDate()> emptyDate_;
    int places() const; // digit places of the mask
    bool digitMask() const { return !mask_.isEmpty() && !isMoney(); }
    void reformat();
    void refuse(const QString& message);
};

} // namespace rtx::ui
