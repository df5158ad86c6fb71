# What `start` runs beside the launcher: a bus, and where no display was given an X server and a window manager.
# Sourced, never run. Each of them dies with `start`, also when that is killed.
# shellcheck disable=SC2034,SC2154 # root, here, scratch, services, bus, display and session belong to start

readonly kServiceSeconds=15

# Runs a service in a session of its own, so that a signal to the group of `start` leaves it alone: the launcher
# needs it until its own orderly end.
serve() {
  exec setsid env KARNO_MACHINE_ROOT="$root" setpriv --pdeathsig KILL "$@"
}

# Waits until a file has a line in it and prints that line; fails when its writer ends first.
first_line() {
  local file=$1 writer=$2 what=$3 polls=$((kServiceSeconds * 20))
  while [[ ! -s $file ]]; do
    ((polls-- > 0)) || fail "$what did not answer within $kServiceSeconds seconds"
    kill -0 "$writer" 2>/dev/null || fail "$what ended at once (see $root/var/log)"
    sleep 0.05
  done
  head -n 1 "$file"
}

start_bus() {
  serve dbus-daemon --config-file="$here/lib/session-bus.conf" --nofork --nopidfile \
    --address="unix:dir=$scratch" --print-address=3 3>"$scratch/bus" >"$root/var/log/bus.log" 2>&1 9>&- &
  services+=("$!")
  bus=$(first_line "$scratch/bus" "$!" "the session bus")
}

# The server takes the first display that is free, so two machines never get the same one.
start_display() {
  serve Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset \
    3>"$scratch/display" >"$root/var/log/display.log" 2>&1 9>&- &
  services+=("$!")
  display=":$(first_line "$scratch/display" "$!" "the X server")"

  serve env DISPLAY="$display" HOME="$scratch" XDG_CONFIG_HOME="$scratch" XDG_CACHE_HOME="$scratch" \
    openbox --sm-disable --startup "bash -c 'echo ready >\"\$HOME/manager\"'" \
    >"$root/var/log/window-manager.log" 2>&1 9>&- &
  services+=("$!")
  first_line "$scratch/manager" "$!" "the window manager" >/dev/null
}

# The processes of this run: all that have its mark in their environment, whoever their parent is now.
session_processes() {
  { grep -lzsxF "KARNO_MACHINE_SESSION=$session" /proc/[0-9]*/environ || true; } | cut -d / -f 3
}

# What follows the launcher that has ended: "launcher" when another one runs, "shell" when a shell is about to open
# one. Fails when nothing does.
successor() {
  local pid executable kind=''
  for pid in $(session_processes); do
    executable=$(readlink "/proc/$pid/exe" 2>/dev/null) || continue
    case $executable in
      */Contents/Helpers/*) ;;
      *.app/Contents/MacOS/Karno)
        echo launcher
        return
        ;;
      */bash) kind=shell ;;
    esac
  done
  [[ -n $kind ]] && echo "$kind"
}

# Ends processes in good order: two seconds to go by themselves, then no more questions.
end_processes() {
  local polls=40 pid left
  (($#)) || return 0
  kill -TERM "$@" 2>/dev/null || true
  while ((polls-- > 0)); do
    left=()
    for pid in "$@"; do
      if kill -0 "$pid" 2>/dev/null && ! grep -qs '^State:.Z' "/proc/$pid/status"; then left+=("$pid"); fi
    done
    ((${#left[@]})) || return 0
    sleep 0.05
  done
  kill -KILL "${left[@]}" 2>/dev/null || true
}
