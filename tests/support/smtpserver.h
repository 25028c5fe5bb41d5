#pragma once
// An SMTP server on the loopback for the tests that send e-mail (Debian's python3-aiosmtpd):
// each message it takes is read back by Python's own mail parser, so the subject, the text
// and the attachments are checked as a mail program would see them.

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTcpServer>
#include <QTemporaryDir>

namespace rtx::test {

// The server: refuses any recipient with "recusado" in the address, asks for a login when
// told to, and for each message writes the raw text and what the parser made of it.
inline const char smtpServerScript[] = R"py(
import email, email.policy, json, os, sys
from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult, LoginPassword

port, folder, login = int(sys.argv[1]), sys.argv[2], len(sys.argv) > 3

class Handler:
    count = 0
    async def handle_RCPT(self, server, session, envelope, address, options):
        if 'recusado' in address:
            return '550 5.1.1 Caixa postal inexistente: ' + address
        envelope.rcpt_tos.append(address)
        return '250 OK'
    async def handle_DATA(self, server, session, envelope):
        Handler.count += 1
        base = os.path.join(folder, '%03d' % Handler.count)
        raw = envelope.original_content
        with open(base + '.eml', 'wb') as f:
            f.write(raw)
        msg = email.message_from_bytes(raw, policy=email.policy.default)
        files = []
        for i, part in enumerate(msg.iter_attachments()):
            name = base + '-%d.bin' % i
            with open(name, 'wb') as f:
                f.write(part.get_payload(decode=True))
            files.append({'filename': part.get_filename(), 'type': part.get_content_type(),
                          'file': name})
        summary = {'from': envelope.mail_from, 'to': envelope.rcpt_tos,
                   'header_from': str(msg['from']), 'subject': str(msg['subject']),
                   'date': str(msg['date']), 'message_id': str(msg['message-id']),
                   'body': msg.get_body(('plain',)).get_content(),
                   'attachments': files,
                   'longest_line': max(len(l) for l in raw.split(b'\r\n'))}
        with open(base + '.tmp', 'w') as f:
            json.dump(summary, f)
        os.rename(base + '.tmp', base + '.json')
        return '250 Mensagem aceita'

def check(server, session, envelope, mechanism, data):
    ok = isinstance(data, LoginPassword) and data.login == b'escritorio' \
        and data.password == b'segredo'
    return AuthResult(success=ok, handled=False)

extra = dict(authenticator=check, auth_required=True, auth_require_tls=False) if login else {}
controller = Controller(Handler(), hostname='127.0.0.1', port=port, **extra)
controller.start()
print('pronto', flush=True)
sys.stdin.read()
controller.stop()
)py";

// The Python that has aiosmtpd: Debian's, which a python3 of one's own may hide.
inline QString pythonWithServer() {
    for (const QString& python : {QStringLiteral("/usr/bin/python3"), QStringLiteral("python3")}) {
        QProcess p;
        p.start(python, {QStringLiteral("-c"), QStringLiteral("import aiosmtpd")});
        if (p.waitForFinished(20000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0)
            return python;
    }
    return {};
}

inline int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

class SmtpServer {
public:
    SmtpServer(const QString& python, int port, bool login = false) : port_(port) {
        QFile script(dir_.filePath(QStringLiteral("servidor.py")));
        if (!script.open(QIODevice::WriteOnly)) return;
        script.write(smtpServerScript);
        script.close();
        QDir().mkpath(received());
        QStringList args{script.fileName(), QString::number(port), received()};
        if (login) args << QStringLiteral("login");
        process_.start(python, args);
        started_ = process_.waitForStarted(10000);
        while (started_ && !process_.canReadLine() && process_.waitForReadyRead(20000)) {
        }
        started_ = started_ && process_.readLine().startsWith("pronto");
    }
    ~SmtpServer() {
        process_.closeWriteChannel();
        if (!process_.waitForFinished(10000)) process_.kill();
        process_.waitForFinished(5000);
    }
    bool started() const { return started_; }
    int port() const { return port_; }
    QString received() const { return dir_.filePath(QStringLiteral("recebidos")); }

    // What the server took, in order.
    QList<QJsonObject> messages() const {
        QList<QJsonObject> all;
        const QDir dir(received());
        for (const QString& name :
             dir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
            QFile f(dir.filePath(name));
            if (f.open(QIODevice::ReadOnly)) all << QJsonDocument::fromJson(f.readAll()).object();
        }
        return all;
    }
    QStringList recipients() const {
        QStringList to;
        for (const QJsonObject& m : messages())
            for (const QJsonValue& v : m[QStringLiteral("to")].toArray())
                to << v.toString();
        return to;
    }

private:
    QTemporaryDir dir_;
    QProcess process_;
    int port_ = 0;
    bool started_ = false;
};

} // namespace rtx::test
