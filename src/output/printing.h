#pragma once
// Laid-out reports to paper and to files: the system's printers (through Qt's print
// support), PDF files, spreadsheet files. Failures are said to the operator through the
// dialog seam, naming the printer or the file; the program goes on.

#include "output/core/document.h"
#include "output/core/report.h"

#include <QString>

class QPrinter;
class QWidget;

namespace rtx::ui {

// Writes the pages to a PDF file. On failure gives false and the reason.
bool writePdf(const output::Document& document, const QString& path, QString& error);

// Sets the printer to the document's paper and prints every page. A printer that is missing
// or refuses the job is said so; false then.
bool printPages(QWidget* parent, const output::Document& document, QPrinter& printer);

// The printer dialog before a print (the preview's print button): false on Cancelar. The
// printer chosen is kept for the next print of the session.
bool choosePrinterFor(QWidget* parent, QPrinter& printer);
// The printer dialog some screens show before running a report: the report runs whatever
// the answer (the offices are used to that); a printer chosen with OK is kept for the next
// print.
void showPrinterDialog(QWidget* parent);

// Writes the spreadsheet file of a report: CSV for a name ending in .csv, else an Excel
// workbook. On failure gives false and the reason.
bool writeSheet(const output::ReportData& data, const QString& path, QString& error);
// The file a spreadsheet goes to: the name chosen, with ".xlsx" added when it ends in
// neither ".xlsx" nor ".csv".
QString sheetPath(const QString& chosen);

} // namespace rtx::ui
