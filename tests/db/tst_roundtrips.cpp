// The statements an action sends to the database, each a round trip over the office's
// network: a write-off whatever its number of rows, opening the dispatch screen whatever the
// number of couriers, Grava of a dispatch with its posting and of its change, a key in a search
// box, a change of a dispatch's values, and a statement run again without being prepared again.

#include "dispatch/atendimento.h"
#include "dispatch/core/billedvalues.h"
#include "finance/core/billing.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
namespace fin = rtx::finance;
using Kind = ScriptedPrompter::Kind;

namespace {

// The statements a call sends.
template <class F> qint64 statementsOf(Store& store, F&& call) {
    const qint64 before = store.statementCount();
    call();
    return store.statementCount() - before;
}

// Open receivables of dispatches "R0001"..., one per row, with amounts of 1,00, 2,00...
QList<fin::WriteOff> openReceivables(Store& store, int first, int count) {
    QList<fin::WriteOff> rows;
    UnitOfWork unit(store);
    for (int i = first; i < first + count; ++i) {
        const QString document = u"R%1"_s.arg(i, 4, 10, QLatin1Char('0'));
        store.insert(u"contas_receber"_s, {{u"codigo"_s, padCode(80000 + i, 5)},
                                           {u"c1"_s, QDate(2026, 3, 2)},
                                           {u"c2"_s, u"A receber"_s},
                                           {u"c3"_s, document},
                                           {u"c6"_s, u"CLIENTE %1"_s.arg(i)},
                                           {u"c12"_s, qint64(i * 100)}});
        rows.append({document, qint64(i * 100), u"CLIENTE %1"_s.arg(i)});
    }
    unit.commit();
    return rows;
}

} // namespace

class RoundTripsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<ScriptedPrompter> prompts;

    Store& store() { return inst->store(); }

    void type(QWidget* w, const QString& typed) {
        w->setFocus(Qt::TabFocusReason);
        if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
        QTest::keyClicks(w, typed);
        QTest::keyClick(w, Qt::Key_Tab);
    }

    // Couriers beyond the demo's, so that a look-up per courier shows in the count.
    void moreCouriers(int count) {
        UnitOfWork unit(store());
        for (int i = 0; i < count; ++i)
            store().insert(u"motoqueiros"_s, {{u"CODIGO"_s, padCode(900 + i, 5)},
                                              {u"C1"_s, u"ATIVO"_s},
                                              {u"C4"_s, u"EXTRA%1"_s.arg(i)},
                                              {u"C5"_s, u"ENTREGADOR EXTRA %1"_s.arg(i)},
                                              {u"C25"_s, u"Livre"_s}});
        unit.commit();
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, true);
        prompts = std::make_unique<ScriptedPrompter>();
    }

    void cleanup() {
        session::end();
        prompts.reset();
        inst.reset();
    }

    // A write-off of fifty rows sends what one of three sends, and settles each row with its
    // own value: one statement per kind of row, a credit per row all the same.
    void writeOffIsOneStatementPerKindOfRow() {
        RTX_REQUIRE_INSTALL(*inst);
        Store& st = store();
        const QDate day(2026, 3, 10);
        const auto few = openReceivables(st, 1, 3);
        auto many = openReceivables(st, 101, 50);
        // A code written twice on the grid is settled once, with the last value, and
        // credited twice; a code in other letters is the same code.
        many.append({u"r0101"_s, 7777, u"CLIENTE 101"_s});
        const Store::CashTotals before = st.cashTotals(day, day);

        const qint64 forFew = statementsOf(st, [&] { fin::writeOff(st, few, day); });
        const qint64 forMany = statementsOf(st, [&] { fin::writeOff(st, many, day); });
        QVERIFY2(forMany <= forFew, qPrintable(u"%1 contra %2"_s.arg(forMany).arg(forFew)));
        QVERIFY2(forMany <= 8, qPrintable(QString::number(forMany)));

        QCOMPARE(st.scalar(u"SELECT COUNT(*) FROM contas_receber WHERE c2 = ? AND c15 = ?"_s,
                           {u"Recebida"_s, day})
                     .toInt(),
                 53);
        QCOMPARE(
            st.scalar(u"SELECT c16 FROM contas_receber WHERE c3 = ?"_s, {u"R0150"_s}).toLongLong(),
            15000);
        QCOMPARE(
            st.scalar(u"SELECT c16 FROM contas_receber WHERE c3 = ?"_s, {u"R0101"_s}).toLongLong(),
            7777);
        qint64 credited = 7777;
        for (const auto& r : few + many.mid(0, 50))
            credited += r.amount;
        QCOMPARE(st.cashTotals(day, day).credits - before.credits, credited);
        // Every credit its own code, in the order of the grid, and the row's client.
        QCOMPARE(st.scalar(u"SELECT COUNT(DISTINCT codigo) FROM caixa WHERE A7 = ?"_s,
                           {fin::billingGroup})
                     .toInt(),
                 54);
        const QString last = st.lastCode(u"caixa"_s);
        QCOMPARE(st.scalar(u"SELECT A6 FROM caixa WHERE codigo = ?"_s, {last}).toString(),
                 u"CLIENTE 101"_s);
        QCOMPARE(st.scalar(u"SELECT A5 FROM caixa WHERE codigo = ?"_s, {last}).toLongLong(), 7777);
    }

    // Billing's change of a dispatch's two values: the change itself, and a code that is not
    // on file changes nothing.
    void dispatchValuesChangeInOneStatement() {
        RTX_REQUIRE_INSTALL(*inst);
        Store& st = store();
        const QString code = st.firstCode(u"atendimentos"_s);
        bool found = false;
        const qint64 sent =
            statementsOf(st, [&] { found = dispatch::changeDispatchValues(st, code, 4321, 1234); });
        QVERIFY(found);
        QVERIFY2(sent <= 3, qPrintable(QString::number(sent)));
        Recordset rs = st.open(u"SELECT a19, moto FROM atendimentos WHERE CODIGO = ?"_s, {code});
        QCOMPARE(rs.cents(u"a19"_s), 4321);
        QCOMPARE(rs.cents(u"moto"_s), 1234);
        QVERIFY(!dispatch::changeDispatchValues(st, u"9999999"_s, 1, 1));
    }

    // Opening the dispatch screen: a handful of statements, the same with three times the
    // couriers on the board.
    void openingAtendimentoIsAHandful() {
        RTX_REQUIRE_INSTALL(*inst);
        session::start({u"ANA PAULA"_s, {}, {}});
        const auto opening = [&] {
            return statementsOf(store(), [] {
                Atendimento screen;
                screen.show();
            });
        };
        const qint64 first = opening();
        moreCouriers(40);
        const qint64 withMore = opening();
        QVERIFY2(withMore <= 8, qPrintable(u"%1 (antes %2)"_s.arg(withMore).arg(first)));
        QCOMPARE(withMore, first);
    }

    // Grava of a new dispatch with its posting, and one key in a search box.
    void gravaAndAKeyAreFewStatements() {
        RTX_REQUIRE_INSTALL(*inst);
        session::start({u"ANA PAULA"_s, {}, {}});
        Atendimento screen;
        screen.show();
        control<QAbstractButton>(&screen, u"Command4"_s)->click();
        type(control(&screen, u"A6"_s), u"CLIENTE DA MEDIDA"_s);
        control<QComboBox>(&screen, u"ST"_s)->setCurrentText(u"A caminho"_s);
        type(control(&screen, u"A18"_s), u"BETO"_s);
        control<QComboBox>(&screen, u"A20"_s)->setCurrentText(u"FATURAR"_s);
        type(control(&screen, u"A19"_s), u"25,00"_s);
        type(control(&screen, u"VE"_s), u"9,00"_s);
        const qint64 before = store().count(u"contas_pagar"_s);
        script(*prompts, {true, false}, {});
        const qint64 grava = statementsOf(
            store(), [&] { control<QAbstractButton>(&screen, u"Command16"_s)->click(); });
        QCOMPARE(prompts->texts(Kind::Error), QStringList());
        QCOMPARE(store().count(u"contas_pagar"_s), before + 1);
        // On PostgreSQL each new row draws its code in its own INSERT; SQLite reads the
        // maximum first, in the process.
        const qint64 most = store().engine() == Engine::PostgreSQL ? 8 : 12;
        QVERIFY2(grava <= most, qPrintable(QString::number(grava)));

        // The same dispatch with another fee: its change and the difference posted.
        type(control(&screen, u"VE"_s), u"11,00"_s);
        script(*prompts, {true, true, false}, {});
        const qint64 change = statementsOf(
            store(), [&] { control<QAbstractButton>(&screen, u"Command16"_s)->click(); });
        QCOMPARE(prompts->texts(Kind::Error), QStringList());
        QCOMPARE(store()
                     .scalar(u"SELECT SUM(c12) FROM contas_pagar WHERE c3 = ?"_s,
                             {control<QLabel>(&screen, u"CODIGO"_s)->text()})
                     .toLongLong(),
                 1100);
        // The fee's row is rewritten; the client's, unchanged, is not.
        QVERIFY2(change <= 17, qPrintable(QString::number(change)));

        auto* byClient = control<QLineEdit>(&screen, u"Text1"_s);
        const qint64 key = statementsOf(store(), [&] { QTest::keyClicks(byClient, u"C"_s); });
        QVERIFY2(key <= 1, qPrintable(QString::number(key)));
    }

    // A statement run again is not prepared again on the server: each is one round trip.
    void aStatementRunAgainIsNotPreparedAgain() {
        RTX_REQUIRE_INSTALL(*inst);
        Store& st = store();
        if (st.engine() != Engine::PostgreSQL) QSKIP("o SQLite prepara dentro do processo");
        const PageQuery byStatus{u"atendimentos"_s, {u"CODIGO"_s, u"ST"_s}, {}, {}, {{u"ST"_s}}};
        const auto prepared = [&] {
            return st
                .scalar(u"SELECT COUNT(*) FROM pg_prepared_statements WHERE statement LIKE "
                        "'%FROM atendimentos%LIMIT%'"_s)
                .toInt();
        };
        st.page(byStatus, {}, 100);
        const int once = prepared();
        QCOMPARE(once, 1);
        for (int i = 0; i < 10; ++i)
            QCOMPARE(st.page(byStatus, {}, 100).recordCount(),
                     int(qMin<qint64>(100, st.count(u"atendimentos"_s))));
        QCOMPARE(prepared(), once);
    }
};

QTEST_MAIN(RoundTripsTest)
#include "tst_roundtrips.moc"
