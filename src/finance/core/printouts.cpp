#include "finance/core/printouts.h"

#include "store/formats.h"

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

namespace {

// Every row of a paged query, a page at a time.
void eachRow(Store& store, const PageQuery& q, const std::function<void(const Recordset&)>& row) {
    QVariantList after;
    for (;;) {
        Recordset rs = store.page(q, after, 1000);
        if (rs.eof()) return;
        for (; !rs.eof(); rs.moveNext())
            row(rs);
        rs.moveLast();
        after = store.pageCursor(q, rs);
        if (rs.recordCount() < 1000) return;
    }
}

} // namespace

void fillDaySheet(Store& store, const QDate& day, const QString& previous, const QString& balance) {
    store.execute(u"DELETE FROM %1"_s.arg(daySheetTable));
    Recordset rs = store.open(u"SELECT * FROM %1 WHERE %2 = ? ORDER BY CAST(%3 AS BIGINT)"_s.arg(
                                  cashTable, cashcol::date, cashcol::code),
                              {day});
    for (; !rs.eof(); rs.moveNext()) {
        const QString operation = rs.text(cashcol::operation);
        QVariantMap row{{u"CODIGO"_s, rs.text(cashcol::code)},
                        {u"A1"_s, rs.text(cashcol::date)},
                        {u"A2"_s, operation},
                        {u"A3"_s, rs.text(cashcol::document)},
                        {u"A4"_s, rs.text(cashcol::type)},
                        {u"A6"_s, rs.text(cashcol::description)},
                        {u"PLANO"_s, rs.text(cashcol::group)},
                        {u"SALDO"_s, balance},
                        {u"limi"_s, previous}};
        if (operation == debit) {
            row.insert(u"DE"_s, rs.text(cashcol::amount));
            row.insert(u"L"_s, u"D"_s);
        } else if (operation == credit) {
            row.insert(u"CR"_s, rs.text(cashcol::amount));
            row.insert(u"L"_s, u"C"_s);
        }
        store.insert(daySheetTable, row);
    }
}

void fillCashList(Store& store, const PageQuery& search) {
    store.execute(u"DELETE FROM %1"_s.arg(cashListTable));
    eachRow(store, search, [&](const Recordset& rs) {
        const QString operation = rs.text(cashcol::operation);
        QVariantMap row{
            {u"A1"_s, rs.text(cashcol::date)},     {u"DOC"_s, rs.text(cashcol::document)},
            {u"TIPO"_s, rs.text(cashcol::type)},   {u"DESCR"_s, rs.text(cashcol::description)},
            {u"PLANO"_s, rs.text(cashcol::group)}, {u"CODIGO"_s, rs.text(cashcol::code)}};
        for (int c = 2; c <= 8; ++c)
            row.insert(u"A%1"_s.arg(c), operation);
        // The amount in the column of its side, as the grid shows it.
        row.insert(operation == debit ? u"DE"_s : u"CR"_s, rs.value(cashcol::amount));
        store.insert(cashListTable, row);
    });
}

void fillBillReport(Store& store, Ledger ledger, const QDate& from, const QDate& to,
                    const PageQuery& list) {
    const LedgerKind& k = kindOf(ledger);
    store.execute(u"DELETE FROM %1"_s.arg(billReportTable));
    eachRow(store, list, [&](const Recordset& rs) {
        QString settled = rs.text(billcol::settledAmount);
        if (settled.isEmpty() && k.reportZeroes) settled = u"0"_s;
        store.insert(billReportTable, {{u"nome"_s, k.reportName},
                                       {u"DI"_s, formatDate(from)},
                                       {u"DF"_s, formatDate(to)},
                                       {u"A1"_s, rs.text(list.columns.value(0))},
                                       {u"A2"_s, rs.text(billcol::amount)},
                                       {u"A3"_s, rs.text(billcol::party)},
                                       {u"A4"_s, rs.text(billcol::description)},
                                       {u"A5"_s, settled},
                                       {u"A6"_s, rs.text(billcol::code)},
                                       {u"A7"_s, rs.text(billcol::group)}});
    });
}

} // namespace rtx::finance
