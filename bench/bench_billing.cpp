// Billing on a large installation: 200,000 receivables and 1,000,000 dispatches. The list of
// all clients for one month and a write-off of 1,000 rows, each beside the old way: the
// whole table walked in code for the list, two opens and an unguarded write per row for the
// write-off.

#include "bench.h"
#include "bench_data.h"
#include "finance/core/billing.h"
#include "finance/core/ledger.h"
#include "store/formats.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>

using namespace rtx;
using namespace rtx::bench;
using namespace Qt::Literals::StringLiterals;
namespace fin = rtx::finance;

namespace {

// Puts the rows written off back as they were, and takes their credits out of the book. The
// fill gives no row a date of receipt, so every row with one was written off here, by this
// run or by one cut short.
void reopen(Store& store) {
    UnitOfWork unit(store);
    store.execute(u"UPDATE contas_receber SET c2 = ?, c15 = NULL, c16 = 0 WHERE c15 IS NOT NULL"_s,
                  {fin::kindOf(fin::Ledger::Receivables).open});
    store.execute(u"DELETE FROM caixa WHERE A7 = ?"_s, {fin::billingGroup});
    unit.commit();
}

} // namespace

RTX_BENCH("billing") {
    Store& store = bigStore();
    fillBills(store, fin::Ledger::Receivables);
    const QDate from(2023, 6, 1);
    const QDate to(2023, 6, 30);

    int listed = 0;
    const double list =
        medianMs(21, [&] { listed = int(fin::openReceivables(store, from, to).size()); });
    report(
        u"cobra: contas de todos os clientes de um mês (200.000 contas, %1 abertas no mês)"_s.arg(
            listed),
        list, 50);
    const double oldList = medianMs(3, [&] {
        // The old way: every receivable read in the order of entry and filtered in code.
        Recordset rs = store.open(u"SELECT * FROM contas_receber ORDER BY c1"_s);
        int n = 0;
        for (; !rs.eof(); rs.moveNext()) {
            const auto entered = rs.date(u"c1"_s);
            if (entered && *entered >= from && *entered <= to && rs.text(u"c2"_s) == u"A receber"_s)
                ++n;
        }
    });
    report(u"   o mesmo lendo a tabela inteira (razão %1x)"_s.arg(oldList / list, 0, 'f', 1),
           oldList, 50);

    // A write-off of 1,000 open rows of 2022.
    QList<fin::WriteOff> rows;
    for (const fin::BillingRow& r :
         fin::openReceivables(store, QDate(2022, 1, 1), QDate(2022, 12, 31)).mid(0, 1000))
        rows.append({r.document, r.amount, r.client});
    reopen(store);
    QList<double> times;
    for (int i = 0; i < 3; ++i) {
        const qint64 sent = store.statementCount();
        QElapsedTimer clock;
        clock.start();
        fin::writeOff(store, rows);
        times << double(clock.nsecsElapsed()) / 1e6;
        noteStatements(store.statementCount() - sent);
        reopen(store);
    }
    std::sort(times.begin(), times.end());
    const double writeOff = times[1];
    report(
        u"cobra: baixa de %1 contas com seus créditos no caixa (uma transação)"_s.arg(rows.size()),
        writeOff, 1000);
    // The old way, on a fifth of the rows and scaled: per row an open of the receivables by
    // code with an edit of each, then the next cash code by a walk and the credit, each
    // write on its own.
    const QList<fin::WriteOff> some = rows.mid(0, 200);
    const double oldWriteOff =
        medianMs(1,
                 [&] {
                     const QDate today = QDate::currentDate();
                     for (const fin::WriteOff& r : some) {
                         Recordset rs = store.open(u"SELECT * FROM contas_receber WHERE "_s +
                                                       store.sameText(u"contas_receber"_s, u"c3"_s),
                                                   {r.document});
                         for (; !rs.eof(); rs.moveNext()) {
                             rs.edit();
                             rs.setValue(u"c2"_s, u"Recebida"_s);
                             rs.setValue(u"c16"_s, r.amount);
                             rs.setValue(u"c15"_s, today);
                             rs.update();
                         }
                         const qint64 next =
                             store.scalar(u"SELECT MAX(CAST(codigo AS BIGINT)) FROM caixa"_s)
                                 .toLongLong() +
                             1;
                         store.insert(u"caixa"_s, {{u"codigo"_s, padCode(next, 7)},
                                                   {u"A1"_s, today},
                                                   {u"A2"_s, fin::credit},
                                                   {u"A3"_s, r.document},
                                                   {u"A5"_s, r.amount},
                                                   {u"A6"_s, r.client},
                                                   {u"A7"_s, fin::billingGroup}});
                     }
                 }) *
        double(rows.size()) / double(some.size());
    reopen(store);
    report(u"   o mesmo linha a linha, sem transação (200 linhas, escalado; razão %1x)"_s.arg(
               oldWriteOff / writeOff, 0, 'f', 1),
           oldWriteOff, 1000);
}
