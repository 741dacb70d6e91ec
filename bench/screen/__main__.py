"""What screening reaches: models a second, the share of the time that is not search, memory of a worker, what a second worker
gains, and whether the right models are found and no decoy.

    ./run bench screen [NUMBER]      of models, 2000 unless given

Models are stretches of predicted chains, bent, and pairs of such; among them the actin that stands in the map of a filament,
whole, bent and cut. Needs the data that the tests on real maps use, and the module on PYTHONPATH.
"""

import os
import pathlib
import random
import sys
import tempfile

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


def write_decoy(models, file, numbers):
    first = confident_stretch(numbers.choice(models), numbers, 60, 260)
    if len(first.polymer_residues) < 40:
        return False
    write_bent(first, file, numbers.uniform(0.5, 4), numbers.randrange(1 << 30))
    if numbers.random() < 0.3:
        second = confident_stretch(numbers.choice(models), numbers, 40, 120)
        if len(second.polymer_residues) > 20:
            beside = morvanex.Pose((0.7071, 0.7071, 0.0, 0.0), (25.0, 0.0, 0.0))
            other = file.with_suffix(".part")
            morvanex.write_structure(other, second.moved(beside))
            text = file.read_text().replace("END", "TER") + other.read_text()
            file.write_text("".join(line + "\n" for line in text.splitlines() if line.startswith("ATOM")))
            other.unlink()
    return True


def make_models(folder, number):
    numbers = random.Random(1)
    files = sorted((DATA / "models").glob("*.pdb.gz"))
    others = [morvanex.read_structure(file) for file in files if ACTIN not in file.name]
    actin = morvanex.read_structure(DATA / "models" / f"{ACTIN}.pdb.gz")
    for i, rmsd in enumerate((0.2, 1, 2)):
        write_bent(actin, folder / f"right-{i}.pdb", rmsd, i)
    cut = actin.picked(30 <= i < 330 for i in range(len(actin.polymer_residues)))
    morvanex.write_structure(folder / "right-cut.pdb", cut)
    made = 4
    while made < number:
        made += write_decoy(others, folder / f"decoy-{made:05d}.pdb", numbers)


def run(folder, workers):
    """Progress at the end, the results, and the most memory that a worker took, bytes."""
    most = 0

    def show(progress):
        nonlocal most
        for child in psutil.Process().children(recursive=True):
            try:
                most = max(most, child.memory_info().rss)
            except psutil.NoSuchProcess:
                pass

    file = folder.parent / f"run-{workers}.sqlite"
    progress = screen.run(MAP, screen.find_models(folder), screen.Settings(RESOLUTION), file, workers=workers, show=show)
    return progress, screen.ranking(screen.Store(file)), most


def main():
    number = int(sys.argv[1]) if len(sys.argv) > 1 else 2000
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch) / "models"
        folder.mkdir()
        make_models(folder, number)
        seconds = {}
        for workers in (2, 1):
            progress, ranked, most = run(folder, workers)
            seconds[workers] = progress.seconds
            searched = sum(entry.seconds for entry in ranked)
            print(f"{workers} workers: {number / progress.seconds:.1f} models/s in {progress.seconds:.0f} s, "
                  f"{100 * (1 - searched / workers / progress.seconds):.0f} % of it outside the search, "
                  f"{most / 2**20:.0f} MiB a worker, {len(progress.problems)} problems")  # fmt: skip
        found = [entry for entry in ranked if entry.declared]
        wrong = [entry.model for entry in found if entry.model.startswith("decoy")]
        right = [entry.rank for entry in ranked if entry.model.startswith("right")]
        print(f"2 workers against 1: {seconds[1] / seconds[2]:.2f}")
        print(f"found: {len(found)}, of them decoys: {len(wrong)}; ranks of the right ones: {right}")


if __name__ == "__main__":
    main()
