#pragma once
// Employees, who are also the users of the program. The name and password saved here are
// what the login checks; the permission rows are what the hub obeys. A password is kept only
// as its hash (passwords.h), and the rows of rights belong to that stored hash: each employee
// has his own, and they follow him when he changes his password.

#include "store/record.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::registers {

const QString& employeeTable();   // funcionarios (the old A8.MDB)
const QString& permissionTable(); // permissoes (the old a5us.Mdb)

namespace employeecol {
inline const QString id = QStringLiteral("cd");
inline const QString name = QStringLiteral("x1"); // the user of the login
inline const QString phone = QStringLiteral("x2");
inline const QString address = QStringLiteral("x3");
inline const QString admission = QStringLiteral("x4");
inline const QString function = QStringLiteral("x5");
inline const QString commission = QStringLiteral("x6");
inline const QString salary = QStringLiteral("x7");
inline const QString password = QStringLiteral("x8");
inline const QString workCard = QStringLiteral("x9");
} // namespace employeecol

namespace permissioncol {
inline const QString password = QStringLiteral("a1"); // the key of a user's rights
inline const QString name = QStringLiteral("a2");
inline const QString module = QStringLiteral("a4");
inline const QString access = QStringLiteral("a5");
} // namespace permissioncol

// The two words of a permission.
const QString& granted(); // "Sim"
const QString& denied();  // "Não"

struct Employee {
    qint64 id = 0; // given by the engine; 0 for one not saved
    QString name;
    QString phone;
    QString address;
    QString admission; // kept as typed
    QString function;
    QString commission;
    QString salary; // kept as typed
    // A new password to set on saving; empty keeps the stored one. Always empty as loaded:
    // no screen ever shows a password.
    QString password;
    QString workCard;
    QString storedPassword; // as loaded: the hash kept, the key of his rights
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;
};

struct Permission {
    QString module; // a module's name as the hub knows it; two blanks between groups
    QString access; // granted() or denied()
};

const QList<Field<Employee>>& employeeFields(); // without the id

// Every module of the permission grid, in its order, denied.
QList<Permission> defaultPermissions();
// A double click on a permission: empty or denied becomes granted, granted becomes
// denied, any other word stays.
QString toggledAccess(const QString& access);

std::optional<Employee> loadEmployee(Store& store, qint64 id);
// Whether an employee of that name (capitals not counting) is saved: his password may then
// be left empty on a save.
bool employeeNamed(Store& store, const QString& name);
// The rows of rights under a stored password, in the order they were written.
QList<Permission> permissionsOf(Store& store, const QString& storedPassword);
// The rows of rights of an employee; none when he is gone.
QList<Permission> permissionsOf(Store& store, qint64 employee);
// Every employee, by name: the search list.
QList<Employee> employees(Store& store);
// Their names, by name: the lists of employees of other screens.
QStringList employeeNames(Store& store);

// The name, then the password: a new employee needs one, one already saved (saved is true)
// keeps his when it is left empty.
std::optional<Problem> checkEmployee(const Employee& employee, bool saved = false);

// Saves the employee by his name (the first one of that name is written over, otherwise a
// row is added), with the password typed hashed or, left empty, the one he has, and replaces
// his rights with the rows given (the empty ones left out), in one unit of work: both or
// neither. A new employee without a password is refused (StoreError).
// An employee read at a version is written over his row only at that version, and not added
// again when his row (id) is gone (RowChanged). Gives the number of his row.
qint64 saveEmployee(Store& store, const Employee& employee, const QList<Permission>& rights);
// Deletes an employee and his rights.
void removeEmployee(Store& store, qint64 id);

} // namespace rtx::registers
