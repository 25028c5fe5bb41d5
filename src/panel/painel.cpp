#include "panel/painel.h"

#include "kit/dialogs.h"
#include "output/core/report.h"
#include "output/reportpreview.h"
#include "panel/core/sheet.h"
#include "session/core/session.h"
#include "session/modules.h"
#include "session/core/current.h"
#include "store/changes.h"
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

RTX_REGISTER_MODULE("Painel", [](QWidget* parent) -> QDialog* { return new Painel(parent); });

namespace {

// The tables whose changes move the figures.
bool movesFigures(const QString& table) {
    static const QStringList tables{u"atendimentos"_s, u"caixa"_s, u"contas_receber"_s,
                                    u"motoqueiros"_s};
    return tables.contains(table, Qt::CaseInsensitive);
}

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

QPushButton* button(QWidget* parent, const QString& name, const QString& caption) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

QLabel* figureLabel(QWidget* parent, const QString& name) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    l->setAlignment(Qt::AlignCenter);
    l->setStyleSheet(u"QLabel { background: #F2F4F7; border: 1px solid #C8CDD4; "
                     "border-radius: 4px; padding: 3px; font-size: 12pt; }"_s);
    return l;
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

Painel::Painel(QWidget* parent, const QDate& today) : QDialog(parent), today_(today) {
    setObjectName(u"Painel"_s);
    setWindowTitle(u"Painel"_s);
    resize(1016, 700);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(4);

    // Today's figures.
    auto* figuresRow = new QHBoxLayout;
    dispatchesTodayLabel_ = figureLabel(this, u"lblAtendimentosHoje"_s);
    couriersFreeLabel_ = figureLabel(this, u"lblEntregadoresLivres"_s);
    cashBalanceLabel_ = figureLabel(this, u"lblSaldoCaixa"_s);
    receivablesLabel_ = figureLabel(this, u"lblAReceber"_s);
    for (QLabel* l :
         {dispatchesTodayLabel_, couriersFreeLabel_, cashBalanceLabel_, receivablesLabel_})
        figuresRow->addWidget(l, 1);
    layout->addLayout(figuresRow);

    // The period.
    auto* periodRow = new QHBoxLayout;
    const QList<QPair<panel::Span, QPair<QString, QString>>> spans{
        {panel::Span::Today, {u"btnHoje"_s, u"&Hoje"_s}},
        {panel::Span::Week, {u"btnSemana"_s, u"&Semana"_s}},
        {panel::Span::Month, {u"btnMes"_s, u"&Mês"_s}},
        {panel::Span::LastMonth, {u"btnMesAnterior"_s, u"Mês &anterior"_s}}};
    for (const auto& s : spans) {
        QPushButton* b = button(this, s.second.first, s.second.second);
        const panel::Span span = s.first;
        connect(b, &QPushButton::clicked, this, [this, span] { showSpan(span); });
        periodRow->addWidget(b);
    }
    periodRow->addSpacing(12);
    periodRow->addWidget(new QLabel(u"De"_s, this));
    auto dateField = [this](const QString& name) {
        auto* d = new QDateEdit(today_, this);
        d->setObjectName(name);
        d->setDisplayFormat(u"dd/MM/yyyy"_s);
        d->setCalendarPopup(true);
        return d;
    };
    fromField_ = dateField(u"txtDe"_s);
    toField_ = dateField(u"txtAte"_s);
    periodRow->addWidget(fromField_);
    periodRow->addWidget(new QLabel(u"até"_s, this));
    periodRow->addWidget(toField_);
    QPushButton* rangeButton = button(this, u"btnPeriodo"_s, u"M&ostrar"_s);
    connect(rangeButton, &QPushButton::clicked, this, [this] { showChosenRange(); });
    periodRow->addWidget(rangeButton);
    periodRow->addSpacing(12);
    periodLabel_ = new QLabel(this);
    periodLabel_->setObjectName(u"lblPeriodo"_s);
    QFont bold = periodLabel_->font();
    bold.setBold(true);
    periodLabel_->setFont(bold);
    periodRow->addWidget(periodLabel_, 1);
    layout->addLayout(periodRow);

    // The charts: the days wide, then the hours and the money; the people below.
    static const char16_t* const names[ChartCount] = {
        u"graDias",     u"graHoras",  u"graFaturamento", u"graEntregadores",
        u"graClientes", u"graAtraso", u"graDevedores"};
    auto* grid = new QGridLayout;
    grid->setSpacing(2);
    for (int i = 0; i < ChartCount; ++i) {
        auto* view = new QChartView(new QChart, this);
        view->setObjectName(QString::fromUtf16(names[i]));
        view->setRenderHint(QPainter::Antialiasing);
        view->setMinimumSize(200, 200);
        views_.append(view);
    }
    grid->addWidget(views_[Days], 0, 0, 1, 2);
    grid->addWidget(views_[Hours], 0, 2);
    grid->addWidget(views_[Money], 0, 3);
    grid->addWidget(views_[Couriers], 1, 0);
    grid->addWidget(views_[Clients], 1, 1);
    grid->addWidget(views_[Ages], 1, 2);
    grid->addWidget(views_[Debtors], 1, 3);
    for (int c = 0; c < 4; ++c)
        grid->setColumnStretch(c, 1);
    layout->addLayout(grid, 1);

    // Exports, print, close.
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(u"&Gráfico"_s, this));
    chartBox_ = new QComboBox(this);
    chartBox_->setObjectName(u"cboGrafico"_s);
    chartBox_->addItems({u"Atendimentos por dia"_s, u"Atendimentos por hora"_s, u"Faturamento"_s,
                         u"Entregadores"_s, u"Clientes"_s, u"Contas a receber por atraso"_s,
                         u"Clientes que mais devem"_s});
    qobject_cast<QLabel*>(bottom->itemAt(0)->widget())->setBuddy(chartBox_);
    bottom->addWidget(chartBox_);
    QPushButton* pngButton = button(this, u"btnPng"_s, u"Exportar P&NG"_s);
    QPushButton* pdfButton = button(this, u"btnPdf"_s, u"Exportar P&DF"_s);
    QPushButton* printButton = button(this, u"btnImprimir"_s, u"&Imprimir painel"_s);
    QPushButton* closeButton = button(this, u"btnFechar"_s, u"&Fechar"_s);
    connect(pngButton, &QPushButton::clicked, this, [this] { exportPng(); });
    connect(pdfButton, &QPushButton::clicked, this, [this] { exportPdf(); });
    connect(printButton, &QPushButton::clicked, this, [this] { printPanel(); });
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
    bottom->addWidget(pngButton);
    bottom->addWidget(pdfButton);
    bottom->addStretch(1);
    bottom->addWidget(printButton);
    bottom->addWidget(closeButton);
    layout->addLayout(bottom);

    // What this station saves is announced; what the others do is read every minute.
    pendingRefresh_ = new QTimer(this);
    pendingRefresh_->setSingleShot(true);
    pendingRefresh_->setInterval(0);
    connect(pendingRefresh_, &QTimer::timeout, this, [this] { refresh(); });
    connect(&changes(), &Changes::tableChanged, this, [this](const QString& table) {
        if (movesFigures(table)) pendingRefresh_->start();
    });
    everyMinute_ = new QTimer(this);
    everyMinute_->setInterval(60 * 1000);
    connect(everyMinute_, &QTimer::timeout, this, [this] { refresh(); });
    everyMinute_->start();

    showSpan(panel::Span::Month);
}

void Painel::showSpan(panel::Span span) {
    showPeriod(panel::periodOf(span, today_));
}

void Painel::showChosenRange() {
    const panel::Period chosen{fromField_->date(), toField_->date()};
    if (!chosen.valid()) {
        notice(this, u"A data inicial é posterior à final."_s);
        fromField_->setFocus();
        return;
    }
    showPeriod(chosen);
}

void Painel::showPeriod(const panel::Period& period) {
    period_ = period;
    fromField_->setDate(period.from);
    toField_->setDate(period.to);
    periodLabel_->setText(period.from == period.to
                              ? formatDate(period.from)
                              : u"%1 a %2"_s.arg(formatDate(period.from), formatDate(period.to)));
    refresh();
}

void Painel::refresh() {
    // A failure leaves the charts as they were; the next minute tries again.
    guarded(this, [this] {
        figures_ = panel::load(Store::current(), period_, today_);
        drawAll();
    });
}

void Painel::drawAll() {
    const panel::Headline& h = figures_.headline;
    dispatchesTodayLabel_->setText(u"Atendimentos hoje\n%1"_s.arg(h.dispatchesToday));
    couriersFreeLabel_->setText(u"Entregadores livres\n%1"_s.arg(h.couriersFree));
    cashBalanceLabel_->setText(u"Saldo do caixa\n%1"_s.arg(formatMoney(h.cashBalance)));
    receivablesLabel_->setText(u"A receber em aberto\n%1"_s.arg(formatMoney(h.openReceivables)));
    drawDays();
    drawHours();
    drawMoney();
    drawCouriers();
    drawClients();
    drawAges();
    drawDebtors();
}

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
            [this](const QPointF&) { openRows(u"Atendimento"_s); });
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
    chart->addSeries(series);
    auto* axis = new QBarCategoryAxis(chart);
    axis->append(hours);
    smallLabels(axis, 6, false);
    chart->addAxis(axis, Qt::AlignBottom);
    series->attachAxis(axis);
    series->attachAxis(valueAxis(chart, Qt::AlignLeft, top, false));
    connect(series, &QBarSeries::clicked, this,
            [this](int, QBarSet*) { openRows(u"Atendimento"_s); });
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
            [this](int, QBarSet*) { openRows(u"Caixa"_s); });
}

void Painel::drawCouriers() {
    QChart* chart = freshChart(Couriers, u"Entregadores (ganhos em R$)"_s);
    if (figures_.couriers.isEmpty()) {
        chart->legend()->hide();
        sayNothing(chart, panel::nothingInPeriod);
        return;
    }
    // The first eight, the busiest at the top; the earnings beside the name.
    const QList<panel::CourierFigures> shown = figures_.couriers.mid(0, 8);
    auto* all = new QBarSet(u"Atendimentos"_s, chart);
    auto* delivered = new QBarSet(u"Entregues"_s, chart);
    all->setColor(QColor(0xC0, 0x39, 0x2B));
    delivered->setColor(QColor(0x27, 0xAE, 0x60));
    QStringList names;
    int top = 0;
    for (int i = int(shown.size()) - 1; i >= 0; --i) {
        all->append(shown[i].dispatches);
        delivered->append(shown[i].delivered);
        names << u"%1  %2"_s.arg(shortName(shown[i].name, 12), formatMoney(shown[i].earnings));
        top = std::max(top, shown[i].dispatches);
    }
    auto* series = new QHorizontalBarSeries(chart);
    series->append(all);
    series->append(delivered);
    chart->addSeries(series);
    auto* axis = new QBarCategoryAxis(chart);
    axis->append(names);
    smallLabels(axis, 6);
    chart->addAxis(axis, Qt::AlignLeft);
    series->attachAxis(axis);
    series->attachAxis(valueAxis(chart, Qt::AlignBottom, top, false));
    connect(series, &QHorizontalBarSeries::clicked, this,
            [this](int, QBarSet*) { openRows(u"Atendimento"_s); });
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
    chart->addSeries(series);
    auto* axis = new QBarCategoryAxis(chart);
    axis->append(names);
    smallLabels(axis, 6);
    chart->addAxis(axis, Qt::AlignLeft);
    series->attachAxis(axis);
    series->attachAxis(valueAxis(chart, Qt::AlignBottom, reais(top), true));
    connect(series, &QHorizontalBarSeries::clicked, this,
            [this](int, QBarSet*) { openRows(u"Cobrança"_s); });
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
    chart->addSeries(series);
    auto* axis = new QBarCategoryAxis(chart);
    axis->append(ages);
    smallLabels(axis, 6, false);
    chart->addAxis(axis, Qt::AlignBottom);
    series->attachAxis(axis);
    series->attachAxis(valueAxis(chart, Qt::AlignLeft, reais(top), true));
    connect(series, &QBarSeries::clicked, this,
            [this](int, QBarSet*) { openRows(u"Contas a receber"_s); });
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
    const QList<panel::Amount> shown = figures_.topDebtors.mid(0, 8);
    for (int i = int(shown.size()) - 1; i >= 0; --i) {
        set->append(reais(shown[i].cents));
        names << shortName(shown[i].name, 16);
        top = std::max(top, shown[i].cents);
    }
    auto* series = new QHorizontalBarSeries(chart);
    series->append(set);
    chart->addSeries(series);
    auto* axis = new QBarCategoryAxis(chart);
    axis->append(names);
    smallLabels(axis, 6);
    chart->addAxis(axis, Qt::AlignLeft);
    series->attachAxis(axis);
    series->attachAxis(valueAxis(chart, Qt::AlignBottom, reais(top), true));
    connect(series, &QHorizontalBarSeries::clicked, this,
            [this](int, QBarSet*) { openRows(u"Cobrança"_s); });
}

QString Painel::chartFileName(const QString& extension) const {
    static const char16_t* const files[ChartCount] = {u"atendimentos-por-dia",
                                                      u"atendimentos-por-hora",
                                                      u"faturamento",
                                                      u"entregadores",
                                                      u"clientes",
                                                      u"receber-por-atraso",
                                                      u"clientes-devedores"};
    return u"painel-%1-%2.%3"_s.arg(QString::fromUtf16(files[chartBox_->currentIndex()]),
                                    period_.from.toString(u"yyyyMMdd"_s), extension);
}

void Painel::exportPng() {
    const std::optional<QString> path = chooseSaveFile(
        this, u"Exportar gráfico"_s, chartFileName(u"png"_s), u"Imagem PNG (*.png)"_s);
    if (!path) return;
    QChartView* view = views_[chartBox_->currentIndex()];
    // Drawn at twice the screen's size, so that a printed or projected copy stays sharp.
    QImage image(view->size() * 2, QImage::Format_ARGB32);
    image.fill(Qt::white);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        view->render(&p, QRectF(QPointF(0, 0), image.size()), view->rect());
    }
    if (!image.save(*path, "PNG"))
        showError(this, u"Não foi possível gravar o arquivo %1."_s.arg(*path));
}

void Painel::exportPdf() {
    const std::optional<QString> path = chooseSaveFile(
        this, u"Exportar gráfico"_s, chartFileName(u"pdf"_s), u"Documento PDF (*.pdf)"_s);
    if (!path) return;
    QChartView* view = views_[chartBox_->currentIndex()];
    QPdfWriter pdf(*path);
    pdf.setPageSize(QPageSize(QPageSize::A4));
    pdf.setPageOrientation(QPageLayout::Landscape);
    pdf.setPageMargins(QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
    pdf.setTitle(chartBox_->currentText());
    pdf.setCreator(u"Rotalix"_s);
    QPainter p;
    if (!p.begin(&pdf)) {
        showError(this, u"Não foi possível gravar o arquivo %1."_s.arg(*path));
        return;
    }
    // The chart keeps its proportions on the page, with the period above it.
    const QRect page = p.viewport();
    const QString heading = u"%1 — %2"_s.arg(chartBox_->currentText(), periodLabel_->text());
    QFont f(u"DejaVu Sans"_s, 12);
    p.setFont(f);
    const int headingHeight = p.fontMetrics().height() * 2;
    p.drawText(QRect(page.left(), page.top(), page.width(), headingHeight), Qt::AlignLeft, heading);
    QRectF target(page.left(), page.top() + headingHeight, page.width(),
                  page.height() - headingHeight);
    const QSizeF size = QSizeF(view->size()).scaled(target.size(), Qt::KeepAspectRatio);
    target.setSize(size);
    view->render(&p, target, view->rect());
    p.end();
}

void Painel::printPanel() {
    QString company;
    guarded(this, [&] { company = session::companyName(Store::current()); });
    output::ReportData data;
    data.table = u"painel"_s;
    auto* preview = new ReportPreview(std::move(data), panel::sheet(figures_, company), this);
    preview->setAttribute(Qt::WA_DeleteOnClose);
    preview->setWindowTitle(u"Painel — impressão"_s);
    preview->show();
}

void Painel::openRows(const QString& module) {
    if (!session::permitted(module)) {
        notice(this, u"Sem acesso ao módulo %1."_s.arg(module));
        return;
    }
    const ModuleFactory factory = moduleFactory(module);
    if (!factory) return;
    QDialog* screen = nullptr;
    if (!guarded(this, [&] { screen = factory(this); }) || !screen) return;
    screen->setAttribute(Qt::WA_DeleteOnClose);
    opened_ = screen;
    connect(screen, &QObject::destroyed, this, [this, screen] {
        if (opened_ == screen) opened_ = nullptr;
    });
    screen->show();
}

} // namespace rtx::ui
