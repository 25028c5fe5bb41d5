#!/usr/bin/env bash
# Screenshots of the agenda (AGENDA) with the demo office's week of appointments, of the
# calendar (Cale) opened from its date, of the agenda search (AGENDA3) and of the backup
# screen (AUTO) after a run, reached as a user reaches them: ADMIN / admin at the login, the
# hub's menus, the keyboard and the mouse inside the screens. The PNGs go to
# docs/screenshots/. Needs xvfb, xdotool and imagemagick (scripts/deps.sh).
set -euo pipefail
export ROTALIX_SCREEN="${ROTALIX_SCREEN:-1024x768x24}"
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5

# "03 -Agenda" on the hub's menu bar.
read -r x y < <(origin "$hub")
xdotool mousemove $((x + 375)) $((y + 8)) click 1
agenda=$(wait_window "Agenda")
xdotool windowactivate --sync "$agenda" 2>/dev/null || true
sleep 0.8
shot "$agenda" agenda.png

# The calendar, from the button beside the date.
read -r ax ay < <(origin "$agenda")
xdotool mousemove $((ax + ${CALE_X:-241})) $((ay + ${CALE_Y:-160})) click 1
cale=$(wait_window "Data p/ Agendamento")
xdotool key Right Right Down
shot "$cale" cale.png
xdotool key Return
sleep 0.4

# Pesquisa (the action bar's menu twin), a week typed as the range.
xdotool key alt
sleep 0.3
xdotool key Right Right Right Return
search=$(wait_window "Pesquisa")
xdotool windowactivate --sync "$search" 2>/dev/null || true
sleep 0.3
xdotool key Tab
sleep 0.2
xdotool type --delay 60 "$(date -d '+6 days' +%d%m%Y)"
xdotool key Return
sleep 0.5
shot "$search" agenda3.png
# &Volta.
xdotool key alt+v
sleep 0.5
# Volta on the agenda's menu (the fifth entry), then the hub's "Backup" button.
xdotool windowactivate --sync "$agenda" 2>/dev/null || true
close_screen 4
xdotool mousemove $((x + 60)) $((y + 461)) click 1
backup=$(wait_window "Backup Autom")
xdotool windowactivate --sync "$backup" 2>/dev/null || true
shot "$backup" auto.png
xdotool key alt Return
sleep 2
# The message of the end of the run, moved under the screen so that its count shows.
done_box=$(wait_window "rotalix")
read -r bx by < <(origin "$backup")
xdotool windowmove "$done_box" "$bx" $((by + 240))
sleep 0.6
import -window root -crop "640x420+$((bx - 10))+$((by - 10))" +repage "$out/auto-concluido.png"
echo "$out/auto-concluido.png"
xdotool key Return
