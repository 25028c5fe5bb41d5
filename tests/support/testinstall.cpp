#include "testinstall.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace rtx::test {

namespace {

struct PgServer {
    QString host = qEnvironmentVariable("ROTALIX_TEST_PGHOST");
    int port = qEnvironmentVariableIntValue("ROTALIX_TEST_PGPORT");
    QString user = qEnvironmentVariable("ROTALIX_TEST_PGUSER", QStringLiteral("postgres"));
};

// Runs one statement on the server's maintenance database.
QString adminExec(const PgServer& pg, const QString& sql) {
    const QString name = QStringLiteral("rtx-admin-") + QUuid::createUuid().toString();
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(pg.host);
        db.setPort(pg.port ? pg.port : 5432);
        db.setUserName(pg.user);
        db.setDatabaseName(QStringLiteral("postgres"));
        if (!db.open()) {
            error = db.lastError().text();
        } else {
            QSqlQuery q(db);
            if (!q.exec(sql)) error = q.lastError().text();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return error;
}

} // namespace

TestInstallation::TestInstallation(bool seed, bool demo) {
    qputenv("XDG_RUNTIME_DIR", dir_.path().toUtf8());
    installation_ = std::make_unique<Installation>(dir_.path());
    settings_ = installation_->connectionSettings();
    if (qEnvironmentVariable("ROTALIX_TEST_ENGINE") == QStringLiteral("postgresql")) {
        const PgServer pg;
        if (pg.host.isEmpty()) {
            skipReason_ = QStringLiteral(
                "PostgreSQL de teste ausente (ROTALIX_TEST_PGHOST não definido): teste pulado");
            return;
        }
        pgDatabase_ =
            QStringLiteral("rtx_%1").arg(QUuid::createUuid().toString(QUuid::Id128).left(16));
        const QString err =
            adminExec(pg, QStringLiteral("CREATE DATABASE %1 TEMPLATE template0 ENCODING 'UTF8'")
                              .arg(pgDatabase_));
        if (!err.isEmpty()) {
            skipReason_ = QStringLiteral("PostgreSQL de teste inacessível: ") + err;
            pgDatabase_.clear();
            return;
        }
        settings_.engine = Engine::PostgreSQL;
        settings_.host = pg.host;
        settings_.port = pg.port ? pg.port : 5432;
        settings_.user = pg.user;
        settings_.database = pgDatabase_;
    }
    try {
        store_ = std::make_unique<Store>(settings_);
        Store::setCurrent(store_.get());
        if (seed)
            installation_->initialise(*store_, demo);
        else
            store_->ensureSchema();
    } catch (const StoreError& e) {
        qWarning("Falha ao preparar a instalação de teste: %s", e.what());
        throw;
    }
    ok_ = true;
}

TestInstallation::~TestInstallation() {
    store_.reset();
    if (!pgDatabase_.isEmpty())
        adminExec(PgServer(),
                  QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(pgDatabase_));
}

std::unique_ptr<Store> TestInstallation::openSecondStore() const {
    return std::make_unique<Store>(settings_);
}

} // namespace rtx::test
