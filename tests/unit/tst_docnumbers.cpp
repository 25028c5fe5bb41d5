// Check digits of CPF and CNPJ: known numbers, changed digits, and the CNPJ with letters.

#include "registers/core/docnumbers.h"

#include <QtTest>

using namespace rtx;
using namespace Qt::StringLiterals;

class DocNumbersTest : public QObject {
    Q_OBJECT

private slots:
    // Known numbers, as typed: the arithmetic alone decides (repeated digits included), both
    // remainders 0 and 1 give the digit 0, leading zeros count, the separators are not
    // looked at, and text of the wrong shape is no number.
    void knownNumbers() {
        for (const QString& n : {u"529982247-25"_s, u"000000000-00"_s, u"111111111-11"_s,
                                 u"000001003-07"_s, u"000001009-00"_s, u"529982247x25"_s})
            QVERIFY2(cpfCheck(n) == u"True"_s, qPrintable(n));
        for (const QString& n :
             {u"529982247-26"_s, u"000001009-10"_s, QString(), u"52998a247-25"_s})
            QVERIFY2(cpfCheck(n) == u"False"_s, qPrintable(n));
        QCOMPARE(cnpjCheck(u"11222333/0001-81"_s), u"True"_s);
        for (const QString& n : {u"11222333/0001-82"_s, u"1122"_s, u"11.22333/0001-81"_s})
            QVERIFY2(cnpjCheck(n) == u"False"_s, qPrintable(n));
        QCOMPARE(cpfForm(u"1910"_s), u"000000019-10"_s);
        QCOMPARE(cnpjForm(u"1"_s), u"00000000/0000-01"_s);
    }

    // A change of one check digit is always caught, in a CNPJ with letters too.
    void changedCheckDigits() {
        for (const QString& valid : {u"11222333000181"_s, u"12ABC34501DE35"_s})
            for (int p : {12, 13})
                for (int d = 1; d <= 9; ++d) {
                    QString changed = valid;
                    changed[p] = QChar(u'0' + (valid.at(p).digitValue() + d) % 10);
                    QVERIFY2(cnpjCheck(cnpjForm(changed)) == u"False"_s, qPrintable(changed));
                }
    }

    // CNPJs with letters: the revenue service's own example, typed with points and in lower
    // case; a letter where a check digit stands, or in a CPF, is never a number.
    void alphanumericCnpj() {
        QCOMPARE(taxNumberKind(taxNumberChars(u"12.abc.345/01de-35"_s)), TaxNumber::Cnpj);
        QCOMPARE(taxNumberKind(u"12ABC34501DF35"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(u"5299822472A"_s), TaxNumber::Wrong);
        QCOMPARE(cnpjCheck(u"12ABC345/01DE-3Z"_s), u"False"_s);
        QCOMPARE(taxNumberShown(u"12ABC34501DE35"_s), u"12.ABC.345/01DE-35"_s);
        QCOMPARE(taxNumberShown(u"52998224725"_s), u"529.982.247-25"_s);
    }
};

QTEST_APPLESS_MAIN(DocNumbersTest)
#include "tst_docnumbers.moc"
