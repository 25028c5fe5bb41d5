#include "dispatch/searchgrid.h"

#include "session/kit/grids.h"
#include "store/formats.h"
#include "store/schema.h"
#include "store/store.h"

#include <QAbstractItemView>
#include <QLabel>
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

void showSearch(DBGrid* grid, QLabel* more, const GridSearch& search, int limit) {
    Store& store = Store::current();
    const QString table = rtx::table(search.table).name;
    QString filter;
    if (!search.where.isEmpty()) filter = QStringLiteral(" WHERE ") + search.where;
    QString order;
    if (!search.order.isEmpty()) order = QStringLiteral(" ORDER BY ") + search.order;
    grid->setSource(QStringLiteral("SELECT %1 FROM %2%3%4 LIMIT %5")
                        .arg(search.columns.join(u", "), table, filter, order)
                        .arg(limit),
                    search.params);
    grid->refresh();
    if (!more) return;
    // Whether the search goes on beyond the rows shown: one step past them in the index.
    const bool beyond = grid->recordCount() >= limit &&
                        store
                            .scalar(QStringLiteral("SELECT 1 FROM %1%2 LIMIT 1 OFFSET %3")
                                        .arg(table, filter)
                                        .arg(limit),
                                    search.params)
                            .isValid();
    // The limit with the thousands point, as the screens write whole numbers.
    const QString shown = formatMoney(qint64(limit) * 100).section(u',', 0, 0);
    more->setText(beyond ? QStringLiteral("Mostrando os primeiros %1 %2 encontrados: digite mais "
                                          "para refinar a busca.")
                               .arg(shown, search.noun)
                         : QString());
    more->setVisible(beyond);
}

} // namespace rtx::ui
