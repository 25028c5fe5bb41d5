// Reports on a large installation (1,000,000 dispatches): the report of every status over a
// period that holds 10,000 dispatches, from the report screen's work table. Filling the
// station's work table, the whole report as a PDF file, the preview's first page, and the
// peak memory of the run; the fill beside the old way of walking the dispatches in code.

#include "bench.h"
#include "bench_data.h"
#include "dispatch/core/dispatchreports.h"
#include "output/core/compose.h"
#include "output/core/defaultlayouts.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "output/reportpreview.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QWidget>
#include <cstdio>

using namespace rtx;
using namespace rtx::bench;
using namespace Qt::Literals::StringLiterals;

namespace {

// The highest resident memory of the process so far, in megabytes; resetPeak() starts the
// count again from what is in use now.
double peakMegabytes() {
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024;
    return -1;
}

void resetPeak() {
    QFile refs(u"/proc/self/clear_refs"_s);
    if (refs.open(QIODevice::WriteOnly)) refs.write("5");
}

// The old fill: every dispatch walked in code, its date tested on the fetched row, each
// row that passes added on its own.
int legacyFill(Store& st, const QDate& from, const QDate& to) {
    st.execute(u"DELETE FROM rel_atendimentos"_s);
    QStringList columns{u"CODIGO"_s, u"a1"_s, u"ST"_s};
    for (int i = 2; i <= 22; ++i)
        columns << u"a%1"_s.arg(i);
    QSqlQuery add(st.database());
    add.prepare(u"INSERT INTO rel_atendimentos (DI, DF, MOTO, %1) VALUES (?, ?, ?, %2)"_s.arg(
        columns.join(u", "_s), QStringList(columns.size(), u"?"_s).join(u", "_s)));
    QSqlQuery all(st.database());
    all.setForwardOnly(true);
    all.exec(u"SELECT %1 FROM atendimentos"_s.arg(columns.join(u", "_s)));
    int rows = 0;
    const QString di = from.toString(Qt::ISODate), df = to.toString(Qt::ISODate);
    while (all.next()) {
        const QDate day = QDate::fromString(all.value(3).toString().left(10), Qt::ISODate);
        if (day < from || day > to) continue;
        add.addBindValue(di);
        add.addBindValue(df);
        add.addBindValue(QString());
        for (int c = 0; c < columns.size(); ++c)
            add.addBindValue(all.value(c));
        if (add.exec()) ++rows;
    }
    return rows;
}

void printRatio(const QString& what, double now, double legacy) {
    std::printf("   %-67s %10.1f x mais rápido (%0.1f ms contra %0.1f ms)\n", qPrintable(what),
                legacy / std::max(now, 0.001), now, legacy);
    std::fflush(stdout);
}

} // namespace

RTX_BENCH("reports") {
    Store& st = bigStore();
    resetPeak();
    const QString folder = QDir(workFolder()).filePath(u"relatorios"_s);
    QDir().mkpath(folder);
    output::writeMissingLayouts(folder);

    // 400 dispatches a day: 25 days hold 10,000 of them.
    const QDate from = QDate(2020, 1, 1).addDays(100), to = from.addDays(24);
    dispatch::PeriodReport request;
    request.by = dispatch::ReportBy::Status;
    request.from = from;
    request.to = to;
    dispatch::PeriodFill fill;
    const double fillMs = medianMs(7, [&] { fill = dispatch::fillPeriodReport(st, request); });
    report(u"preencher a tabela de trabalho (%1 atendimentos, todos os status)"_s.arg(fill.rows),
           fillMs, 200);
    int legacyRows = 0;
    const double legacyMs = medianMs(1, [&] { legacyRows = legacyFill(st, from, to); });
    if (legacyRows != fill.rows)
        std::printf("   ATENÇÃO: o preenchimento antigo deu %d linhas\n", legacyRows);
    printRatio(u"preencher, contra percorrer os atendimentos em código"_s, fillMs, legacyMs);
    fill = dispatch::fillPeriodReport(st, request);

    // The whole report to a PDF file: rows read, pages laid out, every page drawn.
    output::ReportDefinition definition;
    dispatch::setUpPeriodReport(definition, fill);
    const QString pdf = QDir(workFolder()).filePath(u"relatorio-10000.pdf"_s);
    int pages = 0;
    const double pdfMs = medianMs(3, [&] {
        const output::ReportData data = definition.read(st, folder);
        const output::Document doc = output::compose(data);
        pages = int(doc.pages.size());
        QString error;
        if (!ui::writePdf(doc, pdf, error)) std::printf("   erro no PDF: %s\n", qPrintable(error));
    });
    report(u"relatório inteiro em PDF (%1 páginas, %2 KB)"_s.arg(pages).arg(QFileInfo(pdf).size() /
                                                                            1024),
           pdfMs, 3000);

    // The preview: from the click to its first page on the screen.
    QWidget host;
    ui::ReportControl control(&host);
    control.setFolder(folder);
    dispatch::setUpPeriodReport(control.definition(), fill);
    const double previewMs = medianMs(3, [&] {
        control.run();
        ui::ReportPreview* preview = control.preview();
        preview->grab(); // paints the window, the first page in it
        delete preview;
    });
    report(u"visualização: primeira página na tela"_s, previewMs, 1000);

    const double peak = peakMegabytes();
    std::printf("%-70s %10.1f MB  (meta < 200 MB) %s\n", "memória de pico da execução", peak,
                peak < 200 ? "OK" : "ACIMA DA META");
    std::fflush(stdout);
    st.execute(u"DELETE FROM rel_atendimentos"_s);
}
