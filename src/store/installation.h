#pragma once
// The installation folder: site.txt, the database (or the settings that point at a
// PostgreSQL database), report layouts and the dated backup folders.

#include "store.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace rtx {

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
