"""The command `morvanex screen`; its options are checked and explained by the command."""

from __future__ import annotations

import argparse
import math
import os
import shlex
import signal
import sys
import time
import warnings
from typing import Optional

from .._errors import Error, MorvanexWarning
from ._models import find_models
from ._placing import Settings
from ._ranking import Ranked, ranking, write_csv, write_json, write_models, write_report
from ._run import Progress, run
from ._store import Store

PROGRAM = "morvanex screen"
#: So long a run without workers says nothing, seconds.
PATIENCE = 20


def say(text: str) -> None:
    """A line on standard error."""
    print(f"{PROGRAM}: {text}", file=sys.stderr, flush=True)


def duration(seconds: float) -> str:
    """A length of time for people.

    >>> [duration(seconds) for seconds in (5, 100, 4000)]
    ['5 s', '1 min 40 s', '1 h 6 min']
    """
    whole = round(seconds)
    if whole < 60:
        return f"{whole} s"
    if whole < 3600:
        return f"{whole // 60} min {whole % 60} s"
    return f"{whole // 3600} h {whole // 60 % 60} min"


def table(ranked: list[Ranked], number: int = 10) -> list[str]:
    """The best models, a line each below a head line."""
    lines = [f"{'rank':>5}  {'found':5}  {'q':>8}  {'E':>8}  {'score':>9}  {'same as':>7}  model"]
    for entry in ranked[:number]:
        score = "" if entry.score is None else f"{entry.score:.1f}"
        same = "" if entry.same_place == entry.rank else str(entry.same_place)
        name = f"{entry.model} {entry.domain}".rstrip()
        lines.append(
            f"{entry.rank:>5}  {'yes' if entry.declared else 'no':5}  {entry.q:>8.2g}  {entry.expected:>8.2g}  "
            f"{score:>9}  {same:>7}  {name}"
        )
    return lines


class Display:
    """Progress: on a terminal a line that is drawn over, and below it the best ten; else a line for every tenth."""

    def __init__(self, results: str, quiet: bool) -> None:
        self._results, self._quiet = results, quiet
        self._is_terminal = sys.stderr.isatty()
        self._tenth = 0
        self._lines = 0
        self._told = 0
        self._alone_since: Optional[float] = None

    def show(self, progress: Progress) -> None:
        """Brings what is shown up to date."""
        for name, problem in progress.problems[self._told :]:
            self.clear()
            say(f"warning: {name}: {problem}")
        self._told = len(progress.problems)
        self._watch_workers(progress)
        if self._quiet:
            return
        left = progress.seconds_left
        text = f"{progress.done} of {progress.total} models" + ("" if left is None else f", {duration(left)} left")
        if self._is_terminal:
            self._draw([text, *table(self._ranking())])
        elif 10 * progress.done // progress.total > self._tenth:
            self._tenth = 10 * progress.done // progress.total
            say(text)

    def _watch_workers(self, progress: Progress) -> None:
        """Says once that there are no workers."""
        if progress.workers:
            self._alone_since = None
        elif self._alone_since is None:
            self._alone_since = time.monotonic()
        elif time.monotonic() - self._alone_since > PATIENCE:
            self._alone_since = math.inf
            self.clear()
            say("warning: there is no worker; waiting for one. If some have started and ended, their logs say why")

    def clear(self) -> None:
        """Takes the display off the terminal."""
        if self._lines:
            sys.stderr.write(f"\x1b[{self._lines}A\x1b[J")
            self._lines = 0

    def _ranking(self) -> list[Ranked]:
        store = Store(self._results)
        try:
            return ranking(store)
        finally:
            store.close()

    def _draw(self, lines: list[str]) -> None:
        width = os.get_terminal_size(sys.stderr.fileno()).columns
        self.clear()
        sys.stderr.write("".join(line[: width - 1] + "\n" for line in lines))
        sys.stderr.flush()
        self._lines = len(lines)


def command_line(words: list[str]) -> str:
    """The command line of these words, the first of which the command puts there itself.

    >>> command_line(["export", "--results=my run.sqlite"])
    "morvanex screen export '--results=my run.sqlite'"
    """
    action, *options = words
    return shlex.join([*PROGRAM.split(), *(["export"] if action == "export" else []), *options])


def deliver(arguments: argparse.Namespace) -> None:
    """Prints the best ten, and writes the files that were asked for."""
    store = Store(arguments.results)
    ranked = ranking(store)
    problems = store.problems()
    found = sum(entry.declared for entry in ranked)
    print(f"models: {len(ranked)} ranked, {len(problems)} without a result; found: {found}")
    print("\n".join(table(ranked)))
    if arguments.csv:
        write_csv(arguments.csv, ranked)
        print(f"written: the ranking: {arguments.csv}")
    if arguments.json:
        write_json(arguments.json, store, ranked)
        print(f"written: ranking, settings and problems: {arguments.json}")
    if arguments.report:
        write_report(arguments.report, store, ranked, arguments.command)
        print(f"written: the report: {arguments.report}")
    for file in write_models(arguments.model_prefix, ranked, arguments.top):
        print(f"written: the model at its place: {file}")
    store.close()


def screen(arguments: argparse.Namespace) -> int:
    """Places the models, and delivers. The exit status."""
    stopped_by: list[int] = []

    def stop(number: int, _: object) -> None:
        if stopped_by:
            os._exit(128 + number)
        stopped_by.append(number)

    names = ("tls_ca_file", "tls_client_cert", "tls_client_key")
    files = (arguments.tls_ca, arguments.tls_cert, arguments.tls_key)
    models = find_models(arguments.models)
    display = Display(arguments.results, arguments.quiet)
    # Processes started meanwhile leave Ctrl-C to this one.
    before = {number: signal.signal(number, stop) for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)}
    progress = run(
        arguments.map,
        models,
        Settings(arguments.resolution, arguments.min_plddt, arguments.split, arguments.invert),
        arguments.results,
        scheduler=arguments.scheduler,
        workers=arguments.workers,
        tls=dict(zip(names, files)) if any(files) else None,
        show=display.show,
        must_stop=lambda: bool(stopped_by),
    )
    display.clear()
    for number, handler in before.items():
        signal.signal(number, handler)
    if stopped_by:
        say(
            f"warning: stopped by {signal.Signals(stopped_by[0]).name} after {progress.done} of {progress.total} "
            "models; the same call goes on with the others"
        )
    deliver(arguments)
    return 128 + stopped_by[0] if stopped_by else 0


def parser() -> argparse.ArgumentParser:
    """The options; the command explains them."""
    options = argparse.ArgumentParser(prog=PROGRAM, add_help=False, allow_abbrev=False)
    options.add_argument("action", choices=["run", "export"])
    options.add_argument("--map")
    options.add_argument("--resolution", type=float)
    options.add_argument("--models")
    options.add_argument("--min-plddt", type=float)
    options.add_argument("--split", action="store_true")
    options.add_argument("--invert", action="store_true")
    options.add_argument("--scheduler")
    options.add_argument("--workers", type=int)
    options.add_argument("--tls-ca")
    options.add_argument("--tls-cert")
    options.add_argument("--tls-key")
    options.add_argument("--results", required=True)
    options.add_argument("--csv")
    options.add_argument("--json")
    options.add_argument("--report")
    options.add_argument("--top", type=int, default=0)
    options.add_argument("--model-prefix", default="screen-")
    options.add_argument("--quiet", action="store_true")
    return options


def main(words: Optional[list[str]] = None) -> int:
    """Runs the command; its exit status."""
    warnings.showwarning = lambda message, *_, **__: say(f"warning: {message}")
    warnings.simplefilter("ignore")
    warnings.simplefilter("always", MorvanexWarning)
    words = sys.argv[1:] if words is None else words
    arguments = parser().parse_args(words)
    arguments.command = command_line(words)
    try:
        if arguments.action == "export":
            deliver(arguments)
            return 0
        return screen(arguments)
    except Error as error:
        say(f"error: {error}")
        return 1
    except BrokenPipeError:
        return 1


if __name__ == "__main__":
    sys.exit(main())
