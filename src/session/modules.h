#pragma once
// The modules the hub opens, by name. Each module registers its screen once, from its own
// source file, under the name that its permission rows carry ("Atendimento", "Clientes",
// "Courier (entregador)", "Funcionários", ...), and the service price table under "SERVI2":
//
//     RTX_REGISTER_MODULE("Clientes", [](QWidget* parent) -> QDialog* {
//         return new cliente(parent);
//     });
//
// The hub creates a new screen at each opening (so it loads fresh data) and deletes it
// when it closes. A name with nothing registered is simply absent: the hub's entry then
// does nothing. The program links the whole screen library, so registrations in files
// that nothing else references still run.

#include <QString>
#include <QStringList>
#include <functional>

class QDialog;
class QWidget;

namespace rtx::ui {

using ModuleFactory = std::function<QDialog*(QWidget* parent)>;

// Registers (or replaces) the screen of a module. Gives true, for static registration.
bool registerModule(const QString& name, ModuleFactory factory);
void unregisterModule(const QString& name);
// The factory of a module; an empty function when none is registered.
ModuleFactory moduleFactory(const QString& name);
QStringList registeredModules();

} // namespace rtx::ui

#define RTX_MODULE_CAT2(a, b) a##b
#define RTX_MODULE_CAT(a, b) RTX_MODULE_CAT2(a, b)
#define RTX_REGISTER_MODULE(name, factory)                                                         \
    static const bool RTX_MODULE_CAT(rtxModuleRegistered_, __LINE__) =                             \
        ::rtx::ui::registerModule(QStringLiteral(name), factory)
