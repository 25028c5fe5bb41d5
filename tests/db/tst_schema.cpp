// The schema by numbered steps: a new installation and one of the first version reach the
// last step with their rows, and the SQLite file opens in the standard sqlite3 tool.

#include "store/migrations.h"
#include "testinstall.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

// A step as a developer would add one: a new column in the clients table.
Migration newColumnStep() {
    return {schemaVersion() + 1, u"coluna C35 nos clientes"_s, [](Store& st) {
                st.execute(st.engine() == Engine::SQLite
                               ? u"ALTER TABLE clientes ADD COLUMN C35 TEXT COLLATE NOCASE"_s
                               : u"ALTER TABLE clientes ADD COLUMN C35 TEXT COLLATE rtx_chave"_s);
            }};
}

QStringList columnsOf(Store& st, const QString& table) {
    QStringList out;
    for (Recordset rs = st.open(st.engine() == Engine::SQLite
                                    ? u"SELECT name FROM pragma_table_info(?)"_s
                                    : u"SELECT column_name FROM information_schema.columns WHERE "
                                      u"table_name = ? AND table_schema = current_schema()"_s,
                                {table});
         !rs.eof(); rs.moveNext())
        out << rs.value(0).toString().toLower();
    return out;
}

// Rows a first-version installation holds: clients whose names differ by an accent only,
// and cash movements with their day totals.
void fillFirstVersion(Store& st) {
    UnitOfWork unit(st);
    for (const auto& [code, name] :
         {std::pair{u"00001"_s, u"JOSÉ DA SILVA"_s}, std::pair{u"00002"_s, u"JOSE DA SILVA"_s}})
        st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s, {code, name});
    st.execute(u"INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"_s,
               {u"0000001"_s, QDate(2024, 3, 1), u"CRÉDITO"_s, qint64(10000)});
    st.execute(u"INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"_s,
               {u"0000002"_s, QDate(2024, 3, 1), u"DÉBITO"_s, qint64(2500)});
    unit.commit();
}

// The codes of the clients whose name begins with the text typed.
QString clientsStarting(Store& st, const QString& typed) {
    QStringList codes;
    for (Recordset rs = st.open(u"SELECT CODIGO FROM clientes WHERE %1 ORDER BY CODIGO"_s.arg(
                                    st.startsWith(u"clientes"_s, u"C5"_s)),
                                st.startParams(typed));
         !rs.eof(); rs.moveNext())
        codes << rs.text(u"CODIGO"_s);
    return codes.join(u',');
}

// What a first-version installation must still hold after its upgrade, and that its text
// now compares by the new rules.
void checkUpgradedRows(Store& st) {
    QCOMPARE(clientsStarting(st, u"jose d"_s), u"00001,00002"_s);
    // The cash day totals came along.
    const QDate day(2024, 3, 1);
    QCOMPARE(st.cashTotals(day, day).balance(), 10000 - 2500);
    // New rows get their folded copies.
    st.insert(u"clientes"_s, {{u"CODIGO"_s, u"00003"_s}, {u"C5"_s, u"Ágata"_s}});
    QCOMPARE(clientsStarting(st, u"AGA"_s), u"00003"_s);
}

// Runs the standard tool on a file; its output, or its error.
QString tool(const QString& file, const QString& sql, bool* ok = nullptr) {
    QProcess p;
    p.start(QStandardPaths::findExecutable(u"sqlite3"_s), {u"-batch"_s, file, sql});
    p.waitForFinished(30000);
    const QString err = QString::fromUtf8(p.readAllStandardError()).trimmed();
    if (ok) *ok = p.exitCode() == 0 && err.isEmpty();
    return err.isEmpty() ? QString::fromUtf8(p.readAllStandardOutput()).trimmed() : err;
}

// A station starting on the database: the first start of the program.
int startStation(const QStringList& args) {
    try {
        Store(stationSettings(args.at(2), args.at(3))).ensureSchema();
        return 0;
    } catch (const StoreError& e) {
        fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}

} // namespace

class SchemaTest : public QObject {
    Q_OBJECT

private slots:
    // A step added after the last: a new installation and a first-version one, with its
    // rows, both get the new column, the new one every listed column too; a second run
    // takes no step; a database of a later program is refused. A step that fails is undone
    // whole: the database stays at the version before it, and the next start tries again.
    void addedStepReachesNewAndOld() {
        QList<Migration> failing = migrations();
        failing << Migration{schemaVersion() + 1, u"falha"_s, [](Store& s) {
                                 newColumnStep().apply(s);
                                 s.execute(u"INSERT INTO tabela_nenhuma VALUES (1)"_s);
                             }};
        QList<Migration> steps = migrations();
        steps << newColumnStep();
        for (bool old : {false, true}) {
            TestInstallation db(TestInstallation::Empty{});
            RTX_REQUIRE_INSTALL(db);
            Store st(db.settings());
            if (old) {
                migrate(st, {migrations().first()});
                fillFirstVersion(st);
            } else {
                QVERIFY_THROWS_EXCEPTION(StoreError, migrate(st, failing));
                QCOMPARE(st.storedSchemaVersion(), schemaVersion());
                QVERIFY(!columnsOf(st, u"clientes"_s).contains(u"c35"_s));
                for (const TableDef& t : tables()) {
                    if (t.workTable) continue;
                    const QStringList columns = columnsOf(st, t.name);
                    for (const Column& c : t.columns)
                        QVERIFY2(columns.contains(c.name.toLower()),
                                 qPrintable(t.name + u'.' + c.name));
                }
            }
            migrate(st, steps);
            migrate(st, steps);
            QCOMPARE(st.storedSchemaVersion(), schemaVersion() + 1);
            QVERIFY(columnsOf(st, u"clientes"_s).contains(u"c35"_s));
            if (old) checkUpgradedRows(st);
            QVERIFY_THROWS_EXCEPTION(StoreError, st.ensureSchema()); // of a later program
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

    // The SQLite file opens in the standard tool, which checks it and reads every table, once
    // upgraded from the first version (which the tool could not read).
    void sqliteToolReadsTheFile() {
        // (On PostgreSQL the collations are the server's own: any client reads the tables.
        // No QSKIP there, which would mark the whole PostgreSQL run as skipped.)
        if (qEnvironmentVariable("ROTALIX_TEST_ENGINE") == u"postgresql"_s) return;
        if (QStandardPaths::findExecutable(u"sqlite3"_s).isEmpty())
            QFAIL("sqlite3 ausente (scripts/deps.sh o instala)");
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
        Store(db.settings()).ensureSchema();
        // The checks an office administrator or a backup script would make with the tool.
        QCOMPARE(tool(db.settings().sqliteFile, u"PRAGMA integrity_check;"_s, &ok), u"ok"_s);
        for (const TableDef& t : tables()) {
            tool(db.settings().sqliteFile, u"SELECT * FROM %1 LIMIT 5;"_s.arg(t.name), &ok);
            QVERIFY2(ok || t.workTable, qPrintable(t.name));
        }
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
