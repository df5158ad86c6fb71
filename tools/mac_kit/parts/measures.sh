# shellcheck shell=bash
# What a launcher with nothing to do costs.
wakeups_max=5 # a second
memory_max=153600 # KiB

check_idle() {
  local pid wakeups memory
  pid=$(launcher_pid)
  [ -n "$pid" ] || return
  # The second sample has what the first began.
  limited 60 top -l 2 -s 10 -pid "$pid" -stats pid,idlew >"$results/top.txt" 2>&1
  wakeups=$(awk -v pid="$pid" '$1 + 0 == pid { counts[++count] = $2 + 0 }
    END { if (count > 1) print counts[count] - counts[1] }' "$results/top.txt")
  if [[ ! $wakeups =~ ^[0-9]+$ ]]; then
    skipped "idle wake-ups" "top does not count them"
  else
    check "idle wake-ups ($wakeups in 10 s)" "more than $wakeups_max a second" test "$wakeups" -le $((wakeups_max * 10))
  fi
  memory=$(ps -o rss= -p "$pid" | tr -d ' ')
  check "memory (${memory:-0} KiB)" "more than $memory_max KiB, or none" is_between 1 "${memory:-0}" "$memory_max"
  footprint "$pid" >"$results/footprint.txt" 2>&1
}

is_between() { [ "$1" -le "$2" ] && [ "$2" -le "$3" ]; }
