// The rules of a dispatch without its screen: the record and its row, Grava's checks, store
// work and posting, the lock, the board, the lookups, the searches, the service table.

#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/lookup.h"
#include "dispatch/core/posting.h"
#include "dispatch/core/rules.h"
#include "dispatch/core/searches.h"
#include "dispatch/core/services.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::dispatch;
using namespace rtx::test;
using namespace Qt::Literals::StringLiterals;

namespace {

// A dispatch with every field filled, each with its own text.
Dispatch fullDispatch() {
    Dispatch d;
    d.attendant = u"ANA PAULA"_s;
    d.date = QDate(2024, 2, 29);
    d.time = u"08:15"_s;
    d.clientPhone = u"1133334444"_s;
    d.clientContact = u"JULIANA"_s;
    d.clientName = u"D'AVILA ADVOGADOS"_s;
    d.clientAddress = u"RUA TUIUTI, 112"_s;
    d.clientKind = u"AVULSO"_s;
    d.pickup = {u"RUA AUGUSTA, 1500"_s, u"PORTARIA"_s, u"1132145566"_s, u"RETIRAR"_s};
    d.delivery = {u"AV. PAULISTA, 900"_s, u"DRA. HELENA"_s, u"1133330000"_s, u"ENTREGAR"_s};
    d.remarks = u"Cliente aguarda\nna recepção."_s;
    d.courier = u"BETO"_s;
    d.clientValue = 123456;
    d.payment = cashPayment;
    d.service = u"ENTREGA CENTRO"_s;
    d.returnTrip = u"SIM"_s;
    d.status = u"A caminho"_s;
    d.courierValue = 800;
    return d;
}

} // namespace

class DispatchCoreTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    Store& store() { return inst->store(); }

    void addCourier(const QString& code, const QString& name, const QString& state, qint64 fee,
                    const QString& position = courierFree) {
        store().insert(courier::table, {{courier::code, code},
                                        {courier::name, name},
                                        {courier::state, state},
                                        {courier::fee, fee},
                                        {courier::position, position}});
    }
    void addClient(const QString& code, const QString& name, const QString& phone) {
        store().insert(client::table, {{client::code, code},
                                       {client::name, name},
                                       {client::contact, u"CONTATO "_s + code},
                                       {client::phone, phone},
                                       {client::street, u"RUA "_s + code},
                                       {client::district, u"BAIRRO "_s + code},
                                       {client::kind, u"MENSALISTA"_s}});
    }
    // The rows of a finance table that belong to a dispatch, by code: "code status party
    // amount", ";" between them.
    QString postedRows(const QString& table, const QString& number) {
        const bool cash = table == u"caixa"_s;
        Recordset rs =
            store().open(cash ? u"SELECT * FROM caixa WHERE A3 = ? ORDER BY codigo"_s
                              : u"SELECT * FROM %1 WHERE c3 = ? ORDER BY codigo"_s.arg(table),
                         {number});
        QStringList out;
        for (; !rs.eof(); rs.moveNext())
            out << (cash ? QStringList{rs.text(u"codigo"_s), rs.text(u"A2"_s), rs.text(u"A6"_s),
                                       rs.text(u"A5"_s)}
                         : QStringList{rs.text(u"codigo"_s), rs.text(u"c2"_s), rs.text(u"c6"_s),
                                       rs.text(u"c12"_s)})
                       .join(u' ');
        return out.join(u"; "_s);
    }

    QString position(const QString& code) {
        return store().scalar(u"SELECT C25 FROM motoqueiros WHERE CODIGO = ?"_s, {code}).toString();
    }
private slots:
    void init() { inst = std::make_unique<TestInstallation>(true, false); }
    void cleanup() { inst.reset(); }

    void recordChecksAndLock() {
        RTX_REQUIRE_INSTALL(*inst);
        // Numbered from the first, each column where it belongs, the courier's value of
        // billing at zero, money and dates as the row has always kept them.
        Dispatch d = fullDispatch();
        add(store(), d);
        d.version = load(store(), d.number).value().version; // the database's to keep
        QCOMPARE(load(store(), d.number), d);
        Recordset row = store().open(u"SELECT * FROM atendimentos WHERE CODIGO = ?"_s, {d.number});
        QCOMPARE(row.text(u"a6"_s) + u'|' + row.text(u"a19"_s) + u'|' + row.text(u"VE"_s) + u'|' +
                     row.text(u"moto"_s) + u'|' + row.text(u"a2"_s),
                 u"D'AVILA ADVOGADOS|1.234,56|8,00|0,00|29/02/2024"_s);

        // A change rewrites every column but billing's; a gone row is not brought back.
        store().execute(u"UPDATE atendimentos SET moto = 550 WHERE CODIGO = ?"_s, {d.number});
        Dispatch changed = *load(store(), d.number); // read after billing wrote it
        changed.clientName = u"OUTRO"_s;
        QVERIFY(update(store(), changed));
        changed.version = load(store(), d.number)->version;
        QCOMPARE(load(store(), d.number), changed);
        QCOMPARE(store().scalar(u"SELECT moto FROM atendimentos"_s).toInt(), 550);
        remove(store(), d.number);
        QVERIFY_THROWS_EXCEPTION(RowChanged, update(store(), changed));

        // Grava's checks in their order, each with its field and its message.
        d = Dispatch();
        d.attendant.clear();
        QCOMPARE(checkSave(d).value().message,
                 u"O campo [ATENDIDO POR], não pode ficar em branco."_s);
        d.attendant = u"ANA"_s;
        QCOMPARE(checkSave(d).value().field, Field::ClientName);
        d.clientName = u"X"_s;
        QCOMPARE(checkSave(d).value().field, Field::Status);
        d.status = u"Outros"_s;
        QVERIFY(!checkSave(d)); // nothing else is required
        // No negative amount and none above the largest, in the dispatch or the service table.
        d.courierValue = -1;
        auto refusal = checkSave(d);
        QVERIFY(refusal && refusal->field == Field::CourierValue);
        QCOMPARE(refusal->message, u"O campo [VLR.ENTREGADOR], não aceita valor negativo."_s);
        d.courierValue = maxMoneyCents + 1;
        QVERIFY(checkSave(d) && checkSave(d)->field == Field::CourierValue);
        QVERIFY(checkServiceValue(-1) && checkServiceValue(maxMoneyCents + 1));

        // The password in any case of letters; nothing or another word refuses.
        QVERIFY(passwordAccepted(u"MariPosa"_s));
        QVERIFY(!passwordAccepted(std::nullopt) && !passwordAccepted(u"mariposa "_s));

        // Locked only when the stored status is exactly "Entregue"; what the screen shows
        // does not count.
        add(store(), d);
        QVERIFY(setStatus(store(), d.number, u"entregue"_s) && !isLocked(store(), d.number));
        QVERIFY(setStatus(store(), d.number, delivered) && isLocked(store(), d.number));
        QVERIFY(locksOnSave(delivered) && !locksOnSave(u"ENTREGUE"_s));
    }

    // The side plans a save again through the store does not reach (moneyPostedOnce holds
    // the rest): amounts of zero, a received row left by a change of payment, and the double
    // rows of older saves brought back to one.
    void sidePlans() {
        using Rows = QList<PostedRow>;
        const auto plan = [](const Rows& rows, const Rows& wanted, bool keepZero) {
            const SidePlan side =
                planSide(PostingSide::Payable, rows,
                         wanted.isEmpty() ? std::nullopt : std::optional(wanted.first()), keepZero);
            QStringList steps;
            for (const PostedRow& r : side.settled)
                steps << u"settled "_s + r.code;
            for (const PostedRow& r : side.rewritten)
                steps << u"rewrite %1 %2 %3"_s.arg(r.code, r.party, formatMoney(r.amount));
            for (const PostedRow& r : side.written)
                steps << u"write %1 %2"_s.arg(r.party, formatMoney(r.amount));
            for (const PostedRow& r : side.deleted)
                steps << u"delete "_s + r.code;
            return steps.join(u"; "_s) + (side.changesMoney ? u" *"_s : u""_s);
        };
        const PostedRow beto{u"1"_s, u"BETO"_s, 800, false};
        QCOMPARE(plan({beto}, {{{}, u"BETO"_s, 0, false}}, false), u"delete 1 *"_s);
        QCOMPARE(plan({{u"1"_s, u"ACME"_s, 2250, true}}, {}, true),
                 u"settled 1; write ACME -22,50 *"_s);
        QCOMPARE(plan({beto, {u"2"_s, u"BETO"_s, 800, false}}, {beto}, false),
                 u"rewrite 1 BETO 8,00; delete 2 *"_s);
    }

    // Saving a dispatch again brings its one posting up to date in the same unit of work.
    // Settled rows stay, the question tells of them, and a Yes posts only the difference. A
    // number drawn again after the highest dispatch was deleted starts a posting of its own.
    void moneyPostedOnce() {
        RTX_REQUIRE_INSTALL(*inst);
        addCourier(u"00001"_s, u"BETO"_s, courier::active, 800);
        addCourier(u"00002"_s, u"FININHO"_s, courier::active, 1100);
        const QDate today(2024, 5, 10);
        // A new dispatch: the time of saving, the number, the row, the courier on his way.
        Dispatch d = fullDispatch(); // A VISTA, 1.234,56, BETO at 8,00, of 29/02/2024
        QCOMPARE(save(store(), d, {true, true}, QTime(14, 5), today).message,
                 u"Atendimento registrado."_s);
        QCOMPARE(d.number + u' ' + d.time, u"0000001 14:05"_s);
        QCOMPARE(position(u"00001"_s), courierOnTheWay);
        const QString n = d.number;
        qint64 version = d.version; // the screen's, after each of its saves
        const auto again = [&](const Dispatch& changed) {
            Dispatch copy = changed;
            copy.version = version;
            save(store(), copy, {true, true}, QTime(10, 0), today);
            version = copy.version;
            QCOMPARE(copy.number, n);
        };
        again(d);
        QCOMPARE(postedRows(u"contas_pagar"_s, n), u"00001 A pagar BETO 8,00"_s);
        QCOMPARE(postedRows(u"caixa"_s, n), u"0000001 CRÉDITO D'AVILA ADVOGADOS 1.234,56"_s);
        QCOMPARE(store().scalar(u"SELECT A1 FROM caixa"_s).toDate(), d.date);

        // The value on the day's cash totals, then a later day: the totals follow.
        d.clientValue = 3000;
        d.date = QDate(2024, 3, 1);
        again(d);
        QCOMPARE(store().cashTotals(d.date, d.date).credits, qint64(3000));
        QCOMPARE(postedRows(u"caixa"_s, n), u"0000001 CRÉDITO D'AVILA ADVOGADOS 30,00"_s);

        // To the invoice: one row of the client's at a time. A change the operator declined
        // writes nothing, but the money may still be posted: it reads the screen, not the row.
        d.payment = invoicePayment;
        Dispatch declined = d;
        declined.version = version;
        QCOMPARE(save(store(), declined, {false, true}, QTime(10, 0), today).message, QString());
        QCOMPARE(load(store(), n)->payment, cashPayment);
        version = declined.version;
        QCOMPARE(store().cashTotals(d.date, d.date).credits, qint64(0));
        QCOMPARE(postedRows(u"contas_receber"_s, n), u"00001 A receber D'AVILA ADVOGADOS 30,00"_s);
        d.courier = u"FININHO"_s;
        d.courierValue = 1100;
        again(d);
        QCOMPARE(postedRows(u"contas_pagar"_s, n), u"00001 A pagar FININHO 11,00"_s);
        // The payable keeps the day it was first posted, not the dispatch's.
        QCOMPARE(store().scalar(u"SELECT c1 FROM contas_pagar"_s).toDate(), today);

        // Paid and received: the question tells, a Yes posts the differences only.
        store().execute(u"UPDATE contas_pagar SET c2 = ?, c16 = c12"_s, {u"Paga"_s});
        store().execute(u"UPDATE contas_receber SET c2 = ?, c16 = c12"_s, {u"Recebida"_s});
        d.courierValue = 1500;
        d.clientValue = 2500;
        QCOMPARE(postingQuestionFor(store(), d),
                 u"A conta a pagar 00001 (FININHO, 11,00) já foi paga.\n"
                 u"Será lançada só a diferença: 4,00 a pagar a FININHO.\n"
                 u"A conta a receber 00001 (D'AVILA ADVOGADOS, 30,00) já foi recebida.\n"
                 u"Será lançada só a diferença: 5,00 a pagar a D'AVILA ADVOGADOS.\n\n"
                 u"Confirma movimentação financeira?"_s);
        again(d);
        // What the client overpaid is owed back to him: a payable, never a negative bill.
        QCOMPARE(postedRows(u"contas_pagar"_s, n),
                 u"00001 Paga FININHO 11,00; 00002 A pagar FININHO "
                 u"4,00; 00003 A pagar D'AVILA ADVOGADOS 5,00"_s);
        QCOMPARE(postedRows(u"contas_receber"_s, n), u"00001 Recebida D'AVILA ADVOGADOS 30,00"_s);
        again(d);
        QCOMPARE(store().count(u"contas_pagar"_s) + store().count(u"contas_receber"_s), qint64(4));
        // The courier paid is not the one now: his fee is owed back by him, a receivable
        // from him, and the new one's posted.
        d.courier = u"BETO"_s;
        d.courierValue = 800;
        QVERIFY(postingQuestionFor(store(), d).contains(u"11,00 a receber de FININHO"_s));
        again(d);
        QCOMPARE(postedRows(u"contas_pagar"_s, n),
                 u"00001 Paga FININHO 11,00; 00003 A pagar D'AVILA "
                 u"ADVOGADOS 5,00; 00004 A pagar BETO 8,00"_s);
        QCOMPARE(postedRows(u"contas_receber"_s, n), u"00001 Recebida D'AVILA ADVOGADOS 30,00; "
                                                     u"00002 A receber FININHO 11,00"_s);

        // The highest dispatch deleted, its number drawn again: a posting of its own, which
        // a save again keeps to, the deleted one's rows left as they are.
        remove(store(), n);
        Dispatch next = fullDispatch();
        next.payment = invoicePayment;
        save(store(), next, {true, true}, QTime(11, 0), today);
        version = next.version;
        QCOMPARE(next.number, n);
        next.courierValue = 900;
        next.clientValue = 5000;
        again(next);
        QCOMPARE(postedRows(u"contas_pagar"_s, n),
                 u"00001 Paga FININHO 11,00; 00003 A pagar D'AVILA ADVOGADOS 5,00; "
                 u"00004 A pagar BETO 8,00; 00005 A pagar BETO 9,00"_s);
        QCOMPARE(postedRows(u"contas_receber"_s, n), u"00001 Recebida D'AVILA ADVOGADOS 30,00; "
                                                     u"00002 A receber FININHO 11,00; "
                                                     u"00003 A receber D'AVILA ADVOGADOS 50,00"_s);
        QCOMPARE(postedCodes(store(), n), (QStringList{u"P00005"_s, u"R00003"_s}));

        // A dispatch posted before its codes were kept is found by its number and the
        // posting's words, and keeps their codes from then on.
        Dispatch older = fullDispatch();
        save(store(), older, {true, true}, QTime(12, 0), today);
        store().execute(u"UPDATE atendimentos SET lanc = NULL WHERE CODIGO = ?"_s, {older.number});
        older.version = 0; // saved by a program that kept no versions
        older.clientValue = 4000;
        save(store(), older, {true, true}, QTime(12, 30), today);
        QCOMPARE(postedRows(u"contas_pagar"_s, older.number), u"00006 A pagar BETO 8,00"_s);
        QCOMPARE(postedRows(u"caixa"_s, older.number),
                 u"0000001 CRÉDITO D'AVILA ADVOGADOS 40,00"_s);
        QCOMPARE(postedCodes(store(), older.number), (QStringList{u"P00006"_s, u"C0000001"_s}));
    }

    // What the dispatch reads of the other registers: the courier board, the fee, the
    // status list, the clients, the service table.
    void boardLookupsAndServices() {
        RTX_REQUIRE_INSTALL(*inst);
        addCourier(u"00001"_s, u"zeca"_s, courier::active, 900);
        addCourier(u"00002"_s, u"ANDRE"_s, courier::active, 700, courierBusy);
        addCourier(u"00003"_s, u"BRUNO"_s, u"ativo"_s, 500);
        addCourier(u"00004"_s, u"ANDRE"_s, courier::active, 100);
        // In service exactly "ATIVO"; by name blind to case, then by code.
        QCOMPARE(board(store()), (QList<CourierPosition>{{u"ANDRE"_s, courierBusy},
                                                         {u"ANDRE"_s, courierFree},
                                                         {u"zeca"_s, courierFree}}));
        // The fee and the move go to the first courier of a name, capitals aside.
        QCOMPARE(courierFee(store(), u"andre"_s), std::optional<qint64>(700));
        QVERIFY(moveCourier(store(), u"Andre"_s, courierOnTheWay));
        QCOMPARE(position(u"00002"_s) + u'|' + position(u"00004"_s),
                 courierOnTheWay + u'|' + courierFree);

        addClient(u"00002"_s, u"ACME"_s, u"1155550000"_s);
        addClient(u"00001"_s, u"BETA"_s, u"1155550000"_s);
        // By telephone the first by code; none for an unknown number.
        QCOMPARE(clientByPhone(store(), u"1155550000"_s)->name, u"BETA"_s);
        const auto acme = clientByCode(store(), u"00002"_s);

        // The telephone fills the client's own fields with the street alone; the pickup's
        // lookup takes street and district and the telephone, the contact and task stay.
        const Dispatch d = fullDispatch();
        Dispatch byPhone = d;
        fillFromPhone(byPhone, *acme);
        Dispatch expected = d;
        expected.clientContact = u"CONTATO 00002"_s;
        expected.clientName = u"ACME"_s;
        expected.clientAddress = u"RUA 00002"_s;
        expected.clientKind = u"MENSALISTA"_s;
        QCOMPARE(byPhone, expected);
        Dispatch got = d;
        fillFromLookup(got, *acme, LookupFor::Pickup);
        expected = d;
        expected.pickup.address = u"RUA 00002  BAIRRO 00002"_s;
        expected.pickup.phone = u"1155550000"_s;
        QCOMPARE(got, expected);

        const Service first = addService(store(), u"entrega zona sul"_s, 2250);
        const Service second = addService(store(), u"BANCO"_s, 1234567);
        QCOMPARE(second.code, u"000002"_s);
        QCOMPARE(services(store()), (QList<Service>{second, first})); // capitals aside
        deleteService(store(), second.code);
        QCOMPARE(services(store()), QList<Service>{first});

        // A pick with no dispatch screen listening waits, the latest only and once; with one
        // listening none waits (the screen test's), and one gone listens no more.
        ServicePicks& picks = servicePicks();
        picks.offer(second);
        {
            QObject screen;
            connect(&picks, &ServicePicks::picked, &screen, [](const Service&) {});
        }
        picks.offer(first);
        QCOMPARE(picks.takeWaiting(), std::optional<Service>(first));
        QVERIFY(!picks.takeWaiting());
    }

    void searchesPageByPage() {
        RTX_REQUIRE_INSTALL(*inst);
        // A thousand dispatches of one status and one client, a thousand clients of one
        // name, and a few others around them.
        const QDate day(2024, 6, 3);
        {
            UnitOfWork unit(store());
            const QString dispatchRow =
                u"INSERT INTO atendimentos (CODIGO, a2, ST, a18, a6) VALUES (?, ?, ?, ?, ?)"_s;
            for (int i = 1; i <= 1010; ++i)
                store().execute(dispatchRow,
                                {padCode(i, 7), i > 1000 ? day.addDays(-1) : day.addDays(i % 3),
                                 i > 1000 ? u"Cancelado"_s : u"Entregue"_s, u"BETO"_s,
                                 i > 1000 ? u"ÁGUIA"_s : u"D'AVILA"_s});
            for (int i = 1; i <= 1000; ++i)
                store().execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s,
                                {padCode(i, 5), u"JOSÉ DA SILVA"_s});
            unit.commit();
        }
        // Every row once, read page by page; the first.
        auto pages = [&](const auto& query, const QString& column, int size) {
            const QStringList seen = pageValues(store(), query, column, size);
            return QSet<QString>(seen.begin(), seen.end()).size() == seen.size()
                       ? u"%1 from %2"_s.arg(seen.size()).arg(seen.value(0))
                       : u"repeated"_s;
        };
        QCOMPARE(pages(searchBy(store(), SearchBy::Status, u"entreg"_s), col::number, 37),
                 u"1000 from 0000001"_s); // equal statuses by number
        // Prefix searches are blind to accents and capitals, and take a quote as a letter.
        QCOMPARE(pages(searchBy(store(), SearchBy::Client, u"d'av"_s), col::number, 250),
                 u"1000 from 0000001"_s);
        QCOMPARE(pages(clientsByName(store(), u"jose"_s), client::code, 41), u"1000 from 00001"_s);
        // The period by date, both days included, then by number; and its count.
        QCOMPARE(pages(searchPeriod(day.addDays(-1), day), col::number, 64), u"343 from 0001001"_s);
        QCOMPARE(countPeriod(store(), day.addDays(-1), day), 343);
    }
};

QTEST_GUILESS_MAIN(DispatchCoreTest)
#include "tst_dispatch_core.moc"
