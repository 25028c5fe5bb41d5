// The employee screen (funci) and the company screen (empe), driven by keyboard and mouse:
// users saved here log in with their modules, a failed save leaves nothing half written.

#include "registerdesk.h"
#include "registers/empe.h"
#include "registers/funci.h"
#include "session/inicio.h"
#include "session/login.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kSaved = u"Operação realizada com sucesso."_s;
const QString kNoName = u"O campo [Nome], não pode ficar em branco."_s;

SSTab* tabs(const QWidget* screen) {
    return screen->findChild<SSTab*>(u"SSTab1"_s);
}

MSFlexGrid* grid(const QWidget* screen, const QString& name) {
    return control<MSFlexGrid>(screen, name);
}

// A real double click on the list row whose first cell is the text.
void doubleClick(MSFlexGrid* g, const QString& first) {
    doubleClickRow(g, gridRow(g, first));
}

// The modules granted to the employee of that name, as stored.
QStringList storedSims(const QString& name) {
    QStringList out;
    Recordset rs = Store::current().open(
        u"SELECT * FROM permissoes WHERE a1 = (SELECT x8 FROM funcionarios WHERE x1 = ?) "
        u"AND a5 = ? ORDER BY rid"_s,
        {name, u"Sim"_s});
    for (; !rs.eof(); rs.moveNext())
        out << rs.text(u"a4"_s);
    return out;
}

// Logs in through the real login screen; gives the modules of the session.
QStringList logIn(const QString& user, const QString& password) {
    LOGIN login;
    if (!showActive(&login)) return {u"login not shown"_s};
    for (const auto& [name, text] : {std::pair{u"A1"_s, user}, std::pair{u"A2"_s, password}}) {
        control(&login, name)->setFocus(Qt::TabFocusReason);
        typeText(control(&login, name), text);
    }
    click(&login, u"Command7"_s);
    return session::permittedModules();
}

} // namespace

class FunciEmpeTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { session::end(); }

    // A user made on the screen logs in and opens exactly the modules marked "Sim"; a
    // double click or Enter on a row toggles it, twice gives back "Não".
    void newUserLogsInWithHisModules() {
        Desk<funci> d(false);
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        MSFlexGrid* perms = grid(s, u"Grid2"_s);
        typeAndLeave(s, u"X1"_s, u"JOSÉ GONÇALVES"_s);
        typeAndLeave(s, u"x8"_s, u"jose99"_s);
        tabs(s)->setTab(1);
        doubleClick(perms, u"Clientes"_s);
        perms->setRow(gridRow(perms, u"Empresa"_s));
        QTest::keyClick(perms, Qt::Key_Return);
        doubleClick(perms, u"Caixa"_s);
        doubleClick(perms, u"Caixa"_s);
        const QStringList rights{u"Clientes"_s, u"Empresa"_s};
        click(s, u"Command16"_s);
        QCOMPARE(storedSims(u"JOSÉ GONÇALVES"_s), rights);
        d.screen.reset();
        // (That the hub opens exactly the permitted modules is the hub test's.)
        QCOMPARE(logIn(u"JOSÉ GONÇALVES"_s, u"jose99"_s), rights);
    }

    // A password typed is no search: another employee's password leaves the screen as it
    // is; a name in use is saved over, not duplicated. The name is required. A save that
    // fails after the employee was written leaves the employee and his rights as they were,
    // shows the engine's words and goes through, nothing typed lost, once the store takes
    // it. Apaga asks.
    void saveByNameFailedSaveAndDelete() {
        Desk<funci> d(true);
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        const qint64 employees = d.count(u"funcionarios"_s);
        typeInto(s, u"X1"_s, u"CARLOS D'AVILA"_s);
        typeAndLeave(s, u"x8"_s, u"ana123"_s); // ANA PAULA's
        QCOMPARE(shown(s, u"X1"_s), u"CARLOS D'AVILA"_s);
        typeInto(s, u"x5"_s, u"GERENTE"_s);
        click(s, u"Command16"_s); // the apostrophe of the name is data
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM funcionarios WHERE x1 = ? AND x5 = ?"_s,
                           {u"CARLOS D'AVILA"_s, u"GERENTE"_s}),
                 1);
        click(s, u"Command4"_s); // an existing employee's name, a password of his own
        typeText(control(s, u"X1"_s), u"ana paula"_s);
        typeInto(s, u"x8"_s, u"outra"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.count(u"funcionarios"_s), employees);
        QCOMPARE(storedSims(u"ana paula"_s), QStringList()); // all "Não" after Novo
        click(s, u"Command4"_s);
        typeInto(s, u"x8"_s, u"semnome"_s);
        typeInto(s, u"X1"_s, u"   "_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), kNoName);
        QCOMPARE(QApplication::focusWidget(), control(s, u"X1"_s));
        const qint64 rights = d.count(u"permissoes"_s);
        refuseInserts(d.inst.store(), u"permissoes"_s, true);
        // His rows were deleted before the refusal; they come back.
        click(s, u"Command4"_s);
        tabs(s)->setTab(2);
        doubleClick(grid(s, u"Grid1"_s), u"CARLOS D'AVILA"_s);
        typeInto(s, u"X2"_s, u"1122223333"_s);
        tabs(s)->setTab(1);
        doubleClick(grid(s, u"Grid2"_s), u"Caixa"_s);
        click(s, u"Command16"_s);
        QVERIFY(d.prompts.texts(Kind::Error).value(0).contains(u"disco cheio (teste)"_s));
        QCOMPARE(d.count(u"permissoes"_s), rights);
        const QString withPhone = u"SELECT COUNT(*) FROM funcionarios WHERE x2 = ?"_s;
        QCOMPARE(countRows(withPhone, {u"(11)2222-3333"_s}), 0);
        refuseInserts(d.inst.store(), u"permissoes"_s, false);
        click(s, u"Command16"_s);
        QCOMPARE(storedSims(u"CARLOS D'AVILA"_s), QStringList{u"Caixa"_s});
        QCOMPARE(countRows(withPhone, {u"(11)2222-3333"_s}), 1);
        click(s, u"Command4"_s);
        // By keyboard: the list takes it when its tab shows, Enter loads, Enter presses.
        tabs(s)->setTab(2);
        MSFlexGrid* list = grid(s, u"Grid1"_s);
        QCOMPARE(QApplication::focusWidget(), list);
        list->setRow(gridRow(list, u"CARLOS D'AVILA"_s));
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(shown(s, u"X1"_s), u"CARLOS D'AVILA"_s);
        d.prompts.answerYes();
        control(s, u"Command3"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(control(s, u"Command3"_s), Qt::Key_Return);
        QCOMPARE(d.prompts.lastText(), u"Confirma exclusão?"_s);
        QCOMPARE(d.count(u"funcionarios"_s), employees - 1);
    }

    // The company is saved over its one row, its name without apostrophes. Branches save by
    // name (twice is one row); one loaded and renamed is a new one, and Apaga removes the one
    // looked up, after the question. Nothing is saved without a company name.
    void companyAndBranches() {
        Desk<empe> d(true);
        RTX_OPEN_DESK(d);
        empe* s = d.s();
        typeAndLeave(s, u"E1"_s, u"MOTOS D'OESTE"_s);
        typeAndLeave(s, u"E8"_s, u"o'brien@motos.com.br"_s);
        typeAndLeave(s, u"X1"_s, u"FILIAL D'ABC"_s);
        click(s, u"Command16"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), (QStringList{kSaved, kSaved}));
        QCOMPARE(d.count(u"empresa"_s), 1);
        QCOMPARE(d.count(u"filiais"_s), 2);
        QCOMPARE(rowTexts(u"SELECT * FROM empresa"_s, {}, {u"e1"_s, u"e8"_s}),
                 (QStringList{u"MOTOS DOESTE"_s, u"o'brien@motos.com.br"_s}));
        click(s, u"Command4"_s);
        tabs(s)->setTab(2);
        doubleClick(grid(s, u"Grid1"_s), u"ROTALIX CAMPINAS"_s);
        typeInto(s, u"X1"_s, u"ROTALIX SOROCABA"_s);
        click(s, u"Command16"_s);
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM filiais WHERE x5 = ?"_s, {u"CAMPINAS"_s}), 2);
        d.prompts.answerYes();
        click(s, u"Command3"_s);
        QCOMPARE(d.prompts.lastText(), u"Confirma exclusão?"_s);
        QCOMPARE(rowTexts(u"SELECT * FROM filiais WHERE x5 = ?"_s, {u"CAMPINAS"_s}, {u"x1"_s}),
                 QStringList{u"ROTALIX SOROCABA"_s});
        typeInto(s, u"E1"_s, QString());
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), kNoName);
        QCOMPARE(QApplication::focusWidget(), control(s, u"E1"_s));
        QCOMPARE(d.count(u"filiais"_s), 2);
    }
};

QTEST_MAIN(FunciEmpeTest)
#include "tst_funci_empe.moc"
