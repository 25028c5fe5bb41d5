// The store on a large installation: the lookups every screen leans on.

#include "bench.h"
#include "bench_data.h"

#include <QDate>

using namespace rtx;
using namespace rtx::bench;

RTX_BENCH("store") {
    Store& st = bigStore();
    int i = 0;
    const QString byPhone = st.sameText(QStringLiteral("clientes"), QStringLiteral("C8"));
    report(QStringLiteral("cliente pelo telefone (C8 igual) entre 100.000"),
           medianMs(201,
                    [&] {
                        Recordset rs =
                            st.open(QStringLiteral("SELECT * FROM clientes WHERE ") + byPhone,
                                    {QStringLiteral("11%1").arg(30000000 + (i++ * 7919) % 100000)});
                        if (rs.eof()) std::abort();
                    }),
           1);
    report(QStringLiteral("próximo código entre 1.000.000 de atendimentos"),
           medianMs(201, [&] { st.peekCode(QStringLiteral("atendimentos")); }), 1);
    report(QStringLiteral("próximo código, dentro de uma transação"),
           medianMs(101,
                    [&] {
                        UnitOfWork unit(st);
                        st.nextCode(QStringLiteral("atendimentos"));
                        unit.commit();
                    }),
           1);
    report(
        QStringLiteral("busca por prefixo do nome (\"cliente x 99\") entre 100.000"),
        medianMs(201,
                 [&] {
                     Recordset rs = st.open(
                         QStringLiteral("SELECT CODIGO, C5 FROM clientes WHERE %1 ORDER BY %2")
                             .arg(st.startsWith(QStringLiteral("clientes"), QStringLiteral("C5")),
                                  st.sortKey(QStringLiteral("clientes"), QStringLiteral("C5"))),
                         st.startParams(
                             QStringLiteral("cliente %1 99").arg(QChar(u'a' + (i++ % 26)))));
                 }),
        1);
    // A grid's pages: the first of a search, and one deep in a list of many equal words.
    PageQuery search{QStringLiteral("clientes"),
                     {QStringLiteral("CODIGO"), QStringLiteral("C5")},
                     st.startsWith(QStringLiteral("clientes"), QStringLiteral("C5")),
                     {},
                     {{QStringLiteral("C5")}}};
    report(QStringLiteral("primeira página (100 linhas) da busca \"cliente m\" entre 100.000"),
           medianMs(101,
                    [&] {
                        search.params = st.startParams(QStringLiteral("cliente m"));
                        st.page(search, {}, 100);
                    }),
           1);
    const PageQuery byStatus{QStringLiteral("atendimentos"),
                             {QStringLiteral("CODIGO"), QStringLiteral("ST")},
                             {},
                             {},
                             {{QStringLiteral("ST")}}};
    // Half-way through the "Entregue" rows (the position holds the status folded, and an id).
    const QVariantList deep{QStringLiteral("entregue"), 500000};
    report(QStringLiteral("página de 100 atendimentos de um mesmo status, no meio de 1.000.000"),
           medianMs(101, [&] { st.page(byStatus, deep, 100); }), 1);
    const QDate last(2026, 1, 1);
    report(QStringLiteral("saldo de todos os movimentos antes de um dia (500.000)"),
           medianMs(21, [&] { st.cashTotals(QDate(1980, 1, 1), last.addDays(-1)); }), 20);
    report(QStringLiteral("o mesmo saldo somando os movimentos um a um (modo antigo)"),
           medianMs(5,
                    [&] {
                        st.scalar(QStringLiteral("SELECT SUM(CASE WHEN A2 = ? THEN A5 ELSE -A5 "
                                                 "END) FROM caixa WHERE A1 < ?"),
                                  {QStringLiteral("CRÉDITO"), last});
                    }),
           20);
}
