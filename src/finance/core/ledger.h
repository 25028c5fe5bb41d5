#pragma once
// Accounts payable and accounts receivable: two tables with the same columns, kept by one
// set of rules. What differs between them (the table, the status words, the messages of a
// save, the question and the side of the cash book, the report's heading) is told once, in
// the LedgerKind of each.

#include "finance/core/cashbook.h"
#include "store/store.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace rtx::finance {

enum class Ledger { Payables, Receivables };

namespace billcol {
inline const QString code = QStringLiteral("codigo");
inline const QString entered = QStringLiteral("c1");
inline const QString status = QStringLiteral("c2");
inline const QString document = QStringLiteral("c3");
inline const QString type = QStringLiteral("c4");
inline const QString description = QStringLiteral("c5");
inline const QString party = QStringLiteral("c6"); // supplier, or client
inline const QString group = QStringLiteral("c7");
inline const QString branch = QStringLiteral("c8");
inline const QString account = QStringLiteral("c9");
inline const QString cheque = QStringLiteral("c10");
inline const QString thirdParty = QStringLiteral("c11");
inline const QString amount = QStringLiteral("c12");
inline const QString due = QStringLiteral("c13");
inline const QString remarks = QStringLiteral("c14");
inline const QString settled = QStringLiteral("c15");
inline const QString settledAmount = QStringLiteral("c16");
} // namespace billcol

// What one ledger is beside the other.
struct LedgerKind {
    QString table;
    QString open;           // "A pagar" / "A receber"
    QString settled;        // "Paga" / "Recebida"
    QString noSettledDate;  // the save's message for a settled bill without its date
    QString noSettledValue; // ... without its amount
    QString cashQuestion;   // "Deseja debitar o caixa?" / "Deseja creditar o caixa?"
    QString cashOperation;  // debit / credit
    QString reportName;     // the report's heading
    bool reportZeroes;      // the report shows an empty amount settled as "0"
    QString namesTable;     // the register the names' reload reads
};
const LedgerKind& kindOf(Ledger ledger);

struct Bill {
    QString code;
    QDate entered;
    QString status;
    QString document;
    QString type;
    QString description;
    QString party;
    QString group;
    QString branch;
    QString account;
    QString cheque;
    QString thirdParty;
    qint64 amount = 0;
    QDate due;
    QString remarks;
    QDate settled; // may stay empty
    qint64 settledAmount = 0;
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;
};
// The members of a bill and the columns both ledgers keep them in.
const QList<Field<Bill>>& billFields();

// The checks of a save in their order: a settled bill needs its date and amount, then the
// description, the status and the amount; last, an amount or an amount settled that no bill
// holds (negative, or above the largest).
std::optional<Problem> checkBill(Ledger ledger, const Bill& bill);

std::optional<Bill> loadBill(Store& store, Ledger ledger, const QString& code);
// The bills of one document under one group, by code: what a dispatch posted is found by its
// number and the fixed words of its posting.
QList<Bill> billsOf(Store& store, Ledger ledger, const QString& document, const QString& group);
// Saves by the bill's code (the next code when it has none) and, when the bill is settled
// and postToCash, posts it into the cash book dated today. An empty settled date leaves the
// stored one. Gives the code. Call inside a unit of work; throws StoreError.
QString saveBill(Store& store, Ledger ledger, const Bill& bill, bool postToCash,
                 const QDate& today = QDate::currentDate());
// The movement a settled bill posts into the cash book.
CashMovement cashOf(Ledger ledger, const Bill& bill, const QDate& today);
// Deletes the bill of a code; what it posted into the cash book stays. False when none.
bool removeBill(Store& store, Ledger ledger, const QString& code);
qint64 billCount(Store& store, Ledger ledger);

// The walk of the form. First and last by code; previous goes one back from the code on the
// screen (from one not on file, to the last); next shows the same bill again, as it always
// has. Empty: nothing to go to.
QString walkBills(Store& store, Ledger ledger, Walk walk, const QString& code);

// The list of the second tab: bills due in a period with a status, of everyone, of one
// name or of one group (compared whole: an empty name finds the bills without one).
enum class BillFilter { Period, Party, Group };
struct BillQuery {
    BillFilter by = BillFilter::Period;
    QDate from;
    QDate to;
    bool settled = false; // the settled status, else the open one
    QString text;         // the name or the group
};
PageQuery billSearch(const Store& store, Ledger ledger, const BillQuery& query);
// The list shown at opening: the bills entered today that are still open.
PageQuery newBills(const Store& store, Ledger ledger, const QDate& today = QDate::currentDate());
// The sum of the amounts of a list's rows (never the amounts settled).
qint64 listTotal(Store& store, const PageQuery& query);

// The names offered in the name boxes: the clients at opening, or the register the
// ledger's reload reads.
QStringList partyNames(Store& store, const QString& registerTable);

} // namespace rtx::finance
