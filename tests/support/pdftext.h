#pragma once
// What a report shows, read back as a person would read its pages: the document written as
// PDF and turned to text by pdftotext, each line with its runs of blanks made one.

#include "output/printing.h"
#include "output/reportcontrol.h"
#include "output/reportpreview.h"

#include <QDir>
#include <QProcess>
#include <QStringList>

namespace rtx::test {

// The text of a PDF file as pdftotext reads it, lines kept as laid out.
inline QString pdfText(const QString& file) {
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), QStringLiteral("-enc"),
                                          QStringLiteral("UTF-8"), file, QStringLiteral("-")});
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return QStringLiteral("(pdftotext falhou)");
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The lines of a text that hold something, with their runs of blanks made one.
inline QStringList pdfLines(const QString& text) {
    QStringList out;
    for (const QString& l : text.split(u'\n'))
        if (!l.trimmed().isEmpty()) out << l.simplified();
    return out;
}

// The pages of a document written as PDF into the folder, read back.
inline QString renderedText(const rtx::output::Document& doc, const QString& folder,
                            const QString& name) {
    const QString file = QDir(folder).filePath(name + QStringLiteral(".pdf"));
    QString error;
    if (!rtx::ui::writePdf(doc, file, error)) return QStringLiteral("(PDF: %1)").arg(error);
    return pdfText(file);
}

// The lines of the last run of a report control as its preview shows them.
inline QStringList previewLines(rtx::ui::ReportControl* report, const QString& folder,
                                const QString& name) {
    rtx::ui::ReportPreview* preview = report->preview();
    if (!preview) return {QStringLiteral("(sem visualização)")};
    return pdfLines(renderedText(preview->document(), folder, name));
}

} // namespace rtx::test
