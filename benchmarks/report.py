#!/usr/bin/env -S python3 -B
"""Prints what bench.py measured as one table.

    report.py benchmarks.json first-frame.json

Times are milliseconds: medians, with the fastest repetition beside them where a column says so. "traffic" is
the time that the machine's own copy takes for the bytes that a case cannot but move (tables written and read
once, pictures and map read or written once), and "x traffic" the median as a multiple of it. Small tables stay
in the cache, so that a multiple can be below one.
"""

import json
import statistics
import sys
from pathlib import Path

LEVELS = ("scalar", "baseline", "avx2", "avx512")
TIMING_SUFFIXES = ("/process_time/real_time", "/manual_time")


class Case:
    """The repetitions of one benchmark."""

    def __init__(self):
        self.times = []
        self.bandwidth = []  # bytes per second
        self.traffic = None  # bytes

    @property
    def median(self):
        return statistics.median(self.times)

    @property
    def fastest(self):
        return min(self.times)


def load_cases(path):
    cases = {}
    for run in json.loads(Path(path).read_text())["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        if run.get("error_occurred"):
            raise SystemExit(f"report: {run['name']}: {run['error_message']}")
        name = run["run_name"]
        for suffix in TIMING_SUFFIXES:
            name = name.removesuffix(suffix)
        case = cases.setdefault(name, Case())
        case.times.append(run["real_time"])
        case.traffic = run.get("traffic")
        if "bytes_per_second" in run:
            case.bandwidth.append(run["bytes_per_second"])
    return cases


def below(cases, *prefix):
    """The cases whose names begin so, each with the rest of its path."""
    found = {}
    for name, case in cases.items():
        path = name.split("/")
        if tuple(path[: len(prefix)]) == prefix:
            found[tuple(path[len(prefix) :])] = case
    return found


def milliseconds(case):
    return "-" if case is None else f"{case.median:.2f}"


def ratio(slow, fast):
    return "-" if slow is None or fast is None else f"{slow.median / fast.median:.2f}"


def best_level(by_level):
    """The case of the highest level that ran."""
    return next((by_level[level] for level in reversed(LEVELS) if level in by_level), None)


class Table:
    """Lines under one heading, printed with columns as wide as they need."""

    def __init__(self, title, *heads):
        self.title = title
        self.lines = [heads]

    def add(self, *cells):
        self.lines.append(tuple(str(cell) for cell in cells))

    def print(self):
        if len(self.lines) == 1:
            return
        widths = [max(len(line[i]) for line in self.lines) for i in range(len(self.lines[0]))]
        print(f"\n{self.title}")
        for line in self.lines:
            first, *others = zip(line, widths)
            cells = [first[0].ljust(first[1])] + [cell.rjust(width) for cell, width in others]
            print("  " + "  ".join(cells).rstrip())


class Report:
    def __init__(self, cases, first_frames):
        self.cases = cases
        self.first_frames = first_frames
        copies = [case for name, case in cases.items() if name.startswith("Copy/")]
        if not copies:
            raise SystemExit("report: the run has no Copy benchmark to hold traffic against")
        self.bandwidth = statistics.median(copies[-1].bandwidth)

    def traffic(self, case):
        """Milliseconds that the case's unavoidable bytes take."""
        return 1e3 * case.traffic / self.bandwidth

    def traffic_columns(self, case):
        if case is None or not case.traffic:
            return "-", "-"
        floor = self.traffic(case)
        return f"{floor:.2f}", f"{case.median / floor:.2f}"

    def print(self):
        self.print_memory()
        self.print_sizes()
        self.print_kinds()
        self.print_kernels()
        self.print_passes()
        self.print_first_frames()
        self.print_fine_over_coarse()
        self.print_ratios()
        self.print_all_frames()

    def print_memory(self):
        table = Table("Memory, one thread", "", "GB/s", "ms")
        for operation in ("Write", "Copy", "FirstTouch"):
            for path, case in below(self.cases, operation).items():
                bandwidth = f"{statistics.median(case.bandwidth) / 1e9:.1f}"
                table.add(f"{operation} {path[0]}", bandwidth, milliseconds(case))
        table.print()

    def print_sizes(self):
        table = Table(
            "Frames by size and radius: 8-bit Coarse, objects, one thread",
            "size, radius", "pipeline", "fastest", "plug-in", "fastest", "traffic", "x traffic",
        )
        for (size, radius, *rest), plugin in below(self.cases, "PluginFrame", "8-bit", "Coarse").items():
            if rest != ["objects", "threads:1"]:
                continue
            frame = self.cases.get(f"Frame/8-bit/Coarse/{size}/{radius}/objects/threads:1/best")
            table.add(
                f"{size} {radius}", milliseconds(frame), "-" if frame is None else f"{frame.fastest:.2f}",
                milliseconds(plugin), f"{plugin.fastest:.2f}", *self.traffic_columns(plugin),
            )
        table.print()

    def print_kinds(self):
        table = Table(
            "Frames by kind: 1920x1080, radius 50",
            "depth, type, matte", "scalar", "best", "x faster", "2 threads", "plug-in", "2 threads", "x traffic",
        )
        for depth, blur, matte in self.kinds("Frame"):
            case = f"{depth}/{blur}/1920x1080/radius:50/{matte}"
            scalar = self.cases.get(f"Frame/{case}/threads:1/scalar")
            best = self.cases.get(f"Frame/{case}/threads:1/best")
            plugin = self.cases.get(f"PluginFrame/{case}/threads:1")
            table.add(
                f"{depth} {blur} {matte}", milliseconds(scalar), milliseconds(best), ratio(scalar, best),
                milliseconds(self.cases.get(f"Frame/{case}/threads:2/best")), milliseconds(plugin),
                milliseconds(self.cases.get(f"PluginFrame/{case}/threads:2")), self.traffic_columns(plugin)[1],
            )
        table.print()

    def kinds(self, family):
        """Depth, type and matte of the cases at 1920x1080 and radius 50, each once."""
        return dict.fromkeys(
            (path[0], path[1], path[4])
            for path in below(self.cases, family)
            if path[2:4] == ("1920x1080", "radius:50") and len(path) > 5
        )

    def print_kernels(self):
        table = Table(
            "Kernels by level: 1920x1080, radius 50, one thread", "kernel", *LEVELS, "x faster", "x traffic"
        )
        for family in ("Tables", "Rows"):
            kernels = {}
            for path, case in below(self.cases, family).items():
                if path[2:4] == ("1920x1080", "radius:50"):
                    kernels.setdefault((path[0], path[1], *path[4:-1]), {})[path[-1]] = case
            for kernel, levels in kernels.items():
                self.add_levels(table, " ".join((family, *kernel)), levels)
        blends = {}
        for (depth, size, level), case in below(self.cases, "BlendRows").items():
            if size == "1920x1080":
                blends.setdefault(depth, {})[level] = case
        for depth, levels in blends.items():
            self.add_levels(table, f"BlendRows {depth}", levels)
        table.print()

    def print_passes(self):
        title = "Passes beside the blur: 1920x1080, one thread; frames are Coarse, objects"
        table = Table(title, "pass", "ms", "fastest", "x traffic", "% of frame")
        for name, case in self.cases.items():
            operation, *path = name.split("/")
            if len(path) != 2 or path[1] != "1920x1080":
                continue
            frame = self.cases.get(f"Frame/{path[0]}/Coarse/1920x1080/radius:50/objects/threads:1/best")
            share = "-" if frame is None else f"{100 * case.median / frame.median:.1f}"
            table.add(
                f"{operation} {path[0]}", milliseconds(case), f"{case.fastest:.2f}",
                self.traffic_columns(case)[1], share,
            )
        table.print()

    def add_levels(self, table, name, levels):
        best = best_level(levels)
        table.add(
            name, *(milliseconds(levels.get(level)) for level in LEVELS), ratio(levels.get("scalar"), best),
            self.traffic_columns(best)[1],
        )

    def print_first_frames(self):
        if not self.first_frames:
            return
        table = Table(
            "Frames of a fresh process: 3840x2160, radius 50, objects, one thread",
            "depth, type", *(str(i) for i in range(1, 11)), "first / tenth",
        )
        for kind, runs in self.first_frames.items():
            frames = [statistics.median(times) for times in zip(*runs)]
            table.add(kind.replace("/", " "), *(f"{time:.1f}" for time in frames), f"{frames[0] / frames[-1]:.2f}")
        table.print()

    def print_fine_over_coarse(self):
        """Of medians of one run, so that a busy machine disturbs them less than the times."""
        mattes = ("ramp", "objects", "noise")
        table = Table("Fine over Coarse: 1920x1080, radius 50, one thread, through the plug-in", "depth", *mattes)
        for depth in ("8-bit", "16-bit"):
            case = f"PluginFrame/{depth}/%s/1920x1080/radius:50/%s/threads:1"
            ratios = [
                ratio(self.cases.get(case % ("Fine", matte)), self.cases.get(case % ("Coarse", matte)))
                for matte in mattes
            ]
            if set(ratios) != {"-"}:
                table.add(depth, *ratios)
        table.print()

    def print_ratios(self):
        table = Table("Radius 200 over radius 5: 8-bit Coarse, objects, one thread", "size", "pipeline", "plug-in")
        for size in dict.fromkeys(path[0] for path in below(self.cases, "PluginFrame", "8-bit", "Coarse")):
            case = f"8-bit/Coarse/{size}/radius:%d/objects/threads:1"
            pipeline = (self.cases.get(f"Frame/{case % radius}/best") for radius in (200, 5))
            plugin = (self.cases.get(f"PluginFrame/{case % radius}") for radius in (200, 5))
            table.add(size, ratio(*pipeline), ratio(*plugin))
        table.print()

    def print_all_frames(self):
        """Of runs with every kind of frame at more than one size."""
        frames = {}
        for (depth, blur, size, radius, matte, threads), case in below(self.cases, "PluginFrame").items():
            frames.setdefault((depth, blur, size, radius), {})[matte, threads] = case
        columns = [(matte, f"threads:{count}") for count in (1, 2) for matte in ("ramp", "objects", "noise")]
        complete = {kind: cases for kind, cases in frames.items() if all(column in cases for column in columns)}
        if len({size for _, _, size, _ in complete}) < 2:
            return
        heads = [f"{matte}, {threads.removeprefix('threads:')} thr." for matte, threads in columns]
        table = Table("Every kind of frame through the plug-in", "depth, type, size, radius", *heads)
        for kind, cases in complete.items():
            table.add(" ".join(kind), *(milliseconds(cases[column]) for column in columns))
        table.print()


def print_report(benchmarks, first_frames):
    Report(load_cases(benchmarks), json.loads(Path(first_frames).read_text())).print()


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: report.py benchmarks.json first-frame.json")
    print_report(sys.argv[1], sys.argv[2])
