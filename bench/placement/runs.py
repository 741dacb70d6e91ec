"""Runs the program, one process at a time, and tells what it took."""

import json
import os
import subprocess
import time


class Run:
    """What a process took: CPU seconds, elapsed seconds, and peak memory in MiB."""

    def __init__(self, cpu, elapsed, memory):
        self.cpu, self.elapsed, self.memory = cpu, elapsed, memory


class Program:
    def __init__(self, path, folder):
        self.path = path
        self.folder = folder
        os.makedirs(folder, exist_ok=True)

    def file(self, name):
        return os.path.join(self.folder, name)

    def run(self, *words):
        """Runs a subcommand; a failure is reported with what the program said."""
        start = time.monotonic()
        with open(self.file("output.txt"), "w+") as output:
            process = subprocess.Popen([self.path, *map(str, words)], stdout=output, stderr=subprocess.STDOUT)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            elapsed = time.monotonic() - start
            if process.returncode != 0:
                output.seek(0)
                raise RuntimeError(" ".join([self.path, *map(str, words)]) + "\n" + output.read())
        return Run(usage.ru_utime + usage.ru_stime, elapsed, usage.ru_maxrss / 1024)

    def simulate(self, model, out, resolution, voxel, **options):
        """Options by their names with underscores: bend=1.5 is --bend 1.5, invert=True is --invert."""
        words = ["simulate", "--model", model, "--out", out, "--resolution", resolution, "--voxel", voxel]
        return self.run(*words, *as_words(options))

    def assemble(self, map_file, models, resolution, threads=1, **options):
        """The JSON file of several models as a value, and what the process took."""
        json_file = self.file("assembly.json")
        words = [word for model in models for word in ("--model", model)]
        run = self.run("place", "--map", map_file, *words, "--resolution", resolution, "--threads", threads, "--quiet",
                       "--json", json_file, *as_words(options))
        with open(json_file) as file:
            return json.load(file), run

    def place(self, map_file, model, resolution, threads=1, **options):
        """The JSON file as a value, and what the process took."""
        json_file = self.file("places.json")
        run = self.run("place", "--map", map_file, "--model", model, "--resolution", resolution, "--threads", threads,
                       "--quiet", "--json", json_file, *as_words(options))
        with open(json_file) as file:
            return json.load(file), run


def as_words(options):
    words = []
    for name, value in options.items():
        if value is None or value is False:
            continue
        words.append("--" + name.replace("_", "-"))
        if value is not True:
            words.append(value)
    return words
