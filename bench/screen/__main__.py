"""What screening reaches: models a second, the share of the time that is not search, memory of a worker, what a second worker
gains, and whether the right models are found and no decoy.

    ./run bench screen [NUMBER]      of models, 2000 unless given

Models are stretches of predicted chains, bent, and pairs of such; among them the actin that stands in the map of a filament,
whole, bent and cut. Needs the data that the tests on real maps use, and the module on PYTHONPATH.
"""

import collections
import concurrent.futures
import functools
import os
import pathlib
import random
import sys
import tempfile
import time

import psutil

import morvanex
from morvanex import screen

DATA = pathlib.Path(os.environ.get("MORVANEX_DATA", pathlib.Path(__file__).parents[2].parent / "shared" / "data"))
MAP, RESOLUTION = DATA / "maps" / "emd_5168.map", 6.6
ACTIN = "A0A1D1UVK9"
CONFIDENT = 70


def confident_stretch(model, numbers, shortest, longest):
    """Residues of high confidence within a random stretch of a chain."""
    residues = model.polymer_residues
    length = min(numbers.randint(shortest, longest), len(residues))
    begin = numbers.randint(0, len(residues) - length)
    return model.picked(begin <= i < begin + length and r.b_factor >= CONFIDENT for i, r in enumerate(residues))


def write_bent(model, file, rmsd, seed):
    morvanex.simulate(model, resolution=30, voxel=15, bend=rmsd, seed=seed, bent_model=file)


def write_decoy(file, number):
    """A decoy of that number, from as many stretches as it takes to find a long one."""
    numbers = random.Random(number)
    first = None
    while first is None or len(first.polymer_residues) < 40:
        first = confident_stretch(numbers.choice(others()), numbers, 60, 260)
    write_bent(first, file, numbers.uniform(0.5, 4), numbers.randrange(1 << 30))
    if numbers.random() < 0.3:
        second = confident_stretch(numbers.choice(others()), numbers, 40, 120)
        if len(second.polymer_residues) > 20:
            beside = morvanex.Pose((0.7071, 0.7071, 0.0, 0.0), (25.0, 0.0, 0.0))
            other = file.with_suffix(".part")
            morvanex.write_structure(other, second.moved(beside))
            text = file.read_text().replace("END", "TER") + other.read_text()
            file.write_text("".join(line + "\n" for line in text.splitlines() if line.startswith("ATOM")))
            other.unlink()


@functools.lru_cache
def others():
    """The predicted models but the actin."""
    return [morvanex.read_structure(file) for file in sorted((DATA / "models").glob("*.pdb.gz")) if ACTIN not in file.name]


def make_models(folder, number):
    actin = morvanex.read_structure(DATA / "models" / f"{ACTIN}.pdb.gz")
    for i, rmsd in enumerate((0.2, 1, 2)):
        write_bent(actin, folder / f"right-{i}.pdb", rmsd, i)
    cut = actin.picked(30 <= i < 330 for i in range(len(actin.polymer_residues)))
    morvanex.write_structure(folder / "right-cut.pdb", cut)
    with concurrent.futures.ProcessPoolExecutor() as processes:
        decoys = range(4, number)
        files = [folder / f"decoy-{i:05d}.pdb" for i in decoys]
        collections.deque(processes.map(write_decoy, files, decoys, chunksize=16), maxlen=0)


def run(models, workers, scratch):
    """Progress at the end, the results, and the most memory that a worker took, bytes."""
    most = 0

    def show(progress):
        nonlocal most
        for child in psutil.Process().children(recursive=True):
            try:
                most = max(most, child.memory_info().rss)
            except psutil.NoSuchProcess:
                pass

    file = scratch / f"run-{workers}.sqlite"
    progress = screen.run(MAP, models, screen.Settings(RESOLUTION), file, workers=workers, show=show)
    return progress, screen.ranking(screen.Store(file)), most


def main():
    number = int(sys.argv[1]) if len(sys.argv) > 1 else 2000
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch) / "models"
        folder.mkdir()
        begun = time.monotonic()
        make_models(folder, number)
        print(f"{number} models made in {time.monotonic() - begun:.0f} s")
        models = screen.find_models(folder)
        rates, rankings = {}, {}
        # One worker shows its rate on every fourth model.
        for workers, some in ((2, models), (1, models[:: 4 if number >= 400 else 1])):
            progress, ranked, most = run(some, workers, pathlib.Path(scratch))
            rates[workers], rankings[workers] = len(some) / progress.seconds, ranked
            searched = sum(entry.seconds for entry in ranked)
            print(f"{workers} workers: {len(some)} models in {progress.seconds:.0f} s, {rates[workers]:.1f} models/s, "
                  f"{100 * (1 - searched / workers / progress.seconds):.0f} % of it outside the search, "
                  f"{most / 2**20:.0f} MiB a worker, {len(progress.problems)} problems")  # fmt: skip
        ranked = rankings[2]
        found = [entry for entry in ranked if entry.declared]
        wrong = [entry.model for entry in found if entry.model.startswith("decoy")]
        right = [entry.rank for entry in ranked if entry.model.startswith("right")]
        print(f"2 workers against 1: {rates[2] / rates[1]:.2f}")
        print(f"found: {len(found)}, of them decoys: {len(wrong)}; ranks of the right ones: {right}")


if __name__ == "__main__":
    main()
