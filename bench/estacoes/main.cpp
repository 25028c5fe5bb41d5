// rotalix-estacoes: several stations of the office at once on one database, then the proof
// that nothing was lost, doubled or half written.
//
//   rotalix-estacoes --pasta DIR [--estacoes N] [--segundos S] [--intervalo MS] [--matar]
//       opens the installation in DIR (a new one when the folder is empty; its rotalix.ini
//       chooses the engine), runs N stations (8) for S seconds (60), each a process of its
//       own doing the office's actions, then checks the rules and prints the throughput and
//       the times per action. --intervalo gives each operator MS milliseconds between two
//       actions on average (0, the default: one after another). --matar kills one station
//       in the middle of a unit of work.
//   rotalix-estacoes --pasta DIR --verificar
//       only the check, on a folder a run left.
// Exits 0 only when every rule held and no action failed other than by a busy lock.

#include "checker.h"
#include "station.h"
#include "stationlog.h"

#include "store/installation.h"
#include "store/store.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

using namespace Qt::StringLiterals;
namespace st = rtx::stations;

struct Options {
    QString folder;
    int stations = 8;
    int seconds = 60;
    int thinkMs = 0;
    bool kill = false;
    bool checkOnly = false;
    int station = 0; // a child: its number
};

void say(const QString& text) {
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
}

std::optional<Options> parse(const QStringList& args) {
    Options o;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString& a = args.at(i);
        const QString next = i + 1 < args.size() ? args.at(i + 1) : QString();
        bool number = true;
        if (a == u"--pasta"_s)
            o.folder = next, ++i;
        else if (a == u"--estacoes"_s)
            o.stations = next.toInt(&number), ++i;
        else if (a == u"--segundos"_s)
            o.seconds = next.toInt(&number), ++i;
        else if (a == u"--intervalo"_s)
            o.thinkMs = next.toInt(&number), ++i;
        else if (a == u"--estacao"_s)
            o.station = next.toInt(&number), ++i;
        else if (a == u"--matar"_s)
            o.kill = true;
        else if (a == u"--verificar"_s)
            o.checkOnly = true;
        else
            return std::nullopt;
        if (!number) return std::nullopt;
    }
    if (o.folder.isEmpty() || o.stations < 1 || o.seconds < 1 || o.thinkMs < 0) return std::nullopt;
    if (o.kill && o.stations < 2) return std::nullopt;
    return o;
}

std::unique_ptr<rtx::Store> openOffice(const rtx::Installation& installation, bool prepare) {
    const rtx::ConnectionSettings settings = installation.connectionSettings();
    const bool existed = QFileInfo::exists(settings.sqliteFile);
    auto store = std::make_unique<rtx::Store>(settings);
    if (!prepare) return store;
    bool fresh = settings.engine == rtx::Engine::SQLite && !existed;
    if (!fresh) {
        try {
            fresh = store->storedSchemaVersion() == 0;
        } catch (const rtx::StoreError&) {
            fresh = true;
        }
    }
    if (fresh)
        installation.initialise(*store);
    else
        store->ensureSchema();
    st::seedOffice(*store);
    return store;
}

QString engineName(const rtx::Store& store) {
    return store.engine() == rtx::Engine::PostgreSQL ? u"PostgreSQL"_s : u"SQLite"_s;
}

// The rules, one line each; true when all held.
bool report(rtx::Store& store, const QList<st::Attempt>& attempts) {
    bool all = true;
    for (const st::Verdict& v : st::check(store, attempts)) {
        say((v.held() ? u"  OK      "_s : u"  FALHOU  "_s) + v.name);
        for (const QString& f : v.faults)
            say(u"            "_s + f);
        all = all && v.held();
    }
    return all;
}

void printFigures(const QList<st::Attempt>& attempts, double seconds, int stations,
                  const QString& engine) {
    const QHash<QString, st::ActionFigures> byAction = st::figures(attempts);
    QStringList actions = byAction.keys();
    actions.sort();
    int done = 0;
    say(u"%1 estações, %2 s, %3"_s.arg(stations).arg(seconds, 0, 'f', 1).arg(engine));
    say(u"  %1 %2 %3 %4 %5 %6 %7"_s.arg(u"ação"_s, -22)
            .arg(u"feitas"_s, 7)
            .arg(u"por s"_s, 7)
            .arg(u"p50 ms"_s, 8)
            .arg(u"p99 ms"_s, 8)
            .arg(u"ocupado"_s, 8)
            .arg(u"falhas"_s, 7));
    for (const QString& action : actions) {
        const st::ActionFigures& f = byAction[action];
        done += f.done;
        say(u"  %1 %2 %3 %4 %5 %6 %7"_s.arg(action, -22)
                .arg(f.done, 7)
                .arg(double(f.done) / seconds, 7, 'f', 1)
                .arg(f.percentileMs(50), 8, 'f', 1)
                .arg(f.percentileMs(99), 8, 'f', 1)
                .arg(f.busy, 8)
                .arg(f.failed, 7));
    }
    say(u"Vazão: %1 ações por segundo"_s.arg(double(done) / seconds, 0, 'f', 1));
}

int runOffice(const Options& o) {
    const rtx::Installation installation(o.folder);
    QDir().mkpath(installation.folder());
    std::unique_ptr<rtx::Store> store;
    try {
        store = openOffice(installation, !o.checkOnly);
    } catch (const rtx::StoreError& e) {
        say(u"Não foi possível abrir a instalação %1: %2"_s.arg(installation.folder(), e.text()));
        return 2;
    }
    bool stationsWell = true;
    double seconds = o.seconds;
    if (!o.checkOnly) {
        // Logs of an earlier run in the folder would be counted as this run's.
        for (const QString& name :
             QDir(installation.folder()).entryList({u"estacao-*.log"_s, u"pausa-*"_s}))
            QFile::remove(installation.path(name));
        const QString pauseFile = installation.path(u"pausa-1"_s);
        std::vector<std::unique_ptr<QProcess>> stations;
        QElapsedTimer clock;
        clock.start();
        for (int k = 1; k <= o.stations; ++k) {
            auto& p = stations.emplace_back(std::make_unique<QProcess>());
            p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            p->setStandardOutputFile(QProcess::nullDevice());
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            if (o.kill && k == 1) {
                env.insert(u"ROTALIX_ESTACOES_PAUSA"_s, pauseFile);
                env.insert(u"ROTALIX_ESTACOES_PAUSA_APOS"_s,
                           QString::number(std::max(0.5, o.seconds / 3.0)));
            }
            p->setProcessEnvironment(env);
            p->start(QCoreApplication::applicationFilePath(),
                     {u"--pasta"_s, installation.folder(), u"--estacao"_s, QString::number(k),
                      u"--segundos"_s, QString::number(o.seconds), u"--intervalo"_s,
                      QString::number(o.thinkMs)});
        }
        bool killed = false;
        const qint64 limit = (qint64(o.seconds) + 120) * 1000;
        for (;;) {
            bool running = false;
            for (auto& p : stations)
                if (p->state() != QProcess::NotRunning) {
                    p->waitForFinished(10);
                    running = running || p->state() != QProcess::NotRunning;
                }
            if (o.kill && !killed && QFileInfo::exists(pauseFile)) {
                // Give the file its number, then pull the plug in the middle of the unit.
                QThread::msleep(20);
                stations.front()->kill();
                stations.front()->waitForFinished(5000);
                killed = true;
                QFile marker(pauseFile);
                marker.open(QIODevice::ReadOnly);
                say(u"Estação 1 derrubada (SIGKILL) no meio da gravação do atendimento %1"_s.arg(
                    QString::fromUtf8(marker.readAll())));
            }
            if (!running) break;
            if (clock.elapsed() > limit) {
                say(u"Estações que não terminaram a tempo foram derrubadas"_s);
                for (auto& p : stations)
                    p->kill();
                stationsWell = false;
            }
            QThread::msleep(20);
        }
        seconds = double(clock.elapsed()) / 1000.0;
        for (std::size_t i = 0; i < stations.size(); ++i) {
            if (o.kill && i == 0) continue;
            const QProcess& p = *stations[i];
            if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
                say(u"Estação %1 terminou com erro (código %2)"_s.arg(i + 1).arg(p.exitCode()));
                stationsWell = false;
            }
        }
        if (o.kill && !killed) {
            say(u"A estação 1 não parou no meio de uma gravação: nada foi derrubado"_s);
            stationsWell = false;
        }
    }

    const QList<st::Attempt> attempts = st::readLogs(installation.folder());
    if (!o.checkOnly) printFigures(attempts, seconds, o.stations, engineName(*store));
    int failed = 0;
    for (const st::Attempt& a : attempts)
        if (a.outcome == st::Outcome::Failed) {
            if (++failed <= 10) say(u"  Falhou: %1: %2"_s.arg(a.action, a.text));
        }
    if (failed > 0) say(u"Ações que falharam: %1"_s.arg(failed));

    say(u"Invariantes:"_s);
    bool held = false;
    try {
        held = report(*store, attempts);
    } catch (const rtx::StoreError& e) {
        say(u"Não foi possível verificar: %1"_s.arg(e.text()));
    }
    const bool green = held && failed == 0 && stationsWell;
    say(green  ? u"RESULTADO: todos os invariantes valeram e nenhuma ação falhou"_s
        : held ? u"RESULTADO: os invariantes valeram, mas houve falhas"_s
               : u"RESULTADO: invariante violado"_s);
    return green ? 0 : 1;
}

int runChild(const Options& o) {
    const rtx::Installation installation(o.folder);
    try {
        auto store = openOffice(installation, false);
        st::StationRun run;
        run.number = o.station;
        run.seconds = o.seconds;
        run.thinkMs = o.thinkMs;
        run.folder = installation.folder();
        run.pauseFile = qEnvironmentVariable("ROTALIX_ESTACOES_PAUSA");
        if (const QString after = qEnvironmentVariable("ROTALIX_ESTACOES_PAUSA_APOS");
            !after.isEmpty())
            run.pauseAfter = after.toDouble();
        const int code = st::runStation(*store, run);
        rtx::Store::setCurrent(nullptr);
        return code;
    } catch (const rtx::StoreError& e) {
        std::fprintf(stderr, "Estação %d: %s\n", o.station, e.what());
        return 1;
    }
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const auto options = parse(app.arguments());
    if (!options) {
        std::fprintf(
            stderr,
            "Uso: rotalix-estacoes --pasta PASTA [--estacoes N] [--segundos S] "
            "[--intervalo MS] [--matar]\n       rotalix-estacoes --pasta PASTA --verificar\n");
        return 2;
    }
    return options->station > 0 ? runChild(*options) : runOffice(*options);
}
