# Sourced by the other scripts before they start anything: --help prints what stands at the top of the script, and
# an argument that the script does not know ends it with 2.

script=scripts/$(basename "$0")

# Variables that would make the script's programs test another library, another GPU, other tests or none, that would
# make sanitizers overlook what they find, or change what is counted and measured.
unset KORVEL_UTILS_LIBRARY "${!HXL_SIM_@}" "${!GTEST_@}" ASAN_OPTIONS LSAN_OPTIONS TSAN_OPTIONS UBSAN_OPTIONS \
  VALGRIND_OPTS "${!QEMU_@}" "${!BENCHMARK_@}"

# The comment at the top of the script, without its marks. Run in the folder that holds scripts/.
print_help() {
  awk 'NR == 1 { next } !/^#/ { exit } { sub(/^# ?/, ""); print }' "$script"
}

# refuse WHAT: one line that says what is wrong and what to do next.
refuse() {
  echo "$script: $1; see $script --help" >&2
  exit 2
}

# fail WHAT: one line that says why the script cannot go on.
fail() {
  echo "$script: $1" >&2
  exit 1
}

# Answers --help, wherever it stands among the arguments.
answer_help() {
  local argument
  for argument in "$@"; do
    if [ "$argument" = --help ]; then
      print_help
      exit 0
    fi
  done
}

# For scripts without arguments: answers --help and refuses all else.
take_no_arguments() {
  answer_help "$@"
  [ $# -eq 0 ] || refuse "unknown argument '$1'"
}

# take_flag FLAG ARGUMENTS: for scripts with one optional argument. Tells whether it was given.
take_flag() {
  local flag=$1
  shift
  answer_help "$@"
  [ $# -ne 0 ] || return 1
  [ "$1" = "$flag" ] || refuse "unknown argument '$1'"
  [ $# -eq 1 ] || refuse "unknown argument '$2'"
}
