#pragma once
// forne: the register of suppliers, the client register with a smaller table.

#include "registers/registerscreen.h"

namespace rtx::ui {

class forne : public RegisterScreen {
    Q_OBJECT
public:
    explicit forne(QWidget* parent = nullptr);
    static RegisterConfig setup();
};

} // namespace rtx::ui
