#pragma once
// The single-byte code pages the program meets: the counter printers' (CP850, CP858,
// CP860) and the one old installations wrote their text files in (Windows-1252). Each is
// its upper half, bytes 128 to 255, as Unicode; 0 where the page has no character.

#include <QByteArray>
#include <QString>
#include <array>

namespace rtx::codepage {

using UpperHalf = std::array<char16_t, 128>;

const UpperHalf& cp850();
const UpperHalf& cp858(); // CP850 with the euro sign in place of the dotless i
const UpperHalf& cp860();
const UpperHalf& windows1252();

// Bytes of a page as text; a byte the page has no character for becomes U+FFFD.
QString decode(const QByteArray& bytes, const UpperHalf& page);

} // namespace rtx::codepage
