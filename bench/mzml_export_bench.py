#!/usr/bin/python3
"""Speed of `kora export --format mzml` against `kora export --format csv`.

A realistic analysis (by default 300 frames of 918 scans, about 100 000 peaks
per frame) is written with kora-writer and exported whole by the `kora`
command of the build tree: as CSV, the baseline, and as mzML in the frame
layout with zlib-compressed and with plain arrays. Each round runs every
variant once; the fastest wall time of each counts. Printed: wall and
processor seconds (of the kora process), seconds per million peaks, the size
of the output, and the ratio the mzML export is held to (at most 1.5 x the
CSV time).

    bench/mzml_export_bench.py [BUILD_DIR] [--frames N] [--rounds R]
"""

import os
import resource
import subprocess
import tempfile
import time

import bench_analysis

VARIANTS = {"csv": ["--format", "csv"],
            "mzml, zlib": ["--format", "mzml", "--compress", "zlib"],
            "mzml, none": ["--format", "mzml", "--compress", "none"]}


def child_processor_seconds():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run_export(kora, directory, out, options):
    """Wall and processor seconds of one export, and the output's size."""
    cpu = child_processor_seconds()
    start = time.perf_counter()
    subprocess.run([kora, "export", directory, "-o", out, *options], check=True)
    elapsed = time.perf_counter() - start
    size = os.path.getsize(out)
    os.remove(out)
    return elapsed, child_processor_seconds() - cpu, size


def main():
    args = bench_analysis.parse_arguments(__doc__, rounds=1)
    import koradata

    kora = os.path.join(args.build, "python", "kora")
    best = {}
    with tempfile.TemporaryDirectory(prefix="kora-mzml-bench-") as tmp:
        directory = os.path.join(tmp, "analysis")
        bench_analysis.write_realistic(args.build, directory, args.frames)
        with koradata.Analysis(directory) as analysis:
            peaks = int(analysis.peak_counts().sum())
        for _ in range(args.rounds):
            for name, options in VARIANTS.items():
                out = os.path.join(tmp, "out")
                result = run_export(kora, directory, out, options)
                if result[0] < best.get(name, (float("inf"),))[0]:
                    best[name] = result

    print(f"mzml_export_bench: {args.frames} frames, {peaks} peaks, best of {args.rounds}, "
          f"load average {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors")
    print(f"{'variant':<14}{'wall s':>10}{'cpu s':>10}{'s/Mpeaks':>10}{'MB out':>10}")
    for name, (seconds, cpu, size) in best.items():
        print(f"{name:<14}{seconds:>10.2f}{cpu:>10.2f}{seconds / peaks * 1e6:>10.3f}"
              f"{size / 1e6:>10.1f}")
    csv = best["csv"][0]
    for name in ("mzml, zlib", "mzml, none"):
        print(f"{name} / csv:  {best[name][0] / csv:.2f} x the time (target <= 1.50)")


if __name__ == "__main__":
    main()
