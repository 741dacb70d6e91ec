"""Assemblies of predicted models, placed together and each part alone."""

import json
import os
import random

import made
import shared
import structures
import tables

RESOLUTIONS, NUMBER = (8, 12), 20
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

    def add(self, start, places, called, true, resolution):
        distance = structures.rmsd(alphas_in(start, places[0]), true.alpha_positions()) if places and true else FAR
        right = distance <= max(3, resolution / 2)
        self.rmsd += distance if right else 0
        self.clashes += places[0].get("clashes", 0) if places else 0
        self.first += right
        self.called += called and right
        self.wrong += called and not right


def alone(program, starts, truths, resolution):
    count = Count()
    for path, start in starts:
        result, run = program.place(program.file("map.mrc"), path, resolution)
        count.add(start, result["places"], result["placed"], truths.get(start.name), resolution)
        count.cpu += run.cpu
    return count


def together(program, starts, truths, resolution):
    count = Count()
    result, run = program.assemble(program.file("map.mrc"), [path for path, _ in starts], resolution)
    count.cpu = run.cpu
    for path, start in starts:
        copies = [copy for copy in result["copies"] if copy["file"] == path]
        count.add(start, copies, bool(copies), truths.get(start.name), resolution)
    return count


def made_assemblies(program, data, write, resolution, number):
    """Each in a map of models bent by 1.5 Å, with the noise that the resolution states."""
    write(f"{number} assemblies of predicted models, bent by 1.5 Å, {resolution} Å, each with a model that is not there")
    write(f"{'parts':>6}{'alone: right':>22}{'RMSD':>7}{'called':>20}{'wrong':>6}{'CPU s':>7}"
          f"{'together: called':>22}{'RMSD':>7}{'wrong':>6}{'clashes':>9}{'CPU s':>7}")
    maps = made.MadeMaps(program, program.file("assemblies.csv"))
    sums = {}
    for index in range(number):
        rng = random.Random(f"assembly {index}")
        assembly, absent = packed(data, index, rng)
        truths = {chain.name: chain for chain in maps.make_map(assembly, "bent model", resolution, index, rng)}
        starts = []
        for structure in [*assembly.chains, absent]:
            start = structure.centred().moved(structures.random_rotation(rng), (0, 0, 0))
            path = program.file(f"{structure.name}.pdb")
            structures.write_pdb(path, [start])
            starts.append((path, start))
        one = alone(program, starts, truths, resolution)
        all_parts = together(program, starts, truths, resolution)
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


def separate(program, path, chains, rng):
    """Every chain of a file as one of its own, started anywhere; by the file what it is."""
    files = {}
    for chain in chains:
        start = structures.read_pdb(path, chain).centred().moved(structures.random_rotation(rng), (0, 0, 0))
        name = program.file(f"chain-{chain}.pdb")
        structures.write_pdb(name, [start], [chain])
        files[name] = start
    return files


def report(write, title, program, map_file, models, starts, copies, resolution):
    """Places the models, "FILE=auto" among them; tells how many of the copies are right, and which are not there."""
    result, run = program.assemble(map_file, models, resolution)
    distances = []
    for copy in result["copies"]:
        placed = alphas_in(starts[copy["file"]], copy)
        distances.append(min((structures.rmsd(placed, true) for true in copies if len(true) == len(placed)), default=FAR))
    right = [distance for distance in distances if distance <= max(3, resolution / 2)]
    write(f"{title:44}{f'{len(right)} of {len(copies)}':>10}{len(distances) - len(right):7d}{max(right, default=0):9.2f}"
          f"{sum(copy['clashes'] for copy in result['copies']):9d}{run.cpu:8.2f}")
    return result


def complexes(program, data, write, foreign):
    """The complexes of the shared cases from their parts, started anywhere, and with models that are not there."""
    with open(os.path.join(data, "cases.json")) as file:
        cases = {case["name"]: case for case in json.load(file)["cases"]}
    write("The complexes of the shared cases from their parts")
    write(f"{'':44}{'right':>10}{'wrong':>7}{'RMSD':>9}{'clashes':>9}{'CPU s':>8}")
    rng = random.Random("complexes")
    for name, title in (("tii_sym5", "enterotoxin, one B subunit, auto"), ("actin_5168", "F-actin, one subunit, auto")):
        case = cases[name]
        path = os.path.join(data, case["target"]["file"])
        start = structures.read_pdb(path, case["target"]["chain"])
        files = separate(program, path, [case["target"]["chain"]], rng)
        copies = shared.truths_of(data, case, start)
        report(write, title, program, os.path.join(data, case["map"]), [f"{file}=auto" for file in files], files, copies,
               case["resolution"])
    wholes = {}
    for name, title in (("1z5s_C_solid", "1Z5S, four parts"), ("tii_D_solid", "enterotoxin, seven parts")):
        case = cases[name]
        path = os.path.join(data, case["target"]["file"])
        chains = [case["target"]["chain"], *case["solid"]["chains"]]
        files = separate(program, path, chains, rng)
        start = structures.read_pdb(path, chains[0])
        copies = [shared.truths_of(data, case, start)[0]]
        copies += [structures.read_pdb(path, chain).alpha_positions() for chain in chains[1:]]
        map_file = os.path.join(data, case["map"])
        report(write, title, program, map_file, list(files), files, copies, case["resolution"])
        wholes[name] = (map_file, files, case["resolution"])
    placed = runs = 0
    for name in foreign:
        structure = made.predicted(data, name)
        structures.write_pdb(program.file("foreign.pdb"), [structure])
        for map_file, files, resolution in wholes.values():
            result, _ = program.assemble(map_file, [*files, program.file("foreign.pdb")], resolution)
            placed += any(copy["file"] == program.file("foreign.pdb") for copy in result["copies"])
            runs += 1
    write(f"a further model that is not there: placed {placed} of {runs}")


def assemblies(program, data, write, short):
    complexes(program, data, write, structures.TEST[:3] if short else structures.TEST + structures.CALIBRATION)
    for resolution in RESOLUTIONS:
        write("")
        made_assemblies(program, data, write, resolution, 5 if short else NUMBER)
