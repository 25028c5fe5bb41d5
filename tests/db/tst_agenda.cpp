// The day agenda and its search, driven through their screens on a clock that stands on a
// day of its own.

#include "agenda/agenda.h"
#include "agenda/agenda3.h"
#include "agenda/core/agenda.h"
#include "agenda/core/clock.h"
#include "output/core/defaultlayouts.h"
#include "output/reportcontrol.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "store/formats.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace ag = rtx::agenda;
using Kind = ScriptedPrompter::Kind;

namespace {

// Tuesday, 10 March 2026, 10:15.
const QDate kToday(2026, 3, 10);

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

void setDate(QWidget* screen, const QDate& day) {
    typeAndLeave(screen, u"A1"_s, day.toString(u"ddMMyyyy"_s));
}

} // namespace

class AgendaTest : public QObject {
    Q_OBJECT

    ag::FixedClock clock_{QDateTime(kToday, QTime(10, 15))};

private slots:
    void init() { ag::setClock(&clock_); }
    void cleanup() { ag::setClock(nullptr); }

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
        e.event = u"  REUNIÃO "_s;
        e.comment = u" levar o contrato "_s;
        e.code = ag::saveEntry(d.inst.store(), e);
        const auto back = ag::loadEntry(d.inst.store(), e.code);
        QCOMPARE((QStringList{back->hour, back->group, back->event, back->comment}),
                 (QStringList{u"08:00"_s, u"DIRETORIA"_s, u"REUNIÃO"_s, u" levar o contrato "_s}));
        QCOMPARE(ag::saveEntry(d.inst.store(), e), e.code);
        QCOMPARE(d.count(ag::entriesTable), 1);
    }

    // Grava draws the lists beside from the date the screen showed (the entry just saved):
    // the next day by hour, the four weeks after by date, under headings that tell the days
    // from today with their counts as three digits; then the screen starts a new entry on
    // today. Until then the lists stay.
    void outlookFollowsTheDateSaved() {
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        const QDate later = kToday.addDays(10);
        entry(later.addDays(1), u"09:00"_s, u"REUNIÃO"_s);
        entry(later.addDays(1), u"08:00"_s, u"CAFÉ"_s);
        entry(later.addDays(30), u"07:00"_s, u"ÚLTIMO DO MÊS"_s);
        entry(later.addDays(31), u"08:00"_s, u"FORA"_s);
        entry(kToday.addDays(1), u"07:00"_s, u"AMANHÃ DE HOJE"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        const QStringList fromToday{u"=> 07:00 - AMANHÃ DE HOJE"_s};
        const QStringList fromLater{u"=> 08:00 - CAFÉ"_s, u"=> 09:00 - REUNIÃO"_s};
        const QStringList weeksLater{u"=> %1 - ÚLTIMO DO MÊS"_s.arg(formatDate(later.addDays(30)))};
        setDate(s, later);
        QCOMPARE(gridRows(s->outlookList(0)), fromToday); // until the save
        typeAndLeave(s, u"A5"_s, u"VISITA"_s);
        click(s, u"Command19"_s);
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        QCOMPARE(gridRows(s->outlookList(0)), fromLater);
        QCOMPARE(gridRows(s->outlookList(2)), weeksLater);
        QCOMPARE(s->outlookList(0)->horizontalHeaderItem(0)->text(),
                 u"Quarta-11/03 - Total - 002"_s + QString(65, u' '));
    }

    // The day's list is ordered by the hour as typed, as text. A double click loads the
    // whole entry; the walk loads all but the comment, so the comment shown before stays and
    // a save writes it to the entry walked to. A save lacking the event, then the position,
    // says so in that order; two entries at one hour are both kept. Apaga asks first.
    void dayListWalkAndSave() {
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        const QString nine = entry(kToday, u"9:00"_s, u"NOVE"_s, u"G"_s, u"das nove"_s);
        const QString ten = entry(kToday, u"10:00"_s, u"DEZ"_s, u"G"_s, u"das dez"_s);
        entry(kToday.addDays(1), u"08:00"_s, u"AMANHÃ"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        QCOMPARE(gridRows(s->dayList(), 2), (QStringList{u"DEZ"_s, u"NOVE"_s}));
        emit s->dayList()->rowDoubleClicked(2);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"ob"_s}), (QStringList{nine, u"das nove"_s}));
        QCOMPARE(QApplication::focusWidget(), control(s, u"a4"_s));
        click(s, u"Command8"_s);
        QCOMPARE(shownAll(s, {u"CODIGO"_s, u"A5"_s, u"ob"_s}),
                 (QStringList{ten, u"DEZ"_s, u"das nove"_s}));
        click(s, u"Command19"_s);
        QCOMPARE(ag::loadEntry(d.inst.store(), ten)->comment, u"das nove"_s);
        typeInto(s, u"a4"_s, {});
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), u"Evento não localizado."_s);
        typeAndLeave(s, u"A5"_s, u"DEZ"_s);
        click(s, u"Command19"_s);
        QCOMPARE(d.prompts.lastText(), u"Posição não localizada."_s);
        typeAndLeave(s, u"a4"_s, u"ABERTA"_s);
        typeAndLeave(s, u"A2"_s, u"10:00"_s);
        click(s, u"Command19"_s);
        QCOMPARE(gridRows(s->dayList(), 0), (QStringList{u"10:00"_s, u"10:00"_s, u"9:00"_s}));
        emit s->dayList()->rowDoubleClicked(3);
        d.prompts.answerYes();
        click(s, u"Command17"_s);
        QCOMPARE(d.prompts.lastText(), u"Deseja realmente apagar este agendamento?"_s);
        QVERIFY(!ag::loadEntry(d.inst.store(), nine));
    }

    // A word typed is added to its list; one already on the list is a request to remove it,
    // after the question; the entries that use it stay.
    void wordLists() {
        Desk<AGENDA> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        entry(kToday, u"09:00"_s, u"REUNIÃO"_s, u"VIAGEM"_s);
        QVERIFY(d.open());
        AGENDA* s = d.s();
        auto* groups = s->findChild<QComboBox*>(u"a3"_s);
        d.prompts.answerText(u"VIAGEM"_s);
        click(s, u"Command4"_s);
        QCOMPARE(groups->findText(u"VIAGEM"_s), 0);
        groups->hidePopup();
        script(d.prompts, {true}, u"VIAGEM"_s);
        click(s, u"Command4"_s);
        QVERIFY(d.prompts.texts().contains(u"Confirma exclusão: VIAGEM?"_s));
        QCOMPARE(groups->count(), 0);
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM agenda WHERE A3 = 'VIAGEM'"_s), 1);
    }

    // The notice of a date is shown each time the date field is left with it, and by
    // "> VER HOJE" for today; an emptied date is today. Each direction of the day steps
    // walks away from today on its own counter; HOJE sets both back.
    void noticesAndDaySteps() {
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
        setDate(s, QDate(2026, 3, 11));
        setDate(s, QDate(2026, 3, 12));
        QCOMPARE(d.prompts.count(Kind::Notice), 2);
        click(s, u"Command7"_s);
        QCOMPARE(d.prompts.lastText(), u"Hoje tem reunião."_s);
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        typeAndLeave(s, u"A1"_s, QString());
        QCOMPARE(shown(s, u"A1"_s), u"10/03/2026"_s);
        click(s, u"Command2"_s);
        click(s, u"Command2"_s);
        QCOMPARE(shown(s, u"A1"_s), u"12/03/2026"_s);
        click(s, u"Command1"_s);
        QCOMPARE(shown(s, u"A1"_s), u"09/03/2026"_s);
        click(s, u"Command2"_s);
        QCOMPARE(shown(s, u"A1"_s), u"13/03/2026"_s);
        click(s, u"Command3"_s);
        QCOMPARE(s->stepForward() + s->stepBack(), 2);
    }

    // The search: the list is read when the final date is left, ordered by the hour; the
    // group narrows it; the print refuses an empty list silently and writes its rows under
    // the code 1.
    void searchAndPrint() {
        Desk<AGENDA3> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        entry(kToday, u"15:00"_s, u"TARDE"_s, u"FINANCEIRO"_s);
        entry(kToday.addDays(1), u"08:00"_s, u"CEDO"_s, u"DIRETORIA"_s);
        entry(kToday.addDays(9), u"09:00"_s, u"FORA"_s, u"DIRETORIA"_s);
        ag::addWord(d.inst.store(), ag::WordList::Groups, u"DIRETORIA"_s);
        QVERIFY(d.open());
        AGENDA3* s = d.s();
        click(s, u"SSCommand7"_s); // an empty list: nothing, silently
        QCOMPARE(d.prompts.shown().size(), 0);
        typeAndLeave(s, u"A2"_s, u"11032026"_s);
        QCOMPARE(s->rows(), (QStringList{u"=> 11/03/2026 - 08:00 - CEDO"_s,
                                         u"=> 10/03/2026 - 15:00 - TARDE"_s}));
        typeAndLeave(s, u"A3"_s, u"diretoria"_s);
        QCOMPARE(s->rows(), QStringList{u"=> 11/03/2026 - 08:00 - CEDO"_s});
        output::writeMissingLayouts(d.inst.folder());
        d.prompts.answerPrinter(false);
        click(s, u"SSCommand7"_s);
        QCOMPARE(d.prompts.count(Kind::Printer), 1);
        QCOMPARE(rowTexts(u"SELECT * FROM rel_agenda"_s, {},
                          {u"Codigo"_s, u"DI"_s, u"DF"_s, u"GRUPO"_s, u"A1"_s}),
                 (QStringList{u"1"_s, u"10/03/2026"_s, u"11/03/2026"_s, u"GRUPO:  DIRETORIA"_s,
                              u"=> 11/03/2026 - 08:00 - CEDO"_s}));
    }
};

QTEST_MAIN(AgendaTest)
#include "tst_agenda.moc"
