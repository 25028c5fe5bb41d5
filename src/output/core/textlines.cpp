#include "textlines.h"

namespace rtx::output {

double EstimatedMeasure::width(const QString& text, const QString& family, double points, bool bold,
                               bool) const {
    double em = bold ? 0.74 : 0.68;
    if (family.contains(QStringLiteral("Condensed"), Qt::CaseInsensitive)) em *= 0.9;
    return text.size() * em * points * 25.4 / 72.0;
}

QStringList breakLines(const QString& text, double width,
                       const std::function<double(const QString&)>& widthOf) {
    QStringList out;
    QString all = text;
    all.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    all.replace(u'\r', u'\n');
    for (const QString& paragraph : all.split(u'\n')) {
        QString line;
        for (QString word : paragraph.split(u' ', Qt::SkipEmptyParts)) {
            const QString joined = line.isEmpty() ? word : line + u' ' + word;
            if (widthOf(joined) <= width) {
                line = joined;
                continue;
            }
            if (!line.isEmpty()) out << line;
            line.clear();
            // A word wider than the line is broken where the line ends.
            while (word.size() > 1 && widthOf(word) > width) {
                qsizetype fits = 1, over = word.size(); // left(fits) fits, left(over) does not
                while (over - fits > 1) {
                    const qsizetype mid = (fits + over) / 2;
                    (widthOf(word.left(mid)) <= width ? fits : over) = mid;
                }
                out << word.left(fits);
                word = word.mid(fits);
            }
            line = word;
        }
        out << line;
    }
    return out;
}

} // namespace rtx::output
