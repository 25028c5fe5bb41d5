// Check digits of CPF and CNPJ: known numbers, changed digits, and the CNPJ with letters.

#include "registers/core/docnumbers.h"

#include <QtTest>

using namespace rtx;
using namespace Qt::StringLiterals;

namespace {

const QString T = u"True"_s;
const QString F = u"False"_s;

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

    // A change of one check digit is always caught; a change of a base digit nearly always,
    // but a change that moves both remainders between 0 and 1 (the rule gives 0 for both)
    // makes a valid number of its own.
    void changedDigits() {
        for (const QString& valid : {u"52998224725"_s, u"01234567890"_s}) {
            for (int p : {9, 10})
                for (int d = 1; d <= 9; ++d) {
                    QString changed = valid;
                    changed[p] = QChar(u'0' + (valid.at(p).digitValue() + d) % 10);
                    QVERIFY2(cpfCheck(cpfForm(changed)) == F, qPrintable(changed));
                }
        }
        for (const QString& valid : {u"11222333000181"_s, u"12ABC34501DE35"_s})
            for (int p : {12, 13})
                for (int d = 1; d <= 9; ++d) {
                    QString changed = valid;
                    changed[p] = QChar(u'0' + (valid.at(p).digitValue() + d) % 10);
                    QVERIFY2(cnpjCheck(cnpjForm(changed)) == F, qPrintable(changed));
                }
        QCOMPARE(cpfCheck(u"310009176-06"_s), T);
        QCOMPARE(cpfCheck(u"210009176-06"_s), T);
    }

    // CNPJs with letters: the revenue service's own example, typed with points and in lower
    // case as well; a letter where a check digit stands, or in a CPF, is never a number; the
    // shown form.
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
    }
};

QTEST_APPLESS_MAIN(DocNumbersTest)
#include "tst_docnumbers.moc"
