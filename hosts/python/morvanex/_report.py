"""Reports of results: pages to look at, and scripts for viewers."""

from __future__ import annotations

import os
from typing import Any, Optional, Union

from . import _morvanex
from ._assemblies import Assembly
from ._errors import ParameterError
from ._fits import Fit
from ._places import MapPlacement, Placement
from ._work import Inputs, Path

#: A structure by its name in the record, and the chains of it that are meant; all polymers where it is None.
Model = tuple[str, _morvanex.Structure, Optional[list[str]]]


def report(result: Union[Placement, Assembly, MapPlacement, Fit], file: Path) -> None:
    """Writes what was found as a page to look at and to send on: one HTML file that needs no network. Where the file's
    name ends in .cxc or .pml it is a script that opens map and models in ChimeraX or PyMOL.

    The same as the option `--report`, or `--viewer-script`, of the search itself. Files that the search read are read
    again.

    Args:
        result: of `place` or `fit`. Of a map on a map there is no script.
        file: is replaced as a whole.

    Raises:
        TypeError: for anything but such a result.
        ParameterError: for a script of a map on a map.
        FileError: for what cannot be read or written.

    >>> toxin = place("examples/1tii_8A.mrc", "examples/1tii_D_displaced.pdb", resolution=8)
    >>> report(toxin, folder / "report.html")
    >>> (folder / "report.html").read_text().startswith("<!DOCTYPE html>")
    True
    """
    if not isinstance(result, (Placement, Assembly, MapPlacement, Fit)):
        raise TypeError(f"there is no report of {type(result).__name__}")
    if isinstance(result, MapPlacement) and _morvanex.is_viewer_script(os.fspath(file)):
        raise ParameterError("--viewer-script: is for structures, and the model is a map")
    given = result.as_dict()["input"]
    density = result._inputs.native_map(given["map"])
    if given.get("inverted"):
        density = inverted(density)
    models, fixed, laid = _shown(result, given)
    _morvanex.write_report(os.fspath(file), result.json, density, laid, models, fixed, "")


def inverted(density: _morvanex.Map) -> _morvanex.Map:
    """The map with its values' signs changed."""
    return _morvanex.Map(-density.values, density.voxel, density.origin, density.name)


def _shown(
    result: Union[Placement, Assembly, MapPlacement, Fit], given: dict[str, Any]
) -> tuple[list[Model], list[Model], Optional[_morvanex.Map]]:
    """Models that moved, models that were in place, and a map that moved."""
    if isinstance(result, MapPlacement):
        return [], [], (result.map()._native if result.places else None)
    models, fixed = (_fitted if isinstance(result, Fit) else _placed)(given, result._inputs)
    return models, fixed, None


def _structure(name: str, inputs: Inputs) -> _morvanex.Structure:
    return inputs.structures.get(name) or _morvanex.read_structure(name)


def _placed(given: dict[str, Any], inputs: Inputs) -> tuple[list[Model], list[Model]]:
    parts = given.get("parts") or [{"file": given["model"], "chains": given["chains"]}]
    models = [(part["file"], _structure(part["file"], inputs), part["chains"]) for part in parts]
    fixed = [(part["file"], _structure(part["file"], inputs), part["chains"]) for part in given["fixed"]]
    return models, fixed


def _fitted(given: dict[str, Any], inputs: Inputs) -> tuple[list[Model], list[Model]]:
    target = (given["target"], _structure(given["target"], inputs), [given["chain"]])
    fixed: list[Model] = []
    for name in given["solids"]:
        solid = _structure(name, inputs)
        chains = [
            chain
            for chain in solid.chains
            if (given["solidChains"] is None or chain in given["solidChains"])
            and (name != given["target"] or chain != given["chain"])
        ]
        fixed.append((name, solid, chains))
    return [target], fixed
