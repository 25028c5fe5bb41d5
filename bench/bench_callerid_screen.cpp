// A call on the dispatch screen: the modem's line with the number written to the serial port
// (a pseudo-terminal standing for the modem), read by the caller-id service, the client looked
// up among the large installation's 100,000 and his name on the screen, against 50 ms.

#include "bench.h"
#include "bench_data.h"
#include "callerid/core/bina.h"
#include "dispatch/atendimento.h"
#include "kit/dialogs.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

using namespace rtx;
using namespace rtx::bench;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;

namespace {

// The client's remark is told in a box: answered at once, as the operator's Enter.
class Quiet : public Prompter {
public:
    void notice(QWidget*, const QString&, const QString&, bool) override {}
    bool ask(QWidget*, const QString&, const QString&) override { return false; }
    std::optional<QString> askText(QWidget*, const QString&, const QString&, const QString&,
                                   bool) override {
        return std::nullopt;
    }
    void error(QWidget*, const QString& text, const QString&) override {
        std::printf("   erro: %s\n", qPrintable(text));
    }
    bool choosePrinter(QWidget*, QPrinter*) override { return false; }
    bool openUrl(const QUrl&) override { return false; }
    bool startProgram(const QString&, const QStringList&, const QString&) override { return false; }
    void quitProgram() override {}
};

void put(int fd, const QByteArray& bytes) {
    if (::write(fd, bytes.constData(), size_t(bytes.size())) != bytes.size()) std::abort();
}

} // namespace

RTX_BENCH("bina-tela") {
    Store& st = bigStore();
    Quiet quiet;
    setPrompter(&quiet);
    const QStringList phones = [&] {
        QStringList out;
        Recordset rs =
            st.open(u"SELECT C8 FROM clientes WHERE C8 LIKE '11%' ORDER BY CODIGO LIMIT 5000"_s);
        for (int i = 0; !rs.eof() && i < 5000; rs.moveNext(), ++i)
            if (i % 500 == 0) out << rs.text(u"C8"_s);
        return out;
    }();
    if (phones.isEmpty()) {
        std::printf("   sem clientes com telefone de DDD 11\n");
        return;
    }

    termios raw{};
    cfmakeraw(&raw);
    int master = -1, slave = -1;
    char name[256] = {};
    if (openpty(&master, &slave, name, &raw, nullptr) != 0) {
        std::printf("   sem pseudo-terminal\n");
        return;
    }
    QTemporaryDir dir;
    {
        QFile ini(QDir(dir.path()).filePath(u"rotalix.ini"_s));
        if (!ini.open(QIODevice::WriteOnly)) std::abort();
        ini.write(u"[bina]\nfonte=serial\nporta=%1\ncomandos=\nddd_local=11\n"_s
                      .arg(QString::fromLocal8Bit(name))
                      .toUtf8());
    }
    callerid::CallerIdService service(callerid::readBinaSettings(dir.path()));
    Atendimento screen;
    screen.show();
    QObject::connect(&service, &callerid::CallerIdService::incomingCall, &screen,
                     &Atendimento::takeCall);
    if (!service.arm()) std::abort();
    auto* client = screen.findChild<QLineEdit*>(u"A6"_s);

    std::vector<double> times;
    for (const QString& phone : phones) {
        screen.onNew();
        QCoreApplication::processEvents();
        // The ring and the date come before; the clock runs from the number's line.
        put(master, "\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\n");
        QElapsedTimer settle;
        settle.start();
        while (settle.elapsed() < 20)
            QCoreApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        put(master, u"NMBR = %1\r\n\r\nRING\r\n"_s.arg(phone.mid(2)).toLatin1());
        while (client->text().isEmpty() && clock.elapsed() < 2000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        if (client->text().isEmpty()) {
            std::printf("   o cliente do telefone %s não apareceu\n", qPrintable(phone));
            continue;
        }
        times.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    service.disarm();
    ::close(master);
    ::close(slave);
    setPrompter(nullptr);
    if (times.empty()) return;
    std::sort(times.begin(), times.end());
    report(u"bina: da linha do número ao nome do cliente na tela (%1 chamadas)"_s.arg(times.size()),
           times[times.size() / 2], 50);
}
