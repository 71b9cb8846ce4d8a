"""The programs that can blur a picture by a matte, and how one frame of each is timed.

Every program runs on one thread. What it does beside the blur (start, decode, encode) is measured by a run
without the blur, or by runs of different length, and subtracted.
"""

import os
import shutil
import statistics
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Job:
    width: int
    height: int
    radius: int
    scene: Path  # folder of the pictures that write-scene has written
    runs: int  # of which the median counts
    limit: float  # seconds that one run may take; a process of many runs, ten times as long

    @property
    def deviation(self):
        """Of the Gaussian that spreads as much as a box of the radius."""
        return self.radius / 3**0.5


class TooSlow(Exception):
    """A run was ended at the limit."""


def seconds_of(command, limit, **environment):
    start = time.perf_counter()
    try:
        subprocess.run(
            [str(word) for word in command], check=True, timeout=limit, env=os.environ | environment,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
        )
    except subprocess.TimeoutExpired as error:
        raise TooSlow from error
    return time.perf_counter() - start


def median_seconds(job, command, **environment):
    return statistics.median(seconds_of(command, job.limit, **environment) for _ in range(job.runs))


class Ffmpeg:
    # The largest radius that comes out, in units of max_r: a white matte spreads an edge that far.
    PIXELS_PER_UNIT = 4
    # Frames of the two runs; both have the start and the first frame's allocations.
    SHORT, LONG = 2, 6

    def __init__(self, depth):
        self.depth = depth
        self.name = f"ffmpeg varblur, {depth}-bit"
        self.note = (
            "box mean, two whole radii mixed; the window is cut at the picture's edge; four planes, each with its "
            "own sums; colours not premultiplied, so that transparent pixels bleed; radii in steps of four pixels"
        )

    def is_installed(self):
        if shutil.which("ffmpeg") is None:
            return False
        command = ["ffmpeg", "-v", "error", "-filters"]
        filters = subprocess.run(command, capture_output=True, text=True, check=True)
        return " varblur " in filters.stdout

    def milliseconds(self, job):
        planes = "gbrap" if self.depth == 8 else "gbrap16le"
        graph = (
            f"[0]format={planes},loop=-1:1[a];[1]format={planes},loop=-1:1[b];"
            f"[a][b]varblur=min_r=0:max_r={max(1, round(job.radius / self.PIXELS_PER_UNIT))}"
        )
        command = [
            "ffmpeg", "-v", "error", "-nostdin", "-threads", "1", "-filter_complex_threads", "1",
            "-i", job.scene / f"beauty-{self.depth}.png", "-i", job.scene / f"matte-{self.depth}.png",
            "-filter_complex", graph, "-f", "null",
        ]
        short, long = (
            median_seconds(job, [*command, "-frames:v", frames, "-"]) for frames in (self.SHORT, self.LONG)
        )
        return 1e3 * (long - short) / (self.LONG - self.SHORT)


class Gegl:
    depth = 16
    name = "GEGL variable-blur, float"
    note = (
        "mixes Gaussian-blurred copies of the whole picture by the matte; 32-bit float in linear light, "
        "premultiplied; standard deviation of the box's spread (radius / 1.73)"
    )
    # No other processor, and memory for all tiles, so that none goes to the swap folder.
    ENVIRONMENT = {"GEGL_THREADS": "1", "GEGL_USE_OPENCL": "no", "GEGL_CACHE_SIZE": "8192"}

    def is_installed(self):
        if shutil.which("gegl") is None:
            return False
        listing = subprocess.run(["gegl", "--list-all"], capture_output=True, check=True)
        return b"gegl:variable-blur" in listing.stdout.split()

    def milliseconds(self, job):
        buffers = {name: job.scene / f"{name}.gegl" for name in ("beauty", "matte", "blurred")}
        for name in ("beauty", "matte"):
            self.seconds(job, job.scene / f"{name}-16.png", "-o", buffers[name], "--", "gegl:nop")
        load = ["--", "gegl:gegl-buffer-load", f"path={buffers['beauty']}"]
        blur = [
            "gegl:variable-blur", "aux=[", "gegl:gegl-buffer-load", f"path={buffers['matte']}", "]",
            f"radius={job.deviation:.3f}",
        ]
        save = ["gegl:gegl-buffer-save", f"path={buffers['blurred']}"]
        return 1e3 * (self.seconds(job, *load, *blur, *save) - self.seconds(job, *load, *save))

    def seconds(self, job, *arguments):
        return median_seconds(job, ["gegl", *arguments], GEGL_SWAP=str(job.scene), **self.ENVIRONMENT)


class ImageMagick:
    depth = 16
    name = "ImageMagick -compose blur, 16-bit"
    note = (
        "resamples every pixel through a Gaussian of its own size, so that the cost grows with the radius; "
        "premultiplied; standard deviation of the box's spread (radius / 1.73)"
    )
    # Debian's name first: another program may be called convert.
    PROGRAMS = ("convert-im6.q16", "magick", "convert")

    def __init__(self):
        self.program = next((name for name in self.PROGRAMS if self.is_imagemagick(name)), None)

    @staticmethod
    def is_imagemagick(name):
        if shutil.which(name) is None:
            return False
        version = subprocess.run([name, "-version"], capture_output=True, text=True)
        return "ImageMagick" in version.stdout

    def is_installed(self):
        return self.program is not None

    def milliseconds(self, job):
        read = [
            self.program, "-limit", "thread", "1", job.scene / "beauty-16.png", job.scene / "matte-16.png",
        ]
        blur = ["-compose", "blur", "-define", f"compose:args={job.deviation:.3f}", "-composite"]
        return 1e3 * (median_seconds(job, [*read, *blur, "null:"]) - median_seconds(job, [*read, "null:"]))


class OpenCv:
    def __init__(self, depth, programs):
        self.depth = depth
        self.program = programs / "integral-blur"
        self.name = f"OpenCV integral, {depth}-bit"
        self.note = (
            "a plain program of our own: box mean, two whole radii mixed; edge replicated; channels interleaved, "
            "sums of 32 bits or double; colours not premultiplied, so that transparent pixels bleed; compiled for "
            "this very processor"
        )

    def is_installed(self):
        return self.program.exists()

    def milliseconds(self, job):
        command = [self.program, job.width, job.height, job.radius, self.depth, 2 * job.runs + 1]
        try:
            run = subprocess.run(
                [str(word) for word in command], check=True, timeout=10 * job.limit, capture_output=True,
                text=True,
            )
        except subprocess.TimeoutExpired as error:
            raise TooSlow from error
        return statistics.median(float(line) for line in run.stdout.split())


def all_tools(programs):
    return [Ffmpeg(8), Ffmpeg(16), OpenCv(8, programs), OpenCv(16, programs), Gegl(), ImageMagick()]
