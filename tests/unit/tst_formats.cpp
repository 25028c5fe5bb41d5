// Money and dates in the Brazilian forms, whatever the machine's locale.

#include "store/formats.h"

#include <QtTest>

using namespace rtx;
using namespace Qt::StringLiterals;

class FormatsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void money() {
        QCOMPARE(formatMoney(0), u"0,00"_s);
        QCOMPARE(formatMoney(5), u"0,05"_s);
        QCOMPARE(formatMoney(123456), u"1.234,56"_s);
        QCOMPARE(formatMoney(100000000), u"1.000.000,00"_s);
        QCOMPARE(formatMoney(-120000), u"-1.200,00"_s);
        QCOMPARE(formatCurrency(1250), u"R$ 12,50"_s);
        QCOMPARE(parseMoney(u"1.234,56"_s), 123456);
        QCOMPARE(parseMoney(u"1234,5"_s), 123450);
        QCOMPARE(parseMoney(u",5"_s), 50);
        QCOMPARE(parseMoney(u"12"_s), 1200);
        QCOMPARE(parseMoney(u"R$\u00a03,00"_s), 300);
        QCOMPARE(parseMoney(u"-2,00"_s), -200);
        for (const char* bad : {"", ",", "1,2,3", "12a", "1.23,00", "1,234"})
            QVERIFY2(!parseMoney(QString::fromLatin1(bad)), bad);
        // Exact at every cent, no float drift.
        for (qint64 c : {qint64(1), qint64(10), qint64(99), maxMoneyCents})
            QCOMPARE(parseMoney(formatMoney(c)), c);
    }

    // The largest amount is read to its last cent, one cent more is no amount (either sign,
    // however it is written), and leading zeros do not count as digits. The save checks
    // refuse what no money field holds, naming the field.
    void largestAmount() {
        QCOMPARE(formatMoney(maxMoneyCents), u"99.999.999,99"_s);
        QCOMPARE(parseMoney(u"99999999,99"_s), maxMoneyCents);
        QCOMPARE(parseMoney(u"0000000000000000012,50"_s), 1250);
        for (const char* over : {"100.000.000,00", "100000000", "99999999,991", "-100.000.000,00",
                                 "999999999999999", "9999999999999999999999,00"})
            QVERIFY2(!parseMoney(QString::fromLatin1(over)), over);

        QCOMPARE(moneyRefusal(0, u"Valor"_s), std::nullopt);
        QCOMPARE(moneyRefusal(maxMoneyCents, u"Valor"_s), std::nullopt);
        QCOMPARE(moneyRefusal(-500, u"Valor"_s), u"O campo [Valor], não aceita valor negativo."_s);
        QCOMPARE(moneyRefusal(maxMoneyCents + 1, u"VLR. CLIENTE"_s),
                 u"O campo [VLR. CLIENTE], não aceita valor acima de 99.999.999,99."_s);
    }

    void dates() {
        const QDate today(2026, 11, 23);
        QCOMPARE(normaliseDate(QString(), today), today);
        QCOMPARE(normaliseDate(u"25122020"_s, today), QDate(2020, 12, 25));
        QCOMPARE(normaliseDate(u"25/12/2020"_s, today), QDate(2020, 12, 25));
        QCOMPARE(normaliseDate(u"31/02/2020"_s, today), std::nullopt);
        QCOMPARE(normaliseDate(u"__/__/____"_s, today), std::nullopt);
        QCOMPARE(normaliseDate(u"1/1/2020"_s, today), std::nullopt);
        QCOMPARE(normaliseDate(u"2512202"_s, today), std::nullopt);
        QCOMPARE(formatDate(QDate(2020, 1, 5)), u"05/01/2020"_s);
        QCOMPARE(maskDate(u"05012020"_s), u"05/01/2020"_s);
        QCOMPARE(padCode(7, 7), u"0000007"_s);
        QCOMPARE(padCode(100000, 5), u"100000"_s);
    }
};

QTEST_GUILESS_MAIN(FormatsTest)
#include "tst_formats.moc"
