#pragma once
// Painel: the office at a glance. A period (today, the week, the month, the month before,
// or two days of the calendar), a row of today's figures and the charts of the period:
// dispatches by day against the period before, by hour, the money by day or month with the
// couriers' fees against it, the couriers, the clients that bring most and the receivables
// by age with the clients that owe most. A click on a bar or a point opens the screen that
// lists those rows; each chart goes to a PNG file or a PDF page, and the whole panel to the
// report preview. It reads again when this station saves a dispatch or moves money, and
// every minute for what the other stations do.

#include "panel/core/figures.h"

#include <QDialog>
#include <QList>
#include <functional>

class QAbstractBarSeries;
class QChart;
class QChartView;
class QComboBox;
class QDateEdit;
class QLabel;
class QPushButton;
class QTimer;

namespace rtx::ui {

class Painel : public QDialog {
    Q_OBJECT
public:
    explicit Painel(QWidget* parent = nullptr, const QDate& today = QDate::currentDate());

    // The period buttons, and the two days of the calendar.
    void showSpan(panel::Span span);
    void showChosenRange(); // btnPeriodo
    // Reads the figures of the period shown again.
    void refresh();

    // The charts, in the order of cboGrafico.
    enum Chart { Days, Hours, Money, Couriers, Clients, Ages, Debtors, ChartCount };
    QChartView* chartView(Chart chart) const { return views_[chart]; }
    // The export buttons, for the chart picked in cboGrafico.
    void exportPng();
    void exportPdf();
    // The whole panel in the report preview.
    void printPanel();

    const panel::Figures& figures() const { return figures_; }
    // The screen a click on a chart opened (the last one), for whoever drives the panel.
    QDialog* openedScreen() const { return opened_; }

    // Opens the module that lists the rows behind a bar or point, when the user may open it,
    // and has it show those rows when the module is the office's own screen for them.
    void openRows(const QString& module,
                  const std::function<void(QDialog* screen)>& showRows = nullptr);
    // A click on a chart: the bar's index (or the point's, on the days) as the chart has it.
    // The days and the couriers open the dispatch search, the money the cash day, the
    // clients and the debtors the client's billing, the ages the receivables due then.
    void openRowsOf(Chart chart, int index);

private:
    // The couriers and the debtors: the first eight have a bar, the rest would not be read.
    static constexpr int barsShown = 8;

    QDate today_;
    panel::Period period_;
    panel::Figures figures_;
    QLabel* dispatchesTodayLabel_ = nullptr;
    QLabel* couriersFreeLabel_ = nullptr;
    QLabel* cashBalanceLabel_ = nullptr;
    QLabel* receivablesLabel_ = nullptr;
    QLabel* periodLabel_ = nullptr;
    QDateEdit* fromField_ = nullptr;
    QDateEdit* toField_ = nullptr;
    QComboBox* chartBox_ = nullptr;
    QList<QChartView*> views_;
    QTimer* everyMinute_ = nullptr;
    QTimer* pendingRefresh_ = nullptr;
    QDialog* opened_ = nullptr;

    void showPeriod(const panel::Period& period);
    void drawAll();
    void drawDays();
    void drawHours();
    void drawMoney();
    void drawCouriers();
    void drawClients();
    void drawAges();
    void drawDebtors();
    void namedBars(QChart* chart, Chart which, QAbstractBarSeries* series, const QStringList& names,
                   double top, bool money);
    QChart* freshChart(Chart chart, const QString& title);
    QString chartFileName(const QString& extension) const;
};

} // namespace rtx::ui
