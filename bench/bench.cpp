#include "bench.h"
#include "bench_data.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace rtx::bench {

namespace {
std::vector<Case>& cases() {
    static std::vector<Case> all;
    return all;
}
} // namespace

int registerCase(const char* name, std::function<void()> run) {
    cases().push_back({name, std::move(run)});
    return int(cases().size());
}

double medianMs(int repetitions, const std::function<void()>& call) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        QElapsedTimer t;
        t.start();
        call();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void report(const QString& what, double ms, double targetMs) {
    std::printf("%-70s %10.3f ms  (meta < %g ms) %s\n", qPrintable(what), ms, targetMs,
                ms < targetMs ? "OK" : "ACIMA DA META");
    std::fflush(stdout);
}

QString workFolder() {
    QString dir = qEnvironmentVariable("ROTALIX_BENCH_DIR");
    if (dir.isEmpty()) dir = QDir::temp().filePath(QStringLiteral("rotalix-bench"));
    QDir().mkpath(dir);
    return dir;
}

} // namespace rtx::bench

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList wanted = app.arguments().mid(1);
    for (const auto& c : rtx::bench::cases()) {
        if (!wanted.isEmpty() && !wanted.contains(QString::fromLatin1(c.name))) continue;
        std::printf("== %s\n", c.name);
        c.run();
    }
    rtx::bench::closeBigStore();
    return 0;
}
