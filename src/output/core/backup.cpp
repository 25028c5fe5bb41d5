#include "output/core/backup.h"

#include "store/schema.h"
#include "store/sqlitefold.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>
#include <filesystem>
#include <memory>
#include <sqlite3.h>

namespace rtx::output {

BackupError::BackupError(const QString& text)
    : std::runtime_error(text.toStdString()), text_(text) {}

QString backupFolderName(const QDate& day) {
    return QStringLiteral("Backup ") + day.toString(QStringLiteral("dd.MM.yyyy"));
}

QString leftAloneNote(const BackupRun& run) {
    if (run.leftAlone.isEmpty()) return {};
    return QStringLiteral("Ficaram na pasta %1, como estavam, itens que não foram gravados pelo "
                          "backup: %2.")
        .arg(QFileInfo(run.folder).fileName(), run.leftAlone.join(QStringLiteral(", ")));
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

// Opens a database to read it only, writing neither to it nor beside it (no lock file, no
// log), so that a backup on a CD or a read-only share is read where it lies. A file whose
// log lies beside it with pages in it (copied by hand out of a running installation) is
// read with its log, which needs a folder that takes the log's index.
SqliteHandle openToRead(const QString& file) {
    const QFileInfo log(file + QStringLiteral("-wal"));
    QByteArray uri = QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath()).toEncoded();
    uri += log.exists() && log.size() > 0 ? "?mode=ro" : "?mode=ro&immutable=1";
    sqlite3* db = nullptr;
    const int rc =
        sqlite3_open_v2(uri.constData(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    SqliteHandle handle(db);
    if (rc != SQLITE_OK)
        throw BackupError(QStringLiteral("Não foi possível abrir o arquivo %1: %2")
                              .arg(file, QString::fromUtf8(sqlite3_errstr(rc))));
    // Databases of the first version name the program's own collation in their tables.
    registerSqliteFolding(db);
    return handle;
}

// The first value of a statement's first row, as text; false with the engine's words.
bool single(sqlite3* db, const char* sql, QString* text) {
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK) {
        *text = QString::fromUtf8(sqlite3_errmsg(db));
        return false;
    }
    const int rc = sqlite3_step(st);
    if (rc == SQLITE_ROW)
        *text = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)));
    else if (rc != SQLITE_DONE)
        *text = QString::fromUtf8(sqlite3_errmsg(db));
    sqlite3_finalize(st);
    return rc == SQLITE_ROW || rc == SQLITE_DONE;
}

// A copy is one file, whole in itself. The installation's database keeps its log beside it
// (WAL), and a copy of its pages says so in its header: read from a CD, where no log can be
// made, it would be refused as damaged. So the copy goes over to the plain journal, which
// leaves nothing beside the file once written.
void makeSelfContained(const QString& file) {
    const SqliteHandle db = openFile(file, SQLITE_OPEN_READWRITE);
    QString mode;
    if (!single(db.get(), "PRAGMA journal_mode=DELETE", &mode) ||
        mode.compare(QStringLiteral("delete"), Qt::CaseInsensitive) != 0)
        throw BackupError(
            QStringLiteral("Não foi possível gravar %1: %2").arg(QFileInfo(file).fileName(), mode));
}

void removeDatabaseFile(const QString& file) {
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(file + QLatin1String(suffix));
}

ConnectionSettings sqliteSettings(const QString& file) {
    return ConnectionSettings{Engine::SQLite, file, {}, {}, {}, {}, 5432};
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

// Tables the database fills by itself from others (the per-day cash totals, the dispatches'
// totals of the panel): copied last, over whatever the copy of their sources made.
bool keptByTriggers(const QString& table) {
    for (const char* kept : {"caixa_dias", "painel_horas", "painel_entregadores"})
        if (table.compare(QLatin1String(kept), Qt::CaseInsensitive) == 0) return true;
    return false;
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
    Store copy(sqliteSettings(toFile));
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
    Store source(sqliteSettings(backupFile));
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
    if (!source.copy(to)) {
        QFile::remove(to);
        throw BackupError(QStringLiteral("Não foi possível copiar o arquivo %1: %2")
                              .arg(QFileInfo(from).fileName(), source.errorString()));
    }
}

// Puts a finished file in place of another of the same name in one step (same disk).
void replaceFile(const QString& from, const QString& to) {
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(QFile::encodeName(from).toStdString()),
                            std::filesystem::path(QFile::encodeName(to).toStdString()), error);
    if (error)
        throw BackupError(QStringLiteral("Não foi possível gravar o arquivo %1: %2")
                              .arg(to, QString::fromLocal8Bit(error.message())));
}

QStringList layoutsIn(const QString& folder) {
    return QDir(folder).entryList({QStringLiteral("*.rpt")}, QDir::Files,
                                  QDir::Name | QDir::IgnoreCase);
}

// --- The day's folder ----------------------------------------------------------------------

// Where a backup is built, inside the day's folder (so on the same disk as the files it
// replaces, also when the day's folder leads elsewhere), until it is complete.
const QString kWorkFolder = QStringLiteral(".backup em andamento");

// What a backup writes in a day's folder: the database, the files SQLite may keep beside it,
// and the layouts, as plain files. Anything else there is the office's and stays.
bool writtenByBackup(const QFileInfo& entry) {
    if (entry.isSymLink() || !entry.isFile()) return false;
    const QString name = entry.fileName();
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        if (name.compare(backupDatabaseFile + QLatin1String(suffix), Qt::CaseInsensitive) == 0)
            return true;
    return name.endsWith(QStringLiteral(".rpt"), Qt::CaseInsensitive);
}

// The work folder of a run that did not finish: only its files, which only a run wrote.
void removeWorkFolder(const QString& work) {
    const QFileInfo info(work);
    if (info.isSymLink() || (info.exists() && !info.isDir())) {
        QFile::remove(work);
        return;
    }
    if (!info.exists()) return;
    const QDir dir(work);
    for (const QFileInfo& file : dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System))
        QFile::remove(file.absoluteFilePath());
    QDir().rmdir(work);
}

// The day's folder, made when missing. What stands at its name and is no folder is not
// touched: the user is told what it is.
QString dayFolder(const Installation& installation, const QString& name) {
    const QString folder = installation.path(name);
    const QFileInfo at(folder);
    if (at.isSymLink() && !at.exists())
        throw BackupError(
            QStringLiteral("A pasta \"%1\" do backup de hoje é um atalho para um lugar que não "
                           "existe mais. O atalho não foi alterado: remova-o ou refaça-o e faça "
                           "o backup de novo.")
                .arg(name));
    if (at.exists() && !at.isDir())
        throw BackupError(
            QStringLiteral("Já existe um arquivo chamado \"%1\" na pasta %2, no lugar da pasta "
                           "do backup de hoje. O arquivo não foi alterado: renomeie-o ou mova-o "
                           "para outro lugar e faça o backup de novo.")
                .arg(name, installation.folder()));
    if (!at.exists() && !QDir().mkdir(folder))
        throw BackupError(QStringLiteral("Não foi possível criar a pasta %1.").arg(folder));
    return folder;
}

} // namespace

void snapshotDatabase(const ConnectionSettings& from, const QString& toFile) {
    removeDatabaseFile(toFile);
    try {
        if (from.engine == Engine::PostgreSQL) {
            snapshotPostgres(from, toFile);
        } else {
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
        }
        makeSelfContained(toFile);
    } catch (const StoreError& e) {
        removeDatabaseFile(toFile);
        throw BackupError(e.text());
    } catch (...) {
        removeDatabaseFile(toFile);
        throw;
    }
}

BackupRun runBackup(const Installation& installation, const ConnectionSettings& database,
                    const QDate& day, const BackupProgress& progress) {
    const QString folder = dayFolder(installation, backupFolderName(day));
    const QDir target(folder);
    const QString work = target.filePath(kWorkFolder);
    removeWorkFolder(work);
    if (!QFileInfo(work).isDir() && !QDir().mkdir(work))
        throw BackupError(QStringLiteral("Não foi possível gravar na pasta %1.").arg(folder));
    BackupRun run;
    run.folder = folder;
    QStringList written;
    try {
        const auto done = [&](const QString& file) {
            written << file;
            ++run.files;
            if (progress) progress(run.files, file);
        };
        snapshotDatabase(database, QDir(work).filePath(backupDatabaseFile));
        done(backupDatabaseFile);
        const QDir here(installation.folder());
        for (const QString& layout : layoutsIn(installation.folder())) {
            copyFile(here.filePath(layout), QDir(work).filePath(layout));
            done(layout);
        }
        // Something of the office's under one of the backup's names is not replaced: the
        // day's earlier backup then stays as it was too.
        for (const QString& file : written) {
            const QFileInfo there(target.filePath(file));
            if ((there.exists() || there.isSymLink()) && !writtenByBackup(there))
                throw BackupError(
                    QStringLiteral("Na pasta %1 já existe \"%2\", que não foi gravado pelo "
                                   "backup e não será substituído. Mova-o para outro lugar e "
                                   "faça o backup de novo.")
                        .arg(folder, file));
        }
        // Only now does the day's earlier backup give way, file by file. The files SQLite may
        // have left beside the earlier database go first: they would be read with the new one.
        for (const char* suffix : {"-wal", "-shm", "-journal"}) {
            const QFileInfo side(target.filePath(backupDatabaseFile + QLatin1String(suffix)));
            if (writtenByBackup(side) && !QFile::remove(side.absoluteFilePath()))
                throw BackupError(QStringLiteral("Não foi possível remover o arquivo %1.")
                                      .arg(side.absoluteFilePath()));
        }
        for (const QString& file : written)
            replaceFile(QDir(work).filePath(file), target.filePath(file));
        // What the earlier backup wrote and this one did not (a layout removed since) goes;
        // the rest is the office's.
        for (const QFileInfo& entry : target.entryInfoList(QDir::AllEntries | QDir::Hidden |
                                                               QDir::System | QDir::NoDotAndDotDot,
                                                           QDir::Name | QDir::IgnoreCase)) {
            const QString name = entry.fileName();
            if (name == kWorkFolder || written.contains(name)) continue;
            if (!writtenByBackup(entry))
                run.leftAlone << name;
            else if (!QFile::remove(entry.absoluteFilePath()))
                throw BackupError(QStringLiteral("Não foi possível remover o arquivo %1.")
                                      .arg(entry.absoluteFilePath()));
        }
        removeWorkFolder(work);
    } catch (...) {
        removeWorkFolder(work);
        throw;
    }
    return run;
}

int checkBackupFile(const QString& file) {
    const QString shown = QFileInfo(file).fileName();
    if (!QFileInfo(file).isFile())
        throw BackupError(QStringLiteral("O arquivo %1 não foi encontrado.").arg(file));
    const SqliteHandle db = openToRead(file);
    QString answer;
    if (!single(db.get(), "PRAGMA integrity_check", &answer) || answer != QStringLiteral("ok"))
        throw BackupError(
            QStringLiteral("O arquivo %1 está danificado e não pode ser restaurado: %2")
                .arg(shown, answer));
    if (!single(db.get(), "SELECT max(versao) FROM rtx_versao", &answer) || answer.toInt() <= 0)
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
    const QString untouched = QStringLiteral(
        "A restauração não foi feita: o banco de dados atual e os relatórios estão intactos.");
    try {
        checkBackupFile(run.restoredFrom);
    } catch (const BackupError& e) {
        throw BackupError(e.text() + QStringLiteral("\n") + untouched);
    }
    const ConnectionSettings& live = database;
    const QString home = installation.folder();
    // A restore is also how a new station's folder is made from a backup.
    if (!QDir().mkpath(home))
        throw BackupError(
            QStringLiteral("Não foi possível criar a pasta %1.\n%2").arg(home, untouched));
    const QStringList layouts = layoutsIn(folder);
    const QStringList current = layoutsIn(home);
    const bool hasLive = live.engine == Engine::PostgreSQL || QFileInfo::exists(live.sqliteFile);

    // The live database and layouts, kept aside first as a backup of their own. A copy
    // that cannot be written whole (a full disk) is not left behind half written.
    if (hasLive || !current.isEmpty()) {
        const QString aside =
            installation.path(QStringLiteral("Antes da restauração %1")
                                  .arg(now.toString(QStringLiteral("dd.MM.yyyy hh.mm.ss"))));
        if (QFileInfo(aside).exists() || QFileInfo(aside).isSymLink() || !QDir().mkdir(aside))
            throw BackupError(
                QStringLiteral("Não foi possível criar a pasta %1.\n%2").arg(aside, untouched));
        try {
            if (hasLive) snapshotDatabase(live, QDir(aside).filePath(backupDatabaseFile));
            for (const QString& layout : current)
                copyFile(QDir(home).filePath(layout), QDir(aside).filePath(layout));
        } catch (const BackupError& e) {
            QDir(aside).removeRecursively();
            throw BackupError(QStringLiteral("Não foi possível guardar a cópia do banco de dados "
                                             "atual em %1: %2\n%3")
                                  .arg(aside, e.text(), untouched));
        }
        run.keptAside = aside;
    }
    const auto giveUp = [&](const QString& text) {
        if (!run.keptAside.isEmpty()) QDir(run.keptAside).removeRecursively();
        return BackupError(text + QStringLiteral("\n") + untouched);
    };

    // The backup is made ready beside the live database: its database copied out of the
    // backup folder (which may lie on a CD) and brought up to this version, and its layouts;
    // only finished files are then put in place.
    QTemporaryDir staging(installation.path(QStringLiteral(".restaurando-XXXXXX")));
    if (!staging.isValid())
        throw giveUp(QStringLiteral("Não foi possível criar uma pasta de trabalho em %1: %2")
                         .arg(home, staging.errorString()));
    const QString staged = staging.filePath(backupDatabaseFile);
    try {
        {
            const SqliteHandle source = openToRead(run.restoredFrom);
            const SqliteHandle copy = openFile(staged, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
            onlineCopy(source.get(), copy.get(), backupDatabaseFile);
        }
        Store(sqliteSettings(staged)).ensureSchema();
        for (const QString& layout : layouts)
            copyFile(QDir(folder).filePath(layout), staging.filePath(layout));
        // The database in one transaction: a failure here leaves the live one as it was.
        if (live.engine == Engine::PostgreSQL) {
            restorePostgres(staged, live);
        } else {
            const SqliteHandle source = openFile(staged, SQLITE_OPEN_READONLY);
            const SqliteHandle target =
                openFile(live.sqliteFile, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
            onlineCopy(source.get(), target.get(), QFileInfo(live.sqliteFile).fileName());
        }
    } catch (const BackupError& e) {
        throw giveUp(e.text());
    } catch (const StoreError& e) {
        throw giveUp(e.text());
    }
    try {
        for (const QString& layout : layouts) {
            replaceFile(staging.filePath(layout), QDir(home).filePath(layout));
            run.layouts << layout;
        }
        Store(live).ensureSchema();
    } catch (const BackupError& e) {
        throw BackupError(QStringLiteral("O banco de dados foi restaurado, mas não todos os "
                                         "relatórios: %1\nOs relatórios anteriores estão em %2.")
                              .arg(e.text(), run.keptAside));
    } catch (const StoreError& e) {
        throw BackupError(e.text());
    }
    return run;
}

} // namespace rtx::output
