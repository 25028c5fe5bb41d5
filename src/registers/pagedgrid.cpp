#include "registers/pagedgrid.h"

#include "session/kit/dialogs.h"
#include "store/store.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>

namespace rtx::ui {

class PagedGrid::Model : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    QList<Column> columns;
    QString sql;
    QVariantList params;
    QList<QStringList> rows;
    bool more = false;

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(rows.size());
    }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(columns.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole || !index.isValid()) return {};
        return rows.at(index.row()).at(index.column());
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
        return columns.value(section).header;
    }

    // One page from a row on; one row more than a page tells whether others follow.
    QList<QStringList> read(qsizetype offset, bool& hasMore) const {
        QVariantList values = params;
        values << PagedGrid::pageSize() + 1 << offset;
        Recordset rs = Store::current().open(sql + QStringLiteral(" LIMIT ? OFFSET ?"), values);
        QList<QStringList> page;
        for (; !rs.eof() && page.size() < PagedGrid::pageSize(); rs.moveNext()) {
            QStringList row;
            for (const Column& c : columns)
                row << rs.text(c.name);
            page << row;
        }
        hasMore = !rs.eof();
        return page;
    }

    void reload() {
        bool hasMore = false;
        QList<QStringList> page = sql.isEmpty() ? QList<QStringList>() : read(0, hasMore);
        beginResetModel();
        rows = std::move(page);
        more = hasMore;
        endResetModel();
    }

    void appendPage() {
        if (!more) return;
        bool hasMore = false;
        const QList<QStringList> page = read(rows.size(), hasMore);
        more = hasMore;
        if (page.isEmpty()) return;
        beginInsertRows({}, int(rows.size()), int(rows.size() + page.size() - 1));
        rows += page;
        endInsertRows();
    }

    void reset(const QList<Column>* newColumns) {
        beginResetModel();
        if (newColumns) columns = *newColumns;
        rows.clear();
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

PagedGrid::PagedGrid(QWidget* parent) : QTableView(parent), model_(new Model(this)) {
    setModel(model_);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setAlternatingRowColors(true);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setStretchLastSection(true);
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { emit recordActivated(index.row()); });
}

void PagedGrid::setColumns(const QList<Column>& columns) {
    model_->reset(&columns);
    for (int i = 0; i < columns.size(); ++i)
        if (columns.at(i).width > 0) setColumnWidth(i, columns.at(i).width);
}

void PagedGrid::setSource(const QString& sql, const QVariantList& params) {
    model_->sql = sql;
    model_->params = params;
}

QString PagedGrid::source() const {
    return model_->sql;
}

QVariantList PagedGrid::sourceParams() const {
    return model_->params;
}

void PagedGrid::refresh() {
    model_->reload();
    if (!model_->rows.isEmpty()) setCurrentRecord(0);
}

void PagedGrid::clearRows() {
    model_->reset(nullptr);
}

int PagedGrid::recordCount() const {
    return int(model_->rows.size());
}

bool PagedGrid::hasMore() const {
    return model_->more;
}

void PagedGrid::fetchPage() {
    model_->appendPage();
}

int PagedGrid::currentRecord() const {
    if (model_->rows.isEmpty()) return -1;
    return qMax(0, currentIndex().row());
}

void PagedGrid::setCurrentRecord(int row) {
    if (row < 0 || row >= model_->rows.size()) return;
    setCurrentIndex(model_->index(row, 0));
}

QString PagedGrid::text(int row, const QString& column) const {
    if (row < 0 || row >= model_->rows.size()) return {};
    for (int c = 0; c < model_->columns.size(); ++c)
        if (model_->columns.at(c).name.compare(column, Qt::CaseInsensitive) == 0)
            return model_->rows.at(row).at(c);
    return {};
}

void PagedGrid::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentRecord() >= 0) {
        emit recordActivated(currentRecord());
        return;
    }
    QTableView::keyPressEvent(event);
}

} // namespace rtx::ui
