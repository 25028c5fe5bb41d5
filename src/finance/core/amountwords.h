#pragma once
// The amount in words of the receipts, in the house style the office's receipts have always
// had: commas between the groups, "Hum" for one, the scale word of an empty group, no "de"
// before "reais". Pure text in, text out; the output is kept as it is, oddities included.

#include <QString>
#include <QStringView>

namespace rtx::finance {

// Three digit characters in words; a group with no hundreds starts with a blank, "000"
// gives the empty text.
QString groupInWords(QStringView digits);

// An amount written as text with one separator character and two decimals at the end
// ("1234,50", ",50"), in words. The empty text gives the empty text. Built for at most 18
// integer digits and at least three characters.
QString amountInWords(const QString& amount);

} // namespace rtx::finance
