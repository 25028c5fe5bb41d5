// The cash book's printouts: the day's sheet and the list of a search.

#include "finance/caixa.h"

#include "finance/core/printouts.h"
#include "kit/kit.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "session/core/current.h"

#include <QLabel>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;

// The print dialog comes first, as the office knows it; the sheet is made whatever its
// answer. The balances printed are those on the screen.
void CAIXA::printDay() {
    const auto typed = dayField_->settledDate();
    if (!typed) return;
    const QDate day = *typed;
    showPrinterDialog(this);
    if (!guarded(this, [&] {
            fin::fillDaySheet(Store::current(), day, previousLabel_->text(), balanceLabel_->text());
        }))
        return;
    output::ReportDefinition& r = report_->definition();
    r.setDataSource(fin::daySheetTable);
    r.setLayoutFile(u"CX1.rpt"_s);
    r.setFormula(1, u"nome"_s, session::current().company);
    report_->run();
}

void CAIXA::printSearch() {
    if (!guarded(this, [&] {
            Store& store = Store::current();
            // With no search made the list is empty, and the report runs all the same.
            fin::CashQuery none{fin::CashSearch::Period, QDate(2000, 1, 2), QDate(2000, 1, 1), {}};
            fin::fillCashList(store, fin::cashSearch(store, lastSearch_.value_or(none)));
        }))
        return;
    output::ReportDefinition& r = report_->definition();
    r.setDataSource(fin::cashListTable);
    r.setLayoutFile(u"TMP.rpt"_s);
    report_->run();
}

} // namespace rtx::ui
