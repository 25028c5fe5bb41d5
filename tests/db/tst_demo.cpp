// The demo office on a fixed day, read back through the owner of each table: the registers,
// the employees' rights, the dispatches with their ledgers and the cash book show the office
// the screens and the screenshots expect, and every row passes its owner's checks. (The
// board, the services, the receipt and the agenda as the screens show them: their tests.)

#include "dispatch/core/dispatch.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "registers/core/company.h"
#include "registers/core/docnumbers.h"
#include "registers/core/lists.h"
#include "registers/core/parties.h"
#include "session/core/demo.h"
#include "session/core/session.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

const QDate kToday(2026, 3, 18); // a Wednesday
// The month's figures of that day.
constexpr qint64 kDispatches = 128;
constexpr qint64 kReceivables = 86;
constexpr qint64 kCredits = 253000;
constexpr qint64 kDebits = 387897;

// Every code of a table with a code, in order.
QStringList codesOf(Store& store, const QString& table) {
    QStringList codes;
    for (QString c = store.firstCode(table); !c.isEmpty(); c = store.nextCodeAfter(table, c))
        codes << c;
    return codes;
}

} // namespace

class DemoTest : public QObject {
    Q_OBJECT

private slots:
    void theOfficeOfAFixedDay() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        session::seedDemo(store, kToday);

        // The registers and their lists.
        namespace reg = registers;
        QCOMPARE(reg::partyCount(store, reg::Party::Client), 20);
        QCOMPARE(reg::partyCount(store, reg::Party::Courier), 8);
        QCOMPARE(reg::partyCount(store, reg::Party::Supplier), 4);
        const auto acme = reg::loadClient(store, u"00001"_s);
        QVERIFY(acme);
        QCOMPARE(acme->name, u"ACME COMÉRCIO LTDA"_s);
        QCOMPARE(acme->registered, kToday.addDays(-400));
        QCOMPARE(acme->taxNumber.size(), 14); // a CNPJ, digits alone
        QCOMPARE(cnpjCheck(cnpjForm(acme->taxNumber)), u"True"_s);
        QVERIFY(acme->company && !acme->privatePerson);
        const QList<reg::Branch> branches = reg::branches(store);
        QCOMPARE(branches.size(), 1);
        QCOMPARE(branches.first().city, u"CAMPINAS"_s);
        QCOMPARE(reg::loadCompany(store)->name, u"ROTALIX ENTREGAS RÁPIDAS"_s); // untouched

        // The employees log in with their own rights.
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto carlos = session::logIn(store, u"carlos d'avila"_s, u"carlos"_s, now);
        QVERIFY(carlos.granted());
        QCOMPARE(carlos.session.modules,
                 (QStringList{u"Caixa"_s, u"Contas a pagar"_s, u"Contas a receber"_s, u"Recibo"_s,
                              u"Cobrança"_s}));
        QCOMPARE(session::logIn(store, u"ANA PAULA"_s, u"ana123"_s, now).session.modules.size(), 3);

        // The month of dispatches and their money.
        const QStringList numbers = codesOf(store, dispatch::col::table);
        QCOMPARE(numbers.size(), kDispatches);
        QCOMPARE(numbers.first(), u"0000001"_s);
        int today = 0;
        for (const QString& n : numbers) {
            const auto d = dispatch::load(store, n);
            QVERIFY(d);
            QVERIFY(d->date >= kToday.addDays(-30) && d->date <= kToday);
            QVERIFY(d->date.dayOfWeek() != 7);
            if (d->date == kToday) ++today;
            const QList<finance::Bill> owed =
                finance::billsOf(store, finance::Ledger::Payables, n, u"PESSOAL"_s);
            QCOMPARE(owed.size(), 1);
            QCOMPARE(owed.first().amount, d->courierValue);
            QCOMPARE(owed.first().party, d->courier);
            const QList<finance::Bill> bills =
                finance::billsOf(store, finance::Ledger::Receivables, n, u"RECEITAS"_s);
            QCOMPARE(bills.size(), d->payment == dispatch::invoicePayment ? 1 : 0);
            for (const auto& b : owed + bills)
                QVERIFY2(!finance::checkBill(b.status == u"A pagar"_s || b.status == u"Paga"_s
                                                 ? finance::Ledger::Payables
                                                 : finance::Ledger::Receivables,
                                             b),
                         qPrintable(b.code));
        }
        QCOMPARE(today, 6);
        QCOMPARE(finance::billCount(store, finance::Ledger::Payables), kDispatches);
        QCOMPARE(finance::billCount(store, finance::Ledger::Receivables), kReceivables);

        // The cash book: what was paid at once, received, the rent and the fuel.
        const Store::CashTotals month = store.cashTotals(kToday.addDays(-30), kToday);
        QCOMPARE(month.credits, kCredits);
        QCOMPARE(month.debits, kDebits);
        for (const QString& code : codesOf(store, finance::cashTable)) {
            const auto m = finance::loadCash(store, code);
            QVERIFY(m && !finance::checkCash(*m));
        }
    }

    // A second preparation with the demo fills nothing again; one without it fills nothing.
    void preparedOnce() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        session::prepareInstallation(inst.installation(), store, false);
        QCOMPARE(registers::partyCount(store, registers::Party::Client), 0);
        session::prepareInstallation(inst.installation(), store, true);
        const qint64 dispatches = dispatch::count(store);
        QVERIFY(dispatches > 0);
        session::prepareInstallation(inst.installation(), store, true);
        QCOMPARE(dispatch::count(store), dispatches);
        QCOMPARE(registers::partyCount(store, registers::Party::Client), 20);
    }
};

QTEST_GUILESS_MAIN(DemoTest)
#include "tst_demo.moc"
