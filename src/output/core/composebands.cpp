// The bands of a report: texts broken into the lines their boxes hold, labelled boxes side
// by side, totals; each band laid out in blocks from y = 0, which the page flow places.

#include "composer.h"

namespace rtx::output::composing {

bool Composer::omitted(const Element& e, const Scope& s) const {
    if (!e.omitEmpty) return false;
    bool anyField = false;
    for (const Template& t : e.texts) {
        if (!t.hasFields()) continue;
        anyField = true;
        if (!fill_.allFieldsEmpty(t, s)) return false;
    }
    return anyField;
}

QList<Block> Composer::layBand(const Band& band, const Scope& s, double avail) {
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

void Composer::consume(const Block& b) {
    if (b.height > avail_ + 0.01) avail_ = room_; // on the next page
    avail_ -= b.height;
}

QStringList Composer::lines(const QString& text, double width, double points, const Style& st,
                            int room, bool grow) const {
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

QList<Block> Composer::layText(const Element& e, const Scope& s) {
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
        broken << (wraps ? lines(texts[k], places[k].second.second, pts, e.style, e.lines, e.grow)
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
                                broken[k][j], pts, places[k].first, e.style.bold, e.style.italic);
            }
        // A shaded heading of one line heads what follows it.
        b.keepWithNext = e.shaded && count == 1;
        out << b;
    }
    return out;
}

QList<Block> Composer::layFields(const QList<const Element*>& cells, const Scope& s) {
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
                if (first > 0 && !caption.isEmpty()) caption += QStringLiteral(" (continuação)");
                if (!caption.isEmpty()) {
                    Item it = text(QRectF(x0 + kPad, 0.5, p.w - 2 * kPad, label), caption, labelPts,
                                   Align::Left);
                    it.ink = kLabelInk;
                    b.items << it;
                }
                const QStringList& v = values[k];
                for (int j = first; j < first + n && j < v.size(); ++j) {
                    if (v[j].isEmpty()) continue;
                    b.items << text(QRectF(x0 + kPad, 0.5 + label + (j - first) * lineHeight(pts),
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

double Composer::layTotal(const Element& e, const Scope& s, double y, QList<Item>& out) {
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
        out << text(QRectF(left_ + kPad, y + 0.6, labelEnd - left_ - 2 * kPad, h - 0.6), label, pts,
                    Align::Left, e.style.bold, e.style.italic);
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

qint64 Composer::columnCents(const ColumnDef& col, int row) {
    const QString only = col.value.onlyField();
    const int index = only.isEmpty() ? -1 : d_.columnIndex(only);
    if (index >= 0) return centsOf(d_.rows[row][index], d_.types[index]);
    return centsOf(fill_.fill(col.value, {row, 0, lastRow()}), ColType::Text);
}

} // namespace rtx::output::composing
