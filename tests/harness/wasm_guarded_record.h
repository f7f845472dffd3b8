// A guarded record (guarded_record.h) where there are no pages to guard, but memory has an end: one
// byte beyond it traps. The record ends there; of more than one at a time, the others stand before
// the first, with no guard. A write to a read-only record ends the program later, when the record
// goes.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace harness {

class GuardedRecord {
 public:
  explicit GuardedRecord(std::size_t size) : size_(size), end_(end_of_free_memory_) {
    data_ = end_ - size;
    // The allocator takes memory from below.
    if (data_ < static_cast<unsigned char*>(sbrk(0))) give_up("no memory is left for a record");
    end_of_free_memory_ = data_;
  }
  ~GuardedRecord() {
    if (!kept_.empty() && std::memcmp(kept_.data(), data_, size_) != 0) {
      give_up("a read-only record has been written");
    }
    if (end_of_free_memory_ != data_) give_up("records do not go in the reverse order");
    end_of_free_memory_ = end_;
  }
  GuardedRecord(const GuardedRecord&) = delete;
  GuardedRecord& operator=(const GuardedRecord&) = delete;

  unsigned char* data() const { return data_; }
  std::size_t size() const { return size_; }

  void fill(const void* bytes) { std::memcpy(data_, bytes, size_); }

  void make_read_only() { kept_.assign(data_, data_ + size_); }

 private:
  [[noreturn]] static void give_up(const char* why) {
    std::fprintf(stderr, "%s\n", why);
    std::abort();
  }

  // Memory does not grow: the test programs are linked so.
  static unsigned char* end_of_memory() {
    constexpr std::size_t kPageBytes = 65536;
    return reinterpret_cast<unsigned char*>(__builtin_wasm_memory_size(0) * kPageBytes);
  }

  static inline unsigned char* end_of_free_memory_ = end_of_memory();

  std::size_t size_;
  unsigned char* end_;
  unsigned char* data_;
  std::vector<unsigned char> kept_;
};

}  // namespace harness
