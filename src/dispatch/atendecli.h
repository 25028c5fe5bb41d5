#pragma once
// atendecli: "Busca cliente", the client lookup of the dispatch screen. The client is found
// by the start of his name; a double click fills the dispatch screen according to the
// button that opened the lookup (cd1): the client line, the pickup or the delivery.

#include <QDialog>
#include <QPointer>

class QLabel;
class QLineEdit;

namespace rtx::ui {

class Atendimento;
class DBGrid;

class atendecli : public QDialog {
    Q_OBJECT
public:
    atendecli(Atendimento* target, QWidget* parent = nullptr);

    // "1" the client line, "2" the pickup, "3" the delivery.
    void setCaller(const QString& caller);
    // Fills the dispatch screen from the client of a row of the grid and closes.
    void choose(int row);

private:
    QPointer<Atendimento> target_;
    QLineEdit* X1 = nullptr;
    QLineEdit* cd1 = nullptr;
    DBGrid* DBGrid1 = nullptr;

    void search(const QString& typed);
};

} // namespace rtx::ui
