// An amount that cannot be read ("12,345") or a date that is no date (31/02/2026) is said so
// by the action that takes it (button, menu entry, leaving the field), the field keeps the
// focus, and nothing is written, printed or searched with another value in its place.

#include "agenda/agenda3.h"
#include "agenda/core/agenda.h"
#include "dispatch/atendimento.h"
#include "finance/caixa.h"
#include "finance/contas.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "finance/recibo.h"
#include "registerdesk.h"
#include "screendriver.h"

#include <QAction>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;

namespace {

// A screen, a money or date field, its actions ("Command16" a button, "menu:dfe" a menu entry,
// "leave" Tab out), the figures a search would change besides the lists, and what else a save
// asks for, so that a value put in place of the bad one would be saved.
struct Case {
    const char* name;
    QWidget* (*open)();
    QString field;
    bool money; // the field takes an amount; otherwise a date
    QString ways, labels, typed;
};

template <class S> QWidget* screen() {
    return new S();
}

const QList<Case> cases = {
    {"RECIBO amount", screen<RECIBO>, u"R9"_s, true, u"Command16 Command1"_s, u""_s,
     u"R2=FULANO DE TAL|R11=ENTREGAS|R13=ADMIN"_s},
    {"Pagar date", screen<Pagar>, u"C13"_s, false, u"Command16"_s, u""_s,
     u"C5=CONTA DE LUZ|C12=10,00"_s},
    {"CAIXA period", screen<CAIXA>, u"k1"_s, false, u"Command17 Command9"_s, u"TT1 TT2"_s, u""_s},
    {"agenda search", screen<AGENDA3>, u"A2"_s, false, u"leave"_s, u"nr"_s, u""_s},
    {"atendimento value", screen<Atendimento>, u"A19"_s, true, u"Command16 menu:dfe"_s, u""_s,
     u"A1=ADMIN|A6=ACME|ST=Outros"_s},
};

// What an action could have changed: the tables, the screen's lists, the figures named.
QStringList state(QWidget* s, const QString& labels) {
    Store& store = Store::current();
    QStringList out;
    for (const QString& table :
         {fin::cashTable, u"recibos"_s, fin::kindOf(fin::Ledger::Payables).table,
          fin::kindOf(fin::Ledger::Receivables).table, agenda::entriesTable, u"atendimentos"_s})
        out << table + u'=' + QString::number(store.count(table));
    for (auto* grid : s->findChildren<MSFlexGrid*>())
        out << grid->objectName() + u'=' + QString::number(grid->rows());
    for (auto* grid : s->findChildren<DBGrid*>())
        out << grid->objectName() + u'=' + QString::number(grid->recordCount());
    for (const QString& label : labels.split(u' ', Qt::SkipEmptyParts))
        out << label + u'=' + shown(s, label);
    return out;
}

} // namespace

class SettleTest : public QObject {
    Q_OBJECT

private slots:
    void badValueStopsEveryWay_data() {
        QTest::addColumn<int>("index");
        for (int i = 0; i < cases.size(); ++i)
            QTest::newRow(cases[i].name) << i;
    }

    void badValueStopsEveryWay() {
        QFETCH(int, index);
        const Case& c = cases.at(index);
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        session::setInstallation(inst.installation());
        { // Rows of today: a search that fell back to today would find them.
            Store& store = Store::current();
            UnitOfWork unit(store);
            fin::CashMovement m;
            m.date = QDate::currentDate();
            m.operation = fin::credit;
            m.amount = 1000;
            fin::postCash(store, m);
            agenda::Entry e;
            e.date = QDate::currentDate();
            e.hour = u"10:00"_s;
            e.event = u"HOJE"_s;
            agenda::saveEntry(store, e);
            unit.commit();
        }
        ScriptedPrompter prompts;
        std::unique_ptr<QWidget> s(c.open());
        QVERIFY(showActive(s.get()));
        for (const QString& pair : c.typed.split(u'|', Qt::SkipEmptyParts))
            typeInto(s.get(), pair.section(u'=', 0, 0), pair.section(u'=', 1));
        auto* box = control<MaskEdBox>(s.get(), c.field);
        const QString bad = c.money ? u"12,345"_s : u"31/02/2026"_s;
        for (const QString& way : c.ways.split(u' ')) {
            typeInto(s.get(), c.field, bad);
            const QStringList before = state(s.get(), c.labels);
            prompts.clear();
            if (way == u"leave"_s)
                QTest::keyClick(box, Qt::Key_Tab);
            else if (way.startsWith(u"menu:"_s))
                control<QAction>(s.get(), way.mid(5))->trigger();
            else
                click(s.get(), way);
            QApplication::processEvents();
            QCOMPARE(prompts.texts(),
                     QStringList{c.money ? badMoneyMessage(bad) : badDateMessage(bad)});
            QVERIFY2(QApplication::focusWidget() == box, qPrintable(way));
            QCOMPARE(box->shownText(), bad);
            QCOMPARE(state(s.get(), c.labels), before);
        }
    }
};

QTEST_MAIN(SettleTest)
#include "tst_settle.moc"
