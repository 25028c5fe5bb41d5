// Billing and receipts driven as the office uses them. Receipts: the first number, the
// payer's details from the register, the words of the amount in their settled form, the
// checks of a save, a number saved twice, delete, the list newest first and the printed
// receipt with the words and the company's address.

#include "finance/core/receipts.h"
#include "finance/recibo.h"
#include "output/core/defaultlayouts.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "store/formats.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;

namespace {

QString pdfText(const QString& file) {
    QProcess p;
    p.start(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, file, u"-"_s});
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return u"(pdftotext falhou)"_s;
    return QString::fromUtf8(p.readAllStandardOutput()).simplified();
}

} // namespace

class BillingTest : public QObject {
    Q_OBJECT

private slots:
    void receipts() {
        Desk<RECIBO> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        d.inst.store().insert(u"clientes"_s, {{u"CODIGO"_s, u"00001"_s},
                                              {u"C5"_s, u"PADARIA PÃO QUENTE"_s},
                                              {u"C3"_s, u"12.345.678/0001-95"_s},
                                              {u"C14"_s, u"RUA DO PÃO, 7"_s},
                                              {u"C15"_s, u"MOOCA"_s},
                                              {u"C16"_s, u"SÃO PAULO"_s},
                                              {u"C17"_s, u"SP"_s}});
        output::writeMissingLayouts(d.inst.folder());
        QVERIFY(d.open());
        RECIBO* s = d.s();
        QCOMPARE(shown(s, u"R1"_s), u"00001"_s);
        auto* states = control<QComboBox>(s, u"R8"_s);
        QCOMPARE(states->count(), 27);
        QVERIFY(states->findText(u"EX"_s) == 8 && states->findText(u"RO"_s) < 0);

        // Nothing looked up: delete asks for a search first.
        click(s, u"Command11"_s);
        QCOMPARE(d.prompts.lastText(), u"Realize a consulta, para depois apagar."_s);

        typeAndLeave(s, u"R2"_s, u"PADARIA PÃO QUENTE"_s);
        QCOMPARE(shownAll(s, {u"R3"_s, u"R5"_s, u"R6"_s, u"R7"_s, u"R8"_s}),
                 (QStringList{u"12.345.678/0001-95"_s, u"RUA DO PÃO, 7"_s, u"MOOCA"_s,
                              u"SÃO PAULO"_s, u"SP"_s}));
        typeAndLeave(s, u"R9"_s, u"100"_s);
        QCOMPARE(shown(s, u"R10"_s), u"( Cem reais.' )."_s);
        // Crossing the amount again writes the words over a hand edit.
        typeAndLeave(s, u"R10"_s, u"À MÃO"_s);
        typeAndLeave(s, u"R9"_s, u"1234,56"_s);
        QCOMPARE(shown(s, u"R10"_s),
                 u"( Hum mil,duzentos e trinta e quatro reais e cinquenta e seis centavos.' )."_s);

        // The checks in order, then the save; the same number again is refused.
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"O campo [Recebido por], não pode ficar em branco."_s);
        typeAndLeave(s, u"R13"_s, u"ADMIN"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"O campo [Referente], não pode ficar em branco."_s);
        typeAndLeave(s, u"R11"_s, u"ENTREGAS DE OUTUBRO"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"Inclusão realizada com sucesso."_s);
        typeAndLeave(s, u"R11"_s, u"OUTRA COISA"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"Este recibo já foi incluido, [Verifique]."_s);
        QCOMPARE(rowTexts(u"SELECT * FROM recibos"_s, {},
                          {u"CODIGO"_s, u"R9"_s, u"R11"_s, u"R15"_s, u"R18"_s, u"R19"_s}),
                 (QStringList{u"00001"_s, u"1.234,56"_s, u"ENTREGAS DE OUTUBRO"_s,
                              u"ROTALIX ENTREGAS RÁPIDAS"_s, u"RUA DAS FLORES, 100"_s,
                              u"SÃO PAULO SP"_s}));

        // The printed receipt holds the words and the company's address.
        d.prompts.answerPrinter(true);
        click(s, u"Command1"_s);
        QVERIFY2(s->report()->preview(), qPrintable(d.prompts.texts().join(u" / "_s)));
        QTemporaryDir out;
        const QString pdf = out.filePath(u"recibo.pdf"_s);
        QString error;
        QVERIFY2(writePdf(s->report()->preview()->document(), pdf, error), qPrintable(error));
        const QString printed = pdfText(pdf);
        for (const QString& part :
             {u"Nº 00001"_s, u"Hum mil,duzentos e trinta e quatro reais"_s,
              u"RUA DAS FLORES, 100"_s, u"PADARIA PÃO QUENTE"_s, u"ENTREGAS DE OUTUBRO"_s,
              u"1.234,56"_s, u"SÃO PAULO SP, "_s + formatDate(QDate::currentDate())})
            QVERIFY2(printed.contains(part), qPrintable(part + u" | "_s + printed));
        s->report()->preview()->close();

        // Novo: the next number, the form emptied; under one real the words start blank.
        click(s, u"Command8"_s);
        QCOMPARE(shownAll(s, {u"R1"_s, u"R2"_s, u"R10"_s}),
                 (QStringList{u"00002"_s, QString(), QString()}));
        typeAndLeave(s, u"R9"_s, u"0,50"_s);
        QCOMPARE(shown(s, u"R10"_s), u"(  e cinquenta centavos.' )."_s);
        typeAndLeave(s, u"R2"_s, u"AVULSO"_s);
        typeAndLeave(s, u"R11"_s, u"TAXA"_s);
        typeAndLeave(s, u"R13"_s, u"ADMIN"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.count(u"recibos"_s), 2);

        // The list, newest first; a double click brings the receipt to the form.
        click(s, u"Command2"_s);
        auto* list = control<MSFlexGrid>(s, u"Grid1"_s);
        QCOMPARE(list->rows(), 3);
        QCOMPARE(list->textMatrix(1, 0), u"00002"_s);
        QCOMPARE(list->textMatrix(2, 3), u"PADARIA PÃO QUENTE"_s);
        emit list->rowDoubleClicked(2);
        QCOMPARE(shownAll(s, {u"R1"_s, u"R2"_s, u"R11"_s}),
                 (QStringList{u"00001"_s, u"PADARIA PÃO QUENTE"_s, u"ENTREGAS DE OUTUBRO"_s}));

        // Delete after the question; the form goes to the next number.
        d.prompts.answerYes();
        click(s, u"Command11"_s);
        QCOMPARE(d.prompts.lastText(), u"Exclusão realizada com sucesso."_s);
        QCOMPARE(d.count(u"recibos"_s), 1);
        QCOMPARE(rowTexts(u"SELECT * FROM recibos"_s, {}, {u"CODIGO"_s}), QStringList{u"00002"_s});
        QCOMPARE(shown(s, u"R1"_s), u"00003"_s);
        // Words of an amount left empty: the brackets around the lone apostrophe.
        QCOMPARE(fin::receiptWords(std::nullopt), u"( ' )."_s);
    }
};

QTEST_MAIN(BillingTest)
#include "tst_billing.moc"
