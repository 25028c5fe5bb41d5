#pragma once
// atendecli: "Busca cliente", the client lookup of the dispatch screen. The client is found
// by the start of his name; a double click (or Enter) picks him and closes, and the
// dispatch screen fills its client line, pickup or delivery from what the lookup gives back.

#include "dispatch/core/lookup.h"

#include <QDialog>
#include <optional>

class QLineEdit;

namespace rtx::ui {

class DBGrid;

class atendecli : public QDialog {
    Q_OBJECT
public:
    explicit atendecli(QWidget* parent = nullptr);

    // Opens the lookup modally and gives the client picked; none when it was closed
    // without a pick, or the client picked is no longer in the register.
    static std::optional<dispatch::ClientCard> lookUp(QWidget* parent);

    // The client of a row of the grid (-1: where there is no row): shows his remarks, if
    // any, and closes.
    void choose(int row);
    const std::optional<dispatch::ClientCard>& chosen() const { return chosen_; }

private:
    QLineEdit* nameSearch = nullptr; // X1
    DBGrid* grid = nullptr;          // DBGrid1
    std::optional<dispatch::ClientCard> chosen_;

    void search(const QString& typed);
};

} // namespace rtx::ui
