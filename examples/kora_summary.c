/*
 * kora-summary: opens an analysis directory through the public C interface,
 * reads every scan of every frame and prints what it found: counts, the m/z
 * and 1/K0 ranges its peaks cover, and the base peak of its most intense
 * frame.
 *
 *   kora-summary <analysis directory>
 *
 * Frames are found by trying ids 1, 2, ... until one does not exist; the
 * number of scans of a frame by a binary search over single-scan reads. The
 * read buffer is reused across calls and grown only when a call reports that
 * it needs more. Physical values come from the frame's own calibration: the
 * lowest and highest index and scan of a frame's peaks are converted, which
 * bounds its peaks since both laws are monotonic.
 */
#include <koradata.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static void print_last_error(const char* what) {
  char text[1024];
  kora_get_last_error_string(text, sizeof text);
  fprintf(stderr, "kora-summary: %s: %s\n", what, text);
}

static double now_seconds(void) {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return (double)ts.tv_sec + (double)ts.tv_nsec * 1e-9;
}

/* The caller's reusable buffer. */
struct buffer {
  void* data;
  uint32_t size;
};

/* Reads scans [begin, end) of `frame` into `buf`, growing it when needed.
 * Returns the number of bytes of the result, 0 on failure. */
static uint32_t read_scans(uint64_t h, int64_t frame, uint32_t begin, uint32_t end,
                           struct buffer* buf) {
  uint32_t needed = kora_read_scans_v2(h, frame, begin, end, buf->data, buf->size);
  if (needed > buf->size) {
    void* grown = realloc(buf->data, needed);
    if (!grown) return 0;
    buf->data = grown;
    buf->size = needed;
    needed = kora_read_scans_v2(h, frame, begin, end, buf->data, buf->size);
  }
  return needed;
}

/* The number of scans of `frame`: the first scan number that cannot be read. */
static uint32_t count_scans(uint64_t h, int64_t frame, struct buffer* buf) {
  uint32_t lo = 0, hi = 1;
  while (hi < (1u << 20) && read_scans(h, frame, hi - 1, hi, buf) != 0) {
    lo = hi;
    hi *= 2;
  }
  /* Invariant: scan lo - 1 exists (or lo == 0), scan hi - 1 does not. */
  while (hi - lo > 1) {
    uint32_t mid = lo + (hi - lo) / 2;
    if (read_scans(h, frame, mid - 1, mid, buf) != 0)
      lo = mid;
    else
      hi = mid;
  }
  return lo;
}

/* The raw extent of a frame's peaks: lowest and highest TOF index and scan
 * number holding a peak, and its most intense peak. */
struct extent {
  double index[2], scan[2];
  uint32_t base_index, base_scan, base_intensity;
  int any;
};

static void add_peak(struct extent* e, uint32_t index, uint32_t scan, uint32_t intensity) {
  if (!e->any || index < e->index[0]) e->index[0] = index;
  if (!e->any || index > e->index[1]) e->index[1] = index;
  if (!e->any || scan < e->scan[0]) e->scan[0] = scan;
  if (!e->any || scan > e->scan[1]) e->scan[1] = scan;
  if (!e->any || intensity > e->base_intensity) {
    e->base_index = index;
    e->base_scan = scan;
    e->base_intensity = intensity;
  }
  e->any = 1;
}

/* Widens [range[0], range[1]] by two converted values; `seen` tells whether
 * the range holds anything yet. */
static void widen(double range[2], const double v[2], int seen) {
  for (int i = 0; i < 2; ++i) {
    if (!seen || v[i] < range[0]) range[0] = v[i];
    if (!seen || v[i] > range[1]) range[1] = v[i];
    seen = 1;
  }
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: kora-summary <analysis directory>\n");
    return 2;
  }
  uint64_t h = kora_open(argv[1], 0);
  if (h == 0) {
    print_last_error("open");
    return 1;
  }
  printf("opened %s\n", argv[1]);

  struct buffer buf = {NULL, 0};
  uint64_t frames = 0, scans = 0, peaks = 0, bytes = 0;
  double intensity = 0.0, read_time = 0.0;
  double mz_range[2] = {0, 0}, k0_range[2] = {0, 0};
  int ranges_seen = 0;
  int64_t best_frame = 0;
  double best_intensity = -1.0;
  struct extent best = {{0, 0}, {0, 0}, 0, 0, 0, 0};
  for (int64_t frame = 1;; ++frame) {
    uint32_t n = count_scans(h, frame, &buf);
    if (n == 0) break; /* no such frame: the end of the analysis */
    double t0 = now_seconds();
    uint32_t size = read_scans(h, frame, 0, n, &buf);
    read_time += now_seconds() - t0;
    if (size == 0) {
      print_last_error("read");
      break;
    }
    const uint32_t* words = (const uint32_t*)buf.data;
    const uint32_t* p = words + n;
    struct extent e = {{0, 0}, {0, 0}, 0, 0, 0, 0};
    double frame_intensity = 0.0;
    for (uint32_t s = 0; s < n; ++s) {
      uint32_t count = words[s];
      for (uint32_t i = 0; i < count; ++i) {
        frame_intensity += p[count + i];
        add_peak(&e, p[i], s, p[count + i]);
      }
      p += 2 * (size_t)count;
      peaks += count;
    }
    intensity += frame_intensity;
    if (e.any) {
      double mz[2], k0[2];
      if (!kora_index_to_mz(h, frame, e.index, mz, 2) ||
          !kora_scannum_to_oneoverk0(h, frame, e.scan, k0, 2)) {
        print_last_error("convert");
        break;
      }
      widen(mz_range, mz, ranges_seen);
      widen(k0_range, k0, ranges_seen);
      ranges_seen = 1;
      if (frame_intensity > best_intensity) {
        best_intensity = frame_intensity;
        best_frame = frame;
        best = e;
      }
    }
    bytes += size;
    scans += n;
    ++frames;
  }
  printf("frames: %llu\nscans: %llu\npeaks: %llu\ntotal intensity: %.0f\n",
         (unsigned long long)frames, (unsigned long long)scans, (unsigned long long)peaks,
         intensity);
  if (ranges_seen) {
    double index = best.base_index, scan = best.base_scan, mz = 0.0, k0 = 0.0;
    printf("m/z range: %.4f - %.4f Th\n", mz_range[0], mz_range[1]);
    printf("1/K0 range: %.4f - %.4f V·s/cm²\n", k0_range[0], k0_range[1]);
    if (kora_index_to_mz(h, best_frame, &index, &mz, 1) &&
        kora_scannum_to_oneoverk0(h, best_frame, &scan, &k0, 1)) {
      printf("base peak of the most intense frame %lld: m/z %.4f, 1/K0 %.4f (scan %u, index %u, "
             "intensity %u)\n",
             (long long)best_frame, mz, k0, best.base_scan, best.base_index,
             best.base_intensity);
    } else {
      print_last_error("convert");
    }
  }
  if (read_time > 0)
    printf("read: %.1f Mpeaks/s, %.1f MB/s of output\n", peaks / read_time / 1e6,
           bytes / read_time / 1e6);
  free(buf.data);
  kora_close(h);
  return 0;
}
