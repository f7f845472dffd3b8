#include "tools/record/stored_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/output/standard_error.h"
#include "tools/record/input_file.h"
#include "tools/record/record_text.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

constexpr std::size_t kLongestFile = KORVEL_BLOB_BYTES;
// A byte takes up to six letters: "0x00, ".
constexpr std::size_t kLongestText = std::size_t{8} * KORVEL_BLOB_BYTES;
constexpr const char kResourceSizes[] = "a blob has 5536 bytes, a bare record 5472, 5504 or 5512";
constexpr const char kSurfaceSizes[] = "a surface record has 5300 bytes";

bool is_resource_size(std::size_t size) {
  return size == KORVEL_BLOB_BYTES || size == KORVEL_LAYOUT_BYTES_VERSION_1 ||
         size == KORVEL_LAYOUT_BYTES_VERSION_2 || size == KORVEL_LAYOUT_BYTES_VERSION_3;
}

bool is_surface_size(std::size_t size) {
  return size == KORVEL_SURFACE_BYTES;
}

bool starts_like_a_blob(std::span<const unsigned char> bytes) {
  uint32_t magic = 0;
  if (bytes.size() >= sizeof magic) std::memcpy(&magic, bytes.data(), sizeof magic);
  return magic == KORVEL_HEADER_MAGIC;
}

std::string size_text(std::size_t size) {
  return size > kLongestFile ? fmt::format("more than {} bytes", kLongestFile)
                             : fmt::format("{} bytes", size);
}

std::optional<RecordKind> kind_option(const std::optional<std::string>& kind) {
  if (!kind) return std::nullopt;
  if (*kind == "resource") return RecordKind::resource;
  if (*kind == "surface") return RecordKind::surface;
  refuse("--kind: {} is neither resource nor surface; write for example --kind resource",
         in_quotes(*kind));
}

// The way to a file that is a record.
constexpr const char kNextStep[] = "korvel-layout show --blob FILE writes one";
constexpr const char kWithoutKind[] = "leave --kind out, and the size decides";

[[noreturn]] void refuse_size(const std::string& path, std::size_t size, std::string_view sizes,
                              std::string_view next_step = kNextStep) {
  refuse("{} holds {}, which fits no record: {}; {}", in_quotes(path), size_text(size), sizes,
         next_step);
}

// Texts stand for bytes, so that their own number says nothing.
bool is_text(std::span<const unsigned char> bytes) {
  return !bytes.empty() && std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) {
    return (c >= 0x20 && c < 0x7F) || c == '\n' || c == '\r' || c == '\t';
  });
}

bool is_record_size(std::size_t size) {
  return is_resource_size(size) || is_surface_size(size);
}

// What a text stands for; a file that is no text of a record stays as it is.
std::vector<unsigned char> decoded(std::vector<unsigned char> file) {
  if (is_record_size(file.size())) return file;
  for (const auto decode : {bytes_of_hex, bytes_of_base64}) {
    std::optional<std::vector<unsigned char>> bytes = decode(file);
    if (bytes && is_record_size(bytes->size())) return std::move(*bytes);
  }
  return file;
}

}  // namespace

const char* kind_name(RecordKind kind) {
  return kind == RecordKind::surface ? "surface" : "resource";
}

StoredFile::StoredFile(const std::string& path, const std::optional<std::string>& kind) {
  const std::optional<RecordKind> asked = kind_option(kind);
  bytes_ = decoded(read_file(path, kLongestText));
  const std::size_t size = bytes_.size();
  const bool resource = is_resource_size(size) && asked != RecordKind::surface;
  const bool surface = is_surface_size(size) && asked != RecordKind::resource;
  if (!resource && !surface) {
    if (is_text(bytes_)) {
      refuse(
          "{} holds text that in hex or base64 fits no record, and may be cut off or mistyped: {}; "
          "{}; {}",
          in_quotes(path), kResourceSizes, kSurfaceSizes, kNextStep);
    }
    if (asked == RecordKind::surface) refuse_size(path, size, kSurfaceSizes, kWithoutKind);
    if (asked == RecordKind::resource) refuse_size(path, size, kResourceSizes, kWithoutKind);
    if (starts_like_a_blob(bytes_)) {
      refuse_size(path, size, kResourceSizes);
    }
    refuse_size(path, size, fmt::format("{}; {}", kResourceSizes, kSurfaceSizes));
  }
  kind_ = surface ? RecordKind::surface : RecordKind::resource;
  is_blob_ = size == KORVEL_BLOB_BYTES;
  if (resource && !is_blob_ && starts_like_a_blob(bytes_)) {
    refuse("{} starts like a blob but holds {} instead of {}, as if cut off; {}", in_quotes(path),
           size_text(size), KORVEL_BLOB_BYTES, kNextStep);
  }
}

MetadataHeader StoredFile::header() const {
  MetadataHeader header{};
  std::memcpy(&header, bytes_.data(), sizeof header);
  return header;
}

std::optional<std::size_t> StoredFile::record_offset() const {
  if (!is_blob_) return 0;
  const std::size_t offset = header().record_offset;
  if (offset > bytes_.size() - KORVEL_LAYOUT_BYTES_VERSION_1) return std::nullopt;
  return offset;
}

}  // namespace tool
