// The finance screens driven as the office uses them: the cash book's day with its entry,
// pick and delete, the previous balance of a day typed or found, its printouts; a bill with
// the question of the cash, its posting and a failure between the two.

#include "finance/caixa.h"
#include "finance/contas.h"
#include "finance/core/ledger.h"
#include "finance/core/printouts.h"
#include "output/core/defaultlayouts.h"
#include "output/reportcontrol.h"
#include "pdftext.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "store/formats.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;
namespace fin = rtx::finance;

namespace {

const QDate kToday = QDate::currentDate();

void postRow(const QDate& day, const QString& operation, qint64 cents,
             const QString& description = u"MOV"_s) {
    fin::CashMovement m;
    m.date = day;
    m.operation = operation;
    m.amount = cents;
    m.description = description;
    Store& st = Store::current();
    UnitOfWork unit(st);
    fin::postCash(st, m);
    unit.commit();
}

QStringList figures(QWidget* s) {
    return shownAll(s, {u"sa"_s, u"t1"_s, u"t2"_s, u"t3"_s});
}

void choose(QWidget* s, const QString& combo, const QString& item) {
    auto* c = control<QComboBox>(s, combo);
    c->setCurrentIndex(c->findText(item));
}

} // namespace

class FinanceTest : public QObject {
    Q_OBJECT

private slots:
    // The entry waits for Iniciar; the first movement is 0000001 and shows in the day with
    // the figures; a picked row is deleted after the question, and the day loads again.
    void cashEntry() {
        Desk<CAIXA> d(false);
        RTX_OPEN_DESK(d);
        CAIXA* s = d.s();
        QVERIFY(!control(s, u"A6"_s)->isEnabled());
        click(s, u"Command1"_s);
        typeInto(s, u"A6"_s, u"ALUGUEL"_s);
        typeAndLeave(s, u"A5"_s, u"1.234,56"_s);
        typeInto(s, u"a3"_s, u"NF 7"_s);
        click(s, u"Command16"_s);
        QCOMPARE(rowTexts(u"SELECT * FROM caixa"_s, {},
                          {u"codigo"_s, u"A1"_s, u"A2"_s, u"A3"_s, u"A5"_s, u"A6"_s}),
                 (QStringList{u"0000001"_s, formatDate(kToday), fin::debit, u"NF 7"_s,
                              u"1.234,56"_s, u"ALUGUEL"_s}));
        QCOMPARE(figures(s), (QStringList{u"0,00"_s, u"1.234,56"_s, u"0,00"_s, u"-1.234,56"_s}));
        auto* grid = control<MSFlexGrid>(s, u"Grid1"_s);
        QCOMPARE(grid->rows(), 2);

        // A picked row is deleted after the question.
        emit grid->rowDoubleClicked(1);
        script(d.prompts, {true});
        click(s, u"Command11"_s);
        QCOMPARE(d.prompts.texts(), (QStringList{u"Deseja realmente apagar este lançamento?"_s,
                                                 u"Exclusão realizada com sucesso."_s}));
        QCOMPARE(d.count(fin::cashTable), 0);
        QCOMPARE(grid->rows(), 1);
        QCOMPARE(figures(s), QStringList(4, u"0,00"_s));
    }

    // A past day typed and loaded shows the balance up to yesterday; found in the search it
    // shows its true one, and Iniciar right after falls back.
    void previousBalance() {
        Desk<CAIXA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        const QDate past = kToday.addDays(-3);
        postRow(past.addDays(-1), fin::credit, 100000);
        postRow(past, fin::debit, 30000);
        postRow(kToday.addDays(-1), fin::credit, 5000);
        QVERIFY(d.open());
        CAIXA* s = d.s();
        typeAndLeave(s, u"A1"_s, formatDate(past).remove(u'/'));
        click(s, u"Command1"_s);
        QCOMPARE(figures(s), (QStringList{u"750,00"_s, u"300,00"_s, u"0,00"_s, u"450,00"_s}));

        typeAndLeave(s, u"k1"_s, formatDate(past).remove(u'/'));
        typeAndLeave(s, u"k2"_s, formatDate(past).remove(u'/'));
        click(s, u"Command17"_s);
        auto* grid = control<DBGrid>(s, u"Grid2"_s);
        QCOMPARE(grid->recordCount(), 1);
        QCOMPARE(shownAll(s, {u"TT1"_s, u"TT2"_s}), (QStringList{u"300,00"_s, u"0,00"_s}));
        script(d.prompts, {true});
        emit grid->recordActivated(0);
        QCOMPARE(d.prompts.lastText(), u"Deseja consultar o caixa do dia: "_s + formatDate(past));
        QCOMPARE(figures(s), (QStringList{u"1.000,00"_s, u"300,00"_s, u"0,00"_s, u"700,00"_s}));
        click(s, u"Command1"_s);
        QCOMPARE(shown(s, u"sa"_s), u"750,00"_s);
    }

    // The bill's first check with its focus; the question of the cash on a settled bill: a
    // failure between the bill and its posting leaves neither and the screen keeps what was
    // typed; Yes posts exactly its row, No none; the code drawn shown.
    void billSave() {
        const fin::LedgerKind& k = fin::kindOf(fin::Ledger::Receivables);
        Desk<receber> d(false);
        RTX_OPEN_DESK(d);
        ScriptedPrompter& prompts = d.prompts;
        receber* s = d.s();
        choose(s, u"C2"_s, k.settled);
        // The checks' order is the core's; here the message and the focus it leaves.
        click(s, u"Command16"_s);
        QCOMPARE(prompts.texts(), QStringList{k.noSettledDate});
        QCOMPARE(QApplication::focusWidget(), control(s, u"C15"_s));
        typeAndLeave(s, u"C15"_s, u"10052024"_s);
        typeAndLeave(s, u"C16"_s, u"80,5"_s);
        typeAndLeave(s, u"C5"_s, u"CONTA DE LUZ"_s);
        typeAndLeave(s, u"C12"_s, u"1.080,50"_s);
        typeAndLeave(s, u"c3"_s, u"NF 9"_s);
        refuseInserts(d.inst.store(), fin::cashTable, true);
        script(prompts, {true});
        click(s, u"Command16"_s);
        QCOMPARE(prompts.count(Kind::Error), 1);
        QCOMPARE(d.count(k.table) + d.count(fin::cashTable), 0);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"C5"_s}), (QStringList{{}, u"CONTA DE LUZ"_s}));
        refuseInserts(d.inst.store(), fin::cashTable, false);

        script(prompts, {false});
        click(s, u"Command16"_s);
        QCOMPARE(prompts.texts(), (QStringList{k.cashQuestion, u"Operação realizada."_s}));
        QCOMPARE(shown(s, u"CODIGO"_s), u"00001"_s);
        QCOMPARE(d.count(fin::cashTable), 0);
        script(prompts, {true});
        click(s, u"Command16"_s);
        QCOMPARE(d.count(k.table), 1);
        QCOMPARE(
            rowTexts(u"SELECT * FROM caixa"_s, {}, {u"A1"_s, u"A2"_s, u"A3"_s, u"A5"_s, u"A6"_s}),
            (QStringList{formatDate(kToday), k.cashOperation, u"NF 9"_s, u"80,50"_s,
                         u"CONTA DE LUZ"_s}));
    }

    // The day's sheet after the printer dialog (whatever its answer) with the balances as
    // shown; the search's list on paper as the grid shows it.
    void prints() {
        Desk<CAIXA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        output::writeMissingLayouts(d.inst.folder());
        postRow(kToday.addDays(-1), fin::credit, 10000);
        postRow(kToday, fin::debit, 2500, u"GASOLINA"_s);
        postRow(kToday, fin::credit, 700);
        QVERIFY(d.open());
        CAIXA* s = d.s();
        Store& st = d.inst.store();
        click(s, u"Command1"_s);
        d.prompts.answerPrinter(false);
        click(s, u"Command5"_s);
        QCOMPARE(d.prompts.count(Kind::Printer), 1);
        QCOMPARE(d.prompts.count(Kind::Error), 0);
        QCOMPARE(st.count(fin::daySheetTable), 2);
        QCOMPARE(rowTexts(u"SELECT * FROM rel_caixa ORDER BY CODIGO"_s, {},
                          {u"CODIGO"_s, u"A2"_s, u"A6"_s, u"DE"_s, u"CR"_s, u"L"_s, u"SALDO"_s,
                           u"limi"_s}),
                 (QStringList{u"0000002"_s, fin::debit, u"GASOLINA"_s, u"25,00"_s, QString(),
                              u"D"_s, u"82,00"_s, u"100,00"_s}));
        QVERIFY(s->reportControl()->preview());
        s->reportControl()->preview()->close();

        click(s, u"Command4"_s);
        click(s, u"Command10"_s);
        QCOMPARE(st.count(fin::cashListTable), 3);
        // The paper has what the grid shows: its rows, in its order, with its columns.
        {
            auto* grid = s->findChild<DBGrid*>(u"Grid2"_s);
            QVERIFY(grid);
            QTemporaryDir pdfs;
            const QStringList paper = previewLines(s->reportControl(), pdfs.path(), u"TMP"_s);
            qsizetype previous = -1;
            for (int r = 0; r < grid->recordCount(); ++r) {
                QStringList cells;
                for (const QString& c : {u"A1"_s, u"A2"_s, u"A3"_s, u"A4"_s, u"A6"_s, u"A7"_s})
                    if (!grid->text(r, c).isEmpty()) cells << grid->text(r, c);
                const qint64 cents = grid->value(r, u"A5"_s).toLongLong();
                cells << formatMoney(cents) << grid->text(r, u"codigo"_s);
                const QString row = cells.join(u' ');
                const qsizetype at = paper.indexOf(row);
                QVERIFY2(at > previous, qPrintable(row + u"\n"_s + paper.join(u'\n')));
                previous = at;
            }
            QVERIFY(paper.contains(u"Total: 3 lançamento(s) 25,00 107,00"_s));
        }
        s->reportControl()->preview()->close();
    }
};

QTEST_MAIN(FinanceTest)
#include "tst_finance.moc"
