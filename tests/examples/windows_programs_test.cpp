// The examples as programs for Windows, beside the DLL that they were linked with.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include "simulator/hxl_sim.h"
#include "tests/examples/windows_run_time.h"
#include "tests/harness/image.h"
#include "tests/harness/library.h"
#include "tests/harness/windows_convention.h"

namespace examples {

namespace {

struct Program {
  const char* example;
  const char* language;

  friend void PrintTo(const Program& program, std::ostream* out) {
    *out << program.example << " in " << program.language;
  }
};

// The lines of a file of outputs/ that do not begin with '#'.
std::string expected_output(const std::string& example) {
  std::ifstream file(KORVEL_EXAMPLE_OUTPUTS "/" + example + ".txt");
  std::string output;
  std::string line;
  while (std::getline(file, line)) {
    if (line[0] != '#') output += line + '\n';
  }
  return output;
}

class WindowsPrograms : public testing::TestWithParam<Program> {};

TEST_P(WindowsPrograms, PrintWhatTheyShould) {
  if (!harness::is_image(harness::library_path())) {
    GTEST_SKIP() << "the library is an ELF file; these programs import the DLL";
  }
  const harness::Image library(harness::library_path());
  const auto imports = [&library](const std::string& dll, const std::string& function) {
    if (dll == "korvel_utils.dll") return library.export_address(function.c_str());
    return dll == "msvcrt.dll" ? run_time_function(function) : 0;
  };
  const std::filesystem::path folder = std::filesystem::path(harness::library_path()).parent_path();
  const std::string name = std::string("example_") + GetParam().example + "_" + GetParam().language;
  const harness::Image program((folder / (name + ".exe")).c_str(), imports);

  hxl_sim_reset();
  hxl_sim_set_chip(0x43010000);
  hxl_sim_set_capture(1);
  take_output();
  using Start = int32_t(WINDOWS_CONVENTION*)();
  EXPECT_EQ(reinterpret_cast<Start>(program.entry_address())(), 0);
  const std::string expected = expected_output(GetParam().example);
  EXPECT_NE(expected, "");
  EXPECT_EQ(take_output(), expected);
  EXPECT_EQ(hxl_sim_misuse_count(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Examples, WindowsPrograms,
                         testing::Values(Program{"surface", "c"}, Program{"surface", "cpp"},
                                         Program{"mip_chain", "c"}, Program{"mip_chain", "cpp"},
                                         Program{"stored_record", "c"},
                                         Program{"stored_record", "cpp"}),
                         [](const testing::TestParamInfo<Program>& program) {
                           return std::string(program.param.example) + "_" + program.param.language;
                         });

}  // namespace
}  // namespace examples
