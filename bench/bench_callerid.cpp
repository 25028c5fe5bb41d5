// Caller id from the line's audio: one second of 8 kHz audio holding a whole framed number
// under noise, decoded by the tone detector and the frames, against a budget of 2 ms (the
// figure beside it is how many times faster than the line talks); and how long after the end
// key begins the call is known, in audio time.

#include "bench.h"
#include "callerid/core/dtmfframe.h"

#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <vector>

using namespace rtx::bench;
using namespace rtx::callerid;

namespace {

constexpr int kRate = 8000;

// The keys of "A11987654321C", 45 ms each with 30 ms between them (as fast as the exchanges
// send), under noise at 20 dB; with silence to make one second.
std::vector<float> oneSecond(double* endKeyAtMs) {
    const char* keys = "A11987654321C";
    const char* rows[4] = {"123A", "456B", "789C", "*0#D"};
    const double low[4] = {697, 770, 852, 941};
    const double high[4] = {1209, 1336, 1477, 1633};
    std::vector<float> audio(size_t(kRate / 50), 0.0f);
    for (const char* k = keys; *k; ++k) {
        double fl = 0, fh = 0;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                if (rows[r][c] == *k) fl = low[r], fh = high[c];
        if (!k[1]) *endKeyAtMs = 1000.0 * double(audio.size()) / kRate;
        for (int i = 0; i < kRate * 45 / 1000; ++i) {
            const double t = double(i) / kRate;
            audio.push_back(float(0.2 * std::sin(2 * std::numbers::pi * fl * t) +
                                  0.2 * std::sin(2 * std::numbers::pi * fh * t)));
        }
        audio.insert(audio.end(), size_t(kRate * 30 / 1000), 0.0f);
    }
    audio.resize(size_t(kRate), 0.0f);
    std::mt19937 rng(5);
    std::normal_distribution<double> noise(0.0, std::sqrt(0.04 / 100));
    for (float& s : audio)
        s = float(s + noise(rng));
    return audio;
}

} // namespace

RTX_BENCH("bina") {
    double endKeyAtMs = 0;
    const std::vector<float> audio = oneSecond(&endKeyAtMs);
    int found = 0;
    const double ms = medianMs(50, [&] {
        DtmfCallerIdDecoder decoder(kRate);
        found = int(decoder.feed(audio.data(), qsizetype(audio.size())).size());
    });
    report(QStringLiteral("DTMF: 1 s de áudio a 8 kHz com um número (%1 chamada)").arg(found), ms,
           2.0);
    std::printf("%-70s %10.0fx o tempo real\n", "  razão", 1000.0 / ms);

    // Fed 10 ms at a time, as a sound card gives it: where in the audio the call is known.
    DtmfCallerIdDecoder decoder(kRate);
    double knownAtMs = -1;
    for (size_t at = 0; at < audio.size() && knownAtMs < 0; at += kRate / 100) {
        if (!decoder.feed(audio.data() + at, kRate / 100).isEmpty())
            knownAtMs = 1000.0 * double(at + kRate / 100) / kRate;
    }
    std::printf("%-70s %10.1f ms de áudio\n", "  da tecla final à chamada", knownAtMs - endKeyAtMs);
    std::fflush(stdout);
}
