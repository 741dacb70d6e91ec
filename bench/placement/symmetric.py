"""Symmetric assemblies of predicted models: whether the map's symmetry is named, and what it is worth for placing."""

import math
import random
import string

import structures
import tables

RESOLUTION = 8
GROUPS = ("C2", "C3", "C5", "C7", "D2", "D3", "D7", "T", "O", "I", "H:27.6,-166.6", "C1")
# How much stronger the noise is than the resolution implies.
NOISES = (1, 8)
HARD_GROUPS, HARD_NOISES = ("C3", "D2", "D7", "O"), (10, 30, 100, 300)
HELIX_REACH = 3
IDENTIFIERS = string.ascii_uppercase + string.ascii_lowercase + string.digits


def product(a, b):
    return tuple(tuple(sum(a[i][k] * b[k][j] for k in range(3)) for j in range(3)) for i in range(3))


def transposed(a):
    return tuple(zip(*a))


def about(axis, degrees):
    length = math.hypot(*axis)
    return structures.rotation_about([x / length for x in axis], degrees)


def closure(generators):
    group = [structures.IDENTITY]
    for element in group:
        for generator in generators:
            new = product(generator, element)
            if all(max(abs(x - y) for r, s in zip(new, old) for x, y in zip(r, s)) > 1e-6 for old in group):
                group.append(new)
    return group


def operators(name):
    """Rotations with their shifts along z, in the group's own frame."""
    third, half = about((1, 1, 1), 120), about((0, 0, 1), 180)
    if name.startswith("H:"):
        rise, twist = map(float, name[2:].split(","))
        steps = sorted(range(-HELIX_REACH, HELIX_REACH + 1), key=abs)
        return [(about((0, 0, 1), twist * i) if i else structures.IDENTITY, (0, 0, rise * i)) for i in steps]
    if name in "TOI":
        generators = {"T": [half, third], "O": [about((0, 0, 1), 90), third],
                      "I": [half, third, about((0, 1, (1 + math.sqrt(5)) / 2), 72)]}[name]
    elif name == "C1":
        generators = []
    else:
        generators = [about((0, 0, 1), 360 / int(name[1:]))] + ([about((1, 0, 0), 180)] if name[0] == "D" else [])
    return [(rotation, (0, 0, 0)) for rotation in closure(generators)]


def copies_of(model, group, distance, direction):
    placed = model.moved(structures.IDENTITY, [distance * x for x in direction])
    return [placed.moved(rotation, shift) for rotation, shift in group]


def touch(alphas, group, distance, direction):
    """Whether the first copy of a model touches another one."""
    placed = [tuple(x + distance * d for x, d in zip(p, direction)) for p in alphas]
    occupied = structures.Occupied()
    occupied.add(placed)
    return any(occupied.touches(structures.move(rotation, shift, p) for p in placed)
               for rotation, shift in group if (rotation, shift) != (structures.IDENTITY, (0, 0, 0)))


class Assembly:
    """Copies of a model as near to one another as they go, their axis askew and beside the origin."""

    def __init__(self, name, model, rng):
        group = operators(name)
        turned = model.centred().moved(structures.random_rotation(rng), (0, 0, 0))
        direction = (1, 0, 0) if name.startswith("H:") else (0.87, 0.24, 0.43)
        distance, alphas = 0, turned.alpha_positions()
        while touch(alphas, group, distance, direction):
            distance += 3
        frame = structures.random_rotation(rng)
        self.name = name
        self.centre = [rng.uniform(-40, 40) for _ in range(3)]
        self.axis = [row[2] for row in frame]
        self.axes = [[sum(frame[i][j] * rotation[j][k] for j in range(3)) for i in range(3)]
                     for rotation, _ in group for k in ((0, 1, 2) if name == "D2" or name in "TOI" else (2,))]
        self.chains = [copy.moved(frame, self.centre) for copy in copies_of(turned, group, distance, direction)]

    def errors(self, symmetry):
        """Degrees from the axis, and Å from the centre or a lone axis."""
        dots = [abs(sum(x * y for x, y in zip(axis, symmetry["axis"]))) for axis in self.axes]
        off = [x - y for x, y in zip(symmetry["centre"], self.centre)]
        if self.name[0] in "CH":
            along = sum(x * y for x, y in zip(off, self.axis))
            off = [x - along * a for x, a in zip(off, self.axis)]
        return math.degrees(math.acos(min(1, max(dots)))), math.hypot(*off)

    def is_named(self, symmetry):
        name = symmetry["name"]
        if self.name == "C1":
            return name is None
        if not self.name.startswith("H:"):
            return name == self.name
        rise, twist = map(float, self.name[2:].split(","))
        return symmetry["rise"] is not None and abs(symmetry["rise"] - rise) < 0.2 and \
            abs(symmetry["twist"] - twist) < 0.5


def make(program, assembly, noise, seed):
    structures.write_pdb(program.file("assembly.pdb"), assembly.chains, IDENTIFIERS)
    program.simulate(program.file("assembly.pdb"), program.file("map.mrc"), RESOLUTION, RESOLUTION / 4, seed=seed,
                     resolution_noise=noise, margin=10)


def started(program, assembly, rng):
    start = assembly.chains[0].centred().moved(structures.random_rotation(rng), (0, 0, 0))
    structures.write_pdb(program.file("model.pdb"), [start])
    return start


def is_right(result, start, assembly):
    if not result["places"]:
        return False
    place = result["places"][0]
    rotation = structures.rotation_of(*place["rotation"])
    placed = [structures.move(rotation, place["translation"], p) for p in start.alpha_positions()]
    return min(structures.rmsd(placed, copy.alpha_positions()) for copy in assembly.chains) <= RESOLUTION / 2


def models(data, number, predicted):
    names = [name for name in structures.TEST if len(predicted(data, name).alpha_positions()) < 250]
    return [predicted(data, names[i % len(names)]) for i in range(number)]


def named(program, data, write, predicted, number):
    write(f"Symmetry named in made maps of {RESOLUTION} Å: right names, of them the largest errors of axis and centre, "
          "CPU seconds")
    for noise in NOISES:
        for name in GROUPS:
            right, degrees, distance, cpu = 0, 0.0, 0.0, 0.0
            for index, model in enumerate(models(data, number, predicted)):
                rng = random.Random(f"{name} {noise} {index}")
                assembly = Assembly(name, model, rng)
                make(program, assembly, noise, index)
                started(program, assembly, rng)
                result, run = program.place(program.file("map.mrc"), program.file("model.pdb"), RESOLUTION,
                                            symmetry="auto")
                cpu += run.cpu
                if assembly.is_named(result["symmetry"]):
                    right += 1
                    if name != "C1":
                        errors = assembly.errors(result["symmetry"])
                        degrees, distance = max(degrees, errors[0]), max(distance, errors[1])
            write(f"noise {noise:3d}  {name:14} {tables.share(right, number):>16} {degrees:6.2f}° {distance:6.2f} Å "
                  f"{cpu / number:6.2f} s")


def together(program, data, write, predicted, number):
    write("One model and its copies in noise: first place right, and called, alone and with symmetry, axis and centre given")
    for noise in HARD_NOISES:
        counts, runs = [0, 0, 0, 0], 0
        for name in HARD_GROUPS:
            for index, model in enumerate(models(data, number, predicted)):
                rng = random.Random(f"{name} {noise} {index}")
                assembly = Assembly(name, model, rng)
                make(program, assembly, noise, index)
                start = started(program, assembly, rng)
                runs += 1
                given = {"symmetry": name, "symmetry_axis": ",".join(f"{x:.6f}" for x in assembly.axis),
                         "symmetry_centre": ",".join(f"{x:.4f}" for x in assembly.centre)}
                for place, options in enumerate(({}, given)):
                    result = program.place(program.file("map.mrc"), program.file("model.pdb"), RESOLUTION, **options)[0]
                    right = is_right(result, start, assembly)
                    counts[2 * place] += right
                    counts[2 * place + 1] += right and result["placed"]
        first, called, first_both, called_both = (tables.share(count, runs) for count in counts)
        write(f"noise {noise:3d}  alone {first:>16}{called:>16}   together {first_both:>16}{called_both:>16}")


def symmetries(program, data, write, predicted, number):
    named(program, data, write, predicted, number)
    write("")
    together(program, data, write, predicted, number)
