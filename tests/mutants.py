#!/usr/bin/env python3
"""./test --mutants [WORD...]: puts one fault after the other into a copy of the project and has the
tests meet it. Prints the survivors: faults that no test notices. WORD picks the rows whose file,
fault or meaning has it. The table is tests/mutants.toml; the copy is kept in build/mutants."""

import os
import pathlib
import shutil
import subprocess
import sys
import tomllib

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = HERE.parent
COPY = PROJECT / "build/mutants"
SOURCE = COPY / "source"
BUILD = COPY / "build"
# From the quickest to the slowest. What a row names comes first.
TESTS = ["reports", "thread", "diagnostics_inspector", "diagnostics_log", "view", "chain", "loading",
         "diagnostics_trace", "published", "host_reactions", "races", "waiting", "commands",
         "quirks", "lifecycle", "media"]
TEST_SECONDS = 300  # a fault may hang a test; none takes half as long without one


def copy_changed_files():
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=PROJECT, check=True, capture_output=True)
    for name in filter(None, listed.stdout.decode().split("\0")):
        here, there = PROJECT / name, SOURCE / name
        if here.is_file() and not (there.is_file() and here.read_bytes() == there.read_bytes()):
            there.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(here, there)


def build(target):
    return subprocess.run(["cmake", "--build", BUILD, "--target", target, "--", "--quiet"],
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def is_noticed_by(test):
    """Runs one test as CTest does, where the copy's scene files are the installed ones."""
    command = ('mount --bind "$0/qml" /opt/VexadorControl'
               ' && exec ctest --test-dir "$1" --no-tests=error --timeout "$3" -R "^$2\\$"')
    return subprocess.run(["unshare", "-m", "sh", "-c", command, SOURCE, BUILD, test,
                           str(TEST_SECONDS)],
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode != 0


def meet(row, known):
    """The name of the test that notices the fault, None for none."""
    path = SOURCE / row["file"]
    whole = path.read_text()
    if whole.count(row["before"]) != 1:
        sys.exit(f"{row['file']} does not hold once: {row['before']}")
    try:
        path.write_text(whole.replace(row["before"], row["after"]))
        named = row.get("tests", [])
        for test in named + [name for name in known if name not in named]:
            if not build(f"{test}_test"):
                sys.exit(f"with {row['after']} in {row['file']} the project does not build")
            if is_noticed_by(f"{test}_test"):
                return test
        return None
    finally:
        path.write_text(whole)


def main():
    rows = tomllib.loads((HERE / "mutants.toml").read_text())["mutant"]
    words = sys.argv[1:]
    rows = [row for row in rows if all(word in " ".join(map(str, row.values())) for word in words)]
    copy_changed_files()
    subprocess.run(["cmake", "-S", SOURCE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                    "-DMEDIAPLAYER_HOSTS=OFF", "-DCMAKE_CXX_FLAGS=-O1"], check=True,
                   stdout=subprocess.DEVNULL)
    known = [name for name in TESTS if (PROJECT / f"tests/{name}_test.cpp").is_file()]
    for test in known:  # a test that fails without a fault notices nothing
        if not build(f"{test}_test") or is_noticed_by(f"{test}_test"):
            sys.exit(f"{test}_test fails without any fault")
    survivors = []
    for number, row in enumerate(rows, 1):
        noticed = meet(row, known)
        print(f"{number} of {len(rows)} {row['file']}: {noticed or 'SURVIVES'}: {row['fault']}",
              flush=True)
        if noticed is None and "why" not in row:
            survivors.append(row)
    for row in survivors:
        print(f"Survivor: {row['file']}: {row['before']} -> {row['after']}: {row['fault']}")
    print(f"{len(rows) - len(survivors)} noticed or not worth a test, {len(survivors)} survive")
    return 1 if survivors else 0


os.chdir(PROJECT)
sys.exit(main())
