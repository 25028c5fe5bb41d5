#include "finance/core/invoices.h"

#include "finance/core/billing.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

const QString& invoiceTable() {
    static const QString table = u"faturas"_s;
    return table;
}

const QString& invoiceItemTable() {
    static const QString table = u"faturas_contas"_s;
    return table;
}

const QList<Field<Invoice>>& invoiceFields() {
    namespace c = invoicecol;
    static const QList<Field<Invoice>> fields{
        field<Invoice>(c::clientCode, &Invoice::clientCode),
        field<Invoice>(c::clientName, &Invoice::clientName),
        field<Invoice>(c::from, &Invoice::from),
        field<Invoice>(c::to, &Invoice::to),
        field<Invoice>(c::total, &Invoice::total),
        field<Invoice>(c::due, &Invoice::due),
        field<Invoice>(c::txid, &Invoice::txid),
        field<Invoice>(c::made, &Invoice::made),
        field<Invoice>(c::status, &Invoice::status),
        field<Invoice>(c::paid, &Invoice::paid),
    };
    return fields;
}

namespace {

// The open receivables of the period not yet on an invoice: the condition and its values,
// for the table of receivables.
std::pair<QString, QVariantList> openNotInvoiced(const Store& store, const QDate& from,
                                                 const QDate& to, const QString& client) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    QString where =
        u"%1 BETWEEN ? AND ? AND %2 AND NOT EXISTS (SELECT 1 FROM %3 WHERE %3.%4 = "
        u"%5.%6)"_s.arg(c::entered, store.sameText(k.table, c::status), invoiceItemTable(),
                        invoicecol::itemReceivable, k.table, c::code);
    QVariantList params{from, to, k.open};
    if (!client.isNull()) {
        where += u" AND "_s + store.sameText(k.table, c::party);
        params << client;
    }
    return {where, params};
}

InvoiceItem readItem(const Recordset& rs) {
    namespace c = billcol;
    return {rs.text(c::code),        rs.text(c::document), rs.date(c::entered).value_or(QDate()),
            rs.text(c::description), rs.cents(c::amount),  rs.text(c::status)};
}

Invoice readInvoice(const Recordset& rs) {
    Invoice inv = readRecord(rs, invoiceFields());
    inv.code = rs.text(invoicecol::code);
    return inv;
}

} // namespace

QList<InvoiceCandidate> clientsToInvoice(Store& store, const QDate& from, const QDate& to,
                                         const QString& client) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    const auto [where, params] =
        openNotInvoiced(store, from, to, client.isEmpty() ? QString() : client);
    Recordset rs =
        store.open(u"SELECT %1, COUNT(*) AS n, CAST(SUM(%2) AS BIGINT) AS total "
                   u"FROM %3 WHERE %4 GROUP BY %1 ORDER BY %5"_s.arg(
                       c::party, c::amount, k.table, where, store.sortKey(k.table, c::party)),
                   params);
    QList<InvoiceCandidate> out;
    for (; !rs.eof(); rs.moveNext())
        out.append(
            {rs.text(c::party), rs.value(u"n"_s).toInt(), rs.value(u"total"_s).toLongLong()});
    return out;
}

QString invoiceTxid(const QString& code) {
    return u"FATURA"_s + code;
}

std::optional<Invoice> makeInvoice(Store& store, const InvoiceRequest& request,
                                   const QDate& today) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    UnitOfWork unit(store);
    // The code first: its lock keeps a second station from gathering the same receivables
    // until this unit ends (and the unique key refuses them if it tried).
    const QString code = store.nextCode(invoiceTable());
    const auto [where, params] = openNotInvoiced(store, request.from, request.to, request.client);
    Recordset rs = store.open(
        u"SELECT %1, %2, %3, %4, %5, %6 FROM %7 WHERE %8 ORDER BY %3, %1"_s.arg(
            c::code, c::document, c::entered, c::description, c::amount, c::status, k.table, where),
        params);
    if (rs.eof()) {
        // Nothing written: the caller's unit goes on.
        unit.commit();
        return std::nullopt;
    }
    Invoice inv;
    inv.code = code;
    inv.clientCode = request.clientCode;
    inv.clientName = request.client;
    inv.from = request.from;
    inv.to = request.to;
    inv.due = today.addDays(request.dueDays);
    inv.txid = invoiceTxid(code);
    inv.made = today;
    inv.status = invoiceOpen;
    const QString link = u"INSERT INTO %1 (%2, %3) VALUES (?, ?)"_s.arg(
        invoiceItemTable(), invoicecol::itemInvoice, invoicecol::itemReceivable);
    for (; !rs.eof(); rs.moveNext()) {
        inv.total += rs.cents(c::amount);
        store.execute(link, {code, rs.text(c::code)});
    }
    saveRecord(store, invoiceTable(), invoicecol::code, code, inv, invoiceFields());
    unit.commit();
    return inv;
}

std::optional<Invoice> loadInvoice(Store& store, const QString& code) {
    Recordset rs = store.open(
        u"SELECT * FROM %1 WHERE %2 = ?"_s.arg(invoiceTable(), invoicecol::code), {code});
    if (rs.eof()) return std::nullopt;
    return readInvoice(rs);
}

QList<InvoiceItem> itemsOf(Store& store, const QString& code) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    Recordset rs = store.open(
        u"SELECT r.%1, r.%2, r.%3, r.%4, r.%5, r.%6 FROM %7 i JOIN %8 r ON r.%1 = i.%9 "
        u"WHERE i.%10 = ? ORDER BY r.%3, r.%1"_s.arg(
            c::code, c::document, c::entered, c::description, c::amount, c::status,
            invoiceItemTable(), k.table, invoicecol::itemReceivable, invoicecol::itemInvoice),
        {code});
    QList<InvoiceItem> out;
    for (; !rs.eof(); rs.moveNext())
        out.append(readItem(rs));
    return out;
}

QList<Invoice> invoicesOfPeriod(Store& store, const QDate& from, const QDate& to,
                                const QString& client) {
    namespace i = invoicecol;
    QString sql = u"SELECT * FROM %1 WHERE %2 BETWEEN ? AND ?"_s.arg(invoiceTable(), i::from);
    QVariantList params{from, to};
    if (!client.isEmpty()) {
        sql += u" AND "_s + store.sameText(invoiceTable(), i::clientName);
        params << client;
    }
    sql += u" ORDER BY CAST(%1 AS BIGINT)"_s.arg(i::code);
    QList<Invoice> out;
    for (Recordset rs = store.open(sql, params); !rs.eof(); rs.moveNext())
        out.append(readInvoice(rs));
    return out;
}

int writeOffInvoice(Store& store, const QString& code, const QDate& today) {
    namespace c = billcol;
    const LedgerKind& k = kindOf(Ledger::Receivables);
    UnitOfWork unit(store);
    std::optional<Invoice> inv = loadInvoice(store, code);
    if (!inv) throw StoreError(u"A fatura %1 não existe."_s.arg(code));
    if (inv->status == invoicePaid)
        throw StoreError(u"A fatura %1 já foi baixada em %2."_s.arg(
            code, inv->paid ? inv->paid->toString(u"dd/MM/yyyy"_s) : QString()));
    int settled = 0;
    const QString settle = u"UPDATE %1 SET %2 = ?, %3 = ?, %4 = ? WHERE %5 = ?"_s.arg(
        k.table, c::status, c::settledAmount, c::settled, c::code);
    for (const InvoiceItem& item : itemsOf(store, code)) {
        // A receivable written off in billing before keeps its credit: none is posted twice.
        if (item.status.compare(k.open, Qt::CaseInsensitive) != 0) continue;
        store.execute(settle, {k.settled, item.amount, today, item.receivable});
        CashMovement m;
        m.date = today;
        m.operation = credit;
        m.document = item.document;
        m.amount = item.amount;
        m.description = inv->clientName;
        m.group = billingGroup;
        postCash(store, m);
        ++settled;
    }
    inv->status = invoicePaid;
    inv->paid = today;
    saveRecord(store, invoiceTable(), invoicecol::code, code, *inv, invoiceFields());
    unit.commit();
    return settled;
}

} // namespace rtx::finance
