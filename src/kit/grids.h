#pragma once
// Lists of the screens.
//
// MSFlexGrid: a read-only list filled by program. Row 0 is the header (the fixed row), so
// row numbers count the header as the old grid did: data rows start at fixedRows().
//
//     grid->setHeaders({u"Código"_s, u"Nome"_s, u"Tel."_s, u"cd"_s});
//     grid->setRows(1);                                  // empty the list
//     grid->addItem(code + u'\t' + name + u'\t' + tel + u'\t' + key);
//     rtx::ui::stripeGrid(grid);                         // after filling
//     connect(grid, &MSFlexGrid::rowDoubleClicked, this, [this](int row) {
//         load(grid->key(row));                          // key in the last column
//     });
//
// DBGrid: the search grid bound to a query of one table (the old Data1 + DBGrid1 pair):
// give it the columns to show, the query (a core function builds it), refresh, and read the
// marked row.
//
//     grid->setColumns({{u"C5"_s, u"NOME"_s, 250}, {u"CODIGO"_s, u"CÓDIGO"_s, 80}});
//     grid->setQuery(registers::clientsByName(typed));
//     rtx::ui::guarded(this, [&] { grid->refresh(); });
//     QString code = grid->currentText(u"CODIGO"_s);

#include "store/store.h"

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTableView>
#include <QTableWidget>
#include <QVariant>

namespace rtx::ui {

class MSFlexGrid : public QTableWidget {
    Q_OBJECT
public:
    explicit MSFlexGrid(QWidget* parent = nullptr);

    // Header texts; they also set the number of columns.
    void setHeaders(const QStringList& headers);
    void setColWidth(int col, int width);

    // Fixed rows: the header, plus fixed rows under it when more than 1 (shown grey).
    int fixedRows() const { return fixedRows_; }
    void setFixedRows(int rows);

    // Rows counted with the fixed rows. setRows(1) leaves the header alone: an empty list.
    int rows() const { return rowCount() + 1; }
    void setRows(int rows);
    int cols() const { return columnCount(); }

    // Adds a row: its cells separated by tabs.
    void addItem(const QString& tabSeparated);
    // Cell text; row 0 gives the header.
    QString textMatrix(int row, int col) const;
    void setTextMatrix(int row, int col, const QString& text);
    // The last column of a row, where lists keep the record's key.
    QString key(int row) const { return textMatrix(row, cols() - 1); }

    // Current (marked) row in the grid's numbering; 0 when none.
    int row() const;
    void setRow(int row);

    // Background of a cell (for the striping); the grid's own colour is white.
    QColor cellBackColor(int row, int col) const;
    void setCellBackColor(int row, int col, const QColor& colour);
    QColor backColor() const { return QColor(Qt::white); }

signals:
    // A double click (or Enter) on a data row, in the grid's numbering. A double click
    // where there is no row gives the current row: 0, the header, in an empty list.
    void rowDoubleClicked(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int fixedRows_ = 1;
};

// The colour of the stripes (red 0, green 255, blue 255).
inline QColor stripeColour() {
    return QColor(0, 255, 255);
}

// Colours the data rows whose number's low bit differs from fixedRows % 2; the others get
// the grid's own colour. With one fixed row the first data row stays plain and the second
// is coloured. A grid with no data rows is left as it is.
void stripeGrid(MSFlexGrid* grid, const QColor& colour = stripeColour());

class DBGrid : public QTableView {
    Q_OBJECT
public:
    struct Column {
        QString name;          // column of the statement's rows
        QString header;        // heading shown
        int width = 0;         // pixels; 0: fit the contents; negative: read but not shown
        bool currency = false; // money shown as "R$ 1.234,56" (else "1.234,56")
    };

    explicit DBGrid(QWidget* parent = nullptr);

    void setColumns(const QList<Column>& columns);
    // The rows behind the grid: the store reads them a page at a time, by key, as the
    // user scrolls, so a search costs one page however many rows it matches. Columns of
    // the table keep their values: money in cents, dates as dates.
    void setQuery(const rtx::PageQuery& query);
    // Runs the statement on the current store and shows its first page, marking the first
    // row. Throws rtx::StoreError (the grid then stays as it was): call it inside guarded.
    void refresh();
    // Reads the same statement again, as far as it had been read, keeping the row marked
    // and the scrolling: the grid after others changed its rows. Nothing without a query.
    void requery();

    // Rows read so far, and whether the statement has more to give.
    int recordCount() const;
    bool hasMore() const;
    // Reads the next page now (what scrolling to the end does). Throws rtx::StoreError.
    void fetchPage();
    static int pageSize() { return 100; }

    // The marked row (0-based), -1 when the grid is empty.
    int currentRecord() const;
    void setCurrentRecord(int row);
    // Display text of a column in a row (any column given to setColumns).
    QString text(int row, const QString& column) const;
    QString currentText(const QString& column) const { return text(currentRecord(), column); }
    // The value of a column in a row: cents for money, a date for a date.
    QVariant value(int row, const QString& column) const;
    // The sum of a money or number column over the rows read.
    qint64 sum(const QString& column) const;

signals:
    // A double click (or Enter) on a row; -1 for a double click where there is no row.
    void recordActivated(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Model;
    Model* model_;
    int columnIndex(const QString& column) const;
};

} // namespace rtx::ui
