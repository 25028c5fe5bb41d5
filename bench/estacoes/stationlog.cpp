#include "stationlog.h"

#include <QDir>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace rtx::stations {

namespace {

const QString kDone = QStringLiteral("ok");
const QString kBusy = QStringLiteral("ocupado");
const QString kFailed = QStringLiteral("falha");
const QString kWrittenOff = QStringLiteral("baixa");

QString outcomeWord(Outcome o) {
    switch (o) {
    case Outcome::Done:
        return kDone;
    case Outcome::Busy:
        return kBusy;
    case Outcome::Failed:
        break;
    }
    return kFailed;
}

// An engine's text on one line, without the tabs that separate the fields.
QString oneLine(QString text) {
    return text.replace(QRegularExpression(QStringLiteral("[\\t\\r\\n]+")), QStringLiteral(" "));
}

} // namespace

LogWriter::LogWriter(const QString& path) : file_(path) {
    file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
}

void LogWriter::write(const Attempt& a) {
    QStringList fields{outcomeWord(a.outcome), a.action, QString::number(a.micros)};
    if (a.outcome == Outcome::Done) {
        QStringList refs;
        for (const Ref& r : a.refs)
            refs << (r.added ? QStringLiteral("+") : QString()) + r.table + u'=' + r.code;
        for (const QString& d : a.writtenOff)
            refs << kWrittenOff + u'=' + d;
        fields << refs.join(u' ');
    } else {
        fields << oneLine(a.text);
    }
    file_.write((fields.join(u'\t') + u'\n').toUtf8());
    file_.flush();
}

QString logPath(const QString& folder, int station) {
    return QDir(folder).filePath(QStringLiteral("estacao-%1.log").arg(station));
}

QList<Attempt> readLogs(const QString& folder) {
    QList<Attempt> out;
    const QStringList names =
        QDir(folder).entryList({QStringLiteral("estacao-*.log")}, QDir::Files);
    for (const QString& name : names) {
        QFile f(QDir(folder).filePath(name));
        if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) continue;
        while (!f.atEnd()) {
            const QString line = QString::fromUtf8(f.readLine()).trimmed();
            const QStringList fields = line.split(u'\t');
            // A line cut short by a kill is not an attempt that was reported.
            if (fields.size() < 3) continue;
            Attempt a;
            a.outcome = fields[0] == kDone   ? Outcome::Done
                        : fields[0] == kBusy ? Outcome::Busy
                                             : Outcome::Failed;
            a.action = fields[1];
            a.micros = fields[2].toLongLong();
            const QString rest = fields.value(3);
            if (a.outcome != Outcome::Done) {
                a.text = rest;
            } else {
                for (const QString& token : rest.split(u' ', Qt::SkipEmptyParts)) {
                    const qsizetype eq = token.indexOf(u'=');
                    if (eq < 0) continue;
                    QString table = token.left(eq);
                    const QString code = token.mid(eq + 1);
                    if (table == kWrittenOff) {
                        a.writtenOff << code;
                        continue;
                    }
                    const bool added = table.startsWith(u'+');
                    if (added) table.remove(0, 1);
                    a.refs.append({table, code, added});
                }
            }
            out << a;
        }
    }
    return out;
}

double ActionFigures::percentileMs(double p) const {
    if (micros.isEmpty()) return 0;
    QList<qint64> sorted = micros;
    std::sort(sorted.begin(), sorted.end());
    // Nearest rank: the p99 of 100 samples is the 99th.
    const auto rank = qsizetype(std::ceil(p / 100.0 * double(sorted.size())));
    return double(sorted.at(std::clamp<qsizetype>(rank - 1, 0, sorted.size() - 1))) / 1000.0;
}

QHash<QString, ActionFigures> figures(const QList<Attempt>& attempts) {
    QHash<QString, ActionFigures> out;
    for (const Attempt& a : attempts) {
        ActionFigures& f = out[a.action];
        switch (a.outcome) {
        case Outcome::Done:
            ++f.done;
            f.micros << a.micros;
            break;
        case Outcome::Busy:
            ++f.busy;
            break;
        case Outcome::Failed:
            ++f.failed;
            break;
        }
    }
    return out;
}

} // namespace rtx::stations
