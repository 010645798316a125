"""A small reader over the C interface with ctypes, independent of the
koradata package: the reference its tests compare against."""

import ctypes
import os

import numpy as np

CONVERSIONS = ("kora_index_to_mz", "kora_mz_to_index", "kora_scannum_to_oneoverk0",
               "kora_oneoverk0_to_scannum", "kora_scannum_to_voltage", "kora_voltage_to_scannum")


def _load():
    lib = ctypes.CDLL(os.environ["KORA_LIBRARY"])
    lib.kora_open.restype = ctypes.c_uint64
    lib.kora_open.argtypes = [ctypes.c_char_p, ctypes.c_uint32]
    lib.kora_close.argtypes = [ctypes.c_uint64]
    lib.kora_get_last_error_string.restype = ctypes.c_uint32
    lib.kora_get_last_error_string.argtypes = [ctypes.c_char_p, ctypes.c_uint32]
    for name in ("kora_read_scans_v2", "kora_read_scans_internal"):
        f = getattr(lib, name)
        f.restype = ctypes.c_uint32
        f.argtypes = [ctypes.c_uint64, ctypes.c_int64, ctypes.c_uint32, ctypes.c_uint32,
                      ctypes.c_void_p, ctypes.c_uint32]
    for name in CONVERSIONS:
        if hasattr(lib, name):
            f = getattr(lib, name)
            f.restype = ctypes.c_int
            f.argtypes = [ctypes.c_uint64, ctypes.c_int64, ctypes.POINTER(ctypes.c_double),
                          ctypes.POINTER(ctypes.c_double), ctypes.c_uint32]
    return lib


LIB = _load()


class CError(Exception):
    pass


def last_error():
    buf = ctypes.create_string_buffer(4096)
    LIB.kora_get_last_error_string(buf, len(buf))
    return buf.value.decode()


def has_conversions():
    return all(hasattr(LIB, name) for name in CONVERSIONS)


class CReader:
    """One handle. Reads and conversions raise CError with the library's text."""

    def __init__(self, path):
        self.handle = LIB.kora_open(os.fsencode(path), 0)
        if not self.handle:
            raise CError(last_error())

    def close(self):
        LIB.kora_close(self.handle)

    def read(self, frame, begin, end, raw=False):
        """(scan, tof, intensity) lists, walked scan by scan."""
        f = LIB.kora_read_scans_internal if raw else LIB.kora_read_scans_v2
        needed = f(self.handle, frame, begin, end, None, 0)
        if needed == 0:
            raise CError(last_error())
        buf = (ctypes.c_uint32 * (needed // 4))()
        if f(self.handle, frame, begin, end, buf, needed) != needed:
            raise CError(last_error())
        words = list(buf)
        scans, tofs, intensities = [], [], []
        pos = end - begin
        for s in range(end - begin):
            count = words[s]
            scans += [begin + s] * count
            tofs += words[pos:pos + count]
            intensities += words[pos + count:pos + 2 * count]
            pos += 2 * count
        return scans, tofs, intensities

    def convert(self, name, frame, values):
        values = np.ascontiguousarray(values, dtype=np.float64)
        out = np.empty_like(values)
        ptr = ctypes.POINTER(ctypes.c_double)
        if not getattr(LIB, name)(self.handle, frame, values.ctypes.data_as(ptr),
                                  out.ctypes.data_as(ptr), len(values)):
            raise CError(last_error())
        return out
