"""Where a model belongs in a whole map, and how sure that is."""

from __future__ import annotations

import json as json_format
from collections.abc import Iterable, Sequence
from dataclasses import dataclass
from typing import Any, Optional, Union

from . import _morvanex
from ._options import options
from ._poses import Pose
from ._structures import Structure, is_gemmi, moved_gemmi, read_structure
from ._work import Inputs, MapInput, Path, Progress, StructureInput, finish


@dataclass(frozen=True)
class Place:
    """One place that a search found.

    Attributes:
        rank: 1 for the best.
        pose: acts on the model's input coordinates.
        score: log-likelihood ratio, on a scale of the map's own.
        probability: that a wrong place does not score as well; None where nothing is known of other places.
        log_expected: natural logarithm of the number of wrong places expected to score as well; None likewise.
        other_turn: whether it is another turn about the centre of the first place.
        in_density: part of the model, by electrons, that lies in density.
        overlap: part of the model within 4 Å of what was already in place.
        centre: of the placed model, x, y, z in Å.
    """

    rank: int
    pose: Pose
    score: float
    probability: Optional[float]
    log_expected: Optional[float]
    other_turn: bool
    in_density: float
    overlap: float
    centre: tuple[float, float, float]

    @classmethod
    def _of(cls, entry: dict[str, Any]) -> "Place":
        x, y, z = entry["centre"]
        return cls(
            rank=entry["rank"],
            pose=Pose.from_json(entry),
            score=entry["score"],
            probability=entry["probability"],
            log_expected=entry["logExpected"],
            other_turn=entry["otherTurn"],
            in_density=entry["inDensity"],
            overlap=entry["overlap"],
            centre=(x, y, z),
        )


@dataclass(frozen=True)
class Confidence:
    """How sure the best place is.

    Attributes:
        probability: that place and turn are right.
        place: that the place is right.
        other_turns: what other turns about the same centre weigh against the best one's 1.
        log_expected: natural logarithm of the number of wrong places expected to score as well.
    """

    probability: float
    place: float
    other_turns: float
    log_expected: float

    @classmethod
    def _of(cls, entry: Optional[dict[str, Any]]) -> Optional["Confidence"]:
        if entry is None:
            return None
        return cls(entry["probability"], entry["place"], entry["otherTurns"], entry["logExpected"])


@dataclass(frozen=True)
class ResidueScore:
    """How well a residue fits at the first place: the mean of the filtered map at its electrons, in standard
    deviations of that map."""

    chain: str
    residue: str
    score: float


@dataclass(frozen=True)
class Placement:
    """What a search for a model's place came to.

    Attributes:
        verdict: "placed", "turn-unsure", "nothing-found", "not-judged", "no-density" or "refined".
        statement: the verdict in a sentence.
        confidence: of the first place; None where one place was refined.
        places: distinct ones, the best first.
        profile: of the first place, residue by residue.
        resolution: of the map in Å, as given or as estimated.
        chains: identifiers of the chains that moved.
        json: the record, as `morvanex place --json` writes it.
        written: what was written and where, a line for each file.
    """

    verdict: str
    statement: str
    confidence: Optional[Confidence]
    places: tuple[Place, ...]
    profile: tuple[ResidueScore, ...]
    resolution: float
    chains: tuple[str, ...]
    json: str
    written: tuple[str, ...]
    _model: StructureInput

    @property
    def placed(self) -> bool:
        """Whether the best place is called right."""
        return self.verdict == "placed"

    def as_dict(self) -> dict[str, Any]:
        """Everything that the command's JSON file holds, under the same names."""
        record: dict[str, Any] = json_format.loads(self.json)
        return record

    def model(self, rank: int = 1) -> Any:
        """The chains that moved, at the place of that rank: a Structure, or a gemmi.Structure where one was given.

        Raises:
            IndexError: for a rank that no place has.
        """
        if not 1 <= rank <= len(self.places):
            raise IndexError(f"there is no place of rank {rank}, only {len(self.places)}")
        pose = self.places[rank - 1].pose
        if is_gemmi(self._model):
            return moved_gemmi(self._model, pose, self.chains)
        model = self._model if isinstance(self._model, Structure) else read_structure(self._model)
        return model.moved(pose, self.chains)

    def __str__(self) -> str:
        return self.statement

    @classmethod
    def _of(cls, json: str, written: Sequence[str], model: StructureInput) -> "Placement":
        record = json_format.loads(json)
        return cls(
            verdict=record["verdict"],
            statement=record["statement"],
            confidence=Confidence._of(record["confidence"]),
            places=tuple(map(Place._of, record["places"])),
            profile=tuple(ResidueScore(**entry) for entry in record["profile"]),
            resolution=record["input"]["resolution"],
            chains=tuple(record["input"]["chains"]),
            json=json,
            written=tuple(written),
            _model=model,
        )


def place(
    map: MapInput,
    model: StructureInput,
    *,
    resolution: Optional[float] = None,
    chain: Union[None, str, Iterable[str]] = None,
    min_plddt: Optional[float] = None,
    fixed: Union[None, StructureInput, Iterable[StructureInput]] = None,
    fixed_chains: Union[None, str, Iterable[str]] = None,
    invert: bool = False,
    near: bool = False,
    refine: bool = False,
    region: Optional[Sequence[float]] = None,
    hands: bool = False,
    threads: Optional[int] = None,
    json: Optional[Path] = None,
    results: Optional[Path] = None,
    models: Optional[int] = None,
    model_prefix: Optional[Path] = None,
    mirrored_map: Optional[Path] = None,
    progress: Progress = None,
) -> Placement:
    """Finds where a model belongs in a whole density map, in every turn and without a start, and how sure that is.

    The same as `morvanex place`: each parameter is the option of that name.

    Args:
        map: a file or a Map.
        model: a file, a Structure or a gemmi.Structure; where it stands does not matter.
        resolution: of the map in Å; estimated from its spectrum unless given.
        chain: the chains to be placed, which move together, "A,B" or ["A", "B"]; all polymer chains unless given.
        min_plddt: residues of a predicted model of less confidence (B factor) take no part in the search.
        fixed: structures that are already in place.
        fixed_chains: the chains of these to use; all polymer chains but those to be placed unless given.
        invert: the map's density is dark.
        near: search round the model's present place only, in every turn.
        refine: do not search, but move the model to the best place next to its present one.
        region: x, y, z, r in Å: search with the model's centre in that ball only.
        hands: search the mirrored map as well, and tell which hand is right.
        threads: that search, one for each core unless given; the result does not depend on it.
        json, results, models, model_prefix, mirrored_map: files to write, as the command does.
        progress: is called on this thread with the share of the work that is done, 0 to 1, up to ten times a second.

    Raises:
        ParameterError: for a value that makes no sense.
        FileError: for what cannot be read or written.
        KeyboardInterrupt: after Ctrl-C; its attribute `result` holds what was found by then, and the files that were
            asked for are written. An exception of `progress` does the same.

    >>> toxin = place("examples/1tii_8A.mrc", "examples/1tii_D_displaced.pdb", resolution=8)
    >>> print(toxin)
    placed, with a probability above 0.999; 5 places are found, copies of the model
    >>> toxin.places[0].pose.matrix.shape
    (3, 3)
    >>> toxin.model(rank=2)
    Structure 'examples/1tii_D_displaced.pdb': chains D, 98 residues, 740 atoms
    """
    inputs = Inputs()
    texts = options(
        {
            "map": inputs.map(map),
            "model": inputs.structure(model),
            "resolution": resolution,
            "chain": chain,
            "min_plddt": min_plddt,
            "fixed_chains": fixed_chains,
            "invert": bool(invert),
            "near": bool(near),
            "refine": bool(refine),
            "region": region,
            "hands": bool(hands),
            "threads": threads,
            "json": json,
            "results": results,
            "models": models,
            "model_prefix": model_prefix,
            "mirrored_map": mirrored_map,
        }
    )
    files = inputs.every(fixed)
    if files:
        texts["--fixed"] = files
    outcome = _morvanex.place(texts, inputs.maps, inputs.structures, progress)
    placement = Placement._of(outcome["json"], outcome["written"], model)
    finish(outcome, placement)
    return placement
