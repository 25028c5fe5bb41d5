// The day's backup and its restore, on the engine of the run: one folder a day with the
// database as one SQLite file and the layouts; a second run replacing the first only once
// complete; a backup taken while another station writes dispatches with their postings; a
// restore; damaged and foreign files refused; the AUTO screen.
// A backup read from a CD without a byte written; a day's folder that holds the office's
// own files, leads elsewhere or is a file; a backup of the first version; the layouts
// restored; a kept-aside copy that the disk has no room for.

#include "output/auto.h"
#include "output/core/backup.h"
#include "registerdesk.h"
#include "screendriver.h"

#include "store/migrations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <atomic>
#include <csignal>
#include <sys/resource.h>
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

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Everything a folder holds, hidden entries too, with each file's size and time: what a
// look at a CD would show.
QStringList snapshotOf(const QString& folder) {
    QStringList seen;
    for (const QFileInfo& e : QDir(folder).entryInfoList(
             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name))
        seen << u"%1 %2 %3"_s.arg(e.fileName())
                    .arg(e.isDir() ? -1 : e.size())
                    .arg(e.lastModified().toMSecsSinceEpoch());
    return seen;
}

// The names a folder holds, hidden ones too, without the index SQLite keeps beside a live
// database (which any reader writes to).
QStringList namesIn(const QString& folder) {
    QStringList names = QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    names.removeIf([](const QString& n) { return n.endsWith(u"-shm"_s); });
    return names;
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

// Restores a backup; the words of its refusal, or nothing when it went through.
QString restoreRefusal(const Installation& inst, const ConnectionSettings& settings,
                       const QString& folder, const QDateTime& when) {
    try {
        out::restoreBackup(inst, settings, folder, when);
    } catch (const out::BackupError& e) {
        return e.text();
    }
    return {};
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
        QCOMPARE(contents(home + u"/Backup 09.03.2026/rotalix.db"_s), QByteArray("de ontem"));
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

    // A damaged file, a database of another program, a backup of a newer version and a
    // missing folder are refused with a message, and nothing is touched.
    void refusedRestores() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        const QString home = inst.folder();
        const qint64 clients = inst.store().count(u"clientes"_s);
        const out::BackupRun good = out::runBackup(inst.installation(), inst.settings(), kDay);
        const QByteArray bytes = contents(good.folder + u"/rotalix.db"_s);
        const auto refused = [&](const QString& folder, const QString& words) {
            const QString text = restoreRefusal(inst.installation(), inst.settings(), folder, kNow);
            QVERIFY2(text.contains(words), qPrintable(folder + u": "_s + text));
            QVERIFY2(text.endsWith(u"A restauração não foi feita: o banco de dados atual "
                                   u"e os relatórios estão intactos."_s),
                     qPrintable(text));
        };
        QDir(home).mkdir(u"Backup 01.01.2020"_s);
        writeFile(home + u"/Backup 01.01.2020/rotalix.db"_s,
                  bytes.left(bytes.size() / 2) + QByteArray(4096, 'x'));
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

    // A backup copied to a CD (a folder and file nobody may write, and a check that could
    // not write even as the administrator): the file is whole in itself, with no log
    // beside it; it is checked and restored without a byte, a time or a file changing there.
    void backupReadFromReadOnlyMedia() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        writeFile(inst.folder() + u"/ATENDE.rpt"_s, "layout");
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        const QByteArray header = contents(run.folder + u"/rotalix.db"_s).left(20);
        // Bytes 18 and 19 of a database say whether it needs a log beside it (2) or not (1).
        QCOMPARE(int(header[18]), 1);
        QCOMPARE(int(header[19]), 1);

        QTemporaryDir media;
        const QString cd = media.filePath(u"Backup 10.03.2026"_s);
        QVERIFY(QDir().mkpath(cd));
        for (const QString& f : filesIn(run.folder))
            QVERIFY(QFile::copy(run.folder + u"/"_s + f, cd + u"/"_s + f));
        const QFile::Permissions readOnly = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther |
                                            QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
        for (const QString& f : filesIn(cd))
            QVERIFY(QFile::setPermissions(cd + u"/"_s + f,
                                          QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        QVERIFY(QFile::setPermissions(cd, readOnly));
        const QStringList before = snapshotOf(cd);
        const QByteArray bytes = contents(cd + u"/rotalix.db"_s);

        QCOMPARE(out::checkBackupFile(cd + u"/rotalix.db"_s), schemaVersion());
        QCOMPARE(snapshotOf(cd), before);
        TestInstallation fresh(true, false);
        RTX_REQUIRE_INSTALL(fresh);
        QCOMPARE(restoreRefusal(fresh.installation(), fresh.settings(), cd, kNow), QString());
        QCOMPARE(snapshotOf(cd), before);
        QCOMPARE(contents(cd + u"/rotalix.db"_s), bytes);
        {
            // The demo office whole: the same rows, the same cash totals.
            Store back(fresh.settings());
            for (const QString& t : {u"clientes"_s, u"atendimentos"_s, u"caixa"_s,
                                     u"contas_receber"_s, u"agenda"_s, u"funcionarios"_s})
                QCOMPARE(back.count(t), inst.store().count(t));
            const QDate from(2000, 1, 1), to(2100, 1, 1);
            QCOMPARE(back.cashTotals(from, to).credits, inst.store().cashTotals(from, to).credits);
            QCOMPARE(back.cashTotals(from, to).debits, inst.store().cashTotals(from, to).debits);
        }

        // The CDs the offices already keep hold files whose header asks for a log (as the
        // earlier backups left them): read where they lie all the same.
        const QString older = media.filePath(u"Backup 09.03.2026"_s);
        QVERIFY(QDir().mkpath(older));
        QByteArray logged = bytes;
        logged[18] = 2;
        logged[19] = 2;
        writeFile(older + u"/rotalix.db"_s, logged);
        QVERIFY(QFile::setPermissions(older + u"/rotalix.db"_s, QFile::ReadOwner));
        QVERIFY(QFile::setPermissions(older, readOnly));
        const QStringList olderBefore = snapshotOf(older);
        QCOMPARE(out::checkBackupFile(older + u"/rotalix.db"_s), schemaVersion());
        QCOMPARE(restoreRefusal(fresh.installation(), fresh.settings(), older, kNow.addSecs(1)),
                 QString());
        QCOMPARE(snapshotOf(older), olderBefore);
        QFile::setPermissions(cd, readOnly | QFile::WriteOwner);
        QFile::setPermissions(older, readOnly | QFile::WriteOwner);
    }

    // The office keeps a note and a subfolder of its own in the day's folder: the backup
    // runs twice through the screen, replaces only what the first run wrote (a layout
    // removed since goes), leaves the note and the subfolder with what they hold, and names
    // them under the usual message.
    void dayFolderHoldsTheOfficesFiles() {
        Desk<rtx::ui::AUTO> d(false);
        RTX_OPEN_DESK(d);
        const QString home = d.inst.folder();
        const QString day = home + u"/"_s + out::backupFolderName(QDate::currentDate());
        writeFile(home + u"/ATENDE.rpt"_s, "primeiro");
        writeFile(home + u"/velho.rpt"_s, "sai no segundo");
        QVERIFY(QDir().mkpath(day + u"/fotos/2026"_s));
        writeFile(day + u"/fotos/2026/entrega.jpg"_s, "foto");
        writeFile(day + u"/leia-me.txt"_s, "nota do escritório");
        click(d.s(), u"Command16"_s);
        const QString named = u"\r\n\r\nFicaram na pasta %1, como estavam, itens que não foram "
                              u"gravados pelo backup: fotos, leia-me.txt."_s.arg(
                                  out::backupFolderName(QDate::currentDate()));
        QCOMPARE(d.prompts.texts(), QStringList{rtx::ui::AUTO::doneMessage() + named});

        QFile::remove(home + u"/velho.rpt"_s);
        writeFile(home + u"/ATENDE.rpt"_s, "segundo");
        d.prompts.clear();
        rtx::ui::AUTO again;
        QVERIFY(showActive(&again));
        click(&again, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), QStringList{rtx::ui::AUTO::doneMessage() + named});
        QCOMPARE(filesIn(day), (QStringList{u"ATENDE.rpt"_s, u"leia-me.txt"_s, u"rotalix.db"_s}));
        QCOMPARE(foldersIn(day), QStringList{u"fotos"_s});
        QCOMPARE(contents(day + u"/ATENDE.rpt"_s), QByteArray("segundo"));
        QCOMPARE(contents(day + u"/leia-me.txt"_s), QByteArray("nota do escritório"));
        QCOMPARE(contents(day + u"/fotos/2026/entrega.jpg"_s), QByteArray("foto"));
    }

    // A day's folder that leads to a folder elsewhere (a share) gets the backup there, twice,
    // and what else is there stays; the link stays a link. A file that stands where the
    // day's folder goes is told in words through the screen, every time, and is not touched
    // nor hidden.
    void dayFolderThatIsALinkOrAFile() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        QTemporaryDir share;
        writeFile(share.filePath(u"guardar.txt"_s), "do servidor");
        const QString link = inst.folder() + u"/"_s + out::backupFolderName(kDay);
        QVERIFY(QFile::link(share.path(), link));
        writeFile(inst.folder() + u"/ATENDE.rpt"_s, "layout");
        out::runBackup(inst.installation(), inst.settings(), kDay);
        addDispatch(inst.store(), 1);
        out::runBackup(inst.installation(), inst.settings(), kDay);
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(filesIn(share.path()),
                 (QStringList{u"ATENDE.rpt"_s, u"guardar.txt"_s, u"rotalix.db"_s}));
        QCOMPARE(contents(share.filePath(u"guardar.txt"_s)), QByteArray("do servidor"));
        QCOMPARE(foldersIn(share.path()), QStringList());
        QCOMPARE(Store(sqliteFile(share.filePath(u"rotalix.db"_s))).count(u"atendimentos"_s), 1);

        Desk<rtx::ui::AUTO> d(false);
        RTX_OPEN_DESK(d);
        const QString name = out::backupFolderName(QDate::currentDate());
        writeFile(d.inst.folder() + u"/"_s + name, "um arquivo");
        const QStringList before = snapshotOf(d.inst.folder());
        for (int run = 0; run < 2; ++run) {
            d.prompts.clear();
            click(d.s(), u"Command16"_s);
            QCOMPARE(
                d.prompts.texts(ScriptedPrompter::Kind::Error),
                QStringList{u"Já existe um arquivo chamado \"%1\" na pasta %2, no lugar da "
                            u"pasta do backup de hoje. O arquivo não foi alterado: "
                            u"renomeie-o ou mova-o para outro lugar e faça o backup de novo."_s.arg(
                                name, d.inst.folder())});
            QVERIFY(d.s()->isVisible());
            QCOMPARE(snapshotOf(d.inst.folder()), before);
        }
    }

    // A backup of the first version, as an installation of that version wrote it (its
    // tables name the program's own collation, which the standard tool does not know): it
    // is checked, restored and brought up to this version, and its names are found as the
    // screens look for them.
    void firstVersionBackupRestored() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        const QString folder = inst.folder() + u"/Backup 01.02.2021"_s;
        QVERIFY(QDir().mkpath(folder));
        {
            Store old(sqliteFile(folder + u"/rotalix.db"_s));
            migrate(old, {migrations().first()});
            old.execute(u"INSERT INTO clientes (CODIGO, C5, C3) VALUES ('00001', 'JOSÉ DA "
                        u"SILVA', 'Centro'), ('00002', 'Ana Souza', 'Lapa')"_s);
            QCOMPARE(old.storedSchemaVersion(), 1);
        }
        QProcess tool;
        tool.setProcessChannelMode(QProcess::MergedChannels);
        tool.start(u"sqlite3"_s, {folder + u"/rotalix.db"_s, u"PRAGMA integrity_check"_s});
        if (tool.waitForFinished(10000))
            QVERIFY2(tool.readAll().contains("collation"), "not a file of the first version");

        QCOMPARE(out::checkBackupFile(folder + u"/rotalix.db"_s), 1);
        QCOMPARE(restoreRefusal(inst.installation(), inst.settings(), u"Backup 01.02.2021"_s, kNow),
                 QString());
        Store back(inst.settings());
        QCOMPARE(back.storedSchemaVersion(), schemaVersion());
        QCOMPARE(back.count(u"clientes"_s), 2);
        Recordset found = back.open(
            u"SELECT CODIGO FROM clientes WHERE %1"_s.arg(back.startsWith(u"clientes"_s, u"C5"_s)),
            back.startParams(u"jose"_s));
        QCOMPARE(found.text(u"CODIGO"_s), u"00001"_s);
        // The next code follows the restored ones.
        QCOMPARE(back.peekCode(u"clientes"_s), u"00003"_s);
    }

    // The layouts come back with the database: into an empty folder, which is then a whole
    // installation; and over an installation's own layouts, which are kept aside with its
    // database in a folder that restores them in turn.
    void layoutsRestored() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        writeFile(inst.folder() + u"/ATENDE.rpt"_s, "do backup");
        writeFile(inst.folder() + u"/contas.rpt"_s, "contas do backup");
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);

        QTemporaryDir empty;
        const Installation bare(empty.path());
        QCOMPARE(restoreRefusal(bare, bare.connectionSettings(), run.folder, kNow), QString());
        QCOMPARE(filesIn(empty.path()),
                 (QStringList{u"ATENDE.rpt"_s, u"contas.rpt"_s, u"rotalix.db"_s}));
        QCOMPARE(contents(empty.filePath(u"contas.rpt"_s)), QByteArray("contas do backup"));
        QCOMPARE(Store(bare.connectionSettings()).count(u"clientes"_s),
                 inst.store().count(u"clientes"_s));

        TestInstallation other(true, false);
        RTX_REQUIRE_INSTALL(other);
        writeFile(other.folder() + u"/ATENDE.rpt"_s, "de antes");
        writeFile(other.folder() + u"/rela3.rpt"_s, "só daqui");
        const qint64 clients = other.store().count(u"clientes"_s);
        const out::RestoreRun restored =
            out::restoreBackup(other.installation(), other.settings(), run.folder, kNow);
        QCOMPARE(contents(other.folder() + u"/ATENDE.rpt"_s), QByteArray("do backup"));
        QCOMPARE(contents(other.folder() + u"/rela3.rpt"_s), QByteArray("só daqui"));
        QCOMPARE(restored.keptAside,
                 other.folder() + u"/Antes da restauração 10.03.2026 18.00.00"_s);
        QCOMPARE(filesIn(restored.keptAside),
                 (QStringList{u"ATENDE.rpt"_s, u"rela3.rpt"_s, u"rotalix.db"_s}));
        QCOMPARE(contents(restored.keptAside + u"/ATENDE.rpt"_s), QByteArray("de antes"));

        out::restoreBackup(other.installation(), other.settings(), restored.keptAside,
                           kNow.addSecs(60));
        QCOMPARE(contents(other.folder() + u"/ATENDE.rpt"_s), QByteArray("de antes"));
        QCOMPARE(Store(other.settings()).count(u"clientes"_s), clients);
    }

    // The disk fills while the live database is kept aside: the restore stops, says in
    // words that nothing changed, and leaves no half-written copy; the live database and
    // layouts are as they were.
    void keptAsideCopyFindsNoRoom() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        writeFile(inst.folder() + u"/ATENDE.rpt"_s, "atual");
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        addDispatch(inst.store(), 1);
        const qint64 dispatches = inst.store().count(u"atendimentos"_s);
        QDir(run.folder).remove(u"ATENDE.rpt"_s);
        writeFile(run.folder + u"/ATENDE.rpt"_s, "do backup");
        const QStringList before = namesIn(inst.folder());

        // No file of this process may grow past 16 KB: what the full disk does.
        rlimit was{};
        QVERIFY(getrlimit(RLIMIT_FSIZE, &was) == 0);
        const auto oldSignal = std::signal(SIGXFSZ, SIG_IGN);
        rlimit small = was;
        small.rlim_cur = 16 * 1024;
        QVERIFY(setrlimit(RLIMIT_FSIZE, &small) == 0);
        const QString refused =
            restoreRefusal(inst.installation(), inst.settings(), run.folder, kNow);
        setrlimit(RLIMIT_FSIZE, &was);
        std::signal(SIGXFSZ, oldSignal);

        QVERIFY2(refused.startsWith(u"Não foi possível guardar a cópia do banco de dados atual"_s),
                 qPrintable(refused));
        QCOMPARE(namesIn(inst.folder()), before);
        QCOMPARE(filesIn(run.folder), (QStringList{u"ATENDE.rpt"_s, u"rotalix.db"_s}));
        QCOMPARE(contents(inst.folder() + u"/ATENDE.rpt"_s), QByteArray("atual"));
        QCOMPARE(inst.store().count(u"atendimentos"_s), dispatches);
    }

    // AUTO: the count as the files go, the message of four lines word for word, and the
    // screen closing; a failure is told and the screen stays.
    void autoScreen() {
        Desk<rtx::ui::AUTO> d(false);
        RTX_OPEN_DESK(d);
        writeFile(d.inst.folder() + u"/ATENDE.rpt"_s, "layout");
        QCOMPARE(shown(d.s(), u"Text1"_s), QDate::currentDate().toString(u"dd/MM/yyyy"_s));
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
