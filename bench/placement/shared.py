"""The shared cases: real maps and models whose right places are known."""

import json
import math
import os
import random

import structures

ACTIN_RESOLUTION = 6.6
LARGE = 0.2  # CPU seconds from which two threads are compared with one


def truths_of(data, case, start):
    """CA positions of every right place."""
    copies = [start.moved(structures.rotation_of(*t[:4]), t[4:]).alpha_positions()
              for t in [case["truth"]["transform"], *case["symmetric_truths"]]]
    if case["solid"]:
        path = os.path.join(data, case["solid"]["file"])
        for chain in case["solid"]["chains"]:
            solid = structures.read_pdb(path, chain)
            if solid.sequence() == start.sequence():
                copies.append(solid.alpha_positions())
    return copies


def found_copies(result, start, copies, limit):
    """The RMSD of the first place, whether it is right, and how many right places stand at the top of the list."""
    nearest, seen = None, set()
    for place in result["places"]:
        rotation = structures.rotation_of(*place["rotation"])
        placed = [structures.move(rotation, place["translation"], p) for p in start.alpha_positions()]
        distance, copy = min((structures.rmsd(placed, c), i) for i, c in enumerate(copies))
        nearest = distance if nearest is None else nearest
        if distance > limit:
            break
        seen.add(copy)
    return nearest, len(seen)


def shared_cases(program, data, write):
    with open(os.path.join(data, "cases.json")) as file:
        cases = json.load(file)["cases"]
    write("Shared cases: whole map, no start, no neighbours, one thread\n")
    write(f"{'':18}{'first':>8}{'RMSD':>8}{'copies':>10}{'p':>8}{'CPU s':>8}{'MiB':>8}{'elapsed 1/2':>13}")
    total = 0
    for case in cases:
        chain = case["target"]["chain"]
        model, map_file = (os.path.join(data, name) for name in (case["target"]["file"], case["map"]))
        start = structures.read_pdb(model, chain)
        copies = truths_of(data, case, start)
        result, run = program.place(map_file, model, case["resolution"], chain=chain)
        nearest, found = found_copies(result, start, copies, case["tolerance_rmsd"])
        gain = ""
        if run.cpu > LARGE:
            one = min(program.place(map_file, model, case["resolution"], chain=chain)[1].elapsed for _ in range(3))
            two = min(program.place(map_file, model, case["resolution"], 2, chain=chain)[1].elapsed for _ in range(3))
            gain = f"{one / two:.2f}"
        total += run.cpu
        write(f"{case['name']:18}{'right' if found else 'wrong':>8}{nearest:8.2f}{f'{found} of {len(copies)}':>10}"
              f"{result['confidence']['probability']:8.3f}{run.cpu:8.2f}{run.memory:8.1f}{gain:>13}")
    write(f"{'sum':18}{'':42}{total:8.2f}")


def refined_starts(program, data, write, starts):
    """Every case's model off its place, moved back by --refine; back is an RMSD of at most 2 Å."""
    with open(os.path.join(data, "cases.json")) as file:
        cases = json.load(file)["cases"]
    write(f"--refine from 10 Å, at most half the model's radius, and 30° off: {starts} starts for each case")
    write(f"{'':18}{'back':>20}{'RMSD':>8}{'CPU s':>8}")
    for case in cases:
        model = structures.read_pdb(os.path.join(data, case["target"]["file"]), case["target"]["chain"])
        copies = truths_of(data, case, model)
        true = model.moved(structures.rotation_of(*case["truth"]["transform"][:4]), case["truth"]["transform"][4:])
        centre = structures.centroid(true.positions)
        shift = min(10, max(math.dist(p, centre) for p in true.positions) / 2)
        rng = random.Random(case["name"])
        distances, cpu = [], 0
        for _ in range(starts):
            turned = true.centred().moved(structures.rotation_about(structures.random_direction(rng), 30), centre)
            start = turned.moved(structures.IDENTITY, [shift * d for d in structures.random_direction(rng)])
            structures.write_pdb(program.file("start.pdb"), [start])
            result, run = program.place(os.path.join(data, case["map"]), program.file("start.pdb"), case["resolution"],
                                        refine=True)
            cpu += run.cpu / starts
            distances.append(found_copies(result, start, copies, 2)[0])
        back = sum(d <= 2 for d in distances)
        write(f"{case['name']:18}{f'{back} of {starts}':>20}{sorted(distances)[starts // 2]:8.2f}{cpu:8.3f}")


def screen(program, data, write):
    """Every predicted model in the map of F-actin, to which one of them belongs."""
    names = sorted(name.split(".")[0] for name in os.listdir(os.path.join(data, "models")) if name.endswith(".pdb.gz"))
    write(f"{len(names)} predicted models in the map of F-actin, residues of a confidence of 70 and more\n")
    rows, cpu = [], 0
    for name in names:
        model = os.path.join(data, "models", name + ".pdb.gz")
        try:
            result, run = program.place(os.path.join(data, "maps", "emd_5168.map"), model, ACTIN_RESOLUTION,
                                        min_plddt=structures.MIN_CONFIDENCE)
        except RuntimeError:
            continue
        cpu += run.cpu
        rows.append((result["confidence"]["logExpected"], name, result["verdict"], result["confidence"]["probability"]))
    write(f"{'':14}{'ln E':>10}{'p':>8}  verdict")
    for expected, name, verdict, probability in sorted(rows)[:5]:
        mark = " (the actin)" if name == structures.ACTIN else ""
        write(f"{name:14}{expected:10.1f}{probability:8.3f}  {verdict}{mark}")
    placed = [name for _, name, verdict, _ in rows if verdict == "placed"]
    write(f"placed: {len(placed)} of {len(rows)}; {len(names) - len(rows)} have no residue of that confidence; "
          f"{cpu:.1f} CPU s in all")
