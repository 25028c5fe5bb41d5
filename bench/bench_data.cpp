#include "bench_data.h"
#include "finance/core/ledger.h"

#include "bench.h"
#include "store/formats.h"
#include "store/installation.h"

#include <QDir>
#include <QRandomGenerator>
#include <cstdio>
#include <memory>

namespace rtx::bench {

namespace {

constexpr int kDispatches = 1000000;
constexpr int kClients = 100000;
constexpr int kCash = 500000;
constexpr int kCouriers = 200;

void fill(Store& store, const QString& table, int rows, const QStringList& columns,
          const std::function<QVariantList(int)>& row) {
    std::printf("   preenchendo %s com %d linhas...\n", qPrintable(table), rows);
    std::fflush(stdout);
    // Many rows per statement: a fill of a million rows is a few hundred round trips.
    UnitOfWork unit(store);
    const int per = Store::rowsPerStatement(int(columns.size()));
    QList<QVariantList> batch;
    for (int i = 0; i < rows; ++i) {
        batch << row(i);
        if (batch.size() == per || i + 1 == rows) {
            store.insertRows(table, columns, batch);
            batch.clear();
        }
    }
    unit.commit();
    // A PostgreSQL table just filled has no statistics nor a map of its visible pages
    // (counting its rows would read them all); an office's tables have both.
    if (store.engine() == Engine::PostgreSQL)
        store.execute(QStringLiteral("VACUUM ANALYZE %1").arg(table));
}

} // namespace

namespace {
std::unique_ptr<Store> g_bigStore;
} // namespace

void closeBigStore() {
    Store::setCurrent(nullptr);
    g_bigStore.reset();
}

Store& bigStore() {
    std::unique_ptr<Store>& store = g_bigStore;
    if (store) return *store;
    const QString folder = QDir(workFolder()).filePath(QStringLiteral("grande"));
    Installation inst(folder);
    // On PostgreSQL there is no file: the count of dispatches tells a filled installation.
    const bool fresh = inst.connectionSettings().engine == Engine::SQLite &&
                       !QFile::exists(inst.path(QStringLiteral("rotalix.db")));
    QDir().mkpath(folder);
    store = std::make_unique<Store>(inst.connectionSettings());
    Store::setCurrent(store.get());
    inst.initialise(*store);
    if (fresh || store->count(QStringLiteral("atendimentos")) < kDispatches) {
        store->execute(QStringLiteral("DELETE FROM atendimentos"));
        store->execute(QStringLiteral("DELETE FROM clientes"));
        store->execute(QStringLiteral("DELETE FROM caixa"));
        store->execute(QStringLiteral("DELETE FROM motoqueiros"));
        QRandomGenerator rng(42);
        const QDate start(2020, 1, 1);
        fill(*store, QStringLiteral("motoqueiros"), kCouriers,
             {QStringLiteral("CODIGO"), QStringLiteral("C1"), QStringLiteral("C4"),
              QStringLiteral("C5"), QStringLiteral("C25"), QStringLiteral("C28")},
             [](int i) -> QVariantList {
                 return {padCode(i + 1, 5),
                         i % 10 == 9 ? QStringLiteral("INATIVO") : QStringLiteral("ATIVO"),
                         QStringLiteral("MOTO%1").arg(i, 3, 10, QLatin1Char('0')),
                         QStringLiteral("ENTREGADOR NÚMERO %1").arg(i),
                         QStringLiteral("Livre"),
                         qint64(800 + i % 5 * 100)};
             });
        fill(*store, QStringLiteral("clientes"), kClients,
             {QStringLiteral("CODIGO"), QStringLiteral("C1"), QStringLiteral("C5"),
              QStringLiteral("C8"), QStringLiteral("C14"), QStringLiteral("C3")},
             [&](int i) -> QVariantList {
                 return {padCode(i + 1, 5),
                         QStringLiteral("ATIVO"),
                         QStringLiteral("CLIENTE %1 %2").arg(QChar(u'A' + i % 26)).arg(i),
                         QStringLiteral("11%1").arg(30000000 + i),
                         QStringLiteral("RUA %1").arg(i % 977),
                         QStringLiteral("%1").arg(10000000000LL + i)};
             });
        fill(*store, QStringLiteral("atendimentos"), kDispatches,
             {QStringLiteral("CODIGO"), QStringLiteral("a1"), QStringLiteral("a2"),
              QStringLiteral("a3"), QStringLiteral("a4"), QStringLiteral("a6"),
              QStringLiteral("a18"), QStringLiteral("a19"), QStringLiteral("a20"),
              QStringLiteral("a21"), QStringLiteral("ST"), QStringLiteral("VE"),
              QStringLiteral("moto")},
             [&](int i) -> QVariantList {
                 const int c = int(rng.bounded(kClients));
                 return {padCode(i + 1, 7),
                         QStringLiteral("ADMIN"),
                         start.addDays(i / 400),
                         QStringLiteral("10:00"),
                         QStringLiteral("11%1").arg(30000000 + c),
                         QStringLiteral("CLIENTE %1 %2").arg(QChar(u'A' + c % 26)).arg(c),
                         QStringLiteral("MOTO%1").arg(int(rng.bounded(kCouriers)), 3, 10,
                                                      QLatin1Char('0')),
                         qint64(2500),
                         i % 3 ? QStringLiteral("FATURAR") : QStringLiteral("A VISTA"),
                         QStringLiteral("ENTREGA"),
                         i % 7 ? QStringLiteral("Entregue") : QStringLiteral("A caminho"),
                         qint64(900),
                         qint64(0)};
             });
        fill(*store, QStringLiteral("caixa"), kCash,
             {QStringLiteral("codigo"), QStringLiteral("A1"), QStringLiteral("A2"),
              QStringLiteral("A3"), QStringLiteral("A5"), QStringLiteral("A6"),
              QStringLiteral("A7")},
             [&](int i) -> QVariantList {
                 return {padCode(i + 1, 7),
                         start.addDays(i / 200),
                         i % 4 ? QStringLiteral("CRÉDITO") : QStringLiteral("DÉBITO"),
                         padCode(i + 1, 7),
                         qint64(1000 + rng.bounded(50000)),
                         QStringLiteral("MOVIMENTO"),
                         QStringLiteral("RECEITAS")};
             });
        store->execute(QStringLiteral("ANALYZE"));
    }
    return *store;
}

using namespace Qt::Literals::StringLiterals;

void fillBills(Store& store, finance::Ledger ledger) {
    const finance::LedgerKind& k = finance::kindOf(ledger);
    if (store.count(k.table) >= kBills) return;
    store.execute(u"DELETE FROM %1"_s.arg(k.table));
    QRandomGenerator rng(7);
    const QDate start(2020, 1, 1);
    const QDate today = QDate::currentDate();
    fill(store, k.table, kBills,
         {u"codigo"_s, u"c1"_s, u"c2"_s, u"c3"_s, u"c4"_s, u"c5"_s, u"c6"_s, u"c7"_s, u"c12"_s,
          u"c13"_s, u"c16"_s},
         [&](int i) -> QVariantList {
             return {padCode(i + 1, 5),
                     i >= kBills - 100 ? today : start.addDays(i / 110),
                     i % 2 ? k.open : k.settled,
                     padCode(i + 1, 7),
                     u"BETO"_s,
                     u"CONTA %1"_s.arg(i),
                     u"CLIENTE %1 %2"_s.arg(QChar(u'A' + i % 26)).arg(i % 5000),
                     i % 3 ? u"DESPESAS"_s : u"FROTA"_s,
                     qint64(1000 + rng.bounded(90000)),
                     start.addDays(i / 110 + 30),
                     qint64(0)};
         });
    store.execute(u"ANALYZE"_s);
}

} // namespace rtx::bench
