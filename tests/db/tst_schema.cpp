// The schema by numbered steps, on the engine under test: a new installation and one of the
// first version reach the last step with their rows, a step added later (a new column)
// reaches both, a failed step leaves the version before it, and the SQLite file opens in the
// standard sqlite3 tool.

#include "store/formats.h"
#include "store/migrations.h"
#include "testinstall.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

// The version of a step added after the program's last one.
int addedVersion() {
    return schemaVersion() + 1;
}

// A step as a developer would add one: a new column in the clients table.
Migration newColumnStep() {
    return {addedVersion(), u"coluna C35 nos clientes"_s, [](Store& st) {
                st.execute(st.engine() == Engine::SQLite
                               ? u"ALTER TABLE clientes ADD COLUMN C35 TEXT COLLATE NOCASE"_s
                               : u"ALTER TABLE clientes ADD COLUMN C35 TEXT COLLATE rtx_chave"_s);
            }};
}

QStringList columnsOf(Store& st, const QString& table) {
    QStringList out;
    if (st.engine() == Engine::SQLite) {
        for (Recordset rs = st.open(u"PRAGMA table_info(%1)"_s.arg(table)); !rs.eof();
             rs.moveNext())
            out << rs.value(u"name"_s).toString().toLower();
    } else {
        for (Recordset rs = st.open(u"SELECT column_name FROM information_schema.columns WHERE "
                                    u"table_name = ? AND table_schema = current_schema()"_s,
                                    {table});
             !rs.eof(); rs.moveNext())
            out << rs.value(0).toString().toLower();
    }
    return out;
}

// Rows a first-version installation holds: clients whose names differ by an accent only,
// an employee, and cash movements with their day totals.
void fillFirstVersion(Store& st) {
    UnitOfWork unit(st);
    st.execute(u"INSERT INTO clientes (CODIGO, C5, C6, C8) VALUES (?, ?, ?, ?)"_s,
               {u"00001"_s, u"JOSÉ DA SILVA"_s, u"ZÉ"_s, u"1133334444"_s});
    st.execute(u"INSERT INTO clientes (CODIGO, C5, C6, C8) VALUES (?, ?, ?, ?)"_s,
               {u"00002"_s, u"JOSE DA SILVA"_s, u"ZE"_s, u"1155556666"_s});
    st.execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s, {u"MARIA"_s, u"segredo"_s});
    st.execute(u"INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"_s,
               {u"0000001"_s, QDate(2024, 3, 1), u"CRÉDITO"_s, qint64(10000)});
    st.execute(u"INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"_s,
               {u"0000002"_s, QDate(2024, 3, 1), u"DÉBITO"_s, qint64(2500)});
    unit.commit();
}

// The codes of the clients a condition on a column finds: text equal to a value
// ("same") or beginning with it ("starts").
QString clientsWhere(Store& st, const QString& how, const QString& column, const QString& typed) {
    const bool same = how == u"same"_s;
    QStringList codes;
    for (Recordset rs = st.open(u"SELECT CODIGO FROM clientes WHERE "_s +
                                    (same ? st.sameText(u"clientes"_s, column)
                                          : st.startsWith(u"clientes"_s, column)) +
                                    u" ORDER BY CODIGO"_s,
                                same ? QVariantList{typed} : st.startParams(typed));
         !rs.eof(); rs.moveNext())
        codes << rs.text(u"CODIGO"_s);
    return codes.join(u',');
}

// What a first-version installation must still hold after its upgrade, and that its text
// now compares by the new rules.
void checkUpgradedRows(Store& st) {
    QCOMPARE(st.count(u"clientes"_s), 2);
    QCOMPARE(clientsWhere(st, u"same"_s, u"C5"_s, u"jose da silva"_s), u"00002"_s);
    QCOMPARE(clientsWhere(st, u"same"_s, u"C6"_s, u"zé"_s), u"00001"_s);
    QCOMPARE(clientsWhere(st, u"same"_s, u"C8"_s, u"1133334444"_s), u"00001"_s);
    QCOMPARE(clientsWhere(st, u"starts"_s, u"C5"_s, u"jose d"_s), u"00001,00002"_s);
    // The cash day totals came along, and follow the rows still.
    const QDate day(2024, 3, 1);
    QCOMPARE(st.cashTotals(day, day).balance(), 10000 - 2500);
    st.execute(u"INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"_s,
               {u"0000003"_s, day, u"crédito"_s, qint64(100)});
    st.execute(u"UPDATE caixa SET A5 = ? WHERE codigo = ?"_s, {qint64(3000), u"0000002"_s});
    st.execute(u"DELETE FROM caixa WHERE codigo = ?"_s, {u"0000001"_s});
    QCOMPARE(st.cashTotals(day, day).balance(), 100 - 3000);
    // New rows get new ids, and their folded copies.
    const QVariant id =
        st.insert(u"clientes"_s, {{u"CODIGO"_s, u"00003"_s}, {u"C5"_s, u"Ágata"_s}});
    QVERIFY(id.toLongLong() > 2);
    QCOMPARE(clientsWhere(st, u"starts"_s, u"C5"_s, u"AGA"_s), u"00003"_s);
}

QString sqlite3Tool() {
    return QStandardPaths::findExecutable(u"sqlite3"_s);
}

// Runs the standard tool on a file; its output, or its error.
QString tool(const QString& file, const QString& sql, bool* ok = nullptr) {
    QProcess p;
    p.start(sqlite3Tool(), {u"-batch"_s, file, sql});
    p.waitForFinished(30000);
    const QString err = QString::fromUtf8(p.readAllStandardError()).trimmed();
    if (ok) *ok = p.exitCode() == 0 && err.isEmpty();
    return err.isEmpty() ? QString::fromUtf8(p.readAllStandardOutput()).trimmed() : err;
}

// The checks an office administrator or a backup script would make with the tool.
void checkWithTool(const QString& file) {
    bool ok = false;
    QCOMPARE(tool(file, u"PRAGMA integrity_check;"_s, &ok), u"ok"_s);
    for (const TableDef& t : tables()) {
        if (t.workTable) continue;
        tool(file, u"SELECT * FROM %1 ORDER BY 2 LIMIT 5;"_s.arg(t.name), &ok);
        QVERIFY2(ok, qPrintable(t.name));
    }
    QCOMPARE(tool(file,
                  u"SELECT CODIGO, C5 FROM clientes WHERE C5 = 'jose da silva' ORDER BY C5;"_s,
                  &ok),
             u"00002|JOSE DA SILVA"_s);
    QCOMPARE(tool(file, u"SELECT COUNT(*) FROM caixa_dias;"_s, &ok), u"1"_s);
}

// A station starting on the database: the first start of the program.
int startStation(const QStringList& args) {
    const ConnectionSettings s = stationSettings(args.at(2), args.at(3));
    try {
        Store st(s);
        st.ensureSchema();
    } catch (const StoreError& e) {
        fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}

} // namespace

class SchemaTest : public QObject {
    Q_OBJECT

private slots:
    // A new installation is at the last step, with every listed column; each text column
    // its table searches has its folded copies (SQLite) or its search index (PostgreSQL),
    // and nothing of the first version's comparison is left.
    void newInstallationHasTheListedSchema() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        for (const TableDef& t : tables()) {
            if (t.workTable) continue;
            const QStringList columns = columnsOf(st, t.name);
            QVERIFY2(columns.contains(t.idColumn.toLower()), qPrintable(t.name));
            for (const Column& c : t.columns)
                QVERIFY2(columns.contains(c.name.toLower()), qPrintable(t.name + u'.' + c.name));
            for (const QString& ix : t.indexes) {
                if (t.column(ix)->type != ColType::Text) continue;
                if (st.engine() == Engine::SQLite) {
                    QVERIFY2(columns.contains(migration::keyColumn(ix).toLower()) &&
                                 columns.contains(migration::searchColumn(ix).toLower()),
                             qPrintable(t.name + u'.' + ix));
                } else {
                    QVERIFY2(st.scalar(u"SELECT COUNT(*) FROM pg_indexes WHERE tablename = ? AND "
                                       u"indexdef LIKE ?"_s,
                                       {t.name, u"%("_s + ix.toLower() +
                                                    u" COLLATE rtx_busca NULLS FIRST, %"_s})
                                     .toInt() == 1,
                             qPrintable(t.name + u'.' + ix));
                }
            }
        }
        if (st.engine() == Engine::SQLite)
            QCOMPARE(st.scalar(u"SELECT COUNT(*) FROM sqlite_master WHERE sql LIKE '%rtx_fold%'"_s)
                         .toInt(),
                     0);
        else
            QCOMPARE(st.scalar(u"SELECT COUNT(*) FROM information_schema.columns WHERE "
                               u"table_schema = current_schema() AND collation_name = 'rtx_ci'"_s)
                         .toInt(),
                     0);
    }

    // A step added after the last: a new installation and a first-version one, with its
    // rows, both get the new column; a second run takes no step; a database of a later
    // program is refused.
    void addedStepReachesNewAndOld() {
        QList<Migration> steps = migrations();
        steps << newColumnStep();
        for (bool old : {false, true}) {
            TestInstallation db(TestInstallation::Empty{});
            RTX_REQUIRE_INSTALL(db);
            Store st(db.settings());
            if (old) {
                migrate(st, {migrations().first()});
                fillFirstVersion(st);
            }
            migrate(st, steps);
            QCOMPARE(st.storedSchemaVersion(), addedVersion());
            QVERIFY(columnsOf(st, u"clientes"_s).contains(u"c35"_s));
            migrate(st, steps);
            QCOMPARE(st.storedSchemaVersion(), addedVersion());
            if (old) {
                checkUpgradedRows(st);
                QVERIFY(
                    st.open(u"SELECT C35 FROM clientes WHERE CODIGO = '00001'"_s).isNull(u"C35"_s));
            }
            st.saveByKey(u"clientes"_s, u"CODIGO"_s, u"00009"_s, {{u"C35"_s, u"novo"_s}});
            QCOMPARE(st.open(u"SELECT C35 FROM clientes WHERE C35 = 'NOVO'"_s).recordCount(), 1);
            try {
                st.ensureSchema();
                QFAIL("a database of a later program was taken");
            } catch (const StoreError& e) {
                QVERIFY(e.text().contains(u"mais nova"_s));
            }
        }
    }

    // Stations that start together on a new database build it once, one step after the
    // other, and all of them start.
    void stationsStartingTogether() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        QVERIFY(runStations(u"--start"_s, db.settings(), {{}, {}, {}}));
        Store st(db.settings());
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        QCOMPARE(st.scalar(u"SELECT COUNT(*) FROM rtx_versao"_s).toInt(), 1);
    }

    // A step that fails is undone whole: the database stays at the version before it, and
    // the next start tries it again. Steps out of order are refused.
    void failedStepLeavesTheVersionBefore() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        Store st(db.settings());
        migrate(st, migrations());
        QList<Migration> steps = migrations();
        steps << Migration{addedVersion(), u"falha"_s, [](Store& s) {
                               newColumnStep().apply(s);
                               s.execute(u"INSERT INTO tabela_nenhuma VALUES (1)"_s);
                           }};
        try {
            migrate(st, steps);
            QFAIL("the failing step went through");
        } catch (const StoreError& e) {
            QVERIFY(e.text().contains(u"vers\u00e3o %1"_s.arg(addedVersion())));
        }
        QVERIFY(!st.inTransaction());
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        QVERIFY(!columnsOf(st, u"clientes"_s).contains(u"c35"_s));
        steps.last() = newColumnStep();
        migrate(st, steps);
        QCOMPARE(st.storedSchemaVersion(), addedVersion());

        QList<Migration> gap = migrations();
        gap << Migration{addedVersion() + 1, u"fora de ordem"_s, [](Store&) {}};
        QVERIFY_THROWS_EXCEPTION(StoreError, migrate(st, gap));
    }

    // The SQLite file opens in the standard tool, which checks it and reads every table, on
    // a new installation and on one upgraded from the first version (which the tool could
    // not read).
    void sqliteToolReadsTheFile() {
        // (On PostgreSQL the collations are the server's own: any client reads the tables.
        // No QSKIP there, which would mark the whole PostgreSQL run as skipped.)
        if (qEnvironmentVariable("ROTALIX_TEST_ENGINE") == u"postgresql"_s) return;
        if (sqlite3Tool().isEmpty()) QFAIL("sqlite3 ausente (scripts/deps.sh o instala)");
        {
            TestInstallation inst;
            RTX_REQUIRE_INSTALL(inst);
            fillFirstVersion(inst.store());
            checkWithTool(inst.settings().sqliteFile);
        }
        TestInstallation db(TestInstallation::Empty{});
        {
            Store st(db.settings());
            migrate(st, {migrations().first()});
            fillFirstVersion(st);
        }
        bool ok = true;
        QVERIFY(tool(db.settings().sqliteFile, u"PRAGMA integrity_check;"_s, &ok)
                    .contains(u"no such collation sequence"_s));
        QVERIFY(!ok);
        {
            Store st(db.settings());
            st.ensureSchema();
        }
        checkWithTool(db.settings().sqliteFile);
    }
};

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() > 3 && args.at(1) == u"--start"_s) return startStation(args);
    SchemaTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_schema.moc"
