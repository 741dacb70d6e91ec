"""Fits atomic models into density maps from cryo-electron microscopy.

`place` finds where models belong in a whole map, and how sure that is; `fit` searches around a model's start;
`simulate` makes a map of a model. Each is the command of that name, with its options as parameters. Lengths are in Å; coordinates, maps and poses
share one frame.
"""

from ._assemblies import Assembly, AssemblyCopy, AssemblyPart, Distance, NamedChain
from ._errors import Error, FileError, MorvanexWarning, ParameterError
from ._fits import Fit, Solution, fit
from ._maps import Map, read_map, write_map
from ._morvanex import version as __version__
from ._place import place
from ._places import (
    Background,
    Confidence,
    Forecast,
    Hand,
    MapPlacement,
    OneHand,
    Place,
    Placement,
    ResidueScore,
    Search,
    Shell,
)
from ._poses import Pose
from ._report import report
from ._simulation import simulate
from ._structures import Structure, read_structure, write_structure
from ._symmetries import MapEvidence, PlacesEvidence, Symmetry

__all__ = [
    "Assembly",
    "AssemblyCopy",
    "AssemblyPart",
    "Background",
    "Confidence",
    "Distance",
    "Error",
    "FileError",
    "Fit",
    "Forecast",
    "Hand",
    "Map",
    "MapEvidence",
    "MapPlacement",
    "MorvanexWarning",
    "NamedChain",
    "OneHand",
    "ParameterError",
    "Place",
    "Placement",
    "PlacesEvidence",
    "Pose",
    "ResidueScore",
    "Search",
    "Shell",
    "Solution",
    "Structure",
    "Symmetry",
    "fit",
    "place",
    "read_map",
    "read_structure",
    "report",
    "simulate",
    "write_map",
    "write_structure",
]
