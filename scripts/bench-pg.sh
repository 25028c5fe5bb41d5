#!/usr/bin/env bash
# The benchmark on PostgreSQL, first straight on the loopback, then through an office
# network's round trip (1 ms: 0.5 ms each way), on the same throwaway server and data.
#
#   scripts/bench-pg.sh [sections...]        (default: store dispatch billing)
#   scripts/bench-pg.sh estacoes             the station simulator instead, on a new
#                                            database each way (ROTALIX_ESTACOES stations,
#                                            default 8; ROTALIX_SEGUNDOS, default 60;
#                                            ROTALIX_INTERVALO ms between actions, default 500)
#
# ROTALIX_ATRASO_MS sets the delay each way; ROTALIX_BENCH_PGDADOS keeps the server's data
# folder between runs, so that the large installation is filled once.
# The delay comes from rotalix-latencia, a forwarder on the loopback: a container without
# the kernel's netem queue cannot delay its own packets.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh" --target rotalix-bench --target rotalix-latencia --target rotalix-estacoes
sections=("$@")
[ ${#sections[@]} -gt 0 ] || sections=(store dispatch billing)
delay=${ROTALIX_ATRASO_MS:-0.5}

work=$(mktemp -d /tmp/rotalix-bench-pg.XXXXXX)
chmod 755 "$work"
export XDG_RUNTIME_DIR="$work/runtime"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
data=${ROTALIX_BENCH_PGDADOS:-$work/pg}

pgbin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)
[ -x "$pgbin/initdb" ] || { echo "ERRO: PostgreSQL não instalado"; exit 1; }
as_pg=()
if [ "$(id -u)" -eq 0 ]; then
  chown postgres "$work"
  as_pg=(runuser -u postgres --)
fi
free_port() { python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'; }
port=$(free_port)
proxy_port=$(free_port)
if [ ! -f "$data/PG_VERSION" ]; then
  mkdir -p "$data"
  if [ "$(id -u)" -eq 0 ]; then chown postgres "$data"; fi
  "${as_pg[@]}" "$pgbin/initdb" -D "$data" -U postgres -A trust -E UTF8 --locale=C.UTF-8 >"$work/initdb.log" 2>&1
fi
"${as_pg[@]}" "$pgbin/pg_ctl" -D "$data" -l "$work/pg.log" -w \
  -o "-p $port -k $work -c listen_addresses=127.0.0.1 -c fsync=off -c full_page_writes=off" start >/dev/null
proxy_pid=
stop() {
  [ -n "$proxy_pid" ] && kill "$proxy_pid" 2>/dev/null || true
  "${as_pg[@]}" "$pgbin/pg_ctl" -D "$data" -m fast stop >/dev/null 2>&1 || true
  rm -rf "$work"
}
trap stop EXIT
"${as_pg[@]}" "$pgbin/psql" -h 127.0.0.1 -p "$port" -U postgres -qtc \
  "SELECT 1 FROM pg_database WHERE datname = 'rotalix_bench'" | grep -q 1 ||
  "${as_pg[@]}" "$pgbin/createdb" -h 127.0.0.1 -p "$port" -U postgres rotalix_bench

"$root/build/bench/rotalix-latencia" --ouvir "$proxy_port" --destino "127.0.0.1:$port" \
  --atraso-ms "$delay" &
proxy_pid=$!

bench_dir="$work/bench"
mkdir -p "$bench_dir/grande"
settings() {
  printf '[banco]\nmotor=postgresql\nservidor=127.0.0.1\nporta=%s\nbanco=rotalix_bench\nusuario=postgres\n' "$1" \
    >"$bench_dir/grande/rotalix.ini"
}
export ROTALIX_BENCH_DIR="$bench_dir" QT_QPA_PLATFORM=offscreen

if [ "${sections[0]}" = estacoes ]; then
  # Each way on a database of its own, made anew, so that the two runs start alike.
  stations() {
    local name=$1 to=$2 dir="$work/estacoes-$1"
    "${as_pg[@]}" "$pgbin/dropdb" -h 127.0.0.1 -p "$port" -U postgres --if-exists "rotalix_$name"
    "${as_pg[@]}" "$pgbin/createdb" -h 127.0.0.1 -p "$port" -U postgres "rotalix_$name"
    mkdir -p "$dir"
    printf '[banco]\nmotor=postgresql\nservidor=127.0.0.1\nporta=%s\nbanco=rotalix_%s\nusuario=postgres\n' \
      "$to" "$name" >"$dir/rotalix.ini"
    "$root/build/bench/rotalix-estacoes" --pasta "$dir" --estacoes "${ROTALIX_ESTACOES:-8}" \
      --segundos "${ROTALIX_SEGUNDOS:-60}" --intervalo "${ROTALIX_INTERVALO:-500}" || status=1
  }
  status=0
  echo "=== Estações no PostgreSQL pelo loopback"
  stations loopback "$port"
  echo
  echo "=== Estações no PostgreSQL por uma rede de escritório simulada (ida e volta $(python3 -c "print($delay*2)") ms)"
  stations rede "$proxy_port"
  exit $status
fi

echo "=== PostgreSQL no loopback (porta $port)"
settings "$port"
"$root/build/bench/rotalix-bench" "${sections[@]}"
echo
echo "=== PostgreSQL por uma rede de escritório simulada (ida e volta $(python3 -c "print($delay*2)") ms)"
settings "$proxy_port"
"$root/build/bench/rotalix-bench" "${sections[@]}"
