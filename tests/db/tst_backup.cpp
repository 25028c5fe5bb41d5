// The day's backup and its restore, on the engine of the run: one folder a day with the
// database as one SQLite file and the layouts; a second run replacing the first only once
// complete; a backup taken while another station writes dispatches with their postings; a
// restore into a fresh installation; damaged and foreign files refused; the AUTO screen.

#include "output/auto.h"
#include "output/core/backup.h"
#include "registerdesk.h"
#include "screendriver.h"

#include <QDir>
#include <QFile>
#include <atomic>
#include <thread>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace out = rtx::output;

namespace {

const QDate kDay(2026, 3, 10);
const QDateTime kNow(kDay, QTime(18, 0));

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

// The folders the installation holds, hidden ones too.
QStringList foldersIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

ConnectionSettings sqliteFile(const QString& file) {
    ConnectionSettings s;
    s.sqliteFile = file;
    return s;
}

// Dispatches whose number stands in no payable.
qint64 orphans(Store& store) {
    const QString same = store.engine() == Engine::PostgreSQL ? u"p.c3 = a.CODIGO COLLATE \"C\""_s
                                                              : u"p.c3 = a.CODIGO"_s;
    return store
        .scalar(u"SELECT COUNT(*) FROM atendimentos a WHERE NOT EXISTS "
                u"(SELECT 1 FROM contas_pagar p WHERE %1)"_s.arg(same))
        .toLongLong();
}

// One dispatch and its posting in one unit, as a station saves them.
void addDispatch(Store& store, int n) {
    UnitOfWork unit(store);
    const QString code = store.nextCode(u"atendimentos"_s);
    store.insert(u"atendimentos"_s,
                 {{u"CODIGO"_s, code}, {u"a6"_s, u"CLIENTE %1"_s.arg(n)}, {u"a2"_s, kDay}});
    store.insert(u"contas_pagar"_s, {{u"codigo"_s, store.nextCode(u"contas_pagar"_s)},
                                     {u"c2"_s, u"A pagar"_s},
                                     {u"c3"_s, code},
                                     {u"c13"_s, kDay}});
    unit.commit();
}

} // namespace

class BackupTest : public QObject {
    Q_OBJECT

private slots:
    // A second run on one day that fails in the middle (here on its second file) leaves the
    // first run's folder as it was; one that goes through leaves one folder with its own files
    // and rows. An earlier day's folder is never touched; no work folder stays behind.
    void oneBackupADay() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        const QString home = inst.folder();
        writeFile(home + u"/ATENDE.rpt"_s, "primeiro");
        QDir(home).mkdir(u"Backup 09.03.2026"_s);
        writeFile(home + u"/Backup 09.03.2026/rotalix.db"_s, "de ontem");
        QList<int> counts;
        out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay,
                                            [&](int n, const QString&) { counts << n; });
        QCOMPARE(run.files, 2);
        QCOMPARE(counts, (QList<int>{1, 2}));
        QCOMPARE(filesIn(run.folder), (QStringList{u"ATENDE.rpt"_s, u"rotalix.db"_s}));

        QFile::remove(home + u"/ATENDE.rpt"_s);
        writeFile(home + u"/AGENDAk.rpt"_s, "segundo");
        writeFile(home + u"/contas.rpt"_s, "segundo");
        addDispatch(inst.store(), 1);
        try {
            out::runBackup(inst.installation(), inst.settings(), kDay, [](int n, const QString&) {
                if (n == 2) throw out::BackupError(u"Disco cheio."_s);
            });
            QFAIL("the run went through");
        } catch (const out::BackupError& e) {
            QCOMPARE(e.text(), u"Disco cheio."_s);
        }
        QCOMPARE(foldersIn(home), (QStringList{u"Backup 09.03.2026"_s, u"Backup 10.03.2026"_s}));
        QCOMPARE(filesIn(run.folder), (QStringList{u"ATENDE.rpt"_s, u"rotalix.db"_s}));
        QCOMPARE(Store(sqliteFile(run.folder + u"/rotalix.db"_s)).count(u"atendimentos"_s), 0);

        run = out::runBackup(inst.installation(), inst.settings(), kDay);
        QCOMPARE(run.files, 3);
        QCOMPARE(filesIn(run.folder),
                 (QStringList{u"AGENDAk.rpt"_s, u"contas.rpt"_s, u"rotalix.db"_s}));
        QCOMPARE(foldersIn(home), (QStringList{u"Backup 09.03.2026"_s, u"Backup 10.03.2026"_s}));
        QFile yesterday(home + u"/Backup 09.03.2026/rotalix.db"_s);
        QVERIFY(yesterday.open(QIODevice::ReadOnly));
        QCOMPARE(yesterday.readAll(), QByteArray("de ontem"));
        QCOMPARE(out::checkBackupFile(run.folder + u"/rotalix.db"_s), schemaVersion());
        Store copy(sqliteFile(run.folder + u"/rotalix.db"_s));
        QCOMPARE(copy.count(u"atendimentos"_s), 1);
    }

    // A backup taken while another station adds a thousand dispatches, each with its
    // posting in one unit, holds whole units only; restored into a fresh installation it
    // passes the integrity check and gives the same rows.
    void backupWhileAnotherStationWrites() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        std::atomic<int> written{0};
        std::atomic<bool> failed{false};
        const ConnectionSettings settings = inst.settings();
        std::thread station([&] {
            try {
                Store other(settings);
                for (int n = 1; n <= 1000; ++n) {
                    addDispatch(other, n);
                    written = n;
                }
            } catch (const StoreError& e) {
                qWarning("station: %s", e.what());
                failed = true;
            }
        });
        while (written < 50 && !failed)
            QThread::msleep(5);
        const int beforeBackup = written;
        out::BackupRun run;
        try {
            run = out::runBackup(inst.installation(), settings, kDay);
        } catch (const out::BackupError& e) {
            station.join();
            QFAIL(qPrintable(e.text()));
        }
        const int afterBackup = written;
        station.join();
        QVERIFY(!failed);
        const QString file = run.folder + u"/rotalix.db"_s;
        QCOMPARE(out::checkBackupFile(file), schemaVersion());
        qint64 dispatches = 0;
        {
            Store copy(sqliteFile(file));
            dispatches = copy.count(u"atendimentos"_s);
            QVERIFY2(dispatches >= beforeBackup && dispatches <= afterBackup + 1,
                     qPrintable(QString::number(dispatches)));
            QCOMPARE(orphans(copy), 0);
            QCOMPARE(copy.count(u"contas_pagar"_s), dispatches);
        }

        TestInstallation fresh(true, false);
        RTX_REQUIRE_INSTALL(fresh);
        const out::RestoreRun restored =
            out::restoreBackup(fresh.installation(), fresh.settings(), run.folder, kNow);
        QCOMPARE(restored.restoredFrom, file);
        Store back(fresh.settings());
        QCOMPARE(back.count(u"atendimentos"_s), dispatches);
        QCOMPARE(orphans(back), 0);
        // Codes and identities go on after the restored rows.
        addDispatch(back, 1001);
        QCOMPARE(back.count(u"atendimentos"_s), dispatches + 1);
    }

    // The demo office restored into a fresh installation: the same rows, the same cash
    // totals; the fresh installation's own database was kept aside first.
    void restoreIntoAFreshInstallation() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        const QString names = u"SELECT %1 FROM clientes ORDER BY CODIGO"_s;
        QStringList before;
        for (Recordset rs = inst.store().open(names.arg(u"C5"_s)); !rs.eof(); rs.moveNext())
            before << rs.text(u"C5"_s);
        const QStringList tables{u"clientes"_s,       u"atendimentos"_s, u"caixa"_s,
                                 u"contas_receber"_s, u"agenda"_s,       u"agenda_avisos"_s,
                                 u"funcionarios"_s,   u"permissoes"_s};
        QList<qint64> counts;
        for (const QString& t : tables)
            counts << inst.store().count(t);
        const Store::CashTotals totals =
            inst.store().cashTotals(QDate(2000, 1, 1), QDate(2100, 1, 1));

        TestInstallation fresh(true, false);
        RTX_REQUIRE_INSTALL(fresh);
        const QString copied = fresh.folder() + u"/Backup 10.03.2026"_s;
        QVERIFY(QDir().mkpath(copied));
        QVERIFY(QFile::copy(run.folder + u"/rotalix.db"_s, copied + u"/rotalix.db"_s));
        const out::RestoreRun restored = out::restoreBackup(fresh.installation(), fresh.settings(),
                                                            u"Backup 10.03.2026"_s, kNow);
        QCOMPARE(restored.keptAside,
                 fresh.folder() + u"/Antes da restauração 10.03.2026 18.00.00.db"_s);
        QCOMPARE(out::checkBackupFile(restored.keptAside), schemaVersion());
        Store back(fresh.settings());
        QList<qint64> after;
        for (const QString& t : tables)
            after << back.count(t);
        QCOMPARE(after, counts);
        QStringList restoredNames;
        for (Recordset rs = back.open(names.arg(u"C5"_s)); !rs.eof(); rs.moveNext())
            restoredNames << rs.text(u"C5"_s);
        QCOMPARE(restoredNames, before);
        const Store::CashTotals again = back.cashTotals(QDate(2000, 1, 1), QDate(2100, 1, 1));
        QCOMPARE(again.credits, totals.credits);
        QCOMPARE(again.debits, totals.debits);
    }

    // A damaged file, a database of another program, a backup of a newer version and a
    // missing folder are refused with a message, and nothing is touched.
    void refusedRestores() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        const QString home = inst.folder();
        const qint64 clients = inst.store().count(u"clientes"_s);
        const out::BackupRun good = out::runBackup(inst.installation(), inst.settings(), kDay);
        QFile whole(good.folder + u"/rotalix.db"_s);
        QVERIFY(whole.open(QIODevice::ReadOnly));
        const QByteArray bytes = whole.readAll();

        const auto refused = [&](const QString& folder, const QString& words) {
            try {
                out::restoreBackup(inst.installation(), inst.settings(), folder, kNow);
                QFAIL(qPrintable(u"restored: "_s + folder));
            } catch (const out::BackupError& e) {
                QVERIFY2(e.text().contains(words), qPrintable(e.text()));
            }
        };
        QDir(home).mkdir(u"Backup 01.01.2020"_s);
        writeFile(home + u"/Backup 01.01.2020/rotalix.db"_s,
                  bytes.left(bytes.size() / 2) + QByteArray(4096, 'x'));
        refused(u"Backup 01.01.2020"_s, u"danificado"_s);
        writeFile(home + u"/Backup 01.01.2020/rotalix.db"_s, "isto não é um banco");
        refused(u"Backup 01.01.2020"_s, u"danificado"_s);
        QFile::remove(home + u"/Backup 01.01.2020/rotalix.db"_s);
        {
            Store foreign(sqliteFile(home + u"/Backup 01.01.2020/rotalix.db"_s));
            foreign.execute(u"CREATE TABLE outra (x INTEGER)"_s);
        }
        refused(u"Backup 01.01.2020"_s, u"não é um backup"_s);
        {
            QFile::remove(home + u"/Backup 01.01.2020/rotalix.db"_s);
            QVERIFY(QFile::copy(good.folder + u"/rotalix.db"_s,
                                home + u"/Backup 01.01.2020/rotalix.db"_s));
            Store newer(sqliteFile(home + u"/Backup 01.01.2020/rotalix.db"_s));
            newer.execute(u"UPDATE rtx_versao SET versao = 999"_s);
        }
        refused(u"Backup 01.01.2020"_s, u"versão mais nova"_s);
        refused(u"Backup 02.02.2020"_s, u"não foi encontrado"_s);
        QCOMPARE(inst.store().count(u"clientes"_s), clients);
        for (const QString& f : filesIn(home))
            QVERIFY2(!f.startsWith(u"Antes da restauração"_s), qPrintable(f));
    }

    // AUTO: the count as the files go, the message of four lines word for word, and the
    // screen closing; a failure is told and the screen stays.
    void autoScreen() {
        Desk<rtx::ui::AUTO> d(false);
        RTX_OPEN_DESK(d);
        QCOMPARE(misfit(d.s(), QSize(1004, 724)), QString());
        writeFile(d.inst.folder() + u"/ATENDE.rpt"_s, "layout");
        QCOMPARE(shown(d.s(), u"Text1"_s), QDate::currentDate().toString(u"dd/MM/yyyy"_s));
        QCOMPARE(shown(d.s(), u"QTDE"_s), QString());
        click(d.s(), u"Command16"_s);
        QCOMPARE(
            d.prompts.texts(),
            QStringList{u"O backup foi realizado com sucesso.\r\nFoi criado uma sub-pasta com a "
                        u"data de hoje e salvo os bancos de dados, dentro desta pasta.\r\nEstá é "
                        u"uma opção de backup, porém é importante que se faça uma cópia da pasta "
                        u"toda em um CD,\r\npara que não seja perdida nenhuma informação em caso "
                        u"de problemas com o computador."_s});
        QCOMPARE(shown(d.s(), u"QTDE"_s), u"2"_s);
        QVERIFY(!d.s()->isVisible());
        QCOMPARE(filesIn(d.inst.folder() + u"/"_s + out::backupFolderName(QDate::currentDate())),
                 (QStringList{u"ATENDE.rpt"_s, u"rotalix.db"_s}));
    }
};

QTEST_MAIN(BackupTest)
#include "tst_backup.moc"
