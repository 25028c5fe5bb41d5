// The service price table: from the hub it keeps the list (Grava always adds, a double
// click takes a row out of the list to change or delete it); from the dispatch screen it
// picks a service into the dispatch and closes.

#include "dispatch/atendimento.h"
#include "dispatch/servi2.h"
#include "kit/kit.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "session/inicio.h"
#include "testinstall.h"

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
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
    std::unique_ptr<inicio> hubWindow;

    // The hub, as the program's start makes it.
    inicio* hub() {
        if (!hubWindow) hubWindow = std::make_unique<inicio>();
        return hubWindow.get();
    }

    Store& store() { return inst->store(); }
    qint64 services() { return store().count(u"servicos"_s); }

    // The description, value and code fields, "|" between them.
    static QString fields(QWidget* table) {
        return control<QLineEdit>(table, u"A1"_s)->text() + u'|' +
               control<QLineEdit>(table, u"A2"_s)->text() + u'|' +
               control<QLineEdit>(table, u"cd"_s)->text();
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, true);
        prompts = std::make_unique<ScriptedPrompter>();
    }

    void cleanup() {
        hubWindow.reset();
        session::end();
        prompts.reset();
        inst.reset();
    }

    void fromTheHubGravaAddsExcluiDeletes() {
        RTX_REQUIRE_INSTALL(*inst);
        hub()->openServiceTable();
        QPointer<QDialog> table = hub()->serviceTable();
        QVERIFY(table && table->isVisible() && !table->isModal());
        auto* grid = control<MSFlexGrid>(table, u"Grid1"_s);
        QCOMPARE(grid->rows(), 16);
        QCOMPARE(grid->textMatrix(1, 0), u"BANCO - DEPÓSITO"_s); // by description
        const qint64 before = services();

        // Escape leaves the table open with what was typed.
        auto* a1 = control<QLineEdit>(table, u"A1"_s);
        a1->setText(u"MEIO DIGITADO"_s);
        a1->setFocus();
        QTest::keyClick(a1, Qt::Key_Escape);
        QVERIFY(table->isVisible());
        QCOMPARE(a1->text(), u"MEIO DIGITADO"_s);
        a1->clear();

        // Without a description nothing happens, without a word.
        auto* a2 = control<MaskEdBox>(table, u"A2"_s);
        a2->setText(QString());
        control<QAbstractButton>(table, u"Command16"_s)->click();
        QCOMPARE(services(), before);
        QCOMPARE(prompts->texts(), QStringList());

        // Added at the end of the list, whatever the alphabet says; the fields cleared.
        a1->setText(u"ALMOÇO D'AVILA"_s);
        a2->setText(u"1234,56"_s);
        table->findChild<QAction*>(u"ffdfd"_s)->trigger(); // the menu twin
        QCOMPARE(services(), before + 1);
        Recordset added =
            store().open(u"SELECT * FROM servicos WHERE A1 = ?"_s, {u"ALMOÇO D'AVILA"_s});
        QCOMPARE(added.text(u"cod"_s) + u'|' + added.text(u"A2"_s), u"000016|1.234,56"_s);
        const int last = grid->rows() - 1;
        QCOMPARE(grid->textMatrix(last, 0) + u'|' + grid->textMatrix(last, 1) + u'|' +
                     grid->textMatrix(last, 2),
                 u"ALMOÇO D'AVILA|1.234,56|000016"_s);
        QCOMPARE(fields(table), u"|0,00|"_s);

        // Exclui with no row picked deletes nothing and reports success all the same.
        auto exclui = [&](bool yes) {
            script(*prompts, {yes});
            control<QAbstractButton>(table, u"Command11"_s)->click();
        };
        exclui(true);
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Deseja apagar este lançamento?"_s, u"Lançamento excluido."_s}));
        QCOMPARE(services(), before + 1);

        // A double click takes the row out of the list, not out of the table.
        const int row = gridRow(grid, u"CARTÓRIO"_s);
        const QString code = grid->textMatrix(row, 2);
        const QString value = grid->textMatrix(row, 1);
        pickRow(grid, row);
        QCOMPARE(grid->rows(), 16);
        QCOMPARE(gridRow(grid, u"CARTÓRIO"_s), -1);
        QCOMPARE(fields(table), u"CARTÓRIO|%1|%2"_s.arg(value, code));
        // No dispatch screen was open: the next one opened shows the service.
        {
            Atendimento next;
            QCOMPARE(fieldText(&next, u"A21"_s), u"CARTÓRIO"_s);
            QCOMPARE(fieldText(&next, u"A19"_s), value);
        }
        // It went to that one screen only.
        QCOMPARE(fieldText(std::make_unique<Atendimento>().get(), u"A21"_s), QString());
        QCOMPARE(services(), before + 1);

        // No: kept. Yes: deleted, the fields cleared.
        exclui(false);
        QCOMPARE(services(), before + 1);
        exclui(true);
        QCOMPARE(services(), before);
        QVERIFY(store().scalar(u"SELECT 1 FROM servicos WHERE cod = ?"_s, {code}).isNull());
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
                QVERIFY2(!control<QObject>(table, name)->property("enabled").toBool(),
                         qPrintable(name));
            auto* grid = control<MSFlexGrid>(table, u"Grid1"_s);
            pickRow(grid, gridRow(grid, u"MUDANÇA D'AVILA"_s));
            QVERIFY(!table->isVisible());
            checked = true;
        });
        control<QAbstractButton>(&dispatch, u"Command19"_s)->click();
        QVERIFY(checked);
        QCOMPARE(fieldText(&dispatch, u"A21"_s), u"MUDANÇA D'AVILA"_s);
        QCOMPARE(fieldText(&dispatch, u"A19"_s), u"1.234,56"_s);

        // Escape closes a picker, and nothing is picked.
        checked = false;
        onModal([&](QWidget* table) {
            QTest::keyClick(table, Qt::Key_Escape);
            QVERIFY(!table->isVisible());
            checked = true;
        });
        control<QAbstractButton>(&dispatch, u"Command19"_s)->click();
        QVERIFY(checked);
        QCOMPARE(fieldText(&dispatch, u"A21"_s), u"MUDANÇA D'AVILA"_s);

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
