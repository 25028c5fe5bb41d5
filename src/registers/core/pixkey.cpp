#include "registers/core/pixkey.h"

#include "registers/core/docnumbers.h"

#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace rtx::registers {

namespace {

QString onlyDigits(const QString& text) {
    QString digits;
    for (QChar c : text)
        if (c.isDigit()) digits += c;
    return digits;
}

// The telephone's digits without the country: ten (fixed) or eleven (mobile, a 9 after
// the area code). Empty when the typed text is no telephone of Brazil.
QString nationalPhone(const QString& typed) {
    QString digits = onlyDigits(typed);
    const bool international = typed.trimmed().startsWith(u'+');
    if ((international || digits.size() > 11) && digits.startsWith(u"55"_s))
        digits = digits.mid(2);
    else if (international)
        return {};
    if (digits.startsWith(u'0')) digits = digits.mid(1); // a long-distance 0 typed before the area
    if (digits.size() != 10 && digits.size() != 11) return {};
    if (digits[0] == u'0' || digits[1] == u'0') return {};
    if (digits.size() == 11 && digits[2] != u'9') return {};
    return digits;
}

const QRegularExpression& emailPattern() {
    static const QRegularExpression re(
        u"^[A-Za-z0-9._%+\\-]+@[A-Za-z0-9\\-]+(\\.[A-Za-z0-9\\-]+)+$"_s);
    return re;
}

const QRegularExpression& uuidPattern() {
    static const QRegularExpression re(
        u"^[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}$"_s);
    return re;
}

} // namespace

QString pixKindName(PixKeyKind kind) {
    switch (kind) {
    case PixKeyKind::Cnpj:
        return u"CNPJ"_s;
    case PixKeyKind::Email:
        return u"E-MAIL"_s;
    case PixKeyKind::Phone:
        return u"TELEFONE"_s;
    case PixKeyKind::Random:
        break;
    }
    return u"ALEATÓRIA"_s;
}

std::optional<PixKeyKind> pixKindOf(const QString& name) {
    for (PixKeyKind k :
         {PixKeyKind::Cnpj, PixKeyKind::Email, PixKeyKind::Phone, PixKeyKind::Random})
        if (pixKindName(k).compare(name.trimmed(), Qt::CaseInsensitive) == 0) return k;
    return std::nullopt;
}

std::optional<QString> checkPixKey(PixKeyKind kind, const QString& typed) {
    const QString key = typed.trimmed();
    if (key.isEmpty()) return u"Informe a chave PIX."_s;
    switch (kind) {
    case PixKeyKind::Cnpj:
        if (taxNumberKind(taxNumberChars(key)) != TaxNumber::Cnpj)
            return u"A chave PIX não é um CNPJ válido: confira os dígitos."_s;
        break;
    case PixKeyKind::Email:
        if (key.size() > 77 || !emailPattern().match(key).hasMatch())
            return u"A chave PIX não é um e-mail válido."_s;
        break;
    case PixKeyKind::Phone:
        if (nationalPhone(key).isEmpty())
            return u"A chave PIX não é um telefone válido: informe o DDD e o número "
                   u"(celular com 9 dígitos)."_s;
        break;
    case PixKeyKind::Random:
        if (!uuidPattern().match(key).hasMatch())
            return u"A chave PIX aleatória deve ter 32 caracteres hexadecimais em 5 grupos "
                   u"(8-4-4-4-12)."_s;
        break;
    }
    return std::nullopt;
}

QString pixKeyForPayload(PixKeyKind kind, const QString& typed) {
    const QString key = typed.trimmed();
    switch (kind) {
    case PixKeyKind::Cnpj:
        return taxNumberChars(key);
    case PixKeyKind::Email:
        return key.toLower();
    case PixKeyKind::Phone:
        return u"+55"_s + nationalPhone(key);
    case PixKeyKind::Random:
        break;
    }
    return key.toLower();
}

} // namespace rtx::registers
