#!/usr/bin/python3
"""Draws placed.png: the five places of the example's chain in its map, seen along x, y and z."""

import pathlib

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot
import numpy

import morvanex

FOLDER = pathlib.Path(__file__).parent
EXAMPLES = FOLDER.parent.parent / "examples"


def main():
    density = morvanex.read_map(EXAMPLES / "1tii_8A.mrc")
    found = morvanex.place(density, EXAMPLES / "1tii_D_displaced.pdb", resolution=8)
    copies = found.as_dict()["copies"]
    alpha = [i for i, line in enumerate(atoms(EXAMPLES / "1tii_D_displaced.pdb")) if line[12:16] == " CA "]
    traces = [found.model(rank).coordinates[alpha] for rank in range(1, copies + 1)]
    start = morvanex.read_structure(EXAMPLES / "1tii_D_displaced.pdb").coordinates[alpha]

    figure, axes = matplotlib.pyplot.subplots(1, 3, figsize=(10, 3.6), dpi=120)
    origin, voxel = numpy.array(density.origin), numpy.array(density.voxel)
    size = numpy.array(density.values.shape[::-1])
    low, high = origin - voxel / 2, origin + (size - 0.5) * voxel
    for axis, panel in enumerate(axes):
        across, up = [i for i in range(3) if i != axis]
        panel.imshow(
            density.values.sum(axis=2 - axis),
            extent=(low[across], high[across], low[up], high[up]),
            origin="lower",
            cmap="Greys",
            vmax=density.values.sum(axis=2 - axis).max() * 1.6,
        )
        panel.plot(start[:, across], start[:, up], color="0.25", linewidth=0.8, linestyle=":")
        for trace in traces:
            panel.plot(trace[:, across], trace[:, up], linewidth=1.6)
        panel.set_title(f"along {'xyz'[axis]}", fontsize=9)
        panel.set_xlabel(f"{'xyz'[across]} / Å", fontsize=8)
        panel.set_ylabel(f"{'xyz'[up]} / Å", fontsize=8)
        panel.tick_params(labelsize=7)
    figure.tight_layout()
    figure.savefig(FOLDER / "placed.png", metadata={"Software": None})


def atoms(file):
    return [line for line in file.read_text().splitlines() if line.startswith(("ATOM", "HETATM"))]


if __name__ == "__main__":
    main()
