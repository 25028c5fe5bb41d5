// The search grid bound to a query of one table, on a real store.

#include "scriptedprompter.h"
#include "session/kit/kit.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QHeaderView>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

using namespace rtx::ui;
using rtx::test::ScriptedPrompter;
using rtx::test::TestInstallation;

class TestKitData : public QObject {
    Q_OBJECT

private slots:
    void gridFollowsItsQuery();
    void gridPagesKeepValues();
};

void TestKitData::gridFollowsItsQuery() {
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
        grid.setQuery({QStringLiteral("funcionarios"),
                       {},
                       store.startsWith(QStringLiteral("funcionarios"), QStringLiteral("x1")),
                       store.startParams(typed),
                       {{QStringLiteral("x1")}}});
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
    // A double click below the last row is reported too, without a row.
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {},
                       QPoint(20, grid.viewport()->height() - 5));
    QCOMPARE(chosen.count(), 3);
    QCOMPARE(chosen.at(2).at(0).toInt(), -1);

    // A failing statement shows the engine's words and leaves the rows as they were.
    const int before = grid.recordCount();
    grid.setQuery({QStringLiteral("funcionarios"), {}, QStringLiteral("nada = ?"), {1}, {}});
    QVERIFY(!guarded(nullptr, [&] { grid.refresh(); }));
    QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 1);
    QCOMPARE(grid.recordCount(), before);
    grid.clearRows();
    QCOMPARE(grid.currentRecord(), -1);
    QCOMPARE(grid.currentText(QStringLiteral("x1")), QString());
}

// Pages follow one another by key: many rows of one name come once each, in order, and
// money stays cents (shown "1.234,56", summed exactly).
void TestKitData::gridPagesKeepValues() {
    TestInstallation inst;
    RTX_REQUIRE_INSTALL(inst);
    ScriptedPrompter prompts;
    rtx::Store& store = inst.store();
    const int n = 2 * DBGrid::pageSize() + 37;
    {
        rtx::UnitOfWork unit(store);
        for (int i = 1; i <= n; ++i)
            store.insert(
                QStringLiteral("contas_pagar"),
                {{QStringLiteral("CODIGO"), rtx::padCode(i, 5)},
                 {QStringLiteral("c2"), QStringLiteral("A pagar")},
                 {QStringLiteral("c6"), i % 3 ? QStringLiteral("BETO") : QStringLiteral("ANA")},
                 {QStringLiteral("c12"), qint64(123456)}});
        unit.commit();
    }
    DBGrid grid;
    grid.setColumns({{QStringLiteral("c6"), QStringLiteral("NOME"), 100},
                     {QStringLiteral("c12"), QStringLiteral("VALOR"), 100},
                     {QStringLiteral("CODIGO"), QStringLiteral("CÓDIGO"), 60}});
    grid.setQuery({QStringLiteral("contas_pagar"), {}, {}, {}, {{QStringLiteral("c6")}}});
    QVERIFY(guarded(nullptr, [&] { grid.refresh(); }));
    while (grid.hasMore())
        grid.fetchPage();
    QCOMPARE(grid.recordCount(), n);
    QSet<QString> seen;
    QString lastName;
    for (int r = 0; r < n; ++r) {
        seen << grid.text(r, QStringLiteral("CODIGO"));
        QVERIFY(grid.text(r, QStringLiteral("c6")) >= lastName);
        lastName = grid.text(r, QStringLiteral("c6"));
    }
    QCOMPARE(seen.size(), n);
    QCOMPARE(grid.text(0, QStringLiteral("c12")), QStringLiteral("1.234,56"));
    QCOMPARE(grid.value(0, QStringLiteral("c12")).toLongLong(), 123456);
    QCOMPARE(grid.sum(QStringLiteral("c12")), qint64(123456) * n);
    QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 0);
}

QTEST_MAIN(TestKitData)
#include "tst_kit_data.moc"
