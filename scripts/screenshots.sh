#!/usr/bin/env bash
# Screenshots of the login and the hub, as a user sees them: a demo installation in a
# temporary folder, the program under Xvfb, ADMIN / admin typed at the keyboard.
# The PNGs go to docs/screenshots/. Needs xvfb, xdotool and imagemagick (scripts/deps.sh).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
program="${ROTALIX_PROGRAM:-$root/build/app/rotalix}"
out="$root/docs/screenshots"
[ -x "$program" ] || "$root/scripts/build.sh" rotalix
for tool in Xvfb xdotool import; do
  command -v "$tool" >/dev/null || { echo "Falta $tool: rode scripts/deps.sh" >&2; exit 1; }
done
mkdir -p "$out"

work=$(mktemp -d /tmp/rotalix-shots.XXXXXX)
export XDG_RUNTIME_DIR="$work/runtime"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
display=":$((90 + RANDOM % 100))"
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

"$program" --init --demo "$work/demo" >/dev/null
Xvfb "$display" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
export DISPLAY="$display"
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
# A plain grey desktop behind the windows.
xsetroot -solid '#5d6d7e' 2>/dev/null || true

QT_QPA_PLATFORM=xcb "$program" --pasta "$work/demo" &
pids+=($!)

# Waits for a window whose title starts with the text; prints its id.
wait_window() {
  local id=""
  for _ in $(seq 100); do
    id=$(xdotool search --onlyvisible --name "^$1" 2>/dev/null | head -n 1) || true
    [ -n "$id" ] && { echo "$id"; return 0; }
    sleep 0.1
  done
  echo "Janela '$1' não apareceu" >&2
  return 1
}
shot() { sleep 0.6; import -window "$1" "$out/$2"; echo "$out/$2"; }

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
read -r x y < <(xdotool getwindowgeometry --shell "$hub" | awk -F= '/^X=/{x=$2} /^Y=/{y=$2} END{print x, y}')
xdotool mousemove $((x + 160)) $((y + 12)) click 1
sleep 0.4
import -window root -crop "900x720+${x}+${y}" +repage "$out/hub-menu-cadastros.png"
echo "$out/hub-menu-cadastros.png"
xdotool key Escape
