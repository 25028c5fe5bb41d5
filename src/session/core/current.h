#pragma once
// The session of this process: the installation it runs on and who is logged in. A value
// without widgets: the login starts it, the hub shows it, the screens read the user's name
// and the permitted modules from it.

#include "session/core/session.h"
#include "store/installation.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace rtx::session {

// The installation the program runs on (site.txt, Ajuda, reports, backups). Set by the
// program at start and by the tests; until then the folder of the executable.
const Installation& installation();
void setInstallation(const Installation& installation);

// The session of this process; empty before a login.
const Session& current();
// Starts a session (a good login, or a test); a second one replaces the first.
void start(const Session& session);
// Ends the session: nobody is logged in afterwards.
void end();

// The logged-in user's name as typed at the login; empty before a login.
QString userName();
// The permitted modules.
QStringList permittedModules();
// True when the module's name is among them exactly (capitals and accents as stored).
bool permitted(const QString& module);

// Tells whoever listens (the hub) that a session started or ended.
class Announcer : public QObject {
    Q_OBJECT
signals:
    void started(const rtx::session::Session& session);
    void ended();
};
Announcer& announcer();

} // namespace rtx::session
