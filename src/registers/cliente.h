#pragma once
// cliente: the register of the company's clients.

#include "registers/registerscreen.h"

namespace rtx::ui {

class cliente : public RegisterScreen {
    Q_OBJECT
public:
    explicit cliente(QWidget* parent = nullptr);
    static RegisterConfig setup();
    // The first rows of the client's first tab, which suppliers share: status, date, tax
    // number, names, telephones, e-mail, site and the first address.
    static QList<RegisterField> identityFields();
    // The three search boxes and the grid's columns, which suppliers share too.
    static QList<RegisterSearch> searches();
    static QList<DBGrid::Column> gridColumns();
};

} // namespace rtx::ui
