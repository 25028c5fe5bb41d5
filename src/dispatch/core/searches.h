#pragma once
// The searches of the dispatch screen's second tab and of the client lookup, as paged
// queries for their grids: each box searches by the start of one column, blind to case
// and accents, the period by the dispatch's date.

#include "store/store.h"

#include <QDate>
#include <QString>
#include <QStringList>

namespace rtx::dispatch {

// The columns of the dispatch search grid, in the grid's order.
QStringList searchColumns();

// The search boxes: by number, status, courier and client.
enum class SearchBy { Number, Status, Courier, Client };

// Dispatches whose column starts with the typed text, in that column's order.
PageQuery searchBy(const Store& store, SearchBy box, const QString& typed);
// Dispatches of a period, both days included, by date.
PageQuery searchPeriod(const QDate& from, const QDate& to);
// One courier's dispatches of a period (his name whole, blind to case), by date.
PageQuery searchCourierPeriod(const Store& store, const QString& courier, const QDate& from,
                              const QDate& to);
// Every dispatch by number.
PageQuery searchAll();
// The dispatches of one day, by number (the list after Novo).
PageQuery searchDay(const QDate& day);
// How many dispatches a period holds. Throws StoreError.
qint64 countPeriod(Store& store, const QDate& from, const QDate& to);
qint64 countCourierPeriod(Store& store, const QString& courier, const QDate& from, const QDate& to);

// The columns of the client lookup's grid, in order.
QStringList clientColumns();
// Clients whose name starts with the typed text, by name.
PageQuery clientsByName(const Store& store, const QString& typed);

} // namespace rtx::dispatch
