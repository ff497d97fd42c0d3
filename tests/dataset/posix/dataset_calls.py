#!/usr/bin/env python3
"""dataset_calls.py PROGRAM FOLDER: a dataset is saved, and edited with a journal, while each system call in turn fails
or ends the process.

Whatever happens, a load gives the old dataset or the new one, with every edit that was said to be done and at most the
one that was under way.
"""
import itertools
import pathlib
import re
import subprocess
import sys

CALLS = ("openat", "fstat", "newfstatat", "read", "pread64", "write", "flock", "fchmod", "fchown", "fsync", "close",
         "ftruncate", "linkat", "renameat", "renameat2", "unlinkat")
EDITS = 2
program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
file = folder / "a.kdp"


def run(arguments, injected="none:error=EIO"):
    """Runs the program with a fault; (exit code, whether the fault was met, what it told)."""
    log = folder.with_suffix(".strace")
    result = subprocess.run(["strace", "-qq", "-o", log, "-e", f"inject={injected}", program, *arguments],
                            capture_output=True, text=True)
    return result.returncode, "(INJECTED)" in log.read_text() or result.returncode < 0, result.stderr


def shown():
    result = subprocess.run([program, "show", file], capture_output=True, text=True)
    return result.stdout.strip() or result.stderr.strip()


def prepare(rows):
    folder.mkdir(exist_ok=True)
    for left in folder.iterdir():
        left.unlink()
    subprocess.run([program, "save", file, str(rows)], check=True)


def faults():
    for call, fault in itertools.product(CALLS, ("signal=KILL", "error=EIO")):
        for number in itertools.count(1):
            if (yield f"{call}:{fault}:when={number}") is False:
                break


def each_fault(arguments, check):
    """Calls `check` after each run in which a fault was met."""
    rounds, met, given = 0, None, faults()
    while True:
        try:
            injected = given.send(met)
        except StopIteration:
            return rounds
        prepare(3)
        code, met, told = run(arguments, injected)
        if met:
            rounds += 1
            check(f"{injected} {arguments[2:]}: exit {code} {told.strip()!r}", code, told)


def main():
    failures = []

    def expect(truth, what):
        if not truth:
            failures.append(what)
            print(f"{what}: {shown()}, {[entry.name for entry in folder.iterdir()]}")

    def check_save(what, code, told):
        expect(shown() in ("3 3", "7 7") if code else shown() == "7 7", what)

    def check_journal(what, code, told):
        rows = [int(number) for number in re.findall(r"done (\d+)", told)]
        done = rows[-1] if rows else 3
        # Where all went well a fault has met what the program tells, not what it writes.
        counts = (done, done + 1) if code else (3 + 2 * EDITS,)
        possible = {f"{count} {3 + (count - 3) * 10}" for count in counts}
        expect(shown() in possible, what)

    prepare(3)
    assert run(["journal", file, str(EDITS)])[0] == 0 and shown() == f"7 {3 + 4 * 10}", "without a fault it works"
    rounds = each_fault(["save", file, "7"], check_save)
    rounds += each_fault(["save", file, "7", "backup"], check_save)
    rounds += each_fault(["journal", file, str(EDITS)], check_journal)
    expect(rounds > 150, f"only {rounds} faults met")
    print(f"{rounds} faults, {len(failures)} failures")
    return 1 if failures else 0


sys.exit(main())
