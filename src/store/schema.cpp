#include "schema.h"

#include "migrations.h"
#include "store.h"

namespace rtx {

namespace {

using enum ColType;

QList<Column> cols(std::initializer_list<const char16_t*> names, ColType type = Text) {
    QList<Column> out;
    for (const char16_t* n : names)
        out.append({QString::fromUtf16(n), type});
    return out;
}

QList<Column> range(const QString& prefix, int from, int to) {
    QList<Column> out;
    for (int i = from; i <= to; ++i)
        out.append({prefix + QString::number(i), Text});
    return out;
}

Column col(const char16_t* name, ColType type = Text) {
    return {QString::fromUtf16(name), type};
}

// The version of a row the screens edit, raised by the database at every UPDATE.
Column version() {
    return {QStringLiteral("versao"), Int};
}

// Clients, couriers and suppliers share one shape: C1..C34 and EMPE; dates and amounts
// have their own types.
QList<Column> registerColumns() {
    QList<Column> c{col(u"C1"), col(u"C2", Date)};
    c += range(QStringLiteral("C"), 3, 26);
    c += QList<Column>{col(u"C27", Money), col(u"C28", Money), col(u"C29", Date)};
    c += range(QStringLiteral("C"), 30, 34);
    c.append(col(u"EMPE"));
    c.append(version());
    return c;
}

// Finance documents: payables and receivables have the same columns.
QList<Column> accountColumns() {
    return QList<Column>{col(u"c1", Date)} + range(QStringLiteral("c"), 2, 11) +
           QList<Column>{col(u"c12", Money), col(u"c13", Date),  col(u"c14"),
                         col(u"c15", Date),  col(u"c16", Money), version()};
}

TableDef def(const char16_t* name, const char16_t* file, const char16_t* legacyTable,
             const char16_t* comment) {
    TableDef t;
    t.name = QString::fromUtf16(name);
    t.legacyFile = QString::fromUtf16(file);
    t.legacyTable = QString::fromUtf16(legacyTable);
    t.comment = QString::fromUtf16(comment);
    t.idColumn = QStringLiteral("rid");
    return t;
}

TableDef coded(TableDef t, const char16_t* codeColumn, int width) {
    t.codeColumn = QString::fromUtf16(codeColumn);
    t.codeWidth = width;
    return t;
}

QList<TableDef> build() {
    QList<TableDef> all;
    auto add = [&](TableDef t, QList<Column> columns, QStringList indexes) {
        if (!t.codeColumn.isEmpty()) columns.prepend({t.codeColumn, Text});
        t.columns = std::move(columns);
        t.indexes = std::move(indexes);
        all.append(std::move(t));
    };
    const auto list = [](const char16_t* column) { return cols({column}); };

    // Company and branches.
    add(def(u"empresa", u"A1.Mdb", u"A1",
            u"the company, one row: e1 name, e2 telephone, e3 address, e4 district, e5 city, "
            u"e6 state, e7 postcode, e8 e-mail, e9 CNPJ, e10 kind of PIX key (\"CNPJ\", "
            u"\"E-MAIL\", \"TELEFONE\", \"ALEAT\u00d3RIA\"), e11 PIX key, e12 beneficiary's "
            u"name and e13 city as the bank has them, e14 days an invoice is given"),
        range(QStringLiteral("e"), 1, 14), {});
    add(def(u"empresa2", u"A2.Mdb", u"A2", u"second company record, one row: A1"), list(u"A1"), {});
    {
        TableDef t = def(u"filiais", u"A3.Mdb", u"a3",
                         u"branches: cd key, x1 name (the save key), x2 telephone, x3 address, "
                         u"x4 district, x5 city, x6 state, x7 postcode, x8 e-mail, x9 CNPJ");
        t.idColumn = QStringLiteral("cd");
        add(t, range(QStringLiteral("x"), 1, 9), {QStringLiteral("x1")});
    }
    {
        TableDef t = def(u"funcionarios", u"A8.MDB", u"a3",
                         u"employees and users: cd key, x1 name (login), x2 telephone, x3 address, "
                         u"x4 admission date, x5 function, x6 commission, x7 salary, x8 password "
                         u"(an Argon2id hash, never the password), x9 work card, versao the row's "
                         u"version, troca_senha 1 "
                         u"when he must choose a new password at his next login, tentativas "
                         u"wrong passwords in a row, espera_ate the moment (ms since 1970, UTC) "
                         u"before which a login waits");
        t.idColumn = QStringLiteral("cd");
        add(t,
            range(QStringLiteral("x"), 1, 9) + QList<Column>{col(u"troca_senha", Int),
                                                             col(u"tentativas", Int),
                                                             col(u"espera_ate", Int), version()},
            {QStringLiteral("x1"), QStringLiteral("x8")});
    }
    add(def(u"permissoes", u"a5us.Mdb", u"a1",
            u"module permissions, one row per user and module: a1 the user's stored password "
            u"hash (the key of his rights), a2 his name, a4 the module, a5 \"Sim\" or "
            u"\"N\u00e3o\""),
        cols({u"a1", u"a2", u"a4", u"a5"}), {QStringLiteral("a1")});

    // Registers.
    add(coded(def(u"clientes", u"B1.Mdb", u"B1",
                  u"clients: C1 status, C2 registration date, C3 CNPJ/CPF, C4 RG or state "
                  u"registration, C5 name, C6 trade name, C7 contact, C8-C10 telephones, C11 "
                  u"e-mail, C12 site, C13-C17 address 1, C18-C22 address 2, C23 attended by, "
                  u"C24 contract due day, C25 kind of client, C26 way of charging, C27 monthly "
                  u"contract, C28 credit limit, C29 birth date, C30 site password, C31 remarks, "
                  u"C32/C33 private person or company (\"True\"/\"False\"), C34 region, EMPE "
                  u"user who saved last, prazo days his invoices are given (empty: the "
                  u"company's)"),
              u"CODIGO", 5),
        registerColumns() + QList<Column>{col(u"prazo")},
        {QStringLiteral("C8"), QStringLiteral("C9"), QStringLiteral("C10"), QStringLiteral("C5"),
         QStringLiteral("C3")});
    add(def(u"grupos_clientes", u"B2.Mdb", u"A1", u"client regions or groups: A1 name"),
        list(u"A1"), {QStringLiteral("A1")});
    add(coded(def(u"fornecedores", u"B3.mdb", u"B1",
                  u"suppliers: the columns of the clients; C18 bank, C19 branch, C20 account"),
              u"CODIGO", 5),
        registerColumns(),
        {QStringLiteral("C8"), QStringLiteral("C9"), QStringLiteral("C10"), QStringLiteral("C5"),
         QStringLiteral("C3")});
    add(def(u"formas_pagamento", u"B6.Mdb", u"A1", u"forms of payment: A1 name"), list(u"A1"),
        {QStringLiteral("A1")});
    add(def(u"tipos_financeiros", u"BB6.Mdb", u"A1", u"financial types: A1 name"), list(u"A1"),
        {QStringLiteral("A1")});
    add(def(u"grupos_contas", u"CB6.Mdb", u"A1", u"account groups: A1 name"), list(u"A1"),
        {QStringLiteral("A1")});
    add(coded(def(u"motoqueiros", u"M1.Mdb", u"B1",
                  u"couriers: C1 status (\"ATIVO\" serves), C2 admission, C3 CPF, C4 short name "
                  u"(the key dispatch knows him by), C5 name, C6 father, C7 mother, C8-C10 "
                  u"telephones, C11 title, C12 children, C13-C17 address, C18 licence expiry, "
                  u"C19 work card, C20 licence, C21 marital state, C22 insurance, C23 motorcycle, "
                  u"C25 position on the board, C27 salary, C28 fee per delivery, C29 birth date, "
                  u"C31 remarks, EMPE user who saved last"),
              u"CODIGO", 5),
        registerColumns(),
        {QStringLiteral("C4"), QStringLiteral("C5"), QStringLiteral("C1"), QStringLiteral("C3"),
         QStringLiteral("C8"), QStringLiteral("C9"), QStringLiteral("C10")});

    // Dispatch.
    add(coded(def(u"atendimentos", u"atende.Mdb", u"atende",
                  u"dispatches: a1 attendant, a2 date, a3 time, a4-a8 client (telephone, contact, "
                  u"name, address, type), a9-a12 pickup (address, contact, telephone, task), "
                  u"a13-a16 delivery, a17 remarks, a18 courier (C4 of the couriers), a19 value "
                  u"charged, a20 payment (\"A VISTA\"/\"FATURAR\"), a21 service, a22 return "
                  u"trip, ST status, VE courier's value, moto courier's value edited in billing, "
                  u"lanc the codes of the finance rows its money was posted in, entregue_em the "
                  u"moment it was marked delivered (yyyy-MM-ddTHH:mm:ss) and minutos_entrega "
                  u"the minutes from its date and time to that moment"),
              u"CODIGO", 7),
        QList<Column>{col(u"a1"), col(u"a2", Date)} + range(QStringLiteral("a"), 3, 18) +
            QList<Column>{col(u"a19", Money), col(u"a20"), col(u"a21"), col(u"a22"), col(u"ST"),
                          col(u"VE", Money), col(u"moto", Money), col(u"lanc"), col(u"entregue_em"),
                          col(u"minutos_entrega", Int), version()},
        {QStringLiteral("a2"), QStringLiteral("ST"), QStringLiteral("a18"), QStringLiteral("a6"),
         QStringLiteral("a4")});
    add(def(u"status_atendimento", u"sta.mdb", u"sta", u"dispatch status words: sta"), list(u"sta"),
        {QStringLiteral("sta")});
    add(coded(def(u"servicos", u"SERVI.mdb", u"SERVI",
                  u"service price table: A1 description, A2 value"),
              u"cod", 6),
        QList<Column>{col(u"A1"), col(u"A2", Money)}, {QStringLiteral("A1")});

    // Finance.
    add(coded(def(u"caixa", u"CA.MDB", u"Cada",
                  u"cash book: A1 date, A2 \"D\u00c9BITO\" or \"CR\u00c9DITO\", A3 document "
                  u"(a dispatch's code when posted by dispatch), A4 type, A5 amount, A6 "
                  u"description, A7 group"),
              u"codigo", 7),
        QList<Column>{col(u"A1", Date), col(u"A2"), col(u"A3"), col(u"A4"), col(u"A5", Money),
                      col(u"A6"), col(u"A7")},
        {QStringLiteral("A1"), QStringLiteral("A7"), QStringLiteral("A3")});
    add(coded(def(u"contas_pagar", u"a15.Mdb", u"a1",
                  u"payables: c1 entry date, c2 \"A pagar\"/\"Paga\", c3 document (a dispatch's "
                  u"code), c4 type, c5 description, c6 supplier, c7 group, c8 branch, c9 account, "
                  u"c10 cheque, c11 third-party cheque, c12 amount, c13 due date, c14 remarks, "
                  u"c15 payment date, c16 amount paid"),
              u"codigo", 5),
        accountColumns(),
        {QStringLiteral("c3"), QStringLiteral("c13"), QStringLiteral("c6"), QStringLiteral("c2"),
         QStringLiteral("c1")});
    add(coded(def(u"contas_receber", u"a16.Mdb", u"a1",
                  u"receivables: the columns of the payables; c2 \"A receber\"/\"Recebida\", "
                  u"c6 client, c15 receipt date, c16 amount received"),
              u"codigo", 5),
        accountColumns(),
        {QStringLiteral("c3"), QStringLiteral("c13"), QStringLiteral("c6"), QStringLiteral("c2"),
         QStringLiteral("c1")});
    add(coded(def(u"recibos", u"RECI.Mdb", u"RECI",
                  u"receipts: R2 payer, R3 CNPJ/CPF, R4 date, R5-R8 address, R9 amount, R10 "
                  u"amount in words, R11 referring to, R12 bank and cheque, R13 received by, "
                  u"R15-R21 the company as it was"),
              u"CODIGO", 5),
        QList<Column>{col(u"R2"), col(u"R3"), col(u"R4", Date)} + range(QStringLiteral("R"), 5, 8) +
            QList<Column>{col(u"R9", Money)} + range(QStringLiteral("R"), 10, 13) +
            range(QStringLiteral("R"), 15, 21),
        {QStringLiteral("R4"), QStringLiteral("R2")});

    // Invoices (new with the PIX charge: no file of the old installation).
    add(coded(def(u"faturas", u"", u"",
                  u"invoices: f1 client's code, f2 client's name, f3-f4 the period, f5 total, "
                  u"f6 due date, f7 the PIX transaction id, f8 date made, f9 \"Aberta\" or "
                  u"\"Paga\", f10 date paid"),
              u"codigo", 6),
        QList<Column>{col(u"f1"), col(u"f2"), col(u"f3", Date), col(u"f4", Date), col(u"f5", Money),
                      col(u"f6", Date), col(u"f7"), col(u"f8", Date), col(u"f9"),
                      col(u"f10", Date)},
        {QStringLiteral("f3")});
    add(def(u"faturas_contas", u"", u"",
            u"the receivables of each invoice: f1 the invoice's code, f2 the receivable's code "
            u"(on one invoice at most)"),
        cols({u"f1", u"f2"}), {});

    // Agenda.
    add(coded(def(u"agenda", u"AGENDA.Mdb", u"AGENDA",
                  u"agenda entries: A1 date, A2 hour, A3 group, A4 position, A5 event, OB "
                  u"comments"),
              u"CODIGO", 7),
        QList<Column>{col(u"A1", Date), col(u"A2"), col(u"A3"), col(u"A4"), col(u"A5"), col(u"OB"),
                      version()},
        {QStringLiteral("A1")});
    add(def(u"agenda_posicoes", u"AGE1.mdb", u"AGE", u"agenda positions: AGE"), list(u"AGE"),
        {QStringLiteral("AGE")});
    add(def(u"agenda_grupos", u"AGE2.mdb", u"AGE", u"agenda groups: AGE"), list(u"AGE"),
        {QStringLiteral("AGE")});
    add(def(u"agenda_eventos", u"AGE3.mdb", u"AGE", u"agenda events: AGE"), list(u"AGE"),
        {QStringLiteral("AGE")});
    add(def(u"agenda_avisos", u"AGE4.mdb", u"AGE",
            u"notices by date: A1 the date as shown, a2 the notice"),
        cols({u"A1", u"a2"}), {QStringLiteral("A1")});

    // Report work tables, private to each station.
    auto work = [&](TableDef t, QList<Column> columns) {
        t.workTable = true;
        add(std::move(t), std::move(columns), {});
    };
    work(def(u"rel_atendimentos", u"atendex.mdb", u"atende",
             u"dispatch report rows: DI, DF the period, MOTO the name chosen, ve and vMOTO the "
             u"courier's values, then the dispatch's own columns"),
         QList<Column>{col(u"DI", Date), col(u"DF", Date), col(u"MOTO"), col(u"ve", Money),
                       col(u"CODIGO"), col(u"a1"), col(u"ST"), col(u"a2", Date)} +
             range(QStringLiteral("a"), 3, 18) +
             QList<Column>{col(u"a19", Money), col(u"a20"), col(u"a21"), col(u"a22"),
                           col(u"vMOTO", Money)});
    work(def(u"rel_caixa_impressao", u"TMP.MDB", u"TMP",
             u"cash search print rows: A1 the date and A2-A8 the operation word, as text, as "
             u"the old sheet had them; then the search grid's own columns"),
         range(QStringLiteral("A"), 1, 8) + QList<Column>{col(u"DOC"), col(u"TIPO"), col(u"DESCR"),
                                                          col(u"PLANO"), col(u"DE", Money),
                                                          col(u"CR", Money), col(u"CODIGO")});
    work(def(u"rel_caixa", u"Rela2.Mdb", u"Rela2", u"cash book report rows, as text"),
         cols({u"CODIGO", u"A1", u"A2", u"A3", u"A4", u"A6", u"PLANO", u"DE", u"CR", u"L", u"SALDO",
               u"limi"}));
    work(def(u"rel_contas", u"TMP3.MDB", u"a1", u"payable and receivable print rows, as text"),
         cols({u"nome", u"DI", u"DF"}) + range(QStringLiteral("A"), 1, 7));
    work(def(u"rel_agenda", u"AGE5.mdb", u"AGE", u"agenda print rows, as text"),
         cols({u"Codigo", u"DI", u"DF", u"GRUPO", u"A1"}));
    return all;
}

} // namespace

const Column* TableDef::column(const QString& n) const {
    for (const Column& c : columns)
        if (c.name.compare(n, Qt::CaseInsensitive) == 0) return &c;
    return nullptr;
}

const QList<TableDef>& tables() {
    static const QList<TableDef> all = build();
    return all;
}

const TableDef* findTable(const QString& nameOrFile) {
    for (const TableDef& t : tables())
        if (t.name.compare(nameOrFile, Qt::CaseInsensitive) == 0 ||
            t.legacyFile.compare(nameOrFile, Qt::CaseInsensitive) == 0)
            return &t;
    return nullptr;
}

const TableDef& table(const QString& name) {
    if (const TableDef* t = findTable(name)) return *t;
    throw StoreError(QStringLiteral("Tabela desconhecida: %1").arg(name));
}

int schemaVersion() {
    return migrations().last().version;
}

const QStringList& permissionModules() {
    static const QStringList modules{QStringLiteral("Atendimento"),
                                     QStringLiteral("  "),
                                     QStringLiteral("Clientes"),
                                     QStringLiteral("Courier (entregador)"),
                                     QStringLiteral("Funcion\u00e1rios"),
                                     QStringLiteral("Fornecedores"),
                                     QStringLiteral("  "),
                                     QStringLiteral("Caixa"),
                                     QStringLiteral("Contas a pagar"),
                                     QStringLiteral("Contas a receber"),
                                     QStringLiteral("Recibo"),
                                     QStringLiteral("Cobran\u00e7a"),
                                     QStringLiteral("Faturas"),
                                     QStringLiteral("  "),
                                     QStringLiteral("Agenda"),
                                     QStringLiteral("Empresa"),
                                     QStringLiteral("Backup"),
                                     QStringLiteral("Painel")};
    return modules;
}

} // namespace rtx
