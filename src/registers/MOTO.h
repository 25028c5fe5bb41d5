#pragma once
// MOTO: the register of the couriers. Dispatch knows a courier by his short name (C4) and
// reads his position on the board (C25) and his fee per delivery (C28).

#include "registers/partyscreen.h"

namespace rtx::ui {

class MOTO : public PartyScreen {
    Q_OBJECT
public:
    explicit MOTO(QWidget* parent = nullptr);
    static PartySetup setup();
};

} // namespace rtx::ui
