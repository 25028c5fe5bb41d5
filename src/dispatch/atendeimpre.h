#pragma once
// atendeimpre, "Impressão de Relatórios": the dispatches of a period by courier, client,
// status or way of payment. Each report fills this station's own work table for the run
// and shows it in the report's preview; another station's reports never mix with these.

#include <QDialog>

class QComboBox;
class QPushButton;

namespace rtx::dispatch {
enum class ReportBy;
}

namespace rtx::ui {

class MaskEdBox;
class ReportControl;

class atendeimpre : public QDialog {
    Q_OBJECT
public:
    explicit atendeimpre(QWidget* parent = nullptr);

    ReportControl* report() const { return report_; }

    // The buttons.
    void Command10_Click();  // by courier
    void Command17_Click();  // by client
    void Command18_Click();  // by status, or every status when none is chosen
    void Command1_Click();   // by way of payment
    void SSCommand1_Click(); // the printer dialog

private:
    MaskEdBox* k1 = nullptr;
    MaskEdBox* k2 = nullptr;
    QComboBox* A18 = nullptr;
    QComboBox* A6 = nullptr;
    QComboBox* ST = nullptr;
    QComboBox* Combo1 = nullptr;
    ReportControl* report_ = nullptr;

    void load();
    void runReport(dispatch::ReportBy by);
};

} // namespace rtx::ui
