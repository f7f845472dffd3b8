// Stored records field by field.
#include <gtest/gtest.h>

#include <initializer_list>
#include <random>

#include "tests/harness/off_by.h"
#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

using nlohmann::json;

Outcome dump(const std::string& path, const std::string& more = "") {
  return run_tool("dump " + path + " " + more);
}

void expect_parts(const std::string& text, const std::vector<std::string>& parts) {
  for (const std::string& part : parts) {
    EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text.substr(0, 4000);
  }
}

TEST(Dump, Blob) {
  const ScratchFolder folder;
  const Outcome run = dump(folder.file("blob", bytes_of(stored_blob(folder))));
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  expect_parts(
      run.out,
      {"0x0000  DE CA FA 00              u32     magic               0x00FACADE\n",
       "0x0010  18 00 00 00              u32     record_offset       0x18 = 24 bytes\n",
       "0x001C  88 15 00 00              u32     size                5512 bytes  layout",
       "0x0020  52 5A 00 00", "driver signature 4, driver version 1, layout version 3\n",
       "0x004C  1C 00 00 00              u32     format              28  R8G8B8A8_UNORM\n",
       "0x0064  01 00 00 00              u32     tiled               1  tiled\n",
       "0x0078  00 10 00 00 00 00 00 00  u64     image_offset        0x1000 = 4096 bytes\n",
       "levels 1 to 14 not in use", "planes 1 to 2 not in use", "no low-resolution depth buffer"});
}

TEST(Dump, SurfaceRecord) {
  const ScratchFolder folder;
  const Outcome run = dump(folder.file("surface", bytes_of(stored_surface())));
  EXPECT_EQ(run.exit_code, 0);
  expect_parts(run.out, {"guid                0x1122334455667788\n",
                         "total_size          21684 bytes = 5300 of record + 16384 of surface\n",
                         "actual_width        64 elements\n", "signature           0xDE5CDA7A\n",
                         "0x14B0  7A DA 5C DE"});
}

json field_of(const json& dumped, const std::string& name) {
  for (const json& field : dumped.at("fields")) {
    if (field.at("field") == name) return field;
  }
  return nullptr;
}

// The same numbers as in the lines above: a record 24 bytes behind the start, and in it an image behind
// one page of flags. linear_fallback is a word that the rules take whatever it holds.
TEST(Dump, Json) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.layout.linear_fallback = 2;
  const json dumped = json_of("dump " + folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(dumped.at("kind"), "resource");
  EXPECT_EQ(dumped.at("blob"), true);
  EXPECT_EQ(dumped.at("file_bytes"), 5536);
  EXPECT_EQ(dumped.at("record_offset_bytes"), 24);
  EXPECT_EQ(field_of(dumped, "header.magic"), json({{"field", "header.magic"},
                                                    {"offset_bytes", 0},
                                                    {"size_bytes", 4},
                                                    {"stored", "DE CA FA 00"},
                                                    {"value", 0x00FACADE},
                                                    {"value_hex", "0x00FACADE"},
                                                    {"unit", nullptr},
                                                    {"meaning", "0x00FACADE"}}));
  EXPECT_EQ(field_of(dumped, "level[0].plane[0].image_offset"),
            json({{"field", "level[0].plane[0].image_offset"},
                  {"offset_bytes", 0x78},
                  {"size_bytes", 8},
                  {"stored", "00 10 00 00 00 00 00 00"},
                  {"value", 4096},
                  {"value_hex", nullptr},
                  {"unit", "bytes"},
                  {"meaning", "0x1000 = 4096 bytes"}}));
  EXPECT_EQ(field_of(dumped, "level[0].tiled").at("value"), true);
  EXPECT_EQ(field_of(dumped, "linear_fallback").at("value"), 2);
  EXPECT_EQ(field_of(dumped, "driver_uuid").at("value"), "04000000-0100-0000-0300-000000000000");
  EXPECT_EQ(dumped.at("valid"), true);
  EXPECT_EQ(dumped.at("reason"), nullptr);
}

// Fields and stretches have every byte of the file once, and the same are shown as in the lines.
TEST(Dump, JsonTellsEveryByteOnce) {
  const ScratchFolder folder;
  for (const std::string& path : {folder.file("blob", bytes_of(stored_blob(folder))),
                                  folder.file("surface", bytes_of(stored_surface()))}) {
    for (const char* more : {"", " --all"}) {
      const json dumped = json_of("dump " + path + more);
      std::vector<int> told(file_content(path).size());
      for (const char* list : {"fields", "stretches"}) {
        for (const json& part : dumped.at(list)) {
          const std::size_t first = part.at("offset_bytes");
          for (std::size_t i = 0; i < part.at("size_bytes"); ++i) ++told.at(first + i);
        }
      }
      EXPECT_EQ(told, std::vector<int>(told.size(), 1)) << path << more;
      const std::string text = run_tool("dump " + path + more).out;
      std::size_t fields_in_text = 0;
      for (const char* type : {" u32 ", " u64 ", " u8["}) {
        for (std::size_t at = text.find(type); at != std::string::npos;
             at = text.find(type, at + 1)) {
          ++fields_in_text;
        }
      }
      EXPECT_EQ(dumped.at("fields").size(), fields_in_text) << path << more;
    }
  }
}

// One line an address, no address twice, none left out.
TEST(Dump, AllTellsEveryByteOnce) {
  const ScratchFolder folder;
  for (const std::string& path : {folder.file("blob", bytes_of(stored_blob(folder))),
                                  folder.file("surface", bytes_of(stored_surface()))}) {
    const Outcome run = dump(path, "--all");
    std::istringstream lines(run.out);
    std::size_t next = 0;
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("0x")) continue;
      EXPECT_NUMBER(std::stoul(line.substr(2, 4), nullptr, 16), next) << line;
      const std::string bytes = line.substr(8, 23);
      for (std::size_t i = 0; i < bytes.size() && bytes[i] != ' '; i += 3) ++next;
    }
    EXPECT_NUMBER(next, file_content(path).size());
  }
}

TEST(Dump, CountsOutOfRange) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.layout.levels = 0xFFFFFFFF;
  blob.layout.level[0].planes = 4;
  blob.layout.level[0].tiled = 2;
  blob.layout.format = 722;
  blob.layout.alignment = 24;
  const Outcome run = dump(folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(run.exit_code, 0);
  expect_parts(run.out, {"4294967295  invalid: 1 to 15", "4  invalid: 1 to 3",
                         "2  invalid: 1 tiled, 0 linear", "722  invalid: no such format",
                         "24 bytes  invalid: no power of two", "level 14", "level 0, plane 2"});
  EXPECT_EQ(run.out.find("level 15"), std::string::npos);
  EXPECT_EQ(run.out.find("plane 3"), std::string::npos);
}

TEST(Dump, RecordOffsetOutsideTheFile) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.header.record_offset = 0xFFFFFFFF;
  const Outcome run = dump(folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(run.exit_code, 0);
  expect_parts(run.out, {"record_offset is invalid", "what stands at 0x18", "28  R8G8B8A8_UNORM"});
}

TEST(Dump, AFieldCutByTheEndOfTheFile) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.header.record_offset = offsetof(LayoutMetadata, layout) + 2;
  const Outcome run = dump(folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(run.exit_code, 0);
  expect_parts(run.out, {"0x159E  to 0x159F", "2 bytes, all 0: ", "cut by the end of the file"});
}

TEST(Dump, FilesThatFitNoRecord) {
  const ScratchFolder folder;
  const std::string blob(bytes_of(stored_blob(folder)));
  for (const std::size_t size :
       std::initializer_list<std::size_t>{0, 3, 24, 5299, 5301, 5471, 5535}) {
    reason_of_refusal(dump(folder.file("file", blob.substr(0, size))));
  }
  reason_of_refusal(dump(folder.file("file", blob + "x")));
  reason_of_refusal(dump(folder.path("missing")));
  reason_of_refusal(dump("/dev/zero"));
}

TEST(Dump, OlderRecordsEndEarlier) {
  const ScratchFolder folder;
  MemoryLayout record = stored_blob(folder).layout;
  record.size = KORVEL_LAYOUT_BYTES_VERSION_1;
  const Outcome run = dump(folder.file("record", bytes_of(record).substr(0, 5472)));
  EXPECT_EQ(run.exit_code, 0);
  expect_parts(run.out, {"5472 bytes  layout version 1"});
  EXPECT_EQ(run.out.find("extra_valid"), std::string::npos);
}

TEST(Dump, AnyBytesAtAll) {
  const ScratchFolder folder;
  // Every run takes the same bytes.
  std::mt19937 random(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp)
  for (const std::size_t size : std::initializer_list<std::size_t>{5300, 5472, 5504, 5512, 5536}) {
    for (int round = 0; round < 4; ++round) {
      std::string content(size, '\0');
      for (char& byte : content) byte = static_cast<char>(round == 0 ? 0xFF : random());
      const std::string path = folder.file("file", content);
      EXPECT_EQ(dump(path).exit_code, 0) << size;
      EXPECT_EQ(dump(path, "--all").exit_code, 0) << size;
      const int checked = run_tool("check " + path + " --chip 0x43010000").exit_code;
      EXPECT_TRUE(checked == 1 || checked == 2) << size;
    }
  }
}

}  // namespace
}  // namespace tool_test
