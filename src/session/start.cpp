#include "session/start.h"

#include "session/core/current.h"
#include "session/inicio.h"
#include "session/login.h"

namespace rtx::ui {

Start::Start(QObject* parent) : QObject(parent) {}

Start::~Start() {
    closeHub();
}

LOGIN* Start::showLogin() {
    login_ = std::make_unique<LOGIN>();
    connect(login_.get(), &LOGIN::loggedIn, this, [this] { onLoggedIn(); });
    login_->show();
    return login_.get();
}

void Start::closeHub() {
    hub_.reset();
    session::end();
}

void Start::onLoggedIn() {
    // The hub shows the session itself: when made now it reads it, when already up it
    // hears of the new one.
    if (!hub_) hub_ = std::make_unique<inicio>();
    hub_->show();
    hub_->raise();
    hub_->activateWindow();
}

} // namespace rtx::ui
