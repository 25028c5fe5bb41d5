#pragma once
// A report's sheet as an Excel workbook (.xlsx), written by libxlsxwriter: one worksheet
// named after the report, the headers in bold on a frozen first row with filters, codes
// and tax numbers as text, dates as dates (dd/mm/yyyy), money as numbers in "#,##0.00".

#include "report.h"
#include "sheet.h"

#include <QString>

namespace rtx::output {

// Writes the workbook; the file is replaced only once it is whole. On failure gives false
// and the reason, in Portuguese.
bool writeXlsx(const Sheet& sheet, const QString& path, QString& error);
bool writeXlsx(const ReportData& data, const QString& path, QString& error);

} // namespace rtx::output
