#pragma once
// Small drivers for screen tests: a control by its name and the text it shows, a row of a
// list by its first column, a pick with Enter, an action on the modal window about to open, and the
// answers queued for one click.

#include "kit/grids.h"
#include "kit/maskedbox.h"
#include "kit/sstab.h"
#include "scriptedprompter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <initializer_list>

namespace rtx::test {

// A control of a window by its name; stops the test program when there is none.
template <class T = QWidget> T* control(const QWidget* window, const QString& name) {
    T* w = window->findChild<T*>(name);
    if (!w) qFatal("no control %s", qPrintable(name));
    return w;
}

// The text a control of a window shows, whatever its kind: a masked field as its text()
// gives it, a list's current text, a label's, a memo's.
inline QString fieldText(QWidget* window, const QString& name) {
    QWidget* w = control(window, name);
    if (auto* mask = qobject_cast<rtx::ui::MaskEdBox*>(w)) return mask->text();
    if (auto* edit = qobject_cast<QLineEdit*>(w)) return edit->text();
    if (auto* combo = qobject_cast<QComboBox*>(w)) return combo->currentText();
    if (auto* label = qobject_cast<QLabel*>(w)) return label->text();
    if (auto* memo = qobject_cast<QPlainTextEdit*>(w)) return memo->toPlainText();
    qFatal("control %s shows no text", qPrintable(name));
    return {};
}

// The first row of a flex grid whose first column holds the text; -1 when none.
inline int gridRow(rtx::ui::MSFlexGrid* grid, const QString& text) {
    for (int r = 1; r < grid->rows(); ++r)
        if (grid->textMatrix(r, 0) == text) return r;
    return -1;
}

// A real double click on a row of a flex grid (0: the header): a click, then the second.
inline void doubleClickRow(rtx::ui::MSFlexGrid* grid, int row) {
    QApplication::processEvents(); // a tab just shown lays itself out
    const QPoint at = grid->visualItemRect(grid->item(row - 1, 0)).center();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
}

// What of a screen would not show on a desktop with the room given: the least size the
// screen asks for, or, at that size and on any of its tabs, a named control outside the
// window or (wholeCaptions) a caption or button cut short. Empty when everything shows.
inline QString misfit(QWidget* screen, QSize room, bool wholeCaptions = true) {
    const QSize least = screen->minimumSizeHint();
    if (least.boundedTo(room) != least)
        return QStringLiteral("%1 %2x%3")
            .arg(screen->objectName())
            .arg(least.width())
            .arg(least.height());
    screen->resize(least);
    auto* tabs = screen->findChild<rtx::ui::SSTab*>(QStringLiteral("SSTab1"));
    for (int t = 0; t < (tabs ? tabs->count() : 1); ++t) {
        if (tabs) tabs->setTab(t);
        QApplication::processEvents();
        for (QWidget* w : screen->findChildren<QWidget*>()) {
            if (!w->isVisible()) continue;
            const QRect at(w->mapTo(screen, QPoint(0, 0)), w->size());
            const bool caption =
                wholeCaptions && (qobject_cast<QLabel*>(w) || qobject_cast<QAbstractButton*>(w));
            if ((!w->objectName().isEmpty() && !screen->rect().contains(at)) ||
                (caption && w->width() < w->minimumSizeHint().width()))
                return screen->objectName() + u' ' + w->objectName() + u' ' +
                       w->property("text").toString();
        }
    }
    return {};
}

// Picks a row of a flex grid from the keyboard: the row, then Enter.
inline void pickRow(rtx::ui::MSFlexGrid* grid, int row) {
    grid->setRow(row);
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Return);
}

// Runs an action on the modal window that is about to open, then closes it if the action
// left it open, so that a failed check never hangs the test.
inline void onModal(std::function<void(QWidget*)> action) {
    QTimer::singleShot(0, [action] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) {
            QFAIL("no modal window opened");
            return;
        }
        QPointer<QWidget> guard(modal);
        action(modal);
        if (guard && guard->isVisible()) guard->close();
    });
}

// Forgets what was shown and queues the answers for the next click: the typed text for a
// prompt first when given, then the answers to the questions.
inline void script(ScriptedPrompter& prompts, std::initializer_list<bool> answers,
                   const QString& typed = {}) {
    prompts.clear();
    if (!typed.isNull()) prompts.answerText(typed);
    for (bool yes : answers)
        yes ? prompts.answerYes() : prompts.answerNo();
}

} // namespace rtx::test
