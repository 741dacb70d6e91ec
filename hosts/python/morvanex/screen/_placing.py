"""What a worker does: it places a batch of models in the map that it holds."""

from __future__ import annotations

import math
import signal
import warnings
from dataclasses import dataclass
from typing import Any, Optional, Union

import numpy

from .. import _morvanex
from .._errors import Error, MorvanexWarning
from .._maps import Map
from .._place import place
from .._places import Placement
from .._structures import Structure
from ._domains import CONFIDENT, domains
from ._store import Result

#: Places of a model that are kept: no ranking looks at more.
KEPT_PLACES = 60

#: Maps of this process by checksum.
_maps: dict[str, Map] = {}
#: Those that models are placed in, by checksum, resolution and whether they are inverted.
_prepared: dict[tuple[str, float, bool], Map] = {}


@dataclass(frozen=True)
class Settings:
    """What every model of a run is placed with.

    Attributes:
        resolution: of the map, Å.
        min_plddt: residues of less confidence take no part in the search; None: all do.
        split: whether chains are cut into domains at stretches of low confidence.
        invert: whether the map's density is dark.
    """

    resolution: float
    min_plddt: Optional[float] = None
    split: bool = False
    invert: bool = False


class MapPlugin:
    """Brings a map to each worker once, also to those that come later; Dask calls `setup` there.

    Args:
        checksum: by which tasks name it.
        density: the map.
        is_local: whether the workers were started for this run, and hear a terminal's Ctrl-C that is not for them.
    """

    def __init__(self, checksum: str, density: Map, is_local: bool) -> None:
        self.name = f"morvanex-{checksum}"
        self._checksum, self._is_local = checksum, is_local
        self._values, self._voxel, self._origin = density.values, density.voxel, density.origin

    def setup(self, worker: Any) -> None:
        """Makes the map of this process."""
        _maps[self._checksum] = Map(self._values, self._voxel, self._origin)
        if self._is_local:
            signal.signal(signal.SIGINT, signal.SIG_IGN)

    def teardown(self, worker: Any) -> None:
        """Gives the map's memory back."""
        _maps.pop(self._checksum, None)
        for key in [key for key in _prepared if key[0] == self._checksum]:
            del _prepared[key]


#: A model's name, its results or why there are none.
Placed = tuple[str, Union[list[Result], str]]


def place_batch(checksum: str, settings: Settings, batch: list[tuple[str, bytes]]) -> list[Placed]:
    """Places models, each a name and the bytes of its file, in the map of that checksum. What cannot be placed gives its
    reason."""
    density = _prepared_map(checksum, settings)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", MorvanexWarning)
        return [(name, _place_one(density, settings, name, content)) for name, content in batch]


def _prepared_map(checksum: str, settings: Settings) -> Map:
    """The map as it is searched, whose transforms are made once in this process."""
    key = (checksum, settings.resolution, settings.invert)
    if key not in _prepared:
        density = _maps[checksum]
        if settings.invert:
            density = Map(-density.values, density.voxel, density.origin)
        _prepared[key] = density._prepared(settings.resolution, rule_out=True)
    return _prepared[key]


def _place_one(density: Map, settings: Settings, name: str, content: bytes) -> Union[list[Result], str]:
    try:
        model = Structure(_morvanex.parse_structure(content, name))
        threshold = CONFIDENT if settings.min_plddt is None else settings.min_plddt
        chosen = domains(model, threshold) if settings.split else None
        if chosen is None:
            return [_place_part(density, settings, "", model)]
        return [_place_part(density, settings, domain.name, domain.model) for domain in chosen]
    except (Error, ValueError, MemoryError) as error:
        return str(error).removeprefix(f"{name}: ") or type(error).__name__


def _place_part(density: Map, settings: Settings, domain: str, model: Structure) -> Result:
    found = place(density, model, resolution=settings.resolution, min_plddt=settings.min_plddt, threads=1)
    return _result_of(found, domain, model)


def _result_of(found: Placement, domain: str, model: Structure) -> Result:
    record = found.as_dict()
    kept = max(1, min(record["copies"], KEPT_PLACES))
    names = ("score", "probability", "centre", "rotation", "translation", "inDensity", "otherTurn")
    residues = record["input"]["residues"]
    return {
        "domain": domain,
        "residues": residues,
        "left_out": len(model.polymer_residues) - residues,
        "radius": _radius_of_gyration(model),
        "verdict": found.verdict,
        "log_expected": _log_expected(found),
        "other_turns": found.confidence.other_turns if found.places and found.confidence else None,
        "seconds": record["search"]["seconds"],
        "places": [{name: entry[name] for name in names} for entry in record["places"][:kept]],
    }


def _log_expected(found: Placement) -> Optional[float]:
    """ln E of the best place; None where nothing can be said of it."""
    if not found.places or not found.confidence or found.verdict in ("no-density", "not-judged"):
        return None
    expected = found.confidence.log_expected
    return expected if math.isfinite(expected) else None


def _radius_of_gyration(model: Structure) -> float:
    coordinates = model.coordinates.astype(float)
    return float(numpy.sqrt(((coordinates - coordinates.mean(axis=0)) ** 2).sum(axis=1).mean()))
