#pragma once
// The session of this process. There is no session object: the logged-in user is the text
// of the hub's NOME, and the modules he may open are the rows of the hub's Grid2. These
// functions read them for the other screens.

#include "store/installation.h"

#include <QString>
#include <QStringList>

namespace rtx::ui {

class inicio;

// The installation the program runs on (site.txt, Ajuda, reports, backups). Set by the
// program at start and by the tests; until then the folder of the executable.
const Installation& installation();
void setInstallation(const Installation& installation);

// The hub of this process. The first call creates it, which runs its load (company name).
inicio* hub();
// The hub if it exists, without creating it.
inicio* existingHub();
// Deletes the hub (tests, before a new installation).
void closeHub();

// The logged-in user's name as typed at the login (hub's NOME); empty before a login.
QString userName();
// The permitted modules (column 0 of the hub's Grid2 rows).
QStringList permittedModules();
// True when Grid2 holds the module's name exactly (capitals and accents as stored).
bool permitted(const QString& module);

} // namespace rtx::ui
