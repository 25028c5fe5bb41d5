#pragma once
// The office's PIX key as the company register keeps it: its kind, the check of a key as
// typed for that kind, and the key as a charge carries it.

#include <QString>
#include <optional>

namespace rtx::registers {

// The kinds of PIX key an office may have, as the company register names them.
enum class PixKeyKind { Cnpj, Email, Phone, Random };

// The names of the kinds in the register's list, and the kind of a name.
QString pixKindName(PixKeyKind kind);
std::optional<PixKeyKind> pixKindOf(const QString& name);

// The check of a key as typed, for its kind: a CNPJ with its check digits, an e-mail, a
// mobile or fixed telephone of Brazil, a random key (a UUID). Nothing when it is good, else
// the message that says what is wrong.
std::optional<QString> checkPixKey(PixKeyKind kind, const QString& typed);

// The key as the payload carries it: the CNPJ's 14 digits, the e-mail in small letters, the
// telephone as +55 with area code, the random key in small letters with its hyphens.
QString pixKeyForPayload(PixKeyKind kind, const QString& typed);

} // namespace rtx::registers
