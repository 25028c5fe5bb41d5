#include "session/login.h"

#include "kit/dialogs.h"
#include "kit/fields.h"
#include "kit/grids.h"
#include "session/artwork.h"
#include "session/core/current.h"
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

    backgroundPicture_ = new QLabel(this);
    backgroundPicture_->setObjectName(QStringLiteral("Image1"));
    backgroundPicture_->setPixmap(
        artwork::brand(QSize(220, 250), QStringLiteral("Entregas rápidas")));

    auto* userLabel = new QLabel(QStringLiteral("Usuário:"), this);
    userBox_ = new QComboBox(this);
    userBox_->setObjectName(QStringLiteral("A1"));
    userBox_->setEditable(true);
    userBox_->setMinimumWidth(220);
    userLabel->setBuddy(userBox_);

    auto* passwordLabel = new QLabel(QStringLiteral("Senha:"), this);
    passwordField_ = new QLineEdit(this);
    passwordField_->setObjectName(QStringLiteral("A2"));
    passwordField_->setEchoMode(QLineEdit::Password);
    passwordField_->setStyleSheet(QStringLiteral("lineedit-password-character: 42;")); // '*'
    passwordLabel->setBuddy(passwordField_);

    loginButton_ = new QPushButton(QStringLiteral("Logar"), this);
    loginButton_->setObjectName(QStringLiteral("Command7"));
    loginButton_->setToolTip(QStringLiteral("Clique aqui para se logar."));
    loginButton_->setDefault(true);

    supportButton_ = new QToolButton(this);
    supportButton_->setObjectName(QStringLiteral("Image4"));
    supportButton_->setToolTip(QStringLiteral("Suporte On-Line"));
    supportButton_->setIcon(artwork::tile(QStringLiteral("?"), QColor(0x2E, 0x9E, 0x5B), 32));
    supportButton_->setIconSize(QSize(32, 32));
    supportButton_->setAutoRaise(true);
    supportButton_->setCursor(Qt::PointingHandCursor);
    supportButton_->setFocusPolicy(
        Qt::NoFocus); // a picture: the mouse only, never in the tab order
    supportLabel_ = new QLabel(QStringLiteral("Suporte"), this);
    supportLabel_->setObjectName(QStringLiteral("Label3"));

    auto* form = new QGridLayout;
    form->addWidget(userLabel, 0, 0);
    form->addWidget(userBox_, 0, 1);
    form->addWidget(passwordLabel, 1, 0);
    form->addWidget(passwordField_, 1, 1);
    auto* buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(loginButton_);
    form->addLayout(buttonRow, 2, 1);

    auto* support = new QHBoxLayout;
    support->addStretch();
    support->addWidget(supportButton_);
    support->addWidget(supportLabel_);

    auto* right = new QVBoxLayout;
    right->addStretch();
    right->addLayout(form);
    right->addStretch();
    right->addLayout(support);

    auto* all = new QHBoxLayout(this);
    all->setContentsMargins(0, 0, 12, 8);
    all->setSpacing(16);
    all->addWidget(backgroundPicture_);
    all->addLayout(right);
    all->setSizeConstraint(QLayout::SetFixedSize);

    setTabOrder(userBox_, passwordField_);
    setTabOrder(passwordField_, loginButton_);

    connect(loginButton_, &QPushButton::clicked, this, [this] { onLogin(); });
    connect(supportButton_, &QToolButton::clicked, this, [this] { onSupport(); });

    setupFields(this);
    keepOnEscape(this);
    centreScreen(this);

    // site.txt names the installation: its first line, even a blank one. An empty or
    // missing file leaves the path in its place, so the title ends in the path.
    const Installation& inst = session::installation();
    setWindowTitle(QStringLiteral("Rotalix - ") + inst.siteName().value_or(inst.siteFile()));

    loadUsers();
    userBox_->setFocus();
}

QUrl LOGIN::supportAddress() {
    return QUrl(QStringLiteral("https://www.rotalix.com.br/dados/suporte_online/chat.php"));
}

void LOGIN::loadUsers() {
    guarded(this, [this] {
        for (const QString& name : session::userNames(Store::current())) {
            userBox_->addItem(name);
            userBox_->setEditText(name);
        }
    });
}

void LOGIN::onLogin() {
    const QString user = userBox_->currentText();
    if (user.isEmpty()) {
        notice(this, QStringLiteral("Selecione o usuário na lista ou digite o seu nome."));
        userBox_->setFocus();
        return;
    }
    const QString password = passwordField_->text();
    std::optional<session::Session> session;
    if (!guarded(this, [&] { session = session::logIn(Store::current(), user, password); })) return;
    if (!session) {
        notice(this, QStringLiteral("Usuário ou senha não cadastrada"));
        passwordField_->clear();
        userBox_->setEditText(QString());
        userBox_->setFocus();
        return;
    }
    session::start(*session);
    emit loggedIn();
}

void LOGIN::onSupport() {
    if (!ask(this, QStringLiteral("Deseja acessar nosso suporte On-line?"))) return;
    openUrl(supportAddress());
}

} // namespace rtx::ui
