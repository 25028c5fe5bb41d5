#!/usr/bin/env bash
# Screenshots of the report previews (every report's default layout on the demo office) and
# of the report screen of dispatches, taken by the reports test under Xvfb; the PDFs of the
# same reports are left in a folder for a closer look (REPORTS_PDF, default a temporary one).
# The PNGs go to docs/screenshots/. Needs xvfb and poppler-utils (scripts/deps.sh).
set -euo pipefail
source "$(dirname "$0")/lib/desktop.sh"

"$root/scripts/build.sh" --target tst_reports >/dev/null
pdfs="${REPORTS_PDF:-$work/pdf}"
mkdir -p "$pdfs"
display=":$((90 + RANDOM % 200))"
Xvfb "$display" -screen 0 1280x900x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
export DISPLAY="$display"
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
QT_QPA_PLATFORM=xcb ROTALIX_SHOTS="$out" ROTALIX_REPORTS_OUT="$pdfs" \
  "$root/build/tests/tst_reports" everyLayoutOnTheDemo
ls "$out"/relatorio-*.png "$out"/atendeimpre.png
echo "PDFs em $pdfs"
