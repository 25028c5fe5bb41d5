#pragma once
// The system's reasons in the office's words. The system speaks English ("No such file or
// directory"); what the operator reads is a Portuguese sentence that names the file, folder
// or printer concerned.

#include <QString>

class QFileDevice;

namespace rtx::output {

// The reason of a system error number, in a few words: "sem permissão de acesso".
QString systemReason(int errorNumber);

// Why a path could not be opened: a missing folder is named as such ("a pasta /dev/usb não
// existe"), a missing file as the thing it is ("%1 não existe"); else the system's reason.
QString pathProblem(const QString& path, int errorNumber);

// Why a file could not be written, once Qt's file has failed: the folder is looked at
// first (missing, not a folder, not writable, full), then the kind of failure.
QString fileProblem(const QString& path, const QFileDevice& file);

} // namespace rtx::output
