/*
 * kora-summary: opens an analysis directory through the public C interface,
 * reads every scan of every frame and prints what it found.
 *
 *   kora-summary <analysis directory>
 *
 * Frames are found by trying ids 1, 2, ... until one does not exist; the
 * number of scans of a frame by a binary search over single-scan reads. The
 * read buffer is reused across calls and grown only when a call reports that
 * it needs more.
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
    for (uint32_t s = 0; s < n; ++s) {
      uint32_t count = words[s];
      for (uint32_t i = 0; i < count; ++i) intensity += p[count + i];
      p += 2 * (size_t)count;
      peaks += count;
    }
    bytes += size;
    scans += n;
    ++frames;
  }
  printf("frames: %llu\nscans: %llu\npeaks: %llu\ntotal intensity: %.0f\n",
         (unsigned long long)frames, (unsigned long long)scans, (unsigned long long)peaks,
         intensity);
  if (read_time > 0)
    printf("read: %.1f Mpeaks/s, %.1f MB/s of output\n", peaks / read_time / 1e6,
           bytes / read_time / 1e6);
  free(buf.data);
  kora_close(h);
  return 0;
}
