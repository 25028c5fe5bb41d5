#include "dispatch/core/posting.h"

#include "dispatch/core/board.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/rules.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "store/formats.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace rtx::dispatch {

namespace {

using finance::Bill;
using finance::Ledger;

const QString kDone = QStringLiteral("Atendimento realizado.");

Ledger ledgerOf(PostingSide side, bool reversed = false) {
    return (side == PostingSide::Payable) != reversed ? Ledger::Payables : Ledger::Receivables;
}

const QString& groupOf(PostingSide side) {
    return side == PostingSide::Payable ? courierFeeGroup : revenueGroup;
}

// The letter of a side in the codes the dispatch keeps; a row owed back has its own.
QChar letterOf(PostingSide side, bool reversed = false) {
    switch (side) {
    case PostingSide::Payable:
        return reversed ? u'Q' : u'P';
    case PostingSide::Cash:
        return u'C';
    case PostingSide::Receivable:
        break;
    }
    return reversed ? u'S' : u'R';
}

PostedRow rowOf(const Bill& b, Ledger ledger, bool reversed) {
    return {b.code, b.party, reversed ? -b.amount : b.amount,
            b.status == finance::kindOf(ledger).settled, reversed};
}

PostedRow rowOf(const finance::CashMovement& m) {
    return {m.code, m.description, m.amount, false};
}

// The rows of one side: those whose codes the dispatch keeps, while they still hold its
// number and the posting's words (a row deleted on the finance screens, its code drawn again
// for another, is no longer the dispatch's); for a dispatch without codes, every row of its
// number and those words.
QList<PostedRow> postedRows(Store& store, PostingSide side, const QString& number,
                            const std::optional<QStringList>& codes) {
    QList<PostedRow> rows;
    const QString& group = groupOf(side);
    if (side == PostingSide::Cash) {
        if (!codes) {
            for (const auto& m : finance::movementsOf(store, finance::credit, number, group))
                rows << rowOf(m);
            return rows;
        }
        for (const QString& word : *codes) {
            if (word.front() != letterOf(side)) continue;
            const auto m = finance::loadCash(store, word.mid(1));
            if (m && m->isCredit() && m->document == number && m->group == group) rows << rowOf(*m);
        }
        return rows;
    }
    for (const bool reversed : {false, true}) {
        const Ledger ledger = ledgerOf(side, reversed);
        if (!codes) {
            for (const Bill& b : finance::billsOf(store, ledger, number, group))
                rows << rowOf(b, ledger, reversed);
            continue;
        }
        for (const QString& word : *codes) {
            if (word.front() != letterOf(side, reversed)) continue;
            const auto b = finance::loadBill(store, ledger, word.mid(1));
            if (b && b->document == number && b->group == group)
                rows << rowOf(*b, ledger, reversed);
        }
    }
    return rows;
}

// The columns a payable and a receivable of a dispatch leave empty: empty text, not null,
// as the office's reports compare them with "".
void blankColumns(Bill& b) {
    for (QString* s : {&b.branch, &b.account, &b.cheque, &b.thirdParty, &b.remarks})
        if (s->isNull()) *s = u""_s;
}

// A payable to the courier, dated by the day of posting; a receivable from the client, dated
// by the day of the dispatch. The two swap client and courier between c4 and c6 on purpose.
Bill newBill(PostingSide side, const Posting& p, const PostedRow& row) {
    const bool payable = side == PostingSide::Payable;
    Bill b;
    b.entered = payable ? p.today : p.date;
    b.status = finance::kindOf(ledgerOf(side, row.reversed)).open;
    b.document = p.number;
    b.type = payable ? p.client : p.courier;
    b.description = kDone;
    b.party = row.party;
    b.group = payable ? courierFeeGroup : revenueGroup;
    b.amount = row.reversed ? -row.amount : row.amount;
    b.due = b.entered;
    blankColumns(b);
    return b;
}

// The client's cash credit, dated by the day of the dispatch.
finance::CashMovement cashOf(const Posting& p, const PostedRow& row) {
    finance::CashMovement m;
    m.code = row.code;
    m.date = p.date;
    m.operation = finance::credit;
    m.document = p.number;
    m.type = p.courier;
    m.amount = row.amount;
    m.description = row.party;
    m.group = revenueGroup;
    return m;
}

void removeRow(Store& store, PostingSide side, const PostedRow& row) {
    if (side == PostingSide::Cash)
        finance::removeCash(store, row.code);
    else
        finance::removeBill(store, ledgerOf(side, row.reversed), row.code);
}

// Writes one row of a side, new or over an open one; gives its code. An amount below zero is
// money owed back, written in the other ledger; an open row that changes ledger so is
// removed from the one and written anew in the other.
QString writeRow(Store& store, PostingSide side, const Posting& p, PostedRow row) {
    if (side == PostingSide::Cash) {
        const finance::CashMovement m = cashOf(p, row);
        if (row.code.isEmpty()) return finance::postCash(store, m);
        finance::updateCash(store, m);
        return row.code;
    }
    if (const bool owedBack = row.amount < 0; owedBack != row.reversed) {
        if (!row.code.isEmpty()) removeRow(store, side, row);
        row.code.clear();
        row.reversed = owedBack;
    }
    const Ledger ledger = ledgerOf(side, row.reversed);
    Bill b = newBill(side, p, row);
    if (!row.code.isEmpty()) {
        // An open row keeps what the office may have added to it (its account, cheque,
        // remarks) and, for the courier's, the day it was first posted.
        const std::optional<Bill> stored = finance::loadBill(store, ledger, row.code);
        if (!stored) return {};
        Bill kept = *stored;
        kept.type = b.type;
        kept.party = b.party;
        kept.amount = b.amount;
        if (side == PostingSide::Receivable) kept.entered = kept.due = p.date;
        blankColumns(kept);
        // An open row that already says what the dispatch says is left as it is.
        if (storedRow(kept, finance::billFields()) == storedRow(*stored, finance::billFields()))
            return row.code;
        b = kept;
    }
    return finance::saveBill(store, ledger, b, false, p.today);
}

} // namespace

SidePlan planSide(PostingSide side, const QList<PostedRow>& posted,
                  const std::optional<PostedRow>& wanted, bool keepZero) {
    SidePlan plan;
    plan.side = side;
    QList<PostedRow> open;
    for (const PostedRow& row : posted)
        (row.settled ? plan.settled : open) << row;

    // What is still to stand open for each party, once what he has settled is counted: the
    // wanted party his amount less what he settled, any other party what he settled, back.
    QList<PostedRow> due;
    const auto addDue = [&due](const QString& party, qint64 amount) {
        const auto it = std::find_if(due.begin(), due.end(),
                                     [&](const PostedRow& r) { return r.party == party; });
        if (it == due.end())
            due << PostedRow{{}, party, amount, false};
        else
            it->amount += amount;
    };
    if (wanted) addDue(wanted->party, wanted->amount);
    for (const PostedRow& row : plan.settled)
        addDue(row.party, -row.amount);
    const auto settledBy = [&](const QString& party) {
        return std::any_of(plan.settled.begin(), plan.settled.end(),
                           [&](const PostedRow& r) { return r.party == party; });
    };
    due.removeIf([&](const PostedRow& r) {
        // A client's value of zero is posted as a row of zero, unless he settled already.
        const bool zeroKept = keepZero && wanted && r.party == wanted->party && !settledBy(r.party);
        return r.amount == 0 && !zeroKept;
    });

    // Open rows are rewritten rather than deleted and written again: the party's own first,
    // then any (a courier changed on an open payable is the same payable).
    QList<bool> used(open.size(), false);
    const auto take = [&](const PostedRow& want, bool sameParty) {
        for (qsizetype i = 0; i < open.size(); ++i) {
            if (used[i] || (sameParty && open[i].party != want.party)) continue;
            used[i] = true;
            plan.rewritten << PostedRow{open[i].code, want.party, want.amount, false,
                                        open[i].reversed};
            if (open[i].party != want.party || open[i].amount != want.amount)
                plan.changesMoney = true;
            return true;
        }
        return false;
    };
    QList<PostedRow> unmatched;
    for (const PostedRow& want : due)
        if (!take(want, true)) unmatched << want;
    for (const PostedRow& want : unmatched) {
        if (take(want, false)) continue;
        plan.written << want;
        plan.changesMoney = true;
    }
    for (qsizetype i = 0; i < open.size(); ++i) {
        if (used[i]) continue;
        plan.deleted << open[i];
        plan.changesMoney = true;
    }
    return plan;
}

QList<SidePlan> PostingPlan::settledChanges() const {
    QList<SidePlan> out;
    for (const SidePlan& s : sides)
        if (!s.settled.isEmpty() && s.changesMoney) out << s;
    return out;
}

PostingPlan planPosting(Store& store, const Posting& p) {
    PostingPlan plan;
    const std::optional<QStringList> codes = p.number.isEmpty() || p.added
                                                 ? std::optional<QStringList>(QStringList())
                                                 : postedCodes(store, p.number);
    const auto posted = [&](PostingSide side) { return postedRows(store, side, p.number, codes); };
    const auto clientSide = [&](const QString& payment) -> std::optional<PostedRow> {
        if (p.payment != payment) return std::nullopt;
        return PostedRow{{}, p.client, p.clientValue, false};
    };
    plan.sides << planSide(PostingSide::Payable, posted(PostingSide::Payable),
                           PostedRow{{}, p.courier, p.courierFee.value_or(0), false}, false)
               << planSide(PostingSide::Cash, posted(PostingSide::Cash), clientSide(cashPayment),
                           true)
               << planSide(PostingSide::Receivable, posted(PostingSide::Receivable),
                           clientSide(invoicePayment), true);
    return plan;
}

QString postingQuestion(const PostingPlan& plan) {
    QStringList lines;
    for (const SidePlan& side : plan.settledChanges()) {
        const bool payable = side.side == PostingSide::Payable;
        for (const PostedRow& row : side.settled)
            lines << ((payable != row.reversed)
                          ? u"A conta a pagar %1 (%2, %3) já foi paga."_s
                          : u"A conta a receber %1 (%2, %3) já foi recebida."_s)
                         .arg(row.code, row.party,
                              formatMoney(row.amount < 0 ? -row.amount : row.amount));
        QStringList posted;
        for (const PostedRow& row : side.written + side.rewritten)
            posted << ((payable == (row.amount >= 0)) ? u"%1 a pagar a %2"_s
                                                      : u"%1 a receber de %2"_s)
                          .arg(formatMoney(row.amount < 0 ? -row.amount : row.amount), row.party);
        lines << (posted.isEmpty() ? u"Nada mais será lançado."_s
                                   : u"Será lançada só a diferença: %1."_s.arg(posted.join(u"; ")));
        for (const PostedRow& row : side.deleted)
            lines << ((payable != row.reversed)
                          ? u"A conta a pagar %1, em aberto, será excluída."_s
                          : u"A conta a receber %1, em aberto, será excluída."_s)
                         .arg(row.code);
    }
    if (lines.isEmpty()) return text::postingQuestion;
    return lines.join(u'\n') + u"\n\n"_s + text::postingQuestion;
}

PostingResult postDispatch(Store& store, const Posting& p) {
    const PostingPlan plan = planPosting(store, p);
    PostingResult result;
    QStringList kept;
    for (const SidePlan& side : plan.sides) {
        for (const PostedRow& row : side.settled)
            kept << letterOf(side.side, row.reversed) + row.code;
        QString code;
        for (const PostedRow& row : side.rewritten + side.written) {
            const QString written = writeRow(store, side.side, p, row);
            if (written.isEmpty()) continue;
            kept << letterOf(side.side, row.amount < 0) + written;
            if (code.isEmpty()) code = written;
        }
        for (const PostedRow& gone : side.deleted)
            removeRow(store, side.side, gone);
        switch (side.side) {
        case PostingSide::Payable:
            result.payable = code;
            break;
        case PostingSide::Cash:
            result.cash = code;
            break;
        case PostingSide::Receivable:
            result.receivable = code;
            break;
        }
    }
    result.version = setPostedCodes(store, p.number, kept);
    result.courierMoved = moveCourier(store, p.courier, courierOnTheWay);
    return result;
}

} // namespace rtx::dispatch
