/*
 * korvel_utils: where every byte of a surface lies in GPU memory.
 *
 * This header is the whole public interface, for C99 and for C++, and its manual. All functions are
 * plain synchronous calls with C linkage. They keep no handle, allocate nothing and touch no file.
 *
 * Terms
 *   element         one texel of an ordinary format, one block of a block-compressed one.
 *   width, height   elements and rows of elements, unless an entry says texels.
 *   pitch           bytes from one row of elements to the next. Everywhere in this header a pitch
 *                   is bytes and a width is elements.
 *   slice           one array layer or depth step of a plane.
 *   slice pitch     bytes from one slice to the next.
 *   plane           one separately stored part of a multi-planar format (luma, chroma, ...); planes
 *                   are numbered 0 to 2.
 *   level           one mip level; levels are numbered 0 to 14.
 *   flag buffer     the compression metadata of a plane kept in bandwidth compression (UBWC).
 *   LRZ             low-resolution depth buffer of a level, with a fast-clear buffer beside it.
 *   tiling mode     1 = tiled, 0 = linear. The alignment entries take any other value as linear.
 *   format          a format number: 1-115 are the DXGI_FORMAT values, 116-118 three further
 *                   four-byte formats, 133-187 the ASTC formats, 501-686 and 709-721 the library's
 *                   own. A number below 722 that is not in use is a one-byte single-plane format.
 *                   A number of 722 or more has no record: the predicates answer 0 for it, the
 *                   alignment entries treat it as a one-byte single-plane format; the pitches of
 *                   one of these, the four-character code 0x37425857 ("WXB7"), are never padded.
 *   block format    a block-compressed format: 70-84, 94-99, the ASTC formats, 568-609, 626-645,
 *                   681 and 682.
 *   packed format   one of 68, 69, 107, 614, 617, 618 and 654-656: not compressed, but its linear
 *                   width may be aligned in blocks too.
 *   UUID            16 bytes, four little-endian 32-bit words. "Word 0" is the first of them.
 *
 * The GPU
 *   The entries marked "GPU" below work for the GPU of this machine. The first of them that runs
 *   asks the services library for the chip id of device 1; the answer is kept for the life of the
 *   process. When the device cannot be opened or queried, the chip id is 0 for good. When the
 *   services library cannot be opened, or the device reports the chip id 0xFFFFFFFF, the call goes
 *   on as for an unknown chip and the next call asks again. Messages of the identification, under
 *   the names of its steps:
 *     ReadGpuID_from_khxl     "Failed to open HXL Library!!!!"
 *     korvel_get_family_id    "Unknown HXL chip ID %u"   (a chip that has no row)
 *     korvel_get_chip_id      the same
 *     korvel_get_rev_id       the same
 *
 *   The library knows a chip by its row in the hardware data:
 *   unknown chip    one without a row. Its family, model code and revision id are 0.
 *   family          5, 6 or 7: which set of rules a chip follows.
 *   property        an alignment constant. Each has its own list of the chips that have it; where a
 *                   chip is not on it, the property's default stands in its place.
 *   supported chip  one that the alignment entries have rules for, another list again.
 *
 * Messages
 *   Every diagnostic goes to the services library's os_alog with level 1, the tag "Korvel-UNKNOWN",
 *   0, the source line, the name of the reporting function, a printf format and its arguments.
 *   Where an entry below lists messages, its own name is the reporting function unless another is
 *   named. A call that fails leaves one message unless the entry says else. An entry that is marked
 *   "GPU" may leave the messages of the identification before its own.
 *
 * Threads
 *   Every entry may be called from any thread at any time. The library takes no lock: first calls
 *   that race may each query the device and then store the same identity. Two calls must not write
 *   the same output at once; that is for the caller to arrange.
 *
 * Arithmetic
 *   32-bit results wrap modulo 2^32. A division by 0 (each entry says under "Faults" where one can
 *   happen) ends the program on every target, with the platform's integer-divide-by-zero fault
 *   where it has one, else with a trap. It is never a silent number.
 *
 * Linking
 *   The library calls the services library, libhxluser. It comes with the driver and is in no
 *   package of this library; a program is linked without it and finds it when it starts.
 *     CMake       find_package(korvel_utils 1.0 CONFIG REQUIRED)
 *                 target_link_libraries(program korvel_utils::korvel_utils)
 *     pkg-config  cc program.c $(pkg-config --cflags --libs korvel_utils)
 *     Linux       cc program.c -lkorvel_utils -Wl,--allow-shlib-undefined
 *     Windows     cl program.c korvel_utils.lib
 *   --allow-shlib-undefined leaves to the loader what libkorvel_utils.so calls of libhxluser.so;
 *   the first two ways say it by themselves.
 *   On Linux there is a static library too: korvel_utils::korvel_utils_static, in pkg-config
 *   korvel_utils-static, or
 *     cc program.c libkorvel_utils.a -Llib/korvel_utils/link-only -lhxluser
 *   The libhxluser.so of the folder link-only tells linkers the names of the services and does
 *   nothing else: no program must load it.
 *   When the program starts, the loader looks for libhxluser.so beside libkorvel_utils.so.1 and
 *   where the system keeps libraries. A machine without the driver can have a stand-in whose GPU
 *   you choose: find_package(korvel_utils CONFIG REQUIRED COMPONENTS simulator).
 *
 * Windows
 *   Drivers put korvel_utils.dll and libhxluser.dll beside each other, in the driver store.
 *   A program that brings its own korvel_utils.dll keeps it in its own folder.
 *   The system looks for the libhxluser.dll that korvel_utils.dll imports
 *     1. among what the process has loaded: a module of that name is taken wherever it came from;
 *     2. in the folder that korvel_utils.dll was loaded from;
 *     3. in the system's folder, System32;
 *   and nowhere else: not in the program's folder, not in the current one, not along PATH. The DLL
 *   asks for this itself (DependentLoadFlags 0x900), which systems before Windows 10, version 1607,
 *   ignore. What a caller does, so that nobody can put a DLL of his own in the place of either:
 *     - keep both in a folder that administrators alone can write to;
 *     - load korvel_utils.dll by its full path, with LoadLibraryExW(path, NULL,
 *       LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
 *     - or, where the program imports it, link the program with /DEPENDENTLOADFLAG:0xA00, which
 *       stands for the program's folder and the system's: without it korvel_utils.dll is looked for
 *       in the current folder and along PATH as well;
 *     - on older systems, load libhxluser.dll first, by its full path.
 *
 * Versions
 *   KORVEL_UTILS_VERSION is the header's, when the program is compiled. The library's own is in its
 *   file: on Windows in the version resource (FileVersion and ProductVersion), on Linux in
 *   the file's name, libkorvel_utils.so.1.0.0. Programs for Linux ask for libkorvel_utils.so.1, the
 *   soname, and for the functions of the symbol version KORVEL_UTILS_1.0. What changes with
 *     PATCH  nothing that a program relies on: mistakes are corrected, and the source lines of
 *            messages and the time that calls take are others;
 *     MINOR  functions, constants, chips and formats are added. Programs run as they are. New
 *            functions have the symbol version of their number, so that a program that calls one
 *            does not start beside an older library;
 *     MAJOR  anything. The soname is another one, and find_package() refuses.
 *   Stored records do not go by these numbers but by the words of their driver UUID: a layout that
 *   comes out otherwise for the same arguments and chip gets another driver or layout version.
 *
 * Examples
 *   examples/ has these files, with a project for CMake.
 *
 *   examples/surface.c
 *
 *     // A tiled 1920 x 1080 texture of R8G8B8A8_UNORM: what to allocate, and where its bytes lie.
 *     #include <korvel_utils.h>
 *     #include <stdio.h>
 *
 *     static LayoutMetadata blob;  // zeroed; it is stored with the resource
 *
 *     int main(void) {
 *       const uint32_t format = 28;  // DXGI_FORMAT_R8G8B8A8_UNORM: one plane, 4 bytes an element
 *       const uint32_t samples = 1, planes = 1;
 *       if (korvel_init_memory_layout(&blob, 1920, 1080, 1, format, samples, KORVEL_TILING_TILED,
 *                                     LAYOUT_FLAG_UBWC, planes) != KORVEL_SUCCESS) {
 *         return 1;  // the services' log says why
 *       }
 *
 *       const unsigned long long allocation_bytes = korvel_get_aligned_gpu_buffer_size(&blob);
 *       printf("allocate %llu bytes at a multiple of %u\n", allocation_bytes,
 *              blob.layout.alignment);
 *
 *       const PlaneLayout* plane = &blob.layout.level[0].plane[0];
 *       if (plane->flag_valid == 1) {
 *         printf("flags at byte %llu\n", (unsigned long long)plane->flag_offset);
 *       }
 *       printf("image at byte %llu, %u rows of %u bytes\n",
 *              (unsigned long long)plane->image_offset, plane->image_height, plane->image_pitch);
 *       return 0;
 *     }
 *
 *   examples/mip_chain.c
 *
 *     // The mip chain of a tiled 256 x 256 texture: initialise, set `levels`, lay the chain out.
 *     #include <korvel_utils.h>
 *     #include <stdio.h>
 *
 *     static LayoutMetadata blob;  // zeroed, as korvel_init_multi_level_surface() wants it
 *
 *     int main(void) {
 *       // Checks the arguments and writes the record's head: UUIDs, format, alignment.
 *       if (korvel_init_memory_layout(&blob, 256, 256, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
 *           KORVEL_SUCCESS) {
 *         return 1;
 *       }
 *       // 256, 128, ... 1: each level halves the one before. Nothing checks the number: 1 to 15.
 *       blob.layout.levels = 9;
 *       korvel_init_multi_level_surface(&blob.layout, 256, 256, 1, 28, 1, KORVEL_TILING_TILED, 0,
 *                                       1);
 *
 *       for (uint32_t l = 0; l < blob.layout.levels; ++l) {
 *         const PlaneLayout* plane = &blob.layout.level[l].plane[0];
 *         printf("level %u at byte %llu, %u rows of %u bytes\n", l,
 *                (unsigned long long)plane->image_offset, plane->image_height, plane->image_pitch);
 *       }
 *       // Array slice n of every level lies n x image_slice_pitch bytes further on.
 *       printf("allocate %llu bytes\n",
 *              (unsigned long long)korvel_get_aligned_gpu_buffer_size(&blob));
 *       return 0;
 *     }
 *
 *   examples/stored_record.c
 *
 *     // A layout that was stored with a resource comes back: may memory be addressed by it?
 *     #include <korvel_utils.h>
 *     #include <stdio.h>
 *     #include <string.h>
 *
 *     // 1 when this GPU and these rules made the record at `stored`, and its buffers lie inside
 *     // `allocation_bytes`. The record to use is then the one in `copy`.
 *     static int take(const void* stored, size_t stored_bytes, uint64_t allocation_bytes,
 *                     MemoryLayout* copy) {
 *       // The device UUID is that of the GPU of this machine. No entry hands it out by itself, but
 *       // every layout that is made here bears it: one of a single texel is enough.
 *       static LayoutMetadata made_here;
 *       uint8_t driver_uuid[KORVEL_UUID_BYTES];
 *       if (korvel_init_memory_layout(&made_here, 1, 1, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
 *               KORVEL_SUCCESS ||
 *           get_driver_uuid(driver_uuid, KORVEL_UUID_BYTES) != 0) {
 *         return 0;
 *       }
 *
 *       // A copy, for what others may still write to must not change behind the verdict.
 *       memset(copy, 0, sizeof *copy);
 *       memcpy(copy, stored, stored_bytes < sizeof *copy ? stored_bytes : sizeof *copy);
 *       if (validate_resource_memory_layout_metadata(copy, made_here.layout.device_uuid,
 *                                                    driver_uuid) != KORVEL_SUCCESS ||
 *           copy->size > stored_bytes) {
 *         return 0;
 *       }
 *       // Every buffer ends inside these bytes when they are fewer than 2^31. They wrap to more
 *       // where total_size is below `size`.
 *       const uint64_t surface_bytes = copy->total_size - copy->size;
 *       return surface_bytes <= INT32_MAX && surface_bytes <= allocation_bytes;
 *     }
 *
 *     int main(void) {
 *       static LayoutMetadata blob;
 *       static MemoryLayout copy;
 *       if (korvel_init_memory_layout(&blob, 64, 64, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
 *           KORVEL_SUCCESS) {
 *         return 1;
 *       }
 *       const MemoryLayout* stored = &blob.layout;
 *       const uint64_t allocation_bytes = korvel_get_aligned_gpu_buffer_size(&blob);
 *
 *       printf("as it was stored: %d\n", take(stored, sizeof *stored, allocation_bytes, &copy));
 *       printf("in less memory: %d\n", take(stored, sizeof *stored, allocation_bytes - 1, &copy));
 *       blob.layout.device_uuid[4] ^= 1;  // word 1 is the family of the GPU
 *       printf("from another GPU: %d\n", take(stored, sizeof *stored, allocation_bytes, &copy));
 *       return 0;
 *     }
 */
#ifndef KORVEL_UTILS_H
#define KORVEL_UTILS_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(KORVEL_UTILS_BUILD)
#define KORVEL_API __declspec(dllexport)
#elif defined(KORVEL_UTILS_STATIC)
#define KORVEL_API
#else
#define KORVEL_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define KORVEL_API __attribute__((visibility("default")))
#else
#define KORVEL_API
#endif

/** The calling convention of the entries; the platform's own unless the including program says. */
#ifndef KORVEL_CALL
#define KORVEL_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------------------------
 * Constants
 * --------------------------------------------------------------------------------------------- */

/* The version of the library that this header belongs to. The build takes its own from here. */
#define KORVEL_UTILS_VERSION_MAJOR 1 /**< changes when programs must be changed */
#define KORVEL_UTILS_VERSION_MINOR 0 /**< changes when something is added */
#define KORVEL_UTILS_VERSION_PATCH 0 /**< changes otherwise */

/** The version as one number for comparisons: 1.2.3 is 10203. */
#define KORVEL_UTILS_VERSION                                               \
  (KORVEL_UTILS_VERSION_MAJOR * 10000 + KORVEL_UTILS_VERSION_MINOR * 100 + \
   KORVEL_UTILS_VERSION_PATCH)

/** Result of a call that can fail: success. */
#define KORVEL_SUCCESS UINT32_C(0)
/** Result of a call that can fail: failure, after one message unless the entry says else. */
#define KORVEL_FAILURE UINT32_C(0xFFFFFFFF)

/** Tiling mode: rows one after another. */
#define KORVEL_TILING_LINEAR UINT32_C(0)
/** Tiling mode: tiles of elements one after another. */
#define KORVEL_TILING_TILED UINT32_C(1)

/** Layout flag: UBWC flag buffers where format and chip allow them. */
#define LAYOUT_FLAG_UBWC (UINT64_C(1) << 28)
/** Layout flag: an extra buffer of 8224 bytes a slice behind the planes. */
#define LAYOUT_FLAG_EXTRA (UINT64_C(1) << 56)
/** Layout flag: counts only beside LAYOUT_FLAG_EXTRA; asks for the chip's extra padding as well. */
#define LAYOUT_FLAG_EXTENDED (UINT64_C(1) << 60)

#define KORVEL_UUID_BYTES 16          /**< bytes of a UUID */
#define KORVEL_UUID_TEXT_BYTES 37     /**< bytes of a UUID as text, its terminator included */
#define KORVEL_MAX_LEVELS 15          /**< levels of a record */
#define KORVEL_MAX_PLANES 3           /**< planes of a level */
#define KORVEL_MAX_SLICES 2048        /**< slices of a level that the validators accept */
#define KORVEL_EXTRA_SLICE_BYTES 8224 /**< bytes a slice of the extra buffer takes */

#define KORVEL_HEADER_MAGIC UINT32_C(0x00FACADE)      /**< MetadataHeader::magic */
#define KORVEL_HEADER_VERSION UINT32_C(1)             /**< MetadataHeader::header_version */
#define KORVEL_HEADER_RECORD_KIND UINT32_C(3)         /**< MetadataHeader::record_kind */
#define KORVEL_LAYOUT_SIGNATURE UINT32_C(0xDA7ACA5E)  /**< MemoryLayout::signature */
#define KORVEL_SURFACE_SIGNATURE UINT32_C(0xDE5CDA7A) /**< SurfaceMetadata::signature */
#define KORVEL_DEVICE_SIGNATURE UINT32_C(0x5A52)      /**< word 0 of a device UUID, 'ZR' */

#define KORVEL_BLOB_BYTES 5536             /**< sizeof(LayoutMetadata) */
#define KORVEL_LAYOUT_BYTES_VERSION_1 5472 /**< MemoryLayout::size of layout version 1 */
#define KORVEL_LAYOUT_BYTES_VERSION_2 5504 /**< MemoryLayout::size of layout version 2 */
#define KORVEL_LAYOUT_BYTES_VERSION_3 5512 /**< MemoryLayout::size of layout version 3, written */
#define KORVEL_SURFACE_BYTES 5300          /**< SurfaceMetadata::size */

/* ------------------------------------------------------------------------------------------------
 * Stored records
 *
 * All integers are little-endian. Offsets are bytes from the start of the surface, whose first byte
 * is 0. "not written" marks the fields that no entry of the library ever stores to.
 * --------------------------------------------------------------------------------------------- */

/** The first 24 bytes of a layout blob. */
typedef struct MetadataHeader {
  uint32_t magic;          /**< KORVEL_HEADER_MAGIC */
  uint32_t header_version; /**< KORVEL_HEADER_VERSION: 1 */
  uint32_t blob_size;      /**< bytes of the blob: 5536 */
  uint32_t record_kind;    /**< KORVEL_HEADER_RECORD_KIND: 3 */
  uint32_t record_offset;  /**< bytes from the blob's start to its MemoryLayout: 24 */
  uint32_t record_size;    /**< bytes of the MemoryLayout: 5512 */
} MetadataHeader;

/** One plane of one level. */
typedef struct PlaneLayout {
  uint64_t image_offset;       /**< bytes; where slice 0 of the image starts */
  uint64_t image_size;         /**< bytes of one slice's image */
  uint32_t image_pitch;        /**< bytes from row to row */
  uint32_t padding_20;         /**< not written */
  uint64_t image_slice_pitch;  /**< bytes from slice to slice */
  uint32_t image_element_size; /**< bytes of the format's element, all samples included */
  uint32_t image_width;        /**< aligned width, elements */
  uint32_t image_height;       /**< aligned height, rows of elements */
  uint32_t padding_44;         /**< not written */
  uint32_t flag_valid;         /**< 1 when the plane has a flag buffer, else 0 */
  uint32_t padding_52;         /**< not written */
  uint64_t flag_offset;        /**< bytes; where slice 0 of the flag buffer starts */
  uint64_t flag_size;          /**< bytes of one slice's flag buffer */
  uint32_t flag_pitch;         /**< bytes from row to row of the flag buffer */
  uint32_t padding_76;         /**< not written */
  uint64_t flag_slice_pitch;   /**< bytes from slice to slice */
} PlaneLayout;

/** One mip level. Of the LRZ words the library writes lrz_valid and lrz_fc_valid alone, both 0. */
typedef struct LevelLayout {
  uint32_t slices;                      /**< array slices or depth, 1 to 2048 */
  uint32_t tiled;                       /**< the tiling mode: 1 tiled, 0 linear */
  uint64_t size;                        /**< bytes of the level, all slices */
  uint32_t planes;                      /**< valid entries of plane[], 1 to 3 */
  uint32_t padding_20;                  /**< not written */
  PlaneLayout plane[KORVEL_MAX_PLANES]; /**< entries at and beyond `planes` are not written */
  uint32_t lrz_valid;                   /**< 1 when an LRZ buffer exists, else 0 */
  uint32_t padding_292;                 /**< not written */
  uint64_t lrz_offset;                  /**< bytes; not written */
  uint64_t lrz_size;                    /**< bytes of one slice; not written */
  uint32_t lrz_pitch;                   /**< bytes from row to row; not written */
  uint32_t padding_316;                 /**< not written */
  uint64_t lrz_slice_pitch;             /**< bytes from slice to slice; not written */
  uint32_t lrz_width;                   /**< elements; not written */
  uint32_t lrz_height;                  /**< rows; not written */
  uint32_t lrz_fc_valid;  /**< 1 when the fast-clear buffer exists; equals lrz_valid */
  uint32_t padding_340;   /**< not written */
  uint64_t lrz_fc_offset; /**< bytes; not written */
  uint64_t lrz_fc_size;   /**< bytes; not written */
} LevelLayout;

/**
 * A surface's memory layout, version 3. Version 1 ends after level[] (5472 bytes), version 2 after
 * extra_slice_pitch (5504 bytes); the validator accepts all three.
 */
typedef struct MemoryLayout {
  uint32_t signature;                     /**< KORVEL_LAYOUT_SIGNATURE */
  uint32_t size;                          /**< bytes of this record: 5512 */
  uint8_t device_uuid[KORVEL_UUID_BYTES]; /**< words 0x5A52, family, model code, revision id */
  uint8_t driver_uuid[KORVEL_UUID_BYTES]; /**< words 4, 1 (driver version), 3 (layout version), 0 */
  uint64_t total_size;                    /**< `size` + bytes of the surface, these aligned */
  uint32_t alignment;                     /**< of the surface, bytes; a power of two */
  uint32_t format;                        /**< format number */
  uint32_t samples;                       /**< 1, 2, 4 or 8 */
  uint32_t reserved_60;                   /**< not written */
  uint32_t linear_fallback; /**< 1 when lower levels of a tiled surface may be linear; written: 0 */
  uint32_t levels;          /**< valid entries of level[], 1 to 15 */
  LevelLayout level[KORVEL_MAX_LEVELS]; /**< entries at and beyond `levels` are not written */
  uint32_t extra_valid;                 /**< 1 when the extra buffer exists, else 0 */
  uint32_t padding_5476;                /**< not written */
  uint64_t extra_offset;                /**< bytes; where the extra buffer starts */
  uint64_t extra_size;                  /**< bytes of all slices: depth x 8224 */
  uint64_t extra_slice_pitch;           /**< bytes from slice to slice: 8224 */
  uint32_t extended;                    /**< 1 when both extra flags were given, else 0 */
  uint32_t padding_5508;                /**< not written */
} MemoryLayout;

/** The blob that a caller stores with a resource. */
typedef struct LayoutMetadata {
  MetadataHeader header; /**< 24 bytes */
  MemoryLayout layout;   /**< 5512 bytes */
} LayoutMetadata;

/* 64-bit words of the surface record stand at multiples of 4. */
#pragma pack(push, 4)

/** One plane of one level of a surface record. */
typedef struct SurfacePlane {
  uint64_t image_offset;       /**< bytes; where slice 0 of the image starts */
  uint64_t image_size;         /**< bytes of one slice's image */
  uint32_t image_pitch;        /**< bytes from row to row */
  uint64_t image_slice_pitch;  /**< bytes from slice to slice */
  uint32_t image_element_size; /**< bytes of an element, all samples included */
  uint32_t image_width;        /**< allocated width, elements */
  uint32_t image_height;       /**< allocated height, rows of elements */
  uint32_t actual_width;       /**< elements of the image itself */
  uint32_t actual_height;      /**< rows of elements of the image itself */
  uint32_t flag_valid;         /**< 1 when the plane has a flag buffer, else 0 */
  uint64_t flag_offset;        /**< bytes; where slice 0 of the flag buffer starts */
  uint64_t flag_size;          /**< bytes of one slice's flag buffer */
  uint32_t flag_pitch;         /**< bytes from row to row of the flag buffer */
  uint64_t flag_slice_pitch;   /**< bytes from slice to slice */
} SurfacePlane;

/** One mip level of a surface record. */
typedef struct SurfaceLevel {
  uint32_t slices;                       /**< array slices or depth, 1 to 2048 */
  uint32_t tiled;                        /**< the tiling mode: 1 tiled, 0 linear */
  uint64_t size;                         /**< bytes of the level */
  uint32_t planes;                       /**< valid entries of plane[], 1 to 3 */
  SurfacePlane plane[KORVEL_MAX_PLANES]; /**< entries at and beyond `planes` are not read */
  uint32_t lrz_valid;                    /**< 1 when an LRZ buffer exists, else 0 */
  uint64_t lrz_offset;                   /**< bytes */
  uint64_t lrz_size;                     /**< bytes of one slice */
  uint32_t lrz_pitch;                    /**< bytes from row to row */
  uint64_t lrz_slice_pitch;              /**< bytes from slice to slice */
  uint32_t lrz_width;                    /**< elements */
  uint32_t lrz_height;                   /**< rows */
  uint32_t lrz_fc_valid;  /**< 1 when the fast-clear buffer exists; equals lrz_valid */
  uint64_t lrz_fc_offset; /**< bytes */
  uint64_t lrz_fc_size;   /**< bytes */
  uint8_t unread_320[28]; /**< not read */
} SurfaceLevel;

/** A surface's layout as other driver components record it. The library only checks it. */
typedef struct SurfaceMetadata {
  uint64_t guid;                          /**< identifies the surface, not 0 */
  uint64_t total_size;                    /**< `size` + bytes of the surface */
  uint32_t alignment;                     /**< of the surface, bytes; a power of two */
  uint32_t format;                        /**< format number */
  uint32_t samples;                       /**< 1, 2, 4 or 8 */
  uint32_t unread_28;                     /**< not read */
  uint32_t linear_fallback;               /**< as in MemoryLayout */
  uint32_t levels;                        /**< valid entries of level[], 1 to 15 */
  SurfaceLevel level[KORVEL_MAX_LEVELS];  /**< entries at and beyond `levels` are not read */
  uint8_t device_uuid[KORVEL_UUID_BYTES]; /**< as in MemoryLayout */
  uint8_t driver_uuid[KORVEL_UUID_BYTES]; /**< as in MemoryLayout */
  uint32_t size;                          /**< bytes of this record: 5300 */
  uint32_t signature;                     /**< KORVEL_SURFACE_SIGNATURE */
} SurfaceMetadata;

#pragma pack(pop)

/** What compute_fmt_aligned_width_and_height_in_bytes() is asked. */
typedef struct AlignInBytesParams {
  int32_t width;                /**< elements, 0 or more */
  int32_t height;               /**< rows of elements, 0 or more */
  uint32_t plane;               /**< plane number */
  uint32_t format;              /**< format number */
  uint32_t samples;             /**< samples of an element */
  uint32_t selector;            /**< as for compute_fmt_aligned_width_and_height() */
  int32_t min_padded_row_bytes; /**< as for compute_fmt_aligned_width_and_height() */
  uint32_t* tiling_mode;        /**< read; set to 0 when the surface is too narrow to tile */
} AlignInBytesParams;

/** Where compute_fmt_aligned_width_and_height_in_bytes() stores its answers. */
typedef struct AlignInBytesResult {
  uint32_t* aligned_row_bytes; /**< bytes of a row after the full alignment */
  uint32_t* minimal_row_bytes; /**< bytes of a row after the minimal alignment */
  uint32_t* aligned_height;    /**< rows of elements after the full alignment */
} AlignInBytesResult;

/* ------------------------------------------------------------------------------------------------
 * Identification
 * --------------------------------------------------------------------------------------------- */

/**
 * Builds the UUID of a device: the words 0x5A52, family_id, model_code, rev_id.
 *
 * @param out         16 writable bytes, any alignment.
 * @param out_length  bytes at `out`, signed; 16 or more.
 * @param family_id   word 1, any value.
 * @param model_code  word 2, any value.
 * @param rev_id      word 3, any value.
 * @return 0, and exactly 16 bytes are written; or -1 after "Length of uuid array is too small" when
 *         out_length is below 16, and nothing is written.
 */
KORVEL_API int32_t KORVEL_CALL get_device_uuid(uint8_t* out, int32_t out_length, uint32_t family_id,
                                               uint32_t model_code, uint32_t rev_id);

/**
 * Builds the UUID of a device with a caller's own word 0.
 *
 * @param word_0  stands as word 0, its upper 16 bits 0.
 *
 * Other arguments, result and message as for get_device_uuid().
 */
KORVEL_API int32_t KORVEL_CALL get_override_device_uuid(uint8_t* out, int32_t out_length,
                                                        uint32_t family_id, uint32_t model_code,
                                                        uint32_t rev_id, uint16_t word_0);

/**
 * Builds the UUID of this library's layouts: the words 4, 1 (the driver version), 3 (the
 * layout version) and 0.
 *
 * Arguments, result and message as for get_device_uuid().
 */
KORVEL_API int32_t KORVEL_CALL get_driver_uuid(uint8_t* out, int32_t out_length);

/**
 * Prints a UUID as 32 lower-case hexadecimal digits in the groups 8-4-4-4-12, bytes in storage
 * order: get_driver_uuid()'s is 04000000-0100-0000-0300-000000000000.
 *
 * @param text         receives the text and its terminator. What does not fit is cut off, and the
 *                     terminator stands last; untouched when text_size is 0 or negative.
 * @param text_size    bytes at `text`, signed; 37 hold the whole text.
 * @param uuid         16 readable bytes, any alignment.
 * @param uuid_length  16.
 * @return 0; -1 without a message when the text did not fit; -1 after "Bad uuid length %u" when
 *         uuid_length is not 16, and nothing is written.
 */
KORVEL_API int32_t KORVEL_CALL uuid_to_str(char* text, int32_t text_size, const uint8_t* uuid,
                                           uint32_t uuid_length);

/**
 * Tells whether the GPU can run a secure (protected-content) context. Asks the device afresh on
 * every call and keeps nothing.
 *
 * @return the device's own word, non-zero for yes; 0 when the device cannot be opened or queried; 0
 *         after "Failed to open HXL Library!!!!" when the services library cannot be opened.
 */
KORVEL_API uint32_t KORVEL_CALL isSecureContextSupportedByGpu(void);

/**
 * GPU. The pixel alignment, a property of the chip.
 *
 * @return elements: 64 where the chip has the property, 1 where it has not.
 */
KORVEL_API uint32_t KORVEL_CALL get_gpu_pixel_alignment(void);

/**
 * GPU. The alignment of a slice pitch: the least common multiple of two properties of the chip, the
 * tiling mode's own alignment (tiled 4096, linear 64) and the base alignment (4096).
 *
 * It asks for the GPU once for each of the two: while the services library cannot be opened, or the
 * device reports the chip id 0xFFFFFFFF, a call tries twice and leaves two sets of the messages of
 * the identification. Where the second try alone finds the GPU, the mode's own alignment counts as
 * one that the chip has not.
 *
 * @param tiling_mode  1 tiled, any other value linear.
 * @return bytes: 4096 where the chip has both properties, and tiled also where it has the base
 *         alignment alone; else 0.
 *
 * Faults: linear on a chip that has neither property, an unknown chip among them.
 */
KORVEL_API uint32_t KORVEL_CALL get_slice_pitch_alignment(uint32_t tiling_mode);

/* ------------------------------------------------------------------------------------------------
 * Formats
 * --------------------------------------------------------------------------------------------- */

/**
 * GPU. Tells whether the GPU can render to a format.
 *
 * @param format             any value; one that the family does not list answers 0 without a
 *                           message.
 * @param depth_stencil_use  non-zero asks about use as a depth/stencil target, 0 about colour.
 * @return 1 or 0; 0 after "Unknown Family ID %u" on an unknown chip.
 */
KORVEL_API uint32_t KORVEL_CALL isFormatRenderableByGpu(int32_t format, int32_t depth_stencil_use);

/**
 * GPU. Tells whether the GPU can sample from a format.
 *
 * @param format              any value; one that the family does not list answers 0 without a
 *                            message.
 * @param sample_count        samples of the resource; 0 and 1 both mean single-sampled.
 * @param depth_stencil_view  non-zero when the format is read as a depth/stencil resource.
 * @return 1 or 0; 0 after "Unknown Family ID %u" on an unknown chip.
 */
KORVEL_API uint32_t KORVEL_CALL isFormatSampleableByGpu(int32_t format, uint32_t sample_count,
                                                        int32_t depth_stencil_view);

/**
 * GPU. Tells whether surfaces of a format may be kept in bandwidth compression (UBWC).
 *
 * @param format  any value; one that is not listed answers 0.
 * @return 1 or 0; 0 on an unknown chip. Never a message beyond those of the identification.
 */
KORVEL_API uint32_t KORVEL_CALL isUBWCSupportedByGpu(uint32_t format);

/**
 * GPU, asked only when the arguments pass. Turns the size in texels of a surface of a block format
 * into its size in blocks: the width rounded up to the pixel alignment, the height as it is.
 *
 * @param texel_width     texels, 0 or more.
 * @param texel_height    texels, 0 or more.
 * @param format          a block format.
 * @param ignored_1       accepted and not read.
 * @param ignored_2       accepted and not read.
 * @param ignored_3       accepted and not read.
 * @param aligned_width   receives blocks of a row, a multiple of get_gpu_pixel_alignment().
 * @param aligned_height  receives rows of blocks.
 * @param bpp             receives bytes of a block, 8 or 16.
 *
 * Messages, the first that applies:
 *   "Invalid texel width or texel height: W = %d, H = %d"
 *       A size is negative. All three outputs become 1; they are stored without a look at the
 *       pointers.
 *   "Not a compressed format 0x%x"
 *       Nothing is written.
 *   "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x "
 *       An output pointer is null; the low 32 bits of the three are printed. Nothing is written.
 */
KORVEL_API void KORVEL_CALL compute_compressedfmt_aligned_width_and_height(
    int32_t texel_width, int32_t texel_height, uint32_t format, uint64_t ignored_1,
    uint64_t ignored_2, uint64_t ignored_3, uint32_t* aligned_width, uint32_t* aligned_height,
    uint32_t* bpp);

/* ------------------------------------------------------------------------------------------------
 * Alignment
 *
 * Common to the entries of this section:
 *   Sizes are signed 32-bit. Results are unsigned 32-bit and wrap. The output pointers are not
 *   looked at. There is no failure result.
 *   "Invalid width or height: W = %d, H = %d"
 *       A size is negative. Both outputs become 1; the chip is not looked at.
 *   "Unknown Chip ID %d"
 *       The chip is not a supported one. Both outputs become the inputs.
 * --------------------------------------------------------------------------------------------- */

/**
 * GPU. Checks a size and the chip, and aligns nothing: when both pass, the two outputs keep what
 * they held. Callers that need aligned sizes use compute_fmt_aligned_width_and_height().
 *
 * @param width       pixels.
 * @param height      pixels.
 * @param a3          accepted and not read.
 * @param a4          accepted and not read.
 * @param a5          accepted and not read.
 * @param a6          accepted and not read.
 * @param out_width   written as the section says when a check fails.
 * @param out_height  the same.
 */
KORVEL_API void KORVEL_CALL compute_aligned_width_and_height(int32_t width, int32_t height,
                                                             uint32_t a3, uint32_t a4, uint32_t a5,
                                                             uint32_t a6, uint32_t* out_width,
                                                             uint32_t* out_height);

/**
 * GPU. The width that compute_aligned_width_and_height() leaves for `width` x 1 when it held 0
 * before. Messages come under that entry's name.
 *
 * @param width        pixels.
 * @param a2           accepted and without effect.
 * @param tiling_mode  accepted and without effect.
 * @param a4           accepted and without effect.
 * @param a5           accepted and without effect.
 * @return 0 on a supported chip, `width` on any other, 1 for a negative width.
 */
KORVEL_API uint32_t KORVEL_CALL compute_surface_padding(int32_t width, uint32_t a2,
                                                        int32_t tiling_mode, uint32_t a4,
                                                        uint32_t a5);

/**
 * GPU. The full alignment: the size that a plane takes for a format, sample count and tiling mode.
 *
 * @param width                 elements, 0 or more.
 * @param height                rows of elements, 0 or more.
 * @param plane                 plane number; a plane that the format lacks has elements of 0 bytes.
 * @param format                any format number.
 * @param samples               samples of an element.
 * @param tiling_mode           1 tiled, any other value linear.
 * @param selector              2 picks the second way of padding pitches, any other value the
 *                              first; both come to the same pitches.
 * @param min_padded_row_bytes  signed bytes; linear rows of at most this many are not pitch-padded.
 * @param out_width             receives the aligned width, elements.
 * @param out_height            receives the aligned height, rows of elements.
 *
 * A linear row above min_padded_row_bytes is limited as well as padded: to 16384 elements, and on
 * family 7 to what the chip's model has, which is 0 for a model that lists no limit. The result may
 * then be less than `width`. Video, block and odd-sized elements are neither padded nor limited.
 *
 * Faults, on supported chips: a tiled plane with elements of 0 bytes, or 0 samples, on family 5; a
 * linear plane of a block or packed format with 0 samples on families 6 and 7. Samples whose
 * product with the bytes of an element wraps to 0 count as 0 samples.
 */
KORVEL_API void KORVEL_CALL compute_fmt_aligned_width_and_height(
    int32_t width, int32_t height, uint32_t plane, uint32_t format, uint32_t samples,
    uint32_t tiling_mode, uint32_t selector, int32_t min_padded_row_bytes, uint32_t* out_width,
    uint32_t* out_height);

/**
 * GPU. The minimal alignment: the smallest size that the hardware takes, with an explicit divisor
 * of the pitch alignment. Arguments as for compute_fmt_aligned_width_and_height(), and:
 *
 * @param tiling_allowed      whether a linear surface may become tiled later: 1 (families 6 and 7)
 *                            or any value but 0 (family 5) aligns its width to whole tiles.
 * @param divisor             divides the alignment of a linear width. That alignment is bytes: the
 *                            bytes of an element as divisor make it elements. Where the quotient
 *                            comes to 0 the width is not aligned to it. Tiled planes do not use it.
 * @param want_extra_padding  non-zero adds the chip's extra padding to the size first (families 6
 *                            and 7; family 5 has none).
 *
 * Faults, on supported chips: a divisor of 0 for a linear plane; a tiled plane as for that entry; a
 * linear plane with 0 samples that may not become tiled, of a block or packed format on families 6
 * and 7, of a block format or one of 107, 614 and 654-656 on family 5.
 */
KORVEL_API void KORVEL_CALL compute_fmt_minimal_aligned_width_and_height(
    int32_t width, int32_t height, uint32_t plane, uint32_t format, uint32_t samples,
    uint32_t tiling_mode, uint32_t tiling_allowed, uint32_t selector, int32_t min_padded_row_bytes,
    uint32_t divisor, uint32_t want_extra_padding, uint32_t* out_width, uint32_t* out_height);

/**
 * GPU. The minimal and the full alignment at once, in bytes of a row. On a supported chip a surface
 * narrower than 16 becomes linear first: 0 is stored to the caller's tiling mode. For a block format
 * the width, although elements, is held against 16 times the texels of a block's width. A negative
 * width is narrow, too.
 *
 * compute_fmt_minimal_aligned_width_and_height() and compute_fmt_aligned_width_and_height() both
 * run in every case, in this order, and messages come under their names: a negative size or an
 * unsupported chip is told twice. The minimal one gets the bytes of the plane's element as divisor,
 * no extra padding, and tiling_allowed 0 for a surface that is too narrow, else 1.
 *
 * @param params  what is asked; only *params->tiling_mode may be written.
 * @param result  three pointers, each written in every case. Bytes of a row are the aligned width
 *                times the bytes of an element in the format's record (8 for 20 and 551), bytes
 *                that are no power of two taken as the next larger one; tiled, times the samples.
 *
 * Faults, on supported chips: a plane that the format lacks, linear, or tiled on family 5; and
 * those of the two entries.
 */
KORVEL_API void KORVEL_CALL compute_fmt_aligned_width_and_height_in_bytes(
    const AlignInBytesParams* params, const AlignInBytesResult* result);

/**
 * GPU. The full alignment with, on families 6 and 7, the divisor and the extra padding of the
 * minimal one; family 5 ignores both. The layout entries align their planes with it. Arguments as
 * for the two.
 *
 * Faults, on supported chips: those of compute_fmt_aligned_width_and_height(); a divisor of 0 for a
 * linear plane on families 6 and 7.
 */
KORVEL_API void KORVEL_CALL compute_fmt_aligned_width_and_height_fdm(
    int32_t width, int32_t height, uint32_t plane, uint32_t format, uint32_t samples,
    uint32_t tiling_mode, uint32_t selector, int32_t min_padded_row_bytes, uint32_t divisor,
    uint32_t want_extra_padding, uint32_t* out_width, uint32_t* out_height);

/* ------------------------------------------------------------------------------------------------
 * Layout
 *
 * What the initialisers do not refuse, and answer without a message:
 *   - The bytes of an image, rows x pitch, are counted in 32 bits: 4 GiB and more wrap. An image of
 *     16384 x 16384 elements of 16 bytes comes to 0 bytes, and so does its surface. The pitch wraps
 *     as well. Sums of images, and slices, are counted in 64 bits.
 *   - A linear row may be cut at the pitch limit, see compute_fmt_aligned_width_and_height(): the
 *     elements beyond it have no place.
 *   - Levels are not held against the size, nor planes against the format: levels behind the last
 *     one of the size are 1 x 1 texel again.
 *   - For an unknown chip, whose calls leave messages, sizes are not aligned, and its base alignment
 *     of 0 leaves 0 bytes of every image, of a chain's slices in the same way.
 *   - Validators refuse what such requests lead to: more than 2048 slices, no planes, a level of
 *     0 bytes, flag buffers on a linear surface, a tiling mode beyond 1.
 * --------------------------------------------------------------------------------------------- */

/**
 * The size of a layout blob.
 *
 * @return bytes: 5536.
 */
KORVEL_API uint32_t KORVEL_CALL korvel_get_metadata_blob_size(void);

/**
 * The bytes that the GPU allocation of a laid-out surface must have.
 *
 * @param blob  a filled LayoutMetadata of any alignment, or null. Only its record_offset and the
 *              record's total_size and size are read, once each, and none of them is checked: 48
 *              bytes must be readable at blob + record_offset. Of a blob that comes from elsewhere
 *              hold record_offset against its length first.
 * @return bytes: total_size - size; 0 for null.
 */
KORVEL_API uint64_t KORVEL_CALL korvel_get_aligned_gpu_buffer_size(const void* blob);

/**
 * GPU. Lays out a surface of one level and describes it in a blob.
 *
 * @param blob         korvel_get_metadata_blob_size() writable bytes, 8-byte aligned; null fails
 *                     without a message once the arguments have passed.
 * @param width        texels, 1 or more.
 * @param height       texels, 1 or more.
 * @param depth        array slices or depth, 1 or more; validators accept up to 2048.
 * @param format       1 to 721; depth/stencil formats need tiling mode 1.
 * @param samples      1, 2, 4 or 8.
 * @param tiling_mode  1 tiled, 0 linear. Any other value lays out as linear with an alignment of 0,
 *                     and total_size then equals size.
 * @param flags        LAYOUT_FLAG_...; other bits are ignored.
 * @param planes       0 to 3. It is not compared with the format's own number of planes.
 * @return 0; or 0xFFFFFFFF, and the blob is untouched.
 *
 * Planes start where the planes before them end, counted with one slice each. A flag buffer stands
 * in front of its plane's image, and both together make the slice pitch. Every plane is laid out
 * with the whole width and height and with the bytes of an element in the format's record: chroma
 * planes are not made smaller. Linear rows longer than the chip's threshold (512 bytes) are
 * pitch-padded.
 *
 * Messages, the first that applies, under the name validate_memory_layout_input_params:
 *   "Invalid width, height, or depth: W = %d, H = %d, D = %d"
 *   "Unknown Format %u"
 *   "Invalid configuration, cannot support linear depth/stencil"
 *   "Invalid input sample count %u"
 * or under its own name "Invalid plane count %u"; each is followed, under its own name, by
 *   "Memory Layout input parameter validation failed!"
 * When the arguments pass, those of compute_fmt_aligned_width_and_height_fdm() under its name: an
 * unsupported chip once for each plane of each level, and a block format whose width near 2^31 does
 * not fit after rounding.
 *
 * Left unwritten: reserved_60, every padding word, levels beyond the first, planes beyond `planes`,
 * the flag words but flag_valid of a plane without a flag buffer, the LRZ words but the two valid
 * ones, and the extra buffer's words but extra_valid when there is none.
 *
 * Faults: as compute_fmt_aligned_width_and_height() for each plane; and a flag buffer of a format
 * whose sample tile is not known (619 and 659 on families 6 and 7; 658 and 709-711 on family 6).
 */
KORVEL_API uint32_t KORVEL_CALL korvel_init_memory_layout(void* blob, int32_t width, int32_t height,
                                                          int32_t depth, uint32_t format,
                                                          uint32_t samples, uint32_t tiling_mode,
                                                          uint64_t flags, uint32_t planes);

/**
 * GPU. The second half of korvel_init_memory_layout(): lays out the planes into a record whose
 * first words, up to `levels`, are set. Nothing about the arguments is checked but what the
 * messages say.
 *
 * @param record       a MemoryLayout, 8-byte aligned, not null; its `levels`, `alignment` and
 *                     `size` are read, once each and before anything is checked or written. What
 *                     has been written is never read back.
 * @param width        texels; below 1 counts as 1.
 * @param height       texels; below 1 counts as 1.
 * @param depth        array slices or depth; sizes are multiplied by its 64-bit sign extension.
 * @param format       any format number.
 * @param samples      samples of an element.
 * @param tiling_mode  1 tiled, any other value laid out as linear and stored as it is.
 * @param flags        LAYOUT_FLAG_...; other bits are ignored.
 * @param planes       0 to 3.
 *
 * With more than one level, level l takes the size shifted right by l, at least 1, and its planes
 * follow those of level l - 1.
 *
 * Messages: "Invalid level count %u" for levels above 15, else "Invalid plane count %u" for planes
 * above 3; nothing is written then. Those of compute_fmt_aligned_width_and_height_fdm() as for
 * korvel_init_memory_layout().
 *
 * Left unwritten: the words up to `levels` but total_size, and what korvel_init_memory_layout()
 * leaves, `levels` levels being written.
 *
 * Faults: as korvel_init_memory_layout(); with samples other than 1, 2, 4 and 8 also a flag buffer
 * on families 6 and 7, but for formats whose sample tile goes by the format alone (the video
 * formats). Samples whose product with the bytes of an element wraps to 0 count as 0 samples.
 */
KORVEL_API void KORVEL_CALL korvel_init_single_level_surface(MemoryLayout* record, int32_t width,
                                                             int32_t height, int32_t depth,
                                                             uint32_t format, uint32_t samples,
                                                             uint32_t tiling_mode, uint64_t flags,
                                                             uint32_t planes);

/**
 * GPU. Lays out a mip chain into a record whose first words, up to `levels`, are set. Each plane's
 * levels form one chain, and an array slice is a whole chain; the flag buffers of a tiled surface
 * of one plane stand together in front of the images.
 *
 * @param record  a MemoryLayout, 8-byte aligned, not null; its `levels`, `alignment` and `size` are
 *                read as by korvel_init_single_level_surface(). For a tiled surface of one plane
 *                without flag buffers the flag_size of every level is read as well, once, and
 *                counted: zero the record first.
 * @param width   texels, rounded up to a multiple of 64 first; then 2^31 and more counts as 1, and
 *                so does 0, although a flag buffer takes exactly 2^31 as it is.
 * @param height  texels; 0, and 2^31 and more, counts as 1, although a flag buffer takes exactly
 *                2^31 as it is.
 *
 * Other arguments, messages and what is left unwritten as for korvel_init_single_level_surface().
 * With planes 0 a level's slices, tiled, size and planes stay as they were. A linear surface of one
 * plane gets flag_valid, flag_size and flag_pitch where it would have a flag buffer, but no
 * flag_offset and no flag_slice_pitch: only tiled surfaces have room for it. On a tiled surface of
 * one plane flag_offset and flag_slice_pitch are written at every level, with a flag buffer or
 * without. The size of a level of several planes is that of its last plane; that of a tiled surface
 * of one plane leaves the flag buffers out. No row is pitch-padded.
 *
 * Faults: those of korvel_init_single_level_surface(); an element size times samples of 0 on
 * families 6 and 7 in linear mode.
 */
KORVEL_API void KORVEL_CALL korvel_init_multi_level_surface(MemoryLayout* record, uint32_t width,
                                                            uint32_t height, int32_t depth,
                                                            uint32_t format, uint32_t samples,
                                                            uint32_t tiling_mode, uint64_t flags,
                                                            uint32_t planes);

/* ------------------------------------------------------------------------------------------------
 * Validation
 *
 * Both validators read a record of any alignment, change nothing, never ask for the GPU, and use no
 * number of the record before it has been checked. They stop at the first rule that fails, with
 * exactly one message. The rules follow in their order, each with the words its message begins
 * with. UUIDs in messages are printed as uuid_to_str() prints them.
 *
 * A record may lie in memory that others change while it is read. No word is read again after a
 * check relied on it: each is read once and used as the value that was checked, so that a verdict
 * holds for the words that were seen, whatever stands there afterwards. A caller who uses the
 * record afterwards copies it first, `length` bytes of it being there, and validates and uses the
 * copy. Of the copy, the words from copy.size on are not the record's.
 *
 *   MemoryLayout copy = {0};
 *   if (length < KORVEL_LAYOUT_BYTES_VERSION_1) return 0;
 *   memcpy(&copy, shared, length < sizeof copy ? length : sizeof copy);
 *   if (validate_resource_memory_layout_metadata(&copy, device, driver) != 0) return 0;
 *   if (copy.size > length) return 0;
 *
 * MemoryLayout, under the name validate_resource_memory_layout_metadata:
 *   signature is KORVEL_LAYOUT_SIGNATURE      "Metadata has bad signature"
 *   device_uuid is the caller's               "Metadata device version mismatch"
 *   word 1 of driver_uuid is the caller's     "Metadata driver version mismatch"
 *   its word 2 is the caller's, or 1, 2 or 3  "Metadata memory layout version mismatch"
 *   size is 5512 when word 2 is the
 *     caller's, else its version's            "Size of metadata is mismatched"
 *   alignment is a power of two               "Metadata alignment is not pot"
 *   total_size is not 0, the surface's bytes
 *     are a multiple of alignment             "Metadata surface size is not aligned"
 *   samples is 1, 2, 4 or 8                   "Metadata samples invalid count"
 *   levels is 1 to 15                         "Metadata levels is invalid value"
 *   format is below 722                       "Metadata format is not recognized"
 *
 * SurfaceMetadata, under the name validate_surface_metadata:
 *   signature is KORVEL_SURFACE_SIGNATURE     "Metadata has bad signature"
 *   size is 5300                              "Size of metadata is mismatched"
 *   device_uuid is the caller's               "Metadata device version mismatch"
 *   word 0 of driver_uuid is the caller's     "Metadata driver version mismatch"
 *   guid is not 0                             "Metadata guid has invalid value"
 *   alignment and all that follow             as for a MemoryLayout
 *
 * Bytes of the surface are total_size - size, 64 bits for a SurfaceMetadata. For a MemoryLayout
 * they are the low 32 bits of that difference, sign-extended. A buffer ends at
 * offset + (slices - 1) x slice pitch + size, a fast-clear buffer, which serves all slices, at
 * offset + size; an end that does not fit 64 bits is out of bounds. The products of pitches, widths
 * and heights wrap at 32 bits.
 *
 * What these rules let pass is a fixed property of the formats:
 *   - A total_size below the record's own size makes the bytes of the surface wrap to a number near
 *     2^64: the bounds refuse next to nothing.
 *   - So do they for a MemoryLayout whose surface has bit 31 of its bytes set: 2^31 to 2^32 - 1
 *     bytes and each 2^32 more. Else the bound is what is left of the bytes modulo 2^32.
 *   - A product that wraps is small: an image of 65536 rows with a pitch of 65536 bytes passes with
 *     a size of 4096 bytes, and a row of 65536 elements of 65536 bytes with a pitch of 4096.
 *   - A level's size may exceed the surface by the record's size, and the extra buffer of a
 *     MemoryLayout is not looked at.
 *   - Buffers may overlap, of one level and of several. Nothing is held against format or samples;
 *     offsets need not be aligned; the rows of a flag buffer are not counted; linear_fallback is
 *     any number, and so are the allocated width and height of a SurfacePlane but for 0.
 *
 * "Accepted" means that every image, flag, LRZ and fast-clear buffer of the record's levels and
 * planes ends inside the surface's allocation, in exact arithmetic, when four conditions hold:
 *   1. size is 5472, 5504 or 5512 for a MemoryLayout, 5300 for a SurfaceMetadata; accepted records
 *      have it
 *   2. total_size >= size
 *   3. for a MemoryLayout: total_size - size <= 0x7FFFFFFF
 *   4. total_size - size <= the bytes of the allocation
 * For the rows of an image to lie inside it, two more must hold, of a SurfaceMetadata with the
 * actual height and width; for those of an LRZ buffer the first one, with its own words:
 *   (uint64_t)image_pitch * image_height <= image_size
 *   (uint64_t)image_element_size * image_width <= image_pitch
 *
 * Then level by level:
 *   size is 1 to total_size                   "Metadata level size is invalid value"
 *   slices is 1 to 2048                       "Metadata level slices is invalid value"
 *   tiled is 0 or 1                           "Metadata level tiled is invalid value"
 *   planes is 1 to 3                          "Metadata level planes is invalid value"
 *   lrz_valid is 0 or 1                       "Metadata level lrz valid bit is invalid value"
 *   lrz_fc_valid is 0 or 1                    "Metadata level lrz fc valid bit is invalid value"
 *   the two are equal                         "Metadata level lrz valid bits mismatch"
 *   no tiled level follows a linear one       "Metadata level tiled bit transitioned ..."
 *   linear after tiled: with linear_fallback  "Metadata level has linear fallback but ..."
 *   lrz_valid is level 0's                    "Metadata lrz buffer is present for some levels ..."
 * and where lrz_valid is 1:
 *   the LRZ buffer ends within the surface    "Metadata level lrz buffer exceeds surface bounds"
 *   pitch x height <= size <= slice pitch     "Metadata level lrz size mismatch"
 *   lrz_pitch >= lrz_width                    "Metadata level lrz pitch mismatch"
 *   lrz_width and lrz_height are not 0        "Metadata level lrz dimensions are invalid"
 *   the fast-clear buffer ends within it      "Metadata level lrz fc buffer exceeds ..."
 * and plane by plane, with the actual width and height of a SurfacePlane in the middle two:
 *   the image ends within the surface         "Metadata level image buffer exceeds surface bounds"
 *   pitch x height <= size <= slice pitch     "Metadata level image size mismatch"
 *   pitch >= element size x width             "Metadata level image pitch mismatch"
 *   no width, height, element size is 0       "Metadata level image invalid dimensions"
 *   flag_valid is 0 or 1                      "Metadata level flagbuffer valid bit invalid"
 * and where flag_valid is 1:
 *   the level is tiled                        "Metadata level flagbuffer enabled but tiling ..."
 *   the flag buffer ends within the surface   "Metadata level flagbuffer buffer exceeds ..."
 *   pitch is not 0, pitch <= slice pitch      "Metadata level flagbuffer pitch mismatch"
 *   size <= slice pitch                       "Metadata level flagbuffer slice pitch mismatch"
 * --------------------------------------------------------------------------------------------- */

/**
 * Decides whether a stored MemoryLayout may be trusted.
 *
 * @param record       a MemoryLayout of any alignment: 5472 readable bytes, and from there on as
 *                     many as its version has.
 * @param device_uuid  16 bytes of any alignment, as get_device_uuid() makes them.
 * @param driver_uuid  16 bytes of any alignment, as get_driver_uuid() makes them.
 * @return 0 when valid, 0xFFFFFFFF after the message of the first rule that fails.
 */
KORVEL_API uint32_t KORVEL_CALL validate_resource_memory_layout_metadata(
    const void* record, const uint8_t* device_uuid, const uint8_t* driver_uuid);

/**
 * Decides whether a stored SurfaceMetadata may be trusted.
 *
 * @param record       a SurfaceMetadata of any alignment: 5300 readable bytes.
 * @param device_uuid  16 bytes of any alignment, as get_device_uuid() makes them.
 * @param driver_uuid  16 bytes of any alignment, as get_driver_uuid() makes them.
 * @return 0 when valid, 0xFFFFFFFF after the message of the first rule that fails.
 */
KORVEL_API uint32_t KORVEL_CALL validate_surface_metadata(const void* record,
                                                          const uint8_t* device_uuid,
                                                          const uint8_t* driver_uuid);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KORVEL_UTILS_H */
