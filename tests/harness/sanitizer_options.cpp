// Faults must reach the test as the signals they are, not as a sanitizer's report.

extern "C" {
const char* __asan_default_options();
const char* __tsan_default_options();
const char* __ubsan_default_options();

const char* __asan_default_options() {
  return "handle_sigfpe=0:handle_sigtrap=0";
}
const char* __tsan_default_options() {
  return "handle_sigfpe=0:handle_sigtrap=0";
}
const char* __ubsan_default_options() {
  return "handle_sigfpe=0:print_stacktrace=1";
}
}
