"""Failures: the library's own texts, closed analyses, damaged frames."""

import numpy as np
import pandas.testing as pdt
import pytest

import koradata
from conftest import DAMAGED_FRAME
from reference import CError, CReader


def c_error(path, frame, begin, end):
    reader = CReader(path)
    try:
        reader.read(frame, begin, end)
    except CError as e:
        return str(e)
    finally:
        reader.close()
    raise AssertionError("the C reader did not fail")


def test_error_is_a_runtime_error():
    assert issubclass(koradata.Error, RuntimeError)
    assert koradata.Error.__module__ == "koradata"


def test_open_fails_with_the_library_text(tmp_path):
    with pytest.raises(koradata.Error) as e:
        koradata.Analysis(tmp_path / "missing")
    assert str(e.value) == "Specified analysis directory does not exist."


@pytest.mark.parametrize("frame,begin,end,text", [
    (1, 5, 5, "scan_end must be > scan_begin"),
    (1, 7, 3, "scan_end must be > scan_begin"),
    (99, 0, 1, "CorruptFrameDataError for FrameId=99: Frame doesn't exist"),
])
def test_read_failures_carry_the_library_text(sample, frame, begin, end, text):
    assert c_error(sample, frame, begin, end) == text
    with koradata.Analysis(sample) as analysis:
        with pytest.raises(koradata.Error) as e:
            analysis.read_scans(frame, begin, end)
        assert str(e.value) == text
        # The analysis stays usable.
        assert len(analysis.read_scans(1, 0, 10).tof) > 0


def test_unknown_frame_without_scan_end_is_reported_by_the_library(sample):
    with koradata.Analysis(sample) as analysis:
        with pytest.raises(koradata.Error, match="^CorruptFrameDataError for FrameId=42: "):
            analysis.read_scans(42)
        with pytest.raises(koradata.Error) as e:
            analysis.query(frames=[1, 42])
        assert e.value.frame == 42


@pytest.mark.parametrize("use", [
    lambda a: a.read_scans(1, 0, 1),
    lambda a: a.query(),
    lambda a: a.peak_counts(),
    lambda a: a.frames,
    lambda a: a.metadata,
    lambda a: a.scan_to_voltage(1, [0.0]),
], ids=["read_scans", "query", "peak_counts", "frames", "metadata", "conversion"])
def test_closed_analysis_refuses_use(sample, use):
    analysis = koradata.Analysis(sample)
    analysis.close()
    analysis.close()
    assert analysis.closed
    assert repr(analysis) == f"<koradata.Analysis {sample!r} (closed)>"
    with pytest.raises(koradata.Error) as e:
        use(analysis)
    assert str(e.value) == "Cannot operate on a closed analysis."


def test_context_manager_closes(sample):
    with koradata.Analysis(sample) as analysis:
        assert repr(analysis) == f"<koradata.Analysis {sample!r}>"
    assert analysis.closed


@pytest.mark.parametrize("kwargs,text", [
    ({"columns": ("tof", "charge")}, "unknown column 'charge'"),
    ({"errors": "ignore"}, "errors must be 'raise' or 'skip', not 'ignore'"),
    ({"threads": 0}, "threads must be at least 1"),
    ({"frames": slice(1, 5, 2)}, "a slice of frame ids takes no step"),
])
def test_query_usage_errors(sample, kwargs, text):
    with koradata.Analysis(sample) as analysis:
        with pytest.raises(ValueError, match=text):
            analysis.query(**kwargs)


def test_damaged_frame_raises_its_library_text(damaged):
    text = c_error(damaged, DAMAGED_FRAME, 0, 40)
    with koradata.Analysis(damaged) as analysis:
        for threads in (1, 2, 4):
            with pytest.raises(koradata.Error) as e:
                analysis.query(threads=threads)
            assert str(e.value) == text
            assert e.value.frame == DAMAGED_FRAME


@pytest.mark.parametrize("threads", [1, 2, 4])
def test_skipped_damaged_frame_leaves_the_others_intact(damaged, threads):
    text = c_error(damaged, DAMAGED_FRAME, 0, 40)
    good = [f for f in range(1, 6) if f != DAMAGED_FRAME]
    with koradata.Analysis(damaged) as analysis:
        # A frame at a time: each read after the failure needs a fresh handle.
        want = [analysis.query(frames=[f], threads=1) for f in good]
        got = analysis.query(errors="skip", threads=threads)
    assert got.attrs["skipped_frames"] == {DAMAGED_FRAME: text}
    assert list(np.unique(got["frame"])) == good
    for f, table in zip(good, want):
        part = got[got["frame"] == f].reset_index(drop=True)
        pdt.assert_frame_equal(part, table)
        assert len(table) > 0


def test_reads_go_on_after_a_damaged_frame(damaged):
    reader = CReader(damaged)
    try:
        want = reader.read(4, 0, 40)
    finally:
        reader.close()
    with koradata.Analysis(damaged) as analysis:
        with pytest.raises(koradata.Error):
            analysis.read_scans(DAMAGED_FRAME)
        got = analysis.read_scans(4)
    for column, values in zip(got, want):
        np.testing.assert_array_equal(column, values)
