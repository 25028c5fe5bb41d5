#pragma once
// The rows the finance reports read, written into the station's work tables: the day's
// cash sheet (CX1.rpt), the list of a cash search (TMP.rpt) and the list of bills
// (contas.rpt). Each empties its table first. Money and dates go as the screens show them.

#include "finance/core/ledger.h"
#include "store/store.h"

#include <QDate>
#include <QString>

namespace rtx::finance {

inline const QString daySheetTable = QStringLiteral("rel_caixa");           // Rela2
inline const QString cashListTable = QStringLiteral("rel_caixa_impressao"); // TMP
inline const QString billReportTable = QStringLiteral("rel_contas");        // TMP3

// The day's movements with the balances as the screen shows them (previous and closing).
void fillDaySheet(Store& store, const QDate& day, const QString& previous, const QString& balance);
// Every row of a cash search, in the grid's order: its day, and the operation word in each of
// the other seven columns, as the office's sheet has always had it; then the grid's own
// columns (document, type, description, group, debit or credit, control number).
void fillCashList(Store& store, const PageQuery& search);
// Every row of a list of bills, under the ledger's heading and the period.
void fillBillReport(Store& store, Ledger ledger, const QDate& from, const QDate& to,
                    const PageQuery& list);

} // namespace rtx::finance
