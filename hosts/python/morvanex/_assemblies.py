"""Several models, or copies of one, placed together."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Optional

from ._poses import Pose
from ._records import Record, Result, at, moved
from ._structures import Structure, is_gemmi
from ._symmetries import Symmetry


@dataclass(frozen=True)
class AssemblyPart(Record):
    """What came of one of the models.

    Attributes:
        file: the model's name.
        wanted: number of copies that were asked for; None for as many as are found.
        placed: number of copies that are placed.
        left: why no further one is: "nothing", "nothing-found", "turn-unsure", "taken", "doubtful", "cut-off", "not-judged"
            or "not-finished".
        statement: all that in a sentence.
        probability: of the best place that is left.
        rivals: names of the models that took its places.
    """

    file: str
    wanted: Optional[int]
    placed: int
    left: str
    statement: str
    probability: float
    rivals: tuple[str, ...]


@dataclass(frozen=True)
class NamedChain(Record):
    """A chain's identifier in its model, and its name in the file of the assembly."""

    chain: str
    name: str


@dataclass(frozen=True)
class AssemblyCopy(Record):
    """A copy of a model in its place.

    Attributes:
        file: the model's name.
        copy: its number among the copies of this model, from 1.
        chains: that moved.
        pose: acts on the model's input coordinates.
        probability: that the copy is right where all others are.
        log_expected: natural logarithm of the number of wrong places expected to score as well beside them.
        score: log-likelihood ratio, on a scale of the map's own.
        contacts, clashes: its residues within 8 Å and 3 Å of another copy's or a fixed one's.
        moved: RMSD by which the refinement of all copies together moved it, Å.
        explained: share of the map's power that it explains.
        rivals: names of models that fit the same place equally well.
        centre: of the placed copy, x, y, z in Å.
    """

    file: str
    copy: int
    chains: tuple[NamedChain, ...]
    pose: Pose
    probability: float
    log_expected: float
    score: float
    contacts: int
    clashes: int
    moved: float
    explained: float
    rivals: tuple[str, ...]
    centre: tuple[float, float, float]


@dataclass(frozen=True)
class Distance(Record):
    """A known distance, and what it is between the copies.

    Attributes:
        first, second: the residues, "A:120".
        max: what it may be, Å.
        distance: the shortest one between copies, Å; None where a residue is not placed.
        holds: whether it is known and not too long.
    """

    first: str = at("from")
    second: str = at("to")
    max: float = at("max")
    distance: Optional[float] = at("distance")
    holds: bool = at("holds")


@dataclass(frozen=True)
class Assembly(Result):
    """What the placing of several models or copies came to; as a text its `statement`.

    Attributes:
        complete: whether every copy that was asked for is placed, and one of each model.
        statement: how much of it is placed, in a sentence.
        copies: those that are placed.
        parts: what came of each model.
        distances: the known ones.
        explained: share of the map's power up to its resolution that the copies and the fixed parts explain.
        symmetry: where one was looked for; else None.
        resolution: of the map in Å, as given or as estimated.
        searches: how many were made.
        cancelled: whether it was stopped.
        seconds: that it took.
    """

    complete: bool
    statement: str
    copies: tuple[AssemblyCopy, ...]
    parts: tuple[AssemblyPart, ...]
    distances: tuple[Distance, ...]
    explained: float
    symmetry: Optional[Symmetry]
    resolution: float = at("input", "resolution")
    searches: int = at("search", "searches")
    cancelled: bool = at("search", "cancelled")
    seconds: float = at("search", "seconds")

    def model(self, number: int = 1) -> Any:
        """The copy of that number, counted from 1 as in `copies`: a Structure, or a gemmi.Structure where one was given.

        Raises:
            IndexError: for a number that no copy has.
        """
        if not 1 <= number <= len(self.copies):
            raise IndexError(f"there is no copy {number}, only {len(self.copies)}")
        copy = self.copies[number - 1]
        given = self._models[[part.file for part in self.parts].index(copy.file)]
        # A file may have been named with a number of copies.
        model = given if isinstance(given, Structure) or is_gemmi(given) else copy.file
        return moved(model, copy.pose, tuple(chain.chain for chain in copy.chains))

    def __str__(self) -> str:
        return self.statement
