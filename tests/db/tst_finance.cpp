// The finance screens driven as the office uses them: the cash book's day with its figures,
// its entry, pick and delete, the previous balance of a day typed or found; the payables and
// receivables screen with its checks in order, the question of the cash and its posting,
// the typed code, the walk, the searches and the list at opening, a failure between a bill
// and its posting.

#include "dispatch/core/posting.h"
#include "finance/caixa.h"
#include "finance/contas.h"
#include "finance/core/ledger.h"
#include "finance/core/printouts.h"
#include "output/core/defaultlayouts.h"
#include "output/reportcontrol.h"
#include "pdftext.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QClipboard>

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

// The payables' screen (0) or the receivables' (1).
std::unique_ptr<ContasScreen> billScreen(int which) {
    if (which) return std::make_unique<receber>();
    return std::make_unique<Pagar>();
}

void choose(QWidget* s, const QString& combo, const QString& item) {
    auto* c = control<QComboBox>(s, combo);
    c->setCurrentIndex(c->findText(item));
}

} // namespace

class FinanceTest : public QObject {
    Q_OBJECT

private slots:
    // An empty book: "0,00" everywhere; the entry waits for Iniciar; the checks in order;
    // the first movement is 0000001 and shows in the day with the figures; a movement of
    // zero is a row; a picked row is deleted after the question, and the day loads again.
    void cashEntry() {
        Desk<CAIXA> d(false);
        RTX_OPEN_DESK(d);
        CAIXA* s = d.s();
        QCOMPARE(shownAll(s, {u"sa"_s, u"t1"_s, u"t2"_s, u"t3"_s, u"TT1"_s, u"TT2"_s, u"A5"_s}),
                 QStringList(7, u"0,00"_s));
        QCOMPARE(shown(s, u"A1"_s), formatDate(kToday));
        QCOMPARE(shown(s, u"dda"_s), formatDate(kToday.addDays(-1)));
        QVERIFY(!control(s, u"A6"_s)->isEnabled());
        click(s, u"Command1"_s);
        QVERIFY(control(s, u"A6"_s)->isEnabled());
        QCOMPARE(shown(s, u"A2"_s), fin::debit);

        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"O campo [Descritivo], não pode ficar em branco."_s);
        typeInto(s, u"A6"_s, u"ALUGUEL"_s);
        typeAndLeave(s, u"A5"_s, u"1.234,56"_s);
        typeInto(s, u"a3"_s, u"NF 7"_s);
        click(s, u"Command16"_s);
        QCOMPARE(rowTexts(u"SELECT * FROM caixa"_s, {},
                          {u"codigo"_s, u"A1"_s, u"A2"_s, u"A3"_s, u"A5"_s, u"A6"_s}),
                 (QStringList{u"0000001"_s, formatDate(kToday), fin::debit, u"NF 7"_s,
                              u"1.234,56"_s, u"ALUGUEL"_s}));
        QCOMPARE(figures(s), (QStringList{u"0,00"_s, u"1.234,56"_s, u"0,00"_s, u"-1.234,56"_s}));
        QCOMPARE(shownAll(s, {u"A5"_s, u"A6"_s, u"NN"_s}), (QStringList{u"0,00"_s, {}, {}}));

        choose(s, u"A2"_s, fin::credit);
        typeInto(s, u"A6"_s, u"ZERO"_s);
        click(s, u"Command16"_s);
        auto* grid = control<MSFlexGrid>(s, u"Grid1"_s);
        QCOMPARE(grid->rows(), 3);
        QCOMPARE(grid->textMatrix(2, 6), u"0,00"_s);

        // Picking the first row brings its words, not its amount; Exclui asks and deletes.
        emit grid->rowDoubleClicked(1);
        QCOMPARE(shownAll(s, {u"A2"_s, u"a3"_s, u"A6"_s, u"NN"_s, u"A5"_s}),
                 (QStringList{fin::debit, u"NF 7"_s, u"ALUGUEL"_s, u"0000001"_s, u"0,00"_s}));
        script(d.prompts, {true});
        click(s, u"Command11"_s);
        QCOMPARE(d.prompts.texts(), (QStringList{u"Deseja realmente apagar este lançamento?"_s,
                                                 u"Exclusão realizada com sucesso."_s}));
        QCOMPARE(d.count(fin::cashTable), 1);
        QCOMPARE(grid->rows(), 2);
        QCOMPARE(figures(s), QStringList(4, u"0,00"_s));
        // With nothing picked it asks, deletes nothing and loads the day again.
        script(d.prompts, {true});
        click(s, u"Command11"_s);
        QCOMPARE(d.prompts.texts(), QStringList{u"Deseja realmente apagar este lançamento?"_s});
        QCOMPARE(d.count(fin::cashTable), 1);
    }

    // A negative amount that reaches the field without the keys (put there by program) is
    // refused by the save's check, with the focus on the amount, and nothing is written.
    void cashRefusesNegativeAmount() {
        Desk<CAIXA> d(false);
        RTX_OPEN_DESK(d);
        CAIXA* s = d.s();
        click(s, u"Command1"_s);
        auto* amount = control<QLineEdit>(s, u"A5"_s);
        typeInto(s, u"A6"_s, u"ESTORNO"_s);
        amount->setText(u"-5,00"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), QStringList{u"O campo [Valor], não aceita valor negativo."_s});
        QCOMPARE(QApplication::focusWidget(), amount);
        QCOMPARE(d.count(fin::cashTable), 0);
        QCOMPARE(figures(s), QStringList(4, u"0,00"_s));
    }

    // A past day typed and loaded shows the balance up to yesterday; found in the search it
    // shows its true one, and Iniciar right after falls back; a group search asks for its
    // group.
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
        QCOMPARE(control<SSTab>(s, u"SSTab1"_s)->tab(), 0);
        QCOMPARE(shown(s, u"dda"_s), formatDate(kToday.addDays(-1)));
        click(s, u"Command1"_s);
        QCOMPARE(shown(s, u"sa"_s), u"750,00"_s);

        d.prompts.clear();
        click(s, u"Command6"_s);
        QCOMPARE(d.prompts.texts(), QStringList{u"Selecione o grupo antes."_s});
    }

    // The bill's first check, the question of the cash on a settled bill
    // (Yes posts exactly its row, No none), "Operação realizada.", the code drawn shown; the
    // walk and Exclui, which leaves the posting.
    void billSave() {
        // The receivables' screen; the payables' words are the core's.
        const fin::LedgerKind& k = fin::kindOf(fin::Ledger::Receivables);
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        std::unique_ptr<ContasScreen> screen = billScreen(1);
        QVERIFY(showActive(screen.get()));
        ContasScreen* s = screen.get();
        QCOMPARE(shownAll(s, {u"C2"_s, u"C12"_s, u"nr"_s, u"t1"_s}),
                 (QStringList{k.open, u"0,00"_s, u"0"_s, u"0,00"_s}));
        choose(s, u"C2"_s, k.settled);
        const auto saveSays = [&] {
            prompts.clear();
            click(s, u"Command16"_s);
            return prompts.lastText();
        };
        // The checks' order is the core's; here the message and the focus it leaves.
        QCOMPARE(saveSays(), k.noSettledDate);
        QCOMPARE(QApplication::focusWidget(), control(s, u"C15"_s));
        typeAndLeave(s, u"C15"_s, u"10052024"_s);
        typeAndLeave(s, u"C16"_s, u"80,5"_s);
        typeAndLeave(s, u"C5"_s, u"CONTA DE LUZ"_s);
        typeAndLeave(s, u"C12"_s, u"1.080,50"_s);
        typeAndLeave(s, u"c3"_s, u"NF 9"_s);

        script(prompts, {false});
        click(s, u"Command16"_s);
        QCOMPARE(prompts.texts(), (QStringList{k.cashQuestion, u"Operação realizada."_s}));
        QCOMPARE(shown(s, u"CODIGO"_s), u"00001"_s);
        QCOMPARE(inst.store().count(fin::cashTable), 0);
        script(prompts, {true});
        click(s, u"Command16"_s);
        QCOMPARE(inst.store().count(k.table), 1);
        QCOMPARE(
            rowTexts(u"SELECT * FROM caixa"_s, {}, {u"A1"_s, u"A2"_s, u"A3"_s, u"A5"_s, u"A6"_s}),
            (QStringList{formatDate(kToday), k.cashOperation, u"NF 9"_s, u"80,50"_s,
                         u"CONTA DE LUZ"_s}));

        // Novo keeps the status shown; the walk's buttons (their rules are the core's).
        choose(s, u"C2"_s, k.open);
        click(s, u"Command18"_s);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"C5"_s, u"C2"_s, u"C1"_s, u"nr"_s}),
                 (QStringList{{}, {}, k.open, formatDate(kToday), u"1"_s}));
        click(s, u"Command21"_s);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"C5"_s}), (QStringList{u"00001"_s, u"CONTA DE LUZ"_s}));
        script(prompts, {true});
        click(s, u"Command19"_s);
        QCOMPARE(prompts.texts(), QStringList{u"Confirma exclusão?"_s});
        QCOMPARE(inst.store().count(k.table), 0);
        QCOMPARE(inst.store().count(fin::cashTable), 1);
        QCOMPARE(shown(s, u"CODIGO"_s), QString());
    }

    // The list at opening holds today's new open bills, the dispatch's among them; the
    // names of either screen; a search, and a double click opens the bill.
    void billLists() {
        Desk<receber> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        dispatch::Posting p;
        p.number = u"0000031"_s;
        p.client = u"ACME"_s;
        p.courier = u"JOAO"_s;
        p.date = kToday;
        p.courierFee = 1200;
        p.clientValue = 4000;
        p.payment = u"FATURAR"_s;
        {
            UnitOfWork unit(st);
            dispatch::postDispatch(st, p);
            unit.commit();
        }
        st.insert(u"clientes"_s, {{u"CODIGO"_s, u"00001"_s}, {u"C5"_s, u"ACME"_s}});
        st.insert(u"fornecedores"_s, {{u"CODIGO"_s, u"00001"_s}, {u"C5"_s, u"POSTO BOM"_s}});
        QVERIFY(d.open());
        receber* s = d.s();
        DBGrid* list = s->list();
        QCOMPARE(list->recordCount(), 1);
        QCOMPARE(list->text(0, u"c6"_s), u"ACME"_s);
        QCOMPARE(shown(s, u"t1"_s), u"40,00"_s);
        Pagar payables;
        QCOMPARE(payables.list()->recordCount(), 1);
        QCOMPARE(payables.list()->text(0, u"c6"_s), u"JOAO"_s);
        // The names open with the clients, on both screens; the reload of the payables
        // brings the suppliers, the receivables' the clients again.
        QVERIFY(showActive(&payables));
        auto* names = control<QComboBox>(&payables, u"C6"_s);
        QCOMPARE(names->itemText(0), u"ACME"_s);
        click(&payables, u"Command3"_s);
        QCOMPARE(names->count(), 1);
        QCOMPARE(names->itemText(0), u"POSTO BOM"_s);
        QCOMPARE(control<QComboBox>(&payables, u"K3"_s)->itemText(0), u"POSTO BOM"_s);
        payables.close();
        QVERIFY(showActive(s));
        click(s, u"Command3"_s);
        QCOMPARE(control<QComboBox>(s, u"C6"_s)->itemText(0), u"ACME"_s);

        // A group search finds nothing of another group; the period's search finds it again.
        control<QComboBox>(s, u"K4"_s)->setEditText(u"Outro grupo"_s);
        click(s, u"Command13"_s);
        QCOMPARE(list->recordCount(), 0);
        click(s, u"Command17"_s);
        emit list->recordActivated(0);
        QCOMPARE(control<SSTab>(s, u"SSTab1"_s)->tab(), 0);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"c3"_s, u"C4"_s, u"C12"_s}),
                 (QStringList{u"00001"_s, u"0000031"_s, u"JOAO"_s, u"40,00"_s}));
    }

    // A failure between the bill and its posting leaves neither; the screen keeps what was
    // typed.
    void failedPosting() {
        Desk<Pagar> d(false);
        RTX_OPEN_DESK(d);
        Pagar* s = d.s();
        choose(s, u"C2"_s, u"Paga"_s);
        typeAndLeave(s, u"C15"_s, u"10052024"_s);
        typeAndLeave(s, u"C16"_s, u"5"_s);
        typeAndLeave(s, u"C5"_s, u"TAXA"_s);
        typeAndLeave(s, u"C12"_s, u"5"_s);
        refuseInserts(d.inst.store(), fin::cashTable, true);
        script(d.prompts, {true});
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QCOMPARE(d.count(u"contas_pagar"_s), 0);
        QCOMPARE(d.count(fin::cashTable), 0);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"C5"_s}), (QStringList{{}, u"TAXA"_s}));
        refuseInserts(d.inst.store(), fin::cashTable, false);
    }

    // The day's sheet after the printer dialog (whatever its answer) with the balances as
    // shown; the search's list with the operation word in its seven columns, also empty;
    // the bills' report under the ledger's heading. Each opens its preview.
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

        click(s, u"Command10"_s);
        QCOMPARE(st.count(fin::cashListTable), 0);
        QVERIFY(s->reportControl()->preview());
        s->reportControl()->preview()->close();
        click(s, u"Command4"_s);
        click(s, u"Command10"_s);
        QCOMPARE(st.count(fin::cashListTable), 3);
        QCOMPARE(rowTexts(u"SELECT * FROM rel_caixa_impressao WHERE A1 = ?"_s,
                          {formatDate(kToday.addDays(-1))},
                          {u"A2"_s, u"A3"_s, u"A4"_s, u"A5"_s, u"A6"_s, u"A7"_s, u"A8"_s}),
                 QStringList(7, fin::credit));
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

        for (int which = 0; which < 2; ++which) {
            std::unique_ptr<ContasScreen> bills = billScreen(which);
            const fin::LedgerKind& k = fin::kindOf(bills->ledger());
            {
                fin::Bill b;
                b.entered = kToday;
                b.due = kToday;
                b.status = k.open;
                b.description = u"CONTA"_s;
                b.amount = 1234;
                UnitOfWork unit(st);
                fin::saveBill(st, bills->ledger(), b, false);
                unit.commit();
            }
            QVERIFY(showActive(bills.get()));
            click(bills.get(), u"Command17"_s);
            click(bills.get(), u"Command14"_s);
            QCOMPARE(rowTexts(u"SELECT * FROM rel_contas"_s, {},
                              {u"nome"_s, u"DI"_s, u"A1"_s, u"A2"_s, u"A4"_s, u"A6"_s}),
                     (QStringList{k.reportName, formatDate(kToday), formatDate(kToday), u"12,34"_s,
                                  u"CONTA"_s, u"00001"_s}));
            QVERIFY(bills->reportControl()->preview());
            bills->reportControl()->preview()->close();
        }
    }
};

QTEST_MAIN(FinanceTest)
#include "tst_finance.moc"
