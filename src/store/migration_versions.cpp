// The registers the screens open and save keep a version: each UPDATE of a row raises it,
// whoever writes it (a screen, billing's write-off, a dispatch's posting), so that a station
// saving a record it read earlier can tell that another station wrote it meanwhile, rather
// than writing over what the other typed.

#include "migrations.h"
#include "store.h"

namespace rtx::migration {

namespace {

// The tables, each with its engine-given key.
const std::pair<const char*, const char*> kVersioned[] = {
    {"clientes", "rid"},       {"motoqueiros", "rid"},  {"fornecedores", "rid"},
    {"funcionarios", "cd"},    {"atendimentos", "rid"}, {"contas_pagar", "rid"},
    {"contas_receber", "rid"}, {"agenda", "rid"},
};

} // namespace

void rowVersions(Store& store) {
    const bool sqlite = store.engine() == Engine::SQLite;
    if (!sqlite)
        store.execute(QStringLiteral(R"(CREATE FUNCTION rtx_versao_sobe() RETURNS trigger
            LANGUAGE plpgsql AS $$ BEGIN NEW.versao := OLD.versao + 1; RETURN NEW; END $$)"));
    for (const auto& [name, id] : kVersioned) {
        const QString table = QString::fromLatin1(name);
        store.execute(QStringLiteral("ALTER TABLE %1 ADD COLUMN versao BIGINT NOT NULL DEFAULT 1")
                          .arg(table));
        if (sqlite) {
            // SQLite cannot change the row in a BEFORE trigger: the row is raised after. Its own
            // UPDATE does not fire it again (recursive triggers are off).
            store.execute(QStringLiteral("CREATE TRIGGER tg_%1_versao AFTER UPDATE ON %1 BEGIN "
                                         "UPDATE %1 SET versao = OLD.versao + 1 WHERE %2 = "
                                         "NEW.%2; END")
                              .arg(table, QString::fromLatin1(id)));
        } else {
            store.execute(QStringLiteral("CREATE TRIGGER tg_%1_versao BEFORE UPDATE ON %1 FOR "
                                         "EACH ROW EXECUTE FUNCTION rtx_versao_sobe()")
                              .arg(table));
        }
    }
}

} // namespace rtx::migration
