#pragma once
// The composer of a report's pages, shared by the files that make it up: the bands (texts,
// boxes and totals laid out in blocks that never split across pages) and the flow of
// those blocks onto pages, by columns or by forms. Not for use outside the composing.

#include "compose.h"
#include "values.h"

namespace rtx::output::composing {

constexpr double kPad = 1.2; // blank inside a cell, left and right
constexpr quint8 kHeadingGround = 222;
constexpr quint8 kStripe = 243;
constexpr quint8 kLabelInk = 80;
// Texts are broken a little short of their box, so that a printer whose letters come out a
// hair wider than the screen's still has them inside.
constexpr double kBreakSlack = 0.97;

// A piece of a band that is never split across pages: a line, or a row of boxes.
struct Block {
    QList<Item> items; // from y = 0
    double height = 0;
    bool keepWithNext = false; // a heading stays with what it heads
};

class Composer {
public:
    Composer(const ReportData& data, const TextMeasure& measure)
        : d_(data), l_(data.layout), fill_(data), measure_(measure) {
        doc_.title = l_.title;
        doc_.font = l_.font;
        doc_.width = l_.pageWidth();
        doc_.height = l_.pageHeight();
        doc_.rows = int(d_.rows.size());
        left_ = l_.left;
        width_ = std::max(20.0, doc_.width - l_.left - l_.right);
        rowHeight_ = lineHeight(l_.bodySize) + 0.8;
        columnGeometry();
        footerHeight_ = bandHeight(l_.footer, all(0));
        limit_ = doc_.height - l_.bottom - footerHeight_ - (footerHeight_ > 0 ? 1.5 : 0);
        // The most a block may take: a page less its heading and the column headings.
        const double heading = bandHeight(l_.header, all(0)) + (l_.tabular() ? rowHeight_ + 2 : 0);
        room_ = std::max(20.0, limit_ - l_.top - heading - 2);
    }

    Document run();

private:
    const ReportData& d_;
    const Layout& l_;
    FieldFiller fill_;
    const TextMeasure& measure_;
    Document doc_;
    double room_ = 1e9;
    // While a band is laid out: what is left of the page it goes on, as far as foreseen.
    double avail_ = 1e9;
    Scope group_{-1, 0, -1}; // the group whose rows are being laid out; first > last: none
    double left_ = 0, width_ = 0, y_ = 0, limit_ = 0, top_ = 0;
    double rowHeight_ = 5, footerHeight_ = 0;
    QList<double> colX_, colW_;
    double segmentTop_ = -1; // top of the ruled table on this page; -1 when none is open
    int stripe_ = 0;
    int footerRow_ = -1;

    Page& page() { return doc_.pages.last(); }
    int lastRow() const { return int(d_.rows.size()) - 1; }
    Scope all(int row) const { return {row, 0, lastRow()}; }
    double size(const Style& s) const { return s.size > 0 ? s.size : l_.bodySize; }

    void columnGeometry();

    static Item text(const QRectF& r, const QString& s, double points, Align a, bool bold = false,
                     bool italic = false);
    static Item line(double x1, double y1, double x2, double y2, double pen, quint8 ink = 0);
    static Item box(const QRectF& r, quint8 grey, double pen);

    // ---- Bands ---------------------------------------------------------------------------

    bool omitted(const Element& e, const Scope& s) const;

    // Lays a band out in blocks, each from y = 0.
    // `avail` is the room left on the page the band starts on: a growing box that would not
    // fit there starts there all the same, and goes on on the next page.
    QList<Block> layBand(const Band& band, const Scope& s, double avail = 1e9);

    void consume(const Block& b);

    // A text broken into the lines its box holds: all of them when the element grows, else
    // as many as it has room for, the last ending in "…" when some are left out.
    QStringList lines(const QString& text, double width, double points, const Style& st, int room,
                      bool grow) const;

    QList<Block> layText(const Element& e, const Scope& s);

    // Labelled boxes side by side, as wide as they say; "*" takes the rest of the line.
    // A row of boxes is as tall as its tallest value.
    QList<Block> layFields(const QList<const Element*>& cells, const Scope& s);

    double layTotal(const Element& e, const Scope& s, double y, QList<Item>& out);

    // A summed column's value in a row: its single field as cents, else its text as money.
    qint64 columnCents(const ColumnDef& col, int row);

    // ---- Pages ---------------------------------------------------------------------------

    void append(QList<Item> items, double height);

    void append(const QList<Block>& blocks);

    static double height(const QList<Block>& blocks);

    // Starts a page: its heading, the report's start on the first page, the column headings,
    // and the heading of a group that goes on from the page before.
    void newPage(int row);

    // The group's heading again at the top of a page its rows go on to, marked as such.
    void continuedGroup();

    void finishPage();

    void breakPage(int nextRow);

    // Places a band: whole on the next page when it does not fit on this one but fits on a
    // page; a band taller than that flows on, breaking the page between its blocks.
    void place(const Band& band, const Scope& s, int nextRow);

    double bandHeight(const Band& band, const Scope& s) { return height(layBand(band, s)); }

    // ---- Columns -------------------------------------------------------------------------

    void columnHeadings();

    void openSegment();

    void closeSegment();

    void detailRow(int row);

    // Rows with the same group value, one after the other: [first, last] of each.
    QList<QPair<int, int>> groups() const;

    void tabular();

    void forms();

    // Between two copies of a form on one sheet: a dashed line to cut along.
    void cutLine();

    void fillPageCount();
};

} // namespace rtx::output::composing
