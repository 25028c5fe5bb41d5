// The dispatch screen driven as an operator drives it: the road of one dispatch from the
// telephone to the posting, the order of Grava's checks and questions, the delivered lock,
// a failure in the middle of the posting, deleting and walking, the courier board, the
// status registry, the search tab and the client lookup.

#include "dispatchdesk.h"
#include "session/inicio.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

// Every row a search gives, reading the grid's pages to the end.
int allRows(DBGrid* grid) {
    while (grid->hasMore())
        grid->fetchPage();
    return grid->recordCount();
}

const QString kWarning =
    u"Aviso: Ao gravar o atendimento na posição Entregue a mesma não poderá ser mais alterada."_s;
const QString kRefusal = u"Este atendimento já foi entregue e não pode ser alterado."_s;
const QString kPassword = u"Digite a senha de exclusão."_s;
// The dispatches and the three tables of their posting.
const QStringList kPosting{u"atendimentos"_s, u"contas_pagar"_s, u"caixa"_s, u"contas_receber"_s};

} // namespace

class AtendimentoTest : public QObject, DispatchDesk {
    Q_OBJECT

    void emptyDispatches() {
        for (const QString& t : kPosting)
            store().execute(u"DELETE FROM "_s + t);
    }
    // The rows of kPosting's tables, in its order.
    QString counts() {
        QStringList out;
        for (const QString& t : kPosting)
            out << QString::number(rows(t));
        return out.join(u' ');
    }

    QString saved(const QString& column, const QString& code) {
        return store()
            .scalar(u"SELECT %1 FROM atendimentos WHERE CODIGO = ?"_s.arg(column), {code})
            .toString();
    }

    QString position(const QString& courier) {
        return store().scalar(u"SELECT C25 FROM motoqueiros WHERE C4 = ?"_s, {courier}).toString();
    }

    QString boardPosition(const QString& courier) {
        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        const int r = gridRow(board, courier);
        return r < 0 ? u"(ausente)"_s : board->textMatrix(r, 1);
    }

    // The rows of a finance table that belong to a dispatch, by code: "status party amount",
    // ";" between them (the cash book's: "operation client amount").
    QString posted(const QString& table, const QString& number = u"0000001"_s) {
        const bool cash = table == u"caixa"_s;
        Recordset rs =
            store().open(cash ? u"SELECT * FROM caixa WHERE A3 = ? ORDER BY codigo"_s
                              : u"SELECT * FROM %1 WHERE c3 = ? ORDER BY codigo"_s.arg(table),
                         {number});
        QStringList out;
        for (; !rs.eof(); rs.moveNext())
            out << (cash ? QStringList{rs.text(u"A2"_s), rs.text(u"A6"_s), rs.text(u"A5"_s)}
                         : QStringList{rs.text(u"c2"_s), rs.text(u"c6"_s), rs.text(u"c12"_s)})
                       .join(u' ');
        return out.join(u"; "_s);
    }

    // Grava of a saved dispatch with Enter at each question but the print.
    QStringList saveAgain() { return press(u"Command16"_s, {true, true, false}); }

private slots:
    void init() { begin(); }
    void cleanup() { end(); }

    void openingNovoAndTheFieldsAutomatisms() {
        RTX_REQUIRE_INSTALL(*inst);
        QVERIFY(moduleFactory(u"Atendimento"_s) && moduleFactory(u"SERVI2"_s));
        open();
        const QString today = formatDate(QDate::currentDate());
        QCOMPARE(fields(u"A1 A2 A20 A19 VE itt k1 CODIGO"_s),
                 u"ANA PAULA|%1|FATURAR|0,00|0,00|0|%1|"_s.arg(today));
        QCOMPARE(text(u"nr"_s), QString::number(rows(u"atendimentos"_s)));
        QCOMPARE(screen->focusWidget(), get(u"A1"_s));
        // The board with the six couriers in service, the whole table in the grid of the
        // second tab, a page at a time.
        QCOMPARE(get<MSFlexGrid>(u"Grid1"_s)->rows(), 7);
        QCOMPARE(boardPosition(u"DUDA"_s), u"Em atendimento"_s);
        QCOMPARE(boardPosition(u"TONHO"_s), u"(ausente)"_s);
        auto* grid = get<DBGrid>(u"DBGrid1"_s);
        QCOMPARE(grid->recordCount(), DBGrid::pageSize());
        QCOMPARE(qint64(allRows(grid)), rows(u"atendimentos"_s));

        // Novo clears the dispatch but keeps the attendant, and puts the cursor on a4.
        screen->showDispatch(u"0000002"_s);
        QVERIFY(!text(u"A6"_s).isEmpty());
        get<QComboBox>(u"A1"_s)->setEditText(u"ADMIN"_s);
        screen->findChild<QAction*>(u"sd"_s)->trigger(); // the menu twin of Command4
        QCOMPARE(fields(u"CODIGO a4 A6 A17 A18 ST A21 A22 A1 VM"_s), u"||||||||ADMIN|0,00"_s);
        QCOMPARE(screen->focusWidget(), get(u"a4"_s));
        // Enter moves on from every field, the remarks included.
        get(u"A17"_s)->setFocus();
        QTest::keyClick(get(u"A17"_s), Qt::Key_Return);
        QCOMPARE(screen->focusWidget(), get(u"A22"_s));

        // An unknown number changes nothing and says nothing.
        type(u"A6"_s, u"KEEP"_s);
        type(u"a4"_s, u"0000"_s);
        QCOMPARE(text(u"A6"_s), u"KEEP"_s);
        QCOMPARE(prompts->texts(), QStringList());

        // A client by his telephone; one with remarks shows them.
        type(u"a4"_s, clientPhone(u"ACME COMÉRCIO LTDA"_s));
        QCOMPARE(text(u"A6"_s), u"ACME COMÉRCIO LTDA"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Obs. Entregar somente em horário comercial."_s});

        // The courier's fee on leaving A18; autocomplete finds him by his first letters.
        type(u"A18"_s, u"fin"_s);
        QCOMPARE(fields(u"A18 VE VM"_s), u"FININHO|11,00|11,00"_s);
        // An emptied date is today.
        prompts->clear();
        type(u"A2"_s, u"01022020"_s);
        get<MaskEdBox>(u"A2"_s)->clear();
        type(u"A2"_s, QString());
        QCOMPARE(text(u"A2"_s), today);

        // No caller-id device: a notice that says what to set, and nothing fails.
        QCOMPARE(press(u"Command3"_s).size(), 1);
        QCOMPARE(prompts->count(Kind::Notice), 1);
        QVERIFY(prompts->lastText().contains(u"[bina]"_s));
        QVERIFY(prompts->lastText().contains(u"rotalix.ini"_s));
    }

    void roadOfOneDispatch_data() {
        QTest::addColumn<QString>("payment");
        QTest::newRow("a vista") << u"A VISTA"_s;
        QTest::newRow("faturar") << u"FATURAR"_s;
    }

    void roadOfOneDispatch() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, payment);
        emptyDispatches();
        open();
        fillDispatch(payment);
        // The telephone filled the client, the service its text and value, the courier
        // his fee.
        QCOMPARE(fields(u"A6 A5 A7 A8"_s),
                 onlyRow(u"clientes WHERE C5 = ?"_s, u"C5 C7 C14 C25"_s, {kDavila}));
        QCOMPARE(fields(u"A21 A19 ST VE VM"_s), u"ENTREGA ZONA SUL|22,50|A caminho|8,00|8,00"_s);

        QCOMPARE(press(u"Command16"_s, {true, false}),
                 (QStringList{u"Confirma movimentação financeira?"_s, u"Atendimento registrado."_s,
                              u"Imprimir atendimento?"_s}));
        QCOMPARE(text(u"CODIGO"_s), u"0000001"_s);

        const QString today = formatDate(QDate::currentDate());
        const bool cash = payment == u"A VISTA"_s;
        QCOMPARE(counts(), cash ? u"1 1 1 0"_s : u"1 1 0 1"_s);
        QCOMPARE(
            onlyRow(u"atendimentos"_s, u"CODIGO a1 a2 a4 a6 a18 a19 a20 a21 ST VE moto"_s),
            u"0000001|ANA PAULA|%1|%2|%3|BETO|22,50|%4|ENTREGA ZONA SUL|A caminho|8,00|0,00"_s.arg(
                today, clientPhone(kDavila), kDavila, payment));
        QCOMPARE(onlyRow(u"contas_pagar"_s,
                         u"codigo c1 c2 c3 c4 c5 c6 c7 c8 c9 c10 c11 c12 c13 c14 c15 c16"_s),
                 u"00001|%1|A pagar|0000001|%2|Atendimento realizado.|BETO|Tx.entregador|||||"
                 u"8,00|%1||NULL|0,00"_s.arg(today, kDavila));
        if (cash)
            QCOMPARE(onlyRow(u"caixa"_s, u"codigo A1 A2 A3 A4 A5 A6 A7"_s),
                     u"0000001|%1|CRÉDITO|0000001|BETO|22,50|%2|Receita entrega/coleta"_s.arg(
                         today, kDavila));
        else // courier and client change places
            QCOMPARE(
                onlyRow(u"contas_receber"_s, u"codigo c1 c2 c3 c4 c6 c7 c12 c13 c16"_s),
                u"00001|%1|A receber|0000001|BETO|%2|Receita entrega/coleta|22,50|%1|0,00"_s.arg(
                    today, kDavila));
        QCOMPARE(position(u"BETO"_s), u"A caminho"_s);
        QCOMPARE(boardPosition(u"BETO"_s), u"A caminho"_s);

        // A second Grava is a change, and its Yes posts nothing twice.
        QCOMPARE(press(u"Command16"_s, {true, true, false}),
                 (QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Atendimento alterado."_s, u"Imprimir atendimento?"_s}));
        QCOMPARE(counts(), cash ? u"1 1 1 0"_s : u"1 1 0 1"_s);
    }

    void failureInThePosting() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        fillDispatch(u"FATURAR"_s);
        // The table of the second step is gone: the payable of the first step must not stay.
        store().execute(u"ALTER TABLE contas_receber RENAME TO contas_receber_fora"_s);
        press(u"Command16"_s, {true});
        QCOMPARE(prompts->count(Kind::Error), 1);
        QCOMPARE(prompts->texts(Kind::Question),
                 QStringList{u"Confirma movimentação financeira?"_s});
        QVERIFY(!prompts->texts(Kind::Notice).contains(u"Atendimento registrado."_s));
        QCOMPARE(rows(u"atendimentos"_s), 0);
        QCOMPARE(rows(u"contas_pagar"_s), 0);
        QCOMPARE(position(u"BETO"_s), u"Livre"_s);
        QCOMPARE(text(u"CODIGO"_s), QString());
        QCOMPARE(text(u"A6"_s), kDavila); // nothing typed is lost

        // The screen goes on working once the table is back.
        store().execute(u"ALTER TABLE contas_receber_fora RENAME TO contas_receber"_s);
        press(u"Command16"_s, {true, false});
        QCOMPARE(text(u"CODIGO"_s), u"0000001"_s);
        QCOMPARE(counts(), u"1 1 0 1"_s);
        QCOMPARE(position(u"BETO"_s), u"A caminho"_s);
    }

    // The double click in the empty part of the search grid leaves the delivered dispatch
    // on the first tab whole, number included: Grava then changes it, behind its password,
    // and posts nothing a second time.
    void emptyGridSpaceThenGrava() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        fillDispatch(u"FATURAR"_s);
        press(u"Command16"_s, {true, false});
        type(u"ST"_s, u"Entregue"_s);
        press(u"Command6"_s, {true});
        QCOMPARE(counts(), u"1 1 0 1"_s);

        get<SSTab>(u"SSTab1"_s)->setTab(1);
        auto* grid = get<DBGrid>(u"DBGrid1"_s);
        click(u"Command15"_s);
        QCOMPARE(allRows(grid), 1);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {},
                           QPoint(20, grid->viewport()->height() - 5));
        QCOMPARE(get<SSTab>(u"SSTab1"_s)->tab(), 0);
        QCOMPARE(fields(u"CODIGO A6 ST"_s), u"0000001|%1|Entregue"_s.arg(kDavila));

        // Without the password nothing; with it, a change of the one dispatch.
        QCOMPARE(press(u"Command16"_s, {true, true, false}),
                 (QStringList{kRefusal,
                              u"Atendimento já foi entregue para alterar  digite a senha."_s}));
        QCOMPARE(press(u"Command16"_s, {true, true, false}, u"mariposa"_s).mid(2),
                 (QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Atendimento alterado."_s, u"Imprimir atendimento?"_s}));
        QCOMPARE(counts(), u"1 1 0 1"_s);
        QCOMPARE(posted(u"contas_pagar"_s), u"A pagar BETO 8,00"_s);
        QCOMPARE(posted(u"contas_receber"_s), u"A receber %1 22,50"_s.arg(kDavila));
    }

    // Saved again after the move from invoice to cash, with Enter at every question: the
    // dispatch's money stands posted once, the receivable gone for the cash credit.
    void savedAgainPostsOnce() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        fillDispatch(u"FATURAR"_s);
        press(u"Command16"_s, {true, false});
        const QString payableCode = store().scalar(u"SELECT codigo FROM contas_pagar"_s).toString();
        get<QComboBox>(u"A20"_s)->setCurrentText(u"A VISTA"_s);
        QCOMPARE(saveAgain(),
                 (QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Atendimento alterado."_s, u"Imprimir atendimento?"_s}));
        QCOMPARE(posted(u"contas_pagar"_s), u"A pagar BETO 8,00"_s);
        QCOMPARE(posted(u"caixa"_s), u"CRÉDITO %1 22,50"_s.arg(kDavila));
        QCOMPARE(posted(u"contas_receber"_s), QString());
        QCOMPARE(store().scalar(u"SELECT codigo FROM contas_pagar"_s).toString(), payableCode);
        const QDate today = QDate::currentDate();
        QCOMPARE(store().cashTotals(today, today).credits, 2250);
    }

    // A payable paid and a receivable received before a change: the question says so and
    // what a Yes posts, only the difference.
    void settledThenAChange() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        fillDispatch(u"FATURAR"_s);
        press(u"Command16"_s, {true, false});
        const QDate today = QDate::currentDate();
        store().execute(u"UPDATE contas_pagar SET c2 = ?, c15 = ?, c16 = c12"_s,
                        {u"Paga"_s, today});
        store().execute(u"UPDATE contas_receber SET c2 = ?, c15 = ?, c16 = c12"_s,
                        {u"Recebida"_s, today});
        type(u"A19"_s, u"30,00"_s);
        type(u"VE"_s, u"10,00"_s);
        const QString question = u"A conta a pagar 00001 (BETO, 8,00) já foi paga.\n"
                                 u"Será lançada só a diferença: 2,00 a pagar a BETO.\n"
                                 u"A conta a receber 00001 (%1, 22,50) já foi recebida.\n"
                                 u"Será lançada só a diferença: 7,50 a receber de %1.\n\n"
                                 u"Confirma movimentação financeira?"_s.arg(kDavila);
        QCOMPARE(saveAgain().value(1), question);
        QCOMPARE(posted(u"contas_pagar"_s), u"Paga BETO 8,00; A pagar BETO 2,00"_s);
        QCOMPARE(posted(u"contas_receber"_s),
                 u"Recebida %1 22,50; A receber %1 7,50"_s.arg(kDavila));
    }

    // A fee typed for this dispatch stays when the cursor passes through ENTREGADOR; the
    // register's fee comes only with another courier. A loaded dispatch keeps its stored fee.
    void typedFeeKeptThroughEntregador() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        fillDispatch(u"FATURAR"_s);
        type(u"VE"_s, u"9,50"_s);
        get(u"A18"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(get(u"A18"_s), Qt::Key_Return);
        QApplication::processEvents();
        type(u"A18"_s, u"BETO"_s);
        QCOMPARE(fields(u"A18 VE"_s), u"BETO|9,50"_s);
        press(u"Command16"_s, {true, false});
        QCOMPARE(posted(u"contas_pagar"_s), u"A pagar BETO 9,50"_s);

        click(u"Command4"_s);
        screen->showDispatch(u"0000001"_s);
        type(u"A18"_s, u"BETO"_s);
        QCOMPARE(text(u"VE"_s), u"9,50"_s);
        type(u"A18"_s, u"FININHO"_s);
        QCOMPARE(fields(u"VE VM"_s), u"11,00|11,00"_s);
        type(u"A18"_s, u"BETO"_s);
        QCOMPARE(fields(u"VE VM"_s), u"8,00|8,00"_s);
    }

    void gravaChecksStatusChangeAndDeliveredLock() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        click(u"Command4"_s);
        // "Entregue" warns before the refusal for the client (the checks' order is the
        // core's), which leaves the focus on the field.
        type(u"ST"_s, u"Entregue"_s);
        QCOMPARE(press(u"Command16"_s),
                 (QStringList{kWarning, u"O campo [CLIENTE], não pode ficar em branco."_s}));
        QCOMPARE(screen->focusWidget(), get(u"A6"_s));

        type(u"A6"_s, u"D'Avila"_s);
        QCOMPARE(rows(u"atendimentos"_s), 0);

        type(u"ST"_s, u"A caminho"_s);

        // Nothing else is required; a quote is data; the time is the time of saving.
        get<QLineEdit>(u"a3"_s)->setText(u"00:00"_s);
        // A No at the financial question posts nothing.
        press(u"Command16"_s, {false, false});
        QCOMPARE(counts(), u"1 0 0 0"_s);
        const QString code = text(u"CODIGO"_s);
        QCOMPARE(saved(u"a6"_s, code), u"D'Avila"_s);
        QVERIFY(text(u"a3"_s) != u"00:00"_s);

        // A No at the change still asks the other two questions, and changes nothing.
        const QStringList questions{u"Confirma alteração?"_s,
                                    u"Confirma movimentação financeira?"_s,
                                    u"Imprimir atendimento?"_s};
        type(u"A6"_s, u"OUTRO NOME"_s);
        QCOMPARE(press(u"Command16"_s), questions);
        QCOMPARE(saved(u"a6"_s, code), u"D'Avila"_s);

        // The status change: a status first, the warning for "Entregue", the question.
        get<QComboBox>(u"ST"_s)->setEditText(QString());
        QCOMPARE(press(u"Command6"_s), QStringList{u"Primeiro defina o novo status."_s});
        QCOMPARE(screen->focusWidget(), get(u"ST"_s));
        type(u"ST"_s, u"Entregue"_s);
        QCOMPARE(press(u"Command6"_s, {true}), (QStringList{kWarning, u"Confirma alteração?"_s,
                                                            u"Status alterado com sucesso."_s}));
        QCOMPARE(saved(u"ST"_s, code), u"Entregue"_s);

        // Delivered: a wrong password ends Grava without a word.
        const QStringList lock{kRefusal,
                               u"Atendimento já foi entregue para alterar  digite a senha."_s};
        type(u"A6"_s, u"MUDADO"_s);
        QCOMPARE(press(u"Command16"_s, {}, u"errada"_s), lock);
        QCOMPARE(saved(u"a6"_s, code), u"D'Avila"_s);

        // The password in small letters passes: no warning, the checks, the questions.
        QCOMPARE(
            (press(u"Command16"_s, {true, false, false}, u"mariposa"_s)),
            (lock + QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                                u"Atendimento alterado."_s, u"Imprimir atendimento?"_s}));
        QCOMPARE(saved(u"a6"_s, code), u"MUDADO"_s);

        // The status change refuses a delivered dispatch outright.
        type(u"ST"_s, u"Cancelado"_s);
        QCOMPARE(press(u"Command6"_s, {true}), QStringList{kRefusal});
        QCOMPARE(saved(u"ST"_s, code), u"Entregue"_s);
    }

    void excluiAndWalk() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        const QString first = store().firstCode(u"atendimentos"_s);
        const QString last = store().lastCode(u"atendimentos"_s);
        // Walks with one button, gives the code shown.
        auto walk = [&](const QString& button) {
            click(button);
            return text(u"CODIGO"_s);
        };

        // Previous and next do nothing without a dispatch on the screen; the ends stay.
        QCOMPARE(walk(u"Command13"_s), QString());
        QCOMPARE(walk(u"Command14"_s), QString());
        QCOMPARE(walk(u"Command1"_s), first);
        QCOMPARE(walk(u"Command13"_s), first);
        QCOMPARE(walk(u"Command14"_s), store().nextCodeAfter(u"atendimentos"_s, first));
        QCOMPARE(walk(u"Command12"_s), last);
        QCOMPARE(walk(u"Command14"_s), last);
        QCOMPARE(walk(u"Command13"_s), store().previousCode(u"atendimentos"_s, last));
        QCOMPARE(text(u"A6"_s), saved(u"a6"_s, text(u"CODIGO"_s)));
        QCOMPARE(prompts->texts(), QStringList());

        // Exclui: a wrong password ends silently; the right one in any case asks and deletes.
        QCOMPARE(press(u"Command11"_s, {}, u"abc"_s), QStringList{kPassword});
        const qint64 before = rows(u"atendimentos"_s);
        QCOMPARE(press(u"Command11"_s, {true}, u"MariPosa"_s),
                 (QStringList{kPassword, u"Confirma exclusão?"_s}));
        QCOMPARE(rows(u"atendimentos"_s), before - 1);
        QCOMPARE(text(u"CODIGO"_s), QString());
        QCOMPARE(text(u"nr"_s), QString::number(before - 1));
        QCOMPARE(press(u"Command11"_s, {}, u"mariposa"_s),
                 (QStringList{kPassword, u"Primeiro faça a busca do atendimento."_s}));
    }

    void courierBoardAndStatusRegistry() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        const int gordo = gridRow(board, u"GORDO"_s);
        QVERIFY(gordo > 0);
        auto doubleClick = [&](int row, std::initializer_list<bool> answers) {
            script(*prompts, answers);
            doubleClickRow(board, row);
        };
        // No: nothing. Yes without a position: the message. Yes with one: the move.
        doubleClick(gordo, {false});
        QCOMPARE(prompts->texts(), QStringList{u"Deseja mudar a posição do motoqueiro: GORDO"_s});
        QCOMPARE(position(u"GORDO"_s), boardPosition(u"GORDO"_s));
        doubleClick(gordo, {true});
        QCOMPARE(prompts->texts().value(1),
                 u"Primeiro defina a nova posição no campo nova posição."_s);
        QCOMPARE(screen->focusWidget(), get(u"PZ"_s));
        type(u"PZ"_s, u"Li"_s);
        QCOMPARE(text(u"PZ"_s), u"Li"_s); // no completion here, unlike A1, ST and A18
        type(u"PZ"_s, u"Livre"_s);
        doubleClick(gordo, {true});
        QCOMPARE(position(u"GORDO"_s), u"Livre"_s);
        QCOMPARE(boardPosition(u"GORDO"_s), u"Livre"_s);
        QCOMPARE(text(u"PZ"_s), u"Livre"_s); // kept for the next courier

        // A courier who leaves the service leaves the board at the next fill, but stays in
        // the courier list of the screen.
        store().execute(u"UPDATE motoqueiros SET C1 = ? WHERE C4 = ?"_s,
                        {u"INATIVO"_s, u"GORDO"_s});
        doubleClick(1, {true});
        QCOMPARE(boardPosition(u"GORDO"_s), u"(ausente)"_s);
        QVERIFY(get<QComboBox>(u"A18"_s)->findText(u"GORDO"_s) >= 0);

        // The status registry: Cancel does nothing, a new word is added without a word.
        auto* st = get<QComboBox>(u"ST"_s);
        prompts->clear();
        prompts->answerCancel();
        click(u"Command23"_s);
        QCOMPARE(st->count(), 5);
        const QString word = u"Aguardando cliente"_s;
        QCOMPARE(press(u"Command23"_s, {}, word),
                 QStringList{u"Digite o novo status e clique no botão OK "_s});
        QVERIFY(st->findText(word) >= 0);
        QCOMPARE(rows(u"status_atendimento"_s), 6);

        // Typing it again offers to delete it: No keeps it, Yes takes it out.
        press(u"Command23"_s, {false}, word);
        QCOMPARE(prompts->texts().value(1), u"Confirma exclusão: Aguardando cliente?"_s);
        QCOMPARE(rows(u"status_atendimento"_s), 6);
        press(u"Command23"_s, {true}, word);
        QCOMPARE(prompts->texts().value(2), u"Operação realizada com sucesso."_s);
        QVERIFY(prompts->shown().value(2).information);
        QCOMPARE(rows(u"status_atendimento"_s), 5);
        QCOMPARE(st->count(), 5);

        // A quote is a plain character.
        press(u"Command23"_s, {}, u"Cliente d'Avila ausente"_s);
        QCOMPARE(prompts->count(Kind::Error), 0);
        QVERIFY(st->findText(u"Cliente d'Avila ausente"_s) >= 0);
    }

    void searchTab() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        auto* grid = get<DBGrid>(u"DBGrid1"_s);
        auto count = [&](const QString& where, const QVariantList& params) {
            return store()
                .scalar(u"SELECT COUNT(*) FROM atendimentos WHERE "_s + where, params)
                .toInt();
        };
        auto search = [&](const QString& box, const QString& typed) {
            get<QLineEdit>(box)->setText(typed);
            return allRows(grid);
        };

        // By client, with a quote and in small letters; the value column as currency.
        QCOMPARE(search(u"Text1"_s, u"d'av"_s), count(u"a6 = ?"_s, {kDavila}));
        const qint64 cents = store()
                                 .open(u"SELECT a19 FROM atendimentos WHERE CODIGO = ?"_s,
                                       {grid->text(0, u"CODIGO"_s)})
                                 .cents(u"a19"_s);
        QCOMPARE(grid->value(0, u"a19"_s).toLongLong(), cents);
        QCOMPARE(grid->text(0, u"a19"_s), formatCurrency(cents));
        QCOMPARE(search(u"Text1"_s, u"zzz"_s), 0);
        // A double click where there is no row: the first tab, as it was.
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        screen->showDispatch(u"0000003"_s);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
        QCOMPARE(get<SSTab>(u"SSTab1"_s)->tab(), 0);
        QCOMPARE(fields(u"CODIGO A6"_s), u"0000003|"_s + saved(u"a6"_s, u"0000003"_s));

        // By number, by status; each box alone, the last one decides.
        QCOMPARE(search(u"Text3"_s, u"000001"_s), 10);
        QCOMPARE(grid->text(0, u"CODIGO"_s), u"0000010"_s);
        QCOMPARE(qint64(search(u"Text3"_s, QString())), rows(u"atendimentos"_s));
        QCOMPARE(grid->text(0, u"CODIGO"_s), u"0000001"_s);
        get<QComboBox>(u"Combo1"_s)->setEditText(u"Entreg"_s);
        QCOMPARE(allRows(grid), count(u"ST = ?"_s, {u"Entregue"_s}));

        // The period search adds its count to the count before; a date that is no date is
        // said so, with the focus on it, and nothing is counted.
        const QDate today = QDate::currentDate();
        auto period = [&](const QString& from, const QString& to) {
            get<MaskEdBox>(u"k1"_s)->setText(from);
            get<MaskEdBox>(u"k2"_s)->setText(to);
            click(u"Command9"_s);
        };
        period(formatDate(today.addDays(-3)), formatDate(today.addDays(-1)));
        const int first = count(u"a2 BETWEEN ? AND ?"_s, {today.addDays(-3), today.addDays(-1)});
        QCOMPARE(allRows(grid), first);
        QCOMPARE(text(u"itt"_s), QString::number(first));
        period(formatDate(today), formatDate(today));
        const QString both = QString::number(first + count(u"a2 = ?"_s, {today}));
        QCOMPARE(text(u"itt"_s), both);
        prompts->clear();
        period(formatDate(today), u"3102"_s);
        QCOMPARE(prompts->texts(), QStringList{badDateMessage(u"31/02"_s)});
        QCOMPARE(screen->focusWidget(), get(u"k2"_s));
        QCOMPARE(text(u"itt"_s), both);
        get<MaskEdBox>(u"k2"_s)->setText(formatDate(today));
        click(u"Command15"_s);
        QCOMPARE(qint64(allRows(grid)), rows(u"atendimentos"_s));

        // A double click opens the dispatch on the first tab.
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        search(u"Text1"_s, u"D'AVILA"_s);
        const QString code = grid->text(0, u"CODIGO"_s);
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Return);
        QCOMPARE(get<SSTab>(u"SSTab1"_s)->tab(), 0);
        QCOMPARE(fields(u"CODIGO A6"_s), code + u'|' + kDavila);
    }

    void clientLookup_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("filled");
        QTest::newRow("client line")
            << u"Command5"_s
            << QStringList{u"a4"_s, u"A5"_s, u"A6"_s, u"A7"_s, u"A8"_s, u"A9"_s, u"A13"_s};
        QTest::newRow("pickup") << u"Command21"_s << QStringList{u"A9"_s, u"A11"_s};
        QTest::newRow("delivery") << u"Command22"_s << QStringList{u"A13"_s, u"A15"_s};
    }

    void clientLookup() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, button);
        QFETCH(QStringList, filled);
        open();
        click(u"Command4"_s);
        bool looked = false;
        onModal([&](QWidget* popup) {
            auto* grid = popup->findChild<DBGrid*>(u"DBGrid1"_s);
            QCOMPARE(qint64(allRows(grid)), rows(u"clientes"_s));
            QTest::keyClicks(popup->findChild<QLineEdit*>(u"X1"_s), u"d'a"_s);
            QCOMPARE(allRows(grid), 1);
            QCOMPARE(grid->text(0, u"C5"_s), kDavila);
            QTest::keyClick(grid, Qt::Key_Return);
            looked = true;
        });
        click(button);
        QVERIFY(looked);
        // What each caller fills; every other field of the client stays empty.
        Recordset client = store().open(u"SELECT * FROM clientes WHERE C5 = ?"_s, {kDavila});
        const QString phone = client.text(u"C8"_s);
        const QString address = client.text(u"C14"_s) + u"  "_s + client.text(u"C15"_s);
        const QMap<QString, QString> value{{u"a4"_s, phone},
                                           {u"A5"_s, client.text(u"C7"_s)},
                                           {u"A6"_s, kDavila},
                                           {u"A7"_s, address},
                                           {u"A8"_s, client.text(u"C25"_s)},
                                           {u"A9"_s, address},
                                           {u"A11"_s, phone},
                                           {u"A13"_s, address},
                                           {u"A15"_s, phone}};
        for (auto [field, expected] : value.asKeyValueRange())
            QCOMPARE(text(field), filled.contains(field) ? expected : QString());
        QCOMPARE(prompts->texts(), QStringList()); // D'Avila has no remarks
    }
};

QTEST_MAIN(AtendimentoTest)
#include "tst_atendimento.moc"
