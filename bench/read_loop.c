/*
 * kora-read-loop: the C baseline of bench/python_read_bench.py. Reads whole
 * frames with kora_read_scans_v2 the way a careful C caller does (one buffer,
 * reused, grown and the call repeated only when a result exceeds it), and
 * prints the peaks read and the wall and processor seconds of the fastest of
 * the repetitions. With several threads, each has a handle and a buffer of
 * its own and takes the next frame not yet taken.
 *
 *   kora-read-loop <analysis directory> <repetitions> [threads] < frames
 *
 * stdin holds one "frame-id scan-count" pair per line.
 */
#include <koradata.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static double now_seconds(clockid_t clock) {
  struct timespec ts;
  clock_gettime(clock, &ts);
  return (double)ts.tv_sec + (double)ts.tv_nsec * 1e-9;
}

/* The frames to read, shared by every thread of a repetition. */
static size_t count = 0;
static long long* frames = NULL;
static unsigned* scans = NULL;
static const char* directory = NULL;
static atomic_size_t next_frame;

/* One reader: its handle and buffer live across repetitions. */
struct reader {
  pthread_t thread;
  uint64_t handle;
  void* buf;
  uint32_t size;
  uint64_t peaks; /* of the last repetition */
  int failed;
};

static void* read_frames(void* argument) {
  struct reader* r = argument;
  r->peaks = 0;
  for (size_t i = atomic_fetch_add(&next_frame, 1); i < count;
       i = atomic_fetch_add(&next_frame, 1)) {
    if (scans[i] == 0) continue;
    uint32_t needed = kora_read_scans_v2(r->handle, frames[i], 0, scans[i], r->buf, r->size);
    if (needed > r->size) {
      free(r->buf);
      r->buf = malloc(needed);
      r->size = needed;
      needed = kora_read_scans_v2(r->handle, frames[i], 0, scans[i], r->buf, r->size);
    }
    if (needed == 0 || !r->buf) {
      fprintf(stderr, "kora-read-loop: frame %lld failed\n", frames[i]);
      r->failed = 1;
      return NULL;
    }
    r->peaks += (needed / 4 - scans[i]) / 2;
  }
  return NULL;
}

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4) {
    fprintf(stderr, "usage: kora-read-loop <analysis directory> <repetitions> [threads] < frames\n");
    return 2;
  }
  directory = argv[1];
  const int repetitions = atoi(argv[2]);
  const int threads = argc == 4 ? atoi(argv[3]) : 1;
  if (repetitions < 1 || threads < 1) {
    fprintf(stderr, "kora-read-loop: repetitions and threads must be at least 1\n");
    return 2;
  }
  size_t capacity = 0;
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

  struct reader* readers = calloc((size_t)threads, sizeof *readers);
  if (!readers) return 1;
  for (int t = 0; t < threads; ++t) {
    readers[t].handle = kora_open(directory, 0);
    if (readers[t].handle == 0) {
      char text[1024];
      kora_get_last_error_string(text, sizeof text);
      fprintf(stderr, "kora-read-loop: %s\n", text);
      return 1;
    }
  }
  double best = 1e300, best_cpu = 0.0;
  uint64_t peaks = 0;
  for (int rep = 0; rep < repetitions; ++rep) {
    atomic_store(&next_frame, 0);
    const double t0 = now_seconds(CLOCK_MONOTONIC);
    const double c0 = now_seconds(CLOCK_PROCESS_CPUTIME_ID);
    for (int t = 1; t < threads; ++t) {
      if (pthread_create(&readers[t].thread, NULL, read_frames, &readers[t]) != 0) return 1;
    }
    read_frames(&readers[0]);
    for (int t = 1; t < threads; ++t) pthread_join(readers[t].thread, NULL);
    const double t = now_seconds(CLOCK_MONOTONIC) - t0;
    const double cpu = now_seconds(CLOCK_PROCESS_CPUTIME_ID) - c0;
    peaks = 0;
    for (int r = 0; r < threads; ++r) {
      if (readers[r].failed) return 1;
      peaks += readers[r].peaks;
    }
    if (t < best) {
      best = t;
      best_cpu = cpu;
    }
  }
  printf("%llu %.6f %.6f\n", (unsigned long long)peaks, best, best_cpu);
  for (int t = 0; t < threads; ++t) {
    free(readers[t].buf);
    kora_close(readers[t].handle);
  }
  free(readers);
  free(frames);
  free(scans);
  return 0;
}
