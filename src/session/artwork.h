#pragma once
// Pictures drawn by the program itself: the login's picture and the hub's background (the
// icons of the button bars are the kit's tiles).

#include "kit/tile.h"

#include <QPixmap>
#include <QSize>
#include <QString>

namespace rtx::ui::artwork {

// The brand picture: a gradient with the program's name and a line of speed.
QPixmap brand(const QSize& size, const QString& subtitle);

} // namespace rtx::ui::artwork
