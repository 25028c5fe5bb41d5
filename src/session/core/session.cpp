#include "session/core/session.h"

#include "registers/core/company.h"
#include "registers/core/employees.h"
#include "registers/core/passwords.h"
#include "store/store.h"

namespace rtx::session {

namespace {

std::function<QDateTime()>& clockInUse() {
    static std::function<QDateTime()> clock;
    return clock;
}

} // namespace

QStringList userNames(Store& store) {
    return registers::employeeNames(store);
}

Login logIn(Store& store, const QString& user, const QString& password, const QDateTime& now) {
    const registers::LoginCheck check = registers::checkLogin(store, user, password, now);
    Login login;
    switch (check.outcome) {
    case registers::LoginCheck::Outcome::Refused:
        return login;
    case registers::LoginCheck::Outcome::Wait:
        login.outcome = Login::Outcome::Wait;
        login.waitSeconds = check.waitSeconds;
        return login;
    case registers::LoginCheck::Outcome::Granted:
        break;
    }
    login.outcome = Login::Outcome::Granted;
    login.employee = check.employee;
    login.mustChangePassword = check.mustChangePassword;
    login.session.user = user;
    for (const registers::Permission& right : registers::permissionsOf(store, check.rightsKey))
        if (right.access == registers::granted()) login.session.modules << right.module;
    login.session.company = companyName(store);
    return login;
}

QString companyName(Store& store) {
    const std::optional<registers::Company> company = registers::loadCompany(store);
    return company ? company->name : QString();
}

QDateTime now() {
    const std::function<QDateTime()>& clock = clockInUse();
    return clock ? clock() : QDateTime::currentDateTimeUtc();
}

void setClock(std::function<QDateTime()> clock) {
    clockInUse() = std::move(clock);
}

} // namespace rtx::session
