#include "kit/refresh.h"

#include "kit/dialogs.h"
#include "kit/grids.h"
#include "store/changes.h"

#include <QComboBox>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QWidget>

namespace rtx::ui {

void refreshOn(QWidget* screen, const QStringList& tables, std::function<void()> refill) {
    QObject::connect(&changes(), &Changes::tableChanged, screen,
                     [screen, tables, refill = std::move(refill)](const QString& table) {
                         if (!tables.contains(table, Qt::CaseInsensitive)) return;
                         guarded(screen, refill);
                     });
}

void keepingRow(MSFlexGrid* grid, const std::function<void()>& fill) {
    const int marked = grid->currentRow();
    const int column = qMax(0, grid->currentColumn());
    const int scrolled = grid->verticalScrollBar()->value();
    fill();
    if (marked >= 0 && grid->rowCount() > 0)
        grid->setCurrentCell(qMin(marked, grid->rowCount() - 1), column);
    grid->verticalScrollBar()->setValue(scrolled);
}

void refillCombo(QComboBox* box, const QStringList& items) {
    const QSignalBlocker quiet(box);
    const QString shown = box->currentText();
    const bool picked = box->currentIndex() >= 0;
    box->clear();
    box->addItems(items);
    const int again = picked ? box->findText(shown) : -1;
    box->setCurrentIndex(again);
    if (again < 0 && box->isEditable()) box->setEditText(shown);
}

} // namespace rtx::ui
