// The month's invoices on the large installation: 200 clients invoiced for a month of the
// 1,000,000 dispatches (every "FATURAR" dispatch of June 2025 left a receivable of one of
// them). The list of the clients to invoice, then every invoice made and written as a PDF,
// as "Gerar faturas" does, with the peak of memory of that run.

#include "bench.h"
#include "bench_data.h"
#include "finance/core/invoices.h"
#include "output/core/invoicing.h"
#include "output/printing.h"
#include "output/reportpainter.h"
#include "store/formats.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <cstdio>

using namespace rtx;
using namespace rtx::bench;
using namespace Qt::Literals::StringLiterals;
namespace fin = rtx::finance;
namespace out = rtx::output;

namespace {

constexpr int kInvoiceClients = 200;
const QDate kFrom(2025, 6, 1);
const QDate kTo(2025, 6, 30);

// The month's receivables of the 200 clients, made once from the month's dispatches. Their
// codes start above the other benches' receivables, so those stay as they were.
void fillMonth(Store& store) {
    if (store
            .scalar(u"SELECT COUNT(*) FROM contas_receber WHERE c1 BETWEEN ? AND ?"_s, {kFrom, kTo})
            .toLongLong() > 0)
        return;
    std::printf("   preenchendo as contas de junho de 2025...\n");
    std::fflush(stdout);
    Recordset rs = store.open(u"SELECT CODIGO, a2, a19 FROM atendimentos WHERE a2 BETWEEN ? AND "
                              u"? AND a20 = 'FATURAR' ORDER BY CODIGO"_s,
                              {kFrom, kTo});
    UnitOfWork unit(store);
    QSqlQuery q(store.database());
    q.prepare(u"INSERT INTO contas_receber (codigo, c1, c2, c3, c5, c6, c12, c13, c16) "
              u"VALUES (?, ?, ?, ?, ?, ?, ?, ?, 0)"_s);
    int n = 0;
    for (; !rs.eof(); rs.moveNext(), ++n) {
        const QVariantList values{
            QString::number(900000 + n),
            rs.date(u"a2"_s)->toString(Qt::ISODate),
            fin::kindOf(fin::Ledger::Receivables).open,
            rs.text(u"CODIGO"_s),
            u"ATENDIMENTO"_s,
            u"CLIENTE FATURADO %1"_s.arg(n % kInvoiceClients, 3, 10, QChar(u'0')),
            rs.cents(u"a19"_s),
            kTo.addDays(10).toString(Qt::ISODate)};
        for (int c = 0; c < values.size(); ++c)
            q.bindValue(c, values[c]);
        if (!q.exec()) throw StoreError(q.lastError().text());
    }
    unit.commit();
    std::printf("   %d contas\n", n);
}

void dropInvoices(Store& store) {
    UnitOfWork unit(store);
    store.execute(u"DELETE FROM faturas_contas"_s);
    store.execute(u"DELETE FROM faturas"_s);
    unit.commit();
}

// The peak of resident memory since the last reset, in megabytes.
double peakMb() {
    QFile f(u"/proc/self/status"_s);
    if (!f.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    return -1;
}

void resetPeak() {
    QFile f(u"/proc/self/clear_refs"_s);
    if (f.open(QIODevice::WriteOnly)) f.write("5");
}

} // namespace

RTX_BENCH("faturas") {
    Store& store = bigStore();
    fillMonth(store);
    store.execute(u"UPDATE empresa SET e10 = 'CNPJ', e11 = '11.222.333/0001-81', "
                  u"e12 = 'ROTALIX ENTREGAS', e13 = 'SAO PAULO', e14 = '10'"_s);
    dropInvoices(store);

    int listed = 0;
    const double list =
        medianMs(11, [&] { listed = int(fin::clientsToInvoice(store, kFrom, kTo).size()); });
    report(u"Faturas: clientes a faturar de um mês (%1 clientes)"_s.arg(listed), list, 200);

    QStringList clients;
    for (const fin::InvoiceCandidate& c : fin::clientsToInvoice(store, kFrom, kTo))
        clients << c.client;
    QTemporaryDir folder;
    resetPeak();
    QElapsedTimer clock;
    clock.start();
    const QList<fin::Invoice> made = out::makeInvoices(store, clients, kFrom, kTo);
    const double making = double(clock.nsecsElapsed()) / 1e6;
    int pages = 0;
    qint64 lines = 0;
    for (const fin::Invoice& inv : made) {
        const out::InvoiceSheet sheet = out::readInvoiceSheet(store, inv.code);
        const out::Document doc = out::invoiceDocument(sheet, &ui::fontMeasure());
        QString error;
        if (!ui::writePdf(doc, folder.filePath(out::invoiceFileName(inv)), error))
            throw StoreError(error);
        pages += int(doc.pages.size());
        lines += sheet.lines.size();
    }
    const double all = double(clock.nsecsElapsed()) / 1e6;
    report(u"   as faturas gravadas no banco (%1)"_s.arg(made.size()), making, 20000);
    report(u"Faturas: %1 faturas em PDF (%2 páginas, %3 atendimentos)"_s.arg(made.size())
               .arg(pages)
               .arg(lines),
           all, 20000);
    std::printf("   pico de memória da geração: %.0f MB (meta 200 MB)\n", peakMb());
    dropInvoices(store);
}
