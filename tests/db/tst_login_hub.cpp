// The login and the hub on a real installation: who gets in, what the session holds, which
// entries open which module, and the entries that need no permission.

#include "keyboard.h"
#include "kit/kit.h"
#include "registers/core/passwords.h"
#include "scriptedprompter.h"
#include "session/core/current.h"
#include "session/inicio.h"
#include "session/login.h"
#include "session/modules.h"
#include "session/start.h"
#include "testinstall.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;
using namespace rtx::ui;
using rtx::test::ScriptedPrompter;
using rtx::test::TestInstallation;
using Kind = ScriptedPrompter::Kind;
using rtx::session::userName;

namespace {

// The program's start of the test at hand, and its hub as the program has it.
Start* g_start = nullptr;
inicio* hub() {
    return g_start ? g_start->hub() : nullptr;
}

// A user with his password and its rights: each module with its "Sim" or "Não".
void addUser(const QString& name, const QString& password,
             const QList<std::pair<QString, QString>>& rights) {
    rtx::Store& store = rtx::Store::current();
    const QString hash = rtx::registers::hashPassword(password);
    store.execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s, {name, hash});
    for (const auto& [module, yes] : rights)
        store.execute(u"INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"_s,
                      {hash, name, module, yes});
}

void click(const char* name) {
    QTest::mouseClick(hub()->findChild<QToolButton*>(QString::fromLatin1(name)), Qt::LeftButton);
}
QAction* entry(const char* name) {
    return hub()->findChild<QAction*>(QString::fromLatin1(name));
}

// The fake modules opened, each with a star when the hourglass was up as it was made.
QStringList g_opened;

QStringList takeOpened() {
    return std::exchange(g_opened, {});
}

// A module screen with one field that closes itself once it is up: after its first field
// has had the focus, as a real module's load would give it.
QDialog* fakeModule(const QString& name, QWidget* parent) {
    g_opened.append(hourglassShown() ? name + u'*' : name);
    auto* screen = new QDialog(parent);
    auto* field = new QLineEdit(screen);
    setupFields(screen);
    QTimer::singleShot(0, screen, [screen, field] {
        QApplication::setActiveWindow(screen);
        field->setFocus();
        screen->accept();
    });
    return screen;
}

// Button, its menu twin, its module, and whether the hourglass is set first.
struct Entry {
    const char* button;
    const char* menu;
    QString module;
    bool hourglass;
};
const QList<Entry> kEntries{
    {"Command16", "ffgf", u"Atendimento"_s, true},
    {"Command19", "qweq", u"Clientes"_s, true},
    {"Command1", "fghfghfgh", u"Funcionários"_s, true},
    {"Command31", "ghgh", u"Agenda"_s, false},
    {"Command8", "er34", u"Caixa"_s, false},
};

} // namespace

class TestLoginHub : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst_;
    std::unique_ptr<ScriptedPrompter> prompts_;
    std::unique_ptr<Start> start_;
    LOGIN* login_ = nullptr;

    QComboBox* A1() const { return login_->findChild<QComboBox*>(u"A1"_s); }
    QLineEdit* A2() const { return login_->findChild<QLineEdit*>(u"A2"_s); }
    QPushButton* Command7() const { return login_->findChild<QPushButton*>(u"Command7"_s); }

    // ANA has some rights ("Funcionarios" without its accent and "agenda" in small letters
    // name no module); CARLOS has only "Não" rows; D'AVILA has quotes. The login is up.
    bool prepare() {
        inst_ = std::make_unique<TestInstallation>(true, false);
        if (!inst_->ok()) return false;
        rtx::session::setInstallation(inst_->installation());
        prompts_ = std::make_unique<ScriptedPrompter>();
        g_opened.clear();
        // The first login's new password is the passwords test's: here ADMIN is past it.
        rtx::registers::requirePasswordChange(inst_->store(), u"ADMIN"_s, false);
        const QString yes = u"Sim"_s;
        addUser(u"ANA"_s, u"segredo"_s,
                {{u"Atendimento"_s, yes},
                 {u"Caixa"_s, u"Não"_s},
                 {u"Clientes"_s, yes},
                 {u"Funcionarios"_s, yes},
                 {u"agenda"_s, yes}});
        addUser(u"CARLOS"_s, u"carlos"_s, {{u"Atendimento"_s, u"Não"_s}});
        addUser(u"D'AVILA"_s, u"o'neil"_s, {{u"Agenda"_s, yes}});
        openLogin();
        return true;
    }

    // A fresh program's start and its login.
    void openLogin() {
        closeStart();
        start_ = std::make_unique<Start>();
        g_start = start_.get();
        login_ = start_->showLogin();
        QApplication::setActiveWindow(login_);
        QVERIFY(QTest::qWaitForWindowActive(login_));
    }

    void closeStart() {
        g_start = nullptr;
        login_ = nullptr;
        start_.reset();
    }

    // Types user and password and presses Logar.
    void logIn(const QString& user, const QString& password) {
        A1()->setFocus();
        A1()->setEditText(QString());
        rtx::test::typeText(A1()->lineEdit(), user); // straight into the edit: no autocomplete
        A2()->setFocus();
        A2()->clear();
        rtx::test::typeText(A2(), password);
        QTest::mouseClick(Command7(), Qt::LeftButton);
    }

private slots:
    void cleanup() {
        closeStart();
        for (const QString& m : registeredModules())
            unregisterModule(m);
        clearHourglass();
        prompts_.reset();
        inst_.reset();
    }

    // Wrong names and passwords are refused alike, quotes being plain characters; the
    // keyboard alone logs in (autocomplete, Enter as Tab, Enter on Logar); a second login
    // replaces the session, a failed one leaves it as it was.
    void loginsRefusedFilledAndReplaced() {
        if (!prepare()) RTX_SKIP_UNREACHABLE(inst_->skipReason());
        logIn(u"ANA"_s, u"errada"_s);
        logIn(u"NINGUEM"_s, u"segredo"_s);
        logIn(u"D'AVILA"_s, u"o' OR '1'='1"_s);
        logIn(u"ana"_s, u"SEGREDO"_s); // a password is taken as typed
        QCOMPARE(prompts_->texts(), QStringList(4, u"Usuário ou senha não cadastrada"_s));

        A1()->setFocus();
        A1()->setEditText(QString());
        QTest::keyClicks(A1(), u"car"_s);
        QCOMPARE(A1()->currentText(), u"CARLOS"_s);
        QTest::keyClick(A1(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), A2());
        QTest::keyClicks(A2(), u"carlos"_s);
        QTest::keyClick(A2(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), Command7());
        QVERIFY(!hub()); // Enter in the fields logged nobody in; made at the first good login
        QTest::keyClick(Command7(), Qt::Key_Return);
        QCOMPARE(userName(), u"CARLOS"_s);
        inicio* h = hub();

        logIn(u"D'avila"_s, u"o'neil"_s);
        QCOMPARE(userName(), u"D'avila"_s);
        logIn(u"ana"_s, u"segredo"_s); // a name's capitals don't matter
        QCOMPARE(prompts_->shown().size(), 4);
        QCOMPARE(hub(), h); // the one hub shows every login
        QCOMPARE(h->findChild<MSFlexGrid*>(u"Grid2"_s)->rows(), 1 + 4); // her "Sim" rows
        logIn(u"ANA"_s, u"nada"_s);
        QCOMPARE(userName(), u"ana"_s);
        // Closing the hub ends the session.
        const QPointer<inicio> first = h;
        start_->closeHub();
        QVERIFY(!first && !rtx::session::current().loggedIn());
    }

    // ANA's entries open her modules only; "Caixa" is "Não". With every permission each
    // entry, button or menu, opens its own module, with the hourglass first where the module
    // asks for it, put back by its first field. A module that fails to load shows the
    // engine's text and the hub goes on; the service table needs no permission and is one
    // screen, not modal.
    void hubEntries() {
        if (!prepare()) RTX_SKIP_UNREACHABLE(inst_->skipReason());
        for (const Entry& e : kEntries)
            registerModule(e.module, [m = e.module](QWidget* p) { return fakeModule(m, p); });
        registerModule(u"SERVI2"_s, [](QWidget* parent) { return new QDialog(parent); });
        logIn(u"ANA"_s, u"segredo"_s);
        for (const Entry& e : kEntries)
            click(e.button);
        QCOMPARE(takeOpened(), (QStringList{u"Atendimento*"_s, u"Clientes*"_s}));
        logIn(u"ADMIN"_s, u"admin"_s);
        for (const Entry& e : kEntries) {
            const QString opened = e.module + (e.hourglass ? u"*"_s : QString());
            click(e.button);
            QVERIFY2(!hourglassShown(), e.button);
            entry(e.menu)->trigger();
            QCOMPARE(takeOpened(), (QStringList{opened, opened}));
        }
        registerModule(u"Atendimento"_s, [](QWidget*) -> QDialog* {
            throw rtx::StoreError(u"tabela atendimentos trancada"_s);
        });
        click("Command16");
        QCOMPARE(prompts_->texts(Kind::Error), QStringList{u"tabela atendimentos trancada"_s});
        QVERIFY(!hourglassShown());
        click("Command19");
        QCOMPARE(takeOpened(), QStringList{u"Clientes*"_s});

        logIn(u"CARLOS"_s, u"carlos"_s);
        entry("gggg")->trigger(); // returns at once: not modal
        QPointer<QDialog> table = hub()->serviceTable();
        QVERIFY(table && table->isVisible() && !table->isModal());
        entry("gggg")->trigger(); // chosen again: the same screen
        QCOMPARE(hub()->serviceTable(), table.data());
    }
};

QTEST_MAIN(TestLoginHub)
#include "tst_login_hub.moc"
