#pragma once
// LOGIN: the first screen. The user picks or types his name and his password; a good pair
// fills the hub's session (NOME and Grid2) and shows the hub. The login stays loaded
// underneath; logging in again from it replaces the session.

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

    // The support page opened by Image4.
    static QUrl supportAddress();

private:
    QComboBox* A1 = nullptr;         // user
    QLineEdit* A2 = nullptr;         // password
    QPushButton* Command7 = nullptr; // "Logar"
    QToolButton* Image4 = nullptr;   // support link
    QLabel* Label3 = nullptr;
    QLabel* Image1 = nullptr; // background

    void loadUsers();
    void Command7_Click();
    void Image4_Click();
};

} // namespace rtx::ui
