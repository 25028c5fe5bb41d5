// The dispatch screen driven as an operator drives it, one case of each rule through the
// seam: the road of one dispatch from the telephone to the posting, and each tool around it.

#include "dispatchdesk.h"
#include "store/formats.h"

#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

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

const QString kRefusal = u"Este atendimento já foi entregue e não pode ser alterado."_s;
const QString kPassword = u"Digite a senha de exclusão."_s;
const QStringList kPosting{u"atendimentos"_s, u"contas_pagar"_s, u"caixa"_s, u"contas_receber"_s};
const QStringList kChanged{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                           u"Atendimento alterado."_s, u"Imprimir atendimento?"_s};

} // namespace

class AtendimentoTest : public QObject, DispatchDesk {
    Q_OBJECT

    // The rows of the dispatches and of the three tables of their posting.
    QString counts() {
        QStringList out;
        for (const QString& t : kPosting)
            out << QString::number(rows(t));
        return out.join(u' ');
    }
    // A new dispatch for D'Avila on a screen opened over no dispatches at all.
    void openEmpty(const QString& payment) {
        for (const QString& t : kPosting)
            store().execute(u"DELETE FROM "_s + t);
        open();
        fillDispatch(payment);
    }
    // A column of the one dispatch there is.
    QString saved(const QString& column) {
        return store().scalar(u"SELECT %1 FROM atendimentos"_s.arg(column)).toString();
    }
    QString position(const QString& courier) {
        return store().scalar(u"SELECT C25 FROM motoqueiros WHERE C4 = ?"_s, {courier}).toString();
    }
    QString boardPosition(const QString& courier) {
        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        const int r = gridRow(board, courier);
        return r < 0 ? u"(ausente)"_s : board->textMatrix(r, 1);
    }

private slots:
    void init() { begin(); }
    void cleanup() { end(); }

    void openingAndTheFieldsAutomatisms() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        // A client by his telephone; one with remarks shows them.
        click(u"Command4"_s);
        type(u"a4"_s, clientPhone(u"ACME COMÉRCIO LTDA"_s));
        QCOMPARE(text(u"A6"_s), u"ACME COMÉRCIO LTDA"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Obs. Entregar somente em horário comercial."_s});
        // The courier's fee on leaving A18; autocomplete finds him by his first letters.
        type(u"A18"_s, u"fin"_s);
        QCOMPARE(fields(u"A18 VE VM"_s), u"FININHO|11,00|11,00"_s);
        // No caller-id device: a notice that says what to set, and nothing fails.
        QVERIFY(press(u"Command3"_s).value(0).contains(u"[bina]"_s));
    }

    void roadOfOneDispatch_data() {
        QTest::addColumn<QString>("payment");
        QTest::newRow("a vista") << u"A VISTA"_s;
        QTest::newRow("faturar") << u"FATURAR"_s;
    }

    void roadOfOneDispatch() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, payment);
        openEmpty(payment);
        QCOMPARE(press(u"Command16"_s, {true, false}),
                 (QStringList{u"Confirma movimentação financeira?"_s, u"Atendimento registrado."_s,
                              u"Imprimir atendimento?"_s}));
        const QString today = formatDate(QDate::currentDate());
        const bool cash = payment == u"A VISTA"_s;
        QCOMPARE(counts(), cash ? u"1 1 1 0"_s : u"1 1 0 1"_s);
        QCOMPARE(onlyRow(u"atendimentos"_s, u"a2 a6 a18 a19 a20 VE moto"_s),
                 u"%1|%2|BETO|22,50|%3|8,00|0,00"_s.arg(today, kDavila, payment));
        QCOMPARE(onlyRow(u"contas_pagar"_s, u"c1 c2 c3 c6 c12"_s),
                 u"%1|A pagar|0000001|BETO|8,00"_s.arg(today));
        if (cash)
            QCOMPARE(onlyRow(u"caixa"_s, u"A1 A2 A3 A5 A6"_s),
                     u"%1|CRÉDITO|0000001|22,50|%2"_s.arg(today, kDavila));
        else // courier and client change places
            QCOMPARE(onlyRow(u"contas_receber"_s, u"c1 c2 c3 c4 c6 c12"_s),
                     u"%1|A receber|0000001|BETO|%2|22,50"_s.arg(today, kDavila));
        QCOMPARE(position(u"BETO"_s) + u'|' + boardPosition(u"BETO"_s), u"A caminho|A caminho"_s);

        // A second Grava is a change, and its Yes posts nothing twice.
        QCOMPARE(press(u"Command16"_s, {true, true, false}), kChanged);
        QCOMPARE(counts(), cash ? u"1 1 1 0"_s : u"1 1 0 1"_s);
    }

    void failureInThePosting() {
        RTX_REQUIRE_INSTALL(*inst);
        openEmpty(u"FATURAR"_s);
        // The table of the second step is gone: the payable of the first step must not stay.
        store().execute(u"ALTER TABLE contas_receber RENAME TO contas_receber_fora"_s);
        press(u"Command16"_s, {true});
        QCOMPARE(prompts->count(Kind::Error), 1);
        QCOMPARE(rows(u"atendimentos"_s) + rows(u"contas_pagar"_s), 0);
        QCOMPARE(position(u"BETO"_s), u"Livre"_s);
        QCOMPARE(fields(u"CODIGO A6"_s), u"|"_s + kDavila); // nothing typed is lost

        // The screen goes on working once the table is back.
        store().execute(u"ALTER TABLE contas_receber_fora RENAME TO contas_receber"_s);
        press(u"Command16"_s, {true, false});
        QCOMPARE(text(u"CODIGO"_s), u"0000001"_s);
        QCOMPARE(counts(), u"1 1 0 1"_s);
    }

    // A fee typed for this dispatch stays when the cursor passes through ENTREGADOR; the
    // register's fee comes only with another courier. A loaded dispatch keeps its stored fee.
    void typedFeeKeptThroughEntregador() {
        RTX_REQUIRE_INSTALL(*inst);
        openEmpty(u"FATURAR"_s);
        type(u"VE"_s, u"9,50"_s);
        type(u"A18"_s, u"BETO"_s);
        press(u"Command16"_s, {true, false});
        QCOMPARE(onlyRow(u"contas_pagar"_s, u"c12"_s), u"9,50"_s);

        click(u"Command4"_s);
        screen->showDispatch(u"0000001"_s);
        type(u"A18"_s, u"BETO"_s);
        QCOMPARE(text(u"VE"_s), u"9,50"_s);
    }

    void gravaChecksStatusChangeAndDeliveredLock() {
        RTX_REQUIRE_INSTALL(*inst);
        openEmpty(u"FATURAR"_s);
        click(u"Command4"_s);
        // "Entregue" warns before the refusal for the client (the checks' order is the
        // core's), which leaves the focus on the field.
        type(u"ST"_s, u"Entregue"_s);
        const QString warning = u"Aviso: Ao gravar o atendimento na posição Entregue a mesma não "
                                u"poderá ser mais alterada."_s;
        QCOMPARE(press(u"Command16"_s),
                 (QStringList{warning, u"O campo [CLIENTE], não pode ficar em branco."_s}));
        QCOMPARE(screen->focusWidget(), get(u"A6"_s));
        QCOMPARE(rows(u"atendimentos"_s), 0);

        // A quote is data; the time is the time of saving; a No at the financial question
        // posts nothing.
        type(u"A6"_s, u"D'Avila"_s);
        type(u"ST"_s, u"A caminho"_s);
        get<QLineEdit>(u"a3"_s)->setText(u"00:00"_s);
        press(u"Command16"_s, {false, false});
        QCOMPARE(counts(), u"1 0 0 0"_s);
        QCOMPARE(saved(u"a6"_s), u"D'Avila"_s);
        QVERIFY(text(u"a3"_s) != u"00:00"_s);

        // The status change: the warning for "Entregue", the question.
        type(u"ST"_s, u"Entregue"_s);
        QCOMPARE(press(u"Command6"_s, {true}), (QStringList{warning, u"Confirma alteração?"_s,
                                                            u"Status alterado com sucesso."_s}));
        QCOMPARE(saved(u"ST"_s), u"Entregue"_s);

        // Delivered: the password in small letters passes to the questions; the status change
        // refuses outright.
        const QStringList lock{kRefusal,
                               u"Atendimento já foi entregue para alterar  digite a senha."_s};
        type(u"A6"_s, u"MUDADO"_s);
        QCOMPARE(press(u"Command16"_s, {true, false, false}, u"mariposa"_s), lock + kChanged);
        QCOMPARE(saved(u"a6"_s), u"MUDADO"_s);
        type(u"ST"_s, u"Cancelado"_s);
        QCOMPARE(press(u"Command6"_s, {true}), QStringList{kRefusal});
        QCOMPARE(saved(u"ST"_s), u"Entregue"_s);
    }

    void excluiAndWalk() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        const QString first = store().firstCode(u"atendimentos"_s);
        const QString last = store().lastCode(u"atendimentos"_s);
        auto walk = [&](const QString& button) {
            click(button);
            return text(u"CODIGO"_s);
        };
        // The ends stay.
        QCOMPARE(walk(u"Command1"_s), first);
        QCOMPARE(walk(u"Command12"_s), last);
        QCOMPARE(walk(u"Command14"_s), last);

        // Exclui: a wrong password ends silently; the right one in any case asks and deletes.
        QCOMPARE(press(u"Command11"_s, {}, u"abc"_s), QStringList{kPassword});
        const qint64 before = rows(u"atendimentos"_s);
        QCOMPARE(press(u"Command11"_s, {true}, u"MariPosa"_s),
                 (QStringList{kPassword, u"Confirma exclusão?"_s}));
        QCOMPARE(rows(u"atendimentos"_s), before - 1);
        QCOMPARE(text(u"CODIGO"_s), QString());
    }

    void courierBoardAndStatusRegistry() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        auto doubleClick = [&](const QString& courier, std::initializer_list<bool> answers) {
            script(*prompts, answers);
            doubleClickRow(board, gridRow(board, courier));
        };
        // Yes without a position: the message. Yes with one: the move.
        doubleClick(u"GORDO"_s, {true});
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Deseja mudar a posição do motoqueiro: GORDO"_s,
                              u"Primeiro defina a nova posição no campo nova posição."_s}));
        QCOMPARE(screen->focusWidget(), get(u"PZ"_s));
        type(u"PZ"_s, u"Livre"_s);
        doubleClick(u"GORDO"_s, {true});
        QCOMPARE(position(u"GORDO"_s) + u'|' + boardPosition(u"GORDO"_s), u"Livre|Livre"_s);

        // The status registry: a new word is added without a word; typing it again offers
        // to delete it, and Yes takes it out. A quote is a plain character.
        auto* st = get<QComboBox>(u"ST"_s);
        const QString word = u"Cliente d'Avila ausente"_s;
        QCOMPARE(press(u"Command23"_s, {}, word),
                 QStringList{u"Digite o novo status e clique no botão OK "_s});
        QVERIFY(st->findText(word) >= 0);
        press(u"Command23"_s, {true}, word);
        QCOMPARE(prompts->texts().value(1), u"Confirma exclusão: %1?"_s.arg(word));
        QCOMPARE(rows(u"status_atendimento"_s), 5);
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
        // By client, with a quote and in small letters; the value column as currency.
        get<QLineEdit>(u"Text1"_s)->setText(u"d'av"_s);
        QCOMPARE(allRows(grid), count(u"a6 = ?"_s, {kDavila}));
        const QString code = grid->text(0, u"CODIGO"_s);
        Recordset row = store().open(u"SELECT a19 FROM atendimentos WHERE CODIGO = ?"_s, {code});
        QCOMPARE(grid->text(0, u"a19"_s), formatCurrency(row.cents(u"a19"_s)));

        // Enter on a row opens the dispatch on the first tab.
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Return);
        QCOMPARE(get<SSTab>(u"SSTab1"_s)->tab(), 0);
        QCOMPARE(fields(u"CODIGO A6"_s), code + u'|' + kDavila);
        // A double click where there is no row leaves the dispatch shown whole.
        get<QLineEdit>(u"Text1"_s)->setText(u"zzz"_s);
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
        QCOMPARE(get<SSTab>(u"SSTab1"_s)->tab(), 0);
        QCOMPARE(fields(u"CODIGO A6"_s), code + u'|' + kDavila);

        // The period search adds its count to the count before; a date that is no date is
        // said so, with the focus on it, and nothing is counted.
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        const QDate today = QDate::currentDate();
        auto period = [&](const QString& from, const QString& to) {
            get<MaskEdBox>(u"k1"_s)->setText(from);
            get<MaskEdBox>(u"k2"_s)->setText(to);
            click(u"Command9"_s);
        };
        period(formatDate(today.addDays(-3)), formatDate(today));
        const int counted = count(u"a2 BETWEEN ? AND ?"_s, {today.addDays(-3), today});
        QCOMPARE(allRows(grid), counted);
        QCOMPARE(text(u"itt"_s), QString::number(counted));
        prompts->clear();
        period(formatDate(today), u"3102"_s);
        QCOMPARE(prompts->texts(), QStringList{badDateMessage(u"31/02"_s)});
        QCOMPARE(screen->focusWidget(), get(u"k2"_s));
        QCOMPARE(text(u"itt"_s), QString::number(counted));
    }

    // The client line's lookup fills the client's fields and presets pickup and delivery;
    // contacts and tasks stay for the operator.
    void clientLookup() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        click(u"Command4"_s);
        bool looked = false;
        onModal([&](QWidget* popup) {
            auto* grid = popup->findChild<DBGrid*>(u"DBGrid1"_s);
            QTest::keyClicks(popup->findChild<QLineEdit*>(u"X1"_s), u"d'a"_s);
            QCOMPARE(allRows(grid), 1);
            QTest::keyClick(grid, Qt::Key_Return);
            looked = true;
        });
        click(u"Command5"_s);
        QVERIFY(looked);
        Recordset client = store().open(u"SELECT * FROM clientes WHERE C5 = ?"_s, {kDavila});
        const QString address = client.text(u"C14"_s) + u"  "_s + client.text(u"C15"_s);
        QCOMPARE(fields(u"a4 A5 A6 A7 A8 A9 A10 A11 A13 A14 A15"_s),
                 QStringList({client.text(u"C8"_s),
                              client.text(u"C7"_s),
                              kDavila,
                              address,
                              client.text(u"C25"_s),
                              address,
                              {},
                              {},
                              address,
                              {},
                              {}})
                     .join(u'|'));
        QCOMPARE(prompts->texts(), QStringList()); // D'Avila has no remarks
    }
};

QTEST_MAIN(AtendimentoTest)
#include "tst_atendimento.moc"
