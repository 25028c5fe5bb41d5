#include "registers/core/employees.h"

#include "registers/core/passwords.h"
#include "store/schema.h"

namespace rtx::registers {

const QString& employeeTable() {
    static const QString table = QStringLiteral("funcionarios");
    return table;
}

const QString& permissionTable() {
    static const QString table = QStringLiteral("permissoes");
    return table;
}

const QString& granted() {
    static const QString word = QStringLiteral("Sim");
    return word;
}

const QString& denied() {
    static const QString word = QStringLiteral("N\u00e3o");
    return word;
}

const QList<Field<Employee>>& employeeFields() {
    using E = Employee;
    namespace c = employeecol;
    static const QList<Field<E>> fields{
        field<E>(c::name, &E::name),         field<E>(c::phone, &E::phone),
        field<E>(c::address, &E::address),   field<E>(c::admission, &E::admission),
        field<E>(c::function, &E::function), field<E>(c::commission, &E::commission),
        field<E>(c::salary, &E::salary),     field<E>(c::password, &E::password),
        field<E>(c::workCard, &E::workCard), field<E>(versionColumn(), &E::version)};
    return fields;
}

namespace {

Employee readEmployee(const Recordset& rs) {
    Employee e = readRecord(rs, employeeFields());
    e.id = rs.value(employeecol::id).toLongLong();
    e.storedPassword = e.password;
    e.password.clear();
    return e;
}

void removeRights(Store& store, const QString& storedPassword) {
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?")
                      .arg(permissionTable(), permissioncol::password),
                  {storedPassword});
}

} // namespace

QList<Permission> defaultPermissions() {
    QList<Permission> rights;
    for (const QString& module : permissionModules())
        rights.append({module, denied()});
    return rights;
}

QString toggledAccess(const QString& access) {
    if (access.isEmpty() || access == denied()) return granted();
    if (access == granted()) return denied();
    return access;
}

std::optional<Employee> loadEmployee(Store& store, qint64 id) {
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(employeeTable(), employeecol::id),
        {id});
    if (rs.eof()) return std::nullopt;
    return readEmployee(rs);
}

bool employeeNamed(Store& store, const QString& name) {
    return store
               .scalar(
                   QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2")
                       .arg(employeeTable(), store.sameText(employeeTable(), employeecol::name)),
                   {name})
               .toLongLong() > 0;
}

// A hash is compared as it is, to the letter.
QList<Permission> permissionsOf(Store& store, const QString& storedPassword) {
    QList<Permission> rights;
    if (storedPassword.isEmpty()) return rights;
    Recordset rs = store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 = ? ORDER BY %3")
                                  .arg(permissionTable(), permissioncol::password,
                                       rtx::table(permissionTable()).idColumn),
                              {storedPassword});
    for (; !rs.eof(); rs.moveNext())
        rights.append({rs.text(permissioncol::module), rs.text(permissioncol::access)});
    return rights;
}

QList<Permission> permissionsOf(Store& store, qint64 employee) {
    const std::optional<Employee> e = loadEmployee(store, employee);
    return e ? permissionsOf(store, e->storedPassword) : QList<Permission>{};
}

QList<Employee> employees(Store& store) {
    QList<Employee> all;
    Recordset rs =
        store.open(QStringLiteral("SELECT * FROM %1 ORDER BY %2, %3")
                       .arg(employeeTable(), store.sortKey(employeeTable(), employeecol::name),
                            employeecol::id));
    for (; !rs.eof(); rs.moveNext())
        all.append(readEmployee(rs));
    return all;
}

QStringList employeeNames(Store& store) {
    QStringList names;
    for (const Employee& e : employees(store))
        names << e.name;
    return names;
}

std::optional<Problem> checkEmployee(const Employee& employee, bool saved) {
    QList<std::pair<QString, QString>> required{{employeecol::name, QStringLiteral("Nome")}};
    if (!saved) required.append({employeecol::password, QStringLiteral("Senha")});
    return firstBlank(required, [&](const QString& column) {
        return column == employeecol::name ? employee.name : employee.password;
    });
}

qint64 saveEmployee(Store& store, const Employee& employee, const QList<Permission>& rights) {
    // Hashing takes a good part of a second: done first, before the row is read and written.
    const QString hashed =
        employee.password.isEmpty() ? QString() : hashPassword(employee.password);
    UnitOfWork unit(store);
    Recordset rs =
        store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 ORDER BY %3")
                       .arg(employeeTable(), store.sameText(employeeTable(), employeecol::name),
                            employeecol::id),
                   {employee.name});
    // Saved by his name: a renamed employee is a new row, and the version read on the screen
    // holds only for the row of the same name.
    const bool adding = rs.eof();
    // An employee read from a row that another station has deleted since is not added again;
    // one renamed on the screen, his row still there, is a new employee.
    if (adding && employee.version > 0 && employee.id > 0 && !loadEmployee(store, employee.id))
        throw RowChanged(RowChanged::Why::Deleted);
    QString old;
    if (adding) {
        if (hashed.isEmpty())
            throw StoreError(QStringLiteral("O campo [Senha], não pode ficar em branco."));
        rs.addNew();
    } else {
        old = rs.text(employeecol::password);
        rs.edit(employee.version);
    }
    Employee saved = employee;
    saved.password = hashed.isEmpty() ? old : hashed;
    writeRecord(rs, saved, employeeFields());
    rs.update();
    if (adding) rs.moveLast();
    const qint64 id = rs.value(employeecol::id).toLongLong();
    // A password given here is a fresh start: no wait left from the wrong ones before it.
    if (!hashed.isEmpty())
        store.execute(QStringLiteral("UPDATE %1 SET %2 = 0, %3 = 0 WHERE %4 = ?")
                          .arg(employeeTable(), employeecol::failures, employeecol::waitUntil,
                               employeecol::password),
                      {hashed});

    if (!old.isEmpty()) removeRights(store, old);
    for (const Permission& right : rights) {
        if (right.module.isEmpty()) continue;
        store.insert(permissionTable(), {{permissioncol::password, saved.password},
                                         {permissioncol::name, employee.name},
                                         {permissioncol::module, right.module},
                                         {permissioncol::access, right.access}});
    }
    unit.commit();
    return id;
}

void removeEmployee(Store& store, qint64 id) {
    UnitOfWork unit(store);
    if (const std::optional<Employee> e = loadEmployee(store, id))
        removeRights(store, e->storedPassword);
    store.execute(
        QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(employeeTable(), employeecol::id), {id});
    unit.commit();
}

} // namespace rtx::registers
