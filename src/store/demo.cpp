// A believable month of a small courier office, so that every screen shows something.

#include "formats.h"
#include "installation.h"

#include "finance/core/invoices.h"
#include "finance/core/receipts.h"

#include <QRandomGenerator>

namespace rtx {

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
    QRandomGenerator rng(20201225);
    UnitOfWork unit(store);
    auto insert = [&](const QString& table, const QVariantMap& values) {
        store.insert(table, values);
    };

    const QStringList districts = words({u"CENTRO", u"PINHEIROS", u"MOOCA", u"LAPA", u"SANTANA",
                                         u"TATUAPÉ", u"VILA MARIANA", u"BELA VISTA"});
    const QStringList streets = words(
        {u"RUA AUGUSTA", u"AV. PAULISTA", u"RUA DA CONSOLAÇÃO", u"RUA VERGUEIRO", u"AV. REBOUÇAS",
         u"RUA DOS PINHEIROS", u"RUA TUIUTI", u"AV. SANTO AMARO", u"RUA VOLUNTÁRIOS DA PÁTRIA"});

    // Lists.
    for (const QString& g :
         words({u"CENTRO", u"ZONA SUL", u"ZONA NORTE", u"ZONA LESTE", u"ZONA OESTE"}))
        insert(QStringLiteral("grupos_clientes"), {{QStringLiteral("A1"), g}});
    for (const QString& g : words({u"DINHEIRO", u"CHEQUE", u"BOLETO", u"PIX", u"CARTÃO"}))
        insert(QStringLiteral("formas_pagamento"), {{QStringLiteral("A1"), g}});
    for (const QString& g :
         words({u"ATENDIMENTO", u"COMBUSTÍVEL", u"MANUTENÇÃO", u"ALUGUEL", u"DIVERSOS"}))
        insert(QStringLiteral("tipos_financeiros"), {{QStringLiteral("A1"), g}});
    for (const QString& g :
         words({u"RECEITAS", u"DESPESAS FIXAS", u"DESPESAS VARIÁVEIS", u"PESSOAL"}))
        insert(QStringLiteral("grupos_contas"), {{QStringLiteral("A1"), g}});

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
        insert(QStringLiteral("funcionarios"),
               {{QStringLiteral("x1"), QString::fromUtf16(e.name)},
                {QStringLiteral("x2"), QStringLiteral("(11)9876-5432")},
                {QStringLiteral("x5"), QString::fromUtf16(e.role)},
                {QStringLiteral("x8"), QString::fromUtf16(e.password)}});
        for (const QString& m : permissionModules())
            insert(QStringLiteral("permissoes"),
                   {{QStringLiteral("a1"), QString::fromUtf16(e.password)},
                    {QStringLiteral("a2"), QString::fromUtf16(e.name)},
                    {QStringLiteral("a4"), m},
                    {QStringLiteral("a5"),
                     e.modules.contains(m) ? QStringLiteral("Sim") : QStringLiteral("Não")}});
    }
    insert(QStringLiteral("filiais"), {{QStringLiteral("x1"), QStringLiteral("ROTALIX CAMPINAS")},
                                       {QStringLiteral("x2"), QStringLiteral("(19)3232-1010")},
                                       {QStringLiteral("x3"), QStringLiteral("AV. NORTE-SUL, 500")},
                                       {QStringLiteral("x5"), QStringLiteral("CAMPINAS")},
                                       {QStringLiteral("x6"), QStringLiteral("SP")}});

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
        const QString tel = phone(rng);
        clientPhones << tel;
        insert(
            QStringLiteral("clientes"),
            {{QStringLiteral("CODIGO"), padCode(i + 1, 5)},
             {QStringLiteral("C1"), i == 17 ? QStringLiteral("INATIVO") : QStringLiteral("ATIVO")},
             {QStringLiteral("C2"), today.addDays(-400 + i * 11)},
             {QStringLiteral("C3"), person ? makeCpf(rng) : makeCnpj(rng)},
             {QStringLiteral("C5"), clientNames[i]},
             {QStringLiteral("C6"), clientNames[i].section(QLatin1Char(' '), 0, 1)},
             {QStringLiteral("C7"),
              words({u"MARCOS", u"JULIANA", u"RENATA", u"PEDRO", u"LUCAS"})[i % 5]},
             {QStringLiteral("C8"), tel},
             {QStringLiteral("C9"), i % 3 == 0 ? phone(rng) : QString()},
             {QStringLiteral("C11"), QStringLiteral("contato%1@exemplo.com.br").arg(i + 1)},
             {QStringLiteral("C13"), QStringLiteral("0%1-000").arg(1000 + i * 37)},
             {QStringLiteral("C14"),
              QStringLiteral("%1, %2").arg(streets[i % streets.size()]).arg(10 + i * 17)},
             {QStringLiteral("C15"), districts[i % districts.size()]},
             {QStringLiteral("C16"), QStringLiteral("SÃO PAULO")},
             {QStringLiteral("C17"), QStringLiteral("SP")},
             {QStringLiteral("C23"), QStringLiteral("ANA PAULA")},
             {QStringLiteral("C25"), words({u"AVULSO", u"CONTRATO", u"OUTROS"})[i % 3]},
             {QStringLiteral("C26"), words({u"BOLETO", u"RECIBO", u"OUTROS"})[i % 3]},
             {QStringLiteral("C27"), qint64(i % 3 == 1 ? 150000 : 0)},
             {QStringLiteral("C28"), qint64(500000)},
             {QStringLiteral("C31"),
              i % 4 == 0 ? QStringLiteral("Entregar somente em horário comercial.") : QString()},
             {QStringLiteral("C32"), person ? QStringLiteral("True") : QStringLiteral("False")},
             {QStringLiteral("C33"), person ? QStringLiteral("False") : QStringLiteral("True")},
             {QStringLiteral("C34"),
              words({u"CENTRO", u"ZONA SUL", u"ZONA NORTE", u"ZONA LESTE", u"ZONA OESTE"})[i % 5]},
             {QStringLiteral("EMPE"), QStringLiteral("ADMIN")}});
    }

    // Couriers: the last two are no longer in service.
    const QStringList couriers =
        words({u"BETO", u"CHICO", u"DUDA", u"FININHO", u"GORDO", u"JOTA", u"TONHO", u"ZECA"});
    const QStringList courierNames =
        words({u"ROBERTO ALVES", u"FRANCISCO LIMA", u"EDUARDO RAMOS", u"MARCOS PAIVA",
               u"GERALDO NUNES", u"JOSÉ TAVARES", u"ANTÔNIO ROCHA", u"JOSÉ CARLOS MOURA"});
    for (int i = 0; i < couriers.size(); ++i)
        insert(
            QStringLiteral("motoqueiros"),
            {{QStringLiteral("CODIGO"), padCode(i + 1, 5)},
             {QStringLiteral("C1"), i >= 6 ? QStringLiteral("INATIVO") : QStringLiteral("ATIVO")},
             {QStringLiteral("C2"), today.addDays(-700 + i * 40)},
             {QStringLiteral("C3"), makeCpf(rng)},
             {QStringLiteral("C4"), couriers[i]},
             {QStringLiteral("C5"), courierNames[i]},
             {QStringLiteral("C8"), phone(rng)},
             {QStringLiteral("C14"),
              QStringLiteral("%1, %2").arg(streets[(i + 3) % streets.size()]).arg(200 + i)},
             {QStringLiteral("C15"), districts[(i + 2) % districts.size()]},
             {QStringLiteral("C16"), QStringLiteral("SÃO PAULO")},
             {QStringLiteral("C17"), QStringLiteral("SP")},
             {QStringLiteral("C25"), words({u"Livre", u"Livre", u"Em atendimento", u"Livre",
                                            u"Faltou", u"Livre", u"Livre", u"Livre"})[i]},
             {QStringLiteral("C27"), qint64(160000)},
             {QStringLiteral("C28"), qint64(800 + 100 * (i % 4))},
             {QStringLiteral("EMPE"), QStringLiteral("ADMIN")}});

    // Suppliers.
    const QStringList suppliers = words(
        {u"POSTO BOA VIAGEM", u"MOTO PEÇAS SILVA", u"PAPELARIA MODELO", u"SEGURADORA AMPARO"});
    for (int i = 0; i < suppliers.size(); ++i)
        insert(QStringLiteral("fornecedores"),
               {{QStringLiteral("CODIGO"), padCode(i + 1, 5)},
                {QStringLiteral("C1"), QStringLiteral("ATIVO")},
                {QStringLiteral("C2"), today.addDays(-300 + i * 30)},
                {QStringLiteral("C3"), makeCnpj(rng)},
                {QStringLiteral("C5"), suppliers[i]},
                {QStringLiteral("C8"), phone(rng)},
                {QStringLiteral("C14"),
                 QStringLiteral("%1, %2").arg(streets[(i + 5) % streets.size()]).arg(40 + i)},
                {QStringLiteral("C16"), QStringLiteral("SÃO PAULO")},
                {QStringLiteral("C17"), QStringLiteral("SP")},
                {QStringLiteral("C18"), QStringLiteral("BANCO DO BRASIL")},
                {QStringLiteral("C32"), QStringLiteral("False")},
                {QStringLiteral("C33"), QStringLiteral("True")},
                {QStringLiteral("EMPE"), QStringLiteral("ADMIN")}});

    // Services.
    const QStringList services =
        words({u"ENTREGA CENTRO", u"ENTREGA ZONA SUL", u"ENTREGA ZONA NORTE", u"ENTREGA ZONA LESTE",
               u"ENTREGA ZONA OESTE", u"ENTREGA ABC", u"ENTREGA GUARULHOS", u"BANCO - DEPÓSITO",
               u"CARTÓRIO", u"COLETA DE DOCUMENTOS", u"RETIRADA DE EXAMES", u"MALOTE DIÁRIO",
               u"ENTREGA URGENTE", u"ENTREGA AGENDADA", u"PEQUENAS CARGAS"});
    QList<qint64> prices;
    for (int i = 0; i < services.size(); ++i) {
        prices << qint64(1500 + 500 * (i % 7) + 250 * (i % 3));
        insert(QStringLiteral("servicos"), {{QStringLiteral("cod"), padCode(i + 1, 6)},
                                            {QStringLiteral("A1"), services[i]},
                                            {QStringLiteral("A2"), prices.last()}});
    }

    // A month of dispatches with their postings.
    const QStringList statuses =
        words({u"A caminho", u"Entregue", u"Não encontrado", u"Cancelado", u"Outros"});
    int cash = 0, payable = 0, receivable = 0;
    auto cashRow = [&](const QDate& d, const QString& op, const QString& doc, const QString& type,
                       qint64 amount, const QString& text, const QString& group) {
        insert(QStringLiteral("caixa"), {{QStringLiteral("codigo"), padCode(++cash, 7)},
                                         {QStringLiteral("A1"), d},
                                         {QStringLiteral("A2"), op},
                                         {QStringLiteral("A3"), doc},
                                         {QStringLiteral("A4"), type},
                                         {QStringLiteral("A5"), amount},
                                         {QStringLiteral("A6"), text},
                                         {QStringLiteral("A7"), group}});
    };
    int n = 0;
    for (int day = 30; day >= 0; --day) {
        const QDate d = today.addDays(-day);
        if (d.dayOfWeek() == 7) continue;
        const int perDay = day == 0 ? 6 : 3 + rng.bounded(4);
        for (int k = 0; k < perDay; ++k) {
            ++n;
            const int c = rng.bounded(clientNames.size());
            const int m = rng.bounded(6);
            const int s = rng.bounded(services.size());
            const QString code = padCode(n, 7);
            const QString status =
                day == 0 ? statuses[k % 5]
                         : (rng.bounded(10) < 8 ? statuses[1] : statuses[rng.bounded(5)]);
            const bool cashPaid = rng.bounded(3) == 0;
            const qint64 fee = 800 + 100 * (m % 4);
            insert(QStringLiteral("atendimentos"),
                   {{QStringLiteral("CODIGO"), code},
                    {QStringLiteral("a1"),
                     k % 2 ? QStringLiteral("ANA PAULA") : QStringLiteral("ADMIN")},
                    {QStringLiteral("a2"), d},
                    {QStringLiteral("a3"), QStringLiteral("%1:%2")
                                               .arg(8 + k * 2, 2, 10, QLatin1Char('0'))
                                               .arg(rng.bounded(60), 2, 10, QLatin1Char('0'))},
                    {QStringLiteral("a4"), clientPhones[c]},
                    {QStringLiteral("a5"), QStringLiteral("RECEPÇÃO")},
                    {QStringLiteral("a6"), clientNames[c]},
                    {QStringLiteral("a7"),
                     QStringLiteral("%1, %2").arg(streets[c % streets.size()]).arg(10 + c * 17)},
                    {QStringLiteral("a8"), words({u"AVULSO", u"CONTRATO", u"OUTROS"})[c % 3]},
                    {QStringLiteral("a9"),
                     QStringLiteral("%1, %2").arg(streets[c % streets.size()]).arg(10 + c * 17)},
                    {QStringLiteral("a10"), QStringLiteral("PORTARIA")},
                    {QStringLiteral("a12"), QStringLiteral("RETIRAR ENVELOPE")},
                    {QStringLiteral("a13"),
                     QStringLiteral("%1, %2").arg(streets[(c + 4) % streets.size()]).arg(300 + k)},
                    {QStringLiteral("a14"), QStringLiteral("SR. OLIVEIRA")},
                    {QStringLiteral("a16"), QStringLiteral("ENTREGAR E COLHER ASSINATURA")},
                    {QStringLiteral("a18"), couriers[m]},
                    {QStringLiteral("a19"), prices[s]},
                    {QStringLiteral("a20"),
                     cashPaid ? QStringLiteral("A VISTA") : QStringLiteral("FATURAR")},
                    {QStringLiteral("a21"), services[s]},
                    {QStringLiteral("a22"),
                     rng.bounded(4) == 0 ? QStringLiteral("SIM") : QStringLiteral("NÃO")},
                    {QStringLiteral("ST"), status},
                    {QStringLiteral("VE"), fee},
                    {QStringLiteral("moto"), qint64(0)}});
            insert(QStringLiteral("contas_pagar"),
                   {{QStringLiteral("codigo"), padCode(++payable, 5)},
                    {QStringLiteral("c1"), d},
                    {QStringLiteral("c2"),
                     day > 7 ? QStringLiteral("Paga") : QStringLiteral("A pagar")},
                    {QStringLiteral("c3"), code},
                    {QStringLiteral("c4"), QStringLiteral("ATENDIMENTO")},
                    {QStringLiteral("c5"), QStringLiteral("ATENDIMENTO NR. ") + code},
                    {QStringLiteral("c6"), couriers[m]},
                    {QStringLiteral("c7"), QStringLiteral("PESSOAL")},
                    {QStringLiteral("c12"), fee},
                    {QStringLiteral("c13"), d},
                    {QStringLiteral("c15"),
                     day > 7 ? QVariant(d.addDays(7)) : QVariant(QMetaType(QMetaType::QDate))},
                    {QStringLiteral("c16"), day > 7 ? fee : qint64(0)}});
            if (cashPaid) {
                cashRow(d, QStringLiteral("CRÉDITO"), code, QStringLiteral("ATENDIMENTO"),
                        prices[s], QStringLiteral("ATENDIMENTO NR. ") + code,
                        QStringLiteral("RECEITAS"));
            } else {
                const bool received = day > 15;
                insert(QStringLiteral("contas_receber"),
                       {{QStringLiteral("codigo"), padCode(++receivable, 5)},
                        {QStringLiteral("c1"), d},
                        {QStringLiteral("c2"),
                         received ? QStringLiteral("Recebida") : QStringLiteral("A receber")},
                        {QStringLiteral("c3"), code},
                        {QStringLiteral("c4"), couriers[m]},
                        {QStringLiteral("c5"), QStringLiteral("ATENDIMENTO NR. ") + code},
                        {QStringLiteral("c6"), clientNames[c]},
                        {QStringLiteral("c7"), QStringLiteral("RECEITAS")},
                        {QStringLiteral("c12"), prices[s]},
                        {QStringLiteral("c13"), d.addDays(10)},
                        {QStringLiteral("c15"), received ? QVariant(d.addDays(10))
                                                         : QVariant(QMetaType(QMetaType::QDate))},
                        {QStringLiteral("c16"), received ? prices[s] : qint64(0)}});
                if (received)
                    cashRow(d.addDays(10), QStringLiteral("CRÉDITO"), code,
                            QStringLiteral("ATENDIMENTO"), prices[s],
                            QStringLiteral("RECEBIMENTO ") + clientNames[c],
                            QStringLiteral("RECEITAS"));
            }
        }
        if (d.day() == 5 || d.day() == 20)
            cashRow(d, QStringLiteral("DÉBITO"), QString(), QStringLiteral("ALUGUEL"), 120000,
                    QStringLiteral("ALUGUEL DA SALA"), QStringLiteral("DESPESAS FIXAS"));
        if (d.dayOfWeek() == 1)
            cashRow(d, QStringLiteral("DÉBITO"), QString(), QStringLiteral("COMBUSTÍVEL"),
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
        r.receivedBy = QStringLiteral("ADMIN");
        r.company = finance::receiptCompany(store);
        finance::addReceipt(store, r);
    }

    // The office's PIX key, and the invoice of the last fortnight of the first client with
    // open receivables, as Faturas makes them.
    store.execute(QStringLiteral("UPDATE empresa SET e10 = ?, e11 = ?, e12 = ?, e13 = ?, e14 = ?"),
                  {QStringLiteral("CNPJ"), QStringLiteral("11.222.333/0001-81"),
                   QStringLiteral("ROTALIX ENTREGAS"), QStringLiteral("SAO PAULO"),
                   QStringLiteral("10")});
    for (const QString& client : clientNames) {
        finance::InvoiceRequest request;
        request.client = client;
        request.from = today.addDays(-15);
        request.to = today;
        if (finance::makeInvoice(store, request, today)) break;
    }

    // Agenda.
    for (const QString& w : words({u"CONCLUÍDA", u"CANCELADA"}))
        insert(QStringLiteral("agenda_posicoes"), {{QStringLiteral("AGE"), w}});
    for (const QString& w : words({u"DIRETORIA", u"OPERAÇÃO", u"FINANCEIRO"}))
        insert(QStringLiteral("agenda_grupos"), {{QStringLiteral("AGE"), w}});
    for (const QString& w :
         words({u"REUNIÃO", u"VISITA A CLIENTE", u"MANUTENÇÃO DE MOTO", u"PAGAMENTO"}))
        insert(QStringLiteral("agenda_eventos"), {{QStringLiteral("AGE"), w}});
    // A week of appointments from today, three a day, and a few notices on its days.
    const QStringList hours{QStringLiteral("08:30"), QStringLiteral("10:00"),
                            QStringLiteral("14:00"), QStringLiteral("16:30")};
    int entry = 0;
    for (int day = 0; day < 7; ++day)
        for (int k = 0; k < 3; ++k, ++entry)
            insert(QStringLiteral("agenda"),
                   {{QStringLiteral("CODIGO"), padCode(entry + 1, 7)},
                    {QStringLiteral("A1"), today.addDays(day)},
                    {QStringLiteral("A2"), hours[(day + k) % 4]},
                    {QStringLiteral("A3"),
                     words({u"DIRETORIA", u"OPERAÇÃO", u"FINANCEIRO"})[entry % 3]},
                    {QStringLiteral("A4"),
                     day == 0 && k == 0 ? QStringLiteral("CONCLUÍDA") : QStringLiteral("ABERTA")},
                    {QStringLiteral("A5"), words({u"REUNIÃO", u"VISITA A CLIENTE",
                                                  u"MANUTENÇÃO DE MOTO", u"PAGAMENTO"})[entry % 4]},
                    {QStringLiteral("OB"), QStringLiteral("Compromisso de demonstração.")}});
    const QList<QPair<int, QString>> notices{{0, QStringLiteral("Renovar o seguro das motos.")},
                                             {2, QStringLiteral("Vence o aluguel do escritório.")},
                                             {5, QStringLiteral("Revisão das motos da frota.")}};
    for (const auto& [day, text] : notices)
        insert(
            QStringLiteral("agenda_avisos"),
            {{QStringLiteral("A1"), formatDate(today.addDays(day))}, {QStringLiteral("a2"), text}});
    unit.commit();
}

} // namespace rtx
