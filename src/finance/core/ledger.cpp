#include "finance/core/ledger.h"

#include "store/formats.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::finance {

namespace {

QString required(const QString& field) {
    return QStringLiteral("O campo [%1], não pode ficar em branco.").arg(field);
}

QVariant dateOrNull(const QDate& d) {
    return d.isValid() ? QVariant(d) : QVariant();
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

QVariantMap toRow(const Bill& b) {
    namespace c = billcol;
    return {{c::code, b.code},
            {c::entered, b.entered},
            {c::status, b.status},
            {c::document, b.document},
            {c::type, b.type},
            {c::description, b.description},
            {c::party, b.party},
            {c::group, b.group},
            {c::branch, b.branch},
            {c::account, b.account},
            {c::cheque, b.cheque},
            {c::thirdParty, b.thirdParty},
            {c::amount, b.amount},
            {c::due, b.due},
            {c::remarks, b.remarks},
            {c::settled, b.settled},
            {c::settledAmount, b.settledAmount}};
}

Bill fromRow(const QVariantMap& r) {
    namespace c = billcol;
    Bill b;
    b.code = r.value(c::code).toString();
    b.entered = r.value(c::entered).toDate();
    b.status = r.value(c::status).toString();
    b.document = r.value(c::document).toString();
    b.type = r.value(c::type).toString();
    b.description = r.value(c::description).toString();
    b.party = r.value(c::party).toString();
    b.group = r.value(c::group).toString();
    b.branch = r.value(c::branch).toString();
    b.account = r.value(c::account).toString();
    b.cheque = r.value(c::cheque).toString();
    b.thirdParty = r.value(c::thirdParty).toString();
    b.amount = r.value(c::amount).toLongLong();
    b.due = r.value(c::due).toDate();
    b.remarks = r.value(c::remarks).toString();
    b.settled = r.value(c::settled).toDate();
    b.settledAmount = r.value(c::settledAmount).toLongLong();
    return b;
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

namespace {

Bill billOf(const Recordset& rs) {
    namespace c = billcol;
    Bill b;
    b.code = rs.text(c::code);
    b.entered = rs.date(c::entered).value_or(QDate());
    b.status = rs.text(c::status);
    b.document = rs.text(c::document);
    b.type = rs.text(c::type);
    b.description = rs.text(c::description);
    b.party = rs.text(c::party);
    b.group = rs.text(c::group);
    b.branch = rs.text(c::branch);
    b.account = rs.text(c::account);
    b.cheque = rs.text(c::cheque);
    b.thirdParty = rs.text(c::thirdParty);
    b.amount = rs.cents(c::amount);
    b.due = rs.date(c::due).value_or(QDate());
    b.remarks = rs.text(c::remarks);
    b.settled = rs.date(c::settled).value_or(QDate());
    b.settledAmount = rs.cents(c::settledAmount);
    return b;
}

} // namespace

std::optional<Bill> loadBill(Store& store, Ledger ledger, const QString& code) {
    if (code.isEmpty()) return std::nullopt;
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(kindOf(ledger).table, billcol::code),
        {code});
    if (rs.eof()) return std::nullopt;
    return billOf(rs);
}

QList<Bill> billsOf(Store& store, Ledger ledger, const QString& document, const QString& group) {
    const QString& table = kindOf(ledger).table;
    Recordset rs = store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 = ? AND %3 = ? "
                                             "ORDER BY CAST(%4 AS BIGINT)")
                                  .arg(table, billcol::document, billcol::group, billcol::code),
                              {document, group});
    QList<Bill> bills;
    for (; !rs.eof(); rs.moveNext())
        bills << billOf(rs);
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
    const QString code = b.code.isEmpty() ? store.nextCode(k.table) : b.code;
    namespace c = billcol;
    QVariantMap row = toRow(b);
    row.remove(c::code);
    row.insert(c::entered, dateOrNull(b.entered));
    row.insert(c::due, dateOrNull(b.due));
    // An emptied payment date does not clear the one on file.
    if (b.settled.isValid())
        row.insert(c::settled, b.settled);
    else
        row.remove(c::settled);
    store.saveByKey(k.table, c::code, code, row);
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
