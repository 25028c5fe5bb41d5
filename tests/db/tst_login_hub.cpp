// The login and the hub on a real installation: who gets in, what the session holds, which
// entries open which module, and the entries that need no permission.

#include "keyboard.h"
#include "scriptedprompter.h"
#include "session/inicio.h"
#include "session/kit/kit.h"
#include "session/login.h"
#include "session/modules.h"
#include "session/session.h"
#include "testinstall.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

using namespace rtx::ui;
using rtx::test::ScriptedPrompter;
using rtx::test::TestInstallation;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kNotFound = QStringLiteral("Usuário ou senha não cadastrada");

const auto type = rtx::test::typeText;

void addUser(const QString& name, const QString& password) {
    rtx::Store::current().execute(QStringLiteral("INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"),
                                  {name, password});
}

void addRight(const QString& password, const QString& module, const QString& yes) {
    rtx::Store::current().execute(
        QStringLiteral("INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"),
        {password, QString(), module, yes});
}

QStringList gridModules(const MSFlexGrid* grid) {
    QStringList rows;
    for (int r = 1; r < grid->rows(); ++r)
        rows << grid->textMatrix(r, 0) + u'|' + grid->textMatrix(r, 1);
    return rows;
}

// What the fake modules saw when they were opened.
struct Opening {
    QString module;
    bool hourglass;
};
QList<Opening> g_opened;

// A module screen with one field that closes itself once it is up: after its first field
// has had the focus, as a real module's load would give it.
QDialog* fakeModule(const QString& name, QWidget* parent, bool withField = true) {
    g_opened.append({name, hourglassShown()});
    auto* screen = new QDialog(parent);
    screen->setObjectName(name);
    if (withField) {
        auto* field = new QLineEdit(screen);
        (new QVBoxLayout(screen))->addWidget(field);
        setupFields(screen);
        QTimer::singleShot(0, screen, [screen, field] {
            QApplication::setActiveWindow(screen);
            field->setFocus();
            screen->accept();
        });
    } else {
        QTimer::singleShot(0, screen, &QDialog::accept);
    }
    return screen;
}

const QStringList kGatedModules{QStringLiteral("Atendimento"),
                                QStringLiteral("Courier (entregador)"),
                                QStringLiteral("Clientes"),
                                QStringLiteral("Funcionários"),
                                QStringLiteral("Fornecedores"),
                                QStringLiteral("Agenda"),
                                QStringLiteral("Caixa"),
                                QStringLiteral("Contas a pagar"),
                                QStringLiteral("Contas a receber"),
                                QStringLiteral("Cobrança"),
                                QStringLiteral("Recibo"),
                                QStringLiteral("Empresa"),
                                QStringLiteral("Backup")};

// Button, its menu twin, its module, and whether the hourglass is set first.
struct Entry {
    const char* button;
    const char* menu;
    QString module;
    bool hourglass;
};
const QList<Entry> kEntries{
    {"Command16", "ffgf", QStringLiteral("Atendimento"), true},
    {"Command17", "asdwer", QStringLiteral("Courier (entregador)"), true},
    {"Command19", "qweq", QStringLiteral("Clientes"), true},
    {"Command1", "fghfghfgh", QStringLiteral("Funcionários"), true},
    {"Command13", "fdfdfd", QStringLiteral("Fornecedores"), true},
    {"Command31", "ghgh", QStringLiteral("Agenda"), false},
    {"Command8", "er34", QStringLiteral("Caixa"), false},
    {"Command11", "ffd", QStringLiteral("Contas a pagar"), true},
    {"Command15", "ffasdf", QStringLiteral("Contas a receber"), true},
    {"Command10", "dfdfd", QStringLiteral("Cobrança"), false},
    {"Command9", "dfgdfg", QStringLiteral("Recibo"), true},
    {"Command14", "dfgdfgdfg", QStringLiteral("Empresa"), false},
    {"Command2", "dfdsfds", QStringLiteral("Backup"), false},
};

} // namespace

class TestLoginHub : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst_;
    std::unique_ptr<ScriptedPrompter> prompts_;
    std::unique_ptr<LOGIN> login_;

    QComboBox* A1() const { return login_->findChild<QComboBox*>(QStringLiteral("A1")); }
    QLineEdit* A2() const { return login_->findChild<QLineEdit*>(QStringLiteral("A2")); }
    QPushButton* Command7() const {
        return login_->findChild<QPushButton*>(QStringLiteral("Command7"));
    }

    bool prepare(bool demo = false) {
        inst_ = std::make_unique<TestInstallation>(true, demo);
        if (!inst_->ok()) return false;
        setInstallation(inst_->installation());
        prompts_ = std::make_unique<ScriptedPrompter>();
        g_opened.clear();
        return true;
    }

    // Users of these tests: ANA and BETO share a password; CARLOS has only "Não" rows.
    void addPeople() {
        addUser(QStringLiteral("ANA"), QStringLiteral("segredo"));
        addUser(QStringLiteral("BETO"), QStringLiteral("segredo"));
        addUser(QStringLiteral("CARLOS"), QStringLiteral("carlos"));
        addUser(QStringLiteral("D'AVILA"), QStringLiteral("o'neil"));
        addRight(QStringLiteral("segredo"), QStringLiteral("Atendimento"), QStringLiteral("Sim"));
        addRight(QStringLiteral("segredo"), QStringLiteral("Caixa"), QStringLiteral("Não"));
        addRight(QStringLiteral("segredo"), QStringLiteral("Clientes"), QStringLiteral("Sim"));
        // Spelt without its accent: matches no module.
        addRight(QStringLiteral("segredo"), QStringLiteral("Funcionarios"), QStringLiteral("Sim"));
        // In small letters: matches no module either.
        addRight(QStringLiteral("segredo"), QStringLiteral("agenda"), QStringLiteral("Sim"));
        addRight(QStringLiteral("segredo"), QStringLiteral("  "), QStringLiteral("Sim"));
        addRight(QStringLiteral("carlos"), QStringLiteral("Atendimento"), QStringLiteral("Não"));
        addRight(QStringLiteral("o'neil"), QStringLiteral("Agenda"), QStringLiteral("Sim"));
    }

    void openLogin() {
        login_ = std::make_unique<LOGIN>();
        login_->show();
        QApplication::setActiveWindow(login_.get());
        QVERIFY(QTest::qWaitForWindowActive(login_.get()));
    }

    // Types user and password and presses Logar.
    void logIn(const QString& user, const QString& password) {
        A1()->setFocus();
        A1()->setEditText(QString());
        type(A1()->lineEdit(), user); // straight into the edit: no autocomplete
        A2()->setFocus();
        A2()->clear();
        type(A2(), password);
        QTest::mouseClick(Command7(), Qt::LeftButton);
    }

private slots:
    void init() {}
    void cleanup() {
        closeHub();
        login_.reset();
        for (const QString& m : registeredModules())
            unregisterModule(m);
        clearHourglass();
        prompts_.reset();
        inst_.reset();
    }

    void loginScreenLoads();
    void titleWithoutSiteFile();
    void goodLoginFillsSession();
    void wrongUserOrPasswordAlike();
    void emptyUserAsksForIt();
    void quotesAreData();
    void sharedPasswordSharesRights();
    void secondLoginReplacesSession();
    void keyboardLogin();
    void demoAdministratorHasEveryModule();
    void gatedEntriesOpenOnlyWithPermission();
    void hourglassSetAndPutBack();
    void serviceTableOpensForEveryone();
    void inertAndExitEntries();
    void helpProgramWhenPresent();
    void supportLinkAsksFirst();
    void hubShowsCompanyAndMenu();
    void storeFailureOpeningModule();
};

void TestLoginHub::loginScreenLoads() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addUser(QStringLiteral("ZECA"), QStringLiteral("z"));
    addUser(QStringLiteral("BRUNA"), QStringLiteral("b"));
    openLogin();
    QCOMPARE(login_->objectName(), QStringLiteral("LOGIN"));
    QCOMPARE(login_->windowTitle(), QStringLiteral("Rotalix - Rotalix Entregas"));
    QStringList items;
    for (int i = 0; i < A1()->count(); ++i)
        items << A1()->itemText(i);
    QCOMPARE(items, (QStringList{QStringLiteral("ADMIN"), QStringLiteral("BRUNA"),
                                 QStringLiteral("ZECA")}));
    QCOMPARE(A1()->currentText(), QStringLiteral("ZECA")); // the last of the list
    QCOMPARE(A2()->echoMode(), QLineEdit::Password);
    QVERIFY(prompts_->shown().isEmpty());
}

void TestLoginHub::titleWithoutSiteFile() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    const QString site = inst_->installation().siteFile();
    QFile::remove(site);
    openLogin();
    QCOMPARE(login_->windowTitle(), QStringLiteral("Rotalix - ") + site);
    login_.reset();
    QFile empty(site);
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();
    openLogin();
    QCOMPARE(login_->windowTitle(), QStringLiteral("Rotalix - ") + site);
    QVERIFY(prompts_->shown().isEmpty());
}

void TestLoginHub::goodLoginFillsSession() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    openLogin();
    logIn(QStringLiteral("ana"), QStringLiteral("SEGREDO")); // capitals don't matter
    QVERIFY(prompts_->shown().isEmpty());
    inicio* hub = existingHub();
    QVERIFY(hub);
    QVERIFY(hub->isVisible());
    QVERIFY(login_->isVisible()); // left loaded underneath, with what was typed
    QCOMPARE(A1()->currentText(), QStringLiteral("ana"));
    QCOMPARE(hub->findChild<QLineEdit*>(QStringLiteral("NOME"))->text(), QStringLiteral("ana"));
    QCOMPARE(userName(), QStringLiteral("ana"));
    auto* grid = hub->findChild<MSFlexGrid*>(QStringLiteral("Grid2"));
    QCOMPARE(grid, hub->grid2());
    QCOMPARE(grid->textMatrix(0, 0), QStringLiteral("Módulo"));
    QCOMPARE(grid->textMatrix(0, 1), QStringLiteral("Acesso"));
    QStringList rows = gridModules(grid);
    rows.sort();
    QCOMPARE(rows, (QStringList{QStringLiteral("  |Sim"), QStringLiteral("Atendimento|Sim"),
                                QStringLiteral("Clientes|Sim"), QStringLiteral("Funcionarios|Sim"),
                                QStringLiteral("agenda|Sim")}));
    QVERIFY(permitted(QStringLiteral("Clientes")));
    QVERIFY(!permitted(QStringLiteral("clientes")));
    QVERIFY(!permitted(QStringLiteral("Caixa")));
    // The capitals of the name as typed are what the session keeps.
    logIn(QStringLiteral("Ana"), QStringLiteral("segredo"));
    QCOMPARE(userName(), QStringLiteral("Ana"));
    QCOMPARE(existingHub(), hub); // the same hub
}

void TestLoginHub::wrongUserOrPasswordAlike() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    openLogin();
    const int users = A1()->count();
    logIn(QStringLiteral("ANA"), QStringLiteral("errada"));
    logIn(QStringLiteral("NINGUEM"), QStringLiteral("segredo"));
    logIn(QStringLiteral("ANA"), QStringLiteral("carlos")); // another user's password
    logIn(QStringLiteral("ANA"), QString());
    QCOMPARE(prompts_->texts(), QStringList(4, kNotFound));
    QCOMPARE(A1()->currentText(), QString());
    QCOMPARE(A2()->text(), QString());
    QCOMPARE(QApplication::focusWidget(), A1());
    QCOMPARE(A1()->count(), users); // the list is kept
    QVERIFY(!existingHub() || !existingHub()->isVisible());
    QCOMPARE(userName(), QString());
}

void TestLoginHub::emptyUserAsksForIt() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    openLogin();
    A1()->setEditText(QString());
    A2()->setText(QStringLiteral("admin"));
    Command7()->setFocus();
    QTest::mouseClick(Command7(), Qt::LeftButton);
    QCOMPARE(prompts_->count(Kind::Notice), 1);
    QVERIFY(prompts_->lastText() != kNotFound);
    QCOMPARE(QApplication::focusWidget(), A1());
    QCOMPARE(A2()->text(), QStringLiteral("admin")); // the password isn't looked at
    QVERIFY(!existingHub());
}

void TestLoginHub::quotesAreData() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    openLogin();
    logIn(QStringLiteral("D'AVILA"), QStringLiteral("o' OR '1'='1"));
    QCOMPARE(prompts_->texts(), QStringList{kNotFound});
    logIn(QStringLiteral("D'avila"), QStringLiteral("O'NEIL"));
    QCOMPARE(prompts_->shown().size(), 1); // no error box, no second message
    QCOMPARE(userName(), QStringLiteral("D'avila"));
    QCOMPARE(gridModules(hub()->grid2()), QStringList{QStringLiteral("Agenda|Sim")});
}

void TestLoginHub::sharedPasswordSharesRights() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    openLogin();
    logIn(QStringLiteral("ANA"), QStringLiteral("segredo"));
    const QStringList ana = gridModules(hub()->grid2());
    logIn(QStringLiteral("BETO"), QStringLiteral("segredo"));
    QCOMPARE(userName(), QStringLiteral("BETO"));
    QCOMPARE(gridModules(hub()->grid2()), ana);
    QCOMPARE(ana.size(), 5);
}

void TestLoginHub::secondLoginReplacesSession() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    openLogin();
    logIn(QStringLiteral("ANA"), QStringLiteral("segredo"));
    QCOMPARE(hub()->grid2()->rows(), 6);
    logIn(QStringLiteral("CARLOS"), QStringLiteral("carlos"));
    QCOMPARE(userName(), QStringLiteral("CARLOS"));
    QCOMPARE(hub()->grid2()->rows(), 1); // only the header: every gated entry does nothing
    // A failed attempt afterwards leaves the session as it was.
    logIn(QStringLiteral("ANA"), QStringLiteral("nada"));
    QCOMPARE(userName(), QStringLiteral("CARLOS"));
    QCOMPARE(hub()->grid2()->rows(), 1);
}

void TestLoginHub::keyboardLogin() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addUser(QStringLiteral("ANA PAULA"), QStringLiteral("ana123"));
    addRight(QStringLiteral("ana123"), QStringLiteral("Atendimento"), QStringLiteral("Sim"));
    openLogin();
    QCOMPARE(QApplication::focusWidget(), A1());
    QCOMPARE(A1()->lineEdit()->selectedText(), A1()->currentText()); // selected on entry
    QTest::keyClicks(A1(), QStringLiteral("ana"));
    QCOMPARE(A1()->currentText(), QStringLiteral("ANA PAULA"));
    QCOMPARE(A1()->lineEdit()->selectedText(), QStringLiteral(" PAULA"));
    QCOMPARE(A1()->palette().color(QPalette::Base), QColor(0xFF, 0xFF, 0xC0));
    QTest::keyClick(A1(), Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), A2());
    QCOMPARE(A1()->palette().color(QPalette::Base), QColor(0xFF, 0xFF, 0xFF));
    QTest::keyClicks(A2(), QStringLiteral("ana123"));
    QTest::keyClick(A2(), Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), Command7());
    QVERIFY(!existingHub()); // Enter in the fields logged nobody in
    QTest::keyClick(Command7(), Qt::Key_Return);
    QVERIFY(existingHub() && existingHub()->isVisible());
    QCOMPARE(userName(), QStringLiteral("ANA PAULA"));
    QCOMPARE(permittedModules(), QStringList{QStringLiteral("Atendimento")});
}

void TestLoginHub::demoAdministratorHasEveryModule() {
    if (!prepare(true)) QSKIP(qPrintable(inst_->skipReason()));
    openLogin();
    QVERIFY(A1()->count() > 1);
    logIn(QStringLiteral("ADMIN"), QStringLiteral("admin"));
    QVERIFY(prompts_->shown().isEmpty());
    QStringList modules = permittedModules();
    QStringList expected = kGatedModules;
    modules.sort();
    expected.sort();
    QCOMPARE(modules, expected); // the blank separator rows are "Não"
    QVERIFY(!existingHub()->findChild<QLabel*>(QStringLiteral("nome2"))->text().isEmpty());
}

void TestLoginHub::gatedEntriesOpenOnlyWithPermission() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    for (const QString& m : kGatedModules)
        registerModule(m, [m](QWidget* parent) { return fakeModule(m, parent); });
    openLogin();
    logIn(QStringLiteral("ANA"), QStringLiteral("segredo"));
    inicio* h = hub();

    for (const Entry& e : kEntries)
        QTest::mouseClick(h->findChild<QToolButton*>(QString::fromLatin1(e.button)),
                          Qt::LeftButton);
    QStringList opened;
    for (const Opening& o : g_opened)
        opened << o.module;
    // "Funcionarios" without its accent and "agenda" in small letters open nothing;
    // "Caixa" is "Não".
    QCOMPARE(opened, (QStringList{QStringLiteral("Atendimento"), QStringLiteral("Clientes")}));

    g_opened.clear();
    for (const Entry& e : kEntries) {
        QAction* twin = h->findChild<QAction*>(QString::fromLatin1(e.menu));
        QVERIFY2(twin, e.menu);
        twin->trigger();
    }
    opened.clear();
    for (const Opening& o : g_opened)
        opened << o.module;
    QCOMPARE(opened, (QStringList{QStringLiteral("Atendimento"), QStringLiteral("Clientes")}));

    // With every permission each entry opens its own module, a fresh screen each time.
    logIn(QStringLiteral("ADMIN"), QStringLiteral("admin"));
    g_opened.clear();
    for (const Entry& e : kEntries) {
        QTest::mouseClick(h->findChild<QToolButton*>(QString::fromLatin1(e.button)),
                          Qt::LeftButton);
        QCOMPARE(g_opened.size(), 1);
        QCOMPARE(g_opened.takeFirst().module, e.module);
        h->findChild<QAction*>(QString::fromLatin1(e.menu))->trigger();
        QCOMPARE(g_opened.size(), 1);
        QCOMPARE(g_opened.takeFirst().module, e.module);
    }
    QVERIFY(prompts_->shown().isEmpty());

    // A permitted module that isn't built yet: nothing happens.
    unregisterModule(QStringLiteral("Clientes"));
    QTest::mouseClick(h->findChild<QToolButton*>(QStringLiteral("Command19")), Qt::LeftButton);
    QVERIFY(g_opened.isEmpty());
    QVERIFY(!hourglassShown());
    QVERIFY(prompts_->shown().isEmpty());
}

void TestLoginHub::hourglassSetAndPutBack() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    for (const QString& m : kGatedModules)
        registerModule(m, [m](QWidget* parent) { return fakeModule(m, parent); });
    openLogin();
    logIn(QStringLiteral("ADMIN"), QStringLiteral("admin"));
    inicio* h = hub();
    for (const Entry& e : kEntries) {
        g_opened.clear();
        QTest::mouseClick(h->findChild<QToolButton*>(QString::fromLatin1(e.button)),
                          Qt::LeftButton);
        QCOMPARE(g_opened.size(), 1);
        QVERIFY2(g_opened.first().hourglass == e.hourglass, e.button);
        QVERIFY2(!hourglassShown(), e.button); // the module's first field put it back
    }
    // A module whose screen never reaches a field leaves the hourglass on.
    registerModule(QStringLiteral("Recibo"), [](QWidget* parent) {
        return fakeModule(QStringLiteral("Recibo"), parent, false);
    });
    QTest::mouseClick(h->findChild<QToolButton*>(QStringLiteral("Command9")), Qt::LeftButton);
    QVERIFY(hourglassShown());
    clearHourglass();
}

void TestLoginHub::serviceTableOpensForEveryone() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    addPeople();
    int made = 0;
    registerModule(QStringLiteral("SERVI2"), [&made](QWidget* parent) {
        ++made;
        auto* screen = new QDialog(parent);
        screen->setObjectName(QStringLiteral("SERVI2"));
        return screen;
    });
    openLogin();
    logIn(QStringLiteral("CARLOS"), QStringLiteral("carlos")); // no permission at all
    inicio* h = hub();
    QAction* gggg = h->findChild<QAction*>(QStringLiteral("gggg"));
    QCOMPARE(gggg->text(), QStringLiteral("05-Tabela de Serviços"));
    gggg->trigger(); // returns at once: not modal
    QCOMPARE(made, 1);
    QPointer<QDialog> table = h->serviceTable();
    QVERIFY(table && table->isVisible());
    QVERIFY(!table->isModal());
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
    // Chosen again: the same screen, in front.
    table->lower();
    gggg->trigger();
    QCOMPARE(made, 1);
    QCOMPARE(h->serviceTable(), table.data());
    // Closed and chosen again: a new one.
    table->close();
    QTRY_VERIFY(!table);
    gggg->trigger();
    QCOMPARE(made, 2);
    QVERIFY(h->serviceTable()->isVisible());
    QVERIFY(prompts_->shown().isEmpty());
}

void TestLoginHub::inertAndExitEntries() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    for (const QString& m : kGatedModules)
        registerModule(m, [m](QWidget* parent) { return fakeModule(m, parent); });
    openLogin();
    logIn(QStringLiteral("ADMIN"), QStringLiteral("admin"));
    inicio* h = hub();
    auto* senhas = h->findChild<QToolButton*>(QStringLiteral("Command4"));
    QCOMPARE(senhas->toolTip(), QStringLiteral("Senhas"));
    QTest::mouseClick(senhas, Qt::LeftButton);
    QVERIFY(g_opened.isEmpty());
    QVERIFY(prompts_->shown().isEmpty());

    auto* saida = h->findChild<QToolButton*>(QStringLiteral("Command3"));
    QCOMPARE(saida->toolTip(), QStringLiteral("Saída"));
    QTest::mouseClick(saida, Qt::LeftButton);
    QCOMPARE(prompts_->count(Kind::Quit), 1);
    h->findChild<QAction*>(QStringLiteral("dfggg"))->trigger();
    QCOMPARE(prompts_->count(Kind::Quit), 2);
    h->close();
    QCOMPARE(prompts_->count(Kind::Quit), 3);
    QCOMPARE(prompts_->shown().size(), 3); // no confirmation of any kind
}

void TestLoginHub::helpProgramWhenPresent() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    openLogin();
    logIn(QStringLiteral("ADMIN"), QStringLiteral("admin"));
    auto* help = hub()->findChild<QToolButton*>(QStringLiteral("Command5"));
    QVERIFY(help->toolTip().isEmpty());
    QTest::mouseClick(help, Qt::LeftButton);
    QVERIFY(prompts_->shown().isEmpty()); // no Ajuda in the folder: silently nothing

    QFile ajuda(inst_->installation().path(QStringLiteral("Ajuda")));
    QVERIFY(ajuda.open(QIODevice::WriteOnly));
    ajuda.write("#!/bin/sh\n");
    ajuda.close();
    ajuda.setPermissions(ajuda.permissions() | QFile::ExeOwner | QFile::ExeUser);
    QTest::mouseClick(help, Qt::LeftButton);
    QCOMPARE(prompts_->texts(Kind::Program), QStringList{ajuda.fileName()});
}

void TestLoginHub::supportLinkAsksFirst() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    openLogin();
    auto* image4 = login_->findChild<QToolButton*>(QStringLiteral("Image4"));
    prompts_->answerNo();
    QTest::mouseClick(image4, Qt::LeftButton);
    QCOMPARE(prompts_->texts(),
             QStringList{QStringLiteral("Deseja acessar nosso suporte On-line?")});
    QCOMPARE(prompts_->shown().first().kind, Kind::Question);
    prompts_->answerYes();
    QTest::mouseClick(image4, Qt::LeftButton);
    const QStringList opened = prompts_->texts(Kind::Browser);
    QCOMPARE(opened.size(), 1);
    QVERIFY(opened.first().endsWith(QStringLiteral("/dados/suporte_online/chat.php")));
    // A browser that can't open says nothing.
    prompts_->setBrowserResult(false);
    prompts_->answerYes();
    QTest::mouseClick(image4, Qt::LeftButton);
    QCOMPARE(prompts_->shown().size(), 5);
}

void TestLoginHub::hubShowsCompanyAndMenu() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    rtx::Store::current().execute(QStringLiteral("UPDATE empresa SET e1 = ?"),
                                  {QStringLiteral("JOÃO & FILHOS ENTREGAS")});
    inicio* h = hub();
    QCOMPARE(h->objectName(), QStringLiteral("inicio"));
    QCOMPARE(h->windowTitle(), QStringLiteral("Rotalix Zenite"));
    QCOMPARE(h->findChild<QLabel*>(QStringLiteral("nome2"))->text(),
             QStringLiteral("JOÃO & FILHOS ENTREGAS"));
    QCOMPARE(h->grid2()->rows(), 1);

    QStringList top;
    for (QAction* a : h->menuBar()->actions())
        top << a->text();
    QCOMPARE(top, (QStringList{QStringLiteral("01-Atendimento"),
                               QStringLiteral("02-Cadastros") + QString(33, u' '),
                               QStringLiteral("03 -Agenda") + QString(4, u' '),
                               QStringLiteral("04-Financeiro") + QString(51, u' '),
                               QStringLiteral("05-Retaguarda") + QString(15, u' ')}));
    // The one button whose tool tip is not its module's name.
    QCOMPARE(h->findChild<QToolButton*>(QStringLiteral("Command17"))->toolTip(),
             QStringLiteral("Motoqueiros"));

    // No company row: an empty name, and no failure.
    closeHub();
    rtx::Store::current().execute(QStringLiteral("DELETE FROM empresa"));
    QCOMPARE(hub()->findChild<QLabel*>(QStringLiteral("nome2"))->text(), QString());
    QVERIFY(prompts_->shown().isEmpty());
}

void TestLoginHub::storeFailureOpeningModule() {
    if (!prepare()) QSKIP(qPrintable(inst_->skipReason()));
    registerModule(QStringLiteral("Atendimento"), [](QWidget*) -> QDialog* {
        throw rtx::StoreError(QStringLiteral("tabela atendimentos trancada"));
    });
    registerModule(QStringLiteral("Clientes"),
                   [](QWidget* parent) { return fakeModule(QStringLiteral("Clientes"), parent); });
    openLogin();
    logIn(QStringLiteral("ADMIN"), QStringLiteral("admin"));
    inicio* h = hub();
    QTest::mouseClick(h->findChild<QToolButton*>(QStringLiteral("Command16")), Qt::LeftButton);
    QCOMPARE(prompts_->texts(Kind::Error),
             QStringList{QStringLiteral("tabela atendimentos trancada")});
    QVERIFY(!hourglassShown());
    // The hub goes on working.
    QTest::mouseClick(h->findChild<QToolButton*>(QStringLiteral("Command19")), Qt::LeftButton);
    QCOMPARE(g_opened.size(), 1);
}

QTEST_MAIN(TestLoginHub)
#include "tst_login_hub.moc"
