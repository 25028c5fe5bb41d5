#pragma once
// The tables of an installation. Each stands for one file of the old installation; the
// list below is the one place that says which (the backup, the reports and the importer of
// old files read it).

#include <QList>
#include <QString>
#include <QStringList>

namespace rtx {

enum class ColType {
    Text,  // text: equal blind to case, searched and ordered blind to case and accents
    Date,  // a real date
    Money, // integer cents
    Int,   // whole number
    Id,    // engine-given row number (the key of tables without a code)
};

struct Column {
    QString name;
    ColType type = ColType::Text;
};

struct TableDef {
    QString name;           // table name in the database
    QString legacyFile;     // file of the old installation, e.g. "B1.Mdb"
    QString legacyTable;    // table name inside that file
    QString comment;        // what the columns mean
    QString idColumn;       // engine-given key ("cd" or "rid")
    QString codeColumn;     // text code key, empty if none
    int codeWidth = 0;      // 5, 6 or 7
    bool workTable = false; // report work table: private to the station (temporary)
    QList<Column> columns;  // without the id column
    // Columns looked up or ordered by, each with its index. A text column here keeps, on
    // SQLite, the folded copies its comparisons use: a column added here needs a step of
    // the schema that adds them (migrations.h).
    QStringList indexes;

    const Column* column(const QString& name) const; // case-blind
};

const QList<TableDef>& tables();
// By table name or by old file name, case-blind: "clientes", "B1.Mdb", "b1.mdb".
const TableDef* findTable(const QString& nameOrFile);
const TableDef& table(const QString& name); // throws StoreError when unknown

// Current schema version, and the module names of the permission grid in their order
// (separators are two blanks).
int schemaVersion();
const QStringList& permissionModules();

} // namespace rtx
