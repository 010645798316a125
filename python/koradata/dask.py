"""Analyses as one dask DataFrame, for cohorts on a dask.distributed cluster.

>>> from dask.distributed import Client
>>> import koradata.dask
>>> client = Client("scheduler:8786")
>>> peaks = koradata.dask.read_analyses(paths, columns=("frame", "intensity"))
>>> totals = peaks.groupby(["analysis", "frame"])["intensity"].sum().compute()

Each partition is one run of frames of one analysis, read by whichever worker
runs it: the paths must be reachable from the workers.
"""

import os

import numpy as np
import pandas as pd

from .analysis import COLUMN_DTYPES, DEFAULT_COLUMNS, Analysis, check_query_arguments


def _read_partition(path, frames, columns, recalibrated, errors, categories):
    with Analysis(path, recalibrated=recalibrated) as analysis:
        table = analysis.query(frames=frames, columns=columns, threads=1, errors=errors)
    table.insert(0, "analysis", pd.Categorical([path] * len(table), categories=categories))
    return table


def _meta(columns, categories):
    meta = {"analysis": pd.Categorical([], categories=categories)}
    meta.update({c: np.empty(0, dtype=COLUMN_DTYPES[c]) for c in columns})
    return pd.DataFrame(meta)


def read_analyses(paths, frames_per_partition=64, columns=DEFAULT_COLUMNS, recalibrated=False,
                  errors="raise"):
    """Peaks of one or many analyses as a ``dask.dataframe.DataFrame``.

    Parameters
    ----------
    paths : str, os.PathLike or iterable of them
        Analysis directories.
    frames_per_partition : int
        Frames per partition; each partition reads its frames on one thread.
    columns : sequence of str
        Columns as in :meth:`koradata.Analysis.query`; a categorical column
        ``analysis`` (the path as given) comes first.
    recalibrated : bool
        As in :class:`koradata.Analysis`.
    errors : {'raise', 'skip'}
        As in :meth:`koradata.Analysis.query`; skipped frames are not
        reported.

    Returns
    -------
    dask.dataframe.DataFrame
        One row per peak; partitions in the order of ``paths`` and of frame
        ids. The frame lists are read here, the peaks when computed.

    Raises
    ------
    koradata.Error
        An analysis that cannot be opened (here) or a frame that cannot be
        read (when computed, with ``errors='raise'``).
    """
    import dask
    import dask.dataframe as dd

    if isinstance(paths, (str, os.PathLike)):
        paths = [paths]
    paths = [os.fspath(p) for p in paths]
    if frames_per_partition < 1:
        raise ValueError("frames_per_partition must be at least 1")
    columns = check_query_arguments(columns, errors)
    categories = list(dict.fromkeys(paths))
    parts = []
    for path in paths:
        with Analysis(path, recalibrated=recalibrated) as analysis:
            ids = analysis.frame_ids()
        for start in range(0, len(ids), frames_per_partition):
            frames = ids[start:start + frames_per_partition]
            parts.append(dask.delayed(_read_partition)(path, frames, columns, recalibrated,
                                                       errors, categories))
    meta = _meta(columns, categories)
    if not parts:
        return dd.from_pandas(meta, npartitions=1)
    return dd.from_delayed(parts, meta=meta, verify_meta=False)
