// Money and dates in the Brazilian forms, whatever the machine's locale.

#include "store/formats.h"

#include <QtTest>

using namespace rtx;
using namespace Qt::StringLiterals;

class FormatsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    // Read exactly to the cent up to the largest amount; one cent more, or anything that is
    // not an amount, is no amount (never zero); the save checks name the field.
    void money() {
        QCOMPARE(formatMoney(-120000), u"-1.200,00"_s);
        QCOMPARE(formatCurrency(1250), u"R$ 12,50"_s);
        QCOMPARE(parseMoney(u"1.234,56"_s), 123456);
        QCOMPARE(parseMoney(u",5"_s), 50);
        QCOMPARE(parseMoney(u"R$\u00a03,00"_s), 300);
        QCOMPARE(parseMoney(u"0000000000000000012,50"_s), 1250);
        for (const char* bad : {"", ",", "1,2,3", "12a", "1.23,00", "1,234", "100.000.000,00",
                                "99999999,991", "-100.000.000,00", "9999999999999999999999,00"})
            QVERIFY2(!parseMoney(QString::fromLatin1(bad)), bad);
        for (qint64 c : {qint64(1), qint64(99), maxMoneyCents})
            QCOMPARE(parseMoney(formatMoney(c)), c);
        QCOMPARE(formatMoney(maxMoneyCents), u"99.999.999,99"_s);
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
        for (const char* bad : {"31/02/2020", "__/__/____", "1/1/2020", "2512202"})
            QVERIFY2(!normaliseDate(QString::fromLatin1(bad), today), bad);
        QCOMPARE(formatDate(QDate(2020, 1, 5)), u"05/01/2020"_s);
        QCOMPARE(maskDate(u"05012020"_s), u"05/01/2020"_s);
    }
};

QTEST_GUILESS_MAIN(FormatsTest)
#include "tst_formats.moc"
