#pragma once
// Check digits of the Brazilian tax numbers: the CPF of a private person and the CNPJ of a
// company. Pure arithmetic on text of a fixed form; the register screens format the
// digits into that form (which restores the leading zeros) and compare the answer with
// the literals "True" and "False".

#include <QString>

namespace rtx {

// "000000000-00": nine digits, any one separator, two check digits. "True" when both
// check digits are right, otherwise "False".
QString cpfCheck(const QString& number);

// "00000000/0000-00": eight characters, a separator, four characters, a separator, two check
// digits. "True" or "False" in the same way. Since July 2026 the revenue service also issues
// CNPJs whose twelve leading characters hold capital letters ("12ABC345/01DE-35"): each
// character weighs its code less 48, so digits keep their value and all-digit numbers give
// what they always gave; lower case counts as capitals. The CPF stays digits only.
QString cnpjCheck(const QString& number);

// The forms above made from bare digits, padded on the left with zeros:
// "52998224725" -> "529982247-25", "11222333000181" -> "11222333/0001-81".
QString cpfForm(const QString& digits);
QString cnpjForm(const QString& digits);

// A tax number as typed, reduced to what the registers keep: digits and letters, in capitals,
// without points, slashes, hyphens or blanks ("12.abc.345/01de-35" -> "12ABC34501DE35").
QString taxNumberChars(const QString& typed);

// A kept number as people write it: "529.982.247-25", "12.ABC.345/01DE-35". Any other
// length comes back as it is.
QString taxNumberShown(const QString& chars);

// A tax number as the registers keep it (bare characters): eleven digits with right check
// digits are a CPF, fourteen characters with right check digits a CNPJ; any other length, or a
// wrong check digit, is no number the registers keep (the field is emptied without a word).
enum class TaxNumber { Wrong, Cpf, Cnpj };
TaxNumber taxNumberKind(const QString& chars);

} // namespace rtx
