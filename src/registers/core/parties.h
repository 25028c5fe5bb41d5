#pragma once
// The three registers of parties: clients, couriers and suppliers. Their tables share one
// shape (CODIGO, C1 to C34, EMPE) and one way of working: a five-digit code drawn when a new
// row is first saved, a save that writes the whole row by its code, the name required, a
// find by tax number or telephone, a walk in code order and a search by the start of a
// name. What the columns mean differs, and so do the records.

#include "store/record.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace rtx::registers {

enum class Party { Client, Courier, Supplier };

// The table of a party.
const QString& partyTable(Party party);

// Words kept in the columns.
const QString& activeStatus();   // C1 "ATIVO": only active couriers serve
const QString& inactiveStatus(); // C1 "INATIVO"
const QString& freePosition();   // a courier's C25 after any save: "Livre"

// Columns of the clients (clientes, the old B1.Mdb).
namespace clientcol {
inline const QString code = QStringLiteral("CODIGO");
inline const QString status = QStringLiteral("C1");
inline const QString registered = QStringLiteral("C2");
inline const QString taxNumber = QStringLiteral("C3");
inline const QString identity = QStringLiteral("C4");
inline const QString name = QStringLiteral("C5");
inline const QString tradeName = QStringLiteral("C6");
inline const QString contact = QStringLiteral("C7");
inline const QString phone1 = QStringLiteral("C8");
inline const QString phone2 = QStringLiteral("C9");
inline const QString phone3 = QStringLiteral("C10");
inline const QString email = QStringLiteral("C11");
inline const QString site = QStringLiteral("C12");
inline const QString postcode = QStringLiteral("C13");
inline const QString street = QStringLiteral("C14");
inline const QString district = QStringLiteral("C15");
inline const QString city = QStringLiteral("C16");
inline const QString state = QStringLiteral("C17");
inline const QString postcode2 = QStringLiteral("C18");
inline const QString street2 = QStringLiteral("C19");
inline const QString district2 = QStringLiteral("C20");
inline const QString city2 = QStringLiteral("C21");
inline const QString state2 = QStringLiteral("C22");
inline const QString attendedBy = QStringLiteral("C23");
inline const QString dueDay = QStringLiteral("C24");
inline const QString kind = QStringLiteral("C25");
inline const QString charging = QStringLiteral("C26");
inline const QString monthlyContract = QStringLiteral("C27");
inline const QString creditLimit = QStringLiteral("C28");
inline const QString birth = QStringLiteral("C29");
inline const QString sitePassword = QStringLiteral("C30");
inline const QString remarks = QStringLiteral("C31");
inline const QString privatePerson = QStringLiteral("C32");
inline const QString company = QStringLiteral("C33");
inline const QString region = QStringLiteral("C34");
inline const QString savedBy = QStringLiteral("EMPE");
inline const QString dueDays = QStringLiteral("prazo"); // the days his invoices are given
} // namespace clientcol

// Columns of the couriers (motoqueiros, the old M1.Mdb) that differ from the clients'.
namespace couriercol {
using clientcol::birth;
using clientcol::city;
using clientcol::code;
using clientcol::district;
using clientcol::name;
using clientcol::phone1;
using clientcol::phone2;
using clientcol::phone3;
using clientcol::postcode;
using clientcol::registered; // the date of admission
using clientcol::remarks;
using clientcol::savedBy;
using clientcol::state;
using clientcol::status;
using clientcol::street;
using clientcol::taxNumber;
inline const QString shortName = QStringLiteral("C4"); // the name dispatch knows him by
inline const QString father = QStringLiteral("C6");
inline const QString mother = QStringLiteral("C7");
inline const QString title = QStringLiteral("C11");
inline const QString children = QStringLiteral("C12");
inline const QString licenceExpiry = QStringLiteral("C18");
inline const QString workCard = QStringLiteral("C19");
inline const QString licence = QStringLiteral("C20");
inline const QString maritalState = QStringLiteral("C21");
inline const QString insurance = QStringLiteral("C22");
inline const QString motorcycle = QStringLiteral("C23");
inline const QString kept24 = QStringLiteral("C24");
inline const QString position = QStringLiteral("C25"); // on the board
inline const QString kept26 = QStringLiteral("C26");
inline const QString salary = QStringLiteral("C27");
inline const QString fee = QStringLiteral("C28"); // per delivery
inline const QString kept30 = QStringLiteral("C30");
inline const QString unused32 = QStringLiteral("C32");
inline const QString unused33 = QStringLiteral("C33");
inline const QString kept34 = QStringLiteral("C34");
} // namespace couriercol

// Columns of the suppliers (fornecedores, the old B3.mdb) that differ from the clients'.
namespace suppliercol {
using namespace clientcol;
inline const QString bank = QStringLiteral("C18");
inline const QString agency = QStringLiteral("C19");
inline const QString account = QStringLiteral("C20");
} // namespace suppliercol

struct Address {
    QString postcode;
    QString street;
    QString district;
    QString city;
    QString state;
};

struct Client {
    QString code;
    QString status;
    std::optional<QDate> registered;
    QString taxNumber; // the digits alone
    QString identity;  // RG or state registration
    QString name;
    QString tradeName;
    QString contact;
    QString phone1, phone2, phone3;
    QString email;
    QString site;
    Address address;
    Address address2;
    QString attendedBy; // an employee's name
    QString dueDay;
    QString kind;
    QString charging;
    qint64 monthlyContract = 0;
    qint64 creditLimit = 0;
    std::optional<QDate> birth;
    QString sitePassword;
    QString remarks;
    bool privatePerson = true;
    bool company = false;
    QString region;
    QString savedBy;
    QString dueDays; // as typed: a whole number of days, or empty for the company's
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;
};

struct Courier {
    QString code;
    QString status;
    std::optional<QDate> admitted;
    QString taxNumber;
    QString shortName;
    QString name;
    QString father;
    QString mother;
    QString phone1, phone2, phone3;
    QString title;
    QString children;
    Address address;
    QString licenceExpiry;
    QString workCard;
    QString licence;
    QString maritalState;
    QString insurance;
    QString motorcycle;
    QString position;
    qint64 salary = 0;
    qint64 fee = 0;
    std::optional<QDate> birth;
    QString remarks;
    // Columns no screen of this system gives a meaning to, carried from the row to the row.
    QString kept24, kept26, kept30, kept34;
    QString savedBy;
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;
};

struct Supplier {
    QString code;
    QString status;
    std::optional<QDate> registered;
    QString taxNumber;
    QString identity;
    QString name;
    QString tradeName;
    QString contact;
    QString phone1, phone2, phone3;
    QString email;
    QString site;
    Address address;
    QString bank;
    QString agency;
    QString account;
    QString remarks;
    bool privatePerson = true;
    bool company = false;
    QString savedBy;
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;
};

// Each record's members against its table's columns.
const QList<Field<Client>>& clientFields();
const QList<Field<Courier>>& courierFields();
const QList<Field<Supplier>>& supplierFields();

// The record of a code; nothing when there is no such row.
std::optional<Client> loadClient(Store& store, const QString& code);
std::optional<Courier> loadCourier(Store& store, const QString& code);
std::optional<Supplier> loadSupplier(Store& store, const QString& code);

// The checks of a save, in their order: the first that fails.
std::optional<Problem> checkClient(const Client& client);    // the name, the invoice's days
std::optional<Problem> checkCourier(const Courier& courier); // the name, then the short name
std::optional<Problem> checkSupplier(const Supplier& supplier);

// Saves the record under its code, drawing the next code when it has none, in one unit of
// work (or in the caller's). Every column is written, with the user who saved it; gives
// the code. Clients keep a date of birth on file when the record has none. A courier is
// put back on the board as free and his C32 and C33 are emptied. Suppliers leave C21 to
// C30 as they are and empty C34.
QString saveClient(Store& store, const Client& client, const QString& user);
QString saveCourier(Store& store, const Courier& courier, const QString& user);
QString saveSupplier(Store& store, const Supplier& supplier, const QString& user);

// The same, for the row a screen holds.
std::optional<Row> loadParty(Store& store, Party party, const QString& code);
std::optional<Problem> checkParty(Party party, const Row& row);
QString saveParty(Store& store, Party party, const Row& row, const QString& code,
                  const QString& user);
// The columns whose apostrophes go as the user leaves them (the names).
QStringList quotelessColumns(Party party);

// Deletes the row of a code; nothing else looks at it. True when there was one.
bool removeParty(Store& store, Party party, const QString& code);

// The first row, in code order, whose tax number or telephone (1, 2 or 3) is the text;
// an empty code when none.
QString findByTaxNumber(Store& store, Party party, const QString& digits);
QString findByPhone(Store& store, Party party, int which, const QString& phone);
// The column of telephone 1, 2 or 3.
const QString& phoneColumn(int which);

// First, previous, next and last in code order, from the code found on the screen. Gives
// the code to load, or an empty text when nothing is to change: previous and next need a
// code and stop at the ends; next from a code that is gone goes to the first; first and
// last on an empty table give back the code they were given.
QString walk(Store& store, Party party, Walk direction, const QString& from);

// The search tab: all rows by name, or the rows whose name, tax number or trade name
// starts with what was typed (blind to case and accents), by name (by trade name for the
// trade name), with the columns the grid shows.
enum class SearchBy { All, Name, TaxNumber, TradeName };
PageQuery partySearch(const Store& store, Party party, SearchBy by, const QString& typed);

// The code a new row would get now (shown, not reserved), and the number of rows.
QString nextPartyCode(Store& store, Party party);
qint64 partyCount(Store& store, Party party);

} // namespace rtx::registers
