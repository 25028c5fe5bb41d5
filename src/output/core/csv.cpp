#include "csv.h"

#include "oserror.h"

#include "store/formats.h"

#include <QSaveFile>

namespace rtx::output {

namespace {

// A number a spreadsheet reads: no thousands points, a decimal comma.
QString sheetMoney(qint64 cents) {
    const bool negative = cents < 0;
    const quint64 v = negative ? quint64(-(cents + 1)) + 1 : quint64(cents);
    return QStringLiteral("%1%2,%3")
        .arg(negative ? QStringLiteral("-") : QString())
        .arg(v / 100)
        .arg(v % 100, 2, 10, QLatin1Char('0'));
}

QString quoted(const QString& value) {
    if (!value.contains(u';') && !value.contains(u'"') && !value.contains(u'\n') &&
        !value.contains(u'\r'))
        return value;
    QString v = value;
    v.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + v + u'"';
}

QString csvCell(const QVariant& v, CellKind kind) {
    switch (v.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::QDate:
        return formatDate(v.toDate());
    case QMetaType::LongLong:
        return kind == CellKind::Money ? sheetMoney(v.toLongLong())
                                       : QString::number(v.toLongLong());
    default:
        return quoted(v.toString());
    }
}

} // namespace

QByteArray toCsv(const Sheet& sheet) {
    QString out;
    out.reserve(int(sheet.rows.size() + 1) * 120);
    QStringList line;
    for (const SheetColumn& c : sheet.columns)
        line << quoted(c.header);
    out += line.join(u';') + QStringLiteral("\r\n");
    for (const QVariantList& row : sheet.rows) {
        line.clear();
        for (int c = 0; c < sheet.columns.size(); ++c)
            line << csvCell(row.value(c), sheet.columns[c].kind);
        out += line.join(u';') + QStringLiteral("\r\n");
    }
    return QByteArray("\xEF\xBB\xBF") + out.toUtf8();
}

QByteArray toCsv(const ReportData& data) {
    return toCsv(sheetOf(data));
}

bool writeCsv(const ReportData& data, const QString& path, QString& error) {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly)) {
        error = fileProblem(path, f);
        return false;
    }
    f.write(toCsv(data));
    if (!f.commit()) {
        error = fileProblem(path, f);
        return false;
    }
    return true;
}

} // namespace rtx::output
