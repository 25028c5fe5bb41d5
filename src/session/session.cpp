#include "session/session.h"

#include "session/inicio.h"

#include <QCoreApplication>
#include <QPointer>
#include <memory>

namespace rtx::ui {

namespace {
std::unique_ptr<Installation> g_installation;
QPointer<inicio> g_hub;
session::Session g_session;
} // namespace

const Installation& installation() {
    if (!g_installation)
        g_installation = std::make_unique<Installation>(
            Installation::resolveFolder(QCoreApplication::arguments()));
    return *g_installation;
}

void setInstallation(const Installation& inst) {
    g_installation = std::make_unique<Installation>(inst);
}

inicio* hub() {
    if (!g_hub) {
        g_hub = new inicio;
        if (g_session.loggedIn()) g_hub->showSession(g_session);
    }
    return g_hub;
}

inicio* existingHub() {
    return g_hub;
}

void closeHub() {
    delete g_hub.data();
    g_hub = nullptr;
    g_session = {};
}

const session::Session& currentSession() {
    return g_session;
}

void startSession(const session::Session& session) {
    g_session = session;
    if (g_hub) g_hub->showSession(g_session);
}

QString userName() {
    return g_session.user;
}

QStringList permittedModules() {
    return g_session.modules;
}

bool permitted(const QString& module) {
    return g_session.permits(module);
}

} // namespace rtx::ui
