#!/usr/bin/env bash
# Screenshots of billing (cobra, both tabs, and Altera valor) and of the receipts (RECIBO and
# a receipt's preview) with the demo office, reached as a user reaches them: ADMIN / admin
# at the login, the hub's "04-Financeiro" menu, the keyboard inside the screens. The PNGs go
# to docs/screenshots/. Needs xvfb, xdotool and imagemagick (scripts/deps.sh).
set -euo pipefail
export ROTALIX_SCREEN="${ROTALIX_SCREEN:-1024x768x24}"
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5

# Cobrança: all clients of the last two weeks, the first row marked, then the dispatches.
cobra=$(open_finance 4 "Cobrança")
xdotool key Tab
xdotool type --delay 40 "$(date -d '-14 days' +%d%m%Y)"
xdotool key Tab Tab Tab space
sleep 0.5
xdotool key Tab Tab Down Return
shot "$cobra" cobra-cobranca.png
xdotool key ctrl+Tab
sleep 0.3
shot "$cobra" cobra-lancamentos.png
# Altera valor over the second dispatch of the list: a double click on its row.
read -r x y < <(origin "$cobra")
xdotool mousemove $((x + 300)) $((y + 150)) click --repeat 2 --delay 80 1
valores=$(wait_window "Altera valor")
shot "$valores" cobra1.png
# Volta on each screen.
read -r x y < <(origin "$valores")
xdotool mousemove $((x + 280)) $((y + 158)) click 1
sleep 0.5
read -r x y < <(origin "$cobra")
xdotool mousemove $((x + 828)) $((y + 617)) click 1
sleep 0.5

# Recibo: a receipt typed, saved and printed.
recibo=$(open_finance 5 "Recibo")
xdotool key Tab
xdotool type --delay 40 "ACME"
xdotool key Tab Tab Tab Tab Tab Tab Tab
xdotool type --delay 40 "1234,56"
xdotool key Tab Tab
xdotool type --delay 40 "ENTREGAS DE NOVEMBRO"
xdotool key Tab Tab
xdotool type --delay 40 "ADMIN"
xdotool key Tab
shot "$recibo" recibo.png
read -r x y < <(origin "$recibo")
xdotool mousemove $((x + 50)) $((y + 537)) click 1 # Grava
sleep 0.8
xdotool key Return # the notice
sleep 0.5
xdotool mousemove $((x + 308)) $((y + 537)) click 1 # Imprime
sleep 1
xdotool key Escape # the printer dialog
sleep 1
# The preview bears the report's title, as the screen does: the newest window of that name.
preview=""
for _ in $(seq 50); do
  preview=$(xdotool search --onlyvisible --name "^Recibo" 2>/dev/null | grep -vx "$recibo" | tail -n 1) || true
  [ -n "$preview" ] && break
  sleep 0.2
done
[ -n "$preview" ] || { echo "A visualização do recibo não apareceu" >&2; exit 1; }
xdotool windowactivate --sync "$preview" 2>/dev/null || true
shot "$preview" recibo-impressao.png
