// The dispatch screen on a large installation (1,000,000 dispatches, 200 couriers): opening
// it, one key press in a search box, and Grava of a new dispatch with its posting; each
// beside the same work done by walking the whole table in code, as the old program did.

#include "bench.h"
#include "bench_data.h"
#include "dispatch/atendimento.h"
#include "kit/dialogs.h"
#include "kit/maskedbox.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QSqlQuery>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace rtx;
using namespace rtx::bench;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;

namespace {

// Answers Grava's questions as an operator posting a dispatch does: Yes to the money, No to
// the print.
class PostingAnswers : public Prompter {
public:
    int errors = 0;
    void notice(QWidget*, const QString&, const QString&, bool) override {}
    bool ask(QWidget*, const QString& text, const QString&) override {
        return text == u"Confirma movimentação financeira?"_s;
    }
    std::optional<QString> askText(QWidget*, const QString&, const QString&, const QString&,
                                   bool) override {
        return std::nullopt;
    }
    void error(QWidget*, const QString& text, const QString&) override {
        ++errors;
        std::printf("   erro: %s\n", qPrintable(text));
    }
    bool choosePrinter(QWidget*, QPrinter*) override { return false; }
    bool openUrl(const QUrl&) override { return false; }
    bool startProgram(const QString&, const QStringList&, const QString&) override { return false; }
    void quitProgram() override {}
};

// Walks every row of a statement, as a recordset opened on the whole table was walked.
template <class F> void walk(Store& store, const QString& sql, F&& row) {
    QSqlQuery q(store.database());
    q.setForwardOnly(true);
    q.exec(sql);
    while (q.next())
        row(q);
}

// Types a text into a field of the screen by its name, as the operator would leave it.
void put(QWidget* screen, const QString& name, const QString& text) {
    QWidget* w = screen->findChild<QWidget*>(name);
    if (auto* mask = qobject_cast<MaskEdBox*>(w)) {
        mask->setText(text);
    } else if (auto* edit = qobject_cast<QLineEdit*>(w)) {
        edit->setText(text);
    } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
        combo->setCurrentIndex(combo->findText(text, Qt::MatchExactly));
        if (combo->isEditable()) combo->setEditText(text);
    } else if (auto* label = qobject_cast<QLabel*>(w)) {
        label->setText(text);
    } else {
        std::abort();
    }
}

void printRatio(const QString& what, double now, double legacy) {
    std::printf("   %-67s %10.1f x mais rápido (%0.1f ms contra %0.1f ms)\n", qPrintable(what),
                legacy / std::max(now, 0.001), now, legacy);
    std::fflush(stdout);
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

RTX_BENCH("dispatch") {
    Store& st = bigStore();
    PostingAnswers answers;
    setPrompter(&answers);
    const QDate today = QDate::currentDate();

    // A working day today, so that the screen's list of today has its 400 rows. Removed at
    // the end with everything the bench wrote.
    const QString lastDispatch = st.lastCode(u"atendimentos"_s);
    const QString lastPayable = st.lastCode(u"contas_pagar"_s);
    const QString lastCash = st.lastCode(u"caixa"_s);
    const QString lastReceivable = st.lastCode(u"contas_receber"_s);
    {
        UnitOfWork unit(st);
        qint64 next = lastDispatch.toLongLong();
        for (int i = 0; i < 400; ++i)
            st.insert(u"atendimentos"_s,
                      {{u"CODIGO"_s, padCode(++next, 7)},
                       {u"a1"_s, u"ADMIN"_s},
                       {u"a2"_s, today},
                       {u"a6"_s, u"CLIENTE HOJE %1"_s.arg(i)},
                       {u"a18"_s, u"MOTO%1"_s.arg(i % 200, 3, 10, QLatin1Char('0'))},
                       {u"a19"_s, qint64(2500)},
                       {u"ST"_s, u"A caminho"_s},
                       {u"VE"_s, qint64(900)}});
        unit.commit();
    }

    // Opening: status list, courier board, today's list, the count.
    const double open = medianMs(11, [] { Atendimento screen; });
    report(u"abrir Atendimento (status, quadro de 200, primeira página da lista, total)"_s, open,
           100);
    const double openLegacy = medianMs(3, [&] {
        qint64 rows = 0, ofToday = 0;
        const QString day = today.toString(Qt::ISODate);
        walk(st, u"SELECT * FROM atendimentos"_s, [&](const QSqlQuery& q) {
            ++rows;
            if (q.value(2).toString().startsWith(day)) ++ofToday;
        });
        int couriers = 0;
        walk(st, u"SELECT * FROM motoqueiros"_s, [&](const QSqlQuery&) { ++couriers; });
        if (rows == 0 || couriers == 0) std::abort();
    });
    printRatio(u"abrir, contra percorrer a tabela inteira"_s, open, openLegacy);

    // One key press in a search box: the grid shows the rows that start with the text.
    Atendimento screen;
    auto* byClient = screen.findChild<QLineEdit*>(u"Text1"_s);
    auto* byNumber = screen.findChild<QLineEdit*>(u"Text3"_s);
    auto* byCourier = screen.findChild<QLineEdit*>(u"Text2"_s);
    const QStringList typed{
        u"C"_s,           u"CL"_s,           u"CLIENTE"_s,       u"CLIENTE K"_s,
        u"CLIENTE K 1"_s, u"CLIENTE K 12"_s, u"CLIENTE K 123"_s, u"cliente q 9"_s};
    int i = 0;
    const double key = medianMs(41, [&] { byClient->setText(typed[i++ % typed.size()]); });
    report(u"uma tecla na busca por cliente (Text1)"_s, key, 30);
    i = 0;
    const QStringList numbers{u"0"_s, u"00"_s, u"001"_s, u"0012"_s, u"00123"_s, u"001234"_s};
    report(u"uma tecla na busca por número (Text3)"_s,
           medianMs(31, [&] { byNumber->setText(numbers[i++ % numbers.size()]); }), 30);
    i = 0;
    const QStringList couriers{u"M"_s, u"MO"_s, u"MOTO"_s, u"MOTO1"_s, u"MOTO12"_s, u"MOTO123"_s};
    report(u"uma tecla na busca por entregador (Text2)"_s,
           medianMs(31, [&] { byCourier->setText(couriers[i++ % couriers.size()]); }), 30);
    i = 0;
    const double keyLegacy = medianMs(3, [&] {
        const QString prefix = typed[(i++ + 4) % typed.size()];
        QList<QStringList> found;
        walk(st, u"SELECT CODIGO, a2, a6, ST, a21, a22, a18, a19 FROM atendimentos"_s,
             [&](const QSqlQuery& q) {
                 if (q.value(2).toString().startsWith(prefix, Qt::CaseInsensitive))
                     found << QStringList{q.value(0).toString(), q.value(2).toString()};
             });
    });
    printRatio(u"tecla na busca, contra percorrer a tabela inteira"_s, key, keyLegacy);

    // Grava of a new dispatch with its posting (payable, receivable, courier on his way).
    put(&screen, u"A1"_s, u"ADMIN"_s);
    put(&screen, u"ST"_s, u"A caminho"_s);
    put(&screen, u"A20"_s, u"FATURAR"_s);
    auto* grava = screen.findChild<QAbstractButton*>(u"Command16"_s);
    std::vector<double> times;
    for (int n = 0; n < 51; ++n) {
        put(&screen, u"CODIGO"_s, QString());
        put(&screen, u"A6"_s, u"CLIENTE BENCH %1"_s.arg(n));
        put(&screen, u"A18"_s, u"MOTO%1"_s.arg(n % 200, 3, 10, QLatin1Char('0')));
        put(&screen, u"VE"_s, u"9,00"_s);
        put(&screen, u"A19"_s, u"25,00"_s);
        const qint64 sent = statementsSent();
        QElapsedTimer t;
        t.start();
        grava->click();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
        noteStatements(statementsSent() - sent);
    }
    const double save = median(times);
    report(u"Grava de um atendimento novo com o lançamento (inclui o quadro)"_s, save, 15);
    if (answers.errors > 0) std::printf("   ATENÇÃO: %d erros durante o Grava\n", answers.errors);

    // The old way: each new code by walking every code of its table, no transaction.
    int n = 0;
    const double saveLegacy = medianMs(5, [&] {
        auto walkMax = [&](const QString& table, const QString& column) {
            qint64 max = 0;
            walk(st, u"SELECT %1 FROM %2"_s.arg(column, table),
                 [&](const QSqlQuery& q) { max = std::max(max, q.value(0).toLongLong()); });
            return max + 1;
        };
        const QString code = padCode(walkMax(u"atendimentos"_s, u"CODIGO"_s), 7);
        st.insert(u"atendimentos"_s, {{u"CODIGO"_s, code},
                                      {u"a1"_s, u"ADMIN"_s},
                                      {u"a2"_s, today},
                                      {u"a6"_s, u"CLIENTE LEGADO %1"_s.arg(n++)},
                                      {u"ST"_s, u"A caminho"_s},
                                      {u"VE"_s, qint64(900)}});
        st.insert(u"contas_pagar"_s,
                  {{u"codigo"_s, padCode(walkMax(u"contas_pagar"_s, u"codigo"_s), 5)},
                   {u"c3"_s, code},
                   {u"c12"_s, qint64(900)}});
        st.insert(u"contas_receber"_s,
                  {{u"codigo"_s, padCode(walkMax(u"contas_receber"_s, u"codigo"_s), 5)},
                   {u"c3"_s, code},
                   {u"c12"_s, qint64(2500)}});
        st.execute(u"UPDATE motoqueiros SET C25 = ? WHERE C4 = ?"_s,
                   {u"A caminho"_s, u"MOTO001"_s});
    });
    printRatio(u"Grava, contra percorrer as tabelas para numerar"_s, save, saveLegacy);

    // Leave the installation as it was.
    {
        UnitOfWork unit(st);
        auto drop = [&](const QString& table, const QString& column, const QString& last) {
            st.execute(u"DELETE FROM %1 WHERE CAST(%2 AS BIGINT) > ?"_s.arg(table, column),
                       {last.isEmpty() ? qint64(0) : last.toLongLong()});
        };
        drop(u"atendimentos"_s, u"CODIGO"_s, lastDispatch);
        drop(u"contas_pagar"_s, u"codigo"_s, lastPayable);
        drop(u"caixa"_s, u"codigo"_s, lastCash);
        drop(u"contas_receber"_s, u"codigo"_s, lastReceivable);
        st.execute(u"UPDATE motoqueiros SET C25 = ?"_s, {u"Livre"_s});
        unit.commit();
    }
    setPrompter(nullptr);
}
