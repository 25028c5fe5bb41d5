#include "migrations.h"

#include "store.h"

namespace rtx {

const QList<Migration>& migrations() {
    static const QList<Migration> steps{
        {1, QStringLiteral("as tabelas da primeira versão"), &migration::firstSchema},
        {2, QStringLiteral("textos comparados sem agrupamento próprio no esquema"),
         &migration::textWithoutCustomCollation},
    };
    return steps;
}

void migrate(Store& store, const QList<Migration>& steps) {
    store.execute(
        QStringLiteral("CREATE TABLE IF NOT EXISTS rtx_versao (versao INTEGER NOT NULL)"));
    int expected = 1;
    for (const Migration& step : steps) {
        if (step.version != expected++)
            throw StoreError(QStringLiteral("Passo de atualização fora de ordem: %1 (%2).")
                                 .arg(step.version)
                                 .arg(step.what));
        UnitOfWork unit(store);
        // One station at a time: the version is read again under the writer's lock, so a
        // step that another station has just taken is not taken twice.
        if (store.engine() == Engine::PostgreSQL)
            store.execute(QStringLiteral("SELECT pg_advisory_xact_lock(hashtext('rtx.versao'))"));
        if (store.storedSchemaVersion() >= step.version) continue;
        try {
            step.apply(store);
            store.execute(QStringLiteral("DELETE FROM rtx_versao"));
            store.execute(QStringLiteral("INSERT INTO rtx_versao (versao) VALUES (?)"),
                          {step.version});
            unit.commit();
        } catch (const StoreError& e) {
            throw StoreError(QStringLiteral("A atualização do banco de dados para a versão %1 "
                                            "(%2) falhou: %3")
                                 .arg(step.version)
                                 .arg(step.what, e.text()));
        }
    }
}

} // namespace rtx
