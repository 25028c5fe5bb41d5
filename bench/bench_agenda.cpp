// The agenda and the backup on large data: the agenda's load among 100,000 entries, and
// the day's backup of the large installation (1,000,000 dispatches) beside a plain copy of
// its database file.

#include "agenda/agenda.h"
#include "agenda/core/agenda.h"
#include "bench.h"
#include "bench_data.h"
#include "output/core/backup.h"
#include "store/installation.h"

#include <QDir>
#include <QFile>
#include <cstdio>
#include <memory>

using namespace rtx;
using namespace rtx::bench;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kEntries = 100000;

// 100,000 entries over ten years around today, a few a day, kept between runs.
std::unique_ptr<Store> agendaStore() {
    const QString folder = QDir(workFolder()).filePath(u"agenda"_s);
    QDir().mkpath(folder);
    Installation inst(folder);
    auto store = std::make_unique<Store>(inst.connectionSettings());
    inst.initialise(*store);
    if (store->count(agenda::entriesTable) < kEntries) {
        store->execute(u"DELETE FROM agenda"_s);
        const QDate first = QDate::currentDate().addYears(-5);
        UnitOfWork unit(*store);
        for (int i = 0; i < kEntries; ++i)
            store->execute(u"INSERT INTO agenda (CODIGO, A1, A2, A3, A4, A5, OB) "
                           u"VALUES (?, ?, ?, ?, ?, ?, ?)"_s,
                           {u"%1"_s.arg(i + 1, 7, 10, QLatin1Char('0')), first.addDays(i / 27),
                            u"%1:00"_s.arg(8 + i % 10, 2, 10, QLatin1Char('0')), u"DIRETORIA"_s,
                            u"ABERTA"_s, u"REUNIÃO %1"_s.arg(i % 50), u"Compromisso"_s});
        unit.commit();
    }
    return store;
}

} // namespace

RTX_BENCH("agenda") {
    {
        std::unique_ptr<Store> store = agendaStore();
        Store::setCurrent(store.get());
        report(u"abertura da AGENDA entre 100.000 compromissos"_s,
               medianMs(21, [] { ui::AGENDA screen; }), 50);
        Store::setCurrent(nullptr);
    }

    Store& big = bigStore();
    const QString folder = QDir(workFolder()).filePath(u"grande"_s);
    const Installation inst(folder);
    big.execute(u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
    const QString live = inst.path(u"rotalix.db"_s);
    const QString plain = QDir(workFolder()).filePath(u"copia-simples.db"_s);
    const double copyMs = medianMs(3, [&] {
        QFile::remove(plain);
        if (!QFile::copy(live, plain)) std::abort();
    });
    QFile::remove(plain);
    const QDate day(2000, 1, 1);
    const double backupMs = medianMs(3, [&] {
        try {
            output::runBackup(inst, big.settings(), day);
        } catch (const output::BackupError& e) {
            std::fprintf(stderr, "%s\n", qPrintable(e.text()));
            std::abort();
        }
    });
    QDir(inst.path(output::backupFolderName(day))).removeRecursively();
    // The plain copy is the yardstick, not a target of its own.
    std::printf("%-70s %10.3f ms\n",
                "cópia simples do arquivo do banco (1.000.000 de atendimentos)", copyMs);
    report(u"backup do dia (1.000.000 de atendimentos)"_s, backupMs, 2 * copyMs);
    std::printf("backup / cópia simples: %.2f (meta: abaixo de 2)\n", backupMs / copyMs);
}
