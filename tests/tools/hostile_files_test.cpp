// Files that nobody should hand to the program: whatever they hold, it ends with a verdict or with one line that says
// what is wrong.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

struct HostileFile {
  std::string name;
  std::string content;
};

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

std::string hex_of(const std::string& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 15];
  }
  return text;
}

// One word of a record in turn holds a number at which something may give way.
std::vector<HostileFile> records_with_hostile_words(const std::string& name,
                                                    const std::string& record,
                                                    std::size_t step_bytes) {
  std::vector<HostileFile> files;
  for (std::size_t at = 0; at + 4 <= record.size(); at += step_bytes) {
    for (const uint32_t value : {0x80000000U, 0xFFFFFFFFU}) {
      std::string changed = record;
      std::memcpy(changed.data() + at, &value, sizeof value);
      files.push_back({name + ", " + std::to_string(value) + " at " + std::to_string(at), changed});
    }
  }
  return files;
}

std::vector<HostileFile> hostile_records(const std::string& blob, const std::string& surface) {
  std::vector<HostileFile> files = {
      {"empty", ""},
      {"one byte", "x"},
      {"zero bytes of a blob", std::string(5536, '\0')},
      {"zero bytes of a surface record", std::string(5300, '\0')},
      {"ones of a blob", std::string(5536, '\xFF')},
      {"ones of a bare record", std::string(5512, '\xFF')},
      {"ones of a surface record", std::string(5300, '\xFF')},
      {"one byte too many", blob + "x"},
      {"many records", repeated(blob, 1000)},
      {"8 MiB of letters", std::string(8 << 20, 'A')},
      {"8 MiB of zero bytes", std::string(8 << 20, '\0')},
      {"hex with a zero byte", hex_of(blob).replace(100, 1, 1, '\0')},
      {"hex that ends in the middle of a byte", hex_of(blob).substr(0, 11071)},
      {"hex with a letter that is no digit", hex_of(blob).replace(100, 1, "g")},
      {"hex of half a record", hex_of(blob.substr(0, 2768))},
      {"hex of ones", std::string(std::size_t{2} * 5536, 'f')},
      {"hex with blanks beyond what is read", repeated(" ", 40000) + hex_of(blob)},
      {"0x alone", repeated("0x", 5536)},
      {"base64 with its fill in front", "==" + std::string(7380, 'A')},
      {"base64 with fill alone", std::string(7384, '=')},
      {"base64 one letter short", std::string(7381, 'A')},
      {"base64 of zeros", std::string(7382, 'A')},
      {"letters above 7F", std::string(5000, '\xC3')},
  };
  for (const std::size_t size :
       {4U, 23U, 24U, 25U, 5299U, 5471U, 5472U, 5504U, 5511U, 5512U, 5535U}) {
    files.push_back({"cut after " + std::to_string(size) + " bytes", blob.substr(0, size)});
    files.push_back({"bare, cut after " + std::to_string(size), blob.substr(24).substr(0, size)});
  }
  // Every second word of header, level 0 and its first plane, and a few of the rest: the fuzzers change
  // all of them.
  const auto head = records_with_hostile_words("blob", blob.substr(0, 232), 8);
  for (const HostileFile& file : head)
    files.push_back({file.name, file.content + blob.substr(232)});
  for (auto& more : {records_with_hostile_words("blob", blob, 424),
                     records_with_hostile_words("surface record", surface, 392)}) {
    files.insert(files.end(), more.begin(), more.end());
  }
  return files;
}

std::vector<HostileFile> hostile_layouts() {
  const auto plane = [](const std::string& number) {
    return R"({"plane": [{"image_pitch": )" + number + "}]}";
  };
  return {
      {"empty", ""},
      {"no JSON", "pitch=7680"},
      {"cut", R"({"plane": [{"image_pi)"},
      {"a zero byte behind", plane("7680") + std::string(1, '\0')},
      {"a zero byte in front", std::string(1, '\0') + plane("7680")},
      {"two texts", plane("7680") + plane("7680")},
      {"NaN", plane("NaN")},
      {"infinity", plane("Infinity")},
      {"an exponent without end", plane("1e999999")},
      {"below 0", plane("-1")},
      {"a fraction", plane("7680.5")},
      {"beyond 64 bits", plane("18446744073709551616")},
      {"a million digits", plane(std::string(1000000, '9'))},
      {"a text", plane("\"7680\"")},
      {"a truth", plane("true")},
      {"a long text", plane('"' + std::string(1000000, 'x') + '"')},
      {"an object", plane(R"({"image_pitch": 1})")},
      {"lists inside each other", plane(repeated("[", 400000) + repeated("]", 400000))},
      {"objects inside each other",
       plane(repeated(R"({"a":)", 150000) + "1" + repeated("}", 150000))},
      {"lists that never end", repeated("[", 1 << 20)},
      {"objects that never end", repeated(R"({"plane":)", 100000)},
      {"a name twice", R"({"plane": [{"image_pitch": 7680, "image_pitch": 64}]})"},
      {"planes twice", R"({"plane": [{"image_pitch": 7680}], "plane": []})"},
      {"planes that are no list", R"({"plane": 1})"},
      {"a plane that is no object", R"({"plane": [1]})"},
      {"no plane", R"({"plane": []})"},
      {"many planes", R"({"plane": [)" + repeated("{},", 10000) + "{}]}"},
      {"levels that are no list", R"({"level": {}})"},
      {"no level", R"({"level": []})"},
      {"a level that is no object", R"({"level": [[]]})"},
      {"a layout that is no object", R"({"layout": "plane"})"},
      {"no UTF-8", "{\"plane\": [{\"\xFF\": 1}]}"},
      {"half a surrogate pair", R"({"plane": [{"\ud800": 1}]})"},
      {"a byte-order mark alone", "\xEF\xBB\xBF"},
      {"more than is read", std::string(2 << 20, ' ')},
  };
}

// Reports of the program itself alone: a sanitizer's would stand there too.
void expect_orderly(const Outcome& run, const std::string& what) {
  EXPECT_TRUE(run.exit_code >= 0 && run.exit_code <= 2) << what << ": " << run.exit_code;
  EXPECT_EQ(run.out.empty(), run.exit_code == 2) << what;
  std::istringstream lines(run.err);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.starts_with("korvel-layout: ")) << what << ": " << line;
    EXPECT_LT(line.size(), 2000U) << what;
  }
  EXPECT_TRUE(run.exit_code != 2 || count_lines(run.err) == 1) << what << ": " << run.err;
}

TEST(HostileFiles, OfRecords) {
  const ScratchFolder folder;
  const std::string blob(bytes_of(stored_blob(folder)));
  const std::string valid = folder.file("valid", blob);
  const std::string surface(bytes_of(stored_surface()));
  std::size_t refused = 0;
  std::size_t tried = 0;
  for (const HostileFile& file : hostile_records(blob, surface)) {
    const std::string path = folder.file("hostile", file.content);
    for (const std::string& command :
         {"check --strict " + path, "dump --all --json " + path, "diff " + path + " " + valid,
          "diff --json --b --linear --format 28 --size 64x64 " + path}) {
      const Outcome run = run_tool(command);
      expect_orderly(run, file.name + ", " + command);
      refused += run.exit_code == 2 ? 1 : 0;
      ++tried;
    }
  }
  // Files of no record's size are refused by all, changed words by few.
  EXPECT_GT(refused, 100U);
  EXPECT_LT(refused, tried / 2);
}

TEST(HostileFiles, OnStandardInput) {
  const ScratchFolder folder;
  const std::string blob(bytes_of(stored_blob(folder)));
  for (const std::string& content :
       {std::string(), hex_of(blob).substr(1), std::string(8 << 20, 'A')}) {
    const std::string path = folder.file("hostile", content);
    for (const char* command : {"check", "dump", "diff"}) {
      std::vector<std::string> arguments = {command, "-"};
      if (arguments[0] == "diff") arguments.emplace_back("-");
      const Outcome run = run_tool_on_input(arguments, path);
      expect_orderly(run, command);
      EXPECT_EQ(run.exit_code, 2) << command;
    }
  }
}

// None of these is a layout, and each reason names the file.
TEST(HostileFiles, OfLayouts) {
  const ScratchFolder folder;
  for (const HostileFile& file : hostile_layouts()) {
    const std::string path = folder.file("hostile", file.content);
    const Outcome run = run_tool("fit --format 28 --size 1918x1080 --linear --layout " + path);
    expect_orderly(run, file.name);
    EXPECT_EQ(run.exit_code, 2) << file.name << run.out;
  }
}

// What is wrong with a number, and what would be right.
TEST(HostileFiles, NumbersOfLayouts) {
  const ScratchFolder folder;
  const auto reason_of = [&folder](const std::string& text) {
    const std::string path = folder.file("layout", text);
    return reason_of_refusal(
        run_tool("fit --format 28 --size 1918x1080 --linear --layout " + path));
  };
  for (const auto& [number, found] :
       {std::pair("-1", "\"-1\""), std::pair("7680.5", "\"7680.5\""),
        std::pair("18446744073709551616", "\"1.8446744073709552e+19\""),
        std::pair("true", "\"true\""), std::pair("\"1\"", "\"\"1\"\""),
        std::pair("[[]]", "an array")}) {
    const std::string reason =
        reason_of(R"({"plane": [{"image_pitch": )" + std::string(number) + "}]}");
    EXPECT_NE(reason.find("image_pitch is no whole number from 0 to 18446744073709551615, but " +
                          std::string(found) + "; write for example"),
              std::string::npos)
        << reason;
  }
  EXPECT_NE(reason_of(R"({"plane": [{"image_pitch": 1, "image_pitch": 2}]})")
                .find("\"image_pitch\" stands twice in one object; leave one of them"),
            std::string::npos);
}

// Names in objects of their own are no second ones.
TEST(HostileFiles, NamesInSeveralObjects) {
  const ScratchFolder folder;
  const std::string path =
      folder.file("layout", R"({"plane": [{"image_pitch": 1920}, {"image_pitch": 1920}]})");
  EXPECT_EQ(run_tool("fit --format nv12 --size 1920x1080 --linear --layout " + path).exit_code, 0);
}

// A file's name is the user's own text: no JSON breaks of it, and no terminal obeys it.
TEST(HostileFiles, Names) {
  const ScratchFolder folder;
  const std::string path = folder.file("\xFF\x1B[2J\n", bytes_of(stored_blob(folder)));
  for (const char* command : {"check", "dump"}) {
    const Outcome run = run_tool_with({command, path, "--json"});
    EXPECT_EQ(run.exit_code, 0) << command;
    EXPECT_TRUE(nlohmann::json::accept(run.out)) << command;
  }
  EXPECT_TRUE(nlohmann::json::accept(run_tool_with({"diff", path, path, "--json"}).out));
  EXPECT_EQ(run_tool_with({"diff", path, path}).out.find('\x1B'), std::string::npos);
}

// Numbers of bytes that no layout has.
TEST(HostileFiles, BytesToGuess) {
  for (const char* bytes :
       {"0", "-1", "18446744073709551616", "1e3", "0x", "0xFFFFFFFFFFFFFFFFF", "NaN"}) {
    reason_of_refusal(run_tool("guess --format 28 --size 64x64 --bytes " + std::string(bytes)));
  }
  expect_orderly(run_tool("guess --format 28 --size 2147483647x2147483647x2147483647 --bytes "
                          "18446744073709551615"),
                 "guess");
}

}  // namespace
}  // namespace tool_test
