// The schema by numbered steps, on the engine under test: a new installation and one of the
// first version reach the last step with their rows, a step added later (a new column)
// reaches both, a failed step leaves the version before it, and the SQLite file opens in the
// standard sqlite3 tool.

#include "store/formats.h"
#include "store/migrations.h"
#include "testinstall.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUuid>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;

namespace {

// An empty database on the engine under test: a new file, or a new PostgreSQL database
// dropped at the end.
class EmptyDatabase {
public:
    EmptyDatabase() {
        settings_.sqliteFile = dir_.filePath(QStringLiteral("rotalix.db"));
        if (qEnvironmentVariable("ROTALIX_TEST_ENGINE") != QStringLiteral("postgresql")) {
            ok_ = true;
            return;
        }
        settings_.engine = Engine::PostgreSQL;
        settings_.host = qEnvironmentVariable("ROTALIX_TEST_PGHOST");
        settings_.port = qEnvironmentVariableIntValue("ROTALIX_TEST_PGPORT");
        settings_.user = qEnvironmentVariable("ROTALIX_TEST_PGUSER", QStringLiteral("postgres"));
        if (settings_.host.isEmpty()) {
            reason_ = QStringLiteral("PostgreSQL de teste ausente: teste pulado");
            return;
        }
        settings_.database =
            QStringLiteral("rtx_%1").arg(QUuid::createUuid().toString(QUuid::Id128).left(16));
        reason_ = admin(QStringLiteral("CREATE DATABASE %1 TEMPLATE template0 ENCODING 'UTF8'")
                            .arg(settings_.database));
        ok_ = reason_.isEmpty();
    }
    ~EmptyDatabase() {
        if (ok_ && settings_.engine == Engine::PostgreSQL)
            admin(
                QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(settings_.database));
    }
    bool ok() const { return ok_; }
    QString reason() const { return reason_; }
    ConnectionSettings settings() const { return settings_; }
    QString path(const QString& name) const { return dir_.filePath(name); }

private:
    QString admin(const QString& sql) const {
        const QString name = QUuid::createUuid().toString();
        QString error;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
            db.setHostName(settings_.host);
            db.setPort(settings_.port);
            db.setUserName(settings_.user);
            db.setDatabaseName(QStringLiteral("postgres"));
            if (!db.open())
                error = db.lastError().text();
            else if (QSqlQuery q(db); !q.exec(sql))
                error = q.lastError().text();
        }
        QSqlDatabase::removeDatabase(name);
        return error;
    }
    QTemporaryDir dir_;
    ConnectionSettings settings_;
    bool ok_ = false;
    QString reason_;
};

#define REQUIRE_EMPTY(db)                                                                          \
    do {                                                                                           \
        if (!(db).ok()) QSKIP(qPrintable((db).reason()));                                          \
    } while (0)

QList<Migration> firstStepOnly() {
    return {migrations().first()};
}

// A third step, as a developer would add one: a new column in the clients table.
Migration newColumnStep() {
    return {3, QStringLiteral("coluna C35 nos clientes"), [](Store& st) {
                st.execute(st.engine() == Engine::SQLite
                               ? QStringLiteral("ALTER TABLE clientes ADD COLUMN C35 TEXT "
                                                "COLLATE NOCASE")
                               : QStringLiteral("ALTER TABLE clientes ADD COLUMN C35 TEXT "
                                                "COLLATE rtx_chave"));
            }};
}

QStringList columnsOf(Store& st, const QString& table) {
    QStringList out;
    if (st.engine() == Engine::SQLite) {
        for (Recordset rs = st.open(QStringLiteral("PRAGMA table_info(%1)").arg(table)); !rs.eof();
             rs.moveNext())
            out << rs.value(QStringLiteral("name")).toString().toLower();
    } else {
        for (Recordset rs =
                 st.open(QStringLiteral("SELECT column_name FROM "
                                        "information_schema.columns WHERE table_name = ? "
                                        "AND table_schema = current_schema()"),
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
    st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5, C6, C8) VALUES (?, ?, ?, ?)"),
               {QStringLiteral("00001"), QStringLiteral("JOSÉ DA SILVA"), QStringLiteral("ZÉ"),
                QStringLiteral("1133334444")});
    st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5, C6, C8) VALUES (?, ?, ?, ?)"),
               {QStringLiteral("00002"), QStringLiteral("JOSE DA SILVA"), QStringLiteral("ZE"),
                QStringLiteral("1155556666")});
    st.execute(QStringLiteral("INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"),
               {QStringLiteral("MARIA"), QStringLiteral("segredo")});
    st.execute(
        QStringLiteral("INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"),
        {QStringLiteral("0000001"), QDate(2024, 3, 1), QStringLiteral("CRÉDITO"), qint64(10000)});
    st.execute(
        QStringLiteral("INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"),
        {QStringLiteral("0000002"), QDate(2024, 3, 1), QStringLiteral("DÉBITO"), qint64(2500)});
    unit.commit();
}

// What a first-version installation must still hold after its upgrade, and that its text
// now compares by the new rules.
void checkUpgradedRows(Store& st) {
    QCOMPARE(st.count(QStringLiteral("clientes")), 2);
    Recordset jose = st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                                 st.sameText(QStringLiteral("clientes"), QStringLiteral("C5")),
                             {QStringLiteral("jose da silva")});
    QCOMPARE(jose.recordCount(), 1);
    QCOMPARE(jose.text(QStringLiteral("CODIGO")), QStringLiteral("00002"));
    QCOMPARE(jose.text(QStringLiteral("C8")), QStringLiteral("1155556666"));
    QCOMPARE(st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                         st.sameText(QStringLiteral("clientes"), QStringLiteral("C6")),
                     {QStringLiteral("zé")})
                 .text(QStringLiteral("CODIGO")),
             QStringLiteral("00001"));
    QCOMPARE(st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                         st.startsWith(QStringLiteral("clientes"), QStringLiteral("C5")),
                     st.startParams(QStringLiteral("jose d")))
                 .recordCount(),
             2);
    QCOMPARE(st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                         st.sameText(QStringLiteral("clientes"), QStringLiteral("C8")),
                     {QStringLiteral("1133334444")})
                 .text(QStringLiteral("C5")),
             QStringLiteral("JOSÉ DA SILVA"));
    // The cash day totals came along, and follow the rows still.
    const QDate day(2024, 3, 1);
    QCOMPARE(st.cashTotals(day, day).balance(), 10000 - 2500);
    st.execute(QStringLiteral("INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"),
               {QStringLiteral("0000003"), day, QStringLiteral("crédito"), qint64(100)});
    st.execute(QStringLiteral("UPDATE caixa SET A5 = ? WHERE codigo = ?"),
               {qint64(3000), QStringLiteral("0000002")});
    st.execute(QStringLiteral("DELETE FROM caixa WHERE codigo = ?"), {QStringLiteral("0000001")});
    QCOMPARE(st.cashTotals(day, day).balance(), 100 - 3000);
    // New rows get new ids, and their folded copies.
    const QVariant id =
        st.insert(QStringLiteral("clientes"), {{QStringLiteral("CODIGO"), QStringLiteral("00003")},
                                               {QStringLiteral("C5"), QStringLiteral("Ágata")}});
    QVERIFY(id.toLongLong() > 2);
    QCOMPARE(st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                         st.startsWith(QStringLiteral("clientes"), QStringLiteral("C5")),
                     st.startParams(QStringLiteral("AGA")))
                 .text(QStringLiteral("CODIGO")),
             QStringLiteral("00003"));
}

QString sqlite3Tool() {
    return QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
}

// Runs the standard tool on a file; its output, or its error.
QString tool(const QString& file, const QString& sql, bool* ok = nullptr) {
    QProcess p;
    p.start(sqlite3Tool(), {QStringLiteral("-batch"), file, sql});
    p.waitForFinished(30000);
    const QString err = QString::fromUtf8(p.readAllStandardError()).trimmed();
    if (ok) *ok = p.exitCode() == 0 && err.isEmpty();
    return err.isEmpty() ? QString::fromUtf8(p.readAllStandardOutput()).trimmed() : err;
}

// The checks an office administrator or a backup script would make with the tool.
void checkWithTool(const QString& file) {
    bool ok = false;
    QCOMPARE(tool(file, QStringLiteral("PRAGMA integrity_check;"), &ok), QStringLiteral("ok"));
    for (const TableDef& t : tables()) {
        if (t.workTable) continue;
        tool(file, QStringLiteral("SELECT * FROM %1 ORDER BY 2 LIMIT 5;").arg(t.name), &ok);
        QVERIFY2(ok, qPrintable(t.name));
    }
    QCOMPARE(tool(file,
                  QStringLiteral("SELECT CODIGO, C5 FROM clientes WHERE C5 = 'jose da "
                                 "silva' ORDER BY C5;"),
                  &ok),
             QStringLiteral("00002|JOSE DA SILVA"));
    QCOMPARE(tool(file, QStringLiteral("SELECT COUNT(*) FROM caixa_dias;"), &ok),
             QStringLiteral("1"));
}

// A station starting on the database: the first start of the program.
int startStation(const QStringList& args) {
    ConnectionSettings s;
    s.engine = args.at(2) == QStringLiteral("pg") ? Engine::PostgreSQL : Engine::SQLite;
    s.sqliteFile = args.at(3);
    s.database = args.at(3);
    s.host = qEnvironmentVariable("ROTALIX_TEST_PGHOST");
    s.port = qEnvironmentVariableIntValue("ROTALIX_TEST_PGPORT");
    s.user = qEnvironmentVariable("ROTALIX_TEST_PGUSER", QStringLiteral("postgres"));
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
        QCOMPARE(schemaVersion(), migrations().last().version);
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
                    QVERIFY2(
                        st.scalar(QStringLiteral("SELECT COUNT(*) FROM pg_indexes WHERE "
                                                 "tablename = ? AND indexdef LIKE ?"),
                                  {t.name, QStringLiteral("%(") + ix.toLower() +
                                               QStringLiteral(" COLLATE rtx_busca NULLS FIRST, %")})
                                .toInt() == 1,
                        qPrintable(t.name + u'.' + ix));
                }
            }
        }
        if (st.engine() == Engine::SQLite)
            QCOMPARE(st.scalar(QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE sql LIKE "
                                              "'%rtx_fold%'"))
                         .toInt(),
                     0);
        else
            QCOMPARE(st.scalar(QStringLiteral("SELECT COUNT(*) FROM information_schema.columns "
                                              "WHERE table_schema = current_schema() AND "
                                              "collation_name = 'rtx_ci'"))
                         .toInt(),
                     0);
    }

    // A database of the first version, with its rows, is brought to the last step by the
    // next start of the program.
    void firstVersionUpgrades() {
        EmptyDatabase db;
        REQUIRE_EMPTY(db);
        {
            Store st(db.settings());
            migrate(st, firstStepOnly());
            QCOMPARE(st.storedSchemaVersion(), 1);
            fillFirstVersion(st);
        }
        Store st(db.settings());
        st.ensureSchema();
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        checkUpgradedRows(st);
        // Another start changes nothing.
        st.ensureSchema();
        QCOMPARE(st.count(QStringLiteral("clientes")), 3);
    }

    // A step added after the last: a new installation and a first-version one both get the
    // new column; a second run takes no step; a database of a later program is refused.
    void addedStepReachesNewAndOld() {
        QList<Migration> steps = migrations();
        steps << newColumnStep();
        for (bool old : {false, true}) {
            EmptyDatabase db;
            REQUIRE_EMPTY(db);
            Store st(db.settings());
            if (old) {
                migrate(st, firstStepOnly());
                fillFirstVersion(st);
            }
            migrate(st, steps);
            QCOMPARE(st.storedSchemaVersion(), 3);
            QVERIFY(columnsOf(st, QStringLiteral("clientes")).contains(QStringLiteral("c35")));
            migrate(st, steps);
            QCOMPARE(st.storedSchemaVersion(), 3);
            if (old) {
                checkUpgradedRows(st);
                QVERIFY(st.open(QStringLiteral("SELECT C35 FROM clientes WHERE CODIGO = '00001'"))
                            .isNull(QStringLiteral("C35")));
            }
            st.saveByKey(QStringLiteral("clientes"), QStringLiteral("CODIGO"),
                         QStringLiteral("00009"),
                         {{QStringLiteral("C35"), QStringLiteral("novo")}});
            QCOMPARE(st.open(QStringLiteral("SELECT C35 FROM clientes WHERE C35 = 'NOVO'"))
                         .recordCount(),
                     1);
            try {
                st.ensureSchema();
                QFAIL("a database of a later program was taken");
            } catch (const StoreError& e) {
                QVERIFY(e.text().contains(QStringLiteral("mais nova")));
            }
        }
    }

    // Stations that start together on a new database build it once, one step after the
    // other, and all of them start.
    void stationsStartingTogether() {
        EmptyDatabase db;
        REQUIRE_EMPTY(db);
        const ConnectionSettings s = db.settings();
        const bool pg = s.engine == Engine::PostgreSQL;
        QList<QProcess*> stations;
        for (int i = 0; i < 3; ++i) {
            auto* p = new QProcess(this);
            p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            p->start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--start"),
                      pg ? QStringLiteral("pg") : QStringLiteral("sqlite"),
                      pg ? s.database : s.sqliteFile});
            stations << p;
        }
        for (QProcess* p : stations) {
            QVERIFY(p->waitForFinished(120000));
            QCOMPARE(p->exitCode(), 0);
        }
        Store st(s);
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        QCOMPARE(st.scalar(QStringLiteral("SELECT COUNT(*) FROM rtx_versao")).toInt(), 1);
        QCOMPARE(st.count(QStringLiteral("clientes")), 0);
    }

    // A step that fails is undone whole: the database stays at the version before it, and
    // the next start tries it again. Steps out of order are refused.
    void failedStepLeavesTheVersionBefore() {
        EmptyDatabase db;
        REQUIRE_EMPTY(db);
        Store st(db.settings());
        migrate(st, migrations());
        QList<Migration> steps = migrations();
        steps << Migration{3, QStringLiteral("falha"), [](Store& s) {
                               newColumnStep().apply(s);
                               s.execute(QStringLiteral("INSERT INTO tabela_nenhuma VALUES (1)"));
                           }};
        try {
            migrate(st, steps);
            QFAIL("the failing step went through");
        } catch (const StoreError& e) {
            QVERIFY(e.text().contains(QStringLiteral("vers\u00e3o 3")));
        }
        QVERIFY(!st.inTransaction());
        QCOMPARE(st.storedSchemaVersion(), 2);
        QVERIFY(!columnsOf(st, QStringLiteral("clientes")).contains(QStringLiteral("c35")));
        steps.last() = newColumnStep();
        migrate(st, steps);
        QCOMPARE(st.storedSchemaVersion(), 3);

        QList<Migration> gap = migrations();
        gap << Migration{5, QStringLiteral("fora de ordem"), [](Store&) {}};
        QVERIFY_THROWS_EXCEPTION(StoreError, migrate(st, gap));
    }

    // The SQLite file opens in the standard tool, which checks it and reads every table, on
    // a new installation and on one upgraded from the first version (which the tool could
    // not read).
    void sqliteToolReadsTheFile() {
        // (On PostgreSQL the collations are the server's own: any client reads the tables.
        // No QSKIP there, which would mark the whole PostgreSQL run as skipped.)
        if (qEnvironmentVariable("ROTALIX_TEST_ENGINE") == QStringLiteral("postgresql")) return;
        if (sqlite3Tool().isEmpty()) QFAIL("sqlite3 ausente (scripts/deps.sh o instala)");
        {
            TestInstallation inst;
            RTX_REQUIRE_INSTALL(inst);
            fillFirstVersion(inst.store());
            checkWithTool(inst.settings().sqliteFile);
        }
        EmptyDatabase db;
        {
            Store st(db.settings());
            migrate(st, firstStepOnly());
            fillFirstVersion(st);
        }
        bool ok = true;
        QVERIFY(tool(db.settings().sqliteFile, QStringLiteral("PRAGMA integrity_check;"), &ok)
                    .contains(QStringLiteral("no such collation sequence")));
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
    if (args.size() > 3 && args.at(1) == QStringLiteral("--start")) return startStation(args);
    SchemaTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_schema.moc"
