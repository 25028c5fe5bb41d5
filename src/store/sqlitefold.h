#pragma once
// The text folding of the SQLite databases, for connections opened without the store.

struct sqlite3;

namespace rtx {

// Registers the collation and the folding functions that the installation's databases name
// on a SQLite connection opened without the store (a backup checked where it lies,
// read-only): without them a database of the first schema cannot even be checked.
void registerSqliteFolding(sqlite3* handle);

} // namespace rtx
