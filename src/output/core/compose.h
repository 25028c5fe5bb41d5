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

#include <functional>

namespace rtx::output {

// The width of a text in millimetres, in a letter face, size (points) and weight.
class TextMeasure {
public:
    virtual ~TextMeasure() = default;
    virtual double width(const QString& text, const QString& family, double points, bool bold,
                         bool italic) const = 0;
};

// Without the letters at hand (no screen, no printer): every character as wide as a wide
// capital, so that a line breaks early rather than run past its box.
class EstimatedMeasure : public TextMeasure {
public:
    double width(const QString& text, const QString& family, double points, bool bold,
                 bool italic) const override;
};

Document compose(const ReportData& data, const TextMeasure* measure = nullptr);

// Height in millimetres of one line of text in a letter size (points).
double lineHeight(double points);

// A text broken into lines no wider than `width`: at blanks, and inside a word only when the
// word alone is wider than the line. Line ends in the text are kept.
QStringList breakLines(const QString& text, double width,
                       const std::function<double(const QString&)>& widthOf);

} // namespace rtx::output
