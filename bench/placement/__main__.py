"""Prints what `morvanex place` reaches: on the shared cases, on maps made of known structures, and as problems grow.

    bench/placement/run [--short | --tiny] [--section NAME]... [--program FILE] [--data FOLDER] [--out FOLDER]

Sections: shared, refine, screen, growth, neighbours, hands, assemblies, symmetries, calibration, test. `calibration` and
`test` are made maps of different structures; every run of theirs is a line of runs.csv in the folder --out, and is not
repeated while it stands there. The whole takes a quarter of an hour on one core, --short two minutes. --tiny needs no data: it places the
chains of the bundled example.
"""

import argparse
import os
import sys

import assembled
import context
import diagram
import growth
import made
import shared
import structures
import symmetric
import tables
from runs import Program

SECTIONS = ("shared", "refine", "screen", "growth", "neighbours", "hands", "assemblies", "symmetries", "calibration",
            "test")
TREATMENTS_IN_SHORT = ("plain", "too tight mask", "bent model")


def say(text):
    print(text, flush=True)


def draw(rows, path):
    diagram.draw(tables.reliability(rows), tables.DECLARED, path)
    say(f"drawn: {path}.svg and {path}.png")


def made_maps(program, data, name, short):
    maps = made.MadeMaps(program, program.file("runs.csv"))
    log = lambda text: print(text, file=sys.stderr, flush=True)
    if short:
        made.run_set(maps, data, name, 1, (12,), TREATMENTS_IN_SHORT, log)
    else:
        made.run_set(maps, data, name, 4, made.RESOLUTIONS, log=log)
    rows = [row for row in maps.rows if row["set"] == name]
    say(f"Made maps, structures for {name}: {len(rows)} runs\n")
    tables.right_first(rows, say)
    say("")
    tables.confidence(rows, say)
    say("")
    tables.print_reliability(rows, say)
    draw(rows, program.file(f"reliability-{name}"))


def tiny(program, example):
    """The example's complex in one made map, one of its chains and its mirror image."""
    assembly = made.named_assembly(
        "example", [structures.read_pdb(example, chain) for chain in structures.chains_of(example)])
    path = program.file("tiny.csv")
    if os.path.exists(path):
        os.remove(path)
    maps = made.MadeMaps(program, path)
    maps.run("tiny", assembly, "a third of the noise", 6, 1, [])
    tables.right_first(maps.rows, say)
    tables.confidence(maps.rows, say)
    tables.print_reliability(maps.rows, say)
    draw(maps.rows, program.file("reliability-tiny"))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default="build/release/bin/morvanex")
    parser.add_argument("--data", default=os.environ.get("MORVANEX_DATA", "../shared/data"))
    parser.add_argument("--out", default="build/bench/placement")
    parser.add_argument("--section", action="append", choices=SECTIONS)
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--tiny", action="store_true")
    parser.add_argument("--example", default="examples/1tii.pdb")
    arguments = parser.parse_args()
    program = Program(arguments.program, arguments.out)
    if arguments.tiny:
        tiny(program, arguments.example)
        return
    sections = {
        "shared": lambda: shared.shared_cases(program, arguments.data, say),
        "refine": lambda: shared.refined_starts(program, arguments.data, say, 5 if arguments.short else 40),
        "screen": lambda: shared.screen(program, arguments.data, say),
        "growth": lambda: growth.growth(program, made.predicted(arguments.data, structures.GROWTH), say,
                                        arguments.short),
        "neighbours": lambda: context.neighbours(program, arguments.data, say, 1 if arguments.short else 3),
        "hands": lambda: context.hands(program, arguments.data, say, 1 if arguments.short else 3),
        "assemblies": lambda: assembled.assemblies(program, data=arguments.data, write=say, short=arguments.short),
        "symmetries": lambda: symmetric.symmetries(program, arguments.data, say, made.predicted,
                                                   1 if arguments.short else 5),
        "calibration": lambda: made_maps(program, arguments.data, "calibration", arguments.short),
        "test": lambda: made_maps(program, arguments.data, "test", arguments.short),
    }
    in_short = [name for name in SECTIONS if name not in ("neighbours", "calibration")]
    for name in arguments.section or (in_short if arguments.short else SECTIONS):
        sections[name]()
        say("")


main()
