#!/usr/bin/env python3
"""document_examples.py PROGRAM DOCUMENT...: each "$ kivtools ..." in a document answers with the lines below it."""
import os
import pathlib
import re
import subprocess
import sys

program = pathlib.Path(sys.argv[1]).resolve()
failures = 0
for document in sys.argv[2:]:
    blocks = re.findall(r"^```console\n(.*?)^```$", pathlib.Path(document).read_text(encoding="utf-8"), flags=re.DOTALL | re.M)
    if not blocks:
        sys.exit(f"{document} has no example")
    for command, expected in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", "".join(blocks), flags=re.MULTILINE):
        language = "ro_RO.UTF-8" if "ro" in pathlib.Path(document).parts else "C.UTF-8"
        environment = os.environ | {"PATH": f"{program.parent}:{os.environ['PATH']}", "LC_ALL": language}
        ran = subprocess.run(["sh", "-c", command], env=environment, capture_output=True, text=True, encoding="utf-8")
        if ran.stdout != expected:
            print(f"{document}: {command}\n  says {ran.stdout + ran.stderr!r}\n  and not {expected!r}")
            failures += 1
sys.exit(1 if failures else 0)
