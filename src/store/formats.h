#pragma once
// Brazilian display forms of money and dates, independent of the machine's locale.
// Money is always integer cents.

#include <QDate>
#include <QString>
#include <optional>

namespace rtx {

// The largest amount the office keeps: R$ 99.999.999,99. The money fields, the cash totals,
// the printed boxes and the amount in words have room for it (and the totals for sums of
// many); a larger one is refused where it is typed, read or saved.
inline constexpr qint64 maxMoneyCents = 9'999'999'999;

// Why an amount cannot be saved in the field of that caption: negative (no money field takes
// a minus sign; the sign of a movement comes from its operation) or above the largest.
// Nothing when it can.
std::optional<QString> moneyRefusal(qint64 cents, const QString& caption);
// What a money field says when a key or a paste would take it above the largest amount.
QString tooMuchMoneyMessage();

// "###,##0.00": 123456 -> "1.234,56", 0 -> "0,00", -5 -> "-0,05".
QString formatMoney(qint64 cents);
// "Currency": "R$ 1.234,56" (a plain blank after the symbol).
QString formatCurrency(qint64 cents);
// Reads "1.234,56", "1234,56", "1234", "12,5", "R$ 3,00", "-2,00". Empty, unreadable, or
// beyond the largest amount either way: nullopt.
std::optional<qint64> parseMoney(const QString& text);

// dd/mm/yyyy
QString formatDate(const QDate& date);
// "25/12/2020" (also d/m/yyyy). Not a real date: nullopt.
std::optional<QDate> parseDate(const QString& text);
// The "00/00/0000" pattern applied to a text of eight digits: "25122020" -> "25/12/2020".
// Other texts come back unchanged.
QString maskDate(const QString& text);

// The date normaliser of the screens: an empty text is today; eight characters are read
// through "00/00/0000"; ten characters are read as dd/mm/yyyy; any other length, or a text
// that is not a real date ("31/02/2020"), gives no date.
std::optional<QDate> normaliseDate(const QString& text, const QDate& today = QDate::currentDate());

// Pads a number with leading zeros to a width: (12, 5) -> "00012".
QString padCode(qint64 number, int width);

} // namespace rtx
