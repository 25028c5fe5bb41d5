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
namespace ag = rtx::agenda;

static qint64 money(const QWidget* screen, const QString& name) {
    return parseMoney(shown(screen, name)).value_or(-1);
}

class RefreshTest : public QObject, DispatchDesk {
    Q_OBJECT

private slots:
    void cleanup() { end(); }

    // Dispatches saved on Atendimento show at once on the lists of the same station: one
    // paid A VISTA on the CAIXA of its day, the movement typed there kept; one to FATURAR
    // among receber's bills and in cobra's listing, the rows marked for the write-off still
    // marked. A courier moved by another hand shows on the board once the writer is done.
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

    // Writes elsewhere come into the open lists, the marked row and what is half-typed left
    // as they were: a client into the register's search; a group of accounts added in its
    // list into the combos of CAIXA and Pagar, each still showing what it showed; an entry
    // for today into the agenda's day. On the service table a value changed shows in its
    // row, a new service comes at the end as a save here puts it, and a row picked out of
    // the list stays out.
    void registerCombosAgendaAndServicesFollow() {
        Desk<cliente> d(true);
        RTX_OPEN_DESK(d);
        auto* search = control<DBGrid>(d.s(), u"DBGrid1"_s);
        const int found = search->recordCount();
        search->setCurrentRecord(2);
        typeInto(d.s(), u"C5"_s, u"CLIENTE A MEIO"_s);
        CAIXA caixa;
        Pagar payables;
        auto* cashGroup = control<QComboBox>(&caixa, u"A7"_s);
        auto* billGroup = control<QComboBox>(&payables, u"C7"_s);
        cashGroup->setEditText(u"GRUPO A MEIO"_s);
        billGroup->setCurrentIndex(billGroup->count() - 1);
        const QString picked = billGroup->currentText();
        AGENDA agenda;
        QVERIFY(showActive(&agenda));
        auto* entries = control<MSFlexGrid>(&agenda, u"Grid1"_s);
        const int entryRows = entries->rows();
        typeInto(&agenda, u"A5"_s, u"EVENTO A MEIO"_s);
        SERVI2 services;
        QVERIFY(showActive(&services));
        auto* table = control<MSFlexGrid>(&services, u"Grid1"_s);
        const int serviceRows = table->rows();
        const QString changed = table->textMatrix(1, 2), takenOut = table->textMatrix(2, 0);
        pickRow(table, 2);

        Store& store = d.inst.store();
        const TableDef& clients = rtx::table(u"clientes"_s);
        store.insert(clients.name, {{clients.codeColumn, store.nextCode(clients.name)},
                                    {u"C5"_s, u"AAA NOVO CLIENTE"_s}});
        ag::Entry e;
        e.date = ag::clock().today();
        e.hour = u"23:59"_s;
        e.event = u"REUNIÃO"_s;
        ag::saveEntry(store, e);
        dispatch::addService(store, u"AAA PRIMEIRO"_s, 100);
        store.execute(u"UPDATE servicos SET A2 = ? WHERE cod = ?"_s, {qint64(4321), changed});
        cadcontas groups;
        QVERIFY(showActive(&groups));
        typeInto(&groups, u"A1"_s, u"ZZ NOVO GRUPO"_s);
        click(&groups, u"Command10"_s);
        QApplication::processEvents();
        QCOMPARE(search->recordCount(), found + 1);
        QCOMPARE(search->currentRecord(), 2);
        QCOMPARE(shown(d.s(), u"C5"_s), u"CLIENTE A MEIO"_s);
        QVERIFY(cashGroup->findText(u"ZZ NOVO GRUPO"_s) >= 0);
        QVERIFY(billGroup->findText(u"ZZ NOVO GRUPO"_s) >= 0);
        QCOMPARE(cashGroup->currentText() + u'|' + billGroup->currentText(),
                 u"GRUPO A MEIO|"_s + picked);
        QCOMPARE(entries->rows(), entryRows + 1);
        QCOMPARE(shown(&agenda, u"A5"_s), u"EVENTO A MEIO"_s);
        QCOMPARE(table->rows(), serviceRows); // one in, one picked out
        QCOMPARE(table->textMatrix(1, 1) + u'|' + table->textMatrix(1, 2), u"43,21|"_s + changed);
        QCOMPARE(table->textMatrix(serviceRows - 1, 0), u"AAA PRIMEIRO"_s);
        QCOMPARE(gridRow(table, takenOut), -1);
    }
};

QTEST_MAIN(RefreshTest)
#include "tst_refresh.moc"
