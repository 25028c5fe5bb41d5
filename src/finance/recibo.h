#pragma once
// RECIBO ("Recibo"): free-standing receipts, on the record form. The first tab is the form:
// the next number at opening and at Novo, the payer's details from the client register, the
// amount in words rewritten on leaving the amount, a save that never writes over a receipt
// on file, delete and the print through RECI.rpt. The second tab lists every receipt,
// newest first; Mostrar reads it again.

#include "kit/recordform.h"

namespace rtx::ui {

class ReportControl;

class RECIBO : public RecordForm {
    Q_OBJECT
public:
    explicit RECIBO(QWidget* parent = nullptr);
    static FormDefinition form();

    void deleteReceipt(); // Command11
    void print();         // Command1
    void openNumber();    // leaving R1: the receipt of that number, when there is one
    void fillFromPayer(); // leaving R2: the payer's details from the client register
    void writeWords();    // leaving R9: R10 in its settled form
    ReportControl* report() const { return report_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ReportControl* report_ = nullptr;

    void drawNumber();
    void fillLists();
};

} // namespace rtx::ui
