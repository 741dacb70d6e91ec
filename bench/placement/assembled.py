"""Assemblies of predicted models, placed together and each part alone."""

import os
import random

import made
import structures
import tables

RESOLUTION, NUMBER = 8, 20
FAR = float("inf")
SIZES = (4, 5, 6, 7, 8)


def packed(data, number, rng):
    """As many models as the number says, packed, and one that is not there."""
    names = rng.sample(structures.TEST, SIZES[number % len(SIZES)] + 1)
    chains = structures.pack([made.predicted(data, name) for name in names[:-1]], rng.random())
    return made.Assembly(f"assembly-{number}", chains), made.predicted(data, names[-1])


def alphas_in(start, place):
    rotation = structures.rotation_of(*place["rotation"])
    return [structures.move(rotation, place["translation"], p) for p in start.alpha_positions()]


class Count:
    """Of parts that are in the map: placed rightly, and called so; of all: called wrongly. RMSD of the right ones, clashes
    and CPU seconds."""

    def __init__(self):
        self.first = self.called = self.wrong = self.clashes = 0
        self.rmsd = self.cpu = 0.0

    def add(self, start, places, called, true):
        distance = structures.rmsd(alphas_in(start, places[0]), true.alpha_positions()) if places and true else FAR
        right = distance <= max(3, RESOLUTION / 2)
        self.rmsd += distance if right else 0
        self.clashes += places[0].get("clashes", 0) if places else 0
        self.first += right
        self.called += called and right
        self.wrong += called and not right


def alone(program, starts, truths):
    count = Count()
    for path, start in starts:
        result, run = program.place(program.file("map.mrc"), path, RESOLUTION)
        count.add(start, result["places"], result["placed"], truths.get(start.name))
        count.cpu += run.cpu
    return count


def together(program, starts, truths):
    count = Count()
    result, run = program.assemble(program.file("map.mrc"), [path for path, _ in starts], RESOLUTION)
    count.cpu = run.cpu
    for path, start in starts:
        copies = [copy for copy in result["copies"] if copy["file"] == path]
        count.add(start, copies, bool(copies), truths.get(start.name))
    return count


def assemblies(program, data, write, number=NUMBER):
    """Each in a map at 8 Å of models bent by 1.5 Å, with the noise that this resolution states."""
    write(f"{number} assemblies of predicted models, bent by 1.5 Å, {RESOLUTION} Å, each with a model that is not there")
    write(f"{'':6}{'alone: right':>22}{'RMSD':>7}{'called':>20}{'wrong':>6}{'CPU s':>7}"
          f"{'together: called':>22}{'RMSD':>7}{'wrong':>6}{'clashes':>9}{'CPU s':>7}")
    maps = made.MadeMaps(program, program.file("assemblies.csv"))
    sums = {}
    for index in range(number):
        rng = random.Random(f"assembly {index}")
        assembly, absent = packed(data, index, rng)
        truths = {chain.name: chain for chain in maps.make_map(assembly, "bent model", RESOLUTION, index, rng)}
        starts = []
        for structure in [*assembly.chains, absent]:
            start = structure.centred().moved(structures.random_rotation(rng), (0, 0, 0))
            path = program.file(f"{structure.name}.pdb")
            structures.write_pdb(path, [start])
            starts.append((path, start))
        one, all_parts = alone(program, starts, truths), together(program, starts, truths)
        for key in (len(truths), "all"):
            total = sums.setdefault(key, [0, 0, Count(), Count()])
            total[0] += 1
            total[1] += len(truths)
            for count, more in ((total[2], one), (total[3], all_parts)):
                for name, value in vars(more).items():
                    setattr(count, name, getattr(count, name) + value)
    for key in sorted(sums, key=str):
        runs, parts, one, all_parts = sums[key]
        write(f"{key!s:>6}{tables.share(one.first, parts):>22}{one.rmsd / max(one.first, 1):7.2f}"
              f"{tables.share(one.called, parts):>20}{one.wrong:6d}{one.cpu / runs:7.2f}"
              f"{tables.share(all_parts.called, parts):>22}{all_parts.rmsd / max(all_parts.first, 1):7.2f}"
              f"{all_parts.wrong:6d}{all_parts.clashes:9d}{all_parts.cpu / runs:7.2f}")
