"""Density maps."""

from __future__ import annotations

import os
import warnings
from typing import Union

import numpy
from numpy.typing import ArrayLike, NDArray

from . import _morvanex
from ._errors import MorvanexWarning

Path = Union[str, "os.PathLike[str]"]
Numbers = Union[float, "tuple[float, float, float]", ArrayLike]


def _three(numbers: Numbers, name: str) -> tuple[float, float, float]:
    array = numpy.asarray(numbers, dtype=float)
    if array.shape not in ((), (3,)):
        raise ValueError(f"{name} must be one number or three (x, y, z), not of shape {array.shape}")
    x, y, z = numpy.broadcast_to(array, 3).tolist()
    return x, y, z


class Map:
    """A density over an orthogonal box.

    Args:
        values: real numbers of any type, order and stride, indexed z, y, x; copied as 32-bit floats.
        voxel: spacing of the voxels along x, y and z in Å, one number or three.
        origin: position of the voxel values[0, 0, 0] as x, y, z in Å.
        name: what messages and records call the map.

    Raises:
        ValueError: for an array that is no map: not of three dimensions, empty, longer than 65535 voxels along an
            axis, larger than three quarters of the machine's memory, with numbers that are complex or not finite.

    >>> density = Map(numpy.zeros((4, 5, 6)), voxel=2.0, origin=(-6.0, -5.0, -4.0))
    >>> density
    Map 'map': 6 x 5 x 4 voxels of 2 x 2 x 2 Å, origin -6, -5, -4 Å
    >>> density.values[3, 0, 0] = 1.5
    >>> density.values.sum()
    1.5
    """

    def __init__(
        self,
        values: ArrayLike,
        voxel: Numbers,
        origin: Numbers = (0.0, 0.0, 0.0),
        name: str = "map",
    ) -> None:
        array = numpy.asanyarray(values)
        if array.dtype.kind not in "biuf":
            raise ValueError(f"values must be real numbers, not {array.dtype}")
        _morvanex.check_shape(array.shape)
        with numpy.errstate(over="ignore"):
            floats = numpy.ascontiguousarray(array, dtype=numpy.float32)
        self._native = _morvanex.Map(floats, _three(voxel, "voxel"), _three(origin, "origin"), name)

    @classmethod
    def _of(cls, native: _morvanex.Map) -> "Map":
        made = cls.__new__(cls)
        made._native = native
        return made

    def _prepared(self, resolution: float, rule_out: bool = False) -> "Map":
        """The same map for searches of many models at that resolution: what they have in common is made once. With
        `rule_out` a model that the filter without it rules out is spared the other one; its verdict is "ruled-out". The
        values have to stay as they are."""
        return Map._of(self._native.prepared(resolution, rule_out))

    @property
    def values(self) -> NDArray[numpy.float32]:
        """The voxels, indexed z, y, x: a view, not a copy, that may be written to and outlives the map.

        Voxel values[k, j, i] lies at origin + (i, j, k) * voxel. While a search runs, leave them alone.
        """
        return self._native.values

    @property
    def voxel(self) -> tuple[float, float, float]:
        """Spacing of the voxels along x, y and z, Å."""
        return self._native.voxel

    @property
    def origin(self) -> tuple[float, float, float]:
        """Position of the voxel values[0, 0, 0] as x, y, z, Å."""
        return self._native.origin

    @property
    def name(self) -> str:
        """The file that the map was read from, or the name that it was given."""
        return self._native.name

    @property
    def title(self) -> str:
        """The first label of the file that the map was read from."""
        return self._native.title

    def __repr__(self) -> str:
        nz, ny, nx = self.values.shape
        x, y, z = self.voxel
        a, b, c = self.origin
        return (
            f"Map {self.name!r}: {nx} x {ny} x {nz} voxels of {x:.6g} x {y:.6g} x {z:.6g} Å, "
            f"origin {a:.6g}, {b:.6g}, {c:.6g} Å"
        )


def read_map(file: Path) -> Map:
    """Reads an MRC2014 or CCP4 map, plain or compressed by gzip or bzip2.

    Voxels that are not finite become 0, with a warning.

    Raises:
        FileError: for a file that is no such map; the message names the header field and its value.

    >>> density = read_map("examples/1tii_8A.mrc")
    >>> density.values.shape  # z, y, x
    (39, 34, 38)
    >>> density.voxel
    (2.5, 2.5, 2.5)
    """
    native = _morvanex.read_map(file)
    for warning in native.warnings:
        warnings.warn(f"{native.name}: {warning}", MorvanexWarning, stacklevel=2)
    return Map._of(native)


def write_map(file: Path, map: Map, title: str = "") -> None:
    """Writes a map as MRC2014: 32-bit floats, the origin in the ORIGIN words, `title` (80 characters) as first label.

    The file is replaced as a whole, or left as it was.

    Raises:
        FileError: where the file cannot be written.

    >>> write_map(folder / "blank.mrc", Map(numpy.zeros((4, 4, 4)), voxel=2.0))
    >>> read_map(folder / "blank.mrc").values.max()
    0.0
    """
    _morvanex.write_map(file, map._native, title)
