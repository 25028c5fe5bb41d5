#pragma once
// The money of a dispatch: what Grava writes into the finance tables when the operator
// confirms the financial movement, and the courier's move on the board. Nothing here
// opens a transaction: the caller runs these inside the unit of work that saves the
// dispatch itself, so the dispatch and its money are stored together or not at all.

#include "store/store.h"

#include <QDate>
#include <QString>
#include <optional>

namespace rtx::dispatch {

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
};

// The codes of the rows written; empty for a row not written.
struct PostingResult {
    QString payable;
    QString cash;
    QString receivable;
    bool courierMoved = false;
};

// The payable to the courier (only for a fee other than zero), then the cash credit for
// "A VISTA" or the receivable for "FATURAR", then the courier's move to "A caminho".
// Call inside a unit of work. Throws StoreError.
PostingResult postDispatch(Store& store, const Posting& posting);

} // namespace rtx::dispatch
