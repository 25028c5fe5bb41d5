// The cash book, the payables and the receivables without a screen: the one way a movement
// enters the book, a day's figures from the per-day totals against the sums of its rows,
// the checks of a bill in their order on both ledgers, saving by a typed code, the posting
// of a settled bill, the searches, the walk, and two stations posting into the book at the
// same moment.

#include "dispatch/core/billedvalues.h"
#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/posting.h"
#include "dispatch/core/rules.h"
#include "finance/core/billing.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "finance/core/receipts.h"
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
    b.entered = kDay;
    b.due = kDay;
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
    // An empty book is zero everywhere and starts at 0000001. A day's figures are the sums of
    // its rows; a movement of zero is a row; a word that is neither is neither shown nor
    // counted; the previous balance counts every day up to the end of its range.
    void cashDay() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        CashDay d = loadDay(st, kDay, kDay.addDays(-1));
        QCOMPARE(d.previous + d.debits + d.credits + d.balance(), 0);
        QVERIFY(d.rows.isEmpty());
        QCOMPARE(post(st, movement(kDay.addDays(-3), credit, 50000)), u"0000001"_s);
        post(st, movement(kDay.addDays(-2), debit, 12000));
        post(st, movement(kDay, credit, 2550));
        post(st, movement(kDay, debit, 1000));
        post(st, movement(kDay, debit, 0));
        post(st, movement(kDay, u"ESTORNO"_s, 777));
        post(st, movement(kDay.addDays(1), credit, 99));

        d = loadDay(st, kDay, kDay.addDays(-1));
        QCOMPARE(d.previous, 50000 - 12000);
        QCOMPARE(d.rows.size(), 3);
        QCOMPARE(d.rows.at(2).amount, 0);
        QCOMPARE(d.credits, summed(st, kDay, kDay).credits);
        QCOMPARE(d.debits, summed(st, kDay, kDay).debits);
        QCOMPARE(d.balance(), 38000 + 2550 - 1000);
        // Up to a later day the previous balance counts that day and the next.
        QCOMPARE(loadDay(st, kDay, kDay.addDays(5)).previous, 38000 + 1550 + 99);

        QCOMPARE(checkCash(movement(kDay, credit, 0, {}))->message,
                 u"O campo [Descritivo], não pode ficar em branco."_s);
        QCOMPARE(checkCash(movement(kDay, {}, 0))->message,
                 u"O campo [Operação], não pode ficar em branco."_s);
        QVERIFY(!checkCash(movement(kDay, debit, 0)));
        QVERIFY(!removeCash(st, {}));
        QVERIFY(removeCash(st, u"0000001"_s));
        QCOMPARE(loadDay(st, kDay, kDay.addDays(-1)).previous, -12000);
    }

    // The searches of the book: the period, its debits or credits, the whole book, one group;
    // their totals equal the sums of their rows; a period the wrong way round is empty.
    void cashSearches() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        CashMovement rent = movement(kDay, debit, 90000, u"ALUGUEL"_s);
        rent.group = u"Despesas fixas"_s;
        post(st, rent);
        post(st, movement(kDay, credit, 3000));
        post(st, movement(kDay.addDays(10), credit, 500));
        post(st, movement({}, debit, 7)); // no day: only the whole book has it
        const auto count = [&](const CashQuery& q) {
            return st.page(cashSearch(st, q), {}, 1000).recordCount();
        };
        CashQuery q{CashSearch::Period, kDay, kDay, {}};
        QCOMPARE(count(q), 2);
        QCOMPARE(cashSearchTotals(st, q).balance(), 3000 - 90000);
        q.by = CashSearch::Debits;
        QCOMPARE(count(q), 1);
        QCOMPARE(cashSearchTotals(st, q).credits, 0);
        q.by = CashSearch::All;
        QCOMPARE(count(q), 4);
        QCOMPARE(cashSearchTotals(st, q).debits, 90007);
        QCOMPARE(cashSearchTotals(st, q).credits, 3500);
        q = {CashSearch::Group, kDay, kDay.addDays(30), u"DESPESAS FIXAS"_s};
        QCOMPARE(count(q), 1);
        QCOMPARE(cashSearchTotals(st, q).debits, 90000);
        q = {CashSearch::Period, kDay.addDays(1), kDay, {}};
        QCOMPARE(count(q), 0);
        QCOMPARE(cashSearchTotals(st, q).credits + cashSearchTotals(st, q).debits, 0);
    }

    // The checks of a save in their order, with each ledger's own words.
    void billChecks() {
        for (Ledger ledger : {Ledger::Payables, Ledger::Receivables}) {
            const LedgerKind& k = kindOf(ledger);
            Bill b = bill({}, 0, k.settled);
            QCOMPARE(checkBill(ledger, b)->message, k.noSettledDate);
            b.settled = kDay;
            QCOMPARE(checkBill(ledger, b)->message, k.noSettledValue);
            QCOMPARE(checkBill(ledger, b)->column, billcol::settledAmount);
            b.settledAmount = 100;
            QCOMPARE(checkBill(ledger, b)->message,
                     u"O campo [Descritivo], não pode ficar em branco."_s);
            b.description = u"LUZ"_s;
            b.status.clear();
            QCOMPARE(checkBill(ledger, b)->message,
                     u"O campo [Status], não pode ficar em branco."_s);
            b.status = k.open;
            QCOMPARE(checkBill(ledger, b)->message,
                     u"O campo [Valor], não pode ficar em branco."_s);
            b.amount = 1;
            QVERIFY(!checkBill(ledger, b));
        }
        QCOMPARE(kindOf(Ledger::Payables).noSettledDate, u"Digite a data do pagamento."_s);
        QCOMPARE(kindOf(Ledger::Receivables).cashQuestion, u"Deseja creditar o caixa?"_s);
        QCOMPARE(kindOf(Ledger::Receivables).reportName, u"Relatório de contas A receber."_s);
    }

    // An amount no money field holds (below zero, or a cent above the largest) is refused by
    // every save that takes one, after the required fields, naming its field; the largest
    // itself and zero pass.
    void amountsNoFieldHolds() {
        const QString negative = u"não aceita valor negativo."_s;
        const QString over = u"não aceita valor acima de 99.999.999,99."_s;
        for (qint64 bad : {qint64(-500), maxMoneyCents + 1}) {
            const QString said = bad < 0 ? negative : over;
            const auto refused = [&](const std::optional<Problem>& p, const QString& column,
                                     const QString& caption) {
                return p && p->column == column &&
                       p->message == u"O campo [%1], %2"_s.arg(caption, said);
            };
            QVERIFY(refused(checkCash(movement(kDay, debit, bad)), cashcol::amount, u"Valor"_s));
            QVERIFY(!checkCash(movement(kDay, credit, bad < 0 ? 0 : maxMoneyCents)));

            for (Ledger ledger : {Ledger::Payables, Ledger::Receivables}) {
                Bill b = bill(u"LUZ"_s, bad, kindOf(ledger).open);
                QVERIFY(refused(checkBill(ledger, b), billcol::amount, u"Valor"_s));
                b.amount = maxMoneyCents;
                b.status = kindOf(ledger).settled;
                b.settled = kDay;
                b.settledAmount = bad;
                QVERIFY(
                    refused(checkBill(ledger, b), billcol::settledAmount,
                            ledger == Ledger::Payables ? u"Valor pago"_s : u"Valor recebido"_s));
                b.settledAmount = maxMoneyCents;
                QVERIFY(!checkBill(ledger, b));
            }

            Receipt r;
            r.payer = u"ACME"_s;
            r.receivedBy = u"ANA"_s;
            r.about = u"ENTREGAS"_s;
            r.amount = bad;
            QVERIFY(refused(checkReceipt(r), receiptcol::amount, u"A importância de"_s));
            r.about.clear(); // the required fields come first
            QCOMPARE(checkReceipt(r)->column, receiptcol::about);

            QVERIFY(refused(dispatch::checkDispatchValues(bad, 0), dispatch::col::clientValue,
                            u"Valor Cliente"_s));
            QVERIFY(refused(dispatch::checkDispatchValues(0, bad),
                            dispatch::col::billedCourierValue, u"Valor Courier"_s));
        }
        QVERIFY(!dispatch::checkDispatchValues(0, maxMoneyCents));
    }

    // Codes: the first is 00001; a typed code not on file makes that bill, and the next code
    // follows the highest. A settled bill posts exactly its movement when asked (today,
    // document, type, amount settled, description, group), and nothing when not; an emptied
    // settled date keeps the one on file; a deleted bill leaves its posting.
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
            paid.type = u"BOLETO"_s;
            paid.group = u"Despesas"_s;
            saved(st, ledger, paid, false);
            QCOMPARE(st.count(cashTable), 0);
            saved(st, ledger, paid, true);
            saved(st, ledger, paid, true); // twice: posted twice, as the office knows
            QCOMPARE(st.count(cashTable), 2);
            Recordset rs = st.open(u"SELECT * FROM caixa WHERE codigo = '0000001'"_s);
            QCOMPARE(
                (QStringList{rs.text(u"A1"_s), rs.text(u"A2"_s), rs.text(u"A3"_s), rs.text(u"A4"_s),
                             rs.text(u"A5"_s), rs.text(u"A6"_s), rs.text(u"A7"_s)}),
                (QStringList{u"10/05/2024"_s, k.cashOperation, u"NF 12"_s, u"BOLETO"_s, u"199,50"_s,
                             u"DIGITADO"_s, u"Despesas"_s}));

            paid.settled = QDate();
            saved(st, ledger, paid, false);
            QCOMPARE(loadBill(st, ledger, u"00040"_s)->settled, kDay.addDays(-7));
            QVERIFY(removeBill(st, ledger, u"00040"_s));
            QVERIFY(!loadBill(st, ledger, u"00040"_s));
            QCOMPARE(st.count(cashTable), 2);
            QCOMPARE(billCount(st, ledger), 2);
        }
    }

    // Previous steps back by code (from a code not on file, to the last); next shows the same
    // bill again; first and last; nothing from an empty code.
    void walk() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        for (const char* code : {"00002", "00005", "00009"}) {
            Bill b = bill(u"X"_s, 1, u"A pagar"_s);
            b.code = QString::fromLatin1(code);
            saved(st, Ledger::Payables, b);
        }
        const auto go = [&](Walk w, const QString& from) {
            return walkBills(st, Ledger::Payables, w, from);
        };
        QCOMPARE(go(Walk::First, {}), u"00002"_s);
        QCOMPARE(go(Walk::Last, {}), u"00009"_s);
        QCOMPARE(go(Walk::Previous, u"00009"_s), u"00005"_s);
        QCOMPARE(go(Walk::Previous, u"00002"_s), u"00002"_s);
        QCOMPARE(go(Walk::Previous, u"00006"_s), u"00009"_s);
        QCOMPARE(go(Walk::Previous, {}), QString());
        QCOMPARE(go(Walk::Next, u"00005"_s), u"00005"_s);
    }

    // The searches by due date and status, of everyone, one name, one group (an empty name
    // finds the bills without one); the list at opening is today's new open bills by the day
    // of entry; the total is of the amounts, never of the amounts settled.
    void billSearches() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const Ledger p = Ledger::Payables;
        Bill a = bill(u"A"_s, 1000, u"A pagar"_s);
        a.party = u"ACME"_s;
        a.group = u"Frota"_s;
        saved(st, p, a);
        Bill b = bill(u"B"_s, 2000, u"A pagar"_s);
        b.due = kDay.addDays(20);
        saved(st, p, b);
        Bill c = bill(u"C"_s, 4000, u"Paga"_s);
        c.settled = kDay;
        c.settledAmount = 9999;
        c.party = u"ACME"_s;
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
        q = {BillFilter::Party, kDay, kDay, false, u"acme"_s};
        QCOMPARE(run(q), std::make_pair(1, qint64(1000)));
        q = {BillFilter::Party, kDay, kDay.addDays(30), false, {}};
        QCOMPARE(run(q), std::make_pair(1, qint64(2000)));
        q = {BillFilter::Group, kDay, kDay.addDays(30), false, u"FROTA"_s};
        QCOMPARE(run(q), std::make_pair(1, qint64(1000)));
        q = {BillFilter::Period, kDay.addDays(30), kDay, false, {}};
        QCOMPARE(run(q), std::make_pair(0, qint64(0)));
        const PageQuery opening = newBills(st, p);
        QCOMPARE(st.page(opening, {}, 100).recordCount(), 1);
        QCOMPARE(listTotal(st, opening), 8000);
    }

    // The money of a dispatch from its save to its receipt. Saved with its posting, one to
    // invoice leaves the client's receivable, which billing lists and writes off into the
    // cash book; one paid in cash is the day's credit at once and leaves billing nothing.
    // Either way the courier's fee is payable, the day's balance is the client's value, and
    // the receipt issued for it touches neither the ledgers nor the book.
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
        st.insert(dispatch::courier::table, {{dispatch::courier::code, u"00001"_s},
                                             {dispatch::courier::name, u"BETO"_s},
                                             {dispatch::courier::state, dispatch::courier::active},
                                             {dispatch::courier::fee, qint64(1200)}});
        dispatch::Dispatch d;
        d.attendant = u"ANA"_s;
        d.date = kDay;
        d.clientName = u"PADARIA"_s;
        d.courier = u"BETO"_s;
        d.clientValue = 4550;
        d.courierValue = 1200;
        d.payment = payment;
        d.status = u"A caminho"_s;
        QVERIFY(dispatch::save(st, d, {true, true}, QTime(9, 0), kDay).posted);
        const QString n = d.number;

        const QList<Bill> fee = billsOf(st, Ledger::Payables, n, dispatch::courierFeeGroup);
        QCOMPARE(fee.size(), 1);
        QCOMPARE(fee[0].party + u' ' + fee[0].status + u' ' + formatMoney(fee[0].amount),
                 u"BETO A pagar 12,00"_s);
        QCOMPARE(billsOf(st, Ledger::Receivables, n, dispatch::revenueGroup).size(),
                 invoiced ? 1 : 0);
        QCOMPARE(movementsOf(st, credit, n, dispatch::revenueGroup).size(), invoiced ? 0 : 1);

        // Billing: the client's open receivable, written off today with its credit.
        const QList<BillingRow> open = openReceivables(st, kDay, kDay, u"PADARIA"_s);
        QCOMPARE(open.size(), invoiced ? 1 : 0);
        if (invoiced) {
            QCOMPARE(open[0].document + u' ' + open[0].courier + u' ' + formatMoney(open[0].amount),
                     n + u" BETO 45,50"_s);
            writeOff(st, {{open[0].document, open[0].amount, open[0].client}}, kDay);
            const Bill received = billsOf(st, Ledger::Receivables, n, dispatch::revenueGroup)[0];
            QCOMPARE(received.status, kindOf(Ledger::Receivables).settled);
            QCOMPARE(received.settledAmount, 4550);
            QCOMPARE(received.settled, kDay);
            QVERIFY(openReceivables(st, kDay, kDay).isEmpty());
        }

        // The cash book: one credit of the client's value on the day, from billing or from
        // the dispatch, and the day's balance is that credit.
        const auto book = [&] {
            const CashDay day = loadDay(st, kDay, kDay.addDays(-1));
            QStringList rows;
            for (const CashMovement& m : day.rows)
                rows << m.operation + u' ' + m.document + u' ' + m.group + u' ' +
                            formatMoney(m.amount);
            return rows.join(u" | "_s) + u" = "_s + formatMoney(day.balance());
        };
        const QString group = invoiced ? billingGroup : dispatch::revenueGroup;
        QCOMPARE(book(), credit + u' ' + n + u' ' + group + u" 45,50 = 45,50"_s);
        QCOMPARE(st.cashTotals(kDay, kDay).balance(), 4550);

        // The receipt for the value, with its words and the next number.
        Receipt r;
        r.number = nextReceiptNumber(st);
        r.payer = d.clientName;
        r.date = kDay;
        r.amount = d.clientValue;
        r.words = receiptWords(r.amount);
        r.about = u"ATENDIMENTO NR. "_s + n;
        r.receivedBy = u"ANA"_s;
        QVERIFY(!checkReceipt(r));
        {
            UnitOfWork unit(st);
            QVERIFY(addReceipt(st, r));
            unit.commit();
        }
        const auto issued = loadReceipt(st, u"00001"_s);
        QVERIFY(issued);
        QCOMPARE(issued->about + u' ' + formatMoney(issued->amount) + u' ' + issued->words,
                 r.about + u" 45,50 ( Quarenta e cinco reais e cinquenta centavos.' )."_s);
        QCOMPARE(book(), credit + u' ' + n + u' ' + group + u" 45,50 = 45,50"_s);
        QCOMPARE(billCount(st, Ledger::Receivables), invoiced ? 1 : 0);
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
        QCOMPARE(st.lastCode(cashTable), u"0000200"_s);
        for (int i = 0; i < 3; ++i) {
            const QDate d = kDay.addDays(i);
            QCOMPARE(st.cashTotals(d, d).credits, summed(st, d, d).credits);
            QCOMPARE(st.cashTotals(d, d).debits, summed(st, d, d).debits);
        }
        QCOMPARE(st.cashTotals(kDay, kDay.addDays(2)).balance(),
                 summed(st, kDay, kDay.addDays(2)).balance());
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
