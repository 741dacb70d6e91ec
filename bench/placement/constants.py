"""What half and twice each fixed number of the method does.

    python3 -B bench/placement/constants.py TREE [NAME[+NAME]]...

TREE is a copy of the sources with a release build of its own: placement/Constants.h is changed there, the program built
and run, and the file put back. Names joined by + change together; without names each one is tried. Prints, for half
and twice the value, how many of the places are right and called right, wrong answers that are called right, and CPU
seconds over those with the value as it is.
"""

import os
import random
import re
import resource
import subprocess
import sys

import made
import structures
from runs import Program

PLAN = ((5, "plain"), (8, "plain"), (8, "too tight mask"), (8, "sharpened"), (12, "plain"), (12, "a third of the noise"),
        (16, "plain"), (16, "a third of the noise"), (10, "tight box"), (6, "twice the noise"), (16, "hardly any noise"))


class Cases:
    """Maps and models that are made once and searched with each value."""

    def __init__(self, program, data):
        self.maps = made.MadeMaps(program, program.file("constants.csv"))
        self.program = program
        self.jobs = []
        packed = made.packed_assemblies(data, structures.CALIBRATION, 977)
        for index, (resolution, treatment) in enumerate(PLAN):
            assembly, rng = packed[index % len(packed)], random.Random(index)
            truth = self.maps.make_map(assembly, treatment, resolution, 1000 + index, rng)
            name = program.file(f"map-{index}.mrc")
            os.replace(program.file("map.mrc"), name)
            self.jobs += [(name, chain, truth, resolution) for chain in assembly.distinct()]
            self.jobs += [(name, rng.choice(assembly.distinct()).mirrored(), [], resolution)]

    def measure(self):
        """Right, right and called so, wrong and called right, CPU seconds."""
        right = called = wrong = cpu = 0
        for index, (name, structure, truth, resolution) in enumerate(self.jobs):
            os.replace(name, self.program.file("map.mrc"))
            result = self.maps.place(structure, truth, resolution, random.Random(index))
            os.replace(self.program.file("map.mrc"), name)
            placed = result["verdict"] == "placed"
            right += result["right"]
            called += result["right"] and placed
            wrong += placed and not result["right"]
            cpu += result["cpu"]
        return right, called, wrong, cpu


def names_in(header):
    return re.findall(r"(\w+) = [^,;]+[,;]", re.sub(r"//.*", "", header))


def scaled(header, names, factor):
    for name in names:
        header, found = re.subn(rf"\b{name} = ([^,;]+)", rf"{name} = (\1) * {factor}", header, count=1)
        if not found:
            raise SystemExit(f"no constant {name}")
    return header


def main():
    tree, names = sys.argv[1], sys.argv[2:]
    data = os.environ.get("MORVANEX_DATA", "../shared/data")
    path = os.path.join(tree, "placement", "Constants.h")
    with open(path) as file:
        header = file.read()

    def build(text):
        with open(path, "w") as file:
            file.write(text)
        subprocess.run(["cmake", "--build", os.path.join(tree, "build/release"), "--target", "morvanex"], check=True,
                       stdout=subprocess.DEVNULL)

    # A level that is not narrower than the one before makes levels without end.
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
    build(header)
    program = Program(os.path.join(tree, "build/release/bin/morvanex"), os.path.join(tree, "build/constants"))
    cases = Cases(program, data)
    plain = cases.measure()
    print(f"as it is: {plain[0]} right, {plain[1]} called so, {plain[2]} wrong called right, {plain[3]:.1f} CPU s")
    try:
        for group in names or names_in(header):
            for factor in (0.5, 2):
                try:
                    build(scaled(header, group.split("+"), factor))
                    right, called, wrong, cpu = cases.measure()
                    print(f"{group} x {factor:g}: {right} right, {called} called so, {wrong} wrong called right, "
                          f"{cpu / plain[3]:.2f} of the CPU time", flush=True)
                except (RuntimeError, subprocess.CalledProcessError) as error:
                    print(f"{group} x {factor:g}: {error}", flush=True)
    finally:
        build(header)


main()
