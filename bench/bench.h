#pragma once
// rotalix-bench: each bench/*.cpp registers its measurements with RTX_BENCH; the program
// runs them all (or those named on the command line) and prints the figures.

#include <QElapsedTimer>
#include <QString>
#include <functional>

namespace rtx::bench {

struct Case {
    const char* name;
    std::function<void()> run;
};

int registerCase(const char* name, std::function<void()> run);

// Median wall time of a call, in milliseconds, over the given number of repetitions. Also
// notes the statements the last call sent to the database, for the next report.
double medianMs(int repetitions, const std::function<void()>& call);
// Notes the statements an action timed by hand sent, for the next report.
void noteStatements(qint64 statements);
// The statements sent so far by the installation's store (0 when none is open).
qint64 statementsSent();
// Prints one line: what, the figure, the statements of one call when noted, the target.
void report(const QString& what, double ms, double targetMs);
// A folder for the bench's databases (kept between runs so large fills happen once).
QString workFolder();

} // namespace rtx::bench

#define RTX_BENCH_CAT2(a, b) a##b
#define RTX_BENCH_CAT(a, b) RTX_BENCH_CAT2(a, b)
#define RTX_BENCH(name)                                                                            \
    static void RTX_BENCH_CAT(bench_, __LINE__)();                                                 \
    static const int RTX_BENCH_CAT(bench_reg_, __LINE__) =                                         \
        rtx::bench::registerCase(name, &RTX_BENCH_CAT(bench_, __LINE__));                          \
    static void RTX_BENCH_CAT(bench_, __LINE__)()
