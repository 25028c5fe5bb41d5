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

// --- The form ---------------------------------------------------------------------------

RecordForm::RecordForm(const FormDefinition& definition, QWidget* parent)
    : QDialog(parent), definition_(definition), binding_(definition.fields) {
    setObjectName(definition.screen);
    setWindowTitle(definition.title);
    build();
    setupFields(this);
    keepOnEscape(this);
    if (definition.size.isValid()) resize(definition.size);
    centreScreen(this);
    if (!definition_.table.isEmpty()) followRowsOf({definition_.table});
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
    for (const FormField& f : definition_.fields)
        if (f.onNew != FormField::OnNew::Keep) resetField(f);
    refreshSearch();
    refreshList();
    if (QWidget* first = field(definition_.firstField)) first->setFocus(Qt::OtherFocusReason);
}

QWidget* RecordForm::field(const QString& name) const {
    return binding_.control(name);
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

const FormField* RecordForm::fieldDefinition(const QString& name) const {
    return binding_.fieldNamed(name);
}

// --- Values -----------------------------------------------------------------------------

QVariant RecordForm::value(const QString& name) const {
    return binding_.value(name);
}

void RecordForm::setValue(const QString& name, const QVariant& value) {
    binding_.setValue(name, value);
}

Row RecordForm::row() const {
    return binding_.row();
}

void RecordForm::showRow(const Row& row) {
    binding_.showRow(row);
}

void RecordForm::setFoundKey(const QVariant& key) {
    found_ = key;
    cd_->setText(key.toString());
}

void RecordForm::resetField(const FormField& f) {
    binding_.reset(f);
}

// --- Leaving fields ---------------------------------------------------------------------

bool RecordForm::leaveField(const FormField& f, bool settle) {
    QWidget* w = field(f.name);
    if (!w) return true;
    if (f.tidy) {
        const QString now = RecordBinding::textOf(w);
        const QString tidied = f.tidy(now);
        if (tidied != now) RecordBinding::setTextOf(w, tidied);
    }
    auto* m = qobject_cast<MaskEdBox*>(w);
    return !settle || !m || m->settle();
}

bool RecordForm::settleFields() {
    for (const FormField& f : definition_.fields)
        if (f.tidy) leaveField(f);
    return rtx::ui::settleFields(this);
}

bool RecordForm::eventFilter(QObject* watched, QEvent* event) {
    auto* w = qobject_cast<QWidget*>(watched);
    const bool focus = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (focus && binding_.isBound(w) && leftField(static_cast<QFocusEvent*>(event))) {
        if (const FormField* f = fieldDefinition(w->objectName())) {
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
    for (const FormField& f : definition_.fields) {
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
    if (QWidget* focused = focusWidget(); binding_.isBound(focused)) {
        if (const FormField* f = fieldDefinition(focused->objectName())) {
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
    qint64 version = 0;
    std::optional<RowChanged::Why> conflict;
    const auto write = [&](const Row& written) {
        return guarded(this, [&] {
            try {
                Store& store = Store::current();
                UnitOfWork unit(store);
                if (source_.save) key = source_.save(store, written, own_);
                // The version the save left the row at, read in its unit: the next save of
                // this screen writes over its own row without a question.
                if (source_.load && !emptyKey(key))
                    if (const auto saved = source_.load(store, key))
                        version = saved->value(versionColumn()).toLongLong();
                unit.commit();
            } catch (const RowChanged& e) {
                conflict = e.why();
            }
        });
    };
    if (!write(r)) return false;
    if (conflict == RowChanged::Why::Changed) {
        if (!ask(this, changedElsewhere())) {
            // The other station's record comes on the screen, and this one's typing goes.
            load(emptyKey(found_) ? own_ : found_);
            return false;
        }
        Row over = r;
        over.remove(versionColumn());
        conflict.reset();
        if (!write(over)) return false;
    }
    if (conflict) {
        // Deleted at another station: said so, and the screen keeps what was typed.
        notice(this, RowChanged(*conflict).text());
        return false;
    }
    own_ = key;
    binding_.setVersion(version);
    emit saved(key);
    notice(this, definition_.savedMessage);
    return true;
}

void RecordForm::newRecord() {
    setFoundKey({});
    own_.clear();
    binding_.setVersion(0);
    for (const FormField& f : definition_.fields)
        resetField(f);
    emit cleared();
    refreshSearch();
    refreshList();
    if (QWidget* first = field(definition_.firstField); first && definition_.newMovesFocus) {
        tabs_->setTab(0);
        first->setFocus(Qt::OtherFocusReason);
    }
}

bool RecordForm::remove() {
    if (!settleFields()) return false;
    if (emptyKey(found_) && !definition_.searchFirst.isEmpty()) {
        notice(this, definition_.searchFirst);
        return false;
    }
    const Row r = row();
    if (source_.checkRemove) {
        if (const auto problem = source_.checkRemove(r)) {
            notice(this, problem->message);
            focusColumn(problem->column);
            return false;
        }
    }
    if (!ask(this, definition_.deleteQuestion)) return false;
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        if (source_.remove) source_.remove(store, found_, r);
        unit.commit();
    });
    if (!ok) return false;
    newRecord();
    return true;
}

void RecordForm::walk(Walk direction) {
    if (const auto to = walkTarget(this, source_.walk, direction, found_); to && !emptyKey(*to))
        loadFound(*to);
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
    if (!definition_.focusOnTab || !shown || !isVisible()) return;
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

QList<FormAction> FormDefinition::saveNewDeleteBack() {
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
