// The rules of the registers without a screen, on a real installation: each record against
// its table's columns, the checks of a save in their order, what each kind of save writes
// and keeps, finding and walking by code, the search tab's query read page by page, an
// employee with his rights saved as one, the company and its branches, the lists and the
// tax numbers.

#include "agenda/core/agenda.h"
#include "dispatch/core/records.h"
#include "finance/core/cashbook.h"
#include "finance/core/invoices.h"
#include "finance/core/ledger.h"
#include "finance/core/receipts.h"
#include "registerdesk.h"
#include "registers/core/company.h"
#include "registers/core/docnumbers.h"
#include "registers/core/employees.h"
#include "registers/core/lists.h"
#include "registers/core/parties.h"
#include "registers/core/passwords.h"

using namespace rtx;
using namespace rtx::registers;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

QStringList partyRow(Party party, const QString& code, const QStringList& columns) {
    return rowTexts(u"SELECT * FROM %1 WHERE CODIGO = ?"_s.arg(partyTable(party)), {code}, columns);
}

Client client(const QString& name) {
    Client c;
    c.status = activeStatus();
    c.registered = QDate(2024, 3, 1);
    c.name = name;
    return c;
}

template <class R> void checkColumns(const QList<Field<R>>& fields, const QString& table) {
    const TableDef& def = rtx::table(table);
    for (const Field<R>& f : fields) {
        const Column* c = def.column(f.column);
        QVERIFY2(c, qPrintable(table + u'.' + f.column));
        const ColType expected = f.column == versionColumn()  ? ColType::Int
                                 : f.kind == ValueKind::Date  ? ColType::Date
                                 : f.kind == ValueKind::Money ? ColType::Money
                                                              : ColType::Text;
        QVERIFY2(c->type == expected, qPrintable(table + u'.' + f.column));
    }
}

} // namespace

class RegistersCoreTest : public QObject {
    Q_OBJECT

private slots:
    // Each member stands in a column of its table of the type it needs, no column twice;
    // a client goes to a row and comes back whole.
    void recordsAgainstTheirColumns() {
        checkColumns(clientFields(), partyTable(Party::Client));
        checkColumns(courierFields(), partyTable(Party::Courier));
        checkColumns(supplierFields(), partyTable(Party::Supplier));
        checkColumns(employeeFields(), employeeTable());
        checkColumns(companyFields(), companyTable());
        checkColumns(branchFields(), branchTable());
        for (const auto ledger : {finance::Ledger::Payables, finance::Ledger::Receivables})
            checkColumns(finance::billFields(), finance::kindOf(ledger).table);
        checkColumns(finance::cashFields(), finance::cashTable);
        checkColumns(finance::receiptFields(), finance::receiptTable);
        checkColumns(finance::invoiceFields(), finance::invoiceTable());

        Client c = client(u"ACME"_s);
        c.address2.city = u"CAMPINAS"_s;
        c.creditLimit = 123456;
        c.birth = QDate(1990, 2, 28);
        c.privatePerson = false;
        c.company = true;
        const Client back = fromRow(toRow(c, clientFields()), clientFields());
        QCOMPARE(back.address2.city, u"CAMPINAS"_s);
        QCOMPARE(back.creditLimit, qint64(123456));
        QCOMPARE(back.birth, c.birth);
        QCOMPARE(back.registered, c.registered);
        QVERIFY(!back.privatePerson && back.company);
        QVERIFY(!fromRow(Row{{clientcol::birth, QDate()}}, clientFields()).birth);

        QCOMPARE(withoutQuotes(u"D'AVILA 'S'"_s), u"DAVILA S"_s);
    }

    // The dispatch, the service and the agenda's entry, likewise, each column once; a
    // dispatch with its two places goes to a row and comes back whole, and its blank texts
    // are kept as empty text, never as null (reports and searches compare with "").
    void dispatchAndAgendaAgainstTheirColumns() {
        checkColumns(dispatch::dispatchFields(), dispatch::col::table);
        checkColumns(dispatch::serviceFields(), dispatch::service::table);
        checkColumns(agenda::entryFields(), agenda::entriesTable);
        QStringList columns;
        for (const auto& f : dispatch::dispatchFields())
            columns << f.column.toUpper();
        columns.removeDuplicates();
        QCOMPARE(columns.size(), dispatch::dispatchFields().size());

        dispatch::Dispatch d;
        d.number = u"0000042"_s;
        d.date = QDate(2024, 2, 29);
        d.pickup = {u"RUA A, 1"_s, u"ANA"_s, u"1132145566"_s, u"RETIRAR"_s};
        d.delivery = {u"RUA B, 2"_s, u"BIA"_s, u"1140041234"_s, u"ENTREGAR"_s};
        d.clientValue = 123456;
        d.courierValue = 800;
        d.payment = dispatch::cashPayment;
        const auto& fields = dispatch::dispatchFields();
        QCOMPARE(fromRow(toRow(d, fields), fields), d);
        const QVariantMap stored = storedRow(dispatch::Dispatch(), fields);
        for (const auto& f : fields)
            if (f.kind == ValueKind::Text)
                QVERIFY2(!stored.value(f.column).toString().isNull(), qPrintable(f.column));

        agenda::Entry e;
        e.date = QDate(2026, 3, 10);
        e.event = u"REUNIÃO"_s;
        const agenda::Entry back = fromRow(toRow(e, agenda::entryFields()), agenda::entryFields());
        QCOMPARE(back.date, e.date);
        QCOMPARE(back.event + back.position, u"REUNIÃOABERTA"_s);
    }

    // The name is required (blanks are no name); the courier's name comes before his short
    // name; the employee's name before his password; the company needs its name.
    void checksInOrder() {
        const auto said = [](const std::optional<Problem>& p) {
            return p ? p->column + u' ' + p->message : u"ok"_s;
        };
        const auto blank = [](const QString& column, const QString& caption) {
            return u"%1 O campo [%2], não pode ficar em branco."_s.arg(column, caption);
        };
        QCOMPARE(said(checkClient(client(u"   "_s))), blank(u"C5"_s, u"NOME"_s));
        QCOMPARE(said(checkClient(client(u"X"_s))), u"ok"_s);
        QCOMPARE(said(checkSupplier(Supplier())), blank(u"C5"_s, u"NOME"_s));
        Courier courier;
        QCOMPARE(said(checkCourier(courier)), blank(u"C5"_s, u"NOME"_s));
        courier.name = u"EDUARDO"_s;
        QCOMPARE(said(checkCourier(courier)), blank(u"C4"_s, u"APELIDO OU SOBRENOME"_s));
        courier.shortName = u"DUDA"_s;
        QCOMPARE(said(checkCourier(courier)), u"ok"_s);
        Employee e;
        e.password = u"x"_s;
        QCOMPARE(said(checkEmployee(e)), blank(u"x1"_s, u"Nome"_s));
        e.name = u"JOSÉ"_s;
        e.password = u" "_s;
        QCOMPARE(said(checkEmployee(e)), blank(u"x8"_s, u"Senha"_s));
        QCOMPARE(said(checkEmployee(e, true)), u"ok"_s); // saved: he keeps his
        QCOMPARE(said(checkCompany(Company())), blank(u"e1"_s, u"Nome"_s));
        QCOMPARE(said(checkParty(Party::Courier, Row{{couriercol::name, u"EDU"_s}})),
                 blank(u"C4"_s, u"APELIDO OU SOBRENOME"_s));
    }

    // A new client draws its code, a second save of it is one row; money, dates and the
    // options keep their values, the user who saved is kept, and an emptied date of birth
    // leaves the one on file. A courier saved is free on the board with C32 and C33 empty
    // and the columns without meaning carried; a supplier leaves C21 to C30 and empties C34.
    void partySaves() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();

        Client c = client(u"D'AVILA & FILHOS"_s);
        c.monthlyContract = 150050;
        c.birth = QDate(1980, 12, 25);
        c.privatePerson = false;
        c.company = true;
        c.code = saveClient(store, c, u"ANA"_s);
        QCOMPARE(c.code, u"00001"_s);
        c.birth.reset();
        c.contact = u"JOANA"_s;
        QCOMPARE(saveClient(store, c, u"BETO"_s), u"00001"_s);
        QCOMPARE(store.count(u"clientes"_s), qint64(1));
        QCOMPARE(partyRow(Party::Client, u"00001"_s,
                          {u"C2"_s, u"C5"_s, u"C7"_s, u"C27"_s, u"C29"_s, u"C32"_s, u"C33"_s,
                           u"EMPE"_s}),
                 (QStringList{u"01/03/2024"_s, u"D'AVILA & FILHOS"_s, u"JOANA"_s, u"1.500,50"_s,
                              u"25/12/1980"_s, u"False"_s, u"True"_s, u"BETO"_s}));
        const std::optional<Client> loaded = loadClient(store, u"00001"_s);
        QVERIFY(loaded);
        QCOMPARE(loaded->birth, QDate(1980, 12, 25));
        QCOMPARE(loaded->monthlyContract, qint64(150050));
        QVERIFY(!loadClient(store, u"00002"_s));

        Courier courier;
        courier.name = u"EDUARDO RAMOS"_s;
        courier.shortName = u"DUDA"_s;
        courier.position = u"A caminho"_s;
        courier.kept26 = u"guardado"_s;
        courier.fee = 1250;
        const QString code = saveCourier(store, courier, u"ANA"_s);
        store.execute(u"UPDATE motoqueiros SET C25 = ?, C32 = ? WHERE CODIGO = ?"_s,
                      {u"Em atendimento"_s, u"x"_s, code});
        std::optional<Courier> out = loadCourier(store, code);
        QVERIFY(out);
        saveCourier(store, *out, u"ANA"_s);
        QCOMPARE(partyRow(Party::Courier, code, {u"C25"_s, u"C26"_s, u"C28"_s, u"C32"_s, u"C33"_s}),
                 (QStringList{u"Livre"_s, u"guardado"_s, u"12,50"_s, QString(), QString()}));

        Supplier s;
        s.name = u"OFICINA"_s;
        s.bank = u"001"_s;
        s.code = saveSupplier(store, s, u"ANA"_s);
        store.execute(u"UPDATE fornecedores SET C25 = ?, C34 = ? WHERE CODIGO = ?"_s,
                      {u"guardado"_s, u"ZONA SUL"_s, s.code});
        saveSupplier(store, s, u"ANA"_s);
        QCOMPARE(partyRow(Party::Supplier, s.code, {u"C18"_s, u"C25"_s, u"C32"_s, u"C34"_s}),
                 (QStringList{u"001"_s, u"guardado"_s, u"True"_s, QString()}));

        QVERIFY(removeParty(store, Party::Supplier, s.code));
        QVERIFY(!removeParty(store, Party::Supplier, s.code));
    }

    // The finds give the first row in code order whose own column holds the text; the walk
    // goes by code, stops at the ends, starts over from a code deleted meanwhile, and on an
    // empty table gives back what it was given.
    void findsAndWalks() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        QCOMPARE(walk(store, Party::Client, Walk::First, u"00007"_s), u"00007"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Last, QString()), QString());
        QCOMPARE(nextPartyCode(store, Party::Client), u"00001"_s);

        for (int i = 0; i < 4; ++i) {
            Client c = client(u"CLIENTE %1"_s.arg(i));
            c.phone1 = u"1111"_s;
            c.phone2 = i == 2 ? u"2222"_s : QString();
            c.taxNumber = i >= 1 ? u"52998224725"_s : QString();
            saveClient(store, c, {});
        }
        QCOMPARE(findByPhone(store, Party::Client, 1, u"1111"_s), u"00001"_s);
        QCOMPARE(findByPhone(store, Party::Client, 2, u"2222"_s), u"00003"_s);
        QCOMPARE(findByPhone(store, Party::Client, 1, u"2222"_s), QString());
        QCOMPARE(findByTaxNumber(store, Party::Client, u"52998224725"_s), u"00002"_s);
        QCOMPARE(findByPhone(store, Party::Courier, 1, u"1111"_s), QString());

        QCOMPARE(walk(store, Party::Client, Walk::First, QString()), u"00001"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Last, QString()), u"00004"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Next, u"00002"_s), u"00003"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Previous, u"00002"_s), u"00001"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Previous, u"00001"_s), QString());
        QCOMPARE(walk(store, Party::Client, Walk::Next, u"00004"_s), QString());
        QCOMPARE(walk(store, Party::Client, Walk::Next, QString()), QString());
        QCOMPARE(walk(store, Party::Client, Walk::Previous, QString()), QString());
        removeParty(store, Party::Client, u"00003"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Next, u"00003"_s), u"00001"_s);
        QCOMPARE(partyCount(store, Party::Client), qint64(3));
        QCOMPARE(nextPartyCode(store, Party::Client), u"00005"_s);
    }

    // The search tab's query, read two rows a page: a prefix of the name blind to case and
    // accents, in name order, every row once even when names repeat; by trade name in
    // trade-name order; by tax number; everything.
    void searchByPages() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        const QStringList names{u"ÁGUA CLARA"_s, u"agua viva"_s,  u"BANCO"_s,
                                u"AGUAPÉ"_s,     u"ÁGUA CLARA"_s, u"ÁGUA CLARA"_s};
        for (int i = 0; i < names.size(); ++i) {
            Client c = client(names[i]);
            c.tradeName = QString(QChar(u'Z' - i));
            c.taxNumber = u"1234%1"_s.arg(i);
            saveClient(store, c, {});
        }
        const auto search = [&](SearchBy by, const QString& typed, const QString& column) {
            return pageValues(store, partySearch(store, Party::Client, by, typed), column, 2);
        };
        QCOMPARE(search(SearchBy::Name, u"agu"_s, u"CODIGO"_s),
                 (QStringList{u"00001"_s, u"00005"_s, u"00006"_s, u"00002"_s, u"00004"_s}));
        QCOMPARE(search(SearchBy::Name, u"aguap"_s, u"C5"_s), QStringList{u"AGUAPÉ"_s});
        QCOMPARE(search(SearchBy::TradeName, u""_s, u"C6"_s),
                 (QStringList{u"U"_s, u"V"_s, u"W"_s, u"X"_s, u"Y"_s, u"Z"_s}));
        QCOMPARE(search(SearchBy::TaxNumber, u"12342"_s, u"C5"_s), QStringList{u"BANCO"_s});
        QCOMPARE(search(SearchBy::All, u"ignored"_s, u"C5"_s).size(), 6);
        const PageQuery couriers = partySearch(store, Party::Courier, SearchBy::All, {});
        QCOMPARE(couriers.table, u"motoqueiros"_s);
        QVERIFY(!couriers.columns.contains(u"C6"_s));
    }

    // An employee is saved by his name, blind to case, with the rights of his password
    // replaced as one: a refused right leaves the employee as he was. A password is recalled
    // blind to case; a new one starts a new set of rights and the old one's stay. Deleting
    // takes the rights of the password with him.
    void employeesAndRights() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        // (Sim and Não toggled on the grid are the screen test's.)
        QCOMPARE(toggledAccess(QString()) + toggledAccess(u"Talvez"_s), u"SimTalvez"_s);
        QList<Permission> rights = defaultPermissions();

        Employee e;
        e.name = u"JOSÉ GONÇALVES"_s;
        e.password = u"jose99"_s;
        e.phone = u"(11)5555-6666"_s;
        rights[2].access = granted();
        rights.append({QString(), granted()}); // an empty row is no right
        saveEmployee(store, e, rights);
        const qint64 id =
            store.scalar(u"SELECT cd FROM funcionarios WHERE x1 = ?"_s, {e.name}).toLongLong();
        const std::optional<Employee> recalled = loadEmployee(store, id);
        QVERIFY(recalled);
        QCOMPARE(recalled->password, QString()); // never given back
        QVERIFY(passwordMatches(recalled->storedPassword, u"jose99"_s));
        QCOMPARE(permissionsOf(store, id).size(), 18);
        QCOMPARE(permissionsOf(store, id).value(2).access, u"Sim"_s);

        const qint64 before = store.count(employeeTable());
        e.name = u"josé gonçalves"_s;
        e.function = u"GERENTE"_s;
        refuseInserts(store, permissionTable(), true);
        QVERIFY_THROWS_EXCEPTION(StoreError, saveEmployee(store, e, defaultPermissions()));
        refuseInserts(store, permissionTable(), false);
        QCOMPARE(rowTexts(u"SELECT * FROM funcionarios WHERE cd = ?"_s, {recalled->id}, {u"x5"_s}),
                 QStringList{QString()});
        QCOMPARE(permissionsOf(store, id).value(2).access, u"Sim"_s);

        e.password = u"nova"_s;
        saveEmployee(store, e, defaultPermissions());
        QCOMPARE(store.count(employeeTable()), before);
        QCOMPARE(rowTexts(u"SELECT * FROM funcionarios WHERE cd = ?"_s, {id}, {u"x1"_s, u"x5"_s}),
                 (QStringList{u"josé gonçalves"_s, u"GERENTE"_s}));
        QVERIFY(passwordMatches(loadEmployee(store, id)->storedPassword, u"nova"_s));
        // His rights follow the new password; the old one's are gone with it.
        QCOMPARE(permissionsOf(store, id).size(), 18);
        QVERIFY(permissionsOf(store, recalled->storedPassword).isEmpty());
        QCOMPARE(employeeNames(store), (QStringList{u"ADMIN"_s, u"josé gonçalves"_s}));
        e.name = u"NINGUÉM"_s;
        e.password.clear();
        QVERIFY_THROWS_EXCEPTION(StoreError, saveEmployee(store, e, defaultPermissions()));

        removeEmployee(store, id);
        QCOMPARE(store.count(employeeTable()), before - 1);
        QCOMPARE(store.count(permissionTable()), 18); // ADMIN's alone
    }

    // The company is written over its one row, with the branch when it has a name; a branch
    // is saved by its name, blind to case; without the company's row nothing is written.
    void companyAndBranches() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        std::optional<Company> company = loadCompany(store);
        QVERIFY(company);
        // (Saving the company, a branch by name, Novo and delete are the screen test's.)
        Branch branch;
        branch.name = u"   "_s;
        saveCompany(store, *company, branch);
        QCOMPARE(store.count(branchTable()), qint64(0));
        branch.name = u"FILIAL SUL"_s;
        branch.city = u"SANTOS"_s;
        saveCompany(store, *company, branch);
        branch.name = u"filial sul"_s;
        branch.city = u"GUARUJÁ"_s;
        saveCompany(store, *company, branch);
        const QList<Branch> all = branches(store);
        QCOMPARE(all.size(), 1);
        QCOMPARE(loadBranch(store, all[0].id)->name + u' ' + all[0].city, u"filial sul GUARUJÁ"_s);

        store.execute(u"DELETE FROM empresa"_s);
        branch.name = u"FILIAL LESTE"_s;
        QVERIFY_THROWS_EXCEPTION(StoreError, saveCompany(store, *company, branch));
        QCOMPARE(store.count(branchTable()), qint64(1));
    }

    // A list keeps its names in capitals and once, whatever the capitals typed.
    void lists() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        QVERIFY(addListName(store, lists::regions, u"  zona sul "_s));
        QVERIFY(addListName(store, lists::regions, u"centro"_s));
        QVERIFY(!addListName(store, lists::regions, u"Centro"_s));
        QVERIFY(!addListName(store, lists::regions, u"   "_s));
        QCOMPARE(listNames(store, lists::regions), (QStringList{u"CENTRO"_s, u"ZONA SUL"_s}));
        QVERIFY(listNames(store, lists::paymentForms).isEmpty());
        QVERIFY(removeListName(store, lists::regions, u"Zona Sul"_s));
        QVERIFY(!removeListName(store, lists::regions, u"ZONA SUL"_s));
        QCOMPARE(listNames(store, lists::regions), QStringList{u"CENTRO"_s});
    }

    // Eleven digits with right check digits are a CPF, fourteen places (letters allowed but
    // in the check digits) a CNPJ; anything else is no number.
    void taxNumbers() {
        QCOMPARE(taxNumberKind(u"52998224725"_s), TaxNumber::Cpf);
        QCOMPARE(taxNumberKind(u"52998224726"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(u"11222333000181"_s), TaxNumber::Cnpj);
        QCOMPARE(taxNumberKind(u"11222333000182"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(u"12ABC34501DE35"_s), TaxNumber::Cnpj); // a CNPJ with letters
        QCOMPARE(taxNumberKind(u"12ABC34501DE36"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(u"5299822472"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(QString()), TaxNumber::Wrong);
    }
};

QTEST_MAIN(RegistersCoreTest)
#include "tst_registers_core.moc"
