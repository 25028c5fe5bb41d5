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
        for (qint64 c : {qint64(1), qint64(10), qint64(99), qint64(1999999999999)})
            QCOMPARE(parseMoney(formatMoney(c)), c);
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
