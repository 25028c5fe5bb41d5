#include "migrations.h"

#include "store.h"

namespace rtx {

const QList<Migration>& migrations() {
    static const QList<Migration> steps{
        {1, QStringLiteral("as tabelas da primeira versão"), &migration::firstSchema},
        {2, QStringLiteral("textos comparados sem agrupamento próprio no esquema"),
         &migration::textWithoutCustomCollation},
        {3, QStringLiteral("contas indexadas pela data de lançamento"),
         &migration::entryDateIndexes},
        {4, QStringLiteral("atendimentos com os códigos do seu lançamento financeiro"),
         &migration::dispatchPostedRows},
        {5, QStringLiteral("faturas do mês com a chave PIX da empresa"), &migration::invoices},
        {6, QStringLiteral("índices do painel"), &migration::panelIndexes},
        {7, QStringLiteral("senhas guardadas como resumos que não se leem de volta"),
         &migration::hashedPasswords},
        {8, QStringLiteral("totais do painel por dia e momento da entrega"),
         &migration::panelDayTotals},
        {9, QStringLiteral("versão das linhas dos cadastros"), &migration::rowVersions},
    };
    return steps;
}

namespace {

// The stored version; 0 for an empty database, which has no version table yet.
int storedVersion(Store& store) {
    try {
        return store.storedSchemaVersion();
    } catch (const StoreError&) {
        return 0;
    }
}

} // namespace

void migrate(Store& store, const QList<Migration>& steps) {
    for (int i = 0; i < steps.size(); ++i)
        if (steps[i].version != i + 1)
            throw StoreError(
                QStringLiteral("Passo de atualiza\u00e7\u00e3o fora de ordem: %1 (%2).")
                    .arg(steps[i].version)
                    .arg(steps[i].what));
    // The usual start: nothing to do, and no lock taken.
    if (steps.isEmpty() || storedVersion(store) >= steps.last().version) return;
    for (const Migration& step : steps) {
        UnitOfWork unit(store);
        // One station at a time: the version is read again under the writer's lock (SQLite's
        // BEGIN IMMEDIATE, an advisory lock on PostgreSQL), so a step that another station
        // has just taken is not taken twice.
        if (store.engine() == Engine::PostgreSQL)
            store.execute(QStringLiteral("SELECT pg_advisory_xact_lock(hashtext('rtx.versao'))"));
        store.execute(
            QStringLiteral("CREATE TABLE IF NOT EXISTS rtx_versao (versao INTEGER NOT NULL)"));
        if (store.storedSchemaVersion() >= step.version) continue;
        try {
            step.apply(store);
            store.execute(QStringLiteral("DELETE FROM rtx_versao"));
            store.execute(QStringLiteral("INSERT INTO rtx_versao (versao) VALUES (?)"),
                          {step.version});
            unit.commit();
        } catch (const StoreError& e) {
            throw StoreError(
                QStringLiteral("A atualiza\u00e7\u00e3o do banco de dados para a vers\u00e3o %1 "
                               "(%2) falhou: %3")
                    .arg(step.version)
                    .arg(step.what, e.text()));
        }
    }
}

} // namespace rtx
