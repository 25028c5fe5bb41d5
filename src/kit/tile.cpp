#include "kit/tile.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace rtx::ui::artwork {

QIcon tile(const QString& glyph, const QColor& colour, int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(2, 2, size - 4, size - 4), size / 5.0, size / 5.0);
    QLinearGradient fill(0, 0, 0, size);
    fill.setColorAt(0, colour.lighter(125));
    fill.setColorAt(1, colour.darker(115));
    p.fillPath(shape, fill);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setBold(true);
    font.setPixelSize(size * 11 / 20);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 0, size, size), Qt::AlignCenter, glyph);
    return QIcon(pixmap);
}

} // namespace rtx::ui::artwork
