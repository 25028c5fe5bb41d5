#pragma once
// RECIBO ("Recibo"): free-standing receipts. The first tab is the form: the next number at
// opening and at Novo, the payer's details from the client register, the amount in words
// rewritten on leaving the amount, a save that never writes over a receipt on file, delete
// and the print through RECI.rpt. The second tab lists every receipt, newest first.

#include <QDialog>

class QComboBox;
class QLineEdit;

namespace rtx::ui {

class MaskEdBox;
class MSFlexGrid;
class ReportControl;
class SSTab;

class RECIBO : public QDialog {
    Q_OBJECT
public:
    explicit RECIBO(QWidget* parent = nullptr);

    void newReceipt();    // Command8
    void save();          // Command16
    void remove();        // Command11
    void print();         // Command1
    void showList();      // Command2
    void openNumber();    // leaving R1: the receipt of that number, when there is one
    void fillFromPayer(); // leaving R2: the payer's details from the client register
    void writeWords();    // leaving R9: R10 in its settled form
    ReportControl* report() const { return report_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    SSTab* tabs_ = nullptr;
    QLineEdit* numberField_ = nullptr;
    QComboBox* payerBox_ = nullptr;
    QLineEdit* payerDocumentField_ = nullptr;
    MaskEdBox* dateField_ = nullptr;
    QLineEdit* addressField_ = nullptr;
    QLineEdit* districtField_ = nullptr;
    QLineEdit* cityField_ = nullptr;
    QComboBox* stateBox_ = nullptr;
    MaskEdBox* amountField_ = nullptr;
    QLineEdit* wordsField_ = nullptr;
    QLineEdit* aboutField_ = nullptr;
    QLineEdit* chequeField_ = nullptr;
    QComboBox* receivedByBox_ = nullptr;
    QList<QLineEdit*> companyFields_; // R15 to R21, hidden
    MSFlexGrid* listGrid_ = nullptr;
    ReportControl* report_ = nullptr;

    QWidget* buildFormTab();
    QWidget* buildListTab();
    void drawNumber();
    QWidget* fieldOf(const QString& column) const; // the field of a save's problem
};

} // namespace rtx::ui
