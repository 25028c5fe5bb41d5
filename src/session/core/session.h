#pragma once
// The session: who logged in, which modules he may open and the company's name. The
// rights belong to the password, not to the name: two employees with one password share
// them.

#include <QString>
#include <QStringList>
#include <optional>

namespace rtx {
class Store;
}

namespace rtx::session {

struct Session {
    QString user;        // the name as typed at the login
    QStringList modules; // the permitted modules, names as stored
    QString company;     // the company's name (empty when there is no company row)

    bool loggedIn() const { return !user.isEmpty(); }
    // A module is permitted when its name is among the modules exactly: capitals and
    // accents as stored.
    bool permits(const QString& module) const {
        return modules.contains(module, Qt::CaseSensitive);
    }
};

// The employees' names offered at the login, in order.
QStringList userNames(Store& store);

// The session of an employee with that name (capitals do not count, accents do) and that
// password; nothing when there is none. Throws StoreError.
std::optional<Session> logIn(Store& store, const QString& user, const QString& password);

// The company's name, from its one row; empty when there is none.
QString companyName(Store& store);

} // namespace rtx::session
