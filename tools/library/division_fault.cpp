#include "tools/library/division_fault.h"

#include <unistd.h>

#include <csignal>
#include <initializer_list>

#include "tools/command/exit_codes.h"

namespace tool {
namespace {

// Only calls that are safe inside a signal handler.
extern "C" void end_after_division_fault(int /*signal*/) {
  constexpr char kLine[] = "korvel-layout: the library divided by 0 on this request\n";
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kLine, sizeof kLine - 1);
  _exit(kExitBadInput);
}

}  // namespace

void install_division_fault_handler() {
  struct sigaction action = {};
  action.sa_handler = end_after_division_fault;
  sigemptyset(&action.sa_mask);
  // The signals of the fault on the targets that the library knows.
  for (const int signal : {SIGFPE, SIGTRAP, SIGILL}) sigaction(signal, &action, nullptr);
}

}  // namespace tool
