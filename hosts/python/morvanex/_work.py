"""What the calls that search have in common."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterable
from typing import Any, Optional, TypedDict, Union

from . import _morvanex
from ._maps import Map
from ._structures import Structure, from_gemmi, is_gemmi

Path = Union[str, "os.PathLike[str]"]
#: A file's name, or what was read; a gemmi.Structure is taken as well.
MapInput = Union[Path, Map]
StructureInput = Union[Path, Structure, Any]
Progress = Optional[Callable[[float], object]]


class Outcome(TypedDict):
    """What a search hands back."""

    json: str
    warnings: list[str]
    written: list[str]
    errors: list[str]
    stopped: Optional[BaseException]


class Inputs:
    """The maps and structures of one call, by the names that stand for them in its options."""

    def __init__(self) -> None:
        self.maps: dict[str, _morvanex.Map] = {}
        self.structures: dict[str, _morvanex.Structure] = {}

    def map(self, value: MapInput) -> str:
        if not isinstance(value, Map):
            return os.fsdecode(value)
        name = self._free(value.name, value._native)
        self.maps[name] = value._native
        return name

    def native_map(self, name: str) -> _morvanex.Map:
        """What stands for that name, or the file of that name, read again."""
        return self.maps.get(name) or _morvanex.read_map(name)

    def structure(self, value: StructureInput) -> str:
        if is_gemmi(value):
            value = from_gemmi(value)
        if not isinstance(value, Structure):
            return os.fsdecode(value)
        # Behind an equals sign the command's option would expect a number of copies.
        name = value.name if os.path.exists(value.name) else value.name.replace("=", "-")
        name = self._free(name, value._native)
        self.structures[name] = value._native
        return name

    def every(self, values: Union[None, StructureInput, Iterable[StructureInput]]) -> list[str]:
        """The names of none, one or several structures."""
        if values is None:
            return []
        if isinstance(values, (str, os.PathLike, Structure)) or is_gemmi(values):
            return [self.structure(values)]
        return [self.structure(value) for value in values]

    def _free(self, name: str, native: object) -> str:
        """A name that stands for nothing else."""
        free, number = name, 1
        while self.maps.get(free, native) is not native or self.structures.get(free, native) is not native:
            number += 1
            free = f"{name} {number}"
        return free
