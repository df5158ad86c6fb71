# Shared by make-machine, start and in. Sourced, never run.
#
# A machine is a folder laid out like a Mac's disk. What is ours in it lies under var/:
#   var/machine/user     the name of the user whose home the launcher gets
#   var/machine/bundle   where the launcher's bundle was put, relative to the machine
#   var/machine/cpu      what the machine's uname prints
#   var/run/lock         held by `start` for as long as the machine runs
#   var/run/session      how to reach the running machine, KEY=VALUE by line
#   var/log/             output of the X server, the window manager and the bus, and what was opened

readonly kUsageStatus=64
readonly kFailureStatus=1

program=$(basename "$0")

fail() {
  printf '%s: %s\n' "$program" "$*" >&2
  exit "$kFailureStatus"
}

usage_error() {
  printf '%s: %s\nTry "%s --help".\n' "$program" "$*" "$program" >&2
  exit "$kUsageStatus"
}

# The value of the option that the remaining arguments begin with.
option_value() {
  (($# >= 2)) || usage_error "$1 needs a value"
  printf '%s' "$2"
}

# The absolute path of an existing machine.
existing_machine() {
  [[ -d $1 ]] || fail "there is no machine at '$1' (make one with make-machine)"
  local root
  root=$(cd "$1" && pwd -P)
  [[ -d $root/var/machine && -d $root/Users ]] ||
    fail "'$1' is a folder, but not a machine (make one with make-machine)"
  printf '%s' "$root"
}

# The user whose home the launcher gets: the one make-machine noted, else the only one there is.
machine_user() {
  local root=$1 users=()
  if [[ -s $root/var/machine/user ]]; then
    cat "$root/var/machine/user"
    return
  fi
  mapfile -t users < <(find "$root/Users" -mindepth 1 -maxdepth 1 -type d -printf '%f\n')
  ((${#users[@]} == 1)) || fail "cannot tell which of the users in '$root/Users' to take"
  printf '%s' "${users[0]}"
}

# The launcher's bundle: where make-machine put it, or where it may have moved itself since.
machine_bundle() {
  local root=$1 home=$2 place=Applications/Karno.app candidate
  [[ -s $root/var/machine/bundle ]] && place=$(<"$root/var/machine/bundle")
  for candidate in "$root/$place" "$root/Applications/Karno.app" "$home/Applications/Karno.app"; do
    if [[ -d $candidate ]]; then
      printf '%s' "$candidate"
      return
    fi
  done
  fail "there is no launcher in '$root' (put one there with make-machine --bundle PATH)"
}

# One value of the running machine's record; empty when it is not there.
session_value() {
  local root=$1 key=$2 line
  [[ -r $root/var/run/session ]] || return 0
  while IFS= read -r line; do
    if [[ $line == "$key="* ]]; then
      printf '%s' "${line#*=}"
      return
    fi
  done <"$root/var/run/session"
}

# Whether `start` holds the machine. A record left behind by a killed one does not count: the kernel
# gives the lock back when its holder is gone.
machine_is_running() {
  local root=$1
  [[ -e $root/var/run/lock ]] || return 1
  ! flock --nonblock --shared "$root/var/run/lock" true
}
