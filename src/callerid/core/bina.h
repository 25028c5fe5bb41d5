#pragma once
// The caller-id service ("bina"): reads its device from rotalix.ini, runs it, and tells the
// screens of each call (with the number in the register's form) and of each problem of the
// device, in words for the operator. The devices are thin: the lines and the tones are read by
// the parsers beside this file.
//
//   [bina]
//   fonte=serial                  serial (modem or caller-id box) or audio (sound input)
//   porta=/dev/ttyUSB0
//   velocidade=9600
//   comandos=AT+VCID=1, AT#CID=1  tried in order until the modem answers OK
//   dispositivo=USB               part of the sound input's name; empty: the default one
//   taxa=8000                     samples per second asked of the sound input
//   ddd_local=11
//   ddd_nos_locais=sim            the register keeps local numbers with the DDD

#include "callerid.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

namespace rtx::callerid {

struct BinaSettings {
    enum class Source { None, Serial, Audio };
    Source source = Source::None;
    QString port;
    int baud = 9600;
    QStringList commands; // the caller-id commands, each tried when the one before was refused
    QString audioDevice;
    int sampleRate = 8000;
    NumberPlan plan;
    QString iniFile;
    QString problem; // a setting that was not understood
};

// The commands that turn caller id on in the modems found in offices, in the order tried.
QStringList defaultCommands();

BinaSettings readBinaSettings(const QString& folder);

// What to write in rotalix.ini when no device is set.
QString howToSetDevice(const QString& iniFile);

// One device on the line.
class CallerIdSource : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Starts listening; false, with problem() told, when the device cannot be used.
    virtual bool open() = 0;
    virtual void close() = 0;
    // The device in the operator's words: "porta /dev/ttyUSB0".
    virtual QString where() const = 0;

signals:
    void caller(const rtx::callerid::CallerInfo& info);
    void problem(const QString& text);
    void noise(const QString& text);
};

class CallerIdService : public QObject {
    Q_OBJECT
public:
    explicit CallerIdService(BinaSettings settings, QObject* parent = nullptr);
    ~CallerIdService() override;

    // Turns the device on. False when nothing is set or the device cannot be used; the notice
    // then says why (and, with nothing set, what to set).
    bool arm();
    void disarm();
    bool armed() const { return armed_; }
    // For the status line: "Bina ativa (porta /dev/ttyUSB0)." or "Bina desligada."
    QString statusText() const;
    const BinaSettings& settings() const { return settings_; }

signals:
    // Every call, also one without a number (withheld, unavailable, unreadable: see
    // Call::hasNumber); a call without a number also comes with a notice that says why.
    void incomingCall(const rtx::callerid::Call& call);
    // Words for the operator: the device's troubles, and calls that bring no number.
    void notice(const QString& text);

private:
    void onCaller(const CallerInfo& info);

    BinaSettings settings_;
    std::unique_ptr<CallerIdSource> source_;
    bool armed_ = false;
    QElapsedTimer lastNoise_; // a line full of noise is told once in a while, not each line
};

} // namespace rtx::callerid
