#pragma once
// One station of the simulated office: the office's actions, through the same core
// functions the screens call, in the mix of a working day, until its time is up.

#include <QString>

namespace rtx {
class Store;
}

namespace rtx::stations {

struct StationRun {
    int number = 1; // 1..N, also in the attendant's name and the documents it writes
    int seconds = 60;
    // The operator's time between two actions, on average; 0: one action after another,
    // as fast as the database lets the station go.
    int thinkMs = 0;
    QString folder; // where its log goes
    // When set, the station stops inside the unit of work of a new dispatch once this many
    // seconds have passed, writes the file and waits to be killed.
    QString pauseFile;
    double pauseAfter = 1.0;
};

// Runs the station on the store; gives the process's exit code.
int runStation(Store& store, const StationRun& run);

// The rows a simulated office needs before its stations start (couriers in service,
// clients, services), written through their owners when the installation has none.
void seedOffice(Store& store);

} // namespace rtx::stations
