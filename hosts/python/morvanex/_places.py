"""Where a model or a map belongs in a whole map, and how sure that is."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Optional

from ._maps import Map
from ._poses import Pose
from ._records import Record, Result, at, moved
from ._symmetries import Symmetry


@dataclass(frozen=True)
class Place(Record):
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


def _of_rank(rank: int, places: tuple[Place, ...]) -> Place:
    if not 1 <= rank <= len(places):
        raise IndexError(f"there is no place of rank {rank}, only {len(places)}")
    return places[rank - 1]


@dataclass(frozen=True)
class Background(Record):
    """The tail of the scores of wrong places: places * exp(-(s² - square) / scale) of them are expected above a score s.

    Attributes:
        places: that it was fitted to.
        scale, square: its parameters, squares of scores.
    """

    places: int
    scale: float
    square: float


@dataclass(frozen=True)
class Confidence(Record):
    """How sure the best place is.

    Attributes:
        probability: that place and turn are right.
        place: that the place is right.
        other_turns: what other turns about the same centre weigh against the best one's 1.
        log_expected: natural logarithm of the number of wrong places expected to score as well.
        background: what was known of wrong places; None of one hand of two, and of a map as the model.
    """

    probability: float
    place: float
    other_turns: float
    log_expected: float
    background: Optional[Background]


@dataclass(frozen=True)
class OneHand(Record):
    """How likely a hand is the right one, and how sure the best place in it is."""

    probability: float
    confidence: Confidence


@dataclass(frozen=True)
class Hand(Record):
    """Which hand a map has.

    Attributes:
        verdict: "as-given", "mirrored" or "unknown".
        statement: that in a sentence.
        places_are_mirrored: whether the places are those of the mirrored map: voxels in the opposite order along x.
        as_given, mirrored: what speaks for each.
    """

    verdict: str
    statement: str
    places_are_mirrored: bool
    as_given: OneHand
    mirrored: OneHand


@dataclass(frozen=True)
class Forecast(Record):
    """What was to be expected before the search.

    Attributes:
        signal: how far a model of that size stands out of the noise at that resolution, in standard deviations.
        prospect: "poor", "uncertain" or "good".
        statement: that in a sentence.
    """

    signal: float
    prospect: str
    statement: str


@dataclass(frozen=True)
class ResidueScore(Record):
    """How well a residue fits at the first place: the mean of the filtered map at its electrons, in standard
    deviations of that map."""

    chain: str
    residue: str
    score: float


@dataclass(frozen=True)
class Search(Record):
    """How the map was searched.

    Attributes:
        voxels: of the part of the map that was searched, along x, y, z.
        scan_resolution: of the scan, Å.
        rotations: that were scanned.
        rotation_step: between them, degrees; None of a map as the model.
        power_beyond_resolution: share of the map's power; None likewise.
        map_seems_inverted: whether its extremes lie below its background; None likewise.
        cancelled: whether the search was stopped.
        seconds: that it took.
    """

    voxels: tuple[int, int, int]
    scan_resolution: float
    rotations: int
    rotation_step: Optional[float]
    power_beyond_resolution: Optional[float]
    map_seems_inverted: Optional[bool]
    cancelled: bool
    seconds: float


@dataclass(frozen=True)
class Placement(Result):
    """What a search for a model's place came to; as a text its `statement`.

    Attributes:
        verdict: "placed", "turn-unsure", "nothing-found", "not-judged", "no-density" or "refined".
        statement: the verdict in a sentence.
        confidence: of the first place; None where one place was refined.
        places: distinct ones, the best first.
        profile: of the first place, residue by residue.
        copies: how many of the places are called found.
        hand: where both were searched; else None.
        symmetry: where one was looked for; else None.
        forecast: what was to be expected.
        search: how it was done.
        resolution: of the map in Å, as given or as estimated.
        chains: identifiers of the chains that moved.
    """

    verdict: str
    statement: str
    confidence: Optional[Confidence]
    places: tuple[Place, ...]
    profile: tuple[ResidueScore, ...]
    copies: int
    hand: Optional[Hand]
    symmetry: Optional[Symmetry]
    forecast: Forecast
    search: Search
    resolution: float = at("input", "resolution")
    chains: tuple[str, ...] = at("input", "chains")

    @property
    def placed(self) -> bool:
        """Whether the best place is called right."""
        return self.verdict == "placed"

    def model(self, rank: int = 1) -> Any:
        """The chains that moved, at the place of that rank: a Structure, or a gemmi.Structure where one was given.

        Raises:
            IndexError: for a rank that no place has.
        """
        return moved(self._models[0], _of_rank(rank, self.places).pose, self.chains)

    def __str__(self) -> str:
        return self.statement


@dataclass(frozen=True)
class Shell(Record):
    """The correlation of two maps in a shell of waves.

    Attributes:
        wavenumber: of the shell, 1/Å.
        correlation: of the maps' waves there, -1 to 1.
    """

    wavenumber: float
    correlation: float


@dataclass(frozen=True)
class MapPlacement(Result):
    """What the laying of one map on another came to; as a text its `statement`.

    Attributes:
        verdict, statement, confidence, search: as of a Placement.
        places: distinct ones, the best first; their poses act on the moved map's coordinates, on those of its mirror
            image (voxels in the opposite order along x) where the hand says so.
        hand: whether the maps have the same.
        shells: correlation of the maps at the first place, the longest waves first.
        agreement: what the shells say, in a sentence.
        resolution_at_half, resolution_at_0143: where the correlation falls below 0.5 and 0.143, Å; 0 where it does
            nowhere lie above.
        points: that stood for the moved map.
        points_resolution: to which they hold its density, Å.
    """

    verdict: str
    statement: str
    confidence: Optional[Confidence]
    places: tuple[Place, ...]
    hand: Hand
    shells: tuple[Shell, ...]
    search: Search
    agreement: str = at("correlation", "statement")
    resolution_at_half: float = at("correlation", "resolutionAtHalf")
    resolution_at_0143: float = at("correlation", "resolutionAt0.143")
    points: int = at("input", "points")
    points_resolution: float = at("input", "pointsResolution")

    @property
    def placed(self) -> bool:
        """Whether the best place is called right."""
        return self.verdict == "placed"

    def map(self, rank: int = 1) -> Map:
        """The moved map at the place of that rank, on the lattice of the other map; 0 outside of its own box.

        Raises:
            IndexError: for a rank that no place has.
        """
        pose = _of_rank(rank, self.places).pose
        given = self.as_dict()["input"]
        moving = self._inputs.native_map(given["movedMap"])
        return Map._of(
            moving.moved_onto(
                self._inputs.native_map(given["map"]), pose.quaternion, pose.translation, self.hand.places_are_mirrored
            )
        )

    def __str__(self) -> str:
        return self.statement
