#include "finance/core/pix.h"

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

// The amount as the payload writes it: reais, a point and two decimals, no thousands.
QString amountText(qint64 cents) {
    return u"%1.%2"_s.arg(cents / 100).arg(int(cents % 100), 2, 10, QChar(u'0'));
}

} // namespace

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
