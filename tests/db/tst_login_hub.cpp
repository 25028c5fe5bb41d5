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
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMultiHash>
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
using rtx::session::permitted;
using rtx::session::permittedModules;
using rtx::session::userName;

namespace {

// The program's start of the test at hand, and its hub as the program has it.
Start* g_start = nullptr;
inicio* hub() {
    return g_start ? g_start->hub() : nullptr;
}

const QString kNotFound = u"Usuário ou senha não cadastrada"_s;

// The users added by the test at hand, by their password.
QMultiHash<QString, QString> g_usersByPassword;

void addUser(const QString& name, const QString& password) {
    rtx::Store::current().execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s,
                                  {name, rtx::registers::hashPassword(password)});
    g_usersByPassword.insert(password, name);
}

// The right given to every user added with that password.
void addRight(const QString& password, const QString& module, const QString& yes) {
    for (const QString& name : g_usersByPassword.values(password))
        rtx::Store::current().execute(
            u"INSERT INTO permissoes (a1, a2, a4, a5) SELECT x8, x1, ?, ? FROM funcionarios "
            u"WHERE x1 = ?"_s,
            {module, yes, name});
}

QStringList gridModules() {
    const auto* grid = hub()->findChild<MSFlexGrid*>(u"Grid2"_s);
    QStringList rows;
    for (int r = 1; r < grid->rows(); ++r)
        rows << grid->textMatrix(r, 0) + u'|' + grid->textMatrix(r, 1);
    rows.sort();
    return rows;
}

void click(const char* name) {
    QTest::mouseClick(hub()->findChild<QToolButton*>(QString::fromLatin1(name)), Qt::LeftButton);
}
QAction* entry(const char* name) {
    return hub()->findChild<QAction*>(QString::fromLatin1(name));
}
QString companyName() {
    return hub()->findChild<QLabel*>(u"nome2"_s)->text();
}

// What the fake modules saw when they were opened: the module, and the hourglass.
QList<QPair<QString, bool>> g_opened;

QStringList takeOpened() {
    QStringList names;
    for (const auto& o : std::as_const(g_opened))
        names << o.first;
    g_opened.clear();
    return names;
}

// A module screen with one field that closes itself once it is up: after its first field
// has had the focus, as a real module's load would give it.
QDialog* fakeModule(const QString& name, QWidget* parent) {
    g_opened.append({name, hourglassShown()});
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
    {"Command17", "asdwer", u"Courier (entregador)"_s, true},
    {"Command19", "qweq", u"Clientes"_s, true},
    {"Command1", "fghfghfgh", u"Funcionários"_s, true},
    {"Command13", "fdfdfd", u"Fornecedores"_s, true},
    {"Command31", "ghgh", u"Agenda"_s, false},
    {"Command8", "er34", u"Caixa"_s, false},
    {"Command11", "ffd", u"Contas a pagar"_s, true},
    {"Command15", "ffasdf", u"Contas a receber"_s, true},
    {"Command10", "dfdfd", u"Cobrança"_s, false},
    {"Command9", "dfgdfg", u"Recibo"_s, true},
    {"Command14", "dfgdfgdfg", u"Empresa"_s, false},
    {"Command2", "dfdsfds", u"Backup"_s, false},
    {"Command40", "mnuPainel", u"Painel"_s, false},
};

void registerFakes() {
    for (const Entry& e : kEntries)
        registerModule(e.module, [m = e.module](QWidget* parent) { return fakeModule(m, parent); });
}

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

    bool prepare(bool demo = false) {
        inst_ = std::make_unique<TestInstallation>(true, demo);
        if (!inst_->ok()) return false;
        rtx::session::setInstallation(inst_->installation());
        prompts_ = std::make_unique<ScriptedPrompter>();
        g_opened.clear();
        g_usersByPassword.clear();
        // The first login's new password is the passwords test's: here ADMIN is past it.
        rtx::registers::requirePasswordChange(inst_->store(), u"ADMIN"_s, false);
        return true;
    }

    // ANA and BETO have one password and the same rights; CARLOS has only "Não" rows;
    // D'AVILA has quotes.
    void addPeople() {
        const QString s = u"segredo"_s, yes = u"Sim"_s;
        addUser(u"ANA"_s, s);
        addUser(u"BETO"_s, s);
        addUser(u"CARLOS"_s, u"carlos"_s);
        addUser(u"D'AVILA"_s, u"o'neil"_s);
        addRight(s, u"Atendimento"_s, yes);
        addRight(s, u"Caixa"_s, u"Não"_s);
        addRight(s, u"Clientes"_s, yes);
        addRight(s, u"Funcionarios"_s, yes); // without its accent: no module
        addRight(s, u"agenda"_s, yes);       // in small letters: no module either
        addRight(s, u"  "_s, yes);
        addRight(u"carlos"_s, u"Atendimento"_s, u"Não"_s);
        addRight(u"o'neil"_s, u"Agenda"_s, yes);
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

    void loginScreenKeyboardAndSupport() {
        if (!prepare()) RTX_SKIP_UNREACHABLE(inst_->skipReason());
        addUser(u"ZECA"_s, u"z"_s);
        addUser(u"ANA PAULA"_s, u"ana123"_s);
        addRight(u"ana123"_s, u"Atendimento"_s, u"Sim"_s);
        openLogin();
        QStringList items;
        for (int i = 0; i < A1()->count(); ++i)
            items << A1()->itemText(i);
        QCOMPARE(items, (QStringList{u"ADMIN"_s, u"ANA PAULA"_s, u"ZECA"_s}));
        QCOMPARE(A1()->currentText(), u"ZECA"_s); // the last of the list

        // Logging in with the keyboard alone: autocomplete, Enter as Tab, Enter on Logar.
        QCOMPARE(QApplication::focusWidget(), A1());
        QTest::keyClicks(A1(), u"ana"_s);
        QCOMPARE(A1()->currentText(), u"ANA PAULA"_s);
        QTest::keyClick(A1(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), A2());
        QTest::keyClicks(A2(), u"ana123"_s);
        QTest::keyClick(A2(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), Command7());
        QTest::keyClick(Command7(), Qt::Key_Tab); // the support picture takes no focus
        QCOMPARE(QApplication::focusWidget(), A1());
        QTest::keyClick(A1(), Qt::Key_Backtab);
        QVERIFY(!hub()); // Enter in the fields logged nobody in
        QTest::keyClick(Command7(), Qt::Key_Return);
        QCOMPARE(userName(), u"ANA PAULA"_s);

        // The support link asks first, then opens the page; a browser that fails says nothing.
        auto* image4 = login_->findChild<QToolButton*>(u"Image4"_s);
        prompts_->answerNo();
        QTest::mouseClick(image4, Qt::LeftButton);
        QCOMPARE(prompts_->shown().first().kind, Kind::Question);
        QCOMPARE(prompts_->count(Kind::Browser), 0);
        prompts_->answerYes();
        QTest::mouseClick(image4, Qt::LeftButton);
        QCOMPARE(prompts_->count(Kind::Browser), 1);
        QVERIFY(prompts_->lastText().endsWith(u"/dados/suporte_online/chat.php"_s));

        // A missing site.txt: the title ends in its path.
        const QString site = inst_->installation().siteFile();
        QFile::remove(site);
        openLogin();
        QCOMPARE(login_->windowTitle(), u"Rotalix - "_s + site);
    }

    void loginsRefusedFilledAndReplaced() {
        if (!prepare()) RTX_SKIP_UNREACHABLE(inst_->skipReason());
        addPeople();
        openLogin();
        const int users = A1()->count();
        logIn(u"ANA"_s, u"errada"_s);
        logIn(u"NINGUEM"_s, u"segredo"_s);
        logIn(u"ANA"_s, u"carlos"_s); // another user's password
        logIn(u"ANA"_s, QString());
        logIn(u"D'AVILA"_s, u"o' OR '1'='1"_s);
        QCOMPARE(prompts_->texts(), QStringList(5, kNotFound));
        QCOMPARE(A2()->text(), QString());
        QCOMPARE(A1()->count(), users); // the list is kept
        QVERIFY(!hub());                // made at the first good login only
        // No user: a different notice, the password not looked at.
        A2()->setText(u"segredo"_s);
        Command7()->setFocus();
        QTest::mouseClick(Command7(), Qt::LeftButton);
        QCOMPARE(prompts_->count(Kind::Notice), 6);
        QVERIFY(prompts_->lastText() != kNotFound);
        // Quotes are plain characters of the name and the password.
        logIn(u"D'avila"_s, u"o'neil"_s);
        QCOMPARE(prompts_->shown().size(), 6);
        QCOMPARE(userName(), u"D'avila"_s);
        QCOMPARE(gridModules(), QStringList{u"Agenda|Sim"_s});

        logIn(u"ana"_s, u"SEGREDO"_s); // a password is taken as typed
        QCOMPARE(prompts_->shown().size(), 7);
        logIn(u"ana"_s, u"segredo"_s); // a name's capitals don't matter
        QCOMPARE(prompts_->shown().size(), 7);
        inicio* h = hub();
        QVERIFY(login_->isVisible()); // left loaded underneath
        QCOMPARE(gridModules(), (QStringList{u"  |Sim"_s, u"Atendimento|Sim"_s, u"Clientes|Sim"_s,
                                             u"Funcionarios|Sim"_s, u"agenda|Sim"_s}));
        // A second login replaces the session; a failed one afterwards leaves it as it was.
        logIn(u"CARLOS"_s, u"carlos"_s);
        QCOMPARE(userName(), u"CARLOS"_s);
        logIn(u"ANA"_s, u"nada"_s);
        QCOMPARE(userName(), u"CARLOS"_s);
        QCOMPARE(h->findChild<MSFlexGrid*>(u"Grid2"_s)->rows(), 1);

        // The one hub shows every login; closing it ends the session, and the start's end
        // takes both windows with it.
        const QPointer<inicio> first = h;
        QCOMPARE(hub(), h);
        start_->closeHub();
        QVERIFY(!first && login_->isVisible());
        QCOMPARE(userName(), QString());
        logIn(u"BETO"_s, u"segredo"_s);
        const QPointer<inicio> second = hub();
        QVERIFY(second && second->isVisible());
        const QPointer<LOGIN> login = login_;
        closeStart();
        QVERIFY(!second && !login);
        QVERIFY(!rtx::session::current().loggedIn());
    }

    void demoAdministratorAndCompanyName() {
        if (!prepare(true)) RTX_SKIP_UNREACHABLE(inst_->skipReason());
        openLogin();
        logIn(u"ADMIN"_s, u"admin"_s);
        // The blank separators are "Não"; the invoices have a menu entry and no button.
        QCOMPARE(permittedModules().size(), kEntries.size() + 1);
        for (const Entry& e : kEntries)
            QVERIFY2(permitted(e.module), qPrintable(e.module));
        QVERIFY(permitted(u"Faturas"_s));
        QVERIFY(!companyName().isEmpty());

        // No company row: an empty name, and no failure.
        start_->closeHub();
        rtx::Store::current().execute(u"DELETE FROM empresa"_s);
        logIn(u"ADMIN"_s, u"admin"_s);
        QCOMPARE(companyName(), QString());
        QVERIFY(prompts_->shown().isEmpty());
    }

    void hubEntries() {
        if (!prepare()) RTX_SKIP_UNREACHABLE(inst_->skipReason());
        addPeople();
        registerFakes();
        int made = 0;
        registerModule(u"SERVI2"_s, [&made](QWidget* parent) {
            ++made;
            return new QDialog(parent);
        });
        registerModule(u"Faturas"_s,
                       [](QWidget* parent) { return fakeModule(u"Faturas"_s, parent); });
        openLogin();
        // "Funcionarios" without its accent and "agenda" in small letters open nothing;
        // "Caixa" is "Não". The menu twins do the same.
        logIn(u"ANA"_s, u"segredo"_s);
        const QStringList anas{u"Atendimento"_s, u"Clientes"_s};
        for (const Entry& e : kEntries)
            click(e.button);
        QCOMPARE(takeOpened(), anas);
        for (const Entry& e : kEntries)
            entry(e.menu)->trigger();
        QCOMPARE(takeOpened(), anas);
        entry("faturas")->trigger();
        QVERIFY(takeOpened().isEmpty());

        // With every permission each entry opens its own module, a fresh screen each time,
        // with the hourglass first where the module asks for it, put back by its first field.
        logIn(u"ADMIN"_s, u"admin"_s);
        for (const Entry& e : kEntries) {
            click(e.button);
            QVERIFY2(g_opened.size() == 1 && g_opened.first().second == e.hourglass, e.button);
            QVERIFY2(!hourglassShown(), e.button);
            QCOMPARE(takeOpened(), QStringList{e.module});
            entry(e.menu)->trigger();
            QCOMPARE(takeOpened(), QStringList{e.module});
        }
        entry("faturas")->trigger(); // the month's invoices, from the finance menu only
        QCOMPARE(takeOpened(), QStringList{u"Faturas"_s});
        click("Command4"); // Senhas does nothing, even with every permission
        QVERIFY(g_opened.isEmpty());

        // A permitted module that isn't built yet: nothing happens.
        unregisterModule(u"Clientes"_s);
        click("Command19");
        QVERIFY(g_opened.isEmpty() && !hourglassShown());
        // A module that fails to load: the engine's text, the pointer back, the hub goes on.
        registerModule(u"Atendimento"_s, [](QWidget*) -> QDialog* {
            throw rtx::StoreError(u"tabela atendimentos trancada"_s);
        });
        click("Command16");
        QCOMPARE(prompts_->texts(Kind::Error), QStringList{u"tabela atendimentos trancada"_s});
        QVERIFY(!hourglassShown());
        click("Command17");
        QCOMPARE(takeOpened(), QStringList{u"Courier (entregador)"_s});

        // The service table opens without a permission, not modally, one instance at a time.
        logIn(u"CARLOS"_s, u"carlos"_s);
        QAction* gggg = entry("gggg");
        gggg->trigger(); // returns at once: not modal
        QPointer<QDialog> table = hub()->serviceTable();
        QVERIFY(table && table->isVisible() && !table->isModal());
        gggg->trigger(); // chosen again: the same screen
        QCOMPARE(made, 1);
        table->close();
        QTRY_VERIFY(!table);
        gggg->trigger(); // closed and chosen again: a new one
        QCOMPARE(made, 2);

        // Help: silently nothing without Ajuda in the folder, the program when it is there.
        click("Command5");
        QCOMPARE(prompts_->shown().size(), 1); // the one error above
        const QString ajuda = inst_->installation().path(u"Ajuda"_s);
        QVERIFY(QFile(ajuda).open(QIODevice::WriteOnly));
        QFile::setPermissions(ajuda, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        click("Command5");
        QCOMPARE(prompts_->texts(Kind::Program), QStringList{ajuda});

        // Exit by button, menu or window: the program ends at once, nothing asked.
        click("Command3");
        entry("dfggg")->trigger();
        hub()->close();
        QCOMPARE(prompts_->count(Kind::Quit), 3);
        QCOMPARE(prompts_->shown().size(), 5);
    }
};

QTEST_MAIN(TestLoginHub)
#include "tst_login_hub.moc"
