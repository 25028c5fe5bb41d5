#include "installation.h"

#include "codepages.h"

#include "formats.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringDecoder>

namespace rtx {

Installation::Installation(QString folder) : folder_(QDir(folder).absolutePath()) {}

QString Installation::resolveFolder(const QStringList& arguments) {
    const qsizetype i = arguments.indexOf(QStringLiteral("--pasta"));
    if (i >= 0 && i + 1 < arguments.size()) return arguments.at(i + 1);
    const QString env = qEnvironmentVariable("ROTALIX_PASTA");
    if (!env.isEmpty()) return env;
    return QCoreApplication::applicationDirPath();
}

QString Installation::path(const QString& file) const {
    return QDir(folder_).filePath(file);
}

// The old installations wrote site.txt in the Windows code page; files written since are
// UTF-8. Text that is valid UTF-8 is read so, anything else as Windows-1252.
std::optional<QString> Installation::siteName() const {
    QFile f(siteFile());
    if (!f.open(QIODevice::ReadOnly)) return std::nullopt;
    QByteArray bytes = f.readAll();
    if (bytes.isEmpty()) return std::nullopt;
    if (bytes.startsWith("\xEF\xBB\xBF")) bytes.remove(0, 3);
    const qsizetype end = bytes.indexOf('\n');
    QByteArray line = end < 0 ? bytes : bytes.left(end);
    if (line.endsWith('\r')) line.chop(1);
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    const QString text = utf8.decode(line);
    return utf8.hasError() ? codepage::decode(line, codepage::windows1252()) : text;
}

ConnectionSettings Installation::connectionSettings() const {
    ConnectionSettings s;
    s.sqliteFile = path(QStringLiteral("rotalix.db"));
    const QString ini = path(QStringLiteral("rotalix.ini"));
    if (!QFileInfo::exists(ini)) return s;
    QSettings settings(ini, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("banco"));
    const QString engine = settings.value(QStringLiteral("motor")).toString().toLower();
    if (engine == QStringLiteral("postgresql")) {
        s.engine = Engine::PostgreSQL;
        s.host = settings.value(QStringLiteral("servidor"), QStringLiteral("localhost")).toString();
        s.port = settings.value(QStringLiteral("porta"), 5432).toInt();
        s.database = settings.value(QStringLiteral("banco"), QStringLiteral("rotalix")).toString();
        s.user = settings.value(QStringLiteral("usuario")).toString();
        s.password = settings.value(QStringLiteral("senha")).toString();
    } else if (settings.contains(QStringLiteral("arquivo"))) {
        s.sqliteFile = path(settings.value(QStringLiteral("arquivo")).toString());
    }
    return s;
}

void Installation::initialise(Store& store) const {
    QDir().mkpath(folder_);
    if (!QFileInfo::exists(siteFile())) {
        QFile f(siteFile());
        if (f.open(QIODevice::WriteOnly | QIODevice::Text))
            f.write(QStringLiteral("Rotalix Entregas\n").toUtf8());
    }
    store.ensureSchema();
    seedInstallation(store);
}

void seedInstallation(Store& store) {
    UnitOfWork unit(store);
    if (store.count(QStringLiteral("empresa")) == 0)
        store.execute(QStringLiteral("INSERT INTO empresa (e1, e2, e3, e4, e5, e6, e7, e8, e9) "
                                     "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                      {QStringLiteral("ROTALIX ENTREGAS RÁPIDAS"), QStringLiteral("(11)3333-4444"),
                       QStringLiteral("RUA DAS FLORES, 100"), QStringLiteral("CENTRO"),
                       QStringLiteral("SÃO PAULO"), QStringLiteral("SP"),
                       QStringLiteral("01001-000"), QStringLiteral("contato@rotalix.com.br"),
                       QStringLiteral("11.222.333/0001-81")});
    if (store.count(QStringLiteral("empresa2")) == 0)
        store.execute(QStringLiteral("INSERT INTO empresa2 (A1) VALUES (?)"),
                      {QStringLiteral("ROTALIX")});
    if (store.count(QStringLiteral("funcionarios")) == 0) {
        // The first administrator, ADMIN with the password "admin", which every installation
        // is delivered with and the manual prints; he must choose his own at the first login.
        // Being known to all, it is kept as one fixed hash of it rather than hashed anew here.
        const QString delivered =
            QStringLiteral("$argon2id$v=19$m=65536,t=2,p=1$sWNQ4RpaRpVr/nCVz0FTDw$"
                           "eNEoyam6O56G399KG754plp+5eC0b++2tQM3CcM286o");
        store.execute(QStringLiteral("INSERT INTO funcionarios (x1, x5, x8, troca_senha) "
                                     "VALUES (?, ?, ?, 1)"),
                      {QStringLiteral("ADMIN"), QStringLiteral("ADMINISTRADOR"), delivered});
        for (const QString& module : permissionModules())
            store.execute(
                QStringLiteral("INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"),
                {delivered, QStringLiteral("ADMIN"), module,
                 module.trimmed().isEmpty() ? QStringLiteral("Não") : QStringLiteral("Sim")});
    }
    if (store.count(QStringLiteral("status_atendimento")) == 0)
        for (const char16_t* s :
             {u"A caminho", u"Entregue", u"Não encontrado", u"Cancelado", u"Outros"})
            store.execute(QStringLiteral("INSERT INTO status_atendimento (sta) VALUES (?)"),
                          {QString::fromUtf16(s)});
    if (store.count(QStringLiteral("agenda_posicoes")) == 0)
        store.execute(QStringLiteral("INSERT INTO agenda_posicoes (AGE) VALUES (?)"),
                      {QStringLiteral("ABERTA")});
    unit.commit();
}

} // namespace rtx
