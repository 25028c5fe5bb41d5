// The store on the engine under test: schema and first start, codes, units of work, text
// equal blind to case but not to accents, quotes and literal prefix search, pages by key,
// dates, and two stations racing.

#include "store/formats.h"
#include "store/textfold.h"
#include "testinstall.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSet>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;

namespace {

// The writer side of the race: saves rows into the clients table, one unit each.
int runWriter(const QStringList& args) {
    ConnectionSettings s;
    s.engine = args.at(2) == QStringLiteral("pg") ? Engine::PostgreSQL : Engine::SQLite;
    s.sqliteFile = args.at(3);
    s.host = qEnvironmentVariable("ROTALIX_TEST_PGHOST");
    s.port = qEnvironmentVariableIntValue("ROTALIX_TEST_PGPORT");
    s.user = qEnvironmentVariable("ROTALIX_TEST_PGUSER", QStringLiteral("postgres"));
    s.database = args.at(3);
    const int count = args.at(4).toInt();
    try {
        Store store(s);
        for (int i = 0; i < count; ++i) {
            UnitOfWork unit(store);
            const QString code = store.nextCode(QStringLiteral("clientes"));
            Recordset rs =
                store.open(QStringLiteral("SELECT * FROM clientes WHERE CODIGO = ?"), {code});
            rs.addNew();
            rs.setValue(QStringLiteral("CODIGO"), code);
            rs.setValue(QStringLiteral("C5"), QStringLiteral("%1-%2").arg(args.at(5)).arg(i));
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
        QCOMPARE(st.storedSchemaVersion(), schemaVersion());
        for (const TableDef& t : tables())
            QVERIFY2(st.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + t.name).isValid(),
                     qPrintable(t.name));
        QCOMPARE(st.count(QStringLiteral("empresa")), 1);
        QCOMPARE(st.count(QStringLiteral("empresa2")), 1);
        Recordset admin =
            st.open(QStringLiteral("SELECT * FROM funcionarios WHERE %1 AND %2")
                        .arg(st.sameText(QStringLiteral("funcionarios"), QStringLiteral("x1")),
                             st.sameText(QStringLiteral("funcionarios"), QStringLiteral("x8"))),
                    {QStringLiteral("admin"), QStringLiteral("ADMIN")});
        QVERIFY(!admin.eof()); // case-blind on both columns
        Recordset perms =
            st.open(QStringLiteral("SELECT a4 FROM permissoes WHERE a1 = ? AND a5 = ? ORDER BY a4"),
                    {QStringLiteral("admin"), QStringLiteral("Sim")});
        QCOMPARE(perms.recordCount(), 13);
        QCOMPARE(st.count(QStringLiteral("status_atendimento")), 5);
        QVERIFY(
            !st.open(QStringLiteral("SELECT * FROM status_atendimento WHERE ") +
                         st.sameText(QStringLiteral("status_atendimento"), QStringLiteral("sta")),
                     {QStringLiteral("Não encontrado")})
                 .eof());
        QCOMPARE(st.count(QStringLiteral("agenda_posicoes")), 1);

        // A second start changes nothing.
        inst.installation().initialise(st);
        QCOMPARE(st.count(QStringLiteral("funcionarios")), 1);
        QCOMPARE(st.count(QStringLiteral("permissoes")), 16);
        QCOMPARE(st.count(QStringLiteral("status_atendimento")), 5);
        QVERIFY(QFile::exists(inst.installation().siteFile()));
    }

    void demoFillsEveryListedTable() {
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        for (const TableDef& t : tables())
            if (!t.workTable) QVERIFY2(inst.store().count(t.name) > 0, qPrintable(t.name));
        QCOMPARE(inst.store().count(QStringLiteral("clientes")), 20);
        QCOMPARE(inst.store().count(QStringLiteral("motoqueiros")), 8);
        QCOMPARE(inst.store().count(QStringLiteral("servicos")), 15);
        Recordset st =
            inst.store().open(QStringLiteral("SELECT ST, COUNT(*) FROM atendimentos GROUP BY ST"));
        QCOMPARE(st.recordCount(), 5);
    }

    void codes() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        QCOMPARE(st.peekCode(QStringLiteral("clientes")), QStringLiteral("00001"));
        QCOMPARE(st.peekCode(QStringLiteral("servicos")), QStringLiteral("000001"));
        QCOMPARE(st.peekCode(QStringLiteral("atendimentos")), QStringLiteral("0000001"));
        QVERIFY_THROWS_EXCEPTION(StoreError, st.peekCode(QStringLiteral("permissoes")));

        // Past the width: numeric maximum, so 100000 then 100001, never over an old row.
        st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                   {QStringLiteral("99999"), QStringLiteral("A")});
        for (const char* expected : {"100000", "100001"}) {
            UnitOfWork unit(st);
            const QString code = st.nextCode(QStringLiteral("clientes"));
            QCOMPARE(code, QString::fromLatin1(expected));
            st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                       {code, QStringLiteral("B")});
            unit.commit();
        }
        // A repeated code is refused by the unique key.
        QVERIFY_THROWS_EXCEPTION(
            StoreError, st.execute(QStringLiteral("INSERT INTO clientes (CODIGO) VALUES (?)"),
                                   {QStringLiteral("99999")}));
        // Navigation by code follows numbers, not text.
        QCOMPARE(st.firstCode(QStringLiteral("clientes")), QStringLiteral("99999"));
        QCOMPARE(st.lastCode(QStringLiteral("clientes")), QStringLiteral("100001"));
        QCOMPARE(st.nextCodeAfter(QStringLiteral("clientes"), QStringLiteral("99999")),
                 QStringLiteral("100000"));
        QCOMPARE(st.previousCode(QStringLiteral("clientes"), QStringLiteral("99999")), QString());
    }

    void recordsetWalkEditDelete() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        for (int i = 1; i <= 3; ++i)
            st.saveByKey(QStringLiteral("servicos"), QStringLiteral("cod"), padCode(i, 6),
                         {{QStringLiteral("A1"), QStringLiteral("S%1").arg(i)},
                          {QStringLiteral("A2"), QStringLiteral("1.234,5%1").arg(i)}});
        // Saving by key twice keeps one row.
        st.saveByKey(QStringLiteral("servicos"), QStringLiteral("cod"), padCode(2, 6),
                     {{QStringLiteral("A1"), QStringLiteral("DOIS")}});
        Recordset rs = st.table(QStringLiteral("servicos"));
        QCOMPARE(rs.recordCount(), 3);
        rs.moveLast();
        QCOMPARE(rs.text(QStringLiteral("a1")), QStringLiteral("S3"));
        QCOMPARE(rs.text(QStringLiteral("A2")), QStringLiteral("1.234,53"));
        QCOMPARE(rs.cents(QStringLiteral("a2")), 123453);
        rs.movePrevious();
        QCOMPARE(rs.text(QStringLiteral("A1")), QStringLiteral("DOIS"));
        rs.moveNext();
        rs.moveNext();
        QVERIFY(rs.eof());

        // Delete in a loop, as the screens do.
        Recordset all = st.open(QStringLiteral("SELECT * FROM servicos ORDER BY cod"));
        while (!all.eof()) {
            all.remove();
            all.moveNext();
        }
        QCOMPARE(st.count(QStringLiteral("servicos")), 0);

        // Bad input is refused with a clear message and nothing written.
        Recordset add = st.open(QStringLiteral("SELECT * FROM servicos"));
        add.addNew();
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 add.setText(QStringLiteral("A2"), QStringLiteral("12,3,4")));
        Recordset agenda = st.open(QStringLiteral("SELECT * FROM agenda"));
        agenda.addNew();
        try {
            agenda.setText(QStringLiteral("A1"), QStringLiteral("31/02/2020"));
            QFAIL("an impossible date was taken");
        } catch (const StoreError& e) {
            QVERIFY(e.text().contains(QStringLiteral("31/02/2020")));
        }
        agenda.setText(QStringLiteral("A1"), QStringLiteral("25122020"));
        agenda.setValue(QStringLiteral("CODIGO"), QStringLiteral("0000001"));
        agenda.update();
        Recordset back = st.open(
            QStringLiteral("SELECT * FROM agenda WHERE A1 BETWEEN ? AND ?"),
            {requireDate(QStringLiteral("25/12/2020")), requireDate(QStringLiteral("25/12/2020"))});
        QCOMPARE(back.text(QStringLiteral("A1")), QStringLiteral("25/12/2020"));
    }

    // Equality of text is blind to case, not to accents, on a column with an index and on
    // one without, and on the status words of a new installation.
    void textEqualityKeepsAccents() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QStringList names{QStringLiteral("JOSÉ"), QStringLiteral("JOSE"),
                                QStringLiteral("D'AVILA"), QStringLiteral("Ação Social")};
        for (int i = 0; i < names.size(); ++i)
            st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5, C6) VALUES (?, ?, ?)"),
                       {padCode(i + 1, 5), names[i], names[i]});
        for (const QString& column : {QStringLiteral("C5"), QStringLiteral("C6")}) {
            auto codes = [&](const QString& typed) {
                QStringList found;
                for (Recordset rs = st.open(QStringLiteral("SELECT CODIGO FROM clientes WHERE ") +
                                                st.sameText(QStringLiteral("clientes"), column) +
                                                QStringLiteral(" ORDER BY CODIGO"),
                                            {typed});
                     !rs.eof(); rs.moveNext())
                    found << rs.text(QStringLiteral("CODIGO"));
                return found.join(u',');
            };
            QCOMPARE(codes(QStringLiteral("jose")), QStringLiteral("00002"));
            QCOMPARE(codes(QStringLiteral("Jose")), QStringLiteral("00002"));
            QCOMPARE(codes(QStringLiteral("josé")), QStringLiteral("00001"));
            QCOMPARE(codes(QStringLiteral("JOSÉ")), QStringLiteral("00001"));
            QCOMPARE(codes(QStringLiteral("JOSÈ")), QString());
            QCOMPARE(codes(QStringLiteral("jos")), QString());
            QCOMPARE(codes(QStringLiteral("d'avila")), QStringLiteral("00003"));
            QCOMPARE(codes(QStringLiteral("AÇÃO SOCIAL")), QStringLiteral("00004"));
            QCOMPARE(codes(QStringLiteral("ação social")), QStringLiteral("00004"));
            QCOMPARE(codes(QStringLiteral("acao social")), QString());
            // The same letters typed with a separate accent mark.
            QCOMPARE(codes(QStringLiteral("Ac\u0327a\u0303o social")), QStringLiteral("00004"));
        }
        // The code compares as it is.
        QCOMPARE(st.open(QStringLiteral("SELECT C5 FROM clientes WHERE ") +
                             st.sameText(QStringLiteral("clientes"), QStringLiteral("codigo")),
                         {QStringLiteral("00002")})
                     .text(QStringLiteral("C5")),
                 QStringLiteral("JOSE"));

        auto status = [&](const QString& typed) {
            return st
                .open(QStringLiteral("SELECT sta FROM status_atendimento WHERE ") +
                          st.sameText(QStringLiteral("status_atendimento"), QStringLiteral("sta")),
                      {typed})
                .recordCount();
        };
        QCOMPARE(status(QStringLiteral("Não encontrado")), 1);
        QCOMPARE(status(QStringLiteral("NÃO ENCONTRADO")), 1);
        QCOMPARE(status(QStringLiteral("Nao encontrado")), 0);
        QCOMPARE(status(QStringLiteral("entregue")), 1);

        // The log-in of the first administrator, both texts blind to case.
        const QString login =
            QStringLiteral("SELECT * FROM funcionarios WHERE %1 AND %2")
                .arg(st.sameText(QStringLiteral("funcionarios"), QStringLiteral("x1")),
                     st.sameText(QStringLiteral("funcionarios"), QStringLiteral("x8")));
        QCOMPARE(st.open(login, {QStringLiteral("admin"), QStringLiteral("ADMIN")}).recordCount(),
                 1);
        QCOMPARE(st.open(login, {QStringLiteral("ádmin"), QStringLiteral("admin")}).recordCount(),
                 0);
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 st.sameText(QStringLiteral("clientes"), QStringLiteral("nada")));
    }

    // A save by name finds the row of that name only: "JOSE" is another employee than
    // "JOSÉ", whose password stays his; "josé" is "JOSÉ".
    void saveByKeyKeepsAccentedNames() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QString employees = QStringLiteral("funcionarios");
        st.saveByKey(employees, QStringLiteral("x1"), QStringLiteral("JOSÉ"),
                     {{QStringLiteral("x8"), QStringLiteral("senha-do-jose")}});
        st.saveByKey(employees, QStringLiteral("x1"), QStringLiteral("JOSE"),
                     {{QStringLiteral("x8"), QStringLiteral("outra")}});
        QCOMPARE(st.count(employees), 2);
        auto password = [&](const QString& name) {
            Recordset rs =
                st.open(QStringLiteral("SELECT x8 FROM funcionarios WHERE x1 = ?"), {name});
            return rs.eof() ? QStringLiteral("?") : rs.text(QStringLiteral("x8"));
        };
        QCOMPARE(password(QStringLiteral("JOSÉ")), QStringLiteral("senha-do-jose"));
        QCOMPARE(password(QStringLiteral("JOSE")), QStringLiteral("outra"));
        st.saveByKey(employees, QStringLiteral("x1"), QStringLiteral("josé"),
                     {{QStringLiteral("x8"), QStringLiteral("nova")}});
        QCOMPARE(st.count(employees), 2);
        QCOMPARE(password(QStringLiteral("JOSÉ")), QStringLiteral("nova"));
        QCOMPARE(password(QStringLiteral("JOSE")), QStringLiteral("outra"));
        // By a column without an index as well.
        st.saveByKey(QStringLiteral("empresa2"), QStringLiteral("A1"), QStringLiteral("ÁGIL"), {});
        st.saveByKey(QStringLiteral("empresa2"), QStringLiteral("A1"), QStringLiteral("AGIL"), {});
        st.saveByKey(QStringLiteral("empresa2"), QStringLiteral("A1"), QStringLiteral("ágil"), {});
        QCOMPARE(st.count(QStringLiteral("empresa2")), 2);
    }

    // A search by the start of a text is blind to case and accents and takes the typed text
    // literally, quote and wildcards included; its order is blind to case and accents too.
    // The same on a column with folded copies (C5) and on one without (C6).
    void prefixSearch() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QStringList names{QStringLiteral("D'AVILA ADVOGADOS"),
                                QStringLiteral("ANA PAULA"),
                                QStringLiteral("CENTRO"),
                                QStringLiteral("AÇÃO SOCIAL"),
                                QStringLiteral("100% ENTREGAS"),
                                QStringLiteral("A_B"),
                                QStringLiteral("A*C"),
                                QStringLiteral("ABC"),
                                QStringLiteral("acao rapida"),
                                QStringLiteral("Ábaco")};
        for (int i = 0; i < names.size(); ++i)
            st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5, C6) VALUES (?, ?, ?)"),
                       {padCode(i + 1, 5), names[i], names[i]});
        st.execute(QStringLiteral("INSERT INTO clientes (CODIGO) VALUES ('00099')"));
        for (const QString& column : {QStringLiteral("C5"), QStringLiteral("C6")}) {
            auto prefix = [&](const QString& v) {
                QStringList found;
                Recordset rs =
                    st.open(QStringLiteral("SELECT %1 FROM clientes WHERE %2 ORDER BY %3, rid")
                                .arg(column, st.startsWith(QStringLiteral("clientes"), column),
                                     st.sortKey(QStringLiteral("clientes"), column)),
                            st.startParams(v));
                for (; !rs.eof(); rs.moveNext())
                    found << rs.text(column);
                return found;
            };
            QCOMPARE(prefix(QStringLiteral("d'av")),
                     QStringList{QStringLiteral("D'AVILA ADVOGADOS")});
            QCOMPARE(prefix(QStringLiteral("ana")), QStringList{QStringLiteral("ANA PAULA")});
            QCOMPARE(prefix(QStringLiteral("açã")),
                     (QStringList{QStringLiteral("acao rapida"), QStringLiteral("AÇÃO SOCIAL")}));
            QCOMPARE(prefix(QStringLiteral("ACAO S")), QStringList{QStringLiteral("AÇÃO SOCIAL")});
            QCOMPARE(prefix(QStringLiteral("áb")),
                     (QStringList{QStringLiteral("Ábaco"), QStringLiteral("ABC")}));
            QCOMPARE(prefix(QStringLiteral("100%")), QStringList{QStringLiteral("100% ENTREGAS")});
            QCOMPARE(prefix(QStringLiteral("A_")), QStringList{QStringLiteral("A_B")});
            QCOMPARE(prefix(QStringLiteral("a*")), QStringList{QStringLiteral("A*C")});
            QCOMPARE(prefix(QStringLiteral("%")), QStringList());
            QCOMPARE(prefix(QStringLiteral("_")), QStringList());
            QCOMPARE(prefix(QStringLiteral("*")), QStringList());
            QCOMPARE(prefix(QStringLiteral("centro e")), QStringList());
            QCOMPARE(prefix(QString()).size(), names.size()); // a client without a name: not found
            // The order is blind to case and accents.
            const QStringList a = prefix(QStringLiteral("a"));
            const QStringList expected{QStringLiteral("Ábaco"), QStringLiteral("ABC"),
                                       QStringLiteral("acao rapida"), QStringLiteral("AÇÃO SOCIAL"),
                                       QStringLiteral("ANA PAULA")};
            QStringList letters;
            for (const QString& n : a)
                if (expected.contains(n)) letters << n;
            QCOMPARE(letters, expected);
        }
        // The forms taken before the table was known search the same way.
        Recordset old = st.open(QStringLiteral("SELECT C5 FROM clientes WHERE ") +
                                    Store::prefixClause(QStringLiteral("C5")),
                                Store::prefixParams(QStringLiteral("ACA")));
        QCOMPARE(old.recordCount(), 2);
        old = st.open(QStringLiteral("SELECT C5 FROM clientes WHERE ") +
                          Store::prefixClause(QStringLiteral("+C6")),
                      Store::prefixParams(QStringLiteral("Áb")));
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
                st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                           {padCode(i, 5),
                            i % 7 ? QStringLiteral("MESMO NOME") : QStringLiteral("mesmo nome")});
            const QStringList others{QStringLiteral("ÁGUA"), QStringLiteral("zé"),
                                     QStringLiteral("Mesmo Nomé"), QString()};
            for (int i = 0; i < others.size(); ++i)
                st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C5) VALUES (?, ?)"),
                           {padCode(many + i + 1, 5), others[i].isNull() ? QVariant() : others[i]});
            for (int i = 1; i <= many + 60; ++i) {
                const QVariant status = i <= many    ? QVariant(QStringLiteral("Entregue"))
                                        : i % 3 == 0 ? QVariant(QStringLiteral("A caminho"))
                                        : i % 3 == 1 ? QVariant(QStringLiteral("ENTREGUE"))
                                                     : QVariant();
                const QVariant day = i % 5 ? QVariant(QDate(2024, 1, 1 + i % 28)) : QVariant();
                st.execute(
                    QStringLiteral("INSERT INTO atendimentos (CODIGO, ST, a2) VALUES (?, ?, ?)"),
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
                    r.codes << rs.text(QStringLiteral("CODIGO"));
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
            return v.isNull() ? QString() : QStringLiteral("+") + foldSearch(v.toString());
        };

        for (bool descending : {false, true}) {
            const PageQuery byName{QStringLiteral("clientes"),
                                   {QStringLiteral("CODIGO"), QStringLiteral("C5")},
                                   {},
                                   {},
                                   {{QStringLiteral("C5"), descending}}};
            const Read r = readAll(byName, 37);
            QCOMPARE(r.codes.size(), many + 4);
            QVERIFY(onceEach(r.codes));
            for (int i = 1; i < r.keys.size(); ++i) {
                const QString a = folded(r.keys[i - 1][0]), b = folded(r.keys[i][0]);
                QVERIFY2(descending ? a >= b : a <= b, qPrintable(r.codes[i]));
            }
            QCOMPARE(r.codes.first(),
                     descending ? QStringLiteral("01002") : QStringLiteral("01004"));
            QCOMPARE(r.codes.last(),
                     descending ? QStringLiteral("01004") : QStringLiteral("01002"));
        }
        // Within a search, with a page of one row.
        const PageQuery search{QStringLiteral("clientes"),
                               {QStringLiteral("CODIGO"), QStringLiteral("C5")},
                               st.startsWith(QStringLiteral("clientes"), QStringLiteral("C5")),
                               st.startParams(QStringLiteral("mesmo")),
                               {{QStringLiteral("C5")}}};
        const Read one = readAll(search, 1);
        QCOMPARE(one.codes.size(), many + 1);
        QVERIFY(onceEach(one.codes));

        // A search by one column (the tax number) in the order of another (the name), with
        // more rows than a page, which SQLite reads along the name's index.
        {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("UPDATE clientes SET C3 = '1' || CODIGO"));
            for (int i = 1; i <= 1100; ++i)
                st.execute(QStringLiteral("INSERT INTO clientes (CODIGO, C3, C5) VALUES (?, ?, ?)"),
                           {padCode(2000 + i, 5), QStringLiteral("1%1").arg(i),
                            QStringLiteral("NOME %1").arg(i % 50)});
            unit.commit();
        }
        const PageQuery byTaxNumber{QStringLiteral("clientes"),
                                    {QStringLiteral("CODIGO"), QStringLiteral("C5")},
                                    st.startsWith(QStringLiteral("clientes"), QStringLiteral("C3")),
                                    st.startParams(QStringLiteral("1")),
                                    {{QStringLiteral("C5")}}};
        const Read tax = readAll(byTaxNumber, 97);
        QCOMPARE(tax.codes.size(), many + 4 + 1100);
        QVERIFY(onceEach(tax.codes));
        for (int i = 1; i < tax.keys.size(); ++i)
            QVERIFY(folded(tax.keys[i - 1][0]) <= folded(tax.keys[i][0]));

        // Dispatches by status, and by status then by day from the latest (two directions,
        // nulls in both).
        const PageQuery byStatus{QStringLiteral("atendimentos"),
                                 {QStringLiteral("CODIGO"), QStringLiteral("ST")},
                                 {},
                                 {},
                                 {{QStringLiteral("ST")}}};
        Read r = readAll(byStatus, 50);
        QCOMPARE(r.codes.size(), many + 60);
        QVERIFY(onceEach(r.codes));
        QVERIFY(r.keys.first()[0].isNull());
        QCOMPARE(r.keys.last()[0].toString().toLower(), QStringLiteral("entregue"));
        const PageQuery byStatusAndDay{
            QStringLiteral("atendimentos"),
            {QStringLiteral("CODIGO"), QStringLiteral("ST"), QStringLiteral("a2")},
            {},
            {},
            {{QStringLiteral("ST")}, {QStringLiteral("a2"), true}}};
        r = readAll(byStatusAndDay, 29);
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
        QVERIFY_THROWS_EXCEPTION(StoreError, st.page(byStatus, {1}, 10));
    }

    void unitOfWorkRollsBack() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        try {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("INSERT INTO contas_pagar (codigo, c6) VALUES (?, ?)"),
                       {st.nextCode(QStringLiteral("contas_pagar")), QStringLiteral("BETO")});
            st.execute(QStringLiteral("INSERT INTO caixa (codigo, A2) VALUES (?, ?)"),
                       {st.nextCode(QStringLiteral("caixa")), QStringLiteral("CRÉDITO")});
            st.execute(QStringLiteral("INSERT INTO tabela_que_nao_existe VALUES (1)"));
            unit.commit();
            QFAIL("the failing statement went through");
        } catch (const StoreError& e) {
            QVERIFY(!e.text().isEmpty());
        }
        QVERIFY(!st.inTransaction());
        QCOMPARE(st.count(QStringLiteral("contas_pagar")), 0);
        QCOMPARE(st.count(QStringLiteral("caixa")), 0);
        // The next action works.
        {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("INSERT INTO caixa (codigo, A2) VALUES (?, ?)"),
                       {st.nextCode(QStringLiteral("caixa")), QStringLiteral("DÉBITO")});
            unit.commit();
        }
        QCOMPARE(st.count(QStringLiteral("caixa")), 1);
        // An inner unit that fails spoils the outer one.
        {
            UnitOfWork outer(st);
            st.execute(QStringLiteral("INSERT INTO caixa (codigo) VALUES ('0000009')"));
            { UnitOfWork inner(st); }
            QVERIFY_THROWS_EXCEPTION(StoreError, outer.commit());
        }
        QCOMPARE(st.count(QStringLiteral("caixa")), 1);
        // An impossible date is refused before any statement runs.
        QVERIFY_THROWS_EXCEPTION(StoreError, requireDate(QStringLiteral("31/02/2020")));
        QVERIFY_THROWS_EXCEPTION(StoreError, requireDate(QStringLiteral("1/1/20")));
    }

    void cashDayTotalsFollowTheRows() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const QDate d1(2020, 12, 24), d2(2020, 12, 25);
        auto add = [&](const QDate& d, const QString& op, qint64 amount) {
            UnitOfWork unit(st);
            st.execute(QStringLiteral("INSERT INTO caixa (codigo, A1, A2, A5) VALUES (?, ?, ?, ?)"),
                       {st.nextCode(QStringLiteral("caixa")), d, op, amount});
            unit.commit();
        };
        add(d1, QStringLiteral("CRÉDITO"), 10000);
        add(d1, QStringLiteral("DÉBITO"), 2550);
        add(d2, QStringLiteral("crédito"), 100);
        add(d2, QStringLiteral("OUTRO"), 999);
        Store::CashTotals t = st.cashTotals(QDate(1980, 1, 1), d1);
        QCOMPARE(t.credits, 10000);
        QCOMPARE(t.debits, 2550);
        QCOMPARE(st.cashTotals(d1, d2).balance(), 10000 - 2550 + 100);
        // Moving a row to another day and deleting one keep the totals true.
        st.execute(QStringLiteral("UPDATE caixa SET A1 = ?, A5 = ? WHERE codigo = ?"),
                   {d2, qint64(3000), QStringLiteral("0000002")});
        QCOMPARE(st.cashTotals(d1, d1).balance(), 10000);
        QCOMPARE(st.cashTotals(d2, d2).balance(), 100 - 3000);
        st.execute(QStringLiteral("DELETE FROM caixa WHERE codigo = ?"),
                   {QStringLiteral("0000001")});
        QCOMPARE(st.cashTotals(d1, d2).balance(), 100 - 3000);
        QCOMPARE(st.cashTotals(d2, d1).balance(), 0);
    }

    void twoStationsRace() {
        TestInstallation inst(false);
        RTX_REQUIRE_INSTALL(inst);
        const ConnectionSettings s = inst.settings();
        const QString engine =
            s.engine == Engine::PostgreSQL ? QStringLiteral("pg") : QStringLiteral("sqlite");
        const QString target = s.engine == Engine::PostgreSQL ? s.database : s.sqliteFile;
        QList<QProcess*> writers;
        for (const char* who : {"A", "B"}) {
            auto* p = new QProcess(this);
            p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            p->start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--writer"), engine, target, QStringLiteral("100"),
                      QString::fromLatin1(who)});
            writers << p;
        }
        for (QProcess* p : writers) {
            QVERIFY(p->waitForFinished(120000));
            QCOMPARE(p->exitCode(), 0);
        }
        Store& st = inst.store();
        QCOMPARE(st.count(QStringLiteral("clientes")), 200);
        QCOMPARE(st.scalar(QStringLiteral("SELECT COUNT(DISTINCT CODIGO) FROM clientes")).toInt(),
                 200);
        QCOMPARE(st.lastCode(QStringLiteral("clientes")), QStringLiteral("00200"));
        for (const char* who : {"A", "B"})
            QCOMPARE(st.open(QStringLiteral("SELECT * FROM clientes WHERE ") +
                                 st.startsWith(QStringLiteral("clientes"), QStringLiteral("C5")),
                             st.startParams(QString::fromLatin1(who) + QLatin1Char('-')))
                         .recordCount(),
                     100);
    }
};

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() > 5 && args.at(1) == QStringLiteral("--writer")) return runWriter(args);
    StoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_store.moc"
