// The store on the engine under test: schema and first start, codes, units of work,
// case-blind text, quotes and literal prefix search, dates, and two stations racing.

#include "store/formats.h"
#include "testinstall.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;

namespace {

// The writer side of the race: saves rows into the clients table, one unit each.
int runWriter(const QStringList& args) {
    ConnectionSettings s;
    s.engine = args.at(2) == QStringLiteral("pg") ? Engine::PostgreSQL : Engine::SQLite;
    s.sqliteFile = args.at(3);
    s.host = qEnvironmentVariable("ROTALIX_TEST_PGHOST");
    s.port = qEnvironmentVariableIntValue("ROTALIX_TEST_PGPORT");
    s.user = qEnvironmentVariable("ROTALIX_TEST_PGUSER", QStringLiteral("postgres"));
    s.database = args.at(3);
    const int count = args.at(4).toInt();
    try {
        Store store(s);
        for (int i = 0; i < count; ++i) {
            UnitOfWork unit(store);
            const QString code = store.nextCode(QStringLiteral("clientes"));
            Recordset rs =
                store.open(QStringLiteral("SELECT * FROM clientes WHERE CODIGO = ?"), {code});
            rs.addNew();
            rs.setValue(QStringLiteral("CODIGO"), code);
            rs.setValue(QStringLiteral("C5"), QStringLiteral("%1-%2").arg(args.at(5)).arg(i));
            rs.update();
            unit.commit();
        }
    } catch (const StoreError& e) {
        fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}

} // namespace

class StoreTest : public QObject {
    Q_OBJECT

private slots:
    void freshInstallation() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        for (const TableDef& t : tables())
            QVERIFY2(st.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + t.name).isValid(),
                     qPrintable(t.name));
        QCOMPARE(st.count(QStringLiteral("empresa")), 1);
        QCOMPARE(st.count(QStringLiteral("empresa2")), 1);
        Recordset admin =
            st.open(QStringLiteral("SELECT * FROM funcionarios WHERE x1 = ? AND x8 = ?"),
                    {QStringLiteral("admin"), QStringLiteral("ADMIN")});
        QVERIFY(!admin.eof()); // case-blind on both columns
        Recordset perms =
            st.open(QStringLiteral("SELECT a4 FROM permissoes WHERE a1 = ? AND a5 = ? ORDER BY a4"),
                    {QStringLiteral("admin"), QStringLiteral("Sim")});
        QCOMPARE(perms.recordCount(), 13);
        QCOMPARE(st.count(QStringLiteral("status_atendimento")), 5);
        QVERIFY(!st.open(QStringLiteral("SELECT * FROM status_atendimento WHERE sta = ?"),
                         {QStringLiteral("Não encontrado")})
                     .eof());
        QCOMPARE(st.count(QStringLiteral("agenda_posicoes")), 1);

        // A second start changes nothing.
        inst.installation().initialise(st);
        QCOMPARE(st.count(QStringLiteral("funcionarios")), 1);
        QCOMPARE(st.count(QStringLiteral("permissoes")), 16);
        QCOMPARE(st.count(QStringLiteral("status_atendimento")), 5);
        QVERIFY(QFile::exists(inst.installation().siteFile()));
    }

    void demoFillsEveryListedTable() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        for (const TableDef& t : tables())
            if (!t.workTable) QVERIFY2(inst.store().count(t.name) > 0, qPrintable(t.name));
        QCOMPARE(inst.store().count(QStringLiteral("clientes")), 20);
        QCOMPARE(inst.store().count(QStringLiteral("motoqueiros")), 8);
        QCOMPARE(inst.store().count(QStringLiteral("servicos")), 15);
        Recordset st =
            inst.store().open(QStringLiteral("SELECT ST, COUNT(*) FROM atendimentos GROUP BY ST"));
        QCOMPARE(st.recordCount(), 5);
    }

    void codes() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCOMPARE(st.peekCode(QStringLiteral("clientes")), QStringLiteral("00001"));
        QCOMPARE(st.peekCode(QStringLiteral("servicos")), QStringLiteral("000001"));
        QCOMPARE(st.peekCode(QStringLiteral("atendimentos")), QStringLiteral("0000001"));
        QVERIFY_THROWS_EXCEPTION(StoreError, st.peekCode(QStringLiteral("permissoes")));

        // Past the width: numeric maximum, so 100000 then 100001, never over an old row.
        st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                   {QStringLiteral("99999"), QStringLiteral("A")});
        for (const char* expected : {"100000", "100001"}) {
            UnitOfWork unit(st);
            const QString code = st.nextCode(QStringLiteral("clientes"));
            QCOMPARE(code, QString::fromLatin1(expected));
            st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                       {code, QStringLiteral("B")});
            unit.commit();
        }
        // A repeated code is refused by the unique key.
        QVERIFY_THROWS_EXCEPTION(
            StoreError, st.execute(QStringLiteral("INSERT INTO clientes (CODIGO) VALUES (?)"),
                                   {QStringLiteral("99999")}));
        // Navigation by code follows numbers, not text.
        QCOMPARE(st.firstCode(QStringLiteral("clientes")), QStringLiteral("99999"));
        QCOMPARE(st.lastCode(QStringLiteral("clientes")), QStringLiteral("100001"));
        QCOMPARE(st.nextCodeAfter(QStringLiteral("clientes"), QStringLiteral("99999")),
                 QStringLiteral("100000"));
        QCOMPARE(st.previousCode(QStringLiteral("clientes"), QStringLiteral("99999")), QString());
    }

    void recordsetWalkEditDelete() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        for (int i = 1; i <= 3; ++i)
            st.saveByKey(QStringLiteral("servicos"), QStringLiteral("cod"), padCode(i, 6),
                         {{QStringLiteral("A1"), QStringLiteral("S%1").arg(i)},
                          {QStringLiteral("A2"), QStringLiteral("1.234,5%1").arg(i)}});
        // Saving by key twice keeps one row.
        st.saveByKey(QStringLiteral("servicos"), QStringLiteral("cod"), padCode(2, 6),
                     {{QStringLiteral("A1"), QStringLiteral("DOIS")}});
        Recordset rs = st.table(QStringLiteral("servicos"));
        QCOMPARE(rs.recordCount(), 3);
        rs.moveLast();
        QCOMPARE(rs.text(QStringLiteral("a1")), QStringLiteral("S3"));
        QCOMPARE(rs.text(QStringLiteral("A2")), QStringLiteral("1.234,53"));
        QCOMPARE(rs.cents(QStringLiteral("a2")), 123453);
        rs.movePrevious();
        QCOMPARE(rs.text(QStringLiteral("A1")), QStringLiteral("DOIS"));
        rs.moveNext();
        rs.moveNext();
        QVERIFY(rs.eof());

        // Delete in a loop, as the screens do.
        Recordset all = st.open(QStringLiteral("SELECT * FROM servicos ORDER BY cod"));
        while (!all.eof()) {
            all.remove();
            all.moveNext();
        }
        QCOMPARE(st.count(QStringLiteral("servicos")), 0);

        // Bad input is refused with a clear message and nothing written.
        Recordset add = st.open(QStringLiteral("SELECT * FROM servicos"));
        add.addNew();
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 add.setText(QStringLiteral("A2"), QStringLiteral("12,3,4")));
        Recordset agenda = st.open(QStringLiteral("SELECT * FROM agenda"));
        agenda.addNew();
        try {
            agenda.setText(QStringLiteral("A1"), QStringLiteral("31/02/2020"));
            QFAIL("an impossible date was taken");
        } catch (const StoreError& e) {
            QVERIFY(e.text().contains(QStringLiteral("31/02/2020")));
        }
        agenda.setText(QStringLiteral("A1"), QStringLiteral("25122020"));
        agenda.setValue(QStringLiteral("CODIGO"), QStringLiteral("0000001"));
        agenda.update();
        Recordset back = st.open(
            QStringLiteral("SELECT * FROM agenda WHERE A1 BETWEEN ? AND ?"),
            {requireDate(QStringLiteral("25/12/2020")), requireDate(QStringLiteral("25/12/2020"))});
        QCOMPARE(back.text(QStringLiteral("A1")), QStringLiteral("25/12/2020"));
    }

    void quotesAndCaseBlindSearch() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QStringList names{QStringLiteral("D'AVILA ADVOGADOS"),
                                QStringLiteral("ANA PAULA"),
                                QStringLiteral("CENTRO"),
                                QStringLiteral("AÇÃO SOCIAL"),
                                QStringLiteral("100% ENTREGAS"),
                                QStringLiteral("A_B"),
                                QStringLiteral("A*C"),
                                QStringLiteral("ABC")};
        for (int i = 0; i < names.size(); ++i)
            st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                       {padCode(i + 1, 5), names[i]});
        auto equal = [&](const QString& v) {
            return st.open(QStringLiteral("SELECT * FROM clientes WHERE C5 = ?"), {v})
                .recordCount();
        };
        auto prefix = [&](const QString& v) {
            QStringList found;
            Recordset rs = st.open(QStringLiteral("SELECT C5 FROM clientes WHERE ") +
                                       Store::prefixClause(QStringLiteral("C5")) +
                                       QStringLiteral(" ORDER BY C5"),
                                   Store::prefixParams(v));
            for (; !rs.eof(); rs.moveNext())
                found << rs.text(QStringLiteral("C5"));
            return found;
        };
        QCOMPARE(equal(QStringLiteral("d'avila advogados")), 1);
        QCOMPARE(equal(QStringLiteral("centro")), 1);
        QCOMPARE(equal(QStringLiteral("ação social")), 1);
        QCOMPARE(equal(QStringLiteral("acao social")), 1);
        QCOMPARE(prefix(QStringLiteral("d'av")), QStringList{QStringLiteral("D'AVILA ADVOGADOS")});
        QCOMPARE(prefix(QStringLiteral("ana")), QStringList{QStringLiteral("ANA PAULA")});
        QCOMPARE(prefix(QStringLiteral("açã")), QStringList{QStringLiteral("AÇÃO SOCIAL")});
        QCOMPARE(prefix(QStringLiteral("100%")), QStringList{QStringLiteral("100% ENTREGAS")});
        QCOMPARE(prefix(QStringLiteral("A_")), QStringList{QStringLiteral("A_B")});
        QCOMPARE(prefix(QStringLiteral("a*")), QStringList{QStringLiteral("A*C")});
        QCOMPARE(prefix(QStringLiteral("%")), QStringList());
        QCOMPARE(prefix(QString()).size(), names.size());
        // The order is case- and accent-blind as well.
        const QStringList a = prefix(QStringLiteral("a"));
        QVERIFY(a.indexOf(QStringLiteral("AÇÃO SOCIAL")) < a.indexOf(QStringLiteral("ANA PAULA")));
    }

    void unitOfWorkRollsBack() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        try {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("INSERT INTO contas_pagar (codigo, c6) VALUES (?, ?)"),
                       {st.nextCode(QStringLiteral("contas_pagar")), QStringLiteral("BETO")});
            st.execute(QStringLiteral("INSERT INTO caixa (codigo, A2) VALUES (?, ?)"),
                       {st.nextCode(QStringLiteral("caixa")), QStringLiteral("CRÉDITO")});
            st.execute(QStringLiteral("INSERT INTO tabela_que_nao_existe VALUES (1)"));
            unit.commit();
            QFAIL("the failing statement went through");
        } catch (const StoreError& e) {
            QVERIFY(!e.text().isEmpty());
        }
        QVERIFY(!st.inTransaction());
        QCOMPARE(st.count(QStringLiteral("contas_pagar")), 0);
        QCOMPARE(st.count(QStringLiteral("caixa")), 0);
        // The next action works.
        {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("INSERT INTO caixa (codigo, A2) VALUES (?, ?)"),
                       {st.nextCode(QStringLiteral("caixa")), QStringLiteral("DÉBITO")});
            unit.commit();
        }
        QCOMPARE(st.count(QStringLiteral("caixa")), 1);
        // An inner unit that fails spoils the outer one.
        {
            UnitOfWork outer(st);
            st.execute(QStringLiteral("INSERT INTO caixa (codigo) VALUES ('0000009')"));
            { UnitOfWork inner(st); }
            QVERIFY_THROWS_EXCEPTION(StoreError, outer.commit());
        }
        QCOMPARE(st.count(QStringLiteral("caixa")), 1);
        // An impossible date is refused before any statement runs.
        QVERIFY_THROWS_EXCEPTION(StoreError, requireDate(QStringLiteral("31/02/2020")));
        QVERIFY_THROWS_EXCEPTION(StoreError, requireDate(QStringLiteral("1/1/20")));
    }

    void cashDayTotalsFollowTheRows() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QDate d1(2020, 12, 24), d2(2020, 12, 25);
        auto add = [&](const QDate& d, const QString& op, qint64 amount) {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"),
                       {st.nextCode(QStringLiteral("caixa")), d, op, amount});
            unit.commit();
        };
        add(d1, QStringLiteral("CRÉDITO"), 10000);
        add(d1, QStringLiteral("DÉBITO"), 2550);
        add(d2, QStringLiteral("crédito"), 100);
        add(d2, QStringLiteral("OUTRO"), 999);
        Store::CashTotals t = st.cashTotals(QDate(1980, 1, 1), d1);
        QCOMPARE(t.credits, 10000);
        QCOMPARE(t.debits, 2550);
        QCOMPARE(st.cashTotals(d1, d2).balance(), 10000 - 2550 + 100);
        // Moving a row to another day and deleting one keep the totals true.
        st.execute(QStringLiteral("UPDATE caixa SET A1 = ?, A5 = ? WHERE codigo = ?"),
                   {d2, qint64(3000), QStringLiteral("0000002")});
        QCOMPARE(st.cashTotals(d1, d1).balance(), 10000);
        QCOMPARE(st.cashTotals(d2, d2).balance(), 100 - 3000);
        st.execute(QStringLiteral("DELETE FROM caixa WHERE codigo = ?"),
                   {QStringLiteral("0000001")});
        QCOMPARE(st.cashTotals(d1, d2).balance(), 100 - 3000);
        QCOMPARE(st.cashTotals(d2, d1).balance(), 0);
    }

    void twoStationsRace() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        const ConnectionSettings s = inst.settings();
        const QString engine =
            s.engine == Engine::PostgreSQL ? QStringLiteral("pg") : QStringLiteral("sqlite");
        const QString target = s.engine == Engine::PostgreSQL ? s.database : s.sqliteFile;
        QList<QProcess*> writers;
        for (const char* who : {"A", "B"}) {
            auto* p = new QProcess(this);
            p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            p->start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--writer"), engine, target, QStringLiteral("100"),
                      QString::fromLatin1(who)});
            writers << p;
        }
        for (QProcess* p : writers) {
            QVERIFY(p->waitForFinished(120000));
            QCOMPARE(p->exitCode(), 0);
        }
        Store& st = inst.store();
        QCOMPARE(st.count(QStringLiteral("clientes")), 200);
        QCOMPARE(st.scalar(QStringLiteral("SELECT COUNT(DISTINCT CODIGO) FROM clientes")).toInt(),
                 200);
        QCOMPARE(st.lastCode(QStringLiteral("clientes")), QStringLiteral("00200"));
        for (const char* who : {"A", "B"})
            QCOMPARE(st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                                 Store::prefixClause(QStringLiteral("C5")),
                             Store::prefixParams(QString::fromLatin1(who) + QLatin1Char('-')))
                         .recordCount(),
                     100);
    }
};

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() > 5 && args.at(1) == QStringLiteral("--writer")) return runWriter(args);
    StoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_store.moc"
