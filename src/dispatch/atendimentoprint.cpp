// The papers of the dispatch screen: the A4 slip of the saved dispatch (one copy or two to a
// page), the counter coupon of what the screen shows, saved or not, the search tab's reports
// by courier, client and status, and the report screen.

#include "dispatch/atendeimpre.h"
#include "dispatch/atendimento.h"
#include "dispatch/core/dispatchreports.h"
#include "kit/kit.h"
#include "output/couponprinter.h"
#include "output/reportcontrol.h"
#include "store/store.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

namespace rtx::ui {

using dispatch::ReportBy;

void Atendimento::printSlip() {
    // The report reads the saved row: what was changed on the screen since Grava is not on it.
    QString refusal;
    if (!guarded(this, [&] {
            refusal = dispatch::setUpSlip(report_->definition(), Store::current(),
                                          numberLabel->text(), twoCopiesCheck->isChecked());
        }))
        return;
    if (!refusal.isEmpty()) {
        notice(this, refusal);
        return;
    }
    report_->run();
}

void Atendimento::printCoupon() {
    // The coupon needs no saved dispatch: it prints the fields as they stand.
    output::CouponFields f;
    if (!guarded(this, [&] { dispatch::fillCouponCompany(f, Store::current()); })) return;
    f.number = numberLabel->text();
    f.client = clientField->text();
    f.phone = phoneField->shownText();
    f.address = addressField->text();
    f.pickupAddress = pickup.address->text();
    f.pickupContact = pickup.contact->text();
    f.pickupPhone = pickup.phone->shownText();
    f.pickupTask = pickup.task->text();
    f.deliveryAddress = delivery.address->text();
    f.deliveryContact = delivery.contact->text();
    f.deliveryPhone = delivery.phone->shownText();
    f.deliveryTask = delivery.task->text();
    f.service = serviceField->text();
    f.returnTrip = returnBox->currentText();
    f.courier = courierBox->currentText();
    f.value = clientValueField->shownText();
    ui::printCoupon(this, f);
}

void Atendimento::printSearchReport(ReportBy by) {
    // The name comes from the first tab, not from the search boxes.
    QWidget* field = by == ReportBy::Courier  ? static_cast<QWidget*>(courierBox)
                     : by == ReportBy::Client ? static_cast<QWidget*>(clientField)
                                              : static_cast<QWidget*>(statusBox);
    const QString name = by == ReportBy::Courier  ? courierBox->currentText()
                         : by == ReportBy::Client ? clientField->text()
                                                  : statusBox->currentText();
    if (const QString refusal = dispatch::checkSearchReport(by, name); !refusal.isEmpty()) {
        notice(this, refusal);
        tabs->setTab(0);
        field->setFocus();
        return;
    }
    // The other two reports stay off until the screen is opened again.
    for (const QString& button : dispatch::buttonsDisabledBy(by))
        if (auto* b = findChild<QAbstractButton*>(button)) b->setEnabled(false);
    // The courier report carries the fee of whatever was last on the screen (VM).
    const dispatch::SearchReport request{by, name, fromField->shownText(), toField->shownText(),
                                         feeLabel->text()};
    if (!guarded(this, [&] { dispatch::setUpSearchReport(report_->definition(), request); }))
        return;
    report_->run();
}

void Atendimento::openReportScreen() {
    atendeimpre reports(this);
    reports.exec();
}

} // namespace rtx::ui
