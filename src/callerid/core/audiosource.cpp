#include "audiosource.h"

#include <QAudioSource>
#include <QMediaDevices>
#include <cstring>

namespace rtx::callerid {

using namespace Qt::Literals::StringLiterals;

std::vector<float> monoSamples(const QByteArray& bytes, const QAudioFormat& format) {
    std::vector<float> out;
    const int frame = format.bytesPerFrame();
    if (frame <= 0) return out;
    const qsizetype frames = bytes.size() / frame;
    out.reserve(size_t(frames));
    const char* p = bytes.constData();
    for (qsizetype i = 0; i < frames; ++i, p += frame) {
        switch (format.sampleFormat()) {
        case QAudioFormat::UInt8:
            out.push_back((quint8(*p) - 128) / 128.0f);
            break;
        case QAudioFormat::Int16: {
            qint16 v;
            std::memcpy(&v, p, sizeof v);
            out.push_back(v / 32768.0f);
            break;
        }
        case QAudioFormat::Int32: {
            qint32 v;
            std::memcpy(&v, p, sizeof v);
            out.push_back(float(v / 2147483648.0));
            break;
        }
        case QAudioFormat::Float: {
            float v;
            std::memcpy(&v, p, sizeof v);
            out.push_back(v);
            break;
        }
        default:
            out.push_back(0.0f);
        }
    }
    return out;
}

AudioCallerId::AudioCallerId(const BinaSettings& settings, QObject* parent)
    : CallerIdSource(parent), wanted_(settings.audioDevice), rate_(settings.sampleRate) {}

AudioCallerId::~AudioCallerId() {
    close();
}

QString AudioCallerId::where() const {
    return u"entrada de som \"%1\""_s.arg(device_.isNull() ? wanted_ : device_.description());
}

bool AudioCallerId::open() {
    devices_ = std::make_unique<QMediaDevices>();
    device_ = {};
    if (wanted_.isEmpty()) {
        device_ = QMediaDevices::defaultAudioInput();
    } else {
        for (const QAudioDevice& d : QMediaDevices::audioInputs())
            if (d.description().contains(wanted_, Qt::CaseInsensitive) ||
                d.id() == wanted_.toUtf8())
                device_ = d;
    }
    if (device_.isNull()) {
        emit problem(
            wanted_.isEmpty()
                ? u"Nenhuma entrada de som foi encontrada para ouvir a linha telefônica. "
                  u"Ligue o adaptador e confira dispositivo= do grupo [bina] do "
                  u"rotalix.ini."_s
                : u"A entrada de som \"%1\" não foi encontrada. Confira se o adaptador "
                  u"está ligado e dispositivo= do grupo [bina] do rotalix.ini."_s.arg(wanted_));
        return false;
    }
    QAudioFormat format;
    format.setSampleRate(rate_);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Int16);
    if (!device_.isFormatSupported(format)) format = device_.preferredFormat();
    format_ = format;
    decoder_ = std::make_unique<DtmfCallerIdDecoder>(format_.sampleRate());
    input_ = std::make_unique<QAudioSource>(device_, format_);
    connect(input_.get(), &QAudioSource::stateChanged, this, [this](QAudio::State state) {
        if (state == QAudio::StoppedState && input_ && input_->error() != QAudio::NoError) {
            const bool midCall = decoder_ && decoder_->inFrame();
            close();
            emit problem(midCall ? u"A %1 parou durante uma chamada; o número desta chamada não "
                                   u"chegou."_s.arg(where())
                                 : u"A %1 parou de funcionar."_s.arg(where()));
        }
    });
    stream_ = input_->start();
    if (!stream_) {
        emit problem(u"A %1 não pôde ser aberta."_s.arg(where()));
        input_.reset();
        return false;
    }
    connect(stream_.data(), &QIODevice::readyRead, this, &AudioCallerId::onReadable);
    connect(devices_.get(), &QMediaDevices::audioInputsChanged, this,
            &AudioCallerId::onDevicesChanged);
    return true;
}

void AudioCallerId::close() {
    if (input_) {
        input_->disconnect(this);
        input_->stop();
        input_.reset();
    }
    stream_.clear();
    devices_.reset();
}

void AudioCallerId::onReadable() {
    if (!stream_ || !decoder_) return;
    // Whole frames only; a piece of one stays for the next read.
    const int frame = format_.bytesPerFrame();
    if (frame <= 0) return;
    const qint64 whole = stream_->bytesAvailable() / frame * frame;
    const std::vector<float> samples = monoSamples(stream_->read(whole), format_);
    for (const CallerInfo& info : decoder_->feed(samples.data(), qsizetype(samples.size())))
        emit caller(info);
}

void AudioCallerId::onDevicesChanged() {
    for (const QAudioDevice& d : QMediaDevices::audioInputs())
        if (d.id() == device_.id()) return;
    const bool midCall = decoder_ && decoder_->inFrame();
    close();
    emit problem(midCall ? u"A %1 foi desligada durante uma chamada; o número desta chamada não "
                           u"chegou."_s.arg(where())
                         : u"A %1 foi desligada."_s.arg(where()));
}

} // namespace rtx::callerid
