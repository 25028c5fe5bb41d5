// The office at a glance on the large installation: the figures of a month and of a year
// (400 dispatches a day, 146,000 in a year), from the database alone and with the screen
// drawing its charts.

#include "bench.h"
#include "bench_data.h"
#include "panel/core/figures.h"
#include "panel/painel.h"

#include <QApplication>
#include <QDateEdit>

using namespace rtx;
using namespace rtx::bench;
using namespace Qt::Literals::StringLiterals;

RTX_BENCH("painel") {
    Store& store = bigStore();
    fillBills(store, finance::Ledger::Receivables);
    const QDate today(2024, 12, 31);
    const panel::Period month{QDate(2024, 6, 1), QDate(2024, 6, 30)};
    const panel::Period year{QDate(2024, 1, 1), today};

    report(u"Painel: números de um mês (12.000 atendimentos)"_s,
           medianMs(11, [&] { panel::load(store, month, today); }), 150);
    report(u"Painel: números de um ano (146.000 atendimentos)"_s,
           medianMs(5, [&] { panel::load(store, year, today); }), 500);

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
