#pragma once
// Accounts payable (Pagar, "Contas a pagar") and accounts receivable (receber, "Contas a
// receber"): one screen on the record form, set up for either ledger. The first tab is the
// bill with its walk; a settled bill may be posted into the cash book as it is saved, in
// the same unit of work. The second tab lists the bills due in a period with a status, of
// everyone, of one name or of one group; at opening it holds the bills entered today that
// are still open.

#include "finance/core/ledger.h"
#include "kit/recordform.h"

class QComboBox;
class QLabel;

namespace rtx::ui {

class ReportControl;

class ContasScreen : public RecordForm {
    Q_OBJECT
public:
    ContasScreen(finance::Ledger ledger, QWidget* parent = nullptr);
    static FormDefinition form(finance::Ledger ledger);

    finance::Ledger ledger() const { return ledger_; }
    // The searches of the second tab: the whole period (Command17), one name (Command1),
    // one group (Command13).
    void find(finance::BillFilter by);
    // The second tab with the open bills due between those days, as if the days were typed,
    // the open status picked and Command17 pressed.
    void showDue(const QDate& from, const QDate& to);
    // Command3: the names again, from the ledger's register.
    void reloadNames();
    // Command14: the list of the second tab as a report.
    void report();
    DBGrid* list() const { return list_; }
    ReportControl* reportControl() const { return report_; }

private:
    finance::Ledger ledger_;
    DBGrid* list_ = nullptr;  // Grid1
    QLabel* total_ = nullptr; // t1
    QLabel* count_ = nullptr; // nr
    ReportControl* report_ = nullptr;
    PageQuery shown_;         // the rows Grid1 shows
    bool postToCash_ = false; // the answer to the cash question of the save under way
    QString namesFrom_ = QStringLiteral("clientes"); // the register C6 and K3 offer

    void buildSearchTab();
    void buildFoot();
    void connectButtons();
    void fillLists();
    void followRows();
    void showNewBills();
    void showList(const PageQuery& query);
    void showCount();
    void loadTyped();
    void openListed(int row);
    QComboBox* combo(const QString& name) const;
};

class Pagar : public ContasScreen {
    Q_OBJECT
public:
    explicit Pagar(QWidget* parent = nullptr);
};

class receber : public ContasScreen {
    Q_OBJECT
public:
    explicit receber(QWidget* parent = nullptr);
};

} // namespace rtx::ui
