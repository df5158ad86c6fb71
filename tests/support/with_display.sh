#!/bin/bash
# Runs a command with an X display, a window manager, a session bus and a home folder of its own, and ends with the
# command's exit status. Any number can run at the same time.
set -u

scratch=$(mktemp -d "${TMPDIR:-/tmp}/karno-display-XXXXXX")
started=()

# Asked again until it ends: Xvfb forgets a signal that comes while it falls asleep.
end() {
  local attempt
  for ((attempt = 0; attempt < 50; attempt++)); do
    kill "$1" 2>/dev/null || break
    sleep 0.01
    kill -0 "$1" 2>/dev/null || break
    sleep 0.1
  done
  kill -KILL "$1" 2>/dev/null
  wait "$1" 2>/dev/null
}

clean_up() {
  local index
  for ((index = ${#started[@]} - 1; index >= 0; index--)); do end "${started[index]}"; done
  rm -rf "$scratch"
}
trap clean_up EXIT
trap 'exit 143' TERM INT HUP

fail() {
  echo "with_display.sh: $1" >&2
  exit 125
}

# Each server tells through a pipe, as descriptor 3, where it can be reached.
start_and_ask() {
  local answer=$1
  shift
  mkfifo "$scratch/$answer"
  "$@" 3>"$scratch/$answer" >/dev/null 2>"$scratch/$answer.err" &
  started+=($!)
  read -r -t 30 "$answer" <"$scratch/$answer" || fail "$1 does not start: $(tail -n 3 "$scratch/$answer.err")"
}

# Without -noreset the server starts anew whenever its last client leaves, and takes down whoever connects meanwhile.
start_and_ask display_number Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset
start_and_ask bus_address dbus-daemon --session --nofork --nopidfile --print-address=3

export DISPLAY=":$display_number"
export DBUS_SESSION_BUS_ADDRESS="$bus_address"
export HOME="$scratch/home"
export TEMP="$scratch/temp"
mkdir -m 700 "$HOME" "$TEMP"

openbox >/dev/null 2>&1 &
started+=($!)
for ((attempt = 0; attempt < 600; attempt++)); do
  xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break
  kill -0 "${started[-1]}" 2>/dev/null || fail "openbox does not start"
  sleep 0.05
done

"$@" &
command=$!
trap 'kill "$command" 2>/dev/null; exit 143' TERM INT HUP
wait "$command"
exit $?
