#include "checker.h"

#include "store/store.h"

#include <QHash>
#include <QSet>

namespace rtx::stations {

namespace {

using namespace Qt::StringLiterals;

// The tables and columns the rules read, by their codes in the database.
const QString kDispatches = u"atendimentos"_s;
const QString kPayables = u"contas_pagar"_s;
const QString kReceivables = u"contas_receber"_s;
const QString kCash = u"caixa"_s;
const QString kCashDays = u"caixa_dias"_s;
// The words that tie a finance row to its dispatch, and the group of billing's credits.
const QString kFeeGroup = u"Tx.entregador"_s;
const QString kRevenueGroup = u"Receita entrega/coleta"_s;
const QString kBillingGroup = u"Receita Atendimento-Faturamento"_s;
const QString kCredit = u"CRÉDITO"_s;
const QString kDebit = u"DÉBITO"_s;
const QString kCashPayment = u"A VISTA"_s;
const QString kInvoicePayment = u"FATURAR"_s;
const QString kReceived = u"Recebida"_s;

// Enough examples to find the fault, not the whole list.
constexpr int kExamples = 8;

void fault(Verdict& v, const QString& text) {
    if (v.faults.size() < kExamples)
        v.faults << text;
    else if (v.faults.size() == kExamples)
        v.faults << u"..."_s;
}

QString keyColumn(const QString& table) {
    return table == kCash || table == kPayables || table == kReceivables ? u"codigo"_s
                                                                         : u"CODIGO"_s;
}

// A finance row that names a dispatch in its document.
struct Posted {
    QChar letter; // as the dispatch keeps it: P, Q, R, S, C
    QString code;
    qint64 amount = 0;
    bool settled = false;
};

QHash<QString, QList<Posted>> postedRows(Store& store) {
    QHash<QString, QList<Posted>> byDocument;
    // The courier's fee is a payable (P) or, owed back, a receivable (Q); the client's
    // value a receivable (R) or, owed back, a payable (S); paid at once, a cash credit (C).
    struct Source {
        QString table, group;
        QChar letter;
    };
    const QList<Source> sources{{kPayables, kFeeGroup, u'P'},
                                {kReceivables, kFeeGroup, u'Q'},
                                {kReceivables, kRevenueGroup, u'R'},
                                {kPayables, kRevenueGroup, u'S'}};
    for (const Source& s : sources) {
        for (Recordset rs = store.open(
                 u"SELECT codigo, c3, c12, c2 FROM %1 WHERE c7 = ?"_s.arg(s.table), {s.group});
             !rs.eof(); rs.moveNext())
            byDocument[rs.text(u"c3"_s)].append(
                {s.letter, rs.text(u"codigo"_s), rs.cents(u"c12"_s),
                 rs.text(u"c2"_s) == kReceived || rs.text(u"c2"_s) == u"Paga"_s});
    }
    for (Recordset rs =
             store.open(u"SELECT codigo, A3, A5, A2 FROM caixa WHERE A7 = ?"_s, {kRevenueGroup});
         !rs.eof(); rs.moveNext())
        byDocument[rs.text(u"A3"_s)].append(
            {rs.text(u"A2"_s) == kCredit ? u'C' : u'?', rs.text(u"codigo"_s), rs.cents(u"A5"_s)});
    return byDocument;
}

// No code drawn twice: neither two rows of one code in a table, nor two stations that
// each reported adding a row under the same code (the second would have written over the
// first).
Verdict codesOnce(Store& store, const QList<Attempt>& attempts) {
    Verdict v{u"Nenhum código sorteado duas vezes"_s, {}};
    QHash<QString, int> added;
    QSet<QString> tables;
    for (const Attempt& a : attempts)
        for (const Ref& r : a.refs) {
            tables.insert(r.table);
            if (r.added) ++added[r.table + u' ' + r.code];
        }
    for (auto it = added.cbegin(); it != added.cend(); ++it)
        if (it.value() > 1) fault(v, u"%1 dado como novo %2 vezes"_s.arg(it.key()).arg(it.value()));
    for (const QString& table : tables) {
        const QString key = keyColumn(table);
        for (Recordset rs = store.open(u"SELECT %1, COUNT(*) FROM %2 GROUP BY %1 HAVING "
                                       "COUNT(*) > 1"_s.arg(key, table));
             !rs.eof(); rs.moveNext())
            fault(v, u"%1 %2 em %3 linhas"_s.arg(table, rs.value(0).toString(),
                                                 rs.value(1).toString()));
    }
    return v;
}

// Every row a station reported saved is in its table, once.
Verdict savedRowsThere(Store& store, const QList<Attempt>& attempts) {
    Verdict v{u"Toda linha dada como gravada está lá uma vez"_s, {}};
    QHash<QString, QSet<QString>> reported;
    for (const Attempt& a : attempts)
        for (const Ref& r : a.refs)
            reported[r.table].insert(r.code);
    for (auto it = reported.cbegin(); it != reported.cend(); ++it) {
        QHash<QString, int> stored;
        for (Recordset rs = store.open(u"SELECT %1 FROM %2"_s.arg(keyColumn(it.key()), it.key()));
             !rs.eof(); rs.moveNext())
            ++stored[rs.value(0).toString()];
        for (const QString& code : it.value()) {
            const int n = stored.value(code);
            if (n != 1) fault(v, u"%1 %2: %3 linhas"_s.arg(it.key(), code).arg(n));
        }
    }
    return v;
}

// Every dispatch whose money was posted has exactly the rows it keeps, of the kinds its way
// of payment needs, adding up to its values; a finance row of a dispatch that the dispatch
// does not keep is a posting made twice.
Verdict postingsMatch(Store& store, const QList<Attempt>& attempts) {
    Verdict v{u"Cada atendimento tem um lançamento de cada espécie, com os seus valores"_s, {}};
    QSet<QString> reported;
    for (const Attempt& a : attempts)
        for (const Ref& r : a.refs)
            if (r.table == kDispatches) reported.insert(r.code);
    const QHash<QString, QList<Posted>> posted = postedRows(store);
    for (Recordset rs = store.open(u"SELECT CODIGO, a19, a20, VE, lanc FROM atendimentos"_s);
         !rs.eof(); rs.moveNext()) {
        const QString number = rs.text(u"CODIGO"_s);
        const QStringList kept = rs.text(u"lanc"_s).split(u' ', Qt::SkipEmptyParts);
        if (kept.isEmpty()) {
            if (reported.contains(number))
                fault(v, u"atendimento %1 gravado sem o seu lançamento"_s.arg(number));
            continue;
        }
        const QList<Posted> rows = posted.value(number);
        QHash<QChar, qint64> sums;
        QHash<QChar, int> counts;
        QSet<QString> found;
        for (const Posted& p : rows) {
            const QString word = p.letter + p.code;
            found.insert(word);
            if (!kept.contains(word)) {
                fault(v, u"atendimento %1: lançamento %2 a mais"_s.arg(number, word));
                continue;
            }
            sums[p.letter] += p.amount;
            ++counts[p.letter];
        }
        for (const QString& word : kept)
            if (!found.contains(word))
                fault(v, u"atendimento %1: lançamento %2 não existe"_s.arg(number, word));
        const qint64 fee = rs.cents(u"VE"_s);
        const qint64 value = rs.cents(u"a19"_s);
        const QString payment = rs.text(u"a20"_s);
        if (sums.value(u'P') - sums.value(u'Q') != std::max<qint64>(fee, 0) ||
            (fee > 0 && counts.value(u'P') + counts.value(u'Q') == 0))
            fault(v,
                  u"atendimento %1: taxa %2, a pagar ao motoqueiro %3"_s.arg(number).arg(fee).arg(
                      sums.value(u'P') - sums.value(u'Q')));
        if (payment == kCashPayment &&
            (counts.value(u'C') != 1 || sums.value(u'C') != value || counts.value(u'R') > 0))
            fault(v, u"atendimento %1 à vista de %2: %3 créditos no caixa somando %4"_s.arg(number)
                         .arg(value)
                         .arg(counts.value(u'C'))
                         .arg(sums.value(u'C')));
        if (payment == kInvoicePayment &&
            (counts.value(u'R') == 0 || sums.value(u'R') - sums.value(u'S') != value ||
             counts.value(u'C') > 0))
            fault(v, u"atendimento %1 a faturar de %2: a receber %3"_s.arg(number).arg(value).arg(
                         sums.value(u'R') - sums.value(u'S')));
    }
    return v;
}

// The per-day totals the database keeps beside the cash book are the sums of its rows.
Verdict cashDays(Store& store) {
    Verdict v{u"Os totais do caixa por dia batem com as linhas"_s, {}};
    struct Day {
        qint64 credits = 0, debits = 0;
    };
    QHash<QString, Day> rows, totals;
    for (Recordset rs = store.open(u"SELECT A1, SUM(CASE WHEN A2 = ? THEN A5 ELSE 0 END), "
                                   "SUM(CASE WHEN A2 = ? THEN A5 ELSE 0 END) FROM caixa "
                                   "WHERE A1 IS NOT NULL GROUP BY A1"_s,
                                   {kCredit, kDebit});
         !rs.eof(); rs.moveNext())
        rows[rs.value(0).toDate().toString(Qt::ISODate)] = {rs.value(1).toLongLong(),
                                                            rs.value(2).toLongLong()};
    for (Recordset rs = store.open(u"SELECT dia, creditos, debitos FROM %1"_s.arg(kCashDays));
         !rs.eof(); rs.moveNext())
        totals[rs.value(0).toDate().toString(Qt::ISODate)] = {rs.value(1).toLongLong(),
                                                              rs.value(2).toLongLong()};
    QSet<QString> days;
    for (auto it = rows.cbegin(); it != rows.cend(); ++it)
        days.insert(it.key());
    for (auto it = totals.cbegin(); it != totals.cend(); ++it)
        days.insert(it.key());
    for (const QString& day : days) {
        const Day r = rows.value(day), t = totals.value(day);
        if (r.credits != t.credits || r.debits != t.debits)
            fault(v, u"%1: linhas %2 / %3, totais %4 / %5"_s.arg(day)
                         .arg(r.credits)
                         .arg(r.debits)
                         .arg(t.credits)
                         .arg(t.debits));
    }
    return v;
}

// A receivable is written off once: what billing credited for a document is what its
// received receivables say was received (the grid's value, which the write-off keeps). A dispatch
// whose value grew after its receivable was received leaves the difference to be received, and that
// is written off by itself; a receivable written off twice (two stations on the same grid) credits
// the cash book twice.
Verdict writtenOffOnce(Store& store) {
    Verdict v{u"Nenhuma conta a receber baixada duas vezes"_s, {}};
    QHash<QString, qint64> credited, received;
    for (Recordset rs = store.open(u"SELECT A3, SUM(A5) FROM caixa WHERE A7 = ? AND A2 = ? "
                                   "GROUP BY A3"_s,
                                   {kBillingGroup, kCredit});
         !rs.eof(); rs.moveNext())
        credited[rs.value(0).toString()] = rs.value(1).toLongLong();
    for (Recordset rs = store.open(u"SELECT c3, SUM(c16) FROM contas_receber WHERE c2 = ? AND "
                                   "c7 = ? GROUP BY c3"_s,
                                   {kReceived, kRevenueGroup});
         !rs.eof(); rs.moveNext())
        received[rs.value(0).toString()] = rs.value(1).toLongLong();
    for (auto it = credited.cbegin(); it != credited.cend(); ++it)
        if (!it.key().isEmpty() && it.value() != received.value(it.key()))
            fault(v, u"documento %1: creditado %2, recebido %3"_s.arg(it.key())
                         .arg(it.value())
                         .arg(received.value(it.key())));
    return v;
}

// Each action's rows are stored together or not at all: a paid bill has its cash debit, a
// written-off receivable its settlement and its credit.
Verdict unitsWhole(Store& store, const QList<Attempt>& attempts) {
    Verdict v{u"Nenhuma unidade de trabalho aplicada pela metade"_s, {}};
    QSet<QString> paidBills, writtenOff;
    for (const Attempt& a : attempts) {
        for (const Ref& r : a.refs)
            if (r.table == kPayables && r.added) paidBills.insert(r.code);
        for (const QString& d : a.writtenOff)
            writtenOff.insert(d);
    }
    QHash<QString, int> debits, billingCredits;
    for (Recordset rs = store.open(u"SELECT A3, A2, A7 FROM caixa WHERE A3 IS NOT NULL"_s);
         !rs.eof(); rs.moveNext()) {
        if (rs.text(u"A2"_s) == kDebit) ++debits[rs.text(u"A3"_s)];
        if (rs.text(u"A7"_s) == kBillingGroup) ++billingCredits[rs.text(u"A3"_s)];
    }
    for (Recordset rs = store.open(u"SELECT codigo, c3 FROM contas_pagar"_s); !rs.eof();
         rs.moveNext()) {
        const QString code = rs.text(u"codigo"_s);
        if (paidBills.contains(code) && debits.value(rs.text(u"c3"_s)) != 1)
            fault(v, u"conta paga %1 com %2 débitos no caixa"_s.arg(code).arg(
                         debits.value(rs.text(u"c3"_s))));
    }
    QSet<QString> settled;
    for (Recordset rs = store.open(u"SELECT c3 FROM contas_receber WHERE c2 = ? AND c7 = ?"_s,
                                   {kReceived, kRevenueGroup});
         !rs.eof(); rs.moveNext())
        settled.insert(rs.text(u"c3"_s));
    for (const QString& d : writtenOff) {
        if (!settled.contains(d)) fault(v, u"documento %1 baixado sem conta recebida"_s.arg(d));
        if (billingCredits.value(d) == 0)
            fault(v, u"documento %1 baixado sem crédito no caixa"_s.arg(d));
    }
    return v;
}

} // namespace

QList<Verdict> check(Store& store, const QList<Attempt>& attempts) {
    return {codesOnce(store, attempts),     savedRowsThere(store, attempts),
            postingsMatch(store, attempts), cashDays(store),
            writtenOffOnce(store),          unitsWhole(store, attempts)};
}

} // namespace rtx::stations
