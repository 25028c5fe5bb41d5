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
        // (The schema itself is the migrations test's; case-blind log-in and status words
        // are textEqualityKeepsAccents'.)
        QCOMPARE(st.scalar(u"SELECT COUNT(*) FROM permissoes WHERE a1 = (SELECT x8 FROM "
                           u"funcionarios WHERE x1 = ?) AND a5 = ?"_s,
                           {u"ADMIN"_s, u"Sim"_s})
                     .toInt(),
                 15);

        // A second start changes nothing.
        inst.installation().initialise(st);
        QCOMPARE(st.count(u"funcionarios"_s), 1);
        QCOMPARE(st.count(u"permissoes"_s), 18);
        QCOMPARE(st.count(u"status_atendimento"_s), 5);
        QVERIFY(QFile::exists(inst.installation().siteFile()));
    }

    void demoFillsEveryListedTable() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        for (const TableDef& t : tables())
            if (!t.workTable) QVERIFY2(inst.store().count(t.name) > 0, qPrintable(t.name));
        // (The screen tests count the demo's clients, couriers and services.)
        Recordset st = inst.store().open(u"SELECT ST, COUNT(*) FROM atendimentos GROUP BY ST"_s);
        QCOMPARE(st.recordCount(), 5);
    }

    void codes() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCOMPARE(st.peekCode(u"clientes"_s), u"00001"_s);
        QVERIFY_THROWS_EXCEPTION(StoreError, st.peekCode(u"permissoes"_s));

        // Past the width: numeric maximum, so 100000 then 100001, never over an old row.
        st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s, {u"99999"_s, u"A"_s});
        for (const char* expected : {"100000", "100001"}) {
            UnitOfWork unit(st);
            const QString code = st.nextCode(u"clientes"_s);
            QCOMPARE(code, QString::fromLatin1(expected));
            st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s, {code, u"B"_s});
            unit.commit();
        }
        // A repeated code is refused by the unique key.
        QVERIFY_THROWS_EXCEPTION(
            StoreError, st.execute(u"INSERT INTO clientes (CODIGO) VALUES (?)"_s, {u"99999"_s}));
        // Navigation by code follows numbers, not text.
        QCOMPARE(st.firstCode(u"clientes"_s), u"99999"_s);
        QCOMPARE(st.lastCode(u"clientes"_s), u"100001"_s);
        QCOMPARE(st.nextCodeAfter(u"clientes"_s, u"99999"_s), u"100000"_s);
        QCOMPARE(st.previousCode(u"clientes"_s, u"99999"_s), QString());
    }

    void recordsetWalkEditDelete() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        for (int i = 1; i <= 3; ++i)
            st.saveByKey(u"servicos"_s, u"cod"_s, padCode(i, 6),
                         {{u"A1"_s, u"S%1"_s.arg(i)}, {u"A2"_s, u"1.234,5%1"_s.arg(i)}});
        // Saving by key twice keeps one row.
        st.saveByKey(u"servicos"_s, u"cod"_s, padCode(2, 6), {{u"A1"_s, u"DOIS"_s}});
        Recordset rs = st.table(u"servicos"_s);
        QCOMPARE(rs.recordCount(), 3);
        rs.moveLast();
        QCOMPARE(rs.cents(u"a2"_s), 123453);
        rs.moveFirst();
        rs.moveNext();
        QCOMPARE(rs.text(u"A1"_s), u"DOIS"_s);

        // Delete in a loop, as the screens do.
        Recordset all = st.open(u"SELECT * FROM servicos ORDER BY cod"_s);
        while (!all.eof()) {
            all.remove();
            all.moveNext();
        }
        QCOMPARE(st.count(u"servicos"_s), 0);

        // Bad input is refused with a clear message and nothing written.
        Recordset add = st.open(u"SELECT * FROM servicos"_s);
        add.addNew();
        QVERIFY_THROWS_EXCEPTION(StoreError, add.setText(u"A2"_s, u"12,3,4"_s));
        Recordset agenda = st.open(u"SELECT * FROM agenda"_s);
        agenda.addNew();
        try {
            agenda.setText(u"A1"_s, u"31/02/2020"_s);
            QFAIL("an impossible date was taken");
        } catch (const StoreError& e) {
            QVERIFY(e.text().contains(u"31/02/2020"_s));
        }
        agenda.setText(u"A1"_s, u"25122020"_s);
        agenda.setValue(u"CODIGO"_s, u"0000001"_s);
        agenda.update();
        Recordset back = st.open(u"SELECT * FROM agenda WHERE A1 BETWEEN ? AND ?"_s,
                                 {requireDate(u"25/12/2020"_s), requireDate(u"25/12/2020"_s)});
        QCOMPARE(back.text(u"A1"_s), u"25/12/2020"_s);
    }

    // Equality of text is blind to case, not to accents, on a column with an index and on
    // one without, and on the status words of a new installation.
    void textEqualityKeepsAccents() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QStringList names{u"JOSÉ"_s, u"JOSE"_s, u"D'AVILA"_s, u"Ação Social"_s};
        for (int i = 0; i < names.size(); ++i)
            st.execute(u"INSERT INTO clientes (CODIGO, C5, C6) VALUES (?, ?, ?)"_s,
                       {padCode(i + 1, 5), names[i], names[i]});
        for (const QString& column : {u"C5"_s, u"C6"_s}) {
            auto codes = [&](const QString& typed) {
                QStringList found;
                for (Recordset rs =
                         st.open(u"SELECT CODIGO FROM clientes WHERE "_s +
                                     st.sameText(u"clientes"_s, column) + u" ORDER BY CODIGO"_s,
                                 {typed});
                     !rs.eof(); rs.moveNext())
                    found << rs.text(u"CODIGO"_s);
                return found.join(u',');
            };
            // Typed text and the codes it finds; the last has a separate accent mark.
            const QList<std::pair<QString, QString>> cases{
                {u"jose"_s, u"00002"_s},
                {u"josé"_s, u"00001"_s},
                {u"JOSÈ"_s, {}},
                {u"jos"_s, {}},
                {u"d'avila"_s, u"00003"_s},
                {u"AÇÃO SOCIAL"_s, u"00004"_s},
                {u"acao social"_s, {}},
                {u"Ac\u0327a\u0303o social"_s, u"00004"_s}};
            for (const auto& [typed, expected] : cases)
                QVERIFY2(codes(typed) == expected, qPrintable(column + u' ' + typed));
        }
        auto status = [&](const QString& typed) {
            return st
                .open(u"SELECT sta FROM status_atendimento WHERE "_s +
                          st.sameText(u"status_atendimento"_s, u"sta"_s),
                      {typed})
                .recordCount();
        };
        QCOMPARE(status(u"Não encontrado"_s) + status(u"NÃO ENCONTRADO"_s), 2);
        QCOMPARE(status(u"Nao encontrado"_s), 0);
        QCOMPARE(status(u"entregue"_s), 1);

        // The user of the log-in, blind to case and not to accents.
        const QString login =
            u"SELECT * FROM funcionarios WHERE %1"_s.arg(st.sameText(u"funcionarios"_s, u"x1"_s));
        QCOMPARE(st.open(login, {u"admin"_s}).recordCount(), 1);
        QCOMPARE(st.open(login, {u"ádmin"_s}).recordCount(), 0);
        QVERIFY_THROWS_EXCEPTION(StoreError, st.sameText(u"clientes"_s, u"nada"_s));
    }

    // A save by name finds the row of that name only: "JOSE" is another employee than
    // "JOSÉ", whose function stays his; "josé" is "JOSÉ".
    void saveByKeyKeepsAccentedNames() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QString employees = u"funcionarios"_s;
        st.saveByKey(employees, u"x1"_s, u"JOSÉ"_s, {{u"x5"_s, u"senha-do-jose"_s}});
        st.saveByKey(employees, u"x1"_s, u"JOSE"_s, {{u"x5"_s, u"outra"_s}});
        QCOMPARE(st.count(employees), 2);
        auto password = [&](const QString& name) {
            Recordset rs = st.open(u"SELECT x5 FROM funcionarios WHERE x1 = ?"_s, {name});
            return rs.eof() ? u"?"_s : rs.text(u"x5"_s);
        };
        QCOMPARE(password(u"JOSÉ"_s), u"senha-do-jose"_s);
        QCOMPARE(password(u"JOSE"_s), u"outra"_s);
        st.saveByKey(employees, u"x1"_s, u"josé"_s, {{u"x5"_s, u"nova"_s}});
        QCOMPARE(st.count(employees), 2);
        QCOMPARE(password(u"JOSÉ"_s), u"nova"_s);
        QCOMPARE(password(u"JOSE"_s), u"outra"_s);
        // By a column without an index as well.
        st.saveByKey(u"empresa2"_s, u"A1"_s, u"ÁGIL"_s, {});
        st.saveByKey(u"empresa2"_s, u"A1"_s, u"AGIL"_s, {});
        st.saveByKey(u"empresa2"_s, u"A1"_s, u"ágil"_s, {});
        QCOMPARE(st.count(u"empresa2"_s), 2);
    }

    // A search by the start of a text is blind to case and accents and takes the typed text
    // literally, quote and wildcards included; its order is blind to case and accents too.
    // The same on a column with folded copies (C5) and on one without (C6).
    void prefixSearch() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QStringList names{
            u"D'AVILA ADVOGADOS"_s, u"ANA PAULA"_s, u"CENTRO"_s, u"AÇÃO SOCIAL"_s,
            u"100% ENTREGAS"_s,     u"A_B"_s,       u"A*C"_s,    u"ABC"_s,
            u"acao rapida"_s,       u"Ábaco"_s};
        for (int i = 0; i < names.size(); ++i)
            st.execute(u"INSERT INTO clientes (CODIGO, C5, C6) VALUES (?, ?, ?)"_s,
                       {padCode(i + 1, 5), names[i], names[i]});
        st.execute(u"INSERT INTO clientes (CODIGO) VALUES ('00099')"_s);
        for (const QString& column : {u"C5"_s, u"C6"_s}) {
            auto prefix = [&](const QString& v) {
                QStringList found;
                Recordset rs = st.open(u"SELECT %1 FROM clientes WHERE %2 ORDER BY %3, rid"_s.arg(
                                           column, st.startsWith(u"clientes"_s, column),
                                           st.sortKey(u"clientes"_s, column)),
                                       st.startParams(v));
                for (; !rs.eof(); rs.moveNext())
                    found << rs.text(column);
                return found;
            };
            QCOMPARE(prefix(u"d'av"_s), QStringList{u"D'AVILA ADVOGADOS"_s});
            QCOMPARE(prefix(u"açã"_s), (QStringList{u"acao rapida"_s, u"AÇÃO SOCIAL"_s}));
            QCOMPARE(prefix(u"ACAO S"_s), QStringList{u"AÇÃO SOCIAL"_s});
            QCOMPARE(prefix(u"áb"_s), (QStringList{u"Ábaco"_s, u"ABC"_s}));
            QCOMPARE(prefix(u"100%"_s), QStringList{u"100% ENTREGAS"_s});
            QCOMPARE(prefix(u"A_"_s), QStringList{u"A_B"_s});
            QCOMPARE(prefix(u"a*"_s), QStringList{u"A*C"_s});
            QCOMPARE(prefix(u"%"_s), QStringList());
            QCOMPARE(prefix(u"centro e"_s), QStringList());
            QCOMPARE(prefix(QString()).size(), names.size()); // a client without a name: not found
            // The order is blind to case and accents.
            const QStringList a = prefix(u"a"_s);
            const QStringList expected{u"Ábaco"_s, u"ABC"_s, u"acao rapida"_s, u"AÇÃO SOCIAL"_s,
                                       u"ANA PAULA"_s};
            QStringList letters;
            for (const QString& n : a)
                if (expected.contains(n)) letters << n;
            QCOMPARE(letters, expected);
        }
        // The forms taken before the table was known search the same way.
        Recordset old = st.open(u"SELECT C5 FROM clientes WHERE "_s + Store::prefixClause(u"C5"_s),
                                Store::prefixParams(u"ACA"_s));
        QCOMPARE(old.recordCount(), 2);
        old = st.open(u"SELECT C5 FROM clientes WHERE "_s + Store::prefixClause(u"+C6"_s),
                      Store::prefixParams(u"Áb"_s));
        QCOMPARE(old.recordCount(), 2);
    }

    // Pages by key: a thousand clients of one name and a thousand dispatches of one status,
    // read a page at a time in either direction, within a search or not, give every row
    // once, in order, with the rows without a value first (ascending) or last (descending).
    void pagesGiveEveryRowOnce() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const int many = 1000;
        {
            UnitOfWork unit(st);
            for (int i = 1; i <= many; ++i)
                st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s,
                           {padCode(i, 5), i % 7 ? u"MESMO NOME"_s : u"mesmo nome"_s});
            const QStringList others{u"ÁGUA"_s, u"zé"_s, u"Mesmo Nomé"_s, QString()};
            for (int i = 0; i < others.size(); ++i)
                st.execute(u"INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"_s,
                           {padCode(many + i + 1, 5), others[i].isNull() ? QVariant() : others[i]});
            for (int i = 1; i <= many + 60; ++i) {
                const QVariant status = i <= many    ? QVariant(u"Entregue"_s)
                                        : i % 3 == 0 ? QVariant(u"A caminho"_s)
                                        : i % 3 == 1 ? QVariant(u"ENTREGUE"_s)
                                                     : QVariant();
                const QVariant day = i % 5 ? QVariant(QDate(2024, 1, 1 + i % 28)) : QVariant();
                st.execute(u"INSERT INTO atendimentos (CODIGO, ST, a2) VALUES (?, ?, ?)"_s,
                           {padCode(i, 7), status, day});
            }
            unit.commit();
        }
        struct Read {
            QStringList codes;
            QList<QVariantList> keys;
        };
        auto readAll = [&](const PageQuery& q, int pageSize) {
            Read r;
            QVariantList after;
            for (int pages = 0; pages < 10000; ++pages) {
                Recordset rs = st.page(q, after, pageSize);
                for (; !rs.eof(); rs.moveNext()) {
                    r.codes << rs.text(u"CODIGO"_s);
                    QVariantList key;
                    for (const SortKey& k : q.order)
                        key << rs.value(k.column);
                    r.keys << key;
                    after = st.pageCursor(q, rs);
                }
                if (rs.recordCount() < pageSize) break;
            }
            return r;
        };
        auto onceEach = [](const QStringList& codes) {
            return QSet<QString>(codes.begin(), codes.end()).size() == codes.size();
        };
        auto day = [](const QVariant& v) {
            return v.typeId() == QMetaType::QDate ? v.toDate()
                                                  : QDate::fromString(v.toString(), Qt::ISODate);
        };
        // Folded for comparing as the store orders: nulls before everything.
        auto folded = [](const QVariant& v) {
            return v.isNull() ? QString() : u"+"_s + foldSearch(v.toString());
        };

        for (bool descending : {false, true}) {
            const PageQuery byName{
                u"clientes"_s, {u"CODIGO"_s, u"C5"_s}, {}, {}, {{u"C5"_s, descending}}};
            const Read r = readAll(byName, 37);
            QCOMPARE(r.codes.size(), many + 4);
            QVERIFY(onceEach(r.codes));
            for (int i = 1; i < r.keys.size(); ++i) {
                const QString a = folded(r.keys[i - 1][0]), b = folded(r.keys[i][0]);
                QVERIFY2(descending ? a >= b : a <= b, qPrintable(r.codes[i]));
            }
            QCOMPARE(r.codes.first(), descending ? u"01002"_s : u"01004"_s);
            QCOMPARE(r.codes.last(), descending ? u"01004"_s : u"01002"_s);
        }
        // Within a search, with a page of one row.
        const PageQuery search{u"clientes"_s,
                               {u"CODIGO"_s, u"C5"_s},
                               st.startsWith(u"clientes"_s, u"C5"_s),
                               st.startParams(u"mesmo"_s),
                               {{u"C5"_s}}};
        const Read one = readAll(search, 1);
        QCOMPARE(one.codes.size(), many + 1);
        QVERIFY(onceEach(one.codes));

        // A search by one column (the tax number) in the order of another (the name), with
        // more rows than a page, which SQLite reads along the name's index.
        {
            UnitOfWork unit(st);
            st.execute(u"UPDATE clientes SET C3 = '1' || CODIGO"_s);
            for (int i = 1; i <= 1100; ++i)
                st.execute(u"INSERT INTO clientes (CODIGO, C3, C5) VALUES (?, ?, ?)"_s,
                           {padCode(2000 + i, 5), u"1%1"_s.arg(i), u"NOME %1"_s.arg(i % 50)});
            unit.commit();
        }
        const PageQuery byTaxNumber{u"clientes"_s,
                                    {u"CODIGO"_s, u"C5"_s},
                                    st.startsWith(u"clientes"_s, u"C3"_s),
                                    st.startParams(u"1"_s),
                                    {{u"C5"_s}}};
        const Read tax = readAll(byTaxNumber, 97);
        QCOMPARE(tax.codes.size(), many + 4 + 1100);
        QVERIFY(onceEach(tax.codes));
        for (int i = 1; i < tax.keys.size(); ++i)
            QVERIFY(folded(tax.keys[i - 1][0]) <= folded(tax.keys[i][0]));

        // Dispatches by status then by day from the latest (two directions, nulls in both).
        const PageQuery byStatusAndDay{u"atendimentos"_s,
                                       {u"CODIGO"_s, u"ST"_s, u"a2"_s},
                                       {},
                                       {},
                                       {{u"ST"_s}, {u"a2"_s, true}}};
        const Read r = readAll(byStatusAndDay, 29);
        QCOMPARE(r.codes.size(), many + 60);
        QVERIFY(onceEach(r.codes));
        for (int i = 1; i < r.keys.size(); ++i) {
            const QString sa = folded(r.keys[i - 1][0]), sb = folded(r.keys[i][0]);
            QVERIFY(sa <= sb);
            if (sa != sb) continue;
            // Within a status the days fall, the rows without a day last.
            const QVariant da = r.keys[i - 1][1], db = r.keys[i][1];
            QVERIFY2(db.isNull() || (!da.isNull() && day(da) >= day(db)), qPrintable(r.codes[i]));
        }
        // A position that does not fit the query is refused.
        QVERIFY_THROWS_EXCEPTION(StoreError, st.page(byStatusAndDay, {1}, 10));
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
        // The next action works.
        {
            UnitOfWork unit(st);
            st.execute(u"INSERT INTO caixa (codigo, A2) VALUES (?, ?)"_s,
                       {st.nextCode(u"caixa"_s), u"DÉBITO"_s});
            unit.commit();
        }
        QCOMPARE(st.count(u"caixa"_s), 1);
    }

    // The store tells which tables an action wrote once its unit is kept: each table once,
    // after the handler (on the event loop), by every way of writing a row; nothing for a
    // unit rolled back or spoiled by an inner one, nor for the station's report tables; a
    // write outside any unit is told after it runs.
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
            st.execute(u"update CAIXA set A6 = ? where codigo = ?"_s, {u"X"_s, u"0000001"_s});
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
        {
            UnitOfWork outer(st);
            st.execute(u"DELETE FROM caixa"_s);
            { UnitOfWork inner(st); }
            QVERIFY_THROWS_EXCEPTION(StoreError, outer.commit());
        }
        QCOMPARE(tables(), QStringList());
        QCOMPARE(st.count(u"caixa"_s), 1);

        st.execute(u"DELETE FROM caixa"_s);
        QCOMPARE(st.scalar(u"SELECT COUNT(*) FROM servicos"_s).toInt(), 1); // a read
        QCOMPARE(tables(), QStringList{u"caixa"_s});
        // A failed statement outside a unit changed nothing, and says nothing.
        QVERIFY_THROWS_EXCEPTION(StoreError, st.execute(u"UPDATE servicos SET nada = 1"_s));
        QCOMPARE(tables(), QStringList());
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
        Store::CashTotals t = st.cashTotals(QDate(1980, 1, 1), d1);
        QCOMPARE(t.credits, 10000);
        QCOMPARE(t.debits, 2550);
        QCOMPARE(st.cashTotals(d1, d2).balance(), 10000 - 2550 + 100);
        // Moving a row to another day and deleting one keep the totals true.
        st.execute(u"UPDATE caixa SET A1 = ?, A5 = ? WHERE codigo = ?"_s,
                   {d2, qint64(3000), u"0000002"_s});
        QCOMPARE(st.cashTotals(d1, d1).balance(), 10000);
        QCOMPARE(st.cashTotals(d2, d2).balance(), 100 - 3000);
        st.execute(u"DELETE FROM caixa WHERE codigo = ?"_s, {u"0000001"_s});
        QCOMPARE(st.cashTotals(d1, d2).balance(), 100 - 3000);
        QCOMPARE(st.cashTotals(d2, d1).balance(), 0);
    }

    void twoStationsRace() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        QVERIFY(
            runStations(u"--writer"_s, inst.settings(), {{u"100"_s, u"A"_s}, {u"100"_s, u"B"_s}}));
        Store& st = inst.store();
        QCOMPARE(st.count(u"clientes"_s), 200);
        QCOMPARE(st.lastCode(u"clientes"_s), u"00200"_s);
        for (const char* who : {"A", "B"})
            QCOMPARE(
                st.open(u"SELECT * FROM clientes WHERE "_s + st.startsWith(u"clientes"_s, u"C5"_s),
                        st.startParams(QString::fromLatin1(who) + QLatin1Char('-')))
                    .recordCount(),
                100);
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
