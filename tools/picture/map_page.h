// The allocation as a bar whose axis is the offset in bytes, and what of it is too narrow to see
// again below, enlarged.
#pragma once

#include "tools/picture/page_writer.h"

namespace tool {

void write_map(PageWriter& writer, Page& page, const Scene& scene);

}  // namespace tool
