#pragma once
// Reads back a workbook (.xlsx) the way a spreadsheet program would: its parts taken out
// with the system's unzip, the first worksheet's cells with their type ("s" shared string,
// "inlineStr", "n" number...), their value, and the number format of their style.
//
//     const XlsxSheet sheet = readXlsx(path);
//     QCOMPARE(sheet.type(u"A2"_s), u"s"_s);
//     QCOMPARE(sheet.text(u"A2"_s), u"0000008"_s);
//     QCOMPARE(sheet.format(u"B2"_s), u"dd/mm/yyyy"_s);

#include <QDate>
#include <QHash>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QXmlStreamReader>

namespace rtx::test {

struct XlsxSheet {
    struct Cell {
        QString type = QStringLiteral("n"); // as written in t=, "n" when none
        int style = 0;
        QString value; // <v>, or the inline text
    };
    bool ok = false;
    QString problem;
    QHash<QString, Cell> cells; // by reference: "A1"
    QStringList shared;         // the shared strings, in their order
    QStringList formats;        // per cell style: its number format's code
    QString sheetName;

    QString type(const QString& ref) const { return cells.value(ref).type; }
    QString value(const QString& ref) const { return cells.value(ref).value; }
    bool has(const QString& ref) const { return cells.contains(ref); }
    // The text a cell shows when it holds text: the shared string, or the inline one.
    QString text(const QString& ref) const {
        const Cell c = cells.value(ref);
        if (c.type == QStringLiteral("s")) return shared.value(c.value.toInt());
        return c.value;
    }
    QString format(const QString& ref) const { return formats.value(cells.value(ref).style); }
    // A date as the sheet's number of days (1900 system).
    static QString serial(const QDate& d) { return QString::number(QDate(1899, 12, 30).daysTo(d)); }
};

inline QByteArray xlsxPart(const QString& path, const QString& part, QString& problem) {
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), path, part});
    if (!unzip.waitForFinished(30000) || unzip.exitCode() != 0) {
        problem = QStringLiteral("unzip %1 %2: %3")
                      .arg(path, part, QString::fromLocal8Bit(unzip.readAllStandardError()));
        return {};
    }
    return unzip.readAllStandardOutput();
}

inline XlsxSheet readXlsx(const QString& path) {
    XlsxSheet out;
    const QByteArray sheet =
        xlsxPart(path, QStringLiteral("xl/worksheets/sheet1.xml"), out.problem);
    if (sheet.isEmpty()) return out;
    const QByteArray strings = xlsxPart(path, QStringLiteral("xl/sharedStrings.xml"), out.problem);
    const QByteArray styles = xlsxPart(path, QStringLiteral("xl/styles.xml"), out.problem);
    const QByteArray book = xlsxPart(path, QStringLiteral("xl/workbook.xml"), out.problem);
    out.problem.clear();

    for (QXmlStreamReader x(strings); !x.atEnd();) {
        x.readNext();
        if (x.isStartElement() && x.name() == QLatin1String("si")) out.shared << QString();
        if (x.isStartElement() && x.name() == QLatin1String("t") && !out.shared.isEmpty())
            out.shared.last() += x.readElementText();
    }

    // Built-in number formats the writer uses by number.
    QHash<int, QString> codes{{0, QStringLiteral("General")},  {1, QStringLiteral("0")},
                              {2, QStringLiteral("0.00")},     {3, QStringLiteral("#,##0")},
                              {4, QStringLiteral("#,##0.00")}, {14, QStringLiteral("m/d/yy")},
                              {49, QStringLiteral("@")}};
    bool inCellXfs = false;
    for (QXmlStreamReader x(styles); !x.atEnd();) {
        x.readNext();
        if (x.isStartElement() && x.name() == QLatin1String("numFmt"))
            codes.insert(x.attributes().value(QLatin1String("numFmtId")).toInt(),
                         x.attributes().value(QLatin1String("formatCode")).toString());
        if (x.name() == QLatin1String("cellXfs")) inCellXfs = x.isStartElement();
        if (inCellXfs && x.isStartElement() && x.name() == QLatin1String("xf"))
            out.formats << codes.value(x.attributes().value(QLatin1String("numFmtId")).toInt());
    }

    for (QXmlStreamReader x(book); !x.atEnd();) {
        x.readNext();
        if (x.isStartElement() && x.name() == QLatin1String("sheet")) {
            out.sheetName = x.attributes().value(QLatin1String("name")).toString();
            break;
        }
    }

    QString ref;
    for (QXmlStreamReader x(sheet); !x.atEnd();) {
        x.readNext();
        if (!x.isStartElement()) continue;
        if (x.name() == QLatin1String("c")) {
            ref = x.attributes().value(QLatin1String("r")).toString();
            XlsxSheet::Cell c;
            if (x.attributes().hasAttribute(QLatin1String("t")))
                c.type = x.attributes().value(QLatin1String("t")).toString();
            c.style = x.attributes().value(QLatin1String("s")).toInt();
            out.cells.insert(ref, c);
        } else if (x.name() == QLatin1String("v") || x.name() == QLatin1String("t")) {
            out.cells[ref].value += x.readElementText();
        }
    }
    out.ok = true;
    return out;
}

} // namespace rtx::test
