#!/usr/bin/env -S python3 -B
"""Blurs the same picture by the same matte through the plug-in and through other programs, one thread each,
and prints how many times longer each of them takes.

    compare.py BIN_FOLDER OUTPUT_FOLDER [--sizes 1920x1080 ...] [--radii 20 100 ...]

BIN_FOLDER holds kestrel-benchmarks, write-scene and, where OpenCV was found, integral-blur; OUTPUT_FOLDER
receives compare.json. A program that is not here is listed as not installed. On Debian the packages are
ffmpeg, gegl, imagemagick, libopencv-core-dev and libopencv-imgproc-dev.
"""

import argparse
import json
import subprocess
import sys
import tempfile
import textwrap
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import report
from tools import Job, TooSlow, all_tools

SIZES = ("1280x720", "1920x1080", "3840x2160", "7680x4320")
RADII = (5, 20, 50, 100, 200)

OWN_NOTE = (
    "box (Coarse) or tent (Fine), whole radii mixed; radii above half of the largest are held there, at the same "
    "cost; straight alpha in and out, premultiplied between; edge replicated; exact sums"
)


def own_milliseconds(programs, job, depth, blur):
    """Through the plug-in, in a process of its own as the other programs are."""
    case = f"PluginFrame/{depth}-bit/{blur}/{job.width}x{job.height}/radius:{job.radius}/objects/threads:1"
    with tempfile.TemporaryDirectory() as folder:
        output = Path(folder, "frames.json")
        command = [
            programs / "kestrel-benchmarks",
            f"--benchmark_filter=^{case}/",
            f"--benchmark_repetitions={job.runs}",
            "--benchmark_min_time=0.05",
            f"--benchmark_out={output}",
        ]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return report.load_cases(output)[case].median


class Comparison:
    def __init__(self, programs):
        self.programs = programs
        tools = all_tools(programs)
        self.tools = [tool for tool in tools if tool.is_installed()]
        self.missing = [tool for tool in tools if not tool.is_installed()]
        self.too_slow = {}  # by name: the fewest pixels times radius that ran into the limit
        self.rows = []

    def run(self, job):
        own = {
            (depth, blur): own_milliseconds(self.programs, job, depth, blur)
            for depth in (8, 16)
            for blur in ("Coarse", "Fine")
        }
        for tool in self.tools:
            self.rows.append({
                "size": f"{job.width}x{job.height}",
                "radius": job.radius,
                "program": tool.name,
                "milliseconds": self.time(tool, job),
                "limit": 1e3 * job.limit,
                "coarse": own[tool.depth, "Coarse"],
                "fine": own[tool.depth, "Fine"],
            })

    def time(self, tool, job):
        """None when it takes longer than the limit, or a smaller job did."""
        work = job.width * job.height * job.radius
        if work >= self.too_slow.get(tool.name, work + 1):
            return None
        try:
            return tool.milliseconds(job)
        except TooSlow:
            self.too_slow[tool.name] = work
            return None

    def print(self):
        table = report.Table(
            "One frame on one thread, medians in ms; Coarse and Fine are the plug-in's at the program's depth",
            "size, radius, program", "ms", "Coarse", "x slower", "Fine", "x slower",
        )
        for row in self.rows:
            name = f"{row['size']} radius:{row['radius']} {row['program']}"
            table.add(name, *cells(row))
        table.print()
        self.print_differences()
        self.print_verdict()

    def print_differences(self):
        notes = {OWN_NOTE: ["Kestrel"]}
        for tool in self.tools:
            notes.setdefault(tool.note, []).append(tool.name)
        print("\nWhat each does differently")
        for note, names in notes.items():
            print(textwrap.fill(f"{'; '.join(names)}: {note}", 110, initial_indent="  ", subsequent_indent="    "))
        for tool in self.missing:
            print(f"  {tool.name}: not installed")

    def print_verdict(self):
        timed = [row for row in self.rows if row["milliseconds"] is not None]
        print()
        for blur in ("Coarse", "Fine"):
            lost = [row for row in timed if row["milliseconds"] < row[blur.lower()]]
            print(f"{blur} is faster in {len(timed) - len(lost)} of {len(timed)} timed cases.")
            for row in lost:
                print(f"  slower than {row['program']} at {row['size']}, radius {row['radius']}")


def cells(row):
    took, limit = row["milliseconds"], row["limit"]
    text = f"> {limit:.0f}" if took is None else f"{took:.1f}"
    shown = [text]
    for blur in ("coarse", "fine"):
        factor = f"> {limit / row[blur]:.0f}" if took is None else f"{took / row[blur]:.1f}"
        shown += [f"{row[blur]:.1f}", factor]
    return shown


def parse_arguments():
    layout = argparse.RawDescriptionHelpFormatter
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=layout)
    parser.add_argument("programs", type=Path, metavar="BIN_FOLDER")
    parser.add_argument("output", type=Path, metavar="OUTPUT_FOLDER")
    parser.add_argument("--sizes", nargs="+", default=SIZES, help="among those of kestrel-benchmarks")
    parser.add_argument("--radii", nargs="+", type=int, default=RADII, help="likewise")
    parser.add_argument("--runs", type=int, default=5, help="of which the median counts (5)")
    parser.add_argument("--limit", type=float, default=30, help="seconds after which a run is ended (30)")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    comparison = Comparison(arguments.programs)
    for size in arguments.sizes:
        width, height = map(int, size.split("x"))
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([arguments.programs / "write-scene", str(width), str(height), folder], check=True)
            for radius in arguments.radii:
                print(f"compare: {size}, radius {radius}", file=sys.stderr)
                comparison.run(Job(width, height, radius, Path(folder), arguments.runs, arguments.limit))
    (arguments.output / "compare.json").write_text(json.dumps(comparison.rows, indent=1) + "\n")
    comparison.print()


if __name__ == "__main__":
    main()
