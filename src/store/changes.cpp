#include "changes.h"

#include <utility>

namespace rtx {

void Changes::announce(const QString& table) {
    if (waiting_.contains(table)) return;
    waiting_ << table;
    if (waiting_.size() == 1)
        QMetaObject::invokeMethod(this, &Changes::deliver, Qt::QueuedConnection);
}

void Changes::deliver() {
    // A listener that writes in turn queues a new delivery of its own.
    const QStringList tables = std::exchange(waiting_, {});
    for (const QString& table : tables)
        emit tableChanged(table);
}

Changes& changes() {
    static Changes instance;
    return instance;
}

} // namespace rtx
