#pragma once
// The office at a glance on paper: the same figures as the screen, laid out as the pages the
// report preview shows, prints and saves as PDF. The charts are drawn with the report's own
// boxes and lines, so the printout needs nothing the reports do not already draw.

#include "output/core/document.h"
#include "panel/core/figures.h"

namespace rtx::panel {

output::Document sheet(const Figures& figures, const QString& company);

} // namespace rtx::panel
