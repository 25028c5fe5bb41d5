// Billing and receipts driven as the office uses them: the lists of billing, its marks and
// write-offs with the grid deciding, a failure in the middle of a write-off, the change of a
// dispatch's values; a receipt from the register's payer to its print and its deletion.

#include "dispatch/core/billedvalues.h"
#include "finance/cobra.h"
#include "finance/cobra1.h"
#include "finance/core/billing.h"
#include "finance/recibo.h"
#include "output/core/defaultlayouts.h"
#include "output/reportcontrol.h"
#include "pdftext.h"
#include "registerdesk.h"
#include "registers/core/company.h"
#include "screendriver.h"
#include "store/formats.h"

#include <QTemporaryDir>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;

namespace {

const QDate kToday = QDate::currentDate();

void receivable(const QString& code, const QString& document, int enteredAgo, int dueAgo,
                const QString& client, qint64 cents, const QString& status = u"A receber"_s) {
    Store::current().execute(
        u"INSERT INTO contas_receber (codigo, c1, c2, c3, c4, c5, c6, c12, c13) "
        u"VALUES (?, ?, ?, ?, 'BETO', 'ATENDIMENTO', ?, ?, ?)"_s,
        {code, kToday.addDays(-enteredAgo), status, document, client, cents,
         kToday.addDays(-dueAgo)});
}

QStringList column(MSFlexGrid* grid, int col) {
    QStringList out;
    for (int r = 1; r < grid->rows(); ++r)
        out << grid->textMatrix(r, col);
    return out;
}

// Every row a statement gives, its columns as the store reads them, joined by "|".
QStringList rows(const QString& sql, const QStringList& columns) {
    QStringList out;
    for (Recordset rs = Store::current().open(sql); !rs.eof(); rs.moveNext()) {
        QStringList row;
        for (const QString& c : columns)
            row << rs.text(c);
        out << row.join(u'|');
    }
    return out;
}

QStringList credits() {
    return rows(u"SELECT * FROM caixa ORDER BY codigo"_s,
                {u"A1"_s, u"A2"_s, u"A3"_s, u"A5"_s, u"A6"_s, u"A7"_s});
}

} // namespace

class BillingTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { dispatch::handToBilling(); } // as the program does when it starts

    void billing() {
        Desk<cobra> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        st.execute(
            u"INSERT INTO clientes (CODIGO, C5) VALUES ('1', 'ACME LTDA'), ('2', 'PADARIA')"_s);
        receivable(u"00001"_s, u"0000001"_s, 5, -25, u"PADARIA"_s, 1000);
        receivable(u"00002"_s, u"0000002"_s, 3, 40, u"ACME LTDA"_s, 2500); // due long ago
        receivable(u"00003"_s, u"0000003"_s, 60, 0, u"PADARIA"_s, 900);    // entered before
        receivable(u"00004"_s, u"0000002"_s, 2, 2, u"ACME LTDA"_s, 700);   // the same code
        receivable(u"00005"_s, QString(), 1, 1, u"PADARIA"_s, 0);          // made by hand
        receivable(u"00006"_s, u"0000009"_s, 1, 1, u"PADARIA"_s, 300, u"Recebida"_s);
        for (const auto& [code, ago, value] : QList<std::tuple<QString, int, qint64>>{
                 {u"0000001"_s, 5, 1000}, {u"0000002"_s, 3, 2500}, {u"0000003"_s, 60, 900}})
            st.execute(u"INSERT INTO atendimentos (CODIGO, a2, a6, a18, a19, moto) "
                       u"VALUES (?, ?, 'PADARIA', 'BETO', ?, ?)"_s,
                       {code, kToday.addDays(-ago), value, value / 2});
        QVERIFY(d.open());
        cobra* s = d.s();
        auto* bills = control<MSFlexGrid>(s, u"Grid1"_s);
        auto* dispatches = control<MSFlexGrid>(s, u"Grid2"_s);
        typeAndLeave(s, u"k1"_s, formatDate(kToday.addDays(-10)).remove(u'/'));
        typeAndLeave(s, u"A1"_s, u"PADARIA"_s);
        click(s, u"Command6"_s);
        QCOMPARE(column(bills, 0), (QStringList{u"0000001"_s, QString()}));
        QCOMPARE(shown(s, u"TT"_s), u"10,00"_s);

        // All clients: the period runs on the date of entry, the grid shows the due date.
        click(s, u"Command9"_s);
        QCOMPARE(column(bills, 0).join(u' '), u"0000001 0000002 0000002 "_s);
        QCOMPARE(bills->textMatrix(2, 1), formatDate(kToday.addDays(-40)));
        QCOMPARE(shown(s, u"TT"_s), u"42,00"_s);
        QCOMPARE(column(dispatches, 0).join(u' '), u"0000001 0000002"_s);

        // Marks: a second double click takes the mark off; No leaves everything.
        for (int row : {1, 2, 4, 1})
            emit bills->rowDoubleClicked(row);
        QCOMPARE(column(bills, 5).join(u' '), u" Ok  Ok"_s);
        d.prompts.answerNo();
        click(s, u"Command4"_s);
        QCOMPARE(credits(), QStringList());

        // The marked rows: the code held twice settles both receivables with the row's
        // value, the empty code settles the hand-made one, one credit per row, also of 0,00.
        d.prompts.answerYes();
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.lastText(), u"Operação realizada com sucesso."_s);
        QCOMPARE(
            rows(u"SELECT * FROM contas_receber ORDER BY codigo"_s, {u"c2"_s, u"c16"_s}).join(u' '),
            u"A receber| Recebida|25,00 A receber| Recebida|25,00 Recebida|0,00 Recebida|"_s);
        const QString day = formatDate(kToday), group = fin::billingGroup;
        QCOMPARE(credits(), (QStringList{day + u"|CRÉDITO|0000002|25,00|ACME LTDA|"_s + group,
                                         day + u"|CRÉDITO||0,00|PADARIA|"_s + group}));
        QCOMPARE(column(bills, 0), (QStringList{u"0000001"_s})); // what is left open

        // Ten rows, the sixth credit refused: all ten stay open, no credit, the reason said.
        for (int i = 0; i < 10; ++i)
            receivable(u"%1"_s.arg(100 + i, 5, 10, QChar(u'0')),
                       u"%1"_s.arg(100 + i, 7, 10, QChar(u'0')), 1, 1, u"ACME LTDA"_s, 100 + i);
        refuseCredit(st, u"0000105"_s);
        click(s, u"Command9"_s);
        d.prompts.answerYes();
        click(s, u"Command3"_s);
        QVERIFY(d.prompts.lastText().contains(u"disco cheio (teste)"_s));
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM contas_receber WHERE c2 = 'A receber'"_s), 12);
        QCOMPARE(credits().size(), 2);
        QCOMPARE(bills->rows(), 12);

        // Altera valor: the two values of the dispatch, nothing else.
        s->findChild<SSTab*>(u"SSTab1"_s)->setTab(1);
        emit dispatches->rowDoubleClicked(2);
        auto* values = s->findChild<cobra1*>();
        QVERIFY(values);
        typeAndLeave(values, u"a3"_s, u"30"_s);
        typeAndLeave(values, u"a4"_s, u"15,5"_s);
        click(values, u"Command6"_s);
        QCOMPARE(d.prompts.lastText(), u"Alterado com sucesso."_s);
        QCOMPARE(rowTexts(u"SELECT a19, moto FROM atendimentos WHERE CODIGO = '0000002'"_s, {},
                          {u"a19"_s, u"moto"_s}),
                 (QStringList{u"30,00"_s, u"15,50"_s}));
        QCOMPARE(countRows(u"SELECT c12 FROM contas_receber WHERE codigo = '00002'"_s), 2500);
    }

    // The payer from the register (a CNPJ with letters in its marks), the words written over
    // a hand edit, the first check, the save and its number refused again, the letterhead as
    // it stands at the save, changed while the screen was open; the print, Novo, delete.
    void receipts() {
        Desk<RECIBO> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        d.inst.store().insert(u"clientes"_s, {{u"CODIGO"_s, u"00001"_s},
                                              {u"C5"_s, u"PADARIA PÃO QUENTE"_s},
                                              {u"C3"_s, u"12ABC34501DE35"_s}});
        output::writeMissingLayouts(d.inst.folder());
        QVERIFY(d.open());
        RECIBO* s = d.s();
        d.inst.store().execute(
            u"UPDATE %1 SET %2 = ?"_s.arg(registers::companyTable(), registers::companycol::name),
            {u"ROTALIX FILIAL NOVA"_s});
        typeAndLeave(s, u"R2"_s, u"PADARIA PÃO QUENTE"_s);
        QCOMPARE(shown(s, u"R3"_s), u"12.ABC.345/01DE-35"_s);
        typeAndLeave(s, u"R10"_s, u"À MÃO"_s);
        typeAndLeave(s, u"R9"_s, u"1234,56"_s);
        QCOMPARE(shown(s, u"R10"_s),
                 u"( Hum mil,duzentos e trinta e quatro reais e cinquenta e seis centavos.' )."_s);

        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"O campo [Recebido por], não pode ficar em branco."_s);
        typeAndLeave(s, u"R13"_s, u"ADMIN"_s);
        typeAndLeave(s, u"R11"_s, u"ENTREGAS DE OUTUBRO"_s);
        click(s, u"Command16"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"Este recibo já foi incluido, [Verifique]."_s);
        QCOMPARE(rowTexts(u"SELECT * FROM recibos"_s, {},
                          {u"CODIGO"_s, u"R9"_s, u"R11"_s, u"R15"_s, u"R18"_s}),
                 (QStringList{u"00001"_s, u"1.234,56"_s, u"ENTREGAS DE OUTUBRO"_s,
                              u"ROTALIX FILIAL NOVA"_s, u"RUA DAS FLORES, 100"_s}));

        d.prompts.answerPrinter(true);
        click(s, u"Command1"_s);
        QVERIFY2(s->report()->preview(), qPrintable(d.prompts.texts().join(u" / "_s)));
        QTemporaryDir out;
        const QString printed =
            renderedText(s->report()->preview()->document(), out.path(), u"recibo"_s).simplified();
        for (const QString& part : {u"Nº 00001"_s, u"Hum mil,duzentos e trinta e quatro reais"_s,
                                    u"RUA DAS FLORES, 100"_s, u"PADARIA PÃO QUENTE"_s})
            QVERIFY2(printed.contains(part), qPrintable(part + u" | "_s + printed));
        s->report()->preview()->close();

        click(s, u"Command8"_s);
        QCOMPARE(shown(s, u"R1"_s), u"00002"_s);
        typeAndLeave(s, u"R1"_s, u"1"_s);
        d.prompts.answerYes();
        click(s, u"Command11"_s);
        QCOMPARE(d.prompts.lastText(), u"Exclusão realizada com sucesso."_s);
        QCOMPARE(d.count(u"recibos"_s), 0);
    }
};

QTEST_MAIN(BillingTest)
#include "tst_billing.moc"
