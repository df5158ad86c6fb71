# shellcheck shell=bash
# The first start, the messages after which the launcher goes on, and the restarts.

check_first_start() {
  if $is_here && [ -f "$results/settings/it.vantul.karno.plist" ]; then
    check "a start" "it has no client" start
    return
  fi
  if ! start; then
    failed "the first start" "no client after $wait_seconds seconds"
  elif at_least "$version" 12.3; then
    expect "the first start" "Use File Provider = Yes (first startup)" "Startup[CHECK] Using FileProvider" \
      "Startup[LAUNCH] Launched Karno.app" "Sparkle[START] Starting Up"
  else
    expect "the first start" "Use File Provider = Yes (first startup)" "Failing over to Fuse" \
      "Startup[LAUNCH] Launched Karno.app"
  fi
  check "what the first start has settled" "useFileProviderVerified is not true" \
    test "$(defaults read it.vantul.karno useFileProviderVerified 2>/dev/null)" = 1
  "$karnoctl" explain >"$results/explain.txt" 2>&1
}

# message MESSAGE LINE: the launcher says so and runs on.
check_message() {
  mark_log
  post "$1"
  expect "$1" "Notify[LISTEN] Received '$1'" "$2" || return
  check "the launcher after $1" "it has ended" runs
}

check_messages_that_stay() {
  runs || start_afresh
  check_message enable-automatic-updates "Sparkle[CONFIG] Check updates automatically=1"
  check_message disable-automatic-updates "Sparkle[CONFIG] Check updates automatically=0"
  check_message check-for-updates "Sparkle[CHECK] Checking for updates"
  # An updater that finds no feed says so in an alert, which would hold up a quit.
  kill -TERM "$(launcher_pid)"
  within "$wait_seconds" is_gone
}

check_restart_of_client() {
  local client
  runs || start_afresh
  client=$(client_pid)
  mark_log
  post app-needs-restart
  comes "Notify[LISTEN] Restarting Karno.app."
  end_client
  expect "app-needs-restart" "Startup[TERMINATED] Embedded Karno.app terminated. Reason: Being restarted" \
    "Startup[LAUNCH] Launched Karno.app"
  check "the client after it" "no other client than process $client" within "$wait_seconds" has_another_client "$client"
}

has_another_client() { has_client && [ "$(client_pid)" != "$1" ]; }

# The launcher waits for the client's end, and must not take a stopped one for dead.
check_stopped_client() {
  local client
  runs || start_afresh
  client=$(client_pid)
  mark_log
  kill -STOP "$client"
  sleep "$calm_seconds"
  if ! runs || logged "Startup[TERMINATED]"; then
    failed "a stopped client" "the launcher takes it for dead"
  else
    ok "a stopped client"
  fi
  kill -CONT "$client"
  sleep "$calm_seconds"
  check "a client that goes on" "the launcher has ended" runs
  kill -KILL "$client"
  expect "a killed client" "Startup[TERMINATED] Child terminated (status:9, reason:2)" \
    "AppDelegate[TERMINATE] Reason: Embedded Karno.app terminated"
  check "the launcher without a client" "it still runs" within "$wait_seconds" is_gone
}

# restarts_as MESSAGE BUILD: another launcher runs, with that build.
restarts_as() {
  local before
  before=$(launcher_pid)
  mark_log
  post "$1"
  comes "Notify[LISTEN] Received '$1'"
  end_client
  expect "$1" "restarting wrapper (-launch $2)" "AppDelegate[TERMINATE] Reason: Restart Wrapper" || return
  if within "$wait_seconds" is_another_than "$before" && comes "Startup[LAUNCH] Launched $2"; then
    ok "the launcher after it"
  else
    failed "the launcher after it" "no other one has started $2"
  fi
}

check_builds() {
  if at_least "$version" 12.3; then
    check "a start of the File Provider build" "it does not start" start_afresh Karno.app
    restarts_as restart-wrapper Karno.app
    restarts_as restart-wrapper-with-file-provider Karno.app
  else
    skipped "the File Provider build" "this macOS is before 12.3"
  fi
  if [ "$fuse_is" = missing ]; then
    skipped "the FUSE build and restart-wrapper-with-fuse" "there is no macFUSE, and no right to make one up"
    return
  fi
  runs || start_afresh
  restarts_as restart-wrapper-with-fuse "Karno(Fuse).app"
  expect "the check of macFUSE" "FuseRequirements: System requirements have been met"
}
