// A laid-out surface as a scene: images, flag buffers and the allocation as rectangles with their
// meaning, in elements and bytes. Where they stand on a page is for page.h.
//
// Nothing here prints, reads a command line or a file, or throws by itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <korvel_utils.h>
#include "identify/chip_row.h"
#include "tools/explanation/explanation.h"
#include "tools/picture/memory_map.h"
#include "tools/picture/role.h"
#include "tools/request/surface_request.h"

namespace tool {

// A sentence, and what is to be said about its number.
struct Said {
  std::string text;
  std::string explanation = {};  // lines; may be empty
};

// A rectangle of a sheet, in its cells.
struct SheetPart {
  Role role;
  uint32_t x = 0;
  uint32_t y = 0;
  uint32_t width = 0;
  uint32_t height = 0;
  Said said;
};

// One slice of a buffer as rows of cells: an image's elements, or a flag buffer's bytes.
struct Sheet {
  enum class Kind : uint8_t { image, flags };
  Kind kind = Kind::image;
  uint32_t level = 0;
  uint32_t plane = 0;
  uint32_t width = 0;        // cells
  uint32_t height = 0;       // rows
  uint32_t tile_width = 0;   // cells; 0 without tiles
  uint32_t tile_height = 0;  // rows; 0 without tiles
  uint64_t slices = 1;
  std::string name;  // "level 2, plane 0: image"
  std::vector<SheetPart> parts;
  std::vector<Said> captions;
};

// A part of the memory map with its words.
struct Band {
  MapPart part;
  std::vector<std::string> labels;  // the longest first
  Said said;
};

struct Scene {
  std::string title;
  std::string chip;
  std::vector<Said> totals;
  std::string elements;  // what an element is
  std::vector<Sheet> sheets;
  uint64_t allocation_bytes = 0;
  std::vector<Band> bands;  // the whole allocation, in the order of offsets
  std::vector<std::string> warnings;
};

// What a scene is made of.
struct PictureSource {
  const korvel::ChipRow& chip;
  const SurfaceRequest& request;
  const LayoutMetadata& blob;
  const Explanation& explanation;
  std::string chip_words;
  std::vector<std::string> warnings;
};

Scene make_scene(const PictureSource& source);

}  // namespace tool
