#pragma once
// SERVI2: "Tabela", the service price table. From the hub it keeps the list (Grava always
// adds a service, Exclui removes the one picked), and a service picked there is handed to
// the dispatch screen; from the dispatch screen it is a picker: saving and deleting are
// off, and a double click gives the service back and closes.

#include "dispatch/core/services.h"

#include <QDialog>
#include <QHash>
#include <QSet>
#include <optional>

class QLineEdit;

namespace rtx::ui {

class MaskEdBox;
class MSFlexGrid;

class SERVI2 : public QDialog {
    Q_OBJECT
public:
    enum class Use { Table, Picker };
    explicit SERVI2(QWidget* parent = nullptr, Use use = Use::Table);

    // Opens the table as a picker, modally; the service picked, none when it was closed
    // without a pick.
    static std::optional<dispatch::Service> pick(QWidget* parent);

    bool picker() const { return use_ == Use::Picker; }
    const std::optional<dispatch::Service>& picked() const { return picked_; }

    void onSave();   // Grava
    void onDelete(); // Exclui
    void onRowDoubleClick(int row);

signals:
    // A double click on a service, in either use.
    void servicePicked(const rtx::dispatch::Service& service);

private:
    Use use_;
    QLineEdit* descriptionField = nullptr;     // A1
    MaskEdBox* valueField = nullptr;           // A2
    QLineEdit* newCode = nullptr;              // COD: the code being made
    QLineEdit* pickedCode = nullptr;           // cd: the code of the row picked, for Exclui
    MSFlexGrid* grid = nullptr;                // Grid1
    QHash<QString, dispatch::Service> listed_; // the services of the list, by code
    QSet<QString> takenOut_;                   // picked out of the list, still in the table
    std::optional<dispatch::Service> picked_;

    void load();
    void addRow(const dispatch::Service& service);
    void relist();
};

} // namespace rtx::ui
