#include "tools/picture/html_text.h"

#include <fmt/core.h>

#include "tools/picture/html_script.h"
#include "tools/picture/markup.h"
#include "tools/picture/style.h"
#include "tools/picture/svg_text.h"

namespace tool {
namespace {

// Of what stands around the picture.
constexpr std::string_view kFrameStyle = R"(
    body {
      margin: 0 auto; max-width: 1040px; padding: 0 0 3em;
      background: var(--ground); color: var(--ink);
      font: 13px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "DejaVu Sans", sans-serif;
    }
    svg { display: block; max-width: 100%; height: auto; }
    #map { cursor: grab; touch-action: none; user-select: none; }
    #zoom { padding: 0 32px 8px; }
    #zoom button {
      margin: 0 6px 6px 0; padding: 3px 10px; border: 1px solid var(--rule); border-radius: 6px;
      background: transparent; color: inherit; font: inherit;
    }
    #told {
      position: fixed; max-width: min(640px, 92vw); padding: 8px 12px; pointer-events: none;
      border: 1px solid var(--rule); border-radius: 8px; background: var(--ground);
      box-shadow: 0 4px 18px rgba(0, 0, 0, .35); white-space: pre-wrap; font-size: 12px;
      z-index: 1;
    }
    details { padding: 0 32px; }
    summary { cursor: pointer; font-weight: 600; }
    table { border-collapse: collapse; margin-top: 8px; font-variant-numeric: tabular-nums; }
    th, td { padding: 3px 14px 3px 0; border-bottom: 1px solid var(--rule); text-align: left;
      vertical-align: top; white-space: pre-line; }
    .number { text-align: right; }
)";

std::string first_line(const std::string& text) {
  return text.substr(0, text.rfind('\n'));
}

// The bar again as a table, for those who do not see it.
std::string parts_table(const Page& page) {
  std::string rows;
  for (const Mark& mark : page.map_marks) {
    const Box* const box = std::get_if<Box>(&mark);
    if (box == nullptr || !box->bytes) continue;
    const ByteRange range = *box->bytes;
    rows += fmt::format(
        "<tr><td class=\"number\">0x{:X}</td><td class=\"number\">0x{:X}</td>"
        "<td class=\"number\">{}</td><td>{}</td></tr>\n",
        range.first_byte, range.end_byte - 1, range.end_byte - range.first_byte,
        escaped(first_line(box->said.text)));
  }
  if (rows.empty()) return {};
  return "<details>\n<summary>All parts of the allocation as a table</summary>\n<table>\n"
         "<tr><th class=\"number\">first byte</th><th class=\"number\">last byte</th>"
         "<th class=\"number\">bytes</th><th>what</th></tr>\n" +
         rows + "</table>\n</details>\n";
}

// Nothing may be loaded: neither from a network nor from the disk.
constexpr std::string_view kPolicy =
    "default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'";

}  // namespace

std::string html_text(const Page& page) {
  std::string text = fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"{}\">\n"
      "<meta name=\"viewport\" content=\"width=device-width\">\n<title>{}</title>\n",
      kPolicy, escaped(page.title));
  text.append("<style>").append(picture_style()).append(kFrameStyle).append("</style>\n");
  text += "</head>\n<body>\n";
  text += svg_element(page);
  text +=
      "<div id=\"zoom\" hidden><p>The bar of the allocation can be zoomed: with the wheel, by "
      "dragging, by a double click on a part, with the buttons or their keys.</p></div>\n";
  text += parts_table(page);
  text.append("<script>").append(html_script()).append("</script>\n</body>\n</html>\n");
  return text;
}

}  // namespace tool
