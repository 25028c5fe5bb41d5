#include "finance/core/pix.h"

#include "registers/core/docnumbers.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

namespace {

// The ids of the payload's fields.
constexpr const char* kFormat = "00";         // payload format indicator, "01"
constexpr const char* kAccount = "26";        // merchant account information (PIX)
constexpr const char* kCategory = "52";       // merchant category code
constexpr const char* kCurrency = "53";       // 986: the real
constexpr const char* kAmount = "54";         // transaction amount
constexpr const char* kCountry = "58";        // BR
constexpr const char* kName = "59";           // merchant name
constexpr const char* kCity = "60";           // merchant city
constexpr const char* kAdditional = "62";     // additional data field template
constexpr const char* kCrc = "63";            // CRC16, four hexadecimal digits
constexpr const char* kAccountGui = "00";     // inside 26: the arrangement's identifier
constexpr const char* kAccountKey = "01";     // inside 26: the key
constexpr const char* kAccountInfo = "02";    // inside 26: words for the payer
constexpr const char* kAdditionalTxid = "05"; // inside 62: the reference label

constexpr int kNameLength = 25;
constexpr int kCityLength = 15;
constexpr int kTxidLength = 25;
constexpr int kFieldLength = 99;

const QString kGui = u"br.gov.bcb.pix"_s;

QString fieldOf(const char* id, const QString& value) {
    return QString::fromLatin1(id) + u"%1"_s.arg(int(value.size()), 2, 10, QChar(u'0')) + value;
}

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

// The amount as the payload writes it: reais, a point and two decimals, no thousands.
QString amountText(qint64 cents) {
    return u"%1.%2"_s.arg(cents / 100).arg(int(cents % 100), 2, 10, QChar(u'0'));
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

QString payloadText(const QString& text, int maxLength) {
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString out;
    out.reserve(decomposed.size());
    for (QChar c : decomposed) {
        const char16_t u = c.unicode();
        if (u < 0x20 || u > 0x7E) {
            // A line break or a tab is a blank; accents and what has no ASCII form go.
            if (c.isSpace()) out += u' ';
            continue;
        }
        out += c;
    }
    out = out.simplified();
    return out.left(maxLength).trimmed();
}

QString brCode(const PixCharge& charge) {
    // The account field holds at most 99 characters: the words for the payer give way.
    QString account = fieldOf(kAccountGui, kGui) + fieldOf(kAccountKey, charge.key);
    const int room = kFieldLength - int(account.size()) - 4;
    const QString info = payloadText(charge.description, std::max(0, room));
    if (!info.isEmpty()) account += fieldOf(kAccountInfo, info);

    QString txid;
    for (QChar c : charge.txid)
        if (c.unicode() < 0x80 && c.isLetterOrNumber()) txid += c;
    txid = txid.left(kTxidLength);
    if (txid.isEmpty()) txid = u"***"_s;

    QString payload = fieldOf(kFormat, u"01"_s) + fieldOf(kAccount, account) +
                      fieldOf(kCategory, u"0000"_s) + fieldOf(kCurrency, u"986"_s);
    if (charge.amount > 0) payload += fieldOf(kAmount, amountText(charge.amount));
    payload += fieldOf(kCountry, u"BR"_s) + fieldOf(kName, payloadText(charge.name, kNameLength)) +
               fieldOf(kCity, payloadText(charge.city, kCityLength)) +
               fieldOf(kAdditional, fieldOf(kAdditionalTxid, txid));
    payload += QString::fromLatin1(kCrc) + u"04"_s;
    return payload + u"%1"_s.arg(uint(crc16(payload.toLatin1())), 4, 16, QChar(u'0')).toUpper();
}

quint16 crc16(const QByteArray& bytes) {
    quint16 crc = 0xFFFF;
    for (char byte : bytes) {
        crc ^= quint16(quint8(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) ? quint16((crc << 1) ^ 0x1021) : quint16(crc << 1);
    }
    return crc;
}

bool crcHolds(const QString& payload) {
    if (payload.size() < 8) return false;
    const QString head = payload.left(payload.size() - 4);
    if (!head.endsWith(u"6304"_s)) return false;
    bool ok = false;
    const uint crc = payload.right(4).toUInt(&ok, 16);
    return ok && crc == crc16(head.toLatin1()) && payload.right(4) == payload.right(4).toUpper();
}

} // namespace rtx::finance
