#!/usr/bin/env python3
"""compare_renders.py --levels LEVEL... --here BUILD --there BUILD --emulator COMMAND...

Renders the same random settings with this machine's plug-in and with another system's or processor's, at each vector level,
and compares the bytes. With --time larger frames are rendered by turns as well, and the other system may take so many times
as long. A level that this processor cannot run is named and left out.
"""

import argparse
import hashlib
import pathlib
import subprocess
import sys
import tempfile

FEATURES = {"Avx2": {"avx2"}, "Avx512": {"avx512f", "avx512bw", "avx512dq", "avx512vl"}}
CASES, WIDTH, HEIGHT = 200, 61, 47
TIMED_CASES, TIMED_WIDTH, TIMED_HEIGHT, MOST_TURNS = 4, 960, 540, 12


def processor_features() -> set[str]:
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("flags"):
            return set(line.split())
    return set()


class Build:
    def __init__(self, folder: pathlib.Path, emulator: list[str]):
        self.program = [*emulator, str(next(folder.glob("bin/render-cases*")))]
        self.folder = folder

    def plugin(self, level: str) -> pathlib.Path:
        return next((self.folder / "levels" / level).glob("Kestrel.*"))

    def render(self, level: str, cases: int, width: int, height: int, output: pathlib.Path) -> float:
        """The seconds that it took."""
        command = [*self.program, str(self.plugin(level)), str(cases), str(width), str(height), str(output)]
        return float(subprocess.run(command, check=True, capture_output=True, text=True).stdout)


def compare_bytes(here: Build, there: Build, level: str, folder: pathlib.Path) -> None:
    files = [folder / "here.raw", folder / "there.raw"]
    for build, file in zip((here, there), files):
        build.render(level, CASES, WIDTH, HEIGHT, file)
    ours, theirs = (file.read_bytes() for file in files)
    if len(ours) != CASES * WIDTH * HEIGHT * (4 + 8):
        sys.exit(f"level {level}: {len(ours)} bytes were rendered here")
    if ours != theirs:
        pixel = next((i for i, (a, b) in enumerate(zip(ours, theirs)) if a != b), min(len(ours), len(theirs)))
        sys.exit(f"level {level}: the bytes differ from {pixel} on")
    print(f"level {level}: {2 * CASES} frames are equal, sha256 {hashlib.sha256(ours).hexdigest()[:16]}")


def compare_times(here: Build, there: Build, level: str, folder: pathlib.Path, limit: float) -> None:
    """By turns, and the best of each, as other work of the machine only ever adds; as many turns as it takes."""
    best = [float("inf")] * 2
    for _ in range(MOST_TURNS):
        for i, build in enumerate((here, there)):
            seconds = build.render(level, TIMED_CASES, TIMED_WIDTH, TIMED_HEIGHT, folder / "timed.raw")
            best[i] = min(best[i], seconds)
        if best[1] <= limit * best[0]:
            break
    print(f"level {level}: {best[0]:.3f} s here, {best[1]:.3f} s there, {best[1] / best[0]:.2f} times")
    if best[1] > limit * best[0]:
        sys.exit(f"level {level}: more than {limit} times as long")


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--levels", nargs="+", required=True)
    parser.add_argument("--here", type=pathlib.Path, required=True)
    parser.add_argument("--there", type=pathlib.Path, required=True)
    parser.add_argument("--time", type=float)
    parser.add_argument("--emulator", nargs=argparse.REMAINDER, default=[])
    options = parser.parse_args()
    here, there = Build(options.here, []), Build(options.there, options.emulator)
    runnable = [level for level in options.levels if FEATURES.get(level, set()) <= processor_features()]
    for level in options.levels:
        if level not in runnable:
            print(f"level {level}: this processor cannot run it")
    with tempfile.TemporaryDirectory() as folder:
        for level in runnable:
            compare_bytes(here, there, level, pathlib.Path(folder))
        if options.time:
            compare_times(here, there, runnable[-1], pathlib.Path(folder), options.time)


if __name__ == "__main__":
    main()
