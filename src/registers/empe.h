#pragma once
// empe ("Cadastro da Empresa"): the company's own record (one row, the letterhead of slips
// and receipts; the screen never adds it) and the list of its branches. Grava writes the
// branch on its tab, when it has a name, and always the company, in one unit.

#include "registers/cdregister.h"

namespace rtx::ui {

class empe : public CdRegister {
    Q_OBJECT
public:
    explicit empe(QWidget* parent = nullptr);

    void loadByCd() override;

private:
    QList<QLineEdit*> company_; // E1 to E9
    QList<QLineEdit*> branch_;  // X1 to X9

    void loadCompany();

    void Command16_Click() override;
    void Command4_Click() override;
    void Command3_Click() override;
};

} // namespace rtx::ui
