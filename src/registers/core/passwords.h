#pragma once
// The employees' passwords. None is ever kept as typed: the table holds libsodium's Argon2id
// string (salt and cost inside it), from which a typed password can be checked but the
// password cannot be read back. A login checks through the library; five wrong passwords in
// a row for one user make the next try wait, longer after each further failure.

#include <QDateTime>
#include <QString>

namespace rtx {
class Store;
}

namespace rtx::registers {

namespace employeecol {
inline const QString mustChange = QStringLiteral("troca_senha"); // 1: a new one at next login
inline const QString failures = QStringLiteral("tentativas");    // wrong passwords in a row
inline const QString waitUntil = QStringLiteral("espera_ate");   // no try before (ms since 1970)
} // namespace employeecol

// The wrong passwords in a row a user has before a try must wait.
inline constexpr int kFreeTries = 5;
// The longest wait: a user who forgot his password waits at most this, then tries again.
inline constexpr qint64 kLongestWaitSeconds = 15 * 60;

// The stored form of a password, salted anew each time. Throws StoreError when the machine
// lacks the memory the hash needs (nothing is saved then).
QString hashPassword(const QString& password);
// Whether a typed password is the one of a stored form; false for anything that is not one.
bool passwordMatches(const QString& stored, const QString& typed);
// Whether a stored value is a password's hash (and not, say, an old plain password).
bool isPasswordHash(const QString& stored);

// The wait after that many wrong passwords in a row: none up to kFreeTries - 1, then 1 s after
// the fifth, 2 s after the sixth, 4 s..., never longer than kLongestWaitSeconds.
qint64 waitAfterFailures(int failures);

struct LoginCheck {
    enum class Outcome {
        Granted, // the password is right
        Refused, // no such user, or a wrong password (counted)
        Wait,    // too many wrong ones: the try was not even looked at
    };
    Outcome outcome = Outcome::Refused;
    qint64 employee = 0;             // Granted: who
    QString rightsKey;               // Granted: the key of his rights (his stored password)
    bool mustChangePassword = false; // Granted: he must choose a new one before going on
    qint64 waitSeconds = 0;          // Wait: how long still, rounded up
};

// The login's check of a user (his name, capitals not counting) and a password at the moment
// given. A wrong one is counted for every employee of that name, a right one clears the
// count, each in a unit of work of its own. Throws StoreError.
LoginCheck checkLogin(Store& store, const QString& user, const QString& password,
                      const QDateTime& now);

// Gives an employee a new password: stored hashed, his rights follow it, and he is no longer
// asked to change it. One unit of work. Throws StoreError.
void changePassword(Store& store, qint64 employee, const QString& password);

// Marks whether the employee of that name must choose a new password at his next login.
void requirePasswordChange(Store& store, const QString& name, bool required);

} // namespace rtx::registers
