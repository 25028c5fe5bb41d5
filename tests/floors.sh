#!/usr/bin/env bash
# The floors of the house, by what each folder includes: the store is the lowest and
# includes no subsystem; the kit under every screen includes only itself and the store;
# finance includes no dispatch, the registers neither finance nor dispatch; the cores include
# no screen and no widget. Gives the offending lines.
set -uo pipefail
src="${1:?the src folder}"
bad=0
offend() {
  echo "$1:"
  echo "$2" | sed 's/^/  /'
  bad=1
}

lines=$(grep -rnE '#include "[a-z]+/' "$src/store" | grep -vE '#include "store/')
[ -z "$lines" ] || offend "store includes a floor above it" "$lines"

lines=$(grep -rnE '#include "[a-z]+/' "$src/kit" | grep -vE '#include "(kit|store)/')
[ -z "$lines" ] || offend "kit includes a screen, the session or a subsystem" "$lines"

# Finance lies under the dispatches, which post into it; the registers under both.
lines=$(grep -rnE '#include "dispatch/' "$src/finance")
[ -z "$lines" ] || offend "finance includes the dispatches" "$lines"
lines=$(grep -rnE '#include "(dispatch|finance)/' "$src/registers")
[ -z "$lines" ] || offend "the registers include the dispatches or finance" "$lines"

for core in "$src"/*/core; do
  lines=$(grep -nE '#include "[a-z]+/' "$core"/* | grep -vE '#include "(store/|[a-z]+/core/)')
  [ -z "$lines" ] || offend "$core includes a screen or the kit" "$lines"
  lines=$(grep -nE '#include <Q(Widget|Dialog|Application|LineEdit|ComboBox|Label|PushButton|MainWindow)>' "$core"/*)
  [ -z "$lines" ] || offend "$core includes a widget" "$lines"
done
exit $bad
