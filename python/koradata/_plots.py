"""Pictures of an analysis with matplotlib, without a display."""

import matplotlib

matplotlib.use("Agg")

import matplotlib.colors  # noqa: E402
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

#: Dots per inch of the figures; a size in pixels is inches times this.
DPI = 100


def _figure(width, height):
    return plt.figure(figsize=(width / DPI, height / DPI), dpi=DPI)


def frame_heat_map(peaks, path, width, height, title, axes=("mz", "inv_ion_mobility")):
    """Writes a PNG of ``width`` x ``height`` pixels: the summed intensity of
    the peaks over a grid of ``axes`` (x, y; columns of ``peaks``), on a
    logarithmic colour scale."""
    x = peaks[axes[0]].to_numpy(dtype=np.float64)
    y = peaks[axes[1]].to_numpy(dtype=np.float64)
    weights = peaks["intensity"].to_numpy(dtype=np.float64)
    bins = (max(width // 2, 1), max(height // 2, 1))
    grid, x_edges, y_edges = np.histogram2d(x, y, bins=bins, weights=weights)
    labels = {"mz": "m/z", "inv_ion_mobility": "1/K0 (V s/cm²)", "tof": "TOF index",
              "scan": "scan"}
    figure = _figure(width, height)
    try:
        ax = figure.add_subplot()
        positive = grid[grid > 0]
        norm = matplotlib.colors.LogNorm(vmin=positive.min(), vmax=positive.max()) \
            if positive.size else None
        mesh = ax.pcolormesh(x_edges, y_edges, np.ma.masked_equal(grid.T, 0), norm=norm,
                             cmap="viridis", shading="flat")
        figure.colorbar(mesh, ax=ax, label="intensity")
        ax.set_xlabel(labels[axes[0]])
        ax.set_ylabel(labels[axes[1]])
        ax.set_title(title)
        figure.tight_layout()
        figure.savefig(path, dpi=DPI)
    finally:
        plt.close(figure)


def total_ion_chromatogram(times, totals, path, width, height, title):
    """Writes a PNG of ``width`` x ``height`` pixels: the total intensity of
    each frame against its retention time (seconds)."""
    figure = _figure(width, height)
    try:
        ax = figure.add_subplot()
        ax.plot(times, totals, linewidth=1.0)
        ax.set_xlabel("retention time (s)")
        ax.set_ylabel("total intensity")
        ax.set_title(title)
        figure.tight_layout()
        figure.savefig(path, dpi=DPI)
    finally:
        plt.close(figure)
