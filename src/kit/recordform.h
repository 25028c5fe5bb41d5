#pragma once
// RecordForm: a screen that edits one record of a table at a time, built from a FormDefinition.
// The FormDefinition says which control shows which column and how its value is read (text, a date,
// cents, an option, the digits of a masked field), where each stands on which tab, the
// buttons beside the fields, the action bar with its menu twins, the tab order, and the
// search tab (a grid on a query, narrowed by boxes) or the list tab (every row). A
// RecordSource, given by the screen from its subsystem's core, loads a row by its key,
// checks a save, writes it, deletes it, walks to the first, previous, next or last row and
// gives the search's query. The form does the rest the same way for every screen:
//
//   - Grava: leaves the field being typed in, checks (the first problem is told and its
//     field gets the focus), writes in one unit of work, says "Operação realizada com
//     sucesso." and announces the table; a failure of the store is shown, and nothing
//     typed is lost.
//   - Novo: clears the fields (or sets them: today, the first option), forgets the keys,
//     refreshes the search and the list.
//   - Grava and Apaga first settle every money and date field, as leaving it would; one that
//     cannot be read is said so, gets the focus, and nothing is written.
//   - Apaga/Exclui: needs a record found first (or passes the source's checks), asks
//     "Confirma exclusão?" (or the screen's question), deletes in one unit of work, then Novo.
//   - First, previous, next, last; a double click (or Enter) on the search grid or the list
//     loads that row.
//
// The form keeps two keys: the one of the record reached by a search, the list or a walk
// ("found", what a delete deletes) and the one the record on the screen is saved under
// ("own": the code of a row loaded or saved; empty for a new row, which draws its code when
// it is first saved).
//
//     auto* form = new RecordForm(definition, parent);
//     form->setSource({.load = ..., .check = ..., .save = ...});
//     form->start();

#include "kit/grids.h"
#include "kit/recordform_binding.h"
#include "store/record.h"
#include "store/store.h"

#include <QColor>
#include <QDialog>
#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <functional>
#include <optional>

class QAbstractButton;
class QBoxLayout;
class QGridLayout;
class QLayout;
class QLineEdit;
class QMenuBar;
class QVBoxLayout;

namespace rtx::ui {

class SSTab;

// A box around options (radio buttons) on a tab.
struct FormGroup {
    QString name;
    QString caption;
    FormPlace place;
};

// A button beside a field or at a place of its own; the screen connects it.
struct FormButton {
    QString name;
    QString caption; // empty: a small picture button
    QString tooltip;
    QString glyph;  // the picture's sign
    QString beside; // the field it stands beside; empty: at place
    FormPlace place;
    bool takesFocus = false; // reached by Tab
};

// A button of the action bar, with its menu twin.
struct FormAction {
    enum class Role { Save, New, Delete, Close, First, Previous, Next, Last, Other };
    QString name;
    QString menuName; // empty: no menu twin
    QString caption;
    QString glyph;
    QColor colour;
    Role role = Role::Other;
    QKeySequence shortcut;
    bool apart = false; // set apart from the buttons before it
};

// The search tab: boxes over a grid; each box narrows the grid at every key.
struct FormSearch {
    struct Box {
        QString name;
        QString caption;
    };
    int tab = -1; // -1: none
    QList<Box> boxes;
    QList<DBGrid::Column> columns;
    QString keyColumn; // the column that loads the row
    int openTab = 0;   // the tab shown once a row is loaded
};

// The list tab: every row in a striped list, the key in the last column, and a hint.
struct FormList {
    int tab = -1; // -1: none
    QStringList headers;
    QList<int> widths;
    QString hint;
    int openTab = 0;
};

struct FormDefinition {
    enum class Bar {
        Tools,   // a strip of picture buttons over the tabs, with the heading at its end
        Buttons, // push buttons under the tabs
    };

    QString screen;  // the screen's objectName
    QString title;   // window title
    QString heading; // Tools: the big caption at the end of the strip
    QString table;   // announced after a save or a delete
    QStringList tabs;
    QList<FormField> fields;
    QList<FormGroup> groups;
    QList<FormButton> buttons;
    QList<FormAction> actions;
    Bar bar = Bar::Tools;
    QString labelPrefix = QStringLiteral("lbl"); // a field's label is this and its name
    QStringList tabOrder;      // controls in the order of Tab and Enter; the others follow
    QString firstField;        // the focus at start and after Novo; empty: left where it is
    bool newMovesFocus = true; // Novo shows the first tab and puts the focus on firstField
    bool focusOnTab = false;   // showing a tab puts the focus on its first field or its list
    FormSearch search;
    FormList list;
    QString searchFirst; // a delete with no record found; empty: it asks all the same, and
                         // the source's remove gets an empty key
    QString deleteQuestion = QStringLiteral("Confirma exclusão?");
    QString savedMessage = QStringLiteral("Operação realizada com sucesso.");
    QSize size; // the size the screen opens with; empty: its layout's

    // The push-button bar of the screens keyed by the engine's number: Grava, Novo, Apaga
    // and Volta (Command16, Command4, Command3, Command5) with their menu twins.
    static QList<FormAction> saveNewDeleteBack();
};

// What the form asks of the screen's core. Each function gets the store to work on; the
// form runs save and remove inside its unit of work, and every call inside guarded().
struct RecordSource {
    // The row of a key; nothing when it is gone.
    std::function<std::optional<Row>(Store&, const QVariant& key)> load;
    // The first problem of a save, in the order of the checks; nothing when there is none.
    std::function<std::optional<Problem>(const Row&)> check;
    // Asked once the checks have passed, before the unit of work that saves: the questions
    // of a save (the source keeps the answers for its save). False stops the save.
    std::function<bool(QWidget* screen, const Row&)> confirm;
    // Writes the row; own is the key it was loaded or last saved under (null for a new
    // row). Gives the key it was saved under.
    std::function<QVariant(Store&, const Row&, const QVariant& own)> save;
    // The first problem that stops a delete, before the question; nothing when there is
    // none. Unset: a delete needs no check.
    std::function<std::optional<Problem>(const Row&)> checkRemove;
    // Deletes the record found (the row on the screen given for what else goes with it).
    std::function<void(Store&, const QVariant& found, const Row&)> remove;
    // The key to go to from the one found; null or empty: nothing changes.
    WalkFrom walk;
    // The search grid's rows for a box (-1: all rows) and what was typed in it.
    std::function<PageQuery(const Store&, int box, const QString& typed)> search;
    // The list tab's rows, their cells in the order of the headers, the key last.
    std::function<QList<QStringList>(Store&)> list;
    // The column of a loaded row that holds its own key; empty: the form keeps none.
    QString keyColumn;
};

class RecordForm : public QDialog {
    Q_OBJECT
public:
    explicit RecordForm(const FormDefinition& definition, QWidget* parent = nullptr);
    ~RecordForm() override;

    void setSource(const RecordSource& source);
    // Sets the fields as Novo does, fills the search grid and the list, puts the focus on the
    // first field. Called once, at the end of the screen's constructor.
    void start();

    // Controls by name (case-blind for fields).
    QWidget* field(const QString& name) const;
    QAbstractButton* button(const QString& name) const;
    SSTab* tabs() const { return tabs_; }
    // A tab's page; a tab with no fields has no layout: the screen fills it.
    QWidget* page(int tab) const;
    // The grid a tab's fields stand in, for a screen that adds its own controls under them.
    // A tab without fields has none: MissingControl (named.h).
    QGridLayout* fieldGrid(int tab) const;
    DBGrid* searchGrid() const { return searchGrid_; }
    // Where the screen adds what stands under the tabs (over a bar of push buttons).
    QVBoxLayout* foot() const { return foot_; }

    // The record on the screen, and a row shown on it (columns the row lacks leave their
    // fields as they are).
    Row row() const;
    void showRow(const Row& row);
    QVariant value(const QString& name) const;
    void setValue(const QString& name, const QVariant& value);

    QVariant foundKey() const { return found_; }
    QVariant ownKey() const { return own_; }
    void setFoundKey(const QVariant& key);

    // The actions, as their buttons run them.
    bool save();
    void newRecord();
    // True once the record is deleted and the screen cleared.
    bool remove();
    void walk(Walk direction);
    // Shows the row of a key; false (nothing changed) when it is gone or the store failed.
    bool load(const QVariant& key);
    // The key becomes the found one (none for an empty key), and its row is shown. False
    // when the store failed (the failure was shown and the found key is what it was).
    bool loadFound(const QVariant& key);
    // A row picked in the search grid or the list (an empty key for a double click where
    // the grid has no row): loads it and shows the tab.
    virtual void openFound(const QVariant& key, int tab);

    // The search grid and the list are read again, where the user stands in them, when rows
    // of these tables change; the form's own table is followed from the start. The fields
    // are left as they are.
    void followRowsOf(const QStringList& tables);
    // The search grid on all rows (boxes emptied), the list refilled.
    void refreshSearch();
    void refreshList();
    // What leaving each field does, done now for an action reached without leaving them.
    // False when an amount or a date cannot be read: that was said, and its field has the
    // focus.
    bool settleFields();

    // A list shows its columns whole (the last one stretched) and at least so many rows.
    static void fitList(MSFlexGrid* grid, int rows);

signals:
    // A field was entered or left by the user (after the form's own tidying).
    void fieldEntered(const QString& name);
    void fieldLeft(const QString& name);
    // A row was shown by load(); the record was saved under a key; Novo cleared the screen.
    void loaded(const Row& row);
    void saved(const QVariant& key);
    void cleared();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // Puts the focus on the field of a column, on its tab.
    void focusColumn(const QString& column);
    const FormField* fieldDefinition(const QString& name) const;

private:
    FormDefinition definition_;
    RecordSource source_;
    SSTab* tabs_ = nullptr;
    QVBoxLayout* foot_ = nullptr;
    QList<QGridLayout*> fieldGrids_; // by tab; nullptr for a tab without fields
    DBGrid* searchGrid_ = nullptr;
    MSFlexGrid* listGrid_ = nullptr;
    QList<QLineEdit*> searchBoxes_;
    RecordBinding binding_;
    QHash<QString, QAbstractButton*> buttons_; // by name
    QLineEdit* cd_ = nullptr;                  // hidden: the found key, as the old screens kept it
    QVariant found_;
    QVariant own_;

    void build();
    void buildBar(QBoxLayout* into, QMenuBar* menu);
    void buildPages();
    void buildSearch(QWidget* page);
    void buildList(QWidget* page);
    void buildTabOrder();
    QWidget* makeField(const FormField& f, QWidget* parent);
    QAbstractButton* makeButton(const FormButton& b, QWidget* parent);
    void runAction(FormAction::Role role);
    void resetField(const FormField& f);
    // False when the field's amount or date cannot be read (said, and the focus kept there).
    // Without settle, only the tidying: the action the user went to settles the field.
    bool leaveField(const FormField& f, bool settle = true);
    void search(int box, const QString& typed);
    // The row of a key shown: true when shown, false when gone, nothing when the store
    // failed.
    std::optional<bool> tryLoad(const QVariant& key);
    // tryLoad with the found key: kept when the row is shown, back to the one before when
    // not.
    std::optional<bool> showFound(const QVariant& key);
    void focusTab(int index);
};

} // namespace rtx::ui
