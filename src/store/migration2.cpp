// Step 2 of the schema: text equality blind to case but not to accents, search and order
// blind to both, and a stored schema that any SQLite tool can read and check.
//
// SQLite: the text columns compare with the built-in NOCASE collation instead of the
// program's own, so that the file opens in the standard tool. Each text column that is
// looked up or searched gets two folded copies kept by triggers: "_chave" (case-folded:
// the key of an equality) and "_busca" (case- and accent-folded: the start of a search and
// the order of a list), each with a plain index. The triggers call functions that only this
// program registers, so the tool reads and checks the file but cannot write those tables.
//
// PostgreSQL: the text columns take an ICU collation blind to case only; the searched ones
// get an index on the column under a second collation blind to accents as well.

#include "migrations.h"
#include "store.h"

#include <QRegularExpression>

namespace rtx::migration {

namespace {

QStringList list(std::initializer_list<const char*> names) {
    QStringList out;
    for (const char* n : names)
        out << QString::fromLatin1(n);
    return out;
}

QStringList columnsOf(Store& store, const QString& table) {
    QStringList out;
    for (Recordset rs = store.open(QStringLiteral("PRAGMA table_info(%1)").arg(table)); !rs.eof();
         rs.moveNext())
        out << rs.value(QStringLiteral("name")).toString();
    return out;
}

// ---- SQLite ----------------------------------------------------------------------------

const char* const kSqliteCashDays[] = {
    // The per-day totals of the cash book, as in step 1, with the kind of movement compared
    // by its case-folded form.
    R"(CREATE TRIGGER tg_caixa_ins AFTER INSERT ON caixa BEGIN
        INSERT INTO caixa_dias (dia) SELECT NEW.A1 WHERE NEW.A1 IS NOT NULL
            ON CONFLICT (dia) DO NOTHING;
        UPDATE caixa_dias SET
            creditos = creditos + (CASE WHEN rtx_chave(NEW.A2) = rtx_chave('CRÉDITO')
                                   THEN COALESCE(NEW.A5, 0) ELSE 0 END),
            debitos = debitos + (CASE WHEN rtx_chave(NEW.A2) = rtx_chave('DÉBITO')
                                 THEN COALESCE(NEW.A5, 0) ELSE 0 END)
            WHERE dia = NEW.A1;
        END)",
    R"(CREATE TRIGGER tg_caixa_del AFTER DELETE ON caixa BEGIN
        INSERT INTO caixa_dias (dia) SELECT OLD.A1 WHERE OLD.A1 IS NOT NULL
            ON CONFLICT (dia) DO NOTHING;
        UPDATE caixa_dias SET
            creditos = creditos - (CASE WHEN rtx_chave(OLD.A2) = rtx_chave('CRÉDITO')
                                   THEN COALESCE(OLD.A5, 0) ELSE 0 END),
            debitos = debitos - (CASE WHEN rtx_chave(OLD.A2) = rtx_chave('DÉBITO')
                                 THEN COALESCE(OLD.A5, 0) ELSE 0 END)
            WHERE dia = OLD.A1;
        END)",
    // Only a change of day, kind or amount moves the totals (not the folded copies).
    R"(CREATE TRIGGER tg_caixa_upd AFTER UPDATE OF A1, A2, A5 ON caixa BEGIN
        INSERT INTO caixa_dias (dia) SELECT OLD.A1 WHERE OLD.A1 IS NOT NULL
            ON CONFLICT (dia) DO NOTHING;
        UPDATE caixa_dias SET
            creditos = creditos - (CASE WHEN rtx_chave(OLD.A2) = rtx_chave('CRÉDITO')
                                   THEN COALESCE(OLD.A5, 0) ELSE 0 END),
            debitos = debitos - (CASE WHEN rtx_chave(OLD.A2) = rtx_chave('DÉBITO')
                                 THEN COALESCE(OLD.A5, 0) ELSE 0 END)
            WHERE dia = OLD.A1;
        INSERT INTO caixa_dias (dia) SELECT NEW.A1 WHERE NEW.A1 IS NOT NULL
            ON CONFLICT (dia) DO NOTHING;
        UPDATE caixa_dias SET
            creditos = creditos + (CASE WHEN rtx_chave(NEW.A2) = rtx_chave('CRÉDITO')
                                   THEN COALESCE(NEW.A5, 0) ELSE 0 END),
            debitos = debitos + (CASE WHEN rtx_chave(NEW.A2) = rtx_chave('DÉBITO')
                                 THEN COALESCE(NEW.A5, 0) ELSE 0 END)
            WHERE dia = NEW.A1;
        END)",
};

// Rebuilds one table of step 1 with NOCASE text and the folded copies of its searched
// columns; its rows, its other indexes and its id numbers stay as they were.
void rebuildSqliteTable(Store& store, const QString& table, const QStringList& searched) {
    const QString created =
        store
            .scalar(
                QStringLiteral("SELECT sql FROM sqlite_master WHERE type = 'table' AND name = ?"),
                {table})
            .toString();
    QList<QString> indexes;
    for (Recordset rs = store.open(QStringLiteral("SELECT sql FROM sqlite_master WHERE type = "
                                                  "'index' AND tbl_name = ? AND sql IS NOT NULL"),
                                   {table});
         !rs.eof(); rs.moveNext())
        indexes << rs.value(0).toString();
    for (Recordset rs = store.open(
             QStringLiteral(
                 "SELECT name FROM sqlite_master WHERE type = 'trigger' AND tbl_name = ?"),
             {table});
         !rs.eof(); rs.moveNext())
        store.execute(QStringLiteral("DROP TRIGGER %1").arg(rs.value(0).toString()));
    const QStringList columns = columnsOf(store, table);

    const QString rebuilt = table + QStringLiteral("_novo");
    QString sql = created;
    sql.replace(QRegularExpression(QStringLiteral(R"(\bCOLLATE\s+rtx_fold\b)"),
                                   QRegularExpression::CaseInsensitiveOption),
                QStringLiteral("COLLATE NOCASE"));
    sql.replace(QRegularExpression(QStringLiteral(R"(^CREATE\s+TABLE\s+\w+\s*\()"),
                                   QRegularExpression::CaseInsensitiveOption),
                QStringLiteral("CREATE TABLE %1 (").arg(rebuilt));
    QStringList folded, names = columns, values = columns;
    for (const QString& c : searched) {
        folded << keyColumn(c) + QStringLiteral(" TEXT")
               << searchColumn(c) + QStringLiteral(" TEXT");
        names << keyColumn(c) << searchColumn(c);
        values << QStringLiteral("rtx_chave(%1)").arg(c) << QStringLiteral("rtx_busca(%1)").arg(c);
    }
    if (!folded.isEmpty())
        sql.insert(sql.lastIndexOf(QLatin1Char(')')), QStringLiteral(", ") + folded.join(u", "));
    store.execute(sql);
    store.execute(QStringLiteral("INSERT INTO %1 (%2) SELECT %3 FROM %4")
                      .arg(rebuilt, names.join(u", "), values.join(u", "), table));
    store.execute(QStringLiteral("DROP TABLE %1").arg(table));
    store.execute(QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(rebuilt, table));

    // The indexes of step 1, but for those of a searched column: its folded copies take
    // their place.
    for (const QString& index : std::as_const(indexes)) {
        bool replaced = false;
        for (const QString& c : searched)
            replaced = replaced || index.endsWith(QStringLiteral("(%1)").arg(c));
        if (!replaced) store.execute(index);
    }
    for (const QString& c : searched) {
        store.execute(QStringLiteral("CREATE INDEX ix_%1_%2 ON %1 (%2)").arg(table, keyColumn(c)));
        store.execute(
            QStringLiteral("CREATE INDEX ix_%1_%2 ON %1 (%2)").arg(table, searchColumn(c)));
    }
}

void sqliteStep(Store& store) {
    QStringList rebuild;
    for (Recordset rs = store.open(QStringLiteral(
             "SELECT name FROM sqlite_master WHERE type = 'table' AND sql LIKE '%rtx_fold%' "
             "ORDER BY name"));
         !rs.eof(); rs.moveNext())
        rebuild << rs.value(0).toString();
    for (const QString& table : std::as_const(rebuild)) {
        QStringList searched;
        QString id;
        for (const SearchedColumns& s : searchedColumnsOfStep2())
            if (s.table == table) searched = s.columns, id = s.idColumn;
        rebuildSqliteTable(store, table, searched);
        if (!searched.isEmpty()) refreshFoldTriggers(store, table, id);
    }
    for (const char* sql : kSqliteCashDays)
        store.execute(QString::fromUtf8(sql));
}

// ---- PostgreSQL ------------------------------------------------------------------------

const char* const kPostgreSqlCashDays =
    // As in step 1; the kind of movement compares by its column's collation now.
    R"(CREATE OR REPLACE FUNCTION rtx_caixa_dias() RETURNS trigger AS $$ BEGIN
        IF TG_OP IN ('DELETE', 'UPDATE') THEN IF OLD.a1 IS NOT NULL THEN
            INSERT INTO caixa_dias (dia) VALUES (OLD.a1) ON CONFLICT (dia) DO NOTHING;
            UPDATE caixa_dias SET
                creditos = creditos - (CASE WHEN OLD.a2 = 'CRÉDITO'
                                       THEN COALESCE(OLD.a5, 0) ELSE 0 END),
                debitos = debitos - (CASE WHEN OLD.a2 = 'DÉBITO'
                                     THEN COALESCE(OLD.a5, 0) ELSE 0 END)
                WHERE dia = OLD.a1;
        END IF; END IF;
        IF TG_OP IN ('INSERT', 'UPDATE') THEN IF NEW.a1 IS NOT NULL THEN
            INSERT INTO caixa_dias (dia) VALUES (NEW.a1) ON CONFLICT (dia) DO NOTHING;
            UPDATE caixa_dias SET
                creditos = creditos + (CASE WHEN NEW.a2 = 'CRÉDITO'
                                       THEN COALESCE(NEW.a5, 0) ELSE 0 END),
                debitos = debitos + (CASE WHEN NEW.a2 = 'DÉBITO'
                                     THEN COALESCE(NEW.a5, 0) ELSE 0 END)
                WHERE dia = NEW.a1;
        END IF; END IF;
        RETURN NULL; END $$ LANGUAGE plpgsql)";

void postgreSqlStep(Store& store) {
    store.execute(QStringLiteral("CREATE COLLATION IF NOT EXISTS rtx_chave (provider = icu, "
                                 "locale = 'und-u-ks-level2', deterministic = false)"));
    store.execute(QStringLiteral("CREATE COLLATION IF NOT EXISTS rtx_busca (provider = icu, "
                                 "locale = 'und-u-ks-level1', deterministic = false)"));
    // Every column of step 1's collation, table by table (one rewrite of each table's
    // indexes).
    QMap<QString, QStringList> changes;
    for (Recordset rs = store.open(
             QStringLiteral("SELECT table_name, column_name FROM information_schema.columns WHERE "
                            "table_schema = current_schema() AND collation_name = 'rtx_ci' "
                            "ORDER BY table_name, ordinal_position"));
         !rs.eof(); rs.moveNext())
        changes[rs.value(0).toString()]
            << QStringLiteral("ALTER COLUMN %1 TYPE TEXT COLLATE rtx_chave")
                   .arg(rs.value(1).toString());
    for (auto it = changes.cbegin(); it != changes.cend(); ++it)
        store.execute(QStringLiteral("ALTER TABLE %1 %2").arg(it.key(), it.value().join(u", ")));
    // The search index: the column blind to accents, in the order a list pages by.
    for (const SearchedColumns& s : searchedColumnsOfStep2())
        for (const QString& c : s.columns)
            store.execute(QStringLiteral("CREATE INDEX ix_%1_%2 ON %1 ((%3 COLLATE rtx_busca) "
                                         "NULLS FIRST, %4)")
                              .arg(s.table, searchColumn(c), c, s.idColumn));
    store.execute(QString::fromUtf8(kPostgreSqlCashDays));
    // rtx_ci stays: the work tables of a station still running the first version use it.
}

} // namespace

const QList<SearchedColumns>& searchedColumnsOfStep2() {
    static const QList<SearchedColumns> all{
        {QStringLiteral("filiais"), QStringLiteral("cd"), list({"x1"})},
        {QStringLiteral("funcionarios"), QStringLiteral("cd"), list({"x1", "x8"})},
        {QStringLiteral("permissoes"), QStringLiteral("rid"), list({"a1"})},
        {QStringLiteral("clientes"), QStringLiteral("rid"), list({"C8", "C9", "C10", "C5", "C3"})},
        {QStringLiteral("grupos_clientes"), QStringLiteral("rid"), list({"A1"})},
        {QStringLiteral("fornecedores"), QStringLiteral("rid"),
         list({"C8", "C9", "C10", "C5", "C3"})},
        {QStringLiteral("formas_pagamento"), QStringLiteral("rid"), list({"A1"})},
        {QStringLiteral("tipos_financeiros"), QStringLiteral("rid"), list({"A1"})},
        {QStringLiteral("grupos_contas"), QStringLiteral("rid"), list({"A1"})},
        {QStringLiteral("motoqueiros"), QStringLiteral("rid"),
         list({"C4", "C5", "C1", "C3", "C8", "C9", "C10"})},
        {QStringLiteral("atendimentos"), QStringLiteral("rid"), list({"ST", "a18", "a6", "a4"})},
        {QStringLiteral("status_atendimento"), QStringLiteral("rid"), list({"sta"})},
        {QStringLiteral("servicos"), QStringLiteral("rid"), list({"A1"})},
        {QStringLiteral("caixa"), QStringLiteral("rid"), list({"A7", "A3"})},
        {QStringLiteral("contas_pagar"), QStringLiteral("rid"), list({"c3", "c6", "c2"})},
        {QStringLiteral("contas_receber"), QStringLiteral("rid"), list({"c3", "c6", "c2"})},
        {QStringLiteral("recibos"), QStringLiteral("rid"), list({"R2"})},
        {QStringLiteral("agenda_posicoes"), QStringLiteral("rid"), list({"AGE"})},
        {QStringLiteral("agenda_grupos"), QStringLiteral("rid"), list({"AGE"})},
        {QStringLiteral("agenda_eventos"), QStringLiteral("rid"), list({"AGE"})},
        {QStringLiteral("agenda_avisos"), QStringLiteral("rid"), list({"A1"})},
    };
    return all;
}

QString keyColumn(const QString& column) {
    return column + QStringLiteral("_chave");
}

QString searchColumn(const QString& column) {
    return column + QStringLiteral("_busca");
}

void refreshFoldTriggers(Store& store, const QString& table, const QString& idColumn) {
    const QStringList columns = columnsOf(store, table);
    QStringList folded, sets;
    for (const QString& c : columns)
        if (columns.contains(keyColumn(c)) && columns.contains(searchColumn(c))) {
            folded << c;
            sets << QStringLiteral("%1 = rtx_chave(NEW.%2), %3 = rtx_busca(NEW.%2)")
                        .arg(keyColumn(c), c, searchColumn(c));
        }
    store.execute(QStringLiteral("DROP TRIGGER IF EXISTS tg_%1_texto_ins").arg(table));
    store.execute(QStringLiteral("DROP TRIGGER IF EXISTS tg_%1_texto_upd").arg(table));
    if (folded.isEmpty()) return;
    const QString body = QStringLiteral("BEGIN UPDATE %1 SET %2 WHERE %3 = NEW.%3; END")
                             .arg(table, sets.join(u", "), idColumn);
    store.execute(
        QStringLiteral("CREATE TRIGGER tg_%1_texto_ins AFTER INSERT ON %1 %2").arg(table, body));
    store.execute(QStringLiteral("CREATE TRIGGER tg_%1_texto_upd AFTER UPDATE OF %2 ON %1 %3")
                      .arg(table, folded.join(u", "), body));
}

void textWithoutCustomCollation(Store& store) {
    if (store.engine() == Engine::SQLite)
        sqliteStep(store);
    else
        postgreSqlStep(store);
}

} // namespace rtx::migration
