// Caller id without a device: the lines modems and boxes send, the line's DTMF tones
// synthesised, the frames the exchanges send, and the number the client register keeps.

#include "callerid/core/callerid.h"
#include "callerid/core/dtmf.h"
#include "callerid/core/dtmfframe.h"
#include "callerid/core/modemlines.h"

#include <QRandomGenerator>
#include <QtTest>

#include <array>
#include <cmath>
#include <numbers>
#include <random>

using namespace rtx::callerid;
using namespace Qt::Literals::StringLiterals;

namespace {

// The key's two tones, low and high.
std::pair<double, double> tonesOf(QChar key) {
    const qsizetype i = u"123A456B789C*0#D"_s.indexOf(key);
    return {std::array{697.0, 770.0, 852.0, 941.0}[i / 4],
            std::array{1209.0, 1336.0, 1477.0, 1633.0}[i % 4]};
}

struct Line {
    int rate = 8000;
    double toneMs = 60;
    double pauseMs = 60;
    double amplitude = 0.25; // of the low tone
    double twistDb = 0;      // the high tone over the low
    double snrDb = 200;      // tones over white noise
    double deviation = 0;    // relative frequency error of both tones
    double extraHz = 0;      // a third tone beside the key's two,
    double extraShare = 0;   // as a share of the low one
    unsigned seed = 1;
};

// Silence, the keys one after the other, silence; noise over all of it.
std::vector<float> keysAudio(const QString& keys, const Line& line) {
    const auto samples = [&](double ms) { return int(std::lround(ms * line.rate / 1000.0)); };
    std::vector<float> out(size_t(samples(150)), 0.0f);
    const double high = line.amplitude * std::pow(10.0, line.twistDb / 20.0);
    for (QChar key : keys) {
        const auto [low, high_] = tonesOf(key);
        const double fl = low * (1 + line.deviation), fh = high_ * (1 + line.deviation);
        const int n = samples(line.toneMs);
        for (int i = 0; i < n; ++i) {
            const double t = double(i) / line.rate;
            out.push_back(float(line.amplitude * std::sin(2 * std::numbers::pi * fl * t) +
                                high * std::sin(2 * std::numbers::pi * fh * t + 1.0) +
                                line.extraShare * line.amplitude *
                                    std::sin(2 * std::numbers::pi * line.extraHz * t)));
        }
        out.insert(out.end(), size_t(samples(line.pauseMs)), 0.0f);
    }
    out.insert(out.end(), size_t(samples(250)), 0.0f);
    const double signalPower = (line.amplitude * line.amplitude + high * high) / 2;
    const double sigma = std::sqrt(signalPower / std::pow(10.0, line.snrDb / 10.0));
    std::mt19937 rng(line.seed);
    std::normal_distribution<double> noise(0.0, sigma);
    for (float& s : out)
        s = float(s + noise(rng));
    return out;
}

// What the line says, fed in uneven pieces as a sound card hands them over: the keys the
// detector heard, and the calls the decoder framed.
struct Heard {
    QString keys;
    QList<CallerInfo> calls;
};
Heard heard(const std::vector<float>& audio, int rate) {
    DtmfDetector detector(rate);
    DtmfCallerIdDecoder decoder(rate);
    std::vector<DtmfTone> tones;
    Heard out;
    QRandomGenerator pieces(7);
    for (size_t at = 0, n = 0; at < audio.size(); at += n) {
        n = std::min(audio.size() - at, size_t(1 + pieces.bounded(700)));
        detector.feed(audio.data() + at, qsizetype(n), tones);
        out.calls += decoder.feed(audio.data() + at, qsizetype(n));
    }
    for (const DtmfTone& t : tones)
        out.keys += t.symbol;
    return out;
}
// A call in a few words: its presentation, number and 'name'.
QString said(const CallerInfo& info) {
    QStringList words{QStringList{u"number"_s, u"withheld"_s, u"unavailable"_s,
                                  u"unreadable"_s}[int(info.presentation)]};
    if (!info.number.isEmpty()) words << info.number;
    if (!info.name.isEmpty()) words << u'\'' + info.name + u'\'';
    return words.join(u' ');
}

// A modem's event in a few words: "ring", "reply OK", "noise", or the call's.
QString describe(const ModemEvent& e) {
    using Kind = ModemEvent::Kind;
    return e.kind == Kind::Call    ? said(e.info)
           : e.kind == Kind::Ring  ? u"ring"_s
           : e.kind == Kind::Reply ? u"reply "_s + e.text
                                   : u"noise"_s;
}

} // namespace

class CallerIdTest : public QObject {
    Q_OBJECT

private slots:
    // What the modem's lines say, fed in uneven pieces: blocks of fields ended by the name,
    // the next line or the ring; P for no number; the single-line forms of the boxes and
    // GSM modems; the raw message; the modem's chatter; noise.
    void modemLines_data() {
        QTest::addColumn<QByteArray>("capture");
        QTest::addColumn<QStringList>("events");
        const auto row = [](const char* name, const QByteArray& capture,
                            const QStringList& events) {
            QTest::newRow(name) << capture << events;
        };
        row("block with name",
            "\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\nNMBR = 01133334444\r\nNAME = MARIA "
            "SILVA\r\n\r\nRING\r\n",
            {u"ring"_s, u"number 01133334444 'MARIA SILVA'"_s, u"ring"_s});
        row("withheld", "NMBR = P\r\nRING\r\n", {u"withheld P"_s, u"ring"_s});
        // Chatter is no call and no noise (OK and ERROR answer our commands).
        row("chatter", "AT+VCID=1\r\r\nOK\r\nERROR\r\nNO CARRIER\r\n+VCID: 1\r\n\r\n",
            {u"reply OK"_s, u"reply ERROR"_s});
        // Noise in the middle of a block ends the block: its number still counts.
        row("noise in a block", "NMBR = 1133334444\r\n\x02\x03\r\n",
            {u"number 1133334444"_s, u"noise"_s});
        row("ncid", "###DATE11231405...NMBR1133334444...NAMEJOAO+++\r\n",
            {u"number 1133334444 'JOAO'"_s});
        row("clip", "+CLIP: \"11987654321\",129,\"\",,\"ANA\",0\r\n",
            {u"number 11987654321 'ANA'"_s});
        row("dtmf frame", "A1133334444C\r\n", {u"number 1133334444"_s});
        const QByteArray mdmf = QByteArray("\x80\x1c\x01\x08", 4) + "11231405" +
                                QByteArray("\x02\x0a", 2) + "2122223333" +
                                QByteArray("\x07\x04", 2) + "LUIZ";
        row("mesg mdmf", "MESG = " + mdmf.toHex(' ') + "\r\n", {u"number 2122223333 'LUIZ'"_s});
    }

    void modemLines() {
        QFETCH(QByteArray, capture);
        QFETCH(QStringList, events);
        for (int piece : {1, 7, 64}) {
            ModemLineParser parser;
            QStringList said;
            for (qsizetype at = 0; at < capture.size(); at += piece)
                for (const ModemEvent& e : parser.feed(capture.mid(at, piece)))
                    said << describe(e);
            QCOMPARE(said, events);
            QVERIFY(!parser.callPending());
        }
    }

    // Every key, at both rates (and 48 kHz), under 20 dB of noise: tones of the shortest
    // length sent, both twists the standards allow, each with a frequency error of 1.5 %.
    void detectsEveryKey() {
        QList<Line> lines{{.rate = 48000, .toneMs = 45, .twistDb = -6, .deviation = 0.01}};
        for (int rate : {8000, 44100})
            lines << Line{.rate = rate, .toneMs = 40}
                  << Line{.rate = rate, .twistDb = 3, .deviation = 0.015}
                  << Line{.rate = rate, .twistDb = -7, .deviation = -0.015}
                  << Line{.rate = rate, .extraHz = 1633, .extraShare = 0.4}; // a weak third
        const QString keys = u"0123456789*#ABCD1100"_s;
        for (Line line : lines)
            for (unsigned seed = 1; seed <= 3; ++seed) {
                line.pauseMs = 40;
                line.snrDb = 20;
                line.seed = seed;
                QCOMPARE(heard(keysAudio(keys, line), line.rate).keys, keys);
            }
    }

    // What is no key: tones too short, twist beyond the limits, too weak, a strong third tone
    // (a harmonic, two keys at once); and a short drop inside one tone stays one key.
    void rejectsWhatIsNoKey() {
        for (int rate : {8000, 44100}) {
            for (const Line& no :
                 {Line{.rate = rate, .toneMs = 20}, Line{.rate = rate, .twistDb = 7},
                  Line{.rate = rate, .twistDb = -11}, Line{.rate = rate, .amplitude = 0.001},
                  Line{.rate = rate, .extraHz = 2418, .extraShare = 0.5},
                  Line{.rate = rate, .extraHz = 941, .extraShare = 0.7}})
                QCOMPARE(heard(keysAudio(u"1"_s, no), rate).keys, QString());

            const Line line{.rate = rate, .toneMs = 45, .pauseMs = 0};
            const std::vector<float> tone = keysAudio(u"5"_s, line);
            // Two halves of one tone with 5 ms of silence between them.
            std::vector<float> one(tone.begin(), tone.end() - int(0.25 * rate));
            one.insert(one.end(), size_t(rate * 0.005), 0.0f);
            one.insert(one.end(), tone.begin() + int(0.15 * rate), tone.end());
            QCOMPARE(heard(one, rate).keys, u"5"_s);
        }
    }

    // The frames the exchanges send, key by key: a call at the frame's end only.
    void frames() {
        const auto framed = [](const QString& keys) {
            DtmfFrameAssembler frames;
            QStringList calls;
            double at = 0;
            for (QChar k : keys)
                if (const auto call = frames.key(k, at += 120)) calls << said(*call);
            return calls.join(u';');
        };
        QCOMPARE(framed(u"D021133334444C"_s), u"number 021133334444"_s);
        QCOMPARE(framed(u"1133334444#"_s), u"number 1133334444"_s);
        QCOMPARE(framed(u"D1#"_s), u"withheld"_s);
        QCOMPARE(framed(u"123#"_s) + framed(u"A1133*34444C"_s), QString()); // keys pressed
    }

    // A framed number from the line's audio decodes exactly once; a frame cut in the middle
    // gives nothing, also when keys follow later, and does not spoil the next whole frame.
    void framedNumberFromAudio() {
        for (int rate : {8000, 44100}) {
            const Line line{.rate = rate, .twistDb = -6, .snrDb = 20, .seed = unsigned(rate)};
            auto calls = heard(keysAudio(u"A11987654321C"_s, line), rate).calls;
            QCOMPARE(calls.size() == 1 ? calls[0].number : QString(), u"11987654321"_s);
            std::vector<float> cut = keysAudio(u"A11987"_s, line);
            std::vector<float> late = cut;
            late.insert(late.end(), size_t(rate), 0.0f); // the rest a second later
            const auto tail = keysAudio(u"654321C"_s, line);
            late.insert(late.end(), tail.begin(), tail.end());
            QVERIFY(heard(late, rate).calls.isEmpty());
            const auto whole = keysAudio(u"B10C"_s, line);
            cut.insert(cut.end(), whole.begin(), whole.end());
            calls = heard(cut, rate).calls;
            QVERIFY(calls.size() == 1 && calls[0].presentation == Presentation::Withheld);
        }
    }

    // The number the register keeps.
    void normalisation() {
        const NumberPlan plan{u"11"_s, true};
        QCOMPARE(normaliseNumber(u"987654321"_s, plan), u"11987654321"_s);
        QCOMPARE(normaliseNumber(u"+55 11 98765-4321"_s, plan), u"11987654321"_s);
        QCOMPARE(normaliseNumber(u"0152133334444"_s, plan), u"2133334444"_s); // carrier code
        QCOMPARE(normaliseNumber(u"2031"_s, plan), u"2031"_s);                // an extension
        QCOMPARE(normaliseNumber(u"33334444"_s, {}), u"33334444"_s);          // no DDD set
        QCOMPARE(normaliseNumber(u"01133334444"_s, {u"11"_s, false}), u"33334444"_s);
    }
};

QTEST_APPLESS_MAIN(CallerIdTest)
#include "tst_callerid.moc"
