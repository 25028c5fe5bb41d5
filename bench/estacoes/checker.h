#pragma once
// What must hold in the office's database after any number of stations worked on it at
// once, each rule a query through the store (nothing here goes through the cores, so a
// fault of theirs cannot hide itself), checked against what the stations reported saved.

#include "stationlog.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace rtx {
class Store;
}

namespace rtx::stations {

struct Verdict {
    QString name;       // the rule, as the output names it
    QStringList faults; // empty: it held
    bool held() const { return faults.isEmpty(); }
};

// Every rule, in order. Throws StoreError.
QList<Verdict> check(Store& store, const QList<Attempt>& attempts);

} // namespace rtx::stations
