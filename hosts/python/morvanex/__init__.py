"""Fits atomic models into density maps from cryo-electron microscopy.

`place` finds where a model belongs in a whole map, and how sure that is; `fit` searches around a model's start;
`simulate` makes a map of a model. Each is the command of that name, with its options as parameters. Lengths are in Å; coordinates, maps and poses
share one frame.
"""

from ._errors import Error, FileError, MorvanexWarning, ParameterError
from ._fits import Fit, Solution, fit
from ._maps import Map, read_map, write_map
from ._morvanex import version as __version__
from ._places import Confidence, Place, Placement, ResidueScore, place
from ._poses import Pose
from ._simulation import simulate
from ._structures import Structure, read_structure, write_structure

__all__ = [
    "Confidence",
    "Error",
    "FileError",
    "Fit",
    "Map",
    "MorvanexWarning",
    "ParameterError",
    "Place",
    "Placement",
    "Pose",
    "ResidueScore",
    "Solution",
    "Structure",
    "fit",
    "place",
    "read_map",
    "read_structure",
    "simulate",
    "write_map",
    "write_structure",
]
