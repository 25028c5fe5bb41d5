#include "session/artwork.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace rtx::ui::artwork {

QPixmap brand(const QSize& size, const QString& subtitle) {
    QPixmap pixmap(size);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, size.width(), size.height());
    sky.setColorAt(0, QColor(0x0B, 0x3C, 0x5D));
    sky.setColorAt(1, QColor(0x1C, 0x8E, 0xA8));
    p.fillRect(pixmap.rect(), sky);

    // Speed lines behind the name.
    p.setPen(QPen(QColor(255, 255, 255, 60), 3, Qt::SolidLine, Qt::RoundCap));
    const int h = size.height();
    for (int i = 0; i < 5; ++i) {
        const int y = h / 2 - 30 + i * 12;
        p.drawLine(size.width() / 10 + i * 9, y, size.width() * 9 / 10 - i * 14, y);
    }

    QFont title(QStringLiteral("DejaVu Sans"));
    title.setBold(true);
    title.setPixelSize(qMax(18, size.height() / 7));
    p.setFont(title);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 0, size.width(), h * 3 / 4), Qt::AlignCenter, QStringLiteral("Rotalix"));

    QFont small(QStringLiteral("DejaVu Sans"));
    small.setPixelSize(qMax(10, size.height() / 18));
    p.setFont(small);
    p.setPen(QColor(0xE0, 0xF4, 0xF8));
    p.drawText(QRect(0, h / 2 + 10, size.width(), h / 4), Qt::AlignHCenter | Qt::AlignTop,
               subtitle);
    return pixmap;
}

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
