// Passwords no one can read: hashed by the upgrade, chosen at ADMIN's first login, never
// shown by the employees screen, and waited for after wrong ones in a row.

#include "registerdesk.h"
#include "registers/core/employees.h"
#include "registers/core/passwords.h"
#include "registers/funci.h"
#include "session/core/session.h"
#include "session/login.h"
#include "store/migrations.h"

#include <QSignalSpy>

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

// Every text the two tables hold, folded copies and all.
QStringList storedTexts(Store& st) {
    QStringList out;
    for (const QString& table : {u"funcionarios"_s, u"permissoes"_s})
        for (Recordset rs = st.open(u"SELECT * FROM %1"_s.arg(table)); !rs.eof(); rs.moveNext())
            for (int i = 0; i < rs.columns().size(); ++i)
                out << rs.value(i).toString();
    return out;
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
    auto* box = control<QComboBox>(login, u"A1"_s);
    box->setFocus(Qt::TabFocusReason);
    box->setEditText(QString());
    typeText(box, user);
    QWidget* field = control(login, u"A2"_s);
    field->setFocus(Qt::TabFocusReason);
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    typeText(field, password);
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
        const QStringList plain{u"segredo"_s, u"SEGREDO"_s, u"çãoé1"_s, u"velha"_s};
        const QList<std::pair<QString, QString>> people{{u"MARIA"_s, plain[0]},
                                                        {u"JOÃO"_s, plain[1]},
                                                        {u"CÉLIA"_s, plain[2]},
                                                        {u"SEM SENHA"_s, QString()}};
        {
            Store st(db.settings());
            migrate(st, before);
            UnitOfWork unit(st);
            for (const auto& [name, password] : people)
                st.execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s, {name, password});
            for (const auto& [password, module, access] :
                 QList<std::tuple<QString, QString, QString>>{
                     {u"segredo"_s, u"Atendimento"_s, u"Sim"_s},
                     {u"segredo"_s, u"Caixa"_s, u"Não"_s},
                     {u"segredo"_s, u"Agenda"_s, u"Sim"_s},
                     {plain[2], u"Recibo"_s, u"Sim"_s},
                     {plain[3], u"Backup"_s, u"Sim"_s}})
                st.execute(u"INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"_s,
                           {password, u"?"_s, module, access});
            unit.commit();
        }
        Store st(db.settings());
        st.ensureSchema();
        const QStringList texts = storedTexts(st);
        for (const QString& p : plain)
            for (const QString& text : texts)
                QVERIFY2(!text.contains(p, Qt::CaseInsensitive), qPrintable(text));
        for (const auto& [name, password] : people) {
            const QString stored = storedPassword(st, name);
            QVERIFY2(stored.startsWith(u"$argon2id$"_s), qPrintable(stored));
            QVERIFY(registers::passwordMatches(stored, password));
        }
        QVERIFY(storedPassword(st, u"MARIA"_s) != storedPassword(st, u"JOÃO"_s)); // salted

        const QStringList shared{u"Atendimento"_s, u"Agenda"_s};
        QCOMPARE(grantedOf(st, u"MARIA"_s), shared);
        QCOMPARE(grantedOf(st, u"JOÃO"_s), shared);
        QCOMPARE(st.count(u"permissoes"_s), 3 + 3 + 1);

        const QDateTime now = QDateTime::currentDateTimeUtc();
        const session::Login joao = session::logIn(st, u"joão"_s, plain[1], now);
        QVERIFY(joao.granted() && !joao.mustChangePassword);
        QVERIFY(!session::logIn(st, u"JOÃO"_s, plain[0], now).granted());
        const session::Login empty = session::logIn(st, u"SEM SENHA"_s, QString(), now);
        QVERIFY(empty.granted() && empty.mustChangePassword);
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
        QCOMPARE(everything.size(), 15);

        LOGIN login;
        QVERIFY(showActive(&login));
        QSignalSpy entered(&login, &LOGIN::loggedIn);

        prompts.answerCancel();
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        QVERIFY(!session::current().loggedIn());
        QCOMPARE(entered.count(), 0);

        prompts.clear();
        for (const QString& answer :
             {u""_s, u"admin"_s, u"Nova-1"_s, u"nova-1"_s, u"Nova-1"_s, u"Nova-1"_s})
            prompts.answerText(answer);
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        // Empty, the same as before, and two that differ are each refused.
        QCOMPARE(prompts.count(Kind::Notice), 3);
        QCOMPARE(prompts.count(Kind::Prompt), 6);
        QCOMPARE(entered.count(), 1);
        QCOMPARE(grantedOf(st, u"ADMIN"_s), everything);
        QCOMPARE(st.count(u"permissoes"_s), 18);

        session::end();
        prompts.clear();
        logInOn(&login, u"ADMIN"_s, u"admin"_s);
        QCOMPARE(prompts.texts(), QStringList{kRefused});
        logInOn(&login, u"admin"_s, u"Nova-1"_s);
        QCOMPARE(prompts.texts(), QStringList{kRefused}); // no question this time
        QCOMPARE(session::permittedModules(), everything);
    }

    // The employees screen: a loaded employee's password field is empty and his list shows
    // none; saved with it empty he keeps his password and rights; a password typed is his
    // new one, the old one refused after; a new employee needs one.
    void employeesScreenNeverShowsPassword() {
        Desk<funci> d(true); // the demo office: ANA PAULA, password ana123
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        Store& st = d.inst.store();
        const QString before = storedPassword(st, u"ANA PAULA"_s);
        const QStringList rights = grantedOf(st, u"ANA PAULA"_s);
        QCOMPARE(rights.size(), 3);

        s->findChild<SSTab*>(u"SSTab1"_s)->setTab(2);
        auto* list = control<MSFlexGrid>(s, u"Grid1"_s);
        for (int r = 0; r < list->rows(); ++r)
            for (int c = 0; c < list->cols(); ++c)
                QVERIFY2(!list->textMatrix(r, c).contains(u"$argon2"_s) &&
                             list->textMatrix(r, c) != u"Senha"_s,
                         qPrintable(list->textMatrix(r, c)));
        doubleClickRow(list, gridRow(list, u"ANA PAULA"_s));
        QCOMPARE(shown(s, u"x8"_s), QString());

        typeInto(s, u"X2"_s, u"1122223333"_s);
        click(s, u"Command16"_s);
        QCOMPARE(storedPassword(st, u"ANA PAULA"_s), before);
        QCOMPARE(grantedOf(st, u"ANA PAULA"_s), rights);
        typeInto(s, u"x8"_s, u"Trocada9"_s);
        click(s, u"Command16"_s);
        const session::Login now =
            session::logIn(st, u"ANA PAULA"_s, u"Trocada9"_s, session::now());
        QVERIFY(now.granted());
        QCOMPARE(now.session.modules, rights);
        QVERIFY(!session::logIn(st, u"ANA PAULA"_s, u"ana123"_s, session::now()).granted());
        QCOMPARE(st.count(u"permissoes"_s), 3 * 18); // the old hash's rows went with it

        click(s, u"Command4"_s);
        typeInto(s, u"X1"_s, u"NOVATO"_s);
        click(s, u"Command16"_s);
        QCOMPARE(QApplication::focusWidget(), control(s, u"x8"_s));
        QVERIFY(!registers::employeeNamed(st, u"NOVATO"_s));
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

        LOGIN login;
        QVERIFY(showActive(&login));
        for (int i = 0; i < registers::kFreeTries; ++i)
            logInOn(&login, u"ANA PAULA"_s, u"errada"_s);
        QCOMPARE(prompts.texts(), QStringList(registers::kFreeTries, kRefused));

        prompts.clear();
        logInOn(&login, u"ANA PAULA"_s, u"ana123"_s); // right, but too soon
        QCOMPARE(prompts.texts(), QStringList{LOGIN::waitText(1)});
        QVERIFY(!session::current().loggedIn());
        QCOMPARE(session::logIn(*other, u"ana paula"_s, u"ana123"_s, clock).outcome, Outcome::Wait);
        QVERIFY(session::logIn(*other, u"CARLOS D'AVILA"_s, u"carlos"_s, clock).granted());

        qint64 wait = 1;
        for (int round = 0; round < 2; ++round) {
            clock = clock.addSecs(wait);
            prompts.clear();
            logInOn(&login, u"ANA PAULA"_s, u"errada"_s);
            wait *= 2;
            const session::Login early = session::logIn(*other, u"ANA PAULA"_s, u"ana123"_s,
                                                        clock.addMSecs(wait * 1000 - 1));
            QCOMPARE(early.outcome, Outcome::Wait);
            QCOMPARE(early.waitSeconds, 1);
            logInOn(&login, u"ANA PAULA"_s, u"errada"_s);
            QCOMPARE(prompts.texts(), (QStringList{kRefused, LOGIN::waitText(wait)}));
        }
        QCOMPARE(registers::waitAfterFailures(40), registers::kLongestWaitSeconds);

        clock = clock.addSecs(wait);
        prompts.clear();
        logInOn(&login, u"ANA PAULA"_s, u"ana123"_s);
        QVERIFY(prompts.texts().isEmpty());
        QVERIFY(session::current().loggedIn());
        session::end();
        for (int i = 0; i < registers::kFreeTries - 1; ++i)
            QCOMPARE(session::logIn(*other, u"ANA PAULA"_s, u"x"_s, clock).outcome,
                     Outcome::Refused);
        QVERIFY(session::logIn(*other, u"ANA PAULA"_s, u"ana123"_s, clock).granted());
    }
};

QTEST_MAIN(PasswordsTest)
#include "tst_passwords.moc"
