#include "tests/fetches/watched_memory.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "tests/fetches/instruction_accesses.h"
#include "tests/fetches/single_step.h"

namespace fetches {

namespace {

// More than any call makes: a call that runs wild ends here.
constexpr std::size_t kMostTouches = 20000;

// Closed memory on either side: a call that runs beyond the watched bytes meets it.
constexpr std::size_t kGuard_bytes = std::size_t{1} << 20;

// The memory whose call runs now.
WatchedMemory* watched_now = nullptr;
struct sigaction segv_before;
struct sigaction trap_before;

std::size_t page_bytes() {
  static const auto bytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return bytes;
}

std::size_t round_up(std::size_t value, std::size_t step) {
  return (value + step - 1) / step * step;
}

bool overlap(std::ptrdiff_t a, std::size_t a_bytes, std::ptrdiff_t b, std::size_t b_bytes) {
  return a < b + static_cast<std::ptrdiff_t>(b_bytes) &&
         b < a + static_cast<std::ptrdiff_t>(a_bytes);
}

}  // namespace

// What the signals do that arrive while a call is watched.
struct Handlers {
  static void on_fault(int, siginfo_t* info, void* context) {
    auto& stopped_at = *static_cast<ucontext_t*>(context);
    WatchedMemory& memory = *watched_now;
    const auto fault = reinterpret_cast<uintptr_t>(info->si_addr);
    const std::string problem = note(memory, stopped_at, fault);
    if (!problem.empty()) give_up(memory, problem);
    memory.open();
    begin_step(stopped_at);
  }

  static void on_trap(int, siginfo_t*, void* context) {
    auto& stopped_at = *static_cast<ucontext_t*>(context);
    if (!end_step(stopped_at)) {
      // A trap of the program's own. It comes again, and ends the program.
      std::signal(SIGTRAP, SIG_DFL);
      return;
    }
    WatchedMemory& memory = *watched_now;
    memory.make_flips();
    const bool watch_on = !memory.flips_.empty() || memory.after_flips_ == AfterFlips::kWatchOn;
    if (watch_on) memory.close();
  }

 private:
  // Empty, or why the call cannot go on.
  static std::string note(WatchedMemory& memory, const ucontext_t& stopped_at, uintptr_t fault) {
    const auto start = reinterpret_cast<uintptr_t>(memory.start_);
    const auto watched = reinterpret_cast<uintptr_t>(memory.watched_);
    if (fault < watched || fault - watched >= memory.watched_bytes_) {
      return "an access beyond the pages of the memory, " +
             std::to_string(static_cast<std::ptrdiff_t>(fault - start)) +
             " bytes from its first byte";
    }
    std::string refusal;
    const std::vector<Access> accesses = instruction_accesses(stopped_at, fault, refusal);
    if (accesses.empty()) return "not understood: " + refusal;
    bool explained = false;
    memory.noted_in_step_ = 0;
    for (const Access& access : accesses) {
      explained = explained || (fault >= access.address && fault - access.address < access.bytes);
      const auto offset = static_cast<std::ptrdiff_t>(access.address - start);
      const auto page = memory.watched_ - memory.start_;
      if (!overlap(offset, access.bytes, page, memory.watched_bytes_)) continue;  // of other memory
      memory.trace_.touches.push_back({offset, access.bytes, access.loads, access.stores});
      ++memory.noted_in_step_;
    }
    if (!explained) return "an access that is not where its instruction says";
    if (memory.trace_.touches.size() >= kMostTouches) return "too many accesses";
    return "";
  }

  [[noreturn]] static void give_up(WatchedMemory& memory, const std::string& why) {
    memory.trace_.stopped = why;
    siglongjmp(memory.give_up_at_, 1);
  }
};

WatchedMemory::WatchedMemory(std::size_t bytes, std::size_t page_starts_at, std::size_t shift_bytes)
    : bytes_(bytes) {
  const std::size_t page = page_bytes();
  const std::size_t open_before = round_up(page_starts_at, page);
  watched_bytes_ = round_up(bytes - page_starts_at + shift_bytes, page);
  mapped_bytes_ = kGuard_bytes + open_before + watched_bytes_ + kGuard_bytes;
  void* mapping = mmap(nullptr, mapped_bytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) std::abort();
  mapping_ = static_cast<unsigned char*>(mapping);
  watched_ = mapping_ + kGuard_bytes + open_before;
  start_ = watched_ - page_starts_at + shift_bytes;
  if (open_before != 0 &&
      mprotect(mapping_ + kGuard_bytes, open_before, PROT_READ | PROT_WRITE) != 0) {
    std::abort();
  }
  open();
}

WatchedMemory::~WatchedMemory() {
  munmap(mapping_, mapped_bytes_);
}

void WatchedMemory::open() {
  if (mprotect(watched_, watched_bytes_, PROT_READ | PROT_WRITE) != 0) std::abort();
}

void WatchedMemory::close() {
  if (mprotect(watched_, watched_bytes_, PROT_NONE) != 0) std::abort();
}

void WatchedMemory::begin() {
  if (watched_now != nullptr) std::abort();  // one at a time
  trace_ = {};
  trace_.touches.reserve(kMostTouches + 16);
  watched_now = this;
  struct sigaction action = {};
  action.sa_flags = SA_SIGINFO;
  action.sa_sigaction = Handlers::on_fault;
  sigaction(SIGSEGV, &action, &segv_before);
  action.sa_sigaction = Handlers::on_trap;
  sigaction(SIGTRAP, &action, &trap_before);
  close();
}

Trace WatchedMemory::end() {
  open();
  watched_now = nullptr;
  sigaction(SIGSEGV, &segv_before, nullptr);
  sigaction(SIGTRAP, &trap_before, nullptr);
  flips_.clear();
  after_flips_ = AfterFlips::kWatchOn;
  return std::move(trace_);
}

// Of the words that the instruction just stepped over has loaded any byte of.
void WatchedMemory::make_flips() {
  const auto noted = trace_.touches.end() - static_cast<std::ptrdiff_t>(noted_in_step_);
  const auto was_loaded = [&](const Flip& flip) {
    return std::any_of(noted, trace_.touches.end(), [&](const Touch& touch) {
      return touch.loads &&
             overlap(touch.offset_bytes, touch.bytes,
                     static_cast<std::ptrdiff_t>(flip.offset_bytes), flip.after.size());
    });
  };
  for (const Flip& flip : flips_) {
    if (!was_loaded(flip)) continue;
    std::memcpy(start_ + flip.offset_bytes, flip.after.data(), flip.after.size());
    ++trace_.flips;
  }
  std::erase_if(flips_, was_loaded);
}

}  // namespace fetches
