"""Reports of results, and scripts for viewers."""

import re

import numpy
import pytest

import morvanex
from conftest import COMPLEX, MAP, MODEL, command


def told(page):
    """What a page tells, but for its time, its command line and how long the search took."""
    page = re.sub(r"<h3>Command</h3>.*?</pre>\s*", "", page, flags=re.S)
    return re.sub(r"<dt>(Written|Time)</dt>\s*<dd>.*?</dd>", "", page, flags=re.S)


@pytest.mark.parametrize("more", [{}, {"copies": 2}, {"fixed": COMPLEX, "fixed_chains": "A"}, {"invert": True}])
def test_of_a_placement_is_the_same_later(tmp_path, more):
    found = morvanex.place(MAP, MODEL, resolution=8, report="during.html", **more)
    morvanex.report(found, tmp_path / "after.html")
    assert told((tmp_path / "after.html").read_text()) == told(open("during.html").read())


def test_of_a_fit_is_the_same_later():
    found = morvanex.fit(MAP, MODEL, solid=COMPLEX, solid_chains=["A", "C"], axis=0, rotation_step=60, keep=5,
                         report="during.html")  # fmt: skip
    morvanex.report(found, "after.html")
    assert told(open("after.html").read()) == told(open("during.html").read())


def test_is_that_of_the_command():
    command("place", "--map", MAP, "--model", MODEL, "--resolution", 8, "--report", "command.html")
    morvanex.place(MAP, MODEL, resolution=8, report="python.html")
    assert told(open("command.html").read()) == told(open("python.html").read())


def test_of_objects_in_memory():
    model = morvanex.read_structure(MODEL)
    found = morvanex.place(morvanex.read_map(MAP), model, resolution=8)
    morvanex.report(found, "report.html")
    assert 'data-picture="0"' in open("report.html").read()


def test_scripts_open_the_models_in_their_places():
    found = morvanex.place(MAP, MODEL, resolution=8)
    morvanex.report(found, "places.pml")
    matrix = re.search(r"transform_selection\('place_2', \[(.*?)\]", open("places.pml").read())[1]
    numbers = numpy.array([float(number) for number in matrix.split(", ")]).reshape(4, 4)
    assert numpy.allclose(numbers[:3, :3], found.places[1].pose.matrix, atol=1e-6)
    assert numpy.allclose(numbers[:3, 3], found.places[1].pose.translation, atol=1e-5)
    morvanex.report(found, "places.cxc")
    assert "view matrix models #3," in open("places.cxc").read()


def test_pymol_shows_them_there():
    """Where PyMOL is installed."""
    pytest.importorskip("pymol2")
    import pymol2

    found = morvanex.place(MAP, MODEL, resolution=8, viewer_script="places.pml")
    with pymol2.PyMOL() as pymol:
        pymol.cmd.do("@places.pml")
        pymol.cmd.sync()
        shown = pymol.cmd.get_model("place_2").atom
        wanted = found.model(2)
        assert len(shown) == len(wanted.coordinates)
        assert numpy.allclose(shown[0].coord, wanted.coordinates[0], atol=2e-3)
        box = numpy.array(pymol.cmd.get_extent("map"))
    density = morvanex.read_map(MAP)
    last = density.origin + (numpy.array(density.values.shape[::-1]) - 1) * density.voxel
    assert numpy.allclose(box, [density.origin, last], atol=1e-3)


def test_what_cannot_be_written_is_refused():
    found = morvanex.place(MAP, MODEL, resolution=8)
    with pytest.raises(morvanex.FileError, match="/nonexistent/r.html"):
        morvanex.report(found, "/nonexistent/r.html")
    with pytest.raises(TypeError, match="no report of dict"):
        morvanex.report({}, "r.html")
    with pytest.raises(morvanex.ParameterError, match="--viewer-script: a.txt ends neither in .cxc"):
        morvanex.place(MAP, MODEL, resolution=8, viewer_script="a.txt")


def test_of_a_map_on_a_map_is_the_same_later():
    made = morvanex.simulate(COMPLEX, resolution=10, voxel=3)
    found = morvanex.place(MAP, made, resolution=10, report="during.html")
    assert "contour of the second map in its place" in open("during.html").read()
    morvanex.report(found, "after.html")
    assert told(open("after.html").read()) == told(open("during.html").read())
    with pytest.raises(morvanex.ParameterError, match="--viewer-script: is for structures"):
        morvanex.report(found, "later.cxc")
