#include "serialsource.h"

#include <QDateTime>
#include <QFileInfo>

namespace rtx::callerid {

using namespace Qt::Literals::StringLiterals;

SerialCallerId::SerialCallerId(const BinaSettings& settings, QObject* parent)
    : CallerIdSource(parent), portName_(settings.port), baud_(settings.baud),
      commands_(settings.commands) {
    replyTimer_.setSingleShot(true);
    blockTimer_.setSingleShot(true);
    retryTimer_.setInterval(kRetryMs);
    connect(&port_, &QSerialPort::readyRead, this, &SerialCallerId::onReadable);
    connect(&port_, &QSerialPort::errorOccurred, this, &SerialCallerId::onError);
    connect(&replyTimer_, &QTimer::timeout, this, [this] { onReply(false); });
    connect(&blockTimer_, &QTimer::timeout, this, [this] {
        if (auto e = parser_.flush()) emitEvent(*e);
    });
    connect(&retryTimer_, &QTimer::timeout, this, [this] {
        if (!QFileInfo::exists(portName_)) return;
        if (openPort()) {
            retryTimer_.stop();
            emit problem(u"O identificador de chamadas voltou a responder na %1."_s.arg(where()));
        }
    });
}

SerialCallerId::~SerialCallerId() {
    close();
}

QString SerialCallerId::where() const {
    return u"porta %1"_s.arg(portName_);
}

bool SerialCallerId::open() {
    if (!QFileInfo::exists(portName_)) {
        emit problem(u"O identificador de chamadas não foi encontrado na %1. Confira se está "
                     u"ligado e a linha porta= do grupo [bina] do rotalix.ini."_s.arg(where()));
        return false;
    }
    if (!openPort()) {
        emit problem(u"A %1 do identificador de chamadas não abriu: %2."_s.arg(
            where(), port_.errorString()));
        return false;
    }
    return true;
}

bool SerialCallerId::openPort() {
    port_.setPortName(portName_);
    if (!port_.open(QIODevice::ReadWrite)) return false;
    port_.setBaudRate(baud_);
    port_.setDataBits(QSerialPort::Data8);
    port_.setParity(QSerialPort::NoParity);
    port_.setStopBits(QSerialPort::OneStop);
    port_.setFlowControl(QSerialPort::NoFlowControl);
    parser_ = ModemLineParser();
    step_ = commands_.isEmpty() ? -1 : 0;
    if (step_ == 0) sendNext();
    return true;
}

void SerialCallerId::close() {
    replyTimer_.stop();
    blockTimer_.stop();
    retryTimer_.stop();
    step_ = -1;
    if (port_.isOpen()) port_.close();
}

void SerialCallerId::sendNext() {
    const QString command = step_ == 0 ? u"AT"_s : commands_.at(step_ - 1);
    port_.write(command.toLatin1() + '\r');
    replyTimer_.start(kReplyMs);
}

void SerialCallerId::onReply(bool accepted) {
    if (step_ < 0) return;
    replyTimer_.stop();
    if (step_ == 0) {
        // No answer to a plain AT: a box that only talks, nothing to turn on.
        if (!accepted) {
            step_ = -1;
            return;
        }
        step_ = 1;
        sendNext();
        return;
    }
    if (accepted) {
        step_ = -1;
        return;
    }
    if (step_ < commands_.size()) {
        ++step_;
        sendNext();
        return;
    }
    step_ = -1;
    emit problem(u"O modem da %1 não aceitou nenhum comando de identificação de chamadas (%2). "
                 u"Indique o comando do seu modelo em comandos= do grupo [bina] do "
                 u"rotalix.ini."_s.arg(where(), commands_.join(u", "_s)));
}

void SerialCallerId::onReadable() {
    const QByteArray bytes = port_.readAll();
    for (const ModemEvent& e : parser_.feed(bytes))
        emitEvent(e);
    if (parser_.callPending())
        blockTimer_.start(kBlockQuietMs);
    else
        blockTimer_.stop();
}

void SerialCallerId::emitEvent(const ModemEvent& e) {
    switch (e.kind) {
    case ModemEvent::Kind::Ring:
        lastRing_ = QDateTime::currentDateTime();
        break;
    case ModemEvent::Kind::Call:
        emit caller(e.info);
        break;
    case ModemEvent::Kind::Reply:
        onReply(e.text == u"OK"_s);
        break;
    case ModemEvent::Kind::Noise:
        emit noise(e.text);
        break;
    }
}

void SerialCallerId::onError(QSerialPort::SerialPortError error) {
    if (error != QSerialPort::ResourceError && error != QSerialPort::ReadError) return;
    // A call under way: a ring in the last few seconds, or a block begun.
    const bool midCall =
        parser_.callPending() ||
        (lastRing_.isValid() && lastRing_.secsTo(QDateTime::currentDateTime()) < 10);
    close();
    emit problem(
        midCall ? u"O identificador de chamadas da %1 parou de responder durante uma "
                  u"chamada (cabo solto ou aparelho desligado?). O número desta chamada "
                  u"não chegou; ele será procurado de novo a cada poucos segundos."_s.arg(where())
                : u"O identificador de chamadas da %1 parou de responder (cabo solto ou "
                  u"aparelho desligado?). Ele será procurado de novo a cada poucos "
                  u"segundos."_s.arg(where()));
    retryTimer_.start();
}

} // namespace rtx::callerid
