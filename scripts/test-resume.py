#!/usr/bin/env python3
"""test-resume.py PERCH SAMPLES [TIMES]: kills a keyed sequence so many times (50) at random moments, lets --existing skip finish it,
and compares the files and the report with those of a run that nobody has disturbed. After each kill the report must be whole."""
import json
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

TIMES_OF_A_RUN = {"begin", "seconds", "outputTime", "decodeSeconds", "renderSeconds", "encodeSeconds"}


def command(perch, shot):
    return [perch, "render", "-i", f"{shot}/beauty.####.png", "--control-layer", f"{shot}/depth.####.png",
            "-o", "out.####.png", "--focal-point", "1:20,24:70:smooth", "--maximum-blur", "40", "--blur-type", "Fine", "--depth", "16",
            "--report", "report.json", "--existing", "skip", "-q"]


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


def main():
    perch = str(pathlib.Path(sys.argv[1]).resolve())
    words = command(perch, pathlib.Path(sys.argv[2]).resolve() / "shot")
    times = int(sys.argv[3]) if len(sys.argv) > 3 else 50
    with tempfile.TemporaryDirectory() as parent:
        whole = pathlib.Path(parent, "whole")
        whole.mkdir()
        begin = time.monotonic()
        subprocess.run(words, cwd=whole, check=True)
        length = time.monotonic() - begin
        expected = result_of(whole)
        attempts = killed = 0
        while killed < times:
            folder = pathlib.Path(parent, f"killed{attempts}")
            folder.mkdir()
            attempts += 1
            job = subprocess.Popen(words, cwd=folder, stderr=subprocess.DEVNULL)
            time.sleep(random.uniform(0, length))
            job.send_signal(signal.SIGKILL)
            if job.wait() != -signal.SIGKILL:
                continue  # it had come to its end
            killed += 1
            time.sleep(0.05)  # the effect's process ends with its parent
            files = len(list(folder.glob("out.*")))
            known = frames_done(folder)
            subprocess.run(words, cwd=folder, check=True)
            if result_of(folder) != expected:
                sys.exit(f"kill {killed}: after {files} files the resumed run differs")
            print(f"kill {killed}: {files} files, {known} of them in the report; resumed to the same", flush=True)
        print(f"{killed} of {attempts} runs were killed before their end; all came to the files and the report of the whole one")


main()
