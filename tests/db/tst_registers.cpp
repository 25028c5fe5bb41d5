// The registers of clients (cliente), couriers (MOTO) and suppliers (forne) and the small
// lists, driven by keyboard and mouse on a real installation: saving by code, the tax
// number field, dates that keep their value, two stations saving new rows at once, the
// search tab, the public pages, and the list of regions reaching the client screen.

#include "keyboard.h"
#include "registers/MOTO.h"
#include "registers/cliente.h"
#include "registers/forne.h"
#include "registers/lists.h"
#include "scriptedprompter.h"
#include "session/inicio.h"
#include "session/kit/kit.h"
#include "session/modules.h"
#include "session/session.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

using namespace rtx;
using namespace rtx::ui;
using rtx::test::ScriptedPrompter;
using rtx::test::TestInstallation;
using rtx::test::typeText;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kSaved = QStringLiteral("Operação realizada com sucesso.");
const QString kSearchFirst = QStringLiteral("Primeiro faça a busca do cliente.");

bool showActive(QWidget* screen) {
    screen->show();
    QApplication::setActiveWindow(screen);
    return QTest::qWaitForWindowActive(screen);
}

QWidget* control(const QWidget* screen, const QString& name) {
    QWidget* w = screen->findChild<QWidget*>(name);
    if (!w) qFatal("no control %s", qPrintable(name));
    return w;
}

// The text of a field as the screen shows it (masked fields with their literals).
QString shown(const QWidget* screen, const QString& name) {
    QWidget* w = control(screen, name);
    if (auto* m = qobject_cast<MaskEdBox*>(w)) return m->shownText();
    if (auto* e = qobject_cast<QLineEdit*>(w)) return e->text();
    if (auto* c = qobject_cast<QComboBox*>(w)) return c->currentText();
    if (auto* p = qobject_cast<QPlainTextEdit*>(w)) return p->toPlainText();
    if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
    return {};
}

// Goes into a field as the keyboard does (its whole text selected) and types over it.
void typeInto(QWidget* screen, const QString& name, const QString& text) {
    auto* tabs = screen->findChild<SSTab*>(QStringLiteral("SSTab1"));
    QWidget* f = control(screen, name);
    for (int i = 0; tabs && i < tabs->count(); ++i)
        if (tabs->widget(i)->isAncestorOf(f)) tabs->setTab(i);
    f->setFocus(Qt::TabFocusReason);
    QWidget* target = f;
    QTest::keyClick(target, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(target, Qt::Key_Delete);
    else
        typeText(target, text);
}

// Enter: leaves the field for the next one.
void leave(QWidget* screen, const QString& name) {
    QTest::keyClick(control(screen, name), Qt::Key_Return);
}

void typeAndLeave(QWidget* screen, const QString& name, const QString& text) {
    typeInto(screen, name, text);
    leave(screen, name);
}

void click(QWidget* screen, const QString& button) {
    auto* b = screen->findChild<QAbstractButton*>(button);
    if (!b) qFatal("no button %s", qPrintable(button));
    QTest::mouseClick(b, Qt::LeftButton);
}

QVariant column(const QString& table, const QString& code, const QString& column) {
    return Store::current().scalar(
        QStringLiteral("SELECT %1 FROM %2 WHERE CODIGO = ?").arg(column, table), {code});
}

qint64 count(const QString& sql, const QVariantList& params = {}) {
    return Store::current().scalar(sql, params).toLongLong();
}

// Makes a table refuse every new row, as a full disk or a lost server would.
void refuseInserts(Store& store, const QString& table, bool refuse) {
    const bool pg = store.engine() == Engine::PostgreSQL;
    if (!refuse) {
        store.execute(pg ? QStringLiteral("DROP TRIGGER recusa ON %1").arg(table)
                         : QStringLiteral("DROP TRIGGER recusa"));
        return;
    }
    if (pg) {
        store.execute(QStringLiteral(
            "CREATE OR REPLACE FUNCTION recusa() RETURNS trigger LANGUAGE plpgsql AS "
            "$$ BEGIN RAISE EXCEPTION 'disco cheio (teste)'; END $$"));
        store.execute(QStringLiteral("CREATE TRIGGER recusa BEFORE INSERT ON %1 "
                                     "FOR EACH ROW EXECUTE FUNCTION recusa()")
                          .arg(table));
    } else {
        store.execute(QStringLiteral("CREATE TRIGGER recusa BEFORE INSERT ON %1 BEGIN "
                                     "SELECT RAISE(ABORT, 'disco cheio (teste)'); END")
                          .arg(table));
    }
}

} // namespace

class RegistersTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { closeHub(); }

    // A new client saved twice is one row under the code drawn at the first save; the
    // quote of a name is gone on leaving it, the quote of the contact is kept.
    void newClientSavedTwice() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        setInstallation(inst.installation());
        hub()->nome()->setText(QStringLiteral("ANA PAULA"));
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00001"));
        QCOMPARE(shown(&screen, QStringLiteral("nr")), QStringLiteral("0"));
        QCOMPARE(shown(&screen, QStringLiteral("C1")), QStringLiteral("ATIVO"));
        QCOMPARE(shown(&screen, QStringLiteral("C2")), formatDate(QDate::currentDate()));
        QCOMPARE(shown(&screen, QStringLiteral("C27")), QStringLiteral("0,00"));

        // Saving without a name: the message, the focus on the name, nothing written.
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.texts(),
                 QStringList{QStringLiteral("O campo [NOME], não pode ficar em branco.")});
        QCOMPARE(QApplication::focusWidget(), control(&screen, QStringLiteral("C5")));
        QCOMPARE(Store::current().count(QStringLiteral("clientes")), 0);
        prompts.clear();

        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("D'AVILA & FILHOS"));
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("DAVILA & FILHOS"));
        typeAndLeave(&screen, QStringLiteral("C6"), QStringLiteral("O'HARA"));
        QCOMPARE(shown(&screen, QStringLiteral("C6")), QStringLiteral("OHARA"));
        typeAndLeave(&screen, QStringLiteral("C7"), QStringLiteral("JOANA D'ARC"));
        QCOMPARE(shown(&screen, QStringLiteral("C7")), QStringLiteral("JOANA D'ARC"));
        typeAndLeave(&screen, QStringLiteral("C13"), QStringLiteral("01310100"));
        QCOMPARE(shown(&screen, QStringLiteral("C13")), QStringLiteral("01310-100"));
        click(&screen, QStringLiteral("C33"));
        typeAndLeave(&screen, QStringLiteral("C27"), QStringLiteral("1500,5"));
        QCOMPARE(shown(&screen, QStringLiteral("C27")), QStringLiteral("1.500,50"));
        typeAndLeave(&screen, QStringLiteral("C28"), QString());
        QCOMPARE(shown(&screen, QStringLiteral("C28")), QStringLiteral("0,00"));
        typeInto(&screen, QStringLiteral("C31"), QStringLiteral("Portaria: falar com Zé"));

        click(&screen, QStringLiteral("Command16"));
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.texts(), (QStringList{kSaved, kSaved}));
        QCOMPARE(Store::current().count(QStringLiteral("clientes")), 1);
        const QString t = QStringLiteral("clientes"), code = QStringLiteral("00001");
        QCOMPARE(shown(&screen, QStringLiteral("A1")), code);
        QCOMPARE(column(t, code, QStringLiteral("C5")).toString(),
                 QStringLiteral("DAVILA & FILHOS"));
        QCOMPARE(column(t, code, QStringLiteral("C7")).toString(), QStringLiteral("JOANA D'ARC"));
        QCOMPARE(column(t, code, QStringLiteral("C13")).toString(), QStringLiteral("01310-100"));
        QCOMPARE(column(t, code, QStringLiteral("C27")).toLongLong(), 150050);
        QCOMPARE(column(t, code, QStringLiteral("C28")).toLongLong(), 0);
        QCOMPARE(column(t, code, QStringLiteral("C32")).toString(), QStringLiteral("False"));
        QCOMPARE(column(t, code, QStringLiteral("C33")).toString(), QStringLiteral("True"));
        QCOMPARE(column(t, code, QStringLiteral("C1")).toString(), QStringLiteral("ATIVO"));
        for (const char* empty : {"C17", "C22", "C25", "C26", "C34"})
            QCOMPARE(column(t, code, QString::fromLatin1(empty)).toString(), QString());
        QCOMPARE(column(t, code, QStringLiteral("EMPE")).toString(), QStringLiteral("ANA PAULA"));
        QVERIFY(column(t, code, QStringLiteral("C29")).isNull());
        Recordset rs = Store::current().open(QStringLiteral("SELECT * FROM clientes"));
        QCOMPARE(rs.date(QStringLiteral("C2")), QDate::currentDate());

        // A new client saved is not yet "found": deleting asks for a search first.
        prompts.clear();
        click(&screen, QStringLiteral("Command3"));
        QCOMPARE(prompts.texts(), QStringList{kSearchFirst});
        QCOMPARE(Store::current().count(QStringLiteral("clientes")), 1);
    }

    // The tax number: a known CNPJ brings its client without a word; wrong lengths and
    // wrong check digits empty the field; a right CPF keeps its mask and is stored as digits.
    void taxNumberField() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        const QString acme =
            column(QStringLiteral("clientes"), QStringLiteral("00001"), QStringLiteral("C3"))
                .toString();
        QCOMPARE(acme.size(), 14);

        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("NOVO CLIENTE"));
        typeAndLeave(&screen, QStringLiteral("c3"), acme);
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("ACME COMÉRCIO LTDA"));
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00001"));
        QCOMPARE(screen.foundCode(), QStringLiteral("00001"));
        QCOMPARE(shown(&screen, QStringLiteral("c3")),
                 MaskEdBox::applyMask(QStringLiteral("########/####-##"), acme));
        QVERIFY(prompts.texts().isEmpty());

        // Passing through the number of the client on the screen loses nothing typed.
        typeAndLeave(&screen, QStringLiteral("C7"), QStringLiteral("NOVO CONTATO"));
        control(&screen, QStringLiteral("c3"))->setFocus(Qt::TabFocusReason);
        leave(&screen, QStringLiteral("c3"));
        QCOMPARE(shown(&screen, QStringLiteral("C7")), QStringLiteral("NOVO CONTATO"));

        click(&screen, QStringLiteral("Command4"));
        QCOMPARE(QApplication::focusWidget(), control(&screen, QStringLiteral("c3")));
        for (const QString& wrong :
             {QStringLiteral("1234567890"), QStringLiteral("123456789012"),
              QStringLiteral("52998224726"),
              acme.left(13) + QChar(u'0' + (acme.at(13).digitValue() + 1) % 10),
              QStringLiteral("123")}) {
            typeAndLeave(&screen, QStringLiteral("c3"), wrong);
            QVERIFY2(shown(&screen, QStringLiteral("c3")).isEmpty(), qPrintable(wrong));
        }
        typeAndLeave(&screen, QStringLiteral("c3"), QStringLiteral("52998224725"));
        QCOMPARE(shown(&screen, QStringLiteral("c3")), QStringLiteral("529982247-25"));
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00021")); // nobody's
        // Back in the field the digits stand alone, ready to be typed over.
        control(&screen, QStringLiteral("c3"))->setFocus(Qt::TabFocusReason);
        QCOMPARE(shown(&screen, QStringLiteral("c3")), QStringLiteral("52998224725"));
        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("PESSOA NOVA"));
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(column(QStringLiteral("clientes"), QStringLiteral("00021"), QStringLiteral("C3"))
                     .toString(),
                 QStringLiteral("52998224725"));
        QCOMPARE(prompts.texts(), QStringList{kSaved});
    }

    // An emptied birth date keeps the date on file; a bad registration date becomes today.
    void datesKeepTheirValue() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        click(&screen, QStringLiteral("Command11")); // first client
        QCOMPARE(screen.foundCode(), QStringLiteral("00001"));
        typeAndLeave(&screen, QStringLiteral("C29"), QStringLiteral("31021990"));
        QCOMPARE(shown(&screen, QStringLiteral("C29")), QString()); // no such day
        typeAndLeave(&screen, QStringLiteral("C29"), QStringLiteral("28021990"));
        QCOMPARE(shown(&screen, QStringLiteral("C29")), QStringLiteral("28/02/1990"));
        typeAndLeave(&screen, QStringLiteral("C2"), QStringLiteral("3213"));
        QCOMPARE(shown(&screen, QStringLiteral("C2")), formatDate(QDate::currentDate()));
        typeAndLeave(&screen, QStringLiteral("C2"), QStringLiteral("05012019"));
        click(&screen, QStringLiteral("Command16"));

        typeAndLeave(&screen, QStringLiteral("C29"), QString());
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.texts(), (QStringList{kSaved, kSaved}));
        Recordset rs = Store::current().open(
            QStringLiteral("SELECT * FROM clientes WHERE CODIGO = ?"), {QStringLiteral("00001")});
        QCOMPARE(rs.date(QStringLiteral("C29")), QDate(1990, 2, 28));
        QCOMPARE(rs.date(QStringLiteral("C2")), QDate(2019, 1, 5));

        click(&screen, QStringLiteral("Command14"));
        click(&screen, QStringLiteral("Command13"));
        QCOMPARE(screen.foundCode(), QStringLiteral("00001"));
        QCOMPARE(shown(&screen, QStringLiteral("C29")), QStringLiteral("28/02/1990"));
    }

    // Novo clears the screen but the status, shows the next code and puts the focus on the
    // tax number; navigation walks the codes; delete asks and gives the code out again.
    void newNavigateAndDelete() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        QCOMPARE(shown(&screen, QStringLiteral("nr")), QStringLiteral("20"));

        // Previous and next do nothing before a record is found.
        click(&screen, QStringLiteral("Command13"));
        click(&screen, QStringLiteral("Command14"));
        QCOMPARE(screen.foundCode(), QString());
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QString());

        click(&screen, QStringLiteral("Command12")); // last
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("TECH SOLUÇÕES"));
        click(&screen, QStringLiteral("Command14")); // past the end: stays
        QCOMPARE(screen.foundCode(), QStringLiteral("00020"));
        for (int i = 0; i < 2; ++i)
            click(&screen, QStringLiteral("Command13"));
        QCOMPARE(screen.foundCode(), QStringLiteral("00018"));
        QCOMPARE(shown(&screen, QStringLiteral("C1")), QStringLiteral("INATIVO"));
        QCOMPARE(shown(&screen, QStringLiteral("C34")), QStringLiteral("ZONA NORTE"));

        screen.findChild<QMenuBar*>()->findChild<QAction*>(QStringLiteral("sdsss"))->trigger();
        QCOMPARE(shown(&screen, QStringLiteral("C1")), QStringLiteral("INATIVO"));
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QString());
        QCOMPARE(shown(&screen, QStringLiteral("C34")), QString());
        QCOMPARE(shown(&screen, QStringLiteral("C28")), QStringLiteral("0,00"));
        QCOMPARE(shown(&screen, QStringLiteral("C2")), formatDate(QDate::currentDate()));
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00021"));
        QCOMPARE(screen.foundCode(), QString());
        QVERIFY(screen.findChild<QRadioButton*>(QStringLiteral("C32"))->isChecked());
        QCOMPARE(QApplication::focusWidget(), control(&screen, QStringLiteral("c3")));

        // Delete: "No" keeps the row, "Yes" removes it and the screen is a new record.
        click(&screen, QStringLiteral("Command12"));
        prompts.clear();
        prompts.answerNo();
        click(&screen, QStringLiteral("Command3"));
        QCOMPARE(Store::current().count(QStringLiteral("clientes")), 20);
        prompts.answerYes();
        click(&screen, QStringLiteral("Command3"));
        QCOMPARE(prompts.texts(), (QStringList{QStringLiteral("Confirma exclusão?"),
                                               QStringLiteral("Confirma exclusão?")}));
        QCOMPARE(Store::current().count(QStringLiteral("clientes")), 19);
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00020"));
        QCOMPARE(shown(&screen, QStringLiteral("nr")), QStringLiteral("19"));
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QString());

        // Telephones find in their own column only.
        const QString tel =
            column(QStringLiteral("clientes"), QStringLiteral("00004"), QStringLiteral("C9"))
                .toString();
        QVERIFY(!tel.isEmpty());
        typeInto(&screen, QStringLiteral("C8"), tel);
        click(&screen, QStringLiteral("Command6"));
        QCOMPARE(screen.foundCode(), QString());
        typeInto(&screen, QStringLiteral("C9"), tel);
        click(&screen, QStringLiteral("Command7"));
        QCOMPARE(screen.foundCode(), QStringLiteral("00004"));
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("CASA DAS TINTAS"));
        click(&screen, QStringLiteral("Command9")); // a picture, nothing more
        QCOMPARE(prompts.count(Kind::Notice) + prompts.count(Kind::Question), 2);
    }

    // Two stations press Novo together and save two clients: both rows stay, the second
    // gets the next free code and shows it, and each screen goes on updating its own row.
    void twoStationsSaveNewClients() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        std::unique_ptr<Store> other = inst.openSecondStore();
        Store& mine = inst.store();
        ScriptedPrompter prompts;

        cliente a;
        QVERIFY(showActive(&a));
        Store::setCurrent(other.get());
        cliente b;
        QVERIFY(showActive(&b));
        QCOMPARE(shown(&a, QStringLiteral("A1")), QStringLiteral("00021"));
        QCOMPARE(shown(&b, QStringLiteral("A1")), QStringLiteral("00021"));

        Store::setCurrent(&mine);
        QVERIFY(showActive(&a));
        typeAndLeave(&a, QStringLiteral("C5"), QStringLiteral("PRIMEIRA ESTAÇÃO"));
        click(&a, QStringLiteral("Command16"));
        QCOMPARE(shown(&a, QStringLiteral("A1")), QStringLiteral("00021"));

        Store::setCurrent(other.get());
        QVERIFY(showActive(&b));
        typeAndLeave(&b, QStringLiteral("C5"), QStringLiteral("SEGUNDA ESTAÇÃO"));
        click(&b, QStringLiteral("Command16"));
        QCOMPARE(shown(&b, QStringLiteral("A1")), QStringLiteral("00022"));
        typeAndLeave(&b, QStringLiteral("C7"), QStringLiteral("RITA"));
        click(&b, QStringLiteral("Command16"));

        Store::setCurrent(&mine);
        QVERIFY(showActive(&a));
        typeAndLeave(&a, QStringLiteral("C7"), QStringLiteral("PAULO"));
        click(&a, QStringLiteral("Command16"));
        QCOMPARE(prompts.texts(), QStringList(4, kSaved));
        QCOMPARE(mine.count(QStringLiteral("clientes")), 22);
        QCOMPARE(column(QStringLiteral("clientes"), QStringLiteral("00021"), QStringLiteral("C5"))
                     .toString(),
                 QStringLiteral("PRIMEIRA ESTAÇÃO"));
        QCOMPARE(column(QStringLiteral("clientes"), QStringLiteral("00021"), QStringLiteral("C7"))
                     .toString(),
                 QStringLiteral("PAULO"));
        QCOMPARE(column(QStringLiteral("clientes"), QStringLiteral("00022"), QStringLiteral("C5"))
                     .toString(),
                 QStringLiteral("SEGUNDA ESTAÇÃO"));
        QCOMPARE(column(QStringLiteral("clientes"), QStringLiteral("00022"), QStringLiteral("C7"))
                     .toString(),
                 QStringLiteral("RITA"));
    }

    // A save the store refuses shows the engine's words; nothing is written, the screen
    // keeps what was typed, and the same save goes through once the store takes it.
    void refusedSaveLosesNothing() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("CLIENTE NOVO"));
        typeAndLeave(&screen, QStringLiteral("C7"), QStringLiteral("MARTA"));
        refuseInserts(inst.store(), QStringLiteral("clientes"), true);
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.count(Kind::Error), 1);
        QVERIFY2(prompts.lastText().contains(QStringLiteral("disco cheio (teste)")),
                 qPrintable(prompts.lastText()));
        QCOMPARE(prompts.count(Kind::Notice), 0);
        QCOMPARE(inst.store().count(QStringLiteral("clientes")), 20);
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("CLIENTE NOVO"));
        QCOMPARE(shown(&screen, QStringLiteral("C7")), QStringLiteral("MARTA"));

        refuseInserts(inst.store(), QStringLiteral("clientes"), false);
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.lastText(), kSaved);
        QCOMPARE(column(QStringLiteral("clientes"), QStringLiteral("00021"), QStringLiteral("C7"))
                     .toString(),
                 QStringLiteral("MARTA"));
    }

    // The search tab narrows the grid at each key, blind to case and accents; a double
    // click brings the client to the first tab.
    void searchTab() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        auto* grid = screen.findChild<DBGrid*>(QStringLiteral("DBGrid1"));
        QCOMPARE(grid->recordCount(), 20);
        QCOMPARE(grid->text(0, QStringLiteral("C5")), QStringLiteral("ACME COMÉRCIO LTDA"));

        typeInto(&screen, QStringLiteral("X1"), QStringLiteral("cl"));
        QCOMPARE(grid->recordCount(), 1);
        QCOMPARE(grid->text(0, QStringLiteral("C5")), QStringLiteral("CLÍNICA SÃO LUCAS"));
        typeInto(&screen, QStringLiteral("X1"), QStringLiteral("d'a"));
        QCOMPARE(grid->recordCount(), 1);
        QCOMPARE(grid->text(0, QStringLiteral("C5")), QStringLiteral("D'AVILA ADVOGADOS"));
        typeInto(&screen, QStringLiteral("Text1"), QStringLiteral("pa"));
        QCOMPARE(grid->recordCount(), 2); // PADARIA PÃO, PAPELARIA ESTRELA
        const QString cpf =
            column(QStringLiteral("clientes"), QStringLiteral("00012"), QStringLiteral("C3"))
                .toString();
        typeInto(&screen, QStringLiteral("X2"), cpf);
        QCOMPARE(grid->recordCount(), 1);
        QCOMPARE(grid->text(0, QStringLiteral("CODIGO")), QStringLiteral("00012"));

        QCoreApplication::processEvents();
        const QRect cell = grid->visualRect(grid->model()->index(0, 1));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(screen.foundCode(), QStringLiteral("00012"));
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("JOÃO CARLOS PEREIRA"));
        QCOMPARE(screen.findChild<SSTab*>(QStringLiteral("SSTab1"))->tab(), 0);
        QVERIFY(prompts.texts().isEmpty());

        // Novo puts the whole list back.
        click(&screen, QStringLiteral("Command4"));
        QCOMPARE(grid->recordCount(), 20);
        QCOMPARE(shown(&screen, QStringLiteral("X2")), QString());
    }

    // A search that matches thousands of rows reads one page at a time, in name order.
    void searchManyRows() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        {
            UnitOfWork unit(inst.store());
            for (int i = 0; i < 2500; ++i)
                inst.store().execute(
                    QStringLiteral("INSERT INTO clientes (CODIGO, C3, C5) VALUES (?, ?, ?)"),
                    {padCode(100 + i, 5), QStringLiteral("9%1").arg(i, 10, 10, QLatin1Char('0')),
                     QStringLiteral("NOME %1").arg(9999 - i)});
            unit.commit();
        }
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        auto* grid = screen.findChild<DBGrid*>(QStringLiteral("DBGrid1"));
        for (const QString& typed : {QStringLiteral("9"), QStringLiteral("900000012")}) {
            typeInto(&screen, QStringLiteral("X2"), typed);
            while (grid->hasMore())
                grid->fetchPage();
            const int expected = typed.size() == 1 ? 2500 : 100;
            QCOMPARE(grid->recordCount(), expected);
            for (int r = 0; r < grid->recordCount(); ++r)
                QVERIFY(grid->text(r, QStringLiteral("C5")).startsWith(QStringLiteral("NOME ")));
            QCOMPARE(grid->text(0, QStringLiteral("C5")),
                     typed.size() == 1 ? QStringLiteral("NOME 7500") : QStringLiteral("NOME 8700"));
        }
        QVERIFY(prompts.texts().isEmpty());
    }

    // The public pages open only after a "Sim", the one the options point to.
    void publicPages() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        prompts.answerNo();
        click(&screen, QStringLiteral("Command19"));
        QCOMPARE(prompts.count(Kind::Browser), 0);
        prompts.answerYes();
        click(&screen, QStringLiteral("Command19"));
        click(&screen, QStringLiteral("C33"));
        prompts.answerYes();
        click(&screen, QStringLiteral("Command19"));
        QCOMPARE(prompts.texts(Kind::Question),
                 QStringList(3, QStringLiteral("Você está conectado a internet?")));
        QCOMPARE(prompts.texts(Kind::Browser),
                 (QStringList{RegisterScreen::cpfPage(), RegisterScreen::cnpjPage()}));
        QVERIFY(RegisterScreen::cnpjPage().endsWith(
            QStringLiteral("/PessoaJuridica/CNPJ/cnpjreva/Cnpjreva_Solicitacao.asp")));

        MOTO moto;
        QVERIFY(showActive(&moto));
        prompts.clear();
        prompts.answerYes();
        click(&moto, QStringLiteral("Command19"));
        QCOMPARE(prompts.texts(Kind::Browser), QStringList{RegisterScreen::cpfPage()});
        click(&moto, QStringLiteral("Command10")); // no postcode look-up
        click(&moto, QStringLiteral("Command1"));  // reports come later
        QCOMPARE(prompts.shown().size(), 2);
    }

    // Couriers: both names are required, in order; a save puts him back to "Livre".
    void courierSave() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        MOTO screen;
        QVERIFY(showActive(&screen));
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00009"));
        typeAndLeave(&screen, QStringLiteral("C4"), QStringLiteral("NOVATO"));
        click(&screen, QStringLiteral("Command16"));
        typeInto(&screen, QStringLiteral("C4"), QString());
        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("NOME DO NOVATO"));
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.texts(),
                 (QStringList{
                     QStringLiteral("O campo [NOME], não pode ficar em branco."),
                     QStringLiteral("O campo [APELIDO OU SOBRENOME], não pode ficar em branco.")}));
        QCOMPARE(QApplication::focusWidget(), control(&screen, QStringLiteral("C4")));
        QCOMPARE(inst.store().count(QStringLiteral("motoqueiros")), 8);

        // DUDA is out on a delivery; any save of his record frees him.
        inst.store().execute(
            QStringLiteral("UPDATE motoqueiros SET C25 = ?, C26 = ?, C32 = ? WHERE C4 = ?"),
            {QStringLiteral("A caminho"), QStringLiteral("guardado"), QStringLiteral("x"),
             QStringLiteral("DUDA")});
        const QString tel =
            column(QStringLiteral("motoqueiros"), QStringLiteral("00003"), QStringLiteral("C8"))
                .toString();
        typeInto(&screen, QStringLiteral("C8"), tel);
        click(&screen, QStringLiteral("Command6"));
        QCOMPARE(shown(&screen, QStringLiteral("C4")), QStringLiteral("DUDA"));
        QCOMPARE(shown(&screen, QStringLiteral("C28")), QStringLiteral("10,00"));
        typeAndLeave(&screen, QStringLiteral("C28"), QStringLiteral("12,5"));
        prompts.clear();
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(prompts.texts(), QStringList{kSaved});
        const QString t = QStringLiteral("motoqueiros"), duda = QStringLiteral("00003");
        QCOMPARE(column(t, duda, QStringLiteral("C25")).toString(), QStringLiteral("Livre"));
        QCOMPARE(column(t, duda, QStringLiteral("C26")).toString(), QStringLiteral("guardado"));
        QCOMPARE(column(t, duda, QStringLiteral("C32")).toString(), QString());
        QCOMPARE(column(t, duda, QStringLiteral("C28")).toLongLong(), 1250);

        // A new courier starts free too, and deleting needs a search first.
        click(&screen, QStringLiteral("Command4"));
        QCOMPARE(shown(&screen, QStringLiteral("C4")), QString());
        QCOMPARE(shown(&screen, QStringLiteral("C1")), QStringLiteral("ATIVO"));
        typeAndLeave(&screen, QStringLiteral("C4"), QStringLiteral("NOVATO"));
        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("NOME DO NOVATO"));
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(column(t, QStringLiteral("00009"), QStringLiteral("C25")).toString(),
                 QStringLiteral("Livre"));
        click(&screen, QStringLiteral("Command3"));
        QCOMPARE(prompts.lastText(), kSearchFirst);

        // Next tab: the second page, the focus sent to C23 of the first.
        click(&screen, QStringLiteral("Command18"));
        QCOMPARE(screen.findChild<SSTab*>(QStringLiteral("SSTab1"))->tab(), 1);
    }

    // Suppliers: no reports; the region column is written empty and C21 to C30 are left.
    void supplier() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        forne screen;
        QVERIFY(showActive(&screen));
        QCOMPARE(screen.findChild<SSTab*>(QStringLiteral("SSTab1"))->tabText(1),
                 QStringLiteral("02-Pesquisa"));
        click(&screen, QStringLiteral("Command1"));
        screen.findChild<QMenuBar*>()->findChild<QAction*>(QStringLiteral("ferr"))->trigger();
        QCOMPARE(prompts.texts(), QStringList(2, QStringLiteral("Desabilitado nesta versão.")));

        inst.store().execute(
            QStringLiteral("UPDATE fornecedores SET C25 = ?, C34 = ? WHERE CODIGO = ?"),
            {QStringLiteral("guardado"), QStringLiteral("ZONA SUL"), QStringLiteral("00001")});
        click(&screen, QStringLiteral("Command11"));
        QCOMPARE(shown(&screen, QStringLiteral("C5")), QStringLiteral("POSTO BOA VIAGEM"));
        typeAndLeave(&screen, QStringLiteral("C19"), QStringLiteral("1234-5"));
        click(&screen, QStringLiteral("Command16"));
        const QString t = QStringLiteral("fornecedores");
        QCOMPARE(column(t, QStringLiteral("00001"), QStringLiteral("C19")).toString(),
                 QStringLiteral("1234-5"));
        QCOMPARE(column(t, QStringLiteral("00001"), QStringLiteral("C25")).toString(),
                 QStringLiteral("guardado"));
        QCOMPARE(column(t, QStringLiteral("00001"), QStringLiteral("C34")).toString(), QString());

        click(&screen, QStringLiteral("Command4"));
        typeAndLeave(&screen, QStringLiteral("C5"), QStringLiteral("OFICINA NOVA"));
        click(&screen, QStringLiteral("Command16"));
        QCOMPARE(shown(&screen, QStringLiteral("A1")), QStringLiteral("00005"));
        QVERIFY(column(t, QStringLiteral("00005"), QStringLiteral("C25")).isNull());
        QCOMPARE(column(t, QStringLiteral("00005"), QStringLiteral("C32")).toString(),
                 QStringLiteral("True"));
        click(&screen, QStringLiteral("Command3"));
        QCOMPARE(prompts.lastText(), kSearchFirst);
    }

    // Lists: a name in other capitals adds nothing; a region added through the client
    // screen's button reaches its combo at once; deleting asks and empties the box.
    void lists() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        cliente screen;
        QVERIFY(showActive(&screen));
        auto* regions = screen.findChild<QComboBox*>(QStringLiteral("C34"));
        QCOMPARE(regions->count(), 5);
        typeInto(&screen, QStringLiteral("C34"), QStringLiteral("lapa"));

        QStringList seen;
        QTimer::singleShot(0, [&] {
            auto* list = qobject_cast<ListDialog*>(QApplication::activeModalWidget());
            if (!list) return;
            QApplication::setActiveWindow(list);
            if (!QTest::qWaitForWindowActive(list)) {
                list->close();
                return;
            }
            seen << list->objectName() << list->windowTitle();
            auto* A1 = list->findChild<QLineEdit*>(QStringLiteral("A1"));
            auto* save = list->findChild<QAbstractButton*>(QStringLiteral("Command10"));
            auto* grid = list->findChild<MSFlexGrid*>(QStringLiteral("Grid1"));
            seen << QString::number(grid->rows() - 1);
            typeText(A1, QStringLiteral("centro"));
            QTest::mouseClick(save, Qt::LeftButton);
            seen << QString::number(grid->rows() - 1) << A1->text();
            A1->selectAll();
            typeText(A1, QStringLiteral("lapa"));
            QTest::keyClick(A1, Qt::Key_Return); // to the button
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            seen << QString::number(grid->rows() - 1) << A1->text();
            QStringList names;
            for (int r = 1; r < grid->rows(); ++r)
                names << grid->textMatrix(r, 0);
            seen << names.join(u',');
            seen << QString::number(regions->count());
            list->close();
        });
        click(&screen, QStringLiteral("Command17"));
        QCOMPARE(seen,
                 (QStringList{QStringLiteral("cadgrupo"), QStringLiteral("Cadastro de Grupos"),
                              QStringLiteral("5"), QStringLiteral("5"), QStringLiteral("centro"),
                              QStringLiteral("6"), QStringLiteral("lapa"),
                              QStringLiteral("CENTRO,LAPA,ZONA LESTE,ZONA NORTE,ZONA "
                                             "OESTE,ZONA SUL"),
                              QStringLiteral("6")}));
        QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM grupos_clientes WHERE A1 = ?"),
                       {QStringLiteral("LAPA")}),
                 1);
        QCOMPARE(regions->itemText(1), QStringLiteral("LAPA"));
        QCOMPARE(regions->currentText(), QStringLiteral("lapa")); // what was typed stays

        // Deleting from the list: "Não" keeps it, "Sim" removes it from the client's combo.
        cadgrupo list;
        QVERIFY(showActive(&list));
        auto* grid = list.findChild<MSFlexGrid*>(QStringLiteral("Grid1"));
        auto* A1 = list.findChild<QLineEdit*>(QStringLiteral("A1"));
        QCOMPARE(grid->cellBackColor(2, 0), stripeColour());
        typeText(A1, QStringLiteral("   "));
        QTest::mouseClick(list.findChild<QAbstractButton*>(QStringLiteral("Command10")),
                          Qt::LeftButton);
        QCOMPARE(grid->rows() - 1, 6);
        QCOMPARE(prompts.texts(), QStringList());
        grid->setRow(2);
        prompts.answerNo();
        QTest::keyClick(grid, Qt::Key_Return);
        QCOMPARE(grid->rows() - 1, 6);
        prompts.answerYes();
        QTest::keyClick(grid, Qt::Key_Return);
        QCOMPARE(grid->rows() - 1, 5);
        QCOMPARE(A1->text(), QString());
        QCOMPARE(QApplication::focusWidget(), A1);
        QCOMPARE(regions->count(), 5);
        QCOMPARE(regions->findText(QStringLiteral("LAPA")), -1);

        // The other lists add their names behind the regions of an open client screen.
        cadtipo types;
        QCOMPARE(types.windowTitle(), QStringLiteral("Cadastro de Tipos "));
        QCOMPARE(regions->count(), 10);
        QCOMPARE(regions->itemText(5), QStringLiteral("ALUGUEL"));
        typeText(types.findChild<QLineEdit*>(QStringLiteral("A1")), QStringLiteral("Pedágio"));
        QTest::mouseClick(types.findChild<QAbstractButton*>(QStringLiteral("Command10")),
                          Qt::LeftButton);
        QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM tipos_financeiros WHERE A1 = ?"),
                       {QStringLiteral("PEDÁGIO")}),
                 1);
        QCOMPARE(regions->count(), 10);
    }

    // The hub opens the three registers by their module names.
    void modules() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        for (const auto& [module, screen] :
             {std::pair{QStringLiteral("Clientes"), QStringLiteral("cliente")},
              std::pair{QStringLiteral("Courier (entregador)"), QStringLiteral("MOTO")},
              std::pair{QStringLiteral("Fornecedores"), QStringLiteral("forne")}}) {
            const ModuleFactory factory = moduleFactory(module);
            QVERIFY2(factory, qPrintable(module));
            std::unique_ptr<QDialog> made(factory(nullptr));
            QCOMPARE(made->objectName(), screen);
        }
    }
};

QTEST_MAIN(RegistersTest)
#include "tst_registers.moc"
