// What follows from a format's number alone: block dimensions, planes, substitutes.

#include <gtest/gtest.h>

#include "formats/block_dims.h"
#include "formats/format_traits.h"
#include "formats/substitute_formats.h"
#include "tests/formats/id_list.h"
#include "tests/harness/off_by.h"

namespace formats_test {
namespace {

// Ids that no table holds.
constexpr uint32_t kIdsWithoutRecord[] = {722,        723,        800,        1024 + 28, 65536 + 28,
                                          0x7FFFFFFF, 0x80000000, 0x8000001C, 0xFFFFFFFF};

// ------------------------------------------------------------------------------------------------
// Block dimensions
// ------------------------------------------------------------------------------------------------

// The ids by block width and, on their own, by block height; all others are 1.
struct BlockSize {
  uint32_t texels;
  IdList ids;
};

const BlockSize kBlockWidths[] = {
    {3, "626 636 654-656"},
    {4, "70-84 94-99 133-135 568 582 596-609 627-629 637-639 681-682"},
    {5, "137-139 141-143 569-570 583-584 630-632 640-642"},
    {6, "145-147 149-151 571-572 585-586 633-635 643-645"},
    {8, "153-155 157-159 161-163 573-575 587-589"},
    {10, "165-167 169-171 173-175 177-179 576-579 590-593"},
    {12, "181-183 185-187 580-581 594-595"},
};

const BlockSize kBlockHeights[] = {
    {3, "626-627 636-637"},
    {4, "70-84 94-99 133-135 137-139 568-569 582-583 596-609 628-630 638-640 681-682"},
    {5, "141-143 145-147 153-155 165-167 570-571 573 576 584-585 587 590 631-633 641-643"},
    {6, "149-151 157-159 169-171 572 574 577 586 588 591 634-635 644-645"},
    {8, "161-163 173-175 575 578 589 592"},
    {10, "177-179 181-183 579-580 593-594"},
    {12, "185-187 581 595"},
};

template <std::size_t N>
uint32_t texels_of(const BlockSize (&sizes)[N], uint32_t id) {
  for (const BlockSize& size : sizes) {
    if (size.ids.has(id)) return size.texels;
  }
  return 1;
}

TEST(BlockDimensions, OfEveryFormatAreThoseOfItsBlocks) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    const korvel::Extent<korvel::Texels> block = korvel::format_block_dims(id);
    EXPECT_NUMBER(block.width, texels_of(kBlockWidths, id)) << "format " << id;
    EXPECT_NUMBER(block.height, texels_of(kBlockHeights, id)) << "format " << id;
  }
}

TEST(BlockDimensions, AreCarriedByTheTraits) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    EXPECT_NUMBER(korvel::format_traits(id).block.width, texels_of(kBlockWidths, id));
    EXPECT_NUMBER(korvel::format_traits(id).block.height, texels_of(kBlockHeights, id));
  }
}

TEST(BlockDimensions, AreOneTexelForIdsWithoutARecord) {
  for (const uint32_t id : kIdsWithoutRecord) {
    EXPECT_NUMBER(korvel::format_traits(id).block.width, 1);
    EXPECT_NUMBER(korvel::format_traits(id).block.height, 1);
  }
  EXPECT_NUMBER(korvel::format_traits(kFourCharacterCode).block.width, 1);
  EXPECT_NUMBER(korvel::format_traits(kFourCharacterCode).block.height, 1);
}

// ------------------------------------------------------------------------------------------------
// Planes
// ------------------------------------------------------------------------------------------------

const BlockSize kPlane0Bytes[] = {
    {16,
     "1-4 73-78 82-84 94-99 133-135 137-139 141-143 145-147 149-151 153-155 157-159 161-163 "
     "165-167 169-171 173-175 177-179 181-183 185-187 524 527 530 557 562 567-595 597 598 601 602 "
     "606 609 626-645"},
    {12, "5-8 556 561 566"},
    {8,
     "9-19 21 22 70-72 79-81 102 108 109 522 525 528 543 555 560 565 596 599 600 603-605 607 608 "
     "656 681 682 685 686"},
    {6, "523 526 529 558 563"},
    {4,
     "20 551 23-47 67 87-93 100 101 116-118 501 507 509 512 515 520 531-539 542 545 547 548 550 "
     "553 554 559 564 620-622 648-651 654 655 664 669 683 684 711 714 716 719 721"},
    {3, "508 510 513 516 521 549 623 624"},
    {2,
     "48-59 68 69 85 86 104 105 107 114 115 503 511 514 517-519 540 541 544 546 610-614 617 618 "
     "652 653 658 659 662 663 666-668 678 680 709 710 712 713 715 717 718 720"},
};

// Formats with a second plane, by the bytes of its elements; all others have none.
const IdList kPlane1Of1Byte = "20 551 615 616";
const IdList kPlane1Of2Bytes = "103 106 110 504 505 506 619 647 660";
const IdList kPlane1Of4Bytes = "104 105 709 712 717";
const IdList kPlane1Of8Bytes = "654";
const IdList kPlane2Of1Byte = "615 616";

uint32_t expected_plane_bytes(uint32_t id, uint32_t plane) {
  switch (plane) {
    case 0: return texels_of(kPlane0Bytes, id);
    case 1:
      if (kPlane1Of1Byte.has(id)) return 1;
      if (kPlane1Of2Bytes.has(id)) return 2;
      if (kPlane1Of4Bytes.has(id)) return 4;
      return kPlane1Of8Bytes.has(id) ? 8 : 0;
    case 2: return kPlane2Of1Byte.has(id) ? 1 : 0;
    default: return 0;
  }
}

TEST(PlaneBytes, OfEveryFormatAndPlaneAreTheListedOnes) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    for (const uint32_t plane : {0U, 1U, 2U, 3U, 4U, 0x80000000U, 0xFFFFFFFFU}) {
      EXPECT_NUMBER(korvel::plane_bytes(korvel::format_traits(id), plane),
                    expected_plane_bytes(id, plane))
          << "format " << id << " plane " << plane;
    }
  }
}

TEST(PlaneBytes, OfIdsWithoutARecordAreThoseOfAnUnusedId) {
  const auto expect_unused = [](uint32_t id) {
    const korvel::FormatTraits& traits = korvel::format_traits(id);
    EXPECT_NUMBER(korvel::plane_bytes(traits, 0), 1) << "format " << id;
    for (const uint32_t plane : {1U, 2U, 3U, 4U, 0xFFFFFFFFU}) {
      EXPECT_NUMBER(korvel::plane_bytes(traits, plane), 0) << "format " << id << " plane " << plane;
    }
  };
  for (const uint32_t id : kIdsWithoutRecord) expect_unused(id);
  expect_unused(kFourCharacterCode);
}

struct PlaneFormats {
  uint32_t format;
  uint32_t plane_0;
  uint32_t plane_1;
};

// All other formats and planes: the format itself.
constexpr PlaneFormats kPlaneFormats[] = {
    {.format = 20, .plane_0 = 40, .plane_1 = 552},
    {.format = 551, .plane_0 = 40, .plane_1 = 552},
    {.format = 103, .plane_0 = 657, .plane_1 = 658},
    {.format = 506, .plane_0 = 657, .plane_1 = 658},
    {.format = 619, .plane_0 = 657, .plane_1 = 659},
    {.format = 647, .plane_0 = 657, .plane_1 = 659},
    {.format = 104, .plane_0 = 663, .plane_1 = 664},
    {.format = 105, .plane_0 = 715, .plane_1 = 716},
    {.format = 615, .plane_0 = 625, .plane_1 = 625},
    {.format = 616, .plane_0 = 625, .plane_1 = 625},
    {.format = 654, .plane_0 = 655, .plane_1 = 656},
    {.format = 660, .plane_0 = 661, .plane_1 = 662},
    {.format = 709, .plane_0 = 710, .plane_1 = 711},
    {.format = 712, .plane_0 = 713, .plane_1 = 714},
    {.format = 717, .plane_0 = 718, .plane_1 = 719},
};
constexpr uint32_t kPlane2OfThreePlanes = 625;  // of 615 and 616

uint32_t expected_plane_format(uint32_t id, uint32_t plane) {
  for (const PlaneFormats& row : kPlaneFormats) {
    if (row.format != id) continue;
    if (plane == 0) return row.plane_0;
    if (plane == 1) return row.plane_1;
  }
  return plane == 2 && (id == 615 || id == 616) ? kPlane2OfThreePlanes : id;
}

TEST(PlaneFormat, OfEveryFormatAndPlaneIsTheListedOne) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    for (const uint32_t plane : {0U, 1U, 2U, 3U, 4U, 0x80000000U, 0xFFFFFFFFU}) {
      EXPECT_EQ(&korvel::plane_traits(korvel::format_traits(id), plane),
                &korvel::format_traits(expected_plane_format(id, plane)))
          << "format " << id << " plane " << plane;
    }
  }
}

TEST(PlaneFormat, OfIdsWithoutARecordIsTheIdItself) {
  for (const uint32_t id : {722U, 0xFFFFFFFFU, kFourCharacterCode}) {
    const korvel::FormatTraits& traits = korvel::format_traits(id);
    for (uint32_t plane = 0; plane < 5; ++plane) {
      EXPECT_EQ(&korvel::plane_traits(traits, plane), &traits);
    }
  }
}

// ------------------------------------------------------------------------------------------------
// Substitutes
// ------------------------------------------------------------------------------------------------

uint32_t expected_substitute(uint32_t id) {
  static const IdList three_bytes = "508 510 513 516 521 549 623 624";
  static const IdList six_bytes = "523 526 529 558 563";
  static const IdList twelve_bytes = "5 6 7 8 556 561 566";
  if (three_bytes.has(id)) return 28;
  if (six_bytes.has(id)) return 11;
  return twelve_bytes.has(id) ? 567 : id;
}

TEST(SubstituteFormat, IsAnotherFormatForOddElementSizesOnly) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    EXPECT_NUMBER(korvel::npot_substitute_format(id), expected_substitute(id)) << "format " << id;
    EXPECT_NUMBER(korvel::listed_substitute_format(id), expected_substitute(id)) << "format " << id;
  }
}

TEST(SubstituteFormat, OfIdsWithoutARecordIsTheIdItself) {
  for (const uint32_t id : kIdsWithoutRecord) {
    EXPECT_NUMBER(korvel::listed_substitute_format(id), id);
  }
  EXPECT_NUMBER(korvel::listed_substitute_format(kFourCharacterCode), kFourCharacterCode);
}

TEST(SubstituteFormat, RoundsElementsUpToAPowerOfTwo) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    const uint32_t bytes = korvel::format_traits(id).bytes;
    uint32_t power = 1;
    while (power < bytes) power *= 2;
    EXPECT_NUMBER(korvel::format_traits(id).substitute_bytes, power) << "format " << id;
  }
}

}  // namespace
}  // namespace formats_test
