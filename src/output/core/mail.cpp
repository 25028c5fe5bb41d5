#include "mail.h"

#include <QSettings>
#include <QUrl>
#include <QUuid>

#include <curl/curl.h>
#include <memory>
#include <mutex>

namespace rtx::output {

using namespace Qt::Literals::StringLiterals;

namespace {

// "Name <address>" or a bare address.
struct Mailbox {
    QString name;
    QString address;
};

Mailbox mailbox(const QString& text) {
    const QString t = text.trimmed();
    const qsizetype open = t.lastIndexOf(u'<');
    if (open >= 0 && t.endsWith(u'>')) {
        QString name = t.left(open).trimmed();
        if (name.size() >= 2 && name.startsWith(u'"') && name.endsWith(u'"'))
            name = name.mid(1, name.size() - 2);
        return {name, t.mid(open + 1, t.size() - open - 2).trimmed()};
    }
    return {{}, t};
}

// One address, as a server takes it in MAIL FROM and RCPT TO: something@domain, with nothing
// that could end the command or start another header.
bool plainAddress(const QString& address) {
    const qsizetype at = address.indexOf(u'@');
    if (at <= 0 || at != address.lastIndexOf(u'@') || at == address.size() - 1) return false;
    for (QChar c : address)
        if (c.isSpace() || c == u'<' || c == u'>' || c == u',' || c == u';' || c == u'"' ||
            c.unicode() < 0x20)
            return false;
    return true;
}

bool printableAscii(const QString& text) {
    for (QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() > 0x7E) return false;
    return true;
}

// A header text in encoded words (RFC 2047): UTF-8 cut between characters into pieces whose
// words stay under 75 characters, folded onto lines of their own.
QByteArray encodedWords(const QString& text) {
    if (printableAscii(text) && text.size() <= 60) return text.toLatin1();
    QByteArray out;
    QByteArray piece;
    auto flush = [&] {
        if (piece.isEmpty()) return;
        if (!out.isEmpty()) out += "\r\n ";
        out += "=?UTF-8?B?" + piece.toBase64() + "?=";
        piece.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        // Line breaks have no place in a header; a pair of surrogates is one character.
        QString one = text.at(i);
        if (text.at(i).isHighSurrogate() && i + 1 < text.size()) one += text.at(++i);
        if (one == u"\r"_s || one == u"\n"_s) one = u" "_s;
        const QByteArray bytes = one.toUtf8();
        if (piece.size() + bytes.size() > 39) flush();
        piece += bytes;
    }
    flush();
    return out;
}

QByteArray base64Lines(const QByteArray& data) {
    const QByteArray all = data.toBase64();
    QByteArray out;
    out.reserve(all.size() + all.size() / 76 * 2 + 2);
    for (qsizetype i = 0; i < all.size(); i += 76)
        out += all.mid(i, 76) + "\r\n";
    return out;
}

// A file name in the Content-Disposition header: quoted when plain, else as RFC 2231 says.
QByteArray dispositionName(const QString& name) {
    if (printableAscii(name)) {
        QByteArray quoted = name.toLatin1();
        quoted.replace("\\", "\\\\").replace("\"", "\\\"");
        return "filename=\"" + quoted + '"';
    }
    return "filename*=UTF-8''" + QUrl::toPercentEncoding(name);
}

QByteArray contentTypeName(const QString& name) {
    if (printableAscii(name)) {
        QByteArray quoted = name.toLatin1();
        quoted.replace("\\", "\\\\").replace("\"", "\\\"");
        return "name=\"" + quoted + '"';
    }
    // Mail programs that read no RFC 2231 show this one.
    return "name=\"" + encodedWords(name).replace("\r\n ", "") + '"';
}

QByteArray crlfText(const QString& text) {
    QString t = text;
    t.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n').replace(u"\n"_s, u"\r\n"_s);
    return t.toUtf8();
}

void initialiseCurl() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

QString curlWords(CURLcode code, const char* buffer) {
    const QString detail = QString::fromUtf8(buffer).trimmed();
    return detail.isEmpty() ? QString::fromUtf8(curl_easy_strerror(code)) : detail;
}

// The errors after which no other message of the batch can go either.
bool serverUnusable(CURLcode code) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_LOGIN_DENIED:
    case CURLE_USE_SSL_FAILED:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
        return true;
    default:
        return false;
    }
}

// One connection to the server, kept open from one message to the next.
class Session {
public:
    explicit Session(const MailSettings& settings) : settings_(settings) {
        initialiseCurl();
        curl_ = curl_easy_init();
    }
    ~Session() {
        if (curl_) curl_easy_cleanup(curl_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Why the message did not go; nothing when it went. lastCode() says what kind of failure.
    std::optional<QString> send(const Mail& mail);
    CURLcode lastCode() const { return code_; }
    // The words of the last failure, without the address: the same for every message that
    // cannot go after it.
    const QString& lastReason() const { return reason_; }

private:
    static size_t read(char* buffer, size_t size, size_t count, void* user);
    static int debug(CURL*, curl_infotype type, char* data, size_t size, void* user);

    const MailSettings& settings_;
    CURL* curl_ = nullptr;
    CURLcode code_ = CURLE_OK;
    QByteArray upload_;
    qsizetype uploaded_ = 0;
    QByteArray reply_;      // what the server said since our last command
    QByteArray errorReply_; // the last refusal: the reply to QUIT comes after it
    QString reason_;
};

size_t Session::read(char* buffer, size_t size, size_t count, void* user) {
    auto* self = static_cast<Session*>(user);
    const qsizetype n = qMin(qsizetype(size * count), self->upload_.size() - self->uploaded_);
    memcpy(buffer, self->upload_.constData() + self->uploaded_, size_t(n));
    self->uploaded_ += n;
    return size_t(n);
}

int Session::debug(CURL*, curl_infotype type, char* data, size_t size, void* user) {
    auto* self = static_cast<Session*>(user);
    if (type == CURLINFO_HEADER_OUT)
        self->reply_.clear();
    else if (type == CURLINFO_HEADER_IN) {
        self->reply_.append(data, qsizetype(size));
        if (self->reply_.startsWith('4') || self->reply_.startsWith('5'))
            self->errorReply_ = self->reply_;
    }
    return 0;
}

QString notSent(const QString& to, const QString& reason) {
    return u"O e-mail para %1 não foi enviado: %2"_s.arg(to.trimmed(), reason);
}

std::optional<QString> Session::send(const Mail& mail) {
    code_ = CURLE_OK;
    reason_.clear();
    if (!settings_.valid()) {
        reason_ = settings_.problem();
        return reason_;
    }
    const QString to = mail.to.trimmed();
    if (to.isEmpty()) return u"Sem endereço de e-mail: a mensagem não foi enviada."_s;
    if (!plainAddress(to))
        return u"O endereço de e-mail \"%1\" não é válido: a mensagem não foi enviada."_s.arg(to);
    if (!curl_) return u"A biblioteca de e-mail (libcurl) não pôde ser iniciada."_s;

    const Mailbox from = mailbox(settings_.sender);
    const QString domain = from.address.mid(from.address.indexOf(u'@') + 1);
    upload_ = mimeMessage(settings_, mail, QDateTime::currentDateTime(),
                          QUuid::createUuid().toString(QUuid::WithoutBraces) + u'@' + domain);
    uploaded_ = 0;
    reply_.clear();
    errorReply_.clear();

    const bool implicit = settings_.tls == MailSettings::Tls::Implicit;
    const QByteArray url = (implicit ? "smtps://" : "smtp://") +
                           QUrl::toPercentEncoding(settings_.server.trimmed(), ":[]") + ':' +
                           QByteArray::number(settings_.port);
    const QByteArray sender = '<' + from.address.toUtf8() + '>';
    const QByteArray recipient = '<' + to.toUtf8() + '>';
    const QByteArray user = settings_.user.toUtf8();
    const QByteArray password = settings_.password.toUtf8();
    curl_slist* recipients = curl_slist_append(nullptr, recipient.constData());
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> keep(recipients,
                                                                           curl_slist_free_all);
    char error[CURL_ERROR_SIZE] = {};

    curl_easy_setopt(curl_, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl_, CURLOPT_USE_SSL,
                     settings_.tls == MailSettings::Tls::None ? long(CURLUSESSL_NONE)
                                                              : long(CURLUSESSL_ALL));
    if (!user.isEmpty()) {
        curl_easy_setopt(curl_, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl_, CURLOPT_PASSWORD, password.constData());
    }
    curl_easy_setopt(curl_, CURLOPT_MAIL_FROM, sender.constData());
    curl_easy_setopt(curl_, CURLOPT_MAIL_RCPT, recipients);
    curl_easy_setopt(curl_, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl_, CURLOPT_READFUNCTION, &Session::read);
    curl_easy_setopt(curl_, CURLOPT_READDATA, this);
    curl_easy_setopt(curl_, CURLOPT_INFILESIZE_LARGE, curl_off_t(upload_.size()));
    curl_easy_setopt(curl_, CURLOPT_ERRORBUFFER, error);
    curl_easy_setopt(curl_, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(curl_, CURLOPT_DEBUGFUNCTION, &Session::debug);
    curl_easy_setopt(curl_, CURLOPT_DEBUGDATA, this);
    curl_easy_setopt(curl_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl_, CURLOPT_CONNECTTIMEOUT, 20L);
    curl_easy_setopt(curl_, CURLOPT_TIMEOUT, 300L);

    code_ = curl_easy_perform(curl_);
    curl_easy_setopt(curl_, CURLOPT_ERRORBUFFER, nullptr);
    if (code_ == CURLE_OK) return std::nullopt;

    QString why;
    const QString server = u"%1:%2"_s.arg(settings_.server.trimmed()).arg(settings_.port);
    switch (code_) {
    case CURLE_COULDNT_RESOLVE_HOST:
        why = u"o servidor de e-mail %1 não foi encontrado"_s.arg(settings_.server.trimmed());
        break;
    case CURLE_COULDNT_CONNECT:
        why = u"o servidor de e-mail %1 não atende"_s.arg(server);
        break;
    case CURLE_OPERATION_TIMEDOUT:
        why = u"o servidor de e-mail %1 não respondeu a tempo"_s.arg(server);
        break;
    case CURLE_LOGIN_DENIED:
        why = u"o servidor de e-mail recusou o usuário e a senha do grupo [email]"_s;
        break;
    case CURLE_USE_SSL_FAILED:
        why = u"o servidor de e-mail %1 não oferece conexão segura (STARTTLS)"_s.arg(server);
        break;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        why = u"a conexão segura com o servidor de e-mail %1 falhou"_s.arg(server);
        break;
    default:
        why = u"o servidor de e-mail recusou a mensagem"_s;
        break;
    }
    reason_ = u"%1 (%2)."_s.arg(why, curlWords(code_, error));
    const QString reply = QString::fromUtf8(errorReply_.isEmpty() ? reply_ : errorReply_)
                              .trimmed()
                              .replace(u"\r\n"_s, u" "_s);
    if (!reply.isEmpty() && code_ != CURLE_COULDNT_CONNECT && code_ != CURLE_COULDNT_RESOLVE_HOST)
        reason_ += u" Resposta do servidor: \"%1\""_s.arg(reply);
    return notSent(to, reason_);
}

} // namespace

bool MailSettings::valid() const {
    return problem().isEmpty();
}

QString MailSettings::problem() const {
    if (server.trimmed().isEmpty())
        return u"O servidor de e-mail não está configurado: preencha o grupo [email] do "
               u"rotalix.ini (servidor, porta, tls, usuario, senha, remetente)."_s;
    if (port <= 0 || port > 65535)
        return u"A porta %1 do servidor de e-mail não é válida."_s.arg(port);
    if (!plainAddress(mailbox(sender).address))
        return u"O remetente \"%1\" do grupo [email] do rotalix.ini não é um endereço de "
               u"e-mail."_s.arg(sender);
    return {};
}

MailSettings mailSettings(const QString& iniPath) {
    MailSettings s;
    QSettings ini(iniPath, QSettings::IniFormat);
    ini.beginGroup(u"email"_s);
    s.server = ini.value(u"servidor"_s).toString().trimmed();
    const QString tls = ini.value(u"tls"_s).toString().trimmed().toLower();
    if (tls == u"nao"_s || tls == u"não"_s || tls == u"0"_s || tls == u"false"_s)
        s.tls = MailSettings::Tls::None;
    else if (tls == u"ssl"_s || tls == u"smtps"_s)
        s.tls = MailSettings::Tls::Implicit;
    else // starttls, and anything else: the password never goes in the clear by mistake
        s.tls = MailSettings::Tls::StartTls;
    bool ok = false;
    const int port = ini.value(u"porta"_s).toInt(&ok);
    if (ok)
        s.port = port;
    else
        s.port = s.tls == MailSettings::Tls::Implicit ? 465
                 : s.tls == MailSettings::Tls::None   ? 25
                                                      : 587;
    s.user = ini.value(u"usuario"_s).toString().trimmed();
    s.password = ini.value(u"senha"_s).toString();
    s.sender = ini.value(u"remetente"_s).toString().trimmed();
    if (s.sender.isEmpty() && s.user.contains(u'@')) s.sender = s.user;
    return s;
}

QByteArray mimeMessage(const MailSettings& settings, const Mail& mail, const QDateTime& when,
                       const QString& messageId) {
    const Mailbox from = mailbox(settings.sender);
    const QByteArray boundary =
        "=_rotalix_" + QUuid::createUuid().toString(QUuid::Id128).toLatin1();
    QByteArray m;
    m += "From: ";
    if (!from.name.isEmpty()) {
        QString name = from.name;
        if (printableAscii(name))
            m += '"' + name.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s).toLatin1() + "\" ";
        else
            m += encodedWords(name) + ' ';
    }
    m += '<' + from.address.toUtf8() + ">\r\n";
    m += "To: <" + mail.to.trimmed().toUtf8() + ">\r\n";
    m += "Subject: " + encodedWords(mail.subject) + "\r\n";
    m += "Date: " + when.toString(Qt::RFC2822Date).toLatin1() + "\r\n";
    m += "Message-ID: <" + messageId.toUtf8() + ">\r\n";
    m += "MIME-Version: 1.0\r\n";
    m += "Content-Type: multipart/mixed;\r\n boundary=\"" + boundary + "\"\r\n";
    m += "\r\n";
    m += "--" + boundary + "\r\n";
    m += "Content-Type: text/plain; charset=UTF-8\r\n";
    m += "Content-Transfer-Encoding: base64\r\n\r\n";
    m += base64Lines(crlfText(mail.body));
    for (const Attachment& a : mail.attachments) {
        const QString type =
            a.mimeType.trimmed().isEmpty() ? u"application/octet-stream"_s : a.mimeType.trimmed();
        m += "--" + boundary + "\r\n";
        m += "Content-Type: " + type.toLatin1() + ";\r\n " + contentTypeName(a.fileName) + "\r\n";
        m += "Content-Disposition: attachment;\r\n " + dispositionName(a.fileName) + "\r\n";
        m += "Content-Transfer-Encoding: base64\r\n\r\n";
        m += base64Lines(a.data);
    }
    m += "--" + boundary + "--\r\n";
    return m;
}

std::optional<QString> sendMail(const MailSettings& settings, const Mail& mail) {
    Session session(settings);
    return session.send(mail);
}

QList<MailFailure> sendAll(const MailSettings& settings, const QList<Mail>& mails,
                           const MailProgress& progress) {
    QList<MailFailure> failures;
    Session session(settings);
    std::optional<QString> stopped; // why the rest cannot go
    for (qsizetype i = 0; i < mails.size(); ++i) {
        const QString& to = mails.at(i).to;
        if (stopped) {
            failures.append({i, to, settings.valid() ? notSent(to, *stopped) : *stopped});
        } else if (const auto problem = session.send(mails.at(i))) {
            failures.append({i, to, *problem});
            if (serverUnusable(session.lastCode()) || !settings.valid())
                stopped = session.lastReason();
        }
        if (progress && !progress(i + 1, mails.size()) && !stopped)
            stopped = u"o envio foi interrompido."_s;
    }
    return failures;
}

} // namespace rtx::output
