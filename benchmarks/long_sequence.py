#!/usr/bin/env python3
"""long_sequence.py PERCH SAMPLES [FRAMES]: renders a keyed sequence of so many frames (1000) of 640 x 360 in one process, and then
frames in a worker that stays, asked for one at a time and some ahead. Prints what memory and descriptors do from frame 50 on, what the
sequence takes beside what two processors need at least, and what a frame costs in the worker beside one of the sequence. Exits with 1
beyond a limit."""
import json
import os
import pathlib
import resource
import statistics
import subprocess
import sys
import tempfile
import time

SAMPLES_OF_SHOT = 24
WARM_UP = 50  # frames until memory and descriptors are what they stay
LONGEST_WORKER = 200
AHEAD = 8  # frames that a worker is asked for before it answers, so that it reads one while it renders another
MOST_GROWTH = 1.05
MOST_OF_LEAST = 1.10
MOST_OF_A_FRAME = 1.15


def make_shot(samples, folder, count):
    """Neighbours differ, as the frames of the sample shot do, and the values of the parameters differ at each frame."""
    for frame in range(1, count + 1):
        for kind in ("beauty", "depth"):
            picture = samples / "shot" / f"{kind}.{(frame - 1) % SAMPLES_OF_SHOT + 1:04}.png"
            (folder / f"{kind}.{frame:04}.png").symlink_to(picture)


def command(perch, count, *others):
    return [perch, "render", "-i", "beauty.####.png", "--control-layer", "depth.####.png", "-o", "out.####.png",
            "--focal-point", f"1:20,{count}:70:smooth", "--maximum-blur", "40", "-q", *others]


def worker_of(program):
    """The process that renders: the program is its parent."""
    while program.poll() is None:
        children = pathlib.Path(f"/proc/{program.pid}/task/{program.pid}/children").read_text().split()
        if children:
            return int(children[0])
        time.sleep(0.01)
    sys.exit("perch ended before its first frame")


def memory_of(process):
    fields = dict(line.split(":", 1) for line in pathlib.Path(f"/proc/{process}/status").read_text().splitlines())
    return int(fields["VmRSS"].split()[0]) / 1024 if "VmRSS" in fields else 0  # 0 once it has ended


def descriptors_of(process):
    return len(os.listdir(f"/proc/{process}/fd"))


def processor_time_of(process):
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def busy_time():
    """Of all processors, in whichever program."""
    user, nice, system, _, _, irq, softirq = (int(field) for field in pathlib.Path("/proc/stat").read_text().split()[1:8])
    return (user + nice + system + irq + softirq) / os.sysconf("SC_CLK_TCK")


def children_time():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run_sequence(perch, shot, count, *others):
    """The samples of memory and descriptors, by frame; wall and processor time; the machine's processor time."""
    samples = []
    busy, before, begin = busy_time(), children_time(), time.monotonic()
    program = subprocess.Popen(command(perch, count, "--progress", "json", *others), cwd=shot, stdout=subprocess.PIPE, text=True)
    worker = worker_of(program)
    for line in program.stdout:
        if "frame" in json.loads(line) and program.poll() is None:
            memory = memory_of(worker)
            if memory:
                samples.append((memory, descriptors_of(worker)))
    if program.wait() != 0:
        sys.exit("the sequence failed")
    return samples, time.monotonic() - begin, children_time() - before, busy_time() - busy


def run_worker(perch, shot, count, ahead, *others):
    """Seconds and processor time of a frame in a worker that is asked for so many frames before it has answered for the first."""
    frames = min(count, LONGEST_WORKER)
    program = subprocess.Popen(command(perch, count, "--frames-from", "-", *others), cwd=shot, stdin=subprocess.PIPE,
                               stdout=subprocess.PIPE, text=True)
    asked = 0
    for answered in range(frames):
        while asked < min(answered + 1 + ahead, frames):
            asked += 1
            program.stdin.write(f"{asked}\n")
            program.stdin.flush()
        if json.loads(program.stdout.readline())["state"] != "done":
            sys.exit(f"the worker failed at its frame {answered + 1}")
        if answered == 0:
            worker = worker_of(program)
            begin, processor = time.monotonic(), processor_time_of(worker)
    elapsed, processor = time.monotonic() - begin, processor_time_of(worker) - processor
    program.stdin.close()
    program.stdout.read()
    program.wait()
    return elapsed / (frames - 1), processor / (frames - 1)


def run_frames(perch, shot, count, *others):
    """The same of a frame in a sequence."""
    frames = min(count, LONGEST_WORKER)
    _, wall_of_one, processor_of_one, _ = run_sequence(perch, shot, count, *others, "--frames", "1")
    _, wall, processor, _ = run_sequence(perch, shot, count, *others, "--frames", f"1-{frames}")
    return (wall - wall_of_one) / (frames - 1), (processor - processor_of_one) / (frames - 1)


class Limits:
    def __init__(self):
        self.are_kept = True

    def show(self, what, value, limit):
        self.are_kept = self.are_kept and value <= limit
        print(f"{what}: {value:.3f}, limit {limit}{'' if value <= limit else '  BEYOND IT'}")


def show_growth(samples, limits):
    memory, descriptors = zip(*samples)
    early, late = slice(WARM_UP, 2 * WARM_UP), slice(-WARM_UP, None)
    print(f"resident memory: {memory[WARM_UP - 1]:.1f} MB at frame {WARM_UP}, {memory[-1]:.1f} MB at the end, at most {max(memory):.1f} MB")
    print(f"descriptors: {descriptors[WARM_UP - 1]} at frame {WARM_UP}, {descriptors[-1]} at the end, at most {max(descriptors)}")
    # It rises and falls with the frames in flight.
    limits.show("memory, the median of the last frames by that after the first", statistics.median(memory[late]) / statistics.median(memory[early]),
                MOST_GROWTH)
    limits.show("descriptors, the same", max(descriptors[late]) / max(descriptors[early]), 1)


def show_time(report, wall, processor, busy, limits):
    frames = json.loads(report.read_text())["frames"]
    stages = {stage: sum(frame[f"{stage}Seconds"] for frame in frames) for stage in ("decode", "render", "encode")}
    processors = len(os.sched_getaffinity(0))
    print("stages: " + ", ".join(f"{stage} {seconds:.1f} s" for stage, seconds in stages.items()))
    print(f"wall {wall:.1f} s, processor time {processor:.1f} s on {processors} processors, {busy - processor:.1f} s of other programs")
    least = max(*stages.values(), processor / processors)
    limits.show("wall by the slowest stage or the processors' share", wall / least, MOST_OF_LEAST)


def main():
    perch = str(pathlib.Path(sys.argv[1]).resolve())
    samples = pathlib.Path(sys.argv[2]).resolve()
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 1000
    limits = Limits()
    with tempfile.TemporaryDirectory() as folder:
        shot = pathlib.Path(folder)
        make_shot(samples, shot, count)
        measured, wall, processor, busy = run_sequence(perch, shot, count, "--report", "report.json")
        show_growth(measured, limits)
        show_time(shot / "report.json", wall, processor, busy, limits)
        for threads in ("1", str(len(os.sched_getaffinity(0)))):
            elapsed, processor = run_frames(perch, shot, count, "--threads", threads)
            print(f"--threads {threads}: a frame of a sequence {1000 * elapsed:.1f} ms, {1000 * processor:.1f} ms of processor time")
            for ahead in (0, AHEAD):
                warm, warm_processor = run_worker(perch, shot, count, ahead, "--threads", threads)
                print(f"  of a worker asked {ahead} ahead {1000 * warm:.1f} ms, {1000 * warm_processor:.1f} ms of processor time")
                limits.show("  processor time by that in a sequence", warm_processor / processor, MOST_OF_A_FRAME)
            limits.show("  asked ahead, the one by the other", warm / elapsed, MOST_OF_A_FRAME)
    sys.exit(0 if limits.are_kept else 1)


main()
