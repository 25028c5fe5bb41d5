#include "defaultlayouts.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace rtx::output {

const QList<DefaultLayout>& defaultLayouts() {
    static const QList<DefaultLayout> all = dispatchLayouts() + officeLayouts();
    return all;
}

QStringList writeMissingLayouts(const QString& folder, QStringList* problems) {
    QStringList written;
    QDir dir(folder);
    // Names are matched blind to case, as the old installations named them freely.
    const QStringList present = dir.entryList({QStringLiteral("*.rpt")}, QDir::Files);
    for (const DefaultLayout& l : defaultLayouts()) {
        bool there = false;
        for (const QString& p : present)
            there = there || p.compare(l.file, Qt::CaseInsensitive) == 0;
        if (there) continue;
        QSaveFile f(dir.filePath(l.file));
        if (f.open(QIODevice::WriteOnly) && f.write(l.text.toUtf8()) >= 0 && f.commit()) {
            written << l.file;
        } else if (problems) {
            *problems << QStringLiteral("%1: %2").arg(dir.filePath(l.file), f.errorString());
        }
    }
    return written;
}

} // namespace rtx::output
