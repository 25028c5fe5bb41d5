// A step of the schema: the employees' passwords, kept until now as typed, become salted slow
// hashes (libsodium's Argon2id), and the rights that were keyed by the plain password follow
// the hash of each employee who had it. An employee is also given a mark that makes him choose
// a new password at his next login, and the count of his wrong tries with the moment before
// which a new one waits.
//
// The step hashes with libsodium itself rather than through the registers, who own the
// passwords from here on: a database is brought up to date wherever it is opened (the
// program, a restored backup, the benchmark, the tests' installations), below every core,
// and a step must do the same work whoever opens it. The cost is fixed here with the step;
// each stored string carries its own, so the login checks these as it checks later ones.

#include "migrations.h"
#include "store.h"

#include <sodium.h>

#include <QList>

namespace rtx::migration {

namespace {

struct Employee {
    qint64 id = 0;
    QString name;
    QString plain;
    QString hashed;
};

struct Right {
    QString password;
    QString module;
    QString access;
};

QString hashed(const QString& password) {
    const QByteArray utf8 = password.toUtf8();
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(out, utf8.constData(), static_cast<unsigned long long>(utf8.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw StoreError(QStringLiteral("Mem\u00f3ria insuficiente para guardar as senhas."));
    return QString::fromLatin1(out);
}

} // namespace

void hashedPasswords(Store& store) {
    if (sodium_init() < 0)
        throw StoreError(
            QStringLiteral("A biblioteca de senhas (libsodium) n\u00e3o p\u00f4de ser iniciada."));
    if (store.engine() == Engine::SQLite) {
        store.execute(QStringLiteral(
            "ALTER TABLE funcionarios ADD COLUMN troca_senha INTEGER NOT NULL DEFAULT 0"));
        store.execute(QStringLiteral(
            "ALTER TABLE funcionarios ADD COLUMN tentativas INTEGER NOT NULL DEFAULT 0"));
        store.execute(QStringLiteral(
            "ALTER TABLE funcionarios ADD COLUMN espera_ate BIGINT NOT NULL DEFAULT 0"));
    } else {
        store.execute(QStringLiteral(
            "ALTER TABLE funcionarios ADD COLUMN troca_senha INTEGER NOT NULL DEFAULT 0, "
            "ADD COLUMN tentativas INTEGER NOT NULL DEFAULT 0, "
            "ADD COLUMN espera_ate BIGINT NOT NULL DEFAULT 0"));
    }

    QList<Employee> employees;
    for (Recordset rs =
             store.open(QStringLiteral("SELECT cd, x1, x8 FROM funcionarios ORDER BY cd"));
         !rs.eof(); rs.moveNext())
        employees.append({rs.value(QStringLiteral("cd")).toLongLong(),
                          rs.text(QStringLiteral("x1")),
                          rs.text(QStringLiteral("x8")),
                          {}});
    for (Employee& e : employees) {
        e.hashed = hashed(e.plain);
        // An empty password was never meant to be one: he chooses a real one at his next login.
        store.execute(
            QStringLiteral("UPDATE funcionarios SET x8 = ?, troca_senha = ? WHERE cd = ?"),
            {e.hashed, e.plain.isEmpty() ? 1 : 0, e.id});
    }

    // The rights belonged to a password, shared by whoever had it (its capitals did not
    // count): each of those employees now gets his own copy under his own hash. Rows of a
    // password no one has any more could never be reached again, and go.
    QList<Right> rights;
    for (Recordset rs =
             store.open(QStringLiteral("SELECT a1, a4, a5 FROM permissoes ORDER BY rid"));
         !rs.eof(); rs.moveNext())
        rights.append({rs.text(QStringLiteral("a1")), rs.text(QStringLiteral("a4")),
                       rs.text(QStringLiteral("a5"))});
    store.execute(QStringLiteral("DELETE FROM permissoes"));
    for (const Employee& e : employees)
        for (const Right& r : rights)
            if (r.password.compare(e.plain, Qt::CaseInsensitive) == 0)
                store.execute(
                    QStringLiteral("INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"),
                    {e.hashed, e.name, r.module, r.access});
}

} // namespace rtx::migration
