"""How the CPU time grows with the box, the model and the resolution: exponents are slopes of a straight line through
the logarithms."""

import math

import structures


def slope(pairs):
    """Of ln y over ln x, least squares."""
    xs, ys = [math.log(x) for x, _ in pairs], [math.log(y) for _, y in pairs]
    mx, my = sum(xs) / len(xs), sum(ys) / len(ys)
    return sum((x - mx) * (y - my) for x, y in zip(xs, ys)) / sum((x - mx) ** 2 for x in xs)


def lattice(structure, counts):
    """Copies of a structure, side by side along x, y and z: density that fills a box."""
    centred = structure.centred()
    extent = [max(p[a] for p in centred.positions) - min(p[a] for p in centred.positions) + 3 for a in range(3)]
    return [centred.moved(structures.IDENTITY, tuple(extent[a] * i[a] for a in range(3)))
            for i in ((x, y, z) for z in range(counts[2]) for y in range(counts[1]) for x in range(counts[0]))]


def make_lattice_map(program, structure, counts, resolution, voxel):
    """Writes map.mrc; the chains as one list for models that are parts of it."""
    chains = lattice(structure, counts)
    model = program.file("lattice.pdb")
    # One chain for all: a file of the PDB format has no names for hundreds.
    structures.write_pdb(model, [joined(chains)])
    program.simulate(model, program.file("map.mrc"), resolution, voxel, b_factor=4 * resolution ** 2, solvent=0.5,
                     resolution_noise=1, margin=resolution, seed=1)
    return chains


def joined(chains):
    return structures.Structure("lattice", [line for c in chains for line in c.lines],
                                [p for c in chains for p in c.positions])


def cpu_of(program, model, resolution, times=1):
    runs = [program.place(program.file("map.mrc"), model, resolution)[1] for _ in range(times)]
    return min(run.cpu for run in runs), max(run.memory for run in runs)


def growth(program, structure, write, short=False):
    """`structure` is compact and of middle size."""
    model = program.file("model.pdb")
    structures.write_pdb(model, [structure.centred()])
    extent = [max(p[a] for p in structure.positions) - min(p[a] for p in structure.positions) + 3 for a in range(3)]

    write("CPU seconds by the box's volume: 8 Å, boxes full of density")
    pairs = []
    for counts in ((1, 1, 1), (2, 1, 1), (2, 2, 1), (2, 2, 2)) + (() if short else ((4, 2, 2), (4, 4, 2), (4, 4, 4))):
        make_lattice_map(program, structure, counts, 8, 2)
        volume = math.prod(extent[a] * counts[a] + 16 for a in range(3))
        cpu, memory = cpu_of(program, model, 8)
        pairs.append((volume, cpu))
        write(f"{volume:12.0f} Å³ {cpu:8.2f} s {memory:8.0f} MiB")
    write(f"exponent {slope(pairs):.2f}; over the larger half {slope(pairs[len(pairs) // 2:]):.2f}\n")

    write("CPU seconds by the number of residues: one map of 8 Å")
    chains = make_lattice_map(program, structure, (2, 2, 2) if short else (3, 3, 3), 8, 2)
    pairs = []
    for copies in (1, 2, 4, 8) + (() if short else (16, 27)):
        structures.write_pdb(model, [joined(chains[:copies])])
        cpu, memory = cpu_of(program, model, 8)
        residues = copies * structure.residues()
        pairs.append((residues, cpu))
        write(f"{residues:12d}    {cpu:8.2f} s {memory:8.0f} MiB")
    write(f"exponent {slope(pairs):.2f}\n")

    write("CPU seconds by the resolution: one box, voxels of a third of the resolution")
    structures.write_pdb(model, [structure.centred()])
    pairs = []
    for resolution in (12, 8, 6, 4) + (() if short else (3,)):
        make_lattice_map(program, structure, (2, 2, 2), resolution, resolution / 3)
        cpu, memory = cpu_of(program, model, resolution)
        pairs.append((1 / resolution, cpu))
        write(f"{resolution:12d} Å  {cpu:8.2f} s {memory:8.0f} MiB")
    write(f"exponent {slope(pairs):.2f}; over the finer half {slope(pairs[len(pairs) // 2:]):.2f}\n")

    if not short:
        counts = [max(1, int(390 / e)) for e in extent]
        make_lattice_map(program, structure, counts, 3.5, 1)
        cpu, memory = cpu_of(program, model, 3.5)
        size = " x ".join(f"{extent[a] * counts[a] + 7:.0f}" for a in range(3))
        write(f"A box of {size} Å at 3.5 Å, voxels of 1 Å: {cpu:.1f} CPU s, {memory:.0f} MiB")
