#include "dispatch/core/posting.h"

#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "finance/core/cashbook.h"

namespace rtx::dispatch {

namespace {

const QString kDone = QStringLiteral("Atendimento realizado.");
const QString kRevenue = QStringLiteral("Receita entrega/coleta");

// The columns a payable and a receivable leave empty.
void blankAccountColumns(QVariantMap& row) {
    for (const char16_t* c : {u"c8", u"c9", u"c10", u"c11", u"c14"})
        row.insert(QString::fromUtf16(c), QStringLiteral("")); // empty text, not null
    row.insert(QStringLiteral("c16"), qint64(0));
}

} // namespace

PostingResult postDispatch(Store& store, const Posting& p) {
    PostingResult result;

    // The courier's fee, dated by the day of posting.
    if (p.courierFee && *p.courierFee != 0) {
        result.payable = store.nextCode(QStringLiteral("contas_pagar"));
        QVariantMap row{{QStringLiteral("codigo"), result.payable},
                        {QStringLiteral("c1"), p.today},
                        {QStringLiteral("c2"), QStringLiteral("A pagar")},
                        {QStringLiteral("c3"), p.number},
                        {QStringLiteral("c4"), p.client},
                        {QStringLiteral("c5"), kDone},
                        {QStringLiteral("c6"), p.courier},
                        {QStringLiteral("c7"), QStringLiteral("Tx.entregador")},
                        {QStringLiteral("c12"), *p.courierFee},
                        {QStringLiteral("c13"), p.today}};
        blankAccountColumns(row);
        store.insert(QStringLiteral("contas_pagar"), row);
    }

    // The client's value, dated by the day of the dispatch: cash now or an invoice later.
    // A zero value is posted all the same.
    if (p.payment == cashPayment) {
        finance::CashMovement cash;
        cash.date = p.date;
        cash.operation = finance::credit;
        cash.document = p.number;
        cash.type = p.courier;
        cash.amount = p.clientValue;
        cash.description = p.client;
        cash.group = kRevenue;
        result.cash = finance::postCash(store, cash);
    } else if (p.payment == invoicePayment) {
        result.receivable = store.nextCode(QStringLiteral("contas_receber"));
        QVariantMap row{{QStringLiteral("codigo"), result.receivable},
                        {QStringLiteral("c1"), p.date},
                        {QStringLiteral("c2"), QStringLiteral("A receber")},
                        {QStringLiteral("c3"), p.number},
                        {QStringLiteral("c4"), p.courier},
                        {QStringLiteral("c5"), kDone},
                        {QStringLiteral("c6"), p.client},
                        {QStringLiteral("c7"), kRevenue},
                        {QStringLiteral("c12"), p.clientValue},
                        {QStringLiteral("c13"), p.date}};
        blankAccountColumns(row);
        store.insert(QStringLiteral("contas_receber"), row);
    }

    result.courierMoved = moveCourier(store, p.courier, courierOnTheWay);
    return result;
}

} // namespace rtx::dispatch
