// The service price table: from the hub it keeps the list; from the dispatch screen it
// picks a service into the dispatch and closes.

#include "dispatch/atendimento.h"
#include "dispatch/servi2.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "session/inicio.h"
#include "testinstall.h"

#include <QAction>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;

class Servi2Test : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<ScriptedPrompter> prompts;
    Store& store() { return inst->store(); }
    qint64 services() { return store().count(u"servicos"_s); }

    // The description, value and code fields, "|" between them.
    static QString fields(QWidget* t) {
        return fieldText(t, u"A1"_s) + u'|' + fieldText(t, u"A2"_s) + u'|' + fieldText(t, u"cd"_s);
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, true);
        prompts = std::make_unique<ScriptedPrompter>();
    }
    void cleanup() {
        session::end();
        prompts.reset();
        inst.reset();
    }

    void fromTheHubGravaAddsExcluiDeletes() {
        RTX_REQUIRE_INSTALL(*inst);
        inicio hub;
        hub.openServiceTable();
        QPointer<QDialog> table = hub.serviceTable();
        QVERIFY(table && table->isVisible() && !table->isModal());
        auto* grid = control<MSFlexGrid>(table, u"Grid1"_s);
        const qint64 before = services();

        // Added at the end of the list whatever the alphabet says, the fields cleared.
        control<QLineEdit>(table, u"A1"_s)->setText(u"ALMOÇO D'AVILA"_s);
        control<MaskEdBox>(table, u"A2"_s)->setText(u"1234,56"_s);
        table->findChild<QAction*>(u"ffdfd"_s)->trigger(); // the menu twin
        const int last = grid->rows() - 1;
        QCOMPARE(grid->textMatrix(last, 0) + u'|' + grid->textMatrix(last, 1) + u'|' +
                     grid->textMatrix(last, 2),
                 u"ALMOÇO D'AVILA|1.234,56|000016"_s);
        QCOMPARE(fields(table), u"|0,00|"_s);

        // A double click takes the row out of the list, not out of the table; Exclui deletes
        // it and clears the fields.
        const int row = gridRow(grid, u"CARTÓRIO"_s);
        const QString picked =
            u"CARTÓRIO|%1|%2"_s.arg(grid->textMatrix(row, 1), grid->textMatrix(row, 2));
        pickRow(grid, row);
        QCOMPARE(gridRow(grid, u"CARTÓRIO"_s), -1);
        QCOMPARE(fields(table), picked);
        QCOMPARE(services(), before + 1);
        script(*prompts, {true});
        control<QAbstractButton>(table, u"Command11"_s)->click();
        QCOMPARE(services(), before);
        QCOMPARE(fields(table), u"|0,00|"_s);
    }

    void pickerFromTheDispatch() {
        RTX_REQUIRE_INSTALL(*inst);
        store().execute(u"INSERT INTO servicos (cod, A1, A2) VALUES (?, ?, ?)"_s,
                        {u"000099"_s, u"MUDANÇA D'AVILA"_s, qint64(123456)});
        Atendimento dispatch;
        dispatch.show();
        bool checked = false;
        onModal([&](QWidget* table) {
            // A picker: neither Grava nor Exclui, by button or by menu; a pick closes it.
            for (const QString& name : {u"Command16"_s, u"Command11"_s, u"ffdfd"_s, u"ggf"_s})
                QVERIFY(!control<QObject>(table, name)->property("enabled").toBool());
            auto* grid = control<MSFlexGrid>(table, u"Grid1"_s);
            pickRow(grid, gridRow(grid, u"MUDANÇA D'AVILA"_s));
            QVERIFY(!table->isVisible());
            checked = true;
        });
        control<QAbstractButton>(&dispatch, u"Command19"_s)->click();
        QVERIFY(checked);
        QCOMPARE(fieldText(&dispatch, u"A21"_s) + u'|' + fieldText(&dispatch, u"A19"_s),
                 u"MUDANÇA D'AVILA|1.234,56"_s);

        // From the hub the pick goes to a dispatch screen that stands open.
        SERVI2 fromHub;
        auto* grid = control<MSFlexGrid>(&fromHub, u"Grid1"_s);
        fromHub.show();
        pickRow(grid, gridRow(grid, u"CARTÓRIO"_s));
        QCOMPARE(fieldText(&dispatch, u"A21"_s), u"CARTÓRIO"_s);
        QVERIFY(fromHub.isVisible());
    }
};

QTEST_MAIN(Servi2Test)
#include "tst_servi2.moc"
