"""What is known of the rest helps: neighbours that stand already, and the hand of the map."""

import random

import made
import structures
import tables

RESOLUTIONS = (8, 12, 16)


def is_right(result, start, copies, resolution):
    if not result["places"]:
        return False
    place = result["places"][0]
    rotation = structures.rotation_of(*place["rotation"])
    placed = [structures.move(rotation, place["translation"], p) for p in start.alpha_positions()]
    return min(structures.rmsd(placed, copy) for copy in copies) <= max(3, resolution / 2)


def started(program, chain, rng):
    start = chain.centred().moved(structures.random_rotation(rng), (0, 0, 0))
    structures.write_pdb(program.file("model.pdb"), [start])
    return start


def neighbours(program, data, write, rounds):
    """Every chain of made assemblies, without the other chains and with them fixed."""
    write("With the neighbours given: right place first, and called right, without and with --fixed")
    write(f"{'':8}{'first':>18}{'called':>18}{'first, fixed':>20}{'called, fixed':>20}")
    maps = made.MadeMaps(program, program.file("neighbours.csv"))
    for resolution in RESOLUTIONS:
        counts, runs = [0, 0, 0, 0], 0
        for number in range(rounds):
            for assembly in made.packed_assemblies(data, structures.TEST, 700 + number):
                rng = random.Random(f"{assembly.name} {resolution}")
                maps.make_map(assembly, "plain", resolution, number, rng)
                for chain in assembly.chains:
                    start = started(program, chain, rng)
                    others = [other for other in assembly.chains if other is not chain]
                    structures.write_pdb(program.file("others.pdb"), others)
                    copies = [other.alpha_positions() for other in assembly.chains if other.name == chain.name]
                    alone = program.place(program.file("map.mrc"), program.file("model.pdb"), resolution)[0]
                    fixed = program.place(program.file("map.mrc"), program.file("model.pdb"), resolution,
                                          fixed=program.file("others.pdb"))[0]
                    runs += 1
                    right = [is_right(alone, start, copies, resolution),
                             is_right(fixed, start, [chain.alpha_positions()], resolution)]
                    for index, result in enumerate((alone, fixed)):
                        counts[2 * index] += right[index]
                        counts[2 * index + 1] += right[index] and result["placed"]
        first, called, first_fixed, called_fixed = (tables.share(count, runs) for count in counts)
        write(f"{resolution:5d} Å {first:>18}{called:>18}{first_fixed:>20}{called_fixed:>20}")


def hands(program, data, write, rounds):
    """Every chain of made assemblies, of which every other one is shown by its mirror image."""
    write("The hand: of the models that are placed, those whose hand is told, and of these rightly")
    maps = made.MadeMaps(program, program.file("hands.csv"))
    for resolution in RESOLUTIONS:
        placed = told = right = 0
        for number in range(rounds):
            for index, assembly in enumerate(made.packed_assemblies(data, structures.TEST, 800 + number)):
                rng = random.Random(f"{assembly.name} {resolution}")
                mirror = index % 2 == 1
                shown = [chain.mirrored() for chain in assembly.chains] if mirror else assembly.chains
                maps.make_map(made.Assembly(assembly.name, shown), "plain", resolution, number, rng)
                for chain in assembly.distinct():
                    started(program, chain, rng)
                    result = program.place(program.file("map.mrc"), program.file("model.pdb"), resolution,
                                           hands=True)[0]
                    placed += result["placed"]
                    verdict = result["hand"]["verdict"]
                    if result["placed"] and verdict != "unknown":
                        told += 1
                        right += verdict == ("mirrored" if mirror else "as-given")
        write(f"{resolution:5d} Å   placed {placed:4d}   told {told:4d}   right {right:4d}")
