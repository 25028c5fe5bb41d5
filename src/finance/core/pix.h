#pragma once
// The PIX charge printed on an invoice: the static "BR Code" a bank's app reads from the QR
// code or from the "copia e cola" text. It is the EMV merchant-presented payload: fields of
// a two-digit id, a two-digit length and the value, the office's key under the PIX
// identifier, the amount in reais, the beneficiary's name and city without accents and
// within their lengths, the invoice number as the transaction id, and a CRC16 of the whole
// text closing it. Pure text in, text out.

#include "registers/core/pixkey.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace rtx::finance {

using registers::pixKeyForPayload;
using registers::PixKeyKind;

// What one static charge says.
struct PixCharge {
    QString key;         // as pixKeyForPayload gives it
    QString name;        // the beneficiary, cut to 25 characters without accents
    QString city;        // cut to 15 characters without accents
    qint64 amount = 0;   // cents; 0 leaves the amount to the payer
    QString txid;        // letters and digits, up to 25; empty is "***"
    QString description; // optional words for the payer, kept within the account field
};

// The payload: ASCII text ending in "6304" and four hexadecimal digits of the CRC.
QString brCode(const PixCharge& charge);

// CRC16 with polynomial 0x1021 and initial value 0xFFFF, neither reflected nor inverted at
// the end (the "CCITT-FALSE" form), over the bytes given.
quint16 crc16(const QByteArray& bytes);

// True when the payload ends in a CRC field whose four digits are the CRC of everything
// before them.
bool crcHolds(const QString& payload);

// A text as the payload may carry it: accents taken off, what is left outside printable
// ASCII dropped, blanks run together, cut to a length.
QString payloadText(const QString& text, int maxLength);

} // namespace rtx::finance
