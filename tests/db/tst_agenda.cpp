// The day agenda and its search, driven through their screens on a clock that stands on a
// day of its own: the outlook's rows and headings, the day list, the word lists kept
// through prompts, the notices, the comment that a walk carries, the day steps, and the
// search's list, group and print rows.

#include "agenda/agenda.h"
#include "agenda/agenda3.h"
#include "agenda/core/agenda.h"
#include "agenda/core/clock.h"
#include "output/core/defaultlayouts.h"
#include "output/reportcontrol.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "store/formats.h"

#include <QAction>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace ag = rtx::agenda;
using Kind = ScriptedPrompter::Kind;

namespace {

// Tuesday, 10 March 2026, 10:15.
const QDate kToday(2026, 3, 10);
const QString kSaved = u"Operação realizada com sucesso."_s;

struct ClockOn {
    ag::FixedClock clock{QDateTime(kToday, QTime(10, 15))};
    ClockOn() { ag::setClock(&clock); }
    ~ClockOn() { ag::setClock(nullptr); }
};

QString entry(const QDate& day, const QString& hour, const QString& event,
              const QString& group = u"DIRETORIA"_s, const QString& comment = {}) {
    ag::Entry e;
    e.date = day;
    e.hour = hour;
    e.event = event;
    e.group = group;
    e.comment = comment;
    return ag::saveEntry(Store::current(), e);
}

QStringList gridRows(MSFlexGrid* grid, int col = 0) {
    QStringList out;
    for (int r = 1; r < grid->rows(); ++r)
        out << grid->textMatrix(r, col);
    return out;
}

QString heading(MSFlexGrid* grid) {
    return grid->horizontalHeaderItem(0) ? grid->horizontalHeaderItem(0)->text() : QString();
}

void setDate(QWidget* screen, const QDate& day) {
    typeAndLeave(screen, u"A1"_s, day.toString(u"ddMMyyyy"_s));
}

} // namespace

class AgendaTest : public QObject {
    Q_OBJECT

private slots:
    // Whoever saves an entry, its words are kept without the blanks typed around them, so
    // that the day list and the search find them as the lists hold them; the comment is
    // kept as typed. A second save of the code is the same row.
    void wordsKeptWithoutBlanks() {
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        ag::Entry e;
        e.date = kToday;
        e.hour = u" 08:00 "_s;
        e.group = u" DIRETORIA"_s;
        e.position = u"ABERTA  "_s;
        e.event = u"  REUNIÃO "_s;
        e.comment = u" levar o contrato "_s;
        e.code = ag::saveEntry(d.inst.store(), e);
        const auto back = ag::loadEntry(d.inst.store(), e.code);
        QVERIFY(back);
        QCOMPARE((QStringList{back->hour, back->group, back->position, back->event, back->comment}),
                 (QStringList{u"08:00"_s, u"DIRETORIA"_s, u"ABERTA"_s, u"REUNIÃO"_s,
                              u" levar o contrato "_s}));
        QCOMPARE(back->date, kToday);
        e.event = u"REUNIÃO ADIADA "_s;
        QCOMPARE(ag::saveEntry(d.inst.store(), e), e.code);
        QCOMPARE(d.count(ag::entriesTable), 1);
        QCOMPARE(ag::dayEntries(d.inst.store(), kToday).value(0).event, u"REUNIÃO ADIADA"_s);
    }

    // Grava and Novo draw the lists beside from the date the screen showed (the entry just
    // saved): the next day and the day after by hour, the four weeks after by date, under
    // headings that tell the days from today with their counts as three digits; then the
    // screen starts a new entry on today. Until then the lists stay; the menu twin does the
    // same as Novo, and HOJE refills the rows from A1.
    void outlookFollowsTheDateSaved() {
        ClockOn on;
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        const QDate later = kToday.addDays(10);
        entry(later.addDays(1), u"09:00"_s, u"REUNIÃO"_s);
        entry(later.addDays(1), u"08:00"_s, u"CAFÉ"_s);
        entry(later.addDays(2), u"14:00"_s, u"PAGAMENTO"_s);
        entry(later.addDays(30), u"07:00"_s, u"ÚLTIMO DO MÊS"_s);
        entry(later.addDays(31), u"08:00"_s, u"FORA"_s);
        entry(later.addDays(3), u"18:00"_s, u"PRIMEIRA SEMANA"_s);
        entry(kToday.addDays(1), u"07:00"_s, u"AMANHÃ DE HOJE"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        const QStringList fromToday{u"=> 07:00 - AMANHÃ DE HOJE"_s};
        const QStringList fromLater{u"=> 08:00 - CAFÉ"_s, u"=> 09:00 - REUNIÃO"_s};
        const QStringList weeksLater{u"=> %1 - PRIMEIRA SEMANA"_s.arg(formatDate(later.addDays(3))),
                                     u"=> %1 - ÚLTIMO DO MÊS"_s.arg(formatDate(later.addDays(30)))};
        QCOMPARE(gridRows(s->outlookList(0)), fromToday);
        setDate(s, later);
        QCOMPARE(gridRows(s->outlookList(0)), fromToday);

        typeAndLeave(s, u"A5"_s, u"VISITA"_s);
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), kSaved);
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        QCOMPARE(shown(s, u"A5"_s), QString());
        QCOMPARE(gridRows(s->outlookList(0)), fromLater);
        QCOMPARE(gridRows(s->outlookList(1)), QStringList{u"=> 14:00 - PAGAMENTO"_s});
        QCOMPARE(gridRows(s->outlookList(2)), weeksLater);
        const QString blanks(65, u' ');
        QCOMPARE(heading(s->outlookList(0)), u"Quarta-11/03 - Total - 002"_s + blanks);
        QCOMPARE(heading(s->outlookList(1)), u"Quinta-12/03 - Total - 001"_s + blanks);
        QCOMPARE(heading(s->outlookList(2)), u"Sexta-13/03 - Total - 002"_s + blanks);

        // Novo with today shown: today's outlook; with a later date shown: that date's.
        click(s, u"Command18"_s);
        QCOMPARE(gridRows(s->outlookList(0)), fromToday);
        setDate(s, later);
        s->findChild<QAction*>(u"sdf"_s)->trigger();
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        QCOMPARE(gridRows(s->outlookList(0)), fromLater);
        QCOMPARE(gridRows(s->outlookList(2)), weeksLater);
        QCOMPARE(shown(s, u"a4"_s), u"ABERTA"_s);

        setDate(s, later);
        click(s, u"Command3"_s);
        QCOMPARE(heading(s->outlookList(1)), u"Quinta-12/03 - Total - 001"_s + blanks);
        QCOMPARE(gridRows(s->outlookList(1)), QStringList{u"=> 14:00 - PAGAMENTO"_s});
        QCOMPARE(shown(s, u"data"_s), u"10/03/2026"_s);
        QCOMPARE(shown(s, u"XDD"_s), u"Terça"_s);
        QCOMPARE(shown(s, u"CT"_s), u"Terça-10/03"_s);
    }

    // The day's list is ordered by the hour as typed, as text; two entries at one hour are
    // both kept; the load shows today's list and the number of entries.
    void dayListAndSave() {
        ClockOn on;
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        entry(kToday, u"9:00"_s, u"NOVE"_s);
        entry(kToday, u"10:00"_s, u"DEZ"_s);
        entry(kToday.addDays(1), u"08:00"_s, u"AMANHÃ"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        QCOMPARE(shown(s, u"nr"_s), u"3"_s);
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        QCOMPARE(shown(s, u"a4"_s), u"ABERTA"_s);
        QCOMPARE(gridRows(s->dayList(), 2), (QStringList{u"DEZ"_s, u"NOVE"_s}));

        // A save lacking the event, then the position, says so in that order.
        typeInto(s, u"a4"_s, {});
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), u"Evento não localizado."_s);
        typeAndLeave(s, u"A5"_s, u"DEZ"_s);
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), u"Posição não localizada."_s);

        // A second entry at ten: both kept, the list refilled, the screen cleared.
        typeAndLeave(s, u"a4"_s, u"ABERTA"_s);
        typeAndLeave(s, u"A2"_s, u"10:00"_s);
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), kSaved);
        QCOMPARE(d.count(ag::entriesTable), 4);
        QCOMPARE(gridRows(s->dayList(), 0), (QStringList{u"10:00"_s, u"10:00"_s, u"9:00"_s}));
        QCOMPARE(shown(s, u"nr"_s), u"4"_s);
        QCOMPARE(shown(s, u"A5"_s), QString());
        QCOMPARE(s->ownKey().toString(), QString());

        // A save on another day leaves today's list as it was.
        setDate(s, kToday.addDays(5));
        typeAndLeave(s, u"A5"_s, u"DEPOIS"_s);
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), kSaved);
        QCOMPARE(gridRows(s->dayList(), 2), QStringList());

        // > VER TODOS: every entry, by the hour as text.
        click(s, u"Command10"_s);
        QCOMPARE(gridRows(s->dayList(), 0),
                 (QStringList{QString(), u"08:00"_s, u"10:00"_s, u"10:00"_s, u"9:00"_s}));
    }

    // A word already on a list is a request to remove it, after the question; the entries
    // that use it stay; an empty answer does nothing.
    void wordLists() {
        ClockOn on;
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        entry(kToday, u"09:00"_s, u"REUNIÃO"_s, u"VIAGEM"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        auto* groups = s->findChild<QComboBox*>(u"a3"_s);
        d.prompts.answerText(u"VIAGEM"_s);
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.shown().last().title, u"Cadastro de Grupos"_s);
        QCOMPARE(d.prompts.shown().last().text, u"Digite o novo grupo e clique no botão OK "_s);
        QCOMPARE(groups->findText(u"VIAGEM"_s), 0);
        // The group box opens its list as it gets the focus.
        QVERIFY(groups->hasFocus() || groups->view()->isVisible());
        groups->hidePopup();

        d.prompts.answerText(u"VIAGEM"_s);
        d.prompts.answerNo();
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.lastText(), u"Confirma exclusão: VIAGEM?"_s);
        QCOMPARE(groups->count(), 1);

        d.prompts.answerText(u"VIAGEM"_s);
        d.prompts.answerYes();
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.lastText(), kSaved);
        QCOMPARE(groups->count(), 0);
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM agenda WHERE A3 = 'VIAGEM'"_s), 1);

        d.prompts.answerText(u"FECHADA"_s);
        click(s, u"Command5"_s);
        d.prompts.answerText(u"ENTREGA"_s);
        click(s, u"Command6"_s);
        QCOMPARE(ag::words(d.inst.store(), ag::WordList::Positions),
                 (QStringList{u"ABERTA"_s, u"FECHADA"_s}));
        QCOMPARE(ag::words(d.inst.store(), ag::WordList::Events), QStringList{u"ENTREGA"_s});
        const int before = int(d.prompts.shown().size());
        d.prompts.answerText(QString());
        click(s, u"Command6"_s);
        QCOMPARE(d.prompts.shown().size(), before + 1);
        QCOMPARE(d.prompts.unanswered(), 0);
    }

    // The notice of a date is shown each time the date field is left with it, and by
    // "> VER HOJE" for today.
    void noticesWhenTheDateIsLeft() {
        ClockOn on;
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        d.inst.store().insert(ag::noticesTable,
                              {{u"A1"_s, u"12/03/2026"_s}, {u"a2"_s, u"Vence o aluguel."_s}});
        d.inst.store().insert(ag::noticesTable,
                              {{u"A1"_s, u"10/03/2026"_s}, {u"a2"_s, u"Hoje tem reunião."_s}});
        QVERIFY(d.open());
        AGENDA* s = d.s();
        setDate(s, QDate(2026, 3, 12));
        QCOMPARE(d.prompts.texts(Kind::Notice), QStringList{u"Vence o aluguel."_s});
        setDate(s, QDate(2026, 3, 12));
        QCOMPARE(d.prompts.count(Kind::Notice), 2);
        setDate(s, QDate(2026, 3, 11));
        QCOMPARE(d.prompts.count(Kind::Notice), 2);
        click(s, u"Command7"_s);
        QCOMPARE(d.prompts.lastText(), u"Hoje tem reunião."_s);
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        // An emptied date becomes today.
        typeAndLeave(s, u"A1"_s, QString());
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
    }

    // A double click loads the whole entry; the walk loads all but the comment, so the
    // comment shown before stays and a save writes it to the entry walked to.
    void walkCarriesTheComment() {
        ClockOn on;
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        const QString first = entry(kToday, u"08:00"_s, u"PRIMEIRO"_s, u"G"_s, u"do primeiro"_s);
        const QString second = entry(kToday, u"09:00"_s, u"SEGUNDO"_s, u"G"_s, u"do segundo"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        emit s->dayList()->rowDoubleClicked(1);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"A5"_s, u"ob"_s}),
                 (QStringList{first, u"PRIMEIRO"_s, u"do primeiro"_s}));
        QCOMPARE(QApplication::focusWidget(), control(s, u"a4"_s));
        click(s, u"Command8"_s);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"A2"_s, u"A5"_s, u"ob"_s}),
                 (QStringList{second, u"09:00"_s, u"SEGUNDO"_s, u"do primeiro"_s}));
        click(s, u"Command19"_s);
        QCOMPARE(ag::loadEntry(d.inst.store(), second)->comment, u"do primeiro"_s);
        QCOMPARE(d.count(ag::entriesTable), 2);
        // With no entry found, previous and next do nothing; first and last walk.
        click(s, u"Command16"_s);
        QCOMPARE(shown(s, u"CODIGO"_s), QString());
        click(s, u"Command21"_s);
        QCOMPARE(shown(s, u"CODIGO"_s), second);
        click(s, u"Command16"_s);
        QCOMPARE(shown(s, u"CODIGO"_s), first);

        // Apaga asks first; on Sim the entry goes and the screen is cleared on today.
        d.prompts.answerYes();
        click(s, u"Command17"_s);
        QCOMPARE(d.prompts.lastText(), u"Deseja realmente apagar este agendamento?"_s);
        QVERIFY(!ag::loadEntry(d.inst.store(), first));
        QCOMPARE(gridRows(s->dayList(), 3), QStringList{second});
        QCOMPARE(shown(s, u"CODIGO"_s), QString());
    }

    // Each direction walks away from today on its own counter; HOJE sets both back.
    void daySteps() {
        ClockOn on;
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        entry(kToday.addDays(2), u"08:00"_s, u"DEPOIS DE AMANHÃ"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        click(s, u"Command2"_s);
        QCOMPARE(shown(s, u"A1"_s), u"11/03/2026"_s);
        click(s, u"Command2"_s);
        QCOMPARE(shown(s, u"A1"_s), u"12/03/2026"_s);
        QCOMPARE(shown(s, u"CT"_s), u"Quinta-12/03"_s);
        QCOMPARE(gridRows(s->dayList(), 2), QStringList{u"DEPOIS DE AMANHÃ"_s});
        click(s, u"Command1"_s);
        QCOMPARE(shown(s, u"A1"_s), u"09/03/2026"_s);
        click(s, u"Command2"_s);
        QCOMPARE(shown(s, u"A1"_s), u"13/03/2026"_s);
        click(s, u"Command3"_s);
        QCOMPARE(s->stepForward(), 1);
        QCOMPARE(s->stepBack(), 1);
        QCOMPARE(shown(s, u"A1"_s), u"13/03/2026"_s);
        QCOMPARE(shown(s, u"CT"_s), u"Terça-10/03"_s);
        // The clock label follows the clock.
        on.clock.set(QDateTime(kToday, QTime(10, 16, 30)));
        QTRY_COMPARE_WITH_TIMEOUT(shown(s, u"HORA"_s), u"10:16:30"_s, 2000);
    }

    // The search: the list is read when the final date is left, ordered by the hour; the
    // group narrows it in memory and a blank group leaves it so until the final date is
    // left again; the print refuses an empty list silently and writes its rows under the
    // code 1.
    void searchAndPrint() {
        ClockOn on;
        Desk<AGENDA3> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        entry(kToday, u"15:00"_s, u"TARDE"_s, u"FINANCEIRO"_s);
        entry(kToday.addDays(1), u"08:00"_s, u"CEDO"_s, u"DIRETORIA"_s);
        entry(kToday.addDays(9), u"09:00"_s, u"FORA"_s, u"DIRETORIA"_s);
        ag::addWord(d.inst.store(), ag::WordList::Groups, u"DIRETORIA"_s);
        QVERIFY(d.open());
        AGENDA3* s = d.s();
        QCOMPARE(shownAll(s, {u"A1"_s, u"A2"_s, u"nr"_s}),
                 (QStringList{u"10/03/2026"_s, u"10/03/2026"_s, u"0"_s}));
        click(s, u"SSCommand7"_s);
        QVERIFY(!s->report()->preview());
        QCOMPARE(d.prompts.shown().size(), 0);

        typeAndLeave(s, u"A2"_s, u"11032026"_s);
        QCOMPARE(s->rows(), (QStringList{u"=> 11/03/2026 - 08:00 - CEDO"_s,
                                         u"=> 10/03/2026 - 15:00 - TARDE"_s}));
        QCOMPARE(shown(s, u"nr"_s), u"2"_s);
        typeAndLeave(s, u"A3"_s, u"diretoria"_s);
        QCOMPARE(s->rows(), QStringList{u"=> 11/03/2026 - 08:00 - CEDO"_s});
        QCOMPARE(shown(s, u"nr"_s), u"1"_s);
        typeAndLeave(s, u"A3"_s, QString());
        QCOMPARE(s->rows(), QStringList{u"=> 11/03/2026 - 08:00 - CEDO"_s});

        typeAndLeave(s, u"A3"_s, u"DIRETORIA"_s);
        output::writeMissingLayouts(d.inst.folder());
        d.prompts.answerPrinter(false);
        click(s, u"SSCommand7"_s);
        QCOMPARE(d.prompts.count(Kind::Printer), 1);
        QCOMPARE(d.prompts.count(Kind::Error), 0);
        QVERIFY(s->report()->preview());
        const auto data = s->report()->read();
        QVERIFY(data);
        QCOMPARE(data->rows.size(), 1);
        QCOMPARE(rowTexts(u"SELECT * FROM rel_agenda"_s, {},
                          {u"Codigo"_s, u"DI"_s, u"DF"_s, u"GRUPO"_s, u"A1"_s}),
                 (QStringList{u"1"_s, u"10/03/2026"_s, u"11/03/2026"_s, u"GRUPO:  DIRETORIA"_s,
                              u"=> 11/03/2026 - 08:00 - CEDO"_s}));

        // The final date left again reads the whole range anew.
        typeAndLeave(s, u"A2"_s, u"19032026"_s);
        QCOMPARE(s->rows().size(), 3);
    }
};

QTEST_MAIN(AgendaTest)
#include "tst_agenda.moc"
