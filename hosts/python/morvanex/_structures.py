"""Atomic models."""

from __future__ import annotations

import os
import sys
import warnings
from collections.abc import Iterable
from typing import Any, NamedTuple, Optional, Union

import numpy
from numpy.typing import NDArray

from . import _morvanex
from ._errors import MorvanexWarning
from ._poses import Pose

Path = Union[str, "os.PathLike[str]"]


class ResidueInfo(NamedTuple):
    """A residue of a polymer chain: the chain's identifier, its name and number, and its mean B factor, which is the
    confidence (pLDDT) of a predicted one."""

    chain: str
    label: str
    b_factor: float


class Structure:
    """An atomic model: its polymer chains, and their ligands and waters. Made by `read_structure`.

    >>> read_structure("examples/1tii_D_displaced.pdb")
    Structure 'examples/1tii_D_displaced.pdb': chains D, 98 residues, 740 atoms
    """

    def __init__(self, native: _morvanex.Structure) -> None:
        self._native = native

    @property
    def name(self) -> str:
        """The file that the model was read from, or the name that it was given."""
        return self._native.name

    @property
    def format(self) -> str:
        """"PDB" or "mmCIF", as it was read."""
        return self._native.format

    @property
    def chains(self) -> tuple[str, ...]:
        """Identifiers of the polymer chains; " " for a blank one."""
        return self._native.chains

    @property
    def coordinates(self) -> NDArray[numpy.float32]:
        """Of all atoms in Å, shape (atoms, 3): a copy."""
        return self._native.coordinates

    @property
    def polymer_residues(self) -> list[ResidueInfo]:
        """Of the polymer chains, in model order.

        >>> read_structure("examples/1tii_D_displaced.pdb").polymer_residues[0].label
        'GLY1'
        """
        return [ResidueInfo(*row) for row in self._native.residue_table]

    def picked(self, mask: Iterable[bool]) -> "Structure":
        """Those of the `polymer_residues` for which `mask` is true.

        Raises:
            ValueError: where it has not an entry for each.

        >>> model = read_structure("examples/1tii_D_displaced.pdb")
        >>> len(model.picked(residue.b_factor < 50 for residue in model.polymer_residues).polymer_residues)
        93
        """
        return Structure(self._native.picked([bool(entry) for entry in mask]))

    def moved(self, pose: Pose, chains: Optional[Iterable[str]] = None) -> "Structure":
        """A copy moved by a pose: of the whole model, or of those polymer chains alone.

        Raises:
            FileError: for a chain that the model does not have.

        >>> toxin = read_structure("examples/1tii.pdb")
        >>> toxin.moved(Pose((1.0, 0.0, 0.0, 0.0), (0.0, 0.0, 5.0)), chains=["D"]).chains
        ('D',)
        """
        identifiers = None if chains is None else list(chains)
        return Structure(self._native.moved(pose.quaternion, pose.translation, identifiers))

    def __repr__(self) -> str:
        return (
            f"Structure {self.name!r}: chains {', '.join(self.chains)}, {sum(self._native.residues)} residues, "
            f"{len(self.coordinates)} atoms"
        )


def _warned(native: _morvanex.Structure) -> Structure:
    for warning in native.warnings:
        warnings.warn(f"{native.name}: {warning}", MorvanexWarning, stacklevel=3)
    return Structure(native)


def read_structure(file: Path) -> Structure:
    """Reads a PDB or mmCIF file, plain or compressed by gzip; coordinates in Å.

    Of several models the first is read, of alternate locations the first of each atom; a warning says what was left
    out.

    Raises:
        FileError: for a file that is neither; the message names the line or row and the value.

    >>> read_structure("examples/1tii.pdb").chains
    ('D', 'E', 'F', 'G', 'H', 'A', 'C')
    """
    return _warned(_morvanex.read_structure(file))


def write_structure(file: Path, structure: Structure) -> None:
    """Writes a model, mmCIF where the name ends in .cif or .mmcif, else PDB.

    Atoms are numbered afresh and occupancies are 1.00. The file is replaced as a whole, or left as it was.

    Raises:
        FileError: where the file cannot be written, or the format cannot hold the model.

    >>> write_structure(folder / "toxin.cif", read_structure("examples/1tii_D_displaced.pdb"))
    >>> read_structure(folder / "toxin.cif").format
    'mmCIF'
    """
    _morvanex.write_structure(file, structure._native)


def is_gemmi(value: object) -> bool:
    """Whether it is a gemmi.Structure; gemmi is not loaded to find out."""
    gemmi = sys.modules.get("gemmi")
    return gemmi is not None and isinstance(value, gemmi.Structure)


def from_gemmi(structure: Any) -> Structure:
    """The model of a gemmi.Structure."""
    text = structure.make_mmcif_document().as_string()
    return _warned(_morvanex.parse_structure(text, structure.name or "structure"))


def moved_gemmi(structure: Any, pose: Pose, chains: Iterable[str]) -> Any:
    """A copy of the first model of a gemmi.Structure, those chains of it, moved."""
    import gemmi  # type: ignore[import]

    placed = structure.clone()
    del placed[1:]
    for name in [chain.name for chain in placed[0] if chain.name not in set(chains)]:
        placed[0].remove_chain(name)
    motion = gemmi.Transform(gemmi.Mat33(pose.matrix.tolist()), gemmi.Vec3(*pose.translation))
    placed[0].transform_pos_and_adp(motion)
    return placed
