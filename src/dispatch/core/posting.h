#pragma once
// The money of a dispatch: what Grava writes into the finance tables when the operator
// confirms the financial movement, and the courier's move on the board. Nothing here
// opens a transaction: the caller runs these inside the unit of work that saves the
// dispatch itself, so the dispatch and its money are stored together or not at all.
//
// A dispatch's money is posted once. Its rows are the courier's "Tx.entregador" payable and
// the client's "Receita entrega/coleta" cash credit or receivable, with the dispatch's number
// in their document; the dispatch keeps their codes, so that a number drawn again after the
// highest dispatch was deleted does not take over the deleted one's money (a dispatch saved
// before the codes were kept is found by its number and those words). Saving the
// dispatch again brings those rows to what the screen now says (value, courier, fee, the way
// of payment) rather than posting fresh ones. A row the office has already settled (the
// courier paid, the invoice received) is not touched: only the difference is posted beside
// it, and the question says so first. A difference that goes the other way (a fee paid and
// then lowered, an invoice received and then reduced) is money owed back: it stands as a row
// of the other ledger, the courier's receivable or the client's payable, with the same words,
// so that no bill ever holds a negative amount.

#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace rtx::dispatch {

// The fixed words that tie the finance rows to their dispatch.
inline const QString courierFeeGroup = QStringLiteral("Tx.entregador");
inline const QString revenueGroup = QStringLiteral("Receita entrega/coleta");

// What the posting reads from the dispatch screen.
struct Posting {
    QString number;                   // the dispatch's control number (CODIGO)
    QString client;                   // A6
    QString courier;                  // A18
    QDate date;                       // A2, the day of the dispatch
    std::optional<qint64> courierFee; // VM; none when the field is empty
    qint64 clientValue = 0;           // A19
    QString payment;                  // A20: "A VISTA" or "FATURAR" (anything else: neither)
    QDate today = QDate::currentDate();
    bool added = false; // the dispatch was added in this same unit: nothing is posted yet
};

// The three places a dispatch's money goes.
enum class PostingSide { Payable, Cash, Receivable };

// One row of a side, posted or to be posted: whose it is (the courier of a payable, the
// client of a receivable or of a cash credit) and its amount.
struct PostedRow {
    QString code; // empty for a row still to be written
    QString party;
    qint64 amount = 0;
    bool settled = false;
    // Stored in the other ledger as money owed back; its amount here is then below zero.
    bool reversed = false;
    bool operator==(const PostedRow&) const = default;
};

// What a save does to one side: the open rows rewritten (by code), the rows written anew, the
// open rows deleted, beside the settled rows, which stay as they are.
struct SidePlan {
    PostingSide side = PostingSide::Payable;
    QList<PostedRow> settled;
    QList<PostedRow> rewritten;
    QList<PostedRow> written;
    QList<PostedRow> deleted;
    bool changesMoney = false; // an amount or a party differs from what stands posted
};

struct PostingPlan {
    QList<SidePlan> sides; // payable, cash, receivable
    // The sides where something already settled sits beside a change: the question tells.
    QList<SidePlan> settledChanges() const;
};

// The rows of one side as they stand and what the screen now wants on it, turned into the
// side's plan. wanted: the party and amount the side should hold, none when the side is not
// this dispatch's (a cash credit of an invoiced dispatch). keepZero: a row of zero is still
// written (the client's value is posted even at zero; the courier's fee is not).
SidePlan planSide(PostingSide side, const QList<PostedRow>& posted,
                  const std::optional<PostedRow>& wanted, bool keepZero);

// The plan of a posting, from the rows of the dispatch already in the finance tables.
// Throws StoreError.
PostingPlan planPosting(Store& store, const Posting& posting);

// "Confirma movimentação financeira?", preceded, when a settled row stands beside a change,
// by what was settled and the difference that would be posted.
QString postingQuestion(const PostingPlan& plan);

// The codes of the dispatch's rows after the posting (the courier's payable, the client's
// cash credit or receivable); empty where the side holds none.
struct PostingResult {
    QString payable;
    QString cash;
    QString receivable;
    bool courierMoved = false;
    qint64 version = 0; // of the dispatch's row, once its codes are kept
};

// Brings the dispatch's money to what the posting says (the first time: the payable to the
// courier for a fee other than zero, then the cash credit for "A VISTA" or the receivable for
// "FATURAR"), keeps the codes of its rows on the dispatch, then moves the courier to
// "A caminho". Call inside a unit of work. Throws StoreError.
PostingResult postDispatch(Store& store, const Posting& posting);

} // namespace rtx::dispatch
