"""What kivtools does where its streams fail, close or are a terminal: streams_test.py PROGRAM LIBRARY"""
import concurrent.futures
import csv
import fcntl
import io
import json
import os
import pty
import random
import re
import select
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time

PROGRAM, LIBRARY = (os.path.abspath(path) for path in sys.argv[1:3])
CODE = b"12345674\n"  # a valid fiscal code
BAR = re.compile("(█*░*|) ?[0-9]+ %|[0-9]+ MiB")
os.environ["LC_ALL"] = "C.UTF-8"  # messages in English
failures = 0


def expect(what, actual, wanted):
    global failures
    if actual != wanted:
        failures += 1
        print(f"{what}:\n  is     {actual!r}\n  wanted {wanted!r}")


def shell(command, **options):
    done = subprocess.run(["sh", "-c", command.replace("kivtools", PROGRAM, 1)], capture_output=True, **options)
    return done.returncode, done.stderr.decode().replace("kivtools ", "", 1)


def missing_streams(folder):
    """Ten rounds each: a worker that outlives what it uses does not crash every time."""
    lines = os.path.join(folder, "lines")
    with open(lines, "wb") as file:
        file.write(CODE * 400_000)
    wrong = os.path.join(folder, "wrong")  # what is read first goes out before the line that is wrong is come to
    with open(wrong, "wb") as file:
        file.write(b"9.50,a\n" * 400_000 + b"x,a\n")
    fifo = os.path.join(folder, "fifo")
    os.mkfifo(fifo)
    cases = [
        (f"exec kivtools check cui <{lines} >/dev/full", (2, "check: standard output: No space left on device (error 28)\n")),
        (f"exec kivtools check cui <{lines} >&-", (2, "check: standard output: Bad file descriptor (error 9)\n")),
        (f"exec kivtools check cui --csv 1 <{lines} >/dev/full", (2, "check: standard output: No space left on device (error 28)\n")),
        (f"exec kivtools convert --from 1250 --to 852 <{lines} >/dev/full", (2, "convert: standard output: No space left on device (error 28)\n")),
        (f"exec kivtools words --csv 1 --add x {lines} >/dev/full", (2, "words: standard output: No space left on device (error 28)\n")),
        (f"exec kivtools strip --files --json {lines} {lines} >/dev/full", (2, "strip: standard output: No space left on device (error 28)\n")),
        (f"{{ kivtools grade --csv 1 --add x {wrong}; echo $? >&2; }} | head -n 1", (0, "2\n")),
        (f"{{ kivtools check cui <{lines}; echo $? >&2; }} | head -n 1", (0, "2\n")),
    ]
    for _ in range(10):
        for command, wanted in cases:
            expect(command, shell(command), wanted)
    for command, wanted in [
        # The file that is read next must not become the missing stream.
        ("exec kivtools invoice examples/invoice.csv >&-", (2, "invoice: standard output: Bad file descriptor (error 9)\n")),
        ("exec kivtools invoice examples/invoice.csv >/dev/null 2>&-", (0, "")),
        (f"exec kivtools grade --csv 1 --add x {wrong} | tail -n 1 | grep -q CINCIZECI",
         (0, f'grade: {wrong}:400001: "x" is not a grade from 1 to 10 such as 9.50, nor one times 100 such as 950\n')),
        (f"exec kivtools money --csv 1 {folder}/no.csv", (2, f"money: {folder}/no.csv: cannot be opened: No such file or directory (error 2)\n")),
        (f"exec kivtools grade --csv 1 {wrong} | tail -n 1 | grep -q CINCIZECI",
         (0, f'grade: {wrong}:400001: "x" is not a grade from 1 to 10 such as 9.50, nor one times 100 such as 950\n')),
        (f"exec kivtools money --files {folder}", (2, f"money: {folder} is a folder\n")),
        ("exec kivtools check cui <&-", (2, "check: standard input: cannot be read: Bad file descriptor (error 9)\n")),
        (f"exec kivtools check cui <{folder}", (2, "check: standard input: cannot be read: Is a directory (error 21)\n")),
        (f"exec kivtools version {fifo}", (2, f"version: {fifo} is not a file\n")),
        (f"exec kivtools invoice {folder}/no.csv", (2, f"invoice: {folder}/no.csv: cannot be opened: No such file or directory (error 2)\n")),
    ]:
        expect(command, shell(command, timeout=60), wanted)


def comma_letters():
    """ISO 8859-16 has only the comma forms, Windows-1250 only the cedilla forms. Not every Windows has the former."""
    def convert(source, target, text):
        run = subprocess.run([PROGRAM, "convert", "--from", source, "--to", target], input=text, capture_output=True)
        return run.stdout + run.stderr
    expect("comma letters", convert("1250", "28606", b"\xba\xfe \xaa\xde\n"), "șț ȘȚ\n".encode("iso8859-16"))
    expect("cedilla letters", convert("28606", "1250", "șț ȘȚ\n".encode("iso8859-16")), b"\xba\xfe \xaa\xde\n")


def copied(file, folder):
    """Copied by another process: what threads of this one start meanwhile would inherit the copy open for writing, and
    a program that anybody has open for writing cannot be started."""
    subprocess.run(["cp", file, folder], check=True)
    return os.path.join(folder, os.path.basename(file))


def installed(folder):
    """Only the file that the SONAME names is there, as in an installation without development files."""
    for place in "bin", "lib":
        os.mkdir(os.path.join(folder, place))
    program = copied(PROGRAM, os.path.join(folder, "bin"))
    copied(LIBRARY, os.path.join(folder, "lib"))
    run = subprocess.run([program, "words", "--number", "21"], capture_output=True, cwd="/")
    expect("installed", run.stdout, b"DOUAZECISIUNU\n")
    os.remove(os.path.join(folder, "lib", os.path.basename(LIBRARY)))
    run = subprocess.run([program, "words", "--number", "21"], capture_output=True, cwd="/")
    expect("not installed", (run.returncode, run.stderr.decode().endswith("; KIVTOOLS_LIBRARY can name the library\n")), (2, True))
    run = subprocess.run([program, "words", "--number", "21"], capture_output=True, cwd=os.path.dirname(LIBRARY),
                         env={"KIVTOOLS_LIBRARY": os.path.basename(LIBRARY)})
    expect("named", run.stdout, b"DOUAZECISIUNU\n")


class Terminal:
    """A terminal's screen; remembers every state that a line of it had."""

    def __init__(self, columns, echo=False):
        self.master, self.slave = pty.openpty()
        fcntl.ioctl(self.slave, termios.TIOCSWINSZ, struct.pack("HHHH", 25, columns, 0, 0))
        mode = termios.tcgetattr(self.slave)
        mode[3] = mode[3] | termios.ECHO if echo else mode[3] & ~termios.ECHO
        termios.tcsetattr(self.slave, termios.TCSANOW, mode)
        self.lines, self.column, self.states, self.pending = [""], 0, set(), b""

    def read(self, seconds):
        end = time.monotonic() + seconds
        last = 0.0
        while (now := time.monotonic()) < end:
            if select.select([self.master], [], [], 0.02)[0]:
                self.show(os.read(self.master, 65536))
                last = now
            elif now - last > 0.1:
                self.flush()

    def show(self, data):
        """What comes is cut anywhere; a line's state is one that the program meant once an end or a return follows."""
        self.pending += data
        whole = max(self.pending.rfind(b"\r"), self.pending.rfind(b"\n"))
        if whole > 0:
            self.put(self.pending[:whole])
            self.pending = self.pending[whole:]

    def flush(self):
        """Shows what no end or return has followed for a while."""
        text = self.pending.decode("utf-8", "ignore").encode()
        self.put(text)
        self.pending = self.pending[len(text):]

    def put(self, data):
        for part in re.findall(r"\r|\n|[^\r\n]+", data.decode("utf-8", "ignore")):
            if part == "\r":
                self.column = 0
            elif part == "\n":
                self.lines.append("")
                self.column = 0
            else:
                line = self.lines[-1].ljust(self.column)
                self.lines[-1] = line[:self.column] + part + line[self.column + len(part):]
                self.column += len(part)
                self.states.add(self.lines[-1].rstrip())

    def result(self):
        self.flush()
        return "\n".join(line.rstrip() for line in self.lines)


def on_terminal(arguments, feed, columns=80, stdin=subprocess.PIPE, bar=BAR):
    """Runs the program with its output and messages on a terminal; feed(terminal, process) types and waits."""
    terminal = Terminal(columns)
    with subprocess.Popen([PROGRAM, *arguments], stdin=terminal.slave if stdin == "terminal" else stdin,
                          stdout=terminal.slave, stderr=terminal.slave) as process:
        feed(terminal, process)
        while process.poll() is None:
            terminal.read(0.05)
        terminal.read(0.2)
    os.close(terminal.slave)
    os.close(terminal.master)
    bars = {state for state in terminal.states if bar.fullmatch(state)}
    mixed = {state for state in terminal.states - bars if bar.search(state)}
    expect(f"{arguments}: lines that progress shares", mixed, set())
    return terminal.result(), bars


def json_of_any_name(folder):
    """What is no letter of JSON is escaped, what is no letter at all is replaced."""
    name = os.fsencode(folder) + b"/\x01\x1f\x7f\"\\\xc8\x99\xff.dll"
    with open(name, "wb"):
        pass
    shown = json.loads(subprocess.run([PROGRAM, "version", "--json", name], capture_output=True).stdout)
    expect("names in JSON", shown[0]["file"], name.decode(errors="replace"))


def slowly(pieces):
    def feed(terminal, process):
        for piece in pieces:
            process.stdin.write(piece)
            process.stdin.flush()
            terminal.read(1.1)
        process.stdin.close()
    return feed


def typed(pieces):
    def feed(terminal, _):
        for piece in pieces:
            os.write(terminal.master, piece)
            terminal.read(1.2)
        os.write(terminal.master, b"\x04")
    return feed


def unread(terminal, _):
    """The program waits for its terminal, longer than it works without a bar."""
    time.sleep(1.2)


def on_terminals(folder):
    result, bars = on_terminal(["check", "cui"], slowly([CODE, CODE, b"x\n", CODE]))
    expect("results and progress", result, "valid\t12345674\n" * 2 + "invalid\tx\tline 3: the length is 1 instead of 3 to 10 or 13\nvalid\t12345674\n4 checked, 1 invalid\n")
    expect("progress of a pipe", bars, {"0 MiB"})

    result, bars = on_terminal(["convert", "--from", "1250", "--to", "65001"], slowly([b"a\nb", b"c", b"d\n\xff", b"e"]))
    expect("lines that come in pieces", result, "a\nbcd\n˙e")

    result, bars = on_terminal(["convert", "--from", "20127", "--to", "65001"], slowly([b"a\n", b"b\n", b"\xff\n"]))
    expect("an error after progress", result, 'a\nb\nkivtools convert: line 3: "\\xFF" is not code page 20127\n')

    result, bars = on_terminal(["check", "cui"], typed([CODE, b"x\n"]), stdin="terminal")
    expect("typed", (result, bars), ("valid\t12345674\ninvalid\tx\tline 2: the length is 1 instead of 3 to 10 or 13\n2 checked, 1 invalid\n", set()))

    result, bars = on_terminal(["check", "cui"], lambda terminal, process: process.communicate(CODE))
    expect("quick work", (result, bars), ("valid\t12345674\n1 checked, 0 invalid\n", set()))

    lines = os.path.join(folder, "many")
    with open(lines, "wb") as file:
        file.write(CODE * 300_000)
    for columns, longest in (80, len("100 %") + 31), (20, 17), (6, 5):
        with open(lines, "rb") as file:
            result, bars = on_terminal(["check", "cui"], unread, columns, file)
        expect(f"results on {columns} columns", result, "valid\t12345674\n" * 300_000 + "300000 checked, 0 invalid\n")
        expect(f"the bar on {columns} columns", bool(bars) and all(len(bar) <= longest for bar in bars), True)


def columns_of_any_table(folder):
    """A table with one more column is the table it was, whatever is in it, and the column holds what single values give."""
    def parsed(text, separator):
        return list(csv.reader(io.StringIO(text, newline=""), delimiter=separator, strict=True))
    random.seed(14)
    path = os.path.join(folder, "table.csv")
    for number in range(30):
        separator, end, columns = random.choice(",;\t"), random.choice(["\n", "\r\n"]), random.randint(2, 5)
        cells = ["", " ", "x", "două", "a" + separator + "b", 'spus "așa"', "rând\nrând", "Ștefan"]
        table = [[random.choice(cells) for _ in range(columns)] for _ in range(random.choice([1, 30, 3000]))]
        place = random.randrange(columns)
        heading = [f"c{column}" for column in range(columns)]
        out = io.StringIO(newline="")
        csv.writer(out, delimiter=separator, lineterminator=end, quoting=random.choice([csv.QUOTE_MINIMAL, csv.QUOTE_ALL])).writerows([heading, *table])
        text = out.getvalue() if number % 2 else out.getvalue().removesuffix(end)
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        run = subprocess.run([PROGRAM, "strip", "--csv", f"c{place}", "--add", "curat", path], capture_output=True)
        plain = str.maketrans("ățșȘâ", "atsSa")
        wanted = [row + [row[place].translate(plain) if row[place].strip() else ""] for row in table]
        expect(f"table {number}", (run.stderr.decode(), parsed(run.stdout.decode(), separator)), ("", [[*heading, "curat"], *wanted]))
        kept = "".join(row[:row.rindex(separator)] for row in run.stdout.decode().split(end)[:1])
        expect(f"the heading of table {number}", text.startswith(kept), True)


def interrupted():
    """Whoever ends the program finds an empty line where the bar was, and the shell is told what ended it."""
    for number, end in (
        (signal.SIGINT, lambda terminal, process: os.write(terminal.master, b"\x03")),
        (signal.SIGTERM, lambda terminal, process: process.terminate()),
    ):
        terminal = Terminal(columns=40, echo=True)
        with subprocess.Popen(
                [PROGRAM, "invoice", "-"], stdin=subprocess.PIPE, stdout=terminal.slave, stderr=terminal.slave,
                preexec_fn=lambda: (os.setsid(), fcntl.ioctl(terminal.slave, termios.TIOCSCTTY, 0))) as process:
            while not BAR.fullmatch(terminal.lines[-1]) and process.poll() is None:
                process.stdin.write(b"\n")
                process.stdin.flush()
                terminal.read(0.3)
            end(terminal, process)
            process.wait()
        terminal.read(0.2)
        expect(f"signal {number}", (process.returncode, terminal.result(), terminal.column), (-number, "", 0))


def refused_folder(folder):
    """root may list every folder, so the program runs as somebody else, who need not reach where it was built."""
    reachable = os.path.join(folder, "reachable")
    closed = os.path.join(reachable, "closed")
    os.makedirs(closed)
    os.chmod(folder, 0o755)
    os.chmod(closed, 0)
    copies = {name: copied(name, reachable) for name in (PROGRAM, LIBRARY)}
    somebody = {"user": 65534, "group": 65534, "extra_groups": []} if os.getuid() == 0 else {}
    with open("examples/invoice.csv", "rb") as invoice:
        run = subprocess.run([copies[PROGRAM], "invoice", "-", closed], stdin=invoice, capture_output=True, cwd=reachable,
                             env={"KIVTOOLS_LIBRARY": copies[LIBRARY]}, **somebody)
    expect("a folder that may not be listed", (run.returncode, "ȘA 2026-0117".encode() in run.stdout, run.stderr.decode()),
           (2, True, f"kivtools invoice: {closed}: cannot be listed: Permission denied (error 13)\n"))
    listing = subprocess.run([copies[PROGRAM], "list", reachable, "--json"], stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, cwd=reachable, env={"KIVTOOLS_LIBRARY": copies[LIBRARY]}, **somebody)
    found, _, told = listing.stdout.decode().partition("]\n")
    expect("what was found stands before what was not", (listing.returncode, "kivtools" in found,
                                                         told.startswith("kivtools list: "), closed in told),
           (2, True, True, True))
    os.rmdir(closed)


def lists(folder):
    """A list that is longer than any pipe holds."""
    tree = os.path.join(folder, "tree")
    os.mkdir(tree)
    for number in range(4000):
        open(os.path.join(tree, f"{number:0200}"), "w").close()
    for form in "", "--json", "--null":
        expect(f"list {form}", shell(f"exec kivtools list {tree} {form} >/dev/full"),
               (2, "list: standard output: No space left on device (error 28)\n"))
        expect(f"list {form}", shell(f"{{ kivtools list {tree} {form}; echo $? >&2; }} | head -c 9"),
               (0, "2\n"))
    expect("list", shell(f"exec kivtools list {tree} >&-"), (2, "list: standard output: Bad file descriptor (error 9)\n"))

    strange = os.path.join(folder, "strange")
    os.mkdir(strange)
    name = os.path.join(strange, "a\nb" + "c" * 200)
    open(name, "w").close()
    expect("a name in a pipe", subprocess.run([PROGRAM, "list", strange, "--null"], capture_output=True).stdout,
           name.encode() + b"\0")
    expect("a name in JSON", subprocess.run([PROGRAM, "list", strange, "--json"], capture_output=True).stdout.decode(),
           '["' + name.replace("\n", "\\u000a") + '"]\n')
    result, _ = on_terminal(["list", strange], lambda *_: None, 1000)
    expect("a name on a terminal", result, '"' + name.replace("\n", "\\x0A") + '"\n')


def copies(folder):
    """Pipes are not copied, which is told; while nobody reads that, so much time goes by that progress is shown."""
    tree = os.path.join(folder, "țară" * 10)
    os.mkdir(tree)
    for number in range(300):
        os.mkfifo(os.path.join(tree, f"teava{number}"))
        with open(os.path.join(tree, f"fișier{number}"), "w") as file:
            file.write("x")
    line = re.compile("[0-9]+ MiB  .*")
    for columns, shown in [(80, r"[0-9]+ MiB  (\.\.\.)?(/.*)?/(țară){10}/(fișier|teava)[0-9]+"),
                           (25, "[0-9]+ MiB  (fișier|teava)[0-9]+"),
                           (22, r"[0-9]+ MiB  ((fișier|teava)[0-9]+|\.\.\.[a-zș]*[0-9]+)")]:
        result, bars = on_terminal(["copy", tree, os.path.join(folder, f"copy{columns}")], unread, columns, bar=line)
        expect("messages beside progress", sum("kivtools copy: RecursiveCopyWithExt: " in row for row in result.split("\n")), 300)
        expect("what is copied", result.endswith("\n300 files, 300 bytes copied\n"), True)
        expect(f"progress on {columns} columns", [bar for bar in bars if not re.fullmatch(shown, bar) or len(bar) >= columns], [])
        expect("progress", bool(bars), True)
    run = subprocess.run([PROGRAM, "copy", tree, os.path.join(folder, "copy"), ""], capture_output=True)
    expect("without a terminal", (run.stdout, b"MiB" in run.stderr), (b"300 files, 300 bytes copied\n", False))


def answered(text):
    def feed(terminal, _):
        for _ in range(200):
            if "/N]" in terminal.result():
                break
            terminal.read(0.05)
        os.write(terminal.master, text)
    return feed


def deletions(folder):
    tree = os.path.join(folder, "sters")
    os.makedirs(os.path.join(tree, "sub"))
    with open(os.path.join(tree, "sub", "a"), "w") as file:
        file.write("12345")
    question = f"Delete {tree} (1 file, 2 folders, 5 bytes)? [y/N]"
    for answer, wanted in [(b"n\n", " nothing is deleted\n"), (b"\n", " nothing is deleted\n"), (b"yess\n", " nothing is deleted\n"),
                           (b"\x04", "\nnothing is deleted\n")]:
        result, _ = on_terminal(["delete", tree], answered(answer), 1000, "terminal")
        expect(f"the answer {answer}", (result, os.path.exists(tree)), (question + wanted, True))
    result, _ = on_terminal(["delete", tree], lambda *_: None, 1000, subprocess.DEVNULL)
    expect("no terminal to answer on", ("--yes only" in result, os.path.exists(tree)), (True, True))
    master, slave = pty.openpty()
    run = subprocess.run([PROGRAM, "delete", tree], stdin=slave, capture_output=True)
    expect("no terminal to ask on", (run.returncode, b"--yes only" in run.stderr, os.path.exists(tree)), (2, True, True))
    os.close(master)
    os.close(slave)
    for answer, there in [(b"n\n", True), (b"da!\n", True), (b"da\n", False)]:
        subtree = os.path.join(tree, "sub")
        result, _ = on_terminal(["--lang", "ro", "delete", subtree], answered(answer), 1000, "terminal")
        said = "nu s-a șters nimic" if there else "s-au șters: 1 fișier, 1 dosar, 5 octeți"
        expect(f"the Romanian answer {answer}", (result, os.path.exists(subtree)),
               (f"Se șterge {subtree} (1 fișier, 1 dosar, 5 octeți)? [d/N] {said}\n", there))
    os.mkdir(subtree)
    with open(os.path.join(subtree, "a"), "w") as file:
        file.write("12345")
    result, _ = on_terminal(["delete", tree], answered(b"y\n"), 1000, "terminal")
    expect("yes", (result, os.path.exists(tree)), (question + " 1 file, 2 folders, 5 bytes deleted\n", False))

    home = os.path.join(folder, "acasa", "ana")
    os.makedirs(home)
    os.symlink(home, os.path.join(folder, "legatura"))
    os.symlink("/", os.path.join(folder, "radacina"))
    environment = {**os.environ, "HOME": home}
    for spelled, what in [(home, "is the home folder"), (home + "//", "is the home folder"), (home + "/.", "is the home folder"),
                          (home + "/../ana", "is the home folder"), (f"{folder}/legatura", "is the home folder"),
                          (f"{folder}/legatura/", "is the home folder"), (".", "is the home folder"), ("./", "is the home folder"),
                          ("..", "has the home folder in it"), (f"{folder}/acasa", "has the home folder in it"),
                          (os.path.expanduser("~"), "is the home folder"), ("/", "is a root folder"), ("//", "is a root folder"),
                          ("/..", "is a root folder"), (f"{folder}/radacina", "is a root folder"),
                          (f"{folder}/radacina/", "is a root folder")]:
        run = subprocess.run([PROGRAM, "delete", spelled, "--yes"], capture_output=True, cwd=home, env=environment)
        expect(f"delete {spelled}", (run.returncode, run.stderr.decode()), (2, f"kivtools delete: {spelled} {what}\n"))
    expect("the home folder", os.path.isdir(home), True)


with tempfile.TemporaryDirectory() as work:
    interrupted()  # before there are threads: what runs between fork and exec may not wait for one
    refused_folder(work)
    comma_letters()
    json_of_any_name(work)
    columns_of_any_table(work)
    with concurrent.futures.ThreadPoolExecutor() as pool:  # much of it is waiting
        for done in [pool.submit(test, work) for test in (missing_streams, installed, on_terminals, lists, copies, deletions)]:
            done.result()
print(f"{failures} failures")
sys.exit(failures != 0)
