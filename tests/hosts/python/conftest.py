"""The package as it was built is on PYTHONPATH; the command stands in MORVANEX_PROGRAM."""

import contextlib
import os
import pathlib
import re
import signal
import subprocess
import threading

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[3]
PROGRAM = os.environ["MORVANEX_PROGRAM"]


@pytest.fixture(autouse=True)
def in_a_folder_of_its_own(tmp_path, monkeypatch):
    """Examples are found from here, files are written here, and the user's settings are far away."""
    (tmp_path / "examples").symlink_to(ROOT / "examples")
    monkeypatch.chdir(tmp_path)
    monkeypatch.setenv("XDG_CONFIG_HOME", "/nonexistent")


MAP = "examples/1tii_8A.mrc"
MODEL = "examples/1tii_D_displaced.pdb"
COMPLEX = "examples/1tii.pdb"


class CommandFailed(Exception):
    """The command's message, without its name in front."""

    def __str__(self):
        text = re.sub(r"^morvanex \w+: error: ", "", self.args[0], flags=re.M)
        return text.replace(" (--help explains the options)", "").strip()


def command(*words):
    """Runs the command; its standard output."""
    done = subprocess.run([PROGRAM, *map(str, words)], capture_output=True, text=True)
    if done.returncode != 0:
        raise CommandFailed(done.stderr)
    return done.stdout


def without_time(json):
    """A record but for how long it took."""
    return re.sub(r'"seconds": [0-9.e-]+', '"seconds": 0', json)


@contextlib.contextmanager
def interrupted_after(seconds):
    """Ctrl-C reaches this process, unless the work within has ended by then."""
    timer = threading.Timer(seconds, signal.pthread_kill, (threading.main_thread().ident, signal.SIGINT))
    timer.start()
    try:
        yield
    finally:
        timer.cancel()
