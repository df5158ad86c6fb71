# shellcheck shell=bash
# The test programs: the core on its fake platform, and the services of this Mac.

# The cases that a Mac is not asked, as a filter of GoogleTest.
left_out() {
  local program name filter=
  while read -r program name _; do
    [ "$program" = "$1" ] && filter="$filter:$name"
  done <"$kit/left_out"
  echo "--gtest_filter=-${filter#:}"
}

run_test_program() {
  local name=$1 output="$results/$1_tests.txt" status
  # Temporary folders by a path without links, which /var is.
  mkdir -p "$results/tmp"
  TMPDIR="$results/tmp" limited 900 "$kit/tests/karno_${name}_tests" "$(left_out "$name")" >"$output" 2>&1
  status=$?
  rm -rf "$results/tmp"
  if [ "$status" -eq 0 ] && grep -q '^\[  PASSED  \]' "$output"; then
    ok "the $name tests ($(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests*\..*/\1/p' "$output" | tail -n 1))"
  elif grep -q '^\[  FAILED  \]' "$output"; then
    failed "the $name tests" "$(sed -n 's/^\[  FAILED  \] \([^ (]*[.][^ (]*\).*/\1/p' "$output" | sort -u | tr '\n' ' ')"
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
