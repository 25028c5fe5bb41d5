#pragma once
// A report as a CSV file: the columns of its sheet (sheet.h), one line per row, ";" between
// values, decimal comma, dates dd/mm/yyyy, UTF-8 with a byte order mark and CR LF line
// ends, so that a spreadsheet set to Portuguese opens it right.

#include "report.h"
#include "sheet.h"

#include <QByteArray>
#include <QString>

namespace rtx::output {

QByteArray toCsv(const Sheet& sheet);
QByteArray toCsv(const ReportData& data);
// Writes the file; on failure gives false and the reason, in Portuguese.
bool writeCsv(const ReportData& data, const QString& path, QString& error);

} // namespace rtx::output
