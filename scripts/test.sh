#!/usr/bin/env bash
# The whole test suite: installs what is missing, builds, starts a throwaway PostgreSQL
# server on the loopback and runs every test through ctest, on SQLite and on PostgreSQL.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/deps.sh"
"$root/scripts/build.sh"
# The benchmark is built (not run) so that it never falls behind the code.
"$root/scripts/build.sh" --target rotalix-bench rotalix-estacoes

work=$(mktemp -d /tmp/rotalix-test.XXXXXX)
chmod 755 "$work"
export XDG_RUNTIME_DIR="$work/runtime"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"

pgbin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)
stop_pg() { :; }
if [ -n "$pgbin" ] && [ -x "$pgbin/initdb" ]; then
  as_pg=()
  if [ "$(id -u)" -eq 0 ]; then
    chown postgres "$work"
    as_pg=(runuser -u postgres --)
  fi
  port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
  "${as_pg[@]}" "$pgbin/initdb" -D "$work/pg" -U postgres -A trust -E UTF8 --locale=C.UTF-8 >"$work/initdb.log" 2>&1
  "${as_pg[@]}" "$pgbin/pg_ctl" -D "$work/pg" -l "$work/pg.log" -w \
    -o "-p $port -k $work -c listen_addresses=127.0.0.1 -c fsync=off -c full_page_writes=off -c max_connections=200" start >/dev/null
  stop_pg() { "${as_pg[@]}" "$pgbin/pg_ctl" -D "$work/pg" -m immediate stop >/dev/null 2>&1 || true; }
  export ROTALIX_TEST_PGHOST=127.0.0.1 ROTALIX_TEST_PGPORT=$port ROTALIX_TEST_PGUSER=postgres
  echo "PostgreSQL de teste na porta $port"
else
  if [ "${CI:-}" = "true" ]; then
    echo "ERRO: servidor PostgreSQL ausente e CI=true; os testes *_pg vão falhar."
  else
    echo "AVISO: servidor PostgreSQL ausente; os testes *_pg serão pulados."
  fi
fi
trap 'stop_pg; rm -rf "$work"' EXIT

# The README's first command, as a new user runs it, up to the login on a fresh demo.
echo "Verificando scripts/demo.sh numa instalação nova"
QT_QPA_PLATFORM=offscreen ROTALIX_PASTA="$work/demo" "$root/scripts/demo.sh" --sair-no-login

cd "$root/build"
ctest --output-on-failure -j "$(nproc)" "$@"
