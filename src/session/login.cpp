#include "session/login.h"

#include "session/artwork.h"
#include "session/inicio.h"
#include "session/kit/dialogs.h"
#include "session/kit/fields.h"
#include "session/kit/grids.h"
#include "session/session.h"
#include "store/store.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace rtx::ui {

LOGIN::LOGIN(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("LOGIN"));
    setWindowTitle(QStringLiteral("Software Rotalix"));

    Image1 = new QLabel(this);
    Image1->setObjectName(QStringLiteral("Image1"));
    Image1->setPixmap(artwork::brand(QSize(220, 250), QStringLiteral("Entregas rápidas")));

    auto* userLabel = new QLabel(QStringLiteral("Usuário:"), this);
    A1 = new QComboBox(this);
    A1->setObjectName(QStringLiteral("A1"));
    A1->setEditable(true);
    A1->setMinimumWidth(220);
    userLabel->setBuddy(A1);

    auto* passwordLabel = new QLabel(QStringLiteral("Senha:"), this);
    A2 = new QLineEdit(this);
    A2->setObjectName(QStringLiteral("A2"));
    A2->setEchoMode(QLineEdit::Password);
    A2->setStyleSheet(QStringLiteral("lineedit-password-character: 42;")); // '*'
    passwordLabel->setBuddy(A2);

    Command7 = new QPushButton(QStringLiteral("Logar"), this);
    Command7->setObjectName(QStringLiteral("Command7"));
    Command7->setToolTip(QStringLiteral("Clique aqui para se logar."));
    Command7->setDefault(true);

    Image4 = new QToolButton(this);
    Image4->setObjectName(QStringLiteral("Image4"));
    Image4->setToolTip(QStringLiteral("Suporte On-Line"));
    Image4->setIcon(artwork::tile(QStringLiteral("?"), QColor(0x2E, 0x9E, 0x5B), 32));
    Image4->setIconSize(QSize(32, 32));
    Image4->setAutoRaise(true);
    Image4->setCursor(Qt::PointingHandCursor);
    Image4->setFocusPolicy(Qt::NoFocus); // a picture: the mouse only, never in the tab order
    Label3 = new QLabel(QStringLiteral("Suporte"), this);
    Label3->setObjectName(QStringLiteral("Label3"));

    auto* form = new QGridLayout;
    form->addWidget(userLabel, 0, 0);
    form->addWidget(A1, 0, 1);
    form->addWidget(passwordLabel, 1, 0);
    form->addWidget(A2, 1, 1);
    auto* buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(Command7);
    form->addLayout(buttonRow, 2, 1);

    auto* support = new QHBoxLayout;
    support->addStretch();
    support->addWidget(Image4);
    support->addWidget(Label3);

    auto* right = new QVBoxLayout;
    right->addStretch();
    right->addLayout(form);
    right->addStretch();
    right->addLayout(support);

    auto* all = new QHBoxLayout(this);
    all->setContentsMargins(0, 0, 12, 8);
    all->setSpacing(16);
    all->addWidget(Image1);
    all->addLayout(right);
    all->setSizeConstraint(QLayout::SetFixedSize);

    setTabOrder(A1, A2);
    setTabOrder(A2, Command7);

    connect(Command7, &QPushButton::clicked, this, [this] { Command7_Click(); });
    connect(Image4, &QToolButton::clicked, this, [this] { Image4_Click(); });

    setupFields(this);
    keepOnEscape(this);
    centreScreen(this);

    // site.txt names the installation: its first line, even a blank one. An empty or
    // missing file leaves the path in its place, so the title ends in the path.
    const Installation& inst = installation();
    setWindowTitle(QStringLiteral("Rotalix - ") + inst.siteName().value_or(inst.siteFile()));

    loadUsers();
    A1->setFocus();
}

QUrl LOGIN::supportAddress() {
    return QUrl(QStringLiteral("https://www.rotalix.com.br/dados/suporte_online/chat.php"));
}

void LOGIN::loadUsers() {
    guarded(this, [this] {
        for (const QString& name : session::userNames(Store::current())) {
            A1->addItem(name);
            A1->setEditText(name);
        }
    });
}

void LOGIN::Command7_Click() {
    const QString user = A1->currentText();
    if (user.isEmpty()) {
        notice(this, QStringLiteral("Selecione o usuário na lista ou digite o seu nome."));
        A1->setFocus();
        return;
    }
    const QString password = A2->text();
    std::optional<session::Session> session;
    if (!guarded(this, [&] { session = session::logIn(Store::current(), user, password); })) return;
    if (!session) {
        notice(this, QStringLiteral("Usuário ou senha não cadastrada"));
        A2->clear();
        A1->setEditText(QString());
        A1->setFocus();
        return;
    }
    inicio* h = hub();
    startSession(*session);
    h->show();
    h->raise();
    h->activateWindow();
}

void LOGIN::Image4_Click() {
    if (!ask(this, QStringLiteral("Deseja acessar nosso suporte On-line?"))) return;
    openUrl(supportAddress());
}

} // namespace rtx::ui
