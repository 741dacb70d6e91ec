"""The file of a run's results."""

from __future__ import annotations

import json
import os
import sqlite3
from collections.abc import Iterator
from typing import Any, Optional, TypedDict, Union

from .._errors import FileError, ParameterError
from ._models import ModelFile

#: Changes where rows mean something else.
FORMAT = "morvanex screen 1"

SCHEMA = """
CREATE TABLE run (key TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE files (
    name TEXT PRIMARY KEY,   -- within the input
    source TEXT NOT NULL,    -- the file, or its archive
    member TEXT NOT NULL,    -- within the archive
    checksum TEXT NOT NULL,  -- SHA-256 of the bytes as they are stored
    settings TEXT NOT NULL,  -- that the results hold for
    attempts INTEGER NOT NULL,
    problem TEXT             -- why there is no result
);
CREATE TABLE results (
    name TEXT NOT NULL REFERENCES files (name) ON DELETE CASCADE,
    domain TEXT NOT NULL,    -- chain and residues, empty for a whole model
    log_expected REAL,       -- ln E of the best place, NULL where the map holds no density
    verdict TEXT NOT NULL,
    record TEXT NOT NULL,    -- see Result, JSON
    PRIMARY KEY (name, domain)
);
"""


class Result(TypedDict):
    """What came of one model, or one domain of it."""

    domain: str
    residues: int
    left_out: int
    radius: float
    verdict: str
    log_expected: Optional[float]
    other_turns: Optional[float]
    seconds: float
    places: list[dict[str, Any]]


class Store:
    """An SQLite file of results, one row for each model; it is there to be read by other programs too.

    Opening one makes it where there is none.

    Args:
        file: its name.
        settings: of the run; those of a file that exists must be the same. None to read only.

    Raises:
        FileError: for a file that cannot be opened, or holds something else.
        ParameterError: for a run with other settings.
    """

    def __init__(self, file: Union[str, "os.PathLike[str]"], settings: Optional[dict[str, Any]] = None) -> None:
        self.file = os.fspath(file)
        if settings is None and not os.path.exists(self.file):
            raise FileError(f"{self.file}: there is no such file")
        try:
            self._db = sqlite3.connect(self.file, timeout=30)
            self._db.execute("PRAGMA foreign_keys = ON")
            if not self._db.execute("SELECT name FROM sqlite_master").fetchone() and settings is not None:
                self._begin(settings)
            self.settings = self._stored_settings()
        except sqlite3.Error as error:
            raise FileError(f"{self.file}: {error}") from error
        if settings is not None:
            self._check_same(settings)

    def _begin(self, settings: dict[str, Any]) -> None:
        with self._db:
            self._db.execute("BEGIN IMMEDIATE")
            for statement in SCHEMA.split(";"):
                self._db.execute(statement)
            self._db.executemany(
                "INSERT INTO run VALUES (?, ?)", [("format", FORMAT), ("settings", json.dumps(settings))]
            )

    def _stored_settings(self) -> dict[str, Any]:
        if not self._db.execute("SELECT name FROM sqlite_master WHERE name = 'run'").fetchone():
            raise FileError(f"{self.file}: holds no results of a screen")
        stored = dict(self._db.execute("SELECT key, value FROM run"))
        if stored.get("format") != FORMAT:
            raise FileError(f"{self.file}: is of the format {stored.get('format')!r}, not {FORMAT!r}")
        settings: dict[str, Any] = json.loads(stored["settings"])
        return settings

    def _check_same(self, settings: dict[str, Any]) -> None:
        for name, value in settings.items():
            if self.settings.get(name) != value:
                raise ParameterError(
                    f"{self.file}: holds a run with another {name}: {self.settings.get(name)}, not {value}; "
                    "name another file"
                )

    def checksums(self) -> dict[str, str]:
        """Of each model with a result, or two attempts behind it, the checksum of the file that it holds for."""
        return dict(self._db.execute("SELECT name, checksum FROM files"))

    def add(self, model: ModelFile, checksum: str, results: list[Result], attempts: int) -> None:
        """Keeps what came of a model, in place of what was kept before."""
        self._put(model, checksum, attempts, None)
        for result in results:
            row = (model.name, result["domain"], result["log_expected"], result["verdict"], json.dumps(result))
            self._db.execute("INSERT INTO results VALUES (?, ?, ?, ?, ?)", row)

    def add_problem(self, model: ModelFile, checksum: str, problem: str, attempts: int) -> None:
        """Keeps why there is no result."""
        self._put(model, checksum, attempts, problem)

    def _put(self, model: ModelFile, checksum: str, attempts: int, problem: Optional[str]) -> None:
        self._db.execute("DELETE FROM files WHERE name = ?", (model.name,))
        row = (model.name, model.source, model.member, checksum, json.dumps(self.settings), attempts, problem)
        self._db.execute("INSERT INTO files VALUES (?, ?, ?, ?, ?, ?, ?)", row)

    def commit(self) -> None:
        """What was added so far stays, whatever happens to this process or machine."""
        self._db.commit()

    def results(self) -> Iterator[tuple[ModelFile, str, Result]]:
        """Model, checksum and result, in the order of names and domains."""
        for *model, checksum, record in self._db.execute(
            "SELECT name, source, member, checksum, record FROM results JOIN files USING (name) ORDER BY name, domain"
        ):
            yield ModelFile(*model), checksum, json.loads(record)

    def problems(self) -> list[tuple[str, str]]:
        """Models without a result, and why."""
        return list(
            self._db.execute("SELECT name, problem FROM files WHERE problem IS NOT NULL ORDER BY name").fetchall()
        )

    def close(self) -> None:
        """Ends the use of the file."""
        self._db.close()
