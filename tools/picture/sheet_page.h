// Images and flag buffers to scale, in rows on a page.
#pragma once

#include "tools/picture/page_writer.h"

namespace tool {

void write_sheets(PageWriter& page, const Scene& scene);

}  // namespace tool
