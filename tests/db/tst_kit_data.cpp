// The search grid bound to a query of one table, on a real store.

#include "kit/kit.h"
#include "scriptedprompter.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QHeaderView>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

using namespace rtx::ui;
using namespace Qt::StringLiterals;
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
        store.execute(u"INSERT INTO funcionarios (x1, x5) VALUES (?, ?)"_s,
                      {QString::fromUtf16(name), u"MOTOBOY"_s});

    DBGrid grid;
    grid.setColumns({{u"x1"_s, u"NOME"_s, 200}, {u"x5"_s, u"FUNÇÃO"_s, 0}, {u"cd"_s, u"cd"_s, -1}});
    QVERIFY(grid.isColumnHidden(2));

    // Typed text is a value, quote included, and the prefix is blind to case and accents.
    auto search = [&](const QString& typed) {
        grid.setQuery({u"funcionarios"_s,
                       {},
                       store.startsWith(u"funcionarios"_s, u"x1"_s),
                       store.startParams(typed),
                       {{u"x1"_s}}});
        return guarded(nullptr, [&] { grid.refresh(); });
    };
    QVERIFY(search(u"jo"_s));
    QCOMPARE(grid.recordCount(), 3);
    QCOMPARE(grid.currentRecord(), 0);
    QCOMPARE(grid.currentText(u"x1"_s), u"JOANA"_s);
    QVERIFY(!grid.currentText(u"cd"_s).isEmpty()); // read though not shown
    QVERIFY(search(u"joão d'a"_s));
    QCOMPARE(grid.recordCount(), 1);
    QCOMPARE(grid.text(0, u"X1"_s), u"JOÃO D'ÁVILA"_s);

    // Double click (or Enter) on a row gives the row; the marked row follows.
    QVERIFY(search(QString()));
    grid.resize(500, 300);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    // Striped as the other lists: the first row plain, the second in the stripes' colour.
    {
        const QImage shot = grid.viewport()->grab().toImage();
        auto ground = [&](int row) {
            const QRect r = grid.visualRect(grid.model()->index(row, 0));
            return QColor(shot.pixel(r.right() - 4, r.center().y()));
        };
        QCOMPARE(ground(1), stripeColour());
        QCOMPARE(ground(2), QColor(Qt::white));
        QCOMPARE(ground(3), stripeColour());
    }
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
    grid.setQuery({u"funcionarios"_s, {}, u"nada = ?"_s, {1}, {}});
    QVERIFY(!guarded(nullptr, [&] { grid.refresh(); }));
    QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 1);
    QCOMPARE(grid.recordCount(), before);
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
            store.insert(u"contas_pagar"_s, {{u"CODIGO"_s, rtx::padCode(i, 5)},
                                             {u"c2"_s, u"A pagar"_s},
                                             {u"c6"_s, i % 3 ? u"BETO"_s : u"ANA"_s},
                                             {u"c12"_s, qint64(123456)}});
        unit.commit();
    }
    DBGrid grid;
    grid.setColumns(
        {{u"c6"_s, u"NOME"_s, 100}, {u"c12"_s, u"VALOR"_s, 100}, {u"CODIGO"_s, u"CÓDIGO"_s, 60}});
    grid.setQuery({u"contas_pagar"_s, {}, {}, {}, {{u"c6"_s}}});
    QVERIFY(guarded(nullptr, [&] { grid.refresh(); }));
    while (grid.hasMore())
        grid.fetchPage();
    QCOMPARE(grid.recordCount(), n);
    QSet<QString> seen;
    QString lastName;
    for (int r = 0; r < n; ++r) {
        seen << grid.text(r, u"CODIGO"_s);
        QVERIFY(grid.text(r, u"c6"_s) >= lastName);
        lastName = grid.text(r, u"c6"_s);
    }
    QCOMPARE(seen.size(), n);
    QCOMPARE(grid.text(0, u"c12"_s), u"1.234,56"_s);
    QCOMPARE(grid.value(0, u"c12"_s).toLongLong(), 123456);
    QCOMPARE(grid.sum(u"c12"_s), qint64(123456) * n);
    QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 0);
}

QTEST_MAIN(TestKitData)
#include "tst_kit_data.moc"
