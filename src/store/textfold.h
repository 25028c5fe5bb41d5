#pragma once
// The folded forms of a text that the store compares on SQLite, where no collation of the
// engine knows Portuguese: the same functions fold what is stored (through the functions
// the store registers on its connection) and what is typed.

#include <QString>
#include <QStringView>

namespace rtx {

// The key of an equality: case-folded, accents kept ("José" -> "josé").
QString foldKey(QStringView text);
// The form a search starts with and a list is ordered by: case-folded and without accents
// ("José" -> "jose").
QString foldSearch(QStringView text);

} // namespace rtx
