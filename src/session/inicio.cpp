#include "session/inicio.h"

#include "registers/core/employees.h"
#include "session/core/current.h"

#include "kit/dialogs.h"
#include "kit/fields.h"
#include "kit/grids.h"
#include "kit/named.h"
#include "session/artwork.h"
#include "session/modules.h"
#include "store/store.h"

#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>

namespace rtx::ui {

namespace {

QString padded(const QString& caption, int blanks) {
    return caption + QString(blanks, u' ');
}

// A gated button: its object name, tool tip, the module name of the permission rows, and
// whether the hourglass is set before the module opens.
struct Gate {
    const char16_t* button;
    const char16_t* tip;
    const char16_t* module;
    bool hourglass;
    const char16_t* glyph;
    QRgb colour;
};

const Gate gates[] = {
    {u"Command16", u"Atendimento", u"Atendimento", true, u"\u260E", 0xD35400},
    {u"Command17", u"Motoqueiros", u"Courier (entregador)", true, u"\u27A4", 0xC0392B},
    {u"Command19", u"Clientes", u"Clientes", true, u"\u263A", 0x2980B9},
    {u"Command1", u"Funcionários", u"Funcionários", true, u"\u2692", 0x8E44AD},
    {u"Command13", u"Fornecedores", u"Fornecedores", true, u"\u2302", 0x16A085},
    {u"Command31", u"Agenda", u"Agenda", false, u"\u270E", 0x27AE60},
    {u"Command8", u"Caixa", u"Caixa", false, u"$", 0x2C7A3F},
    {u"Command11", u"Contas a pagar", u"Contas a pagar", true, u"\u2193", 0xB03A2E},
    {u"Command15", u"Contas a receber", u"Contas a receber", true, u"\u2191", 0x1F618D},
    {u"Command10", u"Cobrança", u"Cobrança", false, u"\u2709", 0xA04000},
    {u"Command9", u"Recibo", u"Recibo", true, u"\u2714", 0x117A65},
    {u"Command14", u"Empresa", u"Empresa", false, u"\u2691", 0x5D6D7E},
    {u"Command2", u"Backup", u"Backup", false, u"\u21BB", 0x34495E},
    {u"Command40", u"Painel", u"Painel", false, u"\u2637", 0x2E4053},
};

QString str(const char16_t* text) {
    return QString::fromUtf16(text);
}

} // namespace

inicio::inicio(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("inicio"));
    setWindowTitle(QStringLiteral("Rotalix Zenite"));

    auto* central = new QWidget(this);
    setCentralWidget(central);

    // The button bar, down the left side.
    auto* bar = new QWidget(central);
    bar->setObjectName(QStringLiteral("barra"));
    bar->setAutoFillBackground(true);
    QPalette barPalette = bar->palette();
    barPalette.setColor(QPalette::Window, QColor(0xEC, 0xF0, 0xF1));
    bar->setPalette(barPalette);
    auto* barLayout = new QVBoxLayout(bar);
    barLayout->setContentsMargins(6, 6, 6, 6);
    barLayout->setSpacing(2);

    QMap<QString, QToolButton*> buttons;
    for (const Gate& g : gates) {
        const QString module = str(g.module);
        const bool hourglass = g.hourglass;
        QToolButton* b =
            addButton(str(g.button), str(g.tip), str(g.tip), str(g.glyph), QColor(g.colour));
        barLayout->addWidget(b);
        connect(b, &QToolButton::clicked, this,
                [this, module, hourglass] { openModule(module, hourglass); });
        buttons.insert(str(g.button), b);
    }
    QToolButton* passwordsButton =
        addButton(QStringLiteral("Command4"), QStringLiteral("Senhas"), QStringLiteral("Senhas"),
                  str(u"\u2605"), QColor(0x7F8C8D));
    barLayout->addWidget(passwordsButton); // on the bar, and does nothing
    QToolButton* helpButton =
        addButton(QStringLiteral("Command5"), QString(), QStringLiteral("Ajuda"),
                  QStringLiteral("?"), QColor(0x2E9E5B));
    barLayout->addWidget(helpButton);
    connect(helpButton, &QToolButton::clicked, this, [this] { onHelp(); });
    QToolButton* exitButton = addButton(QStringLiteral("Command3"), QStringLiteral("Saída"),
                                        QStringLiteral("Saída"), str(u"\u2716"), QColor(0x922B21));
    barLayout->addWidget(exitButton);
    connect(exitButton, &QToolButton::clicked, this, [] { quitProgram(); });
    barLayout->addStretch();
    buttons.insert(QStringLiteral("Command3"), exitButton);

    // The background with the company's name and the user.
    backgroundPicture_ = new QLabel(central);
    backgroundPicture_->setObjectName(QStringLiteral("Picture1"));
    backgroundPicture_->setPixmap(
        artwork::brand(QSize(560, 360), QStringLiteral("Entregas por motoboy")));
    backgroundPicture_->setAlignment(Qt::AlignCenter);

    companyNameLabel_ = new QLabel(QStringLiteral("Label2"), central);
    companyNameLabel_->setObjectName(QStringLiteral("nome2"));
    companyNameLabel_->setAlignment(Qt::AlignCenter);
    companyNameLabel_->setWordWrap(true);
    QFont companyFont = companyNameLabel_->font();
    companyFont.setPointSize(companyFont.pointSize() + 8);
    companyFont.setBold(true);
    companyNameLabel_->setFont(companyFont);

    auto* userLabel = new QLabel(QStringLiteral("Usuário:"), central);
    userNameField_ = new QLineEdit(central);
    userNameField_->setObjectName(QStringLiteral("NOME"));
    userNameField_->setReadOnly(true);
    userNameField_->setMaximumWidth(260);
    userLabel->setBuddy(userNameField_);

    moduleList_ = new MSFlexGrid(central);
    moduleList_->setObjectName(QStringLiteral("Grid2"));
    moduleList_->setHeaders({QStringLiteral("Módulo"), QStringLiteral("Acesso")});
    moduleList_->hide(); // the session's list, not a control for the user

    auto* userRow = new QHBoxLayout;
    userRow->addStretch();
    userRow->addWidget(userLabel);
    userRow->addWidget(userNameField_);

    auto* page = new QVBoxLayout;
    page->setContentsMargins(16, 16, 16, 12);
    page->addWidget(companyNameLabel_);
    page->addWidget(backgroundPicture_, 1);
    page->addLayout(userRow);
    page->addWidget(moduleList_);

    auto* all = new QHBoxLayout(central);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(0);
    all->addWidget(bar);
    all->addLayout(page, 1);

    buildMenu();
    setupFields(this);
    resize(900, 720);
    load();
    // A session that started before the hub was made, and every later login.
    if (session::current().loggedIn()) showSession(session::current());
    connect(&session::announcer(), &session::Announcer::started, this,
            [this](const session::Session& session) { showSession(session); });
}

QToolButton* inicio::addButton(const QString& name, const QString& tip, const QString& caption,
                               const QString& glyph, const QColor& colour) {
    auto* b = new QToolButton(this);
    b->setObjectName(name);
    b->setToolTip(tip);
    b->setText(caption);
    b->setIcon(artwork::tile(glyph, colour, 32));
    b->setIconSize(QSize(26, 26));
    b->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    b->setAutoRaise(true);
    b->setFocusPolicy(Qt::StrongFocus);
    b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return b;
}

void inicio::buildMenu() {
    QMenuBar* bar = menuBar();
    auto twin = [this](QMenu* menu, const QString& caption, const QString& name,
                       const QString& button) {
        QAction* entry = menu->addAction(caption);
        entry->setObjectName(name);
        callsButton(entry, namedControl<QToolButton>(this, button));
        return entry;
    };
    auto submenu = [bar](const QString& caption, const QString& name) {
        QMenu* menu = bar->addMenu(caption);
        menu->setObjectName(name);
        menu->menuAction()->setObjectName(name);
        return menu;
    };

    QAction* dispatchEntry = bar->addAction(QStringLiteral("01-Atendimento"));
    dispatchEntry->setObjectName(QStringLiteral("ffgf"));
    callsButton(dispatchEntry, namedControl<QToolButton>(this, QStringLiteral("Command16")));

    QMenu* registersMenu =
        submenu(padded(QStringLiteral("02-Cadastros"), 33), QStringLiteral("frrt"));
    twin(registersMenu, QStringLiteral("01-Courier (entregador/motoqueiro)"),
         QStringLiteral("asdwer"), QStringLiteral("Command17"));
    twin(registersMenu, QStringLiteral("02-Clientes"), QStringLiteral("qweq"),
         QStringLiteral("Command19"));
    twin(registersMenu, QStringLiteral("03-Funcionários"), QStringLiteral("fghfghfgh"),
         QStringLiteral("Command1"));
    twin(registersMenu, QStringLiteral("04-Fornecedores"), QStringLiteral("fdfdfd"),
         QStringLiteral("Command13"));
    QAction* serviceTableEntry = registersMenu->addAction(QStringLiteral("05-Tabela de Serviços"));
    serviceTableEntry->setObjectName(QStringLiteral("gggg"));
    connect(serviceTableEntry, &QAction::triggered, this, [this] { openServiceTable(); });

    QAction* agendaEntry = bar->addAction(padded(QStringLiteral("03 -Agenda"), 4));
    agendaEntry->setObjectName(QStringLiteral("ghgh"));
    callsButton(agendaEntry, namedControl<QToolButton>(this, QStringLiteral("Command31")));

    QMenu* financeMenu =
        submenu(padded(QStringLiteral("04-Financeiro"), 51), QStringLiteral("dfgd"));
    twin(financeMenu, QStringLiteral("01-Caixa"), QStringLiteral("er34"),
         QStringLiteral("Command8"));
    twin(financeMenu, QStringLiteral("02-Contas a pagar"), QStringLiteral("ffd"),
         QStringLiteral("Command11"));
    twin(financeMenu, QStringLiteral("03-Contas a receber"), QStringLiteral("ffasdf"),
         QStringLiteral("Command15"));
    twin(financeMenu, QStringLiteral("04-Cobrança"), QStringLiteral("dfdfd"),
         QStringLiteral("Command10"));
    twin(financeMenu, QStringLiteral("05-Recibo"), QStringLiteral("dfgdfg"),
         QStringLiteral("Command9"));
    // The month's invoices have no button of their own on the bar: the menu opens them,
    // for the users granted them.
    QAction* invoicesEntry = financeMenu->addAction(QStringLiteral("06-Faturas"));
    invoicesEntry->setObjectName(QStringLiteral("faturas"));
    invoicesEntry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    connect(invoicesEntry, &QAction::triggered, this,
            [this] { openModule(QStringLiteral("Faturas"), true); });

    QMenu* officeMenu =
        submenu(padded(QStringLiteral("05-Retaguarda"), 15), QStringLiteral("ggtryt"));
    twin(officeMenu, QStringLiteral("01-Empresa"), QStringLiteral("dfgdfgdfg"),
         QStringLiteral("Command14"));
    twin(officeMenu, QStringLiteral("02-Backup"), QStringLiteral("dfdsfds"),
         QStringLiteral("Command2"));
    twin(officeMenu, QStringLiteral("03-Painel"), QStringLiteral("mnuPainel"),
         QStringLiteral("Command40"));
    twin(officeMenu, QStringLiteral("04-Saída"), QStringLiteral("dfggg"),
         QStringLiteral("Command3"));
}

void inicio::load() {
    centreScreen(this);
    companyNameLabel_->setText(QString());
    guarded(this, [this] { companyNameLabel_->setText(session::companyName(Store::current())); });
}

void inicio::showSession(const session::Session& session) {
    userNameField_->setText(session.user);
    if (!session.company.isEmpty()) companyNameLabel_->setText(session.company);
    moduleList_->setRows(1);
    for (const QString& module : session.modules)
        moduleList_->addItem(module + u'\t' + registers::granted());
}

void inicio::openModule(const QString& module, bool hourglass) {
    if (!session::permitted(module)) return;
    const ModuleFactory factory = moduleFactory(module);
    if (!factory) return;
    if (hourglass) setHourglass();
    QPointer<QDialog> screen;
    const bool made = guarded(this, [&] { screen = factory(this); });
    if (!made || !screen) {
        clearHourglass();
        return;
    }
    screen->exec();
    delete screen.data();
}

void inicio::openServiceTable() {
    if (serviceTable_) {
        if (serviceTable_->isMinimized()) serviceTable_->showNormal();
        serviceTable_->show();
        serviceTable_->raise();
        serviceTable_->activateWindow();
        return;
    }
    const ModuleFactory factory = moduleFactory(QStringLiteral("SERVI2"));
    if (!factory) return;
    QPointer<QDialog> screen;
    if (!guarded(this, [&] { screen = factory(this); }) || !screen) return;
    serviceTable_ = screen;
    serviceTable_->setAttribute(Qt::WA_DeleteOnClose);
    serviceTable_->setModal(false);
    serviceTable_->show();
}

void inicio::onHelp() {
    // The help program beside the data, when there is one; otherwise nothing.
    const QDir folder(session::installation().folder());
    const QStringList files = folder.entryList(QDir::Files | QDir::Executable);
    for (const QString& file : files) {
        if (file.compare(QStringLiteral("Ajuda"), Qt::CaseInsensitive) == 0) {
            startProgram(folder.filePath(file), {}, folder.path());
            return;
        }
    }
}

void inicio::closeEvent(QCloseEvent* event) {
    event->accept();
    quitProgram();
}

} // namespace rtx::ui
