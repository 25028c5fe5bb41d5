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

const QList<Field<Receipt>>& receiptFields() {
    namespace c = receiptcol;
    using R = Receipt;
    // A member of the letterhead the receipt keeps.
    const auto letterhead = [](QString ReceiptCompany::*member) {
        return [member](auto& r) -> auto& {
            return r.company.*member;
        };
    };
    static const QList<Field<R>> fields = {
        field<R>(c::number, &R::number),
        field<R>(c::payer, &R::payer),
        field<R>(c::payerDocument, &R::payerDocument),
        field<R>(c::date, &R::date),
        field<R>(c::address, &R::address),
        field<R>(c::district, &R::district),
        field<R>(c::city, &R::city),
        field<R>(c::state, &R::state),
        field<R>(c::amount, &R::amount),
        field<R>(c::words, &R::words),
        field<R>(c::about, &R::about),
        field<R>(c::cheque, &R::cheque),
        field<R>(c::receivedBy, &R::receivedBy),
        field<R>(c::companyName, letterhead(&ReceiptCompany::name)),
        field<R>(c::companyPhone, letterhead(&ReceiptCompany::phone)),
        field<R>(c::companyAddress, letterhead(&ReceiptCompany::address)),
        field<R>(c::companyCity, letterhead(&ReceiptCompany::city)),
        field<R>(c::companyCnpj, letterhead(&ReceiptCompany::cnpj)),
    };
    return fields;
}

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
    return loadRecord(store, receiptTable, receiptcol::number, number, receiptFields());
}

bool addReceipt(Store& store, const Receipt& r) {
    // Two stations may show the same next number. Taking the writer's lock of the receipts'
    // codes before looking makes the second wait for the first and then find its receipt,
    // rather than stumble on the table's unique key.
    store.nextCode(receiptTable);
    if (loadReceipt(store, r.number)) return false;
    saveRecord(store, receiptTable, receiptcol::number, r.number, r, receiptFields());
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
        QStringLiteral("SELECT * FROM %2 ORDER BY %1 DESC").arg(receiptcol::number, receiptTable));
    for (; !rs.eof(); rs.moveNext())
        out << readRecord(rs, receiptFields());
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
