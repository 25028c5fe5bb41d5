// Lists that follow their rows: whichever screen or core writes, every open list of those
// rows shows them once the writer's action is over, the row marked and what is being typed
// kept.

#include "agenda/agenda.h"
#include "agenda/core/agenda.h"
#include "agenda/core/clock.h"
#include "dispatch/core/board.h"
#include "dispatch/core/services.h"
#include "dispatch/servi2.h"
#include "dispatchdesk.h"
#include "finance/caixa.h"
#include "finance/cobra.h"
#include "finance/contas.h"
#include "registers/cliente.h"
#include "registers/lists.h"
#include "store/formats.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;
namespace ag = rtx::agenda;

namespace {

qint64 money(const QWidget* screen, const QString& name) {
    return parseMoney(shown(screen, name)).value_or(-1);
}

} // namespace

class RefreshTest : public QObject, DispatchDesk {
    Q_OBJECT

private slots:
    void cleanup() { end(); }

    // Dispatches saved on Atendimento show at once on the lists of the same station: one
    // paid A VISTA on the CAIXA of its day, with the new credits, the movement being typed
    // there kept; one to FATURAR among receber's bills and in cobra's listing, the rows
    // marked there for the write-off still marked. A courier moved by another hand shows on
    // the board once the writer is done, its row still marked.
    void listsFollowTheDispatch() {
        begin();
        RTX_REQUIRE_INSTALL(*inst);
        CAIXA caixa;
        receber receivables;
        cobra billing;
        QVERIFY(showActive(&receivables) && showActive(&billing) && showActive(&caixa));
        click(&caixa, u"Command1"_s);
        click(&billing, u"Command9"_s);
        auto* day = control<MSFlexGrid>(&caixa, u"Grid1"_s);
        auto* bills = control<MSFlexGrid>(&billing, u"Grid1"_s);
        const int rows = day->rows(), listed = bills->rows();
        const qint64 credits = money(&caixa, u"t2"_s), owed = money(&receivables, u"t1"_s);
        typeInto(&caixa, u"A6"_s, u"ALUGUEL DE MARÇO"_s);
        emit bills->rowDoubleClicked(1);
        const QString marked = bills->textMatrix(1, 0);
        QCOMPARE(bills->textMatrix(1, 5), u"Ok"_s);

        open();
        for (const QString& payment : {u"A VISTA"_s, u"FATURAR"_s}) {
            fillDispatch(payment);
            press(u"Command16"_s, {true, false});
        }
        QApplication::processEvents();
        QCOMPARE(day->rows(), rows + 1);
        QCOMPARE(money(&caixa, u"t2"_s), credits + 2250);
        QCOMPARE(shown(&caixa, u"A6"_s), u"ALUGUEL DE MARÇO"_s);
        QCOMPARE(money(&receivables, u"t1"_s), owed + 2250);
        QCOMPARE(bills->rows(), listed + 1);
        QCOMPARE(bills->textMatrix(gridRow(bills, marked), 5), u"Ok"_s);

        auto* board = get<MSFlexGrid>(u"Grid1"_s);
        const int beto = gridRow(board, u"BETO"_s);
        QVERIFY(beto > 0);
        board->setRow(beto);
        {
            UnitOfWork unit(store());
            dispatch::moveCourier(store(), u"BETO"_s, u"Na base"_s);
            unit.commit();
        }
        QCOMPARE(board->textMatrix(beto, 1), u"A caminho"_s); // not in the writer's middle
        QApplication::processEvents();
        QCOMPARE(board->textMatrix(gridRow(board, u"BETO"_s), 1), u"Na base"_s);
        QCOMPARE(board->row(), beto);
    }

    // A client written elsewhere comes into the open register's search, the marked row and
    // the half-typed record left as they were. A group of accounts added in its list comes
    // into the combos of CAIXA and Pagar, each still showing what it showed.
    void searchAndCombosFollowTheirTables() {
        Desk<cliente> d(true);
        RTX_OPEN_DESK(d);
        auto* search = control<DBGrid>(d.s(), u"DBGrid1"_s);
        const int found = search->recordCount();
        search->setCurrentRecord(2);
        typeInto(d.s(), u"C5"_s, u"CLIENTE A MEIO"_s);
        Store& store = d.inst.store();
        const TableDef& clients = rtx::table(u"clientes"_s);
        store.insert(clients.name, {{clients.codeColumn, store.nextCode(clients.name)},
                                    {u"C5"_s, u"AAA NOVO CLIENTE"_s}});
        QApplication::processEvents();
        QCOMPARE(search->recordCount(), found + 1);
        QCOMPARE(search->currentRecord(), 2);
        QCOMPARE(shown(d.s(), u"C5"_s), u"CLIENTE A MEIO"_s);

        CAIXA caixa;
        Pagar payables;
        auto* cashGroup = control<QComboBox>(&caixa, u"A7"_s);
        auto* billGroup = control<QComboBox>(&payables, u"C7"_s);
        cashGroup->setEditText(u"GRUPO A MEIO"_s);
        billGroup->setCurrentIndex(billGroup->count() - 1);
        const QString picked = billGroup->currentText();
        cadcontas groups;
        QVERIFY(showActive(&groups));
        typeInto(&groups, u"A1"_s, u"ZZ NOVO GRUPO"_s);
        click(&groups, u"Command10"_s);
        QApplication::processEvents();
        for (QComboBox* c : {cashGroup, control<QComboBox>(&caixa, u"Combo1"_s), billGroup,
                             control<QComboBox>(&payables, u"K4"_s)})
            QVERIFY2(c->findText(u"ZZ NOVO GRUPO"_s) >= 0, qPrintable(c->objectName()));
        QCOMPARE(cashGroup->currentText() + u'|' + billGroup->currentText(),
                 u"GRUPO A MEIO|"_s + picked);
    }

    // An entry kept for today by another screen shows in the day's list and the count of
    // the open agenda; the entry being typed stays.
    void agendaFollowsItsEntries() {
        Desk<AGENDA> d(true);
        RTX_OPEN_DESK(d);
        auto* list = control<MSFlexGrid>(d.s(), u"Grid1"_s);
        const int rows = list->rows();
        const int count = shown(d.s(), u"nr"_s).toInt();
        typeInto(d.s(), u"A5"_s, u"EVENTO A MEIO"_s);
        ag::Entry e;
        e.date = ag::clock().today();
        e.hour = u"23:59"_s;
        e.event = u"REUNIÃO"_s;
        ag::saveEntry(d.inst.store(), e);
        QApplication::processEvents();
        QCOMPARE(list->rows(), rows + 1);
        QCOMPARE(shown(d.s(), u"nr"_s).toInt(), count + 1);
        QCOMPARE(shown(d.s(), u"A5"_s), u"EVENTO A MEIO"_s);
    }

    // The service table open while services change elsewhere: a value changed shows in its
    // row, a new service comes at the end as a save here puts it, a row picked out of the
    // list stays out, and what is typed stays.
    void serviceTableFollowsItsRows() {
        Desk<SERVI2> d(true);
        RTX_OPEN_DESK(d);
        auto* grid = control<MSFlexGrid>(d.s(), u"Grid1"_s);
        const int rows = grid->rows();
        const QString changed = grid->textMatrix(1, 2);
        const QString takenOut = grid->textMatrix(2, 0);
        pickRow(grid, 2);
        typeInto(d.s(), u"A1"_s, u"SERVIÇO A MEIO"_s);
        Store& store = d.inst.store();
        dispatch::addService(store, u"AAA PRIMEIRO"_s, 100);
        store.execute(u"UPDATE servicos SET A2 = ? WHERE cod = ?"_s, {qint64(4321), changed});
        QApplication::processEvents();
        QCOMPARE(grid->rows(), rows); // one in, one picked out
        QCOMPARE(grid->textMatrix(1, 1) + u'|' + grid->textMatrix(1, 2), u"43,21|"_s + changed);
        QCOMPARE(grid->textMatrix(rows - 1, 0), u"AAA PRIMEIRO"_s);
        QCOMPARE(gridRow(grid, takenOut), -1);
        QCOMPARE(shown(d.s(), u"A1"_s), u"SERVIÇO A MEIO"_s);
    }
};

QTEST_MAIN(RefreshTest)
#include "tst_refresh.moc"
