#include "tests/package/elf_file.h"

#include <elf.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace package_test {

namespace {

[[noreturn]] void give_up(const std::string& path) {
  std::fprintf(stderr, "%s is no 64-bit ELF file\n", path.c_str());
  std::abort();
}

template <typename Record>
Record record_in(const std::string& bytes, uint64_t offset) {
  if (offset > bytes.size() || bytes.size() - offset < sizeof(Record)) give_up("what was loaded");
  Record record;
  std::memcpy(&record, bytes.data() + offset, sizeof record);
  return record;
}

}  // namespace

ElfFile::ElfFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  bytes_.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  if (bytes_.size() < sizeof(Elf64_Ehdr) || bytes_.compare(0, SELFMAG, ELFMAG) != 0 ||
      bytes_[EI_CLASS] != ELFCLASS64) {
    give_up(path);
  }
}

template <typename Record>
std::vector<Record> ElfFile::records_at(uint64_t offset, uint64_t size) const {
  std::vector<Record> records;
  for (uint64_t at = 0; at + sizeof(Record) <= size; at += sizeof(Record)) {
    records.push_back(record_in<Record>(bytes_, offset + at));
  }
  return records;
}

template <typename Record>
std::vector<Record> ElfFile::records_of_type(uint32_t section_type) const {
  std::vector<Record> records;
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  for (const auto& section :
       records_at<Elf64_Shdr>(header.e_shoff, uint64_t{header.e_shnum} * sizeof(Elf64_Shdr))) {
    if (section.sh_type != section_type) continue;
    const auto of_section = records_at<Record>(section.sh_offset, section.sh_size);
    records.insert(records.end(), of_section.begin(), of_section.end());
  }
  return records;
}

std::string ElfFile::text_at(uint64_t offset) const {
  if (offset >= bytes_.size()) give_up("what was loaded");
  return bytes_.c_str() + offset;
}

std::string ElfFile::dynamic_text(uint64_t offset) const {
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  const auto headers =
      records_at<Elf64_Shdr>(header.e_shoff, uint64_t{header.e_shnum} * sizeof(Elf64_Shdr));
  for (const auto& section : headers) {
    if (section.sh_type == SHT_DYNSYM) return text_at(headers[section.sh_link].sh_offset + offset);
  }
  give_up("what was loaded");
}

std::vector<ElfSection> ElfFile::sections() const {
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  const auto headers =
      records_at<Elf64_Shdr>(header.e_shoff, uint64_t{header.e_shnum} * sizeof(Elf64_Shdr));
  std::vector<ElfSection> sections;
  for (const auto& section : headers) {
    sections.push_back({text_at(headers[header.e_shstrndx].sh_offset + section.sh_name),
                        section.sh_addr, section.sh_size, (section.sh_flags & SHF_ALLOC) != 0,
                        (section.sh_flags & SHF_WRITE) != 0,
                        (section.sh_flags & SHF_EXECINSTR) != 0});
  }
  return sections;
}

std::vector<ElfSymbol> ElfFile::dynamic_symbols() const {
  std::vector<ElfSymbol> symbols;
  for (const auto& symbol : records_of_type<Elf64_Sym>(SHT_DYNSYM)) {
    if (symbol.st_name == 0 || symbol.st_shndx == SHN_ABS) continue;
    symbols.push_back({dynamic_text(symbol.st_name), symbol.st_value, symbol.st_size,
                       symbol.st_shndx != SHN_UNDEF, ELF64_ST_TYPE(symbol.st_info) == STT_FUNC,
                       ELF64_ST_BIND(symbol.st_info) == STB_WEAK});
  }
  return symbols;
}

std::vector<ElfRelocation> ElfFile::relocations() const {
  const auto symbols = records_of_type<Elf64_Sym>(SHT_DYNSYM);
  std::vector<ElfRelocation> relocations;
  for (const auto& relocation : records_of_type<Elf64_Rela>(SHT_RELA)) {
    const uint64_t index = ELF64_R_SYM(relocation.r_info);
    relocations.push_back(
        {relocation.r_offset, index != 0 ? dynamic_text(symbols.at(index).st_name) : ""});
  }
  return relocations;
}

std::vector<std::string> ElfFile::relocation_symbols() const {
  std::vector<std::string> names;
  for (const ElfRelocation& relocation : relocations()) {
    if (!relocation.symbol.empty()) names.push_back(relocation.symbol);
  }
  return names;
}

std::vector<std::string> ElfFile::dynamic_texts(int64_t tag) const {
  std::vector<std::string> texts;
  for (const auto& entry : records_of_type<Elf64_Dyn>(SHT_DYNAMIC)) {
    if (entry.d_tag == tag) texts.push_back(dynamic_text(entry.d_un.d_val));
  }
  return texts;
}

bool ElfFile::has_dynamic_entry(int64_t tag) const {
  for (const auto& entry : records_of_type<Elf64_Dyn>(SHT_DYNAMIC)) {
    if (entry.d_tag == tag) return true;
  }
  return false;
}

uint64_t ElfFile::dynamic_number(int64_t tag) const {
  for (const auto& entry : records_of_type<Elf64_Dyn>(SHT_DYNAMIC)) {
    if (entry.d_tag == tag) return entry.d_un.d_val;
  }
  return 0;
}

std::string ElfFile::section_bytes(const std::string& name) const {
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  const auto headers =
      records_at<Elf64_Shdr>(header.e_shoff, uint64_t{header.e_shnum} * sizeof(Elf64_Shdr));
  for (const auto& section : headers) {
    if (text_at(headers[header.e_shstrndx].sh_offset + section.sh_name) != name) continue;
    if (section.sh_type == SHT_NOBITS) return {};
    if (section.sh_offset > bytes_.size()) give_up("what was loaded");
    return bytes_.substr(section.sh_offset, section.sh_size);
  }
  return {};
}

std::vector<ElfSegment> ElfFile::segments() const {
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  std::vector<ElfSegment> segments;
  for (const auto& segment :
       records_at<Elf64_Phdr>(header.e_phoff, uint64_t{header.e_phnum} * sizeof(Elf64_Phdr))) {
    segments.push_back({segment.p_type, segment.p_flags, segment.p_vaddr, segment.p_memsz});
  }
  return segments;
}

std::string ElfFile::bytes_at(uint64_t address, uint64_t size) const {
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  for (const auto& segment :
       records_at<Elf64_Phdr>(header.e_phoff, uint64_t{header.e_phnum} * sizeof(Elf64_Phdr))) {
    if (segment.p_type != PT_LOAD || address < segment.p_vaddr) continue;
    const uint64_t in_segment = address - segment.p_vaddr;
    if (in_segment > segment.p_filesz || segment.p_filesz - in_segment < size) continue;
    return bytes_.substr(segment.p_offset + in_segment, size);
  }
  give_up("what was loaded");
}

uint32_t ElfFile::segment_flags(uint32_t type) const {
  const auto header = record_in<Elf64_Ehdr>(bytes_, 0);
  for (const auto& segment :
       records_at<Elf64_Phdr>(header.e_phoff, uint64_t{header.e_phnum} * sizeof(Elf64_Phdr))) {
    if (segment.p_type == type) return segment.p_flags;
  }
  return 0;
}

}  // namespace package_test
