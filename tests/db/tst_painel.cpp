// The office at a glance. Without a screen: the periods, and every panel's figures against
// the rows themselves read one by one and summed here, over the demo office and over a
// generated month with its awkward rows (no time, no courier, names in other capitals,
// receivables on each edge of an age), on the engine of the run; an empty period. With the
// screen: the period buttons, the calendar's range, the refresh on a saved dispatch, a chart
// exported to PNG and to PDF through the seam, a click's module refused or opened, and a
// click on a day, a courier, a client, an age or a debtor opening the rows behind it.

#include "dispatch/atendimento.h"
#include "dispatch/core/rules.h"
#include "finance/caixa.h"
#include "finance/cobra.h"
#include "finance/contas.h"
#include "finance/core/cashbook.h"
#include "kit/grids.h"
#include "kit/sstab.h"
#include "output/reportpreview.h"
#include "panel/core/figures.h"
#include "panel/core/sheet.h"
#include "panel/painel.h"
#include "scriptedprompter.h"
#include "session/core/current.h"
#include "session/modules.h"
#include "store/changes.h"
#include "store/formats.h"
#include "store/migrations.h"
#include "testinstall.h"

#include <QAbstractBarSeries>
#include <QApplication>
#include <QBarCategoryAxis>
#include <QChartView>
#include <QComboBox>
#include <QDateEdit>
#include <QGraphicsSimpleTextItem>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QPushButton>
#include <QtTest>
#include <map>

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
    std::map<QDate, std::pair<qint64, qint64>> money; // day -> (a vista, faturar)
    std::map<QDate, qint64> fees;
    std::map<QString, CourierFigures> couriers; // by upper-case name
    std::map<QString, qint64> clients;          // by upper-case name
    qint64 total = 0;
};

QString key(const QString& name, const QString& blank) {
    const QString n = name.trimmed();
    return n.isEmpty() ? blank.toUpper() : n.toUpper();
}

Summed summed(Store& store, const Period& p) {
    Summed s;
    s.perDay = QList<int>(p.days(), 0);
    Recordset rs = store.open(u"SELECT a2, a3, a6, a18, a19, a20, ST, VE FROM atendimentos"_s);
    for (; !rs.eof(); rs.moveNext()) {
        const QDate d = *rs.date(u"a2"_s);
        if (d < p.from || d > p.to) continue;
        ++s.perDay[p.from.daysTo(d)];
        bool ok = false;
        const int h = rs.text(u"a3"_s).left(2).toInt(&ok);
        if (ok && h >= 0 && h < 24) ++s.perHour[h];
        const qint64 value = rs.cents(u"a19"_s), fee = rs.cents(u"VE"_s);
        auto& m = s.money[d];
        (rs.text(u"a20"_s).toUpper() == u"A VISTA"_s ? m.first : m.second) += value;
        s.fees[d] += fee;
        s.total += value;
        CourierFigures& c = s.couriers[key(rs.text(u"a18"_s), noCourier)];
        ++c.dispatches;
        if (rs.text(u"ST"_s).toUpper() == u"ENTREGUE"_s) ++c.delivered;
        c.earnings += fee;
        s.clients[key(rs.text(u"a6"_s), noClient)] += value;
    }
    return s;
}

void compareWithRows(Store& store, const Period& p, const QDate& today) {
    const Figures f = panel::load(store, p, today);
    const Summed s = summed(store, p);
    QCOMPARE(f.perDay, s.perDay);
    QCOMPARE(f.previousPerDay, summed(store, f.previous).perDay);
    QCOMPARE(f.perHour, s.perHour);

    QCOMPARE(f.revenueByMonth, p.days() > 62);
    std::map<QDate, Revenue> expected;
    for (const auto& [day, m] : s.money) {
        Revenue& r = expected[f.revenueByMonth ? QDate(day.year(), day.month(), 1) : day];
        r.cash += m.first;
        r.invoiced += m.second;
        r.courierFees += s.fees.at(day);
    }
    for (const Revenue& r : f.revenue) {
        const Revenue e = expected.count(r.start) ? expected.at(r.start) : Revenue{};
        QCOMPARE(r.cash, e.cash);
        QCOMPARE(r.invoiced, e.invoiced);
        QCOMPARE(r.courierFees, e.courierFees);
    }
    QCOMPARE(f.clientsTotal, s.total);

    QCOMPARE(f.couriers.size(), qsizetype(s.couriers.size()));
    for (int i = 0; i < f.couriers.size(); ++i) {
        const CourierFigures& c = f.couriers[i];
        const CourierFigures& e = s.couriers.at(c.name.toUpper());
        QCOMPARE(c.dispatches, e.dispatches);
        QCOMPARE(c.delivered, e.delivered);
        QCOMPARE(c.earnings, e.earnings);
        if (i > 0) QVERIFY(f.couriers[i - 1].dispatches >= c.dispatches);
    }

    // The ten that bring most: the same amounts as the ten largest sums, most first.
    QList<qint64> largest;
    for (const auto& [name, cents] : s.clients)
        largest << cents;
    std::sort(largest.begin(), largest.end(), std::greater<>());
    QCOMPARE(f.topClients.size(), std::min<qsizetype>(10, largest.size()));
    for (int i = 0; i < f.topClients.size(); ++i) {
        QCOMPARE(f.topClients[i].cents, largest[i]);
        QCOMPARE(s.clients.at(f.topClients[i].name.toUpper()), f.topClients[i].cents);
    }
}

// The open receivables summed here by age, and the clients' debts.
void compareReceivables(Store& store, const QDate& today) {
    std::array<qint64, AgeCount> ages{};
    std::map<QString, qint64> debts;
    qint64 open = 0;
    Recordset rs = store.open(u"SELECT c2, c6, c12, c13 FROM contas_receber"_s);
    for (; !rs.eof(); rs.moveNext()) {
        if (rs.text(u"c2"_s).toUpper() != u"A RECEBER"_s) continue;
        const qint64 amount = rs.cents(u"c12"_s);
        const std::optional<QDate> due = rs.date(u"c13"_s);
        const qint64 late = due ? due->daysTo(today) : 0;
        const int age = late <= 0    ? NotDue
                        : late <= 30 ? Days1To30
                        : late <= 60 ? Days31To60
                        : late <= 90 ? Days61To90
                                     : Over90;
        ages[age] += amount;
        debts[key(rs.text(u"c6"_s), noClient)] += amount;
        open += amount;
    }
    QCOMPARE(receivablesByAge(store, today), ages);
    QCOMPARE(headline(store, today).openReceivables, open);
    const QList<Amount> debtors = topDebtors(store, 10);
    QCOMPARE(debtors.size(), std::min<qsizetype>(10, debts.size()));
    for (int i = 0; i < debtors.size(); ++i) {
        QCOMPARE(debts.at(debtors[i].name.toUpper()), debtors[i].cents);
        if (i > 0) QVERIFY(debtors[i - 1].cents >= debtors[i].cents);
    }
}

int g_code = 0;

void dispatchRow(Store& store, const QDate& day, const QString& time, const QString& client,
                 const QString& courier, qint64 value, const QString& payment,
                 const QString& status, qint64 fee) {
    store.insert(u"atendimentos"_s, {{u"CODIGO"_s, padCode(++g_code, 7)},
                                     {u"a2"_s, day},
                                     {u"a3"_s, time},
                                     {u"a6"_s, client},
                                     {u"a18"_s, courier},
                                     {u"a19"_s, value},
                                     {u"a20"_s, payment},
                                     {u"ST"_s, status},
                                     {u"VE"_s, fee}});
}

void receivable(Store& store, const QString& client, qint64 amount, const QVariant& due,
                const QString& status = u"A receber"_s) {
    store.insert(u"contas_receber"_s, {{u"codigo"_s, padCode(++g_code, 5)},
                                       {u"c2"_s, status},
                                       {u"c6"_s, client},
                                       {u"c12"_s, amount},
                                       {u"c13"_s, due}});
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
    receivable(store, u"ACME LTDA"_s, 1000, kToday);                // due today: not late
    receivable(store, u"acme ltda"_s, 2000, kToday.addDays(-1));    // 1 day
    receivable(store, u"PADARIA SOL"_s, 4000, kToday.addDays(-30)); // 30 days
    receivable(store, u"PADARIA SOL"_s, 8000, kToday.addDays(-31)); // 31 days
    receivable(store, u"BANCO NORTE"_s, 16000, kToday.addDays(-60));
    receivable(store, u"BANCO NORTE"_s, 32000, kToday.addDays(-61));
    receivable(store, u"GRÁFICA ÁGIL"_s, 64000, kToday.addDays(-90));
    receivable(store, u"GRÁFICA ÁGIL"_s, 128000, kToday.addDays(-91));
    receivable(store, u"SEM VENCIMENTO"_s, 256000, QVariant(QMetaType(QMetaType::QDate)));
    receivable(store, u"ACME LTDA"_s, 512000, kToday.addDays(-200), u"Recebida"_s);
    unit.commit();
}

// The delivered dispatches whose time is known, summed here by courier from the rows:
// the couriers' timed deliveries and their minutes must be these.
void compareDeliveryTimes(Store& store, const Period& p) {
    std::map<QString, std::pair<int, qint64>> timed; // upper-case courier -> (count, minutes)
    Recordset rs = store.open(u"SELECT a2, a18, ST, minutos_entrega FROM atendimentos"_s);
    for (; !rs.eof(); rs.moveNext()) {
        const std::optional<QDate> d = rs.date(u"a2"_s);
        if (!d || *d < p.from || *d > p.to) continue;
        if (rs.text(u"ST"_s).toUpper() != u"ENTREGUE"_s || rs.isNull(u"minutos_entrega"_s))
            continue;
        auto& t = timed[key(rs.text(u"a18"_s), noCourier)];
        ++t.first;
        t.second += rs.value(u"minutos_entrega"_s).toLongLong();
    }
    for (const CourierFigures& c : couriers(store, p)) {
        const auto it = timed.find(c.name.toUpper());
        const std::pair<int, qint64> e = it == timed.end() ? std::pair<int, qint64>{} : it->second;
        QCOMPARE(c.timedDeliveries, e.first);
        QCOMPARE(c.deliveryMinutes, e.second);
        QCOMPARE(c.averageMinutes().has_value(), e.first > 0);
    }
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

    void periods() {
        QCOMPARE(periodOf(Span::Today, kToday), (Period{kToday, kToday}));
        QCOMPARE(periodOf(Span::Week, kToday), (Period{QDate(2025, 2, 17), kToday}));
        QCOMPARE(periodOf(Span::Week, QDate(2025, 2, 16)),
                 (Period{QDate(2025, 2, 10), QDate(2025, 2, 16)})); // Sunday closes the week
        QCOMPARE(periodOf(Span::Month, kToday), (Period{QDate(2025, 2, 1), kToday}));
        QCOMPARE(periodOf(Span::LastMonth, QDate(2025, 1, 15)),
                 (Period{QDate(2024, 12, 1), QDate(2024, 12, 31)}));
        QCOMPARE(periodOf(Span::LastMonth, QDate(2024, 3, 31)),
                 (Period{QDate(2024, 2, 1), QDate(2024, 2, 29)}));
        // A whole month against the whole month before, however long each is.
        QCOMPARE(previousOf({QDate(2025, 3, 1), QDate(2025, 3, 31)}),
                 (Period{QDate(2025, 2, 1), QDate(2025, 2, 28)}));
        QCOMPARE(previousOf({QDate(2025, 1, 1), QDate(2025, 12, 31)}),
                 (Period{QDate(2024, 1, 1), QDate(2024, 12, 31)}));
        // Any other period against as many days just before it.
        QCOMPARE(previousOf({QDate(2025, 2, 1), kToday}),
                 (Period{QDate(2025, 1, 12), QDate(2025, 1, 31)}));
        QCOMPARE(previousOf({kToday, kToday}), (Period{kToday.addDays(-1), kToday.addDays(-1)}));
        QVERIFY(!byMonth({QDate(2025, 1, 1), QDate(2025, 3, 3)}));
        QVERIFY(byMonth({QDate(2025, 1, 1), QDate(2025, 3, 4)}));
    }

    void figuresOfTheDemo() {
        inst_ = std::make_unique<TestInstallation>(true, true);
        RTX_REQUIRE_INSTALL(*inst_);
        const QDate today = QDate::currentDate();
        compareWithRows(store(), periodOf(Span::Month, today), today);
        compareWithRows(store(), {today.addDays(-40), today}, today);
        compareWithRows(store(), {today.addDays(-120), today}, today); // by month
        compareReceivables(store(), today);
        const Headline h = headline(store(), today);
        QCOMPARE(h.dispatchesToday, 6);
        QCOMPARE(h.cashBalance, store().cashTotals(QDate(1980, 1, 1), today).balance());
        QVERIFY(h.couriersFree > 0);
    }

    void figuresOfAGeneratedMonth() {
        inst_ = std::make_unique<TestInstallation>();
        RTX_REQUIRE_INSTALL(*inst_);
        generateMonth(store());
        compareWithRows(store(), periodOf(Span::Month, kToday), kToday);
        compareWithRows(store(), periodOf(Span::Week, kToday), kToday);
        compareWithRows(store(), periodOf(Span::LastMonth, kToday), kToday);
        compareReceivables(store(), kToday);

        // The rows that go wrong first, told by their own figures.
        const Figures f = panel::load(store(), periodOf(Span::Month, kToday), kToday);
        QCOMPARE(f.ages[NotDue], 1000 + 256000);
        QCOMPARE(f.ages[Days1To30], 2000 + 4000);
        QCOMPARE(f.ages[Days31To60], 8000 + 16000);
        QCOMPARE(f.ages[Days61To90], 32000 + 64000);
        QCOMPARE(f.ages[Over90], 128000);
        QCOMPARE(f.couriers.size(), 4); // ZECA in both capitals once, and the blank one
        int hours = 0;
        for (int h : f.perHour)
            hours += h;
        QVERIFY(hours < f.dispatches()); // no time, or "9h": in the days, not in the hours
        QCOMPARE(f.perDay[QDate(2025, 2, 1).daysTo(QDate(2025, 2, 16))], 0); // a Sunday
        QCOMPARE(f.revenue.size(), 20);
        QCOMPARE(f.revenue.first().start, QDate(2025, 2, 1));
        // A period with nothing in it.
        const Figures e = panel::load(store(), {QDate(2030, 5, 1), QDate(2030, 5, 31)}, kToday);
        QVERIFY(e.empty());
        compareWithRows(store(), e.period, kToday);
        QCOMPARE(e.revenue.size(), 31);
        // The receivables are today's, whatever the period.
        QCOMPARE(e.ages[Over90], 128000);

        // On paper: the words instead of the charts, the money the Brazilian way.
        const output::Document doc = sheet(e, u"ROTALIX"_s);
        QCOMPARE(doc.pages.size(), 2);
        QStringList words;
        for (const output::Page& p : doc.pages)
            for (const output::Item& i : p.items)
                words << i.text;
        QVERIFY(words.count(nothingInPeriod) >= 4);
        QVERIFY(words.contains(u"1.280,00"_s));
        QVERIFY(words.contains(u"Período: 01/05/2030 a 31/05/2030"_s));
    }

    void aClickOpensTheRows() {
        inst_ = std::make_unique<TestInstallation>();
        RTX_REQUIRE_INSTALL(*inst_);
        generateMonth(store());
        {
            // PADARIA SOL's bills entered in the month and one in January; another client's.
            UnitOfWork unit(store());
            auto bill = [this](const QString& client, const QDate& entered, qint64 amount) {
                store().insert(u"contas_receber"_s, {{u"codigo"_s, padCode(++g_code, 5)},
                                                     {u"c1"_s, entered},
                                                     {u"c2"_s, u"A receber"_s},
                                                     {u"c6"_s, client},
                                                     {u"c12"_s, amount},
                                                     {u"c13"_s, entered.addMonths(1)}});
            };
            bill(u"PADARIA SOL"_s, QDate(2025, 2, 3), 1111);
            bill(u"padaria sol"_s, QDate(2025, 2, 19), 2222);
            bill(u"PADARIA SOL"_s, QDate(2025, 1, 10), 4444);
            bill(u"BANCO NORTE"_s, QDate(2025, 2, 5), 8888);
            // The cash book of the 10th, and of the 11th that must not show with it.
            for (const auto& [day, document] : {std::pair{QDate(2025, 2, 10), u"D10"_s},
                                                {QDate(2025, 2, 10), u"C10"_s},
                                                {QDate(2025, 2, 11), u"D11"_s}})
                finance::postCash(store(),
                                  {{},
                                   day,
                                   document.startsWith(u'D') ? finance::debit : finance::credit,
                                   document,
                                   u"DINHEIRO"_s,
                                   1000,
                                   u"DESPESA"_s,
                                   u"GERAL"_s});
            unit.commit();
        }
        session::start(
            {u"ADMIN"_s,
             {u"Painel"_s, u"Atendimento"_s, u"Cobrança"_s, u"Caixa"_s, u"Contas a receber"_s},
             {}});
        ScriptedPrompter prompts;
        auto* screen = new ui::Painel(nullptr, kToday);
        screen->show();
        QVERIFY(QTest::qWaitForWindowExposed(screen));
        const Figures& f = screen->figures();
        QCOMPARE(f.period, (Period{QDate(2025, 2, 1), kToday}));
        auto bars = [screen](ui::Painel::Chart chart) {
            return qobject_cast<QAbstractBarSeries*>(
                screen->chartView(chart)->chart()->series().first());
        };
        auto closeOpened = [screen] {
            screen->openedScreen()->close();
            QTRY_VERIFY(!screen->openedScreen());
        };

        // A day's point: the dispatch search of that day, with that day's dispatches only.
        const int tenth = 9;
        QVERIFY(f.perDay[tenth] > 0);
        auto* days = qobject_cast<QLineSeries*>(
            screen->chartView(ui::Painel::Days)->chart()->series().last());
        emit days->clicked(QPointF(tenth + 0.2, f.perDay[tenth]));
        auto* dispatches = qobject_cast<ui::Atendimento*>(screen->openedScreen());
        QVERIFY(dispatches && dispatches->isVisible());
        QCOMPARE(dispatches->findChild<ui::SSTab*>(u"SSTab1"_s)->currentIndex(), 1);
        QCOMPARE(dispatches->findChild<QLineEdit*>(u"k1"_s)->text(), u"10/02/2025"_s);
        QCOMPARE(dispatches->findChild<QLineEdit*>(u"k2"_s)->text(), u"10/02/2025"_s);
        auto* found = dispatches->findChild<ui::DBGrid*>(u"DBGrid1"_s);
        QCOMPARE(found->recordCount(), f.perDay[tenth]);
        for (int r = 0; r < found->recordCount(); ++r)
            QCOMPARE(found->value(r, u"a2"_s).toDate(), QDate(2025, 2, 10));
        QCOMPARE(dispatches->findChild<QLabel*>(u"itt"_s)->text(),
                 QString::number(f.perDay[tenth]));
        closeOpened();

        // A day's money: that day in the cash book, as if typed and Iniciar pressed.
        QCOMPARE(f.revenue[tenth].start, QDate(2025, 2, 10));
        emit bars(ui::Painel::Money)->clicked(tenth, nullptr);
        auto* cash = qobject_cast<ui::CAIXA*>(screen->openedScreen());
        QVERIFY(cash && cash->isVisible());
        QCOMPARE(cash->findChild<QLineEdit*>(u"A1"_s)->text(), u"10/02/2025"_s);
        auto* cashRows = cash->findChild<ui::MSFlexGrid*>(u"Grid1"_s);
        QStringList documents;
        for (int r = 1; r < cashRows->rows(); ++r)
            documents << cashRows->textMatrix(r, 1);
        documents.sort();
        QCOMPARE(documents, (QStringList{u"C10"_s, u"D10"_s}));
        closeOpened();

        // A client's bar: that client's open bills entered in the period, whatever the
        // capitals; the debtor's bar: all it owes.
        auto clientRows = [](ui::cobra* billing) {
            auto* grid = billing->findChild<ui::MSFlexGrid*>(u"Grid1"_s);
            QStringList amounts;
            for (int r = 1; r < grid->rows(); ++r) {
                if (grid->textMatrix(r, 2).toUpper() != u"PADARIA SOL"_s) return QStringList();
                amounts << grid->textMatrix(r, 4);
            }
            return amounts;
        };
        auto barOf = [](const QList<Amount>& rows, int shown) {
            for (int i = 0; i < rows.size(); ++i)
                if (rows[i].name.toUpper() == u"PADARIA SOL"_s) return shown - 1 - i;
            return -1;
        };
        emit bars(ui::Painel::Clients)
            ->clicked(barOf(f.topClients, int(f.topClients.size())), nullptr);
        auto* billing = qobject_cast<ui::cobra*>(screen->openedScreen());
        QVERIFY(billing && billing->isVisible());
        QCOMPARE(billing->findChild<QComboBox*>(u"A1"_s)->currentText().toUpper(),
                 u"PADARIA SOL"_s);
        QCOMPARE(clientRows(billing), (QStringList{u"11,11"_s, u"22,22"_s}));
        closeOpened();
        const int debtors = int(std::min<qsizetype>(f.topDebtors.size(), 8));
        emit bars(ui::Painel::Debtors)->clicked(barOf(f.topDebtors, debtors), nullptr);
        billing = qobject_cast<ui::cobra*>(screen->openedScreen());
        QVERIFY(billing);
        QCOMPARE(clientRows(billing), (QStringList{u"44,44"_s, u"11,11"_s, u"22,22"_s}));
        closeOpened();

        // An age's bar: the open bills due in that age, on the receivables' search tab.
        emit bars(ui::Painel::Ages)->clicked(Days31To60, nullptr);
        auto* receivables = qobject_cast<ui::receber*>(screen->openedScreen());
        QVERIFY(receivables && receivables->isVisible());
        QCOMPARE(receivables->list()->recordCount(), 2); // due 31 and 60 days ago
        QCOMPARE(receivables->findChild<QLabel*>(u"t1"_s)->text(), u"240,00"_s);
        closeOpened();
        // A courier's bar of the week: his dispatches of that period only.
        QTest::mouseClick(screen->findChild<QPushButton*>(u"btnSemana"_s), Qt::LeftButton);
        const Figures& w = screen->figures();
        QCOMPARE(w.period, periodOf(Span::Week, kToday));
        int beto = -1;
        for (int i = 0; i < w.couriers.size(); ++i)
            if (w.couriers[i].name == u"BETO"_s) beto = i;
        QVERIFY(beto >= 0);
        const int expected = w.couriers[beto].dispatches;
        emit bars(ui::Painel::Couriers)
            ->clicked(int(std::min<qsizetype>(w.couriers.size(), 8)) - 1 - beto, nullptr);
        dispatches = qobject_cast<ui::Atendimento*>(screen->openedScreen());
        QVERIFY(dispatches && dispatches->isVisible());
        QCOMPARE(dispatches->findChild<QLineEdit*>(u"Text2"_s)->text(), u"BETO"_s);
        QCOMPARE(dispatches->findChild<QLineEdit*>(u"k1"_s)->text(), u"17/02/2025"_s);
        found = dispatches->findChild<ui::DBGrid*>(u"DBGrid1"_s);
        QCOMPARE(found->recordCount(), expected);
        for (int r = 0; r < found->recordCount(); ++r) {
            QCOMPARE(found->text(r, u"a18"_s), u"BETO"_s);
            const QDate d = found->value(r, u"a2"_s).toDate();
            QVERIFY(d >= w.period.from && d <= w.period.to);
        }
        closeOpened();
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 0);
        delete screen;
    }

    void theScreen() {
        inst_ = std::make_unique<TestInstallation>();
        RTX_REQUIRE_INSTALL(*inst_);
        generateMonth(store());
        session::start({u"ADMIN"_s, {u"Painel"_s, u"Atendimento"_s}, {}});
        ScriptedPrompter prompts;
        auto* screen = new ui::Painel(nullptr, kToday);
        screen->show();
        QVERIFY(QTest::qWaitForWindowExposed(screen));
        auto* periodLabel = screen->findChild<QLabel*>(u"lblPeriodo"_s);
        auto* todayLabel = screen->findChild<QLabel*>(u"lblAtendimentosHoje"_s);
        auto press = [screen](const QString& name) {
            auto* b = screen->findChild<QPushButton*>(name);
            QVERIFY2(b, qPrintable(name));
            QTest::mouseClick(b, Qt::LeftButton);
        };
        QCOMPARE(periodLabel->text(), u"01/02/2025 a 20/02/2025"_s);
        press(u"btnMesAnterior"_s);
        QCOMPARE(periodLabel->text(), u"01/01/2025 a 31/01/2025"_s);
        QCOMPARE(screen->figures().perDay.size(), 31);
        press(u"btnHoje"_s);
        QCOMPARE(periodLabel->text(), u"20/02/2025"_s);
        const int today = screen->figures().dispatches();
        QCOMPARE(todayLabel->text(), u"Atendimentos hoje\n%1"_s.arg(today));

        // A dispatch saved on this station shows without touching the panel.
        dispatchRow(store(), kToday, u"10:00"_s, u"NOVO"_s, u"BETO"_s, 100, u"A VISTA"_s,
                    u"A caminho"_s, 50);
        changes().announce(u"atendimentos"_s);
        QTRY_COMPARE(todayLabel->text(), u"Atendimentos hoje\n%1"_s.arg(today + 1));

        // The calendar's range: typed backwards it is said so and nothing moves.
        auto* from = screen->findChild<QDateEdit*>(u"txtDe"_s);
        auto* to = screen->findChild<QDateEdit*>(u"txtAte"_s);
        from->setDate(QDate(2030, 5, 10));
        to->setDate(QDate(2030, 5, 1));
        press(u"btnPeriodo"_s);
        QCOMPARE(prompts.lastText(), u"A data inicial é posterior à final."_s);
        QCOMPARE(periodLabel->text(), u"20/02/2025"_s);
        to->setDate(QDate(2030, 5, 31));
        press(u"btnPeriodo"_s);
        QCOMPARE(periodLabel->text(), u"10/05/2030 a 31/05/2030"_s);
        // Nothing in it: the period's charts say so.
        for (auto chart : {ui::Painel::Days, ui::Painel::Hours, ui::Painel::Money,
                           ui::Painel::Couriers, ui::Painel::Clients}) {
            bool said = false;
            for (QGraphicsItem* item : screen->chartView(chart)->chart()->childItems())
                if (auto* t = dynamic_cast<QGraphicsSimpleTextItem*>(item))
                    said = said || t->text() == nothingInPeriod;
            QVERIFY2(said, qPrintable(QString::number(chart)));
        }

        // A chart to PNG and to PDF, the file named through the seam.
        press(u"btnMes"_s);
        QTemporaryDir out;
        const QString png = out.filePath(u"dias.png"_s);
        prompts.answerText(png);
        press(u"btnPng"_s);
        QImage image(png);
        QVERIFY(!image.isNull());
        QCOMPARE(image.size(), screen->chartView(ui::Painel::Days)->size() * 2);
        const QString pdf = out.filePath(u"dias.pdf"_s);
        prompts.answerText(pdf);
        press(u"btnPdf"_s);
        QFile pdfFile(pdf);
        QVERIFY(pdfFile.open(QIODevice::ReadOnly));
        QVERIFY(pdfFile.read(5) == "%PDF-");
        prompts.answerCancel();
        press(u"btnPng"_s); // Cancelar writes nothing and says nothing
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 0);

        // The whole panel in the report preview, its two pages.
        press(u"btnImprimir"_s);
        auto* preview = screen->findChild<ui::ReportPreview*>();
        QVERIFY(preview && preview->isVisible());
        QCOMPARE(preview->pageCount(), 2);
        QVERIFY(!preview->renderPage(0, 2).isNull());
        preview->close();

        // The rows behind a chart: refused without the module (opened: aClickOpensTheRows).
        const int notices = prompts.count(ScriptedPrompter::Kind::Notice);
        screen->openRows(u"Caixa"_s);
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Notice), notices + 1);
        QVERIFY(!screen->openedScreen());
        delete screen;
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
                                Period{QDate(2024, 6, 1), QDate(2024, 6, 1)}, whole}) {
            compareWithRows(st, p, kToday);
            compareDeliveryTimes(st, p);
        }
        const Figures f = panel::load(st, periodOf(Span::Month, kToday), kToday);
        QVERIFY(f.perDay[QDate(2025, 2, 1).daysTo(QDate(2025, 2, 16))] > 0); // the moved rows
        QVERIFY(panel::load(st, whole, kToday).perHour[23] >= 4);
        QCOMPARE(headline(st, kToday).dispatchesToday, f.perDay.last());
        Store::setCurrent(nullptr);
    }

    // The moment a saved dispatch becomes "Entregue" is kept with its minutes since it was
    // taken, through Grava and through the status button alike; the couriers show their
    // average where it is known and nothing where it is not.
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
        const dispatch::Dispatch notYet = taken(u"LUIZ"_s, u"08:00"_s);

        QVERIFY(dispatch::setStatus(store(), first.number, u"Entregue"_s,
                                    QDateTime(day, QTime(10, 45, 30))));
        second.status = u"entregue"_s;
        dispatch::save(store(), second, {true, false}, QTime(12, 0), day);
        QVERIFY(dispatch::setStatus(store(), thirdOfBeto.number, u"Entregue"_s,
                                    QDateTime(day, QTime(12, 0))));

        QCOMPARE(dispatch::delivery(store(), first.number)->minutes.value_or(-1), qint64(45));
        QCOMPARE(dispatch::delivery(store(), first.number)->moment,
                 QDateTime(day, QTime(10, 45, 30)));
        QCOMPARE(dispatch::delivery(store(), second.number)->minutes.value_or(-1), qint64(30));
        // Its time cannot be read: the moment is kept, the minutes are not made up.
        QVERIFY(dispatch::delivery(store(), thirdOfBeto.number));
        QVERIFY(!dispatch::delivery(store(), thirdOfBeto.number)->minutes);
        QVERIFY(!dispatch::delivery(store(), typedDelivered.number));
        QVERIFY(!dispatch::delivery(store(), notYet.number));

        // Saved again later, delivered still: the moment stays, a corrected time counts.
        first.status = dispatch::delivered;
        first.time = u"10:15"_s;
        first.version = 0; // written as it stands, not over a version once read
        QVERIFY(dispatch::update(store(), first, QDateTime(day.addDays(1), QTime(9, 0))));
        QCOMPARE(dispatch::delivery(store(), first.number)->minutes.value_or(-1), qint64(30));

        const Period p{day, day};
        compareDeliveryTimes(store(), p);
        std::map<QString, CourierFigures> byName;
        for (const CourierFigures& c : couriers(store(), p))
            byName[c.name] = c;
        QCOMPARE(byName[u"ZECA"_s].averageMinutes().value_or(-1), qint64(30));
        QVERIFY(!byName[u"BETO"_s].averageMinutes()); // delivered, but never timed
        QCOMPARE(byName[u"BETO"_s].delivered, 2);
        QVERIFY(!byName[u"LUIZ"_s].averageMinutes());

        // Back from "Entregue" (with the password, at the screen): no time any more.
        second.status = u"A caminho"_s;
        second.version = 0;
        QVERIFY(dispatch::update(store(), second));
        QVERIFY(!dispatch::delivery(store(), second.number));
        compareDeliveryTimes(store(), p);
        QCOMPARE(durationText(45), u"45 min"_s);
        QCOMPARE(durationText(65), u"1h05"_s);

        // The couriers' chart: ZECA's average beside his name, none beside the others.
        session::start({u"ADMIN"_s, {u"Painel"_s}, {}});
        ScriptedPrompter prompts;
        ui::Painel screen(nullptr, day);
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        auto* axis = qobject_cast<QBarCategoryAxis*>(
            screen.chartView(ui::Painel::Couriers)->chart()->axes(Qt::Vertical).first());
        QVERIFY(axis);
        QStringList labels = axis->categories();
        QCOMPARE(labels.size(), 3);
        for (const QString& label : labels) {
            const bool zeca = label.startsWith(u"ZECA"_s);
            QCOMPARE(label.endsWith(u"30 min"_s), zeca);
            QVERIFY(!label.contains(u"min"_s) || zeca);
        }
    }
};

QTEST_MAIN(TestPainel)
#include "tst_painel.moc"
