// The calendar picker: the month drawn in 7 columns by 6 rows, Sunday first, the keys, the
// clicks, and how it ends.

#include "agenda/cale.h"
#include "agenda/core/clock.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

using namespace rtx::ui;
using namespace Qt::StringLiterals;

namespace {

MonthView* monthOf(Cale& c) {
    return c.findChild<MonthView*>(u"picMonth"_s);
}

// Runs GetDate with the calendar answered by a function once it shows.
bool runGetDate(QDate& date, const std::function<void(Cale*)>& answer) {
    QTimer::singleShot(0, [answer] {
        auto* c = qobject_cast<Cale*>(QApplication::activeModalWidget());
        QVERIFY(c);
        answer(c);
    });
    return Cale::GetDate(date, u"Data p/ Agendamento"_s, nullptr);
}

} // namespace

class CaleTest : public QObject {
    Q_OBJECT

private slots:
    // A month of 31 days starting on a Saturday fills the sixth row; a month move from the
    // 31st lands on the shorter month's last day. The keys move a day, a week, a month. A
    // press on a day moves the pick; on an empty cell it neither moves nor closes; "<<" and
    // ">>" move a month, and their double click a second one.
    void monthKeysAndClicks() {
        Cale c;
        c.resize(280, 260);
        c.show();
        QVERIFY(QTest::qWaitForWindowExposed(&c));
        MonthView* m = monthOf(c);
        c.setPick(QDate(2026, 1, 31));
        c.stepMonths(1);
        QCOMPARE(c.pick(), QDate(2026, 2, 28));
        c.setPick(QDate(2026, 3, 10));
        for (Qt::Key key : {Qt::Key_Left, Qt::Key_Down, Qt::Key_PageUp})
            QTest::keyClick(m, key);
        QCOMPARE(c.pick(), QDate(2026, 2, 16));
        c.setPick(QDate(2026, 8, 15));
        QCOMPARE(c.firstCell(), 6);
        QCOMPARE(c.dayOfCell(36), 31);
        QTest::mouseClick(m, Qt::LeftButton, {}, m->cellRect(36).center());
        QCOMPARE(c.pick(), QDate(2026, 8, 31));
        QTest::mouseClick(m, Qt::LeftButton, {}, m->cellRect(2).center());
        QCOMPARE(c.pick(), QDate(2026, 8, 31));
        QTest::mouseDClick(m, Qt::LeftButton, {}, m->cellRect(40).center());
        QVERIFY(c.isVisible());
        QVERIFY(!c.confirmed());
        QTest::mouseClick(c.findChild<QLabel*>(u"lblNext"_s), Qt::LeftButton);
        QCOMPARE(c.pick(), QDate(2026, 9, 30));
        // A double click is a press, a release, and the second press: two months.
        QTest::mouseClick(c.findChild<QLabel*>(u"lblPrev"_s), Qt::LeftButton);
        QTest::mouseDClick(c.findChild<QLabel*>(u"lblPrev"_s), Qt::LeftButton);
        QCOMPARE(c.pick(), QDate(2026, 7, 30));
    }

    // Enter and the double click on a day confirm; Escape cancels and leaves the date given
    // as it was.
    void pickAndCancel() {
        rtx::agenda::FixedClock clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        rtx::agenda::setClock(&clock);
        QDate day(2026, 3, 10);
        QVERIFY(runGetDate(day, [](Cale* c) {
            QTest::keyClick(monthOf(*c), Qt::Key_Right);
            QTest::keyClick(monthOf(*c), Qt::Key_Return);
        }));
        QCOMPARE(day, QDate(2026, 3, 11));

        QVERIFY(!runGetDate(day, [](Cale* c) {
            QTest::keyClick(monthOf(*c), Qt::Key_Down);
            QTest::keyClick(monthOf(*c), Qt::Key_Escape);
        }));
        QCOMPARE(day, QDate(2026, 3, 11));
        QVERIFY(runGetDate(day, [](Cale* c) {
            MonthView* m = monthOf(*c);
            QTest::mouseDClick(m, Qt::LeftButton, {}, m->cellRect(c->firstCell() + 19).center());
        }));
        QCOMPARE(day, QDate(2026, 3, 20));
        rtx::agenda::setClock(nullptr);
    }
};

QTEST_MAIN(CaleTest)
#include "tst_cale.moc"
