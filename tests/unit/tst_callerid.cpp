// Caller id without a device: the lines modems and boxes send, the DTMF tones of the line
// synthesised at 8 kHz and 44.1 kHz (noise, twist, music, short and cut tones), the
// frames the exchanges send, and the number in the form the client register keeps.

#include "callerid/core/callerid.h"
#include "callerid/core/dtmf.h"
#include "callerid/core/dtmfframe.h"
#include "callerid/core/modemlines.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <numbers>
#include <random>

using namespace rtx::callerid;
using namespace Qt::Literals::StringLiterals;

namespace {

// --- A telephone line, synthesised ------------------------------------------------------

double lowOf(QChar key) {
    const QString rows[4] = {u"123A"_s, u"456B"_s, u"789C"_s, u"*0#D"_s};
    const double f[4] = {697, 770, 852, 941};
    for (int r = 0; r < 4; ++r)
        if (rows[r].contains(key)) return f[r];
    return 0;
}
double highOf(QChar key) {
    const QString cols[4] = {u"147*"_s, u"2580"_s, u"369#"_s, u"ABCD"_s};
    const double f[4] = {1209, 1336, 1477, 1633};
    for (int c = 0; c < 4; ++c)
        if (cols[c].contains(key)) return f[c];
    return 0;
}

struct Line {
    int rate = 8000;
    double toneMs = 60;
    double pauseMs = 60;
    double amplitude = 0.25; // of the low tone
    double twistDb = 0;      // the high tone over the low
    double snrDb = 200;      // tones over white noise
    double deviation = 0;    // relative frequency error of both tones
    double extraHz = 0;      // a third tone under the key's two, as a fraction of the low one
    double extraShare = 0;
    unsigned seed = 1;
};

// Silence, the keys one after the other, silence; noise over all of it.
std::vector<float> keysAudio(const QString& keys, const Line& line) {
    const auto samples = [&](double ms) { return int(std::lround(ms * line.rate / 1000.0)); };
    std::vector<float> out(size_t(samples(150)), 0.0f);
    const double high = line.amplitude * std::pow(10.0, line.twistDb / 20.0);
    for (QChar key : keys) {
        const double fl = lowOf(key) * (1 + line.deviation);
        const double fh = highOf(key) * (1 + line.deviation);
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

// Fed in uneven pieces, as a sound card hands them over.
QString detectedKeys(const std::vector<float>& audio, int rate) {
    DtmfDetector detector(rate);
    std::vector<DtmfTone> tones;
    QRandomGenerator pieces(7);
    for (size_t at = 0; at < audio.size();) {
        const size_t n = std::min(audio.size() - at, size_t(1 + pieces.bounded(700)));
        detector.feed(audio.data() + at, qsizetype(n), tones);
        at += n;
    }
    QString keys;
    for (const DtmfTone& t : tones)
        keys += t.symbol;
    return keys;
}

QList<CallerInfo> decodedCalls(const std::vector<float>& audio, int rate) {
    DtmfCallerIdDecoder decoder(rate);
    QList<CallerInfo> calls;
    for (size_t at = 0; at < audio.size(); at += 480) {
        const size_t n = std::min(audio.size() - at, size_t(480));
        calls += decoder.feed(audio.data() + at, qsizetype(n));
    }
    return calls;
}

// Music: tempered notes with their harmonics and a decay, in the chords that lie nearest to
// keys (F5 with F#6 is almost 697 with 1477 Hz), a low chord whose harmonics fall in both
// groups, and a few chords drawn at random.
std::vector<float> music(int rate, unsigned seed) {
    std::vector<std::vector<int>> chords = {{8, 21}, {10, 19},   {12, 20}, {13, 22},
                                            {8, 19}, {-5, 3, 7}, {0, 4, 7}};
    std::mt19937 rng(seed);
    for (int i = 0; i < 20; ++i)
        chords.push_back({int(rng() % 36) - 12, int(rng() % 36) - 12});
    std::vector<float> out;
    for (const auto& chord : chords)
        for (int i = 0; i < int(rate * 0.35); ++i) {
            const double t = double(i) / rate;
            double s = 0;
            for (int semis : chord)
                for (int h = 1; h <= 6; ++h) {
                    const double f = 440.0 * std::pow(2.0, semis / 12.0) * h;
                    if (f < rate / 2.0)
                        s += std::exp(-3.0 * t) / h * std::sin(2 * std::numbers::pi * f * t + h);
                }
            out.push_back(float(0.15 * s));
        }
    return out;
}

// A modem's event in a few words: "ring", "reply OK", "noise", or the call's presentation,
// number and 'name'.
QString describe(const ModemEvent& e) {
    switch (e.kind) {
    case ModemEvent::Kind::Ring:
        return u"ring"_s;
    case ModemEvent::Kind::Reply:
        return u"reply "_s + e.text;
    case ModemEvent::Kind::Noise:
        return u"noise"_s;
    case ModemEvent::Kind::Call:
        break;
    }
    const char* const how[] = {"number", "withheld", "unavailable", "unreadable"};
    QStringList words{QString::fromLatin1(how[int(e.info.presentation)])};
    if (!e.info.number.isEmpty()) words << e.info.number;
    if (!e.info.name.isEmpty()) words << u'\'' + e.info.name + u'\'';
    return words.join(u' ');
}

} // namespace

class CallerIdTest : public QObject {
    Q_OBJECT

private slots:
    // --- The serial line ---------------------------------------------------------------

    // What the modem's lines say, fed in uneven pieces: blocks of fields (blanks around '='
    // or none, the trunk prefix kept, the name before or after the number), ended by the
    // name, the next line or the ring; P and O for no number; the single-line forms of the
    // boxes and GSM modems; the raw message, short or long.
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
        row("unavailable", "DATE = 1123\nTIME = 1405\nNMBR = O\nNAME = O\n", {u"unavailable O"_s});
        row("name first", "NAME = JOSE\r\nNMBR = 2122223333\r\n", {u"number 2122223333 'JOSE'"_s});
        row("date and time alone", "DATE = 1123\r\nTIME = 1405\r\nRING\r\n",
            {u"unavailable"_s, u"ring"_s});
        // The modem's chatter is no call and no noise (OK and ERROR answer our commands).
        row("chatter", "AT+VCID=1\r\r\nOK\r\nERROR\r\nNO CARRIER\r\n+VCID: 1\r\n\r\n",
            {u"reply OK"_s, u"reply ERROR"_s});
        // Noise in the middle of a block ends the block: its number still counts.
        row("noise in a block", "NMBR = 1133334444\r\n\x02\x03\r\n",
            {u"number 1133334444"_s, u"noise"_s});
        // A line that never ends is cut: noise.
        row("endless line", QByteArray(600, 'x'), {u"noise"_s});
        row("message waiting", "MESG = 060342020142\r\nRING\r\n", {u"ring"_s});
        row("no number in the field", "NMBR = #?!\r\nRING\r\n", {u"unreadable #?!"_s, u"ring"_s});
        row("ncid", "###DATE11231405...NMBR1133334444...NAMEJOAO+++\r\n",
            {u"number 1133334444 'JOAO'"_s});
        row("clip", "+CLIP: \"11987654321\",129,\"\",,\"ANA\",0\r\n",
            {u"number 11987654321 'ANA'"_s});
        row("clip withheld", "+CLIP: \"\",128,\"\",,\"\",1\r\n", {u"withheld"_s});
        row("labelled", "BINA: 3333-4444\r\n", {u"number 3333-4444"_s});
        row("labelled name", "CID=1133334444,PADARIA\r\n", {u"number 1133334444 'PADARIA'"_s});
        row("labelled private", "BINA: PRIVADO\r\n", {u"withheld PRIVADO"_s});
        row("dtmf frame", "A1133334444C\r\n", {u"number 1133334444"_s});
        row("dtmf withheld", "B10C\r\n", {u"withheld"_s});
        row("bare", "(11) 3333-4444\r\n", {u"number (11) 3333-4444"_s});
        const QByteArray sdmf = QByteArray("\x04\x12", 2) + "112314051133334444";
        row("mesg sdmf", "MESG = " + sdmf.toHex() + "\r\n", {u"number 1133334444"_s});
        const QByteArray mdmf = QByteArray("\x80\x1c\x01\x08", 4) + "11231405" +
                                QByteArray("\x02\x0a", 2) + "2122223333" +
                                QByteArray("\x07\x04", 2) + "LUIZ";
        row("mesg mdmf", "MESG = " + mdmf.toHex(' ') + "\r\n", {u"number 2122223333 'LUIZ'"_s});
        const QByteArray blocked = QByteArray("\x04\x09", 2) + "11231405P";
        row("mesg blocked", "MESG=" + blocked.toHex() + "\r\n", {u"withheld P"_s});
    }

    void modemLines() {
        QFETCH(QByteArray, capture);
        QFETCH(QStringList, events);
        for (int piece : {1, 3, 7, 64}) {
            ModemLineParser parser;
            QStringList said;
            for (qsizetype at = 0; at < capture.size(); at += piece)
                for (const ModemEvent& e : parser.feed(capture.mid(at, piece)))
                    said << describe(e);
            QCOMPARE(said, events);
            QVERIFY(!parser.callPending());
        }
    }

    // A block without a name ends, when the line goes quiet, by flush(), with its day and time.
    void quietBlockEndsByFlush() {
        ModemLineParser parser;
        QVERIFY(parser.feed("DATE=1123\r\nTIME=0930\r\nNMBR=33334444\r\n").isEmpty());
        QVERIFY(parser.callPending());
        auto quiet = parser.flush();
        QVERIFY(quiet);
        QCOMPARE(describe(*quiet), u"number 33334444"_s);
        QCOMPARE(quiet->info.date.month(), 11);
        QCOMPARE(quiet->info.date.day(), 23);
        QCOMPARE(quiet->info.time, QTime(9, 30));
        QVERIFY(!parser.flush());
    }

    // Garbage and unknown text are noise, shown printable.
    void garbageIsNoise() {
        ModemLineParser parser;
        const auto events =
            parser.feed(QByteArray("\x13\xfe\x01junk\x7f", 8) + "\r\nHELLO THERE\r\n");
        QCOMPARE(events.size(), 2);
        QCOMPARE(describe(events[1]), u"noise"_s);
        QVERIFY2(events[0].text.contains(u"<01>"_s), qPrintable(events[0].text));
    }

    // --- The line's tones --------------------------------------------------------------

    // Every key, at both rates (and 48 kHz), under 20 dB of noise: tones of the shortest
    // length sent, both twists the standards allow, each with a frequency error of 1.5 %.
    void detectsEveryKey() {
        struct Case {
            int rate;
            double twistDb, deviation, toneMs;
        };
        QList<Case> cases{{48000, -6.0, 0.01, 45.0}};
        for (int rate : {8000, 44100})
            cases << Case{rate, 0, 0, 40} << Case{rate, 3, 0.015, 60} << Case{rate, -7, -0.015, 60};
        const QString keys = u"0123456789*#ABCD1100"_s;
        for (const Case& c : cases)
            for (unsigned seed = 1; seed <= 4; ++seed) {
                const Line line{.rate = c.rate,
                                .toneMs = c.toneMs,
                                .pauseMs = 40,
                                .twistDb = c.twistDb,
                                .snrDb = 20,
                                .deviation = c.deviation,
                                .seed = seed};
                const QString got = detectedKeys(keysAudio(keys, line), c.rate);
                QVERIFY2(got == keys, qPrintable(u"%1 Hz, %2 dB, %3, seed %4: %5"_s.arg(c.rate)
                                                     .arg(c.twistDb)
                                                     .arg(c.deviation)
                                                     .arg(seed)
                                                     .arg(got)));
            }
    }

    // What is no key: tones too short, twist beyond the limits, tones too weak, and a short
    // drop inside one tone, which stays one key.
    void rejectsWhatIsNoKey() {
        for (int rate : {8000, 44100}) {
            for (const Line& no :
                 {Line{.rate = rate, .toneMs = 20}, Line{.rate = rate, .twistDb = 7},
                  Line{.rate = rate, .twistDb = -11}, Line{.rate = rate, .amplitude = 0.001}})
                QCOMPARE(detectedKeys(keysAudio(u"123"_s, no), rate), QString());
            const Line line{.rate = rate, .toneMs = 45, .pauseMs = 0};
            std::vector<float> dropped = keysAudio(u"5"_s, line);
            const std::vector<float> rest = keysAudio(u"5"_s, line);
            // Two halves of one tone with 5 ms of silence between them.
            std::vector<float> one(dropped.begin(), dropped.end() - int(0.25 * rate));
            one.insert(one.end(), size_t(rate * 0.005), 0.0f);
            one.insert(one.end(), rest.begin() + int(0.15 * rate), rest.end());
            QCOMPARE(detectedKeys(one, rate), u"5"_s);
        }
    }

    // A third tone with the key's two: under its limits the key stands, over them it is no
    // key (an instrument's note has a strong second harmonic; two keys at once stand out
    // too little over each other).
    void thirdToneLimits_data() {
        QTest::addColumn<double>("hz");
        QTest::addColumn<double>("share");
        QTest::addColumn<QString>("keys");
        QTest::newRow("weak harmonic of the high") << 2418.0 << 0.2 << u"1"_s;
        QTest::newRow("strong harmonic of the high") << 2418.0 << 0.5 << QString();
        QTest::newRow("low group, 8 dB under") << 941.0 << 0.4 << u"1"_s;
        QTest::newRow("low group, 3 dB under") << 941.0 << 0.7 << QString();
        QTest::newRow("high group, 8 dB under") << 1633.0 << 0.4 << u"1"_s;
        QTest::newRow("high group, 3 dB under") << 1633.0 << 0.7 << QString();
    }

    void thirdToneLimits() {
        QFETCH(double, hz);
        QFETCH(double, share);
        QFETCH(QString, keys);
        const Line line{.extraHz = hz, .extraShare = share};
        QCOMPARE(detectedKeys(keysAudio(u"1"_s, line), line.rate), keys);
    }

    // Music at both rates gives no key at all.
    void musicGivesNoKeys() {
        for (int rate : {8000, 44100})
            for (unsigned seed : {11u, 12u})
                QCOMPARE(detectedKeys(music(rate, seed), rate), QString());
    }

    // --- The frames --------------------------------------------------------------------

    void frames_data() {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<int>("presentation"); // -1: no call
        QTest::addColumn<QString>("number");
        const int number = int(Presentation::Number);
        QTest::newRow("A..C") << u"A1133334444C"_s << number << u"1133334444"_s;
        QTest::newRow("D..C") << u"D021133334444C"_s << number << u"021133334444"_s;
        QTest::newRow("A..#") << u"A33334444#"_s << number << u"33334444"_s;
        QTest::newRow("no start, #") << u"1133334444#"_s << number << u"1133334444"_s;
        QTest::newRow("B00C") << u"B00C"_s << int(Presentation::Unavailable) << QString();
        QTest::newRow("B10C") << u"B10C"_s << int(Presentation::Withheld) << QString();
        QTest::newRow("D1#") << u"D1#"_s << int(Presentation::Withheld) << QString();
        QTest::newRow("D3#") << u"D3#"_s << int(Presentation::Unavailable) << QString();
        QTest::newRow("AC") << u"AC"_s << int(Presentation::Unavailable) << QString();
        QTest::newRow("keys pressed") << u"123#"_s << -1 << QString();
        QTest::newRow("no end") << u"A1133334444"_s << -1 << QString();
        QTest::newRow("star inside") << u"A1133*34444C"_s << -1 << QString();
    }

    void frames() {
        QFETCH(QString, keys);
        QFETCH(int, presentation);
        QFETCH(QString, number);
        DtmfFrameAssembler frames;
        std::optional<CallerInfo> call;
        double at = 0;
        for (QChar k : keys) {
            QVERIFY(!call);
            call = frames.key(k, at += 120);
        }
        QCOMPARE(call.has_value(), presentation >= 0);
        if (!call) return;
        QCOMPARE(int(call->presentation), presentation);
        QCOMPARE(call->number, number);
    }

    // A framed number from the line's audio, at both rates, with noise and twist, decodes
    // exactly once; a frame cut in the middle gives nothing, also when keys follow later,
    // and does not spoil the next whole frame.
    void framedNumberFromAudio() {
        for (int rate : {8000, 44100}) {
            for (double twist : {0.0, -6.0, 3.0}) {
                const Line line{.rate = rate,
                                .twistDb = twist,
                                .snrDb = 20,
                                .seed = unsigned(rate) + unsigned(twist + 10)};
                const auto calls = decodedCalls(keysAudio(u"A11987654321C"_s, line), rate);
                QCOMPARE(calls.size(), 1);
                QCOMPARE(calls[0].number, u"11987654321"_s);
            }
            const Line line{.rate = rate, .snrDb = 20};
            std::vector<float> cut = keysAudio(u"A11987"_s, line);
            QVERIFY(decodedCalls(cut, rate).isEmpty());
            // The rest of the number a second later is no call either.
            std::vector<float> late = cut;
            late.insert(late.end(), size_t(rate), 0.0f);
            const auto tail = keysAudio(u"654321C"_s, line);
            late.insert(late.end(), tail.begin(), tail.end());
            QVERIFY(decodedCalls(late, rate).isEmpty());
            // A cut frame, then a whole one: the whole one alone.
            std::vector<float> both = cut;
            const auto whole = keysAudio(u"B10C"_s, line);
            both.insert(both.end(), whole.begin(), whole.end());
            const auto calls = decodedCalls(both, rate);
            QCOMPARE(calls.size(), 1);
            QCOMPARE(calls[0].presentation, Presentation::Withheld);
        }
    }

    // --- The number the register keeps -------------------------------------------------

    void normalisation_data() {
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("local");
        QTest::addColumn<bool>("withDdd");
        QTest::addColumn<QString>("kept");
        QTest::newRow("whole") << u"1133334444"_s << u"11"_s << true << u"1133334444"_s;
        QTest::newRow("local") << u"33334444"_s << u"11"_s << true << u"1133334444"_s;
        QTest::newRow("local mobile") << u"987654321"_s << u"11"_s << true << u"11987654321"_s;
        QTest::newRow("trunk") << u"02133334444"_s << u"11"_s << true << u"2133334444"_s;
        QTest::newRow("carrier") << u"0152133334444"_s << u"11"_s << true << u"2133334444"_s;
        QTest::newRow("+55") << u"+55 11 98765-4321"_s << u"11"_s << true << u"11987654321"_s;
        QTest::newRow("0055") << u"00551133334444"_s << u"11"_s << true << u"1133334444"_s;
        QTest::newRow("0800") << u"0800 777 1234"_s << u"11"_s << true << u"08007771234"_s;
        QTest::newRow("no DDD set") << u"33334444"_s << QString() << true << u"33334444"_s;
        QTest::newRow("kept local") << u"1133334444"_s << u"11"_s << false << u"33334444"_s;
        QTest::newRow("kept local trunk") << u"01133334444"_s << u"11"_s << false << u"33334444"_s;
        QTest::newRow("other area") << u"2133334444"_s << u"11"_s << false << u"2133334444"_s;
        QTest::newRow("extension") << u"2031"_s << u"11"_s << true << u"2031"_s;
        QTest::newRow("nothing") << u"P"_s << u"11"_s << true << QString();
    }

    void normalisation() {
        QFETCH(QString, sent);
        QFETCH(QString, local);
        QFETCH(bool, withDdd);
        QFETCH(QString, kept);
        QCOMPARE(normaliseNumber(sent, {local, withDdd}), kept);
    }

    // The call the office sees: the number kept, the reason when none came, and what the
    // operator is told then.
    void officeCalls() {
        const NumberPlan plan{u"11"_s, true};
        CallerInfo info;
        info.presentation = Presentation::Number;
        info.number = u"033334444"_s.mid(1);
        info.name = u" ANA "_s;
        Call call = officeCall(info, plan);
        QVERIFY(call.hasNumber());
        QCOMPARE(call.number, u"1133334444"_s);
        QCOMPARE(call.name, u"ANA"_s);
        QVERIFY(callNotice(call).isEmpty());

        info = numberValue(u"P"_s);
        call = officeCall(info, plan);
        QVERIFY(call.withheld());
        QVERIFY(!call.hasNumber());
        QVERIFY(callNotice(call).contains(u"privado"_s));

        info.presentation = Presentation::Number;
        info.number = u"---"_s;
        call = officeCall(info, plan);
        QCOMPARE(call.presentation, Presentation::Unreadable);
        QVERIFY(callNotice(call).contains(u"---"_s));
    }
};

QTEST_APPLESS_MAIN(CallerIdTest)
#include "tst_callerid.moc"
