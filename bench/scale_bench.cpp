// Cost and memory of whole-analysis reads as the analysis grows.
//
// Realistic analyses (918 scans and about 100 000 peaks per frame over
// 400 000 bins, compression type 2, seed 2026) of 1 000, 10 000 and 50 000
// frames are written once, streamed by the writer, into the scale-data
// directory of the build tree and reused by later runs; a marker file,
// written last, tells a finished analysis from one cut short. Writing runs in
// a child process at the lowest priority.
//
// Every size is then measured in a forked child of its own, so that no size
// inherits another's heap:
//  - open ms: kora_open of the analysis, minimum over kOpens opens;
//  - peaks/s: every frame read whole through kora_read_scans_v2 into one
//    caller's buffer, through a fresh handle per pass, peaks over process
//    CPU time, best of several passes; and the median over chunks of 1 000
//    frames of all passes;
//  - peak MB: growth of the child's VmHWM over the run (the high-water mark
//    is reset through /proc/self/clear_refs at the start), less the caller's
//    buffer.
// Reads are warm: each analysis is read once with plain reads before it is
// measured; disk MB shows what the page cache did not hold all the same.
// Then the 10 000-frame analysis is read by 1 and by 2 threads, one handle
// each, frames interleaved, and the wall-clock speed-up is printed with the
// cores the process actually got (CPU time over wall time): on a shared
// machine that, not the library, may bound the speed-up.
//
// Flags: --sizes=N,N,... (default 1000,10000,50000); --parallel_frames=N
// (default 10000; 0 skips); --write_only (write the analyses and stop);
// --data=DIR (default the build tree's scale-data).
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "koradata.h"
#include "tools/analysis_writer.h"
#include "tools/data_generator.h"

namespace {

namespace fs = boost::filesystem;

constexpr uint32_t kScans = 918;
constexpr uint64_t kSeed = 2026;
constexpr int kCompression = 2;
constexpr int kOpens = 20;
// Frames per timed chunk of a pass.
constexpr uint32_t kChunk = 1000;
// The caller's buffer: large enough for any realistic frame (about 1.2 MB).
constexpr size_t kCallerBufferBytes = 4u << 20;
// Disk needed per frame, with room to spare (a frame takes about 142 kB).
constexpr uint64_t kBytesPerFrame = 160000;
constexpr const char* kMarker = "complete";

// What a measuring child reports through its pipe.
struct SizeResult {
  bool ok = false;
  double openMs = 0;
  double peaksPerSecond = 0;             // best whole pass
  double medianChunkPeaksPerSecond = 0;  // median over the chunks of every pass
  double peakMb = 0;
  double diskMb = 0;  // read from disk during the measured passes
  int passes = 0;
  char error[200] = {};
};

struct ParallelResult {
  bool ok = false;
  double oneThreadS = 0;
  double twoThreadsS = 0;
  // Process CPU time of the best run of each: two threads that got two
  // cores show about twice their wall time here.
  double oneThreadCpuS = 0;
  double twoThreadsCpuS = 0;
  char error[200] = {};
};

double cpuSeconds() {
  timespec t;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return t.tv_sec + t.tv_nsec * 1e-9;
}

// Bytes read from disk by this process so far.
uint64_t diskBytes() {
  rusage u;
  getrusage(RUSAGE_SELF, &u);
  return static_cast<uint64_t>(u.ru_inblock) * 512;
}

double wallSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// A "Vm...: <n> kB" line of /proc/self/status, in bytes; 0 if absent.
uint64_t statusBytes(const char* key) {
  std::ifstream in("/proc/self/status");
  std::string line;
  const size_t n = std::strlen(key);
  while (std::getline(in, line)) {
    if (line.compare(0, n, key) == 0 && line.size() > n && line[n] == ':')
      return std::strtoull(line.c_str() + n + 1, nullptr, 10) * 1024;
  }
  return 0;
}

// Sets VmHWM to the present VmRSS; false if the kernel refuses.
bool resetHighWaterMark() {
  std::ofstream out("/proc/self/clear_refs");
  out << "5";
  out.close();
  return static_cast<bool>(out);
}

fs::path analysisDir(const fs::path& data, uint32_t frames) {
  return data / ("frames-" + std::to_string(frames));
}

// The calling thread's last error text, cut to what the reports hold.
std::string lastError() {
  char text[160] = {};
  kora_get_last_error_string(text, sizeof text);
  return text;
}

bool isComplete(const fs::path& dir) { return fs::exists(dir / kMarker); }

double gigabytes(const fs::path& dir) {
  return (fs::file_size(dir / "analysis.oxa_bin") + fs::file_size(dir / "analysis.oxa")) / 1e9;
}

// Runs `body` in a forked child and returns its exit status (0 on success).
template <class Body>
int inChild(Body body) {
  std::fflush(stdout);
  const pid_t pid = fork();
  if (pid < 0) return -1;
  if (pid == 0) _exit(body());
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Runs `body` in a forked child that returns a T through a pipe.
template <class T, class Body>
T measuredInChild(Body body) {
  int fds[2];
  T result;
  if (pipe(fds) != 0) {
    std::snprintf(result.error, sizeof result.error, "pipe failed");
    return result;
  }
  inChild([&] {
    close(fds[0]);
    const T r = body();
    const bool written = write(fds[1], &r, sizeof r) == static_cast<ssize_t>(sizeof r);
    return written ? 0 : 1;
  });
  close(fds[1]);
  if (read(fds[0], &result, sizeof result) != static_cast<ssize_t>(sizeof result)) {
    result = T();
    std::snprintf(result.error, sizeof result.error, "measuring child died");
  }
  close(fds[0]);
  return result;
}

// Writes the analysis of `frames` frames unless a complete one is there.
// Returns false (with a message) if it cannot.
bool ensureAnalysis(const fs::path& data, uint32_t frames) {
  const fs::path dir = analysisDir(data, frames);
  if (isComplete(dir)) return true;
  fs::remove_all(dir);
  fs::create_directories(dir);
  const uint64_t available = fs::space(dir).available;
  if (available < uint64_t{frames} * kBytesPerFrame) {
    std::printf("%u frames: skipped, %.1f GB free in %s, %.1f GB needed\n", frames,
                available / 1e9, dir.string().c_str(), frames * kBytesPerFrame / 1e9);
    return false;
  }
  std::printf("writing %u frames into %s ...\n", frames, dir.string().c_str());
  const double start = wallSeconds();
  const int status = inChild([&] {
    if (setpriority(PRIO_PROCESS, 0, 19) != 0) return 1;
    try {
      const lumo::writer::GeneratorOptions options =
          lumo::writer::GeneratorOptions::realistic(kSeed, frames);
      lumo::writer::GeneratedBlocks blocks(options);
      const lumo::writer::WrittenAnalysis written = lumo::writer::writeAnalysis(
          lumo::writer::generatedAnalysisRows(options, 3, kCompression), blocks, dir);
      std::ofstream marker((dir / kMarker).string());
      marker << frames << " frames, " << blocks.peaks() << " peaks, seed " << kSeed
             << ", compression " << kCompression << ", analysis.oxa_bin " << written.binSize
             << " bytes\n";
      marker.close();
      return marker ? 0 : 1;
    } catch (const std::exception& e) {
      std::fprintf(stderr, "scale_bench: %s\n", e.what());
      return 1;
    }
  });
  if (status != 0 || !isComplete(dir)) {
    std::printf("%u frames: writing failed\n", frames);
    return false;
  }
  std::printf("wrote %u frames, %.2f GB, in %.0f s\n", frames, gigabytes(dir),
              wallSeconds() - start);
  return true;
}

// Reads `file` once, so that the page cache holds it.
void warm(const fs::path& file) {
  std::ifstream in(file.string(), std::ios::binary);
  std::vector<char> chunk(1 << 20);
  while (in.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || in.gcount() > 0) {
  }
}

// Reads frames first, first + step, ... up to `last` whole into `buffer`,
// growing it when a frame needs more. Returns the peaks read, or -1.
int64_t readFrames(uint64_t handle, uint32_t first, uint32_t last, uint32_t step,
                   std::vector<uint32_t>& buffer) {
  int64_t peaks = 0;
  for (uint32_t frame = first; frame <= last; frame += step) {
    uint32_t bytes = kora_read_scans_v2(handle, frame, 0, kScans, buffer.data(),
                                        static_cast<uint32_t>(4 * buffer.size()));
    if (bytes > 4 * buffer.size()) {
      buffer.resize(bytes / 4);
      bytes = kora_read_scans_v2(handle, frame, 0, kScans, buffer.data(), bytes);
    }
    if (bytes == 0) return -1;
    peaks += (bytes / 4 - kScans) / 2;
  }
  return peaks;
}

SizeResult measureSize(const fs::path& dir, uint32_t frames) {
  SizeResult r;
  warm(dir / "analysis.oxa");
  warm(dir / "analysis.oxa_bin");
  std::vector<uint32_t> buffer(kCallerBufferBytes / 4, 1);  // touched: resident from here
  if (!resetHighWaterMark()) {
    std::snprintf(r.error, sizeof r.error, "cannot reset VmHWM");
    return r;
  }
  const uint64_t base = statusBytes("VmHWM");

  const std::string path = dir.string();
  double best_open = 1e30;
  for (int i = 0; i < kOpens; ++i) {
    const double start = wallSeconds();
    const uint64_t h = kora_open(path.c_str(), 0);
    best_open = std::min(best_open, wallSeconds() - start);
    if (h == 0) {
      std::snprintf(r.error, sizeof r.error, "kora_open: %s", lastError().c_str());
      return r;
    }
    kora_close(h);
  }
  r.openMs = best_open * 1e3;

  // About 20 000 frames of reading per size, and one pass at least. Each pass
  // reads through a fresh handle, as a whole-analysis read does after
  // kora_open, and is timed by chunks of kChunk frames.
  r.passes = static_cast<int>(std::max<uint32_t>(1, std::min<uint32_t>(5, 20000 / frames)));
  double best = 1e30;
  int64_t peaks = 0;
  std::vector<double> chunk_rates;
  const uint64_t disk = diskBytes();
  for (int pass = 0; pass < r.passes; ++pass) {
    const uint64_t handle = kora_open(path.c_str(), 0);
    double pass_seconds = 0;
    peaks = 0;
    for (uint32_t first = 1; first <= frames; first += kChunk) {
      const double start = cpuSeconds();
      const int64_t n =
          readFrames(handle, first, std::min(frames, first + kChunk - 1), 1, buffer);
      const double seconds = cpuSeconds() - start;
      if (n < 0) {
        std::snprintf(r.error, sizeof r.error, "kora_read_scans_v2: %s", lastError().c_str());
        return r;
      }
      pass_seconds += seconds;
      peaks += n;
      chunk_rates.push_back(n / seconds);
    }
    kora_close(handle);
    best = std::min(best, pass_seconds);
  }
  r.diskMb = (diskBytes() - disk) / 1e6;
  r.peaksPerSecond = peaks / best;
  std::nth_element(chunk_rates.begin(), chunk_rates.begin() + chunk_rates.size() / 2,
                   chunk_rates.end());
  r.medianChunkPeaksPerSecond = chunk_rates[chunk_rates.size() / 2];
  const uint64_t grown = 4 * buffer.size() - kCallerBufferBytes;
  r.peakMb = (static_cast<double>(statusBytes("VmHWM")) - base - grown) / (1 << 20);
  r.ok = true;
  return r;
}

// The best wall time of reading all `frames` frames on `threads` threads,
// thread t reading frames t + 1, t + 1 + threads, ... through a handle of its own.
double parallelRead(const std::vector<uint64_t>& handles, uint32_t frames, size_t threads,
                    int64_t& peaks, double& cpu) {
  std::vector<std::vector<uint32_t>> buffers(threads,
                                             std::vector<uint32_t>(kCallerBufferBytes / 4, 1));
  std::vector<int64_t> counts(threads);
  const double start = wallSeconds();
  const double cpu_start = cpuSeconds();
  std::vector<std::thread> pool;
  for (size_t t = 1; t < threads; ++t) {
    pool.emplace_back([&, t] {
      counts[t] = readFrames(handles[t], static_cast<uint32_t>(t + 1), frames,
                             static_cast<uint32_t>(threads), buffers[t]);
    });
  }
  counts[0] = readFrames(handles[0], 1, frames, static_cast<uint32_t>(threads), buffers[0]);
  for (std::thread& th : pool) th.join();
  const double elapsed = wallSeconds() - start;
  cpu = cpuSeconds() - cpu_start;
  peaks = 0;
  for (int64_t c : counts) peaks = c < 0 || peaks < 0 ? -1 : peaks + c;
  return elapsed;
}

ParallelResult measureParallel(const fs::path& dir, uint32_t frames) {
  ParallelResult r;
  warm(dir / "analysis.oxa");
  warm(dir / "analysis.oxa_bin");
  std::vector<uint64_t> handles;
  for (int i = 0; i < 2; ++i) handles.push_back(kora_open(dir.string().c_str(), 0));
  if (std::count(handles.begin(), handles.end(), 0u) > 0) {
    std::snprintf(r.error, sizeof r.error, "kora_open: %s", lastError().c_str());
    return r;
  }
  r.oneThreadS = r.twoThreadsS = 1e30;
  // Alternating, best of three each: interference only ever adds time.
  for (int rep = 0; rep < 3; ++rep) {
    int64_t one = 0, two = 0;
    double cpu = 0;
    const double t1 = parallelRead(handles, frames, 1, one, cpu);
    if (t1 < r.oneThreadS) r.oneThreadS = t1, r.oneThreadCpuS = cpu;
    const double t2 = parallelRead(handles, frames, 2, two, cpu);
    if (t2 < r.twoThreadsS) r.twoThreadsS = t2, r.twoThreadsCpuS = cpu;
    if (one < 0 || one != two) {
      std::snprintf(r.error, sizeof r.error, "reads failed or differ: %lld and %lld peaks",
                    static_cast<long long>(one), static_cast<long long>(two));
      return r;
    }
  }
  for (uint64_t h : handles) kora_close(h);
  r.ok = true;
  return r;
}

std::vector<uint32_t> parseSizes(const char* text) {
  std::vector<uint32_t> sizes;
  std::stringstream in(text);
  std::string item;
  while (std::getline(in, item, ',')) {
    const unsigned long n = std::strtoul(item.c_str(), nullptr, 10);
    if (n > 0) sizes.push_back(static_cast<uint32_t>(n));
  }
  return sizes;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<uint32_t> sizes = {1000, 10000, 50000};
  uint32_t parallel_frames = 10000;
  bool write_only = false;
  fs::path data = KORA_SCALE_DATA_DIR;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg.rfind("--sizes=", 0) == 0) {
      sizes = parseSizes(argv[i] + 8);
    } else if (arg.rfind("--parallel_frames=", 0) == 0) {
      parallel_frames = static_cast<uint32_t>(std::strtoul(argv[i] + 18, nullptr, 10));
    } else if (arg == "--write_only") {
      write_only = true;
    } else if (arg.rfind("--data=", 0) == 0) {
      data = argv[i] + 7;
    } else {
      std::fprintf(stderr,
                   "usage: scale_bench [--sizes=N,...] [--parallel_frames=N] [--write_only] "
                   "[--data=DIR]\n");
      return 2;
    }
  }

  std::vector<uint32_t> all = sizes;
  if (parallel_frames > 0) all.push_back(parallel_frames);
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  std::vector<uint32_t> ready;
  for (uint32_t n : all)
    if (ensureAnalysis(data, n)) ready.push_back(n);
  if (write_only) return 0;
  const auto present = [&](uint32_t n) {
    return std::find(ready.begin(), ready.end(), n) != ready.end();
  };

  std::printf(
      "\nRealistic frames (%u scans, about 100 000 peaks each), compression %d, seed %llu.\n"
      "Reads are warm: each analysis is read once before it is measured. open ms: best of %d;\n"
      "peaks/s: process CPU time, best of the passes; peak MB: VmHWM growth less the\n"
      "caller's %zu MiB buffer; disk MB: read from disk during the passes (0 when warm);\n"
      "median chunk: peaks/s of the median %u-frame chunk of all passes, which interference\n"
      "from other processes moves least.\n\n",
      kScans, kCompression, static_cast<unsigned long long>(kSeed), kOpens,
      kCallerBufferBytes >> 20, kChunk);
  std::printf("%8s %8s %9s %13s %9s %7s %8s %13s\n", "frames", "GB", "open ms", "peaks/s",
              "peak MB", "passes", "disk MB", "median chunk");
  std::vector<std::pair<uint32_t, SizeResult>> results;
  for (uint32_t n : sizes) {
    if (!present(n)) continue;
    const fs::path dir = analysisDir(data, n);
    const SizeResult r = measuredInChild<SizeResult>([&] { return measureSize(dir, n); });
    if (!r.ok) {
      std::printf("%8u failed: %s\n", n, r.error);
      continue;
    }
    std::printf("%8u %8.2f %9.3f %13.4g %9.1f %7d %8.0f %13.4g\n", n, gigabytes(dir), r.openMs,
                r.peaksPerSecond, r.peakMb, r.passes, r.diskMb, r.medianChunkPeaksPerSecond);
    results.emplace_back(n, r);
  }
  if (results.size() >= 2) {
    const SizeResult& small = results.front().second;
    const SizeResult& large = results.back().second;
    std::printf(
        "\nthroughput at %u frames / at %u frames: %.3f by the best pass, %.3f by the median "
        "chunk (target >= 0.90)\n",
        results.back().first, results.front().first, large.peaksPerSecond / small.peaksPerSecond,
        large.medianChunkPeaksPerSecond / small.medianChunkPeaksPerSecond);
  }

  if (parallel_frames > 0 && present(parallel_frames)) {
    const fs::path dir = analysisDir(data, parallel_frames);
    const ParallelResult p =
        measuredInChild<ParallelResult>([&] { return measureParallel(dir, parallel_frames); });
    if (p.ok) {
      std::printf(
          "parallel handles, %u frames interleaved: 1 thread %.2f s (CPU %.2f s), 2 threads "
          "%.2f s (CPU %.2f s), speed-up %.2f (target >= 1.8)\n"
          "cores the 2-thread run got: %.2f of %u online (CPU time / wall time)\n",
          parallel_frames, p.oneThreadS, p.oneThreadCpuS, p.twoThreadsS, p.twoThreadsCpuS,
          p.oneThreadS / p.twoThreadsS, p.twoThreadsCpuS / p.twoThreadsS,
          std::thread::hardware_concurrency());
    } else {
      std::printf("parallel handles failed: %s\n", p.error);
    }
  }
  return 0;
}
