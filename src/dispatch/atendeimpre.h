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

    // The buttons: Command10, Command17, Command18, Command1 and SSCommand1.
    void onByCourier();
    void onByClient();
    void onByStatus(); // every status when none is chosen
    void onByPayment();
    void onChoosePrinter();

private:
    // k1 and k2, then A18, A6, ST and Combo1.
    MaskEdBox* periodStart_ = nullptr;
    MaskEdBox* periodEnd_ = nullptr;
    QComboBox* courierBox_ = nullptr;
    QComboBox* clientBox_ = nullptr;
    QComboBox* statusBox_ = nullptr;
    QComboBox* paymentBox_ = nullptr;
    ReportControl* report_ = nullptr;

    void load();
    void runReport(dispatch::ReportBy by);
};

} // namespace rtx::ui
