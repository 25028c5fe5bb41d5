#include "bench.h"
#include "bench_data.h"
#include "store/store.h"

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
qint64 g_statements = -1;
} // namespace

int registerCase(const char* name, std::function<void()> run) {
    cases().push_back({name, std::move(run)});
    return int(cases().size());
}

double medianMs(int repetitions, const std::function<void()>& call) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        const qint64 before = statementsSent();
        QElapsedTimer t;
        t.start();
        call();
        times.push_back(double(t.nsecsElapsed()) / 1e6);
        g_statements = statementsSent() - before;
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void noteStatements(qint64 statements) {
    g_statements = statements;
}

qint64 statementsSent() {
    try {
        return Store::current().statementCount();
    } catch (const StoreError&) {
        return 0;
    }
}

void report(const QString& what, double ms, double targetMs) {
    const QString sent = g_statements < 0 ? QString() : QStringLiteral("%1 cmd").arg(g_statements);
    std::printf("%-70s %10.3f ms %9s  (meta < %g ms) %s\n", qPrintable(what), ms, qPrintable(sent),
                targetMs, ms < targetMs ? "OK" : "ACIMA DA META");
    std::fflush(stdout);
    g_statements = -1;
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
