#pragma once
// CAIXA ("Caixa"): the cash book. The first tab is one day: Iniciar loads it with the
// balance of the days before, its movements and its figures, and new movements are entered
// under it (insertion only: a picked row is there to be deleted). The second tab searches a
// period; a double click on a found movement loads its day with its true previous balance.

#include "finance/core/cashbook.h"

#include <QDate>
#include <QDialog>
#include <optional>

class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;

namespace rtx::ui {

class DBGrid;
class MaskEdBox;
class MSFlexGrid;
class ReportControl;
class SSTab;

class CAIXA : public QDialog {
    Q_OBJECT
public:
    explicit CAIXA(QWidget* parent = nullptr);

    // Command1: the day of A1 with the balance up to dda; dda is then yesterday again.
    void start();
    // That day on the first tab, as if typed into A1 and Iniciar pressed.
    void startOn(const QDate& day);
    // Command16: a new movement from the fields.
    void save();
    // A double click on the day's list: the row's fields come up, for Exclui.
    void pick(int row);
    // Command11: deletes the movement picked, after the question, and loads the day again.
    void remove();
    // The searches of the second tab.
    void find(finance::CashSearch by);
    // A double click on the search's list: that day, with its true previous balance.
    void openDay(int row);
    // Command5 and Command10: the day's sheet and the search's list.
    void printDay();
    void printSearch();

    QDate previousUpTo() const { return previousUpTo_; } // dda
    ReportControl* reportControl() const { return report_; }

private:
    SSTab* tabs_ = nullptr;
    MaskEdBox* dayField_ = nullptr;       // A1
    QComboBox* operationBox_ = nullptr;   // A2
    QLineEdit* documentField_ = nullptr;  // a3
    QComboBox* typeBox_ = nullptr;        // a4
    MaskEdBox* amountField_ = nullptr;    // A5
    QComboBox* descriptionBox_ = nullptr; // A6
    QComboBox* groupBox_ = nullptr;       // A7
    QLineEdit* pickedCode_ = nullptr;     // NN
    QLineEdit* startField_ = nullptr;     // di
    QLineEdit* endField_ = nullptr;       // dda
    QLabel* previousLabel_ = nullptr;     // sa
    QLabel* debitsLabel_ = nullptr;       // t1
    QLabel* creditsLabel_ = nullptr;      // t2
    QLabel* balanceLabel_ = nullptr;      // t3
    QLineEdit* hintBar_ = nullptr;        // BARRA
    MSFlexGrid* dayGrid_ = nullptr;       // Grid1
    MaskEdBox* fromField_ = nullptr;      // k1
    MaskEdBox* toField_ = nullptr;        // k2
    QComboBox* searchGroupBox_ = nullptr; // Combo1
    DBGrid* searchGrid_ = nullptr;        // Grid2
    QLabel* searchDebits_ = nullptr;      // TT1
    QLabel* searchCredits_ = nullptr;     // TT2
    ReportControl* report_ = nullptr;
    std::optional<finance::CashQuery> lastSearch_; // what Grid2 shows
    QDate previousUpTo_;
    QDate shownDay_, shownUpTo_; // the day on the first tab, and its balance's last day
    qint64 previous_ = 0, debits_ = 0, credits_ = 0;

    QWidget* buildDayTab();
    QWidget* buildSearchTab();
    void buildMenu(QLayout* outer);
    void fillLists();
    void followCashBook();
    void showDay(const finance::CashDay& loaded);
    void setEntryEnabled(bool on);
    void clearEntry();
    void addDayRow(const finance::CashMovement& m);
    void showFigures();
    // The movement typed; nothing when its day or amount cannot be read (said so).
    std::optional<finance::CashMovement> entry();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace rtx::ui
