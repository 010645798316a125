"""The tables of ``analysis.oxa`` as Python objects.

``analysis.oxa`` is read with Python's :mod:`sqlite3` in read-only mode. The
number of scans of a frame is not in the database: it is the second
little-endian 32-bit word of the frame's block in ``analysis.oxa_bin``, in both
forms of the file.
"""

import contextlib
import os
import re
import sqlite3
import struct
from pathlib import Path

import numpy as np
import pandas as pd


def _connect(directory):
    uri = Path(directory, "analysis.oxa").resolve().as_uri() + "?mode=ro"
    return contextlib.closing(sqlite3.connect(uri, uri=True))


def read_metadata(directory):
    """The ``GlobalMetadata`` rows as a dict of key to value, values as stored
    (text for the settings the library reads); the first row of a repeated key
    wins."""
    with _connect(directory) as db:
        rows = db.execute("SELECT Key, Value FROM GlobalMetadata").fetchall()
    metadata = {}
    for key, value in rows:
        metadata.setdefault(key, value)
    return metadata


def _snake_case(name):
    return re.sub(r"(?<=[a-z0-9])([A-Z])", r"_\1", name).lower()


def _scan_counts(directory, kora_ids):
    """Scans per frame from the block headers: 0 for a frame without a block
    (``KoraId`` NULL), -1 where the header cannot be read."""
    counts = np.zeros(len(kora_ids), dtype=np.int64)
    with open(Path(directory, "analysis.oxa_bin"), "rb") as f:
        fd = f.fileno()
        for i, offset in enumerate(kora_ids):
            if offset is pd.NA or offset < 0:
                continue
            header = os.pread(fd, 8, int(offset))
            counts[i] = struct.unpack("<II", header)[1] if len(header) == 8 else -1
    return counts


def read_frames(directory, schema_major):
    """The ``Frames`` table, one row per frame in ascending id.

    Columns in snake case (``Id`` becomes ``frame``, ``KoraId`` ``kora_id``,
    ``AccumulationTime`` ``accumulation_time``, ...), then two derived ones:
    ``num_scans`` (from the block header; 0 for a frame without data, -1 if the
    header cannot be read) and ``retention_time``, the start of the frame in
    seconds after the start of the first: the sum of the accumulation times
    (milliseconds) of the frames before it. Schema 1 has no accumulation
    times, and its retention times are NaN.
    """
    with _connect(directory) as db:
        frames = pd.read_sql_query("SELECT * FROM Frames ORDER BY Id", db)
    frames.columns = [_snake_case(c) for c in frames.columns]
    frames = frames.rename(columns={"id": "frame"})
    kora_id = frames["kora_id"].astype("Int64")
    # Schema 1 reads a NULL offset as 0, later schemas as "no data".
    frames["kora_id"] = kora_id.fillna(0) if schema_major == 1 else kora_id
    frames["num_scans"] = _scan_counts(directory, frames["kora_id"])
    if "accumulation_time" in frames:
        accumulated = frames["accumulation_time"].fillna(0.0).to_numpy(dtype=np.float64)
        frames["retention_time"] = (np.cumsum(accumulated) - accumulated) / 1000.0
    else:
        frames["retention_time"] = np.nan
    return frames
