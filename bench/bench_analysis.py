"""What the Python benchmarks share: their command line and the writer-made
analysis they measure on."""

import argparse
import os
import subprocess
import sys


def parse_arguments(doc, rounds):
    """Parses ``[BUILD_DIR] [--frames N] [--rounds R]`` (``rounds`` by
    default); ``build`` becomes absolute and the package of its build tree
    comes first on the module path."""
    parser = argparse.ArgumentParser(description=doc.splitlines()[0])
    parser.add_argument("build", nargs="?", default="build-bench", help="build directory")
    parser.add_argument("--frames", type=int, default=300)
    parser.add_argument("--rounds", type=int, default=rounds)
    args = parser.parse_args()
    args.build = os.path.abspath(args.build)
    sys.path.insert(0, os.path.join(args.build, "python"))
    return args


def write_realistic(build, directory, frames):
    """A realistic analysis of ``frames`` frames (918 scans, about 100 000
    peaks each), written by the build's kora-writer."""
    subprocess.run([os.path.join(build, "tools", "kora-writer"), "realistic", directory,
                    "--frames", str(frames)], check=True, stdout=subprocess.DEVNULL)
