#pragma once
// A throwaway installation for one test: a temporary folder and a fresh database on the
// engine that ROTALIX_TEST_ENGINE names ("sqlite", the default, or "postgresql", reached
// through ROTALIX_TEST_PGHOST, ROTALIX_TEST_PGPORT and ROTALIX_TEST_PGUSER).

#include "store/installation.h"
#include "store/store.h"

#include <QTemporaryDir>
#include <memory>

namespace rtx::test {

class TestInstallation {
public:
    // seed: the rows of a new installation; demo: the demo office as well.
    explicit TestInstallation(bool seed = true, bool demo = false);
    // An empty database and no store open on it: for building the schema step by step.
    struct Empty {};
    explicit TestInstallation(Empty);
    ~TestInstallation();

    // False (with the reason) when the engine asked for is not reachable: the test is
    // skipped then, or fails where a server is required (see postgresRequired()).
    bool ok() const { return ok_; }
    QString skipReason() const { return skipReason_; }

    Installation& installation() { return *installation_; }
    Store& store() { return *store_; } // also Store::current() while this lives
    QString folder() const { return dir_.path(); }
    // A second, independent connection to the same database (another station).
    std::unique_ptr<Store> openSecondStore() const;
    ConnectionSettings settings() const { return settings_; }

private:
    bool prepare(); // the folder, the settings and, on PostgreSQL, a new database
    QTemporaryDir dir_;
    std::unique_ptr<Installation> installation_;
    std::unique_ptr<Store> store_;
    ConnectionSettings settings_;
    QString pgDatabase_;
    bool ok_ = false;
    QString skipReason_;
};

// The engine and the database of settings as two arguments for a child process (another
// station), and the settings a child process makes of them.
QStringList stationArgs(const ConnectionSettings& settings);
ConnectionSettings stationSettings(const QString& engine, const QString& database);
// Runs copies of this test program at once, as other stations on the database of settings:
// each with the flag, the database's two arguments and its own; true when all ended well.
bool runStations(const QString& flag, const ConnectionSettings& settings,
                 const QList<QStringList>& own);

// Every row a query gives, read page by page as the grids read it: the values of one column.
QStringList pageValues(Store& store, const PageQuery& query, const QString& column, int pageSize);

// True where the continuous integration runs (CI=true): a missing PostgreSQL there is a
// broken build, not a reason to skip, or the *_pg tests would pass by testing nothing.
bool postgresRequired();
// The message a test ends with when its engine cannot be reached: a skip at a desk
// without a server, a failure where one is required.
QString unreachableMessage(const QString& reason);

// Skips (or, where a server is required, fails) with the reason given.
#define RTX_SKIP_UNREACHABLE(reason)                                                               \
    do {                                                                                           \
        if (rtx::test::postgresRequired())                                                         \
            QFAIL(qPrintable(rtx::test::unreachableMessage(reason)));                              \
        QSKIP(qPrintable(rtx::test::unreachableMessage(reason)));                                  \
    } while (0)

// Unless the installation is usable, skips or fails; for use at the top of a test function.
#define RTX_REQUIRE_INSTALL(inst)                                                                  \
    do {                                                                                           \
        if (!(inst).ok()) RTX_SKIP_UNREACHABLE((inst).skipReason());                               \
    } while (0)

} // namespace rtx::test
