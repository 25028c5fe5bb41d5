#pragma once
// The fields of a layout filled from a report's data: values written in their format, the
// special names ({página}, {empresa.nome}, {total.ve}...), the totals of a range of rows.

#include "layout.h"
#include "report.h"

#include <QHash>
#include <QString>
#include <QVariant>
#include <vector>

namespace rtx::output {

// A value written in a format; unformatted values follow their type (dates dd/mm/yyyy,
// money 1.234,56). A text that holds money or a date is read and written the same way; a
// text that holds neither prints as it stands.
QString display(const QVariant& value, ColType type, Format format, bool formatted);
// The office's ways of writing numbers that are no amounts. Each takes the digits of a text
// and gives it back as it stands when they are not of the expected count.
QString formatTaxNumber(const QString& text); // 11.222.333/0001-81 or 123.456.789-09
QString formatPostcode(const QString& text);  // 01310-100
QString formatPhone(const QString& text);     // (11) 3333-4444, (11) 93333-4444, 3333-4444
QString formatCount(qint64 count);            // 1.234

// A value as cents for a sum: money as it is, a text read as money, anything else 0.
qint64 centsOf(const QVariant& value, ColType type);

// The fields and columns of a layout that name nothing this program knows: no column of any
// table, no formula a screen gives, no name of the format. Each as "linha 12: {a99}", once.
QStringList unknownNames(const ReportData& data);

// Where a field is read: a row, and the rows its totals and counts cover.
struct Scope {
    int row = -1; // -1: no row
    int first = 0;
    int last = -1; // first > last: no rows
};

// Fills templates for one report. Page numbers are written as they are set; the page count,
// unknown until the last page is laid out, as pageCountMark() to be replaced afterwards.
class FieldFiller {
public:
    explicit FieldFiller(const ReportData& data);

    QString fill(const Template& t, const Scope& scope) const;
    // True when every field of the template is empty in the scope (a template without
    // fields is never empty).
    bool allFieldsEmpty(const Template& t, const Scope& scope) const;
    // A column's value in a row, in a format.
    QString cell(const Template& t, const Scope& scope, Format format) const;
    qint64 sum(int column, const Scope& scope) const;

    void setPage(int page) { page_ = page; }
    static QChar pageCountMark() { return QChar(0xE000); }

private:
    struct Ref {
        enum class Kind { Literal, Column, Value, Page, Pages, Rows, Total, Empty, FirstOf };
        Kind kind = Kind::Literal;
        int column = -1;
        QString text; // Literal, Value
        Format format = Format::Plain;
        bool formatted = false;
        std::vector<Ref> options; // FirstOf: the first that is not empty
    };
    const ReportData& data_;
    int page_ = 1;
    mutable QHash<const Template*, QList<Ref>> compiled_;
    mutable QHash<quint64, qint64> sums_;

    const QList<Ref>& refs(const Template& t) const;
    Ref resolve(const Template::Piece& piece) const;
    QString value(const Ref& ref, const Scope& scope) const;
};

} // namespace rtx::output
