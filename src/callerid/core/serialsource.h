#pragma once
// A modem or a caller-id box on a serial port: the commands that turn caller id on, then the
// lines it sends, read by the line parser. When the device goes away (the cable pulled, the
// USB adapter gone) the operator is told, and the port is tried again every few seconds.

#include "bina.h"
#include "modemlines.h"

#include <QSerialPort>
#include <QTimer>

namespace rtx::callerid {

class SerialCallerId : public CallerIdSource {
    Q_OBJECT
public:
    explicit SerialCallerId(const BinaSettings& settings, QObject* parent = nullptr);
    ~SerialCallerId() override;

    bool open() override;
    void close() override;
    QString where() const override;

    // How long the modem has to answer a command, and the silence that ends a call's block.
    static constexpr int kReplyMs = 1500;
    static constexpr int kBlockQuietMs = 400;
    static constexpr int kRetryMs = 3000;

private:
    bool openPort();
    void sendNext();
    void onReadable();
    void onReply(bool accepted);
    void onError(QSerialPort::SerialPortError error);
    void emitEvent(const ModemEvent& e);

    QString portName_;
    int baud_;
    QStringList commands_;
    QSerialPort port_;
    ModemLineParser parser_;
    QTimer replyTimer_;
    QTimer blockTimer_;
    QTimer retryTimer_;
    // The set-up: first a plain AT to see whether the device speaks AT at all, then the
    // caller-id commands until one is accepted.
    int step_ = -1; // -1: no command waiting; 0: the AT; n: commands_[n - 1]
    QDateTime lastRing_;
};

} // namespace rtx::callerid
