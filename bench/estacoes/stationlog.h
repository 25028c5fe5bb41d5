#pragma once
// What each station writes down as it works, one line per attempt, written and flushed only
// after the action's unit of work is committed (or has failed), so that a station killed
// in the middle of an action has reported nothing of it:
//
//   ok       <action> <microseconds> <refs>     refs: "+table=code" a row it added,
//                                               "table=code" a row it saved,
//                                               "baixa=document" a receivable it wrote off
//   ocupado  <action> <microseconds> <engine's text>   another station held the lock
//   falha    <action> <microseconds> <engine's text>   anything else: the run is red

#include <QFile>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace rtx::stations {

enum class Outcome { Done, Busy, Failed };

struct Ref {
    QString table;
    QString code;
    bool added = false;
};

struct Attempt {
    Outcome outcome = Outcome::Done;
    QString action;
    qint64 micros = 0;
    QList<Ref> refs;        // Done: the rows it saved
    QStringList writtenOff; // Done: the documents a write-off settled
    QString text;           // Busy, Failed: the engine's words
};

class LogWriter {
public:
    explicit LogWriter(const QString& path);
    void write(const Attempt& attempt);

private:
    QFile file_;
};

// The log of station k in the folder.
QString logPath(const QString& folder, int station);

// Every attempt of every station's log in the folder.
QList<Attempt> readLogs(const QString& folder);

// Per action: how many went through, how many found the lock taken, how many failed, and
// the times of those that went through.
struct ActionFigures {
    int done = 0;
    int busy = 0;
    int failed = 0;
    QList<qint64> micros;
    double percentileMs(double p) const;
};
QHash<QString, ActionFigures> figures(const QList<Attempt>& attempts);

} // namespace rtx::stations
