#pragma once
// Texts broken into the lines of a box, by the widths of their letters: what lets a long
// address or the remarks of a slip be printed whole.

#include <QString>
#include <QStringList>
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

// A text broken into lines no wider than `width`: at blanks, and inside a word only when the
// word alone is wider than the line. Line ends in the text are kept.
QStringList breakLines(const QString& text, double width,
                       const std::function<double(const QString&)>& widthOf);

} // namespace rtx::output
