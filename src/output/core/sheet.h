#pragma once
// A report's rows as a spreadsheet sees them: one column per column of the layout (or per
// box of a form), each cell with its kind taken from the data, never guessed from its text.
// Codes, CNPJ/CPF, telephones and CEPs stay text with their leading zeros; dates are
// dates; money is a number of reais with two decimals. The spreadsheet files (.xlsx and
// .csv) are both written from this table.
//
//     const Sheet sheet = sheetOf(data); // data: what the report read
//     writeXlsx(sheet, path, error);

#include "report.h"

#include <QList>
#include <QString>
#include <QVariant>

namespace rtx::output {

enum class CellKind {
    Text,   // QString
    Date,   // QDate
    Money,  // qint64 cents
    Number, // qint64
};

struct SheetColumn {
    QString header;
    CellKind kind = CellKind::Text; // what the column holds; a cell may still be text
};

struct Sheet {
    QString title; // the report's title, the name of the sheet
    QList<SheetColumn> columns;
    // Per row one value per column: QString, QDate, qint64 (cents in a money column), or a
    // null QVariant for an empty cell. A money or date column whose text could not be read
    // as such keeps that text, so nothing typed is lost.
    QList<QVariantList> rows;
};

Sheet sheetOf(const ReportData& data);

} // namespace rtx::output
