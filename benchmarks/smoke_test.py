#!/usr/bin/env -S python3 -B
"""Runs every kind of benchmark once on a tiny picture, and the report over what came of it.

    smoke_test.py KESTREL_BENCHMARKS FIRST_FRAME

Fails when a kind has no tiny case, when a case does not run, or when the report cannot be printed.
"""

import contextlib
import io
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import bench
import report

# One radius and the smallest size or block of each kind.
TINY = re.compile(r"^(?!.*radius:(20|50|100|200)/).*(/96x54|/1MiB)")


def list_cases(program):
    listing = subprocess.run([program, "--benchmark_list_tests"], check=True, capture_output=True, text=True)
    return listing.stdout.split()


def run_tiny_cases(program, cases, output):
    command = [
        program,
        "--benchmark_filter=(/96x54($|/radius:5/|/[a-z0-9]+$)|/1MiB)",
        "--benchmark_min_time=0",
        f"--benchmark_out={output}",
    ]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    runs = json.loads(output.read_text())["benchmarks"]
    ran = {run["name"] for run in runs if not run.get("error_occurred") and run["real_time"] > 0}
    missing = [case for case in cases if case not in ran]
    if missing:
        sys.exit("did not run: " + ", ".join(missing))


def check_report(benchmarks, first_frames):
    text = io.StringIO()
    with contextlib.redirect_stdout(text):
        report.print_report(benchmarks, first_frames)
    for heading in ("Memory", "Frames by size", "Frames of a fresh process", "Radius 200 over radius 5"):
        if heading not in text.getvalue():
            sys.exit(f"the report lacks \"{heading}\":\n{text.getvalue()}")


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: smoke_test.py KESTREL_BENCHMARKS FIRST_FRAME")
    program, first_frame = sys.argv[1:]
    every = list_cases(program)
    tiny = [case for case in every if TINY.match(case)]
    untried = {case.split("/")[0] for case in every} - {case.split("/")[0] for case in tiny}
    if untried:
        sys.exit("no tiny case of: " + ", ".join(sorted(untried)))
    with tempfile.TemporaryDirectory() as folder:
        benchmarks, first_frames = Path(folder, "benchmarks.json"), Path(folder, "first-frame.json")
        run_tiny_cases(program, tiny, benchmarks)
        bench.run_first_frames(first_frame, first_frames, "96", "54")
        check_report(benchmarks, first_frames)
    print(f"{len(tiny)} of {len(every)} cases ran")


if __name__ == "__main__":
    main()
