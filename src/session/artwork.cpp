#include "session/artwork.h"

#include <QLinearGradient>
#include <QPainter>

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

} // namespace rtx::ui::artwork
