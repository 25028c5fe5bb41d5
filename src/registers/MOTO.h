#pragma once
// MOTO: the register of the couriers. Dispatch knows a courier by his short name (C4) and
// reads his position on the board (C25) and his fee per delivery (C28).

#include "registers/registerscreen.h"

namespace rtx::ui {

class MOTO : public RegisterScreen {
    Q_OBJECT
public:
    explicit MOTO(QWidget* parent = nullptr);
    static RegisterConfig setup();
};

} // namespace rtx::ui
