#pragma once
// The session of this process: the installation, the hub, and who is logged in (a value
// that the login sets and the hub shows in NOME and Grid2).

#include "session/core/session.h"
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
// Deletes the hub and ends the session (tests, before a new installation).
void closeHub();

// The session of this process; empty before a login.
const session::Session& currentSession();
// Starts a session (a good login, or a test): the hub, when there is one, shows it.
void startSession(const session::Session& session);

// The logged-in user's name as typed at the login; empty before a login.
QString userName();
// The permitted modules.
QStringList permittedModules();
// True when the module's name is among them exactly (capitals and accents as stored).
bool permitted(const QString& module);

} // namespace rtx::ui
