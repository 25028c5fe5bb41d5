#include "reportpainter.h"

#include <QFontMetricsF>
#include <QHash>
#include <QPaintDevice>
#include <QPainter>
#include <optional>

namespace rtx::ui {

namespace {

constexpr double kPointMm = 25.4 / 72.0;

Qt::Alignment alignment(output::Align a) {
    switch (a) {
    case output::Align::Centre:
        return Qt::AlignHCenter;
    case output::Align::Right:
        return Qt::AlignRight;
    case output::Align::Left:
        break;
    }
    return Qt::AlignLeft;
}

// Fonts of one page, by size and weight: made once, with their metrics.
class Fonts {
public:
    Fonts(const QString& family, double dotsPerMm, QPaintDevice* device)
        : family_(family), dotsPerMm_(dotsPerMm), device_(device) {
        const double dpi = device ? device->logicalDpiY() : 96.0;
        deviceDpi_ = dpi > 0 ? dpi : 96.0;
    }

    struct Entry {
        QFont font;
        QFontMetricsF metrics;
    };

    const Entry& get(const output::Item& item) {
        const quint32 key =
            quint32(item.size * 20) << 2 | (item.bold ? 1 : 0) | (item.italic ? 2 : 0);
        auto it = cache_.find(key);
        if (it != cache_.end()) return *it;
        QFont f(family_);
        // The letter is as tall on every surface: its height in millimetres times the
        // surface's pixels per millimetre, whatever the surface says its dots per inch are.
        f.setPointSizeF(item.size * kPointMm * dotsPerMm_ * 72.0 / deviceDpi_);
        f.setBold(item.bold);
        f.setItalic(item.italic);
        f.setKerning(true);
        return *cache_.insert(key, Entry{f, QFontMetricsF(f, device_)});
    }

private:
    QString family_;
    double dotsPerMm_;
    QPaintDevice* device_;
    double deviceDpi_ = 96.0;
    QHash<quint32, Entry> cache_;
};

} // namespace

void paintPage(QPainter& painter, const output::Document& document, int page, double dotsPerMm) {
    if (page < 0 || page >= document.pages.size()) return;
    const double k = dotsPerMm;
    Fonts fonts(document.font, k, painter.device());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    auto map = [k](const QRectF& r) {
        return QRectF(r.x() * k, r.y() * k, r.width() * k, r.height() * k);
    };
    for (const output::Item& item : document.pages[page].items) {
        switch (item.kind) {
        case output::Item::Kind::Box: {
            const QRectF r = map(item.rect);
            if (item.grey < 255) painter.fillRect(r, QColor(item.grey, item.grey, item.grey));
            if (item.pen > 0) {
                painter.setPen(QPen(Qt::black, item.pen * kPointMm * k));
                painter.setBrush(Qt::NoBrush);
                painter.drawRect(r);
            }
            break;
        }
        case output::Item::Kind::Line: {
            QPen pen(QColor(item.ink, item.ink, item.ink), item.pen * kPointMm * k);
            if (item.dashed) pen.setStyle(Qt::DashLine);
            painter.setPen(pen);
            painter.drawLine(QPointF(item.rect.left() * k, item.rect.top() * k),
                             QPointF(item.rect.right() * k, item.rect.bottom() * k));
            break;
        }
        case output::Item::Kind::Text: {
            const Fonts::Entry& f = fonts.get(item);
            painter.setFont(f.font);
            painter.setPen(QColor(item.ink, item.ink, item.ink));
            const QRectF r = map(item.rect);
            QString text = item.text;
            // A text longer than its place ends in "…" instead of running into the next, so
            // that what is left out is seen to be.
            if (f.metrics.horizontalAdvance(text) > r.width())
                text = f.metrics.elidedText(text, Qt::ElideRight, r.width());
            painter.drawText(r, alignment(item.align) | Qt::AlignVCenter | Qt::TextSingleLine,
                             text);
            break;
        }
        }
    }
    painter.restore();
}

double FontMeasure::width(const QString& text, const QString& family, double points, bool bold,
                          bool italic) const {
    // Letters at a large size without hinting, so that widths scale as on any surface.
    constexpr double kPixelsPerMm = 20;
    const int pixels = std::max(1, int(points * kPointMm * kPixelsPerMm + 0.5));
    const QString key = QStringLiteral("%1|%2|%3|%4").arg(family).arg(pixels).arg(bold).arg(italic);
    auto it = metrics_.find(key);
    if (it == metrics_.end()) {
        QFont f(family);
        f.setPixelSize(pixels);
        f.setHintingPreference(QFont::PreferNoHinting);
        f.setBold(bold);
        f.setItalic(italic);
        f.setKerning(true);
        it = metrics_.insert(key, std::make_shared<QFontMetricsF>(f));
    }
    const double scale = points * kPointMm * kPixelsPerMm / pixels;
    return (*it)->horizontalAdvance(text) * scale / kPixelsPerMm;
}

const FontMeasure& fontMeasure() {
    static const FontMeasure measure;
    return measure;
}

} // namespace rtx::ui
