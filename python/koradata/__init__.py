"""Read-only access to the raw data of an ion-mobility time-of-flight mass
spectrometer, over libkoradata.

>>> import koradata
>>> with koradata.Analysis("sample-analysis") as analysis:
...     peaks = analysis.query(columns=("frame", "scan", "tof", "intensity"))

Failures of the library raise :class:`Error` (a :class:`RuntimeError`) with the
library's own text.
"""

from . import _koradata
from ._version import __version__
from .analysis import COLUMNS, DEFAULT_COLUMNS, Analysis, Error, Scans

Error.__module__ = __name__

#: Whether this build converts between TOF index and m/z and between scan
#: number, 1/K0 and ramp voltage.
HAVE_CONVERSIONS = bool(_koradata.have_conversions)

__all__ = ["Analysis", "COLUMNS", "DEFAULT_COLUMNS", "Error", "HAVE_CONVERSIONS", "Scans"]
