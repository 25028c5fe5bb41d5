# Sourced by the screenshot scripts: a demo installation in a temporary folder, the program
# on it under Xvfb, and helpers to find, drive and photograph its windows. Sets $program,
# $out (docs/screenshots) and $work; cleans up on exit.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
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
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

# Starts Xvfb and the program on a fresh demo office.
start_demo() {
  local display=":$((90 + RANDOM % 200))"
  "$program" --init --demo "$work/demo" >/dev/null
  Xvfb "$display" -screen 0 "${ROTALIX_SCREEN:-1280x800x24}" -nolisten tcp >/dev/null 2>&1 &
  pids+=($!)
  export DISPLAY="$display"
  for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
  xsetroot -solid '#5d6d7e' 2>/dev/null || true # a plain grey desktop behind the windows
  QT_QPA_PLATFORM=xcb "$program" --pasta "$work/demo" &
  pids+=($!)
}

# Waits for a window whose title starts with the text; prints its id (the newest).
wait_window() {
  local id=""
  for _ in $(seq 100); do
    id=$(xdotool search --onlyvisible --name "^$1" 2>/dev/null | tail -n 1) || true
    [ -n "$id" ] && { echo "$id"; return 0; }
    sleep 0.1
  done
  echo "Janela '$1' não apareceu" >&2
  return 1
}

# Closes the active screen as a user does at the keyboard: Alt opens its menu bar, the
# arrows go to "Volta" (the given number of entries to the right), Enter chooses it.
close_screen() {
  xdotool key alt
  sleep 0.3
  for _ in $(seq "$1"); do xdotool key Right; done
  xdotool key Return
  sleep 0.5
}

shot() { sleep 0.6; import -window "$1" "$out/$2"; echo "$out/$2"; }

# The top-left corner of a window: "x y".
origin() { xdotool getwindowgeometry --shell "$1" | awk -F= '/^X=/{x=$2} /^Y=/{y=$2} END{print x, y}'; }

# Logs in at the keyboard; prints the hub's window id.
log_in() {
  local login
  login=$(wait_window "Rotalix - ")
  xdotool windowactivate --sync "$login" 2>/dev/null || xdotool windowfocus --sync "$login"
  xdotool type --delay 60 "$1"
  xdotool key Return
  xdotool type --delay 60 "$2"
  xdotool key Return Return
  wait_window "Rotalix Zenite"
}

# Opens the n-th entry of the hub's "04-Financeiro" (Alt, three menus to the right, down
# the list) and waits for the window whose title starts with the text; needs $hub.
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
