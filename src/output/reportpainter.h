#pragma once
// The one routine that draws a laid-out report page, for the preview, the printer and PDF
// files alike: every surface gets the same texts, lines and boxes at the same places.

#include "output/core/compose.h"
#include "output/core/document.h"

#include <QFontMetricsF>
#include <QHash>
#include <memory>

class QPainter;

namespace rtx::ui {

// Draws a page of the document with its top left corner at the painter's origin, at the
// given number of device pixels per millimetre.
void paintPage(QPainter& painter, const output::Document& document, int page, double dotsPerMm);

// The widths of the letters this routine draws, for laying the pages out.
class FontMeasure : public output::TextMeasure {
public:
    double width(const QString& text, const QString& family, double points, bool bold,
                 bool italic) const override;

private:
    mutable QHash<QString, std::shared_ptr<QFontMetricsF>> metrics_;
};
const FontMeasure& fontMeasure();

} // namespace rtx::ui
