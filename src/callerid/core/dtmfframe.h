#pragma once
// The caller id that Brazilian exchanges send in DTMF before the first ring (or between the
// first two): a start key, the number, an end key. The forms seen on the lines:
//   A<number>C   the caller's number (the common form)
//   D<number>C   the same, from exchanges that start with D
//   B00C         no number: the network has none to give
//   B10C         no number: the caller withheld it
//   A<number>#   and D1#, D2#, D3# (withheld, from abroad, not available): the '#'-ended
//                variant, and <number># with no start key at all
// Keys that stand alone (someone pressing keys during a call), a frame whose keys come too
// far apart, or one cut before its end key give nothing.

#include "callerid.h"
#include "dtmf.h"

#include <QList>
#include <QString>
#include <optional>

namespace rtx::callerid {

// One whole frame as its keys, start and end included ("A1133334444C"); nothing when the keys
// are no caller-id frame.
std::optional<CallerInfo> parseDtmfFrame(const QString& keys);

// Puts the keys of the line together into frames.
class DtmfFrameAssembler {
public:
    // Longest time between the starts of two keys of one frame: the exchanges send a key
    // every 100 to 200 ms.
    static constexpr double kMaxGapMs = 600.0;

    // One key at its time; the call when it ended a frame.
    std::optional<CallerInfo> key(QChar symbol, double atMs);
    bool inFrame() const { return !frame_.isEmpty(); }
    void reset() { frame_.clear(); }

private:
    QString frame_;
    double last_ = 0;
};

// The line's audio to calls: the tone detector and the frames together.
class DtmfCallerIdDecoder {
public:
    explicit DtmfCallerIdDecoder(int sampleRate) : detector_(sampleRate) {}
    QList<CallerInfo> feed(const float* samples, qsizetype count);
    int sampleRate() const { return detector_.sampleRate(); }
    bool inFrame() const { return frames_.inFrame(); }

private:
    DtmfDetector detector_;
    DtmfFrameAssembler frames_;
    std::vector<DtmfTone> tones_;
};

} // namespace rtx::callerid
