// A believable month of a small courier office, so that every screen shows something.

#include "session/core/demo.h"

#include "agenda/core/agenda.h"
#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/services.h"
#include "finance/core/cashbook.h"
#include "finance/core/invoices.h"
#include "finance/core/ledger.h"
#include "finance/core/receipts.h"
#include "registers/core/company.h"
#include "registers/core/employees.h"
#include "registers/core/lists.h"
#include "registers/core/parties.h"
#include "registers/core/passwords.h"
#include "store/formats.h"
#include "store/installation.h"
#include "store/schema.h"
#include "store/store.h"

#include <QRandomGenerator>

namespace rtx::session {

namespace {

QString checkDigits(const QString& base, const QList<int>& weights) {
    int sum = 0;
    for (int i = 0; i < base.size(); ++i)
        sum += base[i].digitValue() * weights[i];
    const int r = sum % 11;
    return QString::number(r < 2 ? 0 : 11 - r);
}

QString makeCpf(QRandomGenerator& rng) {
    QString base;
    for (int i = 0; i < 9; ++i)
        base += QString::number(rng.bounded(10));
    base += checkDigits(base, {10, 9, 8, 7, 6, 5, 4, 3, 2});
    base += checkDigits(base, {11, 10, 9, 8, 7, 6, 5, 4, 3, 2});
    return base;
}

QString makeCnpj(QRandomGenerator& rng) {
    QString base;
    for (int i = 0; i < 8; ++i)
        base += QString::number(rng.bounded(10));
    base += QStringLiteral("0001");
    base += checkDigits(base, {5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2});
    base += checkDigits(base, {6, 5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2});
    return base;
}

QString phone(QRandomGenerator& rng) {
    return QStringLiteral("11%1%2")
        .arg(3000 + rng.bounded(6000))
        .arg(rng.bounded(10000), 4, 10, QLatin1Char('0'));
}

QStringList words(std::initializer_list<const char16_t*> list) {
    QStringList out;
    for (const char16_t* w : list)
        out << QString::fromUtf16(w);
    return out;
}

} // namespace

void seedDemo(Store& store, const QDate& today) {
    namespace reg = registers;
    QRandomGenerator rng(20201225);
    UnitOfWork unit(store);
    const QString admin = QStringLiteral("ADMIN");

    const QStringList districts = words({u"CENTRO", u"PINHEIROS", u"MOOCA", u"LAPA", u"SANTANA",
                                         u"TATUAPÉ", u"VILA MARIANA", u"BELA VISTA"});
    const QStringList streets = words(
        {u"RUA AUGUSTA", u"AV. PAULISTA", u"RUA DA CONSOLAÇÃO", u"RUA VERGUEIRO", u"AV. REBOUÇAS",
         u"RUA DOS PINHEIROS", u"RUA TUIUTI", u"AV. SANTO AMARO", u"RUA VOLUNTÁRIOS DA PÁTRIA"});
    const QStringList regions =
        words({u"CENTRO", u"ZONA SUL", u"ZONA NORTE", u"ZONA LESTE", u"ZONA OESTE"});

    // Lists.
    for (const QString& g : regions)
        reg::addListName(store, reg::lists::regions, g);
    for (const QString& g : words({u"DINHEIRO", u"CHEQUE", u"BOLETO", u"PIX", u"CARTÃO"}))
        reg::addListName(store, reg::lists::paymentForms, g);
    for (const QString& g :
         words({u"ATENDIMENTO", u"COMBUSTÍVEL", u"MANUTENÇÃO", u"ALUGUEL", u"DIVERSOS"}))
        reg::addListName(store, reg::lists::financialTypes, g);
    for (const QString& g :
         words({u"RECEITAS", u"DESPESAS FIXAS", u"DESPESAS VARIÁVEIS", u"PESSOAL"}))
        reg::addListName(store, reg::lists::accountGroups, g);

    // Employees with a few permissions each.
    struct Emp {
        const char16_t *name, *role, *password;
        QStringList modules;
    };
    const QList<Emp> emps{
        {u"ANA PAULA", u"ATENDENTE", u"ana123", words({u"Atendimento", u"Clientes", u"Agenda"})},
        {u"CARLOS D'AVILA", u"FINANCEIRO", u"carlos",
         words({u"Caixa", u"Contas a pagar", u"Contas a receber", u"Cobrança", u"Recibo"})}};
    for (const Emp& e : emps) {
        reg::Employee employee;
        employee.name = QString::fromUtf16(e.name);
        employee.phone = QStringLiteral("(11)9876-5432");
        employee.function = QString::fromUtf16(e.role);
        employee.password = QString::fromUtf16(e.password);
        QList<reg::Permission> rights;
        for (const QString& m : permissionModules())
            rights.append({m, e.modules.contains(m) ? reg::granted() : reg::denied()});
        reg::saveEmployee(store, employee, rights);
    }
    // The demo is for looking around: ADMIN keeps the delivered "admin", as the manual says.
    reg::requirePasswordChange(store, admin, false);
    if (auto company = reg::loadCompany(store)) {
        // The office's PIX key, for the invoices.
        company->pixKind = QStringLiteral("CNPJ");
        company->pixKey = QStringLiteral("11.222.333/0001-81");
        company->pixName = QStringLiteral("ROTALIX ENTREGAS");
        company->pixCity = QStringLiteral("SAO PAULO");
        company->dueDays = QStringLiteral("10");
        reg::Branch branch;
        branch.name = QStringLiteral("ROTALIX CAMPINAS");
        branch.phone = QStringLiteral("(19)3232-1010");
        branch.address = QStringLiteral("AV. NORTE-SUL, 500");
        branch.city = QStringLiteral("CAMPINAS");
        branch.state = QStringLiteral("SP");
        reg::saveCompany(store, *company, branch);
    }

    // Clients.
    const QStringList clientNames =
        words({u"ACME COMÉRCIO LTDA",      u"ANA PAULA SOUZA",     u"BANCO DO BAIRRO S/A",
               u"CASA DAS TINTAS",         u"CLÍNICA SÃO LUCAS",   u"CONSTRUTORA HORIZONTE",
               u"D'AVILA ADVOGADOS",       u"DROGARIA POPULAR",    u"ESCRITÓRIO CONTÁBIL LIMA",
               u"FARMÁCIA CENTRAL",        u"GRÁFICA EXPRESSA",    u"JOÃO CARLOS PEREIRA",
               u"LABORATÓRIO VIDA",        u"LOJA DO ÓCULOS",      u"MARIA FERNANDA COSTA",
               u"OFICINA DO ZÉ",           u"PADARIA PÃO DOURADO", u"PAPELARIA ESTRELA",
               u"RESTAURANTE SABOR & CIA", u"TECH SOLUÇÕES"});
    QStringList clientPhones;
    for (int i = 0; i < clientNames.size(); ++i) {
        const bool person = i == 1 || i == 11 || i == 14;
        reg::Client c;
        c.phone1 = phone(rng);
        clientPhones << c.phone1;
        c.status = i == 17 ? reg::inactiveStatus() : reg::activeStatus();
        c.registered = today.addDays(-400 + i * 11);
        c.taxNumber = person ? makeCpf(rng) : makeCnpj(rng);
        c.name = clientNames[i];
        c.tradeName = clientNames[i].section(QLatin1Char(' '), 0, 1);
        c.contact = words({u"MARCOS", u"JULIANA", u"RENATA", u"PEDRO", u"LUCAS"})[i % 5];
        c.phone2 = i % 3 == 0 ? phone(rng) : QString();
        c.email = QStringLiteral("contato%1@exemplo.com.br").arg(i + 1);
        c.address.postcode = QStringLiteral("0%1-000").arg(1000 + i * 37);
        c.address.street =
            QStringLiteral("%1, %2").arg(streets[i % streets.size()]).arg(10 + i * 17);
        c.address.district = districts[i % districts.size()];
        c.address.city = QStringLiteral("SÃO PAULO");
        c.address.state = QStringLiteral("SP");
        c.attendedBy = QStringLiteral("ANA PAULA");
        c.kind = words({u"AVULSO", u"CONTRATO", u"OUTROS"})[i % 3];
        c.charging = words({u"BOLETO", u"RECIBO", u"OUTROS"})[i % 3];
        c.monthlyContract = i % 3 == 1 ? 150000 : 0;
        c.creditLimit = 500000;
        c.remarks =
            i % 4 == 0 ? QStringLiteral("Entregar somente em horário comercial.") : QString();
        c.privatePerson = person;
        c.company = !person;
        c.region = regions[i % 5];
        reg::saveClient(store, c, admin);
    }

    // Couriers: the last two are no longer in service; a save puts each on the board as
    // free, the board then shows where each one stands today.
    const QStringList couriers =
        words({u"BETO", u"CHICO", u"DUDA", u"FININHO", u"GORDO", u"JOTA", u"TONHO", u"ZECA"});
    const QStringList courierNames =
        words({u"ROBERTO ALVES", u"FRANCISCO LIMA", u"EDUARDO RAMOS", u"MARCOS PAIVA",
               u"GERALDO NUNES", u"JOSÉ TAVARES", u"ANTÔNIO ROCHA", u"JOSÉ CARLOS MOURA"});
    const QStringList positions = words(
        {u"Livre", u"Livre", u"Em atendimento", u"Livre", u"Faltou", u"Livre", u"Livre", u"Livre"});
    for (int i = 0; i < couriers.size(); ++i) {
        reg::Courier c;
        c.status = i >= 6 ? reg::inactiveStatus() : reg::activeStatus();
        c.admitted = today.addDays(-700 + i * 40);
        c.taxNumber = makeCpf(rng);
        c.shortName = couriers[i];
        c.name = courierNames[i];
        c.phone1 = phone(rng);
        c.address.street =
            QStringLiteral("%1, %2").arg(streets[(i + 3) % streets.size()]).arg(200 + i);
        c.address.district = districts[(i + 2) % districts.size()];
        c.address.city = QStringLiteral("SÃO PAULO");
        c.address.state = QStringLiteral("SP");
        c.salary = 160000;
        c.fee = 800 + 100 * (i % 4);
        reg::saveCourier(store, c, admin);
        if (positions[i] != reg::freePosition())
            dispatch::moveCourier(store, couriers[i], positions[i]);
    }

    // Suppliers.
    const QStringList suppliers = words(
        {u"POSTO BOA VIAGEM", u"MOTO PEÇAS SILVA", u"PAPELARIA MODELO", u"SEGURADORA AMPARO"});
    for (int i = 0; i < suppliers.size(); ++i) {
        reg::Supplier s;
        s.status = reg::activeStatus();
        s.registered = today.addDays(-300 + i * 30);
        s.taxNumber = makeCnpj(rng);
        s.name = suppliers[i];
        s.phone1 = phone(rng);
        s.address.street =
            QStringLiteral("%1, %2").arg(streets[(i + 5) % streets.size()]).arg(40 + i);
        s.address.city = QStringLiteral("SÃO PAULO");
        s.address.state = QStringLiteral("SP");
        s.bank = QStringLiteral("BANCO DO BRASIL");
        s.privatePerson = false;
        s.company = true;
        reg::saveSupplier(store, s, admin);
    }

    // Services.
    const QStringList services =
        words({u"ENTREGA CENTRO", u"ENTREGA ZONA SUL", u"ENTREGA ZONA NORTE", u"ENTREGA ZONA LESTE",
               u"ENTREGA ZONA OESTE", u"ENTREGA ABC", u"ENTREGA GUARULHOS", u"BANCO - DEPÓSITO",
               u"CARTÓRIO", u"COLETA DE DOCUMENTOS", u"RETIRADA DE EXAMES", u"MALOTE DIÁRIO",
               u"ENTREGA URGENTE", u"ENTREGA AGENDADA", u"PEQUENAS CARGAS"});
    QList<qint64> prices;
    for (int i = 0; i < services.size(); ++i) {
        prices << qint64(1500 + 500 * (i % 7) + 250 * (i % 3));
        dispatch::addService(store, services[i], prices.last());
    }

    // A month of dispatches with their money: the courier's fee owed to him, settled a week
    // later; the client's value in the cash book when paid at once, else to be received and
    // received after ten days for the older ones.
    const QStringList statuses =
        words({u"A caminho", u"Entregue", u"Não encontrado", u"Cancelado", u"Outros"});
    const QString feeType = QStringLiteral("ATENDIMENTO");
    const QString revenue = QStringLiteral("RECEITAS");
    const finance::LedgerKind& payables = finance::kindOf(finance::Ledger::Payables);
    const finance::LedgerKind& receivables = finance::kindOf(finance::Ledger::Receivables);
    auto cash = [&](const QDate& d, const QString& operation, const QString& document,
                    const QString& type, qint64 amount, const QString& text, const QString& group) {
        finance::CashMovement m;
        m.date = d;
        m.operation = operation;
        m.document = document;
        m.type = type;
        m.amount = amount;
        m.description = text;
        m.group = group;
        finance::postCash(store, m);
    };
    for (int day = 30; day >= 0; --day) {
        const QDate d = today.addDays(-day);
        if (d.dayOfWeek() == 7) continue;
        const int perDay = day == 0 ? 6 : 3 + rng.bounded(4);
        for (int k = 0; k < perDay; ++k) {
            const int c = rng.bounded(clientNames.size());
            const int m = rng.bounded(6);
            const int s = rng.bounded(services.size());
            const QString status =
                day == 0 ? statuses[k % 5]
                         : (rng.bounded(10) < 8 ? statuses[1] : statuses[rng.bounded(5)]);
            const bool cashPaid = rng.bounded(3) == 0;
            const qint64 fee = 800 + 100 * (m % 4);
            const QString clientAddress =
                QStringLiteral("%1, %2").arg(streets[c % streets.size()]).arg(10 + c * 17);

            dispatch::Dispatch a;
            a.attendant = k % 2 ? QStringLiteral("ANA PAULA") : admin;
            a.date = d;
            a.time = QStringLiteral("%1:%2")
                         .arg(8 + k * 2, 2, 10, QLatin1Char('0'))
                         .arg(rng.bounded(60), 2, 10, QLatin1Char('0'));
            a.clientPhone = clientPhones[c];
            a.clientContact = QStringLiteral("RECEPÇÃO");
            a.clientName = clientNames[c];
            a.clientAddress = clientAddress;
            a.clientKind = words({u"AVULSO", u"CONTRATO", u"OUTROS"})[c % 3];
            a.pickup.address = clientAddress;
            a.pickup.contact = QStringLiteral("PORTARIA");
            a.pickup.task = QStringLiteral("RETIRAR ENVELOPE");
            a.delivery.address =
                QStringLiteral("%1, %2").arg(streets[(c + 4) % streets.size()]).arg(300 + k);
            a.delivery.contact = QStringLiteral("SR. OLIVEIRA");
            a.delivery.task = QStringLiteral("ENTREGAR E COLHER ASSINATURA");
            a.courier = couriers[m];
            a.clientValue = prices[s];
            a.payment = cashPaid ? dispatch::cashPayment : dispatch::invoicePayment;
            a.service = services[s];
            a.returnTrip = rng.bounded(4) == 0 ? QStringLiteral("SIM") : QStringLiteral("NÃO");
            // A delivered job was taken on its way and marked "Entregue" when the courier
            // called in, so that its time to deliver is known.
            const bool delivered = status.compare(dispatch::delivered, Qt::CaseInsensitive) == 0;
            a.status = delivered ? statuses[0] : status;
            a.courierValue = fee;
            dispatch::add(store, a);
            if (delivered) {
                const QDateTime taken(d, QTime::fromString(a.time, QStringLiteral("HH:mm")));
                dispatch::setStatus(store, a.number, status,
                                    taken.addSecs(60 * (25 + (k * 17 + day * 7) % 50)));
                a.status = status;
            }
            const QString about = QStringLiteral("ATENDIMENTO NR. ") + a.number;

            finance::Bill owed;
            owed.entered = d;
            owed.status = day > 7 ? payables.settled : payables.open;
            owed.document = a.number;
            owed.type = feeType;
            owed.description = about;
            owed.party = couriers[m];
            owed.group = QStringLiteral("PESSOAL");
            owed.amount = fee;
            owed.due = d;
            if (day > 7) {
                owed.settled = d.addDays(7);
                owed.settledAmount = fee;
            }
            finance::saveBill(store, finance::Ledger::Payables, owed, false, today);

            if (cashPaid) {
                cash(d, finance::credit, a.number, feeType, prices[s], about, revenue);
                continue;
            }
            const bool received = day > 15;
            finance::Bill bill;
            bill.entered = d;
            bill.status = received ? receivables.settled : receivables.open;
            bill.document = a.number;
            bill.type = couriers[m];
            bill.description = about;
            bill.party = clientNames[c];
            bill.group = revenue;
            bill.amount = prices[s];
            bill.due = d.addDays(10);
            if (received) {
                bill.settled = d.addDays(10);
                bill.settledAmount = prices[s];
            }
            finance::saveBill(store, finance::Ledger::Receivables, bill, false, today);
            if (received)
                cash(d.addDays(10), finance::credit, a.number, feeType, prices[s],
                     QStringLiteral("RECEBIMENTO ") + clientNames[c], revenue);
        }
        if (d.day() == 5 || d.day() == 20)
            cash(d, finance::debit, QString(), QStringLiteral("ALUGUEL"), 120000,
                 QStringLiteral("ALUGUEL DA SALA"), QStringLiteral("DESPESAS FIXAS"));
        if (d.dayOfWeek() == 1)
            cash(d, finance::debit, QString(), QStringLiteral("COMBUSTÍVEL"),
                 25000 + rng.bounded(10000), QStringLiteral("COMBUSTÍVEL DAS MOTOS"),
                 QStringLiteral("DESPESAS VARIÁVEIS"));
    }

    // A receipt as RECIBO writes one: the payer's details from the register, the amount in
    // words in the receipts' own form, the company's letterhead.
    {
        finance::Receipt r;
        r.number = QStringLiteral("00001");
        r.payer = clientNames[0];
        if (const auto payer = finance::payerOf(store, r.payer)) {
            r.payerDocument = payer->document;
            r.address = payer->address;
            r.district = payer->district;
            r.city = payer->city;
            r.state = payer->state;
        }
        r.date = today.addDays(-3);
        r.amount = 12550;
        r.words = finance::receiptWords(r.amount);
        r.about = QStringLiteral("SERVIÇOS DE ENTREGA");
        r.receivedBy = admin;
        r.company = finance::receiptCompany(store);
        finance::addReceipt(store, r);
    }

    // The invoice of the last fortnight of the first client with open receivables, as
    // Faturas makes them.
    for (const QString& client : clientNames) {
        finance::InvoiceRequest request;
        request.client = client;
        request.from = today.addDays(-15);
        request.to = today;
        if (finance::makeInvoice(store, request, today)) break;
    }

    // Agenda.
    for (const QString& w : words({u"CONCLUÍDA", u"CANCELADA"}))
        agenda::addWord(store, agenda::WordList::Positions, w);
    const QStringList groups = words({u"DIRETORIA", u"OPERAÇÃO", u"FINANCEIRO"});
    for (const QString& w : groups)
        agenda::addWord(store, agenda::WordList::Groups, w);
    const QStringList events =
        words({u"REUNIÃO", u"VISITA A CLIENTE", u"MANUTENÇÃO DE MOTO", u"PAGAMENTO"});
    for (const QString& w : events)
        agenda::addWord(store, agenda::WordList::Events, w);
    // A week of appointments from today, three a day, and a few notices on its days.
    const QStringList hours{QStringLiteral("08:30"), QStringLiteral("10:00"),
                            QStringLiteral("14:00"), QStringLiteral("16:30")};
    int entry = 0;
    for (int day = 0; day < 7; ++day)
        for (int k = 0; k < 3; ++k, ++entry) {
            agenda::Entry e;
            e.date = today.addDays(day);
            e.hour = hours[(day + k) % 4];
            e.group = groups[entry % 3];
            if (day == 0 && k == 0) e.position = QStringLiteral("CONCLUÍDA");
            e.event = events[entry % 4];
            e.comment = QStringLiteral("Compromisso de demonstração.");
            agenda::saveEntry(store, e);
        }
    const QList<QPair<int, QString>> notices{{0, QStringLiteral("Renovar o seguro das motos.")},
                                             {2, QStringLiteral("Vence o aluguel do escritório.")},
                                             {5, QStringLiteral("Revisão das motos da frota.")}};
    for (const auto& [day, text] : notices)
        agenda::addNotice(store, formatDate(today.addDays(day)), text);
    unit.commit();
}

void prepareInstallation(const Installation& installation, Store& store, bool demo) {
    installation.initialise(store);
    if (demo && registers::partyCount(store, registers::Party::Client) == 0) seedDemo(store);
}

} // namespace rtx::session
