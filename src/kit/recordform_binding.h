#pragma once
// The binding of a record screen's controls to the columns of its row. A FormField says
// which control (by its objectName) shows which column and how its value is read: text, a
// date, cents, an option, the digits of a masked field. RecordForm binds the controls it
// builds from its FormDefinition; a screen laid out by hand binds its own controls to its record's
// columns. Either way a row is read from the screen and shown on it by the same code, and
// the four walk buttons go by the same rule.
//
//     RecordBinding binding({FormField::text(u"A6"_s, col::clientName, {}), ...});
//     binding.bind(u"A6"_s, clientField);
//     const Dispatch d = fromRow(binding.row(), dispatchFields());

#include "store/record.h"
#include "store/store.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <optional>

class QWidget;

namespace rtx::ui {

// Where a control stands: the tab page, the row, the column group (0 to 2) and how many
// groups it spans.
struct FormPlace {
    int tab = 0;
    int row = 0;
    int col = 0;
    int span = 1;
};

struct FormField {
    enum class Kind {
        Text,   // a line of text
        Masked, // MaskEdBox: date, postcode, telephone, money, or no mask at all
        Combo,  // editable combo box
        Memo,   // several lines
        Hidden, // carried from the row to the row, never shown
        Option, // a radio button in a group
    };
    // How the control's value is read and written.
    enum class Value {
        Text,   // the text (a masked field with its literals)
        Date,   // "dd/mm/yyyy" as a QDate, invalid when empty; a half-typed or impossible date
                // is refused on leaving and stops every action
        Money,  // "1.234,56" as cents
        Digits, // a masked field's digits alone
        Flag,   // an option: checked or not
    };
    // What Novo (and the start) does to it.
    enum class OnNew {
        Clear, // empty ("0,00" for money)
        Keep,  // left as it is
        Set,   // today for a date, checked for an option
    };

    QString name;    // the control's objectName
    QString column;  // the column it shows; empty: not part of the row
    QString caption; // the label before it (an option's own text)
    Kind kind = Kind::Text;
    Value value = Value::Text;
    QString mask;            // Masked
    QStringList items;       // Combo: the fixed list
    bool completion = false; // Combo: completes what is typed from its list
    FormPlace place;
    int width = 0; // a short field keeps this width; 0: stretches with the screen
    int maxLength = 0;
    bool digitsOnly = false;
    bool red = false;
    bool bold = false;
    OnNew onNew = OnNew::Clear;
    bool todayWhenEmpty = false; // Date: left or saved empty, it takes today
    QString group;               // Option: the group it stands in
    // Applied to the text as the user leaves the field and before a save (quotes out).
    std::function<QString(const QString&)> tidy;

    static FormField text(const QString& name, const QString& column, const QString& caption,
                          FormPlace place = {});
    // A masked field; the date and money masks read their values as dates and cents.
    static FormField masked(const QString& name, const QString& column, const QString& caption,
                            const QString& mask, FormPlace place = {});
    static FormField combo(const QString& name, const QString& column, const QString& caption,
                           const QStringList& items, bool completion, FormPlace place = {});
    static FormField memo(const QString& name, const QString& column, const QString& caption,
                          FormPlace place = {});
    static FormField hidden(const QString& name, const QString& column);
    static FormField option(const QString& name, const QString& column, const QString& caption,
                            const QString& group);

    FormField& at(FormPlace p) {
        place = p;
        return *this;
    }
    FormField& fixed(int pixels) {
        width = pixels;
        return *this;
    }
};

// The controls of a screen bound to the columns of its record.
class RecordBinding {
public:
    RecordBinding() = default;
    explicit RecordBinding(const QList<FormField>& fields);

    // Adds a field; its control is bound later, or never (a field without a control reads
    // as nothing and shows nothing).
    void add(const FormField& field);
    void bind(const QString& name, QWidget* control);

    const QList<FormField>& fields() const { return fields_; }
    // By name, blind to case; null when there is none.
    const FormField* fieldNamed(const QString& name) const;
    QWidget* control(const QString& name) const;
    // True when the widget is the control of one of the fields.
    bool isBound(const QWidget* w) const;

    // A field's value as its column keeps it: text, a QDate (invalid when empty), cents,
    // an option; nothing for an amount or a date that cannot be read.
    QVariant value(const QString& name) const;
    void setValue(const QString& name, const QVariant& value);
    // The record on the screen, by column; and a row shown on it (columns the row lacks
    // leave their fields as they are). The version of a row shown (versionColumn()) is kept
    // with the record and given back with it, so that its save can tell whether another
    // station wrote the row since.
    Row row() const;
    void showRow(const Row& row);
    qint64 version() const { return version_; }
    // 0: the record on the screen was not read from its table (a new one).
    void setVersion(qint64 version) { version_ = version; }
    // What Novo does to a field.
    void reset(const FormField& field);

    // The text a control shows, and a text shown in it: a line, a masked field, a list
    // (its item when it holds the text), several lines, a caption.
    static QString textOf(const QWidget* w);
    static void setTextOf(QWidget* w, const QString& text);

private:
    QList<FormField> fields_;
    QHash<QString, QWidget*> controls_; // by upper-case name
    qint64 version_ = 0;
};

// The key to go to from the one found, as the screen's core gives it.
using WalkFrom = std::function<QVariant(Store&, Walk, const QVariant& found)>;

// The question of a save whose row another station wrote since the screen read it: Yes
// writes over it, No brings the other station's record onto the screen.
QString changedElsewhere();

// No key: null, or an empty text.
bool emptyKey(const QVariant& key);

// The one walk of the record screens: first and last from anywhere, previous and next from
// the record found (with none found, nothing happens). Gives the key to show, empty when
// nothing changes; nothing when the store failed (the failure was shown on the screen).
std::optional<QVariant> walkTarget(QWidget* screen, const WalkFrom& walk, Walk direction,
                                   const QVariant& found);

} // namespace rtx::ui
