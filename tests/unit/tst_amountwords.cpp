// The amount in words, against the office's own examples and against a second reading of
// the rule written here from the numbers rather than from the text: group values, the
// singular only for a group worth one, the comma before every group but the highest.

#include "finance/core/amountwords.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace rtx::finance;
using namespace Qt::StringLiterals;

namespace {

QString belowThousand(int v) {
    static const QStringList ones = {u""_s,      u"um"_s,   u"dois"_s, u"três"_s, u"quatro"_s,
                                     u"cinco"_s, u"seis"_s, u"sete"_s, u"oito"_s, u"nove"_s};
    static const QStringList teens = {u"dez"_s,      u"onze"_s,    u"doze"_s,      u"treze"_s,
                                      u"quatorze"_s, u"quinze"_s,  u"dezesseis"_s, u"dezessete"_s,
                                      u"dezoito"_s,  u"dezenove"_s};
    static const QStringList decades = {u""_s,         u""_s,          u"vinte"_s,    u"trinta"_s,
                                        u"quarenta"_s, u"cinquenta"_s, u"sessenta"_s, u"setenta"_s,
                                        u"oitenta"_s,  u"noventa"_s};
    static const QStringList centuries = {
        u""_s,           u"cento"_s,      u"duzentos"_s,   u"trezentos"_s,  u"quatrocentos"_s,
        u"quinhentos"_s, u"seiscentos"_s, u"setecentos"_s, u"oitocentos"_s, u"novecentos"_s};
    QStringList parts;
    if (v == 100) return u"cem"_s;
    if (v >= 100) parts << centuries[v / 100];
    const int rest = v % 100;
    if (rest >= 10 && rest < 20)
        parts << teens[rest - 10];
    else {
        if (rest >= 20) parts << decades[rest / 10];
        if (rest % 10) parts << ones[rest % 10];
    }
    const QString text = parts.join(u" e "_s);
    // A group without hundreds is written with a blank in front.
    return v < 100 && !text.isEmpty() ? u' ' + text : text;
}

QString reference(quint64 reais, int cents) {
    static const QStringList singular = {u""_s,       u"mil"_s,     u"milhão"_s,
                                         u"bilhão"_s, u"trilhão"_s, u"quadrilhão"_s};
    static const QStringList plural = {u""_s,        u"mil"_s,      u"milhões"_s,
                                       u"bilhões"_s, u"trilhões"_s, u"quadrilhões"_s};
    QString words;
    if (reais > 0) {
        QList<int> groups; // lowest first
        for (quint64 v = reais; v > 0; v /= 1000)
            groups << int(v % 1000);
        QStringList texts;
        for (int i = int(groups.size()) - 1; i >= 0; --i) {
            const QString scale = groups[i] == 1 ? singular[i] : plural[i];
            texts << (belowThousand(groups[i]).trimmed() + u' ' + scale).trimmed();
        }
        words = texts.join(u',');
        words = words.startsWith(u'u') ? u"H"_s + words : words.left(1).toUpper() + words.mid(1);
        words += words == u"Hum"_s ? u" real"_s : u" reais"_s;
    }
    if (cents == 0) return words + u'.';
    return words + u" e "_s + belowThousand(cents).trimmed() +
           (cents == 1 ? u" centavo."_s : u" centavos."_s);
}

} // namespace

class TestAmountWords : public QObject {
    Q_OBJECT
private slots:
    void examples_data() {
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("words");
        const QList<std::pair<QString, QString>> rows = {
            {u"1,00"_s, u"Hum real."_s},
            {u"2,00"_s, u"Dois reais."_s},
            {u"100,00"_s, u"Cem reais."_s},
            {u"101,00"_s, u"Cento e um reais."_s},
            {u"121,50"_s, u"Cento e vinte e um reais e cinquenta centavos."_s},
            {u"1000,00"_s, u"Hum mil, reais."_s},
            {u"1001,00"_s, u"Hum mil,um reais."_s},
            {u"1500,00"_s, u"Hum mil,quinhentos reais."_s},
            {u"2500,75"_s, u"Dois mil,quinhentos reais e setenta e cinco centavos."_s},
            {u"21000,00"_s, u"Vinte e um mil, reais."_s},
            {u"1000000,00"_s, u"Hum milhão,mil, reais."_s},
            {u"2000000,00"_s, u"Dois milhões,mil, reais."_s},
            {u"1234567,89"_s, u"Hum milhão,duzentos e trinta e quatro mil,quinhentos e sessenta e "
                              u"sete reais e oitenta e nove centavos."_s},
            {u",50"_s, u" e cinquenta centavos."_s},
            {u",01"_s, u" e um centavo."_s},
            {u",00"_s, u"."_s},
            {u""_s, u""_s},
            // The singular only for a group whose words begin "um".
            {u"21000000,00"_s, u"Vinte e um milhões,mil, reais."_s},
            {u"1000000000,00"_s, u"Hum bilhão,milhões,mil, reais."_s},
            {u"3,21"_s, u"Três reais e vinte e um centavos."_s},
            {u"16,00"_s, u"Dezesseis reais."_s},
            {u"116,10"_s, u"Cento e dezesseis reais e dez centavos."_s},
            {u"999999999999999999,99"_s,
             u"Novecentos e noventa e nove quadrilhões,novecentos e noventa e nove "
             u"trilhões,novecentos e noventa e nove bilhões,novecentos e noventa e nove "
             u"milhões,novecentos e noventa e nove mil,novecentos e noventa e nove reais e "
             u"noventa e nove centavos."_s},
        };
        for (const auto& [amount, words] : rows)
            QTest::newRow(qPrintable(amount.isEmpty() ? u"empty"_s : amount)) << amount << words;
    }
    void examples() {
        QFETCH(QString, amount);
        QFETCH(QString, words);
        QCOMPARE(amountInWords(amount), words);
    }

    void groups() {
        QCOMPARE(groupInWords(u"121"), u"cento e vinte e um"_s);
        QCOMPARE(groupInWords(u"100"), u"cem"_s);
        QCOMPARE(groupInWords(u"011"), u" onze"_s);
        QCOMPARE(groupInWords(u"021"), u" vinte e um"_s);
        QCOMPARE(groupInWords(u"000"), QString());
        QCOMPARE(groupInWords(u"110"), u"cento e dez"_s);
        QCOMPARE(groupInWords(u"205"), u"duzentos e cinco"_s);
    }

    // Many random amounts up to 18 integer digits, with empty groups made likely.
    void againstSecondReading() {
        QRandomGenerator rng(20261123);
        for (int i = 0; i < 20000; ++i) {
            const int groupCount = 1 + int(rng.bounded(6));
            quint64 reais = 0;
            for (int g = 0; g < groupCount; ++g) {
                const int kind = int(rng.bounded(4));
                const int v = kind == 0 ? 0 : kind == 1 ? 1 : int(rng.bounded(1000));
                reais = reais * 1000 + quint64(v);
            }
            const int cents = rng.bounded(3) == 0 ? int(rng.bounded(2)) : int(rng.bounded(100));
            const QString text = (reais ? QString::number(reais) : QString()) + u',' +
                                 QString::number(cents).rightJustified(2, u'0');
            QCOMPARE(amountInWords(text), reference(reais, cents));
        }
    }
};

QTEST_APPLESS_MAIN(TestAmountWords)
#include "tst_amountwords.moc"
