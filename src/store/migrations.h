#pragma once
// The schema of an installation, built and upgraded by numbered steps from an empty
// database. A step, once released, is frozen: it says in its own statements what it
// creates, never by reading the live table list (schema.h), so that a column added to a
// table later is added by a later step and cannot clash on a new installation. A change of
// the schema is a new step at the end of the list.

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace rtx {

class Store;

struct Migration {
    int version = 0;                   // the version the database is at after this step
    QString what;                      // what the step does, in a few words
    std::function<void(Store&)> apply; // its statements, for the store's engine
};

// The program's steps, first to last; the last one's version is schemaVersion().
const QList<Migration>& migrations();

// Brings the database from its stored version up to the last of the steps. Each step runs
// in a unit of its own that also records its version, so that a failed step leaves the
// database at the version before it, and the next start takes it up from there. Two
// stations starting together take the steps one after the other.
void migrate(Store& store, const QList<Migration>& steps);

namespace migration {

// Step 1: the tables of the first release, with the text comparison of that release.
void firstSchema(Store& store);
// Step 2: text compared blind to case but not to accents, searched and ordered blind to
// both, with nothing in the stored schema that only this program knows how to read.
void textWithoutCustomCollation(Store& store);
// Step 3: the payables and receivables indexed by their day of entry.
void entryDateIndexes(Store& store);
// Step 4: a dispatch keeps the codes of the finance rows of its money.
void dispatchPostedRows(Store& store);
// Step 5: the month's invoices and what they gather; the company's PIX key and the days an
// invoice is given.
void invoices(Store& store);
// Step 6: the dispatches and the open receivables indexed for the office at a glance.
void panelIndexes(Store& store);
// Step 7: the employees' passwords hashed (Argon2id) with their rights following the hash; the mark
// of a password to change at the next login; the count of wrong tries and the wait.
void hashedPasswords(Store& store);
// Step 8: the dispatches' per-day totals of the office at a glance, kept by triggers, and the
// moment a dispatch was delivered.
void panelDayTotals(Store& store);
// Step 9: the registers the screens edit keep a version that every UPDATE raises.
void rowVersions(Store& store);

// The text columns that the program looks up, searches or orders by, table by table, as of
// step 2. They get their folded forms (SQLite) or their search index (PostgreSQL).
struct SearchedColumns {
    QString table;
    QString idColumn;
    QStringList columns;
};
const QList<SearchedColumns>& searchedColumnsOfStep2();

// SQLite: the folded columns that keep a text column's comparisons. A later step that
// folds another column adds the two columns, fills them, and calls refreshFoldTriggers.
QString keyColumn(const QString& column);    // "C5_chave": case-folded
QString searchColumn(const QString& column); // "C5_busca": case- and accent-folded
// (Re)creates the triggers that keep every folded column of a table up to date, from the
// columns the table has now.
void refreshFoldTriggers(Store& store, const QString& table, const QString& idColumn);

} // namespace migration

} // namespace rtx
