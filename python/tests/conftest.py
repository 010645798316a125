"""Analyses for the tests, written by the project's own writer."""

import os
import subprocess

import pytest


def _tool(variable):
    path = os.environ.get(variable)
    if not path:
        pytest.exit(f"{variable} is not set; run the tests through ctest", returncode=2)
    return path


def write_sample(directory, compression, frames=3, seed=5):
    subprocess.run([_tool("KORA_WRITER"), "sample", str(directory), "--compression",
                    str(compression), "--frames", str(frames), "--seed", str(seed)],
                   check=True, stdout=subprocess.DEVNULL)
    return str(directory)


@pytest.fixture(scope="session", params=[1, 2], ids=["lzf", "zstd"])
def sample(request, tmp_path_factory):
    """A writer-made sample analysis of 3 frames, per compression type."""
    return write_sample(tmp_path_factory.mktemp("sample"), request.param)


#: Frame 3 of 5 of the damaged analyses is cut short.
DAMAGED_FRAME = 3


@pytest.fixture(scope="session", params=[1, 2], ids=["lzf", "zstd"])
def damaged(request, tmp_path_factory):
    """An analysis of 5 frames whose frame 3 is truncated, the others whole."""
    directory = tmp_path_factory.mktemp("damaged")
    out = subprocess.run([_tool("KORA_DAMAGED_WRITER"), str(directory), str(request.param),
                          "5", str(DAMAGED_FRAME)], check=True, capture_output=True, text=True)
    assert out.stdout == "1\n2\n3!\n4\n5\n"
    return str(directory)
