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

class Composer {
public:
    explicit Composer(const ReportData& data) : d_(data), l_(data.layout), fill_(data) {
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
    Document doc_;
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
            const double w = c.width < 0 ? (shares ? rest / shares : 0) : c.width * scale;
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

    // Lays a band out from y = 0; gives its items and sets its height.
    QList<Item> layBand(const Band& band, const Scope& s, double& height) {
        QList<Item> out;
        double y = 0;
        const QList<Element>& els = band.elements;
        for (int i = 0; i < els.size(); ++i) {
            const Element& e = els[i];
            if (omitted(e, s)) continue;
            switch (e.kind) {
            case Element::Kind::Text:
                y += layText(e, s, y, out);
                break;
            case Element::Kind::Rule:
                out << line(left_, y + 0.9, left_ + width_, y + 0.9, e.amount);
                y += 1.8;
                break;
            case Element::Kind::Space:
                y += e.amount;
                break;
            case Element::Kind::Field: {
                int j = i;
                while (j + 1 < els.size() && els[j + 1].kind == Element::Kind::Field)
                    ++j;
                y += layFields(els.mid(i, j - i + 1), s, y, out);
                i = j;
                break;
            }
            case Element::Kind::Total:
                y += layTotal(e, s, y, out);
                break;
            }
        }
        height = y;
        return out;
    }

    double layText(const Element& e, const Scope& s, double y, QList<Item>& out) {
        const double pts = size(e.style);
        const double inset = (e.framed || e.shaded) ? 1.5 : 0;
        const double pad = (e.framed || e.shaded) ? 0.8 : 0.1;
        const double h = e.lines * lineHeight(pts) + 2 * pad;
        if (e.framed || e.shaded)
            out << box(QRectF(left_, y, width_, h), e.shaded ? kHeadingGround : 255,
                       e.framed ? 0.5 : 0);
        const QRectF r(left_ + inset, y + pad, width_ - 2 * inset, h - 2 * pad);
        // Texts sharing a line share its width, so that a long one is cut short with "…"
        // instead of running over the other.
        QList<std::pair<Align, QRectF>> places;
        if (e.texts.size() == 1) {
            places.append({e.align, r});
        } else if (e.texts.size() == 2) {
            // In proportion to their lengths, neither below a fifth of the line.
            const double a = fill_.fill(e.texts[0], s).size() + 1.0;
            const double b = fill_.fill(e.texts[1], s).size() + 1.0;
            const double left = r.width() * std::clamp(a / (a + b), 0.2, 0.8);
            places.append({Align::Left, QRectF(r.x(), r.y(), left - 1, r.height())});
            places.append(
                {Align::Right, QRectF(r.x() + left, r.y(), r.width() - left, r.height())});
        } else {
            const double third = r.width() / 3;
            for (int k = 0; k < 3; ++k)
                places.append({k == 0 ? Align::Left : (k == 1 ? Align::Centre : Align::Right),
                               QRectF(r.x() + k * third, r.y(), third, r.height())});
        }
        for (int k = 0; k < e.texts.size(); ++k) {
            const QString t = fill_.fill(e.texts[k], s);
            if (t.isEmpty()) continue;
            Item it = text(places[k].second, t, pts, places[k].first, e.style.bold, e.style.italic);
            it.wrap = e.lines > 1;
            out << it;
        }
        return h;
    }

    // Labelled boxes side by side, as wide as they say; "*" takes the rest of the line.
    double layFields(const QList<Element>& cells, const Scope& s, double y, QList<Item>& out) {
        struct Placed {
            const Element* e;
            double x, w;
        };
        QList<QList<Placed>> rows(1);
        double x = 0;
        for (const Element& e : cells) {
            double w = e.width < 0 ? width_ - x : std::min(e.width, width_);
            if (x > 0 && (x + w > width_ + 0.01 || w <= 0.5)) {
                rows.append(QList<Placed>());
                x = 0;
                w = e.width < 0 ? width_ : std::min(e.width, width_);
            }
            rows.last().append(Placed{&e, x, w});
            x += w;
        }
        double top = y;
        for (const QList<Placed>& row : rows) {
            double h = 0;
            for (const Placed& p : row) {
                const double label = lineHeight(l_.bodySize * 0.72);
                const double value = p.e->lines * lineHeight(size(p.e->style));
                h = std::max(h, 0.6 + label + value + 0.8);
            }
            for (const Placed& p : row) {
                const double x0 = left_ + p.x;
                out << box(QRectF(x0, top, p.w, h), p.e->shaded ? kHeadingGround : 255, 0.35);
                const double labelPts = l_.bodySize * 0.72;
                const double label = lineHeight(labelPts);
                const QString caption = fill_.fill(p.e->texts[0], s);
                if (!caption.isEmpty()) {
                    Item it = text(QRectF(x0 + kPad, top + 0.5, p.w - 2 * kPad, label), caption,
                                   labelPts, Align::Left);
                    it.ink = kLabelInk;
                    out << it;
                }
                const QString value = fill_.fill(p.e->texts[1], s);
                if (!value.isEmpty()) {
                    Item it = text(QRectF(x0 + kPad, top + 0.5 + label, p.w - 2 * kPad,
                                          p.e->lines * lineHeight(size(p.e->style))),
                                   value, size(p.e->style), p.e->align, p.e->style.bold,
                                   p.e->style.italic);
                    it.wrap = p.e->lines > 1;
                    out << it;
                }
            }
            top += h;
        }
        return top - y;
    }

    double layTotal(const Element& e, const Scope& s, double y, QList<Item>& out) {
        const double h = rowHeight_ + 0.6;
        const double pts = size(e.style);
        out << line(left_, y + 0.3, left_ + width_, y + 0.3, 0.6);
        double labelEnd = left_ + width_;
        for (int c = 0; c < l_.columns.size(); ++c)
            if (l_.columns[c].aggregate != Aggregate::None) {
                labelEnd = colX_[c];
                break;
            }
        const QString label = fill_.fill(e.texts.first(), s);
        if (!label.isEmpty())
            out << text(QRectF(left_ + kPad, y + 0.6, labelEnd - left_ - 2 * kPad, h - 0.6), label,
                        pts, Align::Left, e.style.bold, e.style.italic);
        for (int c = 0; c < l_.columns.size(); ++c) {
            const ColumnDef& col = l_.columns[c];
            if (col.aggregate == Aggregate::None) continue;
            QString value;
            if (col.aggregate == Aggregate::Count) {
                value = QString::number(std::max(0, s.last - s.first + 1));
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

    // Starts a page: its heading, the report's start on the first page, the column headings.
    void newPage(int row) {
        doc_.pages.append(Page());
        fill_.setPage(int(doc_.pages.size()));
        y_ = l_.top;
        footerRow_ = row;
        double h = 0;
        QList<Item> items = layBand(l_.header, all(row), h);
        append(items, h);
        if (doc_.pages.size() == 1) {
            items = layBand(l_.start, all(row), h);
            append(items, h);
        }
        if (y_ > l_.top) y_ += 1.0;
        top_ = y_;
        if (l_.tabular()) columnHeadings();
    }

    void finishPage() {
        closeSegment();
        double h = 0;
        QList<Item> items = layBand(l_.footer, all(footerRow_), h);
        y_ = doc_.height - l_.bottom - h;
        append(items, h);
    }

    // Places a band, on a new page when it does not fit on this one.
    void place(const Band& band, const Scope& s, int nextRow) {
        double h = 0;
        QList<Item> items = layBand(band, s, h);
        if (h <= 0 && items.isEmpty()) return;
        closeSegment();
        if (y_ + h > limit_ && y_ > top_ + 0.01) {
            finishPage();
            newPage(nextRow);
            closeSegment();
        }
        append(items, h);
    }

    double bandHeight(const Band& band, const Scope& s) {
        double h = 0;
        layBand(band, s, h);
        return h;
    }

    // ---- Columns -------------------------------------------------------------------------

    void columnHeadings() {
        const double h = rowHeight_ + 0.8;
        page().items << box(QRectF(left_, y_, width_, h), kHeadingGround, 0);
        for (int c = 0; c < l_.columns.size(); ++c) {
            const ColumnDef& col = l_.columns[c];
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
                page().items << line(colX_[c], segmentTop_, colX_[c], bottom, c ? 0.25 : 0.5);
            page().items << line(left_ + width_, segmentTop_, left_ + width_, bottom, 0.5);
            page().items << line(left_, bottom, left_ + width_, bottom, 0.5);
        }
        segmentTop_ = -1;
        stripe_ = 0;
    }

    void detailRow(int row) {
        if (y_ + rowHeight_ > limit_ && y_ > top_ + 0.01) {
            finishPage();
            newPage(row);
        }
        openSegment();
        if (l_.striped && (stripe_++ % 2) == 1)
            page().items << box(QRectF(left_, y_, width_, rowHeight_), kStripe, 0);
        const Scope s{row, 0, lastRow()};
        for (int c = 0; c < l_.columns.size(); ++c) {
            const ColumnDef& col = l_.columns[c];
            QString value = fill_.cell(col.value, s, col.format);
            if (value.isEmpty()) continue;
            page().items << text(
                QRectF(colX_[c] + kPad, y_ + 0.4, colW_[c] - 2 * kPad, rowHeight_ - 0.8), value,
                l_.bodySize, col.align);
        }
        y_ += rowHeight_;
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
            }
            for (int r = first; r <= last; ++r)
                detailRow(r);
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
            const bool halves =
                l_.pagePerRow && l_.copies > 1 && bandHeight(l_.form, all(r)) <= slot - 6;
            for (int copy = 0; copy < l_.copies; ++copy) {
                if (halves) {
                    if (copy > 0) {
                        y_ = top_ + copy * slot - 3;
                        cutLine();
                    }
                } else if (copy > 0) {
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

Document compose(const ReportData& data) {
    return Composer(data).run();
}

} // namespace rtx::output
