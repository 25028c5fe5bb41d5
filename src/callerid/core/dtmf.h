#pragma once
// The DTMF tones of a telephone line, found in its audio by a detector of our own: Goertzel
// filters on overlapping windows of about 12.75 ms at any sample rate (8 kHz from a modem's
// voice mode, 44.1 or 48 kHz from a sound card). A window holds a key when
//   - one tone of each group stands out (its group's others at least 6 dB below),
//   - the two tones carry most of the window's energy (speech and music spread theirs over
//     many frequencies, and fail),
//   - the high tone is at most 4 dB above or 8 dB below the low one (the twist the telephone
//     standards allow, give or take what the window measures), and its second harmonic is weak (an
//     instrument's note has a strong one),
//   - both are above the lowest level a line gives.
// A key counts once it holds about 32 ms (tones of 40 ms, the shortest the standards send, are
// always taken; tones under about 25 ms never are), and the same key counts again only after a
// pause of about 20 ms, so that a short drop in the line does not double a digit.

#include <QString>
#include <vector>

namespace rtx::callerid {

struct DtmfTone {
    QChar symbol; // '0'..'9', '*', '#', 'A'..'D'
    double atMs;  // where the tone began, from the first sample fed
};

class DtmfDetector {
public:
    explicit DtmfDetector(int sampleRate);

    int sampleRate() const { return rate_; }
    // Samples scaled to -1..1, in pieces of any size. Keys found are added to found.
    void feed(const float* samples, qsizetype count, std::vector<DtmfTone>& found);
    void reset();

private:
    QChar analyse(const float* window) const;
    void decide(QChar symbol);

    int rate_;
    int windowSize_;
    int hop_;
    std::vector<double> coefficients_; // 4 low, 4 high, 4 second harmonics of the high
    std::vector<float> pending_;
    qint64 windowsDone_ = 0; // windows analysed since the start
    QChar candidate_;
    int run_ = 0;
    qint64 runStart_ = 0;
    QChar held_;
    int misses_ = 0;
    std::vector<DtmfTone>* out_ = nullptr;
};

} // namespace rtx::callerid
