#include "kit/recordform_binding.h"

#include "kit/dialogs.h"
#include "kit/maskedbox.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace rtx::ui {

// --- Fields -----------------------------------------------------------------------------

FormField FormField::text(const QString& name, const QString& column, const QString& caption,
                          FormPlace place) {
    FormField f;
    f.name = name;
    f.column = column;
    f.caption = caption;
    f.place = place;
    return f;
}

FormField FormField::masked(const QString& name, const QString& column, const QString& caption,
                            const QString& mask, FormPlace place) {
    FormField f = text(name, column, caption, place);
    f.kind = Kind::Masked;
    f.mask = mask;
    if (mask == MaskEdBox::dateMask())
        f.value = Value::Date;
    else if (mask == MaskEdBox::moneyMask())
        f.value = Value::Money;
    return f;
}

FormField FormField::combo(const QString& name, const QString& column, const QString& caption,
                           const QStringList& items, bool completion, FormPlace place) {
    FormField f = text(name, column, caption, place);
    f.kind = Kind::Combo;
    f.items = items;
    f.completion = completion;
    return f;
}

FormField FormField::memo(const QString& name, const QString& column, const QString& caption,
                          FormPlace place) {
    FormField f = text(name, column, caption, place);
    f.kind = Kind::Memo;
    return f;
}

FormField FormField::hidden(const QString& name, const QString& column) {
    FormField f = text(name, column, {}, {-1, 0, 0, 1});
    f.kind = Kind::Hidden;
    return f;
}

FormField FormField::option(const QString& name, const QString& column, const QString& caption,
                            const QString& group) {
    FormField f = text(name, column, caption, {});
    f.kind = Kind::Option;
    f.value = Value::Flag;
    f.group = group;
    return f;
}

// --- The binding ------------------------------------------------------------------------

RecordBinding::RecordBinding(const QList<FormField>& fields) : fields_(fields) {}

void RecordBinding::add(const FormField& field) {
    fields_ << field;
}

void RecordBinding::bind(const QString& name, QWidget* control) {
    controls_.insert(name.toUpper(), control);
}

const FormField* RecordBinding::fieldNamed(const QString& name) const {
    for (const FormField& f : fields_)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0) return &f;
    return nullptr;
}

QWidget* RecordBinding::control(const QString& name) const {
    return controls_.value(name.toUpper());
}

bool RecordBinding::isBound(const QWidget* w) const {
    return w && controls_.value(w->objectName().toUpper()) == w;
}

QString RecordBinding::textOf(const QWidget* w) {
    if (auto* m = qobject_cast<const MaskEdBox*>(w)) return m->text();
    if (auto* e = qobject_cast<const QLineEdit*>(w)) return e->text();
    if (auto* c = qobject_cast<const QComboBox*>(w)) return c->currentText();
    if (auto* p = qobject_cast<const QPlainTextEdit*>(w)) return p->toPlainText();
    if (auto* l = qobject_cast<const QLabel*>(w)) return l->text();
    return {};
}

void RecordBinding::setTextOf(QWidget* w, const QString& text) {
    if (auto* m = qobject_cast<MaskEdBox*>(w))
        m->setText(text);
    else if (auto* e = qobject_cast<QLineEdit*>(w))
        e->setText(text);
    else if (auto* c = qobject_cast<QComboBox*>(w); c && c->isEditable())
        c->setEditText(text);
    else if (c) // a list without typing shows one of its items, or nothing
        c->setCurrentIndex(c->findText(text));
    else if (auto* p = qobject_cast<QPlainTextEdit*>(w))
        p->setPlainText(text);
    else if (auto* l = qobject_cast<QLabel*>(w))
        l->setText(text);
}

QVariant RecordBinding::value(const QString& name) const {
    const FormField* f = fieldNamed(name);
    QWidget* w = control(name);
    if (!f || !w) return {};
    auto* masked = qobject_cast<MaskEdBox*>(w);
    switch (f->value) {
    case FormField::Value::Flag:
        return static_cast<QAbstractButton*>(w)->isChecked();
    case FormField::Value::Date: {
        // Empty is an invalid date; a text that is no date, nothing (the actions settle the
        // fields first, so a row never holds one).
        const auto d = masked ? masked->date() : parseDate(textOf(w));
        return d ? QVariant(*d) : QVariant();
    }
    case FormField::Value::Money: {
        const auto cents = masked ? masked->cents() : parseMoney(textOf(w));
        return cents ? QVariant(*cents) : QVariant();
    }
    case FormField::Value::Digits:
        return masked ? masked->digits() : textOf(w);
    case FormField::Value::Text:
        break;
    }
    return textOf(w);
}

void RecordBinding::setValue(const QString& name, const QVariant& value) {
    const FormField* f = fieldNamed(name);
    QWidget* w = control(name);
    if (!f || !w) return;
    auto* masked = qobject_cast<MaskEdBox*>(w);
    switch (f->value) {
    case FormField::Value::Flag:
        // An option is chosen, never unchosen: the group keeps one.
        if (value.toBool()) static_cast<QAbstractButton*>(w)->setChecked(true);
        return;
    case FormField::Value::Date: {
        const QDate d = value.toDate();
        if (d.isValid())
            setTextOf(w, formatDate(d));
        else if (masked)
            masked->clear();
        else
            setTextOf(w, {});
        return;
    }
    case FormField::Value::Money:
        setTextOf(w, formatMoney(value.toLongLong()));
        return;
    case FormField::Value::Digits:
    case FormField::Value::Text:
        break;
    }
    setTextOf(w, value.toString());
}

Row RecordBinding::row() const {
    Row r;
    for (const FormField& f : fields_)
        if (!f.column.isEmpty()) r.insert(f.column, value(f.name));
    if (version_ > 0) r.insert(versionColumn(), version_);
    return r;
}

void RecordBinding::showRow(const Row& row) {
    if (row.contains(versionColumn())) version_ = row.value(versionColumn()).toLongLong();
    for (const FormField& f : fields_)
        if (!f.column.isEmpty() && row.contains(f.column)) setValue(f.name, row.value(f.column));
}

void RecordBinding::reset(const FormField& f) {
    QWidget* w = control(f.name);
    if (!w || f.onNew == FormField::OnNew::Keep) return;
    const bool set = f.onNew == FormField::OnNew::Set;
    switch (f.value) {
    case FormField::Value::Flag:
        if (set) static_cast<QAbstractButton*>(w)->setChecked(true);
        return;
    case FormField::Value::Date:
        setValue(f.name, set ? QDate::currentDate() : QDate());
        return;
    default:
        break;
    }
    if (auto* m = qobject_cast<MaskEdBox*>(w))
        m->clear();
    else
        setTextOf(w, {});
}

// --- The walk ---------------------------------------------------------------------------

bool emptyKey(const QVariant& key) {
    return key.isNull() || key.toString().isEmpty();
}

std::optional<QVariant> walkTarget(QWidget* screen, const WalkFrom& walk, Walk direction,
                                   const QVariant& found) {
    if (!walk) return QVariant();
    const bool stepping = direction == Walk::Previous || direction == Walk::Next;
    if (stepping && emptyKey(found)) return QVariant();
    QVariant to;
    if (!guarded(screen, [&] { to = walk(Store::current(), direction, found); }))
        return std::nullopt;
    return to;
}

QString changedElsewhere() {
    return QStringLiteral("Este registro foi alterado em outra esta\u00e7\u00e3o depois que foi "
                          "aberto. Gravar mesmo assim?");
}

} // namespace rtx::ui
