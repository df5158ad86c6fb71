# shellcheck shell=bash
# The messages that end the launcher, and the question after a crash.

# ends_by MESSAGE REASON
ends_by() {
  start_afresh
  mark_log
  post "$1"
  expect "$1" "AppDelegate[TERMINATE] Reason: $2" "AppDelegate:: Terminating"
  check "the launcher after $1" "it still runs" within "$wait_seconds" is_gone
}

check_endings() {
  ends_by app-is-terminating "Karno.app is terminated"
  ends_by user-selected-quit "User selected quit"
  mark_log
  start_afresh
  kill -TERM "$(launcher_pid)"
  expect "a termination signal" "AppDelegate:: Terminating"
}

ask_after_crash() {
  start_afresh
  mark_log
  post app-is-terminating-abnormally --reason "$1"
  expect "app-is-terminating-abnormally" "Abnormal[TERMINATION] Karno.app terminated abnormally. (reason=$1)"
  # The question stands on the screen a little later.
  sleep "$calm_seconds"
}

check_crash_question() {
  ask_after_crash "disk full"
  check_quit_under_alert
  if ! press "$(launcher_pid)" 53; then
    skipped "the answers to the crash question" "System Events may not press keys"
    kill -TERM "$(launcher_pid)"
    expect "a termination signal under an alert" "AppDelegate:: Terminating"
    return
  fi
  expect "the crash question's No" "User elected not to restart Karno after terminating abnormally."
  check "the launcher after No" "it still runs" within "$wait_seconds" is_gone

  ask_after_crash "disk full again"
  press "$(launcher_pid)" 36
  expect "the crash question's Yes" "User elected to restart Karno after terminating abnormally." \
    "Startup[LAUNCH] Launched Karno.app"
  end_launcher
}

# A quit waits until the question has been answered.
check_quit_under_alert() {
  post user-selected-quit
  comes "AppDelegate[TERMINATE] Reason: User selected quit"
  sleep "$calm_seconds"
  if runs && ! logged "AppDelegate:: Terminating"; then
    ok "a quit under an alert"
  else
    failed "a quit under an alert" "it does not wait for the answer"
  fi
}
