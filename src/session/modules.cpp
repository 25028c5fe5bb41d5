#include "session/modules.h"

#include <QMap>

namespace rtx::ui {

namespace {
// Filled during static initialisation: a function-local map is ready at its first use.
QMap<QString, ModuleFactory>& registry() {
    static QMap<QString, ModuleFactory> modules;
    return modules;
}
} // namespace

bool registerModule(const QString& name, ModuleFactory factory) {
    registry().insert(name, std::move(factory));
    return true;
}

void unregisterModule(const QString& name) {
    registry().remove(name);
}

ModuleFactory moduleFactory(const QString& name) {
    return registry().value(name);
}

QStringList registeredModules() {
    return registry().keys();
}

} // namespace rtx::ui
