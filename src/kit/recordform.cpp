#include "kit/recordform.h"

#include "kit/actions.h"
#include "kit/dialogs.h"
#include "kit/fields.h"
#include "kit/maskedbox.h"
#include "kit/named.h"
#include "kit/refresh.h"
#include "kit/sstab.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSignalBlocker>

namespace rtx::ui {

namespace {

bool isLeaving(const QFocusEvent* event) {
    // A message box or a list's popup taking the focus for a moment is no leaving.
    return event->reason() != Qt::ActiveWindowFocusReason &&
           event->reason() != Qt::PopupFocusReason;
}

QString textOf(const QWidget* w) {
    if (auto* m = qobject_cast<const MaskEdBox*>(w)) return m->text();
    if (auto* e = qobject_cast<const QLineEdit*>(w)) return e->text();
    if (auto* c = qobject_cast<const QComboBox*>(w)) return c->currentText();
    if (auto* p = qobject_cast<const QPlainTextEdit*>(w)) return p->toPlainText();
    return {};
}

void setTextOf(QWidget* w, const QString& text) {
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
}

bool emptyKey(const QVariant& key) {
    return key.isNull() || key.toString().isEmpty();
}

} // namespace

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

// --- The form ---------------------------------------------------------------------------

RecordForm::RecordForm(const FormSpec& definition, QWidget* parent)
    : QDialog(parent), spec_(definition) {
    setObjectName(definition.screen);
    setWindowTitle(definition.title);
    build();
    setupFields(this);
    keepOnEscape(this);
    if (definition.size.isValid()) resize(definition.size);
    centreScreen(this);
    if (!spec_.table.isEmpty()) followRowsOf({spec_.table});
}

RecordForm::~RecordForm() = default;

void RecordForm::followRowsOf(const QStringList& tables) {
    refreshOn(this, tables, [this] {
        if (searchGrid_) searchGrid_->requery();
        if (listGrid_) keepingRow(listGrid_, [this] { refreshList(); });
    });
}

void RecordForm::setSource(const RecordSource& source) {
    source_ = source;
}

void RecordForm::start() {
    for (const FormField& f : spec_.fields)
        if (f.onNew != FormField::OnNew::Keep) resetField(f);
    refreshSearch();
    refreshList();
    if (QWidget* first = field(spec_.firstField)) first->setFocus(Qt::OtherFocusReason);
}

QWidget* RecordForm::field(const QString& name) const {
    return fields_.value(name.toUpper());
}

QAbstractButton* RecordForm::button(const QString& name) const {
    return buttons_.value(name);
}

QWidget* RecordForm::page(int tab) const {
    return tabs_->widget(tab);
}

QGridLayout* RecordForm::fieldGrid(int tab) const {
    if (QGridLayout* grid = fieldGrids_.value(tab)) return grid;
    throw MissingControl(QStringLiteral("grade de campos da aba %1").arg(tab + 1), objectName());
}

const FormField* RecordForm::fieldSpec(const QString& name) const {
    for (const FormField& f : spec_.fields)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0) return &f;
    return nullptr;
}

// --- Values -----------------------------------------------------------------------------

QVariant RecordForm::value(const QString& name) const {
    const FormField* f = fieldSpec(name);
    QWidget* w = field(name);
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

void RecordForm::setValue(const QString& name, const QVariant& value) {
    const FormField* f = fieldSpec(name);
    QWidget* w = field(name);
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

Row RecordForm::row() const {
    Row r;
    for (const FormField& f : spec_.fields)
        if (!f.column.isEmpty()) r.insert(f.column, value(f.name));
    return r;
}

void RecordForm::showRow(const Row& row) {
    for (const FormField& f : spec_.fields)
        if (!f.column.isEmpty() && row.contains(f.column)) setValue(f.name, row.value(f.column));
}

void RecordForm::setFoundKey(const QVariant& key) {
    found_ = key;
    cd_->setText(key.toString());
}

void RecordForm::resetField(const FormField& f) {
    QWidget* w = field(f.name);
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

// --- Leaving fields ---------------------------------------------------------------------

bool RecordForm::leaveField(const FormField& f, bool settle) {
    QWidget* w = field(f.name);
    if (!w) return true;
    if (f.tidy) {
        const QString now = textOf(w);
        const QString tidied = f.tidy(now);
        if (tidied != now) setTextOf(w, tidied);
    }
    auto* m = qobject_cast<MaskEdBox*>(w);
    return !settle || !m || m->settle();
}

bool RecordForm::settleFields() {
    for (const FormField& f : spec_.fields)
        if (f.tidy) leaveField(f);
    return rtx::ui::settleFields(this);
}

bool RecordForm::eventFilter(QObject* watched, QEvent* event) {
    auto* w = qobject_cast<QWidget*>(watched);
    const bool focus = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (focus && w && fields_.value(w->objectName().toUpper()) == w &&
        isLeaving(static_cast<QFocusEvent*>(event))) {
        if (const FormField* f = fieldSpec(w->objectName())) {
            if (event->type() == QEvent::FocusIn) {
                emit fieldEntered(f->name);
            } else if (leaveField(*f, !leftForSettlingAction(static_cast<QFocusEvent*>(event)))) {
                emit fieldLeft(f->name);
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void RecordForm::focusColumn(const QString& column) {
    for (const FormField& f : spec_.fields) {
        if (f.column != column) continue;
        QWidget* w = field(f.name);
        for (int i = 0; i < tabs_->count(); ++i)
            if (tabs_->widget(i)->isAncestorOf(w)) tabs_->setTab(i);
        w->setFocus(Qt::OtherFocusReason);
        return;
    }
}

// --- Actions ----------------------------------------------------------------------------

bool RecordForm::save() {
    // A field still being typed in is left first, as a click on the button would.
    if (QWidget* focused = focusWidget();
        focused && fields_.value(focused->objectName().toUpper()) == focused) {
        if (const FormField* f = fieldSpec(focused->objectName())) {
            if (!leaveField(*f)) return false;
            emit fieldLeft(f->name);
        }
    }
    if (!settleFields()) return false;
    const Row r = row();
    if (source_.check) {
        if (const auto problem = source_.check(r)) {
            notice(this, problem->message);
            focusColumn(problem->column);
            return false;
        }
    }
    if (source_.confirm && !source_.confirm(this, r)) return false;
    QVariant key;
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        if (source_.save) key = source_.save(store, r, own_);
        unit.commit();
    });
    if (!ok) return false;
    own_ = key;
    emit saved(key);
    notice(this, spec_.savedMessage);
    return true;
}

void RecordForm::newRecord() {
    setFoundKey({});
    own_.clear();
    for (const FormField& f : spec_.fields)
        resetField(f);
    emit cleared();
    refreshSearch();
    refreshList();
    if (QWidget* first = field(spec_.firstField); first && spec_.newMovesFocus) {
        tabs_->setTab(0);
        first->setFocus(Qt::OtherFocusReason);
    }
}

void RecordForm::remove() {
    if (!settleFields()) return;
    if (emptyKey(found_) && !spec_.searchFirst.isEmpty()) {
        notice(this, spec_.searchFirst);
        return;
    }
    if (!ask(this, QStringLiteral("Confirma exclusão?"))) return;
    const Row r = row();
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        if (source_.remove) source_.remove(store, found_, r);
        unit.commit();
    });
    if (!ok) return;
    newRecord();
}

void RecordForm::walk(Walk direction) {
    if (!source_.walk) return;
    // Previous and next go from the record found; with none, nothing happens.
    const bool stepping = direction == Walk::Previous || direction == Walk::Next;
    if (stepping && emptyKey(found_)) return;
    QVariant to;
    if (!guarded(this, [&] { to = source_.walk(Store::current(), direction, found_); })) return;
    if (!emptyKey(to)) loadFound(to);
}

std::optional<bool> RecordForm::tryLoad(const QVariant& key) {
    if (!source_.load) return false;
    std::optional<Row> r;
    if (!guarded(this, [&] { r = source_.load(Store::current(), key); })) return std::nullopt;
    if (!r) return false;
    showRow(*r);
    if (!source_.keyColumn.isEmpty()) own_ = r->value(source_.keyColumn);
    emit loaded(*r);
    return true;
}

bool RecordForm::load(const QVariant& key) {
    return tryLoad(key).value_or(false);
}

bool RecordForm::loadFound(const QVariant& key) {
    return showFound(key).value_or(false);
}

std::optional<bool> RecordForm::showFound(const QVariant& key) {
    const QVariant before = found_;
    setFoundKey(emptyKey(key) ? QVariant() : key);
    const std::optional<bool> shown = tryLoad(key);
    // A key whose row is gone is no record found: the one on the screen stays the found one.
    if (!shown.value_or(false)) setFoundKey(before);
    return shown;
}

void RecordForm::openFound(const QVariant& key, int tab) {
    // A double click below the last row, or on a row another station deleted meanwhile,
    // still brings up the first tab as it was; a failed store keeps the search in view.
    if (showFound(key)) tabs_->setTab(tab);
}

void RecordForm::runAction(FormAction::Role role) {
    using R = FormAction::Role;
    switch (role) {
    case R::Save:
        save();
        break;
    case R::New:
        newRecord();
        break;
    case R::Delete:
        remove();
        break;
    case R::Close:
        reject();
        break;
    case R::First:
        walk(Walk::First);
        break;
    case R::Previous:
        walk(Walk::Previous);
        break;
    case R::Next:
        walk(Walk::Next);
        break;
    case R::Last:
        walk(Walk::Last);
        break;
    case R::Other:
        break;
    }
}

// --- Search and list ----------------------------------------------------------------------

void RecordForm::search(int box, const QString& typed) {
    if (!searchGrid_ || !source_.search) return;
    guarded(this, [&] {
        searchGrid_->setQuery(source_.search(Store::current(), box, typed));
        searchGrid_->refresh();
    });
}

void RecordForm::refreshSearch() {
    for (QLineEdit* box : std::as_const(searchBoxes_)) {
        const QSignalBlocker quiet(box);
        box->clear();
    }
    search(-1, {});
}

void RecordForm::refreshList() {
    if (!listGrid_ || !source_.list) return;
    guarded(this, [&] {
        const QList<QStringList> rows = source_.list(Store::current());
        listGrid_->setRows(1);
        for (const QStringList& cells : rows)
            listGrid_->addItem(cells.join(u'\t'));
        stripeGrid(listGrid_);
    });
}

// The keyboard follows the tab shown: its first field, or its list with a row marked, so
// that Enter there loads at once.
void RecordForm::focusTab(int index) {
    QWidget* shown = page(index);
    if (!spec_.focusOnTab || !shown || !isVisible()) return;
    for (QWidget* w : shown->findChildren<QWidget*>()) {
        if (auto* list = qobject_cast<MSFlexGrid*>(w)) {
            if (list->row() < 1) list->setRow(1);
            list->setFocus(Qt::TabFocusReason);
            return;
        }
        if (qobject_cast<QLineEdit*>(w) && w->isEnabled() && w->isVisibleTo(shown)) {
            w->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

QList<FormAction> FormSpec::saveNewDeleteBack() {
    using R = FormAction::Role;
    using namespace Qt::Literals::StringLiterals;
    return {
        {u"Command16"_s, u"sdfds"_s, u"Grava"_s, u"\u2713"_s, QColor(0x2E7D32), R::Save, {}},
        {u"Command4"_s, u"sdfsdfsd"_s, u"Novo"_s, u"+"_s, QColor(0x1565C0), R::New, {}},
        {u"Command3"_s, u"ghfghfghg"_s, u"Apaga"_s, u"\u2717"_s, QColor(0xC62828), R::Delete, {}},
        {u"Command5"_s,
         u"dfgdfgdf"_s,
         u"Volta"_s,
         u"\u2190"_s,
         QColor(0x616161),
         R::Close,
         {},
         true},
    };
}

} // namespace rtx::ui
