"""Cameras on an IEEE 1394 bus, frames as numpy arrays.

A thin layer over the shared library: each method calls the function of the same
name and raises Error unless it succeeds. Raw frames are arrays of shape
(height, width), uint8 or uint16; images have shape (height, width, 3), blue
first, rows from bottom to top as the library stores them (`image[::-1, :, ::-1]`
is a top-down RGB view).

The library is found as the system finds shared libraries; the environment
variable ORMIDEX_LIBRARY names another file.
"""

import ctypes
import os
from ctypes import byref, c_char_p, c_float, c_int, c_uint, c_void_p
from typing import NamedTuple

import numpy as np

__all__ = ["Camera", "Error", "SubWindow", "count", "describe", "BILINEAR"]

BILINEAR = 1

_TEXTS = (
    "success",
    "no camera is open, or it could not be opened",
    "a required pointer is null",
    "there is no camera with that number",
    "the system's device enumeration is not available",
    "the camera driver failed a request",
    "the file could not be opened for writing",
    "an argument is out of range or does not fit the others",
    "the camera's imager is not one the library knows",
    "memory ran out",
    "the camera or the system answered in an unexpected way",
    "there is no preview window",
    "this camera or its firmware cannot do that",
    "the camera is not in a state for that",
    "the driver reported a condition of its own",
    "this operating system is not supported",
    "the automatic control did not settle",
    "the command took longer than a second",
    "success, with a slower imager clocking",
)

_CLOCKING_CHANGED = 18


def describe(status):
    """What a status means, in a few words."""
    return _TEXTS[status] if 0 <= status < len(_TEXTS) else "the driver's own status"


class Error(Exception):
    """A function that did not succeed; `status` is what it returned."""

    def __init__(self, status, function):
        super().__init__(f"{function}: {describe(status)}")
        self.status = status
        self.function = function


class SubWindow(NamedTuple):
    """The part of the imager's array that is read; sizes before sub-sampling."""

    factor: int
    column: int
    row: int
    width: int
    height: int


def _load():
    return ctypes.CDLL(os.environ.get("ORMIDEX_LIBRARY", "libormidex.so.1"))


class _Library:
    """The shared library, loaded when it is first used."""

    _handle = None

    def __getattr__(self, name):
        if _Library._handle is None:
            _Library._handle = _load()
        function = getattr(_Library._handle, name)
        function.restype = c_uint
        return function


_library = _Library()


def _call(name, *arguments):
    status = getattr(_library, name)(*arguments)
    if status != 0:
        raise Error(status, name)


def count():
    """The number of cameras."""
    value = c_uint()
    _call("OrmidexGetNumberDevices", c_char_p(b""), byref(value))
    return value.value


class Camera:
    """An open camera. Use it in a with statement, or call close()."""

    def __init__(self, index=0):
        self._handle = c_void_p()
        _call("OrmidexInitialize", c_char_p(b""), c_uint(index), byref(self._handle))

    def close(self):
        if self._handle:
            _call("OrmidexUninitialize", byref(self._handle))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _do(self, name, *arguments):
        _call(name, self._handle, *arguments)

    def _get(self, name, kind=c_uint):
        value = kind()
        self._do(name, byref(value))
        return value.value

    # ---- identity ----

    @property
    def serial_number(self):
        return self._get("OrmidexGetSerialNumber")

    @property
    def is_colour(self):
        return self._get("OrmidexGetImagerType") == 2

    # ---- settings ----

    @property
    def exposure_time(self):
        """Milliseconds."""
        return self._get("OrmidexGetExposureTime", c_float)

    @exposure_time.setter
    def exposure_time(self, milliseconds):
        self._do("OrmidexSetExposureTime", c_float(milliseconds), c_uint(0))

    @property
    def gains(self):
        """Red, green and blue, 0 to 63."""
        return tuple(self._get(f"OrmidexGet{colour}Gain") for colour in ("Red", "Green", "Blue"))

    @gains.setter
    def gains(self, values):
        for colour, value in zip(("Red", "Green", "Blue"), values):
            self._do(f"OrmidexSet{colour}Gain", c_uint(value))

    @property
    def sub_window(self):
        values = [c_uint() for _ in range(5)]
        self._do("OrmidexGetSubWindow", *map(byref, values))
        return SubWindow(*(value.value for value in values))

    @sub_window.setter
    def sub_window(self, window):
        self._do("OrmidexSetSubWindow", *map(c_uint, window))

    @property
    def bits_per_pixel(self):
        return self._get("OrmidexGetDataTransferSize")

    @bits_per_pixel.setter
    def bits_per_pixel(self, bits):
        try:
            self._do("OrmidexSetDataTransferSize", c_uint(bits))
        except Error as error:
            if error.status != _CLOCKING_CHANGED:
                raise

    # ---- frames ----

    def start_stream(self):
        self._do("OrmidexStartVideoStream")

    def stop_stream(self):
        self._do("OrmidexStopVideoStream")

    def read_frame(self, out=None):
        """The next raw frame; `out` is an array to read it into, of the right shape."""
        if out is None:
            out = self.make_frame()
        if not (out.flags.c_contiguous and out.flags.writeable):
            raise ValueError("the array must be contiguous and writable")
        self._do("OrmidexReturnVideoData", c_uint(out.nbytes), out.ctypes.data_as(c_void_p))
        return out

    def make_frame(self):
        """An array for raw frames of the present geometry."""
        window = self.sub_window
        kind = np.uint8 if self.bits_per_pixel == 8 else np.dtype("<u2")
        shape = (window.height // window.factor, window.width // window.factor)
        return np.zeros(shape, kind)

    def convert(self, frame, algorithm=BILINEAR):
        """A raw frame as an image: demosaiced, or grey from a monochrome camera."""
        if frame.ndim != 2 or frame.dtype not in (np.uint8, np.uint16):
            raise ValueError("a raw frame has the shape (height, width), uint8 or uint16")
        frame = np.ascontiguousarray(frame)
        height, width = frame.shape
        image = np.zeros((height, width, 3), np.uint8)
        arguments = [
            frame.ctypes.data_as(c_void_p),
            c_uint(width),
            c_uint(height),
            image.ctypes.data_as(c_void_p),
        ]
        bits = frame.dtype.itemsize * 8
        if self.is_colour:
            self._do(f"OrmidexConvertColor{bits}BppTo24Bpp", *arguments, c_uint(algorithm))
        else:
            self._do(f"OrmidexConvertMono{bits}BppTo24Bpp", *arguments)
        return image

    # ---- automatic control; the stream must run ----

    def auto_exposure(self, target_percent=50):
        self._do("OrmidexAutoExposure", *map(c_uint, (target_percent, 0, 0, 0, 0, 0)))

    def white_balance(self):
        self._do("OrmidexWhiteBalance", *map(c_uint, (0, 0, 0, 0, 0, 1, 1, 1)))

    # ---- files ----

    def save_bitmap(self, image, path):
        """Writes an image of the camera's frame size."""
        image = self._checked(image, np.uint8, 3)
        self._do("OrmidexSaveFrameAsBitmap", image.ctypes.data_as(c_void_p), os.fsencode(path))

    def save_jpeg(self, image, path):
        image = self._checked(image, np.uint8, 3)
        self._do("OrmidexSaveFrameAsJpeg", image.ctypes.data_as(c_void_p), os.fsencode(path))

    def save_tiff(self, frame, path, algorithm=BILINEAR):
        kind = np.uint8 if self.bits_per_pixel == 8 else np.dtype("<u2")
        frame = self._checked(frame, kind, None)
        self._do(
            "OrmidexSaveFrameAsTiff",
            frame.ctypes.data_as(c_void_p),
            os.fsencode(path),
            c_uint(0),
            c_int(0),
            c_uint(algorithm),
        )

    def _checked(self, array, kind, channels):
        """The library reads as many bytes as its frame size says, so that must fit."""
        window = self.sub_window
        shape = (window.height // window.factor, window.width // window.factor)
        if channels is not None:
            shape += (channels,)
        if array.shape != shape or array.dtype != kind:
            raise ValueError(f"expected an array of shape {shape} and type {np.dtype(kind)}")
        return np.ascontiguousarray(array)
