#pragma once
// The session: who logged in, which modules he may open and the company's name. The rights
// are those kept under the employee's password.

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>

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

// What a try at the login gives.
struct Login {
    enum class Outcome {
        Granted, // session holds the session
        Refused, // no such user or a wrong password: the one message for both
        Wait,    // too many wrong passwords in a row: waitSeconds still to wait
    };
    Outcome outcome = Outcome::Refused;
    Session session;
    qint64 employee = 0;             // Granted: who logged in
    bool mustChangePassword = false; // Granted: a new password first, then the hub
    qint64 waitSeconds = 0;

    bool granted() const { return outcome == Outcome::Granted; }
};

// The employees' names offered at the login, in order.
QStringList userNames(Store& store);

// The login of an employee with that name (capitals do not count, accents do) and that
// password at the moment given. Throws StoreError.
Login logIn(Store& store, const QString& user, const QString& password, const QDateTime& now);

// The company's name, from its one row; empty when there is none.
QString companyName(Store& store);

// The clock the login reads to tell how long a user still waits; tests set their own
// (nullptr: the machine's again).
QDateTime now();
void setClock(std::function<QDateTime()> clock);

} // namespace rtx::session
