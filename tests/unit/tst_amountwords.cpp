// The amount in words, against the office's own examples: every word of a group, the
// singular only for a group worth one, the comma before every group but the highest.

#include "finance/core/amountwords.h"

#include <QtTest>

using namespace rtx::finance;
using namespace Qt::StringLiterals;

class TestAmountWords : public QObject {
    Q_OBJECT
private slots:
    void examples_data() {
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("words");
        const QList<std::pair<QString, QString>> rows = {
            {u"1,00"_s, u"Hum real."_s},
            {u"101,00"_s, u"Cento e um reais."_s},
            {u"121,50"_s, u"Cento e vinte e um reais e cinquenta centavos."_s},
            {u"1001,00"_s, u"Hum mil,um reais."_s},
            {u"2500,75"_s, u"Dois mil,quinhentos reais e setenta e cinco centavos."_s},
            {u"1000000,00"_s, u"Hum milhão,mil, reais."_s},
            {u"1234567,89"_s, u"Hum milhão,duzentos e trinta e quatro mil,quinhentos e sessenta e "
                              u"sete reais e oitenta e nove centavos."_s},
            {u",50"_s, u" e cinquenta centavos."_s},
            {u",01"_s, u" e um centavo."_s},
            {u""_s, u""_s},
            // The singular only for a group whose words begin "um".
            {u"21000000,00"_s, u"Vinte e um milhões,mil, reais."_s},
            {u"1000000000,00"_s, u"Hum bilhão,milhões,mil, reais."_s},
            // Every word of a group, in every place.
            {u"919818717616515414,13"_s,
             u"Novecentos e dezenove quadrilhões,oitocentos e dezoito trilhões,setecentos e "
             u"dezessete bilhões,seiscentos e dezesseis milhões,quinhentos e quinze mil,"
             u"quatrocentos e quatorze reais e treze centavos."_s},
            {u"1001008,08"_s, u"Hum milhão,um mil,oito reais e oito centavos."_s},

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
        QCOMPARE(groupInWords(u"011"), u" onze"_s);
        QCOMPARE(groupInWords(u"021"), u" vinte e um"_s);
        QCOMPARE(groupInWords(u"000"), QString());
    }
};

QTEST_APPLESS_MAIN(TestAmountWords)
#include "tst_amountwords.moc"
