// Format numbers, and lists of them as a person writes them: ranges.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvel {

using FormatId = uint32_t;

// The tables hold the ids 0 to 721.
inline constexpr uint32_t kFormatCount = 722;

inline constexpr FormatId kFormatUnknown = 0;
inline constexpr FormatId kFormatR16G16B16A16Unorm = 11;
inline constexpr FormatId kFormatR8G8B8A8Unorm = 28;
inline constexpr FormatId kFormatR32G32B32A32Unorm = 567;

// Has no record; linear heights of it take whole 64 rows.
inline constexpr FormatId kFormat64Rows = 670;

// The four-character code "WXB7". It has no record and is no index.
inline constexpr FormatId kFormatWxb7 = 0x37425857;

// One id, {28}, or an inclusive range, {23, 47}.
struct IdRange {
  uint16_t first;
  uint16_t last = first;
};

// Places of a list inside a table's row. Unused ones hold id 0, which no list names.
inline constexpr std::size_t kRowRanges = 20;

// Calls visit(id) for every id that the list names.
template <typename Visit>
constexpr void for_each_id(std::span<const IdRange> list, Visit visit) {
  for (const IdRange& range : list) {
    if (range.first == kFormatUnknown) return;
    for (uint32_t id = range.first; id <= range.last; ++id) visit(id);
  }
}

// Whether the list names `format`, which is not 0: unused places would match that.
constexpr bool contains(std::span<const IdRange> list, FormatId format) {
  for (const IdRange& range : list) {
    if (format >= range.first && format <= range.last) return true;
  }
  return false;
}

// Each range is in order, lies above the one before it, and ends inside the tables.
constexpr bool is_sorted_list(std::span<const IdRange> list) {
  uint32_t above = 0;
  for (const IdRange& range : list) {
    if (range.first == kFormatUnknown) return true;
    if (range.first <= above || range.last < range.first || range.last >= kFormatCount)
      return false;
    above = range.last;
  }
  return true;
}

// Whether the lists of a table's rows are sorted, and no id stands in two of them.
template <std::size_t N, typename Row>
constexpr bool rows_are_disjoint(const Row (&rows)[N]) {
  bool listed[kFormatCount] = {};
  bool disjoint = true;
  for (const Row& row : rows) {
    if (!is_sorted_list(row.ids)) return false;
    for_each_id(row.ids, [&](FormatId id) {
      disjoint = disjoint && !listed[id];
      listed[id] = true;
    });
  }
  return disjoint;
}

}  // namespace korvel
