// Check digits of CPF and CNPJ, against a reference written the other way round (weights
// from the left, the remainder of ten times the sum) over a large generated set.

#include "registers/core/docnumbers.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace rtx;

namespace {

const QString T = QStringLiteral("True");
const QString F = QStringLiteral("False");

int referenceDigit(const QString& digits, const QList<int>& weightsFromLeft) {
    int sum = 0;
    for (int i = 0; i < digits.size(); ++i)
        sum += digits.at(i).digitValue() * weightsFromLeft.at(i);
    return (sum * 10) % 11 % 10;
}

// The eleven digits of a valid CPF for nine base digits.
QString referenceCpf(const QString& base) {
    const int d1 = referenceDigit(base, {10, 9, 8, 7, 6, 5, 4, 3, 2});
    const QString withD1 = base + QString::number(d1);
    return withD1 + QString::number(referenceDigit(withD1, {11, 10, 9, 8, 7, 6, 5, 4, 3, 2}));
}

QString referenceCnpj(const QString& base) {
    const int d1 = referenceDigit(base, {5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2});
    const QString withD1 = base + QString::number(d1);
    return withD1 +
           QString::number(referenceDigit(withD1, {6, 5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2}));
}

QString randomDigits(QRandomGenerator& rng, int count) {
    QString s;
    for (int i = 0; i < count; ++i)
        s += QChar(u'0' + rng.bounded(10));
    return s;
}

} // namespace

class DocNumbersTest : public QObject {
    Q_OBJECT

private slots:
    void knownNumbers() {
        QCOMPARE(cpfCheck(QStringLiteral("529982247-25")), T);
        QCOMPARE(cpfCheck(QStringLiteral("529982247-26")), F);
        QCOMPARE(cpfCheck(QStringLiteral("529982247-35")), F);
        QCOMPARE(cnpjCheck(QStringLiteral("12345678/0001-95")), T);
        QCOMPARE(cnpjCheck(QStringLiteral("11222333/0001-81")), T);
        QCOMPARE(cnpjCheck(QStringLiteral("11222333/0001-82")), F);
        QCOMPARE(cnpjCheck(QStringLiteral("11222333/0001-91")), F);
        // No test of repeated digits: the arithmetic alone decides.
        QCOMPARE(cpfCheck(QStringLiteral("000000000-00")), T);
        QCOMPARE(cpfCheck(QStringLiteral("111111111-11")), T);
        QCOMPARE(cnpjCheck(QStringLiteral("00000000/0000-00")), T);
    }

    void remainderZeroAndOneBothGiveZero() {
        QCOMPARE(cpfCheck(QStringLiteral("000001003-07")), T); // first sum leaves 0
        QCOMPARE(cpfCheck(QStringLiteral("000001009-00")), T); // first sum leaves 1
        QCOMPARE(cpfCheck(QStringLiteral("000001009-10")), F);
    }

    void leadingZerosAreChecked() {
        QCOMPARE(cpfForm(QStringLiteral("1910")), QStringLiteral("000000019-10"));
        QCOMPARE(cpfCheck(cpfForm(QStringLiteral("1910"))), T);
        QCOMPARE(cpfCheck(QStringLiteral("012345678-90")), T);
        QCOMPARE(cpfCheck(QStringLiteral("112345678-90")), F);
        QCOMPARE(cnpjForm(QStringLiteral("11222333000181")), QStringLiteral("11222333/0001-81"));
        QCOMPARE(cnpjForm(QStringLiteral("1")), QStringLiteral("00000000/0000-01"));
    }

    void separatorsAreNotLookedAt() {
        for (QChar sep : {u'-', u'.', u' ', u'x', u'9'}) {
            QCOMPARE(cpfCheck(QStringLiteral("529982247") + sep + QStringLiteral("25")), T);
            QCOMPARE(cnpjCheck(QStringLiteral("11222333") + sep + QStringLiteral("0001") + sep +
                               QStringLiteral("81")),
                     T);
        }
    }

    void malformedTextIsFalse() {
        QCOMPARE(cpfCheck(QString()), F);
        QCOMPARE(cpfCheck(QStringLiteral("52998a247-25")), F);
        QCOMPARE(cnpjCheck(QStringLiteral("1122")), F);
        QCOMPARE(cnpjCheck(QStringLiteral("11.22333/0001-81")), F);
    }

    // Every generated valid number passes. A change of one digit fails whenever the
    // reference says so: always for a check digit, and for a base digit unless the change
    // moves both remainders between 0 and 1 (the rule gives 0 for both, so a few such
    // pairs are valid numbers of their own, e.g. 310009176-06 and 210009176-06).
    void generatedNumbers_data() {
        QTest::addColumn<bool>("cnpj");
        QTest::newRow("CPF") << false;
        QTest::newRow("CNPJ") << true;
    }

    void generatedNumbers() {
        QFETCH(bool, cnpj);
        const int base = cnpj ? 12 : 9;
        auto check = [cnpj](const QString& digits) {
            return cnpj ? cnpjCheck(cnpjForm(digits)) : cpfCheck(cpfForm(digits));
        };
        auto reference = [cnpj](const QString& digits) {
            return cnpj ? referenceCnpj(digits.left(12)) : referenceCpf(digits.left(9));
        };
        QRandomGenerator rng(4711);
        int changes = 0, twins = 0;
        for (int n = 0; n < 20000; ++n) {
            const QString digits = reference(randomDigits(rng, base));
            QCOMPARE(check(digits), T);
            for (int p = 0; p < digits.size(); ++p) {
                for (QChar d = u'0'; d <= u'9'; d = QChar(d.unicode() + 1)) {
                    if (d == digits.at(p)) continue;
                    QString changed = digits;
                    changed[p] = d;
                    const bool valid = reference(changed) == changed;
                    if (p >= base) QVERIFY(!valid);
                    twins += valid;
                    ++changes;
                    QCOMPARE(check(changed), valid ? T : F);
                }
            }
        }
        QVERIFY(twins * 50 < changes); // nearly all single changes are caught
        QCOMPARE(cpfCheck(QStringLiteral("310009176-06")), T);
        QCOMPARE(cpfCheck(QStringLiteral("210009176-06")), T);
    }
};

QTEST_APPLESS_MAIN(DocNumbersTest)
#include "tst_docnumbers.moc"
