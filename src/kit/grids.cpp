#include "kit/grids.h"

#include "kit/dialogs.h"
#include "store/store.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "store/formats.h"
#include "store/schema.h"

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
    // A double click where there is no row (an empty list, below the last row) is a
    // double click on the current row, the header when there is none; Qt reports none.
    viewport()->installEventFilter(this);
}

bool MSFlexGrid::eventFilter(QObject* watched, QEvent* event) {
    if (watched == viewport() && event->type() == QEvent::MouseButtonDblClick &&
        !indexAt(static_cast<QMouseEvent*>(event)->position().toPoint()).isValid()) {
        emit rowDoubleClicked(row());
        return true;
    }
    return QTableWidget::eventFilter(watched, event);
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

// The rows of a DBGrid: the given columns of what the query has given so far, as values
// (cents, dates); the text is made only for the eye.
class DBGrid::Model : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;
    QList<Column> columns;
    QList<ColType> types; // of each column, from the table
    std::optional<PageQuery> query;
    QList<QVariantList> rows;
    QVariantList cursor; // after the last row read
    bool more = false;

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(rows.size());
    }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(columns.size());
    }
    QString display(int row, int col) const {
        const QVariant& v = rows.at(row).at(col);
        if (v.isNull()) return {};
        switch (types.value(col, ColType::Text)) {
        case ColType::Money:
            return columns.at(col).currency ? formatCurrency(v.toLongLong())
                                            : formatMoney(v.toLongLong());
        case ColType::Date: {
            const QDate d = v.typeId() == QMetaType::QDate
                                ? v.toDate()
                                : QDate::fromString(v.toString().left(10), Qt::ISODate);
            return d.isValid() ? formatDate(d) : v.toString();
        }
        default:
            return v.toString();
        }
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        switch (role) {
        case Qt::DisplayRole:
            return display(index.row(), index.column());
        case Qt::EditRole:
            return rows.at(index.row()).at(index.column());
        case Qt::TextAlignmentRole:
            if (types.value(index.column()) == ColType::Money)
                return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
            return {};
        default:
            return {};
        }
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
        return columns.value(section).header;
    }
    void setTypes(const QString& table) {
        types.clear();
        const TableDef* t = table.isEmpty() ? nullptr : findTable(table);
        for (const Column& c : columns) {
            const rtx::Column* def = t ? t->column(c.name) : nullptr;
            types << (def ? def->type : ColType::Text);
        }
    }
    // One page after the cursor; one row more than a page tells whether others follow.
    QList<QVariantList> read(bool fromStart, bool& hasMore) {
        Store& store = Store::current();
        QList<QVariantList> page;
        Recordset rs =
            store.page(*query, fromStart ? QVariantList() : cursor, DBGrid::pageSize() + 1);
        for (; !rs.eof() && page.size() < DBGrid::pageSize(); rs.moveNext()) {
            QVariantList row;
            for (const Column& c : columns)
                row << rs.value(c.name);
            page << row;
            cursor = store.pageCursor(*query, rs);
        }
        hasMore = !rs.eof();
        return page;
    }
    void reload() {
        bool hasMore = false;
        QList<QVariantList> page;
        if (query) page = read(true, hasMore);
        beginResetModel();
        rows = std::move(page);
        more = hasMore;
        endResetModel();
    }
    void appendPage() {
        if (!more) return;
        bool hasMore = false;
        const QList<QVariantList> page = read(false, hasMore);
        more = hasMore;
        if (page.isEmpty()) return;
        beginInsertRows({}, int(rows.size()), int(rows.size() + page.size() - 1));
        rows += page;
        endInsertRows();
    }
    void reset(const QList<Column>& newColumns) {
        beginResetModel();
        columns = newColumns;
        setTypes(query ? query->table : QString());
        rows.clear();
        cursor.clear();
        more = false;
        endResetModel();
    }
    bool canFetchMore(const QModelIndex& parent) const override {
        return !parent.isValid() && more;
    }
    void fetchMore(const QModelIndex& parent) override {
        if (parent.isValid()) return;
        try {
            appendPage();
        } catch (const StoreError& e) {
            more = false;
            showError(nullptr, e.text());
        }
    }
};

DBGrid::DBGrid(QWidget* parent) : QTableView(parent), model_(new Model(this)) {
    setModel(model_);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setAlternatingRowColors(true);
    setStyleSheet(QStringLiteral("alternate-background-color: rgb(0, 255, 255);")); // as stripeGrid
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setStretchLastSection(true);
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { emit recordActivated(index.row()); });
    // Qt reports no double click where there is no row: the viewport tells it.
    viewport()->installEventFilter(this);
}

bool DBGrid::eventFilter(QObject* watched, QEvent* event) {
    if (watched == viewport() && event->type() == QEvent::MouseButtonDblClick) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!indexAt(mouse->position().toPoint()).isValid()) {
            emit recordActivated(-1);
            return true;
        }
    }
    return QTableView::eventFilter(watched, event);
}

void DBGrid::setColumns(const QList<Column>& columns) {
    model_->reset(columns);
    for (int i = 0; i < columns.size(); ++i) {
        setColumnHidden(i, columns.at(i).width < 0);
        if (columns.at(i).width > 0) setColumnWidth(i, columns.at(i).width);
    }
}

void DBGrid::setQuery(const PageQuery& query) {
    PageQuery q = query;
    // The grid's columns are read whatever the caller listed.
    if (!q.columns.isEmpty())
        for (const Column& c : model_->columns)
            if (!q.columns.contains(c.name, Qt::CaseInsensitive)) q.columns << c.name;
    model_->query = q;
    model_->setTypes(q.table);
}

void DBGrid::refresh() {
    model_->reload();
    for (int c = 0; c < model_->columns.size(); ++c)
        if (model_->columns.at(c).width == 0) resizeColumnToContents(c);
    if (!model_->rows.isEmpty()) setCurrentRecord(0);
}

void DBGrid::requery() {
    if (!model_->query) return;
    const int marked = currentRecord();
    const int read = recordCount();
    const int scrolled = verticalScrollBar()->value();
    model_->reload();
    while (model_->more && model_->rows.size() < read)
        model_->appendPage();
    if (marked >= 0) setCurrentRecord(qMin(marked, recordCount() - 1));
    verticalScrollBar()->setValue(scrolled);
}

int DBGrid::recordCount() const {
    return int(model_->rows.size());
}

bool DBGrid::hasMore() const {
    return model_->more;
}

void DBGrid::fetchPage() {
    model_->appendPage();
}

int DBGrid::currentRecord() const {
    if (model_->rows.isEmpty()) return -1;
    return qMax(0, currentIndex().row());
}

void DBGrid::setCurrentRecord(int row) {
    if (row < 0 || row >= model_->rows.size()) return;
    int col = 0;
    while (col < model_->columns.size() - 1 && isColumnHidden(col))
        ++col;
    setCurrentIndex(model_->index(row, col));
}

int DBGrid::columnIndex(const QString& column) const {
    for (int c = 0; c < model_->columns.size(); ++c)
        if (model_->columns.at(c).name.compare(column, Qt::CaseInsensitive) == 0) return c;
    return -1;
}

QString DBGrid::text(int row, const QString& column) const {
    const int c = columnIndex(column);
    if (row < 0 || row >= model_->rows.size() || c < 0) return {};
    return model_->display(row, c);
}

QVariant DBGrid::value(int row, const QString& column) const {
    const int c = columnIndex(column);
    if (row < 0 || row >= model_->rows.size() || c < 0) return {};
    return model_->rows.at(row).at(c);
}

qint64 DBGrid::sum(const QString& column) const {
    const int c = columnIndex(column);
    qint64 total = 0;
    if (c < 0) return total;
    for (const QVariantList& row : std::as_const(model_->rows))
        total += row.at(c).toLongLong();
    return total;
}

void DBGrid::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && currentRecord() >= 0) {
        emit recordActivated(currentRecord());
        return;
    }
    QTableView::keyPressEvent(event);
}

} // namespace rtx::ui
