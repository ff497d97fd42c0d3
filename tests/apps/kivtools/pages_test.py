"""Manual pages and bash completion against the program's own help: pages_test.py PROGRAM PAGES"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

PROGRAM, PAGES = (os.path.abspath(path) for path in sys.argv[1:3])
COMPLETION = os.path.join(PAGES, "bash-completion", "completions", "kivtools")
os.environ["LC_ALL"] = "C.UTF-8"  # messages in English
failures = 0


def expect(what, actual, wanted):
    global failures
    if actual != wanted:
        failures += 1
        print(f"{what}:\n  is     {actual!r}\n  wanted {wanted!r}")


def run(*arguments):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, check=True).stdout.decode()


def completed(*words):
    """What a real bash offers for the last of the words."""
    script = f'source {COMPLETION}; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kivtools; printf "%s\n" "${{COMPREPLY[@]}}"'
    done = subprocess.run(["bash", "--norc", "-euc", script, "bash", "kivtools", *words], capture_output=True, check=True)
    expect(f"messages of the completion of {words}", done.stderr, b"")
    return done.stdout.decode().split()


def words_of(text):
    """What is said, whatever its lines, hyphens and quotes."""
    return re.sub(r"\s+", " ", text)


def shown(page):
    """The page as a reader sees it, with messages where it has faults."""
    done = subprocess.run(["groff", "-k", "-man", "-ww", "-Tutf8", "-P-cbou", "-rLL=2000n", "-rHY=0", page], capture_output=True)
    expect(f"faults of {page}", done.stderr.decode(), "")
    return words_of(done.stdout.decode())


help_text = run("--help")
commands = re.findall(r"^  ([a-z-]+) +(.*)", help_text.split("Commands:")[1].split("\n\n")[0], re.M)
names = [name for name, _ in commands]
expect("pages", sorted(os.listdir(os.path.join(PAGES, "man", "man1"))), sorted(["kivtools.1"] + [f"kivtools-{name}.1" for name in names]))
expect("commands", sorted(completed("")), sorted([*names, "help", "--help", "--version", "--lang"]))
expect("help", sorted(completed("help", "")), sorted([*names, "help"]))
has_groff = shutil.which("groff") is not None
if has_groff:
    page = shown(os.path.join(PAGES, "man", "man1", "kivtools.1"))
    for name, summary in commands:
        expect(f"{name} in the page of the program", f"{name} {summary[0].lower()}{summary[1:]}" in page, True)

for name in names:
    text = run(name, "--help")
    options = re.findall(r"^  --([a-z-]+)( [A-Z]+)? ", text.split("\nOptions:\n")[1].split("\n\n")[0] if "\nOptions:\n" in text else "", re.M)
    expect(f"options of {name}", sorted(completed(name, "--")), sorted([f"--{option}" for option, _ in options] + ["--help", "--lang"]))
    if has_groff:
        page = shown(os.path.join(PAGES, "man", "man1", f"kivtools-{name}.1"))
        for line in text.replace("\nOptions:\n", "\n").splitlines()[3:]:
            said = words_of(re.sub(r"^Examples?:$", "EXAMPLES", line)).strip()
            expect(f"{line!r} in the page of {name}", said in page, True)

for words, wanted in [
    (["wo"], ["words"]),
    (["check", ""], ["iban", "cnp", "cui", "siruta"]),
    (["check", "c"], ["cnp", "cui"]),
    (["check", "cui", ""], []),
    (["check", "cui", "--i"], ["--invalid-only"]),
    (["data", "s"], ["show"]),
    (["convert", "--letters", "c"], ["comma", "cedilla"]),
    (["convert", "--letters", "=", "ce"], ["cedilla"]),
    (["convert", "--letters", "="], ["comma", "cedilla"]),
    (["date", "--form", "DateToRoC"], ["DateToRoCode"]),
    (["words", "--csv", "--"], []),
    (["words", "--compact", "--nu"], ["--number"]),
    (["nothing", ""], []),
    (["--lang", ""], ["en", "ro"]),
    (["--lang", "=", "r"], ["ro"]),
    (["--lang", "ro", "wo"], ["words"]),
    (["--lang", "=", "ro", "check", "c"], ["cnp", "cui"]),
    (["check", "--lang", "r"], ["ro"]),
    (["help", "--lang", "ro", "wo"], []),
]:
    expect(f"completion of {words}", completed(*words), wanted)

with tempfile.TemporaryDirectory() as folder:
    taken = os.path.join(folder, "taken")
    open(taken, "w").close()
    for target, message in [(os.path.join(taken, "pages"), "cannot be created"), ("/dev/full/x", "cannot be created")]:
        done = subprocess.run([PROGRAM, "--pages", target], capture_output=True)
        expect(f"pages in {target}", (done.returncode, message in done.stderr.decode()), (2, True))
    os.makedirs(os.path.join(folder, "man", "man1"))
    os.symlink("/dev/full", os.path.join(folder, "man", "man1", "kivtools.1"))
    done = subprocess.run([PROGRAM, "--pages", folder], capture_output=True)
    expect("a full disk", (done.returncode, done.stderr.decode().endswith("cannot be written: No space left on device (error 28)\n")), (2, True))

print(f"{failures} failures" + ("" if has_groff else "; groff is not installed, the pages were not looked at"))
sys.exit(failures != 0)
