// Sending e-mail through an SMTP server on the loopback that the test starts (Debian's
// python3-aiosmtpd): each message it takes is read back by Python's own mail parser, so the
// subject, the text and the attachment are checked as a mail program would see them.

#include "output/core/mail.h"
#include "smtpserver.h"
#include "testinstall.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

using namespace rtx::output;
using namespace rtx::test;
using namespace Qt::Literals::StringLiterals;

namespace {
MailSettings plainSettings(int port) {
    MailSettings s;
    s.server = u"127.0.0.1"_s;
    s.port = port;
    s.tls = MailSettings::Tls::None;
    s.sender = u"Expressa São João <financeiro@expressa.com.br>"_s;
    return s;
}

Mail invoiceMail(const QString& to, const QByteArray& pdf = {}) {
    Mail m;
    m.to = to;
    m.subject = u"Fatura 000123 — período 11/2026"_s;
    m.body = u"Prezado cliente,\nsegue a fatura do mês.\n"_s;
    if (!pdf.isEmpty()) m.attachments.append({u"Fatura 000123.pdf"_s, pdf});
    return m;
}

QByteArray randomBytes(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(20261124);
    for (char& c : bytes)
        c = char(generator.bounded(256));
    return bytes;
}

} // namespace

class MailTest : public QObject {
    Q_OBJECT

    QString python;

    bool haveServer() const { return !python.isEmpty(); }

private slots:
    void initTestCase() { python = pythonWithServer(); }

    void settingsFromTheIni() {
        QTemporaryDir dir;
        const QString ini = dir.filePath(u"rotalix.ini"_s);
        QVERIFY(!mailSettings(ini).valid()); // no file
        QVERIFY(mailSettings(ini).problem().contains(u"[email]"_s));
        QFile f(ini);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[banco]\nmotor=sqlite\n[email]\nservidor=smtp.provedor.com.br\ntls=ssl\n"
                "usuario=financeiro@expressa.com.br\nsenha=s3nh@;x\n");
        f.close();
        MailSettings s = mailSettings(ini);
        QCOMPARE(s.server, u"smtp.provedor.com.br"_s);
        QCOMPARE(s.tls, MailSettings::Tls::Implicit);
        QCOMPARE(s.port, 465); // the port of SMTP over SSL when none is given
        QCOMPARE(s.user, u"financeiro@expressa.com.br"_s);
        QCOMPARE(s.sender, s.user); // no remetente: the login's address
        QVERIFY(s.valid());

        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write("[email]\nservidor=mail.local\nporta=2525\ntls=nao\n"
                "remetente=Expressa <sem-arroba>\n");
        f.close();
        s = mailSettings(ini);
        QCOMPARE(s.tls, MailSettings::Tls::None);
        QCOMPARE(s.port, 2525);
        QVERIFY(!s.valid());
        QVERIFY(s.problem().contains(u"remetente"_s, Qt::CaseInsensitive));

        // A word the program does not know keeps the password off the clear line.
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write("[email]\nservidor=mail.local\ntls=talvez\nremetente=a@b.com\n");
        f.close();
        s = mailSettings(ini);
        QCOMPARE(s.tls, MailSettings::Tls::StartTls);
        QCOMPARE(s.port, 587);

        // Nothing set: every message of a batch comes back saying what to set.
        const QList<MailFailure> unset =
            sendAll(MailSettings{}, {invoiceMail(QString()), invoiceMail(u"a@b.com"_s)});
        QCOMPARE(unset.size(), 2);
        for (const MailFailure& f : unset)
            QVERIFY2(f.problem.contains(u"[email]"_s), qPrintable(f.problem));
    }

    // A PDF-like attachment of bytes of every value arrives as it left, and the accents of
    // the subject, the text, the sender's name and the file's name survive the trip.
    void arrivesWithItsAttachmentIntact() {
        if (!haveServer()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente (servidor de teste)"_s);
        SmtpServer server(python, freePort());
        QVERIFY(server.started());
        const QByteArray pdf = "%PDF-1.4\r\n.\r\n" + randomBytes(200 * 1024) + "\n.\n%%EOF";
        Mail m = invoiceMail(u"cliente@exemplo.com.br"_s, pdf);
        m.subject = u"Fatura 000123 de SÃO JOÃO & FILHOS \"LTDA\" — período de novembro de "
                    u"2026, vencimento 10/12/2026"_s;
        m.body = u"Prezado cliente,\n.\nsegue a fatura (código PIX no fim).\r\nAtenciosamente"_s;
        m.attachments.first().fileName = u"Fatura 000123 SÃO JOÃO.pdf"_s;
        m.attachments.append({u"resumo.txt"_s, "linha 1\nlinha 2\n", u"text/plain"_s});

        const auto failure = sendMail(plainSettings(server.port()), m);
        QVERIFY2(!failure, qPrintable(failure.value_or(QString())));

        const QList<QJsonObject> got = server.messages();
        QCOMPARE(got.size(), 1);
        const QJsonObject& mail = got.first();
        QCOMPARE(mail[u"from"_s].toString(), u"financeiro@expressa.com.br"_s);
        QCOMPARE(server.recipients(), QStringList{u"cliente@exemplo.com.br"_s});
        QCOMPARE(mail[u"subject"_s].toString(), m.subject);
        QVERIFY(mail[u"header_from"_s].toString().startsWith(u"Expressa São João <"_s));
        QCOMPARE(
            mail[u"body"_s].toString(),
            u"Prezado cliente,\r\n.\r\nsegue a fatura (código PIX no fim).\r\nAtenciosamente"_s);
        QVERIFY(!mail[u"date"_s].toString().isEmpty());
        QVERIFY(mail[u"message_id"_s].toString().endsWith(u"@expressa.com.br>"_s));
        QVERIFY(mail[u"longest_line"_s].toInt() <= 76);
        const QJsonArray files = mail[u"attachments"_s].toArray();
        QCOMPARE(files.size(), 2);
        QCOMPARE(files[0][u"filename"_s].toString(), u"Fatura 000123 SÃO JOÃO.pdf"_s);
        QCOMPARE(files[0][u"type"_s].toString(), u"application/pdf"_s);
        QFile received(files[0][u"file"_s].toString());
        QVERIFY(received.open(QIODevice::ReadOnly));
        QVERIFY(received.readAll() == pdf);
        QCOMPARE(files[1][u"type"_s].toString(), u"text/plain"_s);
    }

    // A refused recipient fails alone, in the server's words; the others of the batch go, and
    // sending the failed one again (its address put right) completes the batch.
    void refusedRecipientFailsAloneAndCanBeSentAgain() {
        if (!haveServer()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente (servidor de teste)"_s);
        SmtpServer server(python, freePort());
        QVERIFY(server.started());
        QList<Mail> batch{
            invoiceMail(u"a@exemplo.com.br"_s, "A"), invoiceMail(u"recusado@exemplo.com.br"_s, "B"),
            invoiceMail(u"c@exemplo.com.br"_s, "C"), invoiceMail(u"sem-arroba"_s, "D")};
        QList<qsizetype> steps;
        const QList<MailFailure> failed =
            sendAll(plainSettings(server.port()), batch, [&](qsizetype done, qsizetype total) {
                steps << done;
                return total == 4;
            });
        QCOMPARE(steps, (QList<qsizetype>{1, 2, 3, 4}));
        QCOMPARE(failed.size(), 2);
        QCOMPARE(failed[0].index, 1);
        QCOMPARE(failed[0].to, u"recusado@exemplo.com.br"_s);
        QVERIFY2(failed[0].problem.contains(u"550"_s) &&
                     failed[0].problem.contains(u"Caixa postal inexistente"_s) &&
                     failed[0].problem.contains(u"recusado@exemplo.com.br"_s),
                 qPrintable(failed[0].problem));
        QCOMPARE(failed[1].index, 3);
        QVERIFY(failed[1].problem.contains(u"não é válido"_s));
        QCOMPARE(server.recipients(), (QStringList{u"a@exemplo.com.br"_s, u"c@exemplo.com.br"_s}));

        // Cancelar during a batch: what was not tried yet is given back.
        const QList<MailFailure> cut = sendAll(plainSettings(server.port()), batch.mid(0, 3),
                                               [](qsizetype done, qsizetype) { return done < 1; });
        QCOMPARE(cut.size(), 2);
        QCOMPARE(cut[0].index, 1);
        QVERIFY(cut[1].problem.contains(u"interrompido"_s));
        QCOMPARE(server.recipients().size(), 3);

        QList<Mail> again;
        for (const MailFailure& f : failed)
            again << batch.at(f.index);
        again[0].to = u"b@exemplo.com.br"_s;
        again[1].to = u"d@exemplo.com.br"_s;
        QVERIFY(sendAll(plainSettings(server.port()), again).isEmpty());
        QCOMPARE(server.recipients(),
                 (QStringList{u"a@exemplo.com.br"_s, u"c@exemplo.com.br"_s, u"a@exemplo.com.br"_s,
                              u"b@exemplo.com.br"_s, u"d@exemplo.com.br"_s}));
    }

    // A server that is down: every message is given back, each with its client and the
    // reason; once the server is up, the same list goes.
    void serverDownLosesNothing() {
        if (!haveServer()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente (servidor de teste)"_s);
        const int port = freePort();
        QList<Mail> batch{invoiceMail(u"a@exemplo.com.br"_s, "A"),
                          invoiceMail(u"b@exemplo.com.br"_s, "B"),
                          invoiceMail(u"c@exemplo.com.br"_s, "C")};
        QList<qsizetype> steps;
        const QList<MailFailure> failed =
            sendAll(plainSettings(port), batch, [&](qsizetype done, qsizetype) {
                steps << done;
                return true;
            });
        QCOMPARE(steps, (QList<qsizetype>{1, 2, 3})); // the progress bar reaches its end
        QCOMPARE(failed.size(), 3);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(failed[i].index, i);
            QVERIFY2(failed[i].problem.contains(batch[i].to) &&
                         failed[i].problem.contains(u"não atende"_s) &&
                         failed[i].problem.contains(u"connect"_s, Qt::CaseInsensitive),
                     qPrintable(failed[i].problem));
        }
        const auto single = sendMail(plainSettings(port), batch[0]);
        QVERIFY(single && single->contains(u"127.0.0.1:%1"_s.arg(port)));

        SmtpServer server(python, port);
        QVERIFY(server.started());
        QList<Mail> again;
        for (const MailFailure& f : failed)
            again << batch.at(f.index);
        QVERIFY(sendAll(plainSettings(port), again).isEmpty());
        QCOMPARE(server.messages().size(), 3);
    }

    // The login of [email] is used; a wrong password stops the batch with the server's words;
    // STARTTLS asked of a server without it sends nothing (no password in the clear).
    void loginAndSecureConnection() {
        if (!haveServer()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente (servidor de teste)"_s);
        SmtpServer server(python, freePort(), true);
        QVERIFY(server.started());
        MailSettings s = plainSettings(server.port());
        s.user = u"escritorio"_s;
        s.password = u"segredo"_s;
        QVERIFY(!sendMail(s, invoiceMail(u"a@exemplo.com.br"_s)));

        s.password = u"errada"_s;
        const QList<MailFailure> failed =
            sendAll(s, {invoiceMail(u"b@exemplo.com.br"_s), invoiceMail(u"c@exemplo.com.br"_s)});
        QCOMPARE(failed.size(), 2);
        QVERIFY2(failed[0].problem.contains(u"usuário e a senha"_s) &&
                     failed[0].problem.contains(u"535"_s),
                 qPrintable(failed[0].problem));
        QVERIFY(failed[1].problem.contains(u"c@exemplo.com.br"_s));
        QVERIFY(failed[1].problem.contains(u"535"_s));

        s.password = u"segredo"_s;
        s.tls = MailSettings::Tls::StartTls;
        const auto clear = sendMail(s, invoiceMail(u"d@exemplo.com.br"_s));
        QVERIFY(clear && clear->contains(u"STARTTLS"_s));
        QCOMPARE(server.recipients(), QStringList{u"a@exemplo.com.br"_s});
    }
};

QTEST_GUILESS_MAIN(MailTest)
#include "tst_mail.moc"
