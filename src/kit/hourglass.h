#pragma once
// The hourglass while the store waits for another station's lock: a save that meets another
// station's write shows it is waiting instead of seeming to hang.

namespace rtx::ui {

// Installs, for the whole program, the store's hook that sets the wait cursor when a wait
// starts and puts the cursor back when it ends.
void showHourglassOnLockWait();

} // namespace rtx::ui
