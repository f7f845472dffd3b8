// Memory of which every access is seen: bytes on pages that fault.
//
// Each access by anybody, be it the library, the services or the C library, stops the program. The
// access is noted, the pages are opened for the one instruction, and closed behind it.
#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fetches {

// An access to the watched bytes, counted from the first of them. One that reaches beyond either
// end is noted as a whole.
struct Touch {
  std::ptrdiff_t offset_bytes;
  std::size_t bytes;
  bool loads;
  bool stores;
};

// What a call did.
struct Trace {
  std::vector<Touch> touches;  // in their order
  std::size_t flips = 0;       // of those that were asked for, as many as were made
  std::string stopped;         // why the call was given up; empty when it came back
};

// A word that another writer changes as soon as it has been read.
struct Flip {
  std::size_t offset_bytes;
  std::vector<unsigned char> after;  // what stands there from the end of the first load of it on
};

// What becomes of a call's accesses when the last word has changed.
enum class AfterFlips { kWatchOn, kStopWatching };

class WatchedMemory {
 public:
  // `page_starts_at`: this byte of the memory is the first of a page, from which on accesses are
  // seen; those to the bytes before it are not. 0 for all of them.
  // `shift_bytes` moves the memory off that place.
  explicit WatchedMemory(std::size_t bytes, std::size_t page_starts_at = 0,
                         std::size_t shift_bytes = 0);
  ~WatchedMemory();
  WatchedMemory(const WatchedMemory&) = delete;
  WatchedMemory& operator=(const WatchedMemory&) = delete;

  // Open to everybody while no call is watched.
  unsigned char* data() const { return start_; }
  std::size_t size() const { return bytes_; }

  // The words change while the next call is watched.
  void flip_after_first_load(std::vector<Flip> flips, AfterFlips after) {
    flips_ = std::move(flips);
    after_flips_ = after;
  }

  // The call is given up where it leaves the mapped pages around the memory, or where an instruction
  // is not understood. Never inlined: what the caller keeps in registers survives the jump.
  template <typename Call>
  [[gnu::noinline]] Trace watch(const Call& call) {
    begin();
    if (sigsetjmp(give_up_at_, 1) == 0) call();
    return end();
  }

 private:
  friend struct Handlers;

  void begin();
  Trace end();
  void open();
  void close();
  void make_flips();

  std::size_t bytes_;
  unsigned char* mapping_ = nullptr;  // begins and ends with memory that is never opened
  std::size_t mapped_bytes_ = 0;
  unsigned char* start_ = nullptr;
  unsigned char* watched_ = nullptr;  // pages
  std::size_t watched_bytes_ = 0;

  std::vector<Flip> flips_;
  AfterFlips after_flips_ = AfterFlips::kWatchOn;
  Trace trace_;
  std::size_t noted_in_step_ = 0;  // touches of the instruction that is stepped over
  sigjmp_buf give_up_at_;
};

}  // namespace fetches
