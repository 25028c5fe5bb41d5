#include "panel/painel.h"

#include "dispatch/atendimento.h"
#include "finance/caixa.h"
#include "finance/cobra.h"
#include "finance/contas.h"
#include "kit/dialogs.h"
#include "output/core/report.h"
#include "output/reportpreview.h"
#include "panel/core/sheet.h"
#include "session/core/current.h"
#include "session/core/session.h"
#include "session/modules.h"
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

void Painel::openRows(const QString& module, const std::function<void(QDialog*)>& showRows) {
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
    if (showRows) showRows(screen);
}

namespace {

// Each screen is handed the rows only when it is the office's own: another registered under
// the module's name opens as it opens from the hub.
template <class Screen> std::function<void(QDialog*)> when(std::function<void(Screen*)> show) {
    return [show](QDialog* screen) {
        if (auto* own = qobject_cast<Screen*>(screen)) show(own);
    };
}

// The bars are drawn from the last to the first, so that the first is at the top.
template <class T> const T* fromTop(const QList<T>& rows, int shown, int index) {
    const int row = shown - 1 - index;
    return row >= 0 && row < rows.size() ? &rows[row] : nullptr;
}

} // namespace

void Painel::openRowsOf(Chart chart, int index) {
    const panel::Period& p = figures_.period;
    switch (chart) {
    case Days: {
        const QDate day = p.from.addDays(index);
        if (index < 0 || day > p.to) return;
        openRows(u"Atendimento"_s,
                 when<Atendimento>([day](Atendimento* a) { a->showSearch(day, day); }));
        return;
    }
    case Hours: // the search has no hour: the period's dispatches
        openRows(u"Atendimento"_s,
                 when<Atendimento>([p](Atendimento* a) { a->showSearch(p.from, p.to); }));
        return;
    case Couriers: {
        const int shown = int(std::min<qsizetype>(figures_.couriers.size(), barsShown));
        const panel::CourierFigures* c = fromTop(figures_.couriers, shown, index);
        if (!c) return;
        // The dispatches without a courier have no name to search: the period's, then.
        const QString name = c->name == panel::noCourier ? QString() : c->name;
        openRows(u"Atendimento"_s, when<Atendimento>([p, name](Atendimento* a) {
                     a->showSearch(p.from, p.to, name);
                 }));
        return;
    }
    case Money: {
        if (index < 0 || index >= figures_.revenue.size()) return;
        // A month's bar opens its first day: the cash book is kept day by day.
        const QDate day = figures_.revenue[index].start;
        openRows(u"Caixa"_s, when<CAIXA>([day](CAIXA* c) { c->startOn(day); }));
        return;
    }
    case Clients:
    case Debtors: {
        const QList<panel::Amount>& rows =
            chart == Clients ? figures_.topClients : figures_.topDebtors;
        const int shown =
            chart == Clients ? int(rows.size()) : int(std::min<qsizetype>(rows.size(), barsShown));
        const panel::Amount* a = fromTop(rows, shown, index);
        if (!a || a->name == panel::noClient) return;
        // The period's billing of a client that brings money; all that a debtor owes.
        const QDate from = chart == Clients ? p.from : QDate(1900, 1, 1);
        const QDate to = chart == Clients ? p.to : today_;
        const QString name = a->name;
        openRows(u"Cobrança"_s,
                 when<cobra>([name, from, to](cobra* c) { c->showClient(name, from, to); }));
        return;
    }
    case Ages: {
        // The due days of each age, counted back from today.
        static const int newest[panel::AgeCount] = {0, 1, 31, 61, 91};
        static const int oldest[panel::AgeCount] = {0, 30, 60, 90, 0};
        if (index < 0 || index >= panel::AgeCount) return;
        const QDate to =
            index == panel::NotDue ? today_.addYears(100) : today_.addDays(-newest[index]);
        const QDate from = index == panel::NotDue   ? today_
                           : index == panel::Over90 ? QDate(1900, 1, 1)
                                                    : today_.addDays(-oldest[index]);
        openRows(u"Contas a receber"_s,
                 when<receber>([from, to](receber* r) { r->showDue(from, to); }));
        return;
    }
    case ChartCount:
        return;
    }
}

} // namespace rtx::ui
