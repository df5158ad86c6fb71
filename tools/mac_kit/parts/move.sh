# shellcheck shell=bash
# A launcher in Downloads offers to move, and what follows another home folder.

check_move() {
  local from="$HOME/Downloads/karno-kit" target="$disk/Applications/Karno.app" mover
  if [ -e "$target" ] || [ -e "$from" ]; then
    skipped "the move from Downloads" "$target or $from is there already"
    return
  elif [ ! -w "$disk/Applications" ]; then
    skipped "the move from Downloads" "this user may not write to /Applications"
    return
  fi
  end_launcher
  made "$from"
  made "$target"
  mkdir -p "$from"
  cp -R "$app" "$from/Karno.app"
  mark_log
  open -n "$from/Karno.app"
  expect "the offer to move" "KarnoMoveApplicationManager:: Alerting user that the app needs moving." || return
  sleep "$calm_seconds"
  # karnoctl lists a launcher whose question is open as well.
  mover=$(launcher_pid)
  if press "$mover" 36; then
    check_moved "$from" "$target" "$mover"
  else
    skipped "the move from Downloads" "System Events may not press keys"
    kill -TERM "$mover"
    within "$wait_seconds" is_gone
  fi
}

check_moved() {
  expect "the move from Downloads" "AppDelegate[MOVE] Karno has been moved and will be restarted. Quitting." || return
  check "the launcher in /Applications" "none runs there" within "$wait_seconds" runs_at "$2"
  check "the bundle that was moved" "it is still in Downloads" test ! -e "$1/Karno.app"
  end_launcher
}

runs_at() { "$karnoctl" status 2>/dev/null | grep -qF "  bundle  $1"; }

# Only reported: nothing promises either.
check_redirected_home() {
  local home="$work/home" log=stays settings=stay
  end_launcher
  mkdir -p "$home/Library/Preferences"
  mark_log
  HOME="$home" CFFIXED_USER_HOME="$home" "$app/Contents/MacOS/Karno" >"$results/redirected_home.txt" 2>&1 &
  if ! within "$wait_seconds" has_client; then
    failed "a start with another home folder" "it has no client"
    return
  fi
  [ -e "$home/Library/Logs/Karno for macOS/karno-wrapper.log" ] && log=follows
  [ -n "$(find "$home/Library/Preferences" -name 'it.vantul.*')" ] && settings=follow
  ok "a start with another home folder (the log $log, the settings $settings)"
  end_launcher
  cp -R "$home" "$results/redirected_home"
}
