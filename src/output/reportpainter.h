#pragma once
// The one routine that draws a laid-out report page, for the preview, the printer and PDF
// files alike: every surface gets the same texts, lines and boxes at the same places.

#include "output/core/document.h"

class QPainter;

namespace rtx::ui {

// Draws a page of the document with its top left corner at the painter's origin, at the
// given number of device pixels per millimetre.
void paintPage(QPainter& painter, const output::Document& document, int page, double dotsPerMm);

} // namespace rtx::ui
