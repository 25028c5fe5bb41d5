#include "xlsx.h"

#include "oserror.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <xlsxwriter.h>

#include <algorithm>
#include <memory>

namespace rtx::output {

namespace {

// The longest text a cell holds; a longer one is cut with a visible mark.
constexpr qsizetype kCellLimit = 32767;

// A worksheet's name: at most 31 characters, none of []:*?/\, not starting or ending with
// an apostrophe.
QString sheetName(const QString& title) {
    QString name;
    for (const QChar c : title)
        if (!QStringLiteral("[]:*?/\\").contains(c) && c.isPrint()) name += c;
    name = name.left(31).trimmed();
    while (name.startsWith(u'\'') || name.endsWith(u'\'')) {
        if (name.startsWith(u'\'')) name.remove(0, 1);
        if (name.endsWith(u'\'')) name.chop(1);
        name = name.trimmed();
    }
    return name.isEmpty() ? QStringLiteral("Relatório") : name;
}

QByteArray cellText(const QString& text) {
    if (text.size() <= kCellLimit) return text.toUtf8();
    return (text.left(kCellLimit - 1) + QChar(0x2026)).toUtf8();
}

QString libraryProblem(lxw_error e) {
    switch (e) {
    case LXW_ERROR_MEMORY_MALLOC_FAILED:
        return QStringLiteral("falta memória para montar a planilha");
    case LXW_ERROR_CREATING_XLSX_FILE:
    case LXW_ERROR_CREATING_TMPFILE:
    case LXW_ERROR_READING_TMPFILE:
        return QStringLiteral("os arquivos temporários da planilha não puderam ser gravados");
    default:
        return QStringLiteral("a planilha não pôde ser montada (erro %1 da biblioteca de "
                              "planilhas)")
            .arg(int(e));
    }
}

// Characters a column needs to show a cell whole, within reason.
int widthOf(const QVariant& v, CellKind kind) {
    switch (v.typeId()) {
    case QMetaType::UnknownType:
        return 0;
    case QMetaType::QDate:
        return 10;
    case QMetaType::LongLong:
        return int(QString::number(v.toLongLong()).size()) + (kind == CellKind::Money ? 3 : 0);
    default:
        return int(v.toString().size());
    }
}

} // namespace

bool writeXlsx(const Sheet& sheet, const QString& path, QString& error) {
    QTemporaryDir work;
    if (!work.isValid()) {
        error = QStringLiteral("os arquivos temporários da planilha não puderam ser criados");
        return false;
    }
    const QByteArray built = QFile::encodeName(work.filePath(QStringLiteral("planilha.xlsx")));
    QByteArray tmpdir = QFile::encodeName(work.path());
    lxw_workbook_options options{};
    options.tmpdir = tmpdir.data();
    lxw_workbook* book = workbook_new_opt(built.constData(), &options);
    if (!book) {
        error = QStringLiteral("falta memória para montar a planilha");
        return false;
    }
    const QByteArray title = sheet.title.toUtf8();
    const QByteArray creator = QByteArrayLiteral("Rotalix");
    lxw_doc_properties properties{};
    properties.title = const_cast<char*>(title.constData());
    properties.author = const_cast<char*>(creator.constData());
    workbook_set_properties(book, &properties);

    lxw_worksheet* ws = workbook_add_worksheet(book, sheetName(sheet.title).toUtf8().constData());
    lxw_format* header = workbook_add_format(book);
    format_set_bold(header);
    format_set_bottom(header, LXW_BORDER_THIN);
    lxw_format* date = workbook_add_format(book);
    format_set_num_format(date, "dd/mm/yyyy");
    format_set_align(date, LXW_ALIGN_CENTER);
    lxw_format* money = workbook_add_format(book);
    format_set_num_format(money, "#,##0.00");
    lxw_format* text = workbook_add_format(book);
    format_set_num_format(text, "@");

    const int columns = int(sheet.columns.size());
    QList<int> widths(columns, 8);
    for (int c = 0; c < columns; ++c) {
        widths[c] = std::max(widths[c], int(sheet.columns[c].header.size()) + 2);
        worksheet_write_string(ws, 0, lxw_col_t(c), cellText(sheet.columns[c].header).constData(),
                               header);
    }
    lxw_row_t r = 1;
    for (const QVariantList& row : sheet.rows) {
        for (int c = 0; c < columns; ++c) {
            const QVariant v = row.value(c);
            const CellKind kind = sheet.columns[c].kind;
            widths[c] = std::max(widths[c], widthOf(v, kind) + 1);
            switch (v.typeId()) {
            case QMetaType::UnknownType:
                break;
            case QMetaType::QDate: {
                const QDate d = v.toDate();
                if (d.year() >= 1900 && d.year() <= 9999) {
                    lxw_datetime when{d.year(), d.month(), d.day(), 0, 0, 0};
                    worksheet_write_datetime(ws, r, lxw_col_t(c), &when, date);
                } else {
                    worksheet_write_string(
                        ws, r, lxw_col_t(c),
                        d.toString(QStringLiteral("dd/MM/yyyy")).toUtf8().constData(), text);
                }
                break;
            }
            case QMetaType::LongLong:
                if (kind == CellKind::Money)
                    worksheet_write_number(ws, r, lxw_col_t(c), double(v.toLongLong()) / 100.0,
                                           money);
                else
                    worksheet_write_number(ws, r, lxw_col_t(c), double(v.toLongLong()), nullptr);
                break;
            default:
                worksheet_write_string(ws, r, lxw_col_t(c), cellText(v.toString()).constData(),
                                       text);
                break;
            }
        }
        ++r;
    }
    for (int c = 0; c < columns; ++c)
        worksheet_set_column(ws, lxw_col_t(c), lxw_col_t(c), std::min(widths[c], 60), nullptr);
    if (columns > 0) {
        worksheet_freeze_panes(ws, 1, 0);
        worksheet_autofilter(ws, 0, 0, r - 1, lxw_col_t(columns - 1));
    }
    if (const lxw_error e = workbook_close(book); e != LXW_NO_ERROR) {
        error = libraryProblem(e);
        return false;
    }

    QFile made(QFile::decodeName(built));
    if (!made.open(QIODevice::ReadOnly)) {
        error = libraryProblem(LXW_ERROR_READING_TMPFILE);
        return false;
    }
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(made.readAll()) < 0 || !out.commit()) {
        error = fileProblem(path, out);
        return false;
    }
    return true;
}

bool writeXlsx(const ReportData& data, const QString& path, QString& error) {
    return writeXlsx(sheetOf(data), path, error);
}

} // namespace rtx::output
