// rotalix: the program. Picks the installation folder, opens its store and shows the login.
//
//   rotalix [--pasta DIR]           opens an installation (default: ROTALIX_PASTA, or the
//                                   folder of the program)
//   rotalix --init [--demo] DIR     creates or completes an installation and exits
//   rotalix ... --sair-no-login     quits once the login is shown (checks a set-up end to end)
//   rotalix --restaurar "Backup dd.mm.yyyy" [--pasta DIR]
//                                   puts a day's backup in place of the installation's
//                                   database, keeping the current one aside

#include "kit/dialogs.h"
#include "kit/hourglass.h"
#include "output/core/backup.h"
#include "output/core/defaultlayouts.h"
#include "session/core/current.h"
#include "session/core/demo.h"
#include "session/login.h"
#include "session/start.h"
#include "store/installation.h"
#include "store/store.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>
#include <cstdio>

namespace {

int initialise(const QStringList& args) {
    bool demo = false;
    QString folder;
    for (qsizetype i = args.indexOf(QStringLiteral("--init")) + 1; i < args.size(); ++i) {
        if (args.at(i) == QStringLiteral("--demo"))
            demo = true;
        else if (folder.isEmpty() && !args.at(i).startsWith(QStringLiteral("--")))
            folder = args.at(i);
    }
    if (folder.isEmpty()) {
        std::fprintf(stderr, "Uso: rotalix --init [--demo] PASTA\n");
        return 2;
    }
    try {
        QDir().mkpath(folder);
        rtx::Installation installation(folder);
        const std::unique_ptr<rtx::Store> store = installation.openStore();
        rtx::session::prepareInstallation(installation, *store, demo);
        // The report layouts that are missing; a layout the office changed stays as it is.
        QStringList problems;
        for (const QString& file :
             rtx::output::writeMissingLayouts(installation.folder(), &problems))
            std::printf("Relatório %s criado\n", qPrintable(file));
        for (const QString& problem : problems)
            std::fprintf(stderr, "Não foi possível criar o relatório %s\n", qPrintable(problem));
        std::printf("Instalação pronta em %s\n", qPrintable(installation.folder()));
        return 0;
    } catch (const rtx::StoreError& e) {
        std::fprintf(stderr, "Falha ao preparar a instalação: %s\n", e.what());
        return 1;
    }
}

int restore(const QStringList& args) {
    const qsizetype at = args.indexOf(QStringLiteral("--restaurar"));
    if (at + 1 >= args.size() || args.at(at + 1).startsWith(QStringLiteral("--"))) {
        std::fprintf(stderr, "Uso: rotalix --restaurar \"Backup dd.mm.aaaa\" [--pasta PASTA]\n");
        return 2;
    }
    const rtx::Installation installation(rtx::Installation::resolveFolder(args));
    try {
        const rtx::output::RestoreRun run =
            rtx::output::restoreBackup(installation, installation.connectionSettings(),
                                       args.at(at + 1), QDateTime::currentDateTime());
        if (!run.keptAside.isEmpty())
            std::printf("O banco de dados e os relatórios anteriores foram guardados em %s\n",
                        qPrintable(run.keptAside));
        for (const QString& layout : run.layouts)
            std::printf("Relatório %s restaurado\n", qPrintable(layout));
        std::printf("Backup restaurado de %s\n", qPrintable(run.restoredFrom));
        return 0;
    } catch (const rtx::output::BackupError& e) {
        // The text says whether anything changed.
        std::fprintf(stderr, "%s\n", qPrintable(e.text()));
        return 1;
    }
}

// Qt's own buttons and dialogs in Brazilian Portuguese ("Sim", "Não", "Cancelar").
void loadTranslations(QApplication& app) {
    QLocale::setDefault(QLocale(QLocale::Portuguese, QLocale::Brazil));
    const QString dir = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    for (const QString& name : {QStringLiteral("qtbase_pt_BR"), QStringLiteral("qt_pt_BR")}) {
        auto* translator = new QTranslator(&app);
        if (translator->load(name, dir))
            app.installTranslator(translator);
        else
            delete translator;
    }
}

// A database without the schema is a first start: it gets what a new installation has.
bool firstStart(const rtx::ConnectionSettings& settings, rtx::Store& store, bool fileExisted) {
    if (settings.engine == rtx::Engine::SQLite && !fileExisted) return true;
    try {
        return store.storedSchemaVersion() == 0;
    } catch (const rtx::StoreError&) {
        return true;
    }
}

} // namespace

int main(int argc, char** argv) {
    // Preparing an installation needs no screen: it runs where there is no display too.
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--init") == 0) {
            QCoreApplication core(argc, argv);
            return initialise(core.arguments());
        }
        if (qstrcmp(argv[i], "--restaurar") == 0) {
            QCoreApplication core(argc, argv);
            return restore(core.arguments());
        }
    }
    QApplication app(argc, argv);
    // No display name: Qt would append it to every window title.
    QApplication::setApplicationName(QStringLiteral("rotalix"));
    const QStringList args = app.arguments();

    loadTranslations(app);
    rtx::ui::showHourglassOnLockWait();
    const rtx::Installation installation(rtx::Installation::resolveFolder(args));
    rtx::session::setInstallation(installation);

    std::unique_ptr<rtx::Store> store;
    try {
        const rtx::ConnectionSettings settings = installation.connectionSettings();
        const bool existed = QFileInfo::exists(settings.sqliteFile);
        store = installation.openStore();
        if (firstStart(settings, *store, existed)) {
            installation.initialise(*store);
            rtx::output::writeMissingLayouts(installation.folder());
        } else
            store->ensureSchema();
    } catch (const rtx::StoreError& e) {
        rtx::ui::showError(nullptr, QStringLiteral("Não foi possível abrir o banco de dados "
                                                   "da instalação %1.\n\n%2")
                                        .arg(installation.folder(), e.text()));
        return 1;
    }
    rtx::Store::setCurrent(store.get());

    int code = 0;
    {
        rtx::ui::Start start;
        rtx::ui::LOGIN* login = start.showLogin();
        if (args.contains(QStringLiteral("--sair-no-login"))) {
            QTimer::singleShot(0, &app, [&app, login] {
                const bool shown = login->isVisible();
                std::printf(shown ? "Login exibido: %s\n" : "Login não exibido: %s\n",
                            qPrintable(login->windowTitle()));
                app.exit(shown ? 0 : 1);
            });
        }
        code = app.exec();
    }
    rtx::Store::setCurrent(nullptr);
    return code;
}
