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
def interruption():
    """A `progress` that has Ctrl-C reach this process, from another thread, once some work is done."""
    # A shell starts what runs in its background with Ctrl-C ignored.
    before = signal.signal(signal.SIGINT, signal.default_int_handler)
    begun = threading.Event()

    def interrupt():
        begun.wait()
        signal.pthread_kill(threading.main_thread().ident, signal.SIGINT)

    threading.Thread(target=interrupt, daemon=True).start()
    try:
        yield lambda share: begun.set() if share > 0 else None
    finally:
        signal.signal(signal.SIGINT, before)
