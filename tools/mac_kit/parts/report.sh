# shellcheck shell=bash
# One line for each check, on the terminal and in the folder that is sent back.
passes=0
failures=0
skips=0

start_report() {
  results="$kit/karno-proof-$(date +%Y%m%d-%H%M%S)"
  mkdir "$results" || exit 1
}

say() {
  echo "$1"
  echo "$1" >>"$results/report.txt"
}

ok() {
  passes=$((passes + 1))
  say "ok       $1"
}

failed() {
  failures=$((failures + 1))
  say "failed   $1: $2"
}

skipped() {
  skips=$((skips + 1))
  say "skipped  $1: $2"
}

# check NAME WHY-IT-FAILED COMMAND...
check() {
  local name=$1 why=$2
  shift 2
  if "$@"; then ok "$name"; else failed "$name" "$why"; fi
}

# within SECONDS COMMAND... asks again until the command succeeds. False when it takes longer.
within() {
  local end=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    sleep 0.2
  done
}

# limited SECONDS COMMAND... ends the command when it takes longer.
limited() {
  local limit=$1 command watch status
  shift
  "$@" &
  command=$!
  (
    trap 'kill $!; exit' TERM
    sleep "$limit" &
    wait $!
    kill "$command"
  ) >/dev/null 2>&1 &
  watch=$!
  wait "$command"
  status=$?
  kill "$watch" 2>/dev/null
  wait "$watch" 2>/dev/null
  return "$status"
}

end_report() {
  say "$passes ok, $failures failed, $skips skipped"
  echo "Send back the folder $results"
  [ "$failures" -eq 0 ]
}
