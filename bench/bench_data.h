#pragma once
// The large installation the benchmarks run on, filled once and kept in the bench folder:
// 1,000,000 dispatches, 100,000 clients, 500,000 cash movements, 200 couriers.

#include "finance/core/ledger.h"
#include "store/store.h"

namespace rtx::bench {

Store& bigStore();
// Closes it while Qt is still up (the connection must go before the application).
void closeBigStore();

// The bills of a ledger in the large installation, filled once: kBills of them over five
// years from 2020 on, 110 entered a day and a hundred today, half of them open.
constexpr int kBills = 200000;
void fillBills(Store& store, finance::Ledger ledger);

} // namespace rtx::bench
