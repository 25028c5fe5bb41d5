#pragma once
// Faturas: the month's invoices. A period (with its calendars) and one client or all; the
// first tab lists each client with open receivables of the period that no invoice holds
// yet, with his count and total, marked by double click as in billing. "Gerar faturas"
// makes one invoice per marked client in one unit of work and writes each as a PDF in the
// installation's folder "Faturas mm.yyyy", the first shown in the preview. The second tab
// lists the invoices of the period: one is seen again in the preview, or written off when
// paid, which settles exactly its receivables.

#include "finance/core/invoices.h"

#include <QDate>
#include <QDialog>
#include <QPointer>
#include <QStringList>
#include <optional>
#include <utility>

class QComboBox;
class QLabel;
class QPushButton;

namespace rtx::ui {

class MaskEdBox;
class MSFlexGrid;
class ReportPreview;
class SSTab;

class Faturas : public QDialog {
    Q_OBJECT
public:
    explicit Faturas(QWidget* parent = nullptr);

    void listClient();               // Command6
    void listAll();                  // Command9
    void toggleMark(int row);        // double click on Grid1
    void generate();                 // Command1
    void showInvoice(int row);       // Command2, or a double click on Grid2
    void writeOffSelected();         // Command3
    void pickDate(MaskEdBox* field); // Command7, Command8

    // The preview last opened, while it is open; the files the last run wrote.
    ReportPreview* preview() const { return preview_; }
    const QStringList& writtenFiles() const { return written_; }

private:
    QComboBox* clientBox_ = nullptr;
    MaskEdBox* fromField_ = nullptr;
    MaskEdBox* toField_ = nullptr;
    QLabel* totalLabel_ = nullptr;
    SSTab* tabs_ = nullptr;
    MSFlexGrid* clientsGrid_ = nullptr;
    MSFlexGrid* invoicesGrid_ = nullptr;
    // Left for the sending of the invoices by e-mail: disabled until it is wired.
    QPushButton* mailButton_ = nullptr;
    QList<finance::InvoiceCandidate> candidates_; // the rows of Grid1, in its order
    QList<finance::Invoice> invoices_;            // the rows of Grid2, in its order
    QString listedClient_;                        // empty: all clients
    QPointer<ReportPreview> preview_;
    QStringList written_;

    std::optional<std::pair<QDate, QDate>> period();
    bool fill(const QString& client);
    void openPreview(const QString& code);
};

} // namespace rtx::ui
