#pragma once
// Lays a report out in pages: the heading of each page, the column headings, a line per
// row (or a form per row), group headings and totals, the end of the report and the foot of
// each page with "Página n de m". Sizes come from the layout alone (text heights follow the
// letter size), so the pages are the same on the screen, on paper and in a PDF file.
//
// Texts that may be long (an address, the remarks) are broken into lines here, by the
// widths of their letters, and the box that holds them grows when the layout says so:
// what follows moves down, onto the next page when the page is full.

#include "document.h"
#include "report.h"
#include "textlines.h"

namespace rtx::output {

Document compose(const ReportData& data, const TextMeasure* measure = nullptr);

// Height in millimetres of one line of text in a letter size (points).
double lineHeight(double points);

} // namespace rtx::output
