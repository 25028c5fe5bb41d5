#pragma once
// The installation folder: site.txt, the database (or the settings that point at a
// PostgreSQL database), report layouts and the dated backup folders.

#include "store.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

namespace rtx {

// The kind of file system a folder lies on, as Linux numbers it (statfs's f_type); 0 when it
// cannot be told.
using FileSystemProbe = std::function<quint64(const QString& folder)>;
// Replaces the probe (the tests give one that answers as a network share would); an empty one
// goes back to asking the system. Gives the one replaced.
FileSystemProbe setFileSystemProbe(FileSystemProbe probe);
// The name of the network file system (SMB/CIFS, NFS...) a folder lies on; empty when local.
QString networkFileSystem(const QString& folder);

class Installation {
public:
    explicit Installation(QString folder);

    // The folder from "--pasta DIR", else ROTALIX_PASTA, else the executable's folder.
    static QString resolveFolder(const QStringList& arguments);

    QString folder() const { return folder_; }
    QString path(const QString& file) const; // file inside the folder
    QString siteFile() const { return path(QStringLiteral("site.txt")); }
    // First line of site.txt, blank as it may be; nothing when the file is missing or empty.
    std::optional<QString> siteName() const;

    // "rotalix.ini" in the folder; [banco] motor=postgresql chooses PostgreSQL, otherwise
    // the SQLite file "rotalix.db" in the folder.
    ConnectionSettings connectionSettings() const;
    // [banco] permitir_rede=sim: the office keeps its SQLite database on a network folder
    // knowingly (one station only).
    bool allowsNetworkFolder() const;

    // Opens the installation's database. An SQLite file on a network folder is refused, with
    // a StoreError that points to PostgreSQL for several stations, unless the settings allow it.
    std::unique_ptr<Store> openStore() const;

    // Creates the schema and what comes with a new installation (company row, first
    // administrator, status words, agenda position) when missing; a second call changes
    // nothing.
    void initialise(Store& store) const;

private:
    QString folder_;
};

// Rows that come with every installation.
void seedInstallation(Store& store);

} // namespace rtx
