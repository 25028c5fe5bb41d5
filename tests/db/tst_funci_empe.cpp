// The employee screen (funci) and the company screen (empe) on a real installation, driven
// by keyboard and mouse: users saved here log in and open exactly their modules, a failed
// save leaves nothing half written, the company keeps its one row, branches save by name.

#include "registerdesk.h"
#include "registers/empe.h"
#include "registers/funci.h"
#include "session/inicio.h"
#include "session/login.h"

#include <QPushButton>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kSaved = u"Operação realizada com sucesso."_s;
const QString kNoName = u"O campo [Nome], não pode ficar em branco."_s;
const QString kSearchFirst = u"Primeiro faça a pesquisa."_s;

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

QStringList sims(const MSFlexGrid* g) {
    QStringList out;
    for (int r = 1; r < g->rows(); ++r)
        if (g->textMatrix(r, 1) == u"Sim"_s) out << g->textMatrix(r, 0);
    return out;
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
    // double click or Enter on a row toggles it, twice gives back "Não". A new password
    // carries his rights over, the old one no longer logs in.
    void newUserLogsInWithHisModules() {
        Desk<funci> d(false);
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        const qint64 employees = d.count(u"funcionarios"_s);
        MSFlexGrid* perms = grid(s, u"Grid2"_s);
        QCOMPARE(perms->rows(), 19); // header and the 18 rows, all "Não"

        typeAndLeave(s, u"X1"_s, u"JOSÉ GONÇALVES"_s);
        typeText(QApplication::focusWidget(), u"1155556666"_s); // X2 comes next
        typeInto(s, u"x6"_s, u"1a05"_s);
        QCOMPARE(shown(s, u"x6"_s), u"10"_s);
        typeAndLeave(s, u"x8"_s, u"jose99"_s);

        tabs(s)->setTab(1);
        doubleClick(perms, u"Clientes"_s);
        perms->setRow(gridRow(perms, u"Empresa"_s));
        QTest::keyClick(perms, Qt::Key_Return);
        doubleClick(perms, u"Funcionários"_s);
        doubleClick(perms, u"Caixa"_s);
        doubleClick(perms, u"Caixa"_s);
        const QStringList rights{u"Clientes"_s, u"Funcionários"_s, u"Empresa"_s};
        QCOMPARE(sims(perms), rights);

        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), QStringList{kSaved});
        QCOMPARE(
            countRows(u"SELECT COUNT(*) FROM permissoes WHERE a2 = ?"_s, {u"JOSÉ GONÇALVES"_s}),
            18);
        QCOMPARE(storedSims(u"JOSÉ GONÇALVES"_s), rights);
        QCOMPARE(rowTexts(u"SELECT * FROM funcionarios WHERE x1 = ?"_s, {u"JOSÉ GONÇALVES"_s},
                          {u"x2"_s}),
                 (QStringList{u"(11)5555-6666"_s}));
        QCOMPARE(s->foundKey().toString(), QString()); // a save finds nothing: cd stays empty
        d.screen.reset();

        // (That the hub opens exactly the permitted modules is the hub test's.)
        QCOMPARE(logIn(u"JOSÉ GONÇALVES"_s, u"jose99"_s), rights);

        QVERIFY(d.open());
        s = d.s();
        tabs(s)->setTab(2);
        doubleClick(grid(s, u"Grid1"_s), u"JOSÉ GONÇALVES"_s);
        QCOMPARE(tabs(s)->tab(), 0);
        QCOMPARE(sims(grid(s, u"Grid2"_s)), rights);
        typeAndLeave(s, u"x8"_s, u"nova"_s);
        QCOMPARE(shownAll(s, {u"X1"_s, u"x6"_s}), (QStringList{u"JOSÉ GONÇALVES"_s, u"10"_s}));
        click(s, u"Command16"_s);
        QCOMPARE(d.count(u"funcionarios"_s), employees + 1);
        d.screen.reset();
        QCOMPARE(logIn(u"JOSÉ GONÇALVES"_s, u"nova"_s), rights);
        d.prompts.clear();
        QCOMPARE(logIn(u"JOSÉ GONÇALVES"_s, u"jose99"_s), rights); // the session is unchanged
        QCOMPARE(d.prompts.texts(), QStringList{u"Usuário ou senha não cadastrada"_s});
    }

    // A password typed is no search: another employee's password leaves the screen as it
    // is; a name in use is saved over, not duplicated.
    void saveByName() {
        Desk<funci> d(true);
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        const qint64 employees = d.count(u"funcionarios"_s);
        typeInto(s, u"X1"_s, u"CARLOS D'AVILA"_s);
        typeAndLeave(s, u"x8"_s, u"ana123"_s); // ANA PAULA's
        QCOMPARE(QApplication::focusWidget(), control(s, u"X9"_s));
        QCOMPARE(shown(s, u"X1"_s), u"CARLOS D'AVILA"_s);
        QVERIFY(sims(grid(s, u"Grid2"_s)).isEmpty());
        QVERIFY(d.prompts.texts().isEmpty());

        typeInto(s, u"x5"_s, u"GERENTE"_s);
        click(s, u"Command16"_s); // the apostrophe of the name is data
        QCOMPARE(d.prompts.lastText(), kSaved);
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM funcionarios WHERE x1 = ? AND x5 = ?"_s,
                           {u"CARLOS D'AVILA"_s, u"GERENTE"_s}),
                 1);

        // Novo, then the name of an existing employee with a password of his own.
        click(s, u"Command4"_s);
        QCOMPARE(QApplication::focusWidget(), control(s, u"X1"_s));
        typeText(control(s, u"X1"_s), u"ana paula"_s);
        typeInto(s, u"x8"_s, u"outra"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.count(u"funcionarios"_s), employees);
        QCOMPARE(storedSims(u"ana paula"_s), QStringList()); // all "Não" after Novo
        // An employee without rows shows the grid's header alone.
        d.inst.store().execute(u"DELETE FROM permissoes WHERE a2 = ?"_s, {u"ana paula"_s});
        click(s, u"Command4"_s);
        tabs(s)->setTab(2);
        doubleClick(grid(s, u"Grid1"_s), u"ana paula"_s);
        QCOMPARE(grid(s, u"Grid2"_s)->rows(), 1);
    }

    // Name and password are required. A save that fails after the employee was written
    // leaves the employee and his rights as they were, shows the engine's words and goes
    // through, nothing typed lost, once the store takes it. Apaga needs a record and asks.
    void badInputFailedSaveAndDelete() {
        Desk<funci> d(true);
        RTX_OPEN_DESK(d);
        funci* s = d.s();
        const qint64 employees = d.count(u"funcionarios"_s);
        const qint64 rights = d.count(u"permissoes"_s);
        typeInto(s, u"x8"_s, u"semnome"_s);
        typeInto(s, u"X1"_s, u"   "_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), kNoName);
        QCOMPARE(QApplication::focusWidget(), control(s, u"X1"_s));
        typeInto(s, u"X1"_s, u"SEM SENHA"_s);
        typeInto(s, u"x8"_s, QString());
        s->findChild<QAction*>(u"sdfds"_s)->trigger(); // the menu twin of Grava
        QCOMPARE(d.prompts.lastText(), u"O campo [Senha], não pode ficar em branco."_s);
        QCOMPARE(QApplication::focusWidget(), control(s, u"x8"_s));

        refuseInserts(d.inst.store(), u"permissoes"_s, true);
        // Her rows were deleted before the refusal; they come back.
        click(s, u"Command4"_s);
        tabs(s)->setTab(2);
        doubleClick(grid(s, u"Grid1"_s), u"ANA PAULA"_s);
        typeInto(s, u"X2"_s, u"1122223333"_s);
        tabs(s)->setTab(1);
        doubleClick(grid(s, u"Grid2"_s), u"Caixa"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QVERIFY2(d.prompts.lastText().contains(u"disco cheio (teste)"_s),
                 qPrintable(d.prompts.lastText()));
        QCOMPARE(d.count(u"funcionarios"_s), employees);
        QCOMPARE(d.count(u"permissoes"_s), rights);
        QCOMPARE(storedSims(u"ANA PAULA"_s),
                 (QStringList{u"Atendimento"_s, u"Clientes"_s, u"Agenda"_s}));
        const QString withPhone = u"SELECT COUNT(*) FROM funcionarios WHERE x2 = ?"_s;
        QCOMPARE(countRows(withPhone, {u"(11)2222-3333"_s}), 0);
        refuseInserts(d.inst.store(), u"permissoes"_s, false);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), kSaved);
        QCOMPARE(storedSims(u"ANA PAULA"_s),
                 (QStringList{u"Atendimento"_s, u"Clientes"_s, u"Caixa"_s, u"Agenda"_s}));
        QCOMPARE(countRows(withPhone, {u"(11)2222-3333"_s}), 1);

        click(s, u"Command4"_s);
        click(s, u"Command3"_s);
        QCOMPARE(d.prompts.lastText(), kSearchFirst);
        // By keyboard: the list takes it when its tab shows, Enter loads, Enter presses.
        tabs(s)->setTab(2);
        MSFlexGrid* list = grid(s, u"Grid1"_s);
        QCOMPARE(QApplication::focusWidget(), list);
        list->setRow(gridRow(list, u"CARLOS D'AVILA"_s));
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(shown(s, u"X1"_s), u"CARLOS D'AVILA"_s);
        d.prompts.answerNo();
        control(s, u"Command3"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(control(s, u"Command3"_s), Qt::Key_Return);
        QCOMPARE(d.prompts.lastText(), u"Confirma exclusão?"_s);
        QCOMPARE(d.count(u"funcionarios"_s), employees);
        d.prompts.answerYes();
        click(s, u"Command3"_s);
        QCOMPARE(d.count(u"funcionarios"_s), employees - 1);
        QCOMPARE(d.count(u"permissoes"_s), rights - 18);
        QCOMPARE(gridRow(list, u"CARLOS D'AVILA"_s), -1); // Novo ran
        QVERIFY(shown(s, u"X1"_s).isEmpty());
    }

    // The company is saved over its one row, its name without apostrophes. Branches save by
    // name (twice is one row), renamed is a new one, loaded from the list, deleted after the
    // question. Nothing is saved without a company name, nor without the company row.
    void companyAndBranches() {
        Desk<empe> d(true);
        RTX_OPEN_DESK(d);
        empe* s = d.s();
        MSFlexGrid* list = grid(s, u"Grid1"_s);
        click(s, u"Command3"_s);

        typeAndLeave(s, u"E1"_s, u"MOTOS D'OESTE"_s);
        typeInto(s, u"E7"_s, u"01310100"_s);
        typeAndLeave(s, u"E8"_s, u"o'brien@motos.com.br"_s);
        click(s, u"Command16"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.texts(), (QStringList{kSearchFirst, kSaved, kSaved}));
        QCOMPARE(d.count(u"empresa"_s), 1);
        QCOMPARE(d.count(u"filiais"_s), 1); // no branch name: the company alone
        QCOMPARE(rowTexts(u"SELECT * FROM empresa"_s, {}, {u"e1"_s, u"e7"_s, u"e8"_s}),
                 (QStringList{u"MOTOS DOESTE"_s, u"01310-100"_s, u"o'brien@motos.com.br"_s}));

        typeAndLeave(s, u"X1"_s, u"FILIAL D'ABC"_s);
        typeText(QApplication::focusWidget(), u"1144445555"_s); // X2
        typeInto(s, u"X9"_s, u"11222333000181"_s);
        click(s, u"Command16"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.count(u"filiais"_s), 2);
        QCOMPARE(rowTexts(u"SELECT * FROM filiais WHERE x1 = ?"_s, {u"FILIAL DABC"_s},
                          {u"x2"_s, u"x9"_s}),
                 (QStringList{u"(11)4444-5555"_s, u"11.222.333/0001-81"_s}));

        // Novo clears the branch only and refreshes the list.
        click(s, u"Command4"_s);
        QCOMPARE(shownAll(s, {u"X1"_s, u"E1"_s}), (QStringList{QString(), u"MOTOS DOESTE"_s}));
        QCOMPARE(list->rows(), 3);

        tabs(s)->setTab(2);
        doubleClick(list, u"ROTALIX CAMPINAS"_s);
        QCOMPARE(tabs(s)->tab(), 1);
        QCOMPARE(shown(s, u"x5"_s), u"CAMPINAS"_s);
        typeInto(s, u"X1"_s, u"ROTALIX SOROCABA"_s);
        click(s, u"Command16"_s);
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM filiais WHERE x5 = ?"_s, {u"CAMPINAS"_s}), 2);

        // Apaga removes the branch that was looked up, not the one saved under the new name.
        d.prompts.answerYes();
        click(s, u"Command3"_s);
        QCOMPARE(d.prompts.lastText(), u"Confirma exclusão?"_s);
        QCOMPARE(d.count(u"filiais"_s), 2);
        QCOMPARE(rowTexts(u"SELECT * FROM filiais WHERE x5 = ?"_s, {u"CAMPINAS"_s}, {u"x1"_s}),
                 QStringList{u"ROTALIX SOROCABA"_s});

        typeInto(s, u"E1"_s, QString());
        typeInto(s, u"X1"_s, u"FILIAL"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), kNoName);
        QCOMPARE(QApplication::focusWidget(), control(s, u"E1"_s));
        d.inst.store().execute(u"DELETE FROM empresa"_s);
        typeInto(s, u"E1"_s, u"OUTRA"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.shown().last().kind, Kind::Error);
        QCOMPARE(d.count(u"empresa"_s), 0);
        QCOMPARE(d.count(u"filiais"_s), 2);
    }

    // A double click on an empty list reads its header as a row, which is no row: the
    // store's refusal is shown, nothing counts as found, and Apaga still asks for a search.
    void doubleClickOnEmptyList() {
        Desk<empe> d(true);
        RTX_OPEN_DESK(d);
        empe* s = d.s();
        d.inst.store().execute(u"DELETE FROM filiais"_s);
        click(s, u"Command4"_s);
        tabs(s)->setTab(2);
        MSFlexGrid* list = grid(s, u"Grid1"_s);
        QCOMPARE(list->rows(), 1);
        QCoreApplication::processEvents();
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, list->viewport()->rect().center());
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QVERIFY2(d.prompts.lastText().contains(u"\"Cd\""_s), qPrintable(d.prompts.lastText()));
        QCOMPARE(tabs(s)->tab(), 2);
        click(s, u"Command3"_s);
        QCOMPARE(d.prompts.lastText(), kSearchFirst);
    }
};

QTEST_MAIN(FunciEmpeTest)
#include "tst_funci_empe.moc"
