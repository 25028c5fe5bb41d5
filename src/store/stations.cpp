// Living with the other stations: a statement that meets another station's lock waits a few
// seconds with the hourglass, then gives up with words that name the cause; a PostgreSQL
// connection the server dropped fails the action in flight and is opened again by the next.
#include "store.h"

#include <QDateTime>
#include <QSqlDriver>
#include <QSqlError>

#include <libpq-fe.h>
#include <sqlite3.h>

namespace rtx {

namespace {

LockWaitHook& lockWaitHook() {
    static LockWaitHook hook;
    return hook;
}

// SQLSTATEs of a lock not had in time (lock_timeout) and of two stations waiting on each other.
bool lockNotHad(const QString& sqlState) {
    return sqlState == u"55P03" || sqlState == u"40P01";
}

// SQLite's "busy" and "locked", plain or extended.
bool sqliteBusyCode(const QString& code) {
    bool ok = false;
    const int c = code.toInt(&ok) & 0xff;
    return ok && (c == SQLITE_BUSY || c == SQLITE_LOCKED);
}

// SQLSTATEs of a connection the server ended (a restart, a shutdown, an administrator) or
// that broke: libpq may not have seen the end of it yet.
bool serverEnded(const QString& sqlState) {
    return sqlState.startsWith(u"08") || sqlState == u"57P01" || sqlState == u"57P02" ||
           sqlState == u"57P03";
}

} // namespace

QString otherStationWritingText() {
    return QStringLiteral("Outra esta\u00e7\u00e3o est\u00e1 gravando. Tente novamente em alguns "
                          "segundos.");
}

QString connectionLostText() {
    return QStringLiteral("A conex\u00e3o com o servidor do banco de dados caiu e esta "
                          "opera\u00e7\u00e3o foi desfeita. Tente novamente: o programa se "
                          "conecta de novo.");
}

LockWaitHook setLockWaitHook(LockWaitHook hook) {
    return std::exchange(lockWaitHook(), std::move(hook));
}

// SQLite calls this while another station holds the write lock: the first call starts the
// hourglass, later ones sleep a little and try again until the wait is long enough to give up.
int sqliteBusy(void* data, int count) {
    auto* store = static_cast<Store*>(data);
    if (count == 0) store->startWaiting();
    if (QDateTime::currentMSecsSinceEpoch() - store->waitStart_ >= kLockWaitMs) {
        store->gaveUp_ = true;
        return 0;
    }
    sqlite3_sleep(count < 10 ? 5 : 25);
    return 1;
}

void Store::startWaiting() {
    if (waiting_) return;
    waiting_ = true;
    gaveUp_ = false;
    waitStart_ = QDateTime::currentMSecsSinceEpoch();
    if (const LockWaitHook& hook = lockWaitHook()) hook(true);
}

void Store::endWaiting() {
    if (!waiting_) return;
    waiting_ = false;
    if (const LockWaitHook& hook = lockWaitHook()) hook(false);
}

// Set up each connection needs, at the first opening and at every reopening: SQLite's text
// functions, its journal and the wait for other stations; PostgreSQL's notices. The station's
// work tables too, once the schema made them.
void Store::prepareConnection() {
    registerFunctions();
    if (settings_.engine == Engine::SQLite) {
        const QVariant handle = database().driver()->handle();
        sqlite3_busy_handler(*static_cast<sqlite3* const*>(handle.data()), &sqliteBusy, this);
        run(QStringLiteral("PRAGMA journal_mode=WAL"), {});
        run(QStringLiteral("PRAGMA synchronous=NORMAL"), {});
        run(QStringLiteral("PRAGMA foreign_keys=OFF"), {});
    } else {
        run(QStringLiteral("SET client_min_messages TO WARNING"), {});
    }
    if (workTables_) createWorkTables();
}

// The action after the one that lost the connection opens it again, outside any unit of work:
// nothing of the failed action is tried again.
void Store::reconnectIfLost() {
    if (!lost_ || depth_ > 0) return;
    prepared_.clear(); // prepared on the connection that is gone
    QSqlDatabase db = database();
    db.close();
    if (!db.open())
        throw StoreError(connectionLostText() + u'\n' + db.lastError().text().trimmed());
    lost_ = false;
    prepareConnection();
}

// The error a failed statement throws. Another station's lock not had in time and a dropped
// connection are said in the office's words, the engine's following on the next line.
StoreError Store::failure(const QSqlError& error, const QString& engineText) {
    const bool gaveUp = std::exchange(gaveUp_, false);
    if (settings_.engine == Engine::SQLite) {
        if (gaveUp || sqliteBusyCode(error.nativeErrorCode()))
            return StoreError(otherStationWritingText() + u'\n' + engineText);
        return StoreError(engineText);
    }
    const QVariant handle = database().driver()->handle();
    auto* conn = handle.isValid() ? *static_cast<PGconn* const*>(handle.data()) : nullptr;
    if (!conn || PQstatus(conn) == CONNECTION_BAD || serverEnded(error.nativeErrorCode())) {
        lost_ = true;
        return StoreError(connectionLostText() + u'\n' + engineText);
    }
    if (lockNotHad(error.nativeErrorCode()))
        return StoreError(otherStationWritingText() + u'\n' + engineText);
    return StoreError(engineText);
}

} // namespace rtx
