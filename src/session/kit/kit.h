#pragma once
// The shared screen kit in one include: actions that settle the fields first, dialogs and
// store errors, field behaviours, masked fields, lists and tab folders.

#include "session/kit/actions.h"
#include "session/kit/dialogs.h"
#include "session/kit/fields.h"
#include "session/kit/grids.h"
#include "session/kit/maskedbox.h"
#include "session/kit/moneyinput.h"
#include "session/kit/named.h"
#include "session/kit/sstab.h"
