// What the whole library answers, in the lines of results.txt. A change of behaviour changes the
// lines of what it touches; scripts/digest writes the file anew.

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>

#include "tests/digest/line.h"

namespace digest {

std::string Line::text() const {
  char numbers[64];
  std::snprintf(numbers, sizeof numbers, "%9" PRIu64 " %016" PRIx64 "  ", cases_, hash_);
  return numbers + name_;
}

namespace {

std::vector<std::string> computed() {
  Lines lines;
  add_identity_lines(lines);
  add_capability_lines(lines);
  add_alignment_lines(lines);
  add_layout_lines(lines);
  add_validation_lines(lines);
  std::vector<std::string> texts;
  for (const Line& line : lines) texts.push_back(line.text());
  return texts;
}

std::vector<std::string> stored() {
  std::ifstream file(KORVEL_DIGEST_RESULTS);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  }
  return lines;
}

void write(const char* path, const std::vector<std::string>& lines) {
  std::ofstream file(path);
  file << "# What the library answers: cases, hash, group of calls. Written by scripts/digest.\n";
  for (const std::string& line : lines) file << line << '\n';
  ASSERT_TRUE(file.flush()) << path;
}

}  // namespace

TEST(Digest, IsTheStoredOne) {
  const std::vector<std::string> now = computed();
  const char* output = std::getenv("KORVEL_DIGEST_OUTPUT");
  if (output != nullptr) {
    write(output, now);
    return;
  }
  const std::vector<std::string> before = stored();
  const std::set<std::string> known(before.begin(), before.end());
  for (const std::string& line : now) {
    if (known.count(line) == 0) ADD_FAILURE() << "not in results.txt: " << line;
  }
  EXPECT_EQ(now.size(), before.size());
}

}  // namespace digest
