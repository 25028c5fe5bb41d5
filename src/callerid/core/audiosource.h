#pragma once
// The telephone line on the computer's sound input (a line adapter or a modem's audio out):
// the samples go to the DTMF decoder. When the input disappears (a USB sound card pulled) the
// operator is told.

#include "bina.h"
#include "dtmfframe.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QPointer>
#include <memory>

class QAudioSource;
class QIODevice;
class QMediaDevices;

namespace rtx::callerid {

// Samples of any format Qt gives, as floats of -1..1 from the first channel.
std::vector<float> monoSamples(const QByteArray& bytes, const QAudioFormat& format);

class AudioCallerId : public CallerIdSource {
    Q_OBJECT
public:
    explicit AudioCallerId(const BinaSettings& settings, QObject* parent = nullptr);
    ~AudioCallerId() override;

    bool open() override;
    void close() override;
    QString where() const override;

private:
    void onReadable();
    void onDevicesChanged();

    QString wanted_;
    int rate_;
    QAudioDevice device_;
    QAudioFormat format_;
    std::unique_ptr<QAudioSource> input_;
    QPointer<QIODevice> stream_;
    std::unique_ptr<QMediaDevices> devices_;
    std::unique_ptr<DtmfCallerIdDecoder> decoder_;
};

} // namespace rtx::callerid
