// The calendar picker: the month drawn in 7 columns by 6 rows, Sunday first, the keys, the
// clicks on the days and on the empty cells, "<<" and ">>", and how it ends: Enter and the
// double click confirm, Escape and the window's close cancel.

#include "agenda/cale.h"
#include "agenda/core/clock.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

using namespace rtx::ui;
using namespace Qt::StringLiterals;

namespace {

MonthView* monthOf(Cale& c) {
    return c.findChild<MonthView*>(u"picMonth"_s);
}

QPoint centreOf(MonthView* m, int cell) {
    return m->cellRect(cell).center();
}

// Runs GetDate with the calendar answered by a function once it shows.
bool runGetDate(QDate& date, const std::function<void(Cale*)>& answer, QWidget* under = nullptr) {
    QTimer::singleShot(0, [answer] {
        auto* c = qobject_cast<Cale*>(QApplication::activeModalWidget());
        QVERIFY(c);
        answer(c);
    });
    return Cale::GetDate(date, u"Data p/ Agendamento"_s, under);
}

} // namespace

class CaleTest : public QObject {
    Q_OBJECT

private slots:
    // The caption, the first day's cell, and a month of 31 days starting on a Saturday that
    // fills the sixth row; a month move from the 31st lands on the shorter month's last day.
    void monthLayout() {
        Cale c;
        c.resize(280, 260);
        c.show();
        c.setPick(QDate(2026, 8, 15));
        QCOMPARE(c.findChild<QLabel*>(u"lblMonth"_s)->text(), u"agosto 2026"_s);
        QCOMPARE(c.firstCell(), 6);
        QCOMPARE(c.dayOfCell(6), 1);
        QCOMPARE(c.dayOfCell(36), 31);
        QCOMPARE(c.dayOfCell(5), 0);
        QCOMPARE(c.dayOfCell(37), 0);
        c.setPick(QDate(2026, 1, 31));
        c.stepMonths(1);
        QCOMPARE(c.pick(), QDate(2026, 2, 28));
        c.setPick(QDate(2024, 3, 31));
        c.stepMonths(-1);
        QCOMPARE(c.pick(), QDate(2024, 2, 29));
        QCOMPARE(c.findChild<QLabel*>(u"lblMonth"_s)->text(), u"fevereiro 2024"_s);
    }

    // The keys of the month: a day, a week, a month either way.
    void keys() {
        Cale c;
        c.show();
        MonthView* m = monthOf(c);
        c.setPick(QDate(2026, 3, 10));
        // Each key in turn, and the day picked after it.
        const QList<std::pair<Qt::Key, QDate>> steps{
            {Qt::Key_Right, {2026, 3, 11}},   {Qt::Key_Left, {2026, 3, 10}},
            {Qt::Key_Left, {2026, 3, 9}},     {Qt::Key_Down, {2026, 3, 16}},
            {Qt::Key_Up, {2026, 3, 9}},       {Qt::Key_Up, {2026, 3, 2}},
            {Qt::Key_PageDown, {2026, 4, 2}}, {Qt::Key_PageUp, {2026, 3, 2}},
            {Qt::Key_PageUp, {2026, 2, 2}}};
        for (const auto& [key, day] : steps) {
            QTest::keyClick(m, key);
            QCOMPARE(c.pick(), day);
        }
        QVERIFY(!c.confirmed());
    }

    // A press on a day moves the pick; on an empty cell it neither moves nor closes; "<<"
    // and ">>" move a month, and their double click a second one.
    void clicks() {
        Cale c;
        c.resize(280, 260);
        c.show();
        QVERIFY(QTest::qWaitForWindowExposed(&c));
        MonthView* m = monthOf(c);
        c.setPick(QDate(2026, 8, 15));
        QTest::mouseClick(m, Qt::LeftButton, {}, centreOf(m, 36));
        QCOMPARE(c.pick(), QDate(2026, 8, 31));
        QTest::mouseClick(m, Qt::LeftButton, {}, centreOf(m, 2));
        QCOMPARE(c.pick(), QDate(2026, 8, 31));
        QTest::mouseDClick(m, Qt::LeftButton, {}, centreOf(m, 40));
        QVERIFY(c.isVisible());
        QVERIFY(!c.confirmed());
        auto* next = c.findChild<QLabel*>(u"lblNext"_s);
        auto* prev = c.findChild<QLabel*>(u"lblPrev"_s);
        QTest::mouseClick(next, Qt::LeftButton);
        QCOMPARE(c.pick(), QDate(2026, 9, 30));
        // A double click is a press, a release, and the second press: two months.
        QTest::mouseClick(prev, Qt::LeftButton);
        QTest::mouseDClick(prev, Qt::LeftButton);
        QCOMPARE(c.pick(), QDate(2026, 7, 30));
    }

    // Enter and the double click on a day confirm; Escape and the close button cancel and
    // leave the date given as it was. The calendar stands just under the calling field.
    void pickAndCancel() {
        rtx::agenda::FixedClock clock(QDateTime(QDate(2026, 3, 10), QTime(9, 0)));
        rtx::agenda::setClock(&clock);
        QWidget host;
        auto* field = new QLineEdit(&host);
        field->move(40, 30);
        host.resize(300, 200);
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));

        QDate day(2026, 3, 10);
        QPoint placed;
        QString title;
        QVERIFY(runGetDate(
            day,
            [&](Cale* c) {
                placed = c->pos();
                title = c->windowTitle();
                QTest::keyClick(monthOf(*c), Qt::Key_Right);
                QTest::keyClick(monthOf(*c), Qt::Key_Return);
            },
            field));
        QCOMPARE(day, QDate(2026, 3, 11));
        QCOMPARE(title, u"Data p/ Agendamento"_s);
        QCOMPARE(placed, field->mapToGlobal(QPoint(0, field->height())));

        QVERIFY(!runGetDate(day, [](Cale* c) {
            QTest::keyClick(monthOf(*c), Qt::Key_Down);
            QTest::keyClick(monthOf(*c), Qt::Key_Escape);
        }));
        QCOMPARE(day, QDate(2026, 3, 11));
        QVERIFY(!runGetDate(day, [](Cale* c) {
            QTest::keyClick(monthOf(*c), Qt::Key_Down);
            c->close();
        }));
        QCOMPARE(day, QDate(2026, 3, 11));
        QVERIFY(runGetDate(day, [](Cale* c) {
            MonthView* m = monthOf(*c);
            QTest::mouseDClick(m, Qt::LeftButton, {}, centreOf(m, c->firstCell() + 19));
        }));
        QCOMPARE(day, QDate(2026, 3, 20));
        rtx::agenda::setClock(nullptr);
    }
};

QTEST_MAIN(CaleTest)
#include "tst_cale.moc"
