#pragma once
// The shared screen kit in one include: actions that settle the fields first, dialogs and
// store errors, field behaviours, masked fields, lists and tab folders.

#include "kit/actions.h"
#include "kit/dialogs.h"
#include "kit/fields.h"
#include "kit/grids.h"
#include "kit/maskedbox.h"
#include "kit/moneyinput.h"
#include "kit/named.h"
#include "kit/refresh.h"
#include "kit/sstab.h"
