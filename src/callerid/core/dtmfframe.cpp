#include "dtmfframe.h"

namespace rtx::callerid {

namespace {

bool allDigits(const QString& s) {
    for (QChar c : s)
        if (c < u'0' || c > u'9') return false;
    return true;
}

CallerInfo withNumber(const QString& digits) {
    CallerInfo info;
    info.presentation = Presentation::Number;
    info.number = digits;
    return info;
}

CallerInfo without(Presentation why) {
    CallerInfo info;
    info.presentation = why;
    return info;
}

// A frame longer than this is no telephone number (15 digits at most, and the keys around).
constexpr int kMaxFrame = 20;

} // namespace

std::optional<CallerInfo> parseDtmfFrame(const QString& keys) {
    if (keys.size() < 2) return std::nullopt;
    const QChar end = keys.back();
    if (end != u'C' && end != u'#') return std::nullopt;
    const QChar start = keys.front();
    const QString body = keys.mid(1, keys.size() - 2);

    if (start == u'B' && end == u'C') {
        if (!allDigits(body) || body.isEmpty()) return std::nullopt;
        return without(body == QLatin1String("10") ? Presentation::Withheld
                                                   : Presentation::Unavailable);
    }
    if (start == u'D' && end == u'#' && body.size() == 1 && allDigits(body))
        return without(body == QLatin1String("1") ? Presentation::Withheld
                                                  : Presentation::Unavailable);
    if (start == u'A' || start == u'D') {
        if (!allDigits(body)) return std::nullopt;
        if (body.isEmpty()) return without(Presentation::Unavailable);
        return withNumber(body);
    }
    // No start key: digits ended by '#'.
    const QString digits = keys.left(keys.size() - 1);
    if (end == u'#' && digits.size() >= 8 && allDigits(digits)) return withNumber(digits);
    return std::nullopt;
}

std::optional<CallerInfo> DtmfFrameAssembler::key(QChar symbol, double atMs) {
    if (inFrame() && atMs - last_ > kMaxGapMs) frame_.clear();
    last_ = atMs;
    const char16_t k = symbol.unicode();
    if (k == u'A' || k == u'B' || k == u'D') {
        frame_ = symbol;
        return std::nullopt;
    }
    if (k >= u'0' && k <= u'9') {
        frame_ += symbol;
        if (frame_.size() > kMaxFrame) frame_.clear();
        return std::nullopt;
    }
    if ((k == u'C' || k == u'#') && inFrame()) {
        const auto info = parseDtmfFrame(frame_ + symbol);
        frame_.clear();
        return info;
    }
    frame_.clear();
    return std::nullopt;
}

QList<CallerInfo> DtmfCallerIdDecoder::feed(const float* samples, qsizetype count) {
    QList<CallerInfo> calls;
    tones_.clear();
    detector_.feed(samples, count, tones_);
    for (const DtmfTone& t : tones_)
        if (auto info = frames_.key(t.symbol, t.atMs)) calls << *info;
    return calls;
}

} // namespace rtx::callerid
