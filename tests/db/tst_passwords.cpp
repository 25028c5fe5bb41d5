// Passwords no one can read: hashed by the upgrade, chosen at ADMIN's first login, never
// shown by the employees screen, and waited for after wrong ones in a row.

#include "registerdesk.h"
#include "registers/core/employees.h"
#include "registers/core/passwords.h"
#include "registers/funci.h"
#include "session/core/session.h"
#include "session/login.h"
#include "store/migrations.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;
using Outcome = session::Login::Outcome;

namespace {

const QString kRefused = u"Usuário ou senha não cadastrada"_s;

// The steps before the one that hashes the passwords: a database as the last release left it.
QList<Migration> stepsBeforeHashing() {
    QList<Migration> before;
    for (const Migration& step : migrations()) {
        const auto* fn = step.apply.target<void (*)(Store&)>();
        if (fn && *fn == &migration::hashedPasswords) return before;
        before << step;
    }
    return {};
}

QString storedPassword(Store& st, const QString& name) {
    return st.scalar(u"SELECT x8 FROM funcionarios WHERE x1 = ?"_s, {name}).toString();
}

QStringList grantedOf(Store& st, const QString& name) {
    QStringList out;
    for (const auto& right : registers::permissionsOf(st, storedPassword(st, name)))
        if (right.access == registers::granted()) out << right.module;
    return out;
}

// The real login screen: the name and the password typed, Logar pressed.
void logInOn(LOGIN* login, const QString& user, const QString& password) {
    typeInto(login, u"A1"_s, user);
    typeInto(login, u"A2"_s, password);
    click(login, u"Command7"_s);
}

} // namespace

class PasswordsTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() {
        session::end();
        session::setClock(nullptr);
    }

    // An old database with plain passwords: after the upgrade none can be read anywhere in
    // the two tables, each employee's hash checks his old password (capitals as he typed
    // them), the rights shared by one password are each employee's own, the rights of a
    // password no one had are gone, and an empty password must be changed.
    void upgradeHashesEveryPassword() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        const QList<Migration> before = stepsBeforeHashing();
        QVERIFY(!before.isEmpty());
        const QStringList plain{u"segredo"_s, u"SEGREDO"_s, u"velha"_s};
        const QList<std::pair<QString, QString>> people{
            {u"MARIA"_s, plain[0]}, {u"JOÃO"_s, plain[1]}, {u"SEM SENHA"_s, QString()}};
        {
            Store st(db.settings());
            migrate(st, before);
            UnitOfWork unit(st);
            for (const auto& [name, password] : people)
                st.execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s, {name, password});
            for (const auto& [password, module] :
                 {std::pair{plain[0], u"Atendimento"_s}, std::pair{plain[2], u"Backup"_s}})
                st.execute(u"INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, 'Sim')"_s,
                           {password, u"?"_s, module});
            unit.commit();
        }
        Store st(db.settings());
        st.ensureSchema();
        for (const QString& table : {u"funcionarios"_s, u"permissoes"_s})
            for (Recordset rs = st.open(u"SELECT * FROM %1"_s.arg(table)); !rs.eof(); rs.moveNext())
                for (int i = 0; i < rs.columns().size(); ++i)
                    for (const QString& p : plain)
                        QVERIFY2(!rs.value(i).toString().contains(p, Qt::CaseInsensitive),
                                 qPrintable(rs.value(i).toString()));
        for (const auto& [name, password] : people) {
            const QString stored = storedPassword(st, name);
            QVERIFY2(stored.startsWith(u"$argon2id$"_s), qPrintable(stored));
            QVERIFY(registers::passwordMatches(stored, password));
        }
        QVERIFY(storedPassword(st, u"MARIA"_s) != storedPassword(st, u"JOÃO"_s)); // salted
        QCOMPARE(grantedOf(st, u"MARIA"_s), QStringList{u"Atendimento"_s});
        QCOMPARE(grantedOf(st, u"JOÃO"_s), QStringList{u"Atendimento"_s});
        QCOMPARE(st.count(u"permissoes"_s), 2);

        const QDateTime now = QDateTime::currentDateTimeUtc();
        const session::Login joao = session::logIn(st, u"joão"_s, plain[1], now);
        QVERIFY(joao.granted() && !joao.mustChangePassword);
        QVERIFY(!session::logIn(st, u"JOÃO"_s, plain[0], now).granted());
        QVERIFY(session::logIn(st, u"SEM SENHA"_s, QString(), now).mustChangePassword);
    }

    // A new installation: ADMIN with the delivered "admin" must choose a new password,
    // twice alike, before the session starts; a cancel goes back to the login. After it the
    // delivered password is refused, the new one enters with no question and every right.
    void firstLoginChoosesNewPassword() {
        TestInstallation inst; // without the demo
        RTX_REQUIRE_INSTALL(inst);
        session::setInstallation(inst.installation());
        ScriptedPrompter prompts;
        Store& st = inst.store();
        const QStringList everything = grantedOf(st, u"ADMIN"_s);
        LOGIN login;
        QVERIFY(showActive(&login));

        prompts.answerCancel();
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        QVERIFY(!session::current().loggedIn());
        prompts.clear();
        for (const QString& answer :
             {u""_s, u"admin"_s, u"Nova-1"_s, u"nova-1"_s, u"Nova-1"_s, u"Nova-1"_s})
            prompts.answerText(answer);
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        // Empty, the same as before, and two that differ are each refused.
        QCOMPARE(prompts.count(Kind::Notice), 3);
        QVERIFY(session::current().loggedIn());
        QCOMPARE(grantedOf(st, u"ADMIN"_s), everything);

        session::end();
        prompts.clear();
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        logInOn(&login, u"admin"_s, u"Nova-1"_s);
        QCOMPARE(prompts.texts(), QStringList{kRefused}); // no question the second time
        QCOMPARE(session::permittedModules(), everything);
    }

    // The employees screen: its list shows no password and a loaded employee's field is
    // empty; saved with it empty he keeps his password and rights.
    void employeesScreenNeverShowsPassword() {
        Desk<funci> d(true); // the demo office: ANA PAULA
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        Store& st = d.inst.store();
        const QString before = storedPassword(st, u"ANA PAULA"_s);
        const QStringList rights = grantedOf(st, u"ANA PAULA"_s);
        s->findChild<SSTab*>(u"SSTab1"_s)->setTab(2);
        auto* list = control<MSFlexGrid>(s, u"Grid1"_s);
        for (int r = 0; r < list->rows(); ++r)
            for (int c = 0; c < list->cols(); ++c)
                QVERIFY2(!list->textMatrix(r, c).contains(u"$argon2"_s),
                         qPrintable(list->textMatrix(r, c)));
        doubleClickRow(list, gridRow(list, u"ANA PAULA"_s));
        QCOMPARE(shown(s, u"x8"_s), QString());
        typeInto(s, u"X2"_s, u"1122223333"_s);
        click(s, u"Command16"_s);
        QCOMPARE(storedPassword(st, u"ANA PAULA"_s), before);
        QCOMPARE(grantedOf(st, u"ANA PAULA"_s), rights);
    }

    // Five wrong passwords in a row: the sixth try waits 1 s, after another wrong one 2 s,
    // then 4 s, whatever is typed meanwhile, on this station and on another; the screen says
    // how long. A right one after the wait enters and starts the count again. Other users
    // are not held up.
    void wrongPasswordsWaitLongerEachTime() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        session::setInstallation(inst.installation());
        ScriptedPrompter prompts;
        QDateTime clock = QDateTime(QDate(2025, 3, 10), QTime(9, 0), Qt::UTC);
        session::setClock([&clock] { return clock; });
        const std::unique_ptr<Store> other = inst.openSecondStore();
        const auto elsewhere = [&](const QString& password, qint64 afterMs = 0) {
            return session::logIn(*other, u"ANA PAULA"_s, password, clock.addMSecs(afterMs));
        };
        LOGIN login;
        QVERIFY(showActive(&login));
        for (int i = 0; i < registers::kFreeTries; ++i)
            logInOn(&login, u"ANA PAULA"_s, u"errada"_s);
        prompts.clear();
        logInOn(&login, u"ANA PAULA"_s, u"ana123"_s); // right, but too soon
        QCOMPARE(prompts.texts(), QStringList{LOGIN::waitText(1)});
        QVERIFY(!session::current().loggedIn());
        QVERIFY(session::logIn(*other, u"CARLOS D'AVILA"_s, u"carlos"_s, clock).granted());

        qint64 wait = 1;
        for (int round = 0; round < 2; ++round) {
            clock = clock.addSecs(wait);
            QCOMPARE(elsewhere(u"errada"_s).outcome, Outcome::Refused);
            wait *= 2;
            const session::Login early = elsewhere(u"ana123"_s, wait * 1000 - 1);
            QCOMPARE(early.outcome, Outcome::Wait);
            QCOMPARE(early.waitSeconds, 1);
        }
        QCOMPARE(registers::waitAfterFailures(40), registers::kLongestWaitSeconds);

        clock = clock.addSecs(wait);
        prompts.clear();
        logInOn(&login, u"ANA PAULA"_s, u"ana123"_s);
        QVERIFY(prompts.texts().isEmpty() && session::current().loggedIn());
        session::end();
        for (int i = 0; i < registers::kFreeTries - 1; ++i)
            QCOMPARE(elsewhere(u"x"_s).outcome, Outcome::Refused);
        QVERIFY(elsewhere(u"ana123"_s).granted());
    }
};

QTEST_MAIN(PasswordsTest)
#include "tst_passwords.moc"
