#pragma once
// The demo office: a believable month of a small courier office, so that every screen
// shows something. Written through the owner of each table, as the screens write it.

#include <QDate>

namespace rtx {
class Installation;
class Store;
} // namespace rtx

namespace rtx::session {

// Fills the demo office into a prepared installation. One unit of work; throws StoreError.
void seedDemo(Store& store, const QDate& today = QDate::currentDate());

// Creates or completes an installation (Installation::initialise) and, with demo, fills the
// demo office when there are no clients yet.
void prepareInstallation(const Installation& installation, Store& store, bool demo);

} // namespace rtx::session
