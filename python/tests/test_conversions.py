"""The six conversions, and the query columns made with them, against the C
exports called through ctypes."""

import numpy as np
import pytest

import koradata
import reference
from reference import CReader

needs_conversions = pytest.mark.skipif(
    not koradata.HAVE_CONVERSIONS, reason="libkoradata's header declares no conversions")

CASES = [
    ("index_to_mz", "kora_index_to_mz", [0.0, 1.5, 1000.0, 250000.25, 399999.0]),
    ("mz_to_index", "kora_mz_to_index", [50.0, 100.0, 922.5, 1500.0]),
    ("scan_to_inv_mobility", "kora_scannum_to_oneoverk0", [0.0, 10.5, 400.0, 917.0]),
    ("inv_mobility_to_scan", "kora_oneoverk0_to_scannum", [0.6, 0.8, 1.0, 1.2]),
    ("scan_to_voltage", "kora_scannum_to_voltage", [0.0, 100.0, 917.0]),
    ("voltage_to_scan", "kora_voltage_to_scannum", [190.0, 150.0, 70.0]),
]


@needs_conversions
@pytest.mark.parametrize("method,export,values", CASES, ids=[c[0] for c in CASES])
def test_conversion_equals_the_c_export(sample, method, export, values):
    reader = CReader(sample)
    try:
        with koradata.Analysis(sample) as analysis:
            for frame in (1, 3):
                want = reader.convert(export, frame, values)
                got = getattr(analysis, method)(frame, values)
                assert got.dtype == np.float64
                np.testing.assert_array_equal(got, want)
                # Shape follows the input: a scalar gives a scalar.
                assert getattr(analysis, method)(frame, values[0]) == want[0]
                grid = np.array(values[:2] * 2).reshape(2, 2)
                assert getattr(analysis, method)(frame, grid).shape == (2, 2)
    finally:
        reader.close()


@needs_conversions
def test_conversion_of_a_missing_frame_carries_the_library_text(sample):
    reader = CReader(sample)
    try:
        reader.convert("kora_index_to_mz", 77, [1.0])
    except reference.CError as e:
        text = str(e)
    finally:
        reader.close()
    with koradata.Analysis(sample) as analysis:
        with pytest.raises(koradata.Error) as e:
            analysis.index_to_mz(77, [1.0])
    assert str(e.value) == text


@needs_conversions
@pytest.mark.parametrize("threads", [1, 2])
def test_query_converts_every_peak(sample, threads):
    reader = CReader(sample)
    try:
        with koradata.Analysis(sample) as analysis:
            got = analysis.query(columns=("frame", "scan", "tof", "mz", "inv_ion_mobility"),
                                 threads=threads)
        for frame in (1, 2, 3):
            part = got[got["frame"] == frame]
            np.testing.assert_array_equal(
                part["mz"], reader.convert("kora_index_to_mz", frame, part["tof"]))
            np.testing.assert_array_equal(
                part["inv_ion_mobility"],
                reader.convert("kora_scannum_to_oneoverk0", frame, part["scan"]))
    finally:
        reader.close()


@pytest.mark.skipif(koradata.HAVE_CONVERSIONS, reason="this build converts")
@pytest.mark.parametrize("use", [
    lambda a: a.index_to_mz(1, [1.0]),
    lambda a: a.query(columns=("tof", "mz")),
    lambda a: a.query(columns=("inv_ion_mobility",)),
], ids=["index_to_mz", "mz column", "inv_ion_mobility column"])
def test_without_conversions_mz_and_mobility_raise(sample, use):
    with koradata.Analysis(sample) as analysis:
        with pytest.raises(koradata.Error) as e:
            use(analysis)
    assert str(e.value) == "this build of koradata has no m/z or 1/K0 conversions"
