#pragma once
// Announces that rows of a table changed, so that every screen that shows them, open or
// opened later, refreshes itself: no screen reaches into another to tell it.
//
//     connect(&rtx::changes(), &rtx::Changes::tableChanged, this,
//             [this](const QString& table) { if (table == u"grupos_clientes") fillLists(); });
//     rtx::changes().announce(u"grupos_clientes"_s); // after the unit of work committed

#include <QObject>
#include <QString>

namespace rtx {

class Changes : public QObject {
    Q_OBJECT
public:
    // Say it after the unit of work that wrote the rows has committed.
    void announce(const QString& table) { emit tableChanged(table); }

signals:
    void tableChanged(const QString& table);
};

// The one announcer of the process.
Changes& changes();

} // namespace rtx
