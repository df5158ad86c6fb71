#!/bin/bash
# A client in one file: reads its launcher's identifier, posts what it is told to, and ends after a farewell or with
# its launcher. The FIFO that KARNO_CLIENT_MESSAGES names stands for a user: "message" or "message=reason", by line.
# For the bash 3.2 of a Mac as well.

# Beside the launcher, in the bundle that this client lies in as Contents/Helpers/Karno.app/Contents/MacOS/Karno.
karnoctl=${0%/*}/../../../../MacOS/karnoctl

misused() {
  echo "client: $1" >&2
  exit 64
}

pattern='^--parent [1-9][0-9]{0,9}$'
[[ $# == 1 && $1 =~ $pattern ]] || misused 'it takes one argument, "--parent N", a single word with a blank in it'
parent=${1#--parent }

# A process whose parent has ended gets another one.
has_parent() { (($(ps -o ppid= -p $$) == parent)); }

post() {
  if [[ -n $2 ]]; then "$karnoctl" post "$1" --reason "$2"; else "$karnoctl" post "$1"; fi
}

# Answers whether that was a farewell that the launcher has got.
say() {
  local message=${1%%=*} reason=
  [[ $1 != *=* ]] || reason=${1#*=}
  post "$message" "$reason" || return 1
  case $message in
    check-for-updates | enable-automatic-updates | disable-automatic-updates | app-is-terminating-abnormally) false ;;
  esac
}

if [[ -n ${KARNO_CLIENT_MESSAGES+is there} ]]; then
  [[ -p $KARNO_CLIENT_MESSAGES ]] || misused "KARNO_CLIENT_MESSAGES names no FIFO"
  exec 3<>"$KARNO_CLIENT_MESSAGES" # open for writing, too, so that it never ends
fi
while has_parent; do
  if [[ -z ${KARNO_CLIENT_MESSAGES+is there} ]]; then
    sleep 1
  elif IFS= read -r -t 1 line <&3 && say "$line"; then
    sleep 0.5 # the launcher has to hear it before it sees this process end
    exit 0
  fi
done
