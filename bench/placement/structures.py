"""Structures for made maps: which ones, how they are read, and how several are packed into one assembly.

Coordinates are in Å. A structure is a list of atoms; an atom is the text of its PDB line beside its position.
"""

import gzip
import math
import os
import random

# Predicted models of at least 60 residues of a confidence of 70 and more, and not much longer than a compact fold of
# their size. Confidence is calibrated on the ones and tested on the others; both lists have all sizes and folds.
CALIBRATION = ["A0A1D1W2Z4", "A0A1D1VYV6", "A0A1D1W1P9", "A0A1D1VHB7", "A0A1D1VY07", "A0A1D1VNJ5", "A0A1D1VEZ1",
               "A0A1D1UIX7", "A0A1D1V2B2", "A0A1D1UM72", "A0A1D1V7A0", "A0A1D1V443", "A0A1D1VIZ0", "A0A1D1UNL0"]
TEST = ["A0A1D1W4D4", "A0A1D1VVY6", "A0A1D1UEG4", "A0A1D1W320", "A0A1D1UZ79", "A0A1D1UFQ8", "A0A1D1UJP0",
        "A0A1D1V418", "A0A1D1W604", "A0A1D1V9B0", "A0A1D1UVH4", "A0A1D1VAQ7", "A0A1D1VPP5", "A0A1D1VWK5",
        "A0A1D1V8M1"]
ACTIN = "A0A1D1UVK9"
GROWTH = "A0A1D1V2B2"
MIN_CONFIDENCE = 70


class Structure:
    """Atoms of one or several chains: lines (PDB, as read), positions, and the indices of the CA atoms."""

    def __init__(self, name, lines, positions):
        self.name = name
        self.lines = lines
        self.positions = positions
        self.alphas = [i for i, line in enumerate(lines) if line[12:16] == " CA "]

    def residues(self):
        return len(self.alphas)

    def alpha_positions(self):
        return [self.positions[i] for i in self.alphas]

    def sequence(self):
        return [self.lines[i][17:20] for i in self.alphas]

    def moved(self, rotation, translation):
        return Structure(self.name, self.lines, [move(rotation, translation, p) for p in self.positions])

    def centred(self):
        c = centroid(self.positions)
        return self.moved(IDENTITY, (-c[0], -c[1], -c[2]))

    def mirrored(self):
        return Structure(self.name, self.lines, [(-x, y, z) for x, y, z in self.positions])


IDENTITY = ((1, 0, 0), (0, 1, 0), (0, 0, 1))


def move(rotation, translation, p):
    return tuple(sum(rotation[i][j] * p[j] for j in range(3)) + translation[i] for i in range(3))


def centroid(positions):
    n = len(positions)
    return tuple(sum(p[axis] for p in positions) / n for axis in range(3))


def rotation_of(w, x, y, z):
    """The matrix of a quaternion, which is normalised first."""
    n = math.sqrt(w * w + x * x + y * y + z * z)
    w, x, y, z = w / n, x / n, y / n, z / n
    return ((1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)),
            (2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)),
            (2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)))


def random_rotation(rng):
    return rotation_of(*(rng.gauss(0, 1) for _ in range(4)))


def random_direction(rng):
    direction = [rng.gauss(0, 1) for _ in range(3)]
    length = math.sqrt(sum(d * d for d in direction))
    return [d / length for d in direction]


def rotation_about(axis, degrees):
    half = math.radians(degrees) / 2
    return rotation_of(math.cos(half), *(math.sin(half) * a for a in axis))


def rmsd(a, b):
    return math.sqrt(sum(math.dist(p, q) ** 2 for p, q in zip(a, b)) / len(a))


def read_pdb(path, chain=None, min_confidence=None):
    """ATOM records of the first model, of one chain or all; residues whose B factors lie below are left out."""
    opened = gzip.open(path, "rt") if path.endswith(".gz") else open(path)
    lines, positions = [], []
    with opened as file:
        for line in file:
            if line.startswith("ENDMDL"):
                break
            if not line.startswith("ATOM") or line[16] not in " A":
                continue
            if chain is not None and line[21] != chain:
                continue
            if min_confidence is not None and float(line[60:66]) < min_confidence:
                continue
            lines.append(line.rstrip("\n").ljust(80))
            positions.append((float(line[30:38]), float(line[38:46]), float(line[46:54])))
    return Structure(os.path.basename(path).split(".")[0], lines, positions)


def chains_of(path):
    """Chain identifiers in the file's order."""
    seen = []
    with open(path) as file:
        for line in file:
            if line.startswith("ATOM") and line[21] not in seen:
                seen.append(line[21])
    return seen


def write_pdb(path, structures, identifiers=None):
    """Writes each structure as a chain of its own."""
    serial = 0
    with open(path, "w") as file:
        for index, structure in enumerate(structures):
            identifier = identifiers[index] if identifiers else "ABCDEFGHIJKLMNOPQRSTUVWXYZ"[index]
            for line, p in zip(structure.lines, structure.positions):
                serial = serial % 99999 + 1
                file.write(f"ATOM  {serial:5d}{line[11:21]}{identifier}{line[22:30]}"
                           f"{p[0]:8.3f}{p[1]:8.3f}{p[2]:8.3f}{line[54:80]}\n")
            file.write("TER\n")
        file.write("END\n")


class Occupied:
    """Where CA atoms are, in cells of 3 Å with their neighbours: a quick test for touching chains."""

    CELL = 3.0

    def __init__(self):
        self.cells = set()

    def cell(self, p):
        return tuple(int(math.floor(x / self.CELL)) for x in p)

    def add(self, positions):
        near = (-1, 0, 1)
        for p in positions:
            i, j, k = self.cell(p)
            self.cells.update((i + a, j + b, k + c) for a in near for b in near for c in near)

    def touches(self, positions):
        return any(self.cell(p) in self.cells for p in positions)


def pack(structures, seed):
    """Turns each structure at random and moves it, from a random direction, towards the others until it touches."""
    rng = random.Random(seed)
    occupied = Occupied()
    packed = []
    for structure in structures:
        turned = structure.centred().moved(random_rotation(rng), (0, 0, 0))
        alphas = turned.alpha_positions()
        direction = random_direction(rng)
        distance = 200.0 if packed else 0.0
        while distance > 0:
            nearer = tuple(d * (distance - 1) for d in direction)
            if occupied.touches([tuple(a + b for a, b in zip(p, nearer)) for p in alphas]):
                break
            distance -= 1
        place = tuple(d * distance for d in direction)
        there = turned.moved(IDENTITY, place)
        occupied.add(there.alpha_positions())
        packed.append(there)
    return packed
