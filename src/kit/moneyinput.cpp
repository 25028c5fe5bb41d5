#include "kit/moneyinput.h"

#include "kit/dialogs.h"
#include "kit/fields.h"
#include "store/formats.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace rtx::ui {

namespace {

bool plainDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

// Where a key or a paste goes in: the text with the selection taken out, and the place of
// the caret (the start of the selection, when there was one).
struct Opening {
    QString text;
    int at = 0;
};

Opening openingOf(const QLineEdit* field) {
    Opening o{field->text(), field->cursorPosition()};
    if (field->hasSelectedText()) {
        o.at = field->selectionStart();
        o.text.remove(o.at, field->selectedText().size());
    }
    return o;
}

// Puts the new text in as one edit of the user's (it can be undone, and the field counts as
// changed), with the caret where the typing goes on.
void replaceText(QLineEdit* field, const QString& text, int caret) {
    field->selectAll();
    field->insert(text);
    field->setCursorPosition(caret);
}

} // namespace

MoneyText moneyTextFits(const QString& text) {
    const qsizetype comma = text.indexOf(u',');
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (plainDigit(c) || c == u'.') continue;
        if (c == u',' && i == comma) continue;
        return MoneyText::NotMoney;
    }
    QString whole = comma < 0 ? text : text.left(comma);
    const QString decimals = comma < 0 ? QString() : text.mid(comma + 1);
    // Three digits after the comma stand while an amount is typed as "1,234" and the next
    // separator turns that comma into a thousands point; a fourth never does.
    if (decimals.contains(u'.') || decimals.size() > 3) return MoneyText::NotMoney;
    whole.remove(u'.');
    while (whole.startsWith(u'0'))
        whole.remove(0, 1);
    if (whole.size() > 15) return MoneyText::TooLarge;
    qint64 cents = whole.toLongLong() * 100;
    if (decimals.size() <= 2) cents += decimals.leftJustified(2, u'0').toLongLong();
    return cents > maxMoneyCents ? MoneyText::TooLarge : MoneyText::Fits;
}

QValidator::State MoneyValidator::validate(QString& text, int& /*position*/) const {
    // Never Intermediate: a field whose text is not Acceptable sends no editingFinished.
    return moneyTextFits(text) == MoneyText::Fits ? Acceptable : Invalid;
}

void guardMoneyText(QLineEdit* field) {
    if (field && !dynamic_cast<const MoneyValidator*>(field->validator()))
        field->setValidator(new MoneyValidator(field));
}

bool moneyKeyPress(QLineEdit* field, QKeyEvent* key) {
    if (key->matches(QKeySequence::Paste)) {
        pasteMoney(field);
        return true;
    }
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
    const QString typed = key->text();
    if (typed.size() != 1 || !typed.at(0).isPrint() || field->isReadOnly()) return false;
    const QChar c = typed.at(0);

    // The key replaces the selection first: ",50" typed over the selected "0,00" is 0,50.
    const Opening o = openingOf(field);
    QString next;
    int caret = 0;
    if (o.at == o.text.size()) {
        const auto atEnd = moneyTypedAtEnd(o.text, c);
        if (!atEnd) return true;
        next = *atEnd;
        caret = int(next.size());
    } else {
        const QChar use = moneyKey(o.text, c);
        if (use.isNull()) return true;
        next = o.text;
        next.insert(o.at, use);
        caret = o.at + 1;
    }
    // A comma typed before any digit stands for no whole reais.
    if (next.startsWith(u',')) {
        next.prepend(u'0');
        ++caret;
    }
    switch (moneyTextFits(next)) {
    case MoneyText::NotMoney:
        return true;
    case MoneyText::TooLarge:
        notice(field, tooMuchMoneyMessage());
        return true;
    case MoneyText::Fits:
        break;
    }
    replaceText(field, next, caret);
    return true;
}

bool pasteMoney(QLineEdit* field) {
    if (field->isReadOnly()) return false;
    const QClipboard* clipboard = QGuiApplication::clipboard();
    const QString pasted = clipboard ? clipboard->text().trimmed() : QString();
    Opening o = openingOf(field);
    o.text.insert(o.at, pasted);
    switch (moneyTextFits(o.text)) {
    case MoneyText::NotMoney:
        notice(field, badMoneyMessage(pasted));
        return false;
    case MoneyText::TooLarge:
        notice(field, tooMuchMoneyMessage());
        return false;
    case MoneyText::Fits:
        break;
    }
    field->insert(pasted);
    return true;
}

} // namespace rtx::ui
