// Step 6 of the schema: the office at a glance reads a month or a year of dispatches and the
// open receivables at every opening. These indexes hold every column those sums read, so the
// database answers from the index alone, in the order of the day, without visiting the rows.

#include "migrations.h"
#include "store.h"

namespace rtx::migration {

void panelIndexes(Store& store) {
    store.execute(QStringLiteral("CREATE INDEX ix_atendimentos_painel ON atendimentos "
                                 "(a2, a20, a18, a3, a19, VE, ST, a6)"));
    // The open bills by due date (their ages) and by client (who owes most).
    store.execute(QStringLiteral("CREATE INDEX ix_contas_receber_vencimento ON contas_receber "
                                 "(c2, c13, c12)"));
    store.execute(QStringLiteral("CREATE INDEX ix_contas_receber_devedor ON contas_receber "
                                 "(c2, c6, c12)"));
}

} // namespace rtx::migration
