"""Screening: which of many models stands in a map.

`run` places every model of a folder, an archive or a list, on processes of this machine or on a cluster, and keeps the
results in a file from which a stopped run goes on. `ranking` tells which of them are found. The command
`morvanex screen` is made of these.
"""

from ._models import ModelFile, find_models
from ._placing import Settings
from ._ranking import Ranked, ranking, write_csv, write_json, write_models, write_report
from ._run import Progress, run
from ._store import Store

__all__ = [
    "ModelFile",
    "Progress",
    "Ranked",
    "Settings",
    "Store",
    "find_models",
    "ranking",
    "run",
    "write_csv",
    "write_json",
    "write_models",
    "write_report",
]
