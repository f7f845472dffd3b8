// What a 64-bit ELF file says about itself, as far as the tests ask.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace package_test {

struct ElfSymbol {
  std::string name;
  uint64_t address;
  uint64_t size;
  bool defined;
  bool function;
  bool weak;
};

struct ElfSection {
  std::string name;
  uint64_t address;  // 0 for what is not loaded
  uint64_t size;
  bool loaded;
  bool writable;
  bool holds_code;
};

// What the loader maps or takes note of.
struct ElfSegment {
  uint32_t type;   // PT_...
  uint32_t flags;  // PF_...
  uint64_t address;
  uint64_t size;
};

// A word that the loader fills in.
struct ElfRelocation {
  uint64_t address;
  std::string symbol;  // empty for an address within the file
};

class ElfFile {
 public:
  // Ends the test program when the file is none.
  explicit ElfFile(const std::string& path);

  std::vector<ElfSection> sections() const;

  // The dynamic symbols, without the nameless first one and without those of no section: linkers
  // list the names of symbol versions among them.
  std::vector<ElfSymbol> dynamic_symbols() const;

  std::vector<ElfSegment> segments() const;

  std::vector<ElfRelocation> relocations() const;

  // Names of the symbols that relocations of the loader refer to.
  std::vector<std::string> relocation_symbols() const;

  // Texts of one kind of dynamic entry: DT_NEEDED, DT_SONAME, DT_RUNPATH, DT_RPATH.
  std::vector<std::string> dynamic_texts(int64_t tag) const;

  bool has_dynamic_entry(int64_t tag) const;

  // The number of a dynamic entry; 0 when there is none.
  uint64_t dynamic_number(int64_t tag) const;

  // The bytes of a section as they are in the file; none when there is no such section or it has none.
  std::string section_bytes(const std::string& name) const;

  // The bytes that are loaded at an address. Ends the test program when there are not as many.
  std::string bytes_at(uint64_t address, uint64_t size) const;

  // All bytes of the file.
  const std::string& bytes() const { return bytes_; }

  // The flags (PF_...) of the first segment of a type; 0 when there is none.
  uint32_t segment_flags(uint32_t type) const;

 private:
  template <typename Record>
  std::vector<Record> records_at(uint64_t offset, uint64_t size) const;
  template <typename Record>
  std::vector<Record> records_of_type(uint32_t section_type) const;
  std::string text_at(uint64_t offset) const;
  std::string dynamic_text(uint64_t offset) const;

  std::string bytes_;
};

}  // namespace package_test
