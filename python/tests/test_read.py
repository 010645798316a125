"""read_scans and query against the C interface read through ctypes."""

import numpy as np
import pandas as pd
import pandas.testing as pdt
import pytest

import koradata
from conftest import write_sample
from reference import CReader, has_conversions


@pytest.fixture(scope="module")
def expected(sample):
    """Per frame id: (scan, tof, intensity) of the whole frame through ctypes."""
    with koradata.Analysis(sample) as analysis:
        frames = analysis.frames
    reader = CReader(sample)
    try:
        return {f: reader.read(f, 0, n) for f, n in zip(frames["frame"], frames["num_scans"])}
    finally:
        reader.close()


def as_table(expected, frames):
    rows = {"frame": [], "scan": [], "tof": [], "intensity": []}
    for f in frames:
        scan, tof, intensity = expected[f]
        rows["frame"] += [f] * len(scan)
        rows["scan"] += scan
        rows["tof"] += tof
        rows["intensity"] += intensity
    return pd.DataFrame({"frame": np.array(rows["frame"], dtype=np.int64),
                         **{c: np.array(rows[c], dtype=np.uint32)
                            for c in ("scan", "tof", "intensity")}})


def test_frame_table_counts_scans_and_accumulates_time(sample):
    with koradata.Analysis(sample) as analysis:
        frames = analysis.frames
        metadata = analysis.metadata
    assert list(frames["frame"]) == [1, 2, 3]
    assert list(frames["num_scans"]) == [918, 918, 918]
    # The writer's frames take 100 ms each.
    assert list(frames["retention_time"]) == [0.0, 0.1, 0.2]
    assert metadata["DigitizerNumSamples"] == "400000"


@pytest.mark.parametrize("raw", [False, True], ids=["normalised", "raw"])
@pytest.mark.parametrize("begin,end", [(0, None), (100, 300), (917, 918)])
def test_read_scans_equals_c_reader(sample, raw, begin, end):
    reader = CReader(sample)
    try:
        with koradata.Analysis(sample) as analysis:
            for frame in (1, 3):
                got = analysis.read_scans(frame, begin, end, raw=raw)
                want = reader.read(frame, begin, 918 if end is None else end, raw=raw)
                for name, column, values in zip(got._fields, got, want):
                    assert column.dtype == np.uint32, name
                    np.testing.assert_array_equal(column, np.array(values, dtype=np.uint32),
                                                  err_msg=name)
    finally:
        reader.close()


@pytest.mark.parametrize("threads", [1, 2, 4])
def test_query_equals_c_reader_for_any_thread_count(sample, expected, threads):
    with koradata.Analysis(sample) as analysis:
        got = analysis.query(threads=threads)
    pdt.assert_frame_equal(got, as_table(expected, [1, 2, 3]))


@pytest.mark.parametrize("frames,ids", [(None, [1, 2, 3]), (2, [2]), (slice(2, None), [2, 3]),
                                        (slice(None, 3), [1, 2]), ([3, 1], [3, 1])])
def test_query_reads_the_frames_asked_in_their_order(sample, expected, frames, ids):
    with koradata.Analysis(sample) as analysis:
        got = analysis.query(frames=frames, threads=2)
        assert list(analysis.peak_counts(frames)) == [len(expected[f][0]) for f in ids]
    pdt.assert_frame_equal(got, as_table(expected, ids))


def test_query_columns_keep_the_order_asked(sample, expected):
    with koradata.Analysis(sample) as analysis:
        got = analysis.query(columns=("intensity", "retention_time", "frame"), threads=2)
    want = as_table(expected, [1, 2, 3])
    assert list(got.columns) == ["intensity", "retention_time", "frame"]
    assert got["retention_time"].dtype == np.float64
    np.testing.assert_array_equal(got["retention_time"], want["frame"].map({1: 0.0, 2: 0.1,
                                                                            3: 0.2}))
    pdt.assert_series_equal(got["intensity"], want["intensity"])
    pdt.assert_series_equal(got["frame"], want["frame"])


def test_query_raw_intensities_are_the_stored_ones(sample):
    reader = CReader(sample)
    try:
        with koradata.Analysis(sample) as analysis:
            got = analysis.query(frames=[2], columns=("intensity",), raw=True)
        np.testing.assert_array_equal(got["intensity"], reader.read(2, 0, 918, raw=True)[2])
    finally:
        reader.close()


def test_progress_bar_counts_every_frame(sample, capsys):
    with koradata.Analysis(sample) as analysis:
        analysis.query(columns=("tof",), progress=True, threads=1)
    assert "3/3" in capsys.readouterr().err


@pytest.fixture(scope="module", params=[1, 2], ids=["lzf", "zstd"])
def longer(request, tmp_path_factory):
    """A sample of 14 frames: each reader of a query gets several."""
    return write_sample(tmp_path_factory.mktemp("longer"), request.param, frames=14, seed=9)


def test_many_frames_give_one_table_for_any_thread_count(longer):
    columns = ["frame", "scan", "tof", "intensity"]
    if has_conversions():
        columns += ["mz", "inv_ion_mobility"]
    with koradata.Analysis(longer) as analysis:
        ids = [14, 1] + list(range(2, 14))
        one = analysis.query(frames=ids, columns=columns, threads=1)
        for threads in (2, 3, 4, 8):
            pdt.assert_frame_equal(analysis.query(frames=ids, columns=columns, threads=threads),
                                   one, obj=f"{threads} threads")
    reader = CReader(longer)
    try:
        want = as_table({f: reader.read(f, 0, 918) for f in ids}, ids)
    finally:
        reader.close()
    pdt.assert_frame_equal(one[["frame", "scan", "tof", "intensity"]], want)
