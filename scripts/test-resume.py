#!/usr/bin/env python3
"""Kills a keyed sequence at some moment, lets --existing skip finish it, and compares the files and the report with those of a run
that nobody has disturbed.

    scripts/test-resume.py build/release/bin/perch [KILLS, 50 without]

The first kill falls as soon as a file is there, the others at random moments. After each the report must be whole.
"""
import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

FRAMES = 12
TIMES_OF_A_RUN = {"begin", "seconds", "outputTime", "decodeSeconds", "renderSeconds", "encodeSeconds"}


def command(perch):
    shot = pathlib.Path(__file__).resolve().parent.parent / "samples" / "shot"
    return [perch, "render", "-i", f"{shot}/beauty.####.png", "--control-layer", f"{shot}/depth.####.png",
            "-o", "out.####.png", "--frames", f"1-{FRAMES}", "--focal-point", f"1:20,{FRAMES}:70:smooth", "--maximum-blur", "40",
            "--blur-type", "Fine", "--depth", "16", "--report", "report.json", "--existing", "skip", "-q"]


def without_times(value):
    if isinstance(value, dict):
        return {key: without_times(item) for key, item in value.items() if key not in TIMES_OF_A_RUN}
    return [without_times(item) for item in value] if isinstance(value, list) else value


def result_of(folder):
    files = {file.name: file.read_bytes() for file in folder.iterdir() if file.name != "report.json"}
    return files, without_times(json.loads((folder / "report.json").read_text()))


def frames_done(folder):
    report = folder / "report.json"
    if not report.exists():
        return 0
    return sum(frame["state"] == "done" for frame in json.loads(report.read_text())["frames"])


def children_of(process):
    try:
        return pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
    except OSError:
        return []  # it has ended


def is_running(process):
    try:
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def kill(job):
    """Ends the program; the process with the effect ends with it, a moment later."""
    workers = children_of(job.pid)
    job.send_signal(signal.SIGKILL)
    job.wait()
    while any(map(is_running, workers)):
        time.sleep(0.01)


def wait_for_a_file(job, folder):
    while job.poll() is None and not list(folder.glob("out.*")):
        time.sleep(0.005)


def main():
    perch = os.path.abspath(sys.argv[1])
    kills = int(sys.argv[2]) if len(sys.argv) > 2 else 50
    words = command(perch)
    with tempfile.TemporaryDirectory() as parent:
        whole = pathlib.Path(parent, "whole")
        whole.mkdir()
        begin = time.monotonic()
        subprocess.run(words, cwd=whole, check=True)
        length = time.monotonic() - begin
        expected = result_of(whole)
        cut_short = 0
        for number in range(1, kills + 1):
            folder = pathlib.Path(parent, f"killed{number}")
            folder.mkdir()
            job = subprocess.Popen(words, cwd=folder, stderr=subprocess.DEVNULL)
            if cut_short == 0:
                wait_for_a_file(job, folder)
            else:
                time.sleep(random.uniform(0, length))
            kill(job)
            files = len(list(folder.glob("out.*")))
            known = frames_done(folder)
            cut_short += 0 < files < FRAMES
            subprocess.run(words, cwd=folder, check=True)
            if result_of(folder) != expected:
                sys.exit(f"kill {number}: after {files} files the resumed run differs")
            print(f"kill {number}: {files} files, {known} of them in the report; resumed to the same", flush=True)
    print(f"a run of {length:.1f} s; {cut_short} of {kills} kills fell between its first file and its last")
    sys.exit(0 if cut_short > 0 else "no kill fell in the middle of a run")


main()
