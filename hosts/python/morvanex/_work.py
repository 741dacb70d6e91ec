"""What the calls that search have in common."""

from __future__ import annotations

import os
import warnings
from collections.abc import Callable, Iterable
from typing import Any, Optional, TypedDict, Union

from . import _morvanex
from ._errors import FileError, MorvanexWarning
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
        self.maps[value.name] = value._native
        return value.name

    def structure(self, value: StructureInput) -> str:
        if is_gemmi(value):
            value = from_gemmi(value)
        if not isinstance(value, Structure):
            return os.fsdecode(value)
        # Behind an equals sign the command's option would expect a number of copies.
        name, number = value.name if os.path.exists(value.name) else value.name.replace("=", "-"), 1
        while self.structures.get(name, value._native) is not value._native:
            number += 1
            name = f"{value.name} {number}"
        self.structures[name] = value._native
        return name

    def every(self, values: Union[None, StructureInput, Iterable[StructureInput]]) -> list[str]:
        """The names of none, one or several structures."""
        if values is None:
            return []
        if isinstance(values, (str, os.PathLike, Structure)) or is_gemmi(values):
            return [self.structure(values)]
        return [self.structure(value) for value in values]


def finish(outcome: Outcome, result: Any) -> None:
    """Tells the warnings, and raises what stopped the work or kept a file from being written; either carries the
    result."""
    for warning in outcome["warnings"]:
        warnings.warn(warning, MorvanexWarning, stacklevel=3)
    stopped = outcome["stopped"]
    if stopped is not None:
        stopped.result = result  # type: ignore[attr-defined]
        raise stopped
    if outcome["errors"]:
        error = FileError("\n".join(outcome["errors"]))
        error.result = result
        raise error
