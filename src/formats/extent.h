// Sizes with their unit in the type. Extents of different units do not mix: what turns one into
// another is a function with a name.
#pragma once

#include <cstdint>

namespace korvel {

// Units. An ordinary format stores one texel in an element; a block format stores a rectangle of
// them, its block. Flag buffers hold one byte for each tile of elements.
struct Texels;
struct Elements;
struct Tiles;

template <typename Unit, typename Count = uint32_t>
struct Extent {
  Count width;   // in Unit
  Count height;  // rows of Unit
};

// Sizes as callers give them, where a negative one means something.
template <typename Unit>
using SignedExtent = Extent<Unit, int32_t>;

// Sizes in tables.
template <typename Unit>
using SmallExtent = Extent<Unit, uint8_t>;

template <typename Unit>
constexpr Extent<Unit> widened(SmallExtent<Unit> size) {
  return {size.width, size.height};
}

// Of formats whose elements hold one texel.
constexpr SignedExtent<Elements> one_texel_elements(SignedExtent<Texels> size) {
  return {size.width, size.height};
}

template <typename Unit>
constexpr bool is_negative(SignedExtent<Unit> size) {
  return size.width < 0 || size.height < 0;
}

}  // namespace korvel
