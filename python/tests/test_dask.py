"""koradata.dask on a LocalCluster of two worker processes."""

import pandas as pd
import pandas.testing as pdt
import pytest

import koradata
import koradata.dask
from conftest import write_sample


def test_cluster_result_equals_local_query(tmp_path):
    distributed = pytest.importorskip("distributed")
    paths = [write_sample(tmp_path / "a", 2, frames=3, seed=5),
             write_sample(tmp_path / "b", 1, frames=2, seed=6)]
    columns = ("frame", "scan", "tof", "intensity", "retention_time")
    want = []
    for path in paths:
        with koradata.Analysis(path) as analysis:
            table = analysis.query(columns=columns)
        table.insert(0, "analysis", pd.Categorical([path] * len(table), categories=paths))
        want.append(table)
    want = pd.concat(want, ignore_index=True)

    peaks = koradata.dask.read_analyses(paths, frames_per_partition=2, columns=columns)
    assert peaks.npartitions == 3
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster:
        with distributed.Client(cluster):
            got = peaks.compute().reset_index(drop=True)
    pdt.assert_frame_equal(got, want)
