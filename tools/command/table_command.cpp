#include "tools/command/table_command.h"

#include <fmt/ranges.h>

#include "tools/command/exit_codes.h"
#include "tools/command/request_options.h"
#include "tools/comparison/cost_table.h"
#include "tools/output/cost_table_output.h"
#include "tools/output/json_output.h"
#include "tools/output/progress_line.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/request/bad_input.h"
#include "tools/request/request_list.h"

namespace tool {
namespace {

Choice choice_of(std::string_view option, const std::optional<std::string>& text) {
  if (!text) return Choice::no;
  if (text->empty()) return Choice::yes;
  if (*text == "both") return Choice::both;
  refuse("{}: {} is not understood; write {} alone, or {} both", option, in_quotes(*text), option,
         option);
}

RequestLists lists_of(const TableOptions& options) {
  refuse_extended_alone(options.extended, options.extra);
  RequestLists lists;
  lists.chips = options.chip ? parse_chips(*options.chip, options.unknown_chip)
                             : std::vector<Chip>{default_chip()};
  lists.formats = parse_formats(options.format);
  lists.sizes = parse_sizes(options.size);
  if (options.samples)
    lists.samples = parse_numbers("--samples", *options.samples, {1, 8}, "1,2,4,8");
  if (options.levels) lists.levels = parse_levels(*options.levels);
  lists.linear = choice_of("--linear", options.linear);
  lists.ubwc = choice_of("--ubwc", options.ubwc);
  lists.further_flags =
      (options.extra ? LAYOUT_FLAG_EXTRA : 0) | (options.extended ? LAYOUT_FLAG_EXTENDED : 0);
  return lists;
}

std::vector<CostRow> rows_of(const std::vector<ChipRequest>& requests) {
  ProgressLine progress("requests", requests.size());
  std::vector<CostRow> rows;
  rows.reserve(requests.size());
  for (const ChipRequest& request : requests) {
    rows.push_back(cost_row(request));
    progress.update(rows.size());
  }
  return rows;
}

void sort(std::vector<CostRow>& rows, const TableOptions& options) {
  if (!options.sort) {
    if (options.reverse)
      refuse("--reverse counts only beside --sort; write for example --sort padding --reverse");
    return;
  }
  const CostOrder order = options.reverse ? CostOrder::descending : CostOrder::ascending;
  if (sort_rows(rows, *options.sort, order)) return;
  refuse("--sort: there is no column {}; there are {}; write for example --sort padding",
         in_quotes(*options.sort), fmt::join(cost_columns(), ", "));
}

}  // namespace

int table(const TableOptions& options) {
  if (options.csv && options.json)
    refuse("--csv and --json exclude each other; leave one of them out");
  std::vector<CostRow> rows = rows_of(all_requests(lists_of(options)));
  sort(rows, options);
  const std::vector<std::string> warnings = cost_table_warnings(rows);
  print_warnings(warnings);
  if (options.json) {
    print_data(json_text("table", cost_table_json(rows), warnings));
  } else {
    print_data(options.csv ? cost_table_csv(rows) : cost_table_text(rows));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
