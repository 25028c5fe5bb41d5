// Check digits of CPF and CNPJ, against a reference written the other way round (weights
// from the left, the remainder of ten times the sum) over a large generated set.

#include "registers/core/docnumbers.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace rtx;
using namespace Qt::StringLiterals;

namespace {

const QString T = u"True"_s;
const QString F = u"False"_s;

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

// The alphanumeric CNPJ as the revenue service publishes it: each of the twelve leading
// characters worth its ASCII code less 48, weights 5..2 and 9..2 from the left (then 6..2 and
// 9..2), remainder of eleven, 0 for a remainder under two.
QString referenceAlphaCnpj(const std::string& base) {
    auto digit = [](const std::string& s, std::initializer_list<int> weights) {
        int sum = 0;
        auto w = weights.begin();
        for (unsigned char c : s)
            sum += (int(c) - 48) * *w++;
        const int r = sum % 11;
        return r < 2 ? 0 : 11 - r;
    };
    const int d1 = digit(base, {5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2});
    const std::string withD1 = base + char('0' + d1);
    const int d2 = digit(withD1, {6, 5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2});
    return QString::fromStdString(withD1 + char('0' + d2));
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
    // Known numbers, as typed: the arithmetic alone decides (repeated digits included), both
    // remainders 0 and 1 give the digit 0, leading zeros count, the separators are not
    // looked at, and text of the wrong shape is no number.
    void knownNumbers() {
        const QStringList cpfs{u"529982247-25"_s, u"000000000-00"_s, u"111111111-11"_s,
                               u"000001003-07"_s, u"000001009-00"_s, u"012345678-90"_s};
        const QStringList cnpjs{u"12345678/0001-95"_s, u"11222333/0001-81"_s,
                                u"00000000/0000-00"_s};
        for (const QString& n : cpfs)
            QVERIFY2(cpfCheck(n) == T, qPrintable(n));
        for (const QString& n : cnpjs)
            QVERIFY2(cnpjCheck(n) == T, qPrintable(n));
        for (const QString& n : {u"529982247-26"_s, u"529982247-35"_s, u"000001009-10"_s,
                                 u"112345678-90"_s, QString(), u"52998a247-25"_s})
            QVERIFY2(cpfCheck(n) == F, qPrintable(n));
        for (const QString& n :
             {u"11222333/0001-82"_s, u"11222333/0001-91"_s, u"1122"_s, u"11.22333/0001-81"_s})
            QVERIFY2(cnpjCheck(n) == F, qPrintable(n));
        for (QChar sep : {u'-', u'.', u' ', u'x', u'9'}) {
            QCOMPARE(cpfCheck(u"529982247"_s + sep + u"25"_s), T);
            QCOMPARE(cnpjCheck(u"11222333"_s + sep + u"0001"_s + sep + u"81"_s), T);
        }
        QCOMPARE(cpfForm(u"1910"_s), u"000000019-10"_s);
        QCOMPARE(cpfCheck(cpfForm(u"1910"_s)), T);
        QCOMPARE(cnpjForm(u"11222333000181"_s), u"11222333/0001-81"_s);
        QCOMPARE(cnpjForm(u"1"_s), u"00000000/0000-01"_s);
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
        QCOMPARE(cpfCheck(u"310009176-06"_s), T);
        QCOMPARE(cpfCheck(u"210009176-06"_s), T);
    }

    // CNPJs with letters: the revenue service's own example, typed with points and in lower
    // case as well; random bases of digits and capitals against the reference; a letter where
    // a check digit stands, or in a CPF, is never a number; the shown form.
    void alphanumericCnpj() {
        QCOMPARE(taxNumberChars(u"12.ABC.345/01DE-35"_s), u"12ABC34501DE35"_s);
        QCOMPARE(cnpjCheck(cnpjForm(u"12ABC34501DE35"_s)), T);
        QCOMPARE(cnpjCheck(u"12ABC345/01DE-35"_s), T);
        QCOMPARE(cnpjCheck(u"12abc345/01de-35"_s), T);
        QCOMPARE(taxNumberKind(taxNumberChars(u"12.abc.345/01de-35"_s)), TaxNumber::Cnpj);
        QCOMPARE(taxNumberKind(u"12ABC34501DE36"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(u"12ABC34501DF35"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberShown(u"12ABC34501DE35"_s), u"12.ABC.345/01DE-35"_s);
        QCOMPARE(taxNumberShown(u"11222333000181"_s), u"11.222.333/0001-81"_s);
        QCOMPARE(taxNumberShown(u"52998224725"_s), u"529.982.247-25"_s);
        QCOMPARE(cnpjForm(u"12abc34501de35"_s), u"12ABC345/01DE-35"_s);
        QCOMPARE(cpfCheck(u"52998224A-25"_s), F);
        QCOMPARE(taxNumberKind(u"5299822472A"_s), TaxNumber::Wrong);
        QCOMPARE(cnpjCheck(u"12ABC345/01DE-3Z"_s), F);
        QCOMPARE(cnpjCheck(u"12ABÇ345/01DE-35"_s), F);

        const std::string alphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
        QRandomGenerator rng(2026);
        for (int n = 0; n < 20000; ++n) {
            std::string base;
            for (int i = 0; i < 12; ++i)
                base += alphabet[rng.bounded(int(alphabet.size()))];
            const QString number = referenceAlphaCnpj(base);
            QVERIFY2(cnpjCheck(cnpjForm(number)) == T, qPrintable(number));
            QCOMPARE(taxNumberKind(number.toLower()), TaxNumber::Cnpj);
            // Any other second check digit is wrong.
            QString changed = number;
            changed[13] = QChar(u'0' + (number.at(13).digitValue() + 1 + rng.bounded(9)) % 10);
            QVERIFY2(cnpjCheck(cnpjForm(changed)) == F, qPrintable(changed));
        }
    }
};

QTEST_APPLESS_MAIN(DocNumbersTest)
#include "tst_docnumbers.moc"
