#include "registers/core/employees.h"

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
    return e;
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

std::optional<Employee> employeeByPassword(Store& store, const QString& password) {
    Recordset rs =
        store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 ORDER BY %3")
                       .arg(employeeTable(), store.sameText(employeeTable(), employeecol::password),
                            employeecol::id),
                   {password});
    if (rs.eof()) return std::nullopt;
    return readEmployee(rs);
}

QList<Permission> permissionsOf(Store& store, const QString& password) {
    QList<Permission> rights;
    Recordset rs = store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 ORDER BY %3")
                                  .arg(permissionTable(),
                                       store.sameText(permissionTable(), permissioncol::password),
                                       rtx::table(permissionTable()).idColumn),
                              {password});
    for (; !rs.eof(); rs.moveNext())
        rights.append({rs.text(permissioncol::module), rs.text(permissioncol::access)});
    return rights;
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

std::optional<Problem> checkEmployee(const Employee& employee) {
    return firstBlank({{employeecol::name, QStringLiteral("Nome")},
                       {employeecol::password, QStringLiteral("Senha")}},
                      [&](const QString& column) {
                          return column == employeecol::name ? employee.name : employee.password;
                      });
}

qint64 saveEmployee(Store& store, const Employee& employee, const QList<Permission>& rights) {
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
    if (adding)
        rs.addNew();
    else
        rs.edit(employee.version);
    writeRecord(rs, employee, employeeFields());
    rs.update();
    if (adding) rs.moveLast();
    const qint64 id = rs.value(employeecol::id).toLongLong();

    store.execute(
        QStringLiteral("DELETE FROM %1 WHERE %2")
            .arg(permissionTable(), store.sameText(permissionTable(), permissioncol::password)),
        {employee.password});
    for (const Permission& right : rights) {
        if (right.module.isEmpty()) continue;
        store.insert(permissionTable(), {{permissioncol::password, employee.password},
                                         {permissioncol::name, employee.name},
                                         {permissioncol::module, right.module},
                                         {permissioncol::access, right.access}});
    }
    unit.commit();
    return id;
}

void removeEmployee(Store& store, qint64 id, const QString& password) {
    UnitOfWork unit(store);
    store.execute(
        QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(employeeTable(), employeecol::id), {id});
    store.execute(
        QStringLiteral("DELETE FROM %1 WHERE %2")
            .arg(permissionTable(), store.sameText(permissionTable(), permissioncol::password)),
        {password});
    unit.commit();
}

} // namespace rtx::registers
