#pragma once
// The day's backup and its restore. A backup is the folder "Backup dd.mm.yyyy" in the
// installation folder with the database, as one SQLite file of the installation's schema
// whatever the engine, and every report layout (*.rpt). The database is copied as one
// consistent moment while other stations go on writing: SQLite's own online backup, or on
// PostgreSQL every table read in one repeatable-read transaction. The new backup is built
// beside the day's earlier one and only then takes its place, so a failure leaves the
// earlier one whole. A restore checks the file, keeps the live database aside in a dated
// copy and puts the backup in place in one transaction.

#include "store/installation.h"
#include "store/store.h"

#include <QDate>
#include <QDateTime>
#include <QString>
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
};

// Takes the day's backup of the installation and its database (the settings the program
// runs on); replaces the day's earlier one only once the new one is complete. Throws
// BackupError.
BackupRun runBackup(const Installation& installation, const ConnectionSettings& database,
                    const QDate& day, const BackupProgress& progress = {});

// Writes the database of the settings, as one consistent moment, into a new SQLite file.
void snapshotDatabase(const ConnectionSettings& from, const QString& toFile);

// Refuses (BackupError) a file that is damaged, is not a database of this program, or was
// written by a newer version of it. Gives the schema version it holds.
int checkBackupFile(const QString& file);

struct RestoreRun {
    QString restoredFrom; // the backup's database file
    QString keptAside;    // the live database as it was; empty when there was none
};

// Restores the backup folder (its name in the installation folder, or a path) into the
// installation's database (the settings given). The live database is first kept aside in
// the installation folder, in a file named by the moment. Throws BackupError, with the live
// database untouched.
RestoreRun restoreBackup(const Installation& installation, const ConnectionSettings& database,
                         const QString& backup, const QDateTime& now);

} // namespace rtx::output
