# shellcheck shell=bash
# Starting the launcher, talking to it and reading its log.
log_file="$logs/karno-wrapper.log"
log_begin=1

# From here on.
mark_log() {
  log_begin=1
  if [ -f "$log_file" ]; then log_begin=$(($(wc -l <"$log_file") + 1)); fi
}

logged() { tail -n "+$log_begin" "$log_file" 2>/dev/null | grep -qF -- "$1"; }
comes() { within "$wait_seconds" logged "$1"; }

# expect NAME LINE...: each line comes, in whatever order.
expect() {
  local name=$1 line
  shift
  for line in "$@"; do
    if ! comes "$line"; then
      failed "$name" "no line '$line' in the log"
      return 1
    fi
  done
  ok "$name"
}

status_field() { "$karnoctl" status 2>/dev/null | sed -n "$1" | head -n 1; }
launcher_pid() { status_field 's/^Karno .* runs, process \([0-9]*\).*/\1/p'; }
client_pid() { status_field 's/^  client .*, process \([0-9]*\).*/\1/p'; }

runs() { "$karnoctl" status >/dev/null 2>&1; }
is_gone() { ! runs; }
has_client() { [ -n "$(client_pid)" ]; }
is_another_than() { [ -n "$(launcher_pid)" ] && [ "$(launcher_pid)" != "$1" ]; }
post() { "$karnoctl" post "$@" >>"$results/posts.txt" 2>&1; }

# start [BUILD]: until the client runs as well.
start() {
  mark_log
  if [ $# -gt 0 ]; then open -n "$app" --args -launch "$1"; else open -n "$app"; fi
  comes "Main: Started Karno successfully" && within "$wait_seconds" has_client
}

# As the client that has posted its farewell would.
end_client() {
  local client
  client=$(client_pid)
  [ -z "$client" ] || kill -TERM "$client" 2>/dev/null
}

# Whatever stands on the screen. Only what this kit has started runs: it looked before.
end_launcher() {
  local pid
  [ -n "${karnoctl:-}" ] && runs || return 0
  post user-selected-quit
  within "$wait_seconds" is_gone && return
  for pid in $(client_pid) $(launcher_pid); do kill -KILL "$pid" 2>/dev/null; done
}

# A start must not be taken for one that an earlier check has left.
start_afresh() {
  end_launcher
  start "$@"
}

# The File Provider build runs from macOS 12.3 on, the other one with macFUSE.
can_start_a_build() {
  why_not="this macOS is before 12.3 and has no macFUSE"
  at_least "$version" 12.3 || [ "$fuse_is" != missing ]
}

# The bundle is not signed as a whole, and takes no update: the rest must be in order.
check_self() {
  local output="$results/self_check.txt"
  "$karnoctl" self-check >"$output" 2>&1
  check "the self-check" "$(unknown_findings "$output" | head -n 1)" all_is_known "$output"
}

unknown_findings() { grep -v -e _CodeSignature -e SUPublicEDKey -e '^Note: ' -e '^Nothing is wrong' "$1"; }
all_is_known() { [ -s "$1" ] && [ -z "$(unknown_findings "$1")" ]; }
