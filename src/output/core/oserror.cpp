#include "oserror.h"

#include <QDir>
#include <QFileDevice>
#include <QFileInfo>
#include <QStorageInfo>

#include <cerrno>

namespace rtx::output {

QString systemReason(int e) {
    switch (e) {
    case ENOENT:
        return QStringLiteral("o arquivo ou a pasta não existe");
    case EACCES:
    case EPERM:
        return QStringLiteral("sem permissão de acesso");
    case ENOTDIR:
        return QStringLiteral("uma parte do caminho não é uma pasta");
    case EISDIR:
        return QStringLiteral("o caminho é uma pasta, não um arquivo");
    case EROFS:
        return QStringLiteral("o disco só permite leitura");
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("não há espaço livre no disco");
    case EBUSY:
    case ETXTBSY:
        return QStringLiteral("está em uso por outro programa");
    case ENXIO:
    case ENODEV:
        return QStringLiteral("o aparelho não está conectado ou está desligado");
    case EIO:
        return QStringLiteral("falha de comunicação com o aparelho (desconectado ou com defeito)");
    case EAGAIN:
        return QStringLiteral("o aparelho está ocupado e não aceitou os dados");
    case ETIMEDOUT:
        return QStringLiteral("o aparelho não respondeu a tempo");
    case EPIPE:
    case ECONNRESET:
        return QStringLiteral("a ligação com o aparelho foi interrompida");
    case ENAMETOOLONG:
        return QStringLiteral("o nome é longo demais");
    case ELOOP:
        return QStringLiteral("o caminho dá voltas em atalhos (ligações simbólicas)");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("há arquivos abertos demais no sistema");
    case EINTR:
        return QStringLiteral("a operação foi interrompida");
    case EINVAL:
        return QStringLiteral("o aparelho não aceita essa operação");
    default:
        return QStringLiteral("erro do sistema número %1").arg(e);
    }
}

QString pathProblem(const QString& path, int e) {
    if (e == ENOENT) {
        const QString folder = QFileInfo(path).absolutePath();
        if (!QFileInfo(folder).exists()) return QStringLiteral("a pasta %1 não existe").arg(folder);
        return QStringLiteral("%1 não existe").arg(path);
    }
    return systemReason(e);
}

QString fileProblem(const QString& path, const QFileDevice& file) {
    const QFileInfo info(path);
    const QFileInfo folder(info.absolutePath());
    if (!folder.exists()) return QStringLiteral("a pasta %1 não existe").arg(folder.filePath());
    if (!folder.isDir()) return QStringLiteral("%1 não é uma pasta").arg(folder.filePath());
    if (info.isDir()) return QStringLiteral("%1 é uma pasta, não um arquivo").arg(path);
    if (!folder.isWritable() || (info.exists() && !info.isWritable()))
        return QStringLiteral("sem permissão para gravar em %1").arg(folder.filePath());
    const QStorageInfo disk(folder.filePath());
    if (disk.isValid() && disk.isReadOnly())
        return QStringLiteral("o disco de %1 só permite leitura").arg(folder.filePath());
    if (disk.isValid() && disk.bytesAvailable() < 64 * 1024)
        return QStringLiteral("não há espaço livre no disco de %1").arg(folder.filePath());
    switch (file.error()) {
    case QFileDevice::OpenError:
        return QStringLiteral("o arquivo não pôde ser aberto para gravar");
    case QFileDevice::WriteError:
        return QStringLiteral("a gravação do arquivo falhou");
    case QFileDevice::RenameError:
        return QStringLiteral("o arquivo anterior não pôde ser substituído");
    default:
        return QStringLiteral("o arquivo não pôde ser gravado");
    }
}

} // namespace rtx::output
