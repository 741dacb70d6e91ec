"""The command stands in MORVANEX_PROGRAM; beside it is what draws the 3D view."""

import os
import pathlib
import random
import shutil
import struct
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


def noise(file, size=60):
    """A map of nothing but noise, where the model is."""
    numbers = random.Random(1)
    head = bytearray(1024)
    struct.pack_into("<10i", head, 0, size, size, size, 2, 0, 0, 0, size, size, size)
    struct.pack_into("<6f", head, 40, *[2.0 * size] * 3, 90, 90, 90)
    struct.pack_into("<3i", head, 64, 1, 2, 3)
    struct.pack_into("<3f", head, 196, 0, -60, -60)
    head[208:216] = b"MAP DD\0\0"
    file.write_bytes(head + struct.pack(f"<{size**3}f", *[numbers.gauss(0, 1) for _ in range(size**3)]))
    return file


@pytest.fixture(scope="session")
def folder(tmp_path_factory):
    """Reports, and what was written beside them."""
    folder = tmp_path_factory.mktemp("reports")
    place = ["place", "--map", MAP, "--model", MODEL, "--resolution", 8]
    command(*place, "--report", folder / "place.html", "--models", 5, "--model-prefix", folder / "placed-")
    command(*place, "--copies", 5, "--report", folder / "assembly.html", "--assembly", folder / "assembly.cif")
    command("fit", "--map", MAP, "--target", MODEL, "--axis", 1, "--rotation-step", 30, "--keep", 20,
            "--report", folder / "fit.html")  # fmt: skip
    command("place", "--map", MAP, "--model", MAP, "--resolution", 10, "--report", folder / "map.html")
    command("fit", "--map", noise(folder / "noise.mrc"), "--target", MODEL, "--axis", 0, "--rotation-step", 90, "--keep", 3,
            "--report", folder / "noise.html")  # fmt: skip
    # The same program without what draws the view.
    alone = shutil.copy(PROGRAM, folder / "morvanex")
    command(*place, "--report", folder / "flat.html", program=alone)
    hostile = folder / "<img src=x onerror=document.title='hit'>.pdb"
    shutil.copy(MODEL, hostile)
    command("place", "--map", MAP, "--model", hostile, "--resolution", 8, "--report", folder / "hostile.html")
    return folder
