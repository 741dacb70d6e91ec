"""The command stands in MORVANEX_PROGRAM; beside it is what draws the 3D view."""

import os
import pathlib
import shutil
import subprocess

import pytest
from chromium import Browser

ROOT = pathlib.Path(__file__).resolve().parents[4]
PROGRAM = pathlib.Path(os.environ["MORVANEX_PROGRAM"])
MAP, MODEL = ROOT / "examples/1tii_8A.mrc", ROOT / "examples/1tii_D_displaced.pdb"


@pytest.fixture(scope="session")
def browser():
    """One for all tests: starting it takes longer than most of them."""
    browser = Browser()
    yield browser
    browser.close()


def command(*words, program=PROGRAM):
    done = subprocess.run([program, *map(str, words)], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr


@pytest.fixture(scope="session")
def folder(tmp_path_factory):
    """Reports, and what was written beside them."""
    folder = tmp_path_factory.mktemp("reports")
    place = ["place", "--map", MAP, "--model", MODEL, "--resolution", 8]
    command(*place, "--report", folder / "place.html", "--models", 5, "--model-prefix", folder / "placed-")
    command(*place, "--copies", 5, "--report", folder / "assembly.html")
    command("fit", "--map", MAP, "--target", MODEL, "--axis", 1, "--rotation-step", 30, "--keep", 20,
            "--report", folder / "fit.html")  # fmt: skip
    command("place", "--map", MAP, "--model", MAP, "--resolution", 10, "--report", folder / "map.html")
    # The same program without what draws the view.
    alone = shutil.copy(PROGRAM, folder / "morvanex")
    command(*place, "--report", folder / "flat.html", program=alone)
    hostile = folder / "<img src=x onerror=document.title='hit'>.pdb"
    shutil.copy(MODEL, hostile)
    command("place", "--map", MAP, "--model", hostile, "--resolution", 8, "--report", folder / "hostile.html")
    return folder
