/* clang-format off: the lists below are laid out by hand. */
/*
 * korvel_utils: where every byte of a surface lies in GPU memory.
 *
 * This header is the whole public interface, for C99 and for C++, and its manual. All functions are
 * plain synchronous calls with C linkage. They keep no handle, allocate nothing and touch no file.
 *
 * Terms
 *   element       one texel of an ordinary format, one block of a block-compressed one.
 *   pitch         bytes from one row of elements to the next.
 *   slice         one array layer or depth step of a plane; slice pitch is the distance between
 * two. plane         one separately stored part of a multi-planar format (luma, chroma, ...), 0
 * to 2. level         one mip level, 0 to 14. flag buffer   the compression metadata of a plane
 * kept in bandwidth compression (UBWC). tiling mode   1 = tiled, 0 = linear. The alignment entries
 * take any other value as linear. format        a format number: 1-115 the DXGI_FORMAT values,
 * 116-118 three further four-byte formats, 133-187 the ASTC formats, 501-686 and 709-721 the
 * library's own. A number of 722 or more has no record: the predicates answer 0 for it, the
 * alignment entries treat it as a one-byte single-plane format.
 *
 * The GPU
 *   The entries marked "GPU" below work for the GPU of this machine. The first of them that runs
 *   asks the services library for the chip id of device 1; the answer is kept for the life of the
 *   process. When the services library cannot be opened, the call goes on with the values of an
 *   unknown chip and the next call asks again; when the device cannot be opened or queried, the
 *   chip id is 0 for good. Messages of the identification:
 *     ReadGpuID_from_khxl   "Failed to open HXL Library!!!!"
 *     korvel_get_family_id, korvel_get_chip_id, korvel_get_rev_id
 *                           "Unknown HXL chip ID %u"   (one each for a chip that has no row)
 *
 * Messages
 *   Every diagnostic goes to the services library's os_alog with level 1, the tag "Korvel-UNKNOWN",
 *   0, the source line, the name of the reporting function, a printf format and its arguments.
 *   Where an entry below lists messages, its own name is the reporting function unless another is
 *   named.
 *
 * Threads
 *   Every entry may be called from any thread at any time. The library takes no lock: first calls
 *   that race may each query the device and then store the same identity. Two calls must not write
 *   the same output at once; that is for the caller to arrange.
 *
 * Faults
 *   A division by 0 (each entry says where one can happen) is the platform's fatal
 *   integer-divide-by-zero fault on every target. It is never a silent number.
 */
/* clang-format on */
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

/* The calling convention of the entries; the platform's own unless the including program says. */
#ifndef KORVEL_CALL
#define KORVEL_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------------------------
 * Constants
 * --------------------------------------------------------------------------------------------- */

/** Result of a call that can fail: success. */
#define KORVEL_SUCCESS UINT32_C(0)
/** Result of a call that can fail: failure, after one message unless the entry says else. */
#define KORVEL_FAILURE UINT32_C(0xFFFFFFFF)

/** Tiling modes. */
#define KORVEL_TILING_LINEAR UINT32_C(0)
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
#define KORVEL_MAX_SLICES 2048        /**< slices of a level */
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
 * Stored records. All integers are little-endian; each offset is asserted at the end of this
 * header. "not written" marks the fields that no entry of the library ever stores to.
 * --------------------------------------------------------------------------------------------- */

/** The first 24 bytes of a layout blob. */
typedef struct MetadataHeader {
  uint32_t magic;          /**< KORVEL_HEADER_MAGIC */
  uint32_t header_version; /**< 1 */
  uint32_t blob_size;      /**< 5536 bytes */
  uint32_t record_kind;    /**< 3 */
  uint32_t record_offset;  /**< bytes from the blob's start to its MemoryLayout: 24 */
  uint32_t record_size;    /**< 5512 bytes */
} MetadataHeader;

/** One plane of one level. */
typedef struct PlaneLayout {
  uint64_t image_offset;       /**< bytes, slice 0 of the image in the surface */
  uint64_t image_size;         /**< bytes of one slice's image */
  uint32_t image_pitch;        /**< bytes a row */
  uint32_t padding_20;         /**< not written */
  uint64_t image_slice_pitch;  /**< bytes from slice to slice */
  uint32_t image_element_size; /**< bytes an element, all samples included */
  uint32_t image_width;        /**< aligned, elements */
  uint32_t image_height;       /**< aligned, rows of elements */
  uint32_t padding_44;         /**< not written */
  uint32_t flag_valid;         /**< 1 when the plane has a flag buffer, else 0 */
  uint32_t padding_52;         /**< not written */
  uint64_t flag_offset;        /**< bytes */
  uint64_t flag_size;          /**< bytes */
  uint32_t flag_pitch;         /**< bytes a row of the flag buffer */
  uint32_t padding_76;         /**< not written */
  uint64_t flag_slice_pitch;   /**< bytes from slice to slice */
} PlaneLayout;

/** One mip level. The writers store only 0 to the two lrz valid words and leave the other lrz
 * words. */
typedef struct LevelLayout {
  uint32_t slices;     /**< array slices or depth, 1 to 2048 */
  uint32_t tiled;      /**< the tiling mode: 1 tiled, 0 linear */
  uint64_t size;       /**< bytes of the level */
  uint32_t planes;     /**< valid entries of plane[] */
  uint32_t padding_20; /**< not written */
  PlaneLayout plane[KORVEL_MAX_PLANES];
  uint32_t lrz_valid;       /**< 1 when a low-resolution depth buffer exists */
  uint32_t padding_292;     /**< not written */
  uint64_t lrz_offset;      /**< bytes */
  uint64_t lrz_size;        /**< bytes */
  uint32_t lrz_pitch;       /**< bytes a row */
  uint32_t padding_316;     /**< not written */
  uint64_t lrz_slice_pitch; /**< bytes from slice to slice */
  uint32_t lrz_width;       /**< elements */
  uint32_t lrz_height;      /**< rows */
  uint32_t lrz_fc_valid;    /**< 1 when the fast-clear buffer exists; equals lrz_valid */
  uint32_t padding_340;     /**< not written */
  uint64_t lrz_fc_offset;   /**< bytes */
  uint64_t lrz_fc_size;     /**< bytes */
} LevelLayout;

/**
 * A surface's memory layout, version 3. Version 1 ends after level[] (5472 bytes), version 2 after
 * extra_slice_pitch (5504 bytes); the validator accepts all three.
 */
typedef struct MemoryLayout {
  uint32_t signature;                     /**< KORVEL_LAYOUT_SIGNATURE */
  uint32_t size;                          /**< bytes of this record: 5512 */
  uint8_t device_uuid[KORVEL_UUID_BYTES]; /**< words 0x5A52, family id, model code, revision id */
  uint8_t driver_uuid[KORVEL_UUID_BYTES]; /**< words 4, 1 (driver version), 3 (layout version), 0 */
  uint64_t total_size;                    /**< size + bytes of the surface, aligned */
  uint32_t alignment;                     /**< bytes, power of two */
  uint32_t format;                        /**< format number */
  uint32_t samples;                       /**< 1, 2, 4 or 8 */
  uint32_t reserved_60;                   /**< not written */
  uint32_t linear_fallback;             /**< 1 when lower levels of a tiled surface may be linear */
  uint32_t levels;                      /**< valid entries of level[], 1 to 15 */
  LevelLayout level[KORVEL_MAX_LEVELS]; /**< entries at and beyond `levels` are not written */
  uint32_t extra_valid;                 /**< 1 when the extra buffer exists, else 0 */
  uint32_t padding_5476;                /**< not written */
  uint64_t extra_offset;                /**< bytes */
  uint64_t extra_size;                  /**< bytes: depth x 8224 */
  uint64_t extra_slice_pitch;           /**< bytes: 8224 */
  uint32_t extended;                    /**< 1 when both extra flags were given, else 0 */
  uint32_t padding_5508;                /**< not written */
} MemoryLayout;

/** The blob that a caller stores with a resource. */
typedef struct LayoutMetadata {
  MetadataHeader header;
  MemoryLayout layout;
} LayoutMetadata;

/* 64-bit words of the surface record stand at multiples of 4. */
#pragma pack(push, 4)

/** One plane of one level of a surface record. */
typedef struct SurfacePlane {
  uint64_t image_offset;       /**< bytes */
  uint64_t image_size;         /**< bytes */
  uint32_t image_pitch;        /**< bytes a row */
  uint64_t image_slice_pitch;  /**< bytes */
  uint32_t image_element_size; /**< bytes */
  uint32_t image_width;        /**< allocated, elements */
  uint32_t image_height;       /**< allocated, rows */
  uint32_t actual_width;       /**< elements of the image itself */
  uint32_t actual_height;      /**< rows of the image itself */
  uint32_t flag_valid;         /**< 0 or 1 */
  uint64_t flag_offset;        /**< bytes */
  uint64_t flag_size;          /**< bytes */
  uint32_t flag_pitch;         /**< bytes a row */
  uint64_t flag_slice_pitch;   /**< bytes */
} SurfacePlane;

/** One mip level of a surface record. */
typedef struct SurfaceLevel {
  uint32_t slices; /**< 1 to 2048 */
  uint32_t tiled;  /**< 0 or 1 */
  uint64_t size;   /**< bytes */
  uint32_t planes; /**< 1 to 3 */
  SurfacePlane plane[KORVEL_MAX_PLANES];
  uint32_t lrz_valid;       /**< 0 or 1 */
  uint64_t lrz_offset;      /**< bytes */
  uint64_t lrz_size;        /**< bytes */
  uint32_t lrz_pitch;       /**< bytes a row */
  uint64_t lrz_slice_pitch; /**< bytes */
  uint32_t lrz_width;       /**< elements */
  uint32_t lrz_height;      /**< rows */
  uint32_t lrz_fc_valid;    /**< 0 or 1 */
  uint64_t lrz_fc_offset;   /**< bytes */
  uint64_t lrz_fc_size;     /**< bytes */
  uint8_t unread_320[28];   /**< not read */
} SurfaceLevel;

/** A surface's layout as other driver components record it. The library only checks it. */
typedef struct SurfaceMetadata {
  uint64_t guid;            /**< identifies the surface, not 0 */
  uint64_t total_size;      /**< size + bytes of the surface */
  uint32_t alignment;       /**< bytes, power of two */
  uint32_t format;          /**< format number */
  uint32_t samples;         /**< 1, 2, 4 or 8 */
  uint32_t unread_28;       /**< not read */
  uint32_t linear_fallback; /**< 0 or 1 */
  uint32_t levels;          /**< 1 to 15 */
  SurfaceLevel level[KORVEL_MAX_LEVELS];
  uint8_t device_uuid[KORVEL_UUID_BYTES];
  uint8_t driver_uuid[KORVEL_UUID_BYTES];
  uint32_t size;      /**< bytes of this record: 5300 */
  uint32_t signature; /**< KORVEL_SURFACE_SIGNATURE */
} SurfaceMetadata;

#pragma pack(pop)

/** What compute_fmt_aligned_width_and_height_in_bytes() is asked. */
typedef struct AlignInBytesParams {
  int32_t width;     /**< elements, 0 or more */
  int32_t height;    /**< rows of elements, 0 or more */
  uint32_t plane;    /**< plane index */
  uint32_t format;   /**< format number */
  uint32_t samples;  /**< samples an element */
  uint32_t selector; /**< pitch-padding selector: 2, or any other value for the normal one */
  int32_t min_padded_row_bytes; /**< rows of at most this many bytes are not pitch-padded */
  uint32_t* tiling_mode;        /**< read; set to 0 when the surface is too narrow to tile */
} AlignInBytesParams;

/** Where compute_fmt_aligned_width_and_height_in_bytes() stores its answers. */
typedef struct AlignInBytesResult {
  uint32_t* aligned_row_bytes; /**< bytes of a row after the full alignment */
  uint32_t* minimal_row_bytes; /**< bytes of a row after the minimal alignment */
  uint32_t* aligned_height;    /**< rows after the full alignment */
} AlignInBytesResult;

/* ------------------------------------------------------------------------------------------------
 * Identification
 * --------------------------------------------------------------------------------------------- */

/**
 * Builds the UUID of a device: the words 0x5A52, family_id, model_code, rev_id.
 *
 * @param out         16 writable bytes, any alignment.
 * @param out_length  bytes at `out`, signed; 16 or more.
 * @param family_id, model_code, rev_id  any values.
 * @return 0; or -1 after "Length of uuid array is too small" when out_length is below 16. Then
 * nothing is written. On success exactly 16 bytes are.
 */
KORVEL_API int32_t KORVEL_CALL get_device_uuid(uint8_t* out, int32_t out_length, uint32_t family_id,
                                               uint32_t model_code, uint32_t rev_id);

/** As get_device_uuid(), with a caller's own 16-bit value, zero-extended, as word 0. */
KORVEL_API int32_t KORVEL_CALL get_override_device_uuid(uint8_t* out, int32_t out_length,
                                                        uint32_t family_id, uint32_t model_code,
                                                        uint32_t rev_id, uint16_t word_0);

/**
 * Builds the UUID of this library's layouts: the words 4, 1, 3, 0. Records with another driver or
 * layout version are refused by the validators.
 *
 * Arguments, result and message as for get_device_uuid().
 */
KORVEL_API int32_t KORVEL_CALL get_driver_uuid(uint8_t* out, int32_t out_length);

/**
 * Prints a UUID as 32 lower-case hexadecimal digits in the groups 8-4-4-4-12, bytes in storage
 * order.
 *
 * @param text         receives the text and its terminator; cut to text_size bytes when it is too
 *                     small, untouched when text_size is 0 or negative.
 * @param text_size    bytes at `text`, signed; 37 hold the whole text.
 * @param uuid         uuid_length readable bytes.
 * @param uuid_length  16.
 * @return 0; -1 without a message when the text did not fit; -1 after "Bad uuid length %u" when
 *         uuid_length is not 16. Then nothing is written.
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

/** GPU. @return the pixel alignment in elements: 64 on supported chips, 1 on all others. */
KORVEL_API uint32_t KORVEL_CALL get_gpu_pixel_alignment(void);

/**
 * GPU. The alignment of a slice pitch: the least common multiple of the tiling mode's own alignment
 * and the chip's base alignment.
 *
 * @param tiling_mode  1 tiled, any other value linear.
 * @return bytes; 4096 on supported chips. On an unsupported chip 0 for tiling mode 1; any other
 * mode is a division by 0 there and faults.
 */
KORVEL_API uint32_t KORVEL_CALL get_slice_pitch_alignment(uint32_t tiling_mode);

/* ------------------------------------------------------------------------------------------------
 * Formats
 * --------------------------------------------------------------------------------------------- */

/**
 * GPU. Tells whether the GPU can render to a format.
 *
 * @param format             any value; one that the family does not list answers 0 without a
 * message.
 * @param depth_stencil_use  non-zero asks about use as a depth/stencil target, 0 about colour.
 * @return 1 or 0; 0 after "Unknown Family ID %u" on an unknown chip.
 */
KORVEL_API uint32_t KORVEL_CALL isFormatRenderableByGpu(int32_t format, int32_t depth_stencil_use);

/**
 * GPU. Tells whether the GPU can sample from a format.
 *
 * @param format              any value; one that the family does not list answers 0 without a
 * message.
 * @param sample_count        samples of the resource; 0 and 1 both mean single-sampled.
 * @param depth_stencil_view  non-zero when the format is read as a depth/stencil resource.
 * @return 1 or 0; 0 after "Unknown Family ID %u" on an unknown chip.
 */
KORVEL_API uint32_t KORVEL_CALL isFormatSampleableByGpu(int32_t format, uint32_t sample_count,
                                                        int32_t depth_stencil_view);

/**
 * GPU. Tells whether surfaces of a format may be kept in bandwidth compression (UBWC).
 *
 * @param format  any value; unknown ones answer 0.
 * @return 1 or 0, never a message beyond those of the identification.
 */
KORVEL_API uint32_t KORVEL_CALL isUBWCSupportedByGpu(uint32_t format);

/**
 * GPU, asked only when the arguments pass. Turns the size in texels of a block-compressed surface
 * into its size in blocks: the width rounded up to the pixel alignment, the height as it is.
 *
 * @param texel_width, texel_height  texels, 0 or more.
 * @param format    a block-compressed format.
 * @param ignored_1, ignored_2, ignored_3  accepted and not read.
 * @param aligned_width   receives blocks a row.
 * @param aligned_height  receives rows of blocks.
 * @param bpp             receives bytes a block, 8 or 16.
 *
 * Messages, the first that applies:
 *   "Invalid texel width or texel height: W = %d, H = %d"
 *       All three outputs become 1; they are stored without a look at the pointers.
 *
 *   "Not a compressed format 0x%x"
 *       Nothing is written.
 *
 *   "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x "
 *       An output pointer is null (low 32 bits of the three are printed); nothing is written.
 */
KORVEL_API void KORVEL_CALL compute_compressedfmt_aligned_width_and_height(
    int32_t texel_width, int32_t texel_height, uint32_t format, uint64_t ignored_1,
    uint64_t ignored_2, uint64_t ignored_3, uint32_t* aligned_width, uint32_t* aligned_height,
    uint32_t* bpp);

/* ------------------------------------------------------------------------------------------------
 * Alignment
 *
 * Common to the entries below: sizes are signed 32-bit; a negative one is logged as
 * "Invalid width or height: W = %d, H = %d" and both outputs become 1. On a chip outside the
 * supported list "Unknown Chip ID %d" is logged and the outputs equal the inputs. The output
 * pointers are not looked at. Results wrap at 32 bits.
 * --------------------------------------------------------------------------------------------- */

/**
 * GPU. Checks a size and the chip; on a supported chip both outputs keep what they held. Callers
 * that need aligned sizes use compute_fmt_aligned_width_and_height().
 *
 * @param width, height  pixels.
 * @param a3, a4, a5, a6  accepted and not read.
 */
KORVEL_API void KORVEL_CALL compute_aligned_width_and_height(int32_t width, int32_t height,
                                                             uint32_t a3, uint32_t a4, uint32_t a5,
                                                             uint32_t a6, uint32_t* out_width,
                                                             uint32_t* out_height);

/**
 * GPU. The width that compute_aligned_width_and_height() gives for `width` x 1 from a preset of 0.
 * Its messages come under that entry's name.
 *
 * @return 0 on a supported chip, `width` on an unknown one, 1 for a negative width.
 */
KORVEL_API uint32_t KORVEL_CALL compute_surface_padding(int32_t width, uint32_t a2,
                                                        int32_t tiling_mode, uint32_t a4,
                                                        uint32_t a5);

/**
 * GPU. Aligns the size of one plane for a format, sample count and tiling mode.
 *
 * @param width, height  elements and rows of elements.
 * @param plane          plane index; a plane that the format lacks has elements of 0 bytes.
 * @param format         any format number.
 * @param samples        samples an element.
 * @param tiling_mode    1 tiled, any other value linear.
 * @param selector       2 picks the second way of padding pitches, any other value the first; both
 * come to the same pitches.
 * @param min_padded_row_bytes  linear rows of at most this many bytes (signed) are not
 * pitch-padded.
 * @param out_width      receives the aligned width, elements.
 * @param out_height     receives the aligned height, rows of elements.
 *
 * Faults: a tiled plane with elements of 0 bytes, or 0 samples, on family 5; a linear block format
 * with 0 samples on families 6 and 7. An element size times samples that wraps to 0 counts as 0
 * samples.
 */
KORVEL_API void KORVEL_CALL compute_fmt_aligned_width_and_height(
    int32_t width, int32_t height, uint32_t plane, uint32_t format, uint32_t samples,
    uint32_t tiling_mode, uint32_t selector, int32_t min_padded_row_bytes, uint32_t* out_width,
    uint32_t* out_height);

/**
 * GPU. The smallest size that the hardware takes, with an explicit divisor of the pitch alignment.
 * Arguments as for compute_fmt_aligned_width_and_height(), and:
 *
 * @param tiling_allowed      the surface may become tiled later: 1 (families 6 and 7) or non-zero
 *                            (family 5) aligns a linear width to the tile width.
 * @param divisor             divides the linear width's alignment, which is in bytes, so that an
 * element size here gives elements; 0 faults where the divisor is used.
 * @param want_extra_padding  non-zero adds the chip's extra padding (families 6 and 7).
 *
 * Faults: as that entry; on family 5 also a linear block format, or one of 107, 614 and 654-656,
 * with 0 samples and tiling_allowed 0.
 */
KORVEL_API void KORVEL_CALL compute_fmt_minimal_aligned_width_and_height(
    int32_t width, int32_t height, uint32_t plane, uint32_t format, uint32_t samples,
    uint32_t tiling_mode, uint32_t tiling_allowed, uint32_t selector, int32_t min_padded_row_bytes,
    uint32_t divisor, uint32_t want_extra_padding, uint32_t* out_width, uint32_t* out_height);

/**
 * GPU. Both alignments at once, in bytes a row. A surface narrower than 16 blocks on a supported
 * chip becomes linear: 0 is stored to the caller's tiling mode. Messages come under the names of
 * the two entries above, which both run in every case; the divisor handed on is the plane's element
 * size, so a linear plane that the format lacks is a division by 0 and faults; so does a tiled one
 * on family 5.
 *
 * @param params  what is asked; only *params->tiling_mode may be written.
 * @param result  three pointers, each written.
 */
KORVEL_API void KORVEL_CALL compute_fmt_aligned_width_and_height_in_bytes(
    const AlignInBytesParams* params, const AlignInBytesResult* result);

/**
 * GPU. compute_fmt_aligned_width_and_height() with, on families 6 and 7, the divisor and the extra
 * padding of the minimal entry. Family 5 ignores both. The layout entries align their planes with
 * it. A divisor of 0 faults for a linear plane on families 6 and 7.
 */
KORVEL_API void KORVEL_CALL compute_fmt_aligned_width_and_height_fdm(
    int32_t width, int32_t height, uint32_t plane, uint32_t format, uint32_t samples,
    uint32_t tiling_mode, uint32_t selector, int32_t min_padded_row_bytes, uint32_t divisor,
    uint32_t want_extra_padding, uint32_t* out_width, uint32_t* out_height);

/* ------------------------------------------------------------------------------------------------
 * Layout
 * --------------------------------------------------------------------------------------------- */

/** @return the bytes of a layout blob: 5536. */
KORVEL_API uint32_t KORVEL_CALL korvel_get_metadata_blob_size(void);

/**
 * The bytes that the GPU allocation of a laid-out surface must have.
 *
 * @param blob  a filled LayoutMetadata of any alignment, or null. Only its record offset and the
 *              record's total_size and size are read, and none of them is checked.
 * @return total_size - size; 0 for null.
 */
KORVEL_API uint64_t KORVEL_CALL korvel_get_aligned_gpu_buffer_size(const void* blob);

/**
 * GPU. Lays out a surface of one level and describes it in a blob.
 *
 * @param blob         korvel_get_metadata_blob_size() writable bytes, 8-byte aligned; null fails
 *                     silently once the arguments have passed.
 * @param width        1 or more, texels.
 * @param height       1 or more, texels.
 * @param depth        1 or more, array slices or depth.
 * @param format       1 to 721; depth/stencil formats need tiling mode 1.
 * @param samples      1, 2, 4 or 8.
 * @param tiling_mode  1 tiled, 0 linear. Any other value lays out as linear with an alignment of 0,
 *                     and total_size then equals size.
 * @param flags        LAYOUT_FLAG_...; other bits are ignored.
 * @param planes       0 to 3. It is not compared with the format's own plane count.
 * @return 0; or 0xFFFFFFFF, the blob untouched.
 *
 * Messages, the first that applies, under the name validate_memory_layout_input_params:
 *   "Invalid width, height, or depth: W = %d, H = %d, D = %d"
 *   "Unknown Format %u"
 *   "Invalid configuration, cannot support linear depth/stencil"
 *   "Invalid input sample count %u"
 * or under its own name "Invalid plane count %u"; each is followed, under its own name, by
 *   "Memory Layout input parameter validation failed!"
 *
 * Left unwritten: reserved_60, every padding word, levels beyond the first, planes beyond `planes`,
 * the flag words of a plane without a flag buffer (but flag_valid), the lrz words but the two valid
 * ones, and the extra buffer's words but extra_valid when there is none.
 *
 * Faults: as compute_fmt_aligned_width_and_height() for each plane, and a flag buffer of a format
 * whose sample tile is not known (619 and 659; 658 and 709-711 on family 6).
 */
KORVEL_API uint32_t KORVEL_CALL korvel_init_memory_layout(void* blob, int32_t width, int32_t height,
                                                          int32_t depth, uint32_t format,
                                                          uint32_t samples, uint32_t tiling_mode,
                                                          uint64_t flags, uint32_t planes);

/**
 * GPU. The second half of korvel_init_memory_layout(): lays out the planes into a record whose
 * header words are set. Reads the record's `levels`, `alignment` and `size`; nothing about the
 * arguments is checked but what the messages say.
 *
 * @param record  a MemoryLayout, 8-byte aligned, not null.
 *
 * A width or height below 1 counts as 1. With more than one level, level l takes the size shifted
 * right by l, and its planes follow those of level l - 1.
 *
 * Messages: "Invalid plane count %u" for planes above 3 and "Invalid level count %u" for levels
 * above 15; nothing is written then. Those of compute_fmt_aligned_width_and_height_fdm() under its
 * name, also for the width of a block format near 2^31 that no longer fits after rounding.
 *
 * Left unwritten: the header words up to `levels` but total_size, and what
 * korvel_init_memory_layout() leaves.
 *
 * Faults: as korvel_init_memory_layout(); with samples other than 1, 2, 4 and 8 also a flag buffer
 * on families 6 and 7, but for the video formats, whose sample tile goes by the format alone. An
 * element size times samples that wraps to 0 counts as 0 samples.
 */
KORVEL_API void KORVEL_CALL korvel_init_single_level_surface(MemoryLayout* record, int32_t width,
                                                             int32_t height, int32_t depth,
                                                             uint32_t format, uint32_t samples,
                                                             uint32_t tiling_mode, uint64_t flags,
                                                             uint32_t planes);

/**
 * GPU. Lays out a mip chain into a record whose header words are set, `levels` among them. Each
 * plane's levels form one chain and an array slice is a whole chain; the flag buffers of a tiled
 * single-plane surface stand together in front of the images.
 *
 * @param record  a MemoryLayout, 8-byte aligned, not null; its `levels`, `alignment` and `size` are
 *                read. For a tiled surface of one plane the flag sizes of all levels are read as
 * well, also of those that get no flag buffer: zero the record first.
 * @param width, height  texels; the width is rounded up to a multiple of 64 first.
 *
 * Other arguments, messages and what is left unwritten as for korvel_init_single_level_surface().
 * With planes 0 the level words stay as they were. A linear surface of one plane gets
 * flag_valid, flag_size and flag_pitch, but no flag_offset and flag_slice_pitch: only tiled
 * surfaces have room for flag buffers. The size of a level with several planes is its last plane's.
 *
 * Faults: an element size times samples of 0 on families 6 and 7 in linear mode, and those of
 * korvel_init_single_level_surface().
 */
KORVEL_API void KORVEL_CALL korvel_init_multi_level_surface(MemoryLayout* record, uint32_t width,
                                                            uint32_t height, int32_t depth,
                                                            uint32_t format, uint32_t samples,
                                                            uint32_t tiling_mode, uint64_t flags,
                                                            uint32_t planes);

/* ------------------------------------------------------------------------------------------------
 * Validation
 *
 * Both validators read a record of any alignment, change nothing, stop at the first failed check
 * with exactly one message, and use no number of the record before it has been checked. UUIDs are
 * printed as uuid_to_str() prints them. A buffer whose end does not fit 64 bits exceeds the
 * surface.
 * --------------------------------------------------------------------------------------------- */

/**
 * Decides whether a stored MemoryLayout may be trusted.
 *
 * @param record       5472 readable bytes, as many as its version has from there on; any alignment.
 * @param device_uuid  16 bytes as get_device_uuid() makes them.
 * @param driver_uuid  16 bytes as get_driver_uuid() makes them.
 * @return 0 when valid, 0xFFFFFFFF after the message of the first failed check.
 *
 * The surface size is the low 32 bits of total_size - size, sign-extended: from 2^31 bytes on the
 * bounds refuse next to nothing. This is a fixed property of the format.
 */
KORVEL_API uint32_t KORVEL_CALL validate_resource_memory_layout_metadata(
    const void* record, const uint8_t* device_uuid, const uint8_t* driver_uuid);

/**
 * Decides whether a stored SurfaceMetadata may be trusted.
 *
 * @param record  5300 readable bytes, any alignment.
 * Other arguments and result as for validate_resource_memory_layout_metadata(). Word 0 of the
 * driver UUID is compared here, word 1 there; the surface size is 64-bit here.
 */
KORVEL_API uint32_t KORVEL_CALL validate_surface_metadata(const void* record,
                                                          const uint8_t* device_uuid,
                                                          const uint8_t* driver_uuid);

#ifdef __cplusplus
} /* extern "C" */
#endif

/* ------------------------------------------------------------------------------------------------
 * The offsets of every stored word, checked by whoever includes this header.
 * --------------------------------------------------------------------------------------------- */

/* C99 has no static assertion: an array type of negative size stops the compiler instead. */
#define KORVEL_ASSERT_SIZE(type, bytes) \
  typedef char korvel_size_of_##type[sizeof(type) == (bytes) ? 1 : -1]
#define KORVEL_ASSERT_OFFSET(type, field, bytes) \
  typedef char korvel_offset_of_##type##_##field[offsetof(type, field) == (bytes) ? 1 : -1]

KORVEL_ASSERT_OFFSET(MetadataHeader, magic, 0);
KORVEL_ASSERT_OFFSET(MetadataHeader, header_version, 4);
KORVEL_ASSERT_OFFSET(MetadataHeader, blob_size, 8);
KORVEL_ASSERT_OFFSET(MetadataHeader, record_kind, 12);
KORVEL_ASSERT_OFFSET(MetadataHeader, record_offset, 16);
KORVEL_ASSERT_OFFSET(MetadataHeader, record_size, 20);
KORVEL_ASSERT_SIZE(MetadataHeader, 24);

KORVEL_ASSERT_OFFSET(PlaneLayout, image_offset, 0);
KORVEL_ASSERT_OFFSET(PlaneLayout, image_size, 8);
KORVEL_ASSERT_OFFSET(PlaneLayout, image_pitch, 16);
KORVEL_ASSERT_OFFSET(PlaneLayout, padding_20, 20);
KORVEL_ASSERT_OFFSET(PlaneLayout, image_slice_pitch, 24);
KORVEL_ASSERT_OFFSET(PlaneLayout, image_element_size, 32);
KORVEL_ASSERT_OFFSET(PlaneLayout, image_width, 36);
KORVEL_ASSERT_OFFSET(PlaneLayout, image_height, 40);
KORVEL_ASSERT_OFFSET(PlaneLayout, padding_44, 44);
KORVEL_ASSERT_OFFSET(PlaneLayout, flag_valid, 48);
KORVEL_ASSERT_OFFSET(PlaneLayout, padding_52, 52);
KORVEL_ASSERT_OFFSET(PlaneLayout, flag_offset, 56);
KORVEL_ASSERT_OFFSET(PlaneLayout, flag_size, 64);
KORVEL_ASSERT_OFFSET(PlaneLayout, flag_pitch, 72);
KORVEL_ASSERT_OFFSET(PlaneLayout, padding_76, 76);
KORVEL_ASSERT_OFFSET(PlaneLayout, flag_slice_pitch, 80);
KORVEL_ASSERT_SIZE(PlaneLayout, 88);

KORVEL_ASSERT_OFFSET(LevelLayout, slices, 0);
KORVEL_ASSERT_OFFSET(LevelLayout, tiled, 4);
KORVEL_ASSERT_OFFSET(LevelLayout, size, 8);
KORVEL_ASSERT_OFFSET(LevelLayout, planes, 16);
KORVEL_ASSERT_OFFSET(LevelLayout, padding_20, 20);
KORVEL_ASSERT_OFFSET(LevelLayout, plane, 24);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_valid, 288);
KORVEL_ASSERT_OFFSET(LevelLayout, padding_292, 292);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_offset, 296);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_size, 304);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_pitch, 312);
KORVEL_ASSERT_OFFSET(LevelLayout, padding_316, 316);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_slice_pitch, 320);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_width, 328);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_height, 332);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_fc_valid, 336);
KORVEL_ASSERT_OFFSET(LevelLayout, padding_340, 340);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_fc_offset, 344);
KORVEL_ASSERT_OFFSET(LevelLayout, lrz_fc_size, 352);
KORVEL_ASSERT_SIZE(LevelLayout, 360);

KORVEL_ASSERT_OFFSET(MemoryLayout, signature, 0);
KORVEL_ASSERT_OFFSET(MemoryLayout, size, 4);
KORVEL_ASSERT_OFFSET(MemoryLayout, device_uuid, 8);
KORVEL_ASSERT_OFFSET(MemoryLayout, driver_uuid, 24);
KORVEL_ASSERT_OFFSET(MemoryLayout, total_size, 40);
KORVEL_ASSERT_OFFSET(MemoryLayout, alignment, 48);
KORVEL_ASSERT_OFFSET(MemoryLayout, format, 52);
KORVEL_ASSERT_OFFSET(MemoryLayout, samples, 56);
KORVEL_ASSERT_OFFSET(MemoryLayout, reserved_60, 60);
KORVEL_ASSERT_OFFSET(MemoryLayout, linear_fallback, 64);
KORVEL_ASSERT_OFFSET(MemoryLayout, levels, 68);
KORVEL_ASSERT_OFFSET(MemoryLayout, level, 72);
KORVEL_ASSERT_OFFSET(MemoryLayout, extra_valid, 5472);
KORVEL_ASSERT_OFFSET(MemoryLayout, padding_5476, 5476);
KORVEL_ASSERT_OFFSET(MemoryLayout, extra_offset, 5480);
KORVEL_ASSERT_OFFSET(MemoryLayout, extra_size, 5488);
KORVEL_ASSERT_OFFSET(MemoryLayout, extra_slice_pitch, 5496);
KORVEL_ASSERT_OFFSET(MemoryLayout, extended, 5504);
KORVEL_ASSERT_OFFSET(MemoryLayout, padding_5508, 5508);
KORVEL_ASSERT_SIZE(MemoryLayout, KORVEL_LAYOUT_BYTES_VERSION_3);

KORVEL_ASSERT_OFFSET(LayoutMetadata, header, 0);
KORVEL_ASSERT_OFFSET(LayoutMetadata, layout, 24);
KORVEL_ASSERT_SIZE(LayoutMetadata, KORVEL_BLOB_BYTES);

KORVEL_ASSERT_OFFSET(SurfacePlane, image_offset, 0);
KORVEL_ASSERT_OFFSET(SurfacePlane, image_size, 8);
KORVEL_ASSERT_OFFSET(SurfacePlane, image_pitch, 16);
KORVEL_ASSERT_OFFSET(SurfacePlane, image_slice_pitch, 20);
KORVEL_ASSERT_OFFSET(SurfacePlane, image_element_size, 28);
KORVEL_ASSERT_OFFSET(SurfacePlane, image_width, 32);
KORVEL_ASSERT_OFFSET(SurfacePlane, image_height, 36);
KORVEL_ASSERT_OFFSET(SurfacePlane, actual_width, 40);
KORVEL_ASSERT_OFFSET(SurfacePlane, actual_height, 44);
KORVEL_ASSERT_OFFSET(SurfacePlane, flag_valid, 48);
KORVEL_ASSERT_OFFSET(SurfacePlane, flag_offset, 52);
KORVEL_ASSERT_OFFSET(SurfacePlane, flag_size, 60);
KORVEL_ASSERT_OFFSET(SurfacePlane, flag_pitch, 68);
KORVEL_ASSERT_OFFSET(SurfacePlane, flag_slice_pitch, 72);
KORVEL_ASSERT_SIZE(SurfacePlane, 80);

KORVEL_ASSERT_OFFSET(SurfaceLevel, slices, 0);
KORVEL_ASSERT_OFFSET(SurfaceLevel, tiled, 4);
KORVEL_ASSERT_OFFSET(SurfaceLevel, size, 8);
KORVEL_ASSERT_OFFSET(SurfaceLevel, planes, 16);
KORVEL_ASSERT_OFFSET(SurfaceLevel, plane, 20);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_valid, 260);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_offset, 264);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_size, 272);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_pitch, 280);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_slice_pitch, 284);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_width, 292);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_height, 296);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_fc_valid, 300);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_fc_offset, 304);
KORVEL_ASSERT_OFFSET(SurfaceLevel, lrz_fc_size, 312);
KORVEL_ASSERT_OFFSET(SurfaceLevel, unread_320, 320);
KORVEL_ASSERT_SIZE(SurfaceLevel, 348);

KORVEL_ASSERT_OFFSET(SurfaceMetadata, guid, 0);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, total_size, 8);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, alignment, 16);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, format, 20);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, samples, 24);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, unread_28, 28);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, linear_fallback, 32);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, levels, 36);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, level, 40);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, device_uuid, 5260);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, driver_uuid, 5276);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, size, 5292);
KORVEL_ASSERT_OFFSET(SurfaceMetadata, signature, 5296);
KORVEL_ASSERT_SIZE(SurfaceMetadata, KORVEL_SURFACE_BYTES);

#undef KORVEL_ASSERT_OFFSET
#undef KORVEL_ASSERT_SIZE

#endif /* KORVEL_UTILS_H */
