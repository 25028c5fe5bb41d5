#pragma once
// The dispatch and the service described once against their tables' columns: the one
// description that reads a row, writes it and binds the screen's fields. Kept apart from
// dispatch.h and services.h, which the rules' users include: there Field is the field a
// refusal of Grava points to, not the store's description of a member.

#include "dispatch/core/dispatch.h"
#include "dispatch/core/services.h"
#include "store/record.h"

namespace rtx::dispatch {

// Billing's value of the courier and the posted codes are not the screen's and stand
// outside the description: billing and the posting write them.
const QList<rtx::Field<Dispatch>>& dispatchFields();
const QList<rtx::Field<Service>>& serviceFields();

// One of the four walks by control number (previous and next from no number: empty).
QString walkNumber(Store& store, Walk walk, const QString& from);

} // namespace rtx::dispatch
