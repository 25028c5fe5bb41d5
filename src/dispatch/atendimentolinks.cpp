// The dispatch screen's links to the courier: "WhatsApp" sends the dispatch on screen to the
// chosen courier's mobile, "Rota" shows the way from the pickup to the delivery on the map.
// Both open the desktop's browser; each has a menu twin and a key (Alt+W, Alt+R), so the
// operator sends the job without leaving the keyboard.

#include "dispatch/atendimento.h"
#include "dispatch/core/courierlinks.h"
#include "kit/kit.h"

#include <QBoxLayout>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace {

// The row of buttons that holds a widget, searched from the screen's own layout down.
QBoxLayout* rowHolding(QLayout* layout, QWidget* widget) {
    if (!layout) return nullptr;
    if (auto* box = qobject_cast<QBoxLayout*>(layout); box && box->indexOf(widget) >= 0) return box;
    for (int i = 0; i < layout->count(); ++i)
        if (QBoxLayout* found = rowHolding(layout->itemAt(i)->layout(), widget)) return found;
    return nullptr;
}

// Opens the link, or says why there is none.
void openLink(QWidget* screen, const dispatch::CourierLink& link) {
    if (!link.problem.isEmpty()) {
        notice(screen, link.problem);
        return;
    }
    if (!openUrl(QUrl::fromEncoded(link.url.toLatin1(), QUrl::StrictMode)))
        showError(screen, u"O navegador não pôde ser aberto para o endereço:\n%1"_s.arg(link.url));
}

} // namespace

void Atendimento::buildCourierLinks() {
    auto* whatsApp = new QPushButton(u"WhatsApp"_s, this);
    whatsApp->setObjectName(u"CommandWhats"_s);
    whatsApp->setToolTip(u"Envia o atendimento ao celular do entregador (Alt+W)."_s);
    auto* route = new QPushButton(u"Rota"_s, this);
    route->setObjectName(u"CommandRota"_s);
    route->setToolTip(u"Mostra no mapa o caminho da coleta à entrega (Alt+R)."_s);

    // Beside the prints: the other ways a dispatch leaves the screen.
    auto* coupon = findChild<QWidget*>(u"Command24"_s);
    if (QBoxLayout* row = rowHolding(coupon ? coupon->parentWidget()->layout() : nullptr, coupon)) {
        const int at = row->indexOf(coupon) + 1;
        row->insertWidget(at, whatsApp);
        row->insertWidget(at + 1, route);
        setTabOrder(coupon, whatsApp);
    } else {
        auto* own = new QHBoxLayout;
        own->addWidget(whatsApp);
        own->addWidget(route);
        own->addStretch(1);
        if (auto* box = qobject_cast<QBoxLayout*>(layout())) box->addLayout(own);
    }
    setTabOrder(whatsApp, route);

    // The amount to collect is read as typed, as for the prints.
    onAction(whatsApp, this, [this] {
        dispatch::CourierLink link;
        if (guarded(this, [&] { link = dispatch::whatsAppLink(Store::current(), onScreen()); }))
            openLink(this, link);
    });
    onAction(route, this, [this] {
        dispatch::CourierLink link;
        if (guarded(this, [&] { link = dispatch::routeLink(Store::current(), onScreen()); }))
            openLink(this, link);
    });

    if (auto* bar = findChild<QMenuBar*>(u"menu"_s)) {
        callsButton(menuEntry(bar, u"MenuWhats"_s, u"WhatsApp"_s), whatsApp);
        callsButton(menuEntry(bar, u"MenuRota"_s, u"Rota"_s), route);
    }
    for (auto [key, target] : {std::pair{Qt::Key_W, whatsApp}, std::pair{Qt::Key_R, route}}) {
        auto* shortcut = new QShortcut(QKeySequence(Qt::ALT | key), this);
        connect(shortcut, &QShortcut::activated, target, &QPushButton::click);
    }
}

} // namespace rtx::ui
