#include "tools/command/show_pictures.h"

#include <span>

#include "tools/explanation/explain_surface.h"
#include "tools/output/new_file.h"
#include "tools/output/standard_output.h"
#include "tools/picture/html_text.h"
#include "tools/picture/page.h"
#include "tools/picture/scene.h"
#include "tools/picture/svg_text.h"

namespace tool {
namespace {

void write_text(std::string_view option, const std::string& path, const std::string& text,
                bool replace) {
  if (path == kStandardOutput) {
    print_data(text);
  } else {
    write_file(option, path, std::as_bytes(std::span(text)), replace);
  }
}

}  // namespace

bool prints_picture(const ShowOptions& options) {
  return options.svg == kStandardOutput || options.html == kStandardOutput;
}

void write_pictures(const ShowOptions& options, const Chip& chip, const SurfaceRequest& request,
                    const LayoutMetadata& blob, const std::vector<std::string>& warnings) {
  if (!options.svg && !options.html) return;
  const Explanation explanation = explain_surface(chip.row, request);
  const Page page =
      make_page(make_scene({chip.row, request, blob, explanation, chip_label(chip), warnings}));
  if (options.svg) write_text("--svg", *options.svg, svg_text(page), options.force);
  if (options.html) write_text("--html", *options.html, html_text(page), options.force);
}

}  // namespace tool
