#!/usr/bin/env bash
# Screenshots of the login and the hub, as a user sees them: a demo installation in a
# temporary folder, the program under Xvfb, ADMIN / admin typed at the keyboard.
# The PNGs go to docs/screenshots/. Needs xvfb, xdotool and imagemagick (scripts/deps.sh).
set -euo pipefail
source "$(dirname "$0")/lib/desktop.sh"

start_demo
login=$(wait_window "Rotalix - ")
xdotool windowactivate --sync "$login" 2>/dev/null || xdotool windowfocus --sync "$login"
shot "$login" login.png

# User box: type over the selected name, Enter moves on as Tab does.
xdotool type --delay 80 "ADMIN"
xdotool key Return
xdotool type --delay 80 "admin"
shot "$login" login-preenchido.png
xdotool key Return Return

hub=$(wait_window "Rotalix Zenite")
shot "$hub" hub.png
# The "02-Cadastros" menu opened from the menu bar.
read -r x y < <(origin "$hub")
xdotool mousemove $((x + 160)) $((y + 12)) click 1
sleep 0.4
import -window root -crop "900x720+${x}+${y}" +repage "$out/hub-menu-cadastros.png"
echo "$out/hub-menu-cadastros.png"
xdotool key Escape
