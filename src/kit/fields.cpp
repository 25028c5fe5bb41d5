#include "kit/fields.h"

#include "kit/moneyinput.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTextEdit>
#include <QToolButton>

namespace rtx::ui {

namespace {

enum Behaviour : unsigned {
    EnterAsTab = 1,
    Colours = 2,
    SmartCombo = 4,
    Money = 8,
    Digits = 16,
    Hourglass = 32,
    EnterClicks = 64,
};

// The line edit in which a field's text is typed: the field itself, or the edit of an
// editable combo box.
QLineEdit* editOf(QObject* field) {
    if (auto* edit = qobject_cast<QLineEdit*>(field)) return edit;
    if (auto* combo = qobject_cast<QComboBox*>(field)) return combo->lineEdit();
    return nullptr;
}

bool isEnter(const QKeyEvent* key) {
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
           !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier));
}

// The character a key press types, or a null QChar for keys that type nothing (arrows,
// Delete, shortcuts with Ctrl or Alt).
QChar typedChar(const QKeyEvent* key) {
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return {};
    if (key->key() == Qt::Key_Backspace) return QChar(u'\b');
    const QString text = key->text();
    if (text.size() != 1 || !text.at(0).isPrint()) return {};
    return text.at(0);
}

// Swallows the Escape key that would close a dialog screen.
class EscapeKeeper final : public QObject {
public:
    explicit EscapeKeeper(QWidget* screen) : QObject(screen) {
        setObjectName(name());
        screen->installEventFilter(this);
    }
    static QString name() { return QStringLiteral("rtxEscapeKeeper"); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        return watched == parent() && event->type() == QEvent::KeyPress &&
               static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
    }
};

// One filter per field that carries all its behaviours, so their order is fixed:
// autocomplete, then the key filters, then Enter as Tab.
class FieldFilter final : public QObject {
public:
    explicit FieldFilter(QWidget* field) : QObject(field), field_(field) {
        setObjectName(QStringLiteral("rtxFieldFilter"));
        field->installEventFilter(this);
    }

    static FieldFilter* of(QWidget* field) {
        for (QObject* child : field->children())
            if (auto* filter = dynamic_cast<FieldFilter*>(child)) return filter;
        return new FieldFilter(field);
    }

    void add(unsigned behaviours) {
        behaviours_ |= behaviours;
        // Mouse clicks land on a combo box's own edit.
        if ((behaviours & Colours) && qobject_cast<QComboBox*>(field_)) watchEdit();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::KeyPress:
            if (watched == field_) return keyPress(static_cast<QKeyEvent*>(event));
            break;
        case QEvent::FocusIn:
            if (watched == field_) focusIn(static_cast<QFocusEvent*>(event));
            break;
        case QEvent::FocusOut:
            if (watched == field_) focusOut(static_cast<QFocusEvent*>(event));
            break;
        case QEvent::MouseButtonRelease:
            // A click that gave the focus would leave only a caret: select all then.
            if (selectOnRelease_) {
                selectOnRelease_ = false;
                QLineEdit* edit = editOf(field_);
                if (edit && !edit->hasSelectedText()) edit->selectAll();
            }
            break;
        default:
            break;
        }
        return false;
    }

private:
    QWidget* field_;
    QObject* watchedEdit_ = nullptr;
    unsigned behaviours_ = 0;
    bool inside_ = false; // has the focus, for the field's own purposes
    bool selectOnRelease_ = false;
    bool lit_ = false; // painted with the focus colour

    void watchEdit() {
        QLineEdit* edit = editOf(field_);
        if (edit && edit != field_ && edit != watchedEdit_) {
            edit->installEventFilter(this);
            watchedEdit_ = edit;
        }
    }

    bool keyPress(QKeyEvent* key) {
        if ((behaviours_ & EnterClicks) && isEnter(key) && !key->isAutoRepeat()) {
            if (auto* button = qobject_cast<QAbstractButton*>(field_)) button->click();
            return true;
        }
        if ((behaviours_ & EnterAsTab) && isEnter(key)) {
            // As Tab: the window moves the focus on, wrapping after its last control.
            QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
            QCoreApplication::sendEvent(field_, &tab);
            return true;
        }
        if (behaviours_ & Money) {
            QLineEdit* edit = editOf(field_);
            return edit && moneyKeyPress(edit, key);
        }
        const QChar c = typedChar(key);
        if (c.isNull()) return false;
        if (behaviours_ & SmartCombo) {
            if (auto* combo = qobject_cast<QComboBox*>(field_); combo && autocomplete(combo, c))
                return true;
        }
        if (behaviours_ & Digits) return !(c.isDigit() || c == u'\b');
        return false;
    }

    bool autocomplete(QComboBox* combo, QChar c) {
        QLineEdit* edit = combo->lineEdit();
        if (!edit || c == u'\b') return false;
        const int start = edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
        const QString search = edit->text().left(start) + c;
        int found = -1;
        for (int i = 0; i < combo->count(); ++i) {
            if (combo->itemText(i).startsWith(search, Qt::CaseInsensitive)) {
                found = i;
                break;
            }
        }
        if (found < 0) return false;
        const QString item = combo->itemText(found);
        combo->setCurrentIndex(found);
        edit->setText(item);
        edit->setSelection(int(search.size()), int(item.size() - search.size()));
        return true;
    }

    void focusIn(QFocusEvent* event) {
        if (behaviours_ & Hourglass) clearHourglass();
        if (!(behaviours_ & Colours)) return;
        leaveOthers();
        paint(focusColour());
        // Coming back from a message box or a list's popup is no new entry.
        if (inside_ || event->reason() == Qt::PopupFocusReason) return;
        inside_ = true;
        if (QLineEdit* edit = editOf(field_)) {
            edit->selectAll();
            selectOnRelease_ = event->reason() == Qt::MouseFocusReason;
        } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(field_)) {
            spin->selectAll();
        } else if (auto* lines = qobject_cast<QPlainTextEdit*>(field_)) {
            lines->selectAll();
        } else if (auto* rich = qobject_cast<QTextEdit*>(field_)) {
            rich->selectAll();
        }
    }

    void focusOut(QFocusEvent* event) {
        if (!(behaviours_ & Colours)) return;
        if (!leftField(event)) return;
        inside_ = false;
        selectOnRelease_ = false;
        paint(plainColour());
    }

    // The focus may have moved on while another window (a message, a popup screen) was in
    // front: the field that had it then saw no leave of its own. Only fields of this window
    // count; another window keeps its field painted, to find it as it was.
    void leaveOthers() {
        QWidget* window = field_->window();
        for (QObject* o : window->findChildren<QObject*>(objectName())) {
            auto* other = dynamic_cast<FieldFilter*>(o);
            if (!other || other == this || !other->lit_ || other->field_->window() != window)
                continue;
            other->inside_ = false;
            other->selectOnRelease_ = false;
            other->paint(plainColour());
        }
    }

    void paint(const QColor& colour) {
        lit_ = colour == focusColour();
        QPalette palette = field_->palette();
        palette.setColor(QPalette::Base, colour);
        if (qobject_cast<QComboBox*>(field_)) palette.setColor(QPalette::Button, colour);
        field_->setPalette(palette);
    }
};

void addBehaviours(QWidget* field, unsigned behaviours) {
    if (field) FieldFilter::of(field)->add(behaviours);
}

bool skipped(const QWidget* w) {
    return w->property("rtxSemKit").toBool();
}

// The edit inside a combo or spin box belongs to that box, not to the screen.
bool innerEdit(const QWidget* w) {
    const QWidget* parent = w->parentWidget();
    return qobject_cast<const QLineEdit*>(w) && (qobject_cast<const QComboBox*>(parent) ||
                                                 qobject_cast<const QAbstractSpinBox*>(parent));
}

void centreNow(QWidget* screen) {
    QScreen* monitor = screen->screen() ? screen->screen() : QGuiApplication::primaryScreen();
    if (!monitor) return;
    const QRect area = monitor->availableGeometry();
    QSize size = screen->isVisible()                     ? screen->frameGeometry().size()
                 : screen->testAttribute(Qt::WA_Resized) ? screen->size()
                                                         : screen->sizeHint();
    size = size.boundedTo(area.size());
    screen->move(area.x() + (area.width() - size.width()) / 2,
                 area.y() + (area.height() - size.height()) / 2);
}

// Centres a screen once more when it is first shown, with the size its layout gave it.
class CentreOnShow final : public QObject {
public:
    explicit CentreOnShow(QWidget* screen) : QObject(screen) { screen->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show) {
            centreNow(static_cast<QWidget*>(watched));
            watched->removeEventFilter(this);
            deleteLater();
        }
        return false;
    }
};

bool g_hourglass = false;

} // namespace

void setupField(QWidget* field) {
    if (!field || skipped(field) || innerEdit(field)) return;
    if (qobject_cast<QLineEdit*>(field) || qobject_cast<QAbstractSpinBox*>(field)) {
        addBehaviours(field, EnterAsTab | Colours | Hourglass);
    } else if (auto* combo = qobject_cast<QComboBox*>(field)) {
        addBehaviours(field, EnterAsTab | Colours | Hourglass);
        if (combo->isEditable()) comboInteligente(combo);
    } else if (qobject_cast<QPlainTextEdit*>(field) || qobject_cast<QTextEdit*>(field)) {
        // Several lines: Enter stays a new line.
        addBehaviours(field, Colours | Hourglass);
    } else if (qobject_cast<QPushButton*>(field) || qobject_cast<QToolButton*>(field)) {
        addBehaviours(field, EnterClicks);
    }
}

void setupFields(QWidget* screen) {
    if (!screen) return;
    for (QWidget* w : screen->findChildren<QWidget*>())
        setupField(w);
}

void keepOnEscape(QDialog* screen) {
    if (screen && !screen->findChild<QObject*>(EscapeKeeper::name(), Qt::FindDirectChildrenOnly))
        new EscapeKeeper(screen);
}

void enterAsTab(QWidget* field) {
    addBehaviours(field, EnterAsTab);
}

void focusColours(QWidget* field) {
    addBehaviours(field, Colours);
}

void comboInteligente(QComboBox* combo) {
    if (!combo) return;
    if (combo->isEditable()) combo->setCompleter(nullptr);
    combo->setInsertPolicy(QComboBox::NoInsert);
    addBehaviours(combo, SmartCombo);
}

QChar moneyKey(const QString& text, QChar key) {
    if (key.isDigit()) return key;
    if (key == u',' || key == u'.') return text.contains(u',') ? QChar() : QChar(u',');
    if (key == u'\b') return key;
    return {};
}

std::optional<QString> moneyTypedAtEnd(const QString& text, QChar key) {
    const qsizetype comma = text.lastIndexOf(u',');
    const qsizetype after = comma < 0 ? -1 : text.size() - comma - 1;
    if ((key == u',' || key == u'.') && after == 3) {
        QString regrouped = text;
        regrouped[comma] = u'.';
        return regrouped + u',';
    }
    if (key.isDigit() && after >= 3) return std::nullopt;
    const QChar use = moneyKey(text, key);
    if (use.isNull()) return std::nullopt;
    if (use == u'\b') return text.left(text.size() - 1);
    return text + use;
}

QString badMoneyMessage(const QString& text) {
    return QStringLiteral("Valor inválido: \"%1\". Digite o valor com até duas casas decimais, "
                          "como 1.234,56.")
        .arg(text);
}

QString badDateMessage(const QString& text) {
    return QStringLiteral("Data inválida: \"%1\". Digite o dia, o mês e o ano de uma data que "
                          "exista, como 25/12/2026.")
        .arg(text);
}

void moneyField(QLineEdit* field) {
    guardMoneyText(field);
    addBehaviours(field, Money);
}

void digitsOnly(QLineEdit* field) {
    addBehaviours(field, Digits);
}

void centreScreen(QWidget* screen) {
    if (!screen) return;
    centreNow(screen);
    if (!screen->isVisible()) new CentreOnShow(screen);
}

void setHourglass() {
    if (g_hourglass) return;
    g_hourglass = true;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

void clearHourglass() {
    if (!g_hourglass) return;
    g_hourglass = false;
    QGuiApplication::restoreOverrideCursor();
}

bool hourglassShown() {
    return g_hourglass;
}

void callsButton(QAction* entry, QAbstractButton* button) {
    if (!entry || !button) return;
    QObject::connect(entry, &QAction::triggered, button, [button] { button->click(); });
}

QAction* menuEntry(QWidget* menu, const QString& name, const QString& caption) {
    QAction* entry = menu->addAction(caption);
    entry->setObjectName(name);
    return entry;
}

bool leftField(const QFocusEvent* event) {
    return event->reason() != Qt::PopupFocusReason &&
           event->reason() != Qt::ActiveWindowFocusReason;
}

} // namespace rtx::ui
