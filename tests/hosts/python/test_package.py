"""Types, and the examples in the documentation strings."""

import doctest
import importlib
import inspect
import pathlib
import pkgutil
import re
import subprocess
import sys

import pytest

import morvanex
from conftest import ROOT

PACKAGE = pathlib.Path(morvanex.__file__).parent
MODULES = [f"morvanex.{module.name}" for module in pkgutil.iter_modules([str(PACKAGE)])]


def check(*words):
    done = subprocess.run([sys.executable, "-m", *words], cwd=PACKAGE.parent, capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr


def test_the_package_is_typed():
    assert (PACKAGE / "py.typed").exists()
    check("mypy", "--strict", "--cache-dir", "/dev/null", "-p", "morvanex")


def test_the_stub_is_what_the_module_holds(tmp_path):
    # Of pybind11's classes the metaclass is its own.
    allowed = tmp_path / "allowed"
    allowed.write_text("morvanex._morvanex.(Map|Structure)\nmorvanex._morvanex.Structure.__init__\n")
    check("mypy.stubtest", "--allowlist", str(allowed), "morvanex._morvanex")


def test_typed_use_is_checked(tmp_path):
    (tmp_path / "use.py").write_text(
        "import morvanex\n"
        "found = morvanex.place('map.mrc', 'model.pdb', resolution=8)\n"
        "score: float = found.places[0].score\n"
        "wrong: str = found.places[0].score\n"
        "morvanex.place('map.mrc')\n"
        "several = morvanex.place('map.mrc', ['a.pdb', ('b.pdb', 2)], resolution=8)\n"
        "of_copies: morvanex.Assembly = morvanex.place('map.mrc', 'a.pdb', copies='auto')\n"
        "of_map: morvanex.MapPlacement = morvanex.place('map.mrc', morvanex.read_map('a.mrc'), resolution=8)\n"
        "several.places\n"
        "morvanex.place('map.mrc', 'a.pdb', copies=2, near=True)\n"
    )
    done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", "/dev/null", tmp_path / "use.py"],
                          cwd=PACKAGE.parent, capture_output=True, text=True)  # fmt: skip
    assert sorted({int(line) for line in re.findall(r"use.py:(\d+): error", done.stdout)}) == [4, 5, 9, 10]


@pytest.mark.parametrize("name", MODULES)
def test_the_examples_of_the_documentation_hold(name, tmp_path):
    module = importlib.import_module(name)
    names = {**{key: getattr(morvanex, key) for key in morvanex.__all__}, "folder": tmp_path}
    assert doctest.testmod(module, extraglobs=names).failed == 0


def test_the_report_is_written_as_its_documentation_shows():
    (block,) = re.findall("```python\n(.*?)```", (ROOT / "docs/report.md").read_text(), flags=re.S)
    exec(block, {})
    assert pathlib.Path("report.html").exists() and pathlib.Path("places.cxc").exists()


def test_every_public_function_has_an_example():
    for name in morvanex.__all__:
        value = getattr(morvanex, name)
        if inspect.isfunction(value):
            assert ">>> " in value.__doc__, name


@pytest.mark.parametrize("document", ["README.md", "docs/python.md"])
def test_the_documentation_shows_lines_that_run(document, capsys):
    names = {}
    for block in re.findall("```python\n(.*?)```", (ROOT / document).read_text(), flags=re.S):
        exec(block, names)
    assert "placed, with a probability above 0.999" in capsys.readouterr().out
