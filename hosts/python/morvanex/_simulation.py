"""Maps made of models."""

from __future__ import annotations

import warnings
from collections.abc import Iterable
from typing import Optional, Union

from . import _morvanex
from ._errors import MorvanexWarning
from ._maps import Map
from ._options import options
from ._work import Inputs, Path, StructureInput


def simulate(
    model: StructureInput,
    *,
    resolution: float,
    voxel: float,
    chains: Union[None, str, Iterable[str]] = None,
    bend: Optional[float] = None,
    bent_model: Optional[Path] = None,
    b_factor: Optional[float] = None,
    solvent: Optional[float] = None,
    noise: Optional[float] = None,
    resolution_noise: Optional[float] = None,
    seed: Optional[int] = None,
    sharpen: Optional[float] = None,
    low_pass: Optional[float] = None,
    mask: Optional[float] = None,
    mask_edge: Optional[float] = None,
    margin: Optional[float] = None,
    invert: bool = False,
    out: Optional[Path] = None,
) -> Map:
    """Makes a density map of a model.

    The same as `morvanex simulate`: each parameter is the option of that name.

    Args:
        model: a file, a Structure or a gemmi.Structure.
        resolution: of the map, Å.
        voxel: spacing of the voxels along x, y and z, Å.
        chains: polymer chains to use, "A,B" or ["A", "B"]; all unless given.
        bend: displace the atoms smoothly by this root mean square, Å.
        bent_model: a file for the bent model.
        b_factor: temperature factor of every atom, Å²; 4 times the square of the resolution unless given.
        solvent: density of the solvent in units of the molecule's, 0 to 1.
        noise: standard deviation of the noise, in those of the map without it.
        resolution_noise: noise in units of what the resolution implies.
        seed: of noise and bend.
        sharpen: B in Å², waves are multiplied by exp(B * k² / 4).
        low_pass: leave out waves shorter than this, Å.
        mask: set what is farther than this from every atom to 0, Å.
        mask_edge: width over which the mask falls off, Å.
        margin: let the box end this far from the outermost atoms, Å.
        invert: make density negative.
        out: a file for the map.

    Raises:
        ParameterError: for a value with which no map can be made.
        FileError: for what cannot be read or written, or would be too large.

    >>> density = simulate("examples/1tii_D_displaced.pdb", resolution=8, voxel=2)
    >>> density.values.shape, round(float(density.values.sum()) * 2**3, -2)  # the integral: electrons
    ((28, 25, 31), 4900.0)
    """
    inputs = Inputs()
    texts = options(
        {
            "model": inputs.structure(model),
            "resolution": resolution,
            "voxel": voxel,
            "chains": chains,
            "bend": bend,
            "bent_model": bent_model,
            "b_factor": b_factor,
            "solvent": solvent,
            "noise": noise,
            "resolution_noise": resolution_noise,
            "seed": seed,
            "sharpen": sharpen,
            "low_pass": low_pass,
            "mask": mask,
            "mask_edge": mask_edge,
            "margin": margin,
            "invert": bool(invert),
            "out": out,
        }
    )
    native, told = _morvanex.simulate(texts, inputs.structures)
    for warning in told:
        warnings.warn(warning, MorvanexWarning, stacklevel=2)
    return Map._of(native)
