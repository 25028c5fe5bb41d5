#!/usr/bin/env bash
# Screenshot of the office at a glance (Painel) on the demo office at 1024x768, reached as a
# user reaches it: ADMIN / admin at the login, "05-Retaguarda" and "03-Painel" on the hub's
# menu. The PNG goes to docs/screenshots/. Needs xvfb, xdotool and imagemagick.
set -euo pipefail
export ROTALIX_SCREEN="${ROTALIX_SCREEN:-1024x768x24}"
source "$(dirname "$0")/lib/desktop.sh"

start_demo
hub=$(log_in ADMIN admin)
sleep 0.5
xdotool windowactivate --sync "$hub" 2>/dev/null || true
xdotool key alt
sleep 0.3
xdotool key Right Right Right Right Down
sleep 0.3
xdotool key Down Down Return
panel=$(wait_window "Painel")
xdotool windowactivate --sync "$panel" 2>/dev/null || true
xdotool windowmove "$panel" 0 0
sleep 1
shot "$panel" painel.png
