#include "installation.h"

#include "codepages.h"

#include "formats.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringDecoder>

#ifdef Q_OS_LINUX
#include <sys/vfs.h>
#endif

namespace rtx {

namespace {

quint64 systemFileSystem(const QString& folder) {
#ifdef Q_OS_LINUX
    struct statfs info {};
    if (statfs(QFile::encodeName(folder).constData(), &info) == 0) return quint64(info.f_type);
#else
    Q_UNUSED(folder);
#endif
    return 0;
}

FileSystemProbe& probe() {
    static FileSystemProbe p;
    return p;
}

// File systems reached over the network, whose locks SQLite cannot trust: two stations writing
// through them at once corrupt the database.
struct NetworkFileSystem {
    quint64 type;
    const char* name;
};
constexpr NetworkFileSystem networkFileSystems[] = {
    {0xFF534D42, "SMB/CIFS"}, {0xFE534D42, "SMB2"}, {0x517B, "SMB"},        {0x6969, "NFS"},
    {0x01021997, "9P"},       {0x00C36400, "Ceph"}, {0x5346414F, "AFS"},    {0x6B414653, "AFS"},
    {0x73757245, "Coda"},     {0x564C, "NCP"},      {0x0BD00BD0, "Lustre"}, {0x013111A8, "IBRIX"},
};

bool yes(const QString& text) {
    const QString t = text.trimmed().toLower();
    return t == u"sim" || t == u"s" || t == u"1" || t == u"true";
}

} // namespace

FileSystemProbe setFileSystemProbe(FileSystemProbe p) {
    return std::exchange(probe(), std::move(p));
}

QString networkFileSystem(const QString& folder) {
    const quint64 type = probe() ? probe()(folder) : systemFileSystem(folder);
    for (const NetworkFileSystem& fs : networkFileSystems)
        if (fs.type == type) return QString::fromLatin1(fs.name);
    return {};
}

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

bool Installation::allowsNetworkFolder() const {
    const QString ini = path(QStringLiteral("rotalix.ini"));
    if (!QFileInfo::exists(ini)) return false;
    const QSettings settings(ini, QSettings::IniFormat);
    return yes(settings.value(QStringLiteral("banco/permitir_rede")).toString());
}

std::unique_ptr<Store> Installation::openStore() const {
    const ConnectionSettings settings = connectionSettings();
    if (settings.engine == Engine::SQLite && !allowsNetworkFolder()) {
        const QString folder = QFileInfo(settings.sqliteFile).absolutePath();
        const QString fs = networkFileSystem(QFileInfo::exists(folder) ? folder : folder_);
        if (!fs.isEmpty())
            throw StoreError(
                QStringLiteral(
                    "O banco de dados %1 está numa pasta de rede (%2). Um banco SQLite "
                    "numa pasta compartilhada se corrompe quando mais de uma estação "
                    "grava nele.\n\nPara várias estações, use um servidor "
                    "PostgreSQL ([banco] motor=postgresql no rotalix.ini). Para uma "
                    "estação só, copie a instalação para um disco "
                    "deste computador, ou ponha permitir_rede=sim em [banco] no rotalix.ini.")
                    .arg(QDir::toNativeSeparators(settings.sqliteFile), fs));
    }
    return std::make_unique<Store>(settings);
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
