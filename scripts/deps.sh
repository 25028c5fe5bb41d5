#!/usr/bin/env bash
# Installs the Debian packages the build, the program and the tests need, when missing.
set -euo pipefail
packages=(
  cmake ninja-build g++ ccache pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libqt6sql6-psql qt6-translations-l10n
  libsqlite3-dev libgl-dev fonts-dejavu-core
  libxlsxwriter-dev # the reports' spreadsheets (.xlsx)
  libqrencode-dev # the QR code of the invoices' PIX charge
  zbar-tools # the tests read the invoices' QR code back (zbarimg)
  unzip # the tests read the spreadsheets back
  qt6-charts-dev libqt6opengl6-dev # the charts of the office at a glance (Painel)
  qt6-serialport-dev qt6-multimedia-dev # caller id: modem on a serial port, line on a sound input
  sqlite3 # the tests open the database in the standard tool, as an administrator would
  postgresql
  libsodium-dev # passwords kept as salted slow hashes (Argon2id), never in plain text
  libpq-dev # the store asks libpq whether the server dropped the connection
  libcurl4-openssl-dev # e-mail through the office's SMTP server, with TLS
  python3-aiosmtpd # the tests' SMTP server on the loopback
  xvfb xdotool imagemagick poppler-utils
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Instalando: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo_cmd apt-get update -qq || true
  $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
