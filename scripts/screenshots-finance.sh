#!/usr/bin/env bash
# Screenshots of the cash book (CAIXA), the payables (Pagar) and the receivables (receber)
# with the demo office, reached as a user reaches them: ADMIN / admin at the login, the
# hub's "04-Financeiro" menu, the keyboard and the mouse inside the screens. The PNGs go to
# docs/screenshots/. Needs xvfb, xdotool and imagemagick (scripts/deps.sh).
set -euo pipefail
export ROTALIX_SCREEN="${ROTALIX_SCREEN:-1024x768x24}"
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5

# Clicks a button of a window by its place from the window's corner.
click_at() {
  local x y
  read -r x y < <(origin "$1")
  xdotool mousemove $((x + $2)) $((y + $3)) click 1
  sleep 0.5
}

# 01-Caixa: Iniciar on today, the search tab with every movement, and a day found there.
caixa=$(open_finance 1 "Caixa")
click_at "$caixa" "${CAIXA_START_X:-60}" "${CAIXA_START_Y:-640}"
shot "$caixa" caixa-dia.png
# Impressão: the printer dialog (left with Escape: the sheet is made all the same), then the
# preview of the day's sheet.
click_at "$caixa" "${CAIXA_PRINT_X:-222}" "${CAIXA_PRINT_Y:-630}"
sleep 1
xdotool key Escape
sheet=$(wait_window "Caixa do dia")
xdotool windowactivate --sync "$sheet" 2>/dev/null || true
shot "$sheet" caixa-impressao.png
xdotool key Escape
sleep 0.5
xdotool windowactivate --sync "$caixa" 2>/dev/null || true
click_at "$caixa" 140 43 # the tab "02- Pesquisa"
click_at "$caixa" "${CAIXA_ALL_X:-260}" "${CAIXA_ALL_Y:-110}"
shot "$caixa" caixa-pesquisa.png
close_screen 3

# 02-Contas a pagar: the list of the day's new bills, the first bill on the form.
pagar=$(open_finance 2 "Contas a pagar")
xdotool key ctrl+Tab
shot "$pagar" pagar-pesquisa.png
xdotool key ctrl+shift+Tab
click_at "$pagar" "${FIRST_X:-420}" "${FIRST_Y:-50}"
shot "$pagar" pagar-cadastro.png
close_screen 4

# 03-Contas a receber: the same.
receber=$(open_finance 3 "Contas a receber")
xdotool key ctrl+Tab
shot "$receber" receber-pesquisa.png
xdotool key ctrl+shift+Tab
click_at "$receber" "${FIRST_X:-420}" "${FIRST_Y:-50}"
shot "$receber" receber-cadastro.png
close_screen 4
