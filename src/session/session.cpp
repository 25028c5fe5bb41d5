#include "session/session.h"

#include "session/inicio.h"
#include "session/kit/grids.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QPointer>
#include <memory>

namespace rtx::ui {

namespace {
std::unique_ptr<Installation> g_installation;
QPointer<inicio> g_hub;
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
    if (!g_hub) g_hub = new inicio;
    return g_hub;
}

inicio* existingHub() {
    return g_hub;
}

void closeHub() {
    delete g_hub.data();
    g_hub = nullptr;
}

QString userName() {
    return g_hub ? g_hub->nome()->text() : QString();
}

QStringList permittedModules() {
    QStringList modules;
    if (!g_hub) return modules;
    const MSFlexGrid* grid = g_hub->grid2();
    for (int r = 1; r < grid->rows(); ++r)
        modules << grid->textMatrix(r, 0);
    return modules;
}

bool permitted(const QString& module) {
    return permittedModules().contains(module, Qt::CaseSensitive);
}

} // namespace rtx::ui
