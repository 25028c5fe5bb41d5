#!/usr/bin/env bash
# Screenshots of the registers of couriers (MOTO), clients (cliente) and suppliers (forne)
# and of the list of regions (cadgrupo), with the demo office, reached as a user reaches
# them: ADMIN / admin at the login, the hub's "02-Cadastros" menu, the keyboard inside the
# screens. The PNGs go to docs/screenshots/. Needs xvfb, xdotool and imagemagick
# (scripts/deps.sh).
set -euo pipefail
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5

# Opens the n-th entry of "02-Cadastros" and waits for the window of the title.
open_register() {
  local x y
  read -r x y < <(origin "$hub")
  xdotool mousemove $((x + 160)) $((y + 12)) click 1
  sleep 0.4
  for _ in $(seq "$1"); do xdotool key Down; done
  xdotool key Return
  wait_window "$2"
}

# From the first tab: the search tab (Ctrl+Tab, n times), the name typed in its first box,
# Tab down to the grid, Enter on the first row found, which loads it on the first tab.
find_by_name() {
  for _ in $(seq "$1"); do xdotool key ctrl+Tab; done
  sleep 0.3
  xdotool type --delay 60 "$2"
  sleep 0.3
  shot "$3" "$4"
  for _ in $(seq "$5"); do xdotool key Tab; done
  xdotool key Return
}

# 02-Clientes: a client found by name, its two tabs, then the list of regions.
cliente=$(open_register 2 "Cadastro de Clientes")
shot "$cliente" cliente-novo.png
find_by_name 2 "far" "$cliente" cliente-pesquisa.png 3
shot "$cliente" cliente-cadastro.png
xdotool key ctrl+Tab
shot "$cliente" cliente-complemento.png
# The button beside REGIÃO/GRUPO opens the list of regions over the screen.
read -r x y < <(origin "$cliente")
xdotool mousemove $((x + 485)) $((y + 241)) click 1
cadgrupo=$(wait_window "Cadastro de Grupos")
xdotool type --delay 60 "zona central"
xdotool key Return Return
shot "$cadgrupo" cadgrupo.png
xdotool key Escape
sleep 0.3
# The new region is in the client's list at once: its list opened.
xdotool mousemove $((x + 457)) $((y + 241)) click 1
sleep 0.6
import -window root -crop "960x640+${x}+${y}" +repage "$out/cliente-regiao-nova.png"
echo "$out/cliente-regiao-nova.png"
xdotool key Escape
sleep 0.3
close_screen 4
sleep 0.5

# 01-Courier: a courier found by name, his two tabs.
moto=$(open_register 1 "Cadastro de Courier")
find_by_name 2 "ed" "$moto" moto-pesquisa.png 2
shot "$moto" moto-cadastro.png
xdotool key ctrl+Tab
shot "$moto" moto-complemento.png
close_screen 4
sleep 0.5

# 04-Fornecedores: a supplier found by name.
forne=$(open_register 4 "Cadastro de Fornecedores")
find_by_name 1 "moto" "$forne" forne-pesquisa.png 3
shot "$forne" forne-cadastro.png
