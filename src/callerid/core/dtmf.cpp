#include "dtmf.h"

#include <cmath>
#include <numbers>

namespace rtx::callerid {

namespace {

constexpr double kLow[4] = {697.0, 770.0, 852.0, 941.0};
constexpr double kHigh[4] = {1209.0, 1336.0, 1477.0, 1633.0};
constexpr char16_t kKeys[4][4] = {{u'1', u'2', u'3', u'A'},
                                  {u'4', u'5', u'6', u'B'},
                                  {u'7', u'8', u'9', u'C'},
                                  {u'*', u'0', u'#', u'D'}};

// 102 samples at 8 kHz: wide enough apart to tell neighbouring tones (73 Hz) and short
// enough to time a 40 ms tone.
constexpr double kWindowSeconds = 102.0 / 8000.0;
constexpr double kRelativePeak = 3.98; // 6 dB over the other tones of the group
// The standards' twist (high tone up to 4 dB above the low, up to 8 dB below), with a decibel
// more for what a window this short cannot measure exactly: 5 and 9 dB.
constexpr double kReverseTwist = 3.16;
constexpr double kNormalTwist = 7.94;
constexpr double kToneShare = 0.75;     // of the window's energy in the two tones
constexpr double kHarmonicShare = 0.1;  // second harmonic 10 dB under the high tone
constexpr double kMinAmplitude = 0.003; // about -50 dB of full scale, each tone
constexpr int kWindowsToAccept = 4;     // about 32 ms of one key
constexpr int kWindowsToRelease = 4;    // about 20 ms without it

} // namespace

DtmfDetector::DtmfDetector(int sampleRate) : rate_(sampleRate > 0 ? sampleRate : 8000) {
    windowSize_ = std::max(16, int(std::lround(rate_ * kWindowSeconds)));
    hop_ = windowSize_ / 2;
    auto coefficient = [this](double f) {
        return 2.0 * std::cos(2.0 * std::numbers::pi * f / rate_);
    };
    for (double f : kLow)
        coefficients_.push_back(coefficient(f));
    for (double f : kHigh)
        coefficients_.push_back(coefficient(f));
    for (double f : kHigh)
        coefficients_.push_back(2.0 * f < rate_ / 2.0 ? coefficient(2.0 * f) : 0.0);
    pending_.reserve(size_t(windowSize_) * 4);
}

void DtmfDetector::reset() {
    pending_.clear();
    windowsDone_ = 0;
    candidate_ = held_ = QChar();
    run_ = misses_ = 0;
}

void DtmfDetector::feed(const float* samples, qsizetype count, std::vector<DtmfTone>& found) {
    out_ = &found;
    qsizetype used = 0;
    while (used < count) {
        const qsizetype room = windowSize_ - qsizetype(pending_.size());
        const qsizetype take = std::min(room, count - used);
        pending_.insert(pending_.end(), samples + used, samples + used + take);
        used += take;
        if (qsizetype(pending_.size()) < windowSize_) break;
        decide(analyse(pending_.data()));
        ++windowsDone_;
        pending_.erase(pending_.begin(), pending_.begin() + hop_);
    }
    out_ = nullptr;
}

QChar DtmfDetector::analyse(const float* x) const {
    const int n = windowSize_;
    double sum = 0, squares = 0;
    for (int i = 0; i < n; ++i) {
        sum += x[i];
        squares += double(x[i]) * x[i];
    }
    const double mean = sum / n;
    const double energy = squares - n * mean * mean;
    if (energy <= 0) return {};

    double power[12];
    for (int k = 0; k < 12; ++k) {
        const double c = coefficients_[size_t(k)];
        if (c == 0.0) {
            power[k] = 0;
            continue;
        }
        double s1 = 0, s2 = 0;
        for (int i = 0; i < n; ++i) {
            const double s0 = (x[i] - mean) + c * s1 - s2;
            s2 = s1;
            s1 = s0;
        }
        power[k] = s1 * s1 + s2 * s2 - c * s1 * s2;
    }

    int row = 0, col = 0;
    for (int i = 1; i < 4; ++i) {
        if (power[i] > power[row]) row = i;
        if (power[4 + i] > power[4 + col]) col = i;
    }
    const double low = power[row], high = power[4 + col];

    const double minPower = std::pow(kMinAmplitude * n / 2.0, 2);
    if (low < minPower || high < minPower) return {};
    if (high > low * kReverseTwist || high * kNormalTwist < low) return {};
    for (int i = 0; i < 4; ++i) {
        if (i != row && power[i] * kRelativePeak > low) return {};
        if (i != col && power[4 + i] * kRelativePeak > high) return {};
    }
    if (power[8 + col] > high * kHarmonicShare) return {};
    if (2.0 * (low + high) / (n * energy) < kToneShare) return {};
    return QChar(kKeys[row][col]);
}

void DtmfDetector::decide(QChar symbol) {
    if (!symbol.isNull() && symbol == candidate_) {
        ++run_;
    } else {
        candidate_ = symbol;
        run_ = symbol.isNull() ? 0 : 1;
        runStart_ = windowsDone_;
    }
    if (symbol.isNull() || symbol != held_)
        ++misses_;
    else
        misses_ = 0;
    if (!held_.isNull() && misses_ >= kWindowsToRelease) held_ = QChar();
    if (!symbol.isNull() && run_ >= kWindowsToAccept && symbol != held_) {
        held_ = symbol;
        misses_ = 0;
        out_->push_back({symbol, 1000.0 * double(runStart_ * hop_) / rate_});
    }
}

} // namespace rtx::callerid
