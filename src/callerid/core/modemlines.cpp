#include "modemlines.h"

#include "dtmfframe.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace rtx::callerid {

namespace {

using namespace Qt::Literals::StringLiterals;

const QStringList kWithheld{u"P"_s,          u"PRIVATE"_s,   u"PRIVADO"_s,  u"RESTRITO"_s,
                            u"RESTRICTED"_s, u"ANONYMOUS"_s, u"WITHHELD"_s, u"BLOCKED"_s};
const QStringList kUnavailable{u"O"_s,
                               u"OUT OF AREA"_s,
                               u"OUT-OF-AREA"_s,
                               u"UNAVAILABLE"_s,
                               u"UNKNOWN"_s,
                               u"INDISPONIVEL"_s,
                               u"INDISPONÍVEL"_s,
                               u"NAO DISPONIVEL"_s,
                               u"NÃO DISPONÍVEL"_s,
                               u"NO NUMBER"_s,
                               u"SEM NUMERO"_s,
                               u"SEM NÚMERO"_s};

// Lines a modem sends that say nothing about the caller.
const QStringList kChatter{u"NO CARRIER"_s,   u"BUSY"_s,      u"NO DIALTONE"_s,
                           u"NO DIAL TONE"_s, u"NO ANSWER"_s, u"RINGING"_s};

QString decodeLine(const QByteArray& bytes) {
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (utf8.hasError()) text = QString::fromLatin1(bytes);
    return text;
}

bool printable(const QString& s) {
    for (QChar c : s)
        if (!c.isPrint() && c != u'\t') return false;
    return true;
}

// Control characters shown as <1B>, so a notice can quote a garbled line.
QString shown(const QString& s) {
    QString out;
    for (QChar c : s.left(60)) {
        if (c.isPrint())
            out += c;
        else
            out += u"<%1>"_s.arg(uint(c.unicode()), 2, 16, QChar(u'0')).toUpper();
    }
    return out;
}

ModemEvent callEvent(const CallerInfo& info) {
    ModemEvent e;
    e.kind = ModemEvent::Kind::Call;
    e.info = info;
    return e;
}

// "MMDD" and "HHMM" as the modems send them; the year is the current one.
QDate monthDay(const QString& s) {
    if (s.size() != 4) return {};
    return QDate(QDate::currentDate().year(), s.left(2).toInt(), s.mid(2).toInt());
}
QTime hourMinute(const QString& s) {
    if (s.size() != 4) return {};
    return QTime(s.left(2).toInt(), s.mid(2).toInt());
}

// The caller-id message itself (the modem's unformatted mode): single data message 0x04
// (date and time, then the number or 'O'/'P') or multiple data message 0x80 (parameters 01
// date and time, 02 number, 04 why no number, 07 name, 08 why no name).
std::optional<CallerInfo> message(const QString& hex) {
    const QByteArray bytes = QByteArray::fromHex(hex.toLatin1());
    if (bytes.size() < 3) return std::nullopt;
    const auto type = quint8(bytes[0]);
    const int length = quint8(bytes[1]);
    const QByteArray body = bytes.mid(2, length);
    CallerInfo info;
    bool any = false;
    if (type == 0x04) {
        if (body.size() < 8) return std::nullopt;
        CallerInfo single = numberValue(QString::fromLatin1(body.mid(8)));
        single.date = monthDay(QString::fromLatin1(body.left(4)));
        single.time = hourMinute(QString::fromLatin1(body.mid(4, 4)));
        return single;
    }
    if (type != 0x80) return std::nullopt;
    for (int i = 0; i + 1 < body.size();) {
        const auto param = quint8(body[i]);
        const int len = quint8(body[i + 1]);
        const QString value = QString::fromLatin1(body.mid(i + 2, len));
        i += 2 + len;
        switch (param) {
        case 0x01:
            info.date = monthDay(value.left(4));
            info.time = hourMinute(value.mid(4, 4));
            break;
        case 0x02:
        case 0x04: {
            const CallerInfo n = numberValue(value);
            info.presentation = n.presentation;
            info.number = n.number;
            any = true;
            break;
        }
        case 0x07:
            info.name = value;
            break;
        default:
            break;
        }
    }
    if (!any) return std::nullopt;
    return info;
}

} // namespace

CallerInfo numberValue(const QString& value) {
    CallerInfo info;
    const QString v = value.trimmed();
    const QString upper = v.toUpper();
    static const QRegularExpression numberLike(u"^\\+?[0-9(][0-9 .()\\-]*$"_s);
    if (v.isEmpty() || kUnavailable.contains(upper))
        info.presentation = Presentation::Unavailable;
    else if (kWithheld.contains(upper))
        info.presentation = Presentation::Withheld;
    else if (numberLike.match(v).hasMatch())
        info.presentation = Presentation::Number;
    else
        info.presentation = Presentation::Unreadable;
    info.number = v;
    return info;
}

QList<ModemEvent> ModemLineParser::feed(const QByteArray& bytes) {
    QList<ModemEvent> events;
    partial_ += bytes;
    qsizetype from = 0;
    for (;;) {
        const qsizetype cr = partial_.indexOf('\r', from);
        const qsizetype lf = partial_.indexOf('\n', from);
        qsizetype end = cr < 0 ? lf : (lf < 0 ? cr : std::min(cr, lf));
        if (end < 0) break;
        events += line(decodeLine(partial_.mid(from, end - from)));
        from = end + 1;
    }
    partial_.remove(0, from);
    // A device that never ends its lines is noise, not a line to wait for forever.
    if (partial_.size() > 512) {
        ModemEvent noise;
        noise.text = shown(decodeLine(partial_));
        partial_.clear();
        events << noise;
    }
    return events;
}

std::optional<ModemEvent> ModemLineParser::endBlock() {
    if (!block_.started) return std::nullopt;
    CallerInfo info = block_.info;
    const bool number = block_.number;
    block_ = {};
    // Date and time with no number field: the network gave no number.
    if (!number) info.presentation = Presentation::Unavailable;
    return callEvent(info);
}

std::optional<ModemEvent> ModemLineParser::flush() {
    return endBlock();
}

std::optional<ModemEvent> ModemLineParser::field(const QString& tag, const QString& value) {
    // A raw message that is no call (a message-waiting light) begins no block.
    if (tag == u"MESG"_s) {
        const auto info = message(QString(value).remove(u' '));
        if (!info) return std::nullopt;
        block_.started = true;
        block_.info = *info;
        block_.number = true;
        return endBlock();
    }
    block_.started = true;
    if (tag == u"DATE"_s) {
        const QString v = value.trimmed();
        block_.info.date = monthDay(v.left(4));
        if (v.size() == 8) block_.info.time = hourMinute(v.mid(4));
    } else if (tag == u"TIME"_s) {
        block_.info.time = hourMinute(value.trimmed());
    } else if (tag == u"NMBR"_s) {
        const CallerInfo n = numberValue(value);
        block_.info.presentation = n.presentation;
        block_.info.number = n.number;
        block_.number = true;
        if (block_.name) return endBlock();
    } else if (tag == u"NAME"_s) {
        const QString v = value.trimmed();
        if (v != u"O"_s && v != u"P"_s) block_.info.name = v;
        block_.name = true;
        if (block_.number) return endBlock();
    }
    return std::nullopt;
}

QList<ModemEvent> ModemLineParser::line(const QString& raw) {
    QList<ModemEvent> events;
    const QString text = raw.trimmed();
    if (text.isEmpty()) return events;
    const QString upper = text.toUpper();

    // Fields of the modem block.
    static const QRegularExpression fieldLine(
        u"^(DATE|TIME|NMBR|NAME|MESG|DDN_NMBR)\\s*=\\s*(.*)$"_s);
    if (printable(text)) {
        if (const auto m = fieldLine.match(upper); m.hasMatch()) {
            const QString tag = m.captured(1);
            if (tag == u"DDN_NMBR"_s) return events; // the number called, ours
            const QString value = text.mid(m.capturedStart(2));
            if (auto e = field(tag, value)) events << *e;
            return events;
        }
    }

    // Any other line ends a block that was waiting for its name.
    if (auto e = endBlock()) events << *e;

    if (!printable(text)) {
        ModemEvent noise;
        noise.text = shown(text);
        events << noise;
        return events;
    }
    if (upper == u"RING"_s) {
        ModemEvent ring;
        ring.kind = ModemEvent::Kind::Ring;
        events << ring;
        return events;
    }
    if (upper == u"OK"_s || upper == u"ERROR"_s || upper.startsWith(u"+CME ERROR"_s)) {
        ModemEvent reply;
        reply.kind = ModemEvent::Kind::Reply;
        reply.text = upper == u"OK"_s ? upper : u"ERROR"_s;
        events << reply;
        return events;
    }
    if (kChatter.contains(upper) || upper.startsWith(u"AT"_s) || upper.startsWith(u"CONNECT"_s))
        return events;

    // One line per call: "###DATE11231405...NMBR1133334444...NAMEFULANO+++".
    if (upper.startsWith(u"###"_s) || upper.contains(u"...NMBR"_s)) {
        QString body = text;
        while (body.startsWith(u'#'))
            body.remove(0, 1);
        while (body.endsWith(u'+'))
            body.chop(1);
        Block saved = block_;
        block_ = {};
        QList<ModemEvent> found;
        for (const QString& piece : body.split(u"..."_s, Qt::SkipEmptyParts)) {
            const QString tag = piece.left(4).toUpper();
            if (tag == u"DATE"_s || tag == u"NMBR"_s || tag == u"NAME"_s || tag == u"TIME"_s)
                if (auto e = field(tag, piece.mid(4))) found << *e;
        }
        if (auto e = endBlock()) found << *e;
        block_ = saved;
        if (!found.isEmpty()) {
            events += found;
            return events;
        }
    }

    // GSM modems: +CLIP: "1133334444",129,"",,"NAME",0 — the last figure 1 withheld, 2 none.
    static const QRegularExpression clip(
        u"^\\+CLIP:\\s*\"([^\"]*)\"(?:,\\s*(\\d+))?(?:,[^,]*,[^,]*,\\s*\"([^\"]*)\"(?:,\\s*(\\d))?)?"_s);
    if (const auto m = clip.match(upper); m.hasMatch()) {
        CallerInfo info = numberValue(m.captured(1));
        if (m.captured(4) == u"1"_s) info.presentation = Presentation::Withheld;
        if (m.captured(4) == u"2"_s) info.presentation = Presentation::Unavailable;
        if (info.presentation != Presentation::Number) info.number.clear();
        const auto nameAt = m.capturedStart(3);
        if (nameAt >= 0) info.name = text.mid(nameAt, m.capturedLength(3));
        events << callEvent(info);
        return events;
    }
    if (upper.startsWith(u'+')) return events; // answers to our commands (+VCID: 1)

    // Boxes that label the number.
    static const QRegularExpression labelled(
        u"^(?:BINA|CID|CALLER\\s*ID|CLIP|NUMERO|NÚMERO|NUMBER|TEL|TELEFONE)\\s*[:=]\\s*(.*)$"_s);
    if (const auto m = labelled.match(upper); m.hasMatch()) {
        QString value = text.mid(m.capturedStart(1));
        QString name;
        const qsizetype comma = value.indexOf(QRegularExpression(u"[,;]"_s));
        if (comma >= 0) {
            name = value.mid(comma + 1).trimmed();
            value = value.left(comma);
        }
        CallerInfo info = numberValue(value);
        info.name = name;
        events << callEvent(info);
        return events;
    }

    // The DTMF frame as a box heard it.
    static const QRegularExpression frame(u"^[ABD][0-9]*[C#]$"_s);
    if (frame.match(upper).hasMatch()) {
        if (const auto info = parseDtmfFrame(upper)) {
            events << callEvent(*info);
            return events;
        }
    }

    // The bare number.
    static const QRegularExpression bare(u"^\\+?[0-9(][0-9 .()\\-]{6,}$"_s);
    if (bare.match(text).hasMatch()) {
        events << callEvent(numberValue(text));
        return events;
    }

    ModemEvent noise;
    noise.text = shown(text);
    events << noise;
    return events;
}

} // namespace rtx::callerid
