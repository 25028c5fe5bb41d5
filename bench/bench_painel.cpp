// The office at a glance on the large installation: the figures of a month and of a year
// (400 dispatches a day, 146,000 in a year), from the database alone and with the screen
// drawing its charts.

#include "bench.h"
#include "bench_data.h"
#include "panel/core/figures.h"
#include "panel/painel.h"

#include <QApplication>
#include <QDateEdit>
#include <cstdio>
#include <ctime>
#include <functional>

using namespace rtx;
using namespace rtx::bench;
using namespace Qt::Literals::StringLiterals;

RTX_BENCH("painel") {
    Store& store = bigStore();
    fillBills(store, finance::Ledger::Receivables);
    const QDate today(2024, 12, 31);
    const panel::Period month{QDate(2024, 6, 1), QDate(2024, 6, 30)};
    const panel::Period year{QDate(2024, 1, 1), today};

    // The wall time, and the processor's time of this program beside it: on a machine
    // shared with other work the wall time also holds the waits for a free core. (On
    // PostgreSQL the server's work is not in this program's processor time.)
    auto measure = [&](const QString& what, int times, double target,
                       const std::function<void()>& call) {
        const std::clock_t start = std::clock();
        const double wall = medianMs(times, call);
        const double cpu = 1000.0 * double(std::clock() - start) / CLOCKS_PER_SEC / times;
        report(what, wall, target);
        std::printf("   tempo de processador deste programa: %.1f ms por vez\n", cpu);
    };
    measure(u"Painel: números de um mês (12.000 atendimentos)"_s, 11, 150,
            [&] { panel::load(store, month, today); });
    measure(u"Painel: números de um ano (146.000 atendimentos)"_s, 5, 500,
            [&] { panel::load(store, year, today); });

    // The screen as the user opens it, on a month, and on a year chosen in the calendar.
    report(u"Painel: abrir a tela no mês, com os gráficos"_s,
           medianMs(5,
                    [&] {
                        ui::Painel screen(nullptr, QDate(2024, 6, 30));
                        screen.show();
                        QApplication::processEvents();
                    }),
           150);
    ui::Painel screen(nullptr, today);
    screen.show();
    QApplication::processEvents();
    auto* from = screen.findChild<QDateEdit*>(u"txtDe"_s);
    auto* to = screen.findChild<QDateEdit*>(u"txtAte"_s);
    report(u"Painel: um ano escolhido no calendário, com os gráficos"_s,
           medianMs(5,
                    [&] {
                        from->setDate(year.from);
                        to->setDate(year.to);
                        screen.showChosenRange();
                        QApplication::processEvents();
                    }),
           500);
}
