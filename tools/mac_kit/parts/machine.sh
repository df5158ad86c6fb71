# shellcheck shell=bash
# What this Mac is and what it lets us do.

# at_least VERSION LOWEST, by numbers.
at_least() {
  local major minor patch lowest_major lowest_minor lowest_patch
  IFS=. read -r major minor patch _ <<<"$1.0.0"
  IFS=. read -r lowest_major lowest_minor lowest_patch _ <<<"$2.0.0"
  [ $((major * 1000000 + minor * 1000 + patch)) -ge \
    $((lowest_major * 1000000 + lowest_minor * 1000 + lowest_patch)) ]
}

describe_machine() {
  version=$(sw_vers -productVersion)
  processor=$(uname -m)
  # A shell under translation takes the processor for another one.
  [ "$(sysctl -n hw.optional.arm64 2>/dev/null)" = 1 ] && processor=arm64
  lowest=10.14.6
  [ "$processor" = arm64 ] && lowest=11.0
  {
    sw_vers
    uname -a
    id
  } >"$results/machine.txt" 2>&1
  say "macOS $version on $processor"
  is_too_old=false
  if ! at_least "$version" "$lowest"; then
    is_too_old=true
    say "This macOS is too old: the launcher needs $lowest or later on $processor."
  fi
  if xattr -r "$kit" 2>/dev/null | grep -q com.apple.quarantine; then
    say "The kit is in quarantine, so macOS may refuse its programs: xattr -dr com.apple.quarantine '$kit'"
  fi
}

# Whether windows can be shown: a shell that came over the network has no part in the session on the screen.
has_session() { [ "$(launchctl managername 2>/dev/null)" = Aqua ]; }

# Whether System Events presses keys for us. macOS may ask the user first, who may not be there.
may_press=
may_press_keys() {
  if [ -z "$may_press" ]; then
    may_press=no
    if [ "$(limited "$wait_seconds" osascript -e 'tell application "System Events" to get UI elements enabled' \
      2>>"$results/osascript.txt")" = true ]; then
      may_press=yes
    else
      say "System Events may not press keys for this terminal: what the launcher asks stays unanswered."
    fi
  fi
  [ "$may_press" = yes ]
}

# press PROCESS CODE: Return is 36, Escape 53. False where that is not allowed.
press() {
  may_press_keys || return
  limited "$wait_seconds" osascript -e "tell application \"System Events\"
    set frontmost of (first process whose unix id is $1) to true
    delay 0.5
    key code $2
  end tell" >>"$results/osascript.txt" 2>&1
}

# May ask for nothing: without a word there is nobody who would answer.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo -n "$@" 2>/dev/null; fi
}

launcher_can_run() {
  why_not=
  if $is_too_old; then
    why_not="this macOS is too old"
  elif ! has_session; then
    why_not="there is no session with a screen here; open a terminal on the Mac itself"
  elif "$kit/Karno.app/Contents/MacOS/karnoctl" status >"$results/status.txt" 2>&1; then
    why_not="a launcher runs already; quit it first"
  fi
  [ -z "$why_not" ]
}
