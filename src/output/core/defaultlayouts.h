#pragma once
// The layouts every installation starts with: the thirteen reports of the program. They are
// written into the installation folder as NAME.rpt files, which the office may then change
// with a text editor; the program never writes over a file that is there.

#include <QList>
#include <QString>
#include <QStringList>

namespace rtx::output {

struct DefaultLayout {
    QString file; // "rela3.rpt"
    QString text;
};

const QList<DefaultLayout>& defaultLayouts();

// Writes the default layouts missing from a folder; a layout that is there, changed or not,
// is left as it is. Gives the files written; a file that could not be written is named in
// problems.
QStringList writeMissingLayouts(const QString& folder, QStringList* problems = nullptr);

// Parts of the default layouts, by kind of report.
QList<DefaultLayout> dispatchLayouts();
QList<DefaultLayout> officeLayouts();

} // namespace rtx::output
