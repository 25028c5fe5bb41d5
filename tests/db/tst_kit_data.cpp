// The search grid bound to a statement, on a real store.

#include "scriptedprompter.h"
#include "session/kit/kit.h"
#include "testinstall.h"

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

using namespace rtx::ui;
using rtx::test::ScriptedPrompter;
using rtx::test::TestInstallation;

class TestKitData : public QObject {
    Q_OBJECT

private slots:
    void gridFollowsItsStatement();
};

void TestKitData::gridFollowsItsStatement() {
    TestInstallation inst;
    RTX_REQUIRE_INSTALL(inst);
    ScriptedPrompter prompts;
    rtx::Store& store = inst.store();
    for (const char16_t* name : {u"JOÃO D'ÁVILA", u"JOANA", u"MARIA", u"JOSÉ"})
        store.execute(QStringLiteral("INSERT INTO funcionarios (x1, x5) VALUES (?, ?)"),
                      {QString::fromUtf16(name), QStringLiteral("MOTOBOY")});

    DBGrid grid;
    grid.setColumns({{QStringLiteral("x1"), QStringLiteral("NOME"), 200},
                     {QStringLiteral("x5"), QStringLiteral("FUNÇÃO"), 0},
                     {QStringLiteral("cd"), QStringLiteral("cd"), -1}});
    QVERIFY(grid.isColumnHidden(2));

    // Typed text is a value, quote included, and the prefix is blind to case and accents.
    auto search = [&](const QString& typed) {
        grid.setSource(QStringLiteral("SELECT * FROM funcionarios WHERE ") +
                           rtx::Store::prefixClause(QStringLiteral("x1")) +
                           QStringLiteral(" ORDER BY x1"),
                       rtx::Store::prefixParams(typed));
        return guarded(nullptr, [&] { grid.refresh(); });
    };
    QVERIFY(search(QStringLiteral("jo")));
    QCOMPARE(grid.recordCount(), 3);
    QCOMPARE(grid.currentRecord(), 0);
    QCOMPARE(grid.currentText(QStringLiteral("x1")), QStringLiteral("JOANA"));
    QVERIFY(!grid.currentText(QStringLiteral("cd")).isEmpty()); // read though not shown
    QVERIFY(search(QStringLiteral("joão d'a")));
    QCOMPARE(grid.recordCount(), 1);
    QCOMPARE(grid.text(0, QStringLiteral("X1")), QStringLiteral("JOÃO D'ÁVILA"));

    // Double click (or Enter) on a row gives the row; the marked row follows.
    QVERIFY(search(QString()));
    grid.resize(500, 300);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QSignalSpy chosen(&grid, &DBGrid::recordActivated);
    const QRect cell = grid.visualRect(grid.model()->index(2, 0));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 2);
    QCOMPARE(grid.currentRecord(), 2);
    QTest::keyClick(&grid, Qt::Key_Return);
    QCOMPARE(chosen.count(), 2);

    // A failing statement shows the engine's words and leaves the rows as they were.
    const int before = grid.recordCount();
    grid.setSource(QStringLiteral("SELECT * FROM funcionarios WHERE nada = ?"), {1});
    QVERIFY(!guarded(nullptr, [&] { grid.refresh(); }));
    QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 1);
    QCOMPARE(grid.recordCount(), before);
    grid.clearRows();
    QCOMPARE(grid.currentRecord(), -1);
    QCOMPARE(grid.currentText(QStringLiteral("x1")), QString());
}

QTEST_MAIN(TestKitData)
#include "tst_kit_data.moc"
