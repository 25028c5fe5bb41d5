// The store on a large installation: the lookups every screen leans on.

#include "bench.h"
#include "bench_data.h"

#include <QDate>

using namespace rtx;
using namespace rtx::bench;

RTX_BENCH("store") {
    Store& st = bigStore();
    int i = 0;
    report(QStringLiteral("cliente pelo telefone (C8 = ?) entre 100.000"),
           medianMs(201,
                    [&] {
                        Recordset rs =
                            st.open(QStringLiteral("SELECT * FROM clientes WHERE C8 = ?"),
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
    report(QStringLiteral("busca por prefixo do nome (\"cliente x 99\") entre 100.000"),
           medianMs(201,
                    [&] {
                        Recordset rs = st.open(
                            QStringLiteral("SELECT CODIGO, C5 FROM clientes WHERE ") +
                                Store::prefixClause(QStringLiteral("C5")) +
                                QStringLiteral(" ORDER BY C5"),
                            Store::prefixParams(
                                QStringLiteral("cliente %1 99").arg(QChar(u'a' + (i++ % 26)))));
                    }),
           1);
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
