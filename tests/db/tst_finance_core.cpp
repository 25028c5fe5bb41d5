// The cash book and the ledgers without a screen: a day's figures against its rows, the checks
// of a bill, a typed code, the posting of a settled bill, the searches, a dispatch's money
// from its save to the book, and two stations posting into the book at the same moment.

#include "dispatch/core/billedvalues.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/posting.h"
#include "dispatch/core/rules.h"
#include "finance/core/billing.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

using namespace rtx;
using namespace rtx::finance;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

const QDate kDay(2024, 5, 10);

CashMovement movement(const QDate& day, const QString& operation, qint64 cents,
                      const QString& description = u"MOV"_s) {
    CashMovement m;
    m.date = day;
    m.operation = operation;
    m.amount = cents;
    m.description = description;
    return m;
}

QString post(Store& store, const CashMovement& m) {
    UnitOfWork unit(store);
    const QString code = postCash(store, m);
    unit.commit();
    return code;
}

// The sums of the rows of the book between two days, the legacy way.
Store::CashTotals summed(Store& store, const QDate& from, const QDate& to) {
    Store::CashTotals t;
    Recordset rs = store.open(u"SELECT A2, A5 FROM caixa WHERE A1 BETWEEN ? AND ?"_s, {from, to});
    for (; !rs.eof(); rs.moveNext()) {
        if (rs.text(u"A2"_s) == debit) t.debits += rs.cents(u"A5"_s);
        if (rs.text(u"A2"_s) == credit) t.credits += rs.cents(u"A5"_s);
    }
    return t;
}

Bill bill(const QString& description, qint64 amount, const QString& status) {
    Bill b;
    b.entered = b.due = kDay;
    b.description = description;
    b.amount = amount;
    b.status = status;
    return b;
}

QString saved(Store& store, Ledger ledger, const Bill& b, bool post = false) {
    UnitOfWork unit(store);
    const QString code = saveBill(store, ledger, b, post, kDay);
    unit.commit();
    return code;
}

int runPoster(const QStringList& args) {
    ConnectionSettings s;
    s.engine = args.at(2) == u"pg"_s ? Engine::PostgreSQL : Engine::SQLite;
    s.sqliteFile = args.at(3);
    s.database = args.at(3);
    s.host = qEnvironmentVariable("ROTALIX_TEST_PGHOST");
    s.port = qEnvironmentVariableIntValue("ROTALIX_TEST_PGPORT");
    s.user = qEnvironmentVariable("ROTALIX_TEST_PGUSER", u"postgres"_s);
    try {
        Store store(s);
        for (int i = 0; i < 100; ++i)
            post(store, movement(kDay.addDays(i % 3), i % 2 ? debit : credit, 100 + i,
                                 args.at(4) + QString::number(i)));
    } catch (const StoreError& e) {
        fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}

} // namespace

class FinanceCoreTest : public QObject {
    Q_OBJECT

private slots:
    // An empty book starts at 0000001. A day's figures are the sums of its rows; a movement of
    // zero is a row; the previous balance counts every day up to the end of its range.
    void cashDay() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCOMPARE(post(st, movement(kDay.addDays(-3), credit, 50000)), u"0000001"_s);
        post(st, movement(kDay.addDays(-2), debit, 12000));
        post(st, movement(kDay, credit, 2550));
        post(st, movement(kDay, debit, 1000));
        post(st, movement(kDay, debit, 0));
        post(st, movement(kDay.addDays(1), credit, 99));

        const CashDay d = loadDay(st, kDay, kDay.addDays(-1));
        QCOMPARE(d.previous, 50000 - 12000);
        QCOMPARE(d.rows.size(), 3);
        QCOMPARE(d.credits - d.debits, summed(st, kDay, kDay).balance());
        QCOMPARE(d.balance(), 38000 + 2550 - 1000);
        // Up to a later day the previous balance counts that day and the next.
        QCOMPARE(loadDay(st, kDay, kDay.addDays(5)).previous, 38000 + 1550 + 99);

        QCOMPARE(checkCash(movement(kDay, credit, 0, {}))->column, cashcol::description);
    }

    // The checks of a save in their order, with each ledger's own words.
    void billChecks() {
        for (Ledger ledger : {Ledger::Payables, Ledger::Receivables}) {
            const LedgerKind& k = kindOf(ledger);
            Bill b = bill({}, 0, k.settled);
            QCOMPARE(checkBill(ledger, b)->message, k.noSettledDate);
            b.settled = kDay;
            QCOMPARE(checkBill(ledger, b)->message, k.noSettledValue);
            b.settledAmount = 100;
            QCOMPARE(checkBill(ledger, b)->column, billcol::description);
            b.description = u"LUZ"_s;
            QCOMPARE(checkBill(ledger, b)->column, billcol::amount);
            b.amount = 1;
            QVERIFY(!checkBill(ledger, b));
        }
    }

    // An amount no money field holds (below zero, or a cent above the largest) is refused by
    // every save that takes one, naming its field; the largest itself passes.
    void amountsNoFieldHolds() {
        for (qint64 bad : {qint64(-500), maxMoneyCents + 1}) {
            const QString said = bad < 0 ? u"não aceita valor negativo."_s
                                         : u"não aceita valor acima de 99.999.999,99."_s;
            const auto refused = [&](const std::optional<Problem>& p, const QString& column,
                                     const QString& caption) {
                return p && p->column == column &&
                       p->message == u"O campo [%1], %2"_s.arg(caption, said);
            };
            QVERIFY(refused(checkCash(movement(kDay, debit, bad)), cashcol::amount, u"Valor"_s));
            Bill b = bill(u"LUZ"_s, bad, kindOf(Ledger::Payables).open);
            QVERIFY(refused(checkBill(Ledger::Payables, b), billcol::amount, u"Valor"_s));
            b = bill(u"LUZ"_s, maxMoneyCents, kindOf(Ledger::Receivables).settled);
            b.settled = kDay;
            b.settledAmount = bad;
            QVERIFY(refused(checkBill(Ledger::Receivables, b), billcol::settledAmount,
                            u"Valor recebido"_s));
            QVERIFY(refused(dispatch::checkDispatchValues(0, bad),
                            dispatch::col::billedCourierValue, u"Valor Courier"_s));
        }
        QVERIFY(!checkCash(movement(kDay, credit, maxMoneyCents)));
    }

    // Codes: the first is 00001; a typed code not on file makes that bill, and the next code
    // follows the highest. A settled bill posts exactly its movement when asked (today,
    // document, amount settled, description, group), and nothing when not; a deleted bill
    // leaves its posting.
    void billSaveAndPost() {
        for (Ledger ledger : {Ledger::Payables, Ledger::Receivables}) {
            TestInstallation inst(true, false);
            RTX_REQUIRE_INSTALL(inst);
            Store& st = inst.store();
            const LedgerKind& k = kindOf(ledger);
            QCOMPARE(saved(st, ledger, bill(u"UM"_s, 100, k.open)), u"00001"_s);
            Bill typed = bill(u"DIGITADO"_s, 200, k.open);
            typed.code = u"00040"_s;
            QCOMPARE(saved(st, ledger, typed), u"00040"_s);
            QCOMPARE(saved(st, ledger, bill(u"TRES"_s, 300, k.open)), u"00041"_s);

            Bill paid = *loadBill(st, ledger, u"00040"_s);
            paid.version = 0; // saved again and again here, with no screen holding its version
            paid.status = k.settled;
            paid.settled = kDay.addDays(-7);
            paid.settledAmount = 19950;
            paid.document = u"NF 12"_s;
            paid.group = u"Despesas"_s;
            saved(st, ledger, paid, false);
            QCOMPARE(st.count(cashTable), 0);
            saved(st, ledger, paid, true);
            saved(st, ledger, paid, true); // twice: posted twice, as the office knows
            QCOMPARE(st.count(cashTable), 2);
            const CashMovement m = movementsOf(st, k.cashOperation, u"NF 12"_s, u"Despesas"_s)[0];
            QCOMPARE(m.operation + formatMoney(m.amount) + m.description,
                     k.cashOperation + u"199,50DIGITADO"_s);
            QCOMPARE(m.date, kDay);
            paid.settled = QDate(); // emptied on the screen: the day on file stays
            saved(st, ledger, paid, false);
            QCOMPARE(loadBill(st, ledger, u"00040"_s)->settled, kDay.addDays(-7));

            QVERIFY(removeBill(st, ledger, u"00040"_s));
            QCOMPARE(st.count(cashTable) + billCount(st, ledger), 2 + 2);
        }
    }

    // The searches by due date and status; the list at opening is today's new open bills by
    // the day of entry; the total is of the amounts, never of the amounts settled.
    void billSearches() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const Ledger p = Ledger::Payables;
        saved(st, p, bill(u"A"_s, 1000, u"A pagar"_s));
        Bill b = bill(u"B"_s, 2000, u"A pagar"_s);
        b.due = kDay.addDays(20);
        saved(st, p, b);
        Bill c = bill(u"C"_s, 4000, u"Paga"_s);
        c.settled = kDay;
        c.settledAmount = 9999;
        saved(st, p, c);
        Bill today = bill(u"D"_s, 8000, u"A pagar"_s);
        today.entered = QDate::currentDate();
        today.due = kDay.addDays(100);
        saved(st, p, today);

        const auto run = [&](const BillQuery& q) {
            const PageQuery pq = billSearch(st, p, q);
            return std::make_pair(st.page(pq, {}, 100).recordCount(), listTotal(st, pq));
        };
        BillQuery q{BillFilter::Period, kDay, kDay.addDays(30), false, {}};
        QCOMPARE(run(q), std::make_pair(2, qint64(3000)));
        q.settled = true;
        QCOMPARE(run(q), std::make_pair(1, qint64(4000)));
        const PageQuery opening = newBills(st, p);
        QCOMPARE(st.page(opening, {}, 100).recordCount(), 1);
        QCOMPARE(listTotal(st, opening), 8000);
    }

    // The money of a dispatch from its save to the book. Saved with its posting, one to
    // invoice leaves the client's receivable, which billing lists and writes off into the
    // cash book; one paid in cash is the day's credit at once and leaves billing nothing.
    // Either way the courier's fee is payable and the day's balance is the client's value.
    void moneyRoad_data() {
        QTest::addColumn<QString>("payment");
        QTest::newRow("FATURAR") << dispatch::invoicePayment;
        QTest::newRow("A VISTA") << dispatch::cashPayment;
    }
    void moneyRoad() {
        QFETCH(QString, payment);
        const bool invoiced = payment == dispatch::invoicePayment;
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        dispatch::Dispatch d;
        d.attendant = u"ANA"_s;
        d.date = kDay;
        d.clientName = u"PADARIA"_s;
        d.courier = u"BETO"_s;
        d.clientValue = 4550;
        d.courierValue = 1200;
        d.payment = payment;
        QVERIFY(dispatch::save(st, d, {true, true}, QTime(9, 0), kDay).posted);
        const QString n = d.number;
        const Bill fee = billsOf(st, Ledger::Payables, n, dispatch::courierFeeGroup).value(0);
        QCOMPARE(fee.party + u' ' + fee.status + u' ' + formatMoney(fee.amount),
                 u"BETO A pagar 12,00"_s);
        // Billing: the client's open receivable, written off today with its credit.
        const QList<BillingRow> open = openReceivables(st, kDay, kDay, u"PADARIA"_s);
        QCOMPARE(open.size(), invoiced ? 1 : 0);
        if (invoiced) {
            QCOMPARE(open[0].document + u' ' + open[0].courier + u' ' + formatMoney(open[0].amount),
                     n + u" BETO 45,50"_s);
            writeOff(st, {{open[0].document, open[0].amount, open[0].client}}, kDay);
            const Bill received = billsOf(st, Ledger::Receivables, n, dispatch::revenueGroup)[0];
            QCOMPARE(received.status + formatMoney(received.settledAmount), u"Recebida45,50"_s);
            QVERIFY(openReceivables(st, kDay, kDay).isEmpty());
        }

        // The cash book: one credit of the client's value on the day, from billing or from
        // the dispatch, and the day's balance is that credit.
        const CashDay day = loadDay(st, kDay, kDay.addDays(-1));
        QCOMPARE(day.rows.size(), 1);
        QCOMPARE(day.rows[0].document + u' ' + day.rows[0].group,
                 n + u' ' + (invoiced ? billingGroup : dispatch::revenueGroup));
        QCOMPARE(day.balance(), 4550);
    }

    // Two stations post a hundred movements each at the same moment: every posting is there
    // under its own code, and the per-day totals equal the rows.
    void twoStationsPost() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        const ConnectionSettings s = inst.settings();
        const bool pg = s.engine == Engine::PostgreSQL;
        QList<QProcess*> posters;
        for (const char* who : {"A", "B"}) {
            auto* p = new QProcess(this);
            p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            p->start(QCoreApplication::applicationFilePath(),
                     {u"--poster"_s, pg ? u"pg"_s : u"sqlite"_s, pg ? s.database : s.sqliteFile,
                      QString::fromLatin1(who)});
            posters << p;
        }
        for (QProcess* p : posters) {
            QVERIFY(p->waitForFinished(120000));
            QCOMPARE(p->exitCode(), 0);
        }
        Store& st = inst.store();
        QCOMPARE(st.count(cashTable), 200);
        QCOMPARE(st.scalar(u"SELECT COUNT(DISTINCT codigo) FROM caixa"_s).toInt(), 200);
        for (const QDate& d : {kDay, kDay.addDays(1), kDay.addDays(2)})
            QCOMPARE(st.cashTotals(d, d).balance(), summed(st, d, d).balance());
    }
};

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() > 4 && args.at(1) == u"--poster"_s) return runPoster(args);
    FinanceCoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_finance_core.moc"
