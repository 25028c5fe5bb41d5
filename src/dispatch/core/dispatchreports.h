#pragma once
// The printed papers of dispatch: the A4 slip of one dispatch, the counter coupon's company
// lines, the three reports of the search tab (on the dispatch table, by courier, client or
// status, with the period as a formula and the selection bound as values) and the four of
// the report screen (on the station's own work table, filled for one run, by courier,
// client, status or way of payment).

#include "output/core/coupon.h"
#include "output/core/report.h"

#include <QDate>
#include <QString>
#include <QStringList>

namespace rtx {
class Store;
}

namespace rtx::dispatch {

// Layout files of the dispatch reports.
namespace layouts {
inline const QString slip = QStringLiteral("ATENDE.rpt");
inline const QString slipTwice = QStringLiteral("ATENDE1.rpt");
inline const QString byCourier = QStringLiteral("rela3.rpt");
inline const QString byClient = QStringLiteral("rela4.rpt");
inline const QString byStatus = QStringLiteral("rela5.rpt");
inline const QString allStatuses = QStringLiteral("rela5x.rpt");
} // namespace layouts

// The station's work table of the report screen.
inline const QString& reportTable() {
    static const QString s = QStringLiteral("rel_atendimentos");
    return s;
}

// ---- The A4 slip and the coupon ---------------------------------------------------------

inline const QString& saveFirstMessage() {
    static const QString s = QStringLiteral("Primeiro grave o antendimento para depois imprimir.");
    return s;
}

// Sets the slip of a saved dispatch up on a report control: the dispatch table, the formula
// NOME (company name and telephone), the dispatch's number as the selection, the layout of
// one copy or of two to a page. The report prints the saved row, not the screen. Gives the
// message instead, and sets nothing, when the number is empty (the dispatch is not saved).
QString setUpSlip(output::ReportDefinition& report, Store& store, const QString& number,
                  bool twoCopies);

// The company's lines of the coupon (name and telephone) from the registry.
void fillCouponCompany(output::CouponFields& fields, Store& store);

// ---- Reports of the search tab, on the dispatch table ------------------------------------

enum class ReportBy { Courier, Client, Status, Payment };

// The search tab's check of step 1: the message when the name of the first tab is empty.
QString checkSearchReport(ReportBy by, const QString& name);
// The report buttons of the search tab that a report by `by` disables until the screen is
// closed ("Command10", "Command17", "Command18").
QStringList buttonsDisabledBy(ReportBy by);

struct SearchReport {
    ReportBy by = ReportBy::Courier; // Courier, Client or Status
    QString name;                    // A18, A6 or ST of the first tab
    QString from, to;                // k1 and k2 as the screen shows them, dd/mm/yyyy
    QString courierFee;              // the caption of VM (courier report only)
};
// Sets a report control up: the dispatch table, its layout, formula 1 DATA ("k1 até k2"),
// formula 2 VM for the courier report, and the name and the period as the selection.
// A period that is no date throws StoreError.
void setUpSearchReport(output::ReportDefinition& report, const SearchReport& request);

// ---- Reports of the report screen, on the station's work table ---------------------------

struct PeriodReport {
    ReportBy by = ReportBy::Courier;
    QDate from, to;  // both included; no row when to is before from
    QString courier; // A18
    QString client;  // A6
    QString status;  // ST
    QString payment; // Combo1
};

// The report screen's check: the message when the chosen name is missing, else empty.
QString checkPeriodReport(const PeriodReport& request);

struct PeriodFill {
    QString layout; // rela3, rela4, rela5 or rela5x
    int rows = 0;
};
// Empties the station's work table and fills it with the dispatches of the request, in
// one unit of work. Every row bears the period (DI, DF) and MOTO: the courier, the client,
// the status, and for the report by payment the status box too, as the offices know it.
// The courier report also takes VE into ve and the billing value into vMOTO.
PeriodFill fillPeriodReport(Store& store, const PeriodReport& request);
// Sets a report control up on the work table with the layout of a fill; no formula and
// no selection are set.
void setUpPeriodReport(output::ReportDefinition& report, const PeriodFill& fill);

// The names the report screen offers: couriers whose C1 is exactly "ATIVO", by C4; every
// client's C5, by name.
QStringList activeCourierNames(Store& store);
QStringList clientNames(Store& store);
// The report screen's fixed start of the period.
QDate reportPeriodStart();

} // namespace rtx::dispatch
