#!/usr/bin/env python3
"""tree_calls.py PROGRAM FOLDER: trees are listed, copied, compared and deleted while each system call fails in turn, or
ends the process.

No source is touched, nothing is half written under its name, and nothing stays open or is left behind but what a
process that was ended could not remove, under a name that says so.
"""
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

PROGRAM, FOLDER = sys.argv[1], pathlib.Path(sys.argv[2])
SMALL, LARGE, FORMER = b"small", os.urandom(100_000) * 3, b"former"
TEMPORARY = re.compile(r"\.tmp-[0-9a-f]{16}$")
MEMORY = ("brk", "mmap", "mremap", "munmap")
# The system's own brk tells of a failure by an address, not by a code.
ERRORS = {"brk": "retval=0"} | {name: "error=ENOMEM" for name in MEMORY[1:]}
MESSAGE = {
    "compare": r"ComparaFisiere: \S+: Input/output error \(5\)|std::bad_alloc",
    "one": r"CopyNoBuffering: \S+: Input/output error \(5\)|Nu pot deschide \S+/source/s/b|VirtualAlloc a esuat|"
           r"Am incercat sa citesc \d+ bytes; Am reusit sa citesc numai 0 bytes|std::bad_alloc",
}
# Operation, what it takes, and whether the destination is there already.
CASES = (("list", "source", "", False), ("compare", "source/s/b", "same", False), ("delete", "copy", "", True),
         ("copy", "source", "copy", False), ("copy", "source", "copy", True),
         ("one", "source/s/b", "copy/s/b", False), ("one", "source/s/b", "copy/s/b", True))


def make(root, replaced):
    shutil.rmtree(root, ignore_errors=True)
    for name, small, large, link in (("source", SMALL, LARGE, "../a"), ("copy", FORMER, FORMER, "former")):
        (root / name / "s").mkdir(parents=True)
        if name == "source" or replaced:
            (root / name / "a").write_bytes(small)
            (root / name / "s" / "b").write_bytes(large)
            (root / name / "s" / "link").symlink_to(link)
    (root / "same").write_bytes(LARGE)


def content(folder):
    """{path within the folder: bytes of a file, text of a link}"""
    return {str(path.relative_to(folder)): os.readlink(path) if path.is_symlink() else path.read_bytes()
            for path in folder.rglob("*") if path.is_symlink() or path.is_file()}


def traced(root, case, options):
    operation, first, second, replaced = case
    make(root, replaced)
    before = {name: content(root / name) for name in ("source", "copy")}
    log = root.with_suffix(".strace")
    result = subprocess.run(["strace", "-qq", "-o", log, *options, PROGRAM, operation, root / first, root / second],
                            stdout=subprocess.PIPE, text=True, check=False)
    return result, log.read_text(errors="replace"), before


def own_calls(case):
    """The operation's calls: (name, which of that name in the process's life)."""
    result, log, _ = traced(FOLDER / "plain", case, ())
    assert result.returncode == 0, f"{case}: {result}"
    counts, marks, calls = collections.Counter(), 0, []
    for name in re.findall(r"^(\w+)\(", log, re.MULTILINE):
        counts[name] += 1
        marks += name == "getppid"
        if marks == 1 and name != "getppid":
            calls.append((name, counts[name]))
    return calls


def faults_of(worker, case, name, number, fault):
    """What is wrong after the fault, and how many names have no more than the beginning of a new file."""
    root = FOLDER / f"worker{worker}"
    injected = ERRORS.get(name, "error=EIO") if fault == "error" else fault
    result, log, before = traced(root, case, ("-e", f"inject={name}:{injected}:when={number}"))
    operation, _, _, replaced = case
    wrong, begun = [], 0

    def expect(truth, what):
        if not truth:
            wrong.append(what)

    expect("(INJECTED)" in log or result.returncode < 0, "the call was not made")
    expect(content(root / "source") == before["source"], "the source has changed")
    whole = (SMALL, LARGE, "../a", *before["copy"].values())
    copy = content(root / "copy") if (root / "copy").exists() else {}
    for path, data in copy.items():
        if TEMPORARY.search(path):
            expect(fault != "error", f"{path} is left behind")
        elif data not in whole:
            # A new small file has its name from the start, and so has what CopyNoBuffering could not finish.
            isBeginning = not replaced and (SMALL if path == "a" else LARGE if operation == "one" else b"").startswith(data)
            expect(isBeginning and (fault != "error" or operation == "one"), f"{path} is half written: {len(data)} bytes")
            begun += isBeginning
    if operation in ("copy", "one"):
        expect(set(before["copy"]) <= set(copy), "a former file is gone")
    if fault != "error":
        expect(result.returncode == -9 or result.returncode == 137, f"exit {result.returncode}")
        return wrong, begun
    expect(result.returncode in ((0, 1) if operation in MESSAGE or name in MEMORY else (0,)), f"exit {result.returncode}")
    lines = result.stdout.splitlines()
    if lines and lines[-1] == "left open":
        lines.pop()
        expect(name == "close", "a file was left open")
    if result.returncode == 1:
        expect(re.fullmatch(MESSAGE.get(operation, "std::bad_alloc"), lines[0]), f"error {lines[0]!r}")
    elif operation == "one":
        expect(copy.get("s/b") == LARGE, "a failure that nobody was told of")
    elif operation == "compare":
        expect(lines[0] == "equal", lines[0])
    elif operation == "list":
        expect(set(lines) <= {f"{root}/source/{path}" for path in before["source"]}, str(lines))
    return wrong, begun


def part(worker, work):
    return [(what, *faults_of(worker, *what)) for what in work]


def main():
    FOLDER.mkdir(exist_ok=True)
    work = [(case, *call, fault) for case in CASES for call in own_calls(case)
            # What only reads has nothing to leave behind when it ends.
            for fault in (("error",) if case[0] in ("list", "compare") else ("error", "signal=KILL"))]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        results = [result for part_done in pool.map(part, (0, 1), (work[0::2], work[1::2])) for result in part_done]
    rounds, begun, failures = collections.Counter(), 0, 0
    for (case, name, number, fault), wrong, beginnings in results:
        rounds[case[0] + (" over former files" if case[3] and case[0] != "delete" else "")] += 1
        begun += beginnings
        failures += bool(wrong)
        for what in wrong:
            print(f"{case}: {name} {number} {fault}: {what}")
    for what, count in rounds.items():
        print(f"{what}: {count} faults")
    print(f"{len(work)} faults, {failures} failures, {begun} times the beginning of a new file was left")
    return 1 if failures or len(work) < 300 else 0


sys.exit(main())
