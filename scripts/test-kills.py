#!/usr/bin/env python3
"""Ends perch at random moments of a job, and looks at what it leaves.

    scripts/test-kills.py build/release/bin/perch [ROUNDS, 50 without]

Each round starts a sequence, ends it by SIGKILL, SIGTERM or SIGINT, and runs it again to its end. Under a final name there is a
whole picture or none; after the second run no temporary file is left; sources keep their bytes. Then every way to name a source
as an output, through links and other spellings, is refused.
"""
import hashlib
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SIGNALS = (signal.SIGKILL, signal.SIGTERM, signal.SIGINT)
FRAMES = 6


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


def command(perch, folder, output):
    return [perch, "render", "--input", os.path.join(folder, "in.#.png"), "--output", output,
            "--control-layer", "none", "--threads", "2"]


def end_at_some_moment(perch, folder, kind, chance, longest):
    """Returns the exit status of a job that was sent the signal."""
    output = os.path.join(folder, "out.#.png")
    job = subprocess.Popen(command(perch, folder, output), stderr=subprocess.DEVNULL)
    time.sleep(chance.uniform(0, longest))
    job.send_signal(kind)
    return job.wait(timeout=60)


def complaints_of_round(perch, folder, kind, chance, sources, whole, longest):
    complaints = []
    status = end_at_some_moment(perch, folder, kind, chance, longest)
    if status not in (0, -kind, 128 + kind):
        complaints.append(f"{kind.name}: exit code {status}")
    for name, wanted in whole.items():
        path = os.path.join(folder, name)
        if os.path.exists(path) and digest(path) != wanted:
            complaints.append(f"{kind.name}: {name} is a part of a picture")
    again = subprocess.run(command(perch, folder, os.path.join(folder, "out.#.png")), stderr=subprocess.PIPE)
    if again.returncode != 0:
        complaints.append(f"{kind.name}: the next run failed: {again.stderr.decode()}")
    left = set(os.listdir(folder)) - set(sources) - set(whole)
    if left:
        complaints.append(f"{kind.name}: left behind after the next run: {sorted(left)}")
    for name, wanted in whole.items():
        path = os.path.join(folder, name)
        if not os.path.exists(path) or digest(path) != wanted:
            complaints.append(f"{kind.name}: {name} is not as it should be after the next run")
        else:
            os.remove(path)
    return complaints


def link_arrangements(folder):
    """Names of outputs, each of which is the file in.1.png, in a way of its own."""
    source = os.path.join(folder, "in.1.png")
    path = lambda name: os.path.join(folder, name)
    os.mkdir(path("deep"))
    os.symlink(source, path("absolute.png"))
    os.symlink("in.1.png", path("relative.png"))
    os.symlink("relative.png", path("chain.png"))
    os.symlink("chain.png", path("longer-chain.png"))
    os.link(source, path("hard.png"))
    os.symlink("hard.png", path("to-hard.png"))
    os.symlink(".", path("here"))
    os.symlink(folder, path("deep/up"))
    os.symlink("../in.1.png", path("deep/over.png"))
    os.link(source, path("deep/hard.png"))
    return [source, path("./in.1.png"), path("deep/../in.1.png"), path("absolute.png"), path("relative.png"), path("chain.png"),
            path("longer-chain.png"), path("hard.png"), path("to-hard.png"), path("here/in.1.png"), path("here/here/in.1.png"),
            path("deep/up/in.1.png"), path("deep/over.png"), path("deep/hard.png"), path("deep/up/deep/up/hard.png"),
            os.path.relpath(source)]


def complaints_of_links(perch, folder, wanted):
    complaints = []
    source = os.path.join(folder, "in.1.png")
    names = link_arrangements(folder)
    for name in names:
        run = subprocess.run([perch, "render", "-i", source, "-o", name, "--control-layer", "none"], stderr=subprocess.PIPE)
        if run.returncode != 2:
            complaints.append(f"{name}: exit code {run.returncode}")
        if digest(source) != wanted:
            complaints.append(f"{name}: the source was changed")
    print(f"{len(names)} names of the source as an output tried")
    return complaints


def main():
    perch = os.path.abspath(sys.argv[1])
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 50
    samples = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "samples", "shot")
    chance = random.Random(1)
    folder = tempfile.mkdtemp()
    for frame in range(1, FRAMES + 1):
        shutil.copy(os.path.join(samples, f"beauty.{frame:04d}.png"), os.path.join(folder, f"in.{frame}.png"))
    sources = {name: digest(os.path.join(folder, name)) for name in os.listdir(folder)}
    start = time.monotonic()
    subprocess.run(command(perch, folder, os.path.join(folder, "out.#.png")) + ["--quiet"], check=True)
    longest = time.monotonic() - start
    whole = {name: digest(os.path.join(folder, name)) for name in os.listdir(folder) if name not in sources}
    for name in whole:
        os.remove(os.path.join(folder, name))
    complaints = []
    for index in range(rounds):
        for kind in SIGNALS:
            complaints += complaints_of_round(perch, folder, kind, chance, sources, whole, longest)
    print(f"{rounds} rounds of {', '.join(kind.name for kind in SIGNALS)} within {longest:.2f} s")
    complaints += complaints_of_links(perch, folder, sources["in.1.png"])
    for name, wanted in sources.items():
        if digest(os.path.join(folder, name)) != wanted:
            complaints.append(f"the source {name} was changed")
    shutil.rmtree(folder)
    print("\n".join(complaints) or "nothing was lost and nothing left")
    sys.exit(1 if complaints else 0)


main()
