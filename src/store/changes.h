#pragma once
// Says that rows of a table changed, so that every screen that shows them, open or opened
// later, refreshes itself: no screen reaches into another to tell it.
//
// The store announces: every INSERT, UPDATE or DELETE on a table of the installation is
// noted by the unit of work that runs it and announced once that unit commits (nothing on a
// rollback). The announcements are queued to the event loop and coalesced per table: a
// listener runs once the handler that wrote gives the event loop back (when it returns, or
// while it waits on a modal question after its unit), never between its statements, and
// hears each table once however many rows the handler wrote.
//
//     connect(&rtx::changes(), &rtx::Changes::tableChanged, this,
//             [this](const QString& table) { if (table == u"grupos_clientes") fillLists(); });

#include <QObject>
#include <QString>
#include <QStringList>

namespace rtx {

class Changes : public QObject {
    Q_OBJECT
public:
    // Queues tableChanged(table) for the event loop, unless it is already waiting there.
    void announce(const QString& table);

signals:
    void tableChanged(const QString& table);

private:
    QStringList waiting_; // in the order first announced
    void deliver();
};

// The one announcer of the process.
Changes& changes();

} // namespace rtx
