// The search grid bound to a query of one table, on a real store.

#include "kit/kit.h"
#include "scriptedprompter.h"
#include "store/formats.h"
#include "testinstall.h"

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
    void gridOnTheStore() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        rtx::Store& store = inst.store();
        for (const char16_t* name : {u"JOÃO D'ÁVILA", u"JOANA", u"MARIA", u"JOSÉ"})
            store.execute(u"INSERT INTO funcionarios (x1, x5) VALUES (?, ?)"_s,
                          {QString::fromUtf16(name), u"MOTOBOY"_s});
        DBGrid grid;
        grid.setColumns({{u"x1"_s, u"NOME"_s, 200}});
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
        QCOMPARE(grid.currentText(u"x1"_s), u"JOANA"_s);
        QVERIFY(search(u"joão d'a"_s));
        QCOMPARE(grid.text(0, u"X1"_s), u"JOÃO D'ÁVILA"_s);
        QVERIFY(search(QString())); // double click (or Enter) on a row gives the row
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        QSignalSpy chosen(&grid, &DBGrid::recordActivated);
        const QRect cell = grid.visualRect(grid.model()->index(2, 0));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        QTest::keyClick(&grid, Qt::Key_Return);
        QCOMPARE(chosen.count(), 2);
        QCOMPARE(chosen.at(0).at(0).toInt(), 2);

        // A failing statement shows the engine's words and leaves the rows as they were.
        const int before = grid.recordCount();
        grid.setQuery({u"funcionarios"_s, {}, u"nada = ?"_s, {1}, {}});
        QVERIFY(!guarded(nullptr, [&] { grid.refresh(); }));
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Error), 1);
        QCOMPARE(grid.recordCount(), before);
        // Pages follow one another by key: many rows of one name come once each, in order,
        // and money stays cents (shown "1.234,56", summed exactly).
        const int n = 2 * DBGrid::pageSize() + 37;
        rtx::UnitOfWork unit(store);
        for (int i = 1; i <= n; ++i)
            store.insert(u"contas_pagar"_s, {{u"CODIGO"_s, rtx::padCode(i, 5)},
                                             {u"c6"_s, i % 3 ? u"BETO"_s : u"ANA"_s},
                                             {u"c12"_s, qint64(123456)}});
        unit.commit();
        grid.setColumns(
            {{u"CODIGO"_s, u"cd"_s, -1}, {u"c6"_s, u"NOME"_s, 100}, {u"c12"_s, u"VALOR"_s, 100}});
        grid.setQuery({u"contas_pagar"_s, {}, {}, {}, {{u"c6"_s}}});
        QVERIFY(guarded(nullptr, [&] { grid.refresh(); }));
        while (grid.hasMore())
            grid.fetchPage();
        QCOMPARE(grid.recordCount(), n);
        QSet<QString> seen;
        for (int r = 0; r < n; ++r) {
            seen << grid.text(r, u"CODIGO"_s);
            QVERIFY(r == 0 || grid.text(r, u"c6"_s) >= grid.text(r - 1, u"c6"_s));
        }
        QCOMPARE(seen.size(), n);
        QCOMPARE(grid.text(0, u"c12"_s), u"1.234,56"_s);
        QCOMPARE(grid.sum(u"c12"_s), qint64(123456) * n);
    }
};

QTEST_MAIN(TestKitData)
#include "tst_kit_data.moc"
