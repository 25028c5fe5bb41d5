#include "compose.h"

#include "values.h"

namespace rtx::output {

double lineHeight(double points) {
    return points * 25.4 / 72.0 * 1.45;
}

namespace {

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

    Document run() {
        if (l_.tabular())
            tabular();
        else
            forms();
        fillPageCount();
        return std::move(doc_);
    }

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

    void columnGeometry() {
        double fixed = 0;
        int shares = 0;
        for (const ColumnDef& c : l_.columns) {
            if (c.hidden) continue;
            if (c.width < 0)
                ++shares;
            else
                fixed += c.width;
        }
        const double rest = std::max(0.0, width_ - fixed);
        // Columns wider than the page are narrowed in proportion, never cut off.
        const double scale = fixed > width_ ? width_ / fixed : 1.0;
        double x = left_;
        for (const ColumnDef& c : l_.columns) {
            const double w =
                c.hidden ? 0 : (c.width < 0 ? (shares ? rest / shares : 0) : c.width * scale);
            colX_ << x;
            colW_ << w;
            x += w;
        }
    }

    static Item text(const QRectF& r, const QString& s, double points, Align a, bool bold = false,
                     bool italic = false) {
        Item i;
        i.kind = Item::Kind::Text;
        i.rect = r;
        i.text = s;
        i.size = float(points);
        i.align = a;
        i.bold = bold;
        i.italic = italic;
        return i;
    }
    static Item line(double x1, double y1, double x2, double y2, double pen, quint8 ink = 0) {
        Item i;
        i.kind = Item::Kind::Line;
        i.rect = QRectF(QPointF(x1, y1), QPointF(x2, y2));
        i.pen = float(pen);
        i.ink = ink;
        return i;
    }
    static Item box(const QRectF& r, quint8 grey, double pen) {
        Item i;
        i.kind = Item::Kind::Box;
        i.rect = r;
        i.grey = grey;
        i.pen = float(pen);
        return i;
    }

    // ---- Bands ---------------------------------------------------------------------------

    bool omitted(const Element& e, const Scope& s) const {
        if (!e.omitEmpty) return false;
        bool anyField = false;
        for (const Template& t : e.texts) {
            if (!t.hasFields()) continue;
            anyField = true;
            if (!fill_.allFieldsEmpty(t, s)) return false;
        }
        return anyField;
    }

    // Lays a band out in blocks, each from y = 0.
    // `avail` is the room left on the page the band starts on: a growing box that would not
    // fit there starts there all the same, and goes on on the next page.
    QList<Block> layBand(const Band& band, const Scope& s, double avail = 1e9) {
        avail_ = avail;
        QList<Block> out;
        const QList<Element>& els = band.elements;
        for (int i = 0; i < els.size(); ++i) {
            const Element& e = els[i];
            if (omitted(e, s)) continue;
            switch (e.kind) {
            case Element::Kind::Text:
                for (const Block& b : layText(e, s)) {
                    consume(b);
                    out << b;
                }
                break;
            case Element::Kind::Rule: {
                Block b;
                b.items << line(left_, 0.9, left_ + width_, 0.9, e.amount);
                b.height = 1.8;
                consume(b);
                out << b;
                break;
            }
            case Element::Kind::Space: {
                Block b;
                b.height = e.amount;
                b.keepWithNext = true; // a blank never ends a page, it moves with what follows
                consume(b);
                out << b;
                break;
            }
            case Element::Kind::Field: {
                int j = i;
                while (j + 1 < els.size() && els[j + 1].kind == Element::Kind::Field)
                    ++j;
                QList<const Element*> cells;
                for (int k = i; k <= j; ++k)
                    if (!omitted(els[k], s)) cells << &els[k];
                out += layFields(cells, s);
                i = j;
                break;
            }
            case Element::Kind::Total: {
                Block b;
                b.height = layTotal(e, s, 0, b.items);
                consume(b);
                out << b;
                break;
            }
            }
        }
        return out;
    }

    void consume(const Block& b) {
        if (b.height > avail_ + 0.01) avail_ = room_; // on the next page
        avail_ -= b.height;
    }

    // A text broken into the lines its box holds: all of them when the element grows, else
    // as many as it has room for, the last ending in "…" when some are left out.
    QStringList lines(const QString& text, double width, double points, const Style& st, int room,
                      bool grow) const {
        auto widthOf = [&](const QString& t) {
            return measure_.width(t, l_.font, points, st.bold, st.italic);
        };
        QStringList out = breakLines(text, width * kBreakSlack, widthOf);
        if (grow || out.size() <= room) return out;
        out = out.mid(0, room);
        QString& last = out.last();
        while (!last.isEmpty() && widthOf(last + u'…') > width * kBreakSlack)
            last.chop(1);
        last = last.trimmed() + u'…';
        return out;
    }

    QList<Block> layText(const Element& e, const Scope& s) {
        const double pts = size(e.style);
        const double lh = lineHeight(pts);
        const double inset = (e.framed || e.shaded) ? 1.5 : 0;
        const double pad = (e.framed || e.shaded) ? 0.8 : 0.1;
        const QRectF r(left_ + inset, 0, width_ - 2 * inset, 0);
        QStringList texts;
        for (const Template& t : e.texts)
            texts << fill_.fill(t, s);
        // Texts sharing a line share its width; a text too long for its part ends in "…"
        // (the painter marks it) unless the line wraps.
        QList<std::pair<Align, std::pair<double, double>>> places; // align, x and width
        if (texts.size() == 1) {
            places.append({e.align, {r.x(), r.width()}});
        } else if (texts.size() == 2) {
            // In proportion to their lengths, neither below a fifth of the line.
            const double a = texts[0].size() + 1.0;
            const double b = texts[1].size() + 1.0;
            const double left = r.width() * std::clamp(a / (a + b), 0.2, 0.8);
            places.append({Align::Left, {r.x(), left - 1}});
            places.append({Align::Right, {r.x() + left, r.width() - left}});
        } else {
            const double third = r.width() / 3;
            for (int k = 0; k < 3; ++k)
                places.append({k == 0 ? Align::Left : (k == 1 ? Align::Centre : Align::Right),
                               {r.x() + k * third, third}});
        }
        const bool wraps = e.grow || e.lines > 1;
        QList<QStringList> broken;
        int count = e.lines;
        for (int k = 0; k < texts.size(); ++k) {
            broken << (wraps
                           ? lines(texts[k], places[k].second.second, pts, e.style, e.lines, e.grow)
                           : QStringList{texts[k]});
            count = std::max(count, int(broken.last().size()));
        }
        // A text longer than a page goes on in blocks of what a page holds.
        const int perBlock = std::max(1, int((room_ - 2 * pad) / lh));
        QList<Block> out;
        for (int first = 0; first < count; first += perBlock) {
            const int n = std::min(perBlock, count - first);
            Block b;
            b.height = n * lh + 2 * pad;
            if (e.framed || e.shaded)
                b.items << box(QRectF(left_, 0, width_, b.height), e.shaded ? kHeadingGround : 255,
                               e.framed ? 0.5 : 0);
            for (int k = 0; k < texts.size(); ++k)
                for (int j = first; j < first + n && j < broken[k].size(); ++j) {
                    if (broken[k][j].isEmpty()) continue;
                    b.items << text(QRectF(places[k].second.first, pad + (j - first) * lh,
                                           places[k].second.second, lh),
                                    broken[k][j], pts, places[k].first, e.style.bold,
                                    e.style.italic);
                }
            // A shaded heading of one line heads what follows it.
            b.keepWithNext = e.shaded && count == 1;
            out << b;
        }
        return out;
    }

    // Labelled boxes side by side, as wide as they say; "*" takes the rest of the line.
    // A row of boxes is as tall as its tallest value.
    QList<Block> layFields(const QList<const Element*>& cells, const Scope& s) {
        struct Placed {
            const Element* e;
            double x, w;
        };
        QList<QList<Placed>> rows(1);
        double x = 0;
        for (const Element* e : cells) {
            double w = e->width < 0 ? width_ - x : std::min(e->width, width_);
            if (x > 0 && (x + w > width_ + 0.01 || w <= 0.5)) {
                rows.append(QList<Placed>());
                x = 0;
                w = e->width < 0 ? width_ : std::min(e->width, width_);
            }
            rows.last().append(Placed{e, x, w});
            x += w;
        }
        const double labelPts = l_.bodySize * 0.72;
        const double label = lineHeight(labelPts);
        QList<Block> out;
        for (const QList<Placed>& row : rows) {
            if (row.isEmpty()) continue;
            QList<QStringList> values;
            int count = 1;
            double lh = 0;
            for (const Placed& p : row) {
                const Element& e = *p.e;
                const double pts = size(e.style);
                const QString value = fill_.fill(e.texts[1], s);
                values << (e.grow || e.lines > 1
                               ? lines(value, p.w - 2 * kPad, pts, e.style, e.lines, e.grow)
                               : QStringList{value});
                count = std::max({count, e.lines, int(values.last().size())});
                lh = std::max(lh, lineHeight(pts));
            }
            // A value longer than a page goes on in boxes of what a page holds.
            const int perBlock = std::max(1, int((room_ - label - 1.4) / lh));
            // The first part fills what is left of the page, when that holds a few lines.
            int firstPart = perBlock;
            const int here = int((avail_ - label - 1.4) / lh);
            if (count > here && here >= 3) firstPart = std::min(perBlock, here);
            for (int first = 0, n = 0; first < count; first += n) {
                n = std::min(first == 0 ? firstPart : perBlock, count - first);
                Block b;
                double h = 0;
                for (const Placed& p : row)
                    h = std::max(h, 0.6 + label + n * lineHeight(size(p.e->style)) + 0.8);
                b.height = h;
                for (int k = 0; k < row.size(); ++k) {
                    const Placed& p = row[k];
                    const Element& e = *p.e;
                    const double x0 = left_ + p.x;
                    const double pts = size(e.style);
                    b.items << box(QRectF(x0, 0, p.w, h), e.shaded ? kHeadingGround : 255, 0.35);
                    QString caption = fill_.fill(e.texts[0], s);
                    if (first > 0 && !caption.isEmpty())
                        caption += QStringLiteral(" (continuação)");
                    if (!caption.isEmpty()) {
                        Item it = text(QRectF(x0 + kPad, 0.5, p.w - 2 * kPad, label), caption,
                                       labelPts, Align::Left);
                        it.ink = kLabelInk;
                        b.items << it;
                    }
                    const QStringList& v = values[k];
                    for (int j = first; j < first + n && j < v.size(); ++j) {
                        if (v[j].isEmpty()) continue;
                        b.items << text(QRectF(x0 + kPad,
                                               0.5 + label + (j - first) * lineHeight(pts),
                                               p.w - 2 * kPad, lineHeight(pts)),
                                        v[j], pts, e.align, e.style.bold, e.style.italic);
                    }
                }
                consume(b);
                out << b;
            }
        }
        return out;
    }

    double layTotal(const Element& e, const Scope& s, double y, QList<Item>& out) {
        const double h = rowHeight_ + 0.6;
        const double pts = size(e.style);
        out << line(left_, y + 0.3, left_ + width_, y + 0.3, 0.6);
        double labelEnd = left_ + width_;
        for (int c = 0; c < l_.columns.size(); ++c)
            if (l_.columns[c].aggregate != Aggregate::None && !l_.columns[c].hidden) {
                labelEnd = colX_[c];
                break;
            }
        const QString label = fill_.fill(e.texts.first(), s);
        if (!label.isEmpty())
            out << text(QRectF(left_ + kPad, y + 0.6, labelEnd - left_ - 2 * kPad, h - 0.6), label,
                        pts, Align::Left, e.style.bold, e.style.italic);
        for (int c = 0; c < l_.columns.size(); ++c) {
            const ColumnDef& col = l_.columns[c];
            if (col.aggregate == Aggregate::None || col.hidden) continue;
            QString value;
            if (col.aggregate == Aggregate::Count) {
                value = formatCount(std::max(0, s.last - s.first + 1));
            } else {
                qint64 total = 0;
                for (int r = s.first; r <= s.last; ++r)
                    total += columnCents(col, r);
                value = display(QVariant(total), ColType::Money, Format::Money, true);
            }
            out << text(QRectF(colX_[c] + kPad, y + 0.6, colW_[c] - 2 * kPad, h - 0.6), value, pts,
                        Align::Right, e.style.bold, e.style.italic);
        }
        return h;
    }

    // A summed column's value in a row: its single field as cents, else its text as money.
    qint64 columnCents(const ColumnDef& col, int row) {
        const QString only = col.value.onlyField();
        const int index = only.isEmpty() ? -1 : d_.columnIndex(only);
        if (index >= 0) return centsOf(d_.rows[row][index], d_.types[index]);
        return centsOf(fill_.fill(col.value, {row, 0, lastRow()}), ColType::Text);
    }

    // ---- Pages ---------------------------------------------------------------------------

    void append(QList<Item> items, double height) {
        for (Item& i : items)
            i.rect.translate(0, y_);
        page().items += items;
        y_ += height;
    }

    void append(const QList<Block>& blocks) {
        for (const Block& b : blocks)
            append(b.items, b.height);
    }

    static double height(const QList<Block>& blocks) {
        double h = 0;
        for (const Block& b : blocks)
            h += b.height;
        return h;
    }

    // Starts a page: its heading, the report's start on the first page, the column headings,
    // and the heading of a group that goes on from the page before.
    void newPage(int row) {
        doc_.pages.append(Page());
        fill_.setPage(int(doc_.pages.size()));
        y_ = l_.top;
        footerRow_ = row;
        append(layBand(l_.header, all(row)));
        if (doc_.pages.size() == 1) append(layBand(l_.start, all(row)));
        if (y_ > l_.top) y_ += 1.0;
        top_ = y_;
        if (l_.tabular()) columnHeadings();
        if (group_.first <= group_.last && doc_.pages.size() > 1) continuedGroup();
    }

    // The group's heading again at the top of a page its rows go on to, marked as such.
    void continuedGroup() {
        QList<Block> blocks = layBand(l_.groupHeader, group_);
        bool marked = false;
        for (Block& b : blocks)
            for (Item& i : b.items)
                if (!marked && i.kind == Item::Kind::Text) {
                    i.text += QStringLiteral(" (continuação)");
                    marked = true;
                }
        closeSegment();
        append(blocks);
        top_ = y_;
    }

    void finishPage() {
        closeSegment();
        QList<Block> blocks = layBand(l_.footer, all(footerRow_));
        y_ = doc_.height - l_.bottom - height(blocks);
        append(blocks);
    }

    void breakPage(int nextRow) {
        finishPage();
        newPage(nextRow);
        closeSegment();
    }

    // Places a band: whole on the next page when it does not fit on this one but fits on a
    // page; a band taller than that flows on, breaking the page between its blocks.
    void place(const Band& band, const Scope& s, int nextRow) {
        QList<Block> blocks = layBand(band, s, limit_ - y_);
        if (blocks.isEmpty()) return;
        closeSegment();
        const double whole = height(blocks);
        if (y_ + whole > limit_ && y_ > top_ + 0.01 && whole <= limit_ - top_) {
            breakPage(nextRow);
            blocks = layBand(band, s, limit_ - y_);
        }
        for (int i = 0; i < blocks.size(); ++i) {
            double need = blocks[i].height;
            for (int j = i; j + 1 < blocks.size() && blocks[j].keepWithNext; ++j)
                need += blocks[j + 1].height;
            if (y_ + need > limit_ && y_ > top_ + 0.01) {
                breakPage(nextRow);
                if (blocks[i].height <= 0) continue; // no blank at the top of a page
            }
            append(blocks[i].items, blocks[i].height);
        }
    }

    double bandHeight(const Band& band, const Scope& s) { return height(layBand(band, s)); }

    // ---- Columns -------------------------------------------------------------------------

    void columnHeadings() {
        const double h = rowHeight_ + 0.8;
        page().items << box(QRectF(left_, y_, width_, h), kHeadingGround, 0);
        for (int c = 0; c < l_.columns.size(); ++c) {
            const ColumnDef& col = l_.columns[c];
            if (col.hidden) continue;
            page().items << text(QRectF(colX_[c] + kPad, y_ + 0.4, colW_[c] - 2 * kPad, h - 0.8),
                                 col.caption, l_.bodySize, col.align, true);
        }
        if (l_.ruled) {
            segmentTop_ = y_;
            page().items << line(left_, y_, left_ + width_, y_, 0.5);
        }
        y_ += h;
        page().items << line(left_, y_, left_ + width_, y_, 0.5);
        stripe_ = 0;
    }

    void openSegment() {
        if (!l_.ruled || segmentTop_ >= 0) return;
        segmentTop_ = y_;
        page().items << line(left_, y_, left_ + width_, y_, 0.5);
    }

    void closeSegment() {
        if (segmentTop_ < 0) return;
        const double bottom = y_;
        if (bottom > segmentTop_ + 0.01) {
            for (int c = 0; c < colX_.size(); ++c)
                if (!l_.columns[c].hidden)
                    page().items << line(colX_[c], segmentTop_, colX_[c], bottom, c ? 0.25 : 0.5);
            page().items << line(left_ + width_, segmentTop_, left_ + width_, bottom, 0.5);
            page().items << line(left_, bottom, left_ + width_, bottom, 0.5);
        }
        segmentTop_ = -1;
        stripe_ = 0;
    }

    void detailRow(int row) {
        const Scope s{row, 0, lastRow()};
        // The cells first: a column that grows may make the row taller.
        const double lh = lineHeight(l_.bodySize);
        QList<QStringList> cells;
        int count = 1;
        for (const ColumnDef& col : l_.columns) {
            const QString value = col.hidden ? QString() : fill_.cell(col.value, s, col.format);
            const int c = int(cells.size());
            cells << (col.grow && !value.isEmpty()
                          ? lines(value, colW_[c] - 2 * kPad, l_.bodySize, Style{}, 1, true)
                          : QStringList{value});
            count = std::max(count, int(cells.last().size()));
        }
        count = std::min(count, std::max(1, int((room_ - rowHeight_) / lh) + 1));
        const double h = rowHeight_ + (count - 1) * lh;
        if (y_ + h > limit_ && y_ > top_ + 0.01) {
            finishPage();
            newPage(row);
        }
        openSegment();
        if (l_.striped && (stripe_++ % 2) == 1)
            page().items << box(QRectF(left_, y_, width_, h), kStripe, 0);
        for (int c = 0; c < l_.columns.size(); ++c) {
            const ColumnDef& col = l_.columns[c];
            if (col.hidden) continue;
            for (int j = 0; j < cells[c].size() && j < count; ++j) {
                if (cells[c][j].isEmpty()) continue;
                page().items << text(QRectF(colX_[c] + kPad, y_ + 0.4 + j * lh, colW_[c] - 2 * kPad,
                                            rowHeight_ - 0.8),
                                     cells[c][j], l_.bodySize, col.align);
            }
        }
        y_ += h;
        if (l_.ruled) page().items << line(left_, y_, left_ + width_, y_, 0.2, 150);
    }

    // Rows with the same group value, one after the other: [first, last] of each.
    QList<QPair<int, int>> groups() const {
        QList<QPair<int, int>> out;
        const int n = int(d_.rows.size());
        if (n == 0) return out;
        const int g = l_.groupField.isEmpty() ? -1 : d_.columnIndex(l_.groupField);
        if (g < 0) {
            out.append({0, n - 1});
            return out;
        }
        int first = 0;
        for (int r = 1; r <= n; ++r) {
            if (r < n && d_.rows[r][g].toString().compare(d_.rows[first][g].toString(),
                                                          Qt::CaseInsensitive) == 0)
                continue;
            out.append({first, r - 1});
            first = r;
        }
        return out;
    }

    void tabular() {
        newPage(0);
        const bool grouped = !l_.groupField.isEmpty() && d_.columnIndex(l_.groupField) >= 0;
        for (const auto& [first, last] : groups()) {
            if (grouped) {
                const Scope s{first, first, last};
                // A group heading never stands alone at the foot of a page.
                const double h = bandHeight(l_.groupHeader, s);
                if (y_ + h + rowHeight_ > limit_ && y_ > top_ + 0.01) {
                    finishPage();
                    newPage(first);
                }
                place(l_.groupHeader, s, first);
                group_ = s;
            }
            for (int r = first; r <= last; ++r)
                detailRow(r);
            group_ = {-1, 0, -1};
            if (grouped) place(l_.groupFooter, {last, first, last}, last);
        }
        place(l_.finish, all(lastRow()), lastRow());
        finishPage();
    }

    void forms() {
        newPage(0);
        for (int r = 0; r < d_.rows.size(); ++r) {
            if (l_.pagePerRow && r > 0) {
                finishPage();
                newPage(r);
            }
            // Copies of one row on a sheet of their own take equal parts of it, so that the
            // sheet is cut along the middle.
            const double slot = (limit_ - top_) / l_.copies;
            const double form = bandHeight(l_.form, all(r));
            const bool halves = l_.pagePerRow && l_.copies > 1 && form <= slot - 6;
            for (int copy = 0; copy < l_.copies; ++copy) {
                if (halves) {
                    if (copy > 0) {
                        y_ = top_ + copy * slot - 3;
                        cutLine();
                    }
                } else if (copy > 0) {
                    // A copy that does not fit under the other starts a page of its own.
                    if (y_ + 6 + form > limit_ && form <= limit_ - top_)
                        breakPage(r);
                    else
                        cutLine();
                }
                place(l_.form, all(r), r);
            }
        }
        place(l_.finish, all(lastRow()), lastRow());
        finishPage();
    }

    // Between two copies of a form on one sheet: a dashed line to cut along.
    void cutLine() {
        if (y_ + 6 > limit_) return;
        y_ += 3;
        Item i = line(left_, y_, left_ + width_, y_, 0.4, 110);
        i.dashed = true;
        page().items << i;
        y_ += 3;
    }

    void fillPageCount() {
        const QString count = QString::number(doc_.pages.size());
        const QChar mark = FieldFiller::pageCountMark();
        for (Page& p : doc_.pages)
            for (Item& i : p.items)
                if (i.kind == Item::Kind::Text && i.text.contains(mark))
                    i.text.replace(mark, count);
    }
};

} // namespace

Document compose(const ReportData& data, const TextMeasure* measure) {
    static const EstimatedMeasure estimate;
    return Composer(data, measure ? *measure : estimate).run();
}

} // namespace rtx::output
