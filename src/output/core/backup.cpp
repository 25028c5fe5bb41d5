#include "output/core/backup.h"

#include "store/schema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QThread>
#include <memory>
#include <sqlite3.h>

namespace rtx::output {

BackupError::BackupError(const QString& text)
    : std::runtime_error(text.toStdString()), text_(text) {}

QString backupFolderName(const QDate& day) {
    return QStringLiteral("Backup ") + day.toString(QStringLiteral("dd.MM.yyyy"));
}

namespace {

// --- SQLite files, through the library itself ------------------------------------------

struct SqliteCloser {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
using SqliteHandle = std::unique_ptr<sqlite3, SqliteCloser>;

SqliteHandle openFile(const QString& file, int flags) {
    sqlite3* db = nullptr;
    const int rc = sqlite3_open_v2(QFile::encodeName(file).constData(), &db, flags, nullptr);
    SqliteHandle handle(db);
    if (rc != SQLITE_OK)
        throw BackupError(QStringLiteral("Não foi possível abrir o arquivo %1: %2")
                              .arg(file, QString::fromUtf8(sqlite3_errstr(rc))));
    sqlite3_busy_timeout(db, 30000);
    return handle;
}

// Copies one database into another with SQLite's online backup, in one step: the source is
// read in one read transaction (other stations go on writing to its log) and the
// destination written in one write transaction.
void onlineCopy(sqlite3* from, sqlite3* to, const QString& target) {
    sqlite3_backup* backup = sqlite3_backup_init(to, "main", from, "main");
    if (!backup)
        throw BackupError(QStringLiteral("Não foi possível gravar %1: %2")
                              .arg(target, QString::fromUtf8(sqlite3_errmsg(to))));
    int rc = SQLITE_OK;
    for (int tries = 0; tries < 600; ++tries) {
        rc = sqlite3_backup_step(backup, -1);
        if (rc != SQLITE_BUSY && rc != SQLITE_LOCKED) break;
        QThread::msleep(50);
    }
    sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE)
        throw BackupError(QStringLiteral("Não foi possível gravar %1: %2")
                              .arg(target, QString::fromUtf8(sqlite3_errstr(rc))));
}

// --- Tables copied row by row between the engines -------------------------------------------

// Tables the database fills by itself from others (the per-day cash totals): copied last,
// over whatever the copy of their sources made.
bool keptByTriggers(const QString& table) {
    return table.compare(QStringLiteral("caixa_dias"), Qt::CaseInsensitive) == 0;
}

QString sqlText(const QSqlError& e) {
    return e.databaseText().isEmpty() ? e.text() : e.databaseText();
}

QSqlQuery exec(QSqlDatabase db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql)) throw BackupError(sqlText(q.lastError()));
    return q;
}

QStringList tablesOf(QSqlDatabase db, Engine engine) {
    QStringList names;
    QSqlQuery q = exec(db, engine == Engine::SQLite
                               ? QStringLiteral("SELECT name FROM sqlite_master WHERE type = "
                                                "'table' AND name NOT LIKE 'sqlite_%'")
                               : QStringLiteral("SELECT table_name FROM information_schema."
                                                "tables WHERE table_schema = current_schema() "
                                                "AND table_type = 'BASE TABLE'"));
    while (q.next())
        names << q.value(0).toString();
    // Sources before the tables kept from them.
    std::stable_partition(names.begin(), names.end(),
                          [](const QString& t) { return !keptByTriggers(t); });
    return names;
}

// Copies the rows of a table into the same table of another database (emptied first), by
// the columns both have: the copy's folded columns are made by its own triggers.
void copyRows(QSqlDatabase from, QSqlDatabase to, Engine toEngine, const QString& table) {
    const QSqlRecord target = to.record(table);
    if (target.isEmpty())
        throw BackupError(QStringLiteral("A tabela %1 não existe no destino.").arg(table));
    exec(to, QStringLiteral("DELETE FROM %1").arg(table));
    QSqlQuery rows(from);
    rows.setForwardOnly(true);
    if (!rows.exec(QStringLiteral("SELECT * FROM %1").arg(table)))
        throw BackupError(sqlText(rows.lastError()));
    const QSqlRecord source = rows.record();
    QList<int> taken;
    QStringList names;
    for (int i = 0; i < source.count(); ++i) {
        const int at = target.indexOf(source.fieldName(i));
        if (at < 0) continue;
        taken << i;
        names << target.fieldName(at);
    }
    if (taken.isEmpty()) return;
    QSqlQuery insert(to);
    const QString places = QStringList(names.size(), QStringLiteral("?")).join(u',');
    if (!insert.prepare(
            QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(table, names.join(u','), places)))
        throw BackupError(sqlText(insert.lastError()));
    while (rows.next()) {
        for (int k = 0; k < taken.size(); ++k) {
            QVariant v = rows.value(taken[k]);
            if (toEngine == Engine::SQLite && v.typeId() == QMetaType::QDate)
                v = v.toDate().toString(Qt::ISODate);
            insert.bindValue(k, v);
        }
        if (!insert.exec()) throw BackupError(sqlText(insert.lastError()));
    }
}

// Identity columns go on after the highest number restored.
void resetIdentities(QSqlDatabase db) {
    QSqlQuery q = exec(db, QStringLiteral("SELECT table_name, column_name FROM "
                                          "information_schema.columns WHERE table_schema = "
                                          "current_schema() AND is_identity = 'YES'"));
    QList<QPair<QString, QString>> identities;
    while (q.next())
        identities << qMakePair(q.value(0).toString(), q.value(1).toString());
    for (const auto& [table, column] : identities)
        exec(db, QStringLiteral("SELECT setval(pg_get_serial_sequence('%1', '%2'), "
                                "COALESCE((SELECT max(%2) FROM %1), 0) + 1, false)")
                     .arg(table, column));
}

void snapshotPostgres(const ConnectionSettings& from, const QString& toFile) {
    Store source(from);
    Store copy(ConnectionSettings{Engine::SQLite, toFile, {}, {}, {}, {}, 5432});
    copy.ensureSchema();
    QSqlDatabase in = source.database();
    QSqlDatabase out = copy.database();
    // Every table as of one moment, however the stations write meanwhile.
    exec(in, QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"));
    exec(out, QStringLiteral("BEGIN"));
    try {
        for (const QString& table : tablesOf(in, Engine::PostgreSQL))
            copyRows(in, out, Engine::SQLite, table);
        exec(out, QStringLiteral("COMMIT"));
        exec(in, QStringLiteral("COMMIT"));
    } catch (...) {
        QSqlQuery(out).exec(QStringLiteral("ROLLBACK"));
        QSqlQuery(in).exec(QStringLiteral("ROLLBACK"));
        throw;
    }
}

void restorePostgres(const QString& backupFile, const ConnectionSettings& to) {
    Store target(to);
    target.ensureSchema();
    Store source(ConnectionSettings{Engine::SQLite, backupFile, {}, {}, {}, {}, 5432});
    QSqlDatabase in = source.database();
    QSqlDatabase out = target.database();
    const QStringList live = tablesOf(out, Engine::PostgreSQL);
    exec(out, QStringLiteral("BEGIN"));
    try {
        // The schema's version is the live database's own: the data fits it.
        for (const QString& table : tablesOf(in, Engine::SQLite))
            if (table.compare(QStringLiteral("rtx_versao"), Qt::CaseInsensitive) != 0 &&
                live.contains(table, Qt::CaseInsensitive))
                copyRows(in, out, Engine::PostgreSQL, table);
        resetIdentities(out);
        exec(out, QStringLiteral("COMMIT"));
    } catch (...) {
        QSqlQuery(out).exec(QStringLiteral("ROLLBACK"));
        throw;
    }
}

void copyFile(const QString& from, const QString& to) {
    QFile source(from);
    if (!source.copy(to))
        throw BackupError(QStringLiteral("Não foi possível copiar o arquivo %1: %2")
                              .arg(QFileInfo(from).fileName(), source.errorString()));
}

} // namespace

void snapshotDatabase(const ConnectionSettings& from, const QString& toFile) {
    QFile::remove(toFile);
    try {
        if (from.engine == Engine::PostgreSQL) {
            snapshotPostgres(from, toFile);
            return;
        }
        if (!QFileInfo::exists(from.sqliteFile))
            throw BackupError(
                QStringLiteral("O banco de dados %1 não foi encontrado.").arg(from.sqliteFile));
        const SqliteHandle source = openFile(from.sqliteFile, SQLITE_OPEN_READWRITE);
        const SqliteHandle copy = openFile(toFile, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        // A new file that nobody reads until it is whole needs no journal of its own: a
        // failure throws it away.
        sqlite3_exec(copy.get(), "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF", nullptr,
                     nullptr, nullptr);
        onlineCopy(source.get(), copy.get(), QFileInfo(toFile).fileName());
    } catch (const StoreError& e) {
        throw BackupError(e.text());
    }
}

BackupRun runBackup(const Installation& installation, const ConnectionSettings& database,
                    const QDate& day, const BackupProgress& progress) {
    const QString name = backupFolderName(day);
    const QString folder = installation.path(name);
    const QString building = installation.path(QStringLiteral(".%1 (em andamento)").arg(name));
    const QString earlier = installation.path(QStringLiteral(".%1 (anterior)").arg(name));
    QDir(building).removeRecursively();
    if (!QDir().mkpath(building))
        throw BackupError(QStringLiteral("Não foi possível criar a pasta %1.").arg(building));
    BackupRun run;
    run.folder = folder;
    try {
        const auto done = [&](const QString& file) {
            ++run.files;
            if (progress) progress(run.files, file);
        };
        snapshotDatabase(database, QDir(building).filePath(backupDatabaseFile));
        done(backupDatabaseFile);
        const QDir here(installation.folder());
        for (const QString& layout : here.entryList({QStringLiteral("*.rpt")}, QDir::Files,
                                                    QDir::Name | QDir::IgnoreCase)) {
            copyFile(here.filePath(layout), QDir(building).filePath(layout));
            done(layout);
        }
        // Only now does the day's earlier backup give way.
        QDir(earlier).removeRecursively();
        if (QFileInfo::exists(folder) && !QDir().rename(folder, earlier))
            throw BackupError(
                QStringLiteral("Não foi possível substituir a pasta %1.").arg(folder));
        if (!QDir().rename(building, folder)) {
            QDir().rename(earlier, folder);
            throw BackupError(QStringLiteral("Não foi possível criar a pasta %1.").arg(folder));
        }
        QDir(earlier).removeRecursively();
    } catch (...) {
        QDir(building).removeRecursively();
        throw;
    }
    return run;
}

int checkBackupFile(const QString& file) {
    const QString shown = QFileInfo(file).fileName();
    if (!QFileInfo(file).isFile())
        throw BackupError(QStringLiteral("O arquivo %1 não foi encontrado.").arg(file));
    const SqliteHandle db = openFile(file, SQLITE_OPEN_READONLY);
    const auto single = [&](const char* sql, QString* text) {
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db.get(), sql, -1, &st, nullptr) != SQLITE_OK) {
            *text = QString::fromUtf8(sqlite3_errmsg(db.get()));
            return false;
        }
        const int rc = sqlite3_step(st);
        if (rc == SQLITE_ROW)
            *text = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
        else if (rc != SQLITE_DONE)
            *text = QString::fromUtf8(sqlite3_errmsg(db.get()));
        sqlite3_finalize(st);
        return rc == SQLITE_ROW || rc == SQLITE_DONE;
    };
    QString answer;
    if (!single("PRAGMA integrity_check", &answer) || answer != QStringLiteral("ok"))
        throw BackupError(
            QStringLiteral("O arquivo %1 está danificado e não pode ser restaurado: %2")
                .arg(shown, answer));
    if (!single("SELECT max(versao) FROM rtx_versao", &answer) || answer.toInt() <= 0)
        throw BackupError(
            QStringLiteral("O arquivo %1 não é um backup do banco de dados do Rotalix.")
                .arg(shown));
    const int version = answer.toInt();
    if (version > schemaVersion())
        throw BackupError(QStringLiteral("O arquivo %1 foi gravado por uma versão mais nova do "
                                         "programa e não pode ser restaurado por esta.")
                              .arg(shown));
    return version;
}

RestoreRun restoreBackup(const Installation& installation, const ConnectionSettings& database,
                         const QString& backup, const QDateTime& now) {
    const QString folder = QDir::isAbsolutePath(backup) ? backup : installation.path(backup);
    RestoreRun run;
    run.restoredFrom = QDir(folder).filePath(backupDatabaseFile);
    checkBackupFile(run.restoredFrom);
    const ConnectionSettings& live = database;
    const bool hasLive = live.engine == Engine::PostgreSQL || QFileInfo::exists(live.sqliteFile);
    if (hasLive) {
        run.keptAside =
            installation.path(QStringLiteral("Antes da restauração %1.db")
                                  .arg(now.toString(QStringLiteral("dd.MM.yyyy hh.mm.ss"))));
        snapshotDatabase(live, run.keptAside);
    }
    try {
        if (live.engine == Engine::PostgreSQL) {
            restorePostgres(run.restoredFrom, live);
        } else {
            const SqliteHandle source = openFile(run.restoredFrom, SQLITE_OPEN_READONLY);
            const SqliteHandle target =
                openFile(live.sqliteFile, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
            onlineCopy(source.get(), target.get(), QFileInfo(live.sqliteFile).fileName());
        }
        // A backup of an earlier version is brought up to this one.
        Store(live).ensureSchema();
    } catch (const StoreError& e) {
        throw BackupError(e.text());
    }
    return run;
}

} // namespace rtx::output
