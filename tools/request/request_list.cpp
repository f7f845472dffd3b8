#include "tools/request/request_list.h"

#include <algorithm>
#include <array>

#include "formats/format_table.h"
#include "tools/output/standard_error.h"
#include "tools/request/bad_input.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"
#include "tools/request/number_text.h"
#include "tools/request/text_list.h"

namespace tool {
namespace {

struct Range {
  uint32_t first;
  uint32_t last;
  uint32_t step;
};

// "7", "1..15" or "64..1024:64".
std::optional<Range> range_of(std::string_view text) {
  const std::size_t dots = text.find("..");
  const std::optional<uint32_t> first = number_of(text.substr(0, dots));
  if (!first) return std::nullopt;
  if (dots == std::string_view::npos) return Range{*first, *first, 1};
  text.remove_prefix(dots + 2);
  const std::size_t colon = text.find(':');
  const std::optional<uint32_t> last = number_of(text.substr(0, colon));
  const std::optional<uint32_t> step =
      colon == std::string_view::npos ? 1 : number_of(text.substr(colon + 1));
  if (!last || !step || *step == 0 || *last < *first) return std::nullopt;
  return Range{*first, *last, *step};
}

std::size_t count_of(const Range& range) {
  return (std::size_t{range.last} - range.first) / range.step + 1;
}

[[noreturn]] void refuse_count(std::string_view option, std::string_view text) {
  refuse("{}: {} is more than {} at once; take a shorter range or a step, for example 64..1024:64",
         option, in_quotes(text), kMostRequests);
}

std::vector<uint32_t> numbers_of(std::string_view option, const Range& range) {
  if (count_of(range) > kMostRequests)
    refuse_count(option, fmt::format("{}..{}", range.first, range.last));
  std::vector<uint32_t> numbers;
  for (uint64_t number = range.first; number <= range.last; number += range.step) {
    numbers.push_back(static_cast<uint32_t>(number));
  }
  return numbers;
}

template <typename Item>
void append(std::vector<Item>& items, const std::vector<Item>& more) {
  items.insert(items.end(), more.begin(), more.end());
}

std::vector<uint32_t> used_formats() {
  std::array<bool, korvel::kFormatCount> used{};
  for (const korvel::FormatTableRow& row : korvel::kFormatTableRows) {
    korvel::for_each_id(row.ids, [&used](uint32_t id) { used[id] = true; });
  }
  std::vector<uint32_t> formats;
  for (uint32_t id = 1; id < used.size(); ++id) {
    if (used[id]) formats.push_back(id);
  }
  return formats;
}

[[noreturn]] void refuse_size(std::string_view item) {
  refuse(
      "--size: {} is not WIDTHxHEIGHT or WIDTHxHEIGHTxDEPTH with sides from 1 to 2147483647, each a "
      "number or a range that goes up; write for example 1920x1080, 64x64x6 or 1900..1940:4x1080",
      in_quotes(item));
}

// The sides of one item of --size.
std::vector<SurfaceSize> sizes_of(std::string_view item) {
  std::vector<std::vector<uint32_t>> sides;
  std::string_view rest = item;
  for (bool more = true; more;) {
    const std::size_t end = rest.find('x');
    const std::optional<Range> range = range_of(rest.substr(0, end));
    if (!range || range->first == 0 || range->last > 0x7FFFFFFF) refuse_size(item);
    sides.push_back(numbers_of("--size", *range));
    more = end != std::string_view::npos;
    if (more) rest.remove_prefix(end + 1);
  }
  if (sides.size() == 2) sides.push_back({1});
  if (sides.size() != 3) refuse_size(item);
  if (sides[0].size() * sides[1].size() > kMostRequests / sides[2].size())
    refuse_count("--size", item);
  std::vector<SurfaceSize> sizes;
  for (const uint32_t width : sides[0]) {
    for (const uint32_t height : sides[1]) {
      for (const uint32_t depth : sides[2]) {
        sizes.push_back({static_cast<int32_t>(width), static_cast<int32_t>(height),
                         static_cast<int32_t>(depth)});
      }
    }
  }
  return sizes;
}

std::vector<bool> values_of(Choice choice) {
  if (choice == Choice::both) return {false, true};
  return {choice == Choice::yes};
}

uint64_t flags_of(const RequestLists& lists, bool ubwc) {
  return lists.further_flags | (ubwc ? LAYOUT_FLAG_UBWC : 0);
}

}  // namespace

std::vector<uint32_t> parse_numbers(std::string_view option, std::string_view text,
                                    NumberRange allowed, std::string_view example) {
  std::vector<uint32_t> numbers;
  for_each_item(text, [&](std::string_view item) {
    const std::optional<Range> range = range_of(item);
    if (!range || range->first < allowed.first || range->last > allowed.last) {
      refuse(
          "{}: {} is neither a number from {} to {} nor a range of them that goes up; write for "
          "example {} {}",
          option, in_quotes(item), allowed.first, allowed.last, option, example);
    }
    append(numbers, numbers_of(option, *range));
  });
  return numbers;
}

std::vector<uint32_t> parse_formats(std::string_view text) {
  std::vector<uint32_t> formats;
  for_each_item(text, [&formats](std::string_view item) {
    if (item == "all") {
      append(formats, used_formats());
    } else if (item.find("..") != std::string_view::npos) {
      append(formats, parse_numbers("--format", item, {1, korvel::kFormatCount - 1}, "70..84"));
    } else {
      formats.push_back(parse_format(item));
    }
  });
  return formats;
}

std::vector<SurfaceSize> parse_sizes(std::string_view text) {
  std::vector<SurfaceSize> sizes;
  for_each_item(text, [&sizes](std::string_view item) { append(sizes, sizes_of(item)); });
  return sizes;
}

std::vector<Levels> parse_levels(std::string_view text) {
  std::vector<Levels> levels;
  for_each_item(text, [&levels](std::string_view item) {
    if (item == "none") {
      levels.emplace_back(std::nullopt);
    } else if (item == "full") {
      levels.emplace_back(kFullChain);
    } else {
      for (const uint32_t count :
           parse_numbers("--levels", item, {1, KORVEL_MAX_LEVELS}, "none,1..12,full")) {
        levels.emplace_back(count);
      }
    }
  });
  return levels;
}

std::vector<ChipRequest> all_requests(const RequestLists& lists) {
  const std::vector<bool> linear = values_of(lists.linear);
  const std::vector<bool> ubwc = values_of(lists.ubwc);
  std::size_t count = 1;
  for (const std::size_t more :
       {lists.chips.size(), lists.formats.size(), lists.sizes.size(), lists.samples.size(),
        lists.levels.size(), linear.size(), ubwc.size()}) {
    if (more > kMostRequests || count * more > kMostRequests) {
      refuse(
          "{} x {} x {}, each with its samples, levels and flags, are more than {} requests; take "
          "shorter lists or a step, for example --size 64..1024:64x64",
          counted(lists.chips.size(), "chip"), counted(lists.formats.size(), "format"),
          counted(lists.sizes.size(), "size"), kMostRequests);
    }
    count *= more;
  }
  std::vector<ChipRequest> requests;
  requests.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t rest = i;
    const auto item = [&rest](const auto& list) {  // the last one changes fastest
      const std::size_t place = rest % list.size();
      rest /= list.size();
      return list[place];
    };
    SurfaceRequest request;
    const bool with_flags = item(ubwc);
    request.tiling_mode = item(linear) ? KORVEL_TILING_LINEAR : KORVEL_TILING_TILED;
    request.flags = flags_of(lists, with_flags);
    const Levels levels = item(lists.levels);
    request.samples = item(lists.samples);
    request.size = item(lists.sizes);
    request.format = item(lists.formats);
    request.planes = own_planes(request.format);
    request.levels = levels == kFullChain
                         ? std::min<uint32_t>(levels_of(request.size), KORVEL_MAX_LEVELS)
                         : levels;
    requests.push_back({item(lists.chips), request});
  }
  return requests;
}

}  // namespace tool
