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

# Opens the n-th entry of "04-Financeiro" (Alt, three menus to the right, down the list).
open_finance() {
  xdotool windowactivate --sync "$hub" 2>/dev/null || true
  xdotool key alt
  sleep 0.3
  xdotool key Right Right Right Down
  sleep 0.3
  for _ in $(seq $(($1 - 1))); do xdotool key Down; done
  xdotool key Return
  wait_window "$2"
}

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
# Altera valor over the first dispatch of the list.
xdotool key Tab Down Return
valores=$(wait_window "Altera valor")
shot "$valores" cobra1.png
xdotool key Tab Tab Tab space
sleep 0.5

# Recibo: a receipt typed, saved and printed.
xdotool windowactivate --sync "$cobra" 2>/dev/null || true
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
xdotool key alt
sleep 0.3
xdotool key Return # Grava
sleep 0.5
xdotool key Return # the notice
sleep 0.3
xdotool key alt
sleep 0.3
xdotool key Right Right Right Return # Imprime
sleep 1
xdotool key Escape # the printer dialog
sleep 1
preview=$(wait_window "Recibo")
xdotool windowactivate --sync "$preview" 2>/dev/null || true
shot "$preview" recibo-impressao.png
