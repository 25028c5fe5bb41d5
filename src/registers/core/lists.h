#pragma once
// The small lists of names other screens offer in their combos: regions of clients, groups
// of accounts, financial types and forms of payment. Each is a table whose one column A1
// holds the names, in capitals, kept distinct by the add.

#include "store/store.h"

#include <QString>
#include <QStringList>

namespace rtx::registers {

namespace lists {
inline const QString regions = QStringLiteral("grupos_clientes");          // the old B2.Mdb
inline const QString accountGroups = QStringLiteral("grupos_contas");      // CB6.Mdb
inline const QString financialTypes = QStringLiteral("tipos_financeiros"); // BB6.Mdb
inline const QString paymentForms = QStringLiteral("formas_pagamento");    // B6.Mdb
inline const QString nameColumn = QStringLiteral("A1");
} // namespace lists

// The names of a list, in alphabetical order.
QStringList listNames(Store& store, const QString& table);
// Adds the name in capitals, unless the list has it already in any capitals; a blank name
// adds nothing. True when a row was added.
bool addListName(Store& store, const QString& table, const QString& typed);
// Deletes the name (in any capitals). True when a row was deleted.
bool removeListName(Store& store, const QString& table, const QString& name);

} // namespace rtx::registers
