#pragma once
// funci ("Cadastro de Funcionários"): the employees, who are also the users of the program.
// The name and password saved here are what the login checks, and the permission rows it
// writes are what the hub obeys. The password is the key of a user's permission rows, so
// typing a password already in use recalls the first employee who has it.

#include "registers/cdregister.h"

namespace rtx::ui {

class funci : public CdRegister {
    Q_OBJECT
public:
    explicit funci(QWidget* parent = nullptr);

    void loadByCd() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* X1 = nullptr; // name (the login's user)
    QLineEdit* X2 = nullptr;
    QLineEdit* x3 = nullptr;
    QLineEdit* x4 = nullptr;
    QLineEdit* x5 = nullptr;
    QLineEdit* x6 = nullptr; // commission, two digits
    QLineEdit* X7 = nullptr;
    QLineEdit* x8 = nullptr; // password
    QLineEdit* X9 = nullptr;
    MSFlexGrid* Grid2 = nullptr; // permissions
    QList<QLineEdit*> form_;
    QString x8AtEntry_;

    void defaultPermissions();
    void loadPermissions();
    void togglePermission(int row);
    void recallByPassword();

    void Command16_Click() override;
    void Command4_Click() override;
    void Command3_Click() override;
};

} // namespace rtx::ui
