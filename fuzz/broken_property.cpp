#include "fuzz/broken_property.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {
namespace {

const void* case_at_hand = nullptr;
void (*print_case_at_hand)(const void*) = nullptr;

}  // namespace

CaseAtHand::CaseAtHand(const void* at_hand, void (*print)(const void*)) {
  case_at_hand = at_hand;
  print_case_at_hand = print;
}

CaseAtHand::~CaseAtHand() {
  case_at_hand = nullptr;
}

void report_broken_property(const char* property, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, property);
  if (case_at_hand != nullptr) print_case_at_hand(case_at_hand);
  std::abort();
}

}  // namespace fuzz
