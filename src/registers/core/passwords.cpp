#include "registers/core/passwords.h"

#include "registers/core/employees.h"
#include "store/store.h"

#include <sodium.h>

#include <algorithm>

namespace rtx::registers {

namespace {

namespace col = employeecol;

// libsodium's "interactive" cost: about 0.15 s and 64 MiB for one check on an office desktop
// (measured here on a busy machine: hash 165 ms, check 120 ms). Slow enough that trying a
// word list against a copy of the database takes years, quick enough for a login. The cost
// is kept inside each stored string, so raising it later still checks the old ones.
const unsigned long long kOpsLimit = crypto_pwhash_OPSLIMIT_INTERACTIVE;
const size_t kMemLimit = crypto_pwhash_MEMLIMIT_INTERACTIVE;

void ensureLibrary() {
    static const bool ready = sodium_init() >= 0;
    if (!ready)
        throw StoreError(
            QStringLiteral("A biblioteca de senhas (libsodium) n\u00e3o p\u00f4de ser iniciada."));
}

// Several employees may bear one name (a save is by name, the first one written over): a
// login checks each, oldest first.
struct Candidate {
    qint64 id = 0;
    QString stored;
    bool mustChange = false;
    int failures = 0;
    qint64 waitUntil = 0;
};

QList<Candidate> candidates(Store& store, const QString& user) {
    QList<Candidate> found;
    Recordset rs =
        store.open(QStringLiteral("SELECT %1, %2, %3, %4, %5 FROM %6 WHERE %7 ORDER BY %1")
                       .arg(col::id, col::password, col::mustChange, col::failures, col::waitUntil,
                            employeeTable(), store.sameText(employeeTable(), col::name)),
                   {user});
    for (; !rs.eof(); rs.moveNext())
        found.append({rs.value(col::id).toLongLong(), rs.text(col::password),
                      rs.value(col::mustChange).toInt() != 0, rs.value(col::failures).toInt(),
                      rs.value(col::waitUntil).toLongLong()});
    return found;
}

} // namespace

QString hashPassword(const QString& password) {
    ensureLibrary();
    const QByteArray utf8 = password.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(out, utf8.constData(), static_cast<unsigned long long>(utf8.size()),
                          kOpsLimit, kMemLimit) != 0)
        throw StoreError(QStringLiteral("Mem\u00f3ria insuficiente para guardar a senha."));
    return QString::fromLatin1(out);
}

bool isPasswordHash(const QString& stored) {
    return stored.startsWith(QLatin1String(crypto_pwhash_STRPREFIX));
}

bool passwordMatches(const QString& stored, const QString& typed) {
    if (!isPasswordHash(stored)) return false;
    ensureLibrary();
    const QByteArray hash = stored.toLatin1();
    const QByteArray utf8 = typed.toUtf8();
    return crypto_pwhash_str_verify(hash.constData(), utf8.constData(),
                                    static_cast<unsigned long long>(utf8.size())) == 0;
}

qint64 waitAfterFailures(int failures) {
    if (failures < kFreeTries) return 0;
    const int doublings = failures - kFreeTries;
    if (doublings >= 20) return kLongestWaitSeconds;
    return std::min<qint64>(qint64(1) << doublings, kLongestWaitSeconds);
}

LoginCheck checkLogin(Store& store, const QString& user, const QString& password,
                      const QDateTime& now) {
    const QList<Candidate> found = candidates(store, user);
    LoginCheck check;
    if (found.isEmpty()) return check;

    const qint64 nowMs = now.toMSecsSinceEpoch();
    qint64 waitUntil = 0;
    int failures = 0;
    for (const Candidate& c : found) {
        waitUntil = std::max(waitUntil, c.waitUntil);
        failures = std::max(failures, c.failures);
    }
    if (nowMs < waitUntil) {
        check.outcome = LoginCheck::Outcome::Wait;
        check.waitSeconds = (waitUntil - nowMs + 999) / 1000;
        return check;
    }

    const QString byName = store.sameText(employeeTable(), col::name);
    for (const Candidate& c : found) {
        if (!passwordMatches(c.stored, password)) continue;
        if (failures > 0) {
            UnitOfWork unit(store);
            store.execute(QStringLiteral("UPDATE %1 SET %2 = 0, %3 = 0 WHERE %4")
                              .arg(employeeTable(), col::failures, col::waitUntil, byName),
                          {user});
            unit.commit();
        }
        check.outcome = LoginCheck::Outcome::Granted;
        check.employee = c.id;
        check.rightsKey = c.stored;
        check.mustChangePassword = c.mustChange;
        return check;
    }

    // Counted for the name, whichever of its rows was meant: another station trying at the
    // same moment adds its own, as the count is raised in the database, not here.
    UnitOfWork unit(store);
    store.execute(QStringLiteral("UPDATE %1 SET %2 = %2 + 1 WHERE %3")
                      .arg(employeeTable(), col::failures, byName),
                  {user});
    const int counted = store
                            .scalar(QStringLiteral("SELECT MAX(%1) FROM %2 WHERE %3")
                                        .arg(col::failures, employeeTable(), byName),
                                    {user})
                            .toInt();
    if (const qint64 wait = waitAfterFailures(counted); wait > 0)
        store.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3")
                          .arg(employeeTable(), col::waitUntil, byName),
                      {nowMs + wait * 1000, user});
    unit.commit();
    return check;
}

void changePassword(Store& store, qint64 employee, const QString& password) {
    const QString hashed = hashPassword(password); // before the unit: no lock held meanwhile
    UnitOfWork unit(store);
    const QString old = store
                            .scalar(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?")
                                        .arg(col::password, employeeTable(), col::id),
                                    {employee})
                            .toString();
    store.execute(QStringLiteral("UPDATE %1 SET %2 = ?, %3 = 0, %4 = 0, %5 = 0 WHERE %6 = ?")
                      .arg(employeeTable(), col::password, col::mustChange, col::failures,
                           col::waitUntil, col::id),
                  {hashed, employee});
    store.execute(QStringLiteral("UPDATE %1 SET %2 = ? WHERE %2 = ?")
                      .arg(permissionTable(), permissioncol::password),
                  {hashed, old});
    unit.commit();
}

void requirePasswordChange(Store& store, const QString& name, bool required) {
    UnitOfWork unit(store);
    store.execute(
        QStringLiteral("UPDATE %1 SET %2 = ? WHERE %3")
            .arg(employeeTable(), col::mustChange, store.sameText(employeeTable(), col::name)),
        {required ? 1 : 0, name});
    unit.commit();
}

} // namespace rtx::registers
