// Money and dates in the Brazilian forms, whatever the machine's locale.

#include "store/formats.h"

#include <QtTest>

using namespace rtx;

class FormatsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void money() {
        QCOMPARE(formatMoney(0), QStringLiteral("0,00"));
        QCOMPARE(formatMoney(5), QStringLiteral("0,05"));
        QCOMPARE(formatMoney(123456), QStringLiteral("1.234,56"));
        QCOMPARE(formatMoney(100000000), QStringLiteral("1.000.000,00"));
        QCOMPARE(formatMoney(-120000), QStringLiteral("-1.200,00"));
        QCOMPARE(formatCurrency(1250), QStringLiteral("R$ 12,50"));
        QCOMPARE(parseMoney(QStringLiteral("1.234,56")), 123456);
        QCOMPARE(parseMoney(QStringLiteral("1234,5")), 123450);
        QCOMPARE(parseMoney(QStringLiteral(",5")), 50);
        QCOMPARE(parseMoney(QStringLiteral("12")), 1200);
        QCOMPARE(parseMoney(QStringLiteral("R$\u00a03,00")), 300);
        QCOMPARE(parseMoney(QStringLiteral("-2,00")), -200);
        for (const char* bad : {"", ",", "1,2,3", "12a", "1.23,00", "1,234"})
            QVERIFY2(!parseMoney(QString::fromLatin1(bad)), bad);
        // Exact at every cent, no float drift.
        for (qint64 c : {qint64(1), qint64(10), qint64(99), qint64(1999999999999)})
            QCOMPARE(parseMoney(formatMoney(c)), c);
    }

    void dates() {
        const QDate today(2026, 11, 23);
        QCOMPARE(normaliseDate(QString(), today), today);
        QCOMPARE(normaliseDate(QStringLiteral("25122020"), today), QDate(2020, 12, 25));
        QCOMPARE(normaliseDate(QStringLiteral("25/12/2020"), today), QDate(2020, 12, 25));
        QCOMPARE(normaliseDate(QStringLiteral("31/02/2020"), today), std::nullopt);
        QCOMPARE(normaliseDate(QStringLiteral("__/__/____"), today), std::nullopt);
        QCOMPARE(normaliseDate(QStringLiteral("1/1/2020"), today), std::nullopt);
        QCOMPARE(normaliseDate(QStringLiteral("2512202"), today), std::nullopt);
        QCOMPARE(formatDate(QDate(2020, 1, 5)), QStringLiteral("05/01/2020"));
        QCOMPARE(maskDate(QStringLiteral("05012020")), QStringLiteral("05/01/2020"));
        QCOMPARE(padCode(7, 7), QStringLiteral("0000007"));
        QCOMPARE(padCode(100000, 5), QStringLiteral("100000"));
    }
};

QTEST_GUILESS_MAIN(FormatsTest)
#include "tst_formats.moc"
