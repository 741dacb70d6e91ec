"""The options of the command and the parameters of Python, name by name."""

import inspect
import re

import pytest

import morvanex
from conftest import command

# Options that Python does not have, and why; parameters that the command does not have.
NOT_IN_PYTHON = {
    "place": {"quiet": "Python prints nothing"},
    "fit": {"quiet": "Python prints nothing"},
    "simulate": {},
}
ONLY_IN_PYTHON = {
    "place": {"progress"},
    "fit": {"progress"},
    "simulate": set(),
}


def options_of(name):
    help = command(name, "--help")
    return {found.replace("-", "_") for found in re.findall(r"^    --([a-z-]+)", help, flags=re.M)}


@pytest.mark.parametrize("name", sorted(NOT_IN_PYTHON))
def test_every_option_is_a_parameter_of_the_same_name(name):
    parameters = set(inspect.signature(getattr(morvanex, name)).parameters)
    assert parameters - ONLY_IN_PYTHON[name] == options_of(name) - set(NOT_IN_PYTHON[name])
    assert set(NOT_IN_PYTHON[name]) <= options_of(name)


@pytest.mark.parametrize("name", sorted(NOT_IN_PYTHON))
def test_every_parameter_is_documented(name):
    text = inspect.getdoc(getattr(morvanex, name))
    for parameter in inspect.signature(getattr(morvanex, name)).parameters:
        assert re.search(rf"^ +([\w, ]+, )?{parameter}(, [\w, ]+)?:", text, flags=re.M), parameter


def test_the_versions_agree():
    assert command("--version").split()[1] == morvanex.__version__
