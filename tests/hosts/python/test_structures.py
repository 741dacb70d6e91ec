import pathlib

import gemmi
import numpy
import pytest

import morvanex
from conftest import COMPLEX, MODEL

QUARTER = morvanex.Pose((0.5**0.5, 0.0, 0.0, 0.5**0.5), (1.0, 2.0, 3.0))


def test_a_structure_tells_what_it_holds():
    structure = morvanex.read_structure(MODEL)
    assert structure.chains == ("D",)
    assert structure.coordinates.shape == (740, 3)
    assert numpy.allclose(structure.coordinates[0], gemmi.read_structure(MODEL)[0][0][0][0].pos.tolist(), atol=1e-3)


def test_a_moved_copy_leaves_the_original():
    structure = morvanex.read_structure(MODEL)
    before = structure.coordinates
    moved = structure.moved(QUARTER)
    assert numpy.allclose(moved.coordinates, QUARTER.apply(before), atol=1e-4)
    assert numpy.array_equal(structure.coordinates, before)


def test_coordinates_are_a_copy_that_outlives_the_structure():
    coordinates = morvanex.read_structure(MODEL).coordinates
    again = morvanex.read_structure(MODEL)
    coordinates[:] = 0
    assert again.coordinates.any()


def test_chains_are_picked_out():
    toxin = morvanex.read_structure(COMPLEX)
    assert toxin.moved(QUARTER, ["D", "E"]).chains == ("D", "E")
    with pytest.raises(morvanex.FileError, match="chain Z: there is no such polymer chain"):
        toxin.moved(QUARTER, ["Z"])


@pytest.mark.parametrize("name", ["copy.pdb", "copy.cif"])
def test_written_structures_are_read_back(name):
    structure = morvanex.read_structure(COMPLEX)
    morvanex.write_structure(name, structure)
    again = morvanex.read_structure(name)
    assert again.chains == structure.chains
    assert numpy.allclose(again.coordinates, structure.coordinates, atol=1e-3)
    assert gemmi.read_structure(name)[0].count_atom_sites() == len(structure.coordinates)


def test_errors_of_files_are_those_of_the_command():
    pathlib.Path("text.pdb").write_text("Dear reader\n")
    with pytest.raises(morvanex.FileError, match="text.pdb: is neither PDB .* nor mmCIF; it begins with"):
        morvanex.read_structure("text.pdb")


def test_what_was_left_out_is_warned_of():
    text = pathlib.Path(MODEL).read_text()
    pathlib.Path("two.pdb").write_text("MODEL        1\n" + text + "ENDMDL\nMODEL        2\n" + text + "ENDMDL\n")
    with pytest.warns(morvanex.MorvanexWarning, match="two.pdb: 1 further model left out"):
        morvanex.read_structure("two.pdb")


def test_many_structures_leave_no_memory_behind():
    def resident():
        return int(pathlib.Path("/proc/self/statm").read_text().split()[1])

    for round in range(60):
        morvanex.read_structure(COMPLEX)
        if round == 10:
            before = resident()
    assert (resident() - before) * 4096 < 4 << 20
