#include "docnumbers.h"

#include <optional>

namespace rtx {

namespace {

const QString yes = QStringLiteral("True");
const QString no = QStringLiteral("False");

// The value of one character of a tax number: its code less 48, so a digit is worth itself
// and, where letters are allowed (the CNPJ issued since July 2026), A is 17 up to Z 42. Lower
// case counts as the capital. No value for anything else.
std::optional<int> charValue(QChar c, bool lettersAllowed) {
    if (c >= u'0' && c <= u'9') return c.unicode() - 48;
    if (!lettersAllowed) return std::nullopt;
    const QChar upper = c.toUpper();
    if (upper >= u'A' && upper <= u'Z') return upper.unicode() - 48;
    return std::nullopt;
}

// Sum of the characters of s taken from the right, the rightmost weighted firstWeight and each
// one to its left one more. No value when a character is not allowed.
std::optional<int> weightedSum(const QString& s, int firstWeight, bool lettersAllowed = false) {
    int sum = 0;
    int weight = firstWeight;
    for (qsizetype i = s.size() - 1; i >= 0; --i, ++weight) {
        const auto value = charValue(s.at(i), lettersAllowed);
        if (!value) return std::nullopt;
        sum += *value * weight;
    }
    return sum;
}

// A check digit from a weighted sum: remainders 0 and 1 give 0, the others 11 less the
// remainder.
int checkDigit(int sum) {
    const int r = sum - 11 * (sum / 11);
    return r < 2 ? 0 : 11 - r;
}

QString digitsForm(const QString& digits, int width, std::initializer_list<int> cuts,
                   std::initializer_list<QChar> separators) {
    QString padded = digits.rightJustified(width, u'0');
    QString out;
    int from = 0;
    auto sep = separators.begin();
    for (int cut : cuts) {
        out += padded.mid(from, cut - from) + *sep++;
        from = cut;
    }
    return out + padded.mid(from);
}

} // namespace

QString cpfCheck(const QString& number) {
    if (number.size() < 11) return no;
    QString s = number.left(9);
    const auto first = weightedSum(s, 2);
    if (!first) return no;
    const int d1 = checkDigit(*first);
    s += QString::number(d1);
    const auto second = weightedSum(s, 2);
    if (!second) return no;
    const int d2 = checkDigit(*second);
    return QString::number(d1) + QString::number(d2) == number.right(2) ? yes : no;
}

QString cnpjCheck(const QString& number) {
    if (number.size() < 14) return no;
    const QString branch = number.right(7).left(4);
    const QString head = number.left(8);

    const auto t1 = weightedSum(head.right(4) + branch, 2, true);
    const auto u1 = weightedSum(number.left(4), 2, true);
    if (!t1 || !u1) return no;
    const int d1 = checkDigit(*t1 + *u1);

    const auto t2 = weightedSum(head.right(3) + branch + QString::number(d1), 2, true);
    const auto u2 = weightedSum(number.left(5), 2, true);
    if (!t2 || !u2) return no;
    const int d2 = checkDigit(*t2 + *u2);

    return QString::number(d1) + QString::number(d2) == number.right(2) ? yes : no;
}

QString cpfForm(const QString& digits) {
    return digitsForm(digits, 11, {9}, {u'-'});
}

QString cnpjForm(const QString& digits) {
    return digitsForm(digits.toUpper(), 14, {8, 12}, {u'/', u'-'});
}

QString taxNumberChars(const QString& typed) {
    QString out;
    out.reserve(typed.size());
    for (QChar c : typed) {
        const QChar upper = c.toUpper();
        if ((upper >= u'0' && upper <= u'9') || (upper >= u'A' && upper <= u'Z')) out += upper;
    }
    return out;
}

QString taxNumberShown(const QString& chars) {
    const QString s = chars.toUpper();
    if (s.size() == 11)
        return s.left(3) + u'.' + s.mid(3, 3) + u'.' + s.mid(6, 3) + u'-' + s.mid(9);
    if (s.size() == 14)
        return s.left(2) + u'.' + s.mid(2, 3) + u'.' + s.mid(5, 3) + u'/' + s.mid(8, 4) + u'-' +
               s.mid(12);
    return chars;
}

TaxNumber taxNumberKind(const QString& chars) {
    const QString s = chars.toUpper();
    if (s.size() == 11 && cpfCheck(cpfForm(s)) == yes) return TaxNumber::Cpf;
    // The check digits of a CNPJ stay digits, letters or not in the twelve before them.
    if (s.size() == 14 && s.at(12).isDigit() && s.at(13).isDigit() && cnpjCheck(cnpjForm(s)) == yes)
        return TaxNumber::Cnpj;
    return TaxNumber::Wrong;
}

} // namespace rtx
