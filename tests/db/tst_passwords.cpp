// Passwords no one can read: hashed by the upgrade, chosen at ADMIN's first login, never
// shown by the employees screen, and waited for after wrong ones in a row.

#include "registerdesk.h"
#include "registers/core/passwords.h"
#include "registers/funci.h"
#include "session/core/session.h"
#include "session/login.h"
#include "store/migrations.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Outcome = session::Login::Outcome;

namespace {

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

// The modules a login with the password opens.
QStringList modules(Store& st, const QString& name, const QString& password) {
    return session::logIn(st, name, password, session::now()).session.modules;
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
    void cleanup() { session::end(); }

    // An old database with plain passwords: after the upgrade none can be read anywhere in
    // the two tables, each employee's hash checks his old password (capitals as he typed
    // them), the rights shared by one password are each employee's own, the rights of a
    // password no one had are gone, and an empty password must be changed.
    void upgradeHashesEveryPassword() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        const QStringList plain{u"segredo"_s, u"SEGREDO"_s, u"velha"_s};
        const QList<std::pair<QString, QString>> people{
            {u"MARIA"_s, plain[0]}, {u"JOÃO"_s, plain[1]}, {u"SEM SENHA"_s, QString()}};
        Store st(db.settings());
        migrate(st, stepsBeforeHashing());
        for (const auto& [name, password] : people)
            st.execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s, {name, password});
        for (const auto& [password, module] :
             {std::pair{plain[0], u"Atendimento"_s}, std::pair{plain[2], u"Backup"_s}})
            st.execute(u"INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, 'Sim')"_s,
                       {password, u"?"_s, module});
        st.ensureSchema();
        for (const QString& table : {u"funcionarios"_s, u"permissoes"_s})
            for (Recordset rs = st.open(u"SELECT * FROM %1"_s.arg(table)); !rs.eof(); rs.moveNext())
                for (int i = 0; i < rs.columns().size(); ++i)
                    for (const QString& p : plain)
                        QVERIFY2(!rs.value(i).toString().contains(p, Qt::CaseInsensitive),
                                 qPrintable(rs.value(i).toString()));
        for (const auto& [name, password] : people)
            QVERIFY2(storedPassword(st, name).startsWith(u"$argon2id$"_s) &&
                         registers::passwordMatches(storedPassword(st, name), password),
                     qPrintable(name));
        QVERIFY(!registers::passwordMatches(storedPassword(st, u"JOÃO"_s), plain[0]));
        QVERIFY(storedPassword(st, u"MARIA"_s) != storedPassword(st, u"JOÃO"_s)); // salted
        QCOMPARE(modules(st, u"MARIA"_s, plain[0]) + modules(st, u"JOÃO"_s, plain[1]),
                 (QStringList{u"Atendimento"_s, u"Atendimento"_s}));
        QCOMPARE(st.count(u"permissoes"_s), 2);
        QVERIFY(session::logIn(st, u"SEM SENHA"_s, QString(), session::now()).mustChangePassword);
    }

    // A new installation: ADMIN with the delivered "admin" must choose a new password, twice
    // alike, before the session starts; then only the new one enters, with every right.
    void firstLoginChoosesNewPassword() {
        TestInstallation inst; // without the demo
        RTX_REQUIRE_INSTALL(inst);
        session::setInstallation(inst.installation());
        ScriptedPrompter prompts;
        LOGIN login;
        QVERIFY(showActive(&login));

        for (const QString& answer :
             {u""_s, u"admin"_s, u"Nova-1"_s, u"nova-1"_s, u"Nova-1"_s, u"Nova-1"_s})
            prompts.answerText(answer);
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Notice), 3); // empty, same, two differ
        QVERIFY(session::current().loggedIn());
        QCOMPARE(session::permittedModules().size(), 15); // every right

        Store& st = inst.store();
        QVERIFY(!session::logIn(st, u"ADMIN"_s, u"admin"_s, session::now()).granted());
        QVERIFY(!session::logIn(st, u"admin"_s, u"Nova-1"_s, session::now()).mustChangePassword);
    }

    // The employees screen shows no password, in its list or in a loaded employee's field;
    // saved with it empty, she keeps hers and her rights. Five wrong ones in a row: the sixth
    // try waits 1 s, after another wrong one 2 s, then 4 s, on this station and another; the
    // screen says how long. A right one after the wait enters and starts the count again.
    // Other users are not held up.
    void noPasswordShownAndWrongOnesWait() {
        Desk<funci> d(true); // the demo office: ANA PAULA
        RTX_OPEN_DESK(d);
        Store& st = d.inst.store();
        const QString before = storedPassword(st, u"ANA PAULA"_s);
        d.s()->findChild<SSTab*>(u"SSTab1"_s)->setTab(2);
        auto* list = control<MSFlexGrid>(d.s(), u"Grid1"_s);
        QVERIFY(list->findItems(u"$argon2"_s, Qt::MatchContains).isEmpty());
        doubleClickRow(list, gridRow(list, u"ANA PAULA"_s));
        QCOMPARE(shown(d.s(), u"x8"_s), QString());
        typeInto(d.s(), u"X2"_s, u"1122223333"_s);
        click(d.s(), u"Command16"_s);
        QCOMPARE(storedPassword(st, u"ANA PAULA"_s), before);
        QCOMPARE(modules(st, u"ANA PAULA"_s, u"ana123"_s).size(), 3);

        session::setInstallation(d.inst.installation());
        QDateTime clock = QDateTime(QDate(2025, 3, 10), QTime(9, 0), Qt::UTC);
        session::setClock([&clock] { return clock; });
        const auto realClock = qScopeGuard([] { session::setClock(nullptr); });
        const std::unique_ptr<Store> other = d.inst.openSecondStore();
        const auto elsewhere = [&](const QString& password, qint64 afterMs = 0) {
            return session::logIn(*other, u"ANA PAULA"_s, password, clock.addMSecs(afterMs));
        };
        for (int i = 0; i < registers::kFreeTries; ++i)
            QCOMPARE(elsewhere(u"errada"_s).outcome, Outcome::Refused);
        LOGIN login;
        QVERIFY(showActive(&login));
        d.prompts.clear();
        logInOn(&login, u"ANA PAULA"_s, u"ana123"_s); // right, but too soon
        QCOMPARE(d.prompts.texts(), QStringList{LOGIN::waitText(1)});
        QVERIFY(!session::current().loggedIn());
        QVERIFY(session::logIn(*other, u"CARLOS D'AVILA"_s, u"carlos"_s, clock).granted());
        for (qint64 wait = 1; wait < 4; wait *= 2) {
            clock = clock.addSecs(wait);
            QCOMPARE(elsewhere(u"errada"_s).outcome, Outcome::Refused);
            const session::Login early = elsewhere(u"ana123"_s, wait * 2000 - 1);
            QVERIFY(early.outcome == Outcome::Wait && early.waitSeconds == 1);
        }

        clock = clock.addSecs(4);
        d.prompts.clear();
        logInOn(&login, u"ANA PAULA"_s, u"ana123"_s);
        QVERIFY(d.prompts.texts().isEmpty() && session::current().loggedIn());
        session::end();
        for (int i = 0; i < registers::kFreeTries - 1; ++i)
            QCOMPARE(elsewhere(u"x"_s).outcome, Outcome::Refused);
        QVERIFY(elsewhere(u"ana123"_s).granted());
    }
};

QTEST_MAIN(PasswordsTest)
#include "tst_passwords.moc"
