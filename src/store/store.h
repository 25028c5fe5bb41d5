#pragma once
// The store: one database per installation (SQLite file or PostgreSQL), reached through
// recordsets in the manner of the old record access, with bound values, case-blind text
// and units of work.

#include "schema.h"

#include <QDate>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

namespace rtx {

// A failure of the store. what() and text() carry the engine's own words.
class StoreError : public std::runtime_error {
public:
    explicit StoreError(const QString& text);
    QString text() const { return text_; }

private:
    QString text_;
};

// A save of a row read earlier (on a screen) finds that another station wrote it since: it
// changed, or it is gone. Nothing of the unit is kept.
class RowChanged : public StoreError {
public:
    enum class Why { Changed, Deleted };
    explicit RowChanged(Why why);
    Why why() const { return why_; }

private:
    Why why_;
};

// The column every edited register keeps its version in. The database raises it on every
// UPDATE of the row, whoever writes it; a row starts at 1, and a record holding 0 was not
// read from its table.
const QString& versionColumn();

enum class Engine { SQLite, PostgreSQL };

// How long a statement waits for another station's lock before it gives up and says so: long
// enough for any other station's save to end, short enough that nobody thinks the program hung.
inline constexpr int kLockWaitMs = 5000;
// What a station is told when it gave up waiting for another's lock (the engine's words, if
// any, follow on the next line).
QString otherStationWritingText();
// What the action in flight is told when the PostgreSQL server dropped the connection.
QString connectionLostText();

// Told with true when a statement starts waiting for another station's lock and with false
// when the wait ends, either way; the program installs one that shows the hourglass. Gives the
// one it replaces.
using LockWaitHook = std::function<void(bool waiting)>;
LockWaitHook setLockWaitHook(LockWaitHook hook);

// The date normaliser for a statement: the date of a screen's text, or a StoreError that
// says the text is no date ("31/02/2020", a half-typed field).
QDate requireDate(const QString& text);

struct ConnectionSettings {
    Engine engine = Engine::SQLite;
    QString sqliteFile;                     // SQLite: the database file
    QString host, database, user, password; // PostgreSQL
    int port = 5432;
};

class Store;

// A sort column of a paged query; text sorts blind to case and accents.
struct SortKey {
    QString column;
    bool descending = false;
};

// Rows of one table for a grid: which columns, which rows (a condition built with the
// Store's text pieces, with its values) and in which order.
struct PageQuery {
    QString table;
    QStringList columns;  // empty: all
    QString where;        // condition with '?' places; empty: every row
    QVariantList params;  // its values
    QList<SortKey> order; // the table's key is added last by the store
};

// A set of rows read at once. Fields are read and written by column name, case-blind.
// Rows of a "SELECT * FROM <table> ..." of one table can be edited, added and deleted.
class Recordset {
public:
    bool eof() const;
    bool bof() const;
    void moveFirst();
    void moveNext();
    void moveLast();
    int recordCount() const;
    int position() const { return pos_; }

    const QStringList& columns() const { return columns_; }
    QVariant value(const QString& column) const; // as the engine gave it
    QVariant value(int index) const;             // by position (aggregates)
    bool isNull(const QString& column) const;
    // Display text: null -> "", date -> "dd/mm/yyyy", money -> "1.234,56", others as text.
    QString text(const QString& column) const;
    qint64 cents(const QString& column) const;
    std::optional<QDate> date(const QString& column) const;

    // Editing, as AddNew/Edit, assignments, Update.
    void addNew();
    // With a version, the row must still be at it when update() writes it (the version the
    // screen read it at); otherwise update() throws RowChanged and writes nothing.
    void edit(qint64 expectedVersion = 0);
    void setValue(const QString& column, const QVariant& value); // QDate, qint64 cents...
    // Screen text converted by the column's type: dates "dd/mm/yyyy" or eight digits, an
    // empty date is null; money "1.234,56", empty is 0. Unreadable text throws StoreError.
    void setText(const QString& column, const QString& text);
    void update();
    void remove(); // deletes the current row; moveNext then reaches the row after it

private:
    friend class Store;
    Store* store_ = nullptr;
    const TableDef* table_ = nullptr; // the table read, when known
    bool editable_ = false;           // a plain SELECT * of one table
    QStringList columns_;
    QList<QVariantList> rows_;
    int pos_ = 0;
    enum class Mode { None, Adding, Editing } mode_ = Mode::None;
    QVariantList pending_;
    QList<bool> touched_;
    qint64 expected_ = 0;
    int indexOf(const QString& column) const;
    const Column* columnDef(const QString& column) const;
};

class Store {
public:
    explicit Store(const ConnectionSettings& settings);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // The store of this program's installation, set once at start (and by tests).
    static Store& current();
    static void setCurrent(Store* store);

    Engine engine() const { return settings_.engine; }
    const ConnectionSettings& settings() const { return settings_; }
    QSqlDatabase database() const;

    // Creates or upgrades the schema; each upgrade step runs in one transaction.
    void ensureSchema();
    int storedSchemaVersion();

    // A statement with '?' placeholders and bound values.
    Recordset open(const QString& sql, const QVariantList& params = {});
    // The whole table, in the order of its key ("table-type recordset").
    Recordset table(const QString& name);
    // Statement without rows; gives the number of rows changed.
    int execute(const QString& sql, const QVariantList& params = {});
    // The first value of the first row (aggregates); null when none.
    QVariant scalar(const QString& sql, const QVariantList& params = {});
    qint64 count(const QString& table);

    // Next code of a table with a text code: numeric maximum plus one, padded to the table's
    // width; the first code when empty. Call it inside the unit of work that saves the row:
    // the code is then reserved to this station until the unit ends.
    QString nextCode(const QString& table);
    // The codes of count new rows at once: the next code and those after it, drawn as
    // nextCode draws one.
    QStringList nextCodes(const QString& table, int count);
    // The code a new row would get now, for showing on a screen; not reserved.
    QString peekCode(const QString& table);
    // Adds one row under the next code of its table (values as for insert(), without the
    // code) and gives the code. Inside a unit of work on PostgreSQL the INSERT draws the code
    // itself: one round trip where nextCode and insert take three.
    QString insertUnderNewCode(const QString& table, const QVariantMap& values);

    // Prefix search, case- and accent-blind, with the typed text taken literally:
    // prefixClause("C5") gives "(C5 >= ? AND C5 < ?)", prefixParams(text) its two values.
    // (Being replaced by the table-aware forms below.)
    static QString prefixClause(const QString& column);
    static QVariantList prefixParams(const QString& typed);

    // Text comparisons of a text column of a table. Equality is blind to case but not to
    // accents ("jose" is "JOSE", and neither is "JOSÉ"); a search by the start of a text is
    // blind to both. Each gives a piece of a statement with '?' places:
    //   sameText("clientes", "C5")      -> a condition, bound with the text as typed
    //   startsWith("clientes", "C5")    -> a condition, bound with startParams(typed)
    //   sortKey("clientes", "C5")       -> the expression to order by (and to page on)
    QString sameText(const QString& table, const QString& column) const;
    // The same equality against another expression of the statement (a column of a list
    // joined to the table) instead of a bound value.
    QString sameText(const QString& table, const QString& column, const QString& value) const;
    QString startsWith(const QString& table, const QString& column) const;
    QVariantList startParams(const QString& typed) const;
    QString sortKey(const QString& table, const QString& column) const;

    // Rows of one table read a page at a time, in an order made total by the table's id
    // (the engine's row number), so that pages never repeat nor skip a row, on both engines,
    // however many rows share a name or a status. Rows without a value come first in an
    // ascending order, last in a descending one. `after` is the position after the last
    // row read (from pageCursor); empty for the first page.
    Recordset page(const PageQuery& query, const QVariantList& after, int limit);
    // The position after the current row of a page read by page().
    QVariantList pageCursor(const PageQuery& query, const Recordset& rows) const;

    // First, previous, next, last by code. Empty when there is no such row.
    QString firstCode(const QString& table);
    QString lastCode(const QString& table);
    QString previousCode(const QString& table, const QString& code);
    QString nextCodeAfter(const QString& table, const QString& code);

    // Adds one row (values by column; screen text is converted as in Recordset::setText);
    // gives the engine's id of the new row.
    QVariant insert(const QString& table, const QVariantMap& values);
    // Adds many rows of the same columns with as few statements as the engine's limit on
    // bound values allows (one for a few thousand values).
    void insertRows(const QString& table, const QStringList& columns,
                    const QList<QVariantList>& rows);
    // How many rows of `width` values one statement may carry.
    static int rowsPerStatement(int width);

    // The row whose key column equals key, opened for writing: edited when it is there, added
    // with the key when not. A row read at an expected version must be there, and update()
    // writes it only at that version (RowChanged).
    Recordset rowForSave(const QString& table, const QString& keyColumn, const QVariant& key,
                         qint64 expectedVersion = 0);
    // Saves by key: updates the row whose key column equals key, or adds it. With an expected
    // version the row must be there and still at it, or RowChanged says which it is not.
    void saveByKey(const QString& table, const QString& keyColumn, const QVariant& key,
                   const QVariantMap& values, qint64 expectedVersion = 0);
    // The version a row of a versioned table is at now; 0 when it is gone.
    qint64 versionOf(const QString& table, const QString& keyColumn, const QVariant& key);
    // A row read at a version (not 0) must still be at it: RowChanged says when it changed or
    // is gone. Inside the saving unit, before what depends on it is written.
    void requireVersion(const QString& table, const QString& keyColumn, const QVariant& key,
                        qint64 expectedVersion);

    // Credits and debits of the cash book between two days (both included), from the
    // per-day totals the database keeps beside the cash book.
    struct CashTotals {
        qint64 credits = 0;
        qint64 debits = 0;
        qint64 balance() const { return credits - debits; }
    };
    CashTotals cashTotals(const QDate& from, const QDate& to);

    // Transactions (use UnitOfWork). Nested units join the outer one. Every table an
    // INSERT, UPDATE or DELETE of the unit wrote is announced on rtx::changes() once the
    // outermost unit commits; a rollback announces nothing. A write outside any unit is
    // announced after it runs.
    void begin();
    void commit();
    void rollback();
    bool inTransaction() const { return depth_ > 0; }

    // Statements sent to the engine since the store was opened: each is a round trip to the
    // server, which an office network makes cost a millisecond or so. Tests and the benchmark
    // read it to hold each action to a handful.
    qint64 statementCount() const { return statements_; }

private:
    friend class Recordset;
    friend class UnitOfWork;
    ConnectionSettings settings_;
    QString connectionName_;
    int depth_ = 0;
    bool failed_ = false;
    QStringList written_; // tables written by the open unit of work, announced at its commit
    qint64 statements_ = 0;
    // PostgreSQL: statements prepared once per connection and run again by their text, so
    // that a statement is one round trip rather than prepare, run and release.
    QHash<QString, QSqlQuery> prepared_;
    QSqlQuery preparedQuery(const QString& sql);
    bool workTables_ = false; // made on this connection, so made again on a new one
    bool waiting_ = false;    // a statement waits for another station's lock
    bool gaveUp_ = false;     // ... and waited long enough
    qint64 waitStart_ = 0;
    bool lost_ = false; // PostgreSQL: the server dropped the connection; the next action reopens it
    friend int sqliteBusy(void* store, int count);
    void prepareConnection();
    void reconnectIfLost();
    StoreError failure(const QSqlError& error, const QString& engineText);
    void startWaiting();
    void endWaiting();
    void noteWritten(const QString& table); // a table a statement wrote, or empty
    Recordset newRow(const TableDef& t, const QVariantMap& values);
    // The values of a row as its columns keep them, converted as Recordset converts them.
    QList<std::pair<const Column*, QVariant>> storedValues(const TableDef& t,
                                                           const QVariantMap& values);
    void createWorkTables();
    QString codeNear(const QString& table, const QString& comparison, bool descending,
                     const QVariantList& params);
    void registerFunctions();
    QSqlQuery run(const QString& sql, const QVariantList& params);
};

// One user action, one transaction: commit() keeps it; leaving the scope without commit
// (an error, an early return) rolls everything back.
class UnitOfWork {
public:
    explicit UnitOfWork(Store& store = Store::current());
    ~UnitOfWork();
    UnitOfWork(const UnitOfWork&) = delete;
    UnitOfWork& operator=(const UnitOfWork&) = delete;
    void commit();

private:
    Store& store_;
    bool done_ = false;
};

} // namespace rtx
