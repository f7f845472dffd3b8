// What the whole library answers, in the lines of results.txt. A change of behaviour changes the
// lines of what it touches; scripts/digest --write writes the file anew.

#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "tests/digest/line.h"

namespace digest {
namespace {

std::vector<std::string> stored_lines() {
  std::ifstream file(KORVEL_DIGEST_RESULTS);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  }
  return lines;
}

// The lines that only the first has; a line as often as it is missing.
std::multiset<std::string> missing(const std::vector<std::string>& lines,
                                   const std::vector<std::string>& others) {
  std::multiset<std::string> left(lines.begin(), lines.end());
  for (const std::string& line : others) {
    const auto found = left.find(line);
    if (found != left.end()) left.erase(found);
  }
  return left;
}

TEST(Digest, IsTheStoredOne) {
  const std::vector<std::string> before = stored_lines();
  ASSERT_FALSE(before.empty()) << "no line can be read from " << KORVEL_DIGEST_RESULTS
                               << "; scripts/digest --write writes it";
  const std::vector<std::string> now = computed_lines();
  for (const std::string& line : missing(now, before)) {
    ADD_FAILURE() << "not in results.txt: " << line;
  }
  for (const std::string& line : missing(before, now)) {
    ADD_FAILURE() << "in results.txt alone: " << line;
  }
}

}  // namespace
}  // namespace digest
