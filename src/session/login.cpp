#include "session/login.h"

#include "kit/dialogs.h"
#include "kit/fields.h"
#include "kit/grids.h"
#include "registers/core/passwords.h"
#include "session/artwork.h"
#include "session/core/current.h"
#include "session/core/session.h"
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
    session::Login login;
    if (!guarded(this,
                 [&] { login = session::logIn(Store::current(), user, password, session::now()); }))
        return;
    switch (login.outcome) {
    case session::Login::Outcome::Wait:
        // The name stays: he waits and tries again, only the password is typed anew.
        notice(this, waitText(login.waitSeconds));
        passwordField_->clear();
        passwordField_->setFocus();
        return;
    case session::Login::Outcome::Refused:
        notice(this, QStringLiteral("Usuário ou senha não cadastrada"));
        passwordField_->clear();
        userBox_->setEditText(QString());
        userBox_->setFocus();
        return;
    case session::Login::Outcome::Granted:
        break;
    }
    if (login.mustChangePassword && !changePassword(login.employee, password)) {
        passwordField_->clear();
        passwordField_->setFocus();
        return;
    }
    session::start(login.session);
    emit loggedIn();
}

QString LOGIN::waitText(qint64 seconds) {
    return QStringLiteral("Senha errada muitas vezes seguidas. Aguarde %1 %2 antes de tentar "
                          "de novo.")
        .arg(seconds)
        .arg(seconds == 1 ? QStringLiteral("segundo") : QStringLiteral("segundos"));
}

// The delivered password (or one an administrator marked) is replaced before the hub opens:
// typed twice, so that a slip of the finger does not lock the office out. Cancel at either
// prompt goes back to the login, with the old password still the one that works.
bool LOGIN::changePassword(qint64 employee, const QString& current) {
    const QString title = QStringLiteral("Nova senha");
    for (;;) {
        const std::optional<QString> first =
            askText(this, title, QStringLiteral("Escolha a sua nova senha:"), QString(), true);
        if (!first) return false;
        if (first->isEmpty()) {
            notice(this, QStringLiteral("A nova senha não pode ficar em branco."));
            continue;
        }
        if (*first == current) {
            notice(this, QStringLiteral("A nova senha deve ser diferente da atual."));
            continue;
        }
        const std::optional<QString> again = askText(
            this, title, QStringLiteral("Digite a nova senha mais uma vez:"), QString(), true);
        if (!again) return false;
        if (*again != *first) {
            notice(this, QStringLiteral("As duas senhas digitadas não são iguais. "
                                        "Digite a nova senha de novo."));
            continue;
        }
        return guarded(this,
                       [&] { registers::changePassword(Store::current(), employee, *first); });
    }
}

void LOGIN::onSupport() {
    if (!ask(this, QStringLiteral("Deseja acessar nosso suporte On-line?"))) return;
    openUrl(supportAddress());
}

} // namespace rtx::ui
