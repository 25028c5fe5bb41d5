#!/usr/bin/env bash
# Screenshots of the dispatch screen (Atendimento) with the demo office, driven at the
# keyboard as an operator drives it: D'Avila's telephone fills the client, pickup and
# delivery typed, a courier picked, Grava with the financial movement and the A4 slip in
# its preview; then the search tab with a month searched by period; the service table from
# the hub. The PNGs go to docs/screenshots/. The desktop is the offices' 1024x768, and the
# script stops when the dispatch screen does not fit it. Needs xvfb, xdotool, imagemagick
# and python3 (scripts/deps.sh).
set -euo pipefail
export ROTALIX_SCREEN="${ROTALIX_SCREEN:-1024x768x24}"
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5
# D'Avila's telephone, from the demo database.
phone=$(python3 -c 'import sqlite3, sys; print(sqlite3.connect(sys.argv[1]).execute(
    "SELECT C8 FROM clientes WHERE CODIGO = ?", ("00007",)).fetchone()[0])' "$work/demo/rotalix.db")
month_ago=$(date -d '-30 days' +%d%m%Y)

# 01-Atendimento, from the hub's menu bar.
read -r x y < <(origin "$hub")
xdotool mousemove $((x + 55)) $((y + 8)) click 1
screen=$(wait_window "Atendimento")
sleep 0.8
# The whole window on the desktop, nothing past its edges.
read -r sx sy < <(origin "$screen")
read -r sw sh < <(xdotool getwindowgeometry --shell "$screen" |
  awk -F= '/^WIDTH=/{w=$2} /^HEIGHT=/{h=$2} END{print w, h}')
read -r dw dh < <(xdpyinfo | awk '/dimensions:/{split($2, d, "x"); print d[1], d[2]}')
echo "Atendimento: ${sw}x${sh} em ${sx},${sy}; área de trabalho ${dw}x${dh}"
if [ $((sx + sw)) -gt "$dw" ] || [ $((sy + sh)) -gt "$dh" ] || [ "$sx" -lt 0 ] || [ "$sy" -lt 0 ]; then
  echo "Atendimento não cabe na área de trabalho" >&2
  exit 1
fi
shot "$screen" atendimento-vazio.png

step() { xdotool type --delay 40 "$1"; xdotool key Return; }
# From ATENDIDO POR to the telephone; leaving it fills the client.
xdotool key Return
step "$phone"
xdotool key Return Return Return Return
step "RUA AUGUSTA, 1500 - CONJ. 42"
step "PORTARIA"
step "1132145566"
step "RETIRAR CONTRATO ASSINADO"
step "AV. PAULISTA, 900 - 12 ANDAR"
step "DRA. HELENA"
step "1133334444"
step "ENTREGAR E COLHER ASSINATURA"
step "ENTREGA CENTRO"
xdotool type --delay 40 "Cliente aguarda na recepção."
xdotool key Tab
step "SIM"
step "A c"
step "BETO"
xdotool key a Return
step "25"
xdotool key Return
shot "$screen" atendimento-preenchido.png

# From the last field through the time and the date to Grava, which Enter presses; then
# Yes to the financial movement, OK to the notice, Yes to the print: the A4 slip of the
# dispatch just saved, in its preview.
xdotool key Return Return Return
sleep 0.3
xdotool key Return
sleep 0.5
xdotool key Return
sleep 0.4
xdotool key Return
sleep 0.4
xdotool key Return
slip=$(wait_window "Ordem de serviço")
xdotool windowsize "$slip" 900 740
xdotool windowmove "$slip" 60 10
sleep 0.8
shot "$slip" atendimento-impressao-a4.png
xdotool windowfocus --sync "$slip"
xdotool key Escape
sleep 0.4
shot "$screen" atendimento-gravado.png

# A call arriving while the saved dispatch is on the screen: a pseudo-terminal plays the
# modem of rotalix.ini's [bina]; Alt+B arms it; the call waits in its line, F9 takes it into
# a new dispatch with the client filled. The caller is a client without remarks (no box).
caller=$(python3 -c 'import sqlite3, sys; print(sqlite3.connect(sys.argv[1]).execute(
    "SELECT C8 FROM clientes WHERE COALESCE(C31, ?) = ? AND C8 LIKE ? AND CODIGO <> ?"
    " ORDER BY CODIGO", ("", "", "11%", "00007")).fetchone()[0])' "$work/demo/rotalix.db")
python3 - "$work" "${caller:2}" <<'PY' &
import os, pty, sys, time, tty
work, number = sys.argv[1], sys.argv[2]
master, slave = pty.openpty()
tty.setraw(slave)
open(os.path.join(work, "modem"), "w").write(os.ttyname(slave))
while not os.path.exists(os.path.join(work, "ring")):
    time.sleep(0.1)
os.write(master, ("\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\nNMBR = %s\r\n\r\nRING\r\n"
                  % number).encode())
time.sleep(60)
PY
pids+=($!)
for _ in $(seq 50); do [ -s "$work/modem" ] && break; sleep 0.1; done
printf '\n[bina]\nfonte=serial\nporta=%s\ncomandos=\nddd_local=11\n' "$(cat "$work/modem")" \
  >>"$work/demo/rotalix.ini"
xdotool windowfocus --sync "$screen"
xdotool key alt+b
sleep 0.4
touch "$work/ring"
sleep 1
shot "$screen" atendimento-chamada.png
xdotool windowfocus --sync "$screen"
xdotool key F9
sleep 0.6
shot "$screen" atendimento-chamada-atendida.png

# The search tab: the last thirty days by period. (Without a window manager the focus does
# not come back to the screen by itself after the message boxes.)
xdotool windowfocus --sync "$screen"
xdotool key ctrl+Tab
sleep 0.4
xdotool key Tab Tab Tab Tab
xdotool type --delay 40 "$month_ago"
xdotool key Return Return space
shot "$screen" atendimento-pesquisa.png

# The service table from the hub (02-Cadastros, 05-Tabela de Serviços), beside nothing.
close_screen 3
xdotool windowfocus --sync "$hub"
read -r x y < <(origin "$hub")
xdotool mousemove $((x + 160)) $((y + 12)) click 1
sleep 0.4
xdotool key Down Down Down Down Down Return
table=$(wait_window "Tabela")
shot "$table" servi2.png
