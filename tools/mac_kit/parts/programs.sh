# shellcheck shell=bash
# The test programs: the core on its fake platform, and the services of this Mac.

# The names under these words in left_out, as GoogleTest's filter has them.
left_out() {
  local program name
  while read -r program name _; do
    case " $* " in *" $program "*) printf '%s:' "$name" ;; esac
  done <"$kit/left_out"
}

# The cases that this Mac is not asked.
filter() {
  local words=$1
  if [ "$1" = native ] && ! has_session; then
    printf '*OnScreen.*:'
  elif [ "$1" = native ] && ! may_press_keys; then
    words="native keys"
  fi
  # shellcheck disable=SC2086 # several words
  left_out $words
}

failed_cases() { sed -n 's/^\[  FAILED  \] \([^ (]*[.][^ (]*\).*/\1/p' "$1"; }

run_test_program() {
  local name=$1 output="$results/$1_tests.txt" status
  # Temporary folders by a path without links, which /var is.
  mkdir -p "$results/tmp"
  # It says a line the first time, which must not become a part of the filter.
  [ "$name" = unit ] || ! has_session || may_press_keys
  (cd "$kit" && TMPDIR="$results/tmp" limited 900 "tests/karno_${name}_tests" "--gtest_filter=-$(filter "$name")") \
    >"$output" 2>&1
  status=$?
  rm -rf "$results/tmp"
  if [ "$status" -eq 0 ] && grep -q '^\[  PASSED  \]' "$output"; then
    ok "the $name tests ($(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests*\..*/\1/p' "$output" | tail -n 1))"
  elif grep -q '^\[  FAILED  \]' "$output"; then
    failed "the $name tests" "$(failed_cases "$output" | sort -u | tr '\n' ' ')"
  else
    failed "the $name tests" "ended with $status; see ${name}_tests.txt"
  fi
}

run_test_programs() {
  run_test_program unit
  if [ "$(id -u)" -eq 0 ]; then
    skipped "the native tests" "root passes over permissions; run the kit as somebody else"
  else
    run_test_program native
  fi
}
