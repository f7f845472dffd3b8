// What a 64-bit ELF file says about itself, as far as the tests ask.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace package_test {

struct ElfSymbol {
  std::string name;
  bool defined;
  bool function;
  bool weak;
};

struct ElfSection {
  std::string name;
  uint64_t size;
  bool writable;
  bool holds_code;
};

class ElfFile {
 public:
  // Ends the test program when the file is none.
  explicit ElfFile(const std::string& path);

  std::vector<ElfSection> sections() const;

  // The dynamic symbols, without the nameless first one.
  std::vector<ElfSymbol> dynamic_symbols() const;

  // Names of the symbols that relocations of the loader refer to.
  std::vector<std::string> relocation_symbols() const;

  // Texts of one kind of dynamic entry: DT_NEEDED, DT_SONAME, DT_RUNPATH, DT_RPATH.
  std::vector<std::string> dynamic_texts(int64_t tag) const;

  bool has_dynamic_entry(int64_t tag) const;

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
