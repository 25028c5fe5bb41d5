// Step 4 of the schema: a dispatch keeps the codes of the finance rows its money was posted
// in. The number in the rows' document is not enough to find them again: deleting the
// highest dispatch gives its number to the next one, which must not take over the money of
// the one deleted. Dispatches saved before this step have no codes (null) and are still
// found by their number.

#include "migrations.h"
#include "store.h"

namespace rtx::migration {

void dispatchPostedRows(Store& store) {
    store.execute(QStringLiteral("ALTER TABLE atendimentos ADD COLUMN lanc TEXT"));
}

} // namespace rtx::migration
