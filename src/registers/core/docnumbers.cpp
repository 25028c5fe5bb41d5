#include "docnumbers.h"

#include <optional>

namespace rtx {

namespace {

const QString yes = QStringLiteral("True");
const QString no = QStringLiteral("False");

// Sum of the digits of s taken from the right, the rightmost weighted firstWeight and each
// one to its left one more. No value when a character is not a digit.
std::optional<int> weightedSum(const QString& s, int firstWeight) {
    int sum = 0;
    int weight = firstWeight;
    for (qsizetype i = s.size() - 1; i >= 0; --i, ++weight) {
        const QChar c = s.at(i);
        if (c < u'0' || c > u'9') return std::nullopt;
        sum += (c.unicode() - u'0') * weight;
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

    const auto t1 = weightedSum(head.right(4) + branch, 2);
    const auto u1 = weightedSum(number.left(4), 2);
    if (!t1 || !u1) return no;
    const int d1 = checkDigit(*t1 + *u1);

    const auto t2 = weightedSum(head.right(3) + branch + QString::number(d1), 2);
    const auto u2 = weightedSum(number.left(5), 2);
    if (!t2 || !u2) return no;
    const int d2 = checkDigit(*t2 + *u2);

    return QString::number(d1) + QString::number(d2) == number.right(2) ? yes : no;
}

QString cpfForm(const QString& digits) {
    return digitsForm(digits, 11, {9}, {u'-'});
}

QString cnpjForm(const QString& digits) {
    return digitsForm(digits, 14, {8, 12}, {u'/', u'-'});
}

TaxNumber taxNumberKind(const QString& digits) {
    if (digits.size() == 11 && cpfCheck(cpfForm(digits)) == yes) return TaxNumber::Cpf;
    if (digits.size() == 14 && cnpjCheck(cnpjForm(digits)) == yes) return TaxNumber::Cnpj;
    return TaxNumber::Wrong;
}

} // namespace rtx
