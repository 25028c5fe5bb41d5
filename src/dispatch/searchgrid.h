#pragma once
// The first rows of a search in a data-bound grid. A search as the user types may match a
// large part of a big table; the grid then shows the first rows in the search's order and
// a note asks for more letters, so that each key press stays instant.

#include <QString>
#include <QStringList>
#include <QVariantList>

class QAbstractItemView;
class QLabel;

namespace rtx::ui {

class DBGrid;

struct GridSearch {
    QString table;       // table name
    QStringList columns; // the grid's columns, in the order given to DBGrid::setColumns
    QString noun;        // what the rows are, for the note ("atendimentos", "clientes")
    QString where;       // condition with '?' places; empty for all rows
    QVariantList params; // its values
    QString order;       // ORDER BY text; empty for none
};

// Rows shown at most by one search.
constexpr int kSearchLimit = 1000;

// Sets the grid's statement (the columns the grid shows) and refreshes it; the note, when
// given, is shown only when more rows match than the grid holds. Throws StoreError: call
// it inside guarded().
void showSearch(DBGrid* grid, QLabel* more, const GridSearch& search, int limit = kSearchLimit);

// Shows a money column of a grid in the Currency form, "R$ 1.234,56", aligned right.
void currencyColumn(QAbstractItemView* grid, int column);

} // namespace rtx::ui
