"""Which of many models are found."""

from __future__ import annotations

import csv
import io
import json
import math
import os
from collections.abc import Iterable, Sequence
from dataclasses import asdict, dataclass
from typing import Any, Optional, Union

from .._poses import Pose
from .._report import inverted
from .._structures import Structure, write_structure
from .. import _morvanex
from ._models import ModelFile
from ._store import Result, Store

#: The share of wrong models among those declared that is expected at most.
FALSE_DISCOVERY_RATE = 0.01
#: Verdicts of a place that is called right.
SURE = ("placed", "turn-unsure")
#: Models on one place stand closer than this part of the larger one's radius of gyration.
SAME_PLACE = 0.5
#: Models that a report shows in their places.
SHOWN = 10

Path = Union[str, "os.PathLike[str]"]


@dataclass(frozen=True)
class Ranked:
    """A model in the ranking.

    Attributes:
        rank: 1 for the best.
        model: its name.
        domain: chain and residues of the part that was placed; empty for the whole model.
        declared: whether it is called found: q is at most 0.01, and the map can be judged.
        q: the share of wrong models to be expected among those that rank as high (false discovery rate).
        p: that a wrong model has a place as good.
        expected: E, wrong places that are expected to score as well as the best one, by the filter less sure of it.
        verdict: of the model alone; "ruled-out" where the filter without the model makes E greater than 1, and `expected`,
            `score` and `pose` are its own.
        score: of the best place; scores of different models do not compare.
        other_turns: what other turns at the same place weigh against the best one's 1.
        copies: places that the model alone has by that verdict.
        same_place: rank of the best model whose place it shares, as models of one fold do; its own where it has none.
        residues, left_out: that took part in the search, and that were left out for their confidence.
        centre: of the placed model, Å.
        pose: acts on the model's input coordinates.
        checksum: SHA-256 of the model's file.
        seconds: that the search took.
    """

    rank: int
    model: str
    domain: str
    declared: bool
    q: float
    p: float
    expected: float
    verdict: str
    score: Optional[float]
    other_turns: Optional[float]
    copies: int
    same_place: int
    residues: int
    left_out: int
    centre: Optional[tuple[float, float, float]]
    pose: Optional[Pose]
    checksum: str
    seconds: float
    file: ModelFile


def wrong_as_good(log_expected: Optional[float]) -> float:
    """The probability that a wrong model's best place is as good: 8E / (1 + 8E), as a single search has it.

    >>> wrong_as_good(None), wrong_as_good(0.0)
    (1.0, 0.8888888888888888)
    >>> wrong_as_good(-30.0) < 1e-12
    True
    """
    if log_expected is None or log_expected > 700:
        return 1.0
    odds = 8 * math.exp(log_expected)
    return odds / (1 + odds)


def false_discovery_rates(probabilities: Sequence[float]) -> list[float]:
    """The q of each of some probabilities in ascending order (Benjamini and Hochberg 1995): the least of p·n/rank over
    its own and the later ones.

    >>> false_discovery_rates([0.001, 0.02, 0.03, 0.9])
    [0.004, 0.04, 0.04, 0.9]
    """
    rates: list[float] = []
    least = 1.0
    number = len(probabilities)
    for rank in range(number, 0, -1):
        least = min(least, probabilities[rank - 1] * number / rank)
        rates.append(least)
    return rates[::-1]


def _order(entry: tuple[ModelFile, str, Result]) -> tuple[float, str, str]:
    model, _, result = entry
    expected = result["log_expected"]
    return (math.inf if expected is None else expected, model.name, result["domain"])


def _stands_with(result: Result, other: Result) -> bool:
    """Whether the best place of one is a place of another, better one."""
    reach = SAME_PLACE * max(result["radius"], other["radius"])
    centre = result["places"][0]["centre"]
    return any(math.dist(centre, place["centre"]) < reach for place in other["places"])


def _same_places(results: Sequence[Result]) -> list[int]:
    """Of each the rank of the best one on whose place it stands."""
    firsts: list[int] = []
    shared = []
    for rank, result in enumerate(results, start=1):
        found = rank
        # Where a wrong model happens to stand says nothing.
        if result["verdict"] in SURE:
            found = next((first for first in firsts if _stands_with(result, results[first - 1])), rank)
            if found == rank:
                firsts.append(rank)
        shared.append(found)
    return shared


def ranking(store: Store) -> list[Ranked]:
    """The models of a run, the best first. It depends on the models alone, not on the order in which they were placed."""
    entries = sorted(store.results(), key=_order)
    results = [result for _, _, result in entries]
    probabilities = [wrong_as_good(result["log_expected"]) for result in results]
    rows = zip(entries, probabilities, false_discovery_rates(probabilities), _same_places(results))
    return [
        _ranked(rank, model, checksum, result, p, q, same)
        for rank, ((model, checksum, result), p, q, same) in enumerate(rows, start=1)
    ]


def _ranked(rank: int, model: ModelFile, checksum: str, result: Result, p: float, q: float, same: int) -> Ranked:
    best = result["places"][0] if result["places"] else None
    centre = (best["centre"][0], best["centre"][1], best["centre"][2]) if best else None
    expected = result["log_expected"]
    return Ranked(
        rank=rank,
        model=model.name,
        domain=result["domain"],
        declared=q <= FALSE_DISCOVERY_RATE and result["verdict"] in SURE,
        q=q,
        p=p,
        expected=math.inf if expected is None or expected > 700 else math.exp(expected),
        verdict=result["verdict"],
        score=best["score"] if best else None,
        other_turns=result["other_turns"],
        copies=len(result["places"]) if result["verdict"] == "placed" else 0,
        same_place=same,
        residues=result["residues"],
        left_out=result["left_out"],
        centre=centre,
        pose=Pose.from_json(best) if best else None,
        checksum=checksum,
        seconds=result["seconds"],
        file=model,
    )


def _row(entry: Ranked) -> dict[str, Any]:
    row = asdict(entry)
    del row["file"]
    pose = row.pop("pose")
    for name, value, letters in [
        ("centre", row.pop("centre"), "xyz"),
        ("rotation", pose and pose["quaternion"], "wxyz"),
        ("translation", pose and pose["translation"], "xyz"),
    ]:
        for i, letter in enumerate(letters):
            row[f"{name}_{letter}"] = value[i] if value else None
    return row


def _replace(file: Path, text: str) -> None:
    """Writes a file as a whole."""
    _morvanex.replace_file(file, text)


def write_csv(file: Path, ranked: Iterable[Ranked]) -> None:
    """Writes the ranking as a table with a head line."""
    text = io.StringIO()
    rows = [_row(entry) for entry in ranked]
    writer = csv.DictWriter(text, rows[0].keys() if rows else ["rank", "model"], lineterminator="\n")
    writer.writeheader()
    writer.writerows(rows)
    _replace(file, text.getvalue())


def record_of(store: Store, ranked: Iterable[Ranked]) -> str:
    """Settings, ranking and the models without a result, as JSON."""
    rows = [{key: _finite(value) for key, value in _row(entry).items()} for entry in ranked]
    problems = [{"model": model, "problem": problem} for model, problem in store.problems()]
    head = {
        "format": "morvanex screen",
        "version": 1,
        "program": f"morvanex {_morvanex.version}",
        "settings": store.settings,
        "problems": problems,
    }
    lines = ",\n    ".join(json.dumps(row) for row in rows)
    return json.dumps(head, indent=2)[:-2] + ',\n  "ranking": [\n    ' + lines + "\n  ]\n}\n"


def write_json(file: Path, store: Store, ranked: Iterable[Ranked]) -> None:
    """Writes settings, ranking and the models without a result."""
    _replace(file, record_of(store, ranked))


def write_report(file: Path, store: Store, ranked: Sequence[Ranked], command: str = "") -> None:
    """Writes the ranking as a page to look at, with the ten best models in their places; see `morvanex.report`.

    Raises:
        FileError: for a map or a model that is no longer there, and for what cannot be written.
    """
    density = _morvanex.read_map(store.settings["map"])
    if store.settings["invert"]:
        density = inverted(density)
    best = [entry for entry in ranked[:SHOWN] if entry.pose]
    models = {entry.model: _morvanex.parse_structure(entry.file.read(), entry.model) for entry in best}
    shown = [(name, structure, None) for name, structure in models.items()]
    _morvanex.write_report(os.fspath(file), record_of(store, ranked), density, None, shown, [], command)


def _finite(value: Any) -> Any:
    return "inf" if isinstance(value, float) and math.isinf(value) else value


def write_models(prefix: str, ranked: Sequence[Ranked], number: int) -> list[str]:
    """Writes the best models in their places, whole and in the format of their files; the names.

    Raises:
        FileError: for a model that is no longer there, and for what cannot be written.
    """
    best = [entry for entry in ranked[:number] if entry.pose]
    digits = len(str(len(best)))
    written = []
    for entry in best:
        assert entry.pose is not None
        model = Structure(_morvanex.parse_structure(entry.file.read(), entry.model))
        file = f"{prefix}{entry.rank:0{digits}d}{'.cif' if model.format == 'mmCIF' else '.pdb'}"
        write_structure(file, model.moved(entry.pose, model.chains))
        written.append(file)
    return written
