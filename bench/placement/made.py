"""Maps made of known structures, as real ones are: with a B factor, solvent, the noise that their resolution implies,
and what people do to maps. Every chain of an assembly is placed into them, and so are models that do not belong there."""

import csv
import json
import os
import random

import structures
from structures import Structure

RESOLUTIONS = (5, 8, 12, 16)

# What is done to a map, by the B factor that its atoms have and its resolution.
TREATMENTS = {
    "plain": lambda b, r: {},
    "hard mask": lambda b, r: {"mask": 6},
    "soft mask": lambda b, r: {"mask": 4, "mask_edge": r},
    "too tight mask": lambda b, r: {"mask": 3},
    "sharpened": lambda b, r: {"sharpen": 0.8 * b, "low_pass": r},
    "low-passed": lambda b, r: {"low_pass": 1.3 * r},
    "tight box": lambda b, r: {"margin": 1},
    "bent model": lambda b, r: {"bend": 1.5},
    "hardly any noise": lambda b, r: {"resolution_noise": 0.03},
    "a third of the noise": lambda b, r: {"resolution_noise": 0.3},
    "twice the noise": lambda b, r: {"resolution_noise": 2},
    "sharpened, no low-pass": lambda b, r: {"sharpen": 0.8 * b},
}

COLUMNS = ["set", "map", "treatment", "resolution", "seed", "structure", "residues", "kind", "right", "rmsd", "rank",
           "signal", "verdict", "probability", "place", "otherTurns", "logExpected", "firstLogExpected", "cpu",
           "memory", "scores"]


class Assembly:
    """Chains where they stand, and for each of them which others are copies of it."""

    def __init__(self, name, chains):
        self.name = name
        self.chains = chains

    def distinct(self):
        """One chain for each kind."""
        return list({chain.name: chain for chain in self.chains}.values())


def predicted(data, name):
    return structures.read_pdb(os.path.join(data, "models", name + ".pdb.gz"),
                               min_confidence=structures.MIN_CONFIDENCE)


def packed_assemblies(data, names, seed):
    """Packs the structures in groups of three to five; every other group holds its first one twice."""
    rng = random.Random(seed)
    names = list(names)
    rng.shuffle(names)
    assemblies = []
    while names:
        size = rng.randint(3, 5)
        group, names = names[:size], names[size:]
        if len(names) < 3:
            group, names = group + names, []
        if len(assemblies) % 2 == 1:
            group = group[:1] + group
        chains = structures.pack([predicted(data, name) for name in group], rng.random())
        assemblies.append(Assembly(f"pack{seed}-{len(assemblies) + 1}", chains))
    return assemblies


def known_chain(data, case, transform):
    """The chain of a case that is to be placed, moved by a transform w x y z tx ty tz."""
    target = case["target"]
    start = structures.read_pdb(os.path.join(data, target["file"]), target["chain"])
    return start.moved(structures.rotation_of(*transform[:4]), transform[4:])


def shared_assemblies(data):
    """The complexes of the shared cases, chains of one sequence being copies of one another."""
    with open(os.path.join(data, "cases.json")) as file:
        cases = {case["name"]: case for case in json.load(file)["cases"]}
    assemblies = []
    for name in ("1z5s_C_solid", "tii_D_solid", "ake_10A", "ubi_restraints", "actin_5168"):
        case = cases[name]
        chains = [known_chain(data, case, case["truth"]["transform"])]
        for copy in case["symmetric_truths"]:
            chains.append(known_chain(data, case, copy))
        if case["solid"]:
            path = os.path.join(data, case["solid"]["file"])
            chains += [structures.read_pdb(path, chain) for chain in case["solid"]["chains"]]
        assemblies.append(named_assembly(name, chains))
    return assemblies


def named_assembly(name, chains):
    """Chains of one sequence have one name."""
    kinds = {}
    for chain in chains:
        chain.name = name + kinds.setdefault(tuple(chain.sequence()), f"-{len(kinds) + 1}")
    return Assembly(name, chains)


class MadeMaps:
    """Makes maps and places models into them; every run becomes a line of a CSV file, and runs whose lines are there
    already are not repeated."""

    def __init__(self, program, path):
        self.program = program
        self.path = path
        self.rows = []
        if os.path.exists(path):
            with open(path, newline="") as file:
                self.rows = list(csv.DictReader(file))
        else:
            with open(path, "w", newline="") as file:
                csv.writer(file).writerow(COLUMNS)
        self.done = {self.key(row) for row in self.rows}

    @staticmethod
    def key(row):
        return tuple(str(row[c]) for c in ("set", "map", "treatment", "resolution", "seed", "structure", "kind"))

    def add(self, row):
        self.rows.append(row)
        self.done.add(self.key(row))
        with open(self.path, "a", newline="") as file:
            csv.writer(file).writerow([row[c] for c in COLUMNS])

    def run(self, set_name, assembly, treatment, resolution, seed, foreign):
        """One map: its chains, one of them mirrored, and the foreign structures. Without a treatment the map is noise
        alone, and only those are placed."""
        rng = random.Random(f"{assembly.name} {treatment} {resolution} {seed}")
        jobs = [("foreign", structure) for structure in foreign]
        if treatment != "noise alone":
            jobs += [("present", chain) for chain in assembly.distinct()]
            jobs += [("mirrored", rng.choice(assembly.distinct()).mirrored())]
        row = {"set": set_name, "map": assembly.name, "treatment": treatment, "resolution": resolution, "seed": seed}
        jobs = [(kind, structure) for kind, structure in jobs
                if self.key({**row, "structure": structure.name, "kind": kind}) not in self.done]
        if not jobs:
            return
        truth = self.make_map(assembly, treatment, resolution, seed, rng)
        for kind, structure in jobs:
            self.add({**row, "structure": structure.name, "kind": kind,
                      **self.place(structure, truth if kind == "present" else [], resolution, rng)})

    def make_map(self, assembly, treatment, resolution, seed, rng):
        """Returns the chains as the map shows them."""
        b = rng.uniform(2, 6) * resolution ** 2
        options = {"b_factor": round(b, 1), "solvent": round(rng.uniform(0, 0.7), 2), "resolution_noise": 1,
                   "seed": seed}
        if treatment == "noise alone":
            options["resolution_noise"] = 1000
        else:
            options.update(TREATMENTS[treatment](b, resolution))
        model, bent = self.program.file("assembly.pdb"), self.program.file("bent.pdb")
        structures.write_pdb(model, assembly.chains)
        if "bend" in options:
            options["bent_model"] = bent
        self.program.simulate(model, self.program.file("map.mrc"), resolution, resolution / 4, **options)
        if "bend" not in options:
            return assembly.chains
        letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
        chains = []
        for index, chain in enumerate(assembly.chains):
            moved = structures.read_pdb(bent, letters[index])
            chains.append(Structure(chain.name, moved.lines, moved.positions))
        return chains

    def place(self, structure, truth, resolution, rng):
        """Places the structure from a random turn; right is an RMSD of at most half the resolution, 3 Å at least."""
        start = structure.centred().moved(structures.random_rotation(rng), [rng.uniform(-50, 50) for _ in range(3)])
        model = self.program.file("model.pdb")
        structures.write_pdb(model, [start])
        result, run = self.program.place(self.program.file("map.mrc"), model, resolution)
        copies = [chain.alpha_positions() for chain in truth if chain.name == structure.name]
        limit = max(3, resolution / 2)
        alphas = start.alpha_positions()
        distances = []
        for place in result["places"]:
            rotation = structures.rotation_of(*place["rotation"])
            placed = [structures.move(rotation, place["translation"], p) for p in alphas]
            distances.append(min((structures.rmsd(placed, copy) for copy in copies), default=float("inf")))
            if distances[-1] <= limit:
                break
        confidence = result["confidence"]
        found = bool(distances) and distances[-1] <= limit
        return {"residues": structure.residues(), "right": int(found and len(distances) == 1),
                "rmsd": round(distances[0], 2) if copies and distances else "", "rank": len(distances) if found else "",
                "signal": round(result["forecast"]["signal"], 2), "verdict": result["verdict"],
                "probability": round(confidence["probability"], 5), "place": round(confidence["place"], 5),
                "otherTurns": round(confidence["otherTurns"], 5), "logExpected": round(confidence["logExpected"], 3),
                "firstLogExpected": round(result["places"][0]["logExpected"], 3) if result["places"] else "",
                "cpu": round(run.cpu, 3), "memory": round(run.memory, 1),
                "scores": ";".join(f"{place['score']:.2f}" for place in result["places"])}


def run_set(maps, data, set_name, rounds, resolutions=RESOLUTIONS, treatments=tuple(TREATMENTS), log=print):
    """Rounds of every treatment at every resolution, each with an assembly of its own."""
    names = structures.CALIBRATION if set_name == "calibration" else structures.TEST
    for number in range(1, rounds + 1):
        assemblies = packed_assemblies(data, names, 100 * number + (0 if set_name == "calibration" else 50))
        if set_name == "test":
            assemblies += shared_assemblies(data)
        rng = random.Random(f"{set_name} {number}")
        order = [(resolution, treatment) for resolution in resolutions for treatment in treatments]
        order += [(resolution, "noise alone") for resolution in resolutions]
        for index, (resolution, treatment) in enumerate(order):
            assembly = assemblies[(index + number) % len(assemblies)]
            present = {chain.name for chain in assembly.chains}
            absent = [name for name in names if name not in present]
            foreign = [predicted(data, name) for name in rng.sample(absent, min(len(absent), 2))]
            maps.run(set_name, assembly, treatment, resolution, number, foreign)
        log(f"{set_name}, round {number}: {len(maps.rows)} runs")
