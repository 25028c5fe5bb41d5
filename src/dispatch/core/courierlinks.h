#pragma once
// The dispatch in the courier's hand: the job as a WhatsApp message to his mobile, and the
// route from the pickup to the delivery on the map, both as web addresses the desktop's
// browser opens. The texts and addresses are pure functions of the dispatch; the two
// links read the courier's telephones and the company's city from their registers.

#include "dispatch/core/dispatch.h"
#include "store/store.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::dispatch {

// The area code (DDD) of the office: from the company's telephone. Empty when it has none.
QString officeAreaCode(const QString& companyPhone);

// The first of the telephones that is a Brazilian mobile, as WhatsApp wants it: 55, the area
// code and the nine digits ("5511987654321"). A number typed without area code takes the
// office's; the country code, the trunk 0 and a carrier code are taken off. Landlines and
// numbers that cannot be read give nothing.
std::optional<QString> mobileNumber(const QStringList& phones, const QString& areaCode);

// The dispatch as the courier reads it: number, client, pickup and delivery with their
// contacts and tasks, service, remarks, return, and the amount to collect when the client
// pays cash. Lines hold only what was filled in.
QString dispatchMessage(const Dispatch& dispatch);

// https://wa.me/<digits>?text=<the text, percent-encoded as UTF-8>
QString whatsAppUrl(const QString& mobile, const QString& text);

// A Google Maps route from one address to the other, each placed in the city given (the
// company's, where the couriers ride), e.g. "RUA A, 10, São Paulo - SP".
QString routeUrl(const QString& from, const QString& to, const QString& city, const QString& state);

// A link for a button: the address to open, or why there is none.
struct CourierLink {
    QString url;
    QString problem;
};

// The WhatsApp link of a saved dispatch to its courier's mobile (his register's telephones,
// the first that is a mobile). Reads the courier and company registers; throws StoreError.
CourierLink whatsAppLink(Store& store, const Dispatch& dispatch);
// The route of a dispatch, in the company's city.
CourierLink routeLink(Store& store, const Dispatch& dispatch);

} // namespace rtx::dispatch
