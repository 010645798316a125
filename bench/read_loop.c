/*
 * kora-read-loop: the C baseline of bench/python_read_bench.py. Reads whole
 * frames with kora_read_scans_v2 the way a careful C caller does (one buffer,
 * reused, grown and the call repeated only when a result exceeds it), and
 * prints the peaks read and the wall and processor seconds of the fastest of
 * the repetitions.
 *
 *   kora-read-loop <analysis directory> <repetitions> < frames
 *
 * stdin holds one "frame-id scan-count" pair per line.
 */
#include <koradata.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static double now_seconds(void) {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return (double)ts.tv_sec + (double)ts.tv_nsec * 1e-9;
}

int main(int argc, char** argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: kora-read-loop <analysis directory> <repetitions> < frames\n");
    return 2;
  }
  const int repetitions = atoi(argv[2]);
  size_t count = 0, capacity = 0;
  long long* frames = NULL;
  unsigned* scans = NULL;
  long long frame;
  unsigned n;
  while (scanf("%lld %u", &frame, &n) == 2) {
    if (count == capacity) {
      capacity = capacity ? 2 * capacity : 256;
      frames = realloc(frames, capacity * sizeof *frames);
      scans = realloc(scans, capacity * sizeof *scans);
      if (!frames || !scans) return 1;
    }
    frames[count] = frame;
    scans[count++] = n;
  }

  uint64_t h = kora_open(argv[1], 0);
  if (h == 0) {
    char text[1024];
    kora_get_last_error_string(text, sizeof text);
    fprintf(stderr, "kora-read-loop: %s\n", text);
    return 1;
  }
  void* buf = NULL;
  uint32_t size = 0;
  double best = 1e300, best_cpu = 0.0;
  uint64_t peaks = 0;
  for (int r = 0; r < repetitions; ++r) {
    peaks = 0;
    const double t0 = now_seconds();
    const clock_t c0 = clock();
    for (size_t i = 0; i < count; ++i) {
      if (scans[i] == 0) continue;
      uint32_t needed = kora_read_scans_v2(h, frames[i], 0, scans[i], buf, size);
      if (needed > size) {
        free(buf);
        buf = malloc(needed);
        size = needed;
        needed = kora_read_scans_v2(h, frames[i], 0, scans[i], buf, size);
      }
      if (needed == 0 || !buf) {
        fprintf(stderr, "kora-read-loop: frame %lld failed\n", frames[i]);
        return 1;
      }
      peaks += (needed / 4 - scans[i]) / 2;
    }
    const double t = now_seconds() - t0;
    if (t < best) {
      best = t;
      best_cpu = (double)(clock() - c0) / CLOCKS_PER_SEC;
    }
  }
  printf("%llu %.6f %.6f\n", (unsigned long long)peaks, best, best_cpu);
  free(buf);
  free(frames);
  free(scans);
  kora_close(h);
  return 0;
}
