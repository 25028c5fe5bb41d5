#pragma once
// A search in a data-bound grid: the grid's columns of one table, filtered and ordered.
// The grid reads the rows a page at a time, so each key press stays instant however many
// rows match.

#include <QString>
#include <QStringList>
#include <QVariantList>

class QAbstractItemView;

namespace rtx::ui {

class DBGrid;

struct GridSearch {
    QString table;       // table name
    QStringList columns; // the grid's columns, in the order given to DBGrid::setColumns
    QString where;       // condition with '?' places; empty for all rows
    QVariantList params; // its values
    QString order;       // ORDER BY text (a key, so that pages follow one another)
};

// Sets the grid's statement and refreshes it. Throws StoreError: call it inside guarded().
void showSearch(DBGrid* grid, const GridSearch& search);

// Shows a money column of a grid in the Currency form, "R$ 1.234,56", aligned right.
void currencyColumn(QAbstractItemView* grid, int column);

} // namespace rtx::ui
