// The office at a glance without walking the dispatches: per-day totals kept by triggers,
// as the cash book's, and the moment a dispatch was delivered.
//
// painel_horas: for each day, hour it was taken (-1 when its time cannot be read) and way
// of payment (a_vista 1 for "A VISTA", 0 for any other word), how many dispatches, what the
// clients pay (a19) and what the couriers get (VE). A day has a few dozen of these at most,
// so a year is read in a few thousand rows whatever the number of dispatches.
//
// painel_entregadores: for each day and courier (a18, equal blind to case as the column;
// "" for none), his dispatches, the delivered ones, his values, and the deliveries whose time
// is known with their minutes summed.
//
// atendimentos.entregue_em is the moment the dispatch was marked "Entregue" at the station
// (text "yyyy-MM-ddTHH:mm:ss", the station's clock, as the dispatch's own date and time are),
// and minutos_entrega the minutes from its date and time to that moment; both are written
// by the dispatch's owner. A dispatch delivered before this step, or typed in already
// delivered, has neither: its time is not known and is not made up.
//
// A day totals row is left at zero when its dispatches move away, as the cash book's are.

#include "migrations.h"
#include "store.h"

namespace rtx::migration {

namespace {

// ---- SQLite ----------------------------------------------------------------------------

// The hour of a time typed "HH:MM"; -1 for anything else.
QString sqliteHour(const QString& time) {
    return QStringLiteral("(CASE WHEN %1 GLOB '[0-2][0-9]*' AND CAST(SUBSTR(%1, 1, 2) AS INTEGER) "
                          "< 24 THEN CAST(SUBSTR(%1, 1, 2) AS INTEGER) ELSE -1 END)")
        .arg(time);
}

// The statements that add (sign "+") or take away (sign "-") one dispatch row (NEW or OLD).
QString sqliteMove(const QString& row, const QString& sign) {
    const QString r = row + QLatin1Char('.');
    return QStringLiteral(
               R"(INSERT INTO painel_horas (dia, hora, a_vista, atendimentos, valor, taxas)
            SELECT %1a2, %3, (CASE WHEN UPPER(%1a20) = 'A VISTA' THEN 1 ELSE 0 END),
                %2 1, %2 COALESCE(%1a19, 0), %2 COALESCE(%1VE, 0)
            WHERE %1a2 IS NOT NULL
            ON CONFLICT (dia, hora, a_vista) DO UPDATE SET
                atendimentos = atendimentos + excluded.atendimentos,
                valor = valor + excluded.valor, taxas = taxas + excluded.taxas;
        INSERT INTO painel_entregadores (dia, entregador, atendimentos, entregues, taxas,
                cronometradas, minutos)
            SELECT %1a2, COALESCE(%1a18, ''), %2 1,
                %2 (CASE WHEN UPPER(%1ST) = 'ENTREGUE' THEN 1 ELSE 0 END), %2 COALESCE(%1VE, 0),
                %2 (CASE WHEN UPPER(%1ST) = 'ENTREGUE' AND %1minutos_entrega IS NOT NULL
                    THEN 1 ELSE 0 END),
                %2 (CASE WHEN UPPER(%1ST) = 'ENTREGUE' THEN COALESCE(%1minutos_entrega, 0)
                    ELSE 0 END)
            WHERE %1a2 IS NOT NULL
            ON CONFLICT (dia, entregador) DO UPDATE SET
                atendimentos = atendimentos + excluded.atendimentos,
                entregues = entregues + excluded.entregues, taxas = taxas + excluded.taxas,
                cronometradas = cronometradas + excluded.cronometradas,
                minutos = minutos + excluded.minutos;
)")
        .arg(r, sign, sqliteHour(r + QStringLiteral("a3")));
}

void sqliteStep(Store& store) {
    store.execute(
        QStringLiteral("ALTER TABLE atendimentos ADD COLUMN entregue_em TEXT COLLATE NOCASE"));
    store.execute(QStringLiteral("ALTER TABLE atendimentos ADD COLUMN minutos_entrega BIGINT"));
    store.execute(QStringLiteral(
        R"(CREATE TABLE painel_horas (dia DATE NOT NULL, hora INTEGER NOT NULL,
            a_vista INTEGER NOT NULL, atendimentos BIGINT NOT NULL DEFAULT 0,
            valor BIGINT NOT NULL DEFAULT 0, taxas BIGINT NOT NULL DEFAULT 0,
            PRIMARY KEY (dia, hora, a_vista)) WITHOUT ROWID)"));
    store.execute(QStringLiteral(
        R"(CREATE TABLE painel_entregadores (dia DATE NOT NULL,
            entregador TEXT COLLATE NOCASE NOT NULL, atendimentos BIGINT NOT NULL DEFAULT 0,
            entregues BIGINT NOT NULL DEFAULT 0, taxas BIGINT NOT NULL DEFAULT 0,
            cronometradas BIGINT NOT NULL DEFAULT 0, minutos BIGINT NOT NULL DEFAULT 0,
            PRIMARY KEY (dia, entregador)) WITHOUT ROWID)"));
    // The rows already there, then the triggers that keep the totals from now on. The
    // courier is grouped blind to case, as the table's key compares him.
    store.execute(QStringLiteral(
                      R"(INSERT INTO painel_horas (dia, hora, a_vista, atendimentos, valor, taxas)
            SELECT a2, %1, (CASE WHEN UPPER(a20) = 'A VISTA' THEN 1 ELSE 0 END), COUNT(*),
                SUM(COALESCE(a19, 0)), SUM(COALESCE(VE, 0))
            FROM atendimentos WHERE a2 IS NOT NULL GROUP BY 1, 2, 3)")
                      .arg(sqliteHour(QStringLiteral("a3"))));
    store.execute(QStringLiteral(
        R"(INSERT INTO painel_entregadores (dia, entregador, atendimentos, entregues, taxas)
            SELECT a2, MIN(COALESCE(a18, '')), COUNT(*),
                SUM(CASE WHEN UPPER(ST) = 'ENTREGUE' THEN 1 ELSE 0 END), SUM(COALESCE(VE, 0))
            FROM atendimentos WHERE a2 IS NOT NULL
            GROUP BY a2, COALESCE(a18, '') COLLATE NOCASE)"));
    store.execute(QStringLiteral("CREATE TRIGGER tg_painel_ins AFTER INSERT ON atendimentos "
                                 "BEGIN %1 END")
                      .arg(sqliteMove(QStringLiteral("NEW"), QStringLiteral("+"))));
    store.execute(QStringLiteral("CREATE TRIGGER tg_painel_del AFTER DELETE ON atendimentos "
                                 "BEGIN %1 END")
                      .arg(sqliteMove(QStringLiteral("OLD"), QStringLiteral("-"))));
    // Only a change of what the totals hold moves them (not the folded copies, not the
    // posted codes).
    store.execute(QStringLiteral("CREATE TRIGGER tg_painel_upd AFTER UPDATE OF a2, a3, a18, a19, "
                                 "a20, ST, VE, minutos_entrega ON atendimentos BEGIN %1 %2 END")
                      .arg(sqliteMove(QStringLiteral("OLD"), QStringLiteral("-")),
                           sqliteMove(QStringLiteral("NEW"), QStringLiteral("+"))));
}

// ---- PostgreSQL ------------------------------------------------------------------------

const char* const kPostgreSql[] = {
    R"(ALTER TABLE atendimentos ADD COLUMN entregue_em TEXT COLLATE rtx_chave,
        ADD COLUMN minutos_entrega BIGINT)",
    R"(CREATE TABLE painel_horas (dia DATE NOT NULL, hora INTEGER NOT NULL,
        a_vista INTEGER NOT NULL, atendimentos BIGINT NOT NULL DEFAULT 0,
        valor BIGINT NOT NULL DEFAULT 0, taxas BIGINT NOT NULL DEFAULT 0,
        PRIMARY KEY (dia, hora, a_vista)))",
    R"(CREATE TABLE painel_entregadores (dia DATE NOT NULL,
        entregador TEXT COLLATE rtx_chave NOT NULL, atendimentos BIGINT NOT NULL DEFAULT 0,
        entregues BIGINT NOT NULL DEFAULT 0, taxas BIGINT NOT NULL DEFAULT 0,
        cronometradas BIGINT NOT NULL DEFAULT 0, minutos BIGINT NOT NULL DEFAULT 0,
        PRIMARY KEY (dia, entregador)))",
    // The hour of a time typed "HH:MM"; -1 for anything else. (A regular expression does
    // not take the column's collation, blind to case: it is matched byte by byte.)
    R"(CREATE FUNCTION rtx_painel_hora(t TEXT) RETURNS INTEGER AS $$
        SELECT CASE WHEN t COLLATE "C" ~ '^([01][0-9]|2[0-3])' THEN substr(t, 1, 2)::INTEGER
                    ELSE -1 END $$ LANGUAGE sql IMMUTABLE)",
    R"(INSERT INTO painel_horas (dia, hora, a_vista, atendimentos, valor, taxas)
        SELECT a2, rtx_painel_hora(a3), (CASE WHEN UPPER(a20) = 'A VISTA' THEN 1 ELSE 0 END),
            COUNT(*), SUM(COALESCE(a19, 0)), SUM(COALESCE(VE, 0))
        FROM atendimentos WHERE a2 IS NOT NULL GROUP BY 1, 2, 3)",
    R"(INSERT INTO painel_entregadores (dia, entregador, atendimentos, entregues, taxas)
        SELECT a2, MIN(COALESCE(a18, '') COLLATE "C"), COUNT(*),
            SUM(CASE WHEN UPPER(ST) = 'ENTREGUE' THEN 1 ELSE 0 END), SUM(COALESCE(VE, 0))
        FROM atendimentos WHERE a2 IS NOT NULL
        GROUP BY a2, COALESCE(a18, '') COLLATE rtx_chave)",
    R"(CREATE FUNCTION rtx_painel() RETURNS trigger AS $$
        DECLARE r RECORD; s INTEGER; delivered BOOLEAN;
        BEGIN
        FOR i IN 1..2 LOOP
            IF i = 1 AND TG_OP IN ('DELETE', 'UPDATE') THEN r := OLD; s := -1;
            ELSIF i = 2 AND TG_OP IN ('INSERT', 'UPDATE') THEN r := NEW; s := 1;
            ELSE CONTINUE; END IF;
            CONTINUE WHEN r.a2 IS NULL;
            delivered := UPPER(r.st) = 'ENTREGUE';
            INSERT INTO painel_horas AS t (dia, hora, a_vista, atendimentos, valor, taxas)
                VALUES (r.a2, rtx_painel_hora(r.a3),
                        CASE WHEN UPPER(r.a20) = 'A VISTA' THEN 1 ELSE 0 END,
                        s, s * COALESCE(r.a19, 0), s * COALESCE(r.ve, 0))
                ON CONFLICT (dia, hora, a_vista) DO UPDATE SET
                    atendimentos = t.atendimentos + EXCLUDED.atendimentos,
                    valor = t.valor + EXCLUDED.valor, taxas = t.taxas + EXCLUDED.taxas;
            INSERT INTO painel_entregadores AS t (dia, entregador, atendimentos, entregues,
                    taxas, cronometradas, minutos)
                VALUES (r.a2, COALESCE(r.a18, ''), s, CASE WHEN delivered THEN s ELSE 0 END,
                        s * COALESCE(r.ve, 0),
                        CASE WHEN delivered AND r.minutos_entrega IS NOT NULL THEN s ELSE 0 END,
                        CASE WHEN delivered THEN s * COALESCE(r.minutos_entrega, 0) ELSE 0 END)
                ON CONFLICT (dia, entregador) DO UPDATE SET
                    atendimentos = t.atendimentos + EXCLUDED.atendimentos,
                    entregues = t.entregues + EXCLUDED.entregues,
                    taxas = t.taxas + EXCLUDED.taxas,
                    cronometradas = t.cronometradas + EXCLUDED.cronometradas,
                    minutos = t.minutos + EXCLUDED.minutos;
        END LOOP;
        RETURN NULL; END $$ LANGUAGE plpgsql)",
    // Only a change of what the totals hold moves them (not the posted codes).
    R"(CREATE TRIGGER tg_painel AFTER INSERT OR DELETE OR UPDATE OF a2, a3, a18, a19, a20, st,
        ve, minutos_entrega ON atendimentos FOR EACH ROW EXECUTE FUNCTION rtx_painel())",
};

} // namespace

void panelDayTotals(Store& store) {
    if (store.engine() == Engine::SQLite)
        sqliteStep(store);
    else
        for (const char* sql : kPostgreSql)
            store.execute(QString::fromUtf8(sql));
}

} // namespace rtx::migration
