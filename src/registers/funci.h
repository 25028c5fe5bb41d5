#pragma once
// funci ("Cadastro de Funcionários"): the employees, who are also the users of the program.
// A RecordForm on the employees with the grid of the user's permissions on its second tab.
// The name and password saved here are what the login checks, and the permission rows it
// writes are what the hub obeys. The password is the key of a user's permission rows, so
// typing a password already in use recalls the first employee who has it.

#include "kit/recordform.h"
#include "registers/core/employees.h"

namespace rtx::ui {

class funci : public RecordForm {
    Q_OBJECT
public:
    explicit funci(QWidget* parent = nullptr);
    static FormSpec form();

    // The permissions as the grid shows them.
    QList<registers::Permission> permissions() const;

    // A row of the list: the employee and the rights of the password he shows, even when
    // the employee is gone.
    void openFound(const QVariant& key, int tab) override;

private:
    MSFlexGrid* permissionGrid = nullptr; // Grid2
    QString passwordAtEntry_;

    void showPermissions(const QList<registers::Permission>& rights);
    void loadPermissions();
    void togglePermission(int row);
    void recallByPassword();
};

} // namespace rtx::ui
