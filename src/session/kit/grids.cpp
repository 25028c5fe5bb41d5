#include "session/kit/grids.h"

#include "store/store.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace rtx::ui {

namespace {

void listLook(QTableWidget* table) {
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

bool isEnter(const QKeyEvent* event) {
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}

} // namespace

// --- MSFlexGrid ---------------------------------------------------------------------------

MSFlexGrid::MSFlexGrid(QWidget* parent) : QTableWidget(parent) {
    listLook(this);
    connect(this, &QTableWidget::cellDoubleClicked, this, [this](int r, int) {
        if (r + 1 >= fixedRows_) emit rowDoubleClicked(r + 1);
    });
}

void MSFlexGrid::setHeaders(const QStringList& headers) {
    setColumnCount(int(headers.size()));
    setHorizontalHeaderLabels(headers);
}

void MSFlexGrid::setColWidth(int col, int width) {
    setColumnHidden(col, width <= 0);
    if (width > 0) setColumnWidth(col, width);
}

void MSFlexGrid::setFixedRows(int rows) {
    fixedRows_ = qMax(1, rows);
    if (rowCount() < fixedRows_ - 1) setRowCount(fixedRows_ - 1);
    // Fixed rows under the header: grey and not selectable.
    for (int r = 1; r < fixedRows_; ++r) {
        for (int c = 0; c < columnCount(); ++c) {
            QTableWidgetItem* cell = item(r - 1, c);
            if (!cell) setItem(r - 1, c, cell = new QTableWidgetItem);
            cell->setFlags(Qt::ItemIsEnabled);
            cell->setBackground(palette().color(QPalette::Button));
        }
    }
}

void MSFlexGrid::setRows(int rows) {
    setRowCount(qMax(rows, fixedRows_) - 1);
}

void MSFlexGrid::addItem(const QString& tabSeparated) {
    const QStringList cells = tabSeparated.split(u'\t');
    if (columnCount() == 0) setColumnCount(int(cells.size()));
    const int r = rowCount();
    insertRow(r);
    for (int c = 0; c < columnCount(); ++c)
        setItem(r, c, new QTableWidgetItem(cells.value(c)));
}

QString MSFlexGrid::textMatrix(int row, int col) const {
    if (row == 0) {
        const QTableWidgetItem* header = horizontalHeaderItem(col);
        return header ? header->text() : QString();
    }
    const QTableWidgetItem* cell = item(row - 1, col);
    return cell ? cell->text() : QString();
}

void MSFlexGrid::setTextMatrix(int row, int col, const QString& text) {
    if (row == 0) {
        setHorizontalHeaderItem(col, new QTableWidgetItem(text));
        return;
    }
    QTableWidgetItem* cell = item(row - 1, col);
    if (cell)
        cell->setText(text);
    else
        setItem(row - 1, col, new QTableWidgetItem(text));
}

int MSFlexGrid::row() const {
    return currentRow() + 1;
}

void MSFlexGrid::setRow(int row) {
    if (row >= 1 && row <= rowCount()) setCurrentCell(row - 1, qMax(0, currentColumn()));
}

QColor MSFlexGrid::cellBackColor(int row, int col) const {
    const QTableWidgetItem* cell = row > 0 ? item(row - 1, col) : nullptr;
    if (!cell || cell->background().style() == Qt::NoBrush) return backColor();
    return cell->background().color();
}

void MSFlexGrid::setCellBackColor(int row, int col, const QColor& colour) {
    if (row < 1) return;
    QTableWidgetItem* cell = item(row - 1, col);
    if (!cell) setItem(row - 1, col, cell = new QTableWidgetItem);
    cell->setBackground(colour);
}

void MSFlexGrid::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && row() >= fixedRows_) {
        emit rowDoubleClicked(row());
        return;
    }
    QTableWidget::keyPressEvent(event);
}

void stripeGrid(MSFlexGrid* grid, const QColor& colour) {
    if (!grid || grid->rows() <= grid->fixedRows()) return;
    const int p = grid->fixedRows() % 2;
    grid->setUpdatesEnabled(false);
    for (int i = grid->fixedRows(); i < grid->rows(); ++i)
        for (int j = 0; j < grid->cols(); ++j)
            grid->setCellBackColor(i, j, (i & 1) != p ? colour : grid->backColor());
    grid->setUpdatesEnabled(true);
}

// --- DBGrid -------------------------------------------------------------------------------

DBGrid::DBGrid(QWidget* parent) : QTableWidget(parent) {
    listLook(this);
    connect(this, &QTableWidget::cellDoubleClicked, this,
            [this](int r, int) { emit recordActivated(r); });
}

void DBGrid::setColumns(const QList<Column>& columns) {
    columns_ = columns;
    clearRows();
    setColumnCount(int(columns.size()));
    QStringList headers;
    for (const Column& c : columns)
        headers << c.header;
    setHorizontalHeaderLabels(headers);
    for (int i = 0; i < columns.size(); ++i) {
        setColumnHidden(i, columns.at(i).width < 0);
        if (columns.at(i).width > 0) setColumnWidth(i, columns.at(i).width);
    }
}

void DBGrid::setSource(const QString& sql, const QVariantList& params) {
    sql_ = sql;
    params_ = params;
}

void DBGrid::refresh() {
    if (sql_.isEmpty()) {
        clearRows();
        return;
    }
    // Read everything first: a failing statement leaves the grid as it was.
    Recordset rs = Store::current().open(sql_, params_);
    QList<QStringList> rows;
    for (; !rs.eof(); rs.moveNext()) {
        QStringList row;
        for (const Column& c : columns_)
            row << rs.text(c.name);
        rows << row;
    }
    setUpdatesEnabled(false);
    texts_ = rows;
    setRowCount(int(rows.size()));
    for (int r = 0; r < rows.size(); ++r)
        for (int c = 0; c < columns_.size(); ++c)
            setItem(r, c, new QTableWidgetItem(rows.at(r).at(c)));
    for (int c = 0; c < columns_.size(); ++c)
        if (columns_.at(c).width == 0) resizeColumnToContents(c);
    if (!rows.isEmpty()) setCurrentRecord(0);
    setUpdatesEnabled(true);
}

void DBGrid::clearRows() {
    texts_.clear();
    setRowCount(0);
}

int DBGrid::currentRecord() const {
    return rowCount() == 0 ? -1 : qMax(0, currentRow());
}

void DBGrid::setCurrentRecord(int row) {
    if (row < 0 || row >= rowCount()) return;
    int col = 0;
    while (col < columnCount() - 1 && isColumnHidden(col))
        ++col;
    setCurrentCell(row, col);
}

int DBGrid::columnIndex(const QString& name) const {
    for (int i = 0; i < columns_.size(); ++i)
        if (columns_.at(i).name.compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

QString DBGrid::text(int row, const QString& column) const {
    const int c = columnIndex(column);
    if (row < 0 || row >= texts_.size() || c < 0) return {};
    return texts_.at(row).at(c);
}

void DBGrid::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && currentRecord() >= 0) {
        emit recordActivated(currentRecord());
        return;
    }
    QTableWidget::keyPressEvent(event);
}

} // namespace rtx::ui
