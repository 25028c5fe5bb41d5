#pragma once
// QR codes for printed pages (the PIX charge of the invoices), made by libqrencode. The
// symbol is a square of modules; a page draws its dark modules as filled boxes, a run of
// dark modules of a row as one box, so the code is printed as vectors at any resolution.

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>
#include <vector>

namespace rtx::output {

struct QrSymbol {
    int size = 0;           // modules per side, without the quiet zone
    std::vector<bool> dark; // size * size, row by row
    bool isDark(int row, int column) const { return dark[std::size_t(row * size + column)]; }
    bool isEmpty() const { return size == 0; }
};

// The symbol of the text's bytes (UTF-8), error correction at level M (a printed page may
// be folded or stained). Empty when the text does not fit a QR code.
QrSymbol encodeQr(const QString& text);

// The dark runs of the symbol as rectangles in millimetres, the symbol's top left corner
// at origin and each module side millimetres wide.
QList<QRectF> qrBoxes(const QrSymbol& symbol, QPointF origin, double module);

} // namespace rtx::output
