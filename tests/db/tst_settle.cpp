// Every screen that keeps, deletes, prints or searches with an amount or a date reads them as
// typed: an amount that cannot be read ("12,345") or a date that is no date (31/02/2026) is
// said so by every action that takes them (its button, a menu entry, the leaving of the
// field that runs a search), the field gets the focus, and nothing is written, printed or
// searched with another value in its place.

#include "agenda/agenda.h"
#include "agenda/agenda3.h"
#include "agenda/core/agenda.h"
#include "dispatch/atendeimpre.h"
#include "dispatch/atendimento.h"
#include "dispatch/servi2.h"
#include "finance/caixa.h"
#include "finance/cobra.h"
#include "finance/cobra1.h"
#include "finance/contas.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "finance/recibo.h"
#include "registerdesk.h"
#include "registers/MOTO.h"
#include "registers/cliente.h"
#include "screendriver.h"

#include <QAction>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;

namespace {

const QString kAmount = u"12,345"_s;
const QString kDate = u"31/02/2026"_s;

// A screen, one of its money or date fields, and its actions, each by one way: "Command16"
// a button, "menu:Impressao" a menu entry, "leave" Tab out of the field. (That the menu twin
// and the shortcut of an action settle the fields as its button does is the kit's test.)
struct Case {
    QString name;
    std::function<QWidget*()> open;
    QString field;
    bool money; // the field takes an amount; otherwise a date
    QStringList ways;
    QStringList labels = {}; // what a search would change besides the lists
    std::function<void(QWidget*)> prepare = {};
};

template <class S> std::function<QWidget*()> screen() {
    return [] { return new S(); };
}

QList<Case> cases() {
    // Everything else a save asks for is filled, so that a value put in place of the bad one
    // would be saved.
    const auto fill = [](std::initializer_list<std::pair<QString, QString>> fields) {
        const QList<std::pair<QString, QString>> typed(fields);
        return std::function<void(QWidget*)>([typed](QWidget* s) {
            for (const auto& [name, text] : typed)
                typeInto(s, name, text);
        });
    };
    const auto start = [](QWidget* s) {
        click(s, u"Command1"_s);
        typeInto(s, u"A6"_s, u"ALUGUEL"_s);
    };
    const auto receipt =
        fill({{u"R2"_s, u"FULANO DE TAL"_s}, {u"R11"_s, u"ENTREGAS"_s}, {u"R13"_s, u"ADMIN"_s}});
    const auto bill = fill({{u"C5"_s, u"CONTA DE LUZ"_s}, {u"C12"_s, u"10,00"_s}});
    const auto party = fill({{u"C5"_s, u"FULANO DE TAL"_s}});
    const auto dispatch =
        fill({{u"A1"_s, u"ADMIN"_s}, {u"A6"_s, u"ACME"_s}, {u"ST"_s, u"Outros"_s}});
    const QStringList receiptWays{u"Command16"_s, u"Command11"_s, u"Command1"_s};
    const QStringList billWays{u"Command16"_s, u"Command19"_s};
    const QStringList partyWays{u"Command16"_s, u"Command3"_s, u"menu:gff"_s};
    const QStringList dispatchWays{u"Command16"_s, u"menu:dfe"_s, u"Command11"_s, u"menu:df"_s,
                                   u"Command7"_s,  u"Command8"_s, u"Command24"_s};
    return {
        {u"RECIBO amount"_s, screen<RECIBO>(), u"R9"_s, true, receiptWays, {}, receipt},
        {u"RECIBO date"_s, screen<RECIBO>(), u"R4"_s, false, receiptWays, {}, receipt},
        {u"CAIXA amount"_s, screen<CAIXA>(), u"A5"_s, true,
         QStringList{u"Command16"_s, u"Command11"_s, u"menu:Impressao"_s},
         QStringList{u"t1"_s, u"t2"_s}, start},
        {u"CAIXA day"_s, screen<CAIXA>(), u"A1"_s, false,
         QStringList{u"Command1"_s, u"Command16"_s, u"Command5"_s, u"Command11"_s},
         QStringList{u"sa"_s, u"t1"_s, u"t2"_s, u"t3"_s}, start},
        {u"CAIXA period"_s, screen<CAIXA>(), u"k1"_s, false,
         QStringList{u"Command17"_s, u"Command3"_s, u"Command9"_s, u"Command4"_s, u"Command6"_s,
                     u"Command10"_s},
         QStringList{u"TT1"_s, u"TT2"_s}},
        {u"Pagar amount"_s, screen<Pagar>(), u"C12"_s, true, billWays, {}, bill},
        {u"Pagar date"_s, screen<Pagar>(), u"C13"_s, false, billWays, {}, bill},
        {u"receber payment date"_s, screen<receber>(), u"C15"_s, false, billWays, {}, bill},
        {u"receber period"_s, screen<receber>(), u"k2"_s, false,
         QStringList{u"Command17"_s, u"Command1"_s, u"Command13"_s, u"Command14"_s,
                     u"menu:Relatorio"_s},
         QStringList{u"t1"_s}},
        {u"cobra period"_s, screen<cobra>(), u"k1"_s, false,
         QStringList{u"Command6"_s, u"Command9"_s, u"Command3"_s, u"Command4"_s},
         QStringList{u"TT"_s}, fill({{u"A1"_s, u"ACME"_s}})},
        {u"cobra1 value"_s,
         [] { return new cobra1(u"0000001"_s, u"ACME"_s, u"10,00"_s, u"5,00"_s); }, u"a4"_s, true,
         QStringList{u"Command6"_s}},
        {u"AGENDA date"_s,
         screen<AGENDA>(),
         u"A1"_s,
         false,
         QStringList{u"Command19"_s, u"menu:dsf"_s, u"Command17"_s, u"menu:sdfdsfsd"_s},
         {},
         fill({{u"A5"_s, u"REUNIAO"_s}})},
        {u"agenda search"_s, screen<AGENDA3>(), u"A2"_s, false,
         QStringList{u"leave"_s, u"SSCommand7"_s}, QStringList{u"nr"_s}},
        {u"atendimento date"_s, screen<Atendimento>(), u"A2"_s, false, dispatchWays, {}, dispatch},
        {u"atendimento value"_s, screen<Atendimento>(), u"A19"_s, true, dispatchWays, {}, dispatch},
        {u"atendimento courier value"_s,
         screen<Atendimento>(),
         u"VE"_s,
         true,
         dispatchWays,
         {},
         dispatch},
        {u"atendimento period"_s, screen<Atendimento>(), u"k1"_s, false,
         QStringList{u"Command9"_s, u"Command10"_s, u"Command17"_s, u"Command18"_s},
         QStringList{u"itt"_s}},
        {u"atendeimpre period"_s,
         screen<atendeimpre>(),
         u"k2"_s,
         false,
         QStringList{u"Command10"_s, u"Command17"_s, u"Command18"_s, u"Command1"_s},
         {},
         fill({{u"A18"_s, u"FININHO"_s}, {u"A6"_s, u"ACME"_s}})},
        {u"SERVI2 value"_s,
         screen<SERVI2>(),
         u"A2"_s,
         true,
         QStringList{u"Command16"_s, u"menu:ffdfd"_s, u"Command11"_s, u"menu:ggf"_s},
         {},
         fill({{u"A1"_s, u"ENTREGA"_s}})},
        {u"cliente amount"_s, screen<cliente>(), u"C27"_s, true, partyWays, {}, party},
        {u"cliente birth"_s, screen<cliente>(), u"C29"_s, false, partyWays, {}, party},
        {u"cliente since"_s, screen<cliente>(), u"C2"_s, false, partyWays, {}, party},
        {u"MOTO birth"_s,
         screen<MOTO>(),
         u"C29"_s,
         false,
         partyWays,
         {},
         fill({{u"C5"_s, u"FULANO DE TAL"_s}, {u"C4"_s, u"TAL"_s}})},
    };
}

// What an action could have changed: the rows of the tables, every list of the screen and
// the figures named.
QStringList state(QWidget* s, const QStringList& labels) {
    Store& store = Store::current();
    QStringList out;
    for (const QString& table :
         {fin::cashTable, u"recibos"_s, fin::kindOf(fin::Ledger::Payables).table,
          fin::kindOf(fin::Ledger::Receivables).table, agenda::entriesTable, u"atendimentos"_s,
          u"servicos"_s, u"clientes"_s, u"motoqueiros"_s})
        out << table + u'=' + QString::number(store.count(table));
    for (auto* grid : s->findChildren<MSFlexGrid*>())
        out << grid->objectName() + u'=' + QString::number(grid->rows());
    for (auto* grid : s->findChildren<DBGrid*>())
        out << grid->objectName() + u'=' + QString::number(grid->recordCount());
    for (const QString& label : labels)
        out << label + u'=' + shown(s, label);
    return out;
}

// A movement, a receivable and an agenda entry of today: a search that fell back to today
// would find them.
void seedToday() {
    Store& store = Store::current();
    UnitOfWork unit(store);
    fin::CashMovement m;
    m.date = QDate::currentDate();
    m.operation = fin::credit;
    m.amount = 1000;
    m.description = u"HOJE"_s;
    fin::postCash(store, m);
    fin::Bill b;
    b.entered = b.due = QDate::currentDate();
    b.status = fin::kindOf(fin::Ledger::Receivables).open;
    b.description = u"HOJE"_s;
    b.party = u"ACME"_s;
    b.amount = 2000;
    fin::saveBill(store, fin::Ledger::Receivables, b, false);
    agenda::Entry e;
    e.date = QDate::currentDate();
    e.hour = u"10:00"_s;
    e.event = u"HOJE"_s;
    agenda::saveEntry(store, e);
    unit.commit();
}

void reach(QWidget* s, const QString& field, const QString& way) {
    if (way == u"leave"_s) {
        QTest::keyClick(control(s, field), Qt::Key_Tab);
    } else if (way.startsWith(u"menu:"_s)) {
        control<QAction>(s, way.mid(5))->trigger();
    } else {
        auto* button = control<QAbstractButton>(s, way);
        QVERIFY2(button->isVisible() && button->isEnabled(), qPrintable(way));
        click(s, way);
    }
}

} // namespace

class SettleTest : public QObject {
    Q_OBJECT

private slots:
    void badValueStopsEveryWay_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("money");
        const QList<Case> all = cases();
        for (int i = 0; i < all.size(); ++i) {
            QTest::newRow(qPrintable(all[i].name)) << i << all[i].money;
        }
    }

    void badValueStopsEveryWay() {
        QFETCH(int, index);
        QFETCH(bool, money);
        const Case c = cases().at(index);
        // The money fields get the amount; the date fields the impossible date.
        TestInstallation inst(true, false);
        RTX_REQUIRE_INSTALL(inst);
        session::setInstallation(inst.installation());
        seedToday();
        ScriptedPrompter prompts;
        std::unique_ptr<QWidget> s(c.open());
        QVERIFY(showActive(s.get()));
        if (c.prepare) c.prepare(s.get());
        auto* box = control<MaskEdBox>(s.get(), c.field);
        QCOMPARE(box->isMoney(), money);
        const QString message = money ? badMoneyMessage(kAmount) : badDateMessage(kDate);

        for (const QString& way : c.ways) {
            typeInto(s.get(), c.field, money ? kAmount : kDate);
            QCOMPARE(box->shownText(), money ? kAmount : kDate);
            const QStringList before = state(s.get(), c.labels);
            prompts.clear();
            reach(s.get(), c.field, way);
            QApplication::processEvents();
            QVERIFY2(prompts.texts() == QStringList{message},
                     qPrintable(way + u": "_s + prompts.texts().join(u" | "_s)));
            QVERIFY2(QApplication::focusWidget() == box, qPrintable(way));
            QCOMPARE(box->shownText(), money ? kAmount : kDate);
            QCOMPARE(state(s.get(), c.labels), before);
        }
    }
};

QTEST_MAIN(SettleTest)
#include "tst_settle.moc"
