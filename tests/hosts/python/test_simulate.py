import pathlib

import numpy
import pytest

import morvanex
from conftest import MODEL, CommandFailed, command


@pytest.mark.parametrize(
    "words, parameters",
    [
        ([], {}),
        (["--chains", "D"], dict(chains=["D"])),
        (["--noise", "0.5", "--seed", "7"], dict(noise=0.5, seed=7)),
        (["--b-factor", "300", "--solvent", "0.5"], dict(b_factor=300, solvent=0.5)),
        (["--resolution-noise", "1", "--low-pass", "9"], dict(resolution_noise=1, low_pass=9)),
        (["--sharpen", "-50", "--invert"], dict(sharpen=-50, invert=True)),
        (["--mask", "5", "--mask-edge", "3", "--margin", "4"], dict(mask=5, mask_edge=3, margin=4)),
        (["--bend", "2"], dict(bend=2)),
    ],
    ids=lambda value: " ".join(value) if isinstance(value, list) else "",
)
def test_the_map_has_the_bytes_of_the_command(words, parameters):
    command("simulate", "--model", MODEL, "--resolution", 8, "--voxel", 2, "--out", "command.mrc", *words)
    density = morvanex.simulate(MODEL, resolution=8, voxel=2, out="python.mrc", **parameters)
    assert pathlib.Path("python.mrc").read_bytes() == pathlib.Path("command.mrc").read_bytes()
    assert numpy.array_equal(density.values, morvanex.read_map("command.mrc").values)


def test_the_bent_model_has_the_bytes_of_the_command():
    command("simulate", "--model", MODEL, "--resolution", 8, "--voxel", 2, "--out", "a.mrc", "--bend", 3,
            "--bent-model", "command.pdb")  # fmt: skip
    morvanex.simulate(morvanex.read_structure(MODEL), resolution=8, voxel=2, bend=3, bent_model="python.pdb")
    assert pathlib.Path("python.pdb").read_bytes() == pathlib.Path("command.pdb").read_bytes()


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--noise", "-1"], dict(noise=-1)),
        (["--bent-model", "a.pdb"], dict(bent_model="a.pdb")),
        (["--mask-edge", "1"], dict(mask_edge=1)),
        (["--bend", "101"], dict(bend=101)),
        (["--chains", "Z"], dict(chains="Z")),
    ],
    ids=lambda value: " ".join(value) if isinstance(value, list) else "",
)
def test_errors_are_those_of_the_command(words, parameters):
    with pytest.raises(CommandFailed) as of_command:
        command("simulate", "--model", MODEL, "--resolution", 8, "--voxel", 2, "--out", "a.mrc", *words)
    with pytest.raises(morvanex.Error) as of_python:
        morvanex.simulate(MODEL, resolution=8, voxel=2, **parameters)
    assert str(of_python.value) == str(of_command.value)


def test_coarse_voxels_are_warned_of():
    with pytest.warns(morvanex.MorvanexWarning, match="voxels of 5 Å are too large to hold a resolution of 8 Å"):
        morvanex.simulate(MODEL, resolution=8, voxel=5)


def test_a_simulated_map_can_be_searched_at_once():
    density = morvanex.simulate(MODEL, resolution=8, voxel=2)
    placement = morvanex.place(density, MODEL, resolution=8)
    assert placement.placed
    assert numpy.allclose(placement.model().coordinates, morvanex.read_structure(MODEL).coordinates, atol=1)
