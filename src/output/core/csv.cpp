#include "csv.h"

#include "values.h"

#include "store/formats.h"

#include <QSaveFile>

namespace rtx::output {

namespace {

// A number a spreadsheet reads: no thousands points, a decimal comma.
QString sheetMoney(qint64 cents) {
    const bool negative = cents < 0;
    const quint64 v = negative ? quint64(-(cents + 1)) + 1 : quint64(cents);
    return QStringLiteral("%1%2,%3")
        .arg(negative ? QStringLiteral("-") : QString())
        .arg(v / 100)
        .arg(v % 100, 2, 10, QLatin1Char('0'));
}

QString quoted(const QString& value) {
    if (!value.contains(u';') && !value.contains(u'"') && !value.contains(u'\n') &&
        !value.contains(u'\r'))
        return value;
    QString v = value;
    v.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + v + u'"';
}

struct SheetColumn {
    QString caption;
    const Template* value;
    Format format;
};

} // namespace

QByteArray toCsv(const ReportData& data) {
    const Layout& l = data.layout;
    FieldFiller fill(data);
    QList<SheetColumn> columns;
    if (l.tabular()) {
        for (const ColumnDef& c : l.columns)
            columns.append({c.caption, &c.value, c.format});
    } else {
        for (const Element& e : l.form.elements)
            if (e.kind == Element::Kind::Field)
                columns.append({fill.fill(e.texts[0], {}), &e.texts[1], Format::Plain});
    }
    QString out;
    out.reserve(int(data.rows.size() + 1) * 120);
    QStringList line;
    for (const SheetColumn& c : columns)
        line << quoted(c.caption);
    out += line.join(u';') + QStringLiteral("\r\n");
    for (int r = 0; r < data.rows.size(); ++r) {
        line.clear();
        const Scope s{r, 0, int(data.rows.size()) - 1};
        for (const SheetColumn& c : columns) {
            const QString only = c.value->onlyField();
            const int index = only.isEmpty() ? -1 : data.columnIndex(only);
            const ColType type = index >= 0 ? data.types[index] : ColType::Text;
            const bool money =
                c.format == Format::Money || (c.format == Format::Plain && type == ColType::Money);
            if (money && index >= 0) {
                const QVariant& v = data.rows[r][index];
                const QString text = v.toString();
                if (type == ColType::Money || parseMoney(text))
                    line << sheetMoney(centsOf(v, type));
                else
                    line << quoted(text);
                continue;
            }
            line << quoted(fill.cell(*c.value, s, c.format));
        }
        out += line.join(u';') + QStringLiteral("\r\n");
    }
    return QByteArray("\xEF\xBB\xBF") + out.toUtf8();
}

bool writeCsv(const ReportData& data, const QString& path, QString& error) {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly)) {
        error = f.errorString();
        return false;
    }
    f.write(toCsv(data));
    if (!f.commit()) {
        error = f.errorString();
        return false;
    }
    return true;
}

} // namespace rtx::output
