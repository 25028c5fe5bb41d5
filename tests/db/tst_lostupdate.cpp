// Two stations on one database open the same record and both save it, each kind of record
// through its own screen, each station on a store of its own.

#include "agenda/agenda.h"
#include "dispatch/atendimento.h"
#include "dispatch/core/dispatch.h"
#include "finance/contas.h"
#include "finance/core/billing.h"
#include "kit/recordform.h"
#include "registerdesk.h"
#include "registers/MOTO.h"
#include "registers/cliente.h"
#include "registers/forne.h"
#include "registers/funci.h"
#include "store/record.h"

#include <QTest>
#include <functional>
#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace rtx;
using namespace rtx::test;

namespace {

const QString kChanged =
    u"Este registro foi alterado em outra estação depois que foi aberto. Gravar mesmo assim?"_s;

// A kind of record: its screen, the row both stations open, the field they type in and the
// column it is kept in, the Grava button and the questions the screen asks before writing.
struct Kind {
    std::function<std::unique_ptr<QDialog>()> make;
    QString table;
    QString keyColumn;
    QString pick; // the key of a row of the demo office that the screen saves without more
    QVariantList pickParams;
    QString field;
    QString column;
    QString saveButton = u"Command16"_s;
    QList<bool> before;  // answers to the screen's own questions before it writes
    bool clears = false; // a save clears the screen for the next record
};

template <class S> std::function<std::unique_ptr<QDialog>()> screen() {
    return [] { return std::make_unique<S>(); };
}

QList<std::pair<QString, Kind>> kinds() {
    const auto firstOf = [](const QString& table, const QString& key) {
        return u"SELECT %1 FROM %2 ORDER BY %1 LIMIT 1"_s.arg(key, table);
    };
    const QString open = u"SELECT codigo FROM %1 WHERE c2 = ? ORDER BY codigo LIMIT 1"_s;
    const auto kindOf = [&](auto make, const QString& table, const QString& key,
                            const QString& field, const QString& column = {}) {
        Kind k;
        k.make = make;
        k.table = table;
        k.keyColumn = key;
        k.pick = firstOf(table, key);
        k.field = field;
        k.column = column.isEmpty() ? field : column;
        return k;
    };
    Kind agenda = kindOf(screen<ui::AGENDA>(), u"agenda"_s, u"CODIGO"_s, u"A5"_s);
    agenda.saveButton = u"Command19"_s;
    agenda.clears = true;
    Kind pay = kindOf(screen<ui::Pagar>(), u"contas_pagar"_s, u"codigo"_s, u"C5"_s, u"c5"_s);
    pay.pick = open.arg(pay.table);
    pay.pickParams = {u"A pagar"_s};
    Kind receive =
        kindOf(screen<ui::receber>(), u"contas_receber"_s, u"codigo"_s, u"C5"_s, u"c5"_s);
    receive.pick = open.arg(receive.table);
    receive.pickParams = {u"A receber"_s};
    // Grava asks to confirm the change and the posting of the money; the print question
    // after it goes unanswered (No).
    Kind dispatches =
        kindOf(screen<ui::Atendimento>(), u"atendimentos"_s, u"CODIGO"_s, u"A17"_s, u"a17"_s);
    dispatches.pick = u"SELECT CODIGO FROM atendimentos WHERE ST <> ? ORDER BY CODIGO LIMIT 1"_s;
    dispatches.pickParams = {dispatch::delivered};
    dispatches.before = {true, true};
    return {
        {u"cliente"_s, kindOf(screen<ui::cliente>(), u"clientes"_s, u"CODIGO"_s, u"C7"_s)},
        {u"MOTO"_s, kindOf(screen<ui::MOTO>(), u"motoqueiros"_s, u"CODIGO"_s, u"C6"_s)},
        {u"forne"_s, kindOf(screen<ui::forne>(), u"fornecedores"_s, u"CODIGO"_s, u"C7"_s)},
        {u"funci"_s, kindOf(screen<ui::funci>(), u"funcionarios"_s, u"cd"_s, u"x5"_s)},
        {u"Pagar"_s, pay},
        {u"receber"_s, receive},
        {u"AGENDA"_s, agenda},
        {u"Atendimento"_s, dispatches},
    };
}

// A station: its store current, its screen up and active.
bool at(QDialog* screen, Store* store) {
    Store::setCurrent(store);
    return showActive(screen);
}

void openRecord(QDialog* screen, const QString& key) {
    if (auto* dispatchScreen = qobject_cast<ui::Atendimento*>(screen))
        QVERIFY(dispatchScreen->showDispatch(key));
    else
        static_cast<ui::RecordForm*>(screen)->openFound(key, 0);
}

QString stored(Store& store, const Kind& k, const QString& key) {
    Recordset rs =
        store.open(u"SELECT %1 FROM %2 WHERE %3 = ?"_s.arg(k.column, k.table, k.keyColumn), {key});
    return rs.eof() ? u"<no row>"_s : rs.text(k.column);
}

// Every row that a save's money posts.
qint64 financeRows(Store& store) {
    return store.count(u"caixa"_s) + store.count(u"contas_pagar"_s) +
           store.count(u"contas_receber"_s);
}

// Two stations with the same record open, each on its own store.
struct TwoStations {
    TestInstallation inst{true, true};
    std::unique_ptr<Store> other;
    ScriptedPrompter prompts;
    std::unique_ptr<QDialog> a, b;
    QString key;
    Kind kind;

    bool open(const Kind& k) {
        kind = k;
        other = inst.openSecondStore();
        session::setInstallation(inst.installation());
        key = inst.store().scalar(k.pick, k.pickParams).toString();
        if (key.isEmpty()) return false;
        Store::setCurrent(&inst.store());
        a = k.make();
        Store::setCurrent(other.get());
        b = k.make();
        if (!at(a.get(), &inst.store())) return false;
        openRecord(a.get(), key);
        if (!at(b.get(), other.get())) return false;
        openRecord(b.get(), key);
        return true;
    }
    // Types into the record on one station and presses Grava, with the screen's own answers
    // and then those given.
    void save(QDialog* screen, Store* store, const QString& typed, QList<bool> answers = {}) {
        QVERIFY(at(screen, store));
        typeInto(screen, kind.field, typed);
        prompts.clear();
        for (bool yes : kind.before + answers)
            yes ? prompts.answerYes() : prompts.answerNo();
        click(screen, kind.saveButton);
    }
    bool asked() const {
        return prompts.texts(ScriptedPrompter::Kind::Question).contains(kChanged);
    }
};

void addKinds() {
    QTest::addColumn<Kind>("kind");
    for (const auto& [name, kind] : kinds())
        QTest::newRow(qPrintable(name)) << kind;
}

} // namespace

Q_DECLARE_METATYPE(Kind)

class TestLostUpdate : public QObject {
    Q_OBJECT

private slots:
    // A saves, then B: B is asked. No brings A's record onto B's screen and writes nothing
    // (nor any money); B's next save is its own again. Yes writes B's record over A's, and
    // B saving once more is asked nothing.
    void secondSaveAsks_data() { addKinds(); }
    void secondSaveAsks() {
        QFETCH(Kind, kind);
        TwoStations s;
        RTX_REQUIRE_INSTALL(s.inst);
        QVERIFY(s.open(kind));
        Store& mine = s.inst.store();

        s.save(s.a.get(), &mine, u"DA ESTACAO A"_s);
        QVERIFY(!s.asked());

        const qint64 money = financeRows(mine);
        s.save(s.b.get(), s.other.get(), u"DA ESTACAO B"_s, {false});
        QVERIFY(s.asked());
        QCOMPARE(stored(mine, kind, s.key), u"DA ESTACAO A"_s);
        QCOMPARE(financeRows(mine), money);
        QCOMPARE(shown(s.b.get(), kind.field), u"DA ESTACAO A"_s);

        s.save(s.b.get(), s.other.get(), u"B DEPOIS DE VER A"_s);
        QVERIFY(!s.asked());
        QCOMPARE(stored(mine, kind, s.key), u"B DEPOIS DE VER A"_s);

        // Both open it afresh; A saves, B writes over it.
        QVERIFY(at(s.a.get(), &mine));
        openRecord(s.a.get(), s.key);
        QVERIFY(at(s.b.get(), s.other.get()));
        openRecord(s.b.get(), s.key);
        s.save(s.a.get(), &mine, u"A OUTRA VEZ"_s);
        QVERIFY(!s.asked());
        s.save(s.b.get(), s.other.get(), u"B POR CIMA"_s, {true});
        QVERIFY(s.asked());
        QCOMPARE(stored(mine, kind, s.key), u"B POR CIMA"_s);
        if (!kind.clears) {
            s.save(s.b.get(), s.other.get(), u"B DE NOVO"_s);
            QVERIFY(!s.asked());
            QCOMPARE(stored(mine, kind, s.key), u"B DE NOVO"_s);
        }
        QCOMPARE(
            mine.scalar(u"SELECT COUNT(*) FROM %1 WHERE %2 = ?"_s.arg(kind.table, kind.keyColumn),
                        {s.key})
                .toInt(),
            1);
    }

    // A record deleted at another station: its save says so, adds nothing back and leaves
    // what was typed on the screen.
    void deletedElsewhereIsSaid_data() { addKinds(); }
    void deletedElsewhereIsSaid() {
        QFETCH(Kind, kind);
        TwoStations s;
        RTX_REQUIRE_INSTALL(s.inst);
        QVERIFY(s.open(kind));
        Store& mine = s.inst.store();
        mine.execute(u"DELETE FROM %1 WHERE %2 = ?"_s.arg(kind.table, kind.keyColumn), {s.key});
        const qint64 money = financeRows(mine);

        s.save(s.b.get(), s.other.get(), u"SO EM B"_s);
        QVERIFY(!s.asked());
        QVERIFY(
            s.prompts.texts().join(u'\n').contains(u"exclu\u00eddo em outra esta\u00e7\u00e3o"_s));
        QCOMPARE(stored(mine, kind, s.key), u"<no row>"_s);
        QCOMPARE(financeRows(mine), money);
        QCOMPARE(shown(s.b.get(), kind.field), u"SO EM B"_s);
    }

    // Every writer raises a row's version, not only the screens: billing's write-off too.
    void writeOffRaisesTheVersion() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        const Recordset open =
            store.open(u"SELECT codigo, c3, versao FROM contas_receber WHERE c2 = ? AND c3 <> '' "
                       "ORDER BY codigo LIMIT 1"_s,
                       {u"A receber"_s});
        QVERIFY(!open.eof());
        const QString code = open.text(u"codigo"_s);
        const qint64 before = open.cents(u"versao"_s);
        finance::writeOff(store, {{open.text(u"c3"_s), 100, {}}});
        QVERIFY(store.versionOf(u"contas_receber"_s, u"codigo"_s, code) > before);
    }

    // The store's rule without a screen: a record read at a version is written only over its
    // row at that version, and a row gone is not added again.
    void saveOfAStaleRecord() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        Store& store = inst.store();
        const QString code = store.scalar(u"SELECT MIN(CODIGO) FROM atendimentos"_s).toString();
        dispatch::Dispatch read = *dispatch::load(store, code);
        QVERIFY(read.version > 0);
        dispatch::Dispatch elsewhere = read;
        elsewhere.remarks = u"OUTRA"_s;
        QVERIFY(dispatch::update(store, elsewhere));

        dispatch::Dispatch stale = read;
        stale.remarks = u"ESTA"_s;
        const auto refusal = [&]() -> std::optional<RowChanged::Why> {
            try {
                dispatch::update(store, stale);
            } catch (const RowChanged& e) {
                return e.why();
            }
            return std::nullopt;
        };
        QCOMPARE(refusal(), std::optional(RowChanged::Why::Changed));
        QCOMPARE(dispatch::load(store, code)->remarks, u"OUTRA"_s);
        dispatch::remove(store, code);
        QCOMPARE(refusal(), std::optional(RowChanged::Why::Deleted));
        QVERIFY(!dispatch::exists(store, code));
    }
};

QTEST_MAIN(TestLostUpdate)
#include "tst_lostupdate.moc"
