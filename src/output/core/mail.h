#pragma once
// E-mail through the office's own SMTP server (the one its mail program uses), as set in the
// group [email] of rotalix.ini:
//
//     [email]
//     servidor=smtp.provedor.com.br
//     porta=587
//     tls=starttls        ; nao, starttls or ssl
//     usuario=financeiro@escritorio.com.br
//     senha=...
//     remetente=Escritório Entregas <financeiro@escritorio.com.br>
//
// A message goes as one MIME message (text and attachments) over libcurl; what a server
// refuses comes back in the server's own words, so the office can tell its provider.

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace rtx::output {

struct MailSettings {
    QString server;
    int port = 587;
    enum class Tls { None, StartTls, Implicit } tls = Tls::StartTls;
    QString user, password;
    QString sender; // "address" or "Name <address>"
    // A server and a sender with an address; a port in range.
    bool valid() const;
    // What is missing, in words; empty when valid.
    QString problem() const;
};

// [email] of that rotalix.ini; an absent file or group gives settings that are not valid.
// Without porta, the port of the TLS chosen (25, 587 or 465).
MailSettings mailSettings(const QString& iniPath);

struct Attachment {
    QString fileName;
    QByteArray data;
    QString mimeType = QStringLiteral("application/pdf");
};

struct Mail {
    QString to; // one address
    QString subject;
    QString body; // plain text
    QList<Attachment> attachments;
};

// The message as it goes over the wire: headers, then a multipart/mixed body with the text
// and each attachment in base64. Lines end in CRLF and none is longer than 76 characters.
// The sender's address and the message's time and id are given so that the text is the same
// each time for the same arguments.
QByteArray mimeMessage(const MailSettings& settings, const Mail& mail, const QDateTime& when,
                       const QString& messageId);

// Sends one message. Nothing when the server took it; otherwise why not, in a sentence that
// carries the server's own reply.
std::optional<QString> sendMail(const MailSettings& settings, const Mail& mail);

// One message of a batch that did not go.
struct MailFailure {
    qsizetype index = 0; // in the list given
    QString to;
    QString problem;
};

// Called after each message of a batch with how many were tried and how many there are;
// returning false stops the batch (the rest are given back as not sent).
using MailProgress = std::function<bool(qsizetype done, qsizetype total)>;

// Sends each message in turn over one connection. Gives the messages that did not go, in
// their order, each with the server's words: sending only those again completes the batch.
// When the server cannot be reached or refuses the login, the rest are not tried and are
// given back with the same words.
QList<MailFailure> sendAll(const MailSettings& settings, const QList<Mail>& mails,
                           const MailProgress& progress = {});

} // namespace rtx::output
