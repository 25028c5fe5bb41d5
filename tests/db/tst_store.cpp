// The store on the engine under test: schema and first start, codes, units of work, text
// equal blind to case but not to accents, quotes and literal prefix search, pages by key,
// dates, the tables an action wrote told once it is kept, and two stations racing.

#include "store/changes.h"
#include "store/formats.h"
#include "store/textfold.h"
#include "testinstall.h"

#include <QCoreApplication>
#include <QSet>
#include <QSignalSpy>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

// The writer side of the race: saves rows into the clients table, one unit each.
int runWriter(const QStringList& args) {
    const ConnectionSettings s = stationSettings(args.at(2), args.at(3));
    const int count = args.at(4).toInt();
    try {
        Store store(s);
        for (int i = 0; i < count; ++i) {
            UnitOfWork unit(store);
            const QString code = store.nextCode(u"clientes"_s);
            Recordset rs = store.open(u"SELECT * FROM clientes WHERE CODIGO = ?"_s, {code});
            rs.addNew();
            rs.setValue(u"CODIGO"_s, code);
            rs.setValue(u"C5"_s, u"%1-%2"_s.arg(args.at(5)).arg(i));
            rs.update();
            unit.commit();
        }
    } catch (const StoreError& e) {
        fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}

} // namespace

class StoreTest : public QObject {
    Q_OBJECT

private slots:
    void freshInstallation() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        // A second start changes nothing.
        inst.installation().initialise(st);
        QCOMPARE(st.count(u"permissoes"_s), 18);
        QCOMPARE(st.count(u"status_atendimento"_s), 5);
        // The demo office fills every listed table.
        TestInstallation demo(true, true);
        for (const TableDef& t : tables())
            if (!t.workTable) QVERIFY2(demo.store().count(t.name) > 0, qPrintable(t.name));
    }

    void codesAndTypedValues() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        // Past the width: numeric maximum, so 100000 then 100001, never over an old row.
        st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s, {u"99999"_s, u"A"_s});
        for (const char* expected : {"100000", "100001"}) {
            UnitOfWork unit(st);
            const QString code = st.nextCode(u"clientes"_s);
            QCOMPARE(code, QString::fromLatin1(expected));
            st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s, {code, u"B"_s});
            unit.commit();
        }
        // Navigation by code follows numbers, not text.
        QCOMPARE(st.lastCode(u"clientes"_s), u"100001"_s);
        QCOMPARE(st.nextCodeAfter(u"clientes"_s, u"99999"_s), u"100000"_s);

        // Money typed as the office writes it is kept in cents; bad input is refused.
        st.saveByKey(u"servicos"_s, u"cod"_s, u"000001"_s, {{u"A2"_s, u"1.234,53"_s}});
        QCOMPARE(st.table(u"servicos"_s).cents(u"a2"_s), 123453);
        Recordset add = st.open(u"SELECT * FROM servicos"_s);
        add.addNew();
        QVERIFY_THROWS_EXCEPTION(StoreError, add.setText(u"A2"_s, u"12,3,4"_s));
        Recordset agenda = st.open(u"SELECT * FROM agenda"_s);
        agenda.addNew();
        QVERIFY_THROWS_EXCEPTION(StoreError, agenda.setText(u"A1"_s, u"31/02/2020"_s));
    }

    // Equality of text is blind to case, not to accents; a search by the start of a text is
    // blind to both and takes the typed text literally, quote and wildcards included; its
    // order is blind to case and accents too. The same on a column with folded copies (C5)
    // and on one without (C6).
    void textEqualityAndPrefixSearch() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QStringList names{u"JOSÉ"_s, u"JOSE"_s,          u"D'AVILA"_s,     u"AÇÃO SOCIAL"_s,
                                u"A_B"_s,  u"100% ENTREGAS"_s, u"acao rapida"_s, u"Ábaco"_s};
        for (int i = 0; i < names.size(); ++i)
            st.execute(u"INSERT INTO clientes (CODIGO, C5, C6) VALUES (?, ?, ?)"_s,
                       {padCode(i + 1, 5), names[i], names[i]});
        st.execute(u"INSERT INTO clientes (CODIGO) VALUES ('00099')"_s);
        for (const QString& column : {u"C5"_s, u"C6"_s}) {
            auto found = [&](const QString& where, const QVariantList& params) {
                QStringList found;
                for (Recordset rs =
                         st.open(u"SELECT %1 FROM clientes WHERE %2 ORDER BY %3, rid"_s.arg(
                                     column, where, st.sortKey(u"clientes"_s, column)),
                                 params);
                     !rs.eof(); rs.moveNext())
                    found << rs.text(column);
                return found.join(u',');
            };
            auto same = [&](const QString& v) {
                return found(st.sameText(u"clientes"_s, column), {v});
            };
            auto prefix = [&](const QString& v) {
                return found(st.startsWith(u"clientes"_s, column), st.startParams(v));
            };
            QCOMPARE(same(u"jose"_s), u"JOSE"_s);
            QCOMPARE(same(u"josé"_s), u"JOSÉ"_s);
            QCOMPARE(same(u"jos"_s), QString());
            QCOMPARE(same(u"d'avila"_s), u"D'AVILA"_s);
            QCOMPARE(same(u"acao social"_s), QString());
            QCOMPARE(same(u"Ac\u0327a\u0303o social"_s), u"AÇÃO SOCIAL"_s); // separate marks
            QCOMPARE(prefix(u"d'av"_s), u"D'AVILA"_s);
            QCOMPARE(prefix(u"açã"_s), u"acao rapida,AÇÃO SOCIAL"_s);
            QCOMPARE(prefix(u"áb"_s), u"Ábaco"_s);
            QCOMPARE(prefix(u"100%"_s), u"100% ENTREGAS"_s);
            QCOMPARE(prefix(u"A_"_s), u"A_B"_s);
            QCOMPARE(prefix(u"%"_s), QString());
            // A client without a name is not found by an empty search.
            QCOMPARE(prefix(QString()).count(u','), names.size() - 1);
        }
        QVERIFY_THROWS_EXCEPTION(StoreError, st.sameText(u"clientes"_s, u"nada"_s));
    }

    // Pages by key: clients of one name and dispatches of one status, read a page at a time
    // in either direction, give every row once, in order, with the rows without a value
    // first (ascending) or last (descending).
    void pagesGiveEveryRowOnce() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const int many = 300;
        {
            UnitOfWork unit(st);
            const QStringList others{u"ÁGUA"_s, u"zé"_s, u"Mesmo Nomé"_s, QString()};
            for (int i = 1; i <= many + 4; ++i) {
                const QString name = i > many ? others[i - many - 1]
                                     : i % 7  ? u"MESMO NOME"_s
                                              : u"mesmo nome"_s;
                st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s,
                           {padCode(i, 5), name.isNull() ? QVariant() : name});
                const QVariant status = i % 3 == 0   ? QVariant(u"A caminho"_s)
                                        : i % 3 == 1 ? QVariant(u"ENTREGUE"_s)
                                                     : QVariant();
                const QVariant day = i % 5 ? QVariant(QDate(2024, 1, 1 + i % 28)) : QVariant();
                st.execute(u"INSERT INTO atendimentos (CODIGO, ST, a2) VALUES (?, ?, ?)"_s,
                           {padCode(i, 7), status, day});
            }
            unit.commit();
        }
        // Every row of a query page by page, and the sort keys of each; nulls fold first.
        auto readAll = [&](const PageQuery& q, int pageSize) {
            QStringList codes;
            QList<QStringList> keys;
            QVariantList after;
            for (int pages = 0; pages < 1000; ++pages) {
                Recordset rs = st.page(q, after, pageSize);
                for (; !rs.eof(); rs.moveNext()) {
                    codes << rs.text(u"CODIGO"_s);
                    QStringList key;
                    for (const SortKey& k : q.order) {
                        const QVariant v = rs.value(k.column);
                        key << (v.isNull() ? QString() : u"+"_s + foldSearch(rs.text(k.column)));
                    }
                    keys << key;
                    after = st.pageCursor(q, rs);
                }
                if (rs.recordCount() < pageSize) break;
            }
            return std::pair{codes, keys};
        };
        for (bool descending : {false, true}) {
            const auto [codes, keys] = readAll(
                {u"clientes"_s, {u"CODIGO"_s, u"C5"_s}, {}, {}, {{u"C5"_s, descending}}}, 37);
            QCOMPARE(QSet<QString>(codes.begin(), codes.end()).size(), many + 4);
            for (int i = 1; i < keys.size(); ++i)
                QVERIFY2(descending ? keys[i - 1] >= keys[i] : keys[i - 1] <= keys[i],
                         qPrintable(codes[i]));
            QCOMPARE(codes.first(), descending ? u"00302"_s : u"00304"_s);
        }
        // Dispatches by status then by day from the latest (two directions, nulls in both).
        const PageQuery byStatusAndDay{u"atendimentos"_s,
                                       {u"CODIGO"_s, u"ST"_s, u"a2"_s},
                                       {},
                                       {},
                                       {{u"ST"_s}, {u"a2"_s, true}}};
        const auto [codes, keys] = readAll(byStatusAndDay, 29);
        QCOMPARE(QSet<QString>(codes.begin(), codes.end()).size(), many + 4);
        for (int i = 1; i < keys.size(); ++i) {
            QVERIFY(keys[i - 1][0] <= keys[i][0]);
            // Within a status the days fall (dd/mm/yyyy of one month), the rows without last.
            if (keys[i - 1][0] == keys[i][0])
                QVERIFY2(keys[i][1].isNull() || keys[i - 1][1] >= keys[i][1], qPrintable(codes[i]));
        }
    }

    void unitOfWorkRollsBack() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        try {
            UnitOfWork unit(st);
            st.execute(u"INSERT INTO contas_pagar (codigo, c6) VALUES (?, ?)"_s,
                       {st.nextCode(u"contas_pagar"_s), u"BETO"_s});
            st.execute(u"INSERT INTO caixa (codigo, A2) VALUES (?, ?)"_s,
                       {st.nextCode(u"caixa"_s), u"CRÉDITO"_s});
            st.execute(u"INSERT INTO tabela_que_nao_existe VALUES (1)"_s);
            unit.commit();
            QFAIL("the failing statement went through");
        } catch (const StoreError& e) {
            QVERIFY(!e.text().isEmpty());
        }
        QVERIFY(!st.inTransaction());
        QCOMPARE(st.count(u"contas_pagar"_s), 0);
        QCOMPARE(st.count(u"caixa"_s), 0);
    }

    // The store tells which tables an action wrote once its unit is kept: each table once,
    // after the handler (on the event loop), by every way of writing a row; nothing for a
    // unit rolled back, nor for the station's report tables; a write outside any unit is
    // told after it runs.
    void writesAreAnnouncedAfterTheCommit() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCoreApplication::processEvents(); // what the installation's set-up wrote
        QSignalSpy heard(&changes(), &Changes::tableChanged);
        const auto tables = [&] {
            QCoreApplication::processEvents();
            QStringList out;
            for (const QList<QVariant>& signal : std::as_const(heard))
                out << signal.first().toString();
            heard.clear();
            return out;
        };
        {
            UnitOfWork unit(st);
            st.insert(u"caixa"_s,
                      {{u"codigo"_s, st.nextCode(u"caixa"_s)}, {u"A2"_s, u"CRÉDITO"_s}});
            st.saveByKey(u"servicos"_s, u"cod"_s, u"000001"_s, {{u"A1"_s, u"ENTREGA"_s}});
            Recordset rs = st.open(u"SELECT * FROM caixa"_s);
            rs.edit();
            rs.setValue(u"A6"_s, u"Y"_s);
            rs.update();
            st.execute(u"  DELETE FROM rel_caixa"_s); // a report table is nobody's list
            st.execute(u"INSERT INTO rel_caixa (A1) VALUES (?)"_s, {u"x"_s});
            QCOMPARE(heard.size(), 0);
            unit.commit();
            QCOMPARE(heard.size(), 0); // not inside the handler that wrote
        }
        QCOMPARE(tables(), (QStringList{u"caixa"_s, u"servicos"_s}));

        {
            UnitOfWork unit(st);
            st.execute(u"DELETE FROM servicos"_s);
        }
        QCOMPARE(tables(), QStringList());
        st.execute(u"DELETE FROM caixa"_s);
        QCOMPARE(tables(), QStringList{u"caixa"_s});
    }

    void cashDayTotalsFollowTheRows() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QDate d1(2020, 12, 24), d2(2020, 12, 25);
        auto add = [&](const QDate& d, const QString& op, qint64 amount) {
            UnitOfWork unit(st);
            st.execute(u"INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"_s,
                       {st.nextCode(u"caixa"_s), d, op, amount});
            unit.commit();
        };
        add(d1, u"CRÉDITO"_s, 10000);
        add(d1, u"DÉBITO"_s, 2550);
        add(d2, u"crédito"_s, 100);
        add(d2, u"OUTRO"_s, 999);
        QCOMPARE(st.cashTotals(d1, d2).balance(), 10000 - 2550 + 100);
        // Moving a row to another day and deleting one keep the totals true.
        st.execute(u"UPDATE caixa SET A1 = ?, A5 = ? WHERE codigo = ?"_s,
                   {d2, qint64(3000), u"0000002"_s});
        st.execute(u"DELETE FROM caixa WHERE codigo = ?"_s, {u"0000001"_s});
        QCOMPARE(st.cashTotals(d1, d2).balance(), 100 - 3000);
    }

    void twoStationsRace() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        QVERIFY(
            runStations(u"--writer"_s, inst.settings(), {{u"100"_s, u"A"_s}, {u"100"_s, u"B"_s}}));
        Store& st = inst.store();
        QCOMPARE(st.count(u"clientes"_s), 200);
        QCOMPARE(st.lastCode(u"clientes"_s), u"00200"_s);
    }
};

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() > 5 && args.at(1) == u"--writer"_s) return runWriter(args);
    StoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_store.moc"
