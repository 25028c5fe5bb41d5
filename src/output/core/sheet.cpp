#include "sheet.h"

#include "values.h"

#include "store/formats.h"

#include <QHash>
#include <QRegularExpression>

#include <optional>

namespace rtx::output {

namespace {

// Where a column of the sheet takes its values from.
struct Source {
    SheetColumn column;
    const Template* value = nullptr; // what the page prints; none for the group column
    int index = -1;                  // the data column when the value is that column alone
    Format format = Format::Plain;   // the format the layout gives the value
};

// The data column a template prints when it is one column of the report's table and
// nothing else; -1 for literals, several fields, formulas and the special names.
int onlyColumn(const ReportData& data, const Template& t) {
    QString name = t.onlyField();
    if (name.isEmpty() || name.contains(u'|')) return -1;
    for (const Formula& f : data.formulas)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0) return -1;
    if (const qsizetype dot = name.indexOf(u'.'); dot > 0) {
        if (name.left(dot).compare(data.table, Qt::CaseInsensitive) != 0) return -1;
        name = name.mid(dot + 1);
    }
    return data.columnIndex(name);
}

// The format a single-field template writes its column in: its own, else the column's.
Format declaredFormat(const Template& t, Format columnFormat) {
    if (t.pieces.size() == 1 && t.pieces[0].field && t.pieces[0].formatted)
        return t.pieces[0].format;
    return columnFormat;
}

CellKind kindOf(ColType type, Format format) {
    if (format == Format::Money) return CellKind::Money;
    if (format == Format::Date) return CellKind::Date;
    switch (type) {
    case ColType::Date:
        return CellKind::Date;
    case ColType::Money:
        return CellKind::Money;
    case ColType::Int:
    case ColType::Id:
        return CellKind::Number;
    case ColType::Text:
        break;
    }
    return CellKind::Text;
}

Source sourceOf(const ReportData& data, const QString& header, const Template& value,
                Format columnFormat) {
    Source s;
    s.column.header = header;
    s.value = &value;
    s.index = onlyColumn(data, value);
    s.format = declaredFormat(value, columnFormat);
    if (s.index >= 0) s.column.kind = kindOf(data.types[s.index], s.format);
    return s;
}

// A date kept as text by a work table: "25/12/2020" or "2020-12-25".
std::optional<QDate> dateInText(const QString& text) {
    const QString t = text.trimmed();
    if (auto d = parseDate(t)) return d;
    const QDate iso = QDate::fromString(t.left(10), Qt::ISODate);
    return iso.isValid() ? std::optional<QDate>(iso) : std::nullopt;
}

// One cell: the data's own value where the column is one column of the table, else the
// text the page prints.
QVariant cellOf(const ReportData& data, const FieldFiller& fill, const Source& s, int row) {
    const Scope scope{row, 0, int(data.rows.size()) - 1};
    if (s.index < 0) {
        const QString text = fill.cell(*s.value, scope, s.format);
        return text.isEmpty() ? QVariant() : QVariant(text);
    }
    const QVariant& v = data.rows[row][s.index];
    if (v.isNull()) return {};
    const ColType type = data.types[s.index];
    switch (s.column.kind) {
    case CellKind::Money:
        if (type == ColType::Money || type == ColType::Int || type == ColType::Id)
            return QVariant(centsOf(v, type));
        if (const auto cents = parseMoney(v.toString())) return QVariant(*cents);
        break;
    case CellKind::Date:
        if (v.typeId() == QMetaType::QDate) return v.toDate().isValid() ? v : QVariant();
        if (const auto d = dateInText(v.toString())) return QVariant(*d);
        break;
    case CellKind::Number:
        return QVariant(v.toLongLong());
    case CellKind::Text:
        break;
    }
    const QString shown =
        s.value ? fill.cell(*s.value, scope, s.format) : display(v, type, Format::Plain, false);
    return shown.isEmpty() ? QVariant() : QVariant(shown);
}

// The word a section heading lends to the boxes under it: what stands in brackets
// ("ORIGEM (COLETA)" gives "coleta"), else the heading itself, in small letters.
QString qualifierOf(const QString& heading) {
    static const QRegularExpression inBrackets(QStringLiteral("\\(([^()]+)\\)"));
    const auto m = inBrackets.match(heading);
    return (m.hasMatch() ? m.captured(1) : heading).trimmed().toLower();
}

// The boxes of a form as columns. A label that stands on several boxes (the slip has an
// "Endereço" for the client, the pickup and the delivery) is told apart by the section it
// stands in: the heading above it, or, in a form without headings, the nearest box above
// with a label of its own ("Origem (coleta)").
QList<Source> formSources(const ReportData& data, const FieldFiller& fill) {
    const QList<Element>& elements = data.layout.form.elements;
    // A heading: a line of one text of its own, without fields ("ORIGEM (COLETA)").
    const auto isHeading = [](const Element& e) {
        return e.kind == Element::Kind::Text && e.texts.size() == 1 && !e.texts[0].hasFields();
    };
    QHash<QString, int> uses;
    bool headings = false;
    for (const Element& e : elements) {
        if (e.kind == Element::Kind::Field && e.texts.size() > 1 && !e.texts[1].isEmpty())
            ++uses[fill.fill(e.texts[0], {}).trimmed()];
        headings = headings || isHeading(e);
    }
    QList<Source> out;
    QString section;
    for (const Element& e : elements) {
        if (isHeading(e)) {
            section = qualifierOf(fill.fill(e.texts[0], {}));
            continue;
        }
        if (e.kind != Element::Kind::Field || e.texts.size() < 2) continue;
        const QString label = fill.fill(e.texts[0], {}).trimmed();
        if (e.texts[1].isEmpty()) continue; // a box left blank to be written in by hand
        QString header = label;
        if (uses.value(label) > 1) {
            if (!section.isEmpty()) header += u' ' + section;
        } else if (!headings) {
            section = qualifierOf(label);
        }
        out << sourceOf(data, header, e.texts[1], Format::Plain);
    }
    return out;
}

// A grouped list prints its group's value once, in the group's heading; the sheet has no
// headings, so the value goes on every row, under the heading's own word ("Status: {ST}"
// gives "Status").
std::optional<Source> groupSource(const ReportData& data) {
    const Layout& l = data.layout;
    if (l.groupField.isEmpty()) return std::nullopt;
    for (const ColumnDef& c : l.columns)
        if (c.value.onlyField().compare(l.groupField, Qt::CaseInsensitive) == 0)
            return std::nullopt;
    Source s;
    s.index = data.columnIndex(l.groupField);
    if (s.index < 0) return std::nullopt;
    s.column.kind = kindOf(data.types[s.index], Format::Plain);
    s.column.header = l.groupField;
    for (const Element& e : l.groupHeader.elements) {
        if (e.kind != Element::Kind::Text) continue;
        for (const Template& t : e.texts) {
            QString before;
            for (const Template::Piece& p : t.pieces) {
                if (p.field && p.text.compare(l.groupField, Qt::CaseInsensitive) == 0) {
                    before = before.trimmed();
                    while (before.endsWith(u':') || before.endsWith(u'-'))
                        before.chop(1);
                    if (!before.trimmed().isEmpty()) s.column.header = before.trimmed();
                    return s;
                }
                before = p.field ? QString() : before + p.text;
            }
        }
    }
    return s;
}

// Two columns never share a header: a second one gets its number.
void distinctHeaders(QList<Source>& sources) {
    QHash<QString, int> seen;
    for (Source& s : sources) {
        const int n = ++seen[s.column.header];
        if (n > 1) s.column.header += QStringLiteral(" %1").arg(n);
    }
}

} // namespace

Sheet sheetOf(const ReportData& data) {
    const Layout& l = data.layout;
    FieldFiller fill(data);
    QList<Source> sources;
    if (l.tabular()) {
        if (auto group = groupSource(data)) sources << *group;
        for (const ColumnDef& c : l.columns)
            sources << sourceOf(data, c.caption, c.value, c.format);
    } else {
        sources = formSources(data, fill);
    }
    distinctHeaders(sources);

    Sheet sheet;
    sheet.title = l.title;
    for (const Source& s : sources)
        sheet.columns << s.column;
    sheet.rows.reserve(data.rows.size());
    for (int r = 0; r < data.rows.size(); ++r) {
        QVariantList cells;
        cells.reserve(sources.size());
        for (const Source& s : sources)
            cells << cellOf(data, fill, s, r);
        sheet.rows << cells;
    }
    return sheet;
}

} // namespace rtx::output
