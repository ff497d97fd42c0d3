#!/usr/bin/env python3
"""safe_file_calls.py PROGRAM FOLDER: a file is replaced while each system call in turn fails, or ends the process.

Whatever happens, the file is the old or the new one, whole, and so is its backup.
"""
import itertools
import pathlib
import subprocess
import sys

CALLS = ("openat", "fstat", "newfstatat", "write", "fchmod", "fchown", "fsync", "close", "linkat", "renameat", "renameat2", "unlinkat")
OLD, NEW, BACKUP = "the old one", "the new and longer one", "what was before"
program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
file, backup = folder / "a.kdp", folder / "a.kdp.bak"


def save(injected, options=()):
    """Saves with a fault injected; (exit code, whether the fault was met, the error)."""
    folder.mkdir(exist_ok=True)
    for left in folder.iterdir():
        left.unlink()
    file.write_text(OLD)
    file.chmod(0o664)
    backup.write_text(BACKUP)
    log = folder.with_suffix(".strace")
    result = subprocess.run(["strace", "-qq", "-o", log, "-e", f"inject={injected}", program, file, NEW, *options],
                            capture_output=True, text=True)
    return result.returncode, "(INJECTED)" in log.read_text() or result.returncode < 0, result.stderr


def main():
    rounds = failures = 0

    def expect(truth, what):
        nonlocal failures
        if not truth:
            failures += 1
            print(f"{what}: {file.read_text()!r}, {[entry.name for entry in folder.iterdir()]}")

    assert save("none:error=EIO")[0] == 0, "without a fault it works"
    expect(file.read_text() == NEW and file.stat().st_mode & 0o777 == 0o664, "no fault")
    for options, call, fault in itertools.product(((), ("backup",)), CALLS, ("signal=KILL", "error=EIO")):
        for number in itertools.count(1):
            code, met, error = save(f"{call}:{fault}:when={number}", options)
            if not met:
                break
            rounds += 1
            what = f"{call} {number} {fault} {options}: exit {code} {error.strip()}"
            expect(file.read_text() in (OLD, NEW), what)
            expect(backup.read_text() in (BACKUP, OLD), what)
            expect(code != 0 or file.read_text() == NEW, what)
            if fault == "error=EIO" and code in (0, 1) and call != "unlinkat":
                expect(set(folder.iterdir()) == {file, backup}, f"{what}: something is left behind")
            if code == 1:
                expect("Input/output error (5)" in error, what)
    # An interrupted call is made again, a short one goes on where it ended: the byte that is said to be written is not.
    for call in ("openat", "write", "fsync"):
        for number in range(1, 12):
            if save(f"{call}:error=EINTR:when={number}")[0] == 0:
                expect(file.read_text() == NEW, f"{call} {number} interrupted")
    expect(save("write:error=EINTR:when=1")[0] == 0, "write interrupted")
    expect(save("write:retval=1:when=1")[0] == 0 and file.read_text() == NEW[1:], "one byte written")
    expect(rounds > 60, f"only {rounds} faults met")
    print(f"{rounds} faults, {failures} failures")
    return 1 if failures else 0


sys.exit(main())
