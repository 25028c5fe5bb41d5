#pragma once
// forne: the register of suppliers, the client register with a smaller table.

#include "registers/partyscreen.h"

namespace rtx::ui {

class forne : public PartyScreen {
    Q_OBJECT
public:
    explicit forne(QWidget* parent = nullptr);
    static PartySetup setup();
};

} // namespace rtx::ui
