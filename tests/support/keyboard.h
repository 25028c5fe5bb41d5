#pragma once
// Typing for screen tests. QTest::keyClicks cannot send accented letters (ç, ã, É): those go
// as key events that carry the character's text.

#include <QString>
#include <QTest>
#include <QWidget>

namespace rtx::test {

inline void typeText(QWidget* w, const QString& text) {
    for (QChar c : text) {
        if (c.unicode() < 128)
            QTest::keyClick(w, char(c.unicode()));
        else
            QTest::sendKeyEvent(QTest::KeyAction::Click, w, Qt::Key_unknown, QString(c),
                                Qt::NoModifier);
    }
}

} // namespace rtx::test
