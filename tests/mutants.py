#!/usr/bin/env python3
"""./test --mutants [WORD...]: puts one fault after the other into copies of the project and has the
tests meet it. Prints the survivors: faults that no test notices. WORD picks the rows whose file,
fault or meaning has it. The table is tests/mutants.toml; the copies are kept in build/mutants, and
so is what was noticed (noticed.json): a run goes on where the last one ended, as long as a row and
its file stay as they are. Without that file all of them are met again."""

import atexit
import concurrent.futures
import hashlib
import json
import os
import pathlib
import queue
import re
import subprocess
import sys
import threading
import time
import tomllib

PROJECT = pathlib.Path(__file__).resolve().parent.parent
COPIES = PROJECT / "build/mutants"
NOTICED = COPIES / "noticed.json"
# From the quickest to the slowest. What a row names comes first.
TESTS = ["reports", "thread", "diagnostics_inspector", "diagnostics_log", "view", "chain", "loading",
         "diagnostics_trace", "published", "host_reactions", "races", "waiting", "commands",
         "quirks", "properties", "client_rules", "badMedia", "media", "exit", "lifecycle"]


class BuildFailed(Exception):
    pass


class Copy:
    """A copy of the project with a display and a /tmp of its own."""

    def __init__(self, number):
        folder = COPIES / str(number)
        self.source, self.build_folder, self.tmp = (folder / f for f in ("source", "build", "tmp"))
        self.tmp.mkdir(parents=True, exist_ok=True)
        self.tmp.chmod(0o700)  # it is the runtime folder too
        media = self.tmp / "m"  # a record has room for 80 bytes of URI
        media.unlink(missing_ok=True)
        media.symlink_to(PROJECT / "build/media")
        listed = subprocess.run(["git", "ls-files", "-z"], cwd=PROJECT, check=True,
                                capture_output=True)
        for name in filter(None, listed.stdout.decode().split("\0")):
            here, there = PROJECT / name, self.source / name
            if not here.is_file() or there.is_file() and here.read_bytes() == there.read_bytes():
                continue
            there.parent.mkdir(parents=True, exist_ok=True)
            there.write_bytes(here.read_bytes())
            there.chmod(here.stat().st_mode)
        subprocess.run(["cmake", "-S", self.source, "-B", self.build_folder, "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=None", "-DMEDIAPLAYER_HOSTS=OFF",
                        "-DCMAKE_CXX_FLAGS=-O1"], check=True, stdout=subprocess.DEVNULL)
        self.screen = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1280x720x24"],
                                       stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        atexit.register(self.screen.terminate)
        self.environment = os.environ | {
            "DISPLAY": ":" + self.screen.stdout.readline().decode().strip(),
            "XDG_RUNTIME_DIR": "/tmp", "MEDIA_DIR": "/tmp/m", "TMPDIR": "/tmp"}
        self.environment.pop("XAUTHORITY", None)
        self.build(*TESTS)

    def build(self, *tests):
        ran = subprocess.run(["cmake", "--build", self.build_folder, "-j1", "--target"]
                             + [f"{test}_test" for test in tests],
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if ran.returncode != 0:
            raise BuildFailed(ran.stdout.decode(errors="replace")[-4000:])

    def complaint(self, test, seconds):
        """The first that a test says against the copy, None for nothing. Runs it as CTest does,
        where the copy's scene files are the installed ones."""
        command = ('. cmake/steps.sh && mount --bind "$0/qml" "$sceneDir"'
                   ' && mount --bind "$1" /tmp && exec'
                   ' ctest --test-dir "$2" --verbose --no-tests=error -R "^$3(_test)?\\$"')
        running = subprocess.Popen(["timeout", f"{seconds:.0f}", "unshare", "-m", "-p", "--fork",
                                    "--kill-child", "--mount-proc", "bash", "-c", command,
                                    self.source, self.tmp, self.build_folder, test],
                                   env=self.environment, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True, errors="replace")
        last = ""
        for line in running.stdout:
            if said := re.search(r"FAIL! *: (.*)|QFATAL *: (.*)|(Unknown message.*)", line):
                running.terminate()
                running.wait()
                return next(filter(None, said.groups()))
            if said := re.search(r"\*\*\*(.*)", line):
                last = said[1]
        status = running.wait()
        return f"not over in {seconds:.0f} s" if status == 124 else last if status else None

    def meet(self, row, limits):
        """The test that notices the fault and what it says, or None."""
        path = self.source / row["file"]
        whole = path.read_text()
        try:
            path.write_text(whole.replace(row["before"], row["after"]))
            named = row.get("tests", [])
            for test in named + [name for name in limits if name not in named]:
                self.build(test)
                said = self.complaint(test, limits[test])
                if said:
                    return test, said
            return None
        except BuildFailed:
            return "the compiler", "such a row is no fault: it needs another `after`"
        finally:
            path.write_text(whole)


def key(what, *parts):
    return what + " " + hashlib.sha256("\0".join(parts).encode()).hexdigest()[:16]


class Memory(dict):
    """What earlier runs have found: who notices a row, and how long a test takes without a fault."""

    def __init__(self):
        super().__init__(json.loads(NOTICED.read_text()) if NOTICED.is_file() else {})
        self.lock = threading.Lock()

    def note(self, what, value):
        with self.lock:
            self[what] = value
            NOTICED.write_text(json.dumps(self, indent=1))


def share(copies, function, jobs):
    """function(copy, job) of all jobs, each in the copy that is free."""
    free = queue.SimpleQueue()
    for copy in copies:
        free.put(copy)

    def one(job):
        copy = free.get()
        try:
            return function(copy, job)
        finally:
            free.put(copy)

    with concurrent.futures.ThreadPoolExecutor(len(copies)) as pool:
        return list(pool.map(one, jobs))


def meet_all(rows, memory):
    """The rows that no test notices."""
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        copies = list(pool.map(Copy, range(2)))

    def limit(copy, test):
        """How long a test may take with a fault, which may hang it; generous, as a loaded machine
        is no hang. One that fails without a fault would notice nothing."""
        test_key = key(test, (copy.source / f"tests/{test}_test.cpp").read_text())
        if test_key not in memory:
            began = time.monotonic()
            said = copy.complaint(test, 900)
            if said:
                raise SystemExit(f"{test}_test fails without any fault: {said}")
            memory.note(test_key, round(time.monotonic() - began, 1))
            print(f"{test}_test takes {memory[test_key]} s without a fault", flush=True)
        return 90 + 3 * memory[test_key]

    def meet(copy, row):
        found = copy.meet(row, limits)
        if found:
            memory.note(row_key(row), found)
        print(f"{row['file']}: {row['fault']}: {': '.join(found or ['SURVIVES'])}", flush=True)
        return not found

    limits = dict(zip(TESTS, share(copies, limit, TESTS)))
    return [row for row, survives in zip(rows, share(copies, meet, rows)) if survives]


def row_key(row):
    return key(row["file"], row["before"], row["after"], (PROJECT / row["file"]).read_text())


def main():
    rows = tomllib.loads((PROJECT / "tests/mutants.toml").read_text())["mutant"]
    rows = [row for row in rows
            if all(word in " ".join(map(str, row.values())) for word in sys.argv[1:])]
    for row in rows:
        if (PROJECT / row["file"]).read_text().count(row["before"]) != 1:
            sys.exit(f"{row['file']} does not hold once: {row['before']}")
    memory = Memory()
    left = [row for row in rows if row_key(row) not in memory]
    left.sort(key=lambda row: "why" in row)  # a survivor takes longest
    survivors = meet_all(left, memory) if left else []
    for row in survivors:
        print(f"Survivor: {row['file']}: {row['before'].strip()} -> {row['after'].strip()}:"
              f" {row['fault']}" + (f" (not worth a test: {row['why']})" if "why" in row else ""))
    reasons = sum("why" in row for row in survivors)
    print(f"{len(rows)} faults: {len(rows) - len(survivors)} noticed, {reasons} not worth a test,"
          f" {len(survivors) - reasons} survive")
    return len(survivors) > reasons


os.chdir(PROJECT)
sys.exit(main())
