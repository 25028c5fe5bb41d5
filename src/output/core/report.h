#pragma once
// The report control of a screen, without its window: which data (a table of the store, or
// the station's own work table), which layout file, the named formulas and the selection.
// Like the control the offices know, it keeps what was set between runs: a formula set for
// one report stays for the next run on the same screen unless it is set again.
//
//     ReportDefinition& r = control.definition();
//     r.setDataSource(u"atendimentos"_s);
//     r.setLayoutFile(u"rela3.rpt"_s);
//     r.setFormula(1, u"DATA"_s, u"01/03/2025 até 31/03/2025"_s);
//     r.setSelection(Selection::namePeriod(u"a18"_s, courier, u"a2"_s, from, to));
//     ReportData data = r.read(store, folder); // the rows, the layout, the company
//
// The selection is built by the caller and bound as values: a quote in a name is data.

#include "layout.h"
#include "store/schema.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

namespace rtx {
class Store;
}

namespace rtx::output {

// Which rows are printed: one key, or a name and a period, or all rows.
struct Selection {
    QString keyColumn;
    QVariant key;
    QString nameColumn; // compared as the store compares text: blind to case
    QString name;
    QString dateColumn; // both ends included
    QDate from, to;

    static Selection all() { return {}; }
    static Selection byKey(const QString& column, const QVariant& value);
    static Selection namePeriod(const QString& nameColumn, const QString& name,
                                const QString& dateColumn, const QDate& from, const QDate& to);
    bool isEmpty() const {
        return keyColumn.isEmpty() && nameColumn.isEmpty() && dateColumn.isEmpty();
    }
};

// One named formula: "DATA", "VM", "NOME", "nome".
struct Formula {
    QString name;
    QString value;
};

// The company as the registry of the installation holds it (first row of "empresa").
struct Company {
    QString name, phone, address, district, city, state, postcode, email, cnpj;
    static Company read(Store& store);
};

// Everything a layout is filled with: rows as the data source typed them (dates as QDate,
// money as cents, the rest as text), the formulas, the company, the moment of printing.
struct ReportData {
    Layout layout;
    QString table; // the data source
    QStringList columns;
    QList<ColType> types;
    QList<QVariantList> rows;
    QList<Formula> formulas;
    QString selectionName; // the name of a name-and-period selection, else empty
    Company company;
    QDateTime printedAt;

    int columnIndex(const QString& name) const; // -1 when none, blind to case
};

class ReportDefinition {
public:
    // DataFiles(0): a table of the store or a station's work table, by name or old file name.
    void setDataSource(const QString& table) { table_ = table; }
    // ReportFileName: the name of a layout file in the installation folder.
    void setLayoutFile(const QString& fileName) { layout_ = fileName; }
    QString layoutFile() const { return layout_; }
    // Formulas(n), n from 1. The value is data: quotes and braces print as they are.
    void setFormula(int n, const QString& name, const QString& value);
    const QMap<int, Formula>& formulas() const { return formulas_; }
    // SelectionFormula.
    void setSelection(const Selection& selection) { selection_ = selection; }
    const Selection& selection() const { return selection_; }

    // Reads the layout from the folder (LayoutError) and the rows (StoreError).
    ReportData read(Store& store, const QString& folder,
                    const QDateTime& now = QDateTime::currentDateTime()) const;

private:
    QString table_;
    QString layout_;
    QMap<int, Formula> formulas_;
    Selection selection_;
};

// The rows of a table for a layout: its selection, sorted by the layout's group and order
// columns (those the table has), then by the table's key.
void readRows(Store& store, ReportData& data, const Selection& selection);
// Sorts the rows by the layout's group and order columns on their typed values: dates as
// dates, amounts as numbers (also where a work table keeps them as text), words blind to
// case and accents. Rows that compare equal keep their order.
void sortRows(ReportData& data);

} // namespace rtx::output
