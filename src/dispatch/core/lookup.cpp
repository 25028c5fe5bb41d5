#include "dispatch/core/lookup.h"

namespace rtx::dispatch {

namespace {

std::optional<ClientCard> firstClient(Store& store, const QString& where,
                                      const QVariantList& params) {
    Recordset rs = store.open(
        QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY %4 LIMIT 1")
            .arg(QStringList{client::code, client::name, client::contact, client::phone,
                             client::street, client::district, client::kind, client::remarks}
                     .join(u", "),
                 client::table, where, client::code),
        params);
    if (rs.eof()) return std::nullopt;
    return ClientCard{rs.text(client::code),  rs.text(client::name),   rs.text(client::contact),
                      rs.text(client::phone), rs.text(client::street), rs.text(client::district),
                      rs.text(client::kind),  rs.text(client::remarks)};
}

} // namespace

QString remarksNotice(const ClientCard& card) {
    return card.remarks.isEmpty() ? QString() : QStringLiteral("Obs. ") + card.remarks;
}

std::optional<ClientCard> clientByPhone(Store& store, const QString& phone) {
    return firstClient(store, store.sameText(client::table, client::phone), {phone});
}

std::optional<ClientCard> clientByCode(Store& store, const QString& code) {
    return firstClient(store, client::code + QStringLiteral(" = ?"), {code});
}

void fillFromPhone(Dispatch& d, const ClientCard& card) {
    d.clientContact = card.contact;
    d.clientName = card.name;
    d.clientAddress = card.street;
    d.clientKind = card.kind;
}

void fillFromLookup(Dispatch& d, const ClientCard& card, LookupFor line) {
    const QString address = card.fullAddress();
    switch (line) {
    case LookupFor::Client:
        d.clientPhone = card.phone;
        d.clientContact = card.contact;
        d.clientName = card.name;
        d.clientAddress = address;
        d.pickup.address = address;
        d.delivery.address = address;
        d.clientKind = card.kind;
        break;
    case LookupFor::Pickup:
        d.pickup.address = address;
        d.pickup.phone = card.phone;
        break;
    case LookupFor::Delivery:
        d.delivery.address = address;
        d.delivery.phone = card.phone;
        break;
    }
}

} // namespace rtx::dispatch
