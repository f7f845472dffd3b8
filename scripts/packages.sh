# Sourced by the other scripts, behind arguments.sh: installs the Debian packages that a step needs and does not find,
# and runs commands that speak only when they fail.

build_packages=(g++ cmake ninja-build libcli11-dev libfmt-dev nlohmann-json3-dev)
test_packages=(clang libclang-rt-14-dev clang-format clang-tidy libgtest-dev libgmock-dev
               libbenchmark-dev libcapstone-dev binutils pkg-config python3 python3-jsonschema pylint xxd zsh fish
               bash-completion man-db mandoc doxygen abigail-tools lintian gdb)
windows_packages=(clang-19 lld-19 llvm-19 libc++-19-dev mingw-w64-common)
arm64_packages=(g++-aarch64-linux-gnu qemu-user googletest)
# emscripten's own programs are run by node; one from elsewhere is as good as Debian's.
wasm_packages=(emscripten nodejs googletest)
proof_packages=(python3-z3 cvc5)
bench_packages=(libbenchmark-dev libgtest-dev libgmock-dev libcapstone-dev python3 valgrind)

install_packages() {
  local installed missing=() package
  # It fails where it does not know one of them, and tells of the others all the same.
  installed=$(dpkg-query -W -f='${Package} ${Status}\n' "$@" 2>/dev/null || true)
  for package in "$@"; do
    [[ $'\n'$installed$'\n' == *$'\n'"$package install ok installed"$'\n'* ]] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "installing: ${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update &&
         "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
           apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    fail "could not install: ${missing[*]}"
  fi
  rm -f "$log"
}

# Runs a command, and shows what it said only when it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    fail "this failed: $*"
  fi
  rm -f "$log"
}
