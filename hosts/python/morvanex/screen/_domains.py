"""Long predicted chains cut where the prediction is not sure."""

from __future__ import annotations

from collections.abc import Sequence
from dataclasses import dataclass

from .._structures import Structure

#: So many residues of low confidence in a row are a linker, and a domain has so many of high confidence.
LINKER, DOMAIN = 10, 40
#: Where no other threshold is given.
CONFIDENT = 70.0


@dataclass(frozen=True)
class Domain:
    """A stretch of one chain.

    Attributes:
        name: chain and residues, "A:GLY12-SER130"; empty for a whole model.
        model: its residues.
    """

    name: str
    model: Structure


def stretches(confidences: Sequence[float], threshold: float) -> list[tuple[int, int]]:
    """The parts of a chain between its linkers, as half-open ranges of residues, each of at least 40 sure ones.

    >>> stretches([90.0] * 60 + [30.0] * 12 + [80.0] * 50, threshold=70)
    [(0, 60), (72, 122)]
    >>> stretches([90.0] * 60 + [30.0] * 9 + [80.0] * 50, threshold=70)
    [(0, 119)]
    >>> stretches([90.0] * 39 + [30.0] * 10, threshold=70)
    []
    """
    sure = [i for i, confidence in enumerate(confidences) if confidence >= threshold]
    found = []
    begin = 0
    for at in range(1, len(sure) + 1):
        if at == len(sure) or sure[at] - sure[at - 1] > LINKER:
            if at - begin >= DOMAIN:
                found.append((sure[begin], sure[at - 1] + 1))
            begin = at
    return found


def domains(model: Structure, threshold: float) -> list[Domain]:
    """The domains of a predicted model; the model itself where no linker cuts it."""
    residues = model.polymer_residues
    parts = []
    for chain in dict.fromkeys(residue.chain for residue in residues):
        of_chain = [i for i, residue in enumerate(residues) if residue.chain == chain]
        for begin, end in stretches([residues[i].b_factor for i in of_chain], threshold):
            parts.append((chain, of_chain[begin:end]))
    if len(parts) < 2:
        return [Domain("", model)]
    found = []
    for chain, members in parts:
        chosen = set(members)
        name = f"{chain.strip()}:{residues[members[0]].label}-{residues[members[-1]].label}"
        found.append(Domain(name, model.picked([i in chosen for i in range(len(residues))])))
    return found
