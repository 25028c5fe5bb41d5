#include "finance/cobra1.h"

#include "finance/core/billing.h"
#include "kit/kit.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

cobra1::cobra1(const QString& code, const QString& client, const QString& clientValue,
               const QString& courierValue, QWidget* parent)
    : QDialog(parent) {
    setObjectName(u"cobra1"_s);
    setWindowTitle(u"Altera valor"_s);
    auto* grid = new QGridLayout(this);
    const auto display = [this](const QString& name, const QString& text) {
        auto* e = new QLineEdit(text, this);
        e->setObjectName(name);
        e->setReadOnly(true);
        e->setFocusPolicy(Qt::NoFocus);
        return e;
    };
    const auto money = [this](const QString& name, const QString& text) {
        auto* m = new MaskEdBox(MaskEdBox::moneyMask(), this);
        m->setObjectName(name);
        m->setText(text);
        return m;
    };
    codeField_ = display(u"A1"_s, code);
    clientField_ = display(u"A2"_s, client);
    clientValueField_ = money(u"a3"_s, clientValue);
    courierValueField_ = money(u"a4"_s, courierValue);
    int row = 0;
    for (const auto& [caption, field] :
         QList<std::pair<QString, QWidget*>>{{u"Controle:"_s, codeField_},
                                             {u"Cliente:"_s, clientField_},
                                             {u"Valor Cliente:"_s, clientValueField_},
                                             {u"Valor Courier:"_s, courierValueField_}}) {
        grid->addWidget(new QLabel(caption, this), row, 0);
        grid->addWidget(field, row++, 1);
    }
    auto* bar = new QHBoxLayout;
    auto* changeButton = new QPushButton(u"Altera"_s, this);
    changeButton->setObjectName(u"Command6"_s);
    auto* backButton = new QPushButton(u"Volta"_s, this);
    backButton->setObjectName(u"Command1"_s);
    for (QPushButton* b : {changeButton, backButton}) {
        b->setAutoDefault(false);
        bar->addWidget(b);
    }
    grid->addLayout(bar, row, 0, 1, 2);
    onAction(changeButton, this, [this] { change(); });
    connect(backButton, &QPushButton::clicked, this, [this] { reject(); });
    setupFields(this);
    keepOnEscape(this);
    resize(380, 190);
    centreScreen(this);
}

void cobra1::change() {
    const auto clientValue = clientValueField_->settledCents();
    const auto courierValue = clientValue ? courierValueField_->settledCents() : std::nullopt;
    if (!clientValue || !courierValue) return;
    const finance::DispatchValues& values = finance::dispatchValues();
    if (!values.check || !values.change) return;
    if (const auto problem = values.check(*clientValue, *courierValue)) {
        notice(this, problem->message);
        (problem->column == values.clientValueColumn ? clientValueField_ : courierValueField_)
            ->setFocus();
        return;
    }
    bool found = false;
    if (!guarded(this, [&] {
            found =
                values.change(Store::current(), codeField_->text(), *clientValue, *courierValue);
        }))
        return;
    if (found) notice(this, u"Alterado com sucesso."_s);
    accept();
}

} // namespace rtx::ui
