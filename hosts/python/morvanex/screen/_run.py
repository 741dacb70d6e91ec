"""A run: batches of models go to workers, results into the store as they come."""

from __future__ import annotations

import hashlib
import logging
import os
import pathlib
import sqlite3
import tempfile
import time
import warnings
from collections import deque
from collections.abc import Callable, Iterator, Sequence
from concurrent.futures import CancelledError
from contextlib import contextmanager
from dataclasses import dataclass, field
from typing import Any, Optional, Union

from .. import _morvanex
from .._errors import Error, FileError
from .._maps import read_map
from ._models import ModelFile
from ._placing import MapPlugin, Placed, Settings, place_batch
from ._store import Store

#: A placement takes about a tenth of a second, and a task's way to a worker and back some milliseconds.
BATCH = 8
#: Batches in the hands of each worker, so that none waits while results are stored.
IN_FLIGHT = 3
#: A model that fails is tried once more. One whose batch crashed need not be to blame: it is tried by itself, and there
#: once more too.
MAX_FAILURES, MAX_CRASHES = 2, 3


@dataclass
class Progress:
    """How far a run is.

    Attributes:
        total: models of the run.
        before: that had a result when it began.
        done: that have one now, or a problem; `before` is among them.
        problems: of this call, names and reasons.
        seconds: since it began.
        workers: that there are.
    """

    total: int
    before: int
    done: int
    problems: list[tuple[str, str]] = field(default_factory=list)
    seconds: float = 0.0
    workers: int = 0

    @property
    def seconds_left(self) -> Optional[float]:
        """About how long it will still take; None before anything is known."""
        placed = self.done - self.before
        return (self.total - self.done) * self.seconds / placed if placed else None


def checksum_of(content: bytes) -> str:
    """SHA-256 in hexadecimal digits."""
    return hashlib.sha256(content).hexdigest()


def settings_of(map: Union[str, "os.PathLike[str]"], settings: Settings) -> dict[str, Any]:
    """What the results of a run hold for, as the store keeps it.

    Raises:
        FileError: where the map cannot be read.
    """
    try:
        checksum = checksum_of(pathlib.Path(map).read_bytes())
    except OSError as error:
        raise FileError(f"{os.fspath(map)}: {error.strerror}") from error
    return {
        "map": os.fspath(map),
        "map checksum": checksum,
        "resolution": float(settings.resolution),
        "min plddt": None if settings.min_plddt is None else float(settings.min_plddt),
        "split": settings.split,
        "invert": settings.invert,
        "version": _morvanex.version,
    }


@contextmanager
def client_of(scheduler: Optional[str], workers: int, tls: Optional[dict[str, str]] = None) -> Iterator[Any]:
    """A Dask client: of that scheduler, or of processes of this machine, which end with it.

    Raises:
        Error: where the scheduler does not answer.
    """
    import dask
    from distributed import Client, LocalCluster, Security

    # What goes wrong is told in the run's own words.
    for logger in ("distributed", "distributed.client", "distributed.core", "tornado.application"):
        logging.getLogger(logger).setLevel(logging.CRITICAL)
    # A batch of models weighs about as much as Dask thinks unusual.
    warnings.filterwarnings("ignore", message="Large object of size", category=UserWarning)
    # The run itself decides what is tried again.
    dask.config.set({"distributed.scheduler.allowed-failures": 0})
    if scheduler is not None:
        try:
            security = Security(require_encryption=True, **tls) if tls else None  # type: ignore[no-untyped-call]
            client = Client(scheduler, security=security, timeout=20)  # type: ignore[no-untyped-call]
        except (OSError, ValueError, TypeError) as error:
            raise Error(f"{scheduler}: the scheduler does not answer: {error}") from error
        with client:
            yield client
        return
    with tempfile.TemporaryDirectory(prefix="morvanex-") as folder:
        # Others may work on this machine, and what reaches a port of Dask is run: with keys of this run's own.
        cluster = LocalCluster(  # type: ignore[no-untyped-call]
            n_workers=workers,
            threads_per_worker=1,
            memory_limit=0,
            dashboard_address="127.0.0.1:0",
            security=Security.temporary(),  # type: ignore[no-untyped-call]
            local_directory=folder,
            silence_logs=50,
        )
        with cluster, Client(cluster) as client:  # type: ignore[no-untyped-call]
            yield client


@dataclass
class _Trial:
    """A model on its way."""

    model: ModelFile
    checksum: str = ""
    failures: int = 0
    crashes: int = 0

    @property
    def attempts(self) -> int:
        return 1 + self.failures + self.crashes


class _Run:
    def __init__(
        self,
        models: Sequence[ModelFile],
        store: Store,
        settings: Settings,
        client: Any,
        checksum: str,
        show: Callable[[Progress], object],
    ) -> None:
        self._store, self._client, self._show = store, client, show
        self._settings, self._checksum = settings, checksum
        self._known = store.checksums()
        self._waiting = iter(models)
        self._again: deque[_Trial] = deque()
        self._suspects: deque[_Trial] = deque()
        self._flying: dict[Any, list[_Trial]] = {}
        self._begun = time.monotonic()
        self.progress = Progress(total=len(models), before=0, done=0)

    def go(self, must_stop: Callable[[], bool]) -> None:
        """Until every model has a result or a problem, or the run must stop."""
        from distributed import TimeoutError, wait

        while not must_stop():
            self._send()
            self._tell()
            if not self._flying:
                if self._again or self._suspects:
                    continue
                return
            try:
                done = wait(list(self._flying), timeout=1, return_when="FIRST_COMPLETED").done  # type: ignore[no-untyped-call]
            except TimeoutError:
                continue
            for future in done:
                self._take(future, self._flying.pop(future))
            self._store.commit()

    def _tell(self) -> None:
        self.progress.seconds = time.monotonic() - self._begun
        self._show(self.progress)

    def _send(self) -> None:
        """Keeps every worker busy; those that may have crashed one run by themselves, since a dying worker takes all
        that it was given with it."""
        threads = self.progress.workers = sum(self._client.nthreads().values())
        while not self._suspects and len(self._flying) < max(2, IN_FLIGHT * threads):
            if not self._submit(self._trials(), BATCH):
                break
        while self._suspects and not self._flying:
            self._submit(iter([self._suspects.popleft()]), 1)

    def _trials(self) -> Iterator[_Trial]:
        while self._again:
            yield self._again.popleft()
        for model in self._waiting:
            yield _Trial(model)

    def _submit(self, trials: Iterator[_Trial], number: int) -> bool:
        """Sends so many of them that need placing; False where there is none."""
        batch: list[_Trial] = []
        content: list[tuple[str, bytes]] = []
        while len(batch) < number and (trial := next(trials, None)):
            stored = self._read(trial)
            if stored is not None:
                batch.append(trial)
                content.append((trial.model.name, stored))
        if not batch:
            return False
        future = self._client.submit(place_batch, self._checksum, self._settings, content, pure=False)
        self._flying[future] = batch
        return True

    def _read(self, trial: _Trial) -> Optional[bytes]:
        """The bytes of a model's file; None where there is nothing to be done for it."""
        try:
            stored = trial.model.read()
        except FileError as error:
            self._fail(trial, str(error))
            return None
        trial.checksum = checksum_of(stored)
        if trial.attempts == 1 and self._known.get(trial.model.name) == trial.checksum:
            self.progress.before += 1
            self.progress.done += 1
            return None
        return stored

    def _take(self, future: Any, batch: list[_Trial]) -> None:
        from distributed import KilledWorker

        error = future.exception() if future.status == "error" else None
        if future.status == "finished":
            self._keep(future.result(), batch)
        elif isinstance(error, KilledWorker):
            for trial in batch:
                self._crash(trial)
        elif error is not None:
            for trial in batch:
                self._fail(trial, f"{type(error).__name__}: {error}")
        else:
            raise CancelledError

    def _keep(self, placed: list[Placed], batch: list[_Trial]) -> None:
        for trial, (_, results) in zip(batch, placed):
            if isinstance(results, str):
                self._fail(trial, results)
            else:
                self._store.add(trial.model, trial.checksum, results, trial.attempts)
                self.progress.done += 1

    def _crash(self, trial: _Trial) -> None:
        trial.crashes += 1
        if trial.crashes < MAX_CRASHES:
            self._suspects.append(trial)
        else:
            self._report(trial, "it crashed its worker")

    def _fail(self, trial: _Trial, problem: str) -> None:
        trial.failures += 1
        if trial.failures < MAX_FAILURES:
            self._again.append(trial)
        else:
            self._report(trial, problem)

    def _report(self, trial: _Trial, problem: str) -> None:
        self._store.add_problem(trial.model, trial.checksum, problem, trial.attempts - 1)
        self._store.commit()
        self.progress.problems.append((trial.model.name, problem))
        self.progress.done += 1


def run(
    map: Union[str, "os.PathLike[str]"],
    models: Sequence[ModelFile],
    settings: Settings,
    results: Union[str, "os.PathLike[str]"],
    *,
    scheduler: Optional[str] = None,
    workers: Optional[int] = None,
    tls: Optional[dict[str, str]] = None,
    show: Callable[[Progress], object] = lambda progress: None,
    must_stop: Callable[[], bool] = lambda: False,
) -> Progress:
    """Places models in a map; models of which the file of results has one are left out.

    Args:
        map: its file.
        models: see `find_models`.
        settings: with which they are placed.
        results: an SQLite file; made where there is none.
        scheduler: address of a Dask scheduler, ``tcp://HOST:PORT`` or ``tls://HOST:PORT``; processes of this machine unless given.
        workers: number of these processes, one for each core unless given.
        tls: files for a scheduler behind TLS: tls_ca_file, tls_client_cert, tls_client_key.
        show: is called about once a second with how far the run is.
        must_stop: is asked as often; what is stored by then stays.

    Returns:
        How far the run is.

    Raises:
        FileError, ParameterError: see `Store`, and for a map that cannot be read.
        Error: where the scheduler does not answer, or is gone.
    """
    held_for = settings_of(map, settings)
    density = read_map(map)
    store = Store(results, held_for)
    try:
        with client_of(scheduler, workers or os.cpu_count() or 1, tls) as client:
            plugin = MapPlugin(held_for["map checksum"], density, is_local=scheduler is None)
            for worker, answer in client.register_worker_plugin(plugin, name=plugin.name).items():
                if answer["status"] != "OK":
                    raise Error(f"the worker {worker} cannot take the map: {answer.get('exception')}")
            work = _Run(models, store, settings, client, held_for["map checksum"], show)
            work.go(must_stop)
            client.unregister_worker_plugin(plugin.name)
            return work.progress
    except (CancelledError, OSError) as error:
        raise Error(
            f"the scheduler is gone ({error or type(error).__name__}); what was placed is kept, and the same call goes "
            "on with the others"
        ) from error
    except sqlite3.Error as error:
        raise FileError(f"{os.fspath(results)}: {error}") from error
    finally:
        store.commit()
        store.close()
