#include "testinstall.h"

#include "session/core/demo.h"

#include <QCoreApplication>
#include <QProcess>
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

bool postgresRequired() {
    return qEnvironmentVariable("CI").compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0;
}

QString unreachableMessage(const QString& reason) {
    return postgresRequired() ? reason + QStringLiteral(": com CI=true o servidor é obrigatório, "
                                                        "o teste falha em vez de ser pulado")
                              : reason + QStringLiteral(": teste pulado");
}

bool TestInstallation::prepare() {
    qputenv("XDG_RUNTIME_DIR", dir_.path().toUtf8());
    installation_ = std::make_unique<Installation>(dir_.path());
    settings_ = installation_->connectionSettings();
    if (qEnvironmentVariable("ROTALIX_TEST_ENGINE") != QStringLiteral("postgresql")) return true;
    const PgServer pg;
    if (pg.host.isEmpty()) {
        skipReason_ =
            QStringLiteral("PostgreSQL de teste ausente (ROTALIX_TEST_PGHOST não definido)");
        return false;
    }
    pgDatabase_ = QStringLiteral("rtx_%1").arg(QUuid::createUuid().toString(QUuid::Id128).left(16));
    const QString err = adminExec(
        pg,
        QStringLiteral("CREATE DATABASE %1 TEMPLATE template0 ENCODING 'UTF8'").arg(pgDatabase_));
    if (!err.isEmpty()) {
        skipReason_ = QStringLiteral("PostgreSQL de teste inacessível: ") + err;
        pgDatabase_.clear();
        return false;
    }
    settings_.engine = Engine::PostgreSQL;
    settings_.host = pg.host;
    settings_.port = pg.port ? pg.port : 5432;
    settings_.user = pg.user;
    settings_.database = pgDatabase_;
    return true;
}

TestInstallation::TestInstallation(Empty) {
    ok_ = prepare();
}

TestInstallation::TestInstallation(bool seed, bool demo) {
    if (!prepare()) return;
    try {
        store_ = std::make_unique<Store>(settings_);
        Store::setCurrent(store_.get());
        if (seed)
            session::prepareInstallation(*installation_, *store_, demo);
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

QStringList stationArgs(const ConnectionSettings& s) {
    return s.engine == Engine::PostgreSQL ? QStringList{QStringLiteral("pg"), s.database}
                                          : QStringList{QStringLiteral("sqlite"), s.sqliteFile};
}

ConnectionSettings stationSettings(const QString& engine, const QString& database) {
    ConnectionSettings s;
    s.sqliteFile = database;
    if (engine != QStringLiteral("pg")) return s;
    const PgServer pg;
    s.engine = Engine::PostgreSQL;
    s.host = pg.host;
    s.port = pg.port ? pg.port : 5432;
    s.user = pg.user;
    s.database = database;
    return s;
}

bool runStations(const QString& flag, const ConnectionSettings& settings,
                 const QList<QStringList>& own) {
    std::vector<std::unique_ptr<QProcess>> stations;
    for (const QStringList& args : own) {
        auto& p = stations.emplace_back(std::make_unique<QProcess>());
        p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        p->start(QCoreApplication::applicationFilePath(),
                 QStringList{flag} + stationArgs(settings) + args);
    }
    bool ok = true;
    for (auto& p : stations)
        ok = p->waitForFinished(120000) && p->exitStatus() == QProcess::NormalExit &&
             p->exitCode() == 0 && ok;
    return ok;
}

QStringList pageValues(Store& store, const PageQuery& query, const QString& column, int pageSize) {
    QStringList seen;
    QVariantList after;
    for (;;) {
        Recordset page = store.page(query, after, pageSize);
        if (page.eof()) return seen;
        for (; !page.eof(); page.moveNext()) {
            seen << page.text(column);
            after = store.pageCursor(query, page);
        }
    }
}

} // namespace rtx::test
