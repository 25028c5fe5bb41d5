#include "session/core/current.h"

#include <QCoreApplication>
#include <memory>

namespace rtx::session {

namespace {
std::unique_ptr<Installation> g_installation;
Session g_session;
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

const Session& current() {
    return g_session;
}

void start(const Session& session) {
    g_session = session;
    emit announcer().started(g_session);
}

void end() {
    g_session = {};
    emit announcer().ended();
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

Announcer& announcer() {
    static Announcer instance;
    return instance;
}

} // namespace rtx::session
