/*
 * koradata: read-only access to the raw data of an ion-mobility
 * time-of-flight mass spectrometer.
 *
 * Conventions, for every function below:
 *
 *  - A handle is an opaque 64-bit number for one open analysis directory,
 *    made by kora_open and freed by kora_close. 0 is never a valid handle.
 *    Handles are not checked: passing a closed or made-up handle is
 *    undefined behaviour.
 *  - Failure is a result of 0. The text of the failure is then kept for the
 *    calling thread and fetched with kora_get_last_error_string. A later
 *    successful call does not clear it.
 *  - Text arguments are UTF-8.
 *  - Read functions fill a caller's buffer. Their result is the number of
 *    bytes the full answer needs. If that is more than `len`, nothing was
 *    written: call again with a buffer of at least that size.
 *  - Threads: one handle serves one thread at a time; different handles may
 *    be used on different threads at the same time. The last-error text is
 *    per thread.
 *  - Frame ids are the Id column of the analysis's Frames table; scans are
 *    numbered from 0 and `scan_end` is exclusive.
 *  - Conversion functions turn `cnt` values of one frame, `in[0..cnt)`, into
 *    `out[0..cnt)` by that frame's calibration; `in` and `out` may be the
 *    same array. They return 1, or 0 on failure. With `cnt` 0 they return 1
 *    at once and look nothing up. Units: m/z in Th (thomson), 1/K0 in
 *    V·s/cm², voltages in V; indices and scan numbers may be fractional.
 *  - Damaged analyses: a read that fails on the frame file itself (a frame
 *    cut off at the end of the file, a seek that fails) leaves the handle's
 *    file stream failed, so later reads of any frame on that handle may keep
 *    failing ("Can't seek to binary header. ..."). Close the handle and open
 *    the analysis again to read its intact frames.
 */
#ifndef KORADATA_H_
#define KORADATA_H_

#include <stdint.h>

/* The version of this interface and of the library that implements it. The
 * build takes it from these three lines; the soname carries the major number
 * (libkoradata.so.0). Each is a plain decimal number. */
#define KORA_VERSION_MAJOR 0
#define KORA_VERSION_MINOR 9
#define KORA_VERSION_PATCH 0

#if defined(KORA_BUILDING_LIBRARY)
#define KORA_EXPORT __attribute__((visibility("default")))
#else
#define KORA_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Opens the analysis directory `analysis_directory` (holding analysis.oxa and
 * analysis.oxa_bin). Any non-zero `use_recalibrated_state` asks for the latest
 * complete recalibration state of calibration.sqlite; the analysis falls back
 * to its own calibration when there is none. Returns the handle, or 0 on
 * failure (e.g. "Specified analysis directory does not exist.",
 * "Invalid UTF-8"). */
KORA_EXPORT uint64_t kora_open(const char* analysis_directory, uint32_t use_recalibrated_state);

/* Closes `handle` and frees everything it holds. A handle of 0 is ignored. */
KORA_EXPORT void kora_close(uint64_t handle);

/* Copies the calling thread's last error text ("<no error>" if there was
 * none) into `buf`: at most `len` - 1 bytes and a terminating NUL; nothing
 * when `len` is 0 (`buf` may then be NULL). Returns the length of the whole
 * text plus 1; a result above `len` means the text was cut. */
KORA_EXPORT uint32_t kora_get_last_error_string(char* buf, uint32_t len);

/* Reads the peaks of scans [scan_begin, scan_end) of frame `frame_id` into
 * `buf` as 32-bit unsigned words in machine byte order: first the N =
 * scan_end - scan_begin peak counts, then for each scan its time-of-flight
 * indices followed by its intensities, in stored order; 4 x (N + 2 x peaks)
 * bytes in all. Intensities are normalised by the analysis's default (raw
 * counts, duty cycle or an accumulation time of 100, by schema version).
 * Returns the bytes needed; `buf` is written only when that is at most `len`
 * (so `buf` may be NULL with `len` 0 to ask for the size). Returns 0 on
 * failure, e.g. "scan_end must be > scan_begin", or a frame that does not
 * exist. */
KORA_EXPORT uint32_t kora_read_scans_v2(uint64_t handle, int64_t frame_id, uint32_t scan_begin,
                                        uint32_t scan_end, void* buf, uint32_t len);

/* As kora_read_scans_v2, with the intensities as stored (raw counts). */
KORA_EXPORT uint32_t kora_read_scans_internal(uint64_t handle, int64_t frame_id,
                                              uint32_t scan_begin, uint32_t scan_end, void* buf,
                                              uint32_t len);

/* Time-of-flight indices to m/z, by the frame's mass calibration: the
 * analysis's own, adapted to the frame's temperatures, or that of the
 * recalibration state chosen by kora_open. Fails e.g. with "No m/z trafo
 * available." when the frame's calibration row is missing, or for a frame
 * that does not exist. */
KORA_EXPORT uint32_t kora_index_to_mz(uint64_t handle, int64_t frame_id, const double* in,
                                      double* out, uint32_t cnt);

/* m/z to time-of-flight indices; the inverse of kora_index_to_mz. */
KORA_EXPORT uint32_t kora_mz_to_index(uint64_t handle, int64_t frame_id, const double* in,
                                      double* out, uint32_t cnt);

/* Scan numbers to 1/K0, by the frame's mobility calibration (its voltage
 * ramp and the law between voltage and mobility). Fails e.g. with "No
 * mobility trafo available." when the frame's calibration row is missing. */
KORA_EXPORT uint32_t kora_scannum_to_oneoverk0(uint64_t handle, int64_t frame_id,
                                               const double* in, double* out, uint32_t cnt);

/* 1/K0 to scan numbers; the inverse of kora_scannum_to_oneoverk0. */
KORA_EXPORT uint32_t kora_oneoverk0_to_scannum(uint64_t handle, int64_t frame_id,
                                               const double* in, double* out, uint32_t cnt);

/* Scan numbers to the ramp voltage of the frame's mobility calibration. */
KORA_EXPORT uint32_t kora_scannum_to_voltage(uint64_t handle, int64_t frame_id, const double* in,
                                             double* out, uint32_t cnt);

/* Ramp voltages to scan numbers; the inverse of kora_scannum_to_voltage. */
KORA_EXPORT uint32_t kora_voltage_to_scannum(uint64_t handle, int64_t frame_id, const double* in,
                                             double* out, uint32_t cnt);

/* Always returns 0, whatever the handle and however it was opened. */
KORA_EXPORT uint32_t kora_has_recalibrated_state(uint64_t handle);

/* Sets the number of threads the batch mass conversions may use, for the
 * whole process (OpenMP). */
KORA_EXPORT void kora_set_num_threads(uint32_t n);

#ifdef __cplusplus
}
#endif

#endif /* KORADATA_H_ */
