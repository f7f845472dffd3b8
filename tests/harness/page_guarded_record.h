// A guarded record (guarded_record.h) where pages can be guarded.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace harness {

class GuardedRecord {
 public:
  explicit GuardedRecord(std::size_t size) : size_(size) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    readable_ = (size + page - 1) / page * page;
    mapping_ =
        mmap(nullptr, readable_ + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping_ == MAP_FAILED) std::abort();
    mapped_ = readable_ + page;
    if (mprotect(static_cast<char*>(mapping_) + readable_, page, PROT_NONE) != 0) std::abort();
  }
  ~GuardedRecord() { munmap(mapping_, mapped_); }
  GuardedRecord(const GuardedRecord&) = delete;
  GuardedRecord& operator=(const GuardedRecord&) = delete;

  // The record ends where readable memory does.
  unsigned char* data() const { return static_cast<unsigned char*>(mapping_) + readable_ - size_; }
  std::size_t size() const { return size_; }

  void fill(const void* bytes) { std::memcpy(data(), bytes, size_); }

  void make_read_only() {
    if (mprotect(mapping_, readable_, PROT_READ) != 0) std::abort();
  }

 private:
  std::size_t size_;
  std::size_t readable_ = 0;
  std::size_t mapped_ = 0;
  void* mapping_ = nullptr;
};

}  // namespace harness
