#pragma once
// The icons of the button bars: a rounded tile in a colour with a white symbol, drawn by the
// program itself so that every screen's buttons look alike.

#include <QColor>
#include <QIcon>
#include <QString>

namespace rtx::ui::artwork {

// A rounded tile in a colour with a white symbol (a character of the DejaVu fonts).
QIcon tile(const QString& glyph, const QColor& colour, int size = 48);

} // namespace rtx::ui::artwork
