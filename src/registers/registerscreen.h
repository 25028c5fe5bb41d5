#pragma once
// The register screen that clients, couriers and suppliers share. What is on the screen is
// the record: every action reads or writes the table and leaves nothing in memory but the
// code of the record found (cd) and the code the next save writes (A1).
//
// Each screen is this engine with its own RegisterConfig: the tabs, the fields with their
// captions, masks, lists and places, the buttons beside them, the tab order, the checks of
// a save, the columns it writes and the boxes of its search tab.

#include "session/kit/grids.h"

#include <QDialog>
#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class QAbstractButton;
class QHBoxLayout;
class QMenuBar;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QToolButton;

namespace rtx::ui {

class MaskEdBox;
class SSTab;

// Where a control stands: the tab page, the row, the column group (0 to 2) and how many
// groups it spans.
struct Place {
    int tab = 0;
    int row = 0;
    int col = 0;
    int span = 1;
};

struct RegisterField {
    enum Kind {
        Text,   // a line of text
        Masked, // MaskEdBox: date, postcode, money, or no mask at all
        Combo,  // editable combo box
        Memo,   // several lines
        Hidden, // carried through from the row to the row, never shown
    };

    QString name;    // the control's name; the column is the same in capitals ("c26" is C26)
    QString caption; // the label before it
    Kind kind = Text;
    QString mask;            // Masked
    QStringList items;       // Combo: the fixed list
    bool completion = false; // Combo: completes what is typed from its list
    Place place;
    int maxLength = 0;
    bool red = false;
    bool bold = false;
    bool stripQuotes = false; // single quotes removed on leaving the field
    bool keepOnNew = false;   // Novo leaves it as it is
    bool today = false;       // date: today on Novo and instead of a bad date

    QString column() const { return name.toUpper(); }

    static RegisterField text(const QString& name, const QString& caption, Place place);
    static RegisterField masked(const QString& name, const QString& caption, const QString& mask,
                                Place place);
    static RegisterField combo(const QString& name, const QString& caption,
                               const QStringList& items, bool completion, Place place);
    static RegisterField memo(const QString& name, const QString& caption, Place place);
    static RegisterField hidden(const QString& name);
    // C1, "ATIVO" or "INATIVO", which Novo leaves as it is.
    static RegisterField status(Place place);
    // C2, the date of registration or admission: today on Novo and instead of a bad date.
    static RegisterField since(const QString& caption, Place place);

    RegisterField& at(Place p) {
        place = p;
        return *this;
    }
};

struct RegisterButton {
    enum Action {
        Find,      // finds the first row whose column (the field's) holds the field's text
        LookUp,    // the revenue service's public page
        AddRegion, // the list of regions
        NextTab,   // to the second tab, focus on C23
        Inert,     // a picture and nothing else
    };
    QString name;
    QString caption; // empty: a small picture button
    QString tooltip;
    Action action = Inert;
    QString beside; // the field it stands beside; empty: at place
    Place place;

    // The buttons every register has beside its fields: the public look-up beside c3 and
    // the finds beside the three telephones.
    static QList<RegisterButton> common();
};

struct RegisterSearch {
    QString name;    // the box
    QString caption; // its label
    QString column;  // the column whose start is matched
    QString orderBy;
};

struct RegisterConfig {
    enum class LookUp { ByOptions, CpfPage };
    enum class Report { Later, Disabled };

    QString screen;   // the screen's name ("cliente", "MOTO", "forne")
    QString table;    // the table of the rows
    QString title;    // window title
    QString heading;  // big caption over the fields
    QStringList tabs; // captions; the last is the search tab
    QList<RegisterField> fields;
    QList<RegisterButton> buttons;
    QStringList tabOrder; // fields and buttons, in the order Tab and Enter follow
    bool options = false; // "Pessoa Física" / "Pessoa Jurídica" (C32, C33)
    Place optionsPlace;
    QList<QPair<QString, QString>> required; // field, the name in the message
    QStringList written;                     // columns a save writes after CODIGO, in order
    QMap<QString, QString> constants;        // columns written with a fixed text
    QList<QPair<QString, QString>> lists;    // combo field, statement giving its items
    QList<RegisterSearch> searches;
    QList<DBGrid::Column> gridColumns;
    LookUp lookUp = LookUp::ByOptions;
    Report report = Report::Later;
};

class RegisterScreen : public QDialog {
    Q_OBJECT
public:
    explicit RegisterScreen(const RegisterConfig& config, QWidget* parent = nullptr);
    const RegisterConfig& config() const { return config_; }

    // The actions, as their buttons run them.
    void novo();
    void save();
    void remove();
    void first();
    void previous();
    void next();
    void last();
    void lookUp();
    void report();
    // Finds the first row (in code order) whose column holds the text, and loads it.
    // Nothing happens when none does.
    void findBy(const QString& column, const QString& text);
    // The load step: the row of the code to the screen; nothing changes when it is gone.
    void load(const QString& code);

    QString foundCode() const; // cd
    QString shownCode() const; // A1

    // The public pages of the revenue service.
    static QString cnpjPage();
    static QString cpfPage();
    // The Brazilian states (and "EX", abroad), for the state combos.
    static QStringList states();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    RegisterConfig config_;
    QHash<QString, QWidget*> fields_; // by name, case-blind key (upper)
    SSTab* SSTab1 = nullptr;
    QLineEdit* cd = nullptr; // hidden: the code of the record found
    QLabel* A1 = nullptr;    // the code the next save writes
    QLabel* nr = nullptr;    // number of rows, at start and after Novo
    QRadioButton* C32 = nullptr;
    QRadioButton* C33 = nullptr;
    DBGrid* DBGrid1 = nullptr;
    QList<QLineEdit*> searchBoxes_;
    // The code the record on the screen was saved or loaded under; empty for a new record
    // not saved yet, which draws its code when it is saved.
    QString ownCode_;

    QWidget* field(const QString& name) const;
    MaskEdBox* masked(const QString& name) const;
    void build();
    QWidget* makeField(const RegisterField& f, QWidget* page);
    QAbstractButton* makeButton(const RegisterButton& b, QWidget* page);
    QToolButton* addAction(QHBoxLayout* bar, QMenuBar* menu, const QString& name,
                           const QString& menuName, const QString& caption, const QString& glyph,
                           const QColor& colour);
    void start();
    void bindGrid(const QString& column, const QString& orderBy, const QString& typed);
    void search(const RegisterSearch& box, const QString& typed);
    void openFromGrid(int row);
    void showNextCode();
    void fillLists();
    void clearField(QWidget* w);
    QString fieldText(const QString& name) const;
    void setFieldText(QWidget* w, const QString& text);
    void resetC3();
    void enterC3();
    void leaveC3();
    void leaveField(QWidget* w);
    void settleFields();
    void buttonAction(const RegisterButton& b);
    void loadFound(const QString& code); // cd to the code, then the load step
    QString firstWith(const QString& column, const QString& text) const; // throws
};

} // namespace rtx::ui
