// The client register on a large installation (100,000 clients): a key press in a search box
// of the search tab, from the first letter (every client matches) to a nearly unique
// prefix, and the box emptied again; beside it the same statements read whole, as a grid
// that reads every matching row before showing one would.

#include "bench.h"
#include "bench_data.h"
#include "kit/sstab.h"
#include "registers/cliente.h"
#include "registers/core/parties.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>
#include <vector>

using namespace rtx;
using namespace rtx::bench;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;

namespace {

// One key as the keyboard gives it, then whatever the screen has to paint.
void press(QLineEdit* box, QChar c) {
    const bool erase = c == u'\b';
    QKeyEvent down(QEvent::KeyPress, erase ? Qt::Key_Backspace : Qt::Key_unknown, Qt::NoModifier,
                   erase ? QString() : QString(c));
    QApplication::sendEvent(box, &down);
    QKeyEvent up(QEvent::KeyRelease, erase ? Qt::Key_Backspace : Qt::Key_unknown, Qt::NoModifier,
                 erase ? QString() : QString(c));
    QApplication::sendEvent(box, &up);
    QApplication::processEvents();
}

struct Figures {
    double median = 0;
    double worst = 0;
};

// Types the text into the box key by key and erases it again, some rounds over; the time
// of every key.
Figures typeRounds(QLineEdit* box, const QString& text, int rounds) {
    std::vector<double> times;
    for (int r = 0; r < rounds; ++r) {
        for (QChar c : text)
            times.push_back(medianMs(1, [&] { press(box, c); }));
        for (qsizetype i = 0; i < text.size(); ++i)
            times.push_back(medianMs(1, [&] { press(box, u'\b'); }));
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.back()};
}

} // namespace

RTX_BENCH("registers") {
    Store& store = bigStore();
    cliente screen;
    screen.show();
    QApplication::processEvents();
    screen.findChild<SSTab*>(u"SSTab1"_s)->setTab(2);
    auto* name = screen.findChild<QLineEdit*>(u"X1"_s);
    auto* number = screen.findChild<QLineEdit*>(u"X2"_s);
    name->setFocus();
    QApplication::processEvents();

    const QString typed = u"cliente m 12"_s;
    const Figures byName = typeRounds(name, typed, 5);
    report(u"tecla na busca pelo nome (\"cliente m 12\", 100.000), mediana"_s, byName.median, 30);
    report(u"tecla na busca pelo nome, a mais lenta (inclui a caixa vazia)"_s, byName.worst, 30);
    const Figures byNumber = typeRounds(number, u"100000123"_s, 5);
    report(u"tecla na busca pelo CNPJ/CPF, mediana"_s, byNumber.median, 30);
    report(u"tecla na busca pelo CNPJ/CPF, a mais lenta"_s, byNumber.worst, 30);

    // The old way for comparison: every matching row read before any is shown.
    for (const QString& prefix : {u"cliente m 1"_s, u"cliente m"_s, QString()}) {
        qint64 rows = 0;
        const double ms = medianMs(3, [&] {
            const PageQuery q = registers::partySearch(store, registers::Party::Client,
                                                       registers::SearchBy::Name, prefix);
            Recordset rs = store.open(u"SELECT * FROM %1 WHERE %2 ORDER BY %3"_s.arg(
                                          q.table, q.where, store.sortKey(q.table, u"C5"_s)),
                                      q.params);
            rows = rs.recordCount();
        });
        report(u"o mesmo lendo todas as linhas (\"%1\", %2 linhas)"_s.arg(prefix).arg(rows), ms,
               30);
    }
}
