#pragma once
// The large installation the benchmarks run on, filled once and kept in the bench folder:
// 1,000,000 dispatches, 100,000 clients, 500,000 cash movements, 200 couriers.

#include "store/store.h"

namespace rtx::bench {

Store& bigStore();
// Closes it while Qt is still up (the connection must go before the application).
void closeBigStore();

} // namespace rtx::bench
