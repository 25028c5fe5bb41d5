#pragma once
// cliente: the register of the company's clients.

#include "registers/partyscreen.h"

namespace rtx::ui {

class cliente : public PartyScreen {
    Q_OBJECT
public:
    explicit cliente(QWidget* parent = nullptr);
    static PartySetup setup();
    // The first rows of the client's first tab, which suppliers share: status, date, tax
    // number, names, telephones, e-mail, site and the first address.
    static QList<FormField> identityFields();
    // The three search boxes (name, tax number, trade name), which suppliers share too.
    static FormSearch search();
};

} // namespace rtx::ui
