#pragma once
// A control of a screen found by its objectName, where the screen keeps no member for it (the
// buttons and menu twins made from a table of names). A name that finds nothing is a fault in
// the making of the screen: it is thrown as MissingControl, which names the control and the
// screen, and the hub's opening shows it (guarded) instead of a click that does nothing or a
// crash.
//
//     connect(namedControl<QAbstractButton>(this, u"Command16"_s), &QAbstractButton::clicked, ...);

#include <QObject>
#include <QString>
#include <stdexcept>

namespace rtx::ui {

class MissingControl : public std::logic_error {
public:
    MissingControl(const QString& control, const QString& screen)
        : std::logic_error(QStringLiteral("o controle %1 não existe na tela %2")
                               .arg(control, screen.isEmpty() ? QStringLiteral("?") : screen)
                               .toStdString()),
          control_(control) {}
    QString control() const { return control_; }

private:
    QString control_;
};

template <class T> T* namedControl(const QObject* screen, const QString& name) {
    if (screen)
        if (T* found = screen->findChild<T*>(name)) return found;
    throw MissingControl(name, screen ? screen->objectName() : QString());
}

} // namespace rtx::ui
