// The day's backup and its restore, on the engine of the run: one folder a day, replaced
// only once complete; a backup taken while another station writes; refused restores; a
// CD read without a byte written; the day's folder on the screen; the layouts restored.

#include "output/auto.h"
#include "output/core/backup.h"
#include "registerdesk.h"
#include "screendriver.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

QByteArray contents(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Everything a folder holds, hidden entries too, with each file's size and time (what a
// look at a CD would show) or names only, where a live database is (any reader writes to
// its files); never the index SQLite keeps beside a live database.
QStringList snapshotOf(const QString& folder, bool sizesAndTimes = true) {
    QStringList seen;
    for (const QFileInfo& e : QDir(folder).entryInfoList(
             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name))
        if (!e.fileName().endsWith(u"-shm"_s))
            seen << (sizesAndTimes ? u"%1 %2 %3"_s.arg(e.fileName())
                                         .arg(e.isDir() ? -1 : e.size())
                                         .arg(e.lastModified().toMSecsSinceEpoch())
                                   : e.fileName());
    return seen;
}

ConnectionSettings sqliteFile(const QString& file) {
    ConnectionSettings s;
    s.sqliteFile = file;
    return s;
}

// Dispatches of a backup file whose number stands in no payable.
qint64 orphans(Store& copy) {
    return copy
        .scalar(u"SELECT COUNT(*) FROM atendimentos a WHERE NOT EXISTS "
                u"(SELECT 1 FROM contas_pagar p WHERE p.c3 = a.CODIGO)"_s)
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
    // A second run on one day that fails partway leaves the first run's folder as it
    // was; one that goes through leaves one folder with its own files and rows. An earlier
    // day's folder is never touched; no work folder stays behind.
    void oneBackupADay() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        const QString home = inst.folder();
        writeFile(home + u"/ATENDE.rpt"_s, "primeiro");
        QDir(home).mkdir(u"Backup 09.03.2026"_s);
        writeFile(home + u"/Backup 09.03.2026/rotalix.db"_s, "de ontem");
        out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        QFile::remove(home + u"/ATENDE.rpt"_s);
        addDispatch(inst.store(), 1);
        QVERIFY_THROWS_EXCEPTION(
            out::BackupError,
            out::runBackup(inst.installation(), inst.settings(), kDay, [](int n, const QString&) {
                if (n == 1) throw out::BackupError(u"Disco cheio."_s);
            }));
        QCOMPARE(QDir(home).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot),
                 (QStringList{u"Backup 09.03.2026"_s, u"Backup 10.03.2026"_s}));
        QCOMPARE(Store(sqliteFile(run.folder + u"/rotalix.db"_s)).count(u"atendimentos"_s), 0);
        run = out::runBackup(inst.installation(), inst.settings(), kDay);
        QCOMPARE(filesIn(run.folder), QStringList{u"rotalix.db"_s});
        QCOMPARE(contents(home + u"/Backup 09.03.2026/rotalix.db"_s), QByteArray("de ontem"));
        QCOMPARE(Store(sqliteFile(run.folder + u"/rotalix.db"_s)).count(u"atendimentos"_s), 1);
    }

    // A backup taken while another station adds dispatches, each with its posting in one
    // unit, holds whole units only; restored into a fresh installation its codes go on.
    void backupWhileAnotherStationWrites() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        std::atomic<int> written{0};
        std::atomic<bool> failed{false};
        std::jthread station([&] {
            try {
                Store other(inst.settings());
                for (int n = 1; n <= 1000; ++n, ++written)
                    addDispatch(other, n);
            } catch (const StoreError&) {
                failed = true;
            }
        });
        while (written < 50 && !failed)
            QThread::msleep(5);
        const int beforeBackup = written;
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        const int afterBackup = written;
        station.join();
        QVERIFY(!failed);
        qint64 dispatches = 0;
        {
            Store copy(sqliteFile(run.folder + u"/rotalix.db"_s));
            dispatches = copy.count(u"atendimentos"_s);
            QVERIFY2(dispatches >= beforeBackup && dispatches <= afterBackup + 1,
                     qPrintable(QString::number(dispatches)));
            QCOMPARE(orphans(copy), 0);
        }

        TestInstallation fresh(true, false);
        out::restoreBackup(fresh.installation(), fresh.settings(), run.folder, kNow);
        Store back(fresh.settings());
        addDispatch(back, 1001);
        QCOMPARE(back.count(u"atendimentos"_s), dispatches + 1);
    }

    // A damaged file, a backup of a newer version and a missing folder are refused with a message,
    // and nothing is touched.
    void refusedRestores() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        const QString home = inst.folder();
        const out::BackupRun good = out::runBackup(inst.installation(), inst.settings(), kDay);
        const QByteArray bytes = contents(good.folder + u"/rotalix.db"_s);
        const auto refused = [&](const QString& folder, const QString& words) {
            const QString text = restoreRefusal(inst.installation(), inst.settings(), folder, kNow);
            QVERIFY2(text.contains(words) && text.endsWith(u"A restauração não foi feita: o banco "
                                                           u"de dados atual e os relatórios "
                                                           u"estão intactos."_s),
                     qPrintable(text));
        };
        QDir(home).mkdir(u"Backup 01.01.2020"_s);
        writeFile(home + u"/Backup 01.01.2020/rotalix.db"_s,
                  bytes.left(bytes.size() / 2) + QByteArray(4096, 'x'));
        refused(u"Backup 01.01.2020"_s, u"danificado"_s);
        writeFile(home + u"/Backup 01.01.2020/rotalix.db"_s, bytes);
        Store(sqliteFile(home + u"/Backup 01.01.2020/rotalix.db"_s))
            .execute(u"UPDATE rtx_versao SET versao = 999"_s);
        refused(u"Backup 01.01.2020"_s, u"versão mais nova"_s);
        refused(u"Backup 02.02.2020"_s, u"não foi encontrado"_s);
        QCOMPARE(snapshotOf(home, false).filter(u"Antes"_s), QStringList());
    }

    // A backup copied to a CD (a folder and file nobody may write, and a check that could
    // not write even as the administrator): the file is whole in itself, with no log
    // beside it; it is checked and restored without a byte, a time or a file changing there.
    // The CDs the offices already keep hold files whose header asks for a log (as the
    // earlier backups left them): read where they lie all the same.
    void backupReadFromReadOnlyMedia() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        const QByteArray bytes = contents(run.folder + u"/rotalix.db"_s);
        // Bytes 18 and 19 of a database say whether it needs a log beside it (2) or not (1).
        QCOMPARE(bytes.mid(18, 2), QByteArray("\1\1"));
        QByteArray logged = bytes;
        logged[18] = logged[19] = 2;
        QTemporaryDir media;
        int second = 0;
        for (const QByteArray& file : {bytes, logged}) {
            const QString cd = media.filePath(u"Backup 1%1.03.2026"_s.arg(second));
            QVERIFY(QDir().mkpath(cd));
            writeFile(cd + u"/rotalix.db"_s, file);
            QVERIFY(QFile::setPermissions(cd + u"/rotalix.db"_s, QFile::ReadOwner));
            QVERIFY(QFile::setPermissions(cd, QFile::ReadOwner | QFile::ExeOwner));
            const QStringList before = snapshotOf(cd);
            QCOMPARE(
                restoreRefusal(inst.installation(), inst.settings(), cd, kNow.addSecs(second++)),
                QString());
            QCOMPARE(snapshotOf(cd), before);
            QFile::setPermissions(cd, QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
        }
    }

    // On the screen: a file that stands where the day's folder goes is told in words and is
    // not touched nor hidden, the screen staying; the office's own note and subfolder in the
    // day's folder stay with what they hold, and are named under the usual message.
    void dayFolderOnTheScreen() {
        Desk<rtx::ui::AUTO> d(false);
        RTX_OPEN_DESK(d);
        const QString home = d.inst.folder();
        const QString name = out::backupFolderName(QDate::currentDate());
        const QString day = home + u"/"_s + name;
        writeFile(day, "um arquivo");
        const QStringList before = snapshotOf(home);
        click(d.s(), u"Command16"_s);
        QVERIFY(
            d.prompts.texts(ScriptedPrompter::Kind::Error)
                .value(0)
                .startsWith(u"Já existe um arquivo chamado \"%1\" na pasta %2"_s.arg(name, home)));
        QVERIFY(d.s()->isVisible());
        QCOMPARE(snapshotOf(home), before);

        QFile::remove(day);
        QVERIFY(QDir().mkpath(day + u"/fotos"_s));
        writeFile(day + u"/fotos/entrega.jpg"_s, "foto");
        writeFile(day + u"/leia-me.txt"_s, "nota do escritório");
        d.prompts.clear();
        click(d.s(), u"Command16"_s);
        QCOMPARE(d.prompts.texts().value(0),
                 rtx::ui::AUTO::doneMessage() +
                     u"\r\n\r\nFicaram na pasta %1, como estavam, "
                     u"itens que não foram gravados pelo backup: fotos, leia-me.txt."_s.arg(name));
        QCOMPARE(filesIn(day), (QStringList{u"leia-me.txt"_s, u"rotalix.db"_s}));
        QCOMPARE(contents(day + u"/fotos/entrega.jpg"_s), QByteArray("foto"));
    }

    // The layouts come back with the database over an installation's own layouts, which are
    // kept aside with its database in a folder that restores them in turn. Before that, the
    // disk fills while the live database is kept aside: the restore stops, says in words
    // that nothing changed, and leaves no half-written copy.
    void layoutsRestoredAndKeptAside() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        writeFile(inst.folder() + u"/ATENDE.rpt"_s, "do backup");
        const out::BackupRun run = out::runBackup(inst.installation(), inst.settings(), kDay);
        writeFile(inst.folder() + u"/ATENDE.rpt"_s, "de antes");
        addDispatch(inst.store(), 1);
        const qint64 dispatches = inst.store().count(u"atendimentos"_s);
        const QStringList before = snapshotOf(inst.folder(), false);
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
        QCOMPARE(snapshotOf(inst.folder(), false), before);
        QCOMPARE(inst.store().count(u"atendimentos"_s), dispatches);

        const out::RestoreRun restored =
            out::restoreBackup(inst.installation(), inst.settings(), run.folder, kNow);
        QCOMPARE(contents(inst.folder() + u"/ATENDE.rpt"_s), QByteArray("do backup"));
        // The copy kept aside restores in turn.
        out::restoreBackup(inst.installation(), inst.settings(), restored.keptAside,
                           kNow.addSecs(60));
        QCOMPARE(contents(inst.folder() + u"/ATENDE.rpt"_s), QByteArray("de antes"));
        QCOMPARE(Store(inst.settings()).count(u"atendimentos"_s), dispatches);
    }
};

QTEST_MAIN(BackupTest)
#include "tst_backup.moc"
