"""What the commands' JSON files hold, as small typed objects."""

from __future__ import annotations

import json as json_format
import re
import warnings
from dataclasses import dataclass, field, fields
from functools import lru_cache
from itertools import repeat
from typing import Any, TypeVar, Union, get_args, get_origin, get_type_hints

from ._errors import FileError, MorvanexWarning
from ._poses import Pose
from ._structures import Structure, is_gemmi, moved_gemmi, read_structure
from ._work import Inputs, Outcome, StructureInput

AnyRecord = TypeVar("AnyRecord", bound="Record")
AnyResult = TypeVar("AnyResult", bound="Result")


def at(*path: str) -> Any:
    """A field that does not stand under its own name."""
    return field(metadata={"path": path})


@lru_cache(maxsize=None)
def _members(kind: Any) -> list[tuple[str, Any, tuple[str, ...]]]:
    """Of each field that is read its name, type and path: rotation_step stands under "rotationStep"."""
    types = get_type_hints(kind)
    return [
        (entry.name, types[entry.name], entry.metadata.get("path") or (_camel(entry.name),))
        for entry in fields(kind)
        if "own" not in entry.metadata
    ]


def _camel(name: str) -> str:
    return re.sub(r"_(\w)", lambda found: found[1].upper(), name)


def _typed(kind: Any, value: Any) -> Any:
    """A value of JSON as a field's type."""
    if value is None:
        return None
    if get_origin(kind) is Union:
        return _typed(get_args(kind)[0], value)
    if get_origin(kind) is tuple:
        kinds = get_args(kind)
        return tuple(map(_typed, repeat(kinds[0]) if Ellipsis in kinds else kinds, value))
    if isinstance(kind, type) and issubclass(kind, Record):
        return kind._of(value)
    return float(value) if kind is float else value


@dataclass(frozen=True)
class Record:
    """An entry of a JSON file: its fields are read from the members of the same names."""

    @classmethod
    def _of(cls: type[AnyRecord], entry: dict[str, Any], **own: Any) -> AnyRecord:
        values = dict(own)
        for name, kind, path in _members(cls):  # type: ignore[arg-type]
            if kind is Pose:
                values[name] = Pose.from_json(entry)
                continue
            value: Any = entry
            for member in path:
                value = value.get(member)
            values[name] = _typed(kind, value)
        return cls(**values)


@dataclass(frozen=True)
class Result(Record):
    """What a search came to.

    Attributes:
        json: the record, as the command's `--json` writes it.
        written: what was written and where, a line for each file.
    """

    json: str = field(repr=False, metadata={"own": True})
    written: tuple[str, ...] = field(metadata={"own": True})
    _models: tuple[Any, ...] = field(repr=False, metadata={"own": True})
    _inputs: Inputs = field(repr=False, compare=False, metadata={"own": True})

    def as_dict(self) -> dict[str, Any]:
        """Everything that the command's JSON file holds, under the same names."""
        record: dict[str, Any] = json_format.loads(self.json)
        return record


def finish(
    outcome: Outcome,
    record: dict[str, Any],
    kind: type[AnyResult],
    models: tuple[StructureInput, ...],
    inputs: Inputs,
) -> AnyResult:
    """The result of a search for those models; warnings are told. What stopped the work, or kept a file from being
    written, is raised and carries the result."""
    written = tuple(outcome["written"])
    result = kind._of(record, json=outcome["json"], written=written, _models=models, _inputs=inputs)
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
    return result


def moved(model: StructureInput, pose: Pose, chains: tuple[str, ...]) -> Any:
    """Chains of a model in a pose: a gemmi.Structure of one, else a Structure."""
    if is_gemmi(model):
        return moved_gemmi(model, pose, chains)
    return (model if isinstance(model, Structure) else read_structure(model)).moved(pose, chains)
