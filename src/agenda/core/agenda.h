#pragma once
// The agenda's entries, its word lists and its notices: what the day agenda and its search
// read and write. An entry is one appointment of a date and an hour; the code is its only
// key, so two entries at one hour are two rows.

#include "store/record.h"
#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::agenda {

// The entries' table and its columns, named once.
inline const QString entriesTable = QStringLiteral("agenda"); // the old AGENDA.Mdb
namespace col {
inline const QString code = QStringLiteral("CODIGO");
inline const QString date = QStringLiteral("A1");
inline const QString hour = QStringLiteral("A2");
inline const QString group = QStringLiteral("A3");
inline const QString position = QStringLiteral("A4");
inline const QString event = QStringLiteral("A5");
inline const QString comment = QStringLiteral("OB");
} // namespace col

// The notices by date (AGE4.mdb): the date as the field shows it, and the text.
inline const QString noticesTable = QStringLiteral("agenda_avisos");
namespace noticecol {
inline const QString date = QStringLiteral("A1");
inline const QString text = QStringLiteral("a2");
} // namespace noticecol

// The position a new entry starts with.
inline const QString openPosition = QStringLiteral("ABERTA");

struct Entry {
    QString code; // empty: not saved yet
    QDate date;
    QString hour;
    QString group;
    QString position = openPosition;
    QString event;
    QString comment;
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;
};

// Each member of an entry and its column.
const QList<Field<Entry>>& entryFields();

// Weekday names, Sunday first, as the screens write them.
QString weekdayName(const QDate& date);
// "Segunda-24/11": the weekday name, "-" and the day and month.
QString dayCaption(const QDate& date);

qint64 entryCount(Store& store);
std::optional<Entry> loadEntry(Store& store, const QString& code);
// A day's entries, ordered by the hour as typed (text order), then by code.
QList<Entry> dayEntries(Store& store, const QDate& day);
// The entries of a range of days (both included), ordered by the hour as text, or by date.
enum class Order { Hour, Date };
QList<Entry> rangeEntries(Store& store, const QDate& from, const QDate& to, Order order);
// Every entry, ordered by the hour as text ("> VER TODOS").
QList<Entry> allEntries(Store& store);

// The first problem of a save, in the order of the checks.
std::optional<Problem> checkEntry(const Entry& entry);
// Saves by code; an entry without one draws the next code. Gives the code. The words are
// kept without the blanks typed around them; the comment as typed. Runs in the caller's
// unit of work, or in its own.
QString saveEntry(Store& store, const Entry& entry);
void removeEntry(Store& store, const QString& code);
// First, previous, next, last by code; empty when there is none.
QString walkCode(Store& store, Walk walk, const QString& from);

// The notice of a date, as the date field shows it ("dd/mm/yyyy"); nothing when none.
std::optional<QString> noticeFor(Store& store, const QString& dateText);
// Adds the notice of a date, the date as the date field shows it.
void addNotice(Store& store, const QString& dateText, const QString& text);

// The three word lists the entries are made of.
enum class WordList { Positions, Groups, Events };
QString wordTable(WordList list);
QStringList words(Store& store, WordList list);
bool hasWord(Store& store, WordList list, const QString& word);
void addWord(Store& store, WordList list, const QString& word);
void removeWord(Store& store, WordList list, const QString& word);

// What lies ahead of a date: the next day, the day after, and the four weeks after. The
// rows follow the date shown; the headings tell the days from today.
struct OutlookList {
    QString heading;
    QStringList rows;
};
struct Outlook {
    OutlookList nextDay, dayAfter, weeks;
};
// "=> hour - event" for the next two days, "=> dd/mm/yyyy - event" for the weeks.
Outlook outlook(Store& store, const QDate& shown, const QDate& today);
// The heading: weekday name, "-", "dd/mm", " - Total - ", the count as "000", and 65
// blanks that widen the column.
QString outlookHeading(const QDate& day, int count);

// The search's list: the entries of a range, ordered by the hour, as "=> date - hour -
// event", kept with their groups so that a group narrows them without reading again.
struct FoundEntry {
    QString text;
    QString group;
};
QList<FoundEntry> searchRange(Store& store, const QDate& from, const QDate& to);
QStringList narrowToGroup(const QList<FoundEntry>& found, const QString& group);

// Fills the print's work table (AGE5.mdb) with the rows of the list, each under the code
// 1, with the dates and the group line ("GRUPO:  " and the group; empty without a group).
void fillPrintRows(Store& store, const QDate& from, const QDate& to, const QString& group,
                   const QStringList& rows);
inline const QString printTable = QStringLiteral("rel_agenda");

} // namespace rtx::agenda
