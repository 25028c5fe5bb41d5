#pragma once
// CdRegister: the frame of the register screens whose rows carry the engine's number `cd`
// as their key (employees, company branches). It builds what those screens share: the
// tab folder SSTab1 with tabs of labelled fields, the list tab with Grid1 and its hint, the
// hidden `cd`, the action bar Grava / Novo / Apaga / Volta (Command16, Command4, Command3,
// Command5) and its menu twins (sdfds, sdfsdfsd, ghfghfghg, dfgdfgdf). Each field's column
// is its name in small letters (X1 -> x1, E7 -> e7).

#include <QDialog>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

class QLineEdit;
class QMenuBar;
class QPushButton;

namespace rtx {
class Recordset;
}

namespace rtx::ui {

class MSFlexGrid;
class SSTab;

// One labelled field of a form tab.
struct FieldSpec {
    QString name;  // objectName; the column is the same in small letters
    QString label; // caption, dot leaders included
    std::optional<QString> mask = std::nullopt; // a MaskEdBox with this mask ("" no mask)
    int width = 320;                            // pixels
    int maxLength = 0;                          // 0: no limit
    bool digits = false;                        // digits and Backspace only
    bool stripQuotes = false;                   // apostrophes removed on leaving the field
};

// One column of the list tab.
struct ListColumn {
    QString column;
    QString header;
    int width = 0;
};

class CdRegister : public QDialog {
    Q_OBJECT
public:
    // The row shown (the hidden `cd`); empty when none.
    QString shownCd() const;
    // Loads the row whose number stands in `cd`, as a double click on the list does.
    virtual void loadByCd() = 0;

protected:
    CdRegister(const QString& name, const QString& title, QWidget* parent);

    // Adds a tab with one labelled field a line; gives the fields in the order given.
    QList<QLineEdit*> addFormTab(const QString& caption, const QList<FieldSpec>& fields);
    // Adds the list tab: Grid1 with these columns of the table, in the order of the name
    // (x1), the key `cd` in the last; and the hint. A double click loads the row.
    void addListTab(const QString& caption, const QString& table, const QList<ListColumn>& columns);
    // Refills Grid1 from the table.
    void fillGrid1();
    // A list shows its columns whole (the last one stretched) and at least so many rows.
    static void fitList(MSFlexGrid* grid, int rows);
    // Adds a tab around a widget of the screen's own.
    void addTab(QWidget* page, const QString& caption);
    // Runs once the screen is built: the order of Enter (the fields of the form tabs in
    // their order, then the bar), field behaviours, centring, the action bar's wiring, the
    // list filled.
    void finish();

    // Field texts: masked fields take and give their text with the literals.
    static QString text(const QLineEdit* field);
    static void setText(QLineEdit* field, const QString& text);
    static void clearFields(const QList<QLineEdit*>& fields);
    // Fills the fields from the current row, each from its column.
    static void fillFields(const QList<QLineEdit*>& fields, const Recordset& rs);
    // Stores the fields' texts into the row being added or edited.
    static void storeFields(const QList<QLineEdit*>& fields, Recordset& rs);
    // Saves the fields by key: the row of the table whose column of keyField holds that
    // field's text (the first by cd) is edited, or a row is added. Call it inside the
    // action's unit of work.
    static void saveByField(const QString& table, const QLineEdit* keyField,
                            const QList<QLineEdit*>& fields);
    // Refills a list from a statement: one row per record, the cells from these columns.
    static void fillList(MSFlexGrid* grid, const QString& sql, const QStringList& columns);

    // The number in `cd`; nothing when empty or not a number.
    std::optional<qint64> cdNumber() const;
    // Removes apostrophes from a field's text.
    static void stripQuotes(QLineEdit* field);

    virtual void Command16_Click() = 0; // Grava
    virtual void Command4_Click() = 0;  // Novo
    virtual void Command3_Click() = 0;  // Apaga
    void Command5_Click();              // Volta

    bool eventFilter(QObject* watched, QEvent* event) override;

    SSTab* SSTab1 = nullptr;
    QLineEdit* cd = nullptr; // hidden
    MSFlexGrid* Grid1 = nullptr;
    QPushButton* Command16 = nullptr;
    QPushButton* Command4 = nullptr;
    QPushButton* Command3 = nullptr;
    QPushButton* Command5 = nullptr;

private:
    QMenuBar* menu_ = nullptr;
    QString listTable_;
    QStringList listColumns_;
    void focusTab(int index);
    QList<QLineEdit*> quoteless_;
    QList<QLineEdit*> fields_; // every field of every form tab, in the order of Enter
};

} // namespace rtx::ui
