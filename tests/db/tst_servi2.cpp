// The service price table: from the hub it keeps the list (Grava always adds, a double
// click takes a row out of the list to change or delete it); from the dispatch screen it
// picks a service into the dispatch and closes.

#include "dispatch/atendimento.h"
#include "dispatch/servi2.h"
#include "scriptedprompter.h"
#include "session/inicio.h"
#include "session/kit/kit.h"
#include "session/session.h"
#include "testinstall.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QTimer>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

class Servi2Test : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<ScriptedPrompter> prompts;

    Store& store() { return inst->store(); }

    template <class T = QWidget> static T* get(QWidget* screen, const QString& name) {
        T* w = screen->findChild<T*>(name);
        if (!w) qFatal("no control %s", qPrintable(name));
        return w;
    }

    static int rowOf(MSFlexGrid* grid, const QString& description) {
        for (int r = 1; r < grid->rows(); ++r)
            if (grid->textMatrix(r, 0) == description) return r;
        return -1;
    }

    static void pick(MSFlexGrid* grid, int row) {
        grid->setRow(row);
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Return);
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, true);
        prompts = std::make_unique<ScriptedPrompter>();
    }

    void cleanup() {
        closeHub();
        prompts.reset();
        inst.reset();
    }

    void fromTheHub() {
        RTX_REQUIRE_INSTALL(*inst);
        hub()->openServiceTable();
        QPointer<QDialog> table = hub()->serviceTable();
        QVERIFY(table);
        QVERIFY(table->isVisible());
        QVERIFY(!table->isModal());
        QCOMPARE(table->windowTitle(), u"Tabela"_s);
        auto* grid = get<MSFlexGrid>(table, u"Grid1"_s);
        QCOMPARE(grid->rows(), 16);
        QCOMPARE(grid->textMatrix(1, 0), u"BANCO - DEPÓSITO"_s); // by description
        QCOMPARE(grid->textMatrix(0, 1), u"VALOR"_s);
        QCOMPARE(get<QLineEdit>(table, u"A2"_s)->text(), u"0,00"_s);
        QVERIFY(get<QAbstractButton>(table, u"Command16"_s)->isEnabled());
        table->close();
    }

    void gravaAlwaysAdds() {
        RTX_REQUIRE_INSTALL(*inst);
        SERVI2 table;
        auto* grid = get<MSFlexGrid>(&table, u"Grid1"_s);
        auto* a1 = get<QLineEdit>(&table, u"A1"_s);
        auto* a2 = get<MaskEdBox>(&table, u"A2"_s);
        const qint64 before = store().count(u"servicos"_s);

        // Without a description nothing happens, without a word.
        a2->setText(QString());
        get<QAbstractButton>(&table, u"Command16"_s)->click();
        QCOMPARE(store().count(u"servicos"_s), before);
        QCOMPARE(prompts->texts(), QStringList());
        QCOMPARE(a2->text(), u"0,00"_s);

        a1->setText(u"ALMOÇO D'AVILA"_s);
        a2->setText(u"1234,56"_s);
        table.findChild<QAction*>(u"ffdfd"_s)->trigger(); // the menu twin
        QCOMPARE(store().count(u"servicos"_s), before + 1);
        Recordset row =
            store().open(u"SELECT * FROM servicos WHERE A1 = ?"_s, {u"ALMOÇO D'AVILA"_s});
        QCOMPARE(row.text(u"cod"_s), u"000016"_s);
        QCOMPARE(row.cents(u"A2"_s), 123456);
        // At the end of the list, whatever the alphabet says; the fields cleared.
        QCOMPARE(grid->textMatrix(grid->rows() - 1, 0), u"ALMOÇO D'AVILA"_s);
        QCOMPARE(grid->textMatrix(grid->rows() - 1, 1), u"1.234,56"_s);
        QCOMPARE(grid->textMatrix(grid->rows() - 1, 2), u"000016"_s);
        QCOMPARE(a1->text(), QString());
        QCOMPARE(a2->text(), u"0,00"_s);

        // The same description again is a second row under a new code.
        a1->setText(u"ALMOÇO D'AVILA"_s);
        get<QAbstractButton>(&table, u"Command16"_s)->click();
        QCOMPARE(store()
                     .scalar(u"SELECT COUNT(*) FROM servicos WHERE A1 = ?"_s, {u"ALMOÇO D'AVILA"_s})
                     .toInt(),
                 2);
        QCOMPARE(prompts->count(Kind::Error), 0);
    }

    void pickChangeAndDelete() {
        RTX_REQUIRE_INSTALL(*inst);
        SERVI2 table;
        table.show();
        auto* grid = get<MSFlexGrid>(&table, u"Grid1"_s);

        // Exclui straight after opening deletes nothing and reports success all the same.
        const qint64 before = store().count(u"servicos"_s);
        prompts->answerYes();
        get<QAbstractButton>(&table, u"Command11"_s)->click();
        QCOMPARE(prompts->texts(),
                 (QStringList{u"Deseja apagar este lançamento?"_s, u"Lançamento excluido."_s}));
        QCOMPARE(prompts->shown().at(0).title, u"Cadastro de Serviços"_s);
        QCOMPARE(store().count(u"servicos"_s), before);

        // A double click takes the row out of the list, not out of the table.
        const int row = rowOf(grid, u"CARTÓRIO"_s);
        QVERIFY(row > 0);
        const QString code = grid->textMatrix(row, 2);
        pick(grid, row);
        QCOMPARE(grid->rows(), 15);
        QCOMPARE(rowOf(grid, u"CARTÓRIO"_s), -1);
        QCOMPARE(get<QLineEdit>(&table, u"A1"_s)->text(), u"CARTÓRIO"_s);
        QCOMPARE(get<QLineEdit>(&table, u"cd"_s)->text(), code);
        QCOMPARE(store().count(u"servicos"_s), before);

        // No: kept. Yes: deleted, the fields cleared.
        prompts->clear();
        prompts->answerNo();
        get<QAbstractButton>(&table, u"Command11"_s)->click();
        QCOMPARE(store().count(u"servicos"_s), before);
        prompts->answerYes();
        get<QAbstractButton>(&table, u"Command11"_s)->click();
        QCOMPARE(store().count(u"servicos"_s), before - 1);
        QVERIFY(store().scalar(u"SELECT 1 FROM servicos WHERE cod = ?"_s, {code}).isNull());
        QCOMPARE(get<QLineEdit>(&table, u"A1"_s)->text(), QString());
        QCOMPARE(get<QLineEdit>(&table, u"A2"_s)->text(), u"0,00"_s);
        QCOMPARE(get<QLineEdit>(&table, u"cd"_s)->text(), QString());

        // The only row double-clicked leaves just the header, the fields hold the service.
        store().execute(u"DELETE FROM servicos WHERE A1 <> ?"_s, {u"MALOTE DIÁRIO"_s});
        SERVI2 single;
        single.show();
        auto* one = get<MSFlexGrid>(&single, u"Grid1"_s);
        QCOMPARE(one->rows(), 2);
        pick(one, 1);
        QCOMPARE(one->rows(), 1);
        QCOMPARE(get<QLineEdit>(&single, u"A1"_s)->text(), u"MALOTE DIÁRIO"_s);
    }

    void pickerFromTheDispatch() {
        RTX_REQUIRE_INSTALL(*inst);
        store().execute(u"INSERT INTO servicos (cod, A1, A2) VALUES (?, ?, ?)"_s,
                        {u"000099"_s, u"MUDANÇA D'AVILA"_s, qint64(123456)});
        Atendimento dispatch;
        dispatch.show();
        bool checked = false;
        QTimer::singleShot(0, [&] {
            auto* table = qobject_cast<SERVI2*>(QApplication::activeModalWidget());
            QVERIFY(table);
            QVERIFY(table->picker());
            QCOMPARE(get<QLineEdit>(table, u"XP"_s)->text(), u"1"_s);
            QVERIFY(!get<QAbstractButton>(table, u"Command16"_s)->isEnabled());
            QVERIFY(!get<QAbstractButton>(table, u"Command11"_s)->isEnabled());
            QVERIFY(!table->findChild<QAction*>(u"ffdfd"_s)->isEnabled());
            QVERIFY(!table->findChild<QAction*>(u"ggf"_s)->isEnabled());
            QVERIFY(table->findChild<QAction*>(u"fgfgf"_s)->isEnabled());
            auto* grid = get<MSFlexGrid>(table, u"Grid1"_s);
            pick(grid, rowOf(grid, u"MUDANÇA D'AVILA"_s));
            checked = true;
            if (table->isVisible()) table->close();
        });
        get<QAbstractButton>(&dispatch, u"Command19"_s)->click();
        QVERIFY(checked);
        QCOMPARE(dispatch.field(u"A21"_s), u"MUDANÇA D'AVILA"_s);
        QCOMPARE(dispatch.field(u"A19"_s), u"1.234,56"_s);
        QVERIFY(!QApplication::activeModalWidget());

        // From the hub the pick goes to a dispatch screen that stands open.
        SERVI2 fromHub;
        auto* grid = get<MSFlexGrid>(&fromHub, u"Grid1"_s);
        fromHub.show();
        pick(grid, rowOf(grid, u"CARTÓRIO"_s));
        QCOMPARE(dispatch.field(u"A21"_s), u"CARTÓRIO"_s);
        QVERIFY(fromHub.isVisible());
    }
};

QTEST_MAIN(Servi2Test)
#include "tst_servi2.moc"
