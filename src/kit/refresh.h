#pragma once
// Lists that follow their rows: a screen names the tables behind a list and how to fill it
// again, and refills it whenever the store announces that rows of one of them changed
// (rtx::changes(), after the writer's unit of work committed), whoever wrote them. A refill
// keeps what the user had marked and never touches a field being typed.
//
//     refreshOn(this, {fin::cashTable}, [this] { reloadDay(); });
//     refreshOn(this, {reg::lists::accountGroups}, [this] {
//         refillCombo(groupBox_, reg::listNames(Store::current(), reg::lists::accountGroups));
//     });

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class QComboBox;

namespace rtx::ui {

class MSFlexGrid;

// Runs refill (inside guarded: a store failure is shown, the screen stays) after rows of one
// of the tables changed, for as long as the screen lives.
void refreshOn(QWidget* screen, const QStringList& tables, std::function<void()> refill);

// Fills a list again with fill, keeping the row marked (the same number, or the last row
// when the list became shorter).
void keepingRow(MSFlexGrid* grid, const std::function<void()>& fill);

// New items for a combo, keeping what it shows: the item picked, or the text typed.
void refillCombo(QComboBox* box, const QStringList& items);

} // namespace rtx::ui
