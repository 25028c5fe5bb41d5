#include "finance/core/ledger.h"

#include "store/formats.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

namespace {

QString required(const QString& field) {
    return QStringLiteral("O campo [%1], não pode ficar em branco.").arg(field);
}

} // namespace

const LedgerKind& kindOf(Ledger ledger) {
    static const LedgerKind payables{
        QStringLiteral("contas_pagar"),
        QStringLiteral("A pagar"),
        QStringLiteral("Paga"),
        QStringLiteral("Digite a data do pagamento."),
        QStringLiteral("Digite o valor pago."),
        QStringLiteral("Deseja debitar o caixa?"),
        debit,
        QStringLiteral("Relatório de contas a pagar."),
        true,
        QStringLiteral("fornecedores"),
    };
    // The capital letter of the heading is the one the office knows.
    static const LedgerKind receivables{
        QStringLiteral("contas_receber"),
        QStringLiteral("A receber"),
        QStringLiteral("Recebida"),
        QStringLiteral("Digite a data do recebimento."),
        QStringLiteral("Digite o valor recebido."),
        QStringLiteral("Deseja creditar o caixa?"),
        credit,
        QStringLiteral("Relatório de contas A receber."),
        false,
        QStringLiteral("clientes"),
    };
    return ledger == Ledger::Payables ? payables : receivables;
}

const QList<Field<Bill>>& billFields() {
    namespace c = billcol;
    static const QList<Field<Bill>> fields = {
        field<Bill>(c::code, &Bill::code),
        field<Bill>(c::entered, &Bill::entered),
        field<Bill>(c::status, &Bill::status),
        field<Bill>(c::document, &Bill::document),
        field<Bill>(c::type, &Bill::type),
        field<Bill>(c::description, &Bill::description),
        field<Bill>(c::party, &Bill::party),
        field<Bill>(c::group, &Bill::group),
        field<Bill>(c::branch, &Bill::branch),
        field<Bill>(c::account, &Bill::account),
        field<Bill>(c::cheque, &Bill::cheque),
        field<Bill>(c::thirdParty, &Bill::thirdParty),
        field<Bill>(c::amount, &Bill::amount),
        field<Bill>(c::due, &Bill::due),
        field<Bill>(c::remarks, &Bill::remarks),
        field<Bill>(c::settled, &Bill::settled),
        field<Bill>(c::settledAmount, &Bill::settledAmount),
        field<Bill>(versionColumn(), &Bill::version),
    };
    return fields;
}

std::optional<Problem> checkBill(Ledger ledger, const Bill& b) {
    const LedgerKind& k = kindOf(ledger);
    if (b.status == k.settled) {
        if (!b.settled.isValid()) return Problem{billcol::settled, k.noSettledDate};
        if (b.settledAmount == 0) return Problem{billcol::settledAmount, k.noSettledValue};
    }
    if (b.description.isEmpty()) return Problem{billcol::description, required(u"Descritivo"_s)};
    if (b.status.isEmpty()) return Problem{billcol::status, required(u"Status"_s)};
    if (b.amount == 0) return Problem{billcol::amount, required(u"Valor"_s)};
    if (auto refused = moneyRefusal(b.amount, u"Valor"_s))
        return Problem{billcol::amount, *refused};
    if (auto refused = moneyRefusal(
            b.settledAmount, ledger == Ledger::Payables ? u"Valor pago"_s : u"Valor recebido"_s))
        return Problem{billcol::settledAmount, *refused};
    return std::nullopt;
}

std::optional<Bill> loadBill(Store& store, Ledger ledger, const QString& code) {
    if (code.isEmpty()) return std::nullopt;
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(kindOf(ledger).table, billcol::code),
        {code});
    if (rs.eof()) return std::nullopt;
    return readRecord(rs, billFields());
}

QList<Bill> billsOf(Store& store, Ledger ledger, const QString& document, const QString& group) {
    const QString& table = kindOf(ledger).table;
    Recordset rs = store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 = ? AND %3 = ? "
                                             "ORDER BY CAST(%4 AS BIGINT)")
                                  .arg(table, billcol::document, billcol::group, billcol::code),
                              {document, group});
    QList<Bill> bills;
    for (; !rs.eof(); rs.moveNext())
        bills << readRecord(rs, billFields());
    return bills;
}

CashMovement cashOf(Ledger ledger, const Bill& b, const QDate& today) {
    CashMovement m;
    m.date = today;
    m.operation = kindOf(ledger).cashOperation;
    m.document = b.document;
    m.type = b.type;
    m.amount = b.settledAmount;
    m.description = b.description;
    m.group = b.group;
    return m;
}

QString saveBill(Store& store, Ledger ledger, const Bill& b, bool postToCash, const QDate& today) {
    const LedgerKind& k = kindOf(ledger);
    // An emptied payment date does not clear the one on file.
    const auto keepSettled = [&b](const Field<Bill>& f, const QVariant&) {
        return f.column == billcol::settled && !b.settled.isValid();
    };
    QString code = b.code;
    if (code.isEmpty()) {
        // A code just drawn is never on file: the row is added without looking for it.
        QVariantMap row = storedRow<Bill>(b, billFields(), keepSettled);
        row.remove(billcol::code);
        code = store.insertUnderNewCode(k.table, row);
    } else {
        saveRecord<Bill>(store, k.table, billcol::code, code, b, billFields(), keepSettled);
    }
    if (b.status == k.settled && postToCash) postCash(store, cashOf(ledger, b, today));
    return code;
}

bool removeBill(Store& store, Ledger ledger, const QString& code) {
    if (code.isEmpty()) return false;
    return store.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?")
                             .arg(kindOf(ledger).table, billcol::code),
                         {code}) > 0;
}

qint64 billCount(Store& store, Ledger ledger) {
    return store.count(kindOf(ledger).table);
}

QString walkBills(Store& store, Ledger ledger, Walk walk, const QString& code) {
    const QString& table = kindOf(ledger).table;
    switch (walk) {
    case Walk::First:
        return store.firstCode(table);
    case Walk::Last:
        return store.lastCode(table);
    case Walk::Next:
        return code;
    case Walk::Previous:
        break;
    }
    if (code.isEmpty()) return {};
    if (!loadBill(store, ledger, code)) return store.lastCode(table);
    const QString before = store.previousCode(table, code);
    return before.isEmpty() ? code : before;
}

PageQuery billSearch(const Store& store, Ledger ledger, const BillQuery& q) {
    const LedgerKind& k = kindOf(ledger);
    namespace c = billcol;
    PageQuery p;
    p.table = k.table;
    p.columns = {c::due, c::amount, c::party, c::description, c::settledAmount, c::code, c::group};
    QString where =
        QStringLiteral("%1 BETWEEN ? AND ? AND ").arg(c::due) + store.sameText(k.table, c::status);
    p.params = {q.from, q.to, q.settled ? k.settled : k.open};
    if (q.by != BillFilter::Period) {
        const QString column = q.by == BillFilter::Party ? c::party : c::group;
        if (q.text.isEmpty()) {
            where += QStringLiteral(" AND (%1 IS NULL OR %1 = '')").arg(column);
        } else {
            where += u" AND "_s + store.sameText(k.table, column);
            p.params << q.text;
        }
    }
    p.where = where;
    p.order = {SortKey{c::due}};
    return p;
}

PageQuery newBills(const Store& store, Ledger ledger, const QDate& today) {
    const LedgerKind& k = kindOf(ledger);
    namespace c = billcol;
    PageQuery p;
    p.table = k.table;
    p.columns = {c::entered,       c::amount, c::party, c::description,
                 c::settledAmount, c::code,   c::group};
    p.where = QStringLiteral("%1 = ? AND ").arg(c::entered) + store.sameText(k.table, c::status);
    p.params = {today, k.open};
    p.order = {SortKey{c::entered}};
    return p;
}

qint64 listTotal(Store& store, const PageQuery& q) {
    return store
        .scalar(QStringLiteral("SELECT SUM(%1) FROM %2 WHERE %3")
                    .arg(billcol::amount, q.table, q.where),
                q.params)
        .toLongLong();
}

QStringList partyNames(Store& store, const QString& registerTable) {
    QStringList names;
    Recordset rs = store.open(QStringLiteral("SELECT C5 FROM %1 ORDER BY %2")
                                  .arg(registerTable, store.sortKey(registerTable, u"C5"_s)));
    for (; !rs.eof(); rs.moveNext())
        names << rs.text(u"C5"_s);
    return names;
}

} // namespace rtx::finance
