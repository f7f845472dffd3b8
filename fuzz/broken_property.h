// How a target says that a property does not hold.
#pragma once

namespace fuzz {

// Prints the property and the case that broke it, and ends the process as the fuzzer's finding.
[[noreturn]] void report_broken_property(const char* property, const char* file, int line);

// What report_broken_property() prints as the case while this object lives. There is a function
// print_case(const Case&) for it.
class CaseAtHand {
 public:
  template <typename Case>
  explicit CaseAtHand(const Case& c)
      : CaseAtHand(&c,
                   [](const void* at_hand) { print_case(*static_cast<const Case*>(at_hand)); }) {}
  ~CaseAtHand();
  CaseAtHand(const CaseAtHand&) = delete;
  CaseAtHand& operator=(const CaseAtHand&) = delete;

 private:
  CaseAtHand(const void* at_hand, void (*print)(const void*));
};

}  // namespace fuzz

#define REQUIRE(property)                                               \
  do {                                                                  \
    if (!(property)) [[unlikely]] {                                     \
      fuzz::report_broken_property(#property, __FILE_NAME__, __LINE__); \
    }                                                                   \
  } while (false)
