#pragma once
// The client of a dispatch, found in the client register by the telephone typed on the
// dispatch screen or picked by name in the lookup, and what each way fills.

#include "dispatch/core/dispatch.h"
#include "store/store.h"

#include <QString>
#include <optional>

namespace rtx::dispatch {

// The columns of the client register that dispatch reads.
namespace client {
inline const QString table = QStringLiteral("clientes");
inline const QString code = QStringLiteral("CODIGO");
inline const QString name = QStringLiteral("C5");
inline const QString contact = QStringLiteral("C7");
inline const QString phone = QStringLiteral("C8");
inline const QString street = QStringLiteral("C14");
inline const QString district = QStringLiteral("C15");
inline const QString kind = QStringLiteral("C25");
inline const QString remarks = QStringLiteral("C31");
} // namespace client

// What a dispatch takes from a client.
struct ClientCard {
    QString code;
    QString name;
    QString contact;
    QString phone;
    QString street;
    QString district;
    QString kind;
    QString remarks; // shown to the operator as "Obs. ..." when not empty
    // The address of the lookup: street, two blanks, district.
    QString fullAddress() const { return street + QStringLiteral("  ") + district; }
};

// What the operator is shown of a client's remarks: "Obs. " and the remarks; nothing when
// there are none.
QString remarksNotice(const ClientCard& card);

// The first client (by code) with that telephone; none when there is none. Throws
// StoreError.
std::optional<ClientCard> clientByPhone(Store& store, const QString& phone);
std::optional<ClientCard> clientByCode(Store& store, const QString& code);

// The telephone fill: contact, name, the street alone, and the kind of client. Pickup and
// delivery are left alone.
void fillFromPhone(Dispatch& dispatch, const ClientCard& card);

// Which line of the dispatch screen opened the lookup.
enum class LookupFor { Client = 1, Pickup = 2, Delivery = 3 };

// The lookup's fill: the client line also presets pickup and delivery to the client's own
// address; the pickup and the delivery take the address and the telephone.
void fillFromLookup(Dispatch& dispatch, const ClientCard& card, LookupFor line);

} // namespace rtx::dispatch
