// Several stations on one database: a save that meets another station's lock waits with the
// hourglass and gives up in words that name the cause, keeping what was typed; a PostgreSQL
// connection the server dropped fails the action in flight and comes back at the next; an
// SQLite database on a network folder is refused unless the office's settings allow it.

#include "kit/hourglass.h"
#include "registerdesk.h"
#include "registers/cliente.h"

#include <QCursor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScopeGuard>
#include <QSettings>
#include <QTemporaryDir>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kSaved = u"Operação realizada com sucesso."_s;

// Records each start and end of a wait, and whether the hourglass was up while waiting, around
// the program's own hook.
struct WaitWatch {
    QList<bool> calls;
    bool hourglass = false;
    WaitWatch() {
        showHourglassOnLockWait();
        LockWaitHook program = setLockWaitHook({});
        setLockWaitHook([this, program](bool waiting) {
            program(waiting);
            calls << waiting;
            if (waiting)
                hourglass = QGuiApplication::overrideCursor() &&
                            QGuiApplication::overrideCursor()->shape() == Qt::WaitCursor;
        });
    }
    ~WaitWatch() { setLockWaitHook({}); }
};

// What a station that gave up waiting is told: the cause in Portuguese first, the engine's
// words (if any) after it, never alone.
bool namesOtherStation(const QString& text) {
    return text.startsWith(otherStationWritingText() + u'\n');
}

// Ends a station's connection on the server's side, as a restart of the server does, and waits
// until the server has let it go.
void dropConnection(Store& station, Store& admin) {
    const QVariant pid = station.scalar(u"SELECT pg_backend_pid()"_s);
    admin.scalar(u"SELECT pg_terminate_backend(?)"_s, {pid});
    for (int i = 0; i < 200; ++i) {
        if (admin.scalar(u"SELECT COUNT(*) FROM pg_stat_activity WHERE pid = ?"_s, {pid}).toInt() ==
            0)
            return;
        QTest::qWait(10);
    }
}

} // namespace

class StationsTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { session::end(); }

    // Another station is in the middle of its save. A new client's Grava waits with the
    // hourglass, then says another station is writing: nothing written, everything typed still
    // on the screen, the hourglass gone. Once the other station is done, Grava again saves it.
    void saveWaitsForAnotherStation() {
        Desk<cliente> d(false);
        RTX_OPEN_DESK(d);
        cliente* s = d.s();
        const std::unique_ptr<Store> other = d.inst.openSecondStore();
        WaitWatch watch;
        typeAndLeave(s, u"C5"_s, u"TRANSPORTES ESPERA"_s);
        typeAndLeave(s, u"C7"_s, u"MARIA"_s);
        typeAndLeave(s, u"C27"_s, u"250,5"_s);
        const QStringList columns{u"C5"_s, u"C7"_s, u"C27"_s};
        const QStringList typed{u"TRANSPORTES ESPERA"_s, u"MARIA"_s, u"250,50"_s};
        QCOMPARE(shownAll(s, columns), typed);

        // SQLite: its write lock; PostgreSQL: the lock under which client codes are drawn.
        other->begin();
        if (other->engine() == Engine::PostgreSQL) other->nextCode(u"clientes"_s);
        QElapsedTimer clock;
        clock.start();
        click(s, u"Command16"_s);
        const qint64 waited = clock.elapsed();
        QVERIFY2(waited >= kLockWaitMs - 200 && waited < kLockWaitMs + 4000,
                 qPrintable(QString::number(waited)));
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QVERIFY2(namesOtherStation(d.prompts.lastText()), qPrintable(d.prompts.lastText()));
        QCOMPARE(watch.calls, (QList<bool>{true, false}));
        QVERIFY(watch.hourglass);
        QVERIFY(!QGuiApplication::overrideCursor());
        QCOMPARE(shownAll(s, columns), typed);
        QCOMPARE(d.count(u"clientes"_s), 0);
        QVERIFY(!d.inst.store().inTransaction());

        other->rollback();
        d.prompts.clear();
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), QStringList{kSaved});
        QCOMPARE(rowTexts(u"SELECT * FROM clientes"_s, {}, columns), typed);
    }

    // A write outside any unit of work meets another station's lock (SQLite: its write lock;
    // PostgreSQL: the row it is changing) and gives up the same way, with the hourglass up
    // while it waits; once the lock is gone the same write goes through.
    void plainWriteGivesUpAfterWaiting() {
        TestInstallation inst(true);
        RTX_REQUIRE_INSTALL(inst);
        Store& mine = inst.store();
        const std::unique_ptr<Store> other = inst.openSecondStore();
        const QString rename = u"UPDATE empresa2 SET A1 = ?"_s;
        other->begin();
        other->execute(rename, {u"OUTRA"_s});
        WaitWatch watch;

        QElapsedTimer clock;
        clock.start();
        try {
            mine.execute(rename, {u"MINHA"_s});
            QFAIL("the write did not wait for the other station");
        } catch (const StoreError& e) {
            QVERIFY2(namesOtherStation(e.text()), qPrintable(e.text()));
            QVERIFY(e.text().size() > otherStationWritingText().size() + 1);
        }
        QVERIFY2(clock.elapsed() >= kLockWaitMs - 200,
                 qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(watch.calls, (QList<bool>{true, false}));
        QVERIFY(watch.hourglass);

        other->commit();
        QCOMPARE(mine.execute(rename, {u"MINHA"_s}), 1);
        QCOMPARE(other->scalar(u"SELECT A1 FROM empresa2"_s).toString(), u"MINHA"_s);
    }

    // The server ends this station's connection between two actions. The next Grava fails with
    // the message and writes nothing, keeping what was typed; the one after it reconnects by
    // itself and saves, with the station's work tables back. Dropped in the middle of a unit of
    // work, nothing of the unit stays and the write is not tried again.
    void lostConnectionComesBackAtTheNextAction() {
        Desk<cliente> d(false);
        RTX_OPEN_DESK(d);
        Store& mine = d.inst.store();
        if (mine.engine() != Engine::PostgreSQL) QSKIP("SQLite keeps no connection to a server");
        // The server probes the station's connection, so that one cut off in a save frees
        // its locks in about a minute.
        QCOMPARE(mine.scalar(u"SHOW tcp_keepalives_idle"_s).toString(), u"30"_s);
        cliente* s = d.s();
        const std::unique_ptr<Store> admin = d.inst.openSecondStore();
        typeAndLeave(s, u"C5"_s, u"CLIENTE DA QUEDA"_s);
        typeAndLeave(s, u"C7"_s, u"JOSÉ"_s);
        const QStringList columns{u"C5"_s, u"C7"_s};
        const QStringList typed{u"CLIENTE DA QUEDA"_s, u"JOSÉ"_s};

        dropConnection(mine, *admin);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QVERIFY2(d.prompts.lastText().startsWith(connectionLostText() + u'\n'),
                 qPrintable(d.prompts.lastText()));
        QCOMPARE(admin->count(u"clientes"_s), 0);
        QCOMPARE(shownAll(s, columns), typed);

        d.prompts.clear();
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), QStringList{kSaved});
        QCOMPARE(admin->count(u"clientes"_s), 1);
        QCOMPARE(mine.count(u"rel_atendimentos"_s), 0);

        const QString addGroup = u"INSERT INTO agenda_grupos (AGE) VALUES (?)"_s;
        {
            UnitOfWork unit(mine);
            mine.execute(addGroup, {u"PRIMEIRO"_s});
            dropConnection(mine, *admin);
            try {
                mine.execute(addGroup, {u"SEGUNDO"_s});
                QFAIL("a write went through a dropped connection");
            } catch (const StoreError& e) {
                QVERIFY2(e.text().startsWith(connectionLostText() + u'\n'), qPrintable(e.text()));
            }
        }
        QCOMPARE(mine.count(u"agenda_grupos"_s), 0);
        mine.execute(addGroup, {u"TERCEIRO"_s});
        QCOMPARE(admin->count(u"agenda_grupos"_s), 1);
    }

    // An SQLite database on an SMB/CIFS or NFS share is refused before anything is created,
    // with a message that points to PostgreSQL; on a local disk, or with permitir_rede=sim,
    // it opens. A PostgreSQL installation is not held back by the folder its settings lie in.
    void networkFolderRefusedUnlessAllowed() {
        QTemporaryDir dir;
        const Installation office(dir.path());
        quint64 answer = 0;
        QStringList asked;
        setFileSystemProbe([&](const QString& folder) {
            asked << folder;
            return answer;
        });
        const auto restore = qScopeGuard([] { setFileSystemProbe({}); });
        const auto refusal = [&]() -> QString {
            try {
                office.openStore();
            } catch (const StoreError& e) {
                return e.text();
            }
            return {};
        };

        for (const auto& [type, name] :
             {std::pair{0xFF534D42ull, u"SMB/CIFS"_s}, std::pair{0x6969ull, u"NFS"_s}}) {
            answer = type;
            const QString text = refusal();
            QVERIFY2(text.contains(u"pasta de rede (%1)"_s.arg(name)), qPrintable(text));
            QVERIFY2(text.contains(u"PostgreSQL"_s) && text.contains(u"permitir_rede=sim"_s),
                     qPrintable(text));
            QVERIFY(!QFileInfo::exists(office.path(u"rotalix.db"_s)));
        }
        QCOMPARE(asked.last(), office.folder());

        answer = 0xEF53; // a local disk
        QVERIFY(office.openStore());
        answer = 0xFE534D42;
        QVERIFY(!refusal().isEmpty());
        {
            QSettings ini(office.path(u"rotalix.ini"_s), QSettings::IniFormat);
            ini.setValue(u"banco/permitir_rede"_s, u"sim"_s);
        }
        QVERIFY2(refusal().isEmpty(), qPrintable(refusal()));

        TestInstallation server(false);
        RTX_REQUIRE_INSTALL(server);
        if (server.settings().engine != Engine::PostgreSQL) return;
        const ConnectionSettings pg = server.settings();
        const QTemporaryDir other;
        {
            QSettings ini(other.filePath(u"rotalix.ini"_s), QSettings::IniFormat);
            ini.beginGroup(u"banco"_s);
            ini.setValue(u"motor"_s, u"postgresql"_s);
            ini.setValue(u"servidor"_s, pg.host);
            ini.setValue(u"porta"_s, pg.port);
            ini.setValue(u"banco"_s, pg.database);
            ini.setValue(u"usuario"_s, pg.user);
        }
        answer = 0xFF534D42;
        QCOMPARE(Installation(other.path()).openStore()->engine(), Engine::PostgreSQL);
    }
};

QTEST_MAIN(StationsTest)
#include "tst_stations.moc"
