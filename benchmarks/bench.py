#!/usr/bin/env -S python3 -B
"""Runs the benchmarks that show the speed within a few minutes, and prints one table of them.

    bench.py [--all-frames] BIN_FOLDER OUTPUT_FOLDER

BIN_FOLDER holds kestrel-benchmarks and first-frame; OUTPUT_FOLDER receives benchmarks.json and
first-frame.json, which report.py prints again. --all-frames runs the plug-in at every size and radius with
every type, depth, matte and number of threads, in twenty minutes. Everything registered beyond that runs with
kestrel-benchmarks --benchmark_filter=REGEX.
"""

import argparse
import json
import subprocess
import sys
from pathlib import Path

import report

REPETITIONS = 5
FRESH_PROCESSES = 5

SELECTION = (
    # The machine's memory, which all other times are held against.
    "(Write|Copy|FirstTouch)/256MiB",
    # Every size and radius of one type, depth and matte.
    "(Plugin)?Frame/8-bit/Coarse/(1280x720|1920x1080|3840x2160|7680x4320)/radius:[0-9]+/objects/threads:1(/best)?",
    # Every type, depth, matte and number of threads at one size and radius.
    "Frame/(8|16)-bit/(Coarse|Fine)/1920x1080/radius:50/(ramp|objects|noise)/threads:[12]/(best|scalar)",
    "PluginFrame/(8|16)-bit/(Coarse|Fine)/1920x1080/radius:50/(ramp|objects|noise)/threads:[12]",
    # Every kernel at every level.
    "Tables/(8|16)-bit/(Coarse|Fine)/1920x1080/radius:50/[a-z0-9]+",
    "Rows/(8|16)-bit/(Coarse|Fine)/1920x1080/radius:50/[a-z]+/[a-z0-9]+",
    # The passes beside the blur.
    "[A-Za-z]+(:[a-z]+)?/(8|16)-bit/1920x1080(/[a-z0-9]+)?",
)

ALL_FRAMES = "PluginFrame/.*/(1280x720|1920x1080|3840x2160|7680x4320)/.*"

# Google Benchmark adds how time is taken to the name of a case.
TIMING = "(/process_time/real_time|/manual_time)?"


def run_benchmarks(program, selection, output):
    command = [
        program,
        "--benchmark_filter=^(" + "|".join(selection) + ")" + TIMING + "$",
        f"--benchmark_repetitions={REPETITIONS}",
        "--benchmark_min_time=0.05",
        f"--benchmark_out={output}",
        "--benchmark_out_format=json",
    ]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def frame_times(command):
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()
    return [float(line) for line in lines]


def run_first_frames(program, output, *size):
    """The times of frames 1 to 10, in milliseconds, from each of several fresh processes."""
    runs = {}
    for depth in ("8", "16"):
        for blur in ("coarse", "fine"):
            command = [program, blur, depth, *size]
            runs[f"{depth}-bit/{blur.capitalize()}"] = [frame_times(command) for _ in range(FRESH_PROCESSES)]
    output.write_text(json.dumps(runs, indent=1) + "\n")


def main():
    layout = argparse.RawDescriptionHelpFormatter
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=layout)
    parser.add_argument("programs", type=Path, metavar="BIN_FOLDER")
    parser.add_argument("output", type=Path, metavar="OUTPUT_FOLDER")
    parser.add_argument("--all-frames", action="store_true", help="every kind of frame at every size and radius")
    arguments = parser.parse_args()
    programs, output = arguments.programs, arguments.output
    selection = SELECTION + ((ALL_FRAMES,) if arguments.all_frames else ())
    benchmarks, first_frames = output / "benchmarks.json", output / "first-frame.json"
    print("bench: running; this takes minutes", file=sys.stderr)
    run_benchmarks(programs / "kestrel-benchmarks", selection, benchmarks)
    run_first_frames(programs / "first-frame", first_frames)
    report.print_report(benchmarks, first_frames)


if __name__ == "__main__":
    main()
