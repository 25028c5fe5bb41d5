#!/usr/bin/env bash
# Installs what is missing, builds, creates a demo installation in demo/ (once) and opens
# the program on it. Log in as ADMIN, password admin. Arguments are passed to the program
# (the test suite runs this script with --sair-no-login).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/deps.sh"
"$root/scripts/build.sh" --target rotalix
folder="${ROTALIX_PASTA:-$root/demo}"
if [ ! -e "$folder/rotalix.db" ] && [ ! -e "$folder/rotalix.ini" ]; then
  "$root/build/app/rotalix" --init --demo "$folder"
fi
exec "$root/build/app/rotalix" --pasta "$folder" "$@"
