#pragma once
// The cash book: one flat table of dated movements, each a debit or a credit. No balance
// is stored: the previous balance and the day's figures come from the per-day totals the
// database keeps beside the book, so a day loads in the same time however long the book.
//
// Every row that enters the book, from this screen, from the bills when they are settled,
// from billing or from the dispatch, goes in through postCash().

#include "store/record.h"
#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace rtx::finance {

inline const QString cashTable = QStringLiteral("caixa");

namespace cashcol {
inline const QString code = QStringLiteral("codigo");
inline const QString date = QStringLiteral("A1");
inline const QString operation = QStringLiteral("A2");
inline const QString document = QStringLiteral("A3");
inline const QString type = QStringLiteral("A4");
inline const QString amount = QStringLiteral("A5");
inline const QString description = QStringLiteral("A6");
inline const QString group = QStringLiteral("A7");
} // namespace cashcol

// The two words of a movement; a row with any other word is neither shown nor counted.
inline const QString debit = QStringLiteral("DÉBITO");
inline const QString credit = QStringLiteral("CRÉDITO");

// The first day of the previous balance.
inline QDate bookStart() {
    return QDate(1980, 1, 1);
}

struct CashMovement {
    QString code;
    QDate date;
    QString operation; // debit or credit
    QString document;
    QString type;
    qint64 amount = 0; // cents, positive by use: the sign comes from the operation
    QString description;
    QString group;

    bool isDebit() const { return operation == debit; }
    bool isCredit() const { return operation == credit; }
};

// The members of a movement and the columns the book keeps them in.
const QList<Field<CashMovement>>& cashFields();

// The one way a movement enters the book: the next code (drawn inside the caller's unit of
// work, under the writer's lock), then the row. Gives the code. Throws StoreError.
QString postCash(Store& store, const CashMovement& movement);
// Many movements at once (a write-off's credits): their codes drawn together, the rows
// added by one statement. Gives the codes, in the order of the movements.
QStringList postCash(Store& store, const QList<CashMovement>& movements);

// The checks of the cash screen's save, in their order: description, operation, then an
// amount that no movement holds (negative, or above the largest). An amount of zero is a
// movement like any other.
std::optional<Problem> checkCash(const CashMovement& movement);

// A day of the book: the balance of every day from the start of the book up to the end of
// the previous range, the day's rows (debits and credits, by code) and their totals.
struct CashDay {
    qint64 previous = 0;
    qint64 debits = 0;
    qint64 credits = 0;
    QList<CashMovement> rows;
    qint64 balance() const { return credits - debits + previous; }
};
CashDay loadDay(Store& store, const QDate& day, const QDate& previousUpTo);

// The movement of a code; none when there is none.
std::optional<CashMovement> loadCash(Store& store, const QString& code);
// Rewrites the movement of its code; the day totals follow the new day, operation and
// amount. False when there is none. Throws StoreError.
bool updateCash(Store& store, const CashMovement& movement);
// Deletes the movement of a code; false when there is none (an empty code finds none).
bool removeCash(Store& store, const QString& code);
// The movements of one operation, document and group, by code: what a dispatch put into the
// book is found by its number and the fixed words of its posting.
QList<CashMovement> movementsOf(Store& store, const QString& operation, const QString& document,
                                const QString& group);

// The searches of the book's second tab.
enum class CashSearch {
    Period,  // debits and credits of the period, by code
    Debits,  // the period's debits
    Credits, // the period's credits
    All,     // the whole book, by code, with no period
    Group,   // the period's movements of one group, by day
};
struct CashQuery {
    CashSearch by = CashSearch::Period;
    QDate from;
    QDate to;
    QString group;
};
// The rows of a search for a grid read a page at a time.
PageQuery cashSearch(const Store& store, const CashQuery& query);
// The totals of a search's rows.
Store::CashTotals cashSearchTotals(Store& store, const CashQuery& query);

} // namespace rtx::finance
