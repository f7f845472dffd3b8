// Stored records in front of the library's validators.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

Outcome check(const std::string& path, const std::string& more = "") {
  return run_tool("check " + path + " --chip " + hex(stored_chip().chip_id) + " " + more);
}

void expect_refused(const Outcome& run, const std::string& message) {
  EXPECT_EQ(run.exit_code, 1) << run.err;
  EXPECT_NE(run.out.find(message), std::string::npos) << run.out;
  EXPECT_EQ(count_lines(run.out), 1U) << run.out;
}

TEST(Check, ValidBlobsAndRecords) {
  const ScratchFolder folder;
  const LayoutMetadata blob = stored_blob(folder);
  const std::string_view record = bytes_of(blob.layout);
  for (const std::string& path :
       {folder.file("blob", bytes_of(blob)), folder.file("record", record)}) {
    const Outcome run = check(path);
    EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
    EXPECT_TRUE(run.out.starts_with("valid resource record")) << run.out;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(check(path, "--kind resource").exit_code, 0);
  }
  EXPECT_EQ(check(folder.file("chain", bytes_of(stored_blob(folder, "--levels 9")))).exit_code, 0);
}

TEST(Check, OlderLayoutVersions) {
  const ScratchFolder folder;
  MemoryLayout record = stored_blob(folder).layout;
  const uint64_t surface = record.total_size - record.size;
  for (const uint32_t version : {1U, 2U}) {
    std::memcpy(record.driver_uuid + 8, &version, sizeof version);
    record.size = version == 1 ? KORVEL_LAYOUT_BYTES_VERSION_1 : KORVEL_LAYOUT_BYTES_VERSION_2;
    record.total_size = surface + record.size;
    const Outcome run = check(folder.file("record", bytes_of(record).substr(0, record.size)));
    EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
  }
}

TEST(Check, ValidSurfaceRecord) {
  const ScratchFolder folder;
  const std::string path = folder.file("surface", bytes_of(stored_surface()));
  const Outcome run = check(path);
  EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
  EXPECT_TRUE(run.out.starts_with("valid surface record")) << run.out;
  EXPECT_EQ(check(path, "--kind surface").exit_code, 0);
}

TEST(Check, RefusedWithTheValidatorsMessage) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.layout.samples = 3;
  expect_refused(check(folder.file("blob", bytes_of(blob))), "Metadata samples invalid count 3");
  SurfaceMetadata surface = stored_surface();
  surface.guid = 0;
  expect_refused(check(folder.file("surface", bytes_of(surface))),
                 "Metadata guid has invalid value 0");
}

TEST(Check, RecordOfAnotherChip) {
  const ScratchFolder folder;
  const std::string path = folder.file("blob", bytes_of(stored_blob(folder)));
  expect_refused(run_tool("check " + path + " --chip " + hex(harness::full_chip(7).chip_id)),
                 "Metadata device version mismatch");
  const Outcome unknown = run_tool("check " + path + " --chip 0x12345678 --unknown-chip");
  expect_refused(unknown, "Metadata device version mismatch");
  EXPECT_EQ(count_lines(unknown.err), 1U) << unknown.err;
}

TEST(Check, FilesThatFitNoRecord) {
  const ScratchFolder folder;
  const std::string zeros(6000, '\0');
  for (const std::size_t size : std::initializer_list<std::size_t>{
           0, 1, 23, 24, 5299, 5301, 5471, 5473, 5503, 5505, 5511, 5513, 5535, 5537, 6000}) {
    const Outcome run = check(folder.file("file", zeros.substr(0, size)));
    EXPECT_NE(reason_of_refusal(run).find("fits no record"), std::string::npos) << size;
  }
  reason_of_refusal(check(folder.path("missing")));
  reason_of_refusal(check(folder.path(".")));
}

TEST(Check, KindsThatTheSizeContradicts) {
  const ScratchFolder folder;
  const std::string blob = folder.file("blob", bytes_of(stored_blob(folder)));
  const std::string surface = folder.file("surface", bytes_of(stored_surface()));
  reason_of_refusal(check(blob, "--kind surface"));
  reason_of_refusal(check(surface, "--kind resource"));
  reason_of_refusal(check(blob, "--kind blob"));
}

TEST(Check, BlobHeaders) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  blob.header.magic = 1;
  reason_of_refusal(check(folder.file("blob", bytes_of(blob))));

  blob = stored_blob(folder);
  blob.header.blob_size = 7;
  const Outcome warned = check(folder.file("blob", bytes_of(blob)));
  EXPECT_EQ(warned.exit_code, 0);
  EXPECT_NE(warned.err.find("warning: the blob header's blob size is 7 instead of 5536"),
            std::string::npos)
      << warned.err;
}

TEST(Check, RecordOffsetsOutsideTheFile) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  for (const uint32_t offset : {65U, 5000U, 5535U, 5536U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    blob.header.record_offset = offset;
    const Outcome run = check(folder.file("blob", bytes_of(blob)));
    EXPECT_NE(reason_of_refusal(run).find("leaves no room for a record"), std::string::npos);
  }
}

// A record of another place is found there, and must lie inside the file as a whole.
TEST(Check, RecordOffsetsInsideTheFile) {
  const ScratchFolder folder;
  const LayoutMetadata blob = stored_blob(folder);
  std::string content(bytes_of(blob));
  const uint32_t offset = 23;
  std::memcpy(content.data() + offsetof(MetadataHeader, record_offset), &offset, sizeof offset);
  std::memcpy(content.data() + offset, &blob.layout, sizeof blob.layout);
  EXPECT_EQ(check(folder.file("blob", content)).exit_code, 0);

  content = bytes_of(blob);
  const uint32_t too_far = 64;
  std::memcpy(content.data() + offsetof(MetadataHeader, record_offset), &too_far, sizeof too_far);
  std::memcpy(content.data() + too_far, &blob.layout, content.size() - too_far);
  const Outcome run = check(folder.file("blob", content));
  EXPECT_NE(reason_of_refusal(run).find("says that it has 5512 bytes"), std::string::npos);
}

std::string hex_of(std::string_view bytes, const char* front, const char* between) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += std::string(front) + kDigits[value >> 4] + kDigits[value & 15] + between;
  }
  return text;
}

// Three bytes are four digits of six bits.
std::string base64_of(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    uint32_t bits = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      bits = bits << 8 | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text += j <= count ? kDigits[bits >> (18 - 6 * j) & 63] : '=';
    }
    if (i % 57 == 54) text += '\n';
  }
  return text;
}

TEST(Check, RecordsAsText) {
  const ScratchFolder folder;
  const LayoutMetadata blob = stored_blob(folder);
  const SurfaceMetadata surface = stored_surface();
  const std::string dumped = run_tool("dump " + folder.file("bytes", bytes_of(blob))).out;
  for (const std::string& text :
       {hex_of(bytes_of(blob), "", ""), hex_of(bytes_of(blob), "", " ") + "\n",
        hex_of(bytes_of(blob), "0x", ", "), base64_of(bytes_of(blob)) + "\r\n"}) {
    const std::string path = folder.file("text", text);
    EXPECT_EQ(check(path).exit_code, 0) << text.substr(0, 40);
    EXPECT_EQ(run_tool("dump " + path).out, dumped);
    EXPECT_EQ(run_tool("diff " + path + " " + folder.path("bytes")).exit_code, 0);
  }
  // 5300 bytes end with two of a group of three, 5512 with one; without the signs that fill the end.
  for (const std::string_view bytes : {bytes_of(surface), bytes_of(blob.layout)}) {
    const std::string text = base64_of(bytes);
    ASSERT_NE(text.find('='), std::string::npos);
    EXPECT_EQ(check(folder.file("text", text)).exit_code, 0);
    EXPECT_EQ(check(folder.file("text", text.substr(0, text.find('=')))).exit_code, 0);
  }
}

TEST(Check, TextsOfNoRecord) {
  const ScratchFolder folder;
  const std::string hex_text = hex_of(bytes_of(stored_blob(folder)), "", "");
  for (const std::string& text :
       {hex_text.substr(1), hex_text.substr(2), hex_text + "0", hex_text + "00", hex_text + "g0",
        std::string(7384, '='), std::string(7384, '*'), std::string("0x"), std::string(" "),
        std::string(50000, '0')}) {
    const Outcome run = check(folder.file("text", text));
    EXPECT_NE(reason_of_refusal(run).find("fits no record"), std::string::npos);
  }
}

TEST(Check, StandardInput) {
  const ScratchFolder folder;
  const LayoutMetadata blob = stored_blob(folder);
  const std::string path = folder.file("blob", bytes_of(blob));
  EXPECT_EQ(run_tool_on_input({"check", "-"}, path).exit_code, 0);
  EXPECT_EQ(run_tool_on_input({"dump", "-"}, path).out, run_tool("dump " + path).out);
  EXPECT_EQ(run_tool_on_input({"diff", "-", path}, path).exit_code, 0);
  reason_of_refusal(run_tool_on_input({"check", "-"}, "/dev/null"));
  const Outcome written = run_tool("show --format 28 --size 256x256 --ubwc --blob - --chip " +
                                   hex(stored_chip().chip_id));
  EXPECT_EQ(written.out, bytes_of(blob));
}

TEST(Check, TruncatedRecord) {
  const ScratchFolder folder;
  const LayoutMetadata blob = stored_blob(folder);
  const std::string_view record = bytes_of(blob.layout);
  for (const std::size_t size : std::initializer_list<std::size_t>{5472, 5504}) {
    const Outcome run = check(folder.file("record", record.substr(0, size)));
    EXPECT_NE(reason_of_refusal(run).find("5512 bytes"), std::string::npos);
  }
  const Outcome run = check(folder.file("blob", bytes_of(blob).substr(0, 5512)));
  EXPECT_NE(reason_of_refusal(run).find("starts like a blob"), std::string::npos);
}

}  // namespace
}  // namespace tool_test
