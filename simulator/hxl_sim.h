/*
 * hxl_sim.h - control of the services stand-in.
 *
 * libhxluser.so of this directory stands in for the driver stack's closed services library of the
 * same name. It implements the operations declared in platform/hxluser.h on top of one imagined
 * GPU; this header lets a test choose that GPU, make operations fail, and see what was called.
 *
 * OPERATIONS
 *   hxl_library_open         Counted: every success needs one hxl_library_close.
 *   hxl_device_open          Accepts every index and flag word. Handles are never 0 and are never
 *                            given out twice in a process, unless hxl_sim_set_next_device says so.
 *   hxl_device_getinfo       Stores the chip id (32 bits) at byte 4 of the 32-byte record and sets
 *                            all other bytes to HXL_SIM_FILL_BYTE.
 *   hxl_device_getinfo_ext   Requires HXL_SIM_EXT_RECORD_SIZE (32 bits) at byte 0x88 of the
 *                            280-byte record and zero in all other bytes. Stores the
 *                            secure-context word (32 bits) at byte 0x80 and leaves all other
 *                            bytes as they were.
 *   os_alog                  Prints "tag: function:line: text" to standard error, one write for
 *                            each line, unless it is captured or HXL_SIM_LOG is "none".
 *   os_snprintf, os_memset   As the C library's snprintf and memset.
 *
 *   A failing operation returns HXL_SIM_FAILED or HXL_SIM_MISUSED (hxl_device_open: 0;
 *   os_snprintf: -1; os_memset: its destination) and leaves the caller's record or text untouched.
 *   hxl_sim_set_failure_result and hxl_sim_set_failures_fill_records choose otherwise.
 *
 * ENVIRONMENT
 *   Read when the library is loaded and by hxl_sim_reset. An empty value counts as unset. A
 *   malformed value is reported by one line on standard error, and the default is kept.
 *   HXL_SIM_CHIP             Chip id, decimal or 0x and hexadecimal; HXL_SIM_DEFAULT_CHIP.
 *   HXL_SIM_SECURE_CONTEXT   Secure-context word, written likewise; 0.
 *   HXL_SIM_FAIL             Operations that fail, separated by commas without spaces:
 *                            library_open, device_open, getinfo, getinfo_ext, snprintf; none.
 *   HXL_SIM_LOG              Where os_alog prints: stderr or none; stderr.
 *
 * THREADS
 *   Every function may be called from any thread at any time. hxl_sim_reset reads the environment,
 *   so no thread may change it meanwhile. A count is true at the moment it is taken; records are
 *   copied out and stay valid.
 */
#ifndef HXL_SIM_H_
#define HXL_SIM_H_

#include <stddef.h>
#include <stdint.h>

#define HXL_SIM_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The imagined GPU -------------------------------------------------------------------- */

#define HXL_SIM_DEFAULT_CHIP 0x43010000u

/* Value of the bytes of the device record that nothing is stored in. */
#define HXL_SIM_FILL_BYTE 0xA5u

/* Sizes of the two records, in bytes. */
#define HXL_SIM_RECORD_SIZE 32u
#define HXL_SIM_EXT_RECORD_SIZE 0x118u

/* Results of the operations that return 0 on success. */
#define HXL_SIM_FAILED 1u  /* made to fail: hxl_sim_set_failures, HXL_SIM_FAIL; the default */
#define HXL_SIM_MISUSED 2u /* called wrongly: see hxl_sim_misuse */

/*
 * Back to the defaults as changed by the environment, capture off, recording on; forgets all
 * messages, calls and misuse. What is open stays open: it belongs to those who opened it.
 */
HXL_SIM_API void hxl_sim_reset(void);

HXL_SIM_API void hxl_sim_set_chip(uint32_t chip_id);
HXL_SIM_API void hxl_sim_set_secure_context(uint32_t word);

/*
 * The handle that the next hxl_device_open gives out, other than 0; later ones count on from there,
 * past 0 and past those that are open. hxl_sim_reset leaves the count alone.
 */
HXL_SIM_API void hxl_sim_set_next_device(uint32_t device);

/* ---- Failures ---------------------------------------------------------------------------- */

#define HXL_SIM_FAIL_LIBRARY_OPEN 0x1u
#define HXL_SIM_FAIL_DEVICE_OPEN 0x2u
#define HXL_SIM_FAIL_GETINFO 0x4u
#define HXL_SIM_FAIL_GETINFO_EXT 0x8u
#define HXL_SIM_FAIL_SNPRINTF 0x10u

/*
 * Makes exactly the operations of the mask fail until the next change; 0: none. Misuse is found
 * before a failure is played.
 */
HXL_SIM_API void hxl_sim_set_failures(uint32_t mask);

/*
 * What operations return that are made to fail, other than 0; hxl_device_open returns 0 all the
 * same, and os_snprintf -1 unless the number is negative as a signed one.
 */
HXL_SIM_API void hxl_sim_set_failure_result(uint32_t result);

/*
 * on != 0: device queries that are made to fail fill the record as if they succeeded. What it holds
 * then means nothing, however likely it looks.
 */
HXL_SIM_API void hxl_sim_set_failures_fill_records(int on);

/* ---- What is open ------------------------------------------------------------------------ */

/* Successful hxl_library_open calls that are not yet undone. */
HXL_SIM_API size_t hxl_sim_open_libraries(void);

/* Handles of hxl_device_open that are not yet closed. */
HXL_SIM_API size_t hxl_sim_open_devices(void);

/*
 * Flags of the latest hxl_library_open, whether it succeeded or not and whether calls are recorded
 * or not; 0 if there was none since the last reset.
 */
HXL_SIM_API uint32_t hxl_sim_library_flags(void);

/* ---- Messages of os_alog ----------------------------------------------------------------- */

/* Messages kept; later ones are counted as dropped. */
#define HXL_SIM_MAX_MESSAGES 4096u

/* Texts are terminated, and cut to their array. A null pointer is kept as "(null)". */
typedef struct hxl_sim_message_record {
  uint32_t level;
  uint32_t zero; /* third argument */
  uint32_t line;
  uint32_t reserved;    /* 0 */
  uint64_t text_length; /* of the whole formatted text, in bytes without terminator */
  char tag[64];
  char function[128];
  char format[512];
  char text[1024]; /* formatted */
} hxl_sim_message_record;

/* on != 0: messages are kept instead of printed. Switching leaves the kept ones alone. */
HXL_SIM_API void hxl_sim_set_capture(int on);

HXL_SIM_API size_t hxl_sim_message_count(void);
HXL_SIM_API size_t hxl_sim_messages_dropped(void);

/* Copies a message, oldest first. Returns 1, or 0 if there is none of that index. */
HXL_SIM_API int hxl_sim_message(size_t index, hxl_sim_message_record* message);

/* Forgets the kept messages and the dropped count. */
HXL_SIM_API void hxl_sim_clear_messages(void);

/* ---- Calls ------------------------------------------------------------------------------- */

/* The operations, and what `arguments` of their call records holds, in order. */
typedef enum hxl_sim_operation {
  HXL_SIM_LIBRARY_OPEN = 0,       /* flags */
  HXL_SIM_LIBRARY_CLOSE = 1,      /* nothing */
  HXL_SIM_DEVICE_OPEN = 2,        /* device index, flags */
  HXL_SIM_DEVICE_CLOSE = 3,       /* handle */
  HXL_SIM_DEVICE_GETINFO = 4,     /* handle */
  HXL_SIM_DEVICE_GETINFO_EXT = 5, /* handle, size word at entry (0 if the record is null) */
  HXL_SIM_ALOG = 6,               /* level, line */
  HXL_SIM_SNPRINTF = 7,           /* size of the text array, in bytes */
  HXL_SIM_MEMSET = 8,             /* value as unsigned 32 bits, size in bytes */
  HXL_SIM_OPERATION_COUNT = 9
} hxl_sim_operation;

/* Call records kept; later calls are counted as dropped. */
#define HXL_SIM_MAX_CALLS 65536u

typedef struct hxl_sim_call_record {
  uint32_t operation;      /* hxl_sim_operation */
  uint32_t argument_count; /* of `arguments` that are used; the others are 0 */
  uint64_t arguments[3];
  int64_t result; /* what the operation returned; 0 if it returns nothing or a pointer */
} hxl_sim_call_record;

/*
 * on == 0: calls are neither counted nor kept, and os_snprintf and os_memset take no lock.
 * Switching leaves the counts and records alone.
 */
HXL_SIM_API void hxl_sim_set_recording(int on);

/* Calls of one operation (hxl_sim_operation), dropped ones included. 0 for an unknown operation. */
HXL_SIM_API uint64_t hxl_sim_call_count(uint32_t operation);

/* Call records kept. */
HXL_SIM_API size_t hxl_sim_calls_recorded(void);

/* Calls that were counted but not kept because HXL_SIM_MAX_CALLS records were. */
HXL_SIM_API uint64_t hxl_sim_calls_dropped(void);

/* Copies a call record, oldest first. Returns 1, or 0 if there is none of that index. */
HXL_SIM_API int hxl_sim_call(size_t index, hxl_sim_call_record* call);

/* Forgets the counts, the records and the dropped count. */
HXL_SIM_API void hxl_sim_clear_calls(void);

/* The operation's function name, for example "hxl_device_open"; "unknown" for an unknown one. */
HXL_SIM_API const char* hxl_sim_operation_name(uint32_t operation);

/* ---- Misuse ------------------------------------------------------------------------------ */

/*
 * Noted, always, whether calls are recorded or not:
 *   - closing the library more often than it was opened;
 *   - closing it for the last time with devices open (their handles become invalid);
 *   - opening a device without an open library, or more than 4096 at a time;
 *   - a handle that is not open, a null record;
 *   - an extended record whose size word is wrong or in which another byte is not zero;
 *   - os_alog with a third argument that is not 0, or a null tag, function or format;
 *   - os_snprintf with a null format, os_snprintf and os_memset with a null array of a size other
 *     than 0.
 */

/* Texts of misuse kept; the count goes on. */
#define HXL_SIM_MAX_MISUSE 1024u

HXL_SIM_API size_t hxl_sim_misuse_count(void);

/*
 * Copies the text of a misuse, oldest first, cut to `size` bytes with the terminator; 256 hold
 * every text. Returns 1, or 0 with an empty text if none of that index is kept.
 */
HXL_SIM_API int hxl_sim_misuse(size_t index, char* text, size_t size);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* HXL_SIM_H_ */
