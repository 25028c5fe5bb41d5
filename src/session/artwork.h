#pragma once
// Pictures drawn by the program itself: the login's picture, the hub's background and the
// icons of the hub's button bar.

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

namespace rtx::ui::artwork {

// The brand picture: a gradient with the program's name and a line of speed.
QPixmap brand(const QSize& size, const QString& subtitle);
// A rounded tile in a colour with a white symbol (a character of the DejaVu fonts).
QIcon tile(const QString& glyph, const QColor& colour, int size = 48);

} // namespace rtx::ui::artwork
