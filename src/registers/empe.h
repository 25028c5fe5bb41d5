#pragma once
// empe ("Cadastro da Empresa"): the company's own record (one row, the letterhead of slips
// and receipts; the screen never adds it) and the list of its branches. A RecordForm whose
// record is a branch, with the company's fields on the first tab: Grava writes the branch
// on its tab, when it has a name, and always the company, in one unit.

#include "kit/recordform.h"
#include "registers/core/company.h"

namespace rtx::ui {

class empe : public RecordForm {
    Q_OBJECT
public:
    explicit empe(QWidget* parent = nullptr);
    static FormDefinition form();

private:
    void loadCompany();
};

} // namespace rtx::ui
