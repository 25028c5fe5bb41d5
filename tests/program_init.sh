#!/usr/bin/env bash
# The program's command line: --init creates an installation (twice changes nothing),
# --demo fills it, a bad call says how to use it.
set -euo pipefail
program="$1"
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
export QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR="$dir"
"$program" --init --demo "$dir/nova/pasta" | grep -q "Instalação pronta"
test -s "$dir/nova/pasta/rotalix.db"
test "$(head -n 1 "$dir/nova/pasta/site.txt")" != ""
count() {
  python3 - "$dir/nova/pasta/rotalix.db" "$1" <<'PY'
import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
print(db.execute("SELECT COUNT(*) FROM " + sys.argv[2]).fetchone()[0])
PY
}
test "$(count clientes)" = 20
test "$(count funcionarios)" = 3
"$program" --init --demo "$dir/nova/pasta" >/dev/null
test "$(count clientes)" = 20
test "$(count funcionarios)" = 3
# Every report's layout is written; a second --init keeps a changed one and brings back a
# deleted one.
test "$(ls "$dir/nova/pasta"/*.rpt | wc -l)" = 13
echo "# mudado pelo escritório" >>"$dir/nova/pasta/rela3.rpt"
rm "$dir/nova/pasta/rela1.rpt"
"$program" --init "$dir/nova/pasta" | grep -q "Relatório rela1.rpt criado"
grep -q "mudado pelo escritório" "$dir/nova/pasta/rela3.rpt"
test -s "$dir/nova/pasta/rela1.rpt"
# The program opens the installation and stays up, waiting at the login.
"$program" --pasta "$dir/nova/pasta" &
pid=$!
sleep 2
kill -0 "$pid"
kill "$pid"
wait "$pid" 2>/dev/null || true
# A backup restored into an empty folder is a whole installation: the database and every
# layout, and the program opens it.
mkdir -p "$dir/cd/Backup 01.02.2026"
cp "$dir/nova/pasta/rotalix.db" "$dir/nova/pasta"/*.rpt "$dir/cd/Backup 01.02.2026/"
"$program" --restaurar "$dir/cd/Backup 01.02.2026" --pasta "$dir/vazia" | grep -q "Backup restaurado"
test "$(ls "$dir/vazia"/*.rpt | wc -l)" = 13
grep -q "mudado pelo escritório" "$dir/vazia/rela3.rpt"
test "$(python3 -c 'import sqlite3,sys; print(sqlite3.connect(sys.argv[1]).execute("SELECT COUNT(*) FROM clientes").fetchone()[0])' "$dir/vazia/rotalix.db")" = 20
"$program" --pasta "$dir/vazia" --sair-no-login | grep -q "Login exibido"
if "$program" --init 2>"$dir/err"; then exit 1; fi
grep -q "Uso:" "$dir/err"
echo "ok"
