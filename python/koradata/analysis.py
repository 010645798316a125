"""An open analysis directory: scans as numpy arrays, peaks as pandas frames."""

import collections
import os
import operator

import numpy as np
import pandas as pd

from . import _koradata, _tables

Error = _koradata.Error

#: Columns of :meth:`Analysis.query`, in their usual order, with their dtypes.
COLUMN_DTYPES = {"frame": np.dtype(np.int64), "scan": np.dtype(np.uint32),
                 "tof": np.dtype(np.uint32), "intensity": np.dtype(np.uint32),
                 "mz": np.dtype(np.float64), "inv_ion_mobility": np.dtype(np.float64),
                 "retention_time": np.dtype(np.float64)}
COLUMNS = tuple(COLUMN_DTYPES)
#: The columns :meth:`Analysis.query` gives when none are named.
DEFAULT_COLUMNS = ("frame", "scan", "tof", "intensity")
_CONVERTED = ("mz", "inv_ion_mobility")

#: Peaks of a range of scans, as returned by :meth:`Analysis.read_scans`.
Scans = collections.namedtuple("Scans", ["scan", "tof", "intensity"])

# Conversion numbers of the extension module, in the library's order.
_INDEX_TO_MZ, _MZ_TO_INDEX, _SCAN_TO_INV_MOBILITY = 0, 1, 2
_INV_MOBILITY_TO_SCAN, _SCAN_TO_VOLTAGE, _VOLTAGE_TO_SCAN = 3, 4, 5


def check_query_arguments(columns, errors):
    """The columns as a tuple; ValueError for an unknown column or errors
    value."""
    columns = tuple(columns)
    unknown = [c for c in columns if c not in COLUMNS]
    if unknown:
        raise ValueError(f"unknown column {unknown[0]!r}; columns are {', '.join(COLUMNS)}")
    if errors not in ("raise", "skip"):
        raise ValueError(f"errors must be 'raise' or 'skip', not {errors!r}")
    return columns


class Analysis:
    """An open analysis directory (``analysis.oxa``, ``analysis.oxa_bin`` and
    perhaps ``calibration.sqlite``).

    Use it as a context manager, or call :meth:`close`. Every method may be
    called from any thread; calls on one analysis take turns.

    Parameters
    ----------
    path : str or os.PathLike
        The analysis directory.
    recalibrated : bool
        Convert with the latest complete recalibration state of
        ``calibration.sqlite``; the analysis falls back to its own calibration
        when there is none.

    Raises
    ------
    Error
        With the library's text, e.g. "Specified analysis directory does not
        exist.".
    """

    def __init__(self, path, recalibrated=False):
        self._path = os.fspath(path)
        self._recalibrated = bool(recalibrated)
        self._handle = _koradata.Handle(self._path, self._recalibrated)
        self._metadata = None
        self._frames = None
        self._scans_by_frame = None

    def close(self):
        """Closes the analysis; later use raises :class:`Error`. Closing twice
        is harmless."""
        self._handle.close()

    @property
    def closed(self):
        return self._handle.closed

    @property
    def path(self):
        return self._path

    @property
    def recalibrated(self):
        return self._recalibrated

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()

    def __repr__(self):
        state = " (closed)" if self.closed else ""
        return f"<koradata.Analysis {self._path!r}{state}>"

    @property
    def metadata(self):
        """dict: the global metadata, key to value as stored."""
        self._handle.check_open()
        if self._metadata is None:
            self._metadata = _tables.read_metadata(self._path)
        return dict(self._metadata)

    @property
    def frames(self):
        """pandas.DataFrame: the ``Frames`` table, one row per frame in
        ascending id, with the derived columns ``num_scans`` and
        ``retention_time`` (seconds); see :func:`koradata._tables.read_frames`."""
        return self._frame_table().copy()

    def _frame_table(self):
        self._handle.check_open()
        if self._frames is None:
            major = int(self.metadata.get("SchemaVersionMajor", 3))
            self._frames = _tables.read_frames(self._path, major)
        return self._frames

    def _scan_counts(self, frame_ids):
        """Scans of each frame id; -1 where unknown (no such row, or an
        unreadable header), which lets the library say what is wrong."""
        table = self._frame_table()
        if self._scans_by_frame is None:
            self._scans_by_frame = table.set_index("frame")["num_scans"]
        return self._scans_by_frame.reindex(frame_ids, fill_value=-1).to_numpy(dtype=np.int64)

    def read_scans(self, frame, scan_begin=0, scan_end=None, raw=False):
        """Reads the peaks of scans ``[scan_begin, scan_end)`` of one frame.

        Parameters
        ----------
        frame : int
            Frame id (the ``frame`` column of :attr:`frames`).
        scan_begin, scan_end : int
            Scan numbers, from 0; ``scan_end`` is exclusive and defaults to
            the frame's number of scans.
        raw : bool
            Intensities as stored; by default they are normalised by the
            analysis's default (as ``kora_read_scans_v2``).

        Returns
        -------
        Scans
            Named tuple of three uint32 arrays of equal length, one entry per
            peak: ``scan``, ``tof`` (time-of-flight index) and ``intensity``;
            scans ascending, peaks in stored order.

        Raises
        ------
        Error
            With the library's text, e.g. "scan_end must be > scan_begin".
        """
        frame = operator.index(frame)
        if scan_end is None:
            scans = int(self._scan_counts([frame])[0])
            # Unknown: one scan, so that the library reports the frame's fault.
            scan_end = scans if scans >= 0 else scan_begin + 1
        return Scans(*self._handle.read_scans(frame, scan_begin, scan_end, bool(raw)))

    def _convert(self, kind, frame, values):
        values = np.asarray(values, dtype=np.float64)
        out = self._handle.convert(kind, operator.index(frame), values.ravel())
        return out.reshape(values.shape)

    def index_to_mz(self, frame, tof):
        """m/z of time-of-flight indices (array-like of float) of ``frame``;
        a float64 array of the same shape. Raises :class:`Error`."""
        return self._convert(_INDEX_TO_MZ, frame, tof)

    def mz_to_index(self, frame, mz):
        """Time-of-flight indices (float64, fractional) of m/z values of
        ``frame``. Raises :class:`Error`."""
        return self._convert(_MZ_TO_INDEX, frame, mz)

    def scan_to_inv_mobility(self, frame, scan):
        """1/K0 (V s/cm^2) of scan numbers (float) of ``frame``. Raises
        :class:`Error`."""
        return self._convert(_SCAN_TO_INV_MOBILITY, frame, scan)

    def inv_mobility_to_scan(self, frame, inv_mobility):
        """Scan numbers (float64, fractional) of 1/K0 values (V s/cm^2) of
        ``frame``. Raises :class:`Error`."""
        return self._convert(_INV_MOBILITY_TO_SCAN, frame, inv_mobility)

    def scan_to_voltage(self, frame, scan):
        """Ramp voltage (V) of scan numbers of ``frame``. Raises :class:`Error`."""
        return self._convert(_SCAN_TO_VOLTAGE, frame, scan)

    def voltage_to_scan(self, frame, voltage):
        """Scan numbers (float64) of ramp voltages (V) of ``frame``. Raises
        :class:`Error`."""
        return self._convert(_VOLTAGE_TO_SCAN, frame, voltage)

    def frame_ids(self, frames=None):
        """The frame ids that ``frames`` names, as an int64 array: all frames
        for None, else an int, a slice of ids (``slice(10, 20)`` for ids 10 to
        19; open ends reach the first or last frame) or an iterable of ids."""
        all_ids = self._frame_table()["frame"].to_numpy(dtype=np.int64)
        if frames is None:
            return all_ids
        if isinstance(frames, slice):
            if frames.step not in (None, 1):
                raise ValueError("a slice of frame ids takes no step")
            keep = np.ones(len(all_ids), dtype=bool)
            if frames.start is not None:
                keep &= all_ids >= frames.start
            if frames.stop is not None:
                keep &= all_ids < frames.stop
            return all_ids[keep]
        if np.ndim(frames) == 0:
            return np.array([operator.index(frames)], dtype=np.int64)
        return np.asarray(list(frames), dtype=np.int64).reshape(-1)

    def query(self, frames=None, columns=DEFAULT_COLUMNS, threads=None, progress=False,
              errors="raise", raw=False):
        """Reads the peaks of many frames into one table, one row per peak.

        Frames are decoded in parallel, each thread with its own handle on
        the analysis, without holding the GIL.

        Parameters
        ----------
        frames : None, int, slice or iterable of int
            Frame ids (see :meth:`frame_ids`); all frames by default. Rows
            follow this order, then ascending scan, then stored order.
        columns : sequence of str
            Any of ``frame`` (int64), ``scan``, ``tof``, ``intensity``
            (uint32), ``mz``, ``inv_ion_mobility`` (1/K0, V s/cm^2) and
            ``retention_time`` (seconds, see :attr:`frames`), all float64.
        threads : int, optional
            Decoding threads; the number of processors by default.
        progress : bool
            Show a tqdm progress bar over frames on stderr.
        errors : {'raise', 'skip'}
            On a frame that cannot be read, ``raise`` (default) raises
            :class:`Error` with the library's text and the frame id as its
            ``frame`` attribute; ``skip`` leaves the frame out and lists it
            in ``result.attrs['skipped_frames']``, a dict of frame id to
            text. Either way the other frames are read on a fresh handle.
        raw : bool
            Intensities as stored instead of normalised.

        Returns
        -------
        pandas.DataFrame

        Raises
        ------
        Error
            A frame that cannot be read (``errors='raise'``); m/z or 1/K0
            asked of a build without conversions.
        ValueError
            An unknown column or ``errors`` value.
        """
        columns = check_query_arguments(columns, errors)
        if any(c in _CONVERTED for c in columns):
            # An empty batch fails only where the build cannot convert at all.
            self._handle.convert(_INDEX_TO_MZ, 0, np.empty(0))
        ids = self.frame_ids(frames)
        result = self._read_columns(ids, [c for c in columns if c != "retention_time"],
                                    threads, progress, errors, raw)
        table = pd.DataFrame({c: result["columns"].get(c) for c in columns
                              if c != "retention_time"}, copy=False)
        if "retention_time" in columns:
            times = self._frame_table().set_index("frame")["retention_time"]
            per_frame = times.reindex(ids).to_numpy(dtype=np.float64)
            table.insert(columns.index("retention_time"), "retention_time",
                         np.repeat(per_frame, result["peaks"]))
        if errors == "skip":
            table.attrs["skipped_frames"] = {int(ids[p]): text for p, text in result["errors"]}
        return table

    def to_mzml(self, path, frames=None, layout="frame", compress="zlib", errors="raise",
                threads=None, progress=False):
        """Writes peaks as spectra to an indexed mzML 1.1 file, a few frames
        at a time.

        Parameters
        ----------
        path : str or os.PathLike
            The mzML file; written only when the export succeeds.
        frames : None, int, slice or iterable of int
            Frame ids (see :meth:`frame_ids`), written in ascending id.
        layout : {'frame', 'scan'}
            One MS1 spectrum per frame, its peaks sorted by m/z with an
            array of their 1/K0 (V s/cm^2); or one spectrum per non-empty
            scan with the scan's 1/K0 as a scan attribute.
        compress : {'zlib', 'none'}
            Compression of the binary arrays.
        errors : {'raise', 'skip'}
            As in :meth:`query`; ``skip`` leaves unreadable frames out.
        threads : int, optional
            Decoding threads, as in :meth:`query`.
        progress : bool
            Show a tqdm progress bar over frames on stderr.

        Returns
        -------
        dict
            The skipped frames, frame id to error text.

        Raises
        ------
        Error
            As :meth:`query`; a build without conversions cannot export.
        ValueError
            An unknown ``layout``, ``compress`` or ``errors`` value.
        """
        from ._mzml import write_mzml

        bar = None
        if progress:
            from tqdm import tqdm

            bar = tqdm(total=len(np.unique(self.frame_ids(frames))), unit="frame")
        try:
            return write_mzml(self, path, frames, layout, compress, errors, threads,
                              None if bar is None else bar.update)
        finally:
            if bar is not None:
                bar.close()

    def peak_counts(self, frames=None, threads=None, progress=False):
        """Peaks per frame (int64 array, in the order of :meth:`frame_ids`);
        reads every frame. Raises :class:`Error` as :meth:`query`."""
        ids = self.frame_ids(frames)
        return self._read_columns(ids, [], threads, progress, "raise", False)["peaks"]

    def _read_columns(self, ids, columns, threads, progress, errors, raw):
        if threads is None:
            threads = os.cpu_count() or 1
        if threads < 1:
            raise ValueError("threads must be at least 1")
        report = None
        bar = None
        if progress:
            from tqdm import tqdm

            bar = tqdm(total=len(ids), unit="frame")

            def report(done):
                bar.update(done - bar.n)

        try:
            result = self._handle.query(ids, self._scan_counts(ids), columns, bool(raw),
                                        errors == "raise", int(threads), report)
        finally:
            if bar is not None:
                bar.close()
        if errors == "raise" and result["errors"]:
            position, text = result["errors"][0]
            error = Error(text)
            error.frame = int(ids[position])
            raise error
        return result
