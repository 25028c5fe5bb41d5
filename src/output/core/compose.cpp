#include "compose.h"

#include "composer.h"

namespace rtx::output {

double lineHeight(double points) {
    return points * 25.4 / 72.0 * 1.45;
}

Document compose(const ReportData& data, const TextMeasure* measure) {
    static const EstimatedMeasure estimate;
    return composing::Composer(data, measure ? *measure : estimate).run();
}

} // namespace rtx::output

namespace rtx::output::composing {

Document Composer::run() {
    if (l_.tabular())
        tabular();
    else
        forms();
    fillPageCount();
    return std::move(doc_);
}

void Composer::columnGeometry() {
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

Item Composer::text(const QRectF& r, const QString& s, double points, Align a, bool bold,
                    bool italic) {
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

Item Composer::line(double x1, double y1, double x2, double y2, double pen, quint8 ink) {
    Item i;
    i.kind = Item::Kind::Line;
    i.rect = QRectF(QPointF(x1, y1), QPointF(x2, y2));
    i.pen = float(pen);
    i.ink = ink;
    return i;
}

Item Composer::box(const QRectF& r, quint8 grey, double pen) {
    Item i;
    i.kind = Item::Kind::Box;
    i.rect = r;
    i.grey = grey;
    i.pen = float(pen);
    return i;
}

// ---- Pages ---------------------------------------------------------------------------

void Composer::append(QList<Item> items, double height) {
    for (Item& i : items)
        i.rect.translate(0, y_);
    page().items += items;
    y_ += height;
}

void Composer::append(const QList<Block>& blocks) {
    for (const Block& b : blocks)
        append(b.items, b.height);
}

double Composer::height(const QList<Block>& blocks) {
    double h = 0;
    for (const Block& b : blocks)
        h += b.height;
    return h;
}

void Composer::newPage(int row) {
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

void Composer::continuedGroup() {
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

void Composer::finishPage() {
    closeSegment();
    QList<Block> blocks = layBand(l_.footer, all(footerRow_));
    y_ = doc_.height - l_.bottom - height(blocks);
    append(blocks);
}

void Composer::breakPage(int nextRow) {
    finishPage();
    newPage(nextRow);
    closeSegment();
}

void Composer::place(const Band& band, const Scope& s, int nextRow) {
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

// ---- Columns -------------------------------------------------------------------------

void Composer::columnHeadings() {
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

void Composer::openSegment() {
    if (!l_.ruled || segmentTop_ >= 0) return;
    segmentTop_ = y_;
    page().items << line(left_, y_, left_ + width_, y_, 0.5);
}

void Composer::closeSegment() {
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

void Composer::detailRow(int row) {
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
            page().items << text(
                QRectF(colX_[c] + kPad, y_ + 0.4 + j * lh, colW_[c] - 2 * kPad, rowHeight_ - 0.8),
                cells[c][j], l_.bodySize, col.align);
        }
    }
    y_ += h;
    if (l_.ruled) page().items << line(left_, y_, left_ + width_, y_, 0.2, 150);
}

QList<QPair<int, int>> Composer::groups() const {
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

void Composer::tabular() {
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

void Composer::forms() {
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

void Composer::cutLine() {
    if (y_ + 6 > limit_) return;
    y_ += 3;
    Item i = line(left_, y_, left_ + width_, y_, 0.4, 110);
    i.dashed = true;
    page().items << i;
    y_ += 3;
}

void Composer::fillPageCount() {
    const QString count = QString::number(doc_.pages.size());
    const QChar mark = FieldFiller::pageCountMark();
    for (Page& p : doc_.pages)
        for (Item& i : p.items)
            if (i.kind == Item::Kind::Text && i.text.contains(mark)) i.text.replace(mark, count);
}

} // namespace rtx::output::composing
