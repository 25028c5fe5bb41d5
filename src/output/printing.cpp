#include "printing.h"

#include "kit/dialogs.h"
#include "output/core/csv.h"
#include "output/core/oserror.h"
#include "output/core/xlsx.h"
#include "reportpainter.h"

#include <QFile>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSaveFile>

namespace rtx::ui {

namespace {

QString g_printer;

QPageLayout pageLayout(const output::Document& d) {
    const double shortSide = std::min(d.width, d.height), longSide = std::max(d.width, d.height);
    return QPageLayout(QPageSize(QSizeF(shortSide, longSide), QPageSize::Millimeter),
                       d.width > d.height ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
}

} // namespace

bool writePdf(const output::Document& document, const QString& path, QString& error) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = output::fileProblem(path, file);
        return false;
    }
    {
        QPdfWriter pdf(&file);
        pdf.setResolution(600);
        pdf.setTitle(document.title);
        pdf.setCreator(QStringLiteral("Rotalix"));
        pdf.setPageLayout(pageLayout(document));
        QPainter painter;
        if (!painter.begin(&pdf)) {
            error = QStringLiteral("o arquivo PDF não pôde ser começado");
            file.cancelWriting();
            return false;
        }
        const double k = pdf.resolution() / 25.4;
        for (int i = 0; i < document.pages.size(); ++i) {
            if (i > 0) pdf.newPage();
            paintPage(painter, document, i, k);
        }
        painter.end();
    }
    if (!file.commit()) {
        error = output::fileProblem(path, file);
        return false;
    }
    return true;
}

bool printPages(QWidget* parent, const output::Document& document, QPrinter& printer) {
    // Qt makes a printer of a PDF file when the system has no printer; without a file name
    // that is no printer at all.
    const bool toFile =
        printer.outputFormat() == QPrinter::PdfFormat && !printer.outputFileName().isEmpty();
    const QString name = toFile ? printer.outputFileName() : printer.printerName();
    if (!toFile && (QPrinterInfo::availablePrinters().isEmpty() || name.isEmpty())) {
        showError(parent, QStringLiteral("Nenhuma impressora foi encontrada neste computador.\n\n"
                                         "Instale uma impressora no sistema, ou salve o "
                                         "relatório em PDF pela visualização."));
        return false;
    }
    printer.setFullPage(true);
    printer.setPageLayout(pageLayout(document));
    printer.setDocName(document.title);
    QPainter painter;
    const QString refused =
        QStringLiteral("A impressora %1 recusou o trabalho de impressão; o relatório não foi "
                       "impresso.\n\nVerifique se ela está ligada, com papel e conectada.");
    if (!painter.begin(&printer)) {
        showError(parent, refused.arg(name));
        return false;
    }
    const double k = printer.resolution() / 25.4;
    for (int i = 0; i < document.pages.size(); ++i) {
        if (i > 0 && !printer.newPage()) {
            painter.end();
            showError(parent, refused.arg(name));
            return false;
        }
        paintPage(painter, document, i, k);
    }
    if (!painter.end() || printer.printerState() == QPrinter::Error) {
        showError(parent, refused.arg(name));
        return false;
    }
    return true;
}

bool choosePrinterFor(QWidget* parent, QPrinter& printer) {
    if (!g_printer.isEmpty()) printer.setPrinterName(g_printer);
    if (!choosePrinter(parent, &printer)) return false;
    if (printer.outputFormat() == QPrinter::NativeFormat) g_printer = printer.printerName();
    return true;
}

void showPrinterDialog(QWidget* parent) {
    QPrinter printer(QPrinter::HighResolution);
    choosePrinterFor(parent, printer);
}

bool writeSheet(const output::ReportData& data, const QString& path, QString& error) {
    if (path.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive))
        return output::writeCsv(data, path, error);
    return output::writeXlsx(data, path, error);
}

QString sheetPath(const QString& chosen) {
    for (const char* known : {".xlsx", ".csv"})
        if (chosen.endsWith(QLatin1String(known), Qt::CaseInsensitive)) return chosen;
    return chosen + QStringLiteral(".xlsx");
}

} // namespace rtx::ui
