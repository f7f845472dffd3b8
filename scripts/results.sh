# Sourced by scripts/test: runs its steps, says how long each took, and puts the results of all tests in one table.

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT

# step NAME COMMAND...: a failure of the command ends the script.
step() {
  local name=$1 start=$SECONDS
  shift
  echo "== $name"
  "$@"
  echo "   $((SECONDS - start)) s"
}

# Adds the row of a finished run: its tests, those that failed, its seconds. A run of no test is none.
note_result() {
  awk -v target="$1" '
    / tests failed out of / { failed = $4; tests = $NF }
    /^Total Test time/ { seconds = $(NF - 1) }
    END {
      if (tests + 0 == 0) exit 1
      printf "%-34s %6d %6d %8.1f s\n", target, tests, failed, seconds
    }' "$2" >>"$results/rows" || fail "ctest ran no test of $1"
}

# run_tests PRESET TARGET: a failure ends the script, with ctest's summary as its last words.
run_tests() {
  echo "== test $1"
  ctest --preset "$1" --progress | tee "$results/log" || fail "tests of $2 fail, or ctest cannot run them"
  note_result "$2" "$results/log"
}

# run_tests_last PRESET TARGET [CTEST ARGUMENT...]: the same, with the table of all runs in front of ctest's summary.
run_tests_last() {
  local preset=$1 target=$2
  shift 2
  echo "== test $preset"
  if ! ctest --preset "$preset" --progress "$@" >"$results/log"; then
    cat "$results/log"
    fail "tests of $target fail, or ctest cannot run them"
  fi
  note_result "$target" "$results/log"
  printf '\n%-34s %6s %6s %10s\n' target tests failed time
  cat "$results/rows"
  echo
  sed -n '/tests failed out of/,$p' "$results/log"
}
