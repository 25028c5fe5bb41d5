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

// Median wall time of a call, in milliseconds, over the given number of repetitions.
double medianMs(int repetitions, const std::function<void()>& call);
// Prints one line: what, the figure, the target.
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
