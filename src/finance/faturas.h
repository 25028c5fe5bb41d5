#pragma once
// Faturas: the month's invoices. A period (with its calendars) and one client or all; the
// first tab lists each client with open receivables of the period that no invoice holds
// yet, with his count and total, marked by double click as in billing. "Gerar faturas"
// makes one invoice per marked client in one unit of work and writes each as a PDF in the
// installation's folder "Faturas mm.yyyy", the first shown in the preview. The second tab
// lists the invoices of the period: one is seen again in the preview, or written off when
// paid, which settles exactly its receivables. "Enviar por e-mail" sends the open invoices
// of the second tab, each to its client's e-mail with its PDF, through the office's mail
// server; those that did not go are listed, and the next press sends only them.

#include "finance/core/invoices.h"

#include <QDate>
#include <QDialog>
#include <QPointer>
#include <QStringList>
#include <optional>
#include <utility>

class QComboBox;
class QLabel;
class QProgressBar;
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
    void sendByMail();               // Command4

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
    QPushButton* mailButton_ = nullptr;
    QProgressBar* mailProgress_ = nullptr;        // shown while the invoices go by e-mail
    QList<finance::InvoiceCandidate> candidates_; // the rows of Grid1, in its order
    QList<finance::Invoice> invoices_;            // the rows of Grid2, in its order
    QString listedClient_;                        // empty: all clients
    QPointer<ReportPreview> preview_;
    QStringList written_;
    // The invoices the last sending could not deliver, by number: the next press sends only
    // these. Nothing until a sending ran over the invoices listed now; a new list (another
    // period or client, new invoices) forgets it.
    std::optional<QStringList> mailPending_;
    QStringList mailListed_; // the invoices the pending list belongs to

    std::optional<std::pair<QDate, QDate>> period();
    bool fill(const QString& client);
    void openPreview(const QString& code);
};

} // namespace rtx::ui
