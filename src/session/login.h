#pragma once
// LOGIN: the first screen. The user picks or types his name and his password; a good pair
// starts the session and says so (the program's start then shows the hub). The login stays
// loaded underneath; logging in again from it replaces the session. A user who must choose a
// new password (a new installation's ADMIN) does so here, before the hub opens.

#include <QDialog>
#include <QUrl>

class QComboBox;
class QLineEdit;
class QPushButton;
class QToolButton;
class QLabel;

namespace rtx::ui {

class LOGIN : public QDialog {
    Q_OBJECT
public:
    explicit LOGIN(QWidget* parent = nullptr);

    // The support page opened by the support button (Image4).
    static QUrl supportAddress();
    // What a user is told who must still wait before his next try.
    static QString waitText(qint64 seconds);

signals:
    // A good login: the session has started.
    void loggedIn();

private:
    // The controls, by the names the users' documentation gives them.
    QComboBox* userBox_ = nullptr;         // A1
    QLineEdit* passwordField_ = nullptr;   // A2
    QPushButton* loginButton_ = nullptr;   // Command7, "Logar"
    QToolButton* supportButton_ = nullptr; // Image4, the support link
    QLabel* supportLabel_ = nullptr;       // Label3
    QLabel* backgroundPicture_ = nullptr;  // Image1

    void loadUsers();
    void onLogin();
    void onSupport();
    // Asks for the new password the employee must choose, twice; false when he gave up.
    bool changePassword(qint64 employee, const QString& current);
};

} // namespace rtx::ui
