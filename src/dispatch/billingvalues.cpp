// Billing lists the dispatches and changes their two values through the dispatch core. It
// stands below dispatch and cannot reach it; the program hands it those functions as it
// starts, from here, since the whole screen library is linked in.

#include "dispatch/core/billedvalues.h"

namespace {

const bool handed = (rtx::dispatch::handToBilling(), true);

} // namespace
