#include "couponsink.h"

#include "oserror.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>

#include <cerrno>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace rtx::output {

CouponSettings readCouponSettings(const QString& folder) {
    CouponSettings s;
    s.iniFile = QDir(folder).filePath(QStringLiteral("rotalix.ini"));
    QSettings ini(s.iniFile, QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("cupom"));
    s.device = ini.value(QStringLiteral("porta")).toString().trimmed();
    s.queue = ini.value(QStringLiteral("fila")).toString().trimmed();
    const QString page = ini.value(QStringLiteral("codigo")).toString().trimmed();
    if (!page.isEmpty()) {
        if (auto p = codePageNamed(page))
            s.codePage = *p;
        else
            s.problem = QStringLiteral("O código de página \"%1\" da impressora de cupom não é "
                                       "conhecido (use CP850, CP858, CP860 ou CP1252).")
                            .arg(page);
    }
    bool ok = false;
    const int table = ini.value(QStringLiteral("tabela")).toInt(&ok);
    if (ok) s.table = table;
    s.baud = ini.value(QStringLiteral("velocidade")).toInt();
    return s;
}

namespace {

speed_t speedOf(int baud) {
    switch (baud) {
    case 1200:
        return B1200;
    case 2400:
        return B2400;
    case 4800:
        return B4800;
    case 19200:
        return B19200;
    case 38400:
        return B38400;
    case 57600:
        return B57600;
    case 115200:
        return B115200;
    default:
        return B9600;
    }
}

QString toDevice(const QByteArray& bytes, const CouponSettings& s) {
    const QString cannot =
        QStringLiteral("Não foi possível abrir a impressora de cupom em %1: %2.\n\n"
                       "Verifique se ela está ligada e conectada, e a porta escrita em %3 "
                       "(seção [cupom], porta=).");
    // No O_CREAT: a printer that is not there must not become a file in its place. O_TRUNC:
    // where the port is a plain file (a spool folder, a capture of the port), the coupon
    // replaces what was there, never leaves the tail of a longer job behind it. Opened
    // without waiting (a serial port would wait for its line), then written as usual.
    const int fd =
        ::open(QFile::encodeName(s.device).constData(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_TRUNC);
    if (fd < 0) return cannot.arg(s.device, pathProblem(s.device, errno), s.iniFile);
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    if (::isatty(fd)) {
        termios t{};
        if (::tcgetattr(fd, &t) == 0) {
            ::cfmakeraw(&t);
            if (s.baud > 0) {
                ::cfsetispeed(&t, speedOf(s.baud));
                ::cfsetospeed(&t, speedOf(s.baud));
            }
            ::tcsetattr(fd, TCSANOW, &t);
        }
    }
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            const QString why =
                n < 0 ? systemReason(errno) : QStringLiteral("o aparelho não aceitou os dados");
            ::close(fd);
            return QStringLiteral("A impressora de cupom em %1 recusou a impressão: %2.")
                .arg(s.device, why);
        }
        done += n;
    }
    if (::isatty(fd)) ::tcdrain(fd);
    ::close(fd);
    return {};
}

// What lp said, in the office's words: lp answers in the system's language, which on many
// machines is English.
QString queueReason(const QString& said) {
    const QString t = said.toLower();
    if (t.contains(QStringLiteral("does not exist")) || t.contains(QStringLiteral("não existe")))
        return QStringLiteral("essa fila não existe neste computador");
    if (t.contains(QStringLiteral("not accepting")) || t.contains(QStringLiteral("não está aceit")))
        return QStringLiteral("a fila não está aceitando trabalhos (está pausada ou parada)");
    if (t.contains(QStringLiteral("connect")) || t.contains(QStringLiteral("conectar")))
        return QStringLiteral("o sistema de impressão (CUPS) não está funcionando");
    if (t.contains(QStringLiteral("forbidden")) || t.contains(QStringLiteral("not authorized")) ||
        t.contains(QStringLiteral("denied")) || t.contains(QStringLiteral("permiss")))
        return QStringLiteral("sem permissão para imprimir nessa fila");
    return QStringLiteral("o sistema de impressão não aceitou o trabalho");
}

QString toQueue(const QByteArray& bytes, const CouponSettings& s) {
    QProcess lp;
    lp.start(QStringLiteral("lp"),
             {QStringLiteral("-d"), s.queue, QStringLiteral("-o"), QStringLiteral("raw"),
              QStringLiteral("-t"), QStringLiteral("Cupom")});
    if (!lp.waitForStarted(10000))
        return QStringLiteral("Não foi possível mandar o cupom para a fila %1: o comando lp do "
                              "sistema de impressão (CUPS) não está disponível neste computador.")
            .arg(s.queue);
    lp.write(bytes);
    lp.closeWriteChannel();
    if (!lp.waitForFinished(30000)) {
        lp.kill();
        lp.waitForFinished(1000);
        return QStringLiteral("A fila de impressão %1 não respondeu; o cupom não foi impresso.")
            .arg(s.queue);
    }
    if (lp.exitStatus() != QProcess::NormalExit || lp.exitCode() != 0)
        return QStringLiteral("A fila de impressão %1 recusou o cupom: %2.")
            .arg(s.queue, queueReason(QString::fromLocal8Bit(lp.readAllStandardError())));
    return {};
}

} // namespace

QString sendCoupon(const QByteArray& bytes, const CouponSettings& s) {
    if (!s.problem.isEmpty()) return s.problem;
    if (!s.destinationSet())
        return QStringLiteral("Nenhuma impressora de cupom foi configurada.\n\n"
                              "Escreva em %1, na seção [cupom], a porta da impressora "
                              "(por exemplo porta=/dev/usb/lp0) ou o nome de uma fila de "
                              "impressão do sistema (por exemplo fila=CUPOM).")
            .arg(s.iniFile);
    return s.device.isEmpty() ? toQueue(bytes, s) : toDevice(bytes, s);
}

} // namespace rtx::output
