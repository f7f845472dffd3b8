// The whole format table, word by word. The expected values are kept the other way round from the
// table: for every flag bit, element size and plane count the ids that have it.

#include "formats/format_table.h"

#include <gtest/gtest.h>

#include "tests/formats/id_list.h"
#include "tests/harness/off_by.h"

namespace formats_test {
namespace {

struct FlagBit {
  uint32_t flag;
  IdList ids;
};

const FlagBit kFlagBits[] = {
    {0x1, "13 31 37 51 58 63 84 118 509-511 531 533 558-562 649"},
    {0x2,
     "11 24 28-29 35 45-46 49 55-56 61 65-66 68-69 71-72 74-75 77-78 83 85-89 91 93 98-99 103-105 "
     "107 115 134-135 138-139 142-143 146-147 150-151 154-155 158-159 162-163 166-167 170-171 "
     "174-175 178-179 182-183 186-187 501-503 506-508 518-521 532 537-541 548-550 553 563-581 "
     "610-625 646-648 652-664 671-684 709-711 715-719"},
    {0x4, "2 6 10 16 20-21 26 34 40-41 54 67 522-524 542-547 551"},
    {0x8, "2 6 16 20-21 40-41 524 543 545 547 551"},
    {0x10, "502-503 541-545"},
    {0x20,
     "3 7 12 17 25 30 36 42 50 57 62 116 512-514 528-530 535 552 650 665-669 685 712-714 720-721"},
    {0x40, "4 8 14 18 32 38 43 52 59 64 117 515-517 525-527 534 536 651 686"},
    {0x80,
     "3-4 7-8 12 14 17-18 25 30 32 36 38 42-43 50 52 57 59 62 64 116-117 512-517 525-530 534-536 "
     "552 650-651 665-669 685-686 712-714 720-721"},
    {0x100,
     "29 72 75 78 91 93 99 135 139 143 147 151 155 159 163 167 171 175 179 183 187 520-521 582-595 "
     "607-609 622 624 636-646 678 682"},
    {0x200, "100-114 504-506 614-620 625 647 654-669 679-680 709-721"},
    {0x400,
     "1 5 9 15 19 21 23 27 33 39 44 46 48 53 60 70 73 76 79 82 90 92 94 97 133 137 141 145 149 153 "
     "157 161 165 169 173 177 181 185"},
    {0x800, "103-106 110 504-506 615-616 619 647 654 660 709 712 717"},
    {0x1000, "68-69 107 614 617-618 654-656"},
    {0x2000,
     "70-84 94-99 133-135 137-139 141-143 145-147 149-151 153-155 157-159 161-163 165-167 169-171 "
     "173-175 177-179 181-183 185-187 568-609 626-645 681-682"},
    {0x4000, "20 40 45 55 501 548-551"},
    {0x8000, "19-22 44-47 501 551-553"},
    {0x10000, "20 40 45 55 501 548-553"},
    {0x20000, "20 45 501 551"},
    {0x40000, "40 55 548-550"},
    {0x80000, "552"},
    {0x100000, "19-22 551"},
};

struct ElementSize {
  uint32_t bytes;
  IdList ids;
};

// All other ids: 1.
const ElementSize kElementSizes[] = {
    {2,
     "48-59 68-69 85-86 104-105 107 114-115 503 511 514 517-519 540-541 544 546 610-614 617-618 "
     "652-653 658-659 662-663 666-668 678 680 709-710 712-713 715 717-718 720"},
    {3, "508 510 513 516 521 549 623-624"},
    {4,
     "23-47 67 87-93 100-101 116-118 501 507 509 512 515 520 531-539 542 545 547-548 550 553-554 "
     "559 564 620-622 648-651 654-655 664 669 683-684 711 714 716 719 721"},
    {6, "523 526 529 558 563"},
    {8,
     "9-22 70-72 79-81 102 108-109 522 525 528 543 551 555 560 565 596 599-600 603-605 607-608 656 "
     "681-682 685-686"},
    {12, "5-8 556 561 566"},
    {16,
     "1-4 73-78 82-84 94-99 133-135 137-139 141-143 145-147 149-151 153-155 157-159 161-163 "
     "165-167 169-171 173-175 177-179 181-183 185-187 524 527 530 557 562 567-595 597-598 601-602 "
     "606 609 626-645"},
};

const IdList kTwoPlanes = "103-106 110 504-506 619 647 654 660 709 712 717";
const IdList kThreePlanes = "615-616";

// Everything that holds something; 358 of them.
const IdList kUsedIds =
    "1-118 133-135 137-139 141-143 145-147 149-151 153-155 157-159 161-163 165-167 169-171 173-175 "
    "177-179 181-183 185-187 501-669 671-686 709-721";

uint32_t expected_flags(uint32_t id) {
  uint32_t flags = 0;
  for (const FlagBit& bit : kFlagBits) flags |= bit.ids.has(id) ? bit.flag : 0;
  return flags;
}

uint32_t expected_bytes(uint32_t id) {
  for (const ElementSize& size : kElementSizes) {
    if (size.ids.has(id)) return size.bytes;
  }
  return 1;
}

uint32_t expected_planes(uint32_t id) {
  if (kThreePlanes.has(id)) return 3;
  return kTwoPlanes.has(id) ? 2 : 1;
}

TEST(FormatTable, HoldsTheFlagsOfEveryFormat) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    EXPECT_NUMBER(korvel::format_record(id).flags, expected_flags(id)) << "format " << id;
  }
}

TEST(FormatTable, HoldsTheElementSizeOfEveryFormat) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    EXPECT_NUMBER(korvel::format_record(id).bytes, expected_bytes(id)) << "format " << id;
  }
}

TEST(FormatTable, HoldsThePlaneCountOfEveryFormat) {
  for (uint32_t id = 0; id < kTableIds; ++id) {
    EXPECT_NUMBER(korvel::format_record(id).planes, expected_planes(id)) << "format " << id;
  }
}

TEST(FormatTable, Holds722RecordsOfThreeWords) {
  EXPECT_NUMBER(korvel::kFormatCount, 722);
  EXPECT_NUMBER(sizeof(korvel::FormatRecord), 12);
}

void expect_record(uint32_t id, uint32_t flags, uint32_t bytes, uint32_t planes) {
  const korvel::FormatRecord& record = korvel::format_record(id);
  EXPECT_NUMBER(record.flags, flags) << "format " << id;
  EXPECT_NUMBER(record.bytes, bytes) << "format " << id;
  EXPECT_NUMBER(record.planes, planes) << "format " << id;
}

TEST(FormatTable, UnusedIdsHoldOneByteAndOnePlane) {
  constexpr uint32_t kNoFlags = 0;
  constexpr uint32_t kOneByte = 1;
  constexpr uint32_t kOnePlane = 1;
  EXPECT_NUMBER(kUsedIds.size(), 358);
  for (uint32_t id = 0; id < kTableIds; ++id) {
    if (!kUsedIds.has(id)) expect_record(id, kNoFlags, kOneByte, kOnePlane);
  }
}

TEST(FormatTable, HoldsWellKnownRecords) {
  struct Row {
    uint32_t id;
    uint32_t flags;
    uint32_t bytes;
    uint32_t planes = 1;
  };
  constexpr Row kRows[] = {
      {.id = 0, .flags = 0, .bytes = 1},
      {.id = 2, .flags = 0xC, .bytes = 16},
      {.id = 11, .flags = 0x2, .bytes = 8},
      {.id = 20, .flags = 0x13C00C, .bytes = 8},
      {.id = 28, .flags = 0x2, .bytes = 4},
      {.id = 45, .flags = 0x3C002, .bytes = 4},
      {.id = 103, .flags = 0xA02, .bytes = 1, .planes = 2},
      {.id = 107, .flags = 0x1202, .bytes = 2},
      {.id = 502, .flags = 0x12, .bytes = 1},
      {.id = 508, .flags = 0x2, .bytes = 3},
      {.id = 551, .flags = 0x13C00C, .bytes = 8},
      {.id = 552, .flags = 0x980A0, .bytes = 1},
      {.id = 554, .flags = 0, .bytes = 4},
      {.id = 567, .flags = 0x2, .bytes = 16},
      {.id = 615, .flags = 0xA02, .bytes = 1, .planes = 3},
      {.id = 616, .flags = 0xA02, .bytes = 1, .planes = 3},
      {.id = 654, .flags = 0x1A02, .bytes = 4, .planes = 2},
      {.id = 670, .flags = 0, .bytes = 1},
      {.id = 687, .flags = 0, .bytes = 1},
      {.id = 708, .flags = 0, .bytes = 1},
      {.id = 712, .flags = 0xAA0, .bytes = 2, .planes = 2},
      {.id = 721, .flags = 0x2A0, .bytes = 4},
  };
  for (const Row& row : kRows) expect_record(row.id, row.flags, row.bytes, row.planes);
}

}  // namespace
}  // namespace formats_test
