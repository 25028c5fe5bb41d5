#include "station.h"

#include "stationlog.h"

#include "agenda/core/agenda.h"
#include "dispatch/core/board.h"
#include "dispatch/core/rules.h"
#include "dispatch/core/services.h"
#include "finance/core/billing.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "finance/core/receipts.h"
#include "registers/core/lists.h"
#include "registers/core/parties.h"
#include "store/formats.h"
#include "store/store.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QThread>
#include <functional>

namespace rtx::stations {

namespace {

using namespace Qt::StringLiterals;

// The engine's words for "another station holds the lock" on either engine.
bool isBusy(const QString& text) {
    const QString t = text.toLower();
    for (const char16_t* word : {u"database is locked", u"database is busy", u"deadlock detected",
                                 u"could not serialize", u"lock timeout", u"outra esta"})
        if (t.contains(QString::fromUtf16(word))) return true;
    return false;
}

// A receipt number another station took between the draw and the save: the screen says so
// and the operator saves again.
struct NumberTaken {};

struct Office {
    QStringList clients;
    QStringList clientCodes;
    QStringList couriers;
    QList<dispatch::Service> services;
};

Office readOffice(Store& store) {
    Office o;
    o.clients = finance::partyNames(store, registers::partyTable(registers::Party::Client));
    const QString clients = registers::partyTable(registers::Party::Client);
    for (QString code = store.firstCode(clients); !code.isEmpty();
         code = store.nextCodeAfter(clients, code))
        o.clientCodes << code;
    for (const dispatch::CourierPosition& c : dispatch::board(store))
        o.couriers << c.name;
    o.services = dispatch::services(store);
    return o;
}

class Station {
public:
    Station(Store& store, const StationRun& run)
        : store_(store), run_(run), log_(logPath(run.folder, run.number)),
          rng_(quint32(run.number * 7919 + QCoreApplication::applicationPid())) {}

    int run();

private:
    using Action = std::function<void(Attempt&)>;
    void attempt(const QString& name, const Action& action);

    void newDispatch(Attempt& a);
    void changeDispatch(Attempt& a);
    void moveCourier(Attempt& a);
    void saveClient(Attempt& a);
    void cashMovement(Attempt& a);
    void paidBill(Attempt& a);
    void writeOff(Attempt& a);
    void receipt(Attempt& a);
    void agendaEntry(Attempt& a);

    template <typename T> const T& pick(const QList<T>& list) {
        return list.at(rng_.bounded(int(list.size())));
    }
    qint64 money(int from, int to) { return qint64(from + rng_.bounded(to - from)) * 10; }
    // Unique across stations and runs: the documents tie a paid bill to its cash debit.
    QString document() {
        return u"E%1-%2-%3"_s.arg(run_.number)
            .arg(QCoreApplication::applicationPid())
            .arg(++serial_);
    }
    QString attendant() const { return u"ESTACAO %1"_s.arg(run_.number); }

    Store& store_;
    StationRun run_;
    LogWriter log_;
    QRandomGenerator rng_;
    Office office_;
    QStringList ownDispatches_;
    int serial_ = 0;
    QElapsedTimer clock_;
    bool paused_ = false;
};

void Station::attempt(const QString& name, const Action& action) {
    // Another station's lock is waited out a few times, as an operator presses Grava again.
    for (int tries = 0; tries < 5; ++tries) {
        Attempt a;
        a.action = name;
        QElapsedTimer t;
        t.start();
        try {
            action(a);
            a.micros = t.nsecsElapsed() / 1000;
            log_.write(a);
            return;
        } catch (const StoreError& e) {
            a.micros = t.nsecsElapsed() / 1000;
            a.text = e.text();
            a.outcome = isBusy(e.text()) ? Outcome::Busy : Outcome::Failed;
            log_.write(a);
            if (a.outcome == Outcome::Failed) return;
        } catch (const NumberTaken&) {
            a.micros = t.nsecsElapsed() / 1000;
            a.text = u"Número de recibo já gravado por outra estação"_s;
            a.outcome = Outcome::Busy;
            log_.write(a);
        }
        QThread::msleep(20 + rng_.bounded(80));
    }
}

// ---- The actions ---------------------------------------------------------------------------

void Station::newDispatch(Attempt& a) {
    dispatch::Dispatch d;
    d.attendant = attendant();
    d.date = QDate::currentDate();
    d.clientName = pick(office_.clients);
    d.clientPhone = u"1130%1"_s.arg(rng_.bounded(10000, 99999));
    d.clientAddress = u"RUA DAS ESTAÇÕES, %1"_s.arg(rng_.bounded(1, 999));
    d.pickup.address = d.clientAddress;
    d.pickup.task = u"RETIRAR ENVELOPE"_s;
    d.delivery.address = u"AV. CENTRAL, %1"_s.arg(rng_.bounded(1, 999));
    d.delivery.task = u"ENTREGAR"_s;
    d.courier = pick(office_.couriers);
    const dispatch::Service& s = pick(office_.services);
    d.service = s.description;
    d.clientValue = s.value + money(0, 300);
    d.courierValue = money(80, 120);
    d.payment = rng_.bounded(3) == 0 ? dispatch::cashPayment : dispatch::invoicePayment;
    d.returnTrip = u"NÃO"_s;
    d.status = dispatch::courierOnTheWay;
    if (const auto refusal = dispatch::checkSave(d))
        throw StoreError(u"Recusado: "_s + refusal->message);
    const dispatch::SaveChoice choice{true, true};

    if (!run_.pauseFile.isEmpty() && !paused_ &&
        clock_.elapsed() > qint64(run_.pauseAfter * 1000)) {
        // The injected crash: the dispatch and its money are written, the unit is still
        // open, and the station stops here until it is killed.
        paused_ = true;
        UnitOfWork unit(store_);
        dispatch::save(store_, d, choice);
        QFile marker(run_.pauseFile);
        if (marker.open(QIODevice::WriteOnly)) marker.write(d.number.toUtf8());
        marker.close();
        QThread::sleep(120);
        return;
    }
    dispatch::save(store_, d, choice);
    ownDispatches_ << d.number;
    a.refs.append({dispatch::col::table, d.number, true});
}

void Station::changeDispatch(Attempt& a) {
    // Mostly a dispatch of this station, sometimes one of the latest of the office.
    QString number;
    if (ownDispatches_.isEmpty() || rng_.bounded(3) == 0) {
        const qint64 last = dispatch::lastNumber(store_).toLongLong();
        if (last > 0) number = padCode(std::max<qint64>(1, last - rng_.bounded(20)), 7);
    } else {
        number = pick(ownDispatches_);
    }
    if (number.isEmpty()) return;
    std::optional<dispatch::Dispatch> d = dispatch::load(store_, number);
    if (!d || dispatch::isLocked(store_, number) || d->courierValue <= 0) return;
    d->clientValue += money(-50, 100);
    if (d->clientValue < 0) d->clientValue = 0;
    d->courierValue = money(80, 130);
    d->remarks = u"ALTERADO NA %1"_s.arg(attendant());
    dispatch::save(store_, *d, dispatch::SaveChoice{true, true});
    a.refs.append({dispatch::col::table, number, false});
}

void Station::moveCourier(Attempt&) {
    dispatch::moveCourier(store_, pick(office_.couriers), pick(dispatch::positions()));
}

void Station::saveClient(Attempt& a) {
    registers::Client c;
    if (!office_.clientCodes.isEmpty() && rng_.bounded(2) == 0) {
        const auto stored = registers::loadClient(store_, pick(office_.clientCodes));
        if (stored) c = *stored;
    }
    const bool added = c.code.isEmpty();
    if (added) {
        c.name = u"CLIENTE %1"_s.arg(document());
        c.status = registers::activeStatus();
        c.registered = QDate::currentDate();
    }
    c.phone2 = u"1131%1"_s.arg(rng_.bounded(10000, 99999));
    c.remarks = u"GRAVADO NA %1"_s.arg(attendant());
    if (const auto problem = registers::checkClient(c))
        throw StoreError(u"Recusado: "_s + problem->message);
    const QString code = registers::saveClient(store_, c, attendant());
    a.refs.append({registers::partyTable(registers::Party::Client), code, added});
}

void Station::cashMovement(Attempt& a) {
    finance::CashMovement m;
    m.date = QDate::currentDate();
    m.operation = rng_.bounded(2) ? finance::credit : finance::debit;
    m.document = document();
    m.type = u"DIVERSOS"_s;
    m.amount = money(100, 20000);
    m.description = u"MOVIMENTO DA %1"_s.arg(attendant());
    m.group = u"DESPESAS VARIÁVEIS"_s;
    UnitOfWork unit(store_);
    const QString code = finance::postCash(store_, m);
    unit.commit();
    a.refs.append({finance::cashTable, code, true});
}

void Station::paidBill(Attempt& a) {
    const finance::LedgerKind& k = finance::kindOf(finance::Ledger::Payables);
    finance::Bill b;
    b.entered = QDate::currentDate();
    b.status = k.settled;
    b.document = document();
    b.type = u"COMBUSTÍVEL"_s;
    b.description = u"CONTA PAGA NA %1"_s.arg(attendant());
    b.party = u"POSTO BOA VIAGEM"_s;
    b.group = u"DESPESAS VARIÁVEIS"_s;
    b.amount = money(500, 5000);
    b.due = b.entered;
    b.settled = b.entered;
    b.settledAmount = b.amount;
    if (const auto problem = finance::checkBill(finance::Ledger::Payables, b))
        throw StoreError(u"Recusado: "_s + problem->message);
    UnitOfWork unit(store_);
    const QString code = finance::saveBill(store_, finance::Ledger::Payables, b, true);
    unit.commit();
    a.refs.append({k.table, code, true});
}

void Station::writeOff(Attempt& a) {
    // What the billing grid shows for one client, as the financial clerk writes it off.
    const QDate today = QDate::currentDate();
    const QList<finance::BillingRow> open =
        finance::openReceivables(store_, today.addDays(-30), today, pick(office_.clients));
    if (open.isEmpty()) return;
    QList<finance::WriteOff> rows;
    for (const finance::BillingRow& r : open.mid(0, 5))
        rows.append({r.document, r.amount, r.client});
    finance::writeOff(store_, rows, today);
    for (const finance::WriteOff& r : rows)
        a.writtenOff << r.document;
}

void Station::receipt(Attempt& a) {
    finance::Receipt r;
    r.payer = pick(office_.clients);
    r.date = QDate::currentDate();
    r.amount = money(100, 10000);
    r.words = finance::receiptWords(r.amount);
    r.about = u"SERVIÇOS DE ENTREGA"_s;
    r.receivedBy = attendant();
    UnitOfWork unit(store_);
    r.number = finance::nextReceiptNumber(store_);
    r.company = finance::receiptCompany(store_);
    if (!finance::addReceipt(store_, r)) throw NumberTaken{};
    unit.commit();
    a.refs.append({finance::receiptTable, r.number, true});
}

void Station::agendaEntry(Attempt& a) {
    agenda::Entry e;
    e.date = QDate::currentDate().addDays(rng_.bounded(10));
    e.hour = u"%1:%2"_s.arg(8 + int(rng_.bounded(10)), 2, 10, QChar(u'0'))
                 .arg(int(rng_.bounded(4)) * 15, 2, 10, QChar(u'0'));
    e.group = u"ENTREGAS"_s;
    e.event = u"COLETA MARCADA NA %1"_s.arg(attendant());
    if (const auto problem = agenda::checkEntry(e))
        throw StoreError(u"Recusado: "_s + problem->message);
    const QString code = agenda::saveEntry(store_, e);
    a.refs.append({agenda::entriesTable, code, true});
}

int Station::run() {
    office_ = readOffice(store_);
    if (office_.clients.isEmpty() || office_.couriers.isEmpty() || office_.services.isEmpty()) {
        Attempt a;
        a.outcome = Outcome::Failed;
        a.action = u"inicio"_s;
        a.text = u"Instalação sem clientes, motoqueiros em serviço ou serviços"_s;
        log_.write(a);
        return 1;
    }
    // A working day's mix: mostly dispatches and the board, then the money.
    struct Weighted {
        int weight;
        QString name;
        void (Station::*action)(Attempt&);
    };
    const QList<Weighted> mix{
        {30, u"atendimento_novo"_s, &Station::newDispatch},
        {12, u"atendimento_alterado"_s, &Station::changeDispatch},
        {12, u"posicao_motoqueiro"_s, &Station::moveCourier},
        {8, u"cliente"_s, &Station::saveClient},
        {10, u"caixa"_s, &Station::cashMovement},
        {8, u"conta_paga"_s, &Station::paidBill},
        {6, u"baixa_faturamento"_s, &Station::writeOff},
        {6, u"recibo"_s, &Station::receipt},
        {8, u"agenda"_s, &Station::agendaEntry},
    };
    int total = 0;
    for (const Weighted& w : mix)
        total += w.weight;
    clock_.start();
    const QDeadlineTimer end(qint64(run_.seconds) * 1000);
    while (!end.hasExpired()) {
        int roll = rng_.bounded(total);
        for (const Weighted& w : mix) {
            if ((roll -= w.weight) >= 0) continue;
            attempt(w.name, [this, &w](Attempt& a) { (this->*w.action)(a); });
            break;
        }
        if (run_.thinkMs > 0) QThread::msleep(rng_.bounded(2 * run_.thinkMs + 1));
    }
    return 0;
}

} // namespace

int runStation(Store& store, const StationRun& run) {
    Store::setCurrent(&store);
    Station station(store, run);
    return station.run();
}

void seedOffice(Store& store) {
    UnitOfWork unit(store);
    if (dispatch::board(store).size() < 4) {
        const QStringList names{u"BETO"_s,    u"CHICO"_s, u"DUDA"_s,
                                u"FININHO"_s, u"JOTA"_s,  u"TONHO"_s};
        for (const QString& name : names) {
            registers::Courier c;
            c.status = registers::activeStatus();
            c.shortName = name;
            c.name = name + u" DA SILVA"_s;
            c.fee = 1000;
            registers::saveCourier(store, c, u"ADMIN"_s);
        }
    }
    if (store.count(registers::partyTable(registers::Party::Client)) < 5) {
        for (int i = 1; i <= 12; ++i) {
            registers::Client c;
            c.status = registers::activeStatus();
            c.name = u"CLIENTE DO ESCRITÓRIO %1"_s.arg(i, 2, 10, QChar(u'0'));
            c.registered = QDate::currentDate();
            registers::saveClient(store, c, u"ADMIN"_s);
        }
    }
    if (dispatch::services(store).isEmpty()) {
        const QStringList names{u"ENTREGA CENTRO"_s, u"ENTREGA ZONA SUL"_s, u"CARTÓRIO"_s,
                                u"BANCO - DEPÓSITO"_s, u"MALOTE DIÁRIO"_s};
        for (int i = 0; i < names.size(); ++i)
            dispatch::addService(store, names[i], 1500 + 500 * i);
    }
    unit.commit();
}

} // namespace rtx::stations
