"""mzML 1.1 export: peaks as spectra in an ``indexedmzML`` file that
proteomics software opens and seeks in.

Layouts:

- ``frame``: one MS1 spectrum per frame, peaks sorted by m/z, with an m/z,
  an intensity and a 1/K0 array of equal length (the 1/K0 of each peak's
  scan), the last a "non-standard data array" named "mean inverse reduced
  ion mobility array" (see ``_mzml_terms.MOBILITY_ARRAY``);
- ``scan``: one spectrum per non-empty scan, peaks sorted by m/z, with the
  scan's 1/K0 as a scan attribute.

Arrays are little-endian: m/z and 1/K0 64-bit floats, intensity 32-bit floats
(exact for intensities up to 2**24), base64, zlib-compressed or not. Retention
times are in seconds, 1/K0 in V s/cm^2.

The file is made in two passes over the spectra, neither of which holds more
than a few frames: the spectra are first written to a spool document beside
the output, since the spectrum count heads the list and is known only when
every frame has been read; then the output is written around a copy of them,
with the index of spectrum offsets and the SHA-1 checksum of the file up to
the checksum element. A failed export leaves no output file.
"""

import array
import base64
import contextlib
import hashlib
import os
import tempfile
import zlib

import numpy as np
from lxml import etree

from . import _export
from .analysis import check_query_arguments
from ._mzml_terms import ACCESSIONS, MOBILITY_ARRAY, VOCABULARIES
from ._version import __version__

LAYOUTS = ("frame", "scan")
COMPRESSIONS = ("zlib", "none")

_NS = "http://psi.hupo.org/ms/mzml"
_COLUMNS = ("frame", "scan", "mz", "intensity", "inv_ion_mobility")
_SOFTWARE = "koradata"
_PROCESSING = "koradata_export"
_INSTRUMENT = "instrument"
_COPY_BYTES = 1 << 20
_INDENT = ["\n" + "  " * depth for depth in range(12)]


def _tag(name):
    return "{%s}%s" % (_NS, name)


class _Sink:
    """The file-like end of an XML writer: passes bytes on to ``out``,
    counting them and, if asked, hashing them with SHA-1.
    Thread-compatible: one thread at a time."""

    def __init__(self, out, hashed=False):
        self._out = out
        self.offset = 0
        self.sha1 = hashlib.sha1() if hashed else None

    def write(self, data):
        self._out.write(data)
        self.offset += len(data)
        if self.sha1 is not None:
            self.sha1.update(data)


@contextlib.contextmanager
def _block(xf, depth, tag, /, **attrs):
    """An element on its own line at ``depth`` whose children follow."""
    xf.write(_INDENT[depth])
    with xf.element(_tag(tag), attrs):
        yield
        xf.write(_INDENT[depth])


def _leaf(xf, depth, tag, text=None, /, **attrs):
    """An element on its own line at ``depth``, with text or empty."""
    xf.write(_INDENT[depth])
    with xf.element(_tag(tag), attrs):
        if text is not None:
            xf.write(text)


def _cv_param(xf, depth, name, value=None, unit=None):
    """A cvParam of the term ``name``, with a value and the unit term
    ``unit`` if given."""
    accession = ACCESSIONS[name]
    attrs = {"cvRef": accession.split(":")[0], "accession": accession, "name": name}
    if value is not None:
        attrs["value"] = str(value)
    if unit is not None:
        unit_accession = ACCESSIONS[unit]
        attrs.update(unitCvRef=unit_accession.split(":")[0], unitAccession=unit_accession,
                     unitName=unit)
    _leaf(xf, depth, "cvParam", **attrs)


def _binary_array(xf, values, dtype, zlib_compressed, array_name, unit, array_value=None):
    """One binaryDataArray at depth 6."""
    data = np.ascontiguousarray(values, dtype=dtype).tobytes()
    if zlib_compressed:
        data = zlib.compress(data)
    text = base64.b64encode(data).decode("ascii")
    with _block(xf, 6, "binaryDataArray", encodedLength=str(len(text))):
        _cv_param(xf, 7, "64-bit float" if dtype.itemsize == 8 else "32-bit float")
        _cv_param(xf, 7, "zlib compression" if zlib_compressed else "no compression")
        _cv_param(xf, 7, array_name, array_value, unit)
        _leaf(xf, 7, "binary", text)


_POLARITIES = {"+": "positive scan", "-": "negative scan"}
_FLOAT64 = np.dtype("<f8")
_FLOAT32 = np.dtype("<f4")


class _SpectrumWriter:
    """Writes spectra into an XML writer at depth 4 and notes the frame,
    scan and offset in its sink of each (24 bytes per spectrum, all that
    grows with the export). Thread-compatible."""

    def __init__(self, xf, sink, zlib_compressed):
        self._xf = xf
        self._sink = sink
        self._zlib = zlib_compressed
        self.frames = array.array("q")
        self.scans = array.array("q")  # -1 for a frame's spectrum
        self.offsets = array.array("q")

    def write(self, frame, scan, polarity, retention_time, mz, intensity, mobility):
        """One spectrum; ``mobility`` is the array of a frame's spectrum
        (scan < 0) or the 1/K0 of a scan's. An unknown polarity or a NaN
        retention time is left out."""
        xf = self._xf
        xf.write(_INDENT[4])
        xf.flush()
        self.frames.append(frame)
        self.scans.append(scan)
        self.offsets.append(self._sink.offset)
        attrs = {"index": str(len(self.offsets) - 1), "id": spectrum_id(frame, scan),
                 "defaultArrayLength": str(len(mz))}
        with xf.element(_tag("spectrum"), attrs):
            _cv_param(xf, 5, "ms level", 1)
            _cv_param(xf, 5, "MS1 spectrum")
            _cv_param(xf, 5, "centroid spectrum")
            if polarity in _POLARITIES:
                _cv_param(xf, 5, _POLARITIES[polarity])
            _cv_param(xf, 5, "total ion current", int(intensity.sum(dtype=np.uint64)))
            if len(mz):
                base = int(np.argmax(intensity))
                _cv_param(xf, 5, "lowest observed m/z", repr(float(mz[0])), "m/z")
                _cv_param(xf, 5, "highest observed m/z", repr(float(mz[-1])), "m/z")
                _cv_param(xf, 5, "base peak m/z", repr(float(mz[base])), "m/z")
                _cv_param(xf, 5, "base peak intensity", int(intensity[base]),
                          "number of detector counts")
            with _block(xf, 5, "scanList", count="1"):
                _cv_param(xf, 6, "no combination")
                with _block(xf, 6, "scan"):
                    if not np.isnan(retention_time):
                        _cv_param(xf, 7, "scan start time", repr(float(retention_time)),
                                  "second")
                    if scan >= 0:
                        _cv_param(xf, 7, "inverse reduced ion mobility",
                                  repr(float(mobility)), "volt-second per square centimeter")
            with _block(xf, 5, "binaryDataArrayList", count="2" if scan >= 0 else "3"):
                _binary_array(xf, mz, _FLOAT64, self._zlib, "m/z array", "m/z")
                _binary_array(xf, intensity, _FLOAT32, self._zlib, "intensity array",
                              "number of detector counts")
                if scan < 0:
                    _binary_array(xf, mobility, _FLOAT64, self._zlib, "non-standard data array",
                                  "volt-second per square centimeter", MOBILITY_ARRAY)
            xf.write(_INDENT[4])


def spectrum_id(frame, scan=-1):
    """The id of the spectrum of a frame, or of one of its scans."""
    return f"frame={frame}" if scan < 0 else f"frame={frame} scan={scan}"


def _write_frame(spectra, layout, frame, polarity, retention_time, peaks):
    """The spectra of one frame; ``peaks`` holds its rows of _COLUMNS in
    ascending scan."""
    mz = peaks["mz"]
    if layout == "frame":
        order = np.argsort(mz, kind="stable")
        spectra.write(frame, -1, polarity, retention_time, mz[order],
                      peaks["intensity"][order], peaks["inv_ion_mobility"][order])
        return
    scan = peaks["scan"]
    order = np.lexsort((mz, scan))
    mz, scan = mz[order], scan[order]
    intensity, mobility = peaks["intensity"][order], peaks["inv_ion_mobility"]
    starts = np.flatnonzero(np.diff(scan, prepend=-1) != 0) if len(scan) else []
    ends = list(starts[1:]) + [len(scan)]
    for start, end in zip(starts, ends):
        spectra.write(frame, int(scan[start]), polarity, retention_time, mz[start:end],
                      intensity[start:end], mobility[order[start]])


def _write_spectra(spool, analysis, ids, layout, zlib_compressed, errors, threads, on_frames):
    """Writes the spectra of the frames ``ids`` (ascending) into ``spool`` as
    the children of a spectrumList root. Returns the spectrum writer, the
    byte range of the root's content and the skipped frames (id to text)."""
    table = analysis.frames.set_index("frame")
    polarities = table["polarity"] if "polarity" in table else {}
    sink = _Sink(spool)
    skipped = {}
    with etree.xmlfile(sink, encoding="utf-8") as xf:
        with xf.element(_tag("spectrumList"), nsmap={None: _NS}):
            xf.flush()
            start = sink.offset
            spectra = _SpectrumWriter(xf, sink, zlib_compressed)
            for chunk_ids, chunk in _export.iter_frame_chunks(analysis, ids, _COLUMNS, threads,
                                                              on_frames, errors):
                chunk_skipped = chunk.attrs.get("skipped_frames", {})
                skipped.update(chunk_skipped)
                read = [f for f in chunk_ids if int(f) not in chunk_skipped]
                columns = {c: chunk[c].to_numpy() for c in _COLUMNS}
                lows = np.searchsorted(columns["frame"], read, side="left")
                highs = np.searchsorted(columns["frame"], read, side="right")
                for frame, low, high in zip(read, lows, highs):
                    _write_frame(spectra, layout, int(frame), polarities.get(frame),
                                 table.at[frame, "retention_time"],
                                 {c: v[low:high] for c, v in columns.items()})
            xf.flush()
            end = sink.offset
    return spectra, start, end, skipped


def _write_header(xf):
    """Everything of the mzML element before its run."""
    with _block(xf, 2, "cvList", count=str(len(VOCABULARIES))):
        for cv_id, full_name, version, uri in VOCABULARIES:
            attrs = {"id": cv_id, "fullName": full_name}
            if version is not None:
                attrs["version"] = version
            attrs["URI"] = uri
            _leaf(xf, 3, "cv", **attrs)
    with _block(xf, 2, "fileDescription"):
        with _block(xf, 3, "fileContent"):
            _cv_param(xf, 4, "MS1 spectrum")
            _cv_param(xf, 4, "centroid spectrum")
    with _block(xf, 2, "softwareList", count="1"):
        with _block(xf, 3, "software", id=_SOFTWARE, version=__version__):
            _cv_param(xf, 4, "custom unreleased software tool", _SOFTWARE)
    with _block(xf, 2, "instrumentConfigurationList", count="1"):
        with _block(xf, 3, "instrumentConfiguration", id=_INSTRUMENT):
            _cv_param(xf, 4, "instrument model")
    with _block(xf, 2, "dataProcessingList", count="1"):
        with _block(xf, 3, "dataProcessing", id=_PROCESSING):
            with _block(xf, 4, "processingMethod", order="0", softwareRef=_SOFTWARE):
                _cv_param(xf, 5, "Conversion to mzML")


def _copy(source, start, end, sink):
    source.seek(start)
    left = end - start
    while left:
        data = source.read(min(left, _COPY_BYTES))
        if not data:
            raise OSError("the spool of the mzML export ended early")
        sink.write(data)
        left -= len(data)


def _write_document(out, name, spool, spectra, start, end):
    """The indexedmzML document into ``out``, with the spectra copied from
    ``spool[start:end]``."""
    sink = _Sink(out, hashed=True)
    with etree.xmlfile(sink, encoding="utf-8") as xf:
        xf.write_declaration()
        with xf.element(_tag("indexedmzML"), nsmap={None: _NS}):
            with _block(xf, 1, "mzML", id=name, version="1.1.0"):
                _write_header(xf)
                with _block(xf, 2, "run", id="run",
                            defaultInstrumentConfigurationRef=_INSTRUMENT):
                    xf.write(_INDENT[3])
                    with xf.element(_tag("spectrumList"), count=str(len(spectra.offsets)),
                                    defaultDataProcessingRef=_PROCESSING):
                        xf.flush()
                        shift = sink.offset - start
                        _copy(spool, start, end, sink)
                        xf.write(_INDENT[3])
            xf.write(_INDENT[1])
            xf.flush()
            index_offset = sink.offset
            with xf.element(_tag("indexList"), count="1"):
                with _block(xf, 2, "index", name="spectrum"):
                    for frame, scan, offset in zip(spectra.frames, spectra.scans,
                                                   spectra.offsets):
                        _leaf(xf, 3, "offset", str(offset + shift),
                              idRef=spectrum_id(frame, scan))
                xf.write(_INDENT[1])
            _leaf(xf, 1, "indexListOffset", str(index_offset))
            xf.write(_INDENT[1])
            with xf.element(_tag("fileChecksum")):
                xf.flush()
                xf.write(sink.sha1.hexdigest())
            xf.write(_INDENT[0])
    sink.write(b"\n")


def write_mzml(analysis, path, frames=None, layout="frame", compress="zlib", errors="raise",
               threads=None, on_frames=None):
    """Writes the frames ``frames`` (see :meth:`Analysis.frame_ids`, in
    ascending id, each once) of ``analysis`` to the mzML file ``path``;
    on_frames(n) is called after every few frames with their number.
    Returns the skipped frames, id to error text (empty unless ``errors`` is
    'skip')."""
    if layout not in LAYOUTS:
        raise ValueError(f"layout must be 'frame' or 'scan', not {layout!r}")
    if compress not in COMPRESSIONS:
        raise ValueError(f"compress must be 'zlib' or 'none', not {compress!r}")
    check_query_arguments(_COLUMNS, errors)
    ids = np.unique(analysis.frame_ids(frames))
    path = os.fspath(path)
    with open(path, "wb") as out:
        try:
            with tempfile.TemporaryFile(dir=os.path.dirname(os.path.abspath(path)),
                                        prefix=".kora-mzml-") as spool:
                spectra, start, end, skipped = _write_spectra(
                    spool, analysis, ids, layout, compress == "zlib", errors, threads,
                    on_frames)
                _write_document(out, os.path.basename(os.path.normpath(analysis.path)), spool,
                                spectra, start, end)
        except BaseException:
            out.close()
            os.remove(path)
            raise
    return skipped
