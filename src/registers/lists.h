#pragma once
// The small lists of names that other screens offer in their combos: regions of clients,
// groups of accounts, financial types and forms of payment. One dialog, set up four times;
// the names and their rules are the core's (registers/core/lists.h). A change of a list is
// announced by the store (rtx::changes()), so that every screen that offers it refills its
// combo, open or opened later.
//
//     cadtipo list(this);
//     list.exec();

#include <QDialog>
#include <QObject>
#include <QString>
#include <QStringList>

class QLineEdit;
class QPushButton;

namespace rtx::ui {

class MSFlexGrid;

struct ListConfig {
    QString screen;  // the dialog's name
    QString title;   // window title
    QString caption; // caption of the name field
    QString table;   // the list's table
    // Opening the dialog offers this list's names to the client screens, which show them
    // behind their regions (ListOffers).
    bool offeredToClients = false;
};

// The lists a dialog of accounts, types or forms of payment offers to the client screens as
// it opens: the client screens open show the list's names behind their regions, and when
// none is open, the next one to open does, until it is closed.
class ListOffers : public QObject {
    Q_OBJECT
public:
    static ListOffers& instance();
    void offer(const QString& table);
    // The lists offered since the last take, which a client screen takes as its own.
    QStringList take();

signals:
    void offered(const QString& table);

private:
    QStringList pending_;
};

class ListDialog : public QDialog {
    Q_OBJECT
public:
    ListDialog(const ListConfig& config, QWidget* parent = nullptr);

    // "< Grava": adds the typed name in capitals, unless the list has it already (in any
    // capitals).
    void add();
    // The double click: asks, then deletes the name of the grid's current row.
    void removeCurrent();

private:
    ListConfig config_;
    QLineEdit* nameBox = nullptr;      // A1
    QPushButton* saveButton = nullptr; // Command10
    MSFlexGrid* names = nullptr;       // Grid1

    void fill();
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
