#include "dispatch/searchgrid.h"

#include "session/kit/grids.h"
#include "store/formats.h"
#include "store/schema.h"

#include <QAbstractItemView>
#include <QStyledItemDelegate>

namespace rtx::ui {

namespace {

// Money as "R$ 1.234,56", on the right of its cell.
class CurrencyDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale&) const override {
        const QString text = value.toString();
        if (text.isEmpty()) return text;
        return formatCurrency(parseMoney(text).value_or(0));
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
    }
};

} // namespace

void currencyColumn(QAbstractItemView* grid, int column) {
    grid->setItemDelegateForColumn(column, new CurrencyDelegate(grid));
}

void showSearch(DBGrid* grid, const GridSearch& search) {
    QString filter;
    if (!search.where.isEmpty()) filter = QStringLiteral(" WHERE ") + search.where;
    QString order;
    if (!search.order.isEmpty()) order = QStringLiteral(" ORDER BY ") + search.order;
    grid->setSource(
        QStringLiteral("SELECT %1 FROM %2%3%4")
            .arg(search.columns.join(u", "), rtx::table(search.table).name, filter, order),
        search.params);
    grid->refresh();
}

} // namespace rtx::ui
