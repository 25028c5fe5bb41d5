// The office at a glance: the periods, and every panel's figures against the rows themselves
// read one by one and summed here, over a generated month with its awkward rows (no time, no
// courier, names in other capitals, receivables on each edge of an age), on the engine of
// the run; the screen with its buttons, its refresh and the rows behind a click.

#include "dispatch/atendimento.h"
#include "dispatch/core/rules.h"
#include "finance/cobra.h"
#include "kit/grids.h"
#include "panel/core/figures.h"
#include "panel/painel.h"
#include "scriptedprompter.h"
#include "session/core/current.h"
#include "store/changes.h"
#include "store/formats.h"
#include "store/migrations.h"
#include "testinstall.h"

#include <QChartView>
#include <QDateEdit>
#include <QImage>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QtTest>
#include <map>
#include <numeric>

using namespace rtx;
using namespace rtx::panel;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

const QDate kToday(2025, 2, 20); // a Thursday

// The figures of a period summed here from the dispatch rows, one by one.
struct Summed {
    QList<int> perDay;
    std::array<int, 24> perHour{};
    std::map<QDate, Revenue> revenue;           // by the day or the month it starts
    std::map<QString, CourierFigures> couriers; // by upper-case name
    std::map<QString, qint64> clients;          // by upper-case name
};

QString key(const QString& name, const QString& blank) {
    const QString n = name.trimmed();
    return n.isEmpty() ? blank.toUpper() : n.toUpper();
}

Summed summed(Store& store, const Period& p) {
    Summed s;
    s.perDay = QList<int>(p.days(), 0);
    Recordset rs = store.open(
        u"SELECT a2, a3, a6, a18, a19, a20, ST, VE, minutos_entrega FROM atendimentos"_s);
    for (; !rs.eof(); rs.moveNext()) {
        const QDate d = *rs.date(u"a2"_s);
        if (d < p.from || d > p.to) continue;
        ++s.perDay[p.from.daysTo(d)];
        bool ok = false;
        const int h = rs.text(u"a3"_s).left(2).toInt(&ok);
        if (ok && h >= 0 && h < 24) ++s.perHour[h];
        const qint64 value = rs.cents(u"a19"_s), fee = rs.cents(u"VE"_s);
        s.clients[key(rs.text(u"a6"_s), noClient)] += value;
        Revenue& r = s.revenue[byMonth(p) ? QDate(d.year(), d.month(), 1) : d];
        (rs.text(u"a20"_s).toUpper() == u"A VISTA"_s ? r.cash : r.invoiced) += value;
        r.courierFees += fee;
        CourierFigures& c = s.couriers[key(rs.text(u"a18"_s), noCourier)];
        ++c.dispatches;
        c.earnings += fee;
        if (rs.text(u"ST"_s).toUpper() != u"ENTREGUE"_s) continue;
        ++c.delivered;
        if (rs.isNull(u"minutos_entrega"_s)) continue;
        ++c.timedDeliveries;
        c.deliveryMinutes += rs.value(u"minutos_entrega"_s).toLongLong();
    }
    return s;
}

void compareWithRows(Store& store, const Period& p, const QDate& today) {
    const Figures f = panel::load(store, p, today);
    const Summed s = summed(store, p);
    QCOMPARE(f.perDay, s.perDay);
    QCOMPARE(f.previousPerDay, summed(store, f.previous).perDay);
    QCOMPARE(f.perHour, s.perHour);
    for (const Revenue& r : f.revenue) {
        const Revenue e = s.revenue.count(r.start) ? s.revenue.at(r.start) : Revenue{};
        QCOMPARE(std::tuple(r.cash, r.invoiced, r.courierFees),
                 std::tuple(e.cash, e.invoiced, e.courierFees));
    }
    QCOMPARE(f.couriers.size(), qsizetype(s.couriers.size()));
    for (int i = 0; i < f.couriers.size(); ++i) {
        const CourierFigures& c = f.couriers[i];
        const CourierFigures& e = s.couriers.at(c.name.toUpper());
        QCOMPARE(std::tuple(c.dispatches, c.delivered, c.earnings, c.timedDeliveries,
                            c.deliveryMinutes, c.averageMinutes().has_value()),
                 std::tuple(e.dispatches, e.delivered, e.earnings, e.timedDeliveries,
                            e.deliveryMinutes, e.timedDeliveries > 0));
        if (i > 0) QVERIFY(f.couriers[i - 1].dispatches >= c.dispatches);
    }
    // The ten that bring most: the same amounts as the ten largest sums, most first.
    QList<qint64> largest, shown;
    for (const auto& [name, cents] : s.clients)
        largest << cents;
    QCOMPARE(f.clientsTotal, std::accumulate(largest.begin(), largest.end(), qint64(0)));
    std::sort(largest.begin(), largest.end(), std::greater<>());
    for (const Amount& a : f.topClients) {
        shown << a.cents;
        QCOMPARE(s.clients.at(a.name.toUpper()), a.cents);
    }
    QCOMPARE(shown, largest.mid(0, 10));
}

int g_code = 0;

void dispatchRow(Store& store, const QDate& day, const QString& time, const QString& client,
                 const QString& courier, qint64 value, const QString& payment,
                 const QString& status, qint64 fee) {
    store.execute(u"INSERT INTO atendimentos (CODIGO, a2, a3, a6, a18, a19, a20, ST, VE) "
                  u"VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"_s,
                  {padCode(++g_code, 7), day, time, client, courier, value, payment, status, fee});
}

void receivable(Store& store, const QString& client, qint64 amount, const QVariant& due,
                const QString& status = u"A receber"_s) {
    store.execute(u"INSERT INTO contas_receber (codigo, c2, c6, c12, c13) VALUES (?, ?, ?, ?, ?)"_s,
                  {padCode(++g_code, 5), status, client, amount, due});
}

// February 2025 up to the 20th and some of January, with the rows that go wrong first.
void generateMonth(Store& store) {
    UnitOfWork unit(store);
    const QStringList clients{u"ACME LTDA"_s, u"Acme Ltda"_s,   u"PADARIA SOL"_s,
                              u""_s,          u"BANCO NORTE"_s, u"GRÁFICA ÁGIL"_s};
    const QStringList couriers{u"ZECA"_s, u"zeca"_s, u"BETO"_s, u""_s, u"LUIZ"_s};
    const QStringList statuses{u"Entregue"_s, u"A caminho"_s, u"ENTREGUE"_s, u"Cancelado"_s};
    int n = 0;
    for (QDate d(2025, 1, 6); d <= kToday; d = d.addDays(1)) {
        if (d.dayOfWeek() == 7) continue; // no Sundays: days with nothing stay at zero
        const int count = 2 + (d.day() * 7) % 9;
        for (int k = 0; k < count; ++k, ++n) {
            const QString time = n % 17 == 0 ? QString()
                                 : n % 23 == 0
                                     ? u"9h"_s
                                     : u"%1:%2"_s.arg(7 + (n * 5) % 14, 2, 10, QChar(u'0'))
                                           .arg(n % 60, 2, 10, QChar(u'0'));
            dispatchRow(store, d, time, clients[n % clients.size()],
                        couriers[(n / 2) % couriers.size()], 1500 + (n % 13) * 250,
                        n % 3 ? u"FATURAR"_s : u"A VISTA"_s, statuses[n % statuses.size()],
                        800 + (n % 4) * 100);
        }
    }
    // Receivables on each edge of an age, one settled, one without a due day.
    const QStringList owing{u"ACME LTDA"_s,    u"acme ltda"_s,   u"PADARIA SOL"_s,
                            u"PADARIA SOL"_s,  u"BANCO NORTE"_s, u"BANCO NORTE"_s,
                            u"GRÁFICA ÁGIL"_s, u"GRÁFICA ÁGIL"_s};
    const int late[]{0, 1, 30, 31, 60, 61, 90, 91}; // due today is not late
    for (int i = 0; i < owing.size(); ++i)
        receivable(store, owing[i], 1000 << i, kToday.addDays(-late[i]));
    receivable(store, u"SEM VENCIMENTO"_s, 256000, QVariant(QMetaType(QMetaType::QDate)));
    receivable(store, u"ACME LTDA"_s, 512000, kToday.addDays(-200), u"Recebida"_s);
    unit.commit();
}

// Every change a dispatch row can take, written as any writer writes it: the totals follow.
void changeTheRows(Store& store) {
    UnitOfWork unit(store);
    auto set = [&store](const QString& assignment, const QVariantList& values, int from, int to) {
        QVariantList params = values;
        params << padCode(from, 7) << padCode(to, 7);
        store.execute(u"UPDATE atendimentos SET %1 WHERE CODIGO BETWEEN ? AND ?"_s.arg(assignment),
                      params);
    };
    const int first = QString(store.firstCode(u"atendimentos"_s)).toInt();
    set(u"a6 = ?"_s, {u"CLIENTE NOVO"_s}, first, first + 9);
    set(u"a18 = ?"_s, {u"zeca"_s}, first + 10, first + 19);
    set(u"a18 = NULL"_s, {}, first + 20, first + 22);
    set(u"a19 = a19 + ?, VE = ?"_s, {777, 50}, first + 30, first + 39);
    set(u"a2 = ?"_s, {QDate(2025, 2, 16)}, first + 40, first + 44); // onto a Sunday
    set(u"a2 = ?"_s, {QDate(2024, 6, 1)}, first + 45, first + 49);  // out of every period
    set(u"a2 = NULL"_s, {}, first + 50, first + 51);
    set(u"a3 = ?"_s, {u"23:59"_s}, first + 52, first + 55);
    set(u"a3 = ?"_s, {u"24:00"_s}, first + 56, first + 57);
    set(u"a20 = ?"_s, {u"a vista"_s}, first + 58, first + 63);
    set(u"ST = ?, minutos_entrega = ?"_s, {u"Entregue"_s, 42}, first + 64, first + 70);
    set(u"ST = ?"_s, {u"Cancelado"_s}, first + 66, first + 67); // its minutes go with it
    store.execute(u"DELETE FROM atendimentos WHERE CODIGO BETWEEN ? AND ?"_s,
                  {padCode(first + 80, 7), padCode(first + 99, 7)});
    unit.commit();
}

} // namespace

class TestPainel : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst_;

    Store& store() { return inst_->store(); }

private slots:
    void cleanup() { inst_.reset(); }

    void periodsAndFigures() {
        QCOMPARE(periodOf(Span::Week, QDate(2025, 2, 16)),
                 (Period{QDate(2025, 2, 10), QDate(2025, 2, 16)})); // Sunday closes the week
        // A whole month against the whole month before, however long each is; any other
        // period against as many days just before it.
        QCOMPARE(previousOf({QDate(2025, 3, 1), QDate(2025, 3, 31)}),
                 (Period{QDate(2025, 2, 1), QDate(2025, 2, 28)}));
        QCOMPARE(previousOf({QDate(2025, 2, 1), kToday}),
                 (Period{QDate(2025, 1, 12), QDate(2025, 1, 31)}));
        QVERIFY(!byMonth({QDate(2025, 1, 1), QDate(2025, 3, 3)}));
        QVERIFY(byMonth({QDate(2025, 1, 1), QDate(2025, 3, 4)}));

        inst_ = std::make_unique<TestInstallation>();
        RTX_REQUIRE_INSTALL(*inst_);
        generateMonth(store());
        compareWithRows(store(), periodOf(Span::Month, kToday), kToday);
        compareWithRows(store(), periodOf(Span::LastMonth, kToday), kToday);

        // The rows that go wrong first, told by their own figures.
        const Figures f = panel::load(store(), periodOf(Span::Month, kToday), kToday);
        QCOMPARE(f.ages, (std::array<qint64, AgeCount>{1000 + 256000, 2000 + 4000, 8000 + 16000,
                                                       32000 + 64000, 128000}));
        QCOMPARE(headline(store(), kToday).openReceivables, 511000); // not the settled one
        QCOMPARE(topDebtors(store(), 10).last().cents, 1000 + 2000); // ACME in both capitals
        // No time, or "9h": in the days, not in the hours.
        QVERIFY(std::accumulate(f.perHour.begin(), f.perHour.end(), 0) < f.dispatches());
        QCOMPARE(f.perDay[QDate(2025, 2, 1).daysTo(QDate(2025, 2, 16))], 0); // a Sunday
        const Figures e = panel::load(store(), {QDate(2030, 5, 1), QDate(2030, 5, 31)}, kToday);
        QVERIFY(e.empty());               // a period with nothing in it
        QCOMPARE(e.ages[Over90], 128000); // the receivables are today's, whatever the period
    }

    // The screen: the period buttons, a dispatch saved on this station shown without a touch,
    // the calendar's range, a chart to PNG through the seam, a module refused, and a click
    // on a day opening the rows behind it.
    void theScreen() {
        inst_ = std::make_unique<TestInstallation>();
        RTX_REQUIRE_INSTALL(*inst_);
        generateMonth(store());
        session::start({u"ADMIN"_s, {u"Painel"_s, u"Atendimento"_s}, {}});
        ScriptedPrompter prompts;
        std::unique_ptr<ui::Painel> screen(new ui::Painel(nullptr, kToday));
        screen->show();
        QVERIFY(QTest::qWaitForWindowExposed(screen.get()));
        const Figures& f = screen->figures();

        // A day's point: the dispatch search of that day, with that day's dispatches only.
        const int tenth = 9;
        QVERIFY(f.perDay[tenth] > 0);
        emit qobject_cast<QLineSeries*>(
            screen->chartView(ui::Painel::Days)->chart()->series().last())
            ->clicked(QPointF(tenth + 0.2, f.perDay[tenth]));
        auto* dispatches = qobject_cast<ui::Atendimento*>(screen->openedScreen());
        QVERIFY(dispatches && dispatches->isVisible());
        auto* found = dispatches->findChild<ui::DBGrid*>(u"DBGrid1"_s);
        QCOMPARE(found->recordCount(), f.perDay[tenth]);
        for (int r = 0; r < found->recordCount(); ++r)
            QCOMPARE(found->value(r, u"a2"_s).toDate(), QDate(2025, 2, 10));
        dispatches->close();
        QTRY_VERIFY(!screen->openedScreen());

        auto* periodLabel = screen->findChild<QLabel*>(u"lblPeriodo"_s);
        auto* todayLabel = screen->findChild<QLabel*>(u"lblAtendimentosHoje"_s);
        auto press = [&](const QString& name) {
            QTest::mouseClick(screen->findChild<QPushButton*>(name), Qt::LeftButton);
        };
        press(u"btnHoje"_s);
        QCOMPARE(periodLabel->text(), u"20/02/2025"_s);
        const int today = screen->figures().dispatches();
        dispatchRow(store(), kToday, u"10:00"_s, u"NOVO"_s, u"BETO"_s, 100, u"A VISTA"_s,
                    u"A caminho"_s, 50);
        changes().announce(u"atendimentos"_s);
        QTRY_COMPARE(todayLabel->text(), u"Atendimentos hoje\n%1"_s.arg(today + 1));

        // The calendar's range: typed backwards it is said so and nothing moves.
        screen->findChild<QDateEdit*>(u"txtDe"_s)->setDate(QDate(2030, 5, 10));
        screen->findChild<QDateEdit*>(u"txtAte"_s)->setDate(QDate(2030, 5, 1));
        press(u"btnPeriodo"_s);
        QCOMPARE(prompts.lastText(), u"A data inicial é posterior à final."_s);
        QCOMPARE(periodLabel->text(), u"20/02/2025"_s);

        // A chart to PNG, the file named through the seam.
        QTemporaryDir out;
        prompts.answerText(out.filePath(u"dias.png"_s));
        press(u"btnPng"_s);
        QCOMPARE(QImage(out.filePath(u"dias.png"_s)).size(),
                 screen->chartView(ui::Painel::Days)->size() * 2);
        // The rows behind a chart: refused without the module.
        const int notices = prompts.count(ScriptedPrompter::Kind::Notice);
        screen->openRows(u"Caixa"_s);
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Notice), notices + 1);
        QVERIFY(!screen->openedScreen());
    }

    // The day totals the panel reads, kept by the database: equal to the rows summed here
    // after the rows were already there when the totals began (the step fills them), after
    // every kind of change and a delete by any writer, on the engine of the run.
    void dayTotalsFollowTheRows() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        Store st(db.settings());
        Store::setCurrent(&st);
        const QList<Migration>& all = migrations();
        qsizetype totalsStep = 0;
        while (totalsStep < all.size() && !all[totalsStep].what.contains(u"totais do painel"_s))
            ++totalsStep;
        QVERIFY(totalsStep < all.size());
        migrate(st, all.mid(0, totalsStep));
        generateMonth(st);
        st.execute(u"UPDATE atendimentos SET a18 = NULL WHERE CODIGO = ?"_s,
                   {st.firstCode(u"atendimentos"_s)});
        migrate(st, all);
        const Period whole{QDate(2025, 1, 1), kToday};
        compareWithRows(st, whole, kToday);

        changeTheRows(st);
        for (const Period& p : {periodOf(Span::Month, kToday), periodOf(Span::LastMonth, kToday),
                                Period{QDate(2024, 6, 1), QDate(2024, 6, 1)}, whole})
            compareWithRows(st, p, kToday);
        const Figures f = panel::load(st, periodOf(Span::Month, kToday), kToday);
        QVERIFY(f.perDay[QDate(2025, 2, 1).daysTo(QDate(2025, 2, 16))] > 0); // the moved rows
        QVERIFY(panel::load(st, whole, kToday).perHour[23] >= 4);
        QCOMPARE(headline(st, kToday).dispatchesToday, f.perDay.last());
        Store::setCurrent(nullptr);
    }

    // The moment a saved dispatch becomes "Entregue" is kept with its minutes since it was
    // taken, through Grava and through the status button alike.
    void deliveryTimeIsKept() {
        inst_ = std::make_unique<TestInstallation>();
        RTX_REQUIRE_INSTALL(*inst_);
        const QDate day(2025, 2, 18);
        auto taken = [this, day](const QString& courier, const QString& time,
                                 const QString& status = u"A caminho"_s) {
            dispatch::Dispatch d;
            d.attendant = u"ADMIN"_s;
            d.date = day;
            d.time = time;
            d.clientName = u"PADARIA SOL"_s;
            d.courier = courier;
            d.status = status;
            d.clientValue = 2000;
            d.courierValue = 900;
            dispatch::add(store(), d);
            return d;
        };
        dispatch::Dispatch first = taken(u"ZECA"_s, u"10:00"_s);
        dispatch::Dispatch second = taken(u"ZECA"_s, u"11:30"_s);
        const dispatch::Dispatch thirdOfBeto = taken(u"BETO"_s, u"9h"_s);
        const dispatch::Dispatch typedDelivered = taken(u"BETO"_s, u"08:00"_s, u"Entregue"_s);

        QVERIFY(dispatch::setStatus(store(), first.number, u"Entregue"_s,
                                    QDateTime(day, QTime(10, 30, 30))));
        second.status = u"entregue"_s;
        dispatch::save(store(), second, {true, false}, QTime(12, 0), day);
        QVERIFY(dispatch::setStatus(store(), thirdOfBeto.number, u"Entregue"_s,
                                    QDateTime(day, QTime(12, 0))));

        QCOMPARE(dispatch::delivery(store(), first.number)->minutes.value_or(-1), qint64(30));
        QCOMPARE(dispatch::delivery(store(), second.number)->minutes.value_or(-1), qint64(30));
        // Its time cannot be read: the moment is kept, the minutes are not made up.
        QVERIFY(dispatch::delivery(store(), thirdOfBeto.number));
        QVERIFY(!dispatch::delivery(store(), thirdOfBeto.number)->minutes);
        QVERIFY(!dispatch::delivery(store(), typedDelivered.number));

        // Back from "Entregue" (with the password, at the screen): no time any more.
        second.status = u"A caminho"_s;
        second.version = 0;
        QVERIFY(dispatch::update(store(), second));
        QVERIFY(!dispatch::delivery(store(), second.number));
        compareWithRows(store(), {day, day}, day); // the couriers' minutes and averages
    }
};

QTEST_MAIN(TestPainel)
#include "tst_painel.moc"
