#include "finance/core/amountwords.h"

#include <array>

namespace rtx::finance {

namespace {

using namespace Qt::StringLiterals;

// The tables keep their old bounds, the unused entries included.
const std::array<QString, 11> units = {QString(),   u"um"_s,    u"dois"_s, u"três"_s,
                                       u"quatro"_s, u"cinco"_s, u"seis"_s, u"sete"_s,
                                       u"oito"_s,   u"nove"_s,  QString()};
const std::array<QString, 20> tens = {QString(),      u"dez"_s,       u"vinte"_s,    u"trinta"_s,
                                      u"quarenta"_s,  u"cinquenta"_s, u"sessenta"_s, u"setenta"_s,
                                      u"oitenta"_s,   u"noventa"_s,   u"dez"_s,      u"onze"_s,
                                      u"doze"_s,      u"treze"_s,     u"quatorze"_s, u"quinze"_s,
                                      u"dezesseis"_s, u"dezessete"_s, u"dezoito"_s,  u"dezenove"_s};
const std::array<QString, 11> hundreds = {QString(),       u"cem"_s,          u"duzentos"_s,
                                          u"trezentos"_s,  u"quatrocentos"_s, u"quinhentos"_s,
                                          u"seiscentos"_s, u"setecentos"_s,   u"oitocentos"_s,
                                          u"novecentos"_s, QString()};
// Even entries singular, odd plural, each with its trailing blank.
const std::array<QString, 12> scales = {QString(),      QString(),        u"mil "_s,
                                        u"mil "_s,      u"milhão "_s,     u"milhões "_s,
                                        u"bilhão "_s,   u"bilhões "_s,    u"trilhão "_s,
                                        u"trilhões "_s, u"quadrilhão "_s, u"quadrilhões "_s};

// Blanks only, as the old text functions trimmed: never other white space.
QString trimBlanks(const QString& s) {
    qsizetype from = 0;
    qsizetype to = s.size();
    while (from < to && s.at(from) == u' ')
        ++from;
    while (to > from && s.at(to - 1) == u' ')
        --to;
    return s.mid(from, to - from);
}

int digit(QChar c) {
    const int d = c.digitValue();
    return d < 0 ? 0 : d;
}

} // namespace

QString groupInWords(QStringView digits) {
    const int c = digit(digits.at(0));
    const int d = digit(digits.at(1));
    const int u = digit(digits.at(2));
    QString h = hundreds[c];
    int t = d;
    QString n = units[u];
    if (d == 1) {
        t = 10 + u;
        n.clear();
    }
    const QString tensText = tens[t];
    if (c == 1 && (t > 0 || u != 0)) h = u"cento"_s;
    QString r;
    if (!h.isEmpty()) {
        r = h;
        if (!tensText.isEmpty() || !n.isEmpty()) r += u" e"_s;
    }
    if (!tensText.isEmpty()) {
        r += u' ' + tensText;
        if (!n.isEmpty()) r += u" e"_s;
    }
    if (!n.isEmpty()) r += u' ' + n;
    return r;
}

QString amountInWords(const QString& amount) {
    if (amount.isEmpty()) return QString();
    QString integer = trimBlanks(amount.left(amount.size() - 3));
    const QString cents = amount.right(2);
    QString words;
    if (!integer.isEmpty()) {
        qsizetype width = 3;
        while (width < integer.size() && width < 18)
            width += 3;
        integer = integer.rightJustified(width, u'0');
        int scale = 0;
        while (!integer.isEmpty()) {
            QString group = groupInWords(QStringView(integer).right(3));
            integer.chop(3);
            // Only the first two letters decide the singular: "um" and "um mil", never
            // "vinte e um".
            if (trimBlanks(group).left(2) == u"um"_s)
                group = trimBlanks(group + u' ' + scales[scale]);
            else
                group = trimBlanks(group + u' ' + scales[scale + 1]);
            words =
                integer.isEmpty() ? trimBlanks(group + words) : trimBlanks(u',' + group + words);
            scale += 2;
        }
        words = trimBlanks(words);
        if (!words.isEmpty()) {
            const QChar first = words.at(0);
            words = (first == u'u' ? u"Hu"_s : QString(first.toUpper())) + words.mid(1);
        }
        words = trimBlanks(words);
        words += words == u"Hum"_s ? u" real"_s : u" reais"_s;
    }
    if (cents != u"00"_s) {
        const QString group = groupInWords(QString(u'0' + cents));
        words += u" e"_s + group;
        words += trimBlanks(group) == u"um"_s ? u" centavo."_s : u" centavos."_s;
    } else {
        words += u'.';
    }
    return words;
}

} // namespace rtx::finance
