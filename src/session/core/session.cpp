#include "session/core/session.h"

#include "registers/core/company.h"
#include "registers/core/employees.h"
#include "store/store.h"

namespace rtx::session {

namespace {
namespace emp = registers::employeecol;
} // namespace

QStringList userNames(Store& store) {
    return registers::employeeNames(store);
}

std::optional<Session> logIn(Store& store, const QString& user, const QString& password) {
    const QString& employees = registers::employeeTable();
    Recordset rs =
        store.open(QStringLiteral("SELECT %1 FROM %2 WHERE %3 AND %4")
                       .arg(emp::name, employees, store.sameText(employees, emp::password),
                            store.sameText(employees, emp::name)),
                   {password, user});
    if (rs.eof()) return std::nullopt;
    Session s;
    s.user = user;
    for (const registers::Permission& right : registers::permissionsOf(store, password))
        if (right.access == registers::granted()) s.modules << right.module;
    s.company = companyName(store);
    return s;
}

QString companyName(Store& store) {
    const std::optional<registers::Company> company = registers::loadCompany(store);
    return company ? company->name : QString();
}

} // namespace rtx::session
