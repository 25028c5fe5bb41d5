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

// "00000000/0000-00": eight digits, a separator, four digits, a separator, two check
// digits. "True" or "False" in the same way.
QString cnpjCheck(const QString& number);

// The forms above made from bare digits, padded on the left with zeros:
// "52998224725" -> "529982247-25", "11222333000181" -> "11222333/0001-81".
QString cpfForm(const QString& digits);
QString cnpjForm(const QString& digits);

// A tax number typed as bare digits, as the registers take it: eleven digits with right
// check digits are a CPF, fourteen a CNPJ; any other length, or a wrong check digit, is no
// number the registers keep (the field is emptied without a word).
enum class TaxNumber { Wrong, Cpf, Cnpj };
TaxNumber taxNumberKind(const QString& digits);

} // namespace rtx
