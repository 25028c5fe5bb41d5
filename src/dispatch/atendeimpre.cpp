#include "dispatch/atendeimpre.h"

#include "dispatch/core/dispatch.h"
#include "dispatch/core/dispatchreports.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "session/kit/kit.h"
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
    k1 = new MaskEdBox(MaskEdBox::dateMask(), period);
    k1->setObjectName(u"k1"_s);
    k1->setFixedWidth(100);
    k2 = new MaskEdBox(MaskEdBox::dateMask(), period);
    k2->setObjectName(u"k2"_s);
    k2->setFixedWidth(100);
    dates->addWidget(new QLabel(u"Data inicial"_s, period));
    dates->addWidget(k1);
    dates->addSpacing(16);
    dates->addWidget(new QLabel(u"Data final"_s, period));
    dates->addWidget(k2);
    dates->addStretch(1);
    box->addWidget(period);

    A18 = nameBox(u"A18"_s, this);
    A6 = nameBox(u"A6"_s, this);
    ST = nameBox(u"ST"_s, this);
    ST->addItems(dispatch::usualStatuses());
    ST->setCurrentIndex(-1);
    ST->setEditText(QString());
    Combo1 = nameBox(u"Combo1"_s, this);
    Combo1->addItems(dispatch::payments());
    Combo1->setCurrentIndex(-1);
    Combo1->setEditText(QString());
    auto* byCourier = button(u"Command10"_s, u"Imprimir"_s, this);
    auto* byClient = button(u"Command17"_s, u"Imprimir"_s, this);
    auto* byStatus = button(u"Command18"_s, u"Imprimir"_s, this);
    auto* byPayment = button(u"Command1"_s, u"Imprimir"_s, this);
    box->addWidget(
        frame(u"Relatório por Entregador"_s, u"Selecione o nome:"_s, A18, byCourier, this));
    box->addWidget(frame(u"Relatório por cliente"_s, u"Selecione o nome:"_s, A6, byClient, this));
    box->addWidget(frame(u"Relatório por status"_s, u"Selecione o nome:"_s, ST, byStatus, this));
    box->addWidget(
        frame(u"Relatório por recebimento"_s, u"Selecione o tipo:"_s, Combo1, byPayment, this));

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
    const QList<QWidget*> order{k1, k2,       A18,    byCourier, A6,      byClient,
                                ST, byStatus, Combo1, byPayment, printer, back};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    // A date of the period left empty is today's, also the start; one that is no date is
    // said so, and no report runs on another period.
    for (MaskEdBox* date : {k1, k2})
        date->setTodayWhenEmpty();

    onAction(byCourier, this, [this] { Command10_Click(); });
    onAction(byClient, this, [this] { Command17_Click(); });
    onAction(byStatus, this, [this] { Command18_Click(); });
    onAction(byPayment, this, [this] { Command1_Click(); });
    connect(printer, &QPushButton::clicked, this, &atendeimpre::SSCommand1_Click);
    connect(back, &QPushButton::clicked, this, &QDialog::close);

    load();
    centreScreen(this);
}

void atendeimpre::load() {
    k1->setText(formatDate(dispatch::reportPeriodStart()));
    k2->setText(formatDate(QDate::currentDate()));
    guarded(this, [this] {
        Store& store = Store::current();
        A18->addItems(dispatch::activeCourierNames(store));
        A6->addItems(dispatch::clientNames(store));
    });
    for (QComboBox* c : {A18, A6}) {
        c->setCurrentIndex(-1);
        c->setEditText(QString());
    }
}

void atendeimpre::runReport(dispatch::ReportBy by) {
    dispatch::PeriodReport request;
    request.by = by;
    request.courier = A18->currentText();
    request.client = A6->currentText();
    request.status = ST->currentText();
    request.payment = Combo1->currentText();
    const QString refusal = dispatch::checkPeriodReport(request);
    if (!refusal.isEmpty()) {
        notice(this, refusal);
        return;
    }
    const auto from = k1->settledDate();
    const auto to = from ? k2->settledDate() : std::nullopt;
    if (!from || !to) return;
    request.from = *from;
    request.to = *to;
    dispatch::PeriodFill fill;
    if (!guarded(this, [&] { fill = dispatch::fillPeriodReport(Store::current(), request); }))
        return;
    dispatch::setUpPeriodReport(report_->definition(), fill);
    report_->run();
}

void atendeimpre::Command10_Click() {
    runReport(dispatch::ReportBy::Courier);
}

void atendeimpre::Command17_Click() {
    runReport(dispatch::ReportBy::Client);
}

void atendeimpre::Command18_Click() {
    runReport(dispatch::ReportBy::Status);
}

void atendeimpre::Command1_Click() {
    runReport(dispatch::ReportBy::Payment);
}

void atendeimpre::SSCommand1_Click() {
    showPrinterDialog(this);
}

} // namespace rtx::ui
