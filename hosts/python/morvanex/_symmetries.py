"""The symmetry of a map, and what speaks for it."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional

from ._records import Record, at


@dataclass(frozen=True)
class MapEvidence(Record):
    """What a map says of its symmetry by itself.

    Attributes:
        found: whether it is sure of it.
        name: of the symmetry that was tried in the end, "C5"; None where no motion lays the map upon itself.
        correlation: of the map with itself after the symmetry's operators, on average.
        weakest: after the operator that fits worst.
        wrong: after the best of other motions.
        probability: that the symmetry is no chance.
        log_expected: natural logarithm of the number of wrong motions expected to correlate as well.
        resolution: at which the map was compared, Å.
    """

    found: bool
    name: Optional[str]
    correlation: float
    weakest: float
    wrong: float
    probability: float
    log_expected: float
    resolution: float


@dataclass(frozen=True)
class PlacesEvidence(Record):
    """What the places that a model has without a symmetry say of it.

    Attributes:
        name: of the symmetry that they have, "C5"; None for none.
        places: their number.
        share: of the copies that it gives each place, those that stand among the places.
        rmsd: of its copies from the places, Å.
    """

    name: Optional[str]
    places: int
    share: float
    rmsd: float


@dataclass(frozen=True)
class Symmetry(Record):
    """The symmetry by which a model was placed, or that there is none.

    Attributes:
        asked: what was looked for, "C5", "H" or "auto".
        name: what was used; None where the model was placed without.
        statement: sentences that tell symmetry, evidence, axis and copies.
        source: what told it: "map", "places", "both" or "given".
        fold: about the main axis.
        rise, twist: of a helix, Å and degrees by the right hand along the rise; else None.
        axis: direction of the main axis in the map's frame.
        centre: a point of it, the centre where there is one; x, y, z in Å.
        rotation: from the z axis to `axis`, quaternion w, x, y, z.
        from_middle, from_origin: how far the axis, or the centre, is from the map's middle voxel and from the
            coordinates' origin, Å.
        places: found in the map's mean over the copies.
        copies: with those that follow by the symmetry.
        of_map, of_places: the evidence.
    """

    asked: str
    name: Optional[str]
    statement: tuple[str, ...]
    source: Optional[str]
    fold: Optional[int]
    rise: Optional[float]
    twist: Optional[float]
    axis: Optional[tuple[float, float, float]]
    centre: Optional[tuple[float, float, float]]
    rotation: Optional[tuple[float, float, float, float]]
    from_middle: Optional[float]
    from_origin: Optional[float]
    places: int
    copies: int
    of_map: MapEvidence = at("evidence", "map")
    of_places: PlacesEvidence = at("evidence", "places")
