// Sending e-mail through an SMTP server on the loopback that the test starts (Debian's
// python3-aiosmtpd): each message it takes is read back by Python's own mail parser, so the
// subject, the text and the attachment are checked as a mail program would see them.

#include "output/core/mail.h"
#include "smtpserver.h"
#include "testinstall.h"

#include <QtTest>

using namespace rtx::output;
using namespace rtx::test;
using namespace Qt::Literals::StringLiterals;

namespace {
MailSettings plainSettings(int port) {
    MailSettings s{u"127.0.0.1"_s, port, MailSettings::Tls::None, {}, {}, {}};
    s.sender = u"Expressa São João <financeiro@expressa.com.br>"_s;
    return s;
}

// One invoice to each address, its bytes the address itself.
QList<Mail> batchTo(const QStringList& addresses) {
    QList<Mail> batch;
    for (const QString& to : addresses)
        batch << Mail{to,
                      u"Fatura 000123 — 11/2026"_s,
                      u"Prezado cliente,\n"_s,
                      {{u"Fatura 000123.pdf"_s, to.toLatin1()}}};
    return batch;
}

} // namespace

class MailTest : public QObject {
    Q_OBJECT

    QString python;

private slots:
    void initTestCase() { python = pythonWithServer(); }

    void settingsFromTheIni() {
        QTemporaryDir dir;
        const QString ini = dir.filePath(u"rotalix.ini"_s);
        const auto settingsOf = [&](const QByteArray& text) {
            if (QFile f(ini); f.open(QIODevice::WriteOnly | QIODevice::Truncate)) f.write(text);
            return mailSettings(ini);
        };
        MailSettings s =
            settingsOf("[banco]\nmotor=sqlite\n[email]\nservidor=smtp.provedor.com.br\n"
                       "tls=ssl\nusuario=financeiro@expressa.com.br\nsenha=s3nh@;x\n");
        QCOMPARE(s.tls, MailSettings::Tls::Implicit);
        QCOMPARE(s.port, 465);      // the port of SMTP over SSL when none is given
        QCOMPARE(s.sender, s.user); // no remetente: the login's address
        s = settingsOf("[email]\nservidor=mail.local\ntls=nao\nremetente=Expressa <sem-arroba>\n");
        QVERIFY(s.problem().contains(u"remetente"_s, Qt::CaseInsensitive));
        // A word the program does not know keeps the password off the clear line.
        s = settingsOf("[email]\nservidor=mail.local\ntls=talvez\nremetente=a@b.com\n");
        QCOMPARE(s.tls, MailSettings::Tls::StartTls);
        QCOMPARE(s.port, 587);
        // Nothing set: the message says what to set.
        QVERIFY(sendAll(MailSettings{}, batchTo({u"a@b.com"_s}))[0].problem.contains(u"[email]"_s));
    }

    // A PDF-like attachment of bytes of every value arrives as it left, and the accents of
    // the subject, the text, the sender's name and the file's name survive the trip.
    void arrivesWithItsAttachmentIntact() {
        if (python.isEmpty()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente"_s);
        SmtpServer server(python, freePort());
        QVERIFY(server.started());
        QByteArray pdf = "%PDF-1.4\r\n.\r\n";
        for (int i = 0; i < 200 * 1024; ++i)
            pdf += char(i * 7919 % 251);
        Mail m = batchTo({u"cliente@exemplo.com.br"_s}).first();
        m.subject = u"Fatura 000123 de SÃO JOÃO & FILHOS \"LTDA\" — período de novembro de 2026"_s;
        m.body = u"Prezado cliente,\n.\nsegue a fatura (código PIX no fim).\r\nAtenciosamente"_s;
        m.attachments.first() = {u"Fatura 000123 SÃO JOÃO.pdf"_s, pdf};

        QCOMPARE(sendMail(plainSettings(server.port()), m), std::nullopt);
        QCOMPARE(server.recipients(), QStringList{u"cliente@exemplo.com.br"_s});
        const QJsonObject mail = server.messages().first();
        QCOMPARE(mail[u"subject"_s].toString(), m.subject);
        QVERIFY(mail[u"header_from"_s].toString().startsWith(u"Expressa São João <"_s));
        QCOMPARE(
            mail[u"body"_s].toString(),
            u"Prezado cliente,\r\n.\r\nsegue a fatura (código PIX no fim).\r\nAtenciosamente"_s);
        QVERIFY(mail[u"longest_line"_s].toInt() <= 76);
        const QJsonValue file = mail[u"attachments"_s].toArray().at(0);
        QCOMPARE(file[u"filename"_s].toString(), u"Fatura 000123 SÃO JOÃO.pdf"_s);
        QFile received(file[u"file"_s].toString());
        QVERIFY(received.open(QIODevice::ReadOnly) && received.readAll() == pdf);
    }

    // While the server is down every message is given back with its client and the reason,
    // and the progress still reaches its end. Once it is up, a refused recipient fails
    // alone, in the server's words, and the others go; sending the failed ones again
    // (addresses put right) completes the batch. Cancelar gives back what was not tried.
    void failuresLoseNothing() {
        if (python.isEmpty()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente"_s);
        const MailSettings settings = plainSettings(freePort());
        QList<Mail> batch = batchTo({u"a@exemplo.com.br"_s, u"recusado@exemplo.com.br"_s,
                                     u"c@exemplo.com.br"_s, u"sem-arroba"_s});
        QList<qsizetype> steps;
        QList<MailFailure> failed = sendAll(settings, batch, [&](qsizetype done, qsizetype) {
            steps << done;
            return true;
        });
        QCOMPARE(steps, (QList<qsizetype>{1, 2, 3, 4}));
        QVERIFY(failed[2].problem.contains(batch[2].to));
        QVERIFY(failed[2].problem.contains(u"não atende"_s));

        SmtpServer server(python, settings.port);
        QVERIFY(server.started());
        failed = sendAll(settings, batch);
        QCOMPARE(failed.size(), 2);
        QCOMPARE(failed[0].index, 1);
        QVERIFY(failed[0].problem.contains(u"550 5.1.1 Caixa postal inexistente"_s));
        QCOMPARE(failed[1].index, 3);
        QVERIFY(failed[1].problem.contains(u"não é válido"_s));
        QCOMPARE(server.recipients(), (QStringList{u"a@exemplo.com.br"_s, u"c@exemplo.com.br"_s}));

        const auto cut =
            sendAll(settings, batch, [](qsizetype done, qsizetype) { return done < 1; });
        QVERIFY(cut.size() == 3 && cut[2].problem.contains(u"interrompido"_s));

        batch[1].to = u"b@exemplo.com.br"_s;
        batch[3].to = u"d@exemplo.com.br"_s;
        QVERIFY(sendAll(settings, {batch[1], batch[3]}).isEmpty());
        QCOMPARE(server.recipients().mid(3).join(u' '), u"b@exemplo.com.br d@exemplo.com.br"_s);
    }

    // The login of [email] is used; a wrong password stops the batch with the server's words;
    // STARTTLS asked of a server without it sends nothing (no password in the clear).
    void loginAndSecureConnection() {
        if (python.isEmpty()) RTX_SKIP_UNREACHABLE(u"python3-aiosmtpd ausente"_s);
        SmtpServer server(python, freePort(), true);
        QVERIFY(server.started());
        MailSettings s = plainSettings(server.port());
        s.user = u"escritorio"_s;
        s.password = u"segredo"_s;
        const QList<Mail> batch = batchTo({u"a@exemplo.com.br"_s, u"b@exemplo.com.br"_s});
        QVERIFY(!sendMail(s, batch[0]));
        s.password = u"errada"_s;
        const QList<MailFailure> failed = sendAll(s, batch);
        QCOMPARE(failed.size(), 2);
        QVERIFY(failed[1].problem.contains(u"usuário e a senha"_s));
        QVERIFY(failed[1].problem.contains(u"535"_s));

        s.password = u"segredo"_s;
        s.tls = MailSettings::Tls::StartTls;
        const auto clear = sendMail(s, batch[1]);
        QVERIFY(clear && clear->contains(u"STARTTLS"_s));
        QCOMPARE(server.recipients(), QStringList{u"a@exemplo.com.br"_s});
    }
};

QTEST_GUILESS_MAIN(MailTest)
#include "tst_mail.moc"
