#pragma once
// A search grid bound to a statement that reads its rows a page at a time, as the user
// scrolls: a keystroke in a search box costs one page, however many rows the statement
// matches. Same use as the kit's DBGrid:
//
//     grid->setColumns({{u"CODIGO"_s, u"Código"_s, 70}, {u"C5"_s, u"Nome"_s, 300}});
//     grid->setSource(u"SELECT * FROM clientes WHERE "_s + Store::prefixClause(u"C5"_s) +
//                         u" ORDER BY C5"_s,
//                     Store::prefixParams(typed));
//     rtx::ui::guarded(this, [&] { grid->refresh(); });
//
// The statement must end with its ORDER BY and have no LIMIT: the grid adds
// "LIMIT ? OFFSET ?" with its own values after the caller's.

#include <QList>
#include <QString>
#include <QTableView>
#include <QVariant>

namespace rtx::ui {

class PagedGrid : public QTableView {
    Q_OBJECT
public:
    struct Column {
        QString name;   // column of the statement's rows
        QString header; // heading shown
        int width = 0;  // pixels; 0 or less: the header's default
    };

    explicit PagedGrid(QWidget* parent = nullptr);

    void setColumns(const QList<Column>& columns);
    void setSource(const QString& sql, const QVariantList& params = {});
    QString source() const;
    QVariantList sourceParams() const;
    // Runs the statement on the current store and shows its first page, marking the first
    // row. Throws rtx::StoreError (the grid then stays as it was).
    void refresh();
    void clearRows();

    // Rows read so far, and whether the statement has more to give.
    int recordCount() const;
    bool hasMore() const;
    // Reads the next page now (what scrolling to the end does). Throws rtx::StoreError.
    void fetchPage();

    static int pageSize() { return 100; }

    // The marked row (0-based), -1 when the grid is empty.
    int currentRecord() const;
    void setCurrentRecord(int row);
    QString text(int row, const QString& column) const;
    QString currentText(const QString& column) const { return text(currentRecord(), column); }

signals:
    // A double click (or Enter) on a row.
    void recordActivated(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Model;
    Model* model_;
};

} // namespace rtx::ui
