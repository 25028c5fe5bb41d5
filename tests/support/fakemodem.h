#pragma once
// A pseudo-terminal that plays a modem or caller-id box on a serial port, for the tests of
// the bina: it records the commands written to it, answers the ones it was told to, and can
// send the lines of a call or be unplugged.

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace rtx::test {

// The modem's side of the line: what the service wrote, command by command, and the answers
// it is given.
class FakeModem : public QObject {
public:
    QHash<QString, QByteArray> answers; // command -> reply; none: silence

    FakeModem() {
        termios raw{};
        cfmakeraw(&raw);
        char name[256] = {};
        if (openpty(&master_, &slave_, name, &raw, nullptr) != 0) return;
        path_ = QString::fromLocal8Bit(name);
        ::fcntl(master_, F_SETFL, ::fcntl(master_, F_GETFL) | O_NONBLOCK);
        notifier_ = new QSocketNotifier(master_, QSocketNotifier::Read, this);
        connect(notifier_, &QSocketNotifier::activated, this, [this] { readCommands(); });
    }
    ~FakeModem() override { hangUp(); }

    QString path() const { return path_; }
    bool ok() const { return master_ >= 0; }
    QStringList commands() const { return commands_; }
    void send(const QByteArray& bytes) {
        if (master_ >= 0)
            QCOMPARE(::write(master_, bytes.constData(), size_t(bytes.size())), bytes.size());
    }
    // The cable pulled: both ends of the pseudo-terminal closed.
    void hangUp() {
        delete notifier_;
        notifier_ = nullptr;
        if (master_ >= 0) ::close(master_);
        if (slave_ >= 0) ::close(slave_);
        master_ = slave_ = -1;
    }

private:
    void readCommands() {
        char buf[256];
        ssize_t n;
        while ((n = ::read(master_, buf, sizeof buf)) > 0)
            pending_.append(buf, n);
        if (n == 0 || (n < 0 && errno == EIO)) notifier_->setEnabled(false);
        qsizetype cr;
        while ((cr = pending_.indexOf('\r')) >= 0) {
            const QString command = QString::fromLatin1(pending_.left(cr)).trimmed();
            pending_.remove(0, cr + 1);
            commands_ << command;
            if (answers.contains(command)) send(answers.value(command));
        }
    }

    int master_ = -1;
    int slave_ = -1; // kept open so that the line stays up between the service's opens
    QString path_;
    QSocketNotifier* notifier_ = nullptr;
    QByteArray pending_;
    QStringList commands_;
};

} // namespace rtx::test
