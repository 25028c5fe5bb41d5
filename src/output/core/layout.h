#pragma once
// A report layout: the contents of a NAME.rpt file of the installation folder, in the
// program's own small text format (docs/report-format.md). The file says how the page
// looks; the data, the named formulas and the selection come from the report control.
//
//     Layout l = loadLayout(folder + "/rela3.rpt"); // LayoutError naming file and line

#include <QList>
#include <QString>
#include <QStringList>
#include <stdexcept>

namespace rtx::output {

// A layout that cannot be used: missing, unreadable, or with a mistake on a line.
class LayoutError : public std::runtime_error {
public:
    LayoutError(QString file, int line, QString problem);
    QString file() const { return file_; }
    int line() const { return line_; } // 0: the file as a whole
    QString problem() const { return problem_; }
    // The message for the operator, naming the file and, for a mistake, the line.
    QString text() const;

private:
    QString file_;
    int line_;
    QString problem_;
};

enum class Align { Left, Centre, Right };

// How a value is written: as it stands, as money "###,##0.00", as a date dd/mm/yyyy, or as
// the office writes a tax number (11.222.333/0001-81, 123.456.789-09), a CEP (01310-100) or
// a telephone ((11) 3333-4444).
enum class Format { Plain, Money, Date, TaxNumber, Postcode, Phone };

// A text with fields in braces: "Entregador: {a18}", "{a19:###,##0.00}", "{{" for a brace.
struct Template {
    struct Piece {
        bool field = false;
        QString text; // literal text, or the field's name
        Format format = Format::Plain;
        bool formatted = false; // a format was written after the name
    };
    QList<Piece> pieces;
    bool hasFields() const;
    bool isEmpty() const { return pieces.isEmpty(); }
    // A single field and nothing else: its name; empty otherwise.
    QString onlyField() const;
    // Reads a template; on a mistake gives false and says why.
    static bool parse(const QString& source, Template& out, QString& problem);
};

struct Style {
    double size = 0; // points; 0 is the layout's body size
    bool bold = false;
    bool italic = false;
};

// One line of a band.
struct Element {
    enum class Kind {
        Text,  // one to three texts on a line: left, (centre,) right
        Rule,  // a horizontal line across the page
        Space, // blank height in millimetres
        Field, // a labelled box: label and value; boxes stand side by side
        Total, // a line of totals under the columns, with a label at its left
    };
    Kind kind = Kind::Text;
    QList<Template> texts;     // Text: 1..3; Field: label, value; Total: label
    Align align = Align::Left; // Text with one text; Field: the value
    Style style;
    bool omitEmpty = false; // the line is left out when all its fields are empty
    bool framed = false;    // a box around the line
    bool shaded = false;    // a grey ground
    int lines = 1;          // lines of text the element holds (longer text wraps)
    bool grow = false;      // the element grows to hold its whole text, wrapped
    double width = 0;       // Field: millimetres; negative for "the rest of the line"
    double amount = 0;      // Space: millimetres; Rule: thickness in points
    int sourceLine = 0;
};

struct Band {
    QList<Element> elements;
    bool isEmpty() const { return elements.isEmpty(); }
};

enum class Aggregate { None, Sum, Count };

struct ColumnDef {
    Template value; // "{a6}" for a bare column name
    QString caption;
    double width = 20; // millimetres; negative: shares what the others leave
    Align align = Align::Left;
    Format format = Format::Plain;
    Aggregate aggregate = Aggregate::None;
    bool grow = false;   // the row grows to hold the whole text, wrapped
    bool hidden = false; // not printed; the spreadsheet has it (a group's value on every row)
    int sourceLine = 0;
};

enum class PaperSize { A4, A5, Letter, Legal };

struct Layout {
    QString file; // the file's name, for messages
    QString title;
    PaperSize paper = PaperSize::A4;
    bool landscape = false;
    double top = 12, right = 12, bottom = 12, left = 15; // millimetres
    QString font = QStringLiteral("DejaVu Sans");
    double bodySize = 9;
    QStringList order; // columns the rows are sorted by

    Band start;  // [início]: once, on the first page under the heading
    Band header; // [cabeçalho]: at the top of every page
    QList<ColumnDef> columns;
    bool striped = false; // every other row on a grey ground
    bool ruled = false;   // lines between rows and between columns
    QString groupField;   // [grupo CAMPO]
    Band groupHeader;     // [grupo CAMPO]
    Band groupFooter;     // [fim do grupo]
    Band form;            // [ficha]: a band per row instead of columns
    int copies = 1;       // of the form band, one under the other
    bool pagePerRow = false;
    Band finish; // [fim]: after the last row
    Band footer; // [rodapé]: at the foot of every page

    bool tabular() const { return !columns.isEmpty(); }
    // Page size in millimetres, orientation applied.
    double pageWidth() const;
    double pageHeight() const;
};

// A word as the format reads its keywords and names: blind to case and accents.
QString keyword(const QString& word);
// The format a word names ("###,##0.00", dd/mm/yyyy, texto, cnpj or cpf, cep, telefone),
// read as keywords are; false for a word that names none.
bool readFormat(const QString& word, Format& format);

// Reads a layout from its text; fileName names it in the messages.
Layout parseLayout(const QString& text, const QString& fileName);
// The path of a layout in a folder, its name matched blind to case as the old installations
// named their files freely ("ATENDE.RPT"); the plain join when no file matches.
QString layoutPath(const QString& folder, const QString& file);
// Reads a layout file; a missing or unreadable file is a LayoutError with line 0.
Layout loadLayout(const QString& path);

} // namespace rtx::output
