// The dispatch screen driven as an operator drives it: the road of one dispatch from the
// telephone to the posting, the order of Grava's checks and questions, the delivered lock,
// a failure in the middle of the posting, deleting and walking, the courier board, the
// status registry, the search tab and the client lookup.

#include "dispatch/atendimento.h"
#include "scriptedprompter.h"
#include "session/inicio.h"
#include "session/kit/kit.h"
#include "session/modules.h"
#include "session/session.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QtTest>
#include <functional>
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

const QString kDavila = u"D'AVILA ADVOGADOS"_s;

// Runs an action on the modal window that is about to open, then closes it if the action
// left it open, so that a failed check never hangs the test.
void onModal(std::function<void(QWidget*)> action) {
    QTimer::singleShot(0, [action] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) {
            QFAIL("no modal window opened");
            return;
        }
        QPointer<QWidget> guard(modal);
        action(modal);
        if (guard && guard->isVisible()) guard->close();
    });
}

} // namespace

class AtendimentoTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<ScriptedPrompter> prompts;
    QPointer<Atendimento> screen;

    Store& store() { return inst->store(); }

    template <class T = QWidget> T* get(const QString& name) {
        T* w = screen->findChild<T*>(name);
        if (!w) qFatal("no control %s", qPrintable(name));
        return w;
    }
    QString text(const QString& name) { return screen->field(name); }
    void click(const QString& name) { get<QAbstractButton>(name)->click(); }

    // Puts the focus in a field, types over its text and leaves it with Tab.
    void type(const QString& name, const QString& typed, bool leave = true) {
        QWidget* w = get(name);
        w->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->lineEdit())
            combo->lineEdit()->selectAll();
        QTest::keyClicks(w, typed);
        if (leave) QTest::keyClick(w, Qt::Key_Tab);
        QApplication::processEvents();
    }

    void open() {
        hub()->nome()->setText(u"ANA PAULA"_s);
        screen = new Atendimento;
        screen->show();
        activate();
    }

    // The screen as the active window again (after a popup of its own closed).
    void activate() {
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen));
    }

    void emptyDispatches() {
        for (const QString& t :
             {u"atendimentos"_s, u"contas_pagar"_s, u"contas_receber"_s, u"caixa"_s})
            store().execute(u"DELETE FROM "_s + t);
    }

    QString clientPhone(const QString& name) {
        return store().scalar(u"SELECT C8 FROM clientes WHERE C5 = ?"_s, {name}).toString();
    }

    QString position(const QString& courier) {
        return store().scalar(u"SELECT C25 FROM motoqueiros WHERE C4 = ?"_s, {courier}).toString();
    }

    QString boardPosition(const QString& courier) {
        auto* grid = get<MSFlexGrid>(u"Grid1"_s);
        for (int r = 1; r < grid->rows(); ++r)
            if (grid->textMatrix(r, 0) == courier) return grid->textMatrix(r, 1);
        return u"(ausente)"_s;
    }

    qint64 rows(const QString& table) { return store().count(table); }

    // A new dispatch for D'Avila with a service, a status, a courier and a payment.
    void fillDispatch(const QString& payment) {
        click(u"Command4"_s);
        type(u"a4"_s, clientPhone(kDavila));
        onModal([](QWidget* table) {
            auto* grid = table->findChild<MSFlexGrid*>(u"Grid1"_s);
            QVERIFY(grid);
            for (int r = 1; r < grid->rows(); ++r)
                if (grid->textMatrix(r, 0) == u"ENTREGA ZONA SUL"_s) grid->setRow(r);
            QTest::keyClick(grid, Qt::Key_Return);
        });
        click(u"Command19"_s);
        activate();
        type(u"ST"_s, u"A c"_s);
        type(u"A18"_s, u"BETO"_s);
        get<QComboBox>(u"A20"_s)->setCurrentText(payment);
    }

    // A saved dispatch, straight in the table; gives its number.
    QString savedDispatch(const QString& status) {
        UnitOfWork unit(store());
        const QString code = store().nextCode(u"atendimentos"_s);
        store().execute(u"INSERT INTO atendimentos (CODIGO, a1, a2, a6, ST, a18, a19, a20, VE, "
                        u"moto) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"_s,
                        {code, u"ADMIN"_s, QDate::currentDate(), u"CASA DAS TINTAS"_s, status,
                         u"CHICO"_s, qint64(3000), u"FATURAR"_s, qint64(900), qint64(0)});
        unit.commit();
        return code;
    }

    void showDispatch(const QString& code) {
        screen->setField(u"CODIGO"_s, code);
        screen->busca();
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, true);
        prompts = std::make_unique<ScriptedPrompter>();
    }

    void cleanup() {
        delete screen.data();
        closeHub();
        prompts.reset();
        inst.reset();
    }

    void registeredWithTheHub() {
        RTX_REQUIRE_INSTALL(*inst);
        QVERIFY(moduleFactory(u"Atendimento"_s));
        QVERIFY(moduleFactory(u"SERVI2"_s));
        std::unique_ptr<QDialog> made(moduleFactory(u"Atendimento"_s)(nullptr));
        QCOMPARE(made->objectName(), u"Atendimento"_s);
    }

    void loadAndNovo() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        const QString today = formatDate(QDate::currentDate());
        QCOMPARE(text(u"A1"_s), u"ANA PAULA"_s);
        QCOMPARE(text(u"A2"_s), today);
        QCOMPARE(text(u"A20"_s), u"FATURAR"_s);
        QCOMPARE(text(u"A19"_s), u"0,00"_s);
        QCOMPARE(text(u"VE"_s), u"0,00"_s);
        QCOMPARE(text(u"itt"_s), u"0"_s);
        QCOMPARE(text(u"k1"_s), today);
        QCOMPARE(text(u"nr"_s), QString::number(rows(u"atendimentos"_s)));
        QCOMPARE(text(u"CODIGO"_s), QString());
        QCOMPARE(screen->focusWidget(), get(u"A1"_s));
        // The status list from its table, the board with the six couriers in service.
        auto* st = get<QComboBox>(u"ST"_s);
        QCOMPARE(st->count(), 5);
        QCOMPARE(st->itemText(0), u"A caminho"_s);
        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        QCOMPARE(board->rows(), 7);
        QCOMPARE(board->textMatrix(1, 0), u"BETO"_s);
        QCOMPARE(boardPosition(u"DUDA"_s), u"Em atendimento"_s);
        QCOMPARE(boardPosition(u"TONHO"_s), u"(ausente)"_s);
        QCOMPARE(get<QComboBox>(u"A18"_s)->count(), 6);
        // The whole table in the grid of the second tab, a page at a time.
        auto* grid = get<DBGrid>(u"DBGrid1"_s);
        QCOMPARE(grid->recordCount(), DBGrid::pageSize());
        QCOMPARE(qint64(allRows(grid)), rows(u"atendimentos"_s));

        // Novo clears the dispatch but keeps the attendant, and puts the cursor on a4.
        showDispatch(u"0000002"_s);
        QVERIFY(!text(u"A6"_s).isEmpty());
        get<QComboBox>(u"A1"_s)->setEditText(u"ADMIN"_s);
        click(u"Command4"_s);
        for (const QString& name :
             {u"CODIGO"_s, u"a4"_s, u"A6"_s, u"A17"_s, u"A18"_s, u"ST"_s, u"A21"_s, u"A22"_s})
            QVERIFY2(text(name).isEmpty(), qPrintable(name));
        QCOMPARE(text(u"A1"_s), u"ADMIN"_s);
        QCOMPARE(text(u"VM"_s), u"0,00"_s);
        QCOMPARE(screen->focusWidget(), get(u"a4"_s));
        // Menu twins call their buttons.
        type(u"A6"_s, u"X"_s);
        screen->findChild<QAction*>(u"sd"_s)->trigger();
        QCOMPARE(text(u"A6"_s), QString());
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
        QCOMPARE(text(u"A6"_s), kDavila);
        Recordset client = store().open(u"SELECT * FROM clientes WHERE C5 = ?"_s, {kDavila});
        QCOMPARE(text(u"A5"_s), client.text(u"C7"_s));
        QCOMPARE(text(u"A7"_s), client.text(u"C14"_s));
        QCOMPARE(text(u"A8"_s), client.text(u"C25"_s));
        QCOMPARE(text(u"A21"_s), u"ENTREGA ZONA SUL"_s);
        QCOMPARE(text(u"A19"_s), u"22,50"_s);
        QCOMPARE(text(u"ST"_s), u"A caminho"_s);
        QCOMPARE(text(u"VE"_s), u"8,00"_s);
        QCOMPARE(text(u"VM"_s), u"8,00"_s);
        prompts->clear();

        prompts->answerYes(); // financial movement
        prompts->answerNo();  // print
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Confirma movimentação financeira?"_s, u"Atendimento registrado."_s,
                              u"Imprimir atendimento?"_s}));
        QCOMPARE(text(u"CODIGO"_s), u"0000001"_s);

        const QDate today = QDate::currentDate();
        Recordset row = store().open(u"SELECT * FROM atendimentos"_s);
        QCOMPARE(row.recordCount(), 1);
        QCOMPARE(row.text(u"CODIGO"_s), u"0000001"_s);
        QCOMPARE(row.text(u"a1"_s), u"ANA PAULA"_s);
        QCOMPARE(*row.date(u"a2"_s), today);
        QCOMPARE(row.text(u"a4"_s), clientPhone(kDavila));
        QCOMPARE(row.text(u"a6"_s), kDavila);
        QCOMPARE(row.text(u"a18"_s), u"BETO"_s);
        QCOMPARE(row.cents(u"a19"_s), 2250);
        QCOMPARE(row.text(u"a20"_s), payment);
        QCOMPARE(row.text(u"a21"_s), u"ENTREGA ZONA SUL"_s);
        QCOMPARE(row.text(u"ST"_s), u"A caminho"_s);
        QCOMPARE(row.cents(u"VE"_s), 800);
        QCOMPARE(row.cents(u"moto"_s), 0);
        QVERIFY(!row.isNull(u"moto"_s));

        Recordset pay = store().open(u"SELECT * FROM contas_pagar"_s);
        QCOMPARE(pay.recordCount(), 1);
        QCOMPARE(pay.text(u"codigo"_s), u"00001"_s);
        QCOMPARE(*pay.date(u"c1"_s), today);
        QCOMPARE(pay.text(u"c2"_s), u"A pagar"_s);
        QCOMPARE(pay.text(u"c3"_s), u"0000001"_s);
        QCOMPARE(pay.text(u"c4"_s), kDavila);
        QCOMPARE(pay.text(u"c5"_s), u"Atendimento realizado."_s);
        QCOMPARE(pay.text(u"c6"_s), u"BETO"_s);
        QCOMPARE(pay.text(u"c7"_s), u"Tx.entregador"_s);
        for (const QString& c : {u"c8"_s, u"c9"_s, u"c10"_s, u"c11"_s, u"c14"_s}) {
            QVERIFY2(!pay.isNull(c), qPrintable(c));
            QCOMPARE(pay.text(c), QString());
        }
        QCOMPARE(pay.cents(u"c12"_s), 800);
        QCOMPARE(*pay.date(u"c13"_s), today);
        QVERIFY(pay.isNull(u"c15"_s));
        QCOMPARE(pay.cents(u"c16"_s), 0);

        if (payment == u"A VISTA"_s) {
            QCOMPARE(rows(u"contas_receber"_s), 0);
            Recordset cash = store().open(u"SELECT * FROM caixa"_s);
            QCOMPARE(cash.recordCount(), 1);
            QCOMPARE(cash.text(u"codigo"_s), u"0000001"_s);
            QCOMPARE(*cash.date(u"A1"_s), today);
            QCOMPARE(cash.text(u"A2"_s), u"CRÉDITO"_s);
            QCOMPARE(cash.text(u"A3"_s), u"0000001"_s);
            QCOMPARE(cash.text(u"A4"_s), u"BETO"_s);
            QCOMPARE(cash.cents(u"A5"_s), 2250);
            QCOMPARE(cash.text(u"A6"_s), kDavila);
            QCOMPARE(cash.text(u"A7"_s), u"Receita entrega/coleta"_s);
        } else {
            QCOMPARE(rows(u"caixa"_s), 0);
            Recordset due = store().open(u"SELECT * FROM contas_receber"_s);
            QCOMPARE(due.recordCount(), 1);
            QCOMPARE(due.text(u"codigo"_s), u"00001"_s);
            QCOMPARE(*due.date(u"c1"_s), today);
            QCOMPARE(due.text(u"c2"_s), u"A receber"_s);
            QCOMPARE(due.text(u"c3"_s), u"0000001"_s);
            QCOMPARE(due.text(u"c4"_s), u"BETO"_s); // courier and client change places
            QCOMPARE(due.text(u"c6"_s), kDavila);
            QCOMPARE(due.text(u"c7"_s), u"Receita entrega/coleta"_s);
            QCOMPARE(due.cents(u"c12"_s), 2250);
            QCOMPARE(*due.date(u"c13"_s), today);
            QCOMPARE(due.cents(u"c16"_s), 0);
        }
        QCOMPARE(position(u"BETO"_s), u"A caminho"_s);
        QCOMPARE(boardPosition(u"BETO"_s), u"A caminho"_s);

        // A second Grava is a change, and a second Yes posts a second time.
        prompts->clear();
        prompts->answerYes();
        prompts->answerYes();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Atendimento alterado."_s, u"Imprimir atendimento?"_s}));
        QCOMPARE(rows(u"atendimentos"_s), 1);
        QCOMPARE(rows(u"contas_pagar"_s), 2);
        QCOMPARE(rows(payment == u"A VISTA"_s ? u"caixa"_s : u"contas_receber"_s), 2);
        QCOMPARE(store()
                     .scalar(u"SELECT COUNT(*) FROM contas_pagar WHERE c3 = ?"_s, {u"0000001"_s})
                     .toInt(),
                 2);
        QCOMPARE(prompts->unanswered(), 0);
    }

    void postingRules() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        // A zero fee posts no payable; a cash dispatch of any value posts its cash row.
        fillDispatch(u"A VISTA"_s);
        type(u"VE"_s, u"0"_s);
        prompts->answerYes();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(rows(u"contas_pagar"_s), 0);
        QCOMPARE(rows(u"caixa"_s), 1);
        QCOMPARE(rows(u"contas_receber"_s), 0);

        // A No at the financial question posts nothing and leaves the courier alone.
        store().execute(u"UPDATE motoqueiros SET C25 = ?"_s, {u"Faltou"_s});
        fillDispatch(u"FATURAR"_s);
        prompts->answerNo();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(text(u"CODIGO"_s), u"0000002"_s);
        QCOMPARE(rows(u"contas_receber"_s), 0);
        QCOMPARE(position(u"BETO"_s), u"Faltou"_s);

        // A payment that is neither: the payable only. A courier not in the register keeps
        // the typed fee, and nobody moves.
        click(u"Command4"_s);
        type(u"A6"_s, u"CLIENTE AVULSO"_s);
        type(u"ST"_s, u"Outros"_s);
        type(u"VE"_s, u"12,5"_s);
        type(u"A18"_s, u"NINGUEM"_s);
        QCOMPARE(text(u"VM"_s), u"0,00"_s);
        QCOMPARE(text(u"VE"_s), u"12,50"_s);
        get<QComboBox>(u"A20"_s)->setCurrentIndex(-1);
        prompts->answerYes();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(rows(u"contas_pagar"_s), 1);
        QCOMPARE(store().scalar(u"SELECT c12 FROM contas_pagar"_s).toLongLong(), 1250);
        QCOMPARE(rows(u"caixa"_s), 1);
        QCOMPARE(rows(u"contas_receber"_s), 0);
        QCOMPARE(position(u"BETO"_s), u"Faltou"_s);
    }

    void failureInThePosting_data() {
        QTest::addColumn<QString>("payment");
        QTest::addColumn<QString>("table");
        QTest::newRow("cash refused") << u"A VISTA"_s << u"caixa"_s;
        QTest::newRow("receivable refused") << u"FATURAR"_s << u"contas_receber"_s;
    }

    void failureInThePosting() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, payment);
        QFETCH(QString, table);
        emptyDispatches();
        open();
        fillDispatch(payment);
        // The table of the second step is gone: the payable of the first step must not stay.
        store().execute(u"ALTER TABLE %1 RENAME TO %1_fora"_s.arg(table));
        prompts->clear();
        prompts->answerYes();
        click(u"Command16"_s);
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
        store().execute(u"ALTER TABLE %1_fora RENAME TO %1"_s.arg(table));
        prompts->clear();
        prompts->answerYes();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(prompts->count(Kind::Error), 0);
        QCOMPARE(text(u"CODIGO"_s), u"0000001"_s);
        QCOMPARE(rows(u"atendimentos"_s), 1);
        QCOMPARE(rows(u"contas_pagar"_s), 1);
        QCOMPARE(rows(table), 1);
        QCOMPARE(position(u"BETO"_s), u"A caminho"_s);
    }

    void gravaChecksInOrder() {
        RTX_REQUIRE_INSTALL(*inst);
        emptyDispatches();
        open();
        click(u"Command4"_s);
        get<QComboBox>(u"A1"_s)->setEditText(QString());
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 QStringList{u"O campo [ATENDIDO POR], não pode ficar em branco."_s});
        QCOMPARE(screen->focusWidget(), get(u"A1"_s));

        // "Entregue" warns before the refusal for the client.
        prompts->clear();
        type(u"A1"_s, u"ANA"_s);
        type(u"ST"_s, u"Entregue"_s);
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Aviso: Ao gravar o atendimento na posição Entregue a mesma não "
                              u"poderá ser mais alterada."_s,
                              u"O campo [CLIENTE], não pode ficar em branco."_s}));
        QCOMPARE(screen->focusWidget(), get(u"A6"_s));

        prompts->clear();
        type(u"A6"_s, u"D'Avila"_s);
        get<QComboBox>(u"ST"_s)->setEditText(QString());
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(), QStringList{u"O campo [STATUS], não pode ficar em branco."_s});
        QCOMPARE(screen->focusWidget(), get(u"ST"_s));
        QCOMPARE(rows(u"atendimentos"_s), 0);

        // Nothing else is required; a quote is data; the time is the time of saving.
        prompts->clear();
        type(u"ST"_s, u"Outros"_s);
        get<QLineEdit>(u"a3"_s)->setText(u"00:00"_s);
        prompts->answerNo();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(rows(u"atendimentos"_s), 1);
        QCOMPARE(store().scalar(u"SELECT a6 FROM atendimentos"_s).toString(), u"D'Avila"_s);
        QVERIFY(text(u"a3"_s) != u"00:00"_s);

        // A No at the change still asks the other two questions, and changes nothing.
        prompts->clear();
        type(u"A6"_s, u"OUTRO NOME"_s);
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Imprimir atendimento?"_s}));
        QCOMPARE(store().scalar(u"SELECT a6 FROM atendimentos"_s).toString(), u"D'Avila"_s);

        // A row deleted meanwhile: no change, no word, the financial question still comes.
        store().execute(u"DELETE FROM atendimentos"_s);
        prompts->clear();
        prompts->answerYes();
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Imprimir atendimento?"_s}));
        QCOMPARE(rows(u"atendimentos"_s), 0);

        // A half-typed date becomes today, as when the field is left.
        click(u"Command4"_s);
        type(u"A6"_s, u"X"_s);
        type(u"ST"_s, u"Outros"_s);
        get<MaskEdBox>(u"A2"_s)->setText(u"3102"_s);
        prompts->answerNo();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(text(u"A2"_s), formatDate(QDate::currentDate()));
        QCOMPARE(prompts->count(Kind::Error), 0);
    }

    void deliveredLock() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        const QString code = savedDispatch(u"Entregue"_s);
        showDispatch(code);
        QCOMPARE(text(u"A6"_s), u"CASA DAS TINTAS"_s);
        type(u"A6"_s, u"MUDADO"_s);

        // A wrong password ends Grava without a word.
        prompts->answerText(u"errada"_s);
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Este atendimento já foi entregue e não pode ser alterado."_s,
                              u"Atendimento já foi entregue para alterar  digite a senha."_s}));
        QCOMPARE(prompts->shown().at(1).title, u"Senha de alteração"_s);
        prompts->clear();
        prompts->answerCancel();
        click(u"Command16"_s);
        QCOMPARE(prompts->count(Kind::Prompt), 1);
        QCOMPARE(prompts->texts().size(), 2);

        // The password in any case of letters passes: no warning, the checks, the questions.
        prompts->clear();
        prompts->answerText(u"mariposa"_s);
        prompts->answerYes();
        prompts->answerNo();
        prompts->answerNo();
        click(u"Command16"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Este atendimento já foi entregue e não pode ser alterado."_s,
                              u"Atendimento já foi entregue para alterar  digite a senha."_s,
                              u"Confirma alteração?"_s, u"Confirma movimentação financeira?"_s,
                              u"Atendimento alterado."_s, u"Imprimir atendimento?"_s}));
        QCOMPARE(
            store().scalar(u"SELECT a6 FROM atendimentos WHERE CODIGO = ?"_s, {code}).toString(),
            u"MUDADO"_s);

        // The status change refuses a delivered dispatch outright.
        prompts->clear();
        type(u"ST"_s, u"Cancelado"_s);
        click(u"Command6"_s);
        QCOMPARE(prompts->texts(),
                 QStringList{u"Este atendimento já foi entregue e não pode ser alterado."_s});
    }

    void statusChange() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        const QString code = savedDispatch(u"A caminho"_s);
        showDispatch(code);
        get<QComboBox>(u"ST"_s)->setEditText(QString());
        click(u"Command6"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Primeiro defina o novo status."_s});
        QCOMPARE(screen->focusWidget(), get(u"ST"_s));

        prompts->clear();
        type(u"ST"_s, u"Entregue"_s);
        prompts->answerYes();
        click(u"Command6"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Aviso: Ao gravar o atendimento na posição Entregue a mesma não "
                              u"poderá ser mais alterada."_s,
                              u"Confirma alteração?"_s, u"Status alterado com sucesso."_s}));
        QCOMPARE(
            store().scalar(u"SELECT ST FROM atendimentos WHERE CODIGO = ?"_s, {code}).toString(),
            u"Entregue"_s);

        // With no dispatch on the screen the question comes and nothing is said after it.
        click(u"Command4"_s);
        prompts->clear();
        type(u"ST"_s, u"Outros"_s);
        prompts->answerYes();
        click(u"Command6"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Confirma alteração?"_s});
    }

    void excluiAndWalk() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        const QString first = store().firstCode(u"atendimentos"_s);
        const QString last = store().lastCode(u"atendimentos"_s);

        // Previous and next do nothing without a dispatch on the screen.
        click(u"Command13"_s);
        click(u"Command14"_s);
        QCOMPARE(text(u"CODIGO"_s), QString());
        click(u"Command1"_s);
        QCOMPARE(text(u"CODIGO"_s), first);
        QVERIFY(!text(u"A6"_s).isEmpty());
        click(u"Command13"_s); // before the first: stays
        QCOMPARE(text(u"CODIGO"_s), first);
        click(u"Command14"_s);
        QCOMPARE(text(u"CODIGO"_s), store().nextCodeAfter(u"atendimentos"_s, first));
        click(u"Command12"_s);
        QCOMPARE(text(u"CODIGO"_s), last);
        click(u"Command14"_s); // past the end: stays
        QCOMPARE(text(u"CODIGO"_s), last);
        click(u"Command13"_s);
        QCOMPARE(text(u"CODIGO"_s), store().previousCode(u"atendimentos"_s, last));
        QCOMPARE(text(u"A6"_s),
                 store()
                     .scalar(u"SELECT a6 FROM atendimentos WHERE CODIGO = ?"_s, {text(u"CODIGO"_s)})
                     .toString());
        QCOMPARE(prompts->texts(), QStringList());

        // Exclui: a wrong password ends silently; the right one asks and deletes.
        prompts->answerText(u"abc"_s);
        click(u"Command11"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Digite a senha de exclusão."_s});
        QCOMPARE(prompts->shown().at(0).title, u"Senha"_s);
        const qint64 before = rows(u"atendimentos"_s);
        prompts->clear();
        prompts->answerText(u"MariPosa"_s);
        prompts->answerYes();
        click(u"Command11"_s);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Digite a senha de exclusão."_s, u"Confirma exclusão?"_s}));
        QCOMPARE(rows(u"atendimentos"_s), before - 1);
        QCOMPARE(text(u"CODIGO"_s), QString());
        QCOMPARE(text(u"nr"_s), QString::number(before - 1));

        prompts->clear();
        prompts->answerText(u"mariposa"_s);
        click(u"Command11"_s);
        QCOMPARE(prompts->texts(), (QStringList{u"Digite a senha de exclusão."_s,
                                                u"Primeiro faça a busca do atendimento."_s}));

        // Next on a dispatch that is gone offers to delete it.
        showDispatch(last);
        store().execute(u"DELETE FROM atendimentos WHERE CODIGO = ?"_s, {last});
        prompts->clear();
        click(u"Command14"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Digite a senha de exclusão."_s});
    }

    void telephoneAndCourierFill() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        click(u"Command4"_s);
        // An unknown number changes nothing and says nothing.
        type(u"A6"_s, u"KEEP"_s);
        type(u"a4"_s, u"0000"_s);
        QCOMPARE(text(u"A6"_s), u"KEEP"_s);
        QCOMPARE(prompts->texts(), QStringList());

        // D'Avila by his telephone; a client with remarks shows them.
        type(u"a4"_s, clientPhone(kDavila));
        QCOMPARE(text(u"A6"_s), kDavila);
        QCOMPARE(text(u"A9"_s), QString()); // the fill leaves pickup and delivery alone
        type(u"a4"_s, clientPhone(u"ACME COMÉRCIO LTDA"_s));
        QCOMPARE(text(u"A6"_s), u"ACME COMÉRCIO LTDA"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Obs. Entregar somente em horário comercial."_s});

        // The courier's fee on leaving A18; autocomplete finds him by his first letters.
        type(u"A18"_s, u"fin"_s);
        QCOMPARE(text(u"A18"_s), u"FININHO"_s);
        QCOMPARE(text(u"VE"_s), u"11,00"_s);
        QCOMPARE(text(u"VM"_s), u"11,00"_s);
        // Money fields take only what money can hold, and an empty one becomes 0,00.
        type(u"A19"_s, u"1a2,3,4-"_s);
        QCOMPARE(text(u"A19"_s), u"12,34"_s);
        get<MaskEdBox>(u"A19"_s)->setText(QString());
        get(u"A19"_s)->setFocus();
        QTest::keyClick(get(u"A19"_s), Qt::Key_Tab);
        QCOMPARE(text(u"A19"_s), u"0,00"_s);
        // A date that is no date becomes today.
        type(u"A2"_s, u"31022020"_s);
        QCOMPARE(text(u"A2"_s), formatDate(QDate::currentDate()));
        type(u"A2"_s, u"01022020"_s);
        QCOMPARE(text(u"A2"_s), u"01/02/2020"_s);
    }

    void courierBoard() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        int gordo = 0;
        for (int r = 1; r < board->rows(); ++r)
            if (board->textMatrix(r, 0) == u"GORDO"_s) gordo = r;
        QVERIFY(gordo > 0);
        auto doubleClick = [&](int row) {
            const QRect cell = board->visualItemRect(board->item(row - 1, 0));
            // A double click is a press and release, then the second press.
            QTest::mouseClick(board->viewport(), Qt::LeftButton, {}, cell.center());
            QTest::mouseDClick(board->viewport(), Qt::LeftButton, {}, cell.center());
        };
        // No: nothing. Yes without a position: the message. Yes with one: the move.
        prompts->answerNo();
        doubleClick(gordo);
        QCOMPARE(prompts->texts(), QStringList{u"Deseja mudar a posição do motoqueiro: GORDO"_s});
        prompts->clear();
        prompts->answerYes();
        doubleClick(gordo);
        QCOMPARE(prompts->texts().value(1),
                 u"Primeiro defina a nova posição no campo nova posição."_s);
        QCOMPARE(screen->focusWidget(), get(u"PZ"_s));
        type(u"PZ"_s, u"Li"_s);
        QCOMPARE(text(u"PZ"_s), u"Livre"_s);
        prompts->answerYes();
        doubleClick(gordo);
        QCOMPARE(position(u"GORDO"_s), u"Livre"_s);
        QCOMPARE(boardPosition(u"GORDO"_s), u"Livre"_s);
        QCOMPARE(text(u"PZ"_s), u"Livre"_s); // kept for the next courier

        // A courier who leaves the service leaves the board at the next fill, but stays in
        // the courier list of the screen.
        store().execute(u"UPDATE motoqueiros SET C1 = ? WHERE C4 = ?"_s,
                        {u"INATIVO"_s, u"GORDO"_s});
        prompts->answerYes();
        doubleClick(1);
        QCOMPARE(boardPosition(u"GORDO"_s), u"(ausente)"_s);
        QVERIFY(get<QComboBox>(u"A18"_s)->findText(u"GORDO"_s) >= 0);
    }

    void statusRegistry() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        auto* st = get<QComboBox>(u"ST"_s);
        prompts->answerCancel();
        click(u"Command23"_s);
        QCOMPARE(st->count(), 5);

        // A new word is added without a word.
        prompts->clear();
        prompts->answerText(u"Aguardando cliente"_s);
        click(u"Command23"_s);
        QCOMPARE(prompts->texts(), QStringList{u"Digite o novo status e clique no botão OK "_s});
        QCOMPARE(prompts->shown().at(0).title, u"Cadastro de Status"_s);
        QCOMPARE(st->count(), 6);
        QVERIFY(st->findText(u"Aguardando cliente"_s) >= 0);

        // Typing it again offers to delete it: No keeps it, Yes takes it out.
        prompts->clear();
        prompts->answerText(u"Aguardando cliente"_s);
        prompts->answerNo();
        click(u"Command23"_s);
        QCOMPARE(prompts->texts().value(1), u"Confirma exclusão: Aguardando cliente?"_s);
        QCOMPARE(prompts->shown().at(1).title, u"Cadastro"_s);
        QCOMPARE(rows(u"status_atendimento"_s), 6);
        prompts->clear();
        prompts->answerText(u"Aguardando cliente"_s);
        prompts->answerYes();
        click(u"Command23"_s);
        QCOMPARE(prompts->texts().value(2), u"Operação realizada com sucesso."_s);
        QCOMPARE(rows(u"status_atendimento"_s), 5);
        QCOMPARE(st->count(), 5);

        // A quote is a plain character.
        prompts->clear();
        prompts->answerText(u"Cliente d'Avila ausente"_s);
        click(u"Command23"_s);
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

        // By client, with a quote and in small letters.
        get<QLineEdit>(u"Text1"_s)->setText(u"d'av"_s);
        QCOMPARE(allRows(grid), count(u"a6 = ?"_s, {kDavila}));
        QVERIFY(allRows(grid) > 0);
        for (int r = 0; r < allRows(grid); ++r)
            QCOMPARE(grid->text(r, u"a6"_s), kDavila);
        // The value column in the Currency form.
        auto* money = qobject_cast<QStyledItemDelegate*>(grid->itemDelegateForColumn(7));
        QVERIFY(money);
        const QString value = grid->text(0, u"a19"_s);
        QCOMPARE(money->displayText(value, QLocale()), u"R$ "_s + formatMoney(*parseMoney(value)));
        get<QLineEdit>(u"Text1"_s)->setText(u"zzz"_s);
        QCOMPARE(allRows(grid), 0);

        // By number, by courier, by status; each box alone, the last one decides.
        get<QLineEdit>(u"Text3"_s)->setText(u"000001"_s);
        QCOMPARE(allRows(grid), 10);
        QCOMPARE(grid->text(0, u"CODIGO"_s), u"0000010"_s);
        get<QLineEdit>(u"Text3"_s)->setText(QString());
        QCOMPARE(qint64(allRows(grid)), rows(u"atendimentos"_s));
        QCOMPARE(grid->text(0, u"CODIGO"_s), u"0000001"_s);
        get<QLineEdit>(u"Text2"_s)->setText(u"beto"_s);
        QCOMPARE(allRows(grid), count(u"a18 = ?"_s, {u"BETO"_s}));
        get<QComboBox>(u"Combo1"_s)->setEditText(u"Entreg"_s);
        QCOMPARE(allRows(grid), count(u"ST = ?"_s, {u"Entregue"_s}));
        QCOMPARE(prompts->count(Kind::Error), 0);

        // The period search adds its count to the count before.
        const QDate today = QDate::currentDate();
        get<MaskEdBox>(u"k1"_s)->setText(formatDate(today.addDays(-3)));
        get<MaskEdBox>(u"k2"_s)->setText(formatDate(today.addDays(-1)));
        click(u"Command9"_s);
        const int first = count(u"a2 BETWEEN ? AND ?"_s, {today.addDays(-3), today.addDays(-1)});
        QCOMPARE(allRows(grid), first);
        QCOMPARE(text(u"itt"_s), QString::number(first));
        get<MaskEdBox>(u"k1"_s)->setText(formatDate(today));
        get<MaskEdBox>(u"k2"_s)->setText(formatDate(today));
        click(u"Command9"_s);
        const int second = count(u"a2 = ?"_s, {today});
        QCOMPARE(text(u"itt"_s), QString::number(first + second));
        // A date that is no date is said so, and nothing is counted.
        get<MaskEdBox>(u"k2"_s)->setText(u"3102"_s);
        click(u"Command9"_s);
        QCOMPARE(prompts->count(Kind::Error), 1);
        QCOMPARE(text(u"itt"_s), QString::number(first + second));

        click(u"Command15"_s);
        QCOMPARE(qint64(allRows(grid)), rows(u"atendimentos"_s));

        // A double click opens the dispatch on the first tab.
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        get<QLineEdit>(u"Text1"_s)->setText(u"D'AVILA"_s);
        const QString code = grid->text(0, u"CODIGO"_s);
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Return);
        QCOMPARE(get<SSTab>(u"SSTab1"_s)->tab(), 0);
        QCOMPARE(text(u"CODIGO"_s), code);
        QCOMPARE(text(u"A6"_s), kDavila);
    }

    void clientLookup_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("filled");
        QTest::addColumn<QStringList>("untouched");
        QTest::newRow("client line")
            << u"Command5"_s
            << QStringList{u"a4"_s, u"A5"_s, u"A6"_s, u"A7"_s, u"A8"_s, u"A9"_s, u"A13"_s}
            << QStringList{u"A11"_s, u"A15"_s};
        QTest::newRow("pickup") << u"Command21"_s << QStringList{u"A9"_s, u"A11"_s}
                                << QStringList{u"A6"_s, u"A13"_s, u"A15"_s};
        QTest::newRow("delivery") << u"Command22"_s << QStringList{u"A13"_s, u"A15"_s}
                                  << QStringList{u"A6"_s, u"A9"_s, u"A11"_s};
    }

    void clientLookup() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, button);
        QFETCH(QStringList, filled);
        QFETCH(QStringList, untouched);
        open();
        click(u"Command4"_s);
        bool looked = false;
        onModal([&](QWidget* popup) {
            QCOMPARE(popup->objectName(), u"atendecli"_s);
            QCOMPARE(popup->windowTitle(), u"Busca cliente"_s);
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
        Recordset client = store().open(u"SELECT * FROM clientes WHERE C5 = ?"_s, {kDavila});
        const QString address = client.text(u"C14"_s) + u"  "_s + client.text(u"C15"_s);
        const QMap<QString, QString> expected{{u"a4"_s, client.text(u"C8"_s)},
                                              {u"A5"_s, client.text(u"C7"_s)},
                                              {u"A6"_s, kDavila},
                                              {u"A7"_s, address},
                                              {u"A8"_s, client.text(u"C25"_s)},
                                              {u"A9"_s, address},
                                              {u"A13"_s, address},
                                              {u"A11"_s, client.text(u"C8"_s)},
                                              {u"A15"_s, client.text(u"C8"_s)}};
        for (const QString& f : filled)
            QCOMPARE(text(f), expected.value(f));
        for (const QString& f : untouched)
            QCOMPARE(text(f), QString());
        QCOMPARE(prompts->texts(), QStringList()); // D'Avila has no remarks
    }

    void tabsByKeyboard() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        auto* tabs = get<SSTab>(u"SSTab1"_s);
        for (const QString& from : {u"A6"_s, u"Command16"_s, u"A18"_s}) {
            tabs->setTab(0);
            get(from)->setFocus();
            QTest::keyClick(get(from), Qt::Key_Tab, Qt::ControlModifier);
            QVERIFY2(tabs->tab() == 1, qPrintable(from));
        }
    }

    void callerIdAndQuotes() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        click(u"Command3"_s);
        QCOMPARE(prompts->count(Kind::Notice), 1);
        QVERIFY(prompts->lastText().contains(u"Bina"_s));
        QCOMPARE(prompts->count(Kind::Error), 0);
        // The screen still works after it.
        click(u"Command1"_s);
        QCOMPARE(text(u"CODIGO"_s), u"0000001"_s);
    }
};

QTEST_MAIN(AtendimentoTest)
#include "tst_atendimento.moc"
