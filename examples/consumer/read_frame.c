/*
 * read-frame: reads scans [0, scan count) of one frame of an analysis through
 * the installed koradata.h and libkoradata.so, and prints what it found:
 *
 *   read-frame <analysis directory> <frame id> <scan count>
 *
 * Prints the version of the header it was compiled with, then one line with
 * the number of peaks and the sum of their intensities. Exit status 0, 1 when
 * the library reports a failure (with its text), 2 on bad usage.
 */
#include <koradata.h>
#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what) {
  char text[1024];
  kora_get_last_error_string(text, sizeof text);
  fprintf(stderr, "read-frame: %s: %s\n", what, text);
  return 1;
}

int main(int argc, char** argv) {
  char* end_frame = NULL;
  char* end_scans = NULL;
  if (argc != 4) {
    fprintf(stderr, "usage: read-frame <analysis directory> <frame id> <scan count>\n");
    return 2;
  }
  long long frame = strtoll(argv[2], &end_frame, 10);
  unsigned long scans = strtoul(argv[3], &end_scans, 10);
  if (*end_frame != '\0' || *end_scans != '\0' || scans == 0 || scans > UINT32_MAX) {
    fprintf(stderr, "usage: read-frame <analysis directory> <frame id> <scan count>\n");
    return 2;
  }
  printf("koradata %d.%d.%d\n", KORA_VERSION_MAJOR, KORA_VERSION_MINOR, KORA_VERSION_PATCH);

  uint64_t h = kora_open(argv[1], 0);
  if (h == 0) return fail("open");
  /* First ask for the size, then read into a buffer of that size. */
  uint32_t needed = kora_read_scans_internal(h, frame, 0, (uint32_t)scans, NULL, 0);
  uint32_t* words = needed ? malloc(needed) : NULL;
  if (needed == 0 || words == NULL ||
      kora_read_scans_internal(h, frame, 0, (uint32_t)scans, words, needed) != needed) {
    free(words);
    kora_close(h);
    return fail("read");
  }

  /* Layout: the scans' peak counts, then per scan its indices and intensities. */
  unsigned long long peaks = 0, intensity = 0;
  const uint32_t* p = words + scans;
  for (unsigned long s = 0; s < scans; ++s) {
    for (uint32_t i = 0; i < words[s]; ++i) intensity += p[words[s] + i];
    p += 2 * (size_t)words[s];
    peaks += words[s];
  }
  printf("frame %lld, %lu scans: %llu peaks, intensity %llu\n", frame, scans, peaks, intensity);
  free(words);
  kora_close(h);
  return 0;
}
