#!/usr/bin/env bash
# Screenshots of the employee screen (funci) and the company screen (empe) with the demo
# office, reached as a user reaches them: ADMIN / admin at the login, the hub's menus, the
# keyboard inside the screens. The PNGs go to docs/screenshots/. Needs xvfb, xdotool and
# imagemagick (scripts/deps.sh).
set -euo pipefail
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5

# 02-Cadastros, 03-Funcionários.
read -r x y < <(origin "$hub")
xdotool mousemove $((x + 160)) $((y + 12)) click 1
sleep 0.4
xdotool key Down Down Down Return
funci=$(wait_window "Cadastro de Funcionários")
# The list (third tab, Ctrl+Tab twice) takes the keyboard: Down to the second employee,
# Enter loads him.
xdotool key ctrl+Tab ctrl+Tab
sleep 0.3
shot "$funci" funci-pesquisa.png
xdotool key Down Return
shot "$funci" funci-cadastro.png
xdotool key ctrl+Tab
shot "$funci" funci-permissoes.png
close_screen 3

# 05-Retaguarda, 01-Empresa.
read -r x y < <(origin "$hub")
xdotool mousemove $((x + 775)) $((y + 12)) click 1
sleep 0.4
xdotool key Down Return
empe=$(wait_window "Cadastro da Empresa")
shot "$empe" empe-matriz.png
# The branch list, Enter on its first branch: the branch tab with it loaded.
xdotool key ctrl+Tab ctrl+Tab
sleep 0.3
xdotool key Return
shot "$empe" empe-filial.png
xdotool key ctrl+Tab
shot "$empe" empe-pesquisa.png
close_screen 3
