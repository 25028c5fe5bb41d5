#pragma once
// The small lists of names that other screens offer in their combos: regions of clients,
// groups of accounts, financial types and forms of payment. One dialog, set up four times;
// each list is a table with the one column A1, the names in capitals.
//
//     cadtipo list(this);
//     list.exec();

#include <QDialog>
#include <QString>

class QLineEdit;
class QPushButton;

namespace rtx::ui {

class MSFlexGrid;

struct ListConfig {
    // What a list does to the region combo (C34) of an open client screen.
    enum class Regions {
        Replace, // refilled with this list at every change (the list of regions itself)
        Append,  // this list's names added behind its own when the dialog opens
        Nothing,
    };
    QString screen;  // the dialog's name
    QString title;   // window title
    QString caption; // caption of the name field
    QString table;   // the list's table
    Regions regions = Regions::Nothing;
};

class ListDialog : public QDialog {
    Q_OBJECT
public:
    ListDialog(const ListConfig& config, QWidget* parent = nullptr);

    // "< Grava": adds the typed name in capitals, unless the list has it already (in any
    // capitals or accents).
    void add();
    // The double click: asks, then deletes the name of the grid's current row.
    void removeCurrent();

    // The names of a list, in alphabetical order.
    static QStringList names(const QString& table);

private:
    ListConfig config_;
    QLineEdit* A1 = nullptr;
    QPushButton* Command10 = nullptr;
    MSFlexGrid* Grid1 = nullptr;

    // Refills the grid; after an add or a delete (changed) also the regions of the client
    // screen, for the list of regions.
    void fill(bool changed = false);
};

class cadgrupo : public ListDialog {
    Q_OBJECT
public:
    explicit cadgrupo(QWidget* parent = nullptr);
};

class cadcontas : public ListDialog {
    Q_OBJECT
public:
    explicit cadcontas(QWidget* parent = nullptr);
};

class cadtipo : public ListDialog {
    Q_OBJECT
public:
    explicit cadtipo(QWidget* parent = nullptr);
};

class cadforma : public ListDialog {
    Q_OBJECT
public:
    explicit cadforma(QWidget* parent = nullptr);
};

} // namespace rtx::ui
