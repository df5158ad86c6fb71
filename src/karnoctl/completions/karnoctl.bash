# Completion of karnoctl's command lines in bash, from 3.2 on. It needs nothing but bash: have it read by
# ~/.bash_profile, or lie in the folder that bash-completion reads.

# The words that may follow, of which those that begin like the one being typed are offered.
_karnoctl_offer() {
  local word
  COMPREPLY=()
  for word in $1; do
    [[ $word == "$2"* ]] && COMPREPLY[${#COMPREPLY[@]}]=$word
  done
}

# Folders (-d) or files (-f) are offered as bash offers them for any command: names with blanks in them too.
_karnoctl_offer_paths() {
  local path
  COMPREPLY=()
  compopt -o filenames 2>/dev/null # bash 4; before that, the slash is typed by hand
  while IFS= read -r path; do
    COMPREPLY[${#COMPREPLY[@]}]=$path
  done < <(compgen "$1" -- "$2")
}

_karnoctl() {
  local verbs='status diagnose log explain self-check post quit report help'
  local messages='check-for-updates enable-automatic-updates disable-automatic-updates user-selected-quit
    app-is-terminating app-is-terminating-abnormally app-needs-restart restart-wrapper-with-fuse
    restart-wrapper-with-file-provider restart-wrapper'
  local verb=${COMP_WORDS[1]} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  if ((COMP_CWORD == 1)); then
    _karnoctl_offer "$verbs --help --version" "$word"
    return
  fi

  # From bash 4 on, "--color=al" comes as three words; before, as one.
  if [[ $word == = ]]; then
    word=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  elif [[ $word == --*=* ]]; then
    before=${word%%=*}
    word=${word#*=}
  fi

  case $verb:$before in
    log:--color) _karnoctl_offer 'auto always never' "$word" ;;
    log:--lines) _karnoctl_offer 'all' "$word" ;;
    post:--reason | quit:--wait) COMPREPLY=() ;;
    log:*) _karnoctl_offer '--follow --lines --color --help' "$word" ;;
    post:*)
      case $word in
        -*) _karnoctl_offer '--reason --help' "$word" ;;
        *) _karnoctl_offer "$messages" "$word" ;;
      esac
      ;;
    diagnose:*)
      case $word in
        -*) _karnoctl_offer '--json --help' "$word" ;;
        *) _karnoctl_offer_paths -f "$word" ;;
      esac
      ;;
    self-check:*)
      case $word in
        -*) _karnoctl_offer '--json --help' "$word" ;;
        *) _karnoctl_offer_paths -d "$word" ;;
      esac
      ;;
    status:* | explain:*) _karnoctl_offer '--json --help' "$word" ;;
    quit:*) _karnoctl_offer '--wait --help' "$word" ;;
    report:--output) _karnoctl_offer_paths -f "$word" ;;
    report:*) _karnoctl_offer '--output --help' "$word" ;;
    help:help) _karnoctl_offer "${verbs% help}" "$word" ;;
    *) COMPREPLY=() ;;
  esac
}

complete -F _karnoctl karnoctl
