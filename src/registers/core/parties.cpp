#include "registers/core/parties.h"

#include "registers/core/company.h"
#include "registers/core/docnumbers.h"

namespace rtx::registers {

namespace {

template <class R>
QList<Field<R>> addressFields(Address R::*member, const QString& postcode, const QString& street,
                              const QString& district, const QString& city, const QString& state) {
    return {field<R>(
                postcode, [member](auto& r) -> auto& { return (r.*member).postcode; }),
            field<R>(
                street, [member](auto& r) -> auto& { return (r.*member).street; }),
            field<R>(
                district, [member](auto& r) -> auto& { return (r.*member).district; }),
            field<R>(
                city, [member](auto& r) -> auto& { return (r.*member).city; }),
            field<R>(
                state, [member](auto& r) -> auto& { return (r.*member).state; })};
}

// The row of a code, read as a record; nothing when there is none.
template <class R>
std::optional<R> loadByCode(Store& store, Party party, const QString& code,
                            const QList<Field<R>>& fields) {
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(partyTable(party), clientcol::code),
        {code});
    if (rs.eof()) return std::nullopt;
    return readRecord(rs, fields);
}

// The row of the record's code opened for writing: edited when it exists, added (with the
// next code when the record has none) when not; a record read at a version is written only
// over its row at that version. Gives the code.
QString openForSave(Store& store, Party party, const QString& code, qint64 version, Recordset& rs) {
    const QString& table = partyTable(party);
    const QString key = code.isEmpty() ? store.nextCode(table) : code;
    rs = store.rowForSave(table, clientcol::code, key, version);
    return key;
}

template <class R> bool isCode(const Field<R>& f, const QVariant&) {
    return f.column == clientcol::code;
}

QString firstCodeWhere(Store& store, Party party, const QString& column, const QString& text) {
    const QString& table = partyTable(party);
    return store
        .scalar(QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY %1")
                    .arg(clientcol::code, table, store.sameText(table, column)),
                {text})
        .toString();
}

} // namespace

const QString& partyTable(Party party) {
    static const QString clients = QStringLiteral("clientes");
    static const QString couriers = QStringLiteral("motoqueiros");
    static const QString suppliers = QStringLiteral("fornecedores");
    switch (party) {
    case Party::Client:
        break;
    case Party::Courier:
        return couriers;
    case Party::Supplier:
        return suppliers;
    }
    return clients;
}

const QString& activeStatus() {
    static const QString word = QStringLiteral("ATIVO");
    return word;
}

const QString& inactiveStatus() {
    static const QString word = QStringLiteral("INATIVO");
    return word;
}

const QString& freePosition() {
    static const QString word = QStringLiteral("Livre");
    return word;
}

// --- The records against their columns -------------------------------------------------

const QList<Field<Client>>& clientFields() {
    using C = Client;
    namespace c = clientcol;
    static const QList<Field<C>> fields = [] {
        QList<Field<C>> f{field<C>(c::code, &C::code),
                          field<C>(c::status, &C::status),
                          field<C>(c::registered, &C::registered),
                          field<C>(c::taxNumber, &C::taxNumber),
                          field<C>(c::identity, &C::identity),
                          field<C>(c::name, &C::name),
                          field<C>(c::tradeName, &C::tradeName),
                          field<C>(c::contact, &C::contact),
                          field<C>(c::phone1, &C::phone1),
                          field<C>(c::phone2, &C::phone2),
                          field<C>(c::phone3, &C::phone3),
                          field<C>(c::email, &C::email),
                          field<C>(c::site, &C::site)};
        f += addressFields<C>(&C::address, c::postcode, c::street, c::district, c::city, c::state);
        f += addressFields<C>(&C::address2, c::postcode2, c::street2, c::district2, c::city2,
                              c::state2);
        f += QList<Field<C>>{field<C>(c::attendedBy, &C::attendedBy),
                             field<C>(c::dueDay, &C::dueDay),
                             field<C>(c::kind, &C::kind),
                             field<C>(c::charging, &C::charging),
                             field<C>(c::monthlyContract, &C::monthlyContract),
                             field<C>(c::creditLimit, &C::creditLimit),
                             field<C>(c::birth, &C::birth),
                             field<C>(c::sitePassword, &C::sitePassword),
                             field<C>(c::remarks, &C::remarks),
                             field<C>(c::privatePerson, &C::privatePerson),
                             field<C>(c::company, &C::company),
                             field<C>(c::region, &C::region),
                             field<C>(c::savedBy, &C::savedBy),
                             field<C>(c::dueDays, &C::dueDays)};
        f << field<C>(versionColumn(), &C::version);
        return f;
    }();
    return fields;
}

const QList<Field<Courier>>& courierFields() {
    using C = Courier;
    namespace c = couriercol;
    static const QList<Field<C>> fields = [] {
        QList<Field<C>> f{
            field<C>(c::code, &C::code),           field<C>(c::status, &C::status),
            field<C>(c::registered, &C::admitted), field<C>(c::taxNumber, &C::taxNumber),
            field<C>(c::shortName, &C::shortName), field<C>(c::name, &C::name),
            field<C>(c::father, &C::father),       field<C>(c::mother, &C::mother),
            field<C>(c::phone1, &C::phone1),       field<C>(c::phone2, &C::phone2),
            field<C>(c::phone3, &C::phone3),       field<C>(c::title, &C::title),
            field<C>(c::children, &C::children)};
        f += addressFields<C>(&C::address, c::postcode, c::street, c::district, c::city, c::state);
        f += QList<Field<C>>{field<C>(c::licenceExpiry, &C::licenceExpiry),
                             field<C>(c::workCard, &C::workCard),
                             field<C>(c::licence, &C::licence),
                             field<C>(c::maritalState, &C::maritalState),
                             field<C>(c::insurance, &C::insurance),
                             field<C>(c::motorcycle, &C::motorcycle),
                             field<C>(c::kept24, &C::kept24),
                             field<C>(c::position, &C::position),
                             field<C>(c::kept26, &C::kept26),
                             field<C>(c::salary, &C::salary),
                             field<C>(c::fee, &C::fee),
                             field<C>(c::birth, &C::birth),
                             field<C>(c::kept30, &C::kept30),
                             field<C>(c::remarks, &C::remarks),
                             field<C>(c::kept34, &C::kept34),
                             field<C>(c::savedBy, &C::savedBy)};
        f << field<C>(versionColumn(), &C::version);
        return f;
    }();
    return fields;
}

const QList<Field<Supplier>>& supplierFields() {
    using S = Supplier;
    namespace c = suppliercol;
    static const QList<Field<S>> fields = [] {
        QList<Field<S>> f{field<S>(c::code, &S::code),
                          field<S>(c::status, &S::status),
                          field<S>(c::registered, &S::registered),
                          field<S>(c::taxNumber, &S::taxNumber),
                          field<S>(c::identity, &S::identity),
                          field<S>(c::name, &S::name),
                          field<S>(c::tradeName, &S::tradeName),
                          field<S>(c::contact, &S::contact),
                          field<S>(c::phone1, &S::phone1),
                          field<S>(c::phone2, &S::phone2),
                          field<S>(c::phone3, &S::phone3),
                          field<S>(c::email, &S::email),
                          field<S>(c::site, &S::site)};
        f += addressFields<S>(&S::address, c::postcode, c::street, c::district, c::city, c::state);
        f += QList<Field<S>>{field<S>(c::bank, &S::bank),
                             field<S>(c::agency, &S::agency),
                             field<S>(c::account, &S::account),
                             field<S>(c::remarks, &S::remarks),
                             field<S>(c::privatePerson, &S::privatePerson),
                             field<S>(c::company, &S::company),
                             field<S>(c::savedBy, &S::savedBy)};
        f << field<S>(versionColumn(), &S::version);
        return f;
    }();
    return fields;
}

// --- Load, check, save ----------------------------------------------------------------

std::optional<Client> loadClient(Store& store, const QString& code) {
    return loadByCode(store, Party::Client, code, clientFields());
}

std::optional<Courier> loadCourier(Store& store, const QString& code) {
    return loadByCode(store, Party::Courier, code, courierFields());
}

std::optional<Supplier> loadSupplier(Store& store, const QString& code) {
    return loadByCode(store, Party::Supplier, code, supplierFields());
}

std::optional<Problem> checkClient(const Client& client) {
    if (auto blank = firstBlank({{clientcol::name, QStringLiteral("NOME")}},
                                [&](const QString&) { return client.name; }))
        return blank;
    // Empty: his invoices take the company's days.
    return checkDueDays(clientcol::dueDays, client.dueDays);
}

std::optional<Problem> checkCourier(const Courier& courier) {
    return firstBlank({{couriercol::name, QStringLiteral("NOME")},
                       {couriercol::shortName, QStringLiteral("APELIDO OU SOBRENOME")}},
                      [&](const QString& column) {
                          return column == couriercol::name ? courier.name : courier.shortName;
                      });
}

std::optional<Problem> checkSupplier(const Supplier& supplier) {
    return firstBlank({{suppliercol::name, QStringLiteral("NOME")}},
                      [&](const QString&) { return supplier.name; });
}

QString saveClient(Store& store, const Client& client, const QString& user) {
    UnitOfWork unit(store);
    Recordset rs;
    Client c = client;
    c.code = openForSave(store, Party::Client, client.code, client.version, rs);
    c.savedBy = user;
    // An emptied date of birth leaves the one on file.
    writeRecord<Client>(rs, c, clientFields(), [](const Field<Client>& f, const QVariant& v) {
        return isCode(f, v) || (f.column == clientcol::birth && !v.toDate().isValid());
    });
    rs.update();
    unit.commit();
    return c.code;
}

QString saveCourier(Store& store, const Courier& courier, const QString& user) {
    UnitOfWork unit(store);
    Recordset rs;
    Courier c = courier;
    c.code = openForSave(store, Party::Courier, courier.code, courier.version, rs);
    c.savedBy = user;
    // Any save puts him back on the board as free, whatever he was doing.
    c.position = freePosition();
    writeRecord<Courier>(rs, c, courierFields(), isCode<Courier>);
    rs.setValue(couriercol::unused32, QString());
    rs.setValue(couriercol::unused33, QString());
    rs.update();
    unit.commit();
    return c.code;
}

QString saveSupplier(Store& store, const Supplier& supplier, const QString& user) {
    UnitOfWork unit(store);
    Recordset rs;
    Supplier s = supplier;
    s.code = openForSave(store, Party::Supplier, supplier.code, supplier.version, rs);
    s.savedBy = user;
    writeRecord<Supplier>(rs, s, supplierFields(), isCode<Supplier>);
    rs.setValue(suppliercol::region, QString());
    rs.update();
    unit.commit();
    return s.code;
}

std::optional<Row> loadParty(Store& store, Party party, const QString& code) {
    switch (party) {
    case Party::Client:
        if (auto c = loadClient(store, code)) return toRow(*c, clientFields());
        break;
    case Party::Courier:
        if (auto c = loadCourier(store, code)) return toRow(*c, courierFields());
        break;
    case Party::Supplier:
        if (auto s = loadSupplier(store, code)) return toRow(*s, supplierFields());
        break;
    }
    return std::nullopt;
}

std::optional<Problem> checkParty(Party party, const Row& row) {
    switch (party) {
    case Party::Client:
        return checkClient(fromRow(row, clientFields()));
    case Party::Courier:
        return checkCourier(fromRow(row, courierFields()));
    case Party::Supplier:
        return checkSupplier(fromRow(row, supplierFields()));
    }
    return std::nullopt;
}

QString saveParty(Store& store, Party party, const Row& row, const QString& code,
                  const QString& user) {
    switch (party) {
    case Party::Client: {
        Client c = fromRow(row, clientFields());
        c.code = code;
        return saveClient(store, c, user);
    }
    case Party::Courier: {
        Courier c = fromRow(row, courierFields());
        c.code = code;
        return saveCourier(store, c, user);
    }
    case Party::Supplier: {
        Supplier s = fromRow(row, supplierFields());
        s.code = code;
        return saveSupplier(store, s, user);
    }
    }
    return {};
}

QStringList quotelessColumns(Party party) {
    if (party == Party::Courier) return {couriercol::name, couriercol::father};
    return {clientcol::name, clientcol::tradeName};
}

bool removeParty(Store& store, Party party, const QString& code) {
    UnitOfWork unit(store);
    const int removed = store.execute(
        QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(partyTable(party), clientcol::code),
        {code});
    unit.commit();
    return removed > 0;
}

// --- Finding and walking --------------------------------------------------------------

const QString& phoneColumn(int which) {
    return which == 2 ? clientcol::phone2 : which == 3 ? clientcol::phone3 : clientcol::phone1;
}

QString findByTaxNumber(Store& store, Party party, const QString& digits) {
    return firstCodeWhere(store, party, clientcol::taxNumber, digits);
}

QString findByPhone(Store& store, Party party, int which, const QString& phone) {
    return firstCodeWhere(store, party, phoneColumn(which), phone);
}

QString walk(Store& store, Party party, Walk direction, const QString& from) {
    const QString& table = partyTable(party);
    switch (direction) {
    case Walk::First: {
        const QString code = store.firstCode(table);
        return code.isEmpty() ? from : code;
    }
    case Walk::Last: {
        const QString code = store.lastCode(table);
        return code.isEmpty() ? from : code;
    }
    case Walk::Previous:
        return from.isEmpty() ? QString() : store.previousCode(table, from);
    case Walk::Next: {
        if (from.isEmpty()) return {};
        const bool gone = store
                              .scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2 = ?")
                                          .arg(table, clientcol::code),
                                      {from})
                              .toLongLong() == 0;
        if (gone) return walk(store, party, Walk::First, from);
        return store.nextCodeAfter(table, from);
    }
    }
    return {};
}

PageQuery partySearch(const Store& store, Party party, SearchBy by, const QString& typed) {
    namespace c = clientcol;
    PageQuery q;
    q.table = partyTable(party);
    q.columns = party == Party::Courier
                    ? QStringList{c::code, c::name, c::phone1, c::status}
                    : QStringList{c::code, c::name, c::tradeName, c::phone1, c::status};
    const QString& column = by == SearchBy::TaxNumber   ? c::taxNumber
                            : by == SearchBy::TradeName ? c::tradeName
                                                        : c::name;
    if (by != SearchBy::All) {
        q.where = store.startsWith(q.table, column);
        // The register keeps tax numbers bare and in capitals: "12.abc" finds "12ABC...".
        q.params = store.startParams(by == SearchBy::TaxNumber ? taxNumberChars(typed) : typed);
    }
    q.order = {SortKey{by == SearchBy::TradeName ? c::tradeName : c::name}};
    return q;
}

QString nextPartyCode(Store& store, Party party) {
    return store.peekCode(partyTable(party));
}

qint64 partyCount(Store& store, Party party) {
    return store.count(partyTable(party));
}

} // namespace rtx::registers
