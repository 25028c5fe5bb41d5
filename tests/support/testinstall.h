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
    ~TestInstallation();

    // False (with the reason) when the engine asked for is not reachable: QSKIP then.
    bool ok() const { return ok_; }
    QString skipReason() const { return skipReason_; }

    Installation& installation() { return *installation_; }
    Store& store() { return *store_; } // also Store::current() while this lives
    QString folder() const { return dir_.path(); }
    // A second, independent connection to the same database (another station).
    std::unique_ptr<Store> openSecondStore() const;
    ConnectionSettings settings() const { return settings_; }

private:
    QTemporaryDir dir_;
    std::unique_ptr<Installation> installation_;
    std::unique_ptr<Store> store_;
    ConnectionSettings settings_;
    QString pgDatabase_;
    bool ok_ = false;
    QString skipReason_;
};

// QSKIP unless the installation is usable; for use at the top of a test function.
#define RTX_REQUIRE_INSTALL(inst)                                                                  \
    do {                                                                                           \
        if (!(inst).ok()) QSKIP(qPrintable((inst).skipReason()));                                  \
    } while (0)

} // namespace rtx::test
