// The demo office on a fixed day, read back through the owner of each table: the registers,
// the dispatches with their ledgers and the cash book hold the month the screens and the
// screenshots expect, and every row passes its owner's checks. (The employees' rights, the
// board, the services, the receipt and the agenda as the screens show them: their tests.)

#include "dispatch/core/dispatch.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "registers/core/parties.h"
#include "session/core/demo.h"
#include "testinstall.h"

#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;

// Every code of a table with a code, in order.
static QStringList codesOf(Store& store, const QString& table) {
    QStringList codes;
    for (QString c = store.firstCode(table); !c.isEmpty(); c = store.nextCodeAfter(table, c))
        codes << c;
    return codes;
}

static qint64 clients(Store& store) {
    return registers::partyCount(store, registers::Party::Client);
}

class DemoTest : public QObject {
    Q_OBJECT

private slots:
    void theOfficeOfAFixedDay() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        const QDate today(2026, 3, 18); // a Wednesday
        session::seedDemo(store, today);
        QCOMPARE(clients(store), 20);

        // Each dispatch owes its courier his value; a FATURAR one is owed by its client.
        const QStringList numbers = codesOf(store, dispatch::col::table);
        QCOMPARE(numbers.size(), 128);
        for (const QString& n : numbers) {
            const auto d = dispatch::load(store, n);
            QVERIFY(d && d->date >= today.addDays(-30) && d->date <= today);
            const auto owed = fin::billsOf(store, fin::Ledger::Payables, n, u"PESSOAL"_s);
            QCOMPARE(owed.size(), 1);
            QCOMPARE(owed.first().amount, d->courierValue);
            QCOMPARE(owed.first().party, d->courier);
            QVERIFY(!fin::checkBill(fin::Ledger::Payables, owed.first()));
            const auto bills = fin::billsOf(store, fin::Ledger::Receivables, n, u"RECEITAS"_s);
            QCOMPARE(bills.size(), d->payment == dispatch::invoicePayment ? 1 : 0);
            for (const fin::Bill& b : bills)
                QVERIFY(!fin::checkBill(fin::Ledger::Receivables, b));
        }
        QCOMPARE(fin::billCount(store, fin::Ledger::Payables), 128);
        QCOMPARE(fin::billCount(store, fin::Ledger::Receivables), 86);

        // The cash book: what was paid at once, received, the rent and the fuel.
        const Store::CashTotals month = store.cashTotals(today.addDays(-30), today);
        QCOMPARE(month.credits, 253000);
        QCOMPARE(month.debits, 387897);
        for (const QString& code : codesOf(store, fin::cashTable)) {
            const auto m = fin::loadCash(store, code);
            QVERIFY(m && !fin::checkCash(*m));
        }
    }

    // A second preparation with the demo fills nothing again; one without it fills nothing.
    void preparedOnce() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        session::prepareInstallation(inst.installation(), store, false);
        QCOMPARE(clients(store), 0);
        session::prepareInstallation(inst.installation(), store, true);
        const qint64 dispatches = dispatch::count(store);
        QVERIFY(dispatches > 0);
        session::prepareInstallation(inst.installation(), store, true);
        QCOMPARE(dispatch::count(store), dispatches);
        QCOMPARE(clients(store), 20);
    }
};

QTEST_GUILESS_MAIN(DemoTest)
#include "tst_demo.moc"
