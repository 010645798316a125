"""Writing peaks to a file a few frames at a time, so that memory does not
grow with the analysis: CSV, TSV, or a numpy ``.npz`` archive of one array
per column."""

import os
import shutil
import tempfile
import zipfile

import numpy as np

from .analysis import COLUMN_DTYPES

#: Frames read per query while exporting.
FRAMES_PER_CHUNK = 8


def iter_frame_chunks(analysis, frame_ids, columns, threads=None, on_frames=None,
                      errors="raise"):
    """Yields, per run of FRAMES_PER_CHUNK frames, its frame ids and the
    DataFrame of their peaks (a query with ``errors``, see
    :meth:`Analysis.query`); on_frames(n) is called after each run with its
    number of frames."""
    for start in range(0, len(frame_ids), FRAMES_PER_CHUNK):
        ids = frame_ids[start:start + FRAMES_PER_CHUNK]
        yield ids, analysis.query(frames=ids, columns=columns, threads=threads, errors=errors)
        if on_frames is not None:
            on_frames(len(ids))


def iter_chunks(analysis, frame_ids, columns, threads=None, on_frames=None):
    """The DataFrames of :func:`iter_frame_chunks`."""
    for _, chunk in iter_frame_chunks(analysis, frame_ids, columns, threads, on_frames):
        yield chunk


def write_text(chunks, path, separator):
    """Writes the chunks as one delimited table with a header line; floats in
    full precision, so that reading the file back gives the same numbers."""
    with open(path, "w", newline="") as out:
        header = True
        for chunk in chunks:
            chunk.to_csv(out, sep=separator, index=False, header=header)
            header = False


def write_npz(chunks, path, columns):
    """Writes the chunks as an uncompressed ``.npz`` archive with one array
    per column. Each column is first gathered in a temporary file, as the
    length of an array must be known before its data."""
    with tempfile.TemporaryDirectory(dir=os.path.dirname(os.path.abspath(path))) as tmp:
        parts = {c: open(os.path.join(tmp, c), "w+b") for c in columns}
        rows = 0
        try:
            for chunk in chunks:
                for c in columns:
                    values = chunk[c].to_numpy(dtype=COLUMN_DTYPES[c])
                    parts[c].write(values.tobytes())
                rows += len(chunk)
            with zipfile.ZipFile(path, "w", allowZip64=True) as archive:
                for c in columns:
                    header = {"descr": np.lib.format.dtype_to_descr(COLUMN_DTYPES[c]),
                              "fortran_order": False, "shape": (rows,)}
                    with archive.open(c + ".npy", "w", force_zip64=True) as member:
                        np.lib.format.write_array_header_2_0(member, header)
                        parts[c].seek(0)
                        shutil.copyfileobj(parts[c], member)
        finally:
            for f in parts.values():
                f.close()
