// What the office types into a search is found whatever its capitals, on either engine:
// the dispatch searches by client, status and courier and the client lookup, the register
// searches by name and trade name, the cash book by group, the bills by name and group,
// the small lists and the agenda's words.

#include "agenda/core/agenda.h"
#include "dispatch/core/searches.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "registers/core/lists.h"
#include "registers/core/parties.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QDate kDay(2025, 3, 10);

// One column of every row of a query, in its order.
QStringList rowsOf(Store& store, const PageQuery& q, const QString& column) {
    QStringList out;
    for (Recordset rs = store.page(q, {}, 1000); !rs.eof(); rs.moveNext())
        out << rs.text(column);
    return out;
}

} // namespace

class TextSearchTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    Store& store() { return inst->store(); }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>();
        if (!inst->ok()) return;
        UnitOfWork unit(store());
        int n = 0;
        for (const auto& [client, status, courier] : QList<std::tuple<QString, QString, QString>>{
                 {u"Padaria Pão Quente"_s, u"Entregue"_s, u"Beto"_s},
                 {u"PADARIA DO ZÉ"_s, u"A caminho"_s, u"BETO"_s},
                 {u"padaria central"_s, u"ENTREGUE"_s, u"beto"_s},
                 {u"Banco do Bairro"_s, u"Cancelado"_s, u"Zeca"_s}})
            store().insert(u"atendimentos"_s, {{u"CODIGO"_s, padCode(++n, 7)},
                                               {u"a2"_s, kDay},
                                               {u"a6"_s, client},
                                               {u"ST"_s, status},
                                               {u"a18"_s, courier},
                                               {u"a19"_s, qint64(1000 * n)}});
        n = 0;
        for (const QString& name :
             {u"Padaria Pão Quente"_s, u"PADARIA DO ZÉ"_s, u"Banco do Bairro"_s})
            store().insert(
                u"clientes"_s,
                {{u"CODIGO"_s, padCode(++n, 5)}, {u"C5"_s, name}, {u"C6"_s, name.toLower()}});
        n = 0;
        for (const auto& [group, amount] : QList<std::pair<QString, qint64>>{
                 {u"Receitas"_s, 100}, {u"RECEITAS"_s, 200}, {u"despesas fixas"_s, 300}})
            store().insert(u"caixa"_s, {{u"codigo"_s, padCode(++n, 7)},
                                        {u"A1"_s, kDay},
                                        {u"A2"_s, u"CRÉDITO"_s},
                                        {u"A5"_s, amount},
                                        {u"A6"_s, u"MOVIMENTO"_s},
                                        {u"A7"_s, group}});
        n = 0;
        for (const auto& [party, group] :
             QList<std::pair<QString, QString>>{{u"Padaria Pão Quente"_s, u"Receitas"_s},
                                                {u"PADARIA PÃO QUENTE"_s, u"RECEITAS"_s},
                                                {u"Banco do Bairro"_s, u"Outros"_s}})
            store().insert(u"contas_receber"_s, {{u"codigo"_s, padCode(++n, 5)},
                                                 {u"c1"_s, kDay},
                                                 {u"c2"_s, u"A receber"_s},
                                                 {u"c6"_s, party},
                                                 {u"c7"_s, group},
                                                 {u"c12"_s, qint64(500)},
                                                 {u"c13"_s, kDay}});
        unit.commit();
    }

    void cleanup() { inst.reset(); }

    // The dispatch search boxes and the client lookup take any capitals, and accents.
    void dispatchSearches() {
        RTX_REQUIRE_INSTALL(*inst);
        using dispatch::SearchBy;
        const QString number = u"CODIGO"_s;
        auto found = [&](SearchBy by, const QString& typed) {
            QStringList codes = rowsOf(store(), dispatch::searchBy(store(), by, typed), number);
            codes.sort();
            return codes.join(u' ');
        };
        for (const QString& typed : {u"padaria"_s, u"PADARIA"_s, u"Padaria"_s, u"pAdArIa"_s})
            QCOMPARE(found(SearchBy::Client, typed), u"0000001 0000002 0000003"_s);
        QCOMPARE(found(SearchBy::Client, u"PADARIA PAO"_s), u"0000001"_s);
        for (const QString& typed : {u"entregue"_s, u"ENTREGUE"_s, u"Entr"_s})
            QCOMPARE(found(SearchBy::Status, typed), u"0000001 0000003"_s);
        for (const QString& typed : {u"beto"_s, u"BETO"_s, u"Be"_s})
            QCOMPARE(found(SearchBy::Courier, typed), u"0000001 0000002 0000003"_s);
        QCOMPARE(found(SearchBy::Courier, u"ZECA"_s), u"0000004"_s);
        QCOMPARE(rowsOf(store(), dispatch::clientsByName(store(), u"padaria d"_s), u"C5"_s),
                 QStringList{u"PADARIA DO ZÉ"_s});
    }

    // The register's search tab by name and by trade name.
    void registerSearches() {
        RTX_REQUIRE_INSTALL(*inst);
        using registers::Party;
        using registers::SearchBy;
        for (const QString& typed : {u"padaria"_s, u"PADARIA"_s, u"Padaria"_s})
            QCOMPARE(rowsOf(store(),
                            registers::partySearch(store(), Party::Client, SearchBy::Name, typed),
                            u"C5"_s),
                     (QStringList{u"PADARIA DO ZÉ"_s, u"Padaria Pão Quente"_s}));
        QCOMPARE(
            rowsOf(store(),
                   registers::partySearch(store(), Party::Client, SearchBy::TradeName, u"BANCO"_s),
                   u"C5"_s),
            QStringList{u"Banco do Bairro"_s});
    }

    // The cash book's search by group and the bills' by name and by group compare the
    // whole word, in any capitals.
    void financeByGroupAndName() {
        RTX_REQUIRE_INSTALL(*inst);
        finance::CashQuery cash{finance::CashSearch::Group, kDay, kDay, u"receitas"_s};
        QCOMPARE(rowsOf(store(), finance::cashSearch(store(), cash), u"A5"_s),
                 (QStringList{u"1,00"_s, u"2,00"_s}));
        cash.group = u"DESPESAS FIXAS"_s;
        QCOMPARE(rowsOf(store(), finance::cashSearch(store(), cash), u"A5"_s),
                 QStringList{u"3,00"_s});

        finance::BillQuery bills{finance::BillFilter::Party, kDay, kDay, false,
                                 u"padaria pão quente"_s};
        auto codes = [&] {
            QStringList c =
                rowsOf(store(), finance::billSearch(store(), finance::Ledger::Receivables, bills),
                       u"codigo"_s);
            c.sort();
            return c;
        };
        QCOMPARE(codes(), (QStringList{u"00001"_s, u"00002"_s}));
        bills.by = finance::BillFilter::Group;
        bills.text = u"RECEITAS"_s;
        QCOMPARE(codes(), (QStringList{u"00001"_s, u"00002"_s}));
    }

    // The small lists and the agenda's words hold a name once in any capitals, and give it
    // up in any capitals; the lists are in alphabetical order whatever the capitals.
    void listsAndWords() {
        RTX_REQUIRE_INSTALL(*inst);
        const QString& table = registers::lists::regions;
        QVERIFY(registers::addListName(store(), table, u"zona sul"_s));
        QVERIFY(registers::addListName(store(), table, u"Centro"_s));
        QVERIFY(!registers::addListName(store(), table, u"Zona Sul"_s));
        QCOMPARE(registers::listNames(store(), table), (QStringList{u"CENTRO"_s, u"ZONA SUL"_s}));
        QVERIFY(registers::removeListName(store(), table, u"centro"_s));
        QCOMPARE(registers::listNames(store(), table), QStringList{u"ZONA SUL"_s});

        agenda::addWord(store(), agenda::WordList::Groups, u"Diretoria"_s);
        QVERIFY(agenda::hasWord(store(), agenda::WordList::Groups, u"DIRETORIA"_s));
        QVERIFY(agenda::hasWord(store(), agenda::WordList::Groups, u"diretoria"_s));
        agenda::removeWord(store(), agenda::WordList::Groups, u"DIRETORIA"_s);
        QVERIFY(!agenda::hasWord(store(), agenda::WordList::Groups, u"Diretoria"_s));
    }
};

QTEST_GUILESS_MAIN(TextSearchTest)
#include "tst_textsearch.moc"
