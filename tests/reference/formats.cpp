// The format table and what is read off a format number alone.
#include "rules.h"

namespace reference {

bool has_record(uint32_t format) {
  return format < 722;
}

FormatRecord format_record(uint32_t format) {
  const uint32_t f = format;
  if (!has_record(f)) return {0, 1, 1};
  if (among(f, {1})) return {0x400, 16, 1};
  if (among(f, {2, 524})) return {0xC, 16, 1};
  if (among(f, {3, 530})) return {0xA0, 16, 1};
  if (among(f, {4, 527})) return {0xC0, 16, 1};
  if (among(f, {5})) return {0x400, 12, 1};
  if (among(f, {6})) return {0xC, 12, 1};
  if (among(f, {7})) return {0xA0, 12, 1};
  if (among(f, {8})) return {0xC0, 12, 1};
  if (among(f, {9, 15})) return {0x400, 8, 1};
  if (among(f, {10, 522})) return {0x4, 8, 1};
  if (among(f, {11, 565})) return {0x2, 8, 1};
  if (among(f, {12, 17, 528, 685})) return {0xA0, 8, 1};
  if (among(f, {13, 560})) return {0x1, 8, 1};
  if (among(f, {14, 18, 525, 686})) return {0xC0, 8, 1};
  if (among(f, {16})) return {0xC, 8, 1};
  if (among(f, {19})) return {0x108400, 8, 1};
  if (among(f, {20, 551})) return {0x13C00C, 8, 1};
  if (among(f, {21})) return {0x10840C, 8, 1};
  if (among(f, {22})) return {0x108000, 8, 1};
  if (among(f, {23, 27, 33, 39, 90, 92})) return {0x400, 4, 1};
  if (among(f, {24, 28, 35, {87, 89}, 507, 532, {537, 539}, 564, 621, 648, 683, 684})) {
    return {0x2, 4, 1};
  }
  if (among(f, {25, 30, 36, 42, 116, 512, 535, 650})) return {0xA0, 4, 1};
  if (among(f, {26, 34, 67})) return {0x4, 4, 1};
  if (among(f, {29, 91, 93, 520, 622})) return {0x102, 4, 1};
  if (among(f, {31, 37, 118, 509, 531, 533, 559, 649})) return {0x1, 4, 1};
  if (among(f, {32, 38, 43, 117, 515, 534, 536, 651})) return {0xC0, 4, 1};
  if (among(f, {40})) return {0x5400C, 4, 1};
  if (among(f, {41, 547})) return {0xC, 4, 1};
  if (among(f, {44})) return {0x8400, 4, 1};
  if (among(f, {45, 501})) return {0x3C002, 4, 1};
  if (among(f, {46})) return {0x8402, 4, 1};
  if (among(f, {47})) return {0x8000, 4, 1};
  if (among(f, {48, 53})) return {0x400, 2, 1};
  if (among(f, {49, 56, 85, 86, 115, 518, 519, 540, {610, 613}, 652, 653})) return {0x2, 2, 1};
  if (among(f, {50, 57, 514})) return {0xA0, 2, 1};
  if (among(f, {51, 58, 511})) return {0x1, 2, 1};
  if (among(f, {52, 59, 517})) return {0xC0, 2, 1};
  if (among(f, {54, 546})) return {0x4, 2, 1};
  if (among(f, {55})) return {0x54002, 2, 1};
  if (among(f, {60})) return {0x400, 1, 1};
  if (among(f, {61, 65, 66, {671, 677}})) return {0x2, 1, 1};
  if (among(f, {62})) return {0xA0, 1, 1};
  if (among(f, {63})) return {0x1, 1, 1};
  if (among(f, {64})) return {0xC0, 1, 1};
  if (among(f, {68, 69})) return {0x1002, 2, 1};
  if (among(f, {70, 79})) return {0x2400, 8, 1};
  if (among(f, {71, 681})) return {0x2002, 8, 1};
  if (among(f, {72, 682})) return {0x2102, 8, 1};
  if (among(f, {73, 76, 82, 94, 97, 133, 137, 141, 145, 149, 153, 157, 161, 165, 169, 173, 177, 181,
                185})) {
    return {0x2400, 16, 1};
  }
  if (among(f, {74,
                77,
                83,
                98,
                134,
                138,
                142,
                146,
                150,
                154,
                158,
                162,
                166,
                170,
                174,
                178,
                182,
                186,
                {568, 581}})) {
    return {0x2002, 16, 1};
  }
  if (among(f,
            {75, 78, 99, 135, 139, 143, 147, 151, 155, 159, 163, 167, 171, 175, 179, 183, 187})) {
    return {0x2102, 16, 1};
  }
  if (among(f, {80, 81, 596, 599, 600, {603, 605}})) return {0x2000, 8, 1};
  if (among(f, {84})) return {0x2001, 16, 1};
  if (among(f, {95, 96, 597, 598, 601, 602, 606, {626, 635}})) return {0x2000, 16, 1};
  if (among(f, {100, 101})) return {0x200, 4, 1};
  if (among(f, {102, 108, 109})) return {0x200, 8, 1};
  if (among(f, {103, 506, 619, 647, 660})) return {0xA02, 1, 2};
  if (among(f, {104, 105, 709, 717})) return {0xA02, 2, 2};
  if (among(f, {106, 110, 504, 505})) return {0xA00, 1, 2};
  if (among(f, {107, 614, 617, 618})) return {0x1202, 2, 1};
  if (among(f, {{111, 113}})) return {0x200, 1, 1};
  if (among(f, {114})) return {0x200, 2, 1};
  if (among(f, {502})) return {0x12, 1, 1};
  if (among(f, {503, 541})) return {0x12, 2, 1};
  if (among(f, {508, 623})) return {0x2, 3, 1};
  if (among(f, {510})) return {0x1, 3, 1};
  if (among(f, {513})) return {0xA0, 3, 1};
  if (among(f, {516})) return {0xC0, 3, 1};
  if (among(f, {521, 624})) return {0x102, 3, 1};
  if (among(f, {523})) return {0x4, 6, 1};
  if (among(f, {526})) return {0xC0, 6, 1};
  if (among(f, {529})) return {0xA0, 6, 1};
  if (among(f, {542})) return {0x14, 4, 1};
  if (among(f, {543})) return {0x1C, 8, 1};
  if (among(f, {544})) return {0x14, 2, 1};
  if (among(f, {545})) return {0x1C, 4, 1};
  if (among(f, {548, 550})) return {0x54002, 4, 1};
  if (among(f, {549})) return {0x54002, 3, 1};
  if (among(f, {552})) return {0x980A0, 1, 1};
  if (among(f, {553})) return {0x18002, 4, 1};
  if (among(f, {554})) return {0x0, 4, 1};
  if (among(f, {555})) return {0x0, 8, 1};
  if (among(f, {556})) return {0x0, 12, 1};
  if (among(f, {557})) return {0x0, 16, 1};
  if (among(f, {558})) return {0x1, 6, 1};
  if (among(f, {561})) return {0x1, 12, 1};
  if (among(f, {562})) return {0x1, 16, 1};
  if (among(f, {563})) return {0x2, 6, 1};
  if (among(f, {566})) return {0x2, 12, 1};
  if (among(f, {567})) return {0x2, 16, 1};
  if (among(f, {{582, 595}, 609, {636, 645}})) return {0x2100, 16, 1};
  if (among(f, {607, 608})) return {0x2100, 8, 1};
  if (among(f, {615, 616})) return {0xA02, 1, 3};
  if (among(f, {620, 664, 711, 716, 719})) return {0x202, 4, 1};
  if (among(f, {625, 657, 661, 679})) return {0x202, 1, 1};
  if (among(f, {646})) return {0x102, 1, 1};
  if (among(f, {654})) return {0x1A02, 4, 2};
  if (among(f, {655})) return {0x1202, 4, 1};
  if (among(f, {656})) return {0x1202, 8, 1};
  if (among(f, {658, 659, 662, 663, 680, 710, 715, 718})) return {0x202, 2, 1};
  if (among(f, {665})) return {0x2A0, 1, 1};
  if (among(f, {{666, 668}, 713, 720})) return {0x2A0, 2, 1};
  if (among(f, {669, 714, 721})) return {0x2A0, 4, 1};
  if (among(f, {678})) return {0x102, 2, 1};
  if (among(f, {712})) return {0xAA0, 2, 2};
  return {0, 1, 1};
}

bool has_flag(uint32_t format, uint32_t flags) {
  return (format_record(format).flags & flags) != 0;
}

uint32_t element_bytes(uint32_t format) {
  return format_record(format).bytes;
}

Dimensions format_block_dims(uint32_t format) {
  const uint32_t f = format;
  if (among(f,
            {{70, 84}, {94, 99}, {133, 135}, 568, 582, {596, 609}, 628, 629, 638, 639, 681, 682})) {
    return {4, 4};
  }
  if (among(f, {{137, 139}, 569, 583, 630, 640})) return {5, 4};
  if (among(f, {{141, 143}, 570, 584, 631, 632, 641, 642})) return {5, 5};
  if (among(f, {{145, 147}, 571, 585, 633, 643})) return {6, 5};
  if (among(f, {{149, 151}, 572, 586, 634, 635, 644, 645})) return {6, 6};
  if (among(f, {{153, 155}, 573, 587})) return {8, 5};
  if (among(f, {{157, 159}, 574, 588})) return {8, 6};
  if (among(f, {{161, 163}, 575, 589})) return {8, 8};
  if (among(f, {{165, 167}, 576, 590})) return {10, 5};
  if (among(f, {{169, 171}, 577, 591})) return {10, 6};
  if (among(f, {{173, 175}, 578, 592})) return {10, 8};
  if (among(f, {{177, 179}, 579, 593})) return {10, 10};
  if (among(f, {{181, 183}, 580, 594})) return {12, 10};
  if (among(f, {{185, 187}, 581, 595})) return {12, 12};
  if (among(f, {626, 636})) return {3, 3};
  if (among(f, {627, 637})) return {4, 3};
  // Three texels of these share one element, so their width counts in threes.
  if (among(f, {654, 655, 656})) return {3, 1};
  return {1, 1};
}

uint32_t format_plane_bytes(uint32_t format, uint32_t plane) {
  const uint32_t f = format;
  if (plane == 0) {
    if (f == 20 || f == 551) return 4;  // the depth half alone
    if (among(f,
              {{1, 4},     {73, 78},   {82, 84},   {94, 99},   {133, 135}, {137, 139}, {141, 143},
               {145, 147}, {149, 151}, {153, 155}, {157, 159}, {161, 163}, {165, 167}, {169, 171},
               {173, 175}, {177, 179}, {181, 183}, {185, 187}, 524,        527,        530,
               557,        562,        {567, 595}, 597,        598,        601,        602,
               606,        609,        {626, 645}})) {
      return 16;
    }
    if (among(f, {{5, 8}, 556, 561, 566})) return 12;
    if (among(f,
              {{9, 19}, 21,  22,  {70, 72}, {79, 81},   102, 108, 109, 522, 525, 528, 543, 555, 560,
               565,     596, 599, 600,      {603, 605}, 607, 608, 656, 681, 682, 685, 686})) {
      return 8;
    }
    if (among(f, {{23, 47}, 67,  {87, 93}, 100,        101,        {116, 118}, 501, 507, 509,
                  512,      515, 520,      {531, 539}, 542,        545,        547, 548, 550,
                  553,      554, 559,      564,        {620, 622}, {648, 651}, 654, 655, 664,
                  669,      683, 684,      711,        714,        716,        719, 721})) {
      return 4;
    }
    if (among(f,
              {{48, 59},   68,         69,  85,  86,  104,        105, 107, 114, 115, 503, 511, 514,
               {517, 519}, 540,        541, 544, 546, {610, 614}, 617, 618, 652, 653, 658, 659, 662,
               663,        {666, 668}, 678, 680, 709, 710,        712, 713, 715, 717, 718, 720})) {
      return 2;
    }
    if (among(f, {508, 510, 513, 516, 521, 549, 623, 624})) return 3;
    if (among(f, {523, 526, 529, 558, 563})) return 6;
    return 1;
  }
  if (plane == 1) {
    if (f == 20 || f == 551) return 1;  // the stencil half alone
    if (among(f, {103, 106, 110, 504, 505, 506, 619, 647, 660})) return 2;
    if (among(f, {104, 105, 709, 712, 717})) return 4;
    if (f == 654) return 8;
    if (f == 615 || f == 616) return 1;
    return 0;
  }
  if (plane == 2) {
    if (f == 615 || f == 616) return 1;
    return 0;
  }
  return 0;
}

uint32_t npot_substitute_format(uint32_t format) {
  const uint32_t s = element_bytes(format);
  if (is_power_of_two(s)) return format;
  if (s == 3) return 28;
  if (s == 6) return 11;
  return 567;
}

uint32_t listed_substitute_format(uint32_t format) {
  switch (format) {
    case 5:
    case 6:
    case 7:
    case 8:
    case 556:
    case 561:
    case 566: return 567;
    case 508:
    case 510:
    case 513:
    case 516:
    case 521:
    case 549:
    case 623:
    case 624: return 28;
    case 523:
    case 526:
    case 529:
    case 558:
    case 563: return 11;
    default: return format;
  }
}

uint32_t plane_format(uint32_t format, uint32_t plane) {
  if (plane == 0) {
    switch (format) {
      case 615:
      case 616: return 625;
      case 105: return 715;
      case 20:
      case 551: return 40;
      case 103:
      case 506:
      case 619:
      case 647: return 657;
      case 104: return 663;
      case 654: return 655;
      case 660: return 661;
      case 709: return 710;
      case 712: return 713;
      case 717: return 718;
      default: return format;
    }
  }
  if (plane == 1) {
    switch (format) {
      case 615:
      case 616: return 625;
      case 105: return 716;
      case 20:
      case 551: return 552;
      case 103:
      case 506: return 658;
      case 619:
      case 647: return 659;
      case 104: return 664;
      case 654: return 656;
      case 660: return 662;
      case 709: return 711;
      case 712: return 714;
      case 717: return 719;
      default: return format;
    }
  }
  if (plane == 2 && (format == 615 || format == 616)) return 625;
  return format;
}

uint32_t format_pitch_alignment(const Process& process, uint32_t format, uint32_t samples,
                                uint32_t tiling_mode) {
  if (tiling_mode == 0) {
    // The product is counted in bits on the way, which drops its three highest bits.
    const uint32_t bits = element_bytes(npot_substitute_format(format)) * samples * 8;
    return round_up(bits / 8, pixel_alignment(process));
  }
  if (tiling_mode == 1) {
    return tiled_alignment(process);
  }
  return 0;
}

void compute_compressedfmt_aligned_width_and_height(Process& process, int32_t texel_width,
                                                    int32_t texel_height, uint32_t format,
                                                    uint64_t /*ignored_1*/, uint64_t /*ignored_2*/,
                                                    uint64_t /*ignored_3*/, uint32_t* aligned_width,
                                                    uint32_t* aligned_height, uint32_t* bpp) {
  const char* const function = "compute_compressedfmt_aligned_width_and_height";
  if (texel_width < 0 || texel_height < 0) {
    log_message(process, function, "Invalid texel width or texel height: W = %d, H = %d",
                texel_width, texel_height);
    *aligned_width = 1;
    *aligned_height = 1;
    *bpp = 1;
    return;
  }
  if (!has_flag(format, kFlagBlockCompressed)) {
    log_message(process, function, "Not a compressed format 0x%x", format);
    return;
  }
  if (aligned_width == nullptr || aligned_height == nullptr || bpp == nullptr) {
    log_message(process, function,
                "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x ",
                static_cast<uint32_t>(reinterpret_cast<uintptr_t>(aligned_width)),
                static_cast<uint32_t>(reinterpret_cast<uintptr_t>(aligned_height)),
                static_cast<uint32_t>(reinterpret_cast<uintptr_t>(bpp)));
    return;
  }
  identify_gpu_if_needed(process);
  const uint32_t p = pixel_alignment(process);
  const Dimensions block = format_block_dims(format);
  const int32_t across = ceil_divide_signed(texel_width, static_cast<int32_t>(block.width));
  const int32_t down = ceil_divide_signed(texel_height, static_cast<int32_t>(block.height));
  *aligned_width = round_up(static_cast<uint32_t>(across), p);
  *aligned_height = static_cast<uint32_t>(down);
  *bpp = element_bytes(format);
}

}  // namespace reference
