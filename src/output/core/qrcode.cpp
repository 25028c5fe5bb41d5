#include "output/core/qrcode.h"

#include <qrencode.h>

#include <memory>

namespace rtx::output {

QrSymbol encodeQr(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    // Eight-bit mode keeps the text as it is: the automatic modes would fold small letters
    // into the alphanumeric set, which has none, and the PIX key is case-sensitive.
    std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeString8bit(bytes.constData(), 0, QR_ECLEVEL_M), &QRcode_free);
    QrSymbol symbol;
    if (!code) return symbol;
    symbol.size = code->width;
    symbol.dark.resize(std::size_t(code->width) * std::size_t(code->width));
    for (std::size_t i = 0; i < symbol.dark.size(); ++i)
        symbol.dark[i] = (code->data[i] & 1) != 0;
    return symbol;
}

QList<QRectF> qrBoxes(const QrSymbol& symbol, QPointF origin, double module) {
    QList<QRectF> boxes;
    for (int row = 0; row < symbol.size; ++row) {
        int column = 0;
        while (column < symbol.size) {
            if (!symbol.isDark(row, column)) {
                ++column;
                continue;
            }
            const int start = column;
            while (column < symbol.size && symbol.isDark(row, column))
                ++column;
            boxes.append(QRectF(origin.x() + start * module, origin.y() + row * module,
                                (column - start) * module, module));
        }
    }
    return boxes;
}

} // namespace rtx::output
