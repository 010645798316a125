"""kora: look into analysis directories from the shell.

Exit status: 0 on success, 1 on a data error (the library's message on
stderr), 2 on a usage error. Progress bars go to stderr, and only when it is a
terminal.
"""

import argparse
import os
import sqlite3
import sys

import numpy as np

from . import HAVE_CONVERSIONS, Analysis, Error, _export

_COMPRESSION = {"1": "1 (LZF per scan)", "2": "2 (Zstandard per frame)"}
_FORMATS = ("csv", "tsv", "npz", "mzml")


def _progress_bar(total, what):
    """A tqdm bar on stderr when it is a terminal, else None."""
    if not sys.stderr.isatty():
        return None
    from tqdm import tqdm

    return tqdm(total=total, unit=what, file=sys.stderr)


def _frame_range(text):
    """``A:B`` (ids A up to, not including, B; either may be left out) or a
    single id."""
    try:
        if ":" not in text:
            return int(text)
        start, stop = text.split(":")
        return slice(int(start) if start else None, int(stop) if stop else None)
    except ValueError:
        raise argparse.ArgumentTypeError(f"not a frame id or range A:B: {text!r}") from None


def _positive(text):
    value = int(text)
    if value < 1:
        raise argparse.ArgumentTypeError(f"must be at least 1: {text}")
    return value


def _conversion_range(convert, low, high, unit):
    try:
        values = np.sort(convert([low, high]))
    except Error as e:
        return f"unavailable: {e}"
    return f"{values[0]:.4f} to {values[1]:.4f}{unit}"


def _info(args, analysis):
    metadata = analysis.metadata
    frames = analysis.frames
    peaks = analysis.peak_counts(progress=sys.stderr.isatty())
    lines = [("analysis", analysis.path),
             ("schema", f"{metadata.get('SchemaVersionMajor')}."
                        f"{metadata.get('SchemaVersionMinor')}"),
             ("compression", _COMPRESSION.get(str(metadata.get("KoraCompressionType")),
                                              str(metadata.get("KoraCompressionType")))),
             ("frames", str(len(frames))),
             ("scans", str(int(frames["num_scans"].clip(lower=0).sum()))),
             ("peaks", str(int(peaks.sum())))]
    if len(frames):
        times = frames["retention_time"]
        lines.append(("retention time", f"{times.min():.3f} to {times.max():.3f} s"))
        first = int(frames["frame"].iloc[0])
        bins = int(metadata.get("DigitizerNumSamples", 0)) * \
            int(metadata.get("PeakListIndexScaleFactor", 1))
        scans = int(frames["num_scans"].iloc[0])
        lines.append(("m/z range", _conversion_range(
            lambda v: analysis.index_to_mz(first, v), 0, bins - 1,
            f" (frame {first}, TOF index 0 to {bins - 1})")))
        lines.append(("1/K0 range", _conversion_range(
            lambda v: analysis.scan_to_inv_mobility(first, v), 0, scans - 1,
            f" V s/cm² (frame {first}, scans 0 to {scans - 1})")))
    if not analysis.recalibrated:
        source = "instrument calibration in analysis.oxa"
    elif os.path.exists(os.path.join(analysis.path, "calibration.sqlite")):
        source = ("latest complete state of calibration.sqlite "
                  "(else the instrument calibration in analysis.oxa)")
    else:
        source = "instrument calibration in analysis.oxa (no calibration.sqlite)"
    lines.append(("calibration", source))
    width = max(len(name) for name, _ in lines) + 2
    for name, value in lines:
        print(f"{name + ':':<{width}}{value}")


def _frames(args, analysis):
    table = analysis.frames
    if args.csv:
        sys.stdout.write(table.to_csv(index=False))
    else:
        print(table.to_string(index=False))


def _export_command(args, analysis):
    fmt = args.format
    if fmt is None:
        suffix = os.path.splitext(args.output)[1].lstrip(".").lower()
        fmt = suffix if suffix in _FORMATS else "csv"
    if fmt == "mzml":
        _export_mzml(args, analysis)
        return
    columns = ["frame", "scan", "tof", "intensity"]
    if HAVE_CONVERSIONS:
        columns += ["mz", "inv_ion_mobility"]
    else:
        print("kora: this build of koradata has no m/z or 1/K0 conversions; "
              "exporting without them", file=sys.stderr)
    ids = analysis.frame_ids(args.frames)
    bar = _progress_bar(len(ids), "frame")
    try:
        chunks = _export.iter_chunks(analysis, ids, columns, args.threads,
                                     None if bar is None else bar.update)
        if fmt == "npz":
            _export.write_npz(chunks, args.output, columns)
        else:
            _export.write_text(chunks, args.output, "\t" if fmt == "tsv" else ",")
    finally:
        if bar is not None:
            bar.close()


def _export_mzml(args, analysis):
    skipped = analysis.to_mzml(args.output, args.frames, args.layout, args.compress,
                               args.errors, args.threads, progress=sys.stderr.isatty())
    for frame, text in skipped.items():
        print(f"kora: skipped frame {frame}: {text}", file=sys.stderr)


def _plot(args, analysis):
    from . import _plots

    if args.tic:
        frames = analysis.frames
        ids = frames["frame"].to_numpy()
        totals = np.zeros(len(ids))
        bar = _progress_bar(len(ids), "frame")
        try:
            position = {f: i for i, f in enumerate(ids)}
            for chunk in _export.iter_chunks(analysis, ids, ("frame", "intensity"), None,
                                             None if bar is None else bar.update):
                sums = chunk.groupby("frame")["intensity"].sum()
                totals[[position[f] for f in sums.index]] = sums.to_numpy()
        finally:
            if bar is not None:
                bar.close()
        _plots.total_ion_chromatogram(frames["retention_time"], totals, args.output,
                                      args.width, args.height, os.path.basename(analysis.path))
        return
    axes = ("mz", "inv_ion_mobility")
    if not HAVE_CONVERSIONS:
        print("kora: this build of koradata has no m/z or 1/K0 conversions; "
              "plotting TOF index against scan", file=sys.stderr)
        axes = ("tof", "scan")
    peaks = analysis.query(frames=[args.frame], columns=axes + ("intensity",))
    _plots.frame_heat_map(peaks, args.output, args.width, args.height,
                          f"{os.path.basename(analysis.path)}, frame {args.frame}", axes)


def _parser():
    parser = argparse.ArgumentParser(
        prog="kora", description="Look into analysis directories of an ion-mobility TOF "
        "mass spectrometer.")
    commands = parser.add_subparsers(dest="command", required=True, metavar="COMMAND")

    def command(name, function, help_text):
        sub = commands.add_parser(name, help=help_text, description=help_text)
        sub.add_argument("path", metavar="PATH", help="analysis directory")
        sub.add_argument("--recalibrated", action="store_true",
                         help="convert with the latest complete state of calibration.sqlite")
        sub.set_defaults(run=function)
        return sub

    command("info", _info, "Summary: schema, compression, frames, scans, peaks, "
            "retention-time span, m/z and 1/K0 ranges, calibration source.")
    frames = command("frames", _frames, "The frame table.")
    frames.add_argument("--csv", action="store_true", help="comma-separated instead of aligned")
    export = command("export", _export_command,
                     "Write every peak with its m/z and 1/K0, a few frames at a time.")
    export.add_argument("-o", "--output", required=True, metavar="FILE", help="output file")
    export.add_argument("--frames", type=_frame_range, metavar="A:B",
                        help="frame ids from A up to, not including, B (default: all)")
    export.add_argument("--format", choices=_FORMATS,
                        help="output format (default: from the file name, else csv)")
    export.add_argument("--threads", type=_positive, help="decoding threads")
    export.add_argument("--layout", choices=("frame", "scan"), default="frame",
                        help="mzML: one spectrum per frame, with a 1/K0 array, or per "
                        "non-empty scan (default frame)")
    export.add_argument("--compress", choices=("zlib", "none"), default="zlib",
                        help="mzML: compression of the binary arrays (default zlib)")
    export.add_argument("--errors", choices=("raise", "skip"), default="raise",
                        help="mzML: stop at an unreadable frame (default), or leave it out "
                        "and list it on stderr")
    plot = command("plot", _plot, "Heat map of a frame (m/z against 1/K0, log intensity) "
                   "or total intensity against retention time.")
    what = plot.add_mutually_exclusive_group(required=True)
    what.add_argument("--frame", type=int, metavar="N", help="frame id of the heat map")
    what.add_argument("--tic", action="store_true", help="total intensity per frame")
    plot.add_argument("-o", "--output", required=True, metavar="FILE", help="PNG file")
    plot.add_argument("--width", type=_positive, default=800, help="pixels (default 800)")
    plot.add_argument("--height", type=_positive, default=600, help="pixels (default 600)")
    return parser


def main(argv=None):
    """Runs the kora command line; returns the exit status."""
    args = _parser().parse_args(argv)
    try:
        with Analysis(args.path, recalibrated=args.recalibrated) as analysis:
            args.run(args, analysis)
    except BrokenPipeError:
        # The reader of our output has gone (e.g. `kora frames ... | head`).
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        return 0
    except (Error, OSError, sqlite3.Error) as e:
        print(f"kora: {e}", file=sys.stderr)
        return 1
    return 0
