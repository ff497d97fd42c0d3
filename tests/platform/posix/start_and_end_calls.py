#!/usr/bin/env python3
"""start_and_end_calls.py PROGRAM: starting and ending a program while each system call that they make fails in turn."""
import subprocess
import sys

SLEEP = "/bin/sleep"
CASES = (
    ("none", "", "started\nended\n"),
    ("clone3,clone,vfork", "error=EAGAIN", f"StartProgram: {SLEEP}: Resource temporarily unavailable (11)\n"),
    ("clone3,clone,vfork", "error=ENOMEM", f"StartProgram: {SLEEP}: Cannot allocate memory (12)\n"),
    ("chdir", "error=EACCES", f"StartProgram: {SLEEP}: Permission denied (13)\n"),
    ("close_range", "error=EPERM", "started\nended\n"),  # the C library then closes one by one
    ("kill", "error=EPERM", "started\nnot ended\na child is left\n"),  # it still runs, and its handle still counts
)

failures = 0
for calls, fault, expected in CASES:
    trace = [] if calls == "none" else ["strace", "-f", "-qq", "-o", "/dev/null", "-e", f"inject={calls}:{fault}"]
      # The child that could not be ended lives for the eight seconds that it sleeps.
    result = subprocess.run([*trace, sys.argv[1], SLEEP], capture_output=True, text=True, timeout=90)
    if result.stdout != expected:
        failures += 1
        print(f"{calls} {fault}: {result.stdout!r} instead of {expected!r} {result.stderr!r}")
print(f"{len(CASES)} cases, {failures} failures")
sys.exit(1 if failures else 0)
