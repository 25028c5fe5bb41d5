#include "finance/core/receipts.h"

#include "finance/core/amountwords.h"
#include "registers/core/company.h"
#include "registers/core/parties.h"
#include "store/formats.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

namespace {

QString required(const QString& field) {
    return QStringLiteral("O campo [%1], não pode ficar em branco.").arg(field);
}

} // namespace

const QStringList& receiptStates() {
    static const QStringList states = {
        u"AC"_s, u"AL"_s, u"AM"_s, u"AP"_s, u"BA"_s, u"CE"_s, u"DF"_s, u"ES"_s, u"EX"_s,
        u"GO"_s, u"MA"_s, u"MG"_s, u"MS"_s, u"MT"_s, u"PA"_s, u"PB"_s, u"PE"_s, u"PI"_s,
        u"PR"_s, u"RJ"_s, u"RN"_s, u"RR"_s, u"RS"_s, u"SC"_s, u"SE"_s, u"SP"_s, u"TO"_s};
    return states;
}

QString receiptWords(std::optional<qint64> amount) {
    QString plain;
    if (amount) {
        // The amount as "#########.00" writes it: no thousands, no leading zero, so
        // less than one real is ",50".
        const qint64 cents = *amount < 0 ? -*amount : *amount;
        const qint64 reais = cents / 100;
        plain = (reais ? QString::number(reais) : QString()) + u',' +
                QString::number(cents % 100).rightJustified(2, u'0');
    }
    return u"( "_s + amountInWords(plain) + u"'"_s + u" )."_s;
}

QString nextReceiptNumber(Store& store) {
    return store.peekCode(receiptTable);
}

ReceiptCompany receiptCompany(Store& store) {
    ReceiptCompany c;
    if (const auto company = registers::loadCompany(store)) {
        c.name = company->name;
        c.phone = company->phone;
        c.address = company->address;
        c.city = company->city + u' ' + company->state;
        c.cnpj = company->cnpj;
    }
    return c;
}

std::optional<Problem> checkReceipt(const Receipt& r) {
    if (r.payer.isEmpty()) return Problem{receiptcol::payer, required(u"Recebemos de"_s)};
    if (r.receivedBy.isEmpty()) return Problem{receiptcol::receivedBy, required(u"Recebido por"_s)};
    if (r.about.isEmpty()) return Problem{receiptcol::about, required(u"Referente"_s)};
    if (auto refused = moneyRefusal(r.amount, u"A importância de"_s))
        return Problem{receiptcol::amount, *refused};
    return std::nullopt;
}

std::optional<Receipt> loadReceipt(Store& store, const QString& number) {
    if (number.isEmpty()) return std::nullopt;
    namespace c = receiptcol;
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(receiptTable, c::number), {number});
    if (rs.eof()) return std::nullopt;
    Receipt r;
    r.number = rs.text(c::number);
    r.payer = rs.text(c::payer);
    r.payerDocument = rs.text(c::payerDocument);
    r.date = rs.date(c::date).value_or(QDate());
    r.address = rs.text(c::address);
    r.district = rs.text(c::district);
    r.city = rs.text(c::city);
    r.state = rs.text(c::state);
    r.amount = rs.cents(c::amount);
    r.words = rs.text(c::words);
    r.about = rs.text(c::about);
    r.cheque = rs.text(c::cheque);
    r.receivedBy = rs.text(c::receivedBy);
    r.company = {rs.text(c::companyName), rs.text(c::companyPhone), rs.text(c::companyAddress),
                 rs.text(c::companyCity), rs.text(c::companyCnpj)};
    return r;
}

bool addReceipt(Store& store, const Receipt& r) {
    namespace c = receiptcol;
    if (loadReceipt(store, r.number)) return false;
    store.insert(receiptTable, {{c::number, r.number},
                                {c::payer, r.payer},
                                {c::payerDocument, r.payerDocument},
                                {c::date, r.date.isValid() ? QVariant(r.date) : QVariant()},
                                {c::address, r.address},
                                {c::district, r.district},
                                {c::city, r.city},
                                {c::state, r.state},
                                {c::amount, r.amount},
                                {c::words, r.words},
                                {c::about, r.about},
                                {c::cheque, r.cheque},
                                {c::receivedBy, r.receivedBy},
                                {c::companyName, r.company.name},
                                {c::companyPhone, r.company.phone},
                                {c::companySpare, QString()},
                                {c::companyAddress, r.company.address},
                                {c::companyCity, r.company.city},
                                {c::companyCnpj, r.company.cnpj},
                                {c::companyOther, QString()}});
    return true;
}

bool removeReceipt(Store& store, const QString& number) {
    if (number.isEmpty()) return false;
    return store.execute(
               QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(receiptTable, receiptcol::number),
               {number}) > 0;
}

QList<Receipt> allReceipts(Store& store) {
    QList<Receipt> out;
    Recordset rs = store.open(
        QStringLiteral("SELECT %1 FROM %2 ORDER BY %1 DESC").arg(receiptcol::number, receiptTable));
    for (; !rs.eof(); rs.moveNext())
        if (auto r = loadReceipt(store, rs.text(receiptcol::number))) out << *r;
    return out;
}

std::optional<Payer> payerOf(Store& store, const QString& name) {
    namespace c = registers::clientcol;
    const QString& table = registers::partyTable(registers::Party::Client);
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2").arg(table, store.sameText(table, c::name)),
        {name});
    if (rs.eof()) return std::nullopt;
    return Payer{rs.text(c::taxNumber), rs.text(c::street), rs.text(c::district), rs.text(c::city),
                 rs.text(c::state)};
}

} // namespace rtx::finance
