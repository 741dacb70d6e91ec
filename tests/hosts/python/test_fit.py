import json
import os
import pathlib
import subprocess
import sys
import threading

import gemmi
import pytest

import morvanex
from conftest import COMPLEX, MAP, MODEL, CommandFailed, command, interruption, without_time

SMALL = dict(axis=1, rotation_step=30, keep=20)
WORDS = ["--axis", 1, "--rotation-step", 30, "--keep", 20]


def record(**more):
    return without_time(morvanex.fit(MAP, MODEL, **SMALL, **more).json)


def test_the_files_have_the_bytes_of_the_command():
    command("fit", "--map", MAP, "--target", MODEL, *WORDS, "--json", "command.json", "--results", "command.txt",
            "--models", 2, "--model-prefix", "command-")  # fmt: skip
    fit = morvanex.fit(MAP, MODEL, **SMALL, results="python.txt", models=2, model_prefix="python-", json="python.json")
    assert without_time(fit.json) == without_time(pathlib.Path("command.json").read_text())
    assert without_time(pathlib.Path("python.json").read_text()) == without_time(fit.json)
    for name in [".txt", "-1.pdb", "-2.pdb"]:
        assert pathlib.Path("python" + name).read_bytes() == pathlib.Path("command" + name).read_bytes()
    morvanex.write_structure("moved.pdb", fit.model(2))
    assert pathlib.Path("moved.pdb").read_bytes() == pathlib.Path("command-2.pdb").read_bytes()


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--chain", "D"], dict(chain="D")),
        (["--translation-step", "2.5", "--translation-steps", "3"], dict(translation_step=2.5, translation_steps=3)),
        (["--solid", COMPLEX, "--solid-chains", "A,C", "--inclusion-distance", "40"],
         dict(solid=[COMPLEX], solid_chains="A,C", inclusion_distance=40)),
        (["--solid", COMPLEX, "--inclusion-distance", "inf"], dict(solid=COMPLEX, inclusion_distance=float("inf"))),
        (["--restraints", "restraints.txt"], dict(restraints="restraints.txt")),
        (["--threads", "2", "--force"], dict(threads=2, force=True)),
        (["--log", "log"], dict(log="log")),
    ],
    ids=lambda value: " ".join(value) if isinstance(value, list) else "",
)  # fmt: skip
def test_every_parameter_does_what_the_option_does(words, parameters):
    pathlib.Path("restraints.txt").write_text("ALA98 10 20 30\n")
    command("fit", "--map", MAP, "--target", MODEL, *WORDS, "--json", "command.json", *words)
    assert record(**parameters) == without_time(pathlib.Path("command.json").read_text())


def test_a_solid_in_memory_keeps_poses_away():
    solid = morvanex.read_structure(COMPLEX)
    target = morvanex.read_structure(MODEL)
    held = morvanex.fit(morvanex.read_map(MAP), target, solid=solid, **SMALL)
    assert without_time(held.json) == record(solid=COMPLEX)
    assert held.as_dict()["counts"]["accepted"] < held.as_dict()["counts"]["poses"]


def test_a_gemmi_structure_is_taken_and_given_back():
    fit = morvanex.fit(MAP, gemmi.read_structure(MODEL), **SMALL)
    assert isinstance(fit.model(), gemmi.Structure)
    assert fit.solutions[0].score == morvanex.fit(MAP, MODEL, **SMALL).solutions[0].score


@pytest.mark.parametrize(
    "words, parameters",
    [
        (["--axis", "100"], dict(axis=100)),
        (["--keep", "-1"], dict(keep=-1)),
        (["--translation-step", "inf"], dict(translation_step=float("inf"))),
        (["--solid-chains", "A"], dict(solid_chains="A")),
        (["--chain", "Z"], dict(chain="Z")),
        (["--rotation-step", "0"], dict(rotation_step=0)),
    ],
    ids=lambda value: " ".join(value) if isinstance(value, list) else "",
)
def test_errors_are_those_of_the_command(words, parameters):
    with pytest.raises(CommandFailed) as of_command:
        command("fit", "--map", MAP, "--target", MODEL, *words)
    with pytest.raises(morvanex.Error) as of_python:
        morvanex.fit(MAP, MODEL, **parameters)
    assert str(of_python.value) == str(of_command.value)


def test_a_fit_of_more_than_a_year_is_refused():
    with pytest.raises(morvanex.Error, match="force=True runs it"):
        morvanex.fit(MAP, MODEL, axis=9, rotation_step=0.01, translation_steps=31)


def test_settings_come_from_where_the_command_has_them(tmp_path):
    (tmp_path / "varno").mkdir()
    (tmp_path / "varno" / "varno.ini").write_text("[Morvanex]\nAxis=0\nTopList=7\n")
    # The file is looked for once in a process.
    script = f"import morvanex; print(morvanex.fit({MAP!r}, {MODEL!r}, rotation_step=60).as_dict()['settings'])"
    environment = {**os.environ, "XDG_CONFIG_HOME": str(tmp_path)}
    done = subprocess.run([sys.executable, "-c", script], env=environment, capture_output=True, text=True)
    assert "'axis': 0" in done.stdout and "'keep': 7" in done.stdout


def test_ctrl_c_raises_after_keeping_what_was_found():
    with interruption() as progress, pytest.raises(KeyboardInterrupt) as error:
        morvanex.fit(MAP, MODEL, axis=9, rotation_step=1, threads=1, json="stopped.json", progress=progress)
    counts = error.value.result.as_dict()["counts"]
    assert 0 < counts["axesDone"] < counts["axes"]
    assert error.value.result.solutions
    assert json.loads(pathlib.Path("stopped.json").read_text())["counts"] == counts


def test_two_fits_in_two_threads_give_what_each_gives_alone():
    expected = record()
    found = []
    threads = [threading.Thread(target=lambda: found.append(record())) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert found == [expected] * 4


def test_no_pose_in_the_map_is_warned_of():
    far = morvanex.read_structure(MODEL).moved(morvanex.Pose((1.0, 0.0, 0.0, 0.0), (9999.0, 0.0, 0.0)))
    with pytest.warns(morvanex.MorvanexWarning, match="no pose of the search touches the map"):
        morvanex.fit(MAP, far, **SMALL)
