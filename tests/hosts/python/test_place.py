import json
import pathlib
import subprocess
import sys
import threading
import time

import gemmi
import numpy
import pytest

import morvanex
from conftest import COMPLEX, MAP, MODEL, CommandFailed, command, interruption, without_time

SETTINGS = dict(resolution=8)


def record(**more):
    return without_time(morvanex.place(MAP, MODEL, **SETTINGS, **more).json)


def test_the_record_has_the_bytes_of_the_command():
    command("place", "--map", MAP, "--model", MODEL, "--resolution", 8, "--json", "command.json")
    assert record(json="python.json") == without_time(pathlib.Path("command.json").read_text())
    assert without_time(pathlib.Path("python.json").read_text()) == record()


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--near"], dict(near=True)),
        (["--refine"], dict(refine=True)),
        (["--region", "55.4,-3.5,25.6,12.25"], dict(region=(55.4, -3.5, 25.6, 12.25))),
        (["--hands"], dict(hands=True)),
        (["--invert"], dict(invert=True)),
        (["--min-plddt", "20.5"], dict(min_plddt=20.5)),
        (["--chain", "D", "--threads", "2"], dict(chain=["D"], threads=2)),
        (["--fixed", COMPLEX, "--fixed-chains", "E,F"], dict(fixed=COMPLEX, fixed_chains=["E", "F"])),
    ],
    ids=lambda value: " ".join(value) if isinstance(value, list) else "",
)
@pytest.mark.filterwarnings("ignore:the map's extremes")
def test_every_parameter_does_what_the_option_does(words, parameters):
    command("place", "--map", MAP, "--model", MODEL, "--resolution", 8, "--json", "command.json", *words)
    assert record(**parameters) == without_time(pathlib.Path("command.json").read_text())


def test_the_files_have_the_bytes_of_the_command():
    command("place", "--map", MAP, "--model", MODEL, "--resolution", 8, "--results", "command.txt", "--models", 2,
            "--model-prefix", "command-")  # fmt: skip
    placement = morvanex.place(MAP, MODEL, **SETTINGS, results="python.txt", models=2, model_prefix="python-")
    for name in [".txt", "-1.pdb", "-2.pdb"]:
        assert pathlib.Path("python" + name).read_bytes() == pathlib.Path("command" + name).read_bytes()
    assert len(placement.written) == 3
    morvanex.write_structure("moved.pdb", placement.model(2))
    assert pathlib.Path("moved.pdb").read_bytes() == pathlib.Path("command-2.pdb").read_bytes()


def test_what_python_holds_gives_the_same_as_files():
    density, model = morvanex.read_map(MAP), morvanex.read_structure(MODEL)
    assert without_time(morvanex.place(density, model, **SETTINGS).json) == record()
    toxin = morvanex.read_structure(COMPLEX)
    held = morvanex.place(density, model, fixed=[toxin], fixed_chains="E,F", **SETTINGS)
    assert without_time(held.json) == record(fixed=[COMPLEX], fixed_chains="E,F")


@pytest.mark.filterwarnings("ignore:the map's extremes")
def test_a_map_is_left_as_it_is():
    density = morvanex.read_map(MAP)
    before = density.values.copy()
    inverted = morvanex.Map(-before, voxel=density.voxel, origin=density.origin, name=MAP)
    assert without_time(morvanex.place(inverted, MODEL, invert=True, **SETTINGS).json) == record(invert=False).replace(
        '"inverted": false', '"inverted": true'
    )
    assert numpy.array_equal(inverted.values, -before)


def test_a_prepared_map_gives_the_same_and_to_another_resolution_too():
    density = morvanex.read_map(MAP)
    prepared = density._prepared(8)
    for model in (MODEL, COMPLEX, MODEL):
        expected = without_time(morvanex.place(density, model, **SETTINGS).json)
        assert without_time(morvanex.place(prepared, model, **SETTINGS).json) == expected
    for more in (dict(resolution=9), dict(resolution=8, near=True), dict(resolution=8, refine=True)):
        expected = without_time(morvanex.place(density, MODEL, **more).json)
        assert without_time(morvanex.place(prepared, MODEL, **more).json) == expected


def test_results_hold_what_the_record_holds():
    placement = morvanex.place(MAP, MODEL, **SETTINGS)
    record = placement.as_dict()
    assert record == json.loads(placement.json)
    assert placement.placed and str(placement) == record["statement"]
    assert len(placement.places) == len(record["places"])
    for place, entry in zip(placement.places, record["places"]):
        assert (place.rank, place.score, place.probability) == (entry["rank"], entry["score"], entry["probability"])
        assert list(place.pose.quaternion) == entry["rotation"]
    assert placement.confidence.probability == record["confidence"]["probability"]
    assert len(placement.profile) == 98 and placement.profile[0].chain == "D"
    assert placement.copies == record["copies"] and placement.hand is None and placement.symmetry is None
    assert placement.forecast.statement == record["forecast"]["statement"]
    assert placement.confidence.background.places == record["confidence"]["background"]["places"]
    assert list(placement.search.voxels) == record["search"]["voxels"] and not placement.search.cancelled


def test_results_hold_the_hand():
    placement = morvanex.place(MAP, MODEL, **SETTINGS, hands=True)
    record = placement.as_dict()["hand"]
    assert placement.hand.verdict == record["verdict"] and not placement.hand.places_are_mirrored
    assert placement.hand.as_given.probability == record["asGiven"]["probability"] > placement.hand.mirrored.probability
    assert placement.hand.mirrored.confidence.place == record["mirrored"]["confidence"]["place"]


def test_the_pose_acts_on_the_input_coordinates():
    placement = morvanex.place(MAP, MODEL, **SETTINGS)
    start = morvanex.read_structure(MODEL).coordinates
    moved = placement.places[0].pose.apply(start)
    assert numpy.allclose(placement.model().coordinates, moved, atol=1e-3)
    assert numpy.allclose(numpy.linalg.det(placement.places[0].pose.matrix), 1)
    homogeneous = numpy.c_[start, numpy.ones(len(start))] @ placement.places[0].pose.affine.T
    assert numpy.allclose(homogeneous[:, :3], moved)


def test_a_gemmi_structure_is_taken_and_given_back():
    model = gemmi.read_structure(MODEL)
    placement = morvanex.place(MAP, model, **SETTINGS)
    moved = placement.model()
    assert isinstance(moved, gemmi.Structure) and moved.cell == model.cell
    expected = morvanex.place(MAP, MODEL, **SETTINGS).model().coordinates
    positions = numpy.array([site.atom.pos.tolist() for site in moved[0].all()])
    assert numpy.allclose(positions, expected, atol=1e-2)
    assert model[0][0][0][0].pos.tolist() == gemmi.read_structure(MODEL)[0][0][0][0].pos.tolist()


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--resolution", "300"], dict(resolution=300)),
        (["--resolution", "8", "--models", "1000"], dict(resolution=8, models=1000)),
        (["--resolution", "8", "--threads", "0"], dict(resolution=8, threads=0)),
        (["--resolution", "8", "--near", "--refine"], dict(resolution=8, near=True, refine=True)),
        (["--resolution", "8", "--region", "1,2,3"], dict(resolution=8, region=(1, 2, 3))),
        (["--resolution", "8", "--chain", "Z"], dict(resolution=8, chain="Z")),
        (["--resolution", "8", "--json", "/nonexistent/a"], dict(resolution=8, json="/nonexistent/a")),
        (["--resolution", "8", "--json", MAP], dict(resolution=8, json=MAP)),
    ],
    ids=lambda value: " ".join(value) if isinstance(value, list) else "",
)
def test_errors_are_those_of_the_command(words, parameters):
    with pytest.raises(CommandFailed) as of_command:
        command("place", "--map", MAP, "--model", MODEL, *words)
    with pytest.raises(morvanex.Error) as of_python:
        morvanex.place(MAP, MODEL, **parameters)
    assert str(of_python.value) == str(of_command.value)


def test_names_of_models_are_no_numbers_of_copies():
    model = gemmi.read_structure(MODEL)
    model.name = "toxin=2"
    assert morvanex.place(MAP, model, **SETTINGS).as_dict()["input"]["model"] == "toxin-2"


def test_a_wrong_value_is_a_value_error():
    with pytest.raises(ValueError):
        morvanex.place(MAP, MODEL, resolution=-1)
    with pytest.raises(TypeError, match="neither a number nor a text"):
        morvanex.place(MAP, MODEL, resolution=object())


def test_warnings_are_pythons():
    density = morvanex.read_map(MAP)
    dark = morvanex.Map(-density.values, voxel=density.voxel, origin=density.origin)
    with pytest.warns(morvanex.MorvanexWarning, match="If its density is dark, search again with --invert"):
        morvanex.place(dark, MODEL, **SETTINGS)


def test_progress_hears_of_growing_shares_and_of_the_end(slow_search):
    shares = []
    slow_search(progress=shares.append)
    assert shares == sorted(shares) and shares[-1] == 1 and len(shares) > 3
    assert all(0 <= share <= 1 for share in shares)


def test_progress_drives_a_bar(slow_search):
    tqdm = pytest.importorskip("tqdm")
    with tqdm.tqdm(total=1, file=open("bar", "w")) as bar:
        slow_search(progress=lambda share: bar.update(share - bar.n))
    assert bar.n == 1


def test_an_exception_of_progress_stops_the_search_and_comes_out(slow_search):
    def fail(share):
        raise ZeroDivisionError("no more")

    begun = time.monotonic()
    with pytest.raises(ZeroDivisionError, match="no more") as error:
        slow_search(progress=fail, json="stopped.json")
    assert time.monotonic() - begun < 3
    assert error.value.result.as_dict()["search"]["cancelled"]
    assert json.loads(pathlib.Path("stopped.json").read_text())["search"]["cancelled"]
    assert error.traceback[-1].name == "fail"


def test_ctrl_c_raises_after_keeping_what_was_found(slow_search):
    with interruption() as progress, pytest.raises(KeyboardInterrupt) as error:
        slow_search(json="stopped.json", progress=progress)
    assert error.value.result.as_dict()["search"]["cancelled"]
    assert json.loads(pathlib.Path("stopped.json").read_text())["search"]["cancelled"]


def test_other_threads_run_while_a_search_runs(slow_search):
    ticks = []
    over = threading.Event()

    def tick():
        while not over.wait(0.01):
            ticks.append(time.monotonic())

    thread = threading.Thread(target=tick, daemon=True)
    thread.start()
    slow_search()
    over.set()
    thread.join()
    assert max(numpy.diff(ticks)) < 0.5 and len(ticks) > 20


def test_two_searches_in_two_threads_give_what_each_gives_alone():
    expected = {name: without_time(morvanex.place(MAP, name, **SETTINGS).json) for name in (MODEL, COMPLEX)}
    found = {}

    def search(name, key):
        found[key] = without_time(morvanex.place(MAP, name, **SETTINGS).json)

    threads = [threading.Thread(target=search, args=(name, (name, i))) for name in expected for i in range(3)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(found) == 6
    for (name, _), json_of in found.items():
        assert json_of == expected[name]


def test_a_file_that_fails_leaves_the_result():
    with pytest.raises(morvanex.FileError, match="/dev/full") as error:
        morvanex.place(MAP, MODEL, **SETTINGS, json="/dev/full")
    assert error.value.result.placed


def test_a_process_that_imports_the_module_says_nothing():
    done = subprocess.run([sys.executable, "-c", f"import morvanex; morvanex.place({MAP!r}, {MODEL!r}, resolution=8)"],
                          capture_output=True, text=True)  # fmt: skip
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")


@pytest.fixture
def slow_search():
    """A search of some seconds: a large model in a large map of noise."""
    values = numpy.random.default_rng(1).normal(size=(200, 200, 200))
    density = morvanex.Map(values, voxel=2.5)

    def search(**more):
        return morvanex.place(density, COMPLEX, resolution=8, threads=1, **more)

    return search
