#pragma once
// cobra ("Cobrança"): the open receivables of one client or of all clients of a period,
// marked by double click and written off, each row settling its receivables and posting
// one credit into the cash book. After each write-off the list of all clients comes back,
// so the total shows what is still open. The second tab lists the period's dispatches with
// the client's and the courier's values, changed on cobra1 ("Altera valor"). A paid
// invoice is written off here too, by its number: exactly the receivables it gathers.

#include "finance/core/billing.h"

#include <QDate>
#include <QDialog>
#include <optional>
#include <utility>

class QComboBox;
class QLabel;

namespace rtx::ui {

class MaskEdBox;
class MSFlexGrid;
class SSTab;

class cobra : public QDialog {
    Q_OBJECT
public:
    explicit cobra(QWidget* parent = nullptr);

    void listClient(); // Command6
    // The client's open receivables entered in the period, as if the name and the days were
    // typed and Command6 pressed.
    void showClient(const QString& client, const QDate& from, const QDate& to);
    void listAll();                 // Command9, and after every write-off
    void toggleMark(int row);       // double click on Grid1
    void writeOff(bool markedOnly); // Command3 (all rows), Command4 (marked rows)
    void writeOffInvoice();         // Command16: the receivables of a paid invoice, by its number
    void changeValues(int row);     // double click on Grid2: cobra1 over this screen

private:
    QComboBox* clientBox_ = nullptr;
    MaskEdBox* fromField_ = nullptr;
    MaskEdBox* toField_ = nullptr;
    QLabel* totalLabel_ = nullptr;
    SSTab* tabs_ = nullptr;
    MSFlexGrid* billsGrid_ = nullptr;
    MSFlexGrid* dispatchGrid_ = nullptr;
    QList<finance::BillingRow> listed_; // the rows of Grid1, in its order
    // What the lists show, so that they are read again when their rows change.
    struct Listing {
        QDate from, to;
        QString client;
        bool withStatus = false;
        bool dispatches = false; // Grid2 too
    };
    std::optional<Listing> shown_;

    // False when the period could not be read (said so) or the store failed.
    bool fill(const QString& client, bool withStatus);
    bool showBills();
    void showDispatches();
    void followRows();
    // The period typed (an empty date is none); nothing when one is no date (said so).
    std::optional<std::pair<QDate, QDate>> period();
};

} // namespace rtx::ui
