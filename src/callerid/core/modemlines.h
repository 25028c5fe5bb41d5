#pragma once
// What a modem or a caller-id box says on its serial line, read line by line. The forms seen
// in practice:
//   - the block of the voice modems after the first ring, one field a line, with or without
//     blanks around '=' and in any order: "DATE = 1123", "TIME = 1405", "NMBR = 1133334444",
//     "NAME = FULANO"; "NMBR = P" for a withheld number, "NMBR = O" for none available; and
//     "MESG = 04 12 ..." when the modem hands over the raw caller-id message;
//   - one line per call from the boxes: "###DATE11231405...NMBR1133334444...NAME+++",
//     "+CLIP: "1133334444",129" (GSM modems), "BINA: 1133334444", "CID=1133334444", the DTMF
//     frame as the box heard it ("A1133334444C"), or the bare number;
//   - the modem's own chatter (RING, OK, ERROR, the echo of our commands), which says nothing
//     about a call.
// Anything else is noise on the line and is told as such.

#include "callerid.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace rtx::callerid {

struct ModemEvent {
    enum class Kind { Ring, Call, Reply, Noise };
    Kind kind = Kind::Noise;
    CallerInfo info; // a call
    QString text;    // the noise, as printable text; the reply to a command, "OK" or "ERROR"
};

class ModemLineParser {
public:
    // Bytes as the port gives them, in pieces of any size; what the complete lines said.
    QList<ModemEvent> feed(const QByteArray& bytes);
    // One line, without its line end.
    QList<ModemEvent> line(const QString& text);
    // The call whose block has gone quiet: a modem that sends no NAME ends its block with the
    // number, so the service ends it after a short silence.
    std::optional<ModemEvent> flush();
    // A block of fields has begun and not yet ended.
    bool callPending() const { return block_.started; }

private:
    struct Block {
        bool started = false;
        bool number = false;
        bool name = false;
        CallerInfo info;
    };
    std::optional<ModemEvent> field(const QString& tag, const QString& value);
    std::optional<ModemEvent> endBlock();

    QByteArray partial_;
    Block block_;
};

// The number field's value: a number, or the words and letters that say there is none.
CallerInfo numberValue(const QString& value);

} // namespace rtx::callerid
