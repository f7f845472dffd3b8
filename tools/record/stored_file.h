// A file that holds a stored record: which kind, and where in the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <korvel_utils.h>

namespace tool {

enum class RecordKind {
  resource,  // MemoryLayout, bare or in a blob
  surface,   // SurfaceMetadata
};

// "resource" or "surface", as users name it.
const char* kind_name(RecordKind kind);

class StoredFile {
 public:
  // Reads the file: bytes, or their text in hex or base64. The kind goes by its size unless `kind`
  // names it. Throws BadInput when the size fits no record of that kind.
  StoredFile(const std::string& path, const std::optional<std::string>& kind);

  [[nodiscard]] RecordKind kind() const { return kind_; }
  [[nodiscard]] bool is_blob() const { return is_blob_; }
  [[nodiscard]] std::span<const unsigned char> bytes() const { return bytes_; }

  // The blob's own header, for blobs only.
  [[nodiscard]] MetadataHeader header() const;

  // Where the record starts; nothing when the blob's header names a place that leaves no room for
  // the shortest record.
  [[nodiscard]] std::optional<std::size_t> record_offset() const;

 private:
  std::vector<unsigned char> bytes_;
  RecordKind kind_ = RecordKind::resource;
  bool is_blob_ = false;
};

}  // namespace tool
