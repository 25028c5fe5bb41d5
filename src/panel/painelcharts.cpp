// The charts of the panel: each drawn anew from the figures of the period shown.

#include "panel/painel.h"

#include "store/formats.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QCategoryAxis>
#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QDateEdit>
#include <QGraphicsLayout>
#include <QGraphicsSimpleTextItem>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHorizontalBarSeries>
#include <QLabel>
#include <QLineSeries>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QStackedBarSeries>
#include <QTimer>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace {

// Money on the axes and in the labels in reais, written the Brazilian way whatever the
// machine's locale.
const QLocale& brazil() {
    static const QLocale locale(QLocale::Portuguese, QLocale::Brazil);
    return locale;
}

double reais(qint64 cents) {
    return double(cents) / 100.0;
}

QString shortName(const QString& name, int width = 18) {
    return name.size() > width ? name.left(width - 1) + u'…' : name;
}

// The words in the middle of a chart with nothing to draw.
void sayNothing(QChart* chart, const QString& words) {
    auto* note = new QGraphicsSimpleTextItem(words, chart);
    QFont f = note->font();
    f.setPointSize(10);
    note->setFont(f);
    auto place = [chart, note] {
        const QRectF area = chart->plotArea().isEmpty() ? chart->rect() : chart->plotArea();
        const QRectF box = note->boundingRect();
        note->setPos(area.center() - QPointF(box.width() / 2, box.height() / 2));
    };
    QObject::connect(chart, &QChart::plotAreaChanged, chart, [place](const QRectF&) { place(); });
    place();
}

QValueAxis* valueAxis(QChart* chart, Qt::Alignment side, double top, bool money) {
    auto* axis = new QValueAxis(chart);
    QFont f = axis->labelsFont();
    f.setPointSize(7);
    axis->setLabelsFont(f);
    axis->setLabelFormat(u"%.0f"_s);
    axis->setMinorTickCount(0);
    if (money) {
        axis->setRange(0, top <= 0 ? 1 : top * 1.1);
        axis->applyNiceNumbers();
    } else {
        // Dispatches are counted in whole numbers: ticks on whole steps, never 2,5.
        const int step = std::max(1, int(std::ceil(top / 5.0)));
        const int steps = std::max(1, int(std::ceil((top + 0.5) / step)));
        axis->setTickType(QValueAxis::TicksDynamic);
        axis->setTickAnchor(0);
        axis->setTickInterval(step);
        axis->setRange(0, step * steps);
    }
    chart->addAxis(axis, side);
    return axis;
}

// Days (or months) along the bottom, every few of them named so that the names stay
// readable however long the period.
QCategoryAxis* daysAxis(QChart* chart, const QStringList& captions) {
    auto* axis = new QCategoryAxis(chart);
    axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    const int n = int(captions.size());
    const int every = n <= 8 ? 1 : n <= 16 ? 2 : n <= 40 ? 4 : n <= 100 ? 14 : 30;
    for (int i = 0; i < n; i += every)
        axis->append(captions[i], i);
    axis->setRange(-0.5, n - 0.5);
    QFont f = axis->labelsFont();
    f.setPointSize(7);
    axis->setLabelsFont(f);
    axis->setGridLineVisible(false);
    axis->setTruncateLabels(false);
    chart->addAxis(axis, Qt::AlignBottom);
    return axis;
}

// Names along the side may be cut short; the short captions along the bottom never are.
void smallLabels(QAbstractAxis* axis, int points = 7, bool cut = true) {
    axis->setTruncateLabels(cut);
    QFont f = axis->labelsFont();
    f.setPointSize(points);
    axis->setLabelsFont(f);
}

} // namespace

QChart* Painel::freshChart(Chart which, const QString& title) {
    auto* chart = new QChart;
    chart->setTitle(title);
    QFont f = chart->titleFont();
    f.setPointSize(9);
    f.setBold(true);
    chart->setTitleFont(f);
    chart->setMargins(QMargins(2, 2, 2, 2));
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    chart->setBackgroundRoundness(0);
    chart->setLocalizeNumbers(true);
    chart->setLocale(brazil());
    chart->legend()->setFont(QFont(chart->legend()->font().family(), 7));
    chart->legend()->setAlignment(Qt::AlignBottom);
    QChart* old = views_[which]->chart();
    views_[which]->setChart(chart);
    delete old;
    return chart;
}

void Painel::drawDays() {
    QChart* chart = freshChart(Days, u"Atendimentos por dia"_s);
    if (figures_.empty()) {
        chart->legend()->hide();
        sayNothing(chart, panel::nothingInPeriod);
        return;
    }
    auto* now = new QLineSeries(chart);
    now->setName(u"Período"_s);
    auto* before = new QLineSeries(chart);
    before->setName(u"Período anterior (%1 a %2)"_s.arg(figures_.previous.from.toString(u"dd/MM"_s),
                                                        figures_.previous.to.toString(u"dd/MM"_s)));
    int top = 0;
    const int n = int(figures_.perDay.size());
    for (int i = 0; i < n; ++i) {
        now->append(i, figures_.perDay[i]);
        top = std::max(top, figures_.perDay[i]);
    }
    for (int i = 0; i < figures_.previousPerDay.size() && i < n; ++i) {
        before->append(i, figures_.previousPerDay[i]);
        top = std::max(top, figures_.previousPerDay[i]);
    }
    QPen dashed = before->pen();
    dashed.setStyle(Qt::DashLine);
    dashed.setColor(QColor(0x95, 0xA5, 0xA6));
    before->setPen(dashed);
    now->setPointsVisible(n <= 62);
    chart->addSeries(before);
    chart->addSeries(now);
    QStringList captions;
    for (int i = 0; i < n; ++i)
        captions << figures_.period.from.addDays(i).toString(u"dd/MM"_s);
    QCategoryAxis* days = daysAxis(chart, captions);
    QValueAxis* count = valueAxis(chart, Qt::AlignLeft, top, false);
    for (QLineSeries* s : {before, now}) {
        s->attachAxis(days);
        s->attachAxis(count);
    }
    // A day's point opens the dispatches, where the day is searched.
    connect(now, &QLineSeries::clicked, this,
            [this](const QPointF& point) { openRowsOf(Days, int(std::lround(point.x()))); });
}

// A bar series with a name under (or beside) each bar, its scale on the other side, and a
// click on a bar opening the rows behind it. Bars across the chart take their names on the
// left, cut short; bars standing up take them below, whole.
void Painel::namedBars(QChart* chart, Chart which, QAbstractBarSeries* series,
                       const QStringList& names, double top, bool money) {
    const bool across = series->type() == QAbstractSeries::SeriesTypeHorizontalBar;
    chart->addSeries(series);
    auto* axis = new QBarCategoryAxis(chart);
    axis->append(names);
    smallLabels(axis, 6, across);
    chart->addAxis(axis, across ? Qt::AlignLeft : Qt::AlignBottom);
    series->attachAxis(axis);
    series->attachAxis(valueAxis(chart, across ? Qt::AlignBottom : Qt::AlignLeft, top, money));
    connect(series, &QAbstractBarSeries::clicked, this,
            [this, which](int index, QBarSet*) { openRowsOf(which, index); });
}

void Painel::drawHours() {
    QChart* chart = freshChart(Hours, u"Atendimentos por hora"_s);
    chart->legend()->hide();
    if (figures_.empty()) {
        sayNothing(chart, panel::nothingInPeriod);
        return;
    }
    // The hours of the office: from the first to the last with a dispatch.
    int first = 23, last = 0, top = 0;
    for (int h = 0; h < 24; ++h)
        if (figures_.perHour[h] > 0) {
            first = std::min(first, h);
            last = std::max(last, h);
            top = std::max(top, figures_.perHour[h]);
        }
    if (first > last) first = last = 12;
    auto* set = new QBarSet(u"Atendimentos"_s, chart);
    set->setColor(QColor(0xD3, 0x54, 0x00));
    QStringList hours;
    for (int h = first; h <= last; ++h) {
        set->append(figures_.perHour[h]);
        hours << u"%1h"_s.arg(h);
    }
    auto* series = new QBarSeries(chart);
    series->append(set);
    series->setBarWidth(0.8);
    namedBars(chart, Hours, series, hours, top, false);
}

void Painel::drawMoney() {
    QChart* chart = freshChart(Money, figures_.revenueByMonth ? u"Faturamento por mês (R$)"_s
                                                              : u"Faturamento por dia (R$)"_s);
    if (figures_.empty()) {
        chart->legend()->hide();
        sayNothing(chart, panel::nothingInPeriod);
        return;
    }
    auto* cash = new QBarSet(u"A VISTA"_s, chart);
    auto* invoiced = new QBarSet(u"FATURAR"_s, chart);
    cash->setColor(QColor(0x27, 0xAE, 0x60));
    invoiced->setColor(QColor(0x29, 0x80, 0xB9));
    auto* fees = new QLineSeries(chart);
    fees->setName(u"Entregadores"_s);
    fees->setPen(QPen(QColor(0xC0, 0x39, 0x2B), 2));
    QStringList captions;
    qint64 top = 0;
    for (int i = 0; i < figures_.revenue.size(); ++i) {
        const panel::Revenue& r = figures_.revenue[i];
        cash->append(reais(r.cash));
        invoiced->append(reais(r.invoiced));
        fees->append(i, reais(r.courierFees));
        top = std::max({top, r.total(), r.courierFees});
        captions << r.start.toString(figures_.revenueByMonth ? u"MM/yy"_s : u"dd/MM"_s);
    }
    auto* series = new QStackedBarSeries(chart);
    series->append(cash);
    series->append(invoiced);
    chart->addSeries(series);
    chart->addSeries(fees);
    QCategoryAxis* axis = daysAxis(chart, captions);
    QValueAxis* money = valueAxis(chart, Qt::AlignLeft, reais(top), true);
    series->attachAxis(axis);
    series->attachAxis(money);
    fees->attachAxis(axis);
    fees->attachAxis(money);
    connect(series, &QStackedBarSeries::clicked, this,
            [this](int index, QBarSet*) { openRowsOf(Money, index); });
}

void Painel::drawCouriers() {
    QChart* chart = freshChart(Couriers, u"Entregadores (R$, tempo médio)"_s);
    if (figures_.couriers.isEmpty()) {
        chart->legend()->hide();
        sayNothing(chart, panel::nothingInPeriod);
        return;
    }
    // The first eight, the busiest at the top; the earnings beside the name, and his average
    // time to deliver where some of his deliveries were timed.
    const QList<panel::CourierFigures> shown = figures_.couriers.mid(0, barsShown);
    auto* all = new QBarSet(u"Atendimentos"_s, chart);
    auto* delivered = new QBarSet(u"Entregues"_s, chart);
    all->setColor(QColor(0xC0, 0x39, 0x2B));
    delivered->setColor(QColor(0x27, 0xAE, 0x60));
    QStringList names;
    int top = 0;
    for (int i = int(shown.size()) - 1; i >= 0; --i) {
        all->append(shown[i].dispatches);
        delivered->append(shown[i].delivered);
        QString name =
            u"%1  %2"_s.arg(shortName(shown[i].name, 12), formatMoney(shown[i].earnings));
        if (const auto average = shown[i].averageMinutes())
            name += u"  "_s + panel::durationText(*average);
        names << name;
        top = std::max(top, shown[i].dispatches);
    }
    auto* series = new QHorizontalBarSeries(chart);
    series->append(all);
    series->append(delivered);
    namedBars(chart, Couriers, series, names, top, false);
}

void Painel::drawClients() {
    QChart* chart = freshChart(Clients, u"Os dez clientes que mais trazem"_s);
    chart->legend()->hide();
    if (figures_.topClients.isEmpty()) {
        sayNothing(chart, panel::nothingInPeriod);
        return;
    }
    auto* set = new QBarSet(u"R$"_s, chart);
    set->setColor(QColor(0x29, 0x80, 0xB9));
    QStringList names;
    qint64 top = 0;
    const qint64 whole = std::max<qint64>(1, figures_.clientsTotal);
    for (int i = int(figures_.topClients.size()) - 1; i >= 0; --i) {
        const panel::Amount& a = figures_.topClients[i];
        set->append(reais(a.cents));
        // The share first: a long name loses its end, never the figure.
        names << u"%1% %2"_s.arg(brazil().toString(100.0 * double(a.cents) / double(whole), 'f', 1),
                                 shortName(a.name, 14));
        top = std::max(top, a.cents);
    }
    auto* series = new QHorizontalBarSeries(chart);
    series->append(set);
    namedBars(chart, Clients, series, names, reais(top), true);
}

void Painel::drawAges() {
    QChart* chart = freshChart(Ages, u"A receber por atraso (R$)"_s);
    chart->legend()->hide();
    if (figures_.noReceivables()) {
        sayNothing(chart, u"Nada a receber em aberto."_s);
        return;
    }
    auto* set = new QBarSet(u"R$"_s, chart);
    set->setColor(QColor(0xA0, 0x40, 0x00));
    QStringList ages;
    qint64 top = 0;
    for (int i = 0; i < panel::AgeCount; ++i) {
        set->append(reais(figures_.ages[i]));
        static const char16_t* const shortAges[panel::AgeCount] = {u"A vencer", u"1-30", u"31-60",
                                                                   u"61-90", u"+90"};
        ages << QString::fromUtf16(shortAges[i]);
        top = std::max(top, figures_.ages[i]);
    }
    auto* series = new QBarSeries(chart);
    series->append(set);
    namedBars(chart, Ages, series, ages, reais(top), true);
}

void Painel::drawDebtors() {
    QChart* chart = freshChart(Debtors, u"Clientes que mais devem (R$)"_s);
    chart->legend()->hide();
    if (figures_.topDebtors.isEmpty()) {
        sayNothing(chart, u"Nada a receber em aberto."_s);
        return;
    }
    auto* set = new QBarSet(u"R$"_s, chart);
    set->setColor(QColor(0x8E, 0x44, 0xAD));
    QStringList names;
    qint64 top = 0;
    const QList<panel::Amount> shown = figures_.topDebtors.mid(0, barsShown);
    for (int i = int(shown.size()) - 1; i >= 0; --i) {
        set->append(reais(shown[i].cents));
        names << shortName(shown[i].name, 16);
        top = std::max(top, shown[i].cents);
    }
    auto* series = new QHorizontalBarSeries(chart);
    series->append(set);
    namedBars(chart, Debtors, series, names, reais(top), true);
}

} // namespace rtx::ui
