#include "kit/maskedbox.h"

#include "kit/actions.h"
#include "kit/dialogs.h"

#include "kit/fields.h"
#include "kit/moneyinput.h"
#include "store/formats.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QTabWidget>

namespace rtx::ui {

namespace {

bool g_refusing = false; // a field is taking the focus back after its message

// A mask with a letter-or-digit place ('A') keeps letters too, in capitals; the other masks
// keep digits alone.
bool lettersIn(const QString& mask) {
    return mask.contains(u'A');
}

bool kept(QChar c, bool letters) {
    return c.isDigit() || (letters && c.isLetter() && c.unicode() < 128);
}

QString keptOf(const QString& text, bool letters) {
    QString out;
    for (QChar c : text)
        if (kept(c, letters)) out += c.toUpper();
    return out;
}

// Position in a shown text just after its n-th kept character (0: the start).
int positionAfterKept(const QString& shown, int n, bool letters) {
    if (n <= 0) return 0;
    int seen = 0;
    for (int i = 0; i < shown.size(); ++i)
        if (kept(shown.at(i), letters) && ++seen == n) return i + 1;
    return int(shown.size());
}

int keptBefore(const QString& text, int position, bool letters) {
    int n = 0;
    for (int i = 0; i < position && i < text.size(); ++i)
        if (kept(text.at(i), letters)) ++n;
    return n;
}

} // namespace

MaskEdBox::MaskEdBox(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textChanged, this, [this] { reformat(); });
}

MaskEdBox::MaskEdBox(const QString& mask, QWidget* parent) : MaskEdBox(parent) {
    setMask(mask);
}

QString MaskEdBox::applyMask(const QString& mask, const QString& text) {
    const QString chars = keptOf(text, lettersIn(mask));
    QString out;
    int next = 0;
    for (QChar m : mask) {
        if (next >= chars.size()) break;
        if (m == u'#') {
            // A letter where a digit must stand ends the text: what follows it is dropped.
            if (!chars.at(next).isDigit()) break;
            out += chars.at(next++);
        } else if (m == u'A') {
            out += chars.at(next++);
        } else {
            out += m; // a literal shows once a character follows it
        }
    }
    return out;
}

int MaskEdBox::places() const {
    return int(mask_.count(u'#') + mask_.count(u'A'));
}

void MaskEdBox::setMask(const QString& mask) {
    const QString kept = digitMask() ? digits() : QLineEdit::text();
    mask_ = mask;
    if (isMoney()) {
        guardMoneyText(this);
        setPlaceholderText(QString());
        setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        QLineEdit::setText(kept.isEmpty() ? QStringLiteral("0,00") : kept);
    } else {
        if (dynamic_cast<const MoneyValidator*>(validator())) setValidator(nullptr);
        QString hint = mask;
        hint.replace(u'#', u'_');
        hint.replace(u'A', u'_');
        setPlaceholderText(hint);
        setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        QLineEdit::setText(kept);
    }
    reformat();
}

QString MaskEdBox::text() const {
    if (digitMask() && !promptInclude_) return digits();
    return QLineEdit::text();
}

void MaskEdBox::setText(const QString& text) {
    QLineEdit::setText(text);
}

void MaskEdBox::clear() {
    QLineEdit::setText(isMoney() ? QStringLiteral("0,00") : QString());
}

QString MaskEdBox::digits() const {
    return keptOf(QLineEdit::text(), lettersIn(mask_));
}

bool MaskEdBox::isComplete() const {
    if (digitMask()) return digits().size() == places();
    return !QLineEdit::text().isEmpty();
}

// Any change of the text (typing, pasting, setText through a QLineEdit pointer) is put
// back into the mask, with the caret kept after the same digit.
void MaskEdBox::reformat() {
    if (reformatting_ || !digitMask()) return;
    const QString now = QLineEdit::text();
    const QString shaped = applyMask(mask_, now);
    if (shaped == now) return;
    const bool letters = lettersIn(mask_);
    const int caretChars = keptBefore(now, cursorPosition(), letters);
    reformatting_ = true;
    QLineEdit::setText(shaped);
    setCursorPosition(positionAfterKept(shaped, caretChars, letters));
    reformatting_ = false;
}

void MaskEdBox::keyPressEvent(QKeyEvent* event) {
    if (isMoney()) {
        if (!moneyKeyPress(this, event)) QLineEdit::keyPressEvent(event);
        return;
    }
    const bool shortcut = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    const QString typed = event->text();
    if (!shortcut && digitMask() && typed.size() == 1 && typed.at(0).isPrint()) {
        const QChar c = typed.at(0);
        const bool letters = lettersIn(mask_);
        if (!kept(c, letters)) return;
        // A full field takes no more digits unless some are selected to be replaced.
        if (digits().size() >= places() && keptOf(selectedText(), letters).isEmpty()) return;
        if (c.isLower()) {
            // Letters are kept in capitals, as the documents print them.
            insert(c.toUpper());
            return;
        }
    }
    QLineEdit::keyPressEvent(event);
}

// The menu's "Colar" of a money field pastes as Ctrl+V does, with its message when refused.
void MaskEdBox::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The entry is known by what it calls (its caption depends on Qt's translations), however
    // Qt connected it.
    for (QAction* entry : menu->actions()) {
        if (!isMoney()) break;
        const bool paste = disconnect(entry, &QAction::triggered, this, &QLineEdit::paste) ||
                           disconnect(entry, SIGNAL(triggered()), this, SLOT(paste()));
        if (!paste) continue;
        entry->setObjectName(QStringLiteral("edit-paste"));
        connect(entry, &QAction::triggered, this, [this] { pasteMoney(this); });
    }
    menu->popup(event->globalPos());
}

std::optional<qint64> MaskEdBox::cents() const {
    const QString shown = QLineEdit::text().trimmed();
    if (shown.isEmpty()) return 0;
    return parseMoney(shown);
}

bool MaskEdBox::settleMoney() {
    if (!isMoney()) return true;
    if (const auto amount = cents()) {
        QLineEdit::setText(formatMoney(*amount));
        return true;
    }
    refuse(badMoneyMessage(QLineEdit::text()));
    return false;
}

std::optional<QDate> MaskEdBox::date() const {
    if (digits().isEmpty()) return QDate();
    if (!isComplete()) return std::nullopt;
    return parseDate(shownText());
}

void MaskEdBox::setTodayWhenEmpty() {
    setEmptyDate([] { return QDate::currentDate(); });
}

bool MaskEdBox::settleDate() {
    if (!isDate()) return true;
    const auto typed = date();
    if (!typed) {
        refuse(badDateMessage(shownText()));
        return false;
    }
    if (!typed->isValid()) {
        if (emptyDate_) QLineEdit::setText(formatDate(emptyDate_()));
        return true;
    }
    QLineEdit::setText(formatDate(*typed));
    return true;
}

bool MaskEdBox::settle() {
    return isMoney() ? settleMoney() : settleDate();
}

std::optional<qint64> MaskEdBox::settledCents() {
    if (!settleMoney()) return std::nullopt;
    return cents();
}

std::optional<QDate> MaskEdBox::settledDate() {
    if (!settleDate()) return std::nullopt;
    return date();
}

// Says what is wrong and takes the focus back, on its tab, with the text selected to be typed
// over.
void MaskEdBox::refuse(const QString& message) {
    notice(this, message);
    // Another field that cannot be read, left as the focus comes back here, waits for the
    // next action: two fields must not take the focus from each other.
    const QScopedValueRollback refusing(g_refusing, true);
    for (QWidget* page = this; page && page != window(); page = page->parentWidget()) {
        auto* stack = qobject_cast<QStackedWidget*>(page->parentWidget());
        if (!stack) continue;
        if (auto* tabs = qobject_cast<QTabWidget*>(stack->parentWidget()))
            tabs->setCurrentWidget(page);
        else
            stack->setCurrentWidget(page);
    }
    setFocus(Qt::OtherFocusReason);
    selectAll();
}

void MaskEdBox::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (!leftField(event)) return;
    // The screen's own handler of the leave settled the field and took the focus back; or
    // another field is taking the focus back.
    if (hasFocus() || g_refusing) return;
    // A click on a button whose action settles the fields first: the action says it, once.
    if (leftForSettlingAction(event)) return;
    settle();
}

} // namespace rtx::ui
