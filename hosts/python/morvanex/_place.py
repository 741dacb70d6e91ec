"""The search of a whole map for models, or for another map."""

from __future__ import annotations

import json as json_format
from collections.abc import Iterable, Sequence
from typing import Any, Optional, Protocol, Union, overload

from . import _morvanex
from ._assemblies import Assembly
from ._errors import ParameterError
from ._maps import Map
from ._options import options, text_of
from ._places import MapPlacement, Placement
from ._records import finish
from ._structures import Structure
from ._work import Inputs, MapInput, Path, Progress, StructureInput

Chains = Union[None, str, Iterable[str]]
Fixed = Union[None, StructureInput, Iterable[StructureInput]]


class GemmiStructure(Protocol):
    """What is known of a gemmi.Structure without gemmi."""

    name: str

    def make_mmcif_document(self) -> Any: ...


OneModel = Union[Path, Structure, GemmiStructure]
#: A number, or "auto" for as many as are found.
Copies = Union[int, str]
#: Models, or pairs of a model and its number of copies.
Models = Union[list[Any], tuple[Any, ...]]
#: Two residues as chain and number, and what they are apart at most in Å: ("A:120", "B:15", 30), or that as a text.
KnownDistance = Union[str, tuple[str, str, float]]


@overload
def place(
    map: MapInput,
    model: Map,
    *,
    resolution: float,
    invert: bool = ...,
    near: bool = ...,
    refine: bool = ...,
    region: Optional[Sequence[float]] = ...,
    threads: Optional[int] = ...,
    json: Optional[Path] = ...,
    report: Optional[Path] = ...,
    viewer_script: Optional[Path] = ...,
    moved_map: Optional[Path] = ...,
    progress: Progress = ...,
) -> MapPlacement: ...
@overload
def place(
    map: MapInput,
    model: Models,
    *,
    copies: Optional[Copies] = ...,
    resolution: Optional[float] = ...,
    chain: Chains = ...,
    min_plddt: Optional[float] = ...,
    fixed: Fixed = ...,
    fixed_chains: Chains = ...,
    max_distance: Union[None, KnownDistance, Iterable[KnownDistance]] = ...,
    invert: bool = ...,
    threads: Optional[int] = ...,
    json: Optional[Path] = ...,
    report: Optional[Path] = ...,
    viewer_script: Optional[Path] = ...,
    assembly: Optional[Path] = ...,
    rest: Optional[Path] = ...,
    progress: Progress = ...,
) -> Assembly: ...
@overload
def place(
    map: MapInput,
    model: OneModel,
    *,
    copies: Copies,
    resolution: Optional[float] = ...,
    chain: Chains = ...,
    min_plddt: Optional[float] = ...,
    fixed: Fixed = ...,
    fixed_chains: Chains = ...,
    max_distance: Union[None, KnownDistance, Iterable[KnownDistance]] = ...,
    invert: bool = ...,
    threads: Optional[int] = ...,
    json: Optional[Path] = ...,
    report: Optional[Path] = ...,
    viewer_script: Optional[Path] = ...,
    assembly: Optional[Path] = ...,
    rest: Optional[Path] = ...,
    progress: Progress = ...,
) -> Assembly: ...
@overload
def place(
    map: MapInput,
    model: OneModel,
    *,
    assembly: Path,
    resolution: Optional[float] = ...,
    chain: Chains = ...,
    min_plddt: Optional[float] = ...,
    fixed: Fixed = ...,
    fixed_chains: Chains = ...,
    max_distance: Union[None, KnownDistance, Iterable[KnownDistance]] = ...,
    invert: bool = ...,
    symmetry: Optional[str] = ...,
    symmetry_axis: Optional[Sequence[float]] = ...,
    symmetry_centre: Optional[Sequence[float]] = ...,
    symmetry_from: Optional[Path] = ...,
    threads: Optional[int] = ...,
    json: Optional[Path] = ...,
    report: Optional[Path] = ...,
    viewer_script: Optional[Path] = ...,
    rest: Optional[Path] = ...,
    progress: Progress = ...,
) -> Assembly: ...
@overload
def place(
    map: MapInput,
    model: OneModel,
    *,
    resolution: Optional[float] = ...,
    chain: Chains = ...,
    min_plddt: Optional[float] = ...,
    fixed: Fixed = ...,
    fixed_chains: Chains = ...,
    invert: bool = ...,
    near: bool = ...,
    refine: bool = ...,
    region: Optional[Sequence[float]] = ...,
    hands: bool = ...,
    symmetry: Optional[str] = ...,
    symmetry_axis: Optional[Sequence[float]] = ...,
    symmetry_centre: Optional[Sequence[float]] = ...,
    symmetry_from: Optional[Path] = ...,
    threads: Optional[int] = ...,
    json: Optional[Path] = ...,
    report: Optional[Path] = ...,
    viewer_script: Optional[Path] = ...,
    results: Optional[Path] = ...,
    models: Optional[int] = ...,
    model_prefix: Optional[Path] = ...,
    mirrored_map: Optional[Path] = ...,
    progress: Progress = ...,
) -> Placement: ...
def place(
    map: MapInput,
    model: Union[Map, OneModel, Models],
    *,
    copies: Optional[Copies] = None,
    resolution: Optional[float] = None,
    chain: Chains = None,
    min_plddt: Optional[float] = None,
    fixed: Fixed = None,
    fixed_chains: Chains = None,
    max_distance: Union[None, KnownDistance, Iterable[KnownDistance]] = None,
    invert: bool = False,
    near: bool = False,
    refine: bool = False,
    region: Optional[Sequence[float]] = None,
    hands: bool = False,
    symmetry: Optional[str] = None,
    symmetry_axis: Optional[Sequence[float]] = None,
    symmetry_centre: Optional[Sequence[float]] = None,
    symmetry_from: Optional[Path] = None,
    threads: Optional[int] = None,
    json: Optional[Path] = None,
    report: Optional[Path] = None,
    viewer_script: Optional[Path] = None,
    assembly: Optional[Path] = None,
    rest: Optional[Path] = None,
    results: Optional[Path] = None,
    models: Optional[int] = None,
    model_prefix: Optional[Path] = None,
    moved_map: Optional[Path] = None,
    mirrored_map: Optional[Path] = None,
    progress: Progress = None,
) -> Union[Placement, Assembly, MapPlacement]:
    """Finds where a model belongs in a whole density map, in every turn and without a start, and how sure that is.

    The same as `morvanex place`: each parameter is the option of that name. Every place of one model is listed, in a
    Placement. Several models, or copies of one, are placed together without clashes, which gives an Assembly; so do
    `assembly`, `rest` and `max_distance`. A density map as the model is laid on the first one, in either hand, which
    gives a MapPlacement.

    Args:
        map: a file or a Map.
        model: a file, a Structure or a gemmi.Structure; where it stands does not matter. Or a list of such, each also
            as a pair with its number of copies, ``[a, (b, 2), (c, "auto")]``. Or a map: a file or a Map.
        copies: of each model that does not say so itself, or "auto" for as many as are found.
        resolution: of the map in Å, of two maps that of the coarser one; for models it is estimated from the map's
            spectrum unless given.
        chain: the chains to be placed, which move together, "A,B" or ["A", "B"]; all polymer chains unless given.
        min_plddt: residues of a predicted model of less confidence (B factor) take no part in the search.
        fixed: structures that are already in place.
        fixed_chains: the chains of these to use; all polymer chains but those to be placed unless given.
        max_distance: residues that are known to be at most so many Å apart in some copies, from CA to CA:
            ``("A:120", "B:15", 30)``, or a list of such; "NAME/A:120" where several files have a chain A.
        invert: the map's density is dark.
        near: search round the model's present place only, in every turn.
        refine: do not search, but move the model to the best place next to its present one.
        region: x, y, z, r in Å: search with the model's centre in that ball only.
        hands: search the mirrored map as well, and tell which hand is right.
        symmetry: place the model with its copies: "C5", "D7", "T", "O", "I", a helix as "H:27.6,-166.6" (Å and
            degrees), "H" for any, or "auto" for the one that the map has.
        symmetry_axis: direction of the main axis, x, y, z in the map's frame; found unless given.
        symmetry_centre: a point of it, or the centre where there is one, x, y, z in Å; found unless given.
        symmetry_from: an mmCIF file whose first assembly tells symmetry, axis and centre.
        threads: that search, one for each core unless given; the result does not depend on it.
        json, report, viewer_script, assembly, rest, results, models, model_prefix, moved_map, mirrored_map: files to
            write, as the command does.
        progress: is called on this thread with the share of the work that is done, 0 to 1, up to ten times a second.

    Raises:
        ParameterError: for a value that makes no sense, and for parameters that do not go together.
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

    >>> ring = place("examples/1tii_8A.mrc", "examples/1tii_D_displaced.pdb", copies=2, resolution=8)
    >>> print(ring)
    2 copies placed
    >>> [chain.name for copy in ring.copies for chain in copy.chains]
    ['D', 'D2']

    >>> other = place("examples/1tii_8A.mrc", read_map("examples/1tii_8A.mrc"), resolution=12)
    >>> other.hand.verdict
    'as-given'
    """
    told: Any = model
    is_list = isinstance(told, (list, tuple))
    entries = list(told) if is_list else [told]
    if not entries:
        raise ParameterError("--model: the list holds no model")
    inputs = Inputs()
    texts = options(
        {
            "map": inputs.map(map),
            # A list is an assembly, be it of one model.
            "copies": 1 if is_list and copies is None else copies,
            "resolution": resolution,
            "chain": chain,
            "min_plddt": min_plddt,
            "fixed_chains": fixed_chains,
            "invert": bool(invert),
            "near": bool(near),
            "refine": bool(refine),
            "region": region,
            "hands": bool(hands),
            "symmetry": symmetry,
            "symmetry_axis": symmetry_axis,
            "symmetry_centre": symmetry_centre,
            "symmetry_from": symmetry_from,
            "threads": threads,
            "json": json,
            "report": report,
            "viewer_script": viewer_script,
            "assembly": assembly,
            "rest": rest,
            "results": results,
            "models": models,
            "model_prefix": model_prefix,
            "moved_map": moved_map,
            "mirrored_map": mirrored_map,
        },
        repeated={
            "model": [_model_text(inputs, entry) for entry in entries],
            "fixed": inputs.every(fixed),
            "max_distance": _distance_texts(max_distance),
        },
    )
    outcome = _morvanex.place(texts, inputs.maps, inputs.structures, progress)
    record: dict[str, Any] = json_format.loads(outcome["json"])
    given = tuple(_copies_of(entry)[0] for entry in entries)
    if record["format"] == "morvanex assembly":
        return finish(outcome, record, Assembly, given, inputs)
    if "movedMap" in record["input"]:
        return finish(outcome, record, MapPlacement, given, inputs)
    return finish(outcome, record, Placement, given, inputs)


def _copies_of(entry: Any) -> tuple[Any, Optional[Copies]]:
    """A model, and how many copies of it are wanted where that is said."""
    if not isinstance(entry, tuple):
        return entry, None
    if len(entry) != 2:
        raise TypeError(f"neither a model nor a pair of a model and its number of copies: {entry!r}")
    model, copies = entry
    return model, copies


def _model_text(inputs: Inputs, entry: Any) -> str:
    model, copies = _copies_of(entry)
    name = inputs.map(model) if isinstance(model, Map) else inputs.structure(model)
    return name if copies is None else f"{name}={text_of(copies)}"


def _distance_texts(distances: Union[None, KnownDistance, Iterable[KnownDistance]]) -> list[str]:
    """Each as the command line has it, "A:120 B:15 30"."""
    if distances is None:
        return []
    given: list[Any] = [distances] if isinstance(distances, str) else list(distances)
    # One distance is three entries itself, the last of which is a number.
    if given and not isinstance(given[-1], (str, Iterable)):
        given = [given]
    return [entry if isinstance(entry, str) else " ".join(text_of(word) for word in entry) for entry in given]
