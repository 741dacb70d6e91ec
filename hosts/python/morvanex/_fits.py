"""The search of every rotation and translation around a model's start."""

from __future__ import annotations

import json as json_format
from collections.abc import Iterable
from dataclasses import dataclass
from typing import Any, Optional, Union

from . import _morvanex
from ._options import options
from ._poses import Pose
from ._records import Record, Result, at, finish, moved
from ._work import Inputs, MapInput, Path, Progress, StructureInput


@dataclass(frozen=True)
class Solution(Record):
    """A pose that a fit kept.

    Attributes:
        rank: 1 for the best.
        rank_in_file: counted from the end of the results file.
        pose: acts on the target's input coordinates.
        score: sum of the density at the target's residues.
        restraint_distances: of each restraint, in Å.
    """

    rank: int
    rank_in_file: int
    pose: Pose
    score: float
    restraint_distances: tuple[float, ...]


@dataclass(frozen=True)
class Fit(Result):
    """What a fit came to.

    Attributes:
        solutions: those kept, the best first.
        chain: identifier of the chain that was fitted.
    """

    solutions: tuple[Solution, ...]
    chain: str = at("input", "chain")

    def model(self, rank: int = 1) -> Any:
        """The target chain in the pose of that rank: a Structure, or a gemmi.Structure where one was given.

        Raises:
            IndexError: for a rank that no solution has.
        """
        if not 1 <= rank <= len(self.solutions):
            raise IndexError(f"there is no solution of rank {rank}, only {len(self.solutions)}")
        return moved(self._models[0], self.solutions[rank - 1].pose, (self.chain,))


def fit(
    map: MapInput,
    target: StructureInput,
    *,
    chain: Optional[str] = None,
    solid: Union[None, StructureInput, Iterable[StructureInput]] = None,
    solid_chains: Union[None, str, Iterable[str]] = None,
    restraints: Optional[Path] = None,
    axis: Optional[int] = None,
    rotation_step: Optional[float] = None,
    translation_step: Optional[float] = None,
    translation_steps: Optional[int] = None,
    keep: Optional[int] = None,
    inclusion_distance: Optional[float] = None,
    threads: Optional[int] = None,
    results: Optional[Path] = None,
    log: Optional[Path] = None,
    json: Optional[Path] = None,
    report: Optional[Path] = None,
    viewer_script: Optional[Path] = None,
    models: Optional[int] = None,
    model_prefix: Optional[Path] = None,
    force: bool = False,
    progress: Progress = None,
) -> Fit:
    """Fits a chain of a structure into a density map, around its start position.

    The same as `morvanex fit`: each parameter is the option of that name, and what is not given comes from section
    Morvanex of the settings file, or is as shipped.

    Args:
        map: a file or a Map.
        target: a file, a Structure or a gemmi.Structure that holds the chain.
        chain: the chain to fit; the first polymer unless given.
        solid: structures whose chains are fixed; poses that clash with them are rejected.
        solid_chains: the chains of these to use; all polymer chains but the target unless given.
        restraints: a file of distance restraints.
        axis: how densely rotation axes cover the half sphere: 0 to 4 give 6, 21, 81, 321, 1281 axes.
        rotation_step: about each axis, degrees.
        translation_step: along x, y and z, Å.
        translation_steps: number of translations along each.
        keep: number of solutions to keep.
        inclusion_distance: fixed residues farther than this from the target's centre are ignored, Å.
        threads: that score poses, one for each core unless given; the result does not depend on it.
        results, log, json, report, viewer_script, models, model_prefix: files to write, as the command does.
        force: run the fit even if it takes more than a year.
        progress: is called on this thread with the share of the work that is done, 0 to 1, up to ten times a second.

    Raises:
        ParameterError: for a value that makes no sense.
        FileError: for what cannot be read or written.
        Error: for a fit that takes too much.
        KeyboardInterrupt: after Ctrl-C; its attribute `result` holds what was found by then, and the files that were
            asked for are written. An exception of `progress` does the same.

    >>> found = fit("examples/1tii_8A.mrc", "examples/1tii_D_displaced.pdb", axis=1, rotation_step=30, keep=5)
    >>> len(found.solutions), found.solutions[0].score > found.solutions[1].score
    (5, True)
    >>> found.model()
    Structure 'examples/1tii_D_displaced.pdb': chains D, 98 residues, 740 atoms
    """
    inputs = Inputs()
    texts = options(
        {
            "map": inputs.map(map),
            "target": inputs.structure(target),
            "chain": chain,
            "solid_chains": solid_chains,
            "restraints": restraints,
            "axis": axis,
            "rotation_step": rotation_step,
            "translation_step": translation_step,
            "translation_steps": translation_steps,
            "keep": keep,
            "inclusion_distance": inclusion_distance,
            "threads": threads,
            "results": results,
            "log": log,
            "json": json,
            "report": report,
            "viewer_script": viewer_script,
            "models": models,
            "model_prefix": model_prefix,
            "force": bool(force),
        },
        repeated={"solid": inputs.every(solid)},
    )
    outcome = _morvanex.fit(texts, inputs.maps, inputs.structures, progress)
    return finish(outcome, json_format.loads(outcome["json"]), Fit, (target,), inputs)
