// Step 3 of the schema: the bills entered on a day are found by the day of entry, for the
// list the payables and receivables show at opening.

#include "migrations.h"
#include "store.h"

namespace rtx::migration {

void entryDateIndexes(Store& store) {
    store.execute(QStringLiteral("CREATE INDEX ix_contas_pagar_c1 ON contas_pagar (c1)"));
    store.execute(QStringLiteral("CREATE INDEX ix_contas_receber_c1 ON contas_receber (c1)"));
}

} // namespace rtx::migration
