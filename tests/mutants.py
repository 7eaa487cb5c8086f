#!/usr/bin/env python3
"""./test --mutants [WORD...]: puts one fault after the other into copies of the project and has the
tests meet it. Prints the survivors: faults that no test notices. WORD picks the rows whose file,
fault or meaning has it. The table is tests/mutants.toml; the copies are kept in build/mutants, and
so is what was noticed (noticed.json): a run goes on where the last one ended, as long as a row and
its file stay as they are. Without that file all of them are met again."""

import concurrent.futures
import hashlib
import json
import os
import pathlib
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
         "quirks", "badMedia", "media", "exit", "lifecycle"]


class Copy:
    """A copy of the project with a display and a /tmp of its own."""

    def __init__(self, number):
        folder = COPIES / str(number)
        self.source, self.build_folder, self.tmp = (folder / f for f in ("source", "build", "tmp"))
        self.tmp.mkdir(parents=True, exist_ok=True)
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
        self.environment = os.environ | {
            "DISPLAY": ":" + self.screen.stdout.readline().decode().strip(),
            "XDG_RUNTIME_DIR": "/tmp", "MEDIA_DIR": "/tmp/m", "TMPDIR": "/tmp"}
        self.environment.pop("XAUTHORITY", None)

    def build(self, *tests):
        return subprocess.run(["cmake", "--build", self.build_folder, "--target"]
                              + [f"{test}_test" for test in tests],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def complaint(self, test, seconds):
        """What a test says against the copy, None for nothing. Runs it as CTest does, where the
        copy's scene files are the installed ones."""
        command = ('mount --bind "$0/qml" /opt/VexadorControl && mount --bind "$4" /tmp && exec'
                   ' ctest --test-dir "$1" --output-on-failure --timeout "$3" -R "^$2\\$"'
                   ' --no-tests=error')
        ran = subprocess.run(["unshare", "-m", "sh", "-c", command, self.source, self.build_folder,
                              f"{test}_test", str(int(seconds)), self.tmp], env=self.environment,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if ran.returncode == 0:
            return None
        said = ran.stdout.decode(errors="replace")
        found = re.search(r"^FAIL! *: (.*)|^(Unknown message.*)|\*\*\*(\w.*?) +\d", said, re.M)
        return next(filter(None, found.groups())) if found else said[-200:]

    def meet(self, row, limits):
        """The test that notices the fault and what it says, or None."""
        path = self.source / row["file"]
        whole = path.read_text()
        try:
            path.write_text(whole.replace(row["before"], row["after"]))
            named = row.get("tests", [])
            for test in named + [name for name in limits if name not in named]:
                if not self.build(test):
                    raise RuntimeError(f"{row['after']} in {row['file']} does not build")
                said = self.complaint(test, limits[test])
                if said:
                    return test, said
            return None
        finally:
            path.write_text(whole)


def key(what, *parts):
    return what + " " + hashlib.sha256("\0".join(parts).encode()).hexdigest()[:16]


def row_key(row):
    return key(row["file"], row["before"], row["after"], (PROJECT / row["file"]).read_text())


def measure(copy, remember, noticed):
    """How long each test may take with a fault, which may hang it. One that fails without a fault
    would notice nothing."""
    limits = {}
    for test in TESTS:
        test_key = key(test, (PROJECT / f"tests/{test}_test.cpp").read_text())
        if test_key not in noticed:
            began = time.monotonic()
            said = copy.complaint(test, 900)
            if said:
                raise RuntimeError(f"{test}_test fails without any fault: {said}")
            remember(test_key, round(time.monotonic() - began, 1))
            print(f"{test}_test: {noticed[test_key]} s without a fault", flush=True)
        limits[test] = 30 + 3 * noticed[test_key]
    return limits


def main():
    rows = tomllib.loads((PROJECT / "tests/mutants.toml").read_text())["mutant"]
    rows = [row for row in rows
            if all(word in " ".join(map(str, row.values())) for word in sys.argv[1:])]
    for row in rows:
        if (PROJECT / row["file"]).read_text().count(row["before"]) != 1:
            sys.exit(f"{row['file']} does not hold once: {row['before']}")
    noticed = json.loads(NOTICED.read_text()) if NOTICED.is_file() else {}
    left = [row for row in rows if row_key(row) not in noticed]
    survivors = []
    lock = threading.Lock()
    limits = concurrent.futures.Future()

    def remember(what, value):
        with lock:
            noticed[what] = value
            NOTICED.write_text(json.dumps(noticed, indent=1))

    def work(number):
        copy = Copy(number)
        try:
            if not copy.build(*TESTS):
                raise RuntimeError("the project does not build")
            if number == 0:
                limits.set_result(measure(copy, remember, noticed))
            while left:
                row = left.pop(0)
                found = copy.meet(row, limits.result())
                if found:
                    remember(row_key(row), found)
                else:
                    survivors.append(row)
                print(f"{row['file']}: {row['fault']}: {': '.join(found or ['SURVIVES'])}",
                      flush=True)
        except RuntimeError as error:
            left.clear()
            print(error)
            limits.cancel()
            os._exit(2)
        finally:
            copy.screen.terminate()

    workers = [threading.Thread(target=work, args=[number]) for number in range(min(2, len(left)))]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    for row in survivors:
        print(f"Survivor: {row['file']}: {row['before'].strip()} -> {row['after'].strip()}:"
              f" {row['fault']}" + (f" (not worth a test: {row['why']})" if "why" in row else ""))
    reasons = sum("why" in row for row in survivors)
    print(f"{len(rows)} faults: {len(rows) - len(survivors)} noticed, {reasons} not worth a test,"
          f" {len(survivors) - reasons} survive")
    return len(survivors) > reasons


os.chdir(PROJECT)
sys.exit(main())
