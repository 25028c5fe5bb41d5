#include "dispatch/atendeimpre.h"

#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/dispatchreports.h"
#include "kit/kit.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "store/formats.h"
#include "store/store.h"

#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace {

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

QComboBox* nameBox(const QString& name, QWidget* parent) {
    auto* c = new QComboBox(parent);
    c->setObjectName(name);
    c->setEditable(true);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->setMinimumWidth(260);
    c->setMaxVisibleItems(20);
    return c;
}

// A frame with a caption, a field and its "Imprimir" button.
QGroupBox* frame(const QString& title, const QString& caption, QComboBox* field, QPushButton* print,
                 QWidget* parent) {
    auto* box = new QGroupBox(title, parent);
    auto* row = new QHBoxLayout(box);
    auto* label = new QLabel(caption, box);
    // The four fields start at one line, whichever caption stands before them.
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(u"Selecione o nome:"_s) + 6);
    row->addWidget(label);
    row->addWidget(field, 1);
    row->addWidget(print);
    field->setParent(box);
    print->setParent(box);
    return box;
}

} // namespace

atendeimpre::atendeimpre(QWidget* parent) : QDialog(parent) {
    setObjectName(u"atendeimpre"_s);
    setWindowTitle(u"Impressão de Relatórios"_s);
    report_ = new ReportControl(this);

    auto* box = new QVBoxLayout(this);
    auto* period = new QGroupBox(u"Período desejado"_s, this);
    auto* dates = new QHBoxLayout(period);
    periodStart_ = new MaskEdBox(MaskEdBox::dateMask(), period);
    periodStart_->setObjectName(u"k1"_s);
    periodStart_->setFixedWidth(100);
    periodEnd_ = new MaskEdBox(MaskEdBox::dateMask(), period);
    periodEnd_->setObjectName(u"k2"_s);
    periodEnd_->setFixedWidth(100);
    dates->addWidget(new QLabel(u"Data inicial"_s, period));
    dates->addWidget(periodStart_);
    dates->addSpacing(16);
    dates->addWidget(new QLabel(u"Data final"_s, period));
    dates->addWidget(periodEnd_);
    dates->addStretch(1);
    box->addWidget(period);

    courierBox_ = nameBox(u"A18"_s, this);
    clientBox_ = nameBox(u"A6"_s, this);
    statusBox_ = nameBox(u"ST"_s, this);
    statusBox_->addItems(dispatch::usualStatuses());
    statusBox_->setCurrentIndex(-1);
    statusBox_->setEditText(QString());
    paymentBox_ = nameBox(u"Combo1"_s, this);
    paymentBox_->addItems(dispatch::payments());
    paymentBox_->setCurrentIndex(-1);
    paymentBox_->setEditText(QString());
    auto* byCourier = button(u"Command10"_s, u"Imprimir"_s, this);
    auto* byClient = button(u"Command17"_s, u"Imprimir"_s, this);
    auto* byStatus = button(u"Command18"_s, u"Imprimir"_s, this);
    auto* byPayment = button(u"Command1"_s, u"Imprimir"_s, this);
    box->addWidget(
        frame(u"Relatório por Entregador"_s, u"Selecione o nome:"_s, courierBox_, byCourier, this));
    box->addWidget(
        frame(u"Relatório por cliente"_s, u"Selecione o nome:"_s, clientBox_, byClient, this));
    box->addWidget(
        frame(u"Relatório por status"_s, u"Selecione o nome:"_s, statusBox_, byStatus, this));
    box->addWidget(frame(u"Relatório por recebimento"_s, u"Selecione o tipo:"_s, paymentBox_,
                         byPayment, this));

    auto* bottom = new QHBoxLayout;
    auto* printer = button(u"SSCommand1"_s, u"&Seleciona"_s, this);
    printer->setToolTip(u"Escolhe a impressora"_s);
    auto* back = button(u"Command2"_s, u"&Volta"_s, this);
    bottom->addWidget(printer);
    bottom->addStretch(1);
    bottom->addWidget(back);
    box->addLayout(bottom);

    setupFields(this);
    keepOnEscape(this);
    const QList<QWidget*> order{periodStart_, periodEnd_, courierBox_, byCourier,
                                clientBox_,   byClient,   statusBox_,  byStatus,
                                paymentBox_,  byPayment,  printer,     back};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    // A date of the period left empty is today's, also the start; one that is no date is
    // said so, and no report runs on another period.
    for (MaskEdBox* date : {periodStart_, periodEnd_})
        date->setTodayWhenEmpty();

    onAction(byCourier, this, [this] { onByCourier(); });
    onAction(byClient, this, [this] { onByClient(); });
    onAction(byStatus, this, [this] { onByStatus(); });
    onAction(byPayment, this, [this] { onByPayment(); });
    connect(printer, &QPushButton::clicked, this, &atendeimpre::onChoosePrinter);
    connect(back, &QPushButton::clicked, this, &QDialog::close);

    load();
    centreScreen(this);
    // Couriers and clients registered while the reports stand open are offered at once.
    refreshOn(this, {dispatch::courier::table},
              [this] { refillCombo(courierBox_, dispatch::activeCourierNames(Store::current())); });
    refreshOn(this, {u"clientes"_s},
              [this] { refillCombo(clientBox_, dispatch::clientNames(Store::current())); });
}

void atendeimpre::load() {
    periodStart_->setText(formatDate(dispatch::reportPeriodStart()));
    periodEnd_->setText(formatDate(QDate::currentDate()));
    guarded(this, [this] {
        Store& store = Store::current();
        courierBox_->addItems(dispatch::activeCourierNames(store));
        clientBox_->addItems(dispatch::clientNames(store));
    });
    for (QComboBox* c : {courierBox_, clientBox_}) {
        c->setCurrentIndex(-1);
        c->setEditText(QString());
    }
}

void atendeimpre::runReport(dispatch::ReportBy by) {
    dispatch::PeriodReport request;
    request.by = by;
    request.courier = courierBox_->currentText();
    request.client = clientBox_->currentText();
    request.status = statusBox_->currentText();
    request.payment = paymentBox_->currentText();
    const QString refusal = dispatch::checkPeriodReport(request);
    if (!refusal.isEmpty()) {
        notice(this, refusal);
        return;
    }
    const auto from = periodStart_->settledDate();
    const auto to = from ? periodEnd_->settledDate() : std::nullopt;
    if (!from || !to) return;
    request.from = *from;
    request.to = *to;
    dispatch::PeriodFill fill;
    if (!guarded(this, [&] { fill = dispatch::fillPeriodReport(Store::current(), request); }))
        return;
    dispatch::setUpPeriodReport(report_->definition(), fill);
    report_->run();
}

void atendeimpre::onByCourier() {
    runReport(dispatch::ReportBy::Courier);
}

void atendeimpre::onByClient() {
    runReport(dispatch::ReportBy::Client);
}

void atendeimpre::onByStatus() {
    runReport(dispatch::ReportBy::Status);
}

void atendeimpre::onByPayment() {
    runReport(dispatch::ReportBy::Payment);
}

void atendeimpre::onChoosePrinter() {
    showPrinterDialog(this);
}

} // namespace rtx::ui
