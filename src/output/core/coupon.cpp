#include "coupon.h"

#include "store/codepages.h"

#include <QHash>

namespace rtx::output {

namespace {

struct PageInfo {
    CodePage page;
    const char* name;
    int table; // ESC t n
    const codepage::UpperHalf& (*upper)();
};

const PageInfo kPages[] = {
    {CodePage::CP850, "CP850", 2, &codepage::cp850},
    {CodePage::CP858, "CP858", 19, &codepage::cp858},
    {CodePage::CP860, "CP860", 3, &codepage::cp860},
    {CodePage::CP1252, "CP1252", 16, &codepage::windows1252},
};

const PageInfo& info(CodePage page) {
    for (const PageInfo& p : kPages)
        if (p.page == page) return p;
    return kPages[0];
}

const QHash<char16_t, char>& reverse(CodePage page) {
    static QHash<CodePage, QHash<char16_t, char>> all;
    auto it = all.find(page);
    if (it == all.end()) {
        QHash<char16_t, char> map;
        const codepage::UpperHalf& upper = info(page).upper();
        for (int i = 0; i < 128; ++i)
            if (upper[i]) map.insert(upper[i], char(128 + i));
        it = all.insert(page, map);
    }
    return *it;
}

const QString kSeparator(47, u'-');

} // namespace

std::optional<CodePage> codePageNamed(const QString& name) {
    QString digits;
    for (QChar c : name)
        if (c.isDigit()) digits += c;
    for (const PageInfo& p : kPages)
        if (QString::fromLatin1(p.name).mid(2) == digits) return p.page;
    return std::nullopt;
}

int escPosTable(CodePage page) {
    return info(page).table;
}

QByteArray encode(const QString& text, CodePage page) {
    const QString t = text.normalized(QString::NormalizationForm_C);
    const QHash<char16_t, char>& map = reverse(page);
    QByteArray out;
    out.reserve(t.size());
    for (QChar c : t) {
        const char16_t u = c.unicode();
        if (u < 0x20 || u == 0x7F)
            out += ' ';
        else if (u < 0x80)
            out += char(u);
        else
            out += map.value(u, '?');
    }
    return out;
}

QStringList couponLines(const CouponFields& f, const QDateTime& now) {
    const QString b = QStringLiteral(" ");
    QStringList l;
    l << b << b << kSeparator;
    l << b + f.companyName;
    l << b + QStringLiteral("Telefone: ") + f.companyPhone;
    l << kSeparator;
    l << b + QStringLiteral("Nro: ") + f.number + QStringLiteral(" Data: ") +
             now.date().toString(QStringLiteral("dd/MM/yyyy")) + QStringLiteral(" Hora: ") +
             now.time().toString(QStringLiteral("HH:mm"));
    l << kSeparator;
    l << b + QStringLiteral("Cliente: ") + f.client;
    l << b + QStringLiteral("Telefone: ") + f.phone;
    l << b + f.address;
    l << kSeparator;
    l << QStringLiteral(" ORIGEM");
    l << b + f.pickupAddress + QStringLiteral("  ") + f.pickupContact;
    l << b + QStringLiteral("Tel:") + f.pickupPhone + QStringLiteral("  ") + f.pickupTask;
    l << kSeparator;
    l << QStringLiteral(" DESTINO");
    l << b + f.deliveryAddress + QStringLiteral("  ") + f.deliveryContact;
    l << b + QStringLiteral("Tel:") + f.deliveryPhone + QStringLiteral("  ") + f.deliveryTask;
    l << kSeparator;
    l << b + f.service;
    l << QStringLiteral("  Com retorno: ") + f.returnTrip;
    l << QStringLiteral("  Entregador: ") + f.courier;
    l << QStringLiteral("  Valor: ") + f.value;
    for (int i = 0; i < 5; ++i) // paper to tear off
        l << b;
    return l;
}

QByteArray couponBytes(const CouponFields& fields, const QDateTime& now, CodePage page, int table) {
    QByteArray out;
    out.append("\x1b@");                                                     // reset
    out.append("\x1bt").append(char(table < 0 ? escPosTable(page) : table)); // code page
    out.append("\x1b!").append(char(0x08));                                  // font A, bold
    for (const QString& line : couponLines(fields, now))
        out.append(encode(line, page)).append('\n');
    out.append("\x1bi"); // cut
    return out;
}

} // namespace rtx::output
