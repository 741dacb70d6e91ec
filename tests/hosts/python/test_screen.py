"""The command morvanex screen, as processes."""

import csv
import gzip
import hashlib
import json
import os
import pathlib
import random
import re
import signal
import sqlite3
import subprocess
import tarfile
import time
import zipfile

import gemmi
import psutil
import pytest

import morvanex
import morvanex.screen
from conftest import COMPLEX, MAP, MODEL, PROGRAM, CommandFailed, command
from morvanex.screen.__main__ import parser
from morvanex.screen._domains import domains
from morvanex.screen._ranking import false_discovery_rates

HERE = pathlib.Path(__file__).parent


def cut(first, length, chain="D"):
    """A stretch of a chain of the complex."""
    structure = gemmi.read_structure(COMPLEX)
    piece = gemmi.Structure()
    piece.add_model(gemmi.Model("1"))
    residues = gemmi.Chain(chain)
    for residue in list(structure[0][chain].get_polymer())[first : first + length]:
        residues.add_residue(residue)
    piece[0].add_chain(residues)
    return piece


def scrambled(seed, length=60):
    """A model that stands nowhere: residues of a chain, each somewhere else along a random walk."""
    numbers = random.Random(seed)
    piece = cut(numbers.randrange(20), length, "A")
    at = [0.0, 0.0, 0.0]
    for residue in piece[0][0]:
        at = [x + numbers.gauss(0, 3.5) for x in at]
        start = residue[0].pos
        for atom in residue:
            atom.pos = gemmi.Position(*(p + a - s for p, a, s in zip(atom.pos.tolist(), at, start.tolist())))
    return piece


@pytest.fixture(scope="session")
def models(tmp_path_factory):
    """A folder of two right models and twenty wrong ones, in several formats and below folders."""
    folder = tmp_path_factory.mktemp("models")
    (folder / "examples").symlink_to(HERE.parents[2] / "examples")
    before = os.getcwd()
    os.chdir(folder)
    try:
        (folder / "all" / "below").mkdir(parents=True)
        cut(0, 98).write_pdb("all/right.pdb")
        with gzip.open("all/below/right.cif.gz", "wt") as file:
            file.write(cut(3, 90, "E").make_mmcif_document().as_string())
        for seed in range(20):
            scrambled(seed).write_pdb(f"all/wrong-{seed}.pdb")
    finally:
        os.chdir(before)
    return folder / "all"


def screen(models, *more, map=MAP):
    return command("screen", "--map", map, "--resolution", 8, "--models", models, "--results", "run.sqlite", *more)


def rows(*more):
    command("screen", "export", "--results", "run.sqlite", "--csv", "ranking.csv", *more)
    return list(csv.DictReader(open("ranking.csv")))


def ranked():
    """The ranking but for the times that it took."""
    return [{key: value for key, value in row.items() if key != "seconds"} for row in rows()]


def test_the_right_models_are_found_and_no_wrong_one(models):
    output = screen(models, "--workers", 2, "--json", "ranking.json", "--top", 2)
    found = [row for row in rows() if row["declared"] == "True"]
    assert {row["model"] for row in found} == {"right.pdb", "below/right.cif.gz"}
    assert found[1]["same_place"] == "1" and float(found[0]["q"]) < 1e-4
    assert "models: 22 ranked, 0 without a result; found: 2" in output
    assert len(json.load(open("ranking.json"))["ranking"]) == 22
    placed = morvanex.read_structure(next(pathlib.Path().glob("screen-1.*")))
    assert abs(placed.coordinates - morvanex.place(MAP, models / found[0]["model"], resolution=8).model().coordinates).max() < 1e-2  # fmt: skip


def test_the_report_shows_the_ranking_and_the_best_models(models):
    screen(models, "--workers", 2, "--report", "report.html")
    page = pathlib.Path("report.html").read_text()
    assert "2 of 22 models are found." in page
    assert "of 22 models by rank, 2 of them found" in page
    assert page.count("<figure data-picture=") == 10
    assert f"SHA-256 {hashlib.sha256(pathlib.Path(MAP).read_bytes()).hexdigest()}" in page
    assert "<pre>morvanex screen " in page and "--report=report.html" in page
    command("screen", "export", "--results", "run.sqlite", "--report", "export.html")
    assert "2 of 22 models are found." in pathlib.Path("export.html").read_text()


def test_the_ranking_depends_neither_on_the_workers_nor_on_the_order(models):
    screen(models, "--workers", 1)
    alone = ranked()
    pathlib.Path("run.sqlite").unlink()
    screen(models, "--workers", 3)
    assert ranked() == alone


def test_every_model_has_the_place_that_it_has_alone_unless_one_filter_rules_it_out(models):
    ruled_out = 0
    for inverted in (False, True):
        density = morvanex.read_map(MAP)
        if inverted:
            density = morvanex.Map(-density.values, density.voxel, density.origin)
            morvanex.write_map("dark.mrc", density)
        settings = morvanex.screen.Settings(resolution=8, invert=inverted)
        files = morvanex.screen.find_models(models)[:6]
        file = f"{inverted}.sqlite"
        morvanex.screen.run("dark.mrc" if inverted else MAP, files, settings, file, workers=1)
        for model, _, result in morvanex.screen.Store(file).results():
            alone = morvanex.place(density, models / model.name, resolution=8, invert=inverted, threads=1)
            if result["verdict"] == "ruled-out":
                ruled_out += 1
                assert alone.verdict == "nothing-found"
                assert result["log_expected"] > 0 and result["places"]
                continue
            assert result["verdict"] == alone.verdict
            assert result["log_expected"] == alone.confidence.log_expected
            assert [place["score"] for place in result["places"]] == [
                place.score for place in alone.places[: len(result["places"])]
            ]
    assert 0 < ruled_out < 12


def test_archives_and_lists_give_the_same_as_folders(models):
    def found(path):
        return [(model.name, model.read()) for model in morvanex.screen.find_models(path)]

    folder = found(models)
    assert len(folder) == 22
    with zipfile.ZipFile("models.zip", "w") as archive:
        for name, content in folder:
            archive.writestr(name, content)
    with tarfile.open("models.tar.gz", "w:gz") as archive:
        archive.add(models, arcname=".")
    assert found("models.zip") == folder
    assert [content for _, content in sorted(found("models.tar.gz"))] == [content for _, content in folder]
    lines = ["model,note", f"{models}/right.pdb,first", "models.zip:below/right.cif.gz,in an archive"]
    pathlib.Path("list.csv").write_text("\n".join(lines) + "\n")
    assert [content for _, content in found("list.csv")] == [
        (models / "right.pdb").read_bytes(),
        (models / "below" / "right.cif.gz").read_bytes(),
    ]


@pytest.mark.parametrize(
    "content, problem",
    [
        (None, "there is no such folder, archive or list"),
        ("name\na.pdb\n", 'line 1: there is no column "model"'),
        ("model\n\na.pdb\n ,\n", "line 4: the model is empty"),
        ("model\na.pdb\na.pdb\n", "a.pdb is named twice"),
        ("model\n", "holds no model"),
    ],
)
def test_odd_lists_are_refused(content, problem):
    if content is not None:
        pathlib.Path("list.csv").write_text(content)
    with pytest.raises(morvanex.FileError, match=problem):
        morvanex.screen.find_models("list.csv")


def test_what_is_no_archive_is_refused():
    pathlib.Path("models.tar").write_text("Dear reader")
    with pytest.raises(CommandFailed, match="models.tar: is neither a folder, an archive nor a list"):
        screen("models.tar")


def test_bad_models_are_reported_and_the_others_go_on(models, tmp_path):
    folder = tmp_path / "some"
    folder.mkdir()
    (folder / "right.pdb").write_bytes((models / "right.pdb").read_bytes())
    (folder / "text.pdb").write_text("Dear reader\n")
    (folder / "cut.pdb.gz").write_bytes(gzip.compress(b"ATOM" * 1000)[:30])
    (folder / "empty.cif").write_text("")
    output = screen(folder, "--json", "ranking.json")
    problems = {entry["model"]: entry["problem"] for entry in json.load(open("ranking.json"))["problems"]}
    assert set(problems) == {"text.pdb", "cut.pdb.gz", "empty.cif"}
    assert "is neither PDB" in problems["text.pdb"] and problems["empty.cif"] == "is empty"
    assert "found: 1" in output


def test_models_that_are_not_there_are_reported(models):
    pathlib.Path("list.csv").write_text(f"model\nnone.pdb\n{models}/right.pdb\nzero.pdb\n")
    output = screen("list.csv", "--json", "ranking.json")
    problems = json.load(open("ranking.json"))["problems"]
    assert [entry["model"] for entry in problems] == ["none.pdb", "zero.pdb"]
    assert "No such file or directory" in problems[0]["problem"] and "found: 1" in output


def test_a_model_that_crashes_its_worker_is_reported_and_the_others_go_on(models, tmp_path, monkeypatch):
    (tmp_path / "site").mkdir()
    (tmp_path / "site" / "sitecustomize.py").write_text(
        "import os, morvanex.screen._placing as placing\n"
        "place = placing._place_one\n"
        "def crash(density, settings, name, content):\n"
        "    if name == 'wrong-7.pdb': os.kill(os.getpid(), 11)\n"
        "    return place(density, settings, name, content)\n"
        "placing._place_one = crash\n"
    )
    monkeypatch.setenv("PYTHONPATH", f"{tmp_path / 'site'}:{os.environ['PYTHONPATH']}")
    screen(models, "--workers", 2, "--json", "ranking.json")
    ranking = json.load(open("ranking.json"))
    assert ranking["problems"] == [{"model": "wrong-7.pdb", "problem": "it crashed its worker"}]
    assert len(ranking["ranking"]) == 21


def test_a_run_that_is_called_again_computes_only_what_is_missing(models):
    screen(models)
    before = ranked()
    database = sqlite3.connect("run.sqlite")
    rowids = dict(database.execute("SELECT name, rowid FROM files"))
    with database:
        database.execute("PRAGMA foreign_keys = ON")
        database.execute("DELETE FROM files WHERE name = 'wrong-3.pdb'")
    screen(models)
    assert ranked() == before
    again = dict(database.execute("SELECT name, rowid FROM files"))
    assert {name for name in rowids if rowids[name] != again[name]} <= {"wrong-3.pdb"}


def test_a_model_that_changed_is_placed_anew(models, tmp_path):
    folder = tmp_path / "some"
    folder.mkdir()
    (folder / "a.pdb").write_bytes((models / "wrong-1.pdb").read_bytes())
    screen(folder)
    (folder / "a.pdb").write_bytes((models / "right.pdb").read_bytes())
    assert "found: 1" in screen(folder)


def test_other_settings_need_another_file(models, tmp_path):
    folder = tmp_path / "some"
    folder.mkdir()
    (folder / "a.pdb").write_bytes((models / "right.pdb").read_bytes())
    screen(folder)
    with pytest.raises(CommandFailed, match="run.sqlite: holds a run with another min plddt: None, not 50.0"):
        screen(folder, "--min-plddt", 50)
    morvanex.simulate(MODEL, resolution=8, voxel=3, out="other.mrc")
    with pytest.raises(CommandFailed, match="another map"):
        screen(folder, map="other.mrc")


@pytest.mark.parametrize(
    "words, problem",
    [
        (["--results", "none.sqlite"], "none.sqlite: there is no such file"),
        (["--results", MODEL], "file is not a database"),
        (["--results", "run.sqlite", "--top", "-1"], "--top: -1 is not a whole number from 0"),
    ],
)
def test_what_cannot_be_exported_is_refused(words, problem):
    with pytest.raises(CommandFailed, match=problem):
        command("screen", "export", *words)


def test_without_the_python_part_a_sentence_says_so(models, monkeypatch, tmp_path):
    (tmp_path / "distributed.py").write_text("raise ImportError('no such package')\n")
    monkeypatch.setenv("PYTHONPATH", str(tmp_path))
    with pytest.raises(CommandFailed, match="needs the Python packages morvanex, distributed and"):
        screen(models)


def test_long_chains_are_cut_where_the_prediction_is_not_sure():
    model = morvanex.read_structure(COMPLEX).moved(morvanex.Pose((1.0, 0, 0, 0), (0, 0, 0)), ["A"])
    text = []
    morvanex.write_structure("a.pdb", model)
    for line in open("a.pdb"):
        if line.startswith("ATOM"):
            sure = not 70 <= int(line[22:26]) <= 90
            line = f"{line[:60]}{90 if sure else 20:6.2f}{line[66:]}"
        text.append(line)
    pathlib.Path("predicted.pdb").write_text("".join(text))
    parts = domains(morvanex.read_structure("predicted.pdb"), 70)
    assert len(parts) == 2
    numbers = [[int(residue.label[3:]) for residue in part.model.polymer_residues] for part in parts]
    assert max(numbers[0]) == 69 and min(numbers[1]) == 91
    assert parts[0].name.startswith("A:") and parts[0].name.endswith("69")
    pathlib.Path("split").mkdir()
    pathlib.Path("predicted.pdb").rename("split/predicted.pdb")
    screen("split", "--split")
    assert [row["domain"] for row in sorted(rows(), key=lambda row: row["domain"])] == [part.name for part in parts]


@pytest.mark.parametrize("name, action", [("screen", "run"), ("screen export", "export")])
def test_the_options_of_the_command_are_those_of_the_program(name, action):
    known = {option for entry in parser()._actions for option in entry.option_strings}
    of_command = set(re.findall(r"^    (--[a-z-]+)", command(*name.split(), "--help"), flags=re.M))
    assert of_command == known if action == "run" else of_command < known


def test_the_documentation_shows_commands_that_run(monkeypatch):
    monkeypatch.setenv("PATH", f"{os.path.dirname(PROGRAM)}:{os.environ['PATH']}")
    text = (HERE.parents[2] / "docs" / "screening.md").read_text()
    for block in re.findall("```sh\n(.*?)```", text, flags=re.S):
        subprocess.run(["bash", "-ec", block], check=True, capture_output=True)
    assert os.path.exists("ranking.csv")


def test_false_discovery_rates_are_those_of_benjamini_and_hochberg():
    # Table 1 of their paper's example: 15 probabilities, 4 found at 0.05.
    p = [0.0001, 0.0004, 0.0019, 0.0095, 0.0201, 0.0278, 0.0298, 0.0344, 0.0459, 0.3240, 0.4262, 0.5719, 0.6528,
         0.7590, 1.0]  # fmt: skip
    q = false_discovery_rates(p)
    assert sum(rate <= 0.05 for rate in q) == 4
    assert q == sorted(q) and q[-1] == 1


def test_one_of_a_thousand_wrong_models_that_looks_right_alone_is_not_called_right():
    rates = false_discovery_rates(sorted([0.001] + [i / 1000 for i in range(1, 1000)]))
    assert rates[0] >= 0.5


def test_ctrl_c_keeps_what_was_found_and_the_same_call_goes_on(models):
    words = [PROGRAM, "screen", "--map", MAP, "--resolution", "8", "--models", str(models), "--results", "run.sqlite",
             "--workers", "1"]  # fmt: skip
    process = subprocess.Popen(words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, start_new_session=True)
    wait_for(lambda: stored() > 0)
    os.killpg(process.pid, signal.SIGINT)
    _, errors = process.communicate(timeout=60)
    assert process.returncode == 130
    assert "stopped by SIGINT after" in errors and "Traceback" not in errors
    some = stored()
    assert 0 < some < 22
    screen(models)
    assert stored() == 22


def stored():
    if not os.path.exists("run.sqlite"):
        return 0
    try:
        return sqlite3.connect("run.sqlite").execute("SELECT count(*) FROM files").fetchone()[0]
    except sqlite3.OperationalError:
        return 0


def wait_for(condition, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end
        time.sleep(0.02)


class Cluster:
    """A scheduler and two workers that are started again when they are gone; a client that is called again."""

    def __init__(self, models):
        self.address = "tcp://127.0.0.1:18786"
        self.client_words = [PROGRAM, "screen", "--map", MAP, "--resolution", "8", "--models", str(models), "--results",
                             "run.sqlite", "--scheduler", self.address, "--quiet"]  # fmt: skip
        self.processes = {}

    def start(self, name):
        words = {
            "scheduler": ["dask", "scheduler", "--host", "127.0.0.1", "--port", "18786", "--no-dashboard"],
            "client": self.client_words,
        }.get(name) or ["dask", "worker", self.address, "--nthreads", "1", "--no-dashboard", "--death-timeout", "10",
                        "--local-directory", os.getcwd()]  # fmt: skip
        log = open(f"{name}.log", "a")
        self.processes[name] = subprocess.Popen(words, stdout=log, stderr=log, start_new_session=True)

    def tend(self):
        """Starts what is not running; True once a client has come to its end."""
        for name in ("scheduler", "worker-1", "worker-2"):
            if name not in self.processes or self.processes[name].poll() is not None:
                self.start(name)
        client = self.processes.get("client")
        if client is not None and client.poll() == 0:
            return True
        if client is None or client.poll() is not None:
            self.start("client")
        return False

    def kill_one(self, numbers):
        name = numbers.choice(["scheduler", "client", "worker-1", "worker-2", "worker-1", "worker-2"])
        process = self.processes[name]
        if process.poll() is not None:
            return None
        victims = [process.pid]
        if name.startswith("worker"):
            # The process that computes, below the one that watches it.
            victims = [child.pid for child in psutil.Process(process.pid).children(recursive=True)] or victims
        for victim in victims:
            try:
                os.kill(victim, signal.SIGKILL)
            except ProcessLookupError:
                pass
        return name

    def end(self):
        for process in self.processes.values():
            for child in [process.pid] if process.poll() is None else []:
                os.killpg(child, signal.SIGKILL)
            process.wait()


def test_nothing_is_lost_nor_computed_twice_whatever_is_killed(models, tmp_path):
    kills = int(os.environ.get("MORVANEX_KILLS", "6"))
    folder = tmp_path / "many"
    folder.mkdir()
    for copy in range(6 + 2 * kills):
        for name in ["right.pdb"] + [f"wrong-{i}.pdb" for i in range(20)]:
            content = (models / name).read_text()
            (folder / f"{copy}-{name}").write_text(f"REMARK {copy}\n{content}")
    number = len(list(folder.iterdir()))
    screen(folder, "--workers", 2, "--quiet")
    undisturbed = ranked()
    os.rename("run.sqlite", "undisturbed.sqlite")

    # What is kept is never put in a second time.
    morvanex.screen.Store("run.sqlite", morvanex.screen.Store("undisturbed.sqlite").settings).close()
    database = sqlite3.connect("run.sqlite")
    with database:
        database.execute("CREATE TABLE puts (name TEXT)")
        database.execute("CREATE TRIGGER put AFTER INSERT ON results BEGIN INSERT INTO puts VALUES (NEW.name); END")
    numbers = random.Random(os.environ.get("MORVANEX_SEED", "1"))
    cluster = Cluster(folder)
    killed = []
    try:
        next_kill = time.monotonic() + 6
        end = time.monotonic() + 120 + 30 * kills
        while not cluster.tend():
            assert time.monotonic() < end, pathlib.Path("client.log").read_text()
            if time.monotonic() > next_kill and len(killed) < kills:
                name = cluster.kill_one(numbers)
                killed += [name] if name else []
                next_kill = time.monotonic() + numbers.uniform(0.5, 4)
            time.sleep(0.05)
    finally:
        cluster.end()
    print(f"{len(killed)} kills ({', '.join(killed)}), {number} models")
    assert ranked() == undisturbed
    puts = [name for (name,) in database.execute("SELECT name FROM puts")]
    assert sorted(puts) == sorted(set(puts)) and len(puts) == number
    assert killed
