// The rules of the registers without a screen, on a real installation: records against their
// columns, the checks of a save, what a save writes and keeps, finds, walks and searches, an
// employee with his rights saved as one, the company's branches, the lists, tax numbers.

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
    // Each member stands in a column of its table of the type it needs, no column twice; a
    // dispatch's blank texts are kept as empty text, never as null (reports and searches
    // compare with "").
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
        checkColumns(dispatch::dispatchFields(), dispatch::col::table);
        checkColumns(dispatch::serviceFields(), dispatch::service::table);
        checkColumns(agenda::entryFields(), agenda::entriesTable);
        QStringList columns;
        for (const auto& f : dispatch::dispatchFields())
            columns << f.column.toUpper();
        columns.removeDuplicates();
        QCOMPARE(columns.size(), dispatch::dispatchFields().size());
        const auto& fields = dispatch::dispatchFields();
        const QVariantMap stored = storedRow(dispatch::Dispatch(), fields);
        for (const auto& f : fields)
            if (f.kind == ValueKind::Text)
                QVERIFY2(!stored.value(f.column).toString().isNull(), qPrintable(f.column));
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
        Courier courier;
        QCOMPARE(said(checkCourier(courier)), blank(u"C5"_s, u"NOME"_s));
        courier.name = u"EDUARDO"_s;
        QCOMPARE(said(checkCourier(courier)), blank(u"C4"_s, u"APELIDO OU SOBRENOME"_s));
        Employee e;
        e.password = u"x"_s;
        QCOMPARE(said(checkEmployee(e)), blank(u"x1"_s, u"Nome"_s));
        e.name = u"JOSÉ"_s;
        e.password = u" "_s;
        QCOMPARE(said(checkEmployee(e)), blank(u"x8"_s, u"Senha"_s));
        QCOMPARE(said(checkEmployee(e, true)), u"ok"_s); // saved: he keeps his
        QCOMPARE(said(checkCompany(Company())), blank(u"e1"_s, u"Nome"_s));
        // Eleven digits with right check digits are a CPF, fourteen places (letters allowed
        // but in the check digits) a CNPJ; anything else is no number.
        QCOMPARE(taxNumberKind(u"52998224725"_s), TaxNumber::Cpf);
        QCOMPARE(taxNumberKind(u"52998224726"_s), TaxNumber::Wrong);
        QCOMPARE(taxNumberKind(u"11222333000181"_s), TaxNumber::Cnpj);
        QCOMPARE(taxNumberKind(u"12ABC34501DE35"_s), TaxNumber::Cnpj); // a CNPJ with letters
        QCOMPARE(taxNumberKind(u"12ABC34501DE36"_s), TaxNumber::Wrong);
    }

    // A new client draws its code, a second save of it is one row; money, dates and the
    // options keep their values, the user who saved is kept, and an emptied date of birth
    // leaves the one on file. A courier saved is free on the board with C32 and C33 empty
    // and the columns without meaning carried.
    void partySaves() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        Client c = client(u"D'AVILA & FILHOS"_s);
        c.monthlyContract = 150050;
        c.birth = QDate(1980, 12, 25);
        c.code = saveClient(store, c, u"ANA"_s);
        QCOMPARE(c.code, u"00001"_s);
        c.birth.reset();
        c.contact = u"JOANA"_s;
        QCOMPARE(saveClient(store, c, u"BETO"_s), u"00001"_s);
        QCOMPARE(store.count(u"clientes"_s), qint64(1));
        QCOMPARE(partyRow(Party::Client, u"00001"_s,
                          {u"C2"_s, u"C5"_s, u"C7"_s, u"C27"_s, u"C29"_s, u"EMPE"_s}),
                 (QStringList{u"01/03/2024"_s, u"D'AVILA & FILHOS"_s, u"JOANA"_s, u"1.500,50"_s,
                              u"25/12/1980"_s, u"BETO"_s}));
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
    }

    // The finds give the first row in code order whose own column holds the text; the walk
    // goes by code, stops at the ends and starts over from a code deleted meanwhile; the
    // search tab's query, read two rows a page, finds a prefix of the name blind to case and
    // accents, in name order, every row once even when names repeat.
    void findsWalksAndSearch() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        const QStringList names{u"ÁGUA CLARA"_s, u"agua viva"_s,  u"BANCO"_s,
                                u"AGUAPÉ"_s,     u"ÁGUA CLARA"_s, u"ÁGUA CLARA"_s};
        for (int i = 0; i < names.size(); ++i) {
            Client c = client(names[i]);
            c.phone1 = u"1111"_s;
            c.phone2 = i == 2 ? u"2222"_s : QString();
            c.taxNumber = i >= 1 ? u"52998224725"_s : QString();
            saveClient(store, c, {});
        }
        QCOMPARE(findByPhone(store, Party::Client, 2, u"2222"_s), u"00003"_s);
        QCOMPARE(findByPhone(store, Party::Client, 1, u"2222"_s), QString());
        QCOMPARE(findByTaxNumber(store, Party::Client, u"52998224725"_s), u"00002"_s);
        QCOMPARE(pageValues(store, partySearch(store, Party::Client, SearchBy::Name, u"agu"_s),
                            u"CODIGO"_s, 2),
                 (QStringList{u"00001"_s, u"00005"_s, u"00006"_s, u"00002"_s, u"00004"_s}));
        QCOMPARE(walk(store, Party::Client, Walk::Previous, u"00002"_s), u"00001"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Next, u"00006"_s), QString());
        removeParty(store, Party::Client, u"00003"_s);
        QCOMPARE(walk(store, Party::Client, Walk::Next, u"00003"_s), u"00001"_s);
        QCOMPARE(nextPartyCode(store, Party::Client), u"00007"_s);
    }

    // An employee is saved by his name, blind to case, with the rights of his password
    // replaced as one: a refused right leaves the employee as he was. A password is recalled
    // blind to case; a new one starts a new set of rights and the old one's stay. Deleting
    // takes the rights of the password with him.
    void employeesAndRights() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        QList<Permission> rights = defaultPermissions();
        Employee e;
        e.name = u"JOSÉ GONÇALVES"_s;
        e.password = u"jose99"_s;
        rights[2].access = granted();
        rights.append({QString(), granted()}); // an empty row is no right
        saveEmployee(store, e, rights);
        const qint64 id =
            store.scalar(u"SELECT cd FROM funcionarios WHERE x1 = ?"_s, {e.name}).toLongLong();
        const std::optional<Employee> recalled = loadEmployee(store, id);
        QCOMPARE(recalled->password, QString()); // never given back
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
        QCOMPARE(rowTexts(u"SELECT * FROM funcionarios WHERE cd = ?"_s, {id}, {u"x5"_s}),
                 QStringList{u"GERENTE"_s});
        QVERIFY(passwordMatches(loadEmployee(store, id)->storedPassword, u"nova"_s));
        QVERIFY(permissionsOf(store, recalled->storedPassword).isEmpty()); // the old one's go
        removeEmployee(store, id);
        QCOMPARE(store.count(employeeTable()), before - 1);
        QCOMPARE(store.count(permissionTable()), 18); // ADMIN's alone
    }

    // The company is written over its one row, with the branch when it has a name; a branch
    // is saved by its name, blind to case; without the company's row nothing is written.
    void companyBranchesAndLists() {
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        std::optional<Company> company = loadCompany(store);
        QVERIFY(company);
        Branch branch;
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
        // A list keeps its names in capitals and once, whatever the capitals typed.
        QVERIFY(addListName(store, lists::regions, u"  zona sul "_s));
        QVERIFY(addListName(store, lists::regions, u"centro"_s));
        QVERIFY(!addListName(store, lists::regions, u"Centro"_s));
        QCOMPARE(listNames(store, lists::regions), (QStringList{u"CENTRO"_s, u"ZONA SUL"_s}));
        QVERIFY(removeListName(store, lists::regions, u"Zona Sul"_s));
        QVERIFY(!removeListName(store, lists::regions, u"ZONA SUL"_s));
    }
};

QTEST_MAIN(RegistersCoreTest)
#include "tst_registers_core.moc"
