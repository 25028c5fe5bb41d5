#pragma once
// Lays a report out in pages: the heading of each page, the column headings, a line per
// row (or a form per row), group headings and totals, the end of the report and the foot of
// each page with "Página n de m". Sizes come from the layout alone (text heights follow the
// letter size), so the pages are the same on the screen, on paper and in a PDF file.

#include "document.h"
#include "report.h"

namespace rtx::output {

Document compose(const ReportData& data);

// Height in millimetres of one line of text in a letter size (points).
double lineHeight(double points);

} // namespace rtx::output
