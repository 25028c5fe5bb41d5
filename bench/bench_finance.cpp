// The finance screens on a large installation: 500,000 cash movements and 200,000 payables
// and receivables each. Iniciar of a day in CAIXA, a year's search in Pagar, and the list
// Pagar shows at opening; each beside the old way, which summed or walked the whole table.

#include "bench.h"
#include "bench_data.h"
#include "finance/caixa.h"
#include "finance/contas.h"
#include "finance/core/ledger.h"
#include "kit/maskedbox.h"
#include "store/formats.h"

#include <QApplication>
#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <cstdio>

using namespace rtx;
using namespace rtx::bench;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
namespace fin = rtx::finance;

RTX_BENCH("finance") {
    Store& store = bigStore();
    fillBills(store, fin::Ledger::Payables);
    fillBills(store, fin::Ledger::Receivables);

    // Iniciar of a day in the middle of the book.
    CAIXA cash;
    cash.show();
    QApplication::processEvents();
    const QDate day(2023, 6, 15);
    auto* dayField = cash.findChild<MaskEdBox*>(u"A1"_s);
    const double start = medianMs(21, [&] {
        dayField->setText(formatDate(day));
        cash.start();
    });
    report(u"CAIXA: Iniciar de um dia (500.000 movimentos)"_s, start, 10);
    const double oldStart = medianMs(5, [&] {
        // The old way: the sums of every movement before the day, then the day.
        for (const QString& word : {fin::debit, fin::credit})
            store.scalar(u"SELECT SUM(A5) FROM caixa WHERE A1 BETWEEN ? AND ? AND A2 = ?"_s,
                         {fin::bookStart(), day.addDays(-1), word});
        store.open(u"SELECT * FROM caixa WHERE A1 BETWEEN ? AND ? ORDER BY codigo"_s, {day, day});
    });
    report(u"   o mesmo somando o livro inteiro (razão %1x)"_s.arg(oldStart / start, 0, 'f', 1),
           oldStart, 10);

    // A year's search of the payables.
    Pagar payables;
    payables.show();
    QApplication::processEvents();
    auto* from = payables.findChild<MaskEdBox*>(u"k1"_s);
    auto* to = payables.findChild<MaskEdBox*>(u"k2"_s);
    from->setText(u"01/01/2023"_s);
    to->setText(u"31/12/2023"_s);
    const double search = medianMs(11, [&] { payables.find(fin::BillFilter::Period); });
    report(u"Pagar: pesquisa de um ano (200.000 contas, %1 no ano)"_s.arg(
               fin::listTotal(store, fin::billSearch(store, fin::Ledger::Payables,
                                                     {fin::BillFilter::Period,
                                                      QDate(2023, 1, 1),
                                                      QDate(2023, 12, 31),
                                                      false,
                                                      {}})) > 0
                   ? u"com contas"_s
                   : u"sem contas"_s),
           search, 50);
    const double oldSearch = medianMs(3, [&] {
        // The old way: the whole table read in the due date's order, filtered row by row.
        Recordset rs = store.open(u"SELECT * FROM contas_pagar ORDER BY c13"_s);
        qint64 total = 0;
        for (; !rs.eof(); rs.moveNext()) {
            const auto due = rs.date(u"c13"_s);
            if (due && *due >= QDate(2023, 1, 1) && *due <= QDate(2023, 12, 31) &&
                rs.text(u"c2"_s) == u"A pagar"_s)
                total += rs.cents(u"c12"_s);
        }
    });
    report(u"   o mesmo lendo a tabela inteira (razão %1x)"_s.arg(oldSearch / search, 0, 'f', 1),
           oldSearch, 50);

    // The list at opening: today's new bills.
    const double list = medianMs(21, [&] {
        const PageQuery q = fin::newBills(store, fin::Ledger::Payables);
        store.page(q, {}, DBGrid::pageSize());
        fin::listTotal(store, q);
    });
    report(u"Pagar: lista da abertura (contas lançadas hoje)"_s, list, 20);
    const double oldList = medianMs(3, [&] {
        Recordset rs = store.open(u"SELECT * FROM contas_pagar ORDER BY c1"_s);
        qint64 total = 0;
        const QDate today = QDate::currentDate();
        for (; !rs.eof(); rs.moveNext())
            if (rs.date(u"c1"_s) == today && rs.text(u"c2"_s) == u"A pagar"_s)
                total += rs.cents(u"c12"_s);
    });
    report(u"   o mesmo lendo a tabela inteira (razão %1x)"_s.arg(oldList / list, 0, 'f', 1),
           oldList, 20);
}
