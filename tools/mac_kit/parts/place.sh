# shellcheck shell=bash
# What is there before the kit, what the kit makes, and its removal. The preferences and folders of a Mac's program do
# not follow HOME, so all of it is the user's own.
disk=${KARNO_KIT_DISK:-} # where its tests lay out a Mac
fuse="$disk/Library/Frameworks/macFUSE.framework"
logs="$HOME/Library/Logs/Karno for macOS"
# Not the client's own, it.vantul.Karno, whose file is that of it.vantul.karno on a disk that folds case.
domains="it.vantul.karno it.vantul.KarnoWrapper it.vantul.KarnoFuse it.vantul.KarnoAdmin"

# The files that would be mistaken for the kit's, or decide for it.
things_in_the_way() {
  local domain path
  for path in "$disk/Applications/Karno.app" "$logs" "$HOME/KARNOUPGRADE.debug" "$HOME/Library/Caches/Karno" \
    "$disk/Library/Preferences/it.vantul.KarnoAdmin.plist" \
    "$disk/Library/Managed Preferences/it.vantul.KarnoAdmin.plist" \
    "$disk/Library/Managed Preferences/$(id -un)/it.vantul.KarnoAdmin.plist"; do
    [ -e "$path" ] && echo "$path"
  done
  for domain in $domains; do
    defaults read "$domain" >/dev/null 2>&1 && echo "the preferences $domain"
  done
  return 0
}

refuse_what_is_there() {
  $is_here && return
  local things
  things=$(things_in_the_way)
  [ -n "$things" ] || return
  echo "prove: a launcher has been here, and the kit would change what is its:" >&2
  sed 's/^/  /' <<<"$things" >&2
  echo "prove: take it away, or say --here to go on beside it" >&2
  exit 1
}

# What launcher, clients and macOS leave behind.
traces() {
  local library="$HOME/Library" name
  echo "$logs"
  echo "$library/Caches/Karno"
  for name in it.vantul.KarnoWrapper it.vantul.Karno it.vantul.KarnoFuse; do
    echo "$library/Caches/$name"
    echo "$library/HTTPStorages/$name"
    echo "$library/Saved Application State/$name.savedState"
  done
}

# Notes what is not there yet and may be removed at the end.
note_traces() {
  local path domain
  mkdir "$results/settings"
  traces | while IFS= read -r path; do
    [ -e "$path" ] || echo "$path" >>"$results/made.txt"
  done
  for domain in $domains; do
    defaults read "$domain" >/dev/null 2>&1 || continue
    # They are deleted at the end, so none may be without a copy.
    defaults export "$domain" "$results/settings/$domain.plist" || exit 1
  done
}

made() { echo "$1" >>"$results/made.txt"; }

# In a folder of that name no launcher asks to be moved.
put_launcher_in_place() {
  note_traces
  work="$kit/work"
  made "$work"
  rm -rf "$work"
  mkdir -p "$work/Applications"
  cp -R "$kit/Karno.app" "$work/Applications/Karno.app"
  app="$work/Applications/Karno.app"
  karnoctl="$app/Contents/MacOS/karnoctl"
  if [ -n "$framework" ]; then
    rm -rf "$app/Contents/Frameworks/Sparkle.framework"
    cp -R "$framework" "$app/Contents/Frameworks/Sparkle.framework"
  fi
}

# The information file of a macFUSE that every Mac takes, where there is none and we may.
make_up_fuse() {
  fuse_is=missing
  if [ -e "$fuse" ]; then
    fuse_is=there
  elif as_root mkdir -p "$fuse/Resources"; then
    fuse_is=made_up
    as_root tee "$fuse/Resources/Info.plist" >/dev/null <"$kit/parts/macFUSE.plist"
  fi
  echo "macFUSE: $fuse_is" >>"$results/machine.txt"
}

put_settings_back() {
  local domain
  for domain in $domains; do
    defaults delete "$domain" >/dev/null 2>&1
    [ -f "$results/settings/$domain.plist" ] && defaults import "$domain" "$results/settings/$domain.plist"
  done
}

clean_up() {
  local path
  [ -f "$results/made.txt" ] || return
  end_launcher
  if [ "${fuse_is:-}" = made_up ]; then as_root rm -rf "$fuse"; fi
  put_settings_back
  while IFS= read -r path; do
    rm -rf "$path"
  done <"$results/made.txt"
}

# What tells afterwards why something failed.
keep_evidence() {
  [ -d "$logs" ] && cp -R "$logs" "$results/log"
  find "$HOME/Library/Logs/DiagnosticReports" -name 'Karno*' -newer "$results/machine.txt" \
    -exec cp {} "$results" \; 2>/dev/null
  return 0
}
