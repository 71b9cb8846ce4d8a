#!/usr/bin/env python3
"""Moves the controls of perch view at random, and looks at what is shown and what it takes.

    scripts/test-moves.py build/release/bin/perch [SECONDS, 600 without] [SEED, 1 without]

Turns of moves come from several connections at once, with pictures that overtake each other, read-outs, presets, requests that
are not understood and connections that break off. After each turn the state is the one of the greatest serial, and its picture is the
one of its values: asked for again as a newer state, it has the same bytes. Once a minute, with nobody connected, memory and
descriptors of the server and its session are counted; after the first minute neither grows.
"""
import concurrent.futures
import http.client
import json
import os
import random
import signal
import socket
import subprocess
import sys
import threading
import time
import urllib.parse

SOURCES = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SHOT = os.path.join(SOURCES, "samples", "shot")
CONNECTIONS = 6
PATIENCE = 120  # seconds: what takes longer hangs
MEMORY_SLACK = 32 << 20  # bytes by which what malloc keeps may differ from minute to minute


class View:
    """perch view at work."""

    def __init__(self, perch):
        self.process = subprocess.Popen(
            [perch, "view", "--no-open", "--max-memory", "256", "--input", os.path.join(SHOT, "beauty.####.png"),
             "--control-layer", os.path.join(SHOT, "depth.####.png")],
            stdout=subprocess.PIPE, text=True)
        address = urllib.parse.urlsplit(self.process.stdout.readline().strip())
        self.port = address.port
        token = urllib.parse.parse_qs(address.query)["token"][0]
        self.cookie = f"perch-view-{self.port}={token}"
        self.mine = threading.local()
        self.connections = []

    def headers(self, body):
        return {"Cookie": self.cookie, "Content-Length": str(len(body))}

    def ask(self, method, path, body=""):
        """Status, headers and body of the answer."""
        for attempt in (1, 2):  # a connection that was idle may have been closed
            connection = getattr(self.mine, "connection", None)
            if connection is None:
                connection = self.mine.connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)
                self.connections.append(connection)
            try:
                connection.request(method, path, body, self.headers(body))
                answer = connection.getresponse()
                return answer.status, answer.headers, answer.read()
            except (http.client.RemoteDisconnected, BrokenPipeError, ConnectionResetError):
                connection.close()
                if attempt == 2:
                    raise

    def break_off(self, text):
        with socket.create_connection(("127.0.0.1", self.port)) as connection:
            connection.sendall(text.encode())

    def close_connections(self):
        for connection in self.connections:
            connection.close()

    def processes(self):
        """The server, its session and the worker."""
        found = [self.process.pid]
        for parent in found:
            with open(f"/proc/{parent}/task/{parent}/children", encoding="ascii") as file:
                found += [int(child) for child in file.read().split()]
        return found

    def usage(self):
        """Resident bytes and open descriptors of all of them."""
        memory = descriptors = 0
        for process in self.processes():
            with open(f"/proc/{process}/statm", encoding="ascii") as file:
                memory += int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")
            descriptors += len(os.listdir(f"/proc/{process}/fd"))
        return memory, descriptors


def random_value(parameter, frames, chance, with_keys=True):
    kind = parameter["type"]
    if with_keys and kind == "slider" and chance.random() < 0.1:
        first, last = sorted(chance.sample(frames, 2))
        return [{"frame": frame, "value": random_value(parameter, frames, chance, False),
                 "key": chance.choice(("hold", "linear", "smooth"))} for frame in (first, last)]
    if kind == "slider":
        return round(chance.uniform(parameter["sliderMinimum"], parameter["sliderMaximum"]), parameter["precision"])
    if kind == "checkbox":
        return chance.random() < 0.5
    if kind == "popup":
        return chance.choice(parameter["items"])
    return parameter["default"]


def random_state(session, serial, chance):
    frames = session["picture"]["frames"]
    known = [parameter for parameter in session["parameters"] if "key" in parameter]
    moved = chance.sample(known, chance.randint(1, len(known)))
    return {"serial": serial, "frame": chance.choice(frames),
            "parameters": {parameter["key"]: random_value(parameter, frames, chance) for parameter in moved}}


def is_shown(wanted, state):
    """Whether the state that is told has the values that were set."""
    def same(a, b):
        return abs(a - b) < 1e-9 if isinstance(a, float) else a == b

    for name, value in wanted["parameters"].items():
        if not isinstance(value, list):
            if not same(value, state["parameters"][name]):
                return False
        elif value[0]["value"] != value[1]["value"] and state["keys"].get(name) != value:
            return False
    return state["frame"] == wanted["frame"] and state["serial"] == wanted["serial"]


class Moves:
    def __init__(self, view, seed):
        self.view = view
        self.chance = random.Random(seed)
        self.session = json.loads(view.ask("GET", "/api/session")[2])
        self.serial = 0
        self.pictures = self.overtaken = self.turns = self.lost = 0
        self.complaints = []
        self.lock = threading.Lock()

    def complain(self, sentence):
        with self.lock:
            self.complaints.append(sentence)

    def expect(self, allowed, method, path, body=""):
        status, headers, answer = self.view.ask(method, path, body)
        if status not in allowed:
            self.complain(f"{method} {path}: {status} {answer[:200]}")
        return status, headers, answer

    def picture(self, path):
        status = self.expect((200, 409), "GET", path)[0]
        with self.lock:
            self.pictures += status == 200
            self.overtaken += status == 409

    def one_move(self):
        """A task for a connection, chosen here so that the seed decides."""
        chance = self.chance
        deed = chance.choices(("state", "pixel", "histogram", "preset", "nonsense", "break"), (70, 10, 6, 4, 6, 4))[0]
        if deed == "state":
            self.serial += 1
            self.newest = random_state(self.session, self.serial, chance)
            state = json.dumps(self.newest)
            size = chance.choice(("160x90", "320x180", "640x360", "full"))
            kind = chance.choice(("result", "result", "result", "original", "layer", "focus"))
            path = f"/api/picture?serial={self.serial}&size={size}&kind={kind}"

            def move():
                self.expect((200,), "POST", "/api/state", state)
                self.picture(path)
            return move
        if deed == "pixel":
            path = f"/api/pixel?serial={self.serial}&x={chance.randrange(2000)}&y={chance.randrange(1000)}"
            return lambda: self.expect((200, 409, 422), "GET", path)
        if deed == "histogram":
            path = f"/api/histogram?frame={chance.choice(self.session['picture']['frames'])}"
            return lambda: self.expect((200, 404), "GET", path)
        if deed == "preset":
            return lambda: self.expect((200,), "GET", "/api/preset")
        if deed == "nonsense":
            method, path, body, status = chance.choice((
                ("POST", "/api/state", "{}", 422), ("POST", "/api/state", "[" * 5000, 422), ("PUT", "/api/preset", "no", 422),
                ("DELETE", "/api/state", "", 405), ("GET", "/api/nothing", "", 404),
                ("GET", "/api/picture?serial=0x&size=full", "", 422), ("GET", "/api/histogram?frame=99999", "", 422)))
            return lambda: self.expect((status,), method, path, body)
        text = (f"GET /api/picture?serial={self.serial}&size=full HTTP/1.1\r\nHost: 127.0.0.1:{self.view.port}\r\n"
                f"Cookie: {self.view.cookie}\r\n\r\n")
        part = text[:chance.choice((0, 10, len(text)))]
        return lambda: self.view.break_off(part)

    def settle(self):
        """The newest state is the one that is told, and its picture that of its values."""
        self.turns += 1
        if self.serial == 0:
            return
        state = json.loads(self.expect((200,), "GET", "/api/state")[2])
        if not is_shown(self.newest, state):
            self.lost += 1
            self.complain(f"lost: {json.dumps(self.newest)} was set, {json.dumps(state)} is there")
        shown = self.expect((200,), "GET", f"/api/picture?serial={self.serial}&size=full")
        if shown[1]["X-Serial"] != str(self.serial):
            self.complain(f"the picture of {self.serial} is that of {shown[1]['X-Serial']}")
        self.serial += 1
        self.newest = {**self.newest, "serial": self.serial}
        self.expect((200,), "POST", "/api/state", json.dumps(self.newest))
        again = self.expect((200,), "GET", f"/api/picture?serial={self.serial}&size=full")
        self.pictures += 2
        if again[2] != shown[2]:
            self.complain(f"the picture of {self.serial - 1} is not that of its values: {json.dumps(self.newest)}")

    def run(self, seconds):
        """Returns memory and descriptors at the end of each minute, the first of which begins what is compared."""
        begin = time.monotonic()
        usage = []
        with concurrent.futures.ThreadPoolExecutor(CONNECTIONS) as pool:
            while time.monotonic() - begin < seconds and not self.complaints:
                tasks = [pool.submit(self.one_move()) for _ in range(self.chance.randint(1, 30))]
                for task in tasks:
                    task.result(timeout=PATIENCE)
                self.settle()
                if time.monotonic() - begin >= 60 * (len(usage) + 1):
                    usage.append(self.measure(time.monotonic() - begin))
        return usage

    def measure(self, seconds):
        self.view.close_connections()
        time.sleep(1)
        memory, descriptors = self.view.usage()
        print(f"{seconds:4.0f} s: {memory / 2**20:.0f} MiB, {descriptors} descriptors, {self.pictures} pictures, "
              f"{self.overtaken} overtaken, {self.turns} turns, {self.lost} lost updates", flush=True)
        return memory, descriptors


def growth(usage):
    complaints = []
    if len(usage) > 1:
        (first_memory, first_descriptors), (last_memory, last_descriptors) = usage[0], usage[-1]
        if last_memory > first_memory + MEMORY_SLACK:
            complaints.append(f"memory grew from {first_memory} to {last_memory} bytes")
        if last_descriptors > first_descriptors:
            complaints.append(f"descriptors grew from {first_descriptors} to {last_descriptors}")
    return complaints


def end(view):
    """Ctrl-C ends all of it."""
    processes = view.processes()
    view.process.send_signal(signal.SIGINT)
    try:
        status = view.process.wait(timeout=PATIENCE)
    except subprocess.TimeoutExpired:
        view.process.kill()
        return ["SIGINT did not end it"]
    complaints = [] if status == 128 + signal.SIGINT else [f"exit code {status}"]
    deadline = time.monotonic() + PATIENCE
    while any(os.path.exists(f"/proc/{process}") for process in processes):
        if time.monotonic() > deadline:
            return complaints + ["a process of it is left"]
        time.sleep(0.01)
    return complaints


def main():
    perch = sys.argv[1]
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 600
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    view = View(perch)
    complaints = []
    try:
        moves = Moves(view, seed)
        usage = moves.run(seconds)
        moves.measure(seconds)
        complaints = moves.complaints + growth(usage)
    finally:
        complaints += end(view)
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
