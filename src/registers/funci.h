#pragma once
// funci ("Cadastro de Funcionários"): the employees, who are also the users of the program.
// A RecordForm on the employees with the grid of the user's permissions on its second tab.
// The name and password saved here are what the login checks, and the permission rows it
// writes are what the hub obeys. A stored password is never shown: the field stays empty
// on loading, a password typed there is the employee's new one, left empty he keeps his.

#include "kit/recordform.h"
#include "registers/core/employees.h"

namespace rtx::ui {

class funci : public RecordForm {
    Q_OBJECT
public:
    explicit funci(QWidget* parent = nullptr);
    static FormDefinition form();

    // The permissions as the grid shows them.
    QList<registers::Permission> permissions() const;

    // A row of the list: the employee and his rights.
    void openFound(const QVariant& key, int tab) override;

private:
    MSFlexGrid* permissionGrid = nullptr; // Grid2

    void showPermissions(const QList<registers::Permission>& rights);
    void loadPermissions();
    void togglePermission(int row);
};

} // namespace rtx::ui
