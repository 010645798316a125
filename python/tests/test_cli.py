"""The kora command line, run as `python3 -m koradata`."""

import subprocess
import sys

import matplotlib.image
import numpy as np
import pandas as pd
import pandas.testing as pdt
import pytest

import koradata

KORA_IDS = {"1": [0, 107991, 216770], "2": [0, 48151, 96374]}
COMPRESSION = {"1": "1 (LZF per scan)", "2": "2 (Zstandard per frame)"}


def kora(*args):
    return subprocess.run([sys.executable, "-m", "koradata", *map(str, args)],
                          capture_output=True, text=True)


def compression(path):
    with koradata.Analysis(path) as analysis:
        return analysis.metadata["KoraCompressionType"]


def test_info_describes_the_analysis(sample):
    result = kora("info", sample)
    if koradata.HAVE_CONVERSIONS:
        ranges = ("m/z range:      14.1927 to 1693.3746 (frame 1, TOF index 0 to 399999)\n"
                  "1/K0 range:     0.5010 to 1.6639 V s/cm² (frame 1, scans 0 to 917)\n")
    else:
        missing = "unavailable: this build of koradata has no m/z or 1/K0 conversions"
        ranges = f"m/z range:      {missing}\n1/K0 range:     {missing}\n"
    assert result.stdout == (
        f"analysis:       {sample}\n"
        "schema:         3.0\n"
        f"compression:    {COMPRESSION[compression(sample)]}\n"
        "frames:         3\n"
        "scans:          2754\n"
        "peaks:          86734\n"
        "retention time: 0.000 to 0.200 s\n"
        f"{ranges}"
        "calibration:    instrument calibration in analysis.oxa\n")
    assert (result.returncode, result.stderr) == (0, "")


def test_frames_prints_the_frame_table(sample):
    ids = KORA_IDS[compression(sample)]
    aligned = kora("frames", sample)
    assert aligned.stdout == (
        " frame  kora_id  accumulation_time  ramp_time polarity    t1   t2  mz_calibration"
        "  kora_calibration  num_scans  retention_time\n"
        f"     1 {ids[0]:>8}              100.0       90.0        + 25.25 23.9"
        "               1                 1        918             0.0\n"
        f"     2 {ids[1]:>8}              100.0       90.0        + 25.50 23.8"
        "               1                 1        918             0.1\n"
        f"     3 {ids[2]:>8}              100.0       90.0        + 25.75 23.7"
        "               1                 1        918             0.2\n")
    csv = kora("frames", sample, "--csv")
    assert csv.stdout == (
        "frame,kora_id,accumulation_time,ramp_time,polarity,t1,t2,mz_calibration,"
        "kora_calibration,num_scans,retention_time\n"
        f"1,{ids[0]},100.0,90.0,+,25.25,23.9,1,1,918,0.0\n"
        f"2,{ids[1]},100.0,90.0,+,25.5,23.8,1,1,918,0.1\n"
        f"3,{ids[2]},100.0,90.0,+,25.75,23.7,1,1,918,0.2\n")
    assert (aligned.returncode, csv.returncode) == (0, 0)


@pytest.mark.parametrize("fmt", ["csv", "tsv", "npz"])
def test_export_round_trips(sample, tmp_path, fmt):
    out = tmp_path / f"peaks.{fmt}"
    result = kora("export", sample, "-o", out, "--frames", "2:")
    assert result.returncode == 0, result.stderr
    columns = ["frame", "scan", "tof", "intensity"]
    if koradata.HAVE_CONVERSIONS:
        columns += ["mz", "inv_ion_mobility"]
    with koradata.Analysis(sample) as analysis:
        want = analysis.query(frames=slice(2, None), columns=columns)
    if fmt == "npz":
        with np.load(out) as archive:
            got = pd.DataFrame({c: archive[c] for c in columns})
    else:
        got = pd.read_csv(out, sep="\t" if fmt == "tsv" else ",",
                          dtype={c: want[c].dtype for c in columns},
                          float_precision="round_trip")
    assert list(got.columns) == columns
    assert set(got["frame"]) == {2, 3}
    pdt.assert_frame_equal(got, want)


@pytest.mark.parametrize("what", [("--frame", 2), ("--tic",)], ids=["frame", "tic"])
def test_plot_writes_a_png_of_the_size_asked(sample, tmp_path, what):
    out = tmp_path / "plot.png"
    result = kora("plot", sample, *what, "-o", out, "--width", 320, "--height", 240)
    assert result.returncode == 0, result.stderr
    image = matplotlib.image.imread(out)
    assert image.shape[:2] == (240, 320)
    # Not blank: many colours, not one.
    assert len(np.unique(image.reshape(-1, image.shape[2]), axis=0)) > 20


@pytest.mark.parametrize("args,status,stderr", [
    (["info", "/nonexistent/analysis"], 1, "kora: Specified analysis directory does not exist.\n"),
    (["plot", "{sample}", "--frame", 9, "-o", "/dev/null"], 1,
     "kora: CorruptFrameDataError for FrameId=9: Frame doesn't exist\n"),
    (["export", "{sample}", "-o", "/nonexistent/dir/out.csv"], 1,
     "kora: [Errno 2] No such file or directory: '/nonexistent/dir/out.csv'\n"),
])
def test_data_errors_exit_1_with_the_message(sample, args, status, stderr):
    result = kora(*[str(a).format(sample=sample) for a in args])
    assert (result.returncode, result.stdout) == (status, "")
    assert result.stderr.endswith(stderr)


@pytest.mark.parametrize("args", [[], ["info"], ["plot", "x", "-o", "y.png"],
                                  ["export", "x", "-o", "y", "--frames", "a:b"], ["frobnicate"]])
def test_usage_errors_exit_2(args):
    result = kora(*args)
    assert result.returncode == 2
    assert "usage: kora" in result.stderr


@pytest.mark.parametrize("command", ["info", "frames", "export", "plot"])
def test_every_command_has_help(command):
    result = kora(command, "--help")
    assert result.returncode == 0
    assert result.stdout.startswith(f"usage: kora {command} ")
