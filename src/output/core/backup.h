#pragma once
// The day's backup and its restore. A backup is the folder "Backup dd.mm.yyyy" in the
// installation folder with the database, as one SQLite file of the installation's schema
// whatever the engine, and every report layout (*.rpt). The database is copied as one
// consistent moment while other stations go on writing: SQLite's own online backup, or on
// PostgreSQL every table read in one repeatable-read transaction. The file is left whole in
// itself (no log beside it), so that it can be checked and restored from a CD or a
// read-only share. The new backup is built inside the day's folder and only then takes the
// place of the day's earlier one, file by file: only what a backup writes is ever replaced
// or removed there, whatever else the office keeps in the folder stays and is named.
//
// A restore checks the file without writing to it, brings a backup of an earlier version up
// to this one, keeps the live database and layouts aside in a dated folder and puts the
// backup's database and layouts in place.

#include "store/installation.h"
#include "store/store.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>
#include <stdexcept>

namespace rtx::output {

// A backup or a restore that could not be done, in words for the user.
class BackupError : public std::runtime_error {
public:
    explicit BackupError(const QString& text);
    QString text() const { return text_; }

private:
    QString text_;
};

// "Backup 25.12.2020".
QString backupFolderName(const QDate& day);
// The database's file inside a backup folder.
inline const QString backupDatabaseFile = QStringLiteral("rotalix.db");

// Called after each file is in the new folder, with the count so far and the file's name.
using BackupProgress = std::function<void(int count, const QString& file)>;

struct BackupRun {
    QString folder; // the day's folder, complete
    int files = 0;
    QStringList leftAlone; // what the folder held that no backup wrote, left as it was
};

// The words that tell the user what was left alone in the folder; empty when nothing was.
QString leftAloneNote(const BackupRun& run);

// Takes the day's backup of the installation and its database (the settings the program
// runs on); replaces the day's earlier one only once the new one is complete. Throws
// BackupError.
BackupRun runBackup(const Installation& installation, const ConnectionSettings& database,
                    const QDate& day, const BackupProgress& progress = {});

// Writes the database of the settings, as one consistent moment, into a new SQLite file.
void snapshotDatabase(const ConnectionSettings& from, const QString& toFile);

// Refuses (BackupError) a file that is damaged, is not a database of this program, or was
// written by a newer version of it. Gives the schema version it holds. Never writes to the
// file nor beside it: a backup on a CD is checked where it lies.
int checkBackupFile(const QString& file);

struct RestoreRun {
    QString restoredFrom; // the backup's database file
    // The folder "Antes da restauração dd.mm.yyyy hh.mm.ss" in the installation folder with
    // the live database (rotalix.db) and layouts as they were, itself a backup that can be
    // restored; empty when the installation had neither.
    QString keptAside;
    QStringList layouts; // the layouts put in place from the backup
};

// Restores the backup folder (its name in the installation folder, or a path) into the
// installation's database (the settings given) and folder: the database, upgraded when the
// backup is of an earlier version, and the backup's layouts. The live database and layouts
// are first kept aside in the installation folder, in a folder named by the moment. Throws
// BackupError, with the live database and layouts untouched and nothing left behind.
RestoreRun restoreBackup(const Installation& installation, const ConnectionSettings& database,
                         const QString& backup, const QDateTime& now);

} // namespace rtx::output
