"""mzML export, checked by two independent readers: OpenMS's FileInfo
(schema, vocabulary and index validation) and pymzml (arrays read back)."""

import hashlib
import re
import shutil
import subprocess
import sys

import numpy as np
import pymzml
import pytest
from lxml import etree

import koradata
from conftest import DAMAGED_FRAME
from koradata._mzml_terms import MOBILITY_ARRAY

OBO = {"MS": "/usr/share/openms/CV/psi-ms.obo", "UO": "/usr/share/openms/CV/unit.obo"}
NS = {"m": "http://psi.hupo.org/ms/mzml"}
#: What each layout exports of the 3-frame sample: the frames (the scan
#: layout, at about 900 spectra per frame, only the second to keep the
#: tests short), and the spectra and peaks that makes.
EXPORTS = {"frame": (slice(1, 4), 3, 86734), "scan": (slice(2, 3), 908, 29133)}
#: The library's text for the damaged frame, by compression type.
DAMAGED_TEXTS = {"1": "CorruptFrameDataError for FrameId=3: Error reading scan-range data.",
                 "2": "CorruptFrameDataError for FrameId=3: Error reading frame data."}


def kora(*args):
    return subprocess.run([sys.executable, "-m", "koradata", *map(str, args)],
                          capture_output=True, text=True)


def file_info(*args):
    """FileInfo's output; the bootstrap installs it, so a missing tool fails."""
    tool = shutil.which("FileInfo")
    assert tool is not None, "FileInfo (Debian package topp) is not installed"
    return subprocess.run([tool, *map(str, args)], capture_output=True, text=True,
                          check=True).stdout


def assert_valid(path):
    out = file_info("-v", "-in", path)
    assert "Success - the file is valid!" in out, out
    assert "Success - the file is semantically valid!" in out, out


def obo_names(path):
    """Accession to name of every term of an OBO file."""
    with open(path, encoding="utf-8") as f:
        return dict(re.findall(r"^id: (\S+)\nname: (.+)$", f.read(), re.M))


@pytest.fixture(scope="module", params=[("frame", "zlib"), ("frame", "none"),
                                        ("scan", "zlib"), ("scan", "none")],
                ids=lambda p: "-".join(p))
def exported(request, sample, tmp_path_factory):
    """The sample exported in each layout and compression: (analysis path,
    layout, mzML path). The LZF sample goes through `kora export`, the
    Zstandard one through Analysis.to_mzml."""
    layout, compress = request.param
    frames = EXPORTS[layout][0]
    out = tmp_path_factory.mktemp("mzml") / "sample.mzML"
    with koradata.Analysis(sample) as analysis:
        through_command = analysis.metadata["KoraCompressionType"] == "1"
        if not through_command:
            assert analysis.to_mzml(out, frames, layout, compress) == {}
    if through_command:
        result = kora("export", sample, "-o", out, "--format", "mzml", "--layout", layout,
                      "--compress", compress, "--frames", f"{frames.start}:{frames.stop}")
        assert (result.returncode, result.stdout, result.stderr) == (0, "", "")
    return sample, layout, out


def test_openms_validates_the_file_and_its_index(exported):
    _, layout, path = exported
    assert_valid(path)
    # -i checks the offsets and then reports as -in does.
    out = file_info("-i", "-in", path)
    _, spectra, peaks = EXPORTS[layout]
    assert f"Found a valid indexed mzML XML File with {spectra} spectra and 0 chromatograms." \
        in out
    assert f"Number of spectra: {spectra}\n" in out
    assert f"Total number of peaks: {peaks}\n" in out
    assert ("retention time: 0.00 .. 0.20 sec" if layout == "frame"
            else "retention time: 0.10 .. 0.10 sec") in out


def test_index_offsets_and_checksum(exported):
    _, layout, path = exported
    data = path.read_bytes()
    tree = etree.fromstring(data)
    offsets = tree.findall("m:indexList/m:index[@name='spectrum']/m:offset", NS)
    ids = [s.get("id") for s in tree.iterfind("m:mzML/m:run/m:spectrumList/m:spectrum", NS)]
    assert [o.get("idRef") for o in offsets] == ids
    for index, offset in enumerate(offsets):
        assert data[int(offset.text):].startswith(
            f'<spectrum index="{index}" id="{offset.get("idRef")}"'.encode())
    assert ids[:2] == (["frame=1", "frame=2"] if layout == "frame"
                       else ["frame=2 scan=4", "frame=2 scan=7"])
    list_offset = int(tree.findtext("m:indexListOffset", namespaces=NS))
    assert data[list_offset:].startswith(b'<indexList count="1">')
    end = data.index(b"<fileChecksum>") + len(b"<fileChecksum>")
    assert tree.findtext("m:fileChecksum", namespaces=NS) == hashlib.sha1(data[:end]).hexdigest()


def test_every_term_is_the_vocabulary_s(exported):
    _, _, path = exported
    names = {prefix: obo_names(f) for prefix, f in OBO.items()}
    used = set()
    for param in etree.parse(str(path)).iterfind(".//m:cvParam", NS):
        used.add((param.get("cvRef"), param.get("accession"), param.get("name")))
        if param.get("unitAccession") is not None:
            used.add((param.get("unitCvRef"), param.get("unitAccession"), param.get("unitName")))
    assert used
    for cv, accession, name in sorted(used):
        assert names[cv].get(accession) == name, (cv, accession, name)
    assert names["MS"]["MS:1003006"] == MOBILITY_ARRAY


def sorted_peaks(peaks):
    order = np.argsort(peaks["mz"].to_numpy(), kind="stable")
    return {c: peaks[c].to_numpy()[order] for c in ("mz", "intensity", "inv_ion_mobility")}


def test_pymzml_reads_back_what_query_gives(exported):
    sample, layout, path = exported
    with koradata.Analysis(sample) as analysis:
        peaks = analysis.query(frames=EXPORTS[layout][0],
                               columns=("frame", "scan", "mz", "intensity", "inv_ion_mobility"))
        times = analysis.frames.set_index("frame")["retention_time"]
    if layout == "frame":
        want = [(f"frame={f}", f, None, p) for f, p in peaks.groupby("frame", sort=True)]
    else:
        want = [(f"frame={f} scan={s}", f, s, p)
                for (f, s), p in peaks.groupby(["frame", "scan"], sort=True)]
    run = pymzml.run.Reader(str(path))
    got = list(run)
    assert run.get_spectrum_count() == len(got) == len(want)
    for spectrum, (spectrum_id, frame, scan, frame_peaks) in zip(got, want):
        expected = sorted_peaks(frame_peaks)
        assert spectrum.element.get("id") == spectrum_id
        assert spectrum.ms_level == 1
        assert spectrum.scan_time == (times[frame], "second")
        assert spectrum.mz.dtype == np.float64 and spectrum.i.dtype == np.float32
        np.testing.assert_array_equal(spectrum.mz, expected["mz"])
        np.testing.assert_array_equal(spectrum.i.astype(np.uint32), expected["intensity"])
        if scan is None:
            mobility = spectrum.get_array("non-standard data array")
            assert mobility.dtype == np.float64
            np.testing.assert_array_equal(mobility, expected["inv_ion_mobility"])
        else:
            assert float(spectrum.get("MS:1002815")) == expected["inv_ion_mobility"][0]


def damaged_text(path):
    with koradata.Analysis(path) as analysis:
        return DAMAGED_TEXTS[analysis.metadata["KoraCompressionType"]]


def test_damaged_frame_is_skipped_and_listed(damaged, tmp_path):
    out = tmp_path / "damaged.mzML"
    result = kora("export", damaged, "-o", out, "--errors", "skip")
    assert (result.returncode, result.stdout) == (0, "")
    assert result.stderr == f"kora: skipped frame {DAMAGED_FRAME}: {damaged_text(damaged)}\n"
    assert_valid(out)
    assert [s.element.get("id") for s in pymzml.run.Reader(str(out))] == \
        ["frame=1", "frame=2", "frame=4", "frame=5"]


def test_damaged_frame_stops_the_export_without_a_file(damaged, tmp_path):
    out = tmp_path / "damaged.mzML"
    result = kora("export", damaged, "-o", out, "--format", "mzml")
    assert (result.returncode, result.stdout) == (1, "")
    assert result.stderr == f"kora: {damaged_text(damaged)}\n"
    assert not out.exists()
    assert list(tmp_path.iterdir()) == []


def test_to_mzml_returns_the_skipped_frames(damaged, tmp_path):
    with koradata.Analysis(damaged) as analysis:
        skipped = analysis.to_mzml(tmp_path / "part.mzML", frames=slice(2, 5), layout="scan",
                                   errors="skip")
    assert skipped == {DAMAGED_FRAME: damaged_text(damaged)}
    ids = {s.element.get("id").split()[0] for s in pymzml.run.Reader(str(tmp_path / "part.mzML"))}
    assert ids == {"frame=2", "frame=4"}


@pytest.mark.parametrize("argument,message", [
    ({"layout": "peak"}, "layout must be 'frame' or 'scan', not 'peak'"),
    ({"compress": "gzip"}, "compress must be 'zlib' or 'none', not 'gzip'"),
    ({"errors": "ignore"}, "errors must be 'raise' or 'skip', not 'ignore'"),
])
def test_to_mzml_refuses_unknown_options(sample, tmp_path, argument, message):
    with koradata.Analysis(sample) as analysis:
        with pytest.raises(ValueError) as e:
            analysis.to_mzml(tmp_path / "x.mzML", **argument)
    assert str(e.value) == message
    assert not (tmp_path / "x.mzML").exists()


def test_unwritable_output_fails_with_its_name(sample):
    result = kora("export", sample, "-o", "/nonexistent/dir/out.mzML")
    assert (result.returncode, result.stdout) == (1, "")
    assert result.stderr == \
        "kora: [Errno 2] No such file or directory: '/nonexistent/dir/out.mzML'\n"
